// The emulated IDE's own commands over the projects on disk, and its built-in command bars.
#include "vb6host/ide_commands.h"

#include <cstdio>
#include <filesystem>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/file_io.h"
#include "disk/project_file.h"
#include "disk/vb_path.h"
#include "environment/event_hub.h"
#include "vb6host/host_context.h"

namespace arbolet::vb6host {

namespace fs = std::filesystem;
using env::ComponentType;

namespace {

struct NewComponentKind {
    ComponentType type;
    const char* baseName;  // the IDE's name for new components of the kind, before the number
    const char* extension;
    const char* designer;  // the class after Begin; nullptr for modules and classes
};

constexpr NewComponentKind kNewKinds[] = {
    {ComponentType::VBForm, "Form", ".frm", "VB.Form"},
    {ComponentType::VBMDIForm, "MDIForm", ".frm", "VB.MDIForm"},
    {ComponentType::StdModule, "Module", ".bas", nullptr},
    {ComponentType::ClassModule, "Class", ".cls", nullptr},
    {ComponentType::UserControl, "UserControl", ".ctl", "VB.UserControl"},
    {ComponentType::PropPage, "PropertyPage", ".pag", "VB.PropertyPage"},
    {ComponentType::DocObject, "UserDocument", ".dob", "VB.UserDocument"},
};

const NewComponentKind* KindOf(ComponentType type) {
    for (const NewComponentKind& kind : kNewKinds) {
        if (kind.type == type) return &kind;
    }
    return nullptr;
}

// The text of a new, empty component file, as the IDE saves one.
std::string NewComponentText(const NewComponentKind& kind, const std::string& name) {
    std::string text;
    if (kind.type == ComponentType::ClassModule) {
        text = "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1  'True\r\nEND\r\n";
    } else if (kind.designer != nullptr) {
        text = std::string("VERSION 5.00\r\nBegin ") + kind.designer + " " + name + "\r\n";
        if (kind.type == ComponentType::VBForm || kind.type == ComponentType::VBMDIForm) {
            text += "   Caption         =   \"" + name + "\"\r\n";
        }
        text += "   ClientHeight    =   3195\r\n   ClientWidth     =   4680\r\nEnd\r\n";
    }
    text += "Attribute VB_Name = \"" + name + "\"\r\n";
    if (kind.type != ComponentType::StdModule) {
        const bool predeclared = kind.type == ComponentType::VBForm ||
                                 kind.type == ComponentType::VBMDIForm ||
                                 kind.type == ComponentType::PropPage;
        text += "Attribute VB_GlobalNameSpace = False\r\n";
        text += std::string("Attribute VB_Creatable = ") +
                (kind.type == ComponentType::ClassModule ? "True" : "False") + "\r\n";
        text += std::string("Attribute VB_PredeclaredId = ") + (predeclared ? "True" : "False") +
                "\r\n";
        text += "Attribute VB_Exposed = False\r\n";
    }
    return text;
}

bool ProjectHasComponentNamed(const env::VBProject& project, const std::string& name) {
    const auto components = project.VBComponents();
    if (!components) return false;
    for (std::int32_t i = 1; i <= components->Count(); ++i) {
        if (text::ToLower(components->Item(i)->Name()) == text::ToLower(name)) return true;
    }
    return false;
}

bool ProjectHasType(const env::VBProject& project, ComponentType type) {
    const auto components = project.VBComponents();
    if (!components) return false;
    for (std::int32_t i = 1; i <= components->Count(); ++i) {
        if (components->Item(i)->Type() == type) return true;
    }
    return false;
}

void RaiseComponentEvent(HostContext& context, const env::VBComponentRef& component,
                         void (env::VBComponentsEventsSink::*event)(const env::VBComponentRef&)) {
    const auto hub = std::dynamic_pointer_cast<env::EventHub>(context.Environment().Events());
    const auto project = env::ProjectOf(*component);
    if (!hub || !project) return;
    hub->RaiseComponentEvent(project.get(),
                             [&](env::VBComponentsEventsSink& sink) { (sink.*event)(component); });
}

void Select(HostContext& context, const env::VBComponentRef& component) {
    context.SelectComponent(component);
    RaiseComponentEvent(context, component, &env::VBComponentsEventsSink::ItemSelected);
}

}  // namespace

ProjectType TypeOfProject(const env::VBProject& project) {
    try {
        const disk::ProjectFile file(disk::ReadFileBytes(disk::PathFromUtf8(project.FileName())),
                                     disk::kDefaultCodePage);
        const std::string type = text::ToLower(file.TopLevelValue("Type").value_or("Exe"));
        if (type == "oleexe") return ProjectType::ActiveXExe;
        if (type == "oledll") return ProjectType::ActiveXDll;
        if (type == "control") return ProjectType::ActiveXControl;
    } catch (const disk::FileError&) {
        // A project never saved, or one whose file went, is what VB makes by default.
    }
    return ProjectType::StandardExe;
}

bool CanAdd(const env::VBProject& project, ComponentType type) {
    switch (type) {
        case ComponentType::VBMDIForm:
            return !ProjectHasType(project, ComponentType::VBMDIForm);
        case ComponentType::DocObject: {
            const ProjectType projectType = TypeOfProject(project);
            return projectType == ProjectType::ActiveXExe || projectType == ProjectType::ActiveXDll;
        }
        default:
            return KindOf(type) != nullptr;
    }
}

env::VBComponentRef AddNewComponent(const env::VBProjectRef& project, ComponentType type) {
    constexpr const char* kSource = "VBComponents.Add";
    if (!project) throw VbError(91, kSource, "Object variable not set");
    const NewComponentKind* kind = KindOf(type);
    if (kind == nullptr || !CanAdd(*project, type)) {
        throw VbError(5, kSource, "Invalid procedure call or argument");
    }
    const fs::path folder = disk::PathFromUtf8(project->FileName()).parent_path();
    for (int number = 1;; ++number) {
        const std::string name = kind->baseName + std::to_string(number);
        const fs::path file = folder / disk::PathFromUtf8(name + kind->extension);
        std::error_code ec;
        if (ProjectHasComponentNamed(*project, name) || fs::exists(file, ec)) continue;
        disk::WriteFileAtomic(file, NewComponentText(*kind, name));
        return project->VBComponents()->AddFile(disk::PathToUtf8(file));
    }
}

bool HasDesigner(ComponentType type) {
    switch (type) {
        case ComponentType::VBForm:
        case ComponentType::VBMDIForm:
        case ComponentType::MSForm:
        case ComponentType::UserControl:
        case ComponentType::PropPage:
        case ComponentType::DocObject:
        case ComponentType::ActiveXDesigner:
            return true;
        default:
            return false;
    }
}

void ShowCode(HostContext& context, const env::VBComponentRef& component) {
    if (!component || !component->CodeModule()) {
        throw VbError(5, "CodePane.Show", "Invalid procedure call or argument");
    }
    Select(context, component);
    context.CodePane(component.get()).shown = true;
    context.SetActiveCodeComponent(component);
    RaiseComponentEvent(context, component, &env::VBComponentsEventsSink::ItemActivated);
}

void ShowDesigner(HostContext& context, const env::VBComponentRef& component) {
    if (!component || !HasDesigner(component->Type())) {
        throw VbError(5, "VBComponent.Activate", "Invalid procedure call or argument");
    }
    Select(context, component);
    context.OpenDesigner(component.get());
    RaiseComponentEvent(context, component, &env::VBComponentsEventsSink::ItemActivated);
}

// ---- the built-in command bars ----

namespace {

BarControlRef AddButton(ControlList& list, const wchar_t* caption, std::function<void()> action,
                        std::function<bool()> available = {}) {
    BarControlRef control = list.Add(kControlButton, std::nullopt);
    control->builtIn = true;
    control->id = static_cast<std::int32_t>(control->commandId);
    control->caption = caption;
    control->action = std::move(action);
    control->available = std::move(available);
    return control;
}

// A menu of the menu bar, whose controls are also the bar of that name in CommandBars.
ControlList& AddMenu(ControlList& menuBar, const wchar_t* caption) {
    BarControlRef popup = menuBar.Add(kControlPopup, std::nullopt);
    popup->builtIn = true;
    popup->caption = caption;
    popup->subBar->name = PlainCaption(caption);
    popup->subBar->builtIn = true;
    return *popup->subBar->controls;
}

}  // namespace

void BuildIdeCommandBars(HostContext& context) {
    CommandBarModel& model = context.Bars();
    HostContext* host = &context;
    const auto active = [host] { return host->Environment().ActiveVBProject(); };
    const auto selected = [host] { return host->SelectedComponent(); };
    const auto save = [host] { host->Environment().Save(); };

    const CommandBarRef menuBar = model.AddBar(L"Menu Bar", kBarMenuBar);
    const CommandBarRef standard = model.AddBar(L"Standard", kBarNormal);
    ControlList& file = AddMenu(*menuBar->controls, L"&File");
    ControlList& view = AddMenu(*menuBar->controls, L"&View");
    ControlList& project = AddMenu(*menuBar->controls, L"&Project");
    ControlList& addIns = AddMenu(*menuBar->controls, L"&Add-Ins");

    AddButton(
        file, L"Remo&ve Project",
        [host, active] {
            if (auto p = active()) host->Environment().RemoveProject(p);
        },
        [active] { return active() != nullptr; });
    AddButton(file, L"Sa&ve Project", save, [active] { return active() != nullptr; });

    AddButton(
        view, L"&Code", [host, selected] { ShowCode(*host, selected()); },
        [selected] {
            const auto c = selected();
            return c && c->CodeModule() != nullptr;
        });
    AddButton(
        view, L"O&bject", [host, selected] { ShowDesigner(*host, selected()); },
        [selected] {
            const auto c = selected();
            return c && HasDesigner(c->Type());
        });

    struct AddCommand {
        const wchar_t* caption;
        ComponentType type;
    };
    static constexpr AddCommand kAddCommands[] = {
        {L"Add &Form", ComponentType::VBForm},
        {L"Add &MDI Form", ComponentType::VBMDIForm},
        {L"Add &Module", ComponentType::StdModule},
        {L"Add &Class Module", ComponentType::ClassModule},
        {L"Add &User Control", ComponentType::UserControl},
        {L"Add &Property Page", ComponentType::PropPage},
        {L"Add User &Document", ComponentType::DocObject},
    };
    for (const AddCommand& command : kAddCommands) {
        const ComponentType type = command.type;
        AddButton(
            project, command.caption,
            [host, active, type] { Select(*host, AddNewComponent(active(), type)); },
            [active, type] {
                const auto p = active();
                return p && CanAdd(*p, type);
            });
    }
    AddButton(
        project, L"&Remove",
        [selected] {
            if (auto c = selected()) env::ProjectOf(*c)->VBComponents()->Remove(c);
        },
        [selected] { return selected() != nullptr; })
        ->beginGroup = true;

    // The Add-In Manager's dialog is the IDE's own; the host has no such dialog.
    AddButton(addIns, L"&Add-In Manager...", {}, [] { return false; });
    AddButton(
        *standard->controls, L"Add &Form",
        [host, active] { Select(*host, AddNewComponent(active(), ComponentType::VBForm)); },
        [active] { return active() != nullptr; });
    AddButton(*standard->controls, L"Sa&ve Project", save,
              [active] { return active() != nullptr; });

    // The menus' own bars follow the toolbar, as Office lists them.
    for (const BarControlRef& menu : menuBar->controls->Items())
        model.ListBar(menu->subBar);
}

}  // namespace arbolet::vb6host
