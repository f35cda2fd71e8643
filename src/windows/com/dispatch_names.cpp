// Member names compared as late-bound callers expect.
#include "windows/com/dispatch_names.h"

#include <cwctype>

namespace arbolet::windows::com {

bool SameMemberName(const wchar_t* left, const wchar_t* right) noexcept {
    for (; *left != 0 && *right != 0; ++left, ++right) {
        if (std::towlower(*left) != std::towlower(*right)) return false;
    }
    return *left == *right;
}

}  // namespace arbolet::windows::com
