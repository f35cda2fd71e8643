// The environment interfaces (environment/vbide.h, environment/command_bars.h) over the real
// IDE's objects: every call goes late-bound through IDispatch, and every failure comes back as
// the VbError the explorer expects. Event sources are bridged from the IDE's connection points
// and stay advised exactly as long as the explorer holds them.
#pragma once

#include <cstdint>
#include <memory>

#include "environment/vbide.h"
#include "windows/com/dispatch.h"

namespace arbolet::windows::ide {

// The environment over the IDE's VBE object.
std::shared_ptr<env::VBE> WrapVbe(const com::Dispatch& vbe);
// One project or component object of the IDE (as event arguments give them).
env::VBProjectRef WrapProject(const com::Dispatch& project);
env::VBComponentRef WrapComponent(const com::Dispatch& component);

// Shows a component's code with `line` (1-based) selected at the top of its code pane.
void GotoLine(const env::VBComponent& component, std::int32_t line);

}  // namespace arbolet::windows::ide
