// Making new components (see new_component.h).
#include "disk/new_component.h"

#include <system_error>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/component_entry.h"
#include "disk/disk_loading.h"
#include "disk/disk_objects.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

struct KindInfo {
    NewComponentKind kind;
    env::ComponentType type;
    std::string_view word;
    std::string_view baseName;
    std::string_view extension;
    EntryKind entry;
};

constexpr KindInfo kKinds[] = {
    {NewComponentKind::Form, env::ComponentType::VBForm, "form", "Form", ".frm", EntryKind::Form},
    {NewComponentKind::MDIForm, env::ComponentType::VBMDIForm, "mdiform", "MDIForm", ".frm",
     EntryKind::Form},
    {NewComponentKind::Module, env::ComponentType::StdModule, "module", "Module", ".bas",
     EntryKind::Module},
    {NewComponentKind::Class, env::ComponentType::ClassModule, "class", "Class", ".cls",
     EntryKind::Class},
    {NewComponentKind::UserControl, env::ComponentType::UserControl, "usercontrol", "UserControl",
     ".ctl", EntryKind::UserControl},
    {NewComponentKind::PropertyPage, env::ComponentType::PropPage, "propertypage", "PropertyPage",
     ".pag", EntryKind::PropertyPage},
    {NewComponentKind::UserDocument, env::ComponentType::DocObject, "userdocument", "UserDocument",
     ".dob", EntryKind::UserDocument},
};

const KindInfo& InfoOf(NewComponentKind kind) {
    for (const KindInfo& info : kKinds) {
        if (info.kind == kind) return info;
    }
    return kKinds[0];
}

std::string Lines(std::initializer_list<std::string> lines) {
    std::string text;
    for (const std::string& line : lines)
        text.append(line).append("\r\n");
    return text;
}

std::string Quoted(std::string_view name) {
    return "\"" + std::string(name) + "\"";
}

// The module attributes the IDE writes after the designer block.
std::string Attributes(std::string_view name, bool creatable, bool predeclared, bool exposed) {
    const auto flag = [](bool value) { return value ? "True" : "False"; };
    return Lines({"Attribute VB_Name = " + Quoted(name), "Attribute VB_GlobalNameSpace = False",
                  std::string("Attribute VB_Creatable = ") + flag(creatable),
                  std::string("Attribute VB_PredeclaredId = ") + flag(predeclared),
                  std::string("Attribute VB_Exposed = ") + flag(exposed)});
}

std::string Designer(std::string_view type, std::string_view name,
                     std::initializer_list<std::string> properties) {
    std::string text =
        Lines({"VERSION 5.00", "Begin VB." + std::string(type) + " " + std::string(name) + " "});
    for (const std::string& property : properties)
        text += "   " + property + "\r\n";
    return text + Lines({"End"});
}

// On Windows `Module1.bas` is `module1.bas`: a name taken in any case is taken.
bool FileTaken(const DiskProject& project, const fs::path& file) {
    std::error_code ec;
    if (fs::exists(file, ec) || FileNameTaken(file.parent_path(), PathToUtf8(file.filename()))) {
        return true;
    }
    const std::string lower = text::ToLower(PathToUtf8(file.filename()));
    for (const auto& component : project.components->items) {
        if (text::ToLower(PathToUtf8(component->Path().filename())) == lower) return true;
    }
    return false;
}

bool NameTaken(const DiskProject& project, std::string_view name) {
    const std::string lower = text::ToLower(name);
    for (const auto& component : project.components->items) {
        if (text::ToLower(component->Name()) == lower) return true;
    }
    return false;
}

// After the last entry of the same key, else after the last component entry, else after the
// project's Type line, where the IDE starts its list.
void AddEntry(DiskProject& project, EntryKind kind, const std::string& value) {
    std::optional<std::size_t> sameKind;
    std::optional<std::size_t> anyComponent;
    for (const ProjectEntry& entry : project.Text().TopLevel()) {
        if (text::ToLower(entry.key) == "type") anyComponent = entry.line;
    }
    for (const ComponentEntry& entry : ComponentEntries(project.Text())) {
        anyComponent = entry.line;
        if (entry.kind == kind) sameKind = entry.line;
    }
    const std::string key(KeyOfKind(kind));
    if (const auto after = sameKind ? sameKind : anyComponent) {
        project.EditText().InsertTopLevelEntry(*after, key, value);
    } else {
        project.EditText().AddTopLevelEntry(key, value);
    }
}

}  // namespace

std::optional<NewComponentKind> NewComponentKindNamed(std::string_view word) {
    const std::string lower = text::ToLower(word);
    for (const KindInfo& info : kKinds) {
        if (info.word == lower) return info.kind;
    }
    return std::nullopt;
}

std::optional<NewComponentKind> NewComponentKindOf(env::ComponentType type) {
    for (const KindInfo& info : kKinds) {
        if (info.type == type) return info.kind;
    }
    return std::nullopt;
}

bool CanAddNewComponent(const DiskProject& project, NewComponentKind kind) {
    if (kind == NewComponentKind::MDIForm) {
        for (const auto& component : project.components->items) {
            if (component->Type() == env::ComponentType::VBMDIForm) return false;
        }
    }
    if (kind == NewComponentKind::UserDocument) {
        const ProjectType type = ProjectTypeOf(project);
        return type == ProjectType::OleExe || type == ProjectType::OleDll;
    }
    return true;
}

bool HasDesigner(env::ComponentType type) {
    switch (type) {
        case env::ComponentType::VBForm:
        case env::ComponentType::VBMDIForm:
        case env::ComponentType::MSForm:
        case env::ComponentType::UserControl:
        case env::ComponentType::PropPage:
        case env::ComponentType::DocObject:
        case env::ComponentType::ActiveXDesigner:
            return true;
        default:
            return false;
    }
}

