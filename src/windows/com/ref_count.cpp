// The module's count of live objects and server locks.
#include "windows/com/ref_count.h"

namespace arbolet::windows::com::module {
namespace {
LONG g_active = 0;
}  // namespace

void ObjectCreated() noexcept {
    InterlockedIncrement(&g_active);
}
void ObjectDestroyed() noexcept {
    InterlockedDecrement(&g_active);
}
void Lock() noexcept {
    InterlockedIncrement(&g_active);
}
void Unlock() noexcept {
    InterlockedDecrement(&g_active);
}
LONG ActiveCount() noexcept {
    return InterlockedCompareExchange(&g_active, 0, 0);
}

}  // namespace arbolet::windows::com::module
