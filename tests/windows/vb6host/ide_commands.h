// What the emulated IDE does on the projects when its own commands run: adding a new
// component of a kind (as the Project menu's Add commands do), opening code windows and
// designers, the project's type, and the built-in menus and toolbar that offer these commands.
#pragma once

#include <cstdint>
#include <string>

#include "environment/vbide.h"

namespace arbolet::vb6host {

class HostContext;

// vbext_ProjectType.
enum class ProjectType : std::int32_t {
    StandardExe = 0,
    ActiveXExe = 1,
    ActiveXDll = 2,
    ActiveXControl = 3
};

// From the project file's Type line.
ProjectType TypeOfProject(const env::VBProject& project);

// Writes a new, empty component file of that kind beside the project, named as the IDE names
// new components (Form1, Module2, ...), and adds it to the project, which raises ItemAdded;
// raises VB's error 5 for a kind the project cannot take.
env::VBComponentRef AddNewComponent(const env::VBProjectRef& project, env::ComponentType type);
// Whether the project can take a new component of that kind, as the Project menu says.
bool CanAdd(const env::VBProject& project, env::ComponentType type);

// Selects the component and opens its code window, as View Code does.
void ShowCode(HostContext& context, const env::VBComponentRef& component);
// Selects the component and opens its designer, as View Object does.
void ShowDesigner(HostContext& context, const env::VBComponentRef& component);

// The IDE's command bars: "Menu Bar" with its File, View, Project and Add-Ins menus, and the
// "Standard" toolbar, every built-in control acting on the context's projects.
void BuildIdeCommandBars(HostContext& context);

}  // namespace arbolet::vb6host
