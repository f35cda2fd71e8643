// How a project file lists its components: the entry kinds (`Module=`, `Form=`, ...), the
// component type each kind stands for, and the kind a component file's extension asks for.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "disk/component_file.h"
#include "disk/project_file.h"
#include "environment/vbide.h"

namespace arbolet::disk {

enum class EntryKind {
    Module,
    Class,
    Form,
    UserControl,
    PropertyPage,
    UserDocument,
    Designer,
    RelatedDoc,
    ResFile
};

struct ComponentEntry {
    EntryKind kind;
    std::string name;  // only Module= and Class= lines name the component
    std::string path;  // as written, unquoted
    std::size_t line;  // 0-based line of the project file
};

// The kind a project file key names, ignoring letter case; nullopt for other keys.
std::optional<EntryKind> KindOfKey(std::string_view key);
// The key a project file writes for the kind ("Module", "ResFile32", ...).
std::string_view KeyOfKind(EntryKind kind);
// The kind of a component file by its extension; nullopt for companions and other files.
std::optional<EntryKind> KindOfFile(const std::filesystem::path& file);
// Whether entries of the kind name the component (`Module=Name; path`).
bool IsNamedEntry(EntryKind kind);

// The component entries of the project file's top level, in file order.
std::vector<ComponentEntry> ComponentEntries(const ProjectFile& project);

// Resource files and related documents have no code and no extended properties.
bool HasCode(EntryKind kind);

// The component type: forms and designers are told apart by the class in their file's header.
env::ComponentType TypeOf(EntryKind kind, const ComponentFile* file);

}  // namespace arbolet::disk
