// The add-in's class-object table.
#include "windows/addin/class_table.h"

#include "windows/addin/connection.h"
#include "windows/addin/tool_window_control.h"
#include "windows/com/vbide_ids.h"

namespace arbolet::windows::addin {
namespace {
const com::ClassEntry kClasses[] = {
    {&com::ids::CLSID_Connection, &com::CreateAndQuery<dVisualBasic>},
    {&com::ids::CLSID_ToolWindowControl, &com::CreateAndQuery<ToolWindowControl>},
};
}  // namespace

std::span<const com::ClassEntry> AddInClasses() noexcept {
    return kClasses;
}

}  // namespace arbolet::windows::addin
