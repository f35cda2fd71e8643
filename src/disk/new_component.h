// New components as the IDE's Project menu adds them: a file beside the project with the IDE's
// default name and the minimal text it writes for the kind, and the project's entry for it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "environment/vbide.h"

namespace arbolet::disk {

class DiskProject;

enum class NewComponentKind {
    Form,
    MDIForm,
    Module,
    Class,
    UserControl,
    PropertyPage,
    UserDocument
};

// The kind by its command-line word ("form", "mdiform", "module", "class", "usercontrol",
// "propertypage", "userdocument"), ignoring case.
std::optional<NewComponentKind> NewComponentKindNamed(std::string_view word);

// The kind the Project menu adds for a component type; nullopt for types it cannot add.
std::optional<NewComponentKind> NewComponentKindOf(env::ComponentType type);

// Whether the Project menu can add the kind to the project now: a project holds at most one
// MDI form, and user documents live in ActiveX EXE and DLL projects only.
bool CanAddNewComponent(const DiskProject& project, NewComponentKind kind);

// Whether components of the type have a designer that View Object opens.
bool HasDesigner(env::ComponentType type);

// The project types of the `Type=` key: Standard EXE, ActiveX DLL, ActiveX EXE, ActiveX Control.
enum class ProjectType { Exe, OleDll, OleExe, Control };

// The project's type by its `Type=` key (ignoring case); Standard EXE when the key is missing
// or unknown, as the IDE takes it.
ProjectType ProjectTypeOf(const DiskProject& project);

// The file text for a new component of the kind named `name`, with CRLF line ends. What the
// component shows outside its project follows the IDE's defaults for the project type: a class
// is Private in a Standard EXE, MultiUse in ActiveX DLLs and EXEs and PublicNotCreatable in
// ActiveX Controls; user controls and property pages are public only in ActiveX Controls.
std::string NewComponentText(NewComponentKind kind, std::string_view name,
                             ProjectType projectType = ProjectType::Exe);

// The IDE's default name: the kind's base name ("Form", "Module", ...) with the first number
// from 1 that names no component of the project and no file in the project's folder.
std::string DefaultComponentName(const DiskProject& project, NewComponentKind kind);

// Creates the component file beside the project (never over an existing file), adds its entry
// after the last entry of the same key (else after the last component entry), and raises
// ItemAdded. Without a name the IDE's default is taken; a name the IDE refuses raises its error
// (kInvalidPropertyValue with the reason). The project file changes in memory until saved.
env::VBComponentRef AddNewComponent(DiskProject& project, NewComponentKind kind,
                                    const std::optional<std::string>& name);

}  // namespace arbolet::disk