ProjectType ProjectTypeOf(const DiskProject& project) {
    const std::string type =
        text::ToLower(text::Trim(project.Text().TopLevelValue("Type").value_or("")));
    if (type == "oledll") return ProjectType::OleDll;
    if (type == "oleexe") return ProjectType::OleExe;
    if (type == "control") return ProjectType::Control;
    return ProjectType::Exe;
}

std::string NewComponentText(NewComponentKind kind, std::string_view name,
                             ProjectType projectType) {
    const std::string caption = "Caption         =   " + Quoted(name);
    const bool activeX = projectType == ProjectType::OleDll || projectType == ProjectType::OleExe;
    const bool control = projectType == ProjectType::Control;
    switch (kind) {
        case NewComponentKind::Form:
            return Designer(
                       "Form", name,
                       {caption, "ClientHeight    =   3090", "ClientLeft      =   60",
                        "ClientTop       =   450", "ClientWidth     =   4680",
                        "LinkTopic       =   " + Quoted(name), "ScaleHeight     =   3090",
                        "ScaleWidth      =   4680", "StartUpPosition =   3  'Windows Default"}) +
                   Attributes(name, false, true, false);
        case NewComponentKind::MDIForm:
            return Designer("MDIForm", name,
                            {"BackColor       =   &H8000000C&", caption, "ClientHeight    =   3090",
                             "ClientLeft      =   60", "ClientTop       =   450",
                             "ClientWidth     =   4680", "LinkTopic       =   " + Quoted(name),
                             "StartUpPosition =   3  'Windows Default"}) +
                   Attributes(name, false, true, false);
        case NewComponentKind::Module:
            return Lines({"Attribute VB_Name = " + Quoted(name)});
        case NewComponentKind::Class:
            return Lines({"VERSION 1.0 CLASS", "BEGIN", "  MultiUse = -1  'True",
                          "  Persistable = 0  'NotPersistable",
                          "  DataBindingBehavior = 0  'vbNone",
                          "  DataSourceBehavior  = 0  'vbNone",
                          "  MTSTransactionMode  = 0  'NotAnMTSObject", "END"}) +
                   Attributes(name, !control, false, activeX || control);
        case NewComponentKind::UserControl:
            return Designer("UserControl", name,
                            {"ClientHeight    =   3600", "ClientLeft      =   0",
                             "ClientTop       =   0", "ClientWidth     =   4800",
                             "ScaleHeight     =   3600", "ScaleWidth      =   4800"}) +
                   Attributes(name, true, false, control);
        case NewComponentKind::PropertyPage:
            return Designer("PropertyPage", name,
                            {caption, "ClientHeight    =   3600", "ClientLeft      =   0",
                             "ClientTop       =   0", "ClientWidth     =   4800",
                             "PaletteMode     =   0  'Halftone", "ScaleHeight     =   3600",
                             "ScaleWidth      =   4800"}) +
                   Attributes(name, true, false, control);
        case NewComponentKind::UserDocument:
            return Designer("UserDocument", name,
                            {"ClientHeight    =   2880", "ClientLeft      =   0",
                             "ClientTop       =   0", "ClientWidth     =   3840",
                             "HScrollSmallChange=   225", "ScaleHeight     =   2880",
                             "ScaleWidth      =   3840", "VScrollSmallChange=   225"}) +
                   Attributes(name, true, false, true);
    }
    return {};
}

std::string DefaultComponentName(const DiskProject& project, NewComponentKind kind) {
    const KindInfo& info = InfoOf(kind);
    const fs::path folder = project.Path().parent_path();
    for (int number = 1;; ++number) {
        const std::string name = std::string(info.baseName) + std::to_string(number);
        if (!NameTaken(project, name) &&
            !FileTaken(project, folder / PathFromUtf8(name + std::string(info.extension)))) {
            return name;
        }
    }
}

env::VBComponentRef AddNewComponent(DiskProject& project, NewComponentKind kind,
                                    const std::optional<std::string>& name) {
    constexpr const char* kSource = "VBComponents.Add";
    const KindInfo& info = InfoOf(kind);
    const std::string chosen = name ? *name : DefaultComponentName(project, kind);
    env::CheckComponentName(*project.components, chosen, nullptr);
    const std::string fileName = chosen + std::string(info.extension);
    const fs::path file = project.Path().parent_path() / PathFromUtf8(fileName);
    if (FileTaken(project, file)) {
        // Named as it is spelt on disk, which may differ in case from the name asked for.
        const std::string taken = SpellingInFolder(file.parent_path(), fileName).value_or(fileName);
        throw VbError(58, kSource, "File already exists: '" + taken + "'");
    }
    WriteFileAtomic(file, NewComponentText(kind, chosen, ProjectTypeOf(project)));

    std::vector<LoadWarning> warnings;
    ComponentLoader loader(project, project.codePage, warnings);
    const ComponentEntry entry{info.entry, chosen, fileName, 0};
    auto component = loader.Load(entry);
    if (!component) throw VbError(75, kSource, "Path/File access error: '" + fileName + "'");
    AddEntry(project, info.entry, IsNamedEntry(info.entry) ? chosen + "; " + fileName : fileName);
    component->collection = project.components;
    project.components->items.push_back(component);
    const env::VBComponentRef added = component;
    project.RaiseComponentEvent([&](env::VBComponentsEventsSink& sink) { sink.ItemAdded(added); });
    return added;
}

}  // namespace arbolet::disk
