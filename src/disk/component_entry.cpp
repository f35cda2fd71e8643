// Component entries of project files and their kinds (see component_entry.h).
#include "disk/component_entry.h"

#include <algorithm>
#include <utility>

#include "base/utf8.h"
#include "disk/vb_path.h"

namespace arbolet::disk {
using env::ComponentType;

namespace {

// The designer class of forms made with the Forms 2.0 designer (VBA-style user forms).
constexpr std::string_view kMsFormsDesigner = "{c62a69f0-16dc-11ce-9e98-00aa00574a4f}";

constexpr std::pair<std::string_view, EntryKind> kKeys[] = {
    {"Module", EntryKind::Module},
    {"Class", EntryKind::Class},
    {"Form", EntryKind::Form},
    {"UserControl", EntryKind::UserControl},
    {"PropertyPage", EntryKind::PropertyPage},
    {"UserDocument", EntryKind::UserDocument},
    {"Designer", EntryKind::Designer},
    {"RelatedDoc", EntryKind::RelatedDoc},
    {"ResFile32", EntryKind::ResFile},
};

constexpr std::pair<std::string_view, EntryKind> kExtensions[] = {
    {".bas", EntryKind::Module},       {".cls", EntryKind::Class},
    {".frm", EntryKind::Form},         {".ctl", EntryKind::UserControl},
    {".pag", EntryKind::PropertyPage}, {".dob", EntryKind::UserDocument},
    {".dsr", EntryKind::Designer},
};

// The class after `Begin` in the designer header: "VB.Form", "VB.MDIForm", a GUID, ...
std::string DesignerClass(const ComponentFile& file) {
    const auto end = std::min<std::size_t>(file.lines.size(), 64);
    for (std::size_t i = 0; i < end; ++i) {
        const std::string_view line = text::TrimLeft(file.lines[i]);
        if (text::ToLower(line.substr(0, 6)) != "begin ") continue;
        const std::string_view rest = text::TrimLeft(line.substr(6));
        return text::ToLower(rest.substr(0, rest.find(' ')));
    }
    return {};
}

}  // namespace

std::optional<EntryKind> KindOfKey(std::string_view key) {
    const std::string lower = text::ToLower(key);
    for (const auto& [name, kind] : kKeys) {
        if (lower == text::ToLower(name)) return kind;
    }
    return std::nullopt;
}

std::string_view KeyOfKind(EntryKind kind) {
    for (const auto& [name, entryKind] : kKeys) {
        if (entryKind == kind) return name;
    }
    return "Module";
}

std::optional<EntryKind> KindOfFile(const std::filesystem::path& file) {
    const std::string extension = text::ToLower(PathToUtf8(file.extension()));
    for (const auto& [name, kind] : kExtensions) {
        if (extension == name) return kind;
    }
    return std::nullopt;
}

bool IsNamedEntry(EntryKind kind) {
    return kind == EntryKind::Module || kind == EntryKind::Class;
}

std::vector<ComponentEntry> ComponentEntries(const ProjectFile& project) {
    std::vector<ComponentEntry> entries;
    for (const ProjectEntry& entry : project.TopLevel()) {
        const auto kind = KindOfKey(entry.key);
        if (!kind) continue;
        ComponentEntry component{*kind, {}, entry.value, entry.line};
        const auto semicolon = entry.value.find(';');
        if (IsNamedEntry(*kind) && semicolon != std::string::npos) {
            component.name = text::Trim(std::string_view(entry.value).substr(0, semicolon));
            component.path = entry.value.substr(semicolon + 1);
        }
        component.path = Unquoted(text::Trim(component.path));
        entries.push_back(std::move(component));
    }
    return entries;
}

bool HasCode(EntryKind kind) {
    return kind != EntryKind::RelatedDoc && kind != EntryKind::ResFile;
}

ComponentType TypeOf(EntryKind kind, const ComponentFile* file) {
    switch (kind) {
        case EntryKind::Module:
            return ComponentType::StdModule;
        case EntryKind::Class:
            return ComponentType::ClassModule;
        case EntryKind::Form:
            return file && DesignerClass(*file) == "vb.mdiform" ? ComponentType::VBMDIForm
                                                                : ComponentType::VBForm;
        case EntryKind::UserControl:
            return ComponentType::UserControl;
        case EntryKind::PropertyPage:
            return ComponentType::PropPage;
        case EntryKind::UserDocument:
            return ComponentType::DocObject;
        case EntryKind::Designer:
            return file && DesignerClass(*file) == kMsFormsDesigner
                       ? ComponentType::MSForm
                       : ComponentType::ActiveXDesigner;
        case EntryKind::RelatedDoc:
            return ComponentType::RelatedDocument;
        case EntryKind::ResFile:
            return ComponentType::ResFile;
    }
    return ComponentType::StdModule;
}

}  // namespace arbolet::disk
