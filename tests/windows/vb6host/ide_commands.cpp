// The emulated IDE's own commands over the projects on disk, and its built-in command bars.
#include "vb6host/ide_commands.h"

#include <cstdio>
#include <filesystem>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/disk_objects.h"
#include "disk/file_io.h"
#include "disk/new_component.h"
#include "disk/project_file.h"
#include "disk/vb_path.h"
#include "environment/event_hub.h"
#include "vb6host/host_context.h"

namespace arbolet::vb6host {

namespace fs = std::filesystem;
using env::ComponentType;

namespace {

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

// The host's projects are projects on disk: the Project menu's rules and new components are
// theirs.
disk::DiskProject* DiskProjectOf(const env::VBProject& project) {
    return dynamic_cast<disk::DiskProject*>(const_cast<env::VBProject*>(&project));
}

bool CanAdd(const env::VBProject& project, ComponentType type) {
    const auto kind = disk::NewComponentKindOf(type);
    const disk::DiskProject* onDisk = DiskProjectOf(project);
    return kind && onDisk != nullptr && disk::CanAddNewComponent(*onDisk, *kind);
}

env::VBComponentRef AddNewComponent(const env::VBProjectRef& project, ComponentType type) {
    constexpr const char* kSource = "VBComponents.Add";
    if (!project) throw VbError(91, kSource, "Object variable not set");
    if (!CanAdd(*project, type)) throw VbError(5, kSource, "Invalid procedure call or argument");
    return disk::AddNewComponent(*DiskProjectOf(*project), *disk::NewComponentKindOf(type),
                                 std::nullopt);
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
    if (!component || !disk::HasDesigner(component->Type())) {
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
            return c && disk::HasDesigner(c->Type());
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
