// Finding, opening and indexing the workspace's projects (see workspace_index.h).
#include "lsp/workspace_index.h"

#include <algorithm>

#include "base/utf8.h"
#include "disk/component_file.h"
#include "disk/disk_objects.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"
#include "lsp/protocol.h"

namespace arbolet::lsp {
namespace {

namespace fs = std::filesystem;
namespace vb6 = analysis::vb6;

bool SkippedFolder(const fs::path& folder) {
    const std::string name = disk::PathToUtf8(folder.filename());
    return name.starts_with(".") || name == "node_modules";
}

// The symbol kinds of the protocol, as the outline uses them.
int SymbolKindOf(vb6::DeclarationKind kind, std::string_view name) {
    switch (kind) {
        case vb6::DeclarationKind::Constant:
            return 14;
        case vb6::DeclarationKind::Variable:
            return 13;
        case vb6::DeclarationKind::Type:
            return 23;
        case vb6::DeclarationKind::TypeMember:
            return 8;
        case vb6::DeclarationKind::Enum:
            return 10;
        case vb6::DeclarationKind::EnumMember:
            return 22;
        case vb6::DeclarationKind::Event:
            return 24;
        case vb6::DeclarationKind::Sub: {
            const std::string lower = text::ToLower(name);
            return lower.ends_with("_initialize") && lower.find('_') + 11 == lower.size() ? 9 : 6;
        }
        case vb6::DeclarationKind::PropertyGet:
        case vb6::DeclarationKind::PropertyLet:
        case vb6::DeclarationKind::PropertySet:
            return 7;
        case vb6::DeclarationKind::Declare:
        case vb6::DeclarationKind::Function:
            return 12;
    }
    return 13;
}

int ComponentSymbolKind(env::ComponentType type) {
    return type == env::ComponentType::StdModule ? 2 : 5;
}

}  // namespace

std::vector<fs::path> WorkspaceIndex::FindProjectFiles(const std::vector<fs::path>& folders) {
    std::vector<fs::path> groups;
    std::vector<fs::path> projects;
    for (const fs::path& folder : folders) {
        std::error_code error;
        fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied,
                                            error);
        for (; !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            const fs::directory_entry& entry = *it;
            std::error_code typeError;
            if (entry.is_directory(typeError)) {
                if (SkippedFolder(entry.path())) it.disable_recursion_pending();
                continue;
            }
            if (disk::HasExtension(entry.path(), ".vbg")) groups.push_back(entry.path());
            if (disk::HasExtension(entry.path(), ".vbp")) projects.push_back(entry.path());
        }
    }
    std::sort(groups.begin(), groups.end());
    std::sort(projects.begin(), projects.end());
    // Groups first, so that their projects take the group's order and start-up project.
    groups.insert(groups.end(), projects.begin(), projects.end());
    return groups;
}

void WorkspaceIndex::Load(const std::vector<fs::path>& projectFiles, int codePage,
                          PositionEncoding encoding) {
    codePage_ = codePage;
    encoding_ = encoding;
    projectFiles_ = projectFiles;
    problems_.clear();
    for (const fs::path& file : projectFiles_)
        problems_[UriFromPath(disk::AbsolutePath(file))];
    OpenEnvironment(projectFiles_);
    IndexEnvironment();
}

void WorkspaceIndex::OpenEnvironment(std::vector<fs::path> files) {
    // A file that cannot be opened is left out, with its reason; the others still open.
    while (true) {
        try {
            environment_ = disk::DiskEnvironment::Open(files, codePage_);
            break;
        } catch (const disk::FileError& error) {
            const fs::path bad = disk::PathIdentity(error.path);
            problems_[UriFromPath(disk::AbsolutePath(error.path))].push_back(
                {0, error.what(), true});
            const auto before = files.size();
            std::erase_if(files, [&](const fs::path& f) { return disk::PathIdentity(f) == bad; });
            if (files.size() == before) {
                // A project inside a group failed: the group cannot be opened as it stands.
                files.clear();
            }
        }
    }
    for (const disk::LoadWarning& warning : environment_->Warnings()) {
        // The standalone .vbp files of a group's projects are opened through the group.
        if (warning.message == "the project is already open") continue;
        const fs::path file = disk::AbsolutePath(disk::PathFromUtf8(warning.file));
        problems_[UriFromPath(file)].push_back(
            {std::max(warning.line - 1, 0), warning.message, false});
    }
}

void WorkspaceIndex::IndexEnvironment() {
    components_.clear();
    byPath_.clear();
    const auto projects = environment_->VBProjects();
    for (std::int32_t p = 1; p <= projects->Count(); ++p) {
        const env::VBProjectRef project = projects->Item(p);
        const std::string projectUri =
            UriFromPath(disk::AbsolutePath(disk::PathFromUtf8(project->FileName())));
        const auto components = project->VBComponents();
        for (std::int32_t c = 1; c <= components->Count(); ++c) {
            const auto component =
                std::dynamic_pointer_cast<disk::DiskComponent>(components->Item(c));
            if (!component || !component->HasText()) continue;
            const bool known = byPath_.contains(disk::PathIdentity(component->Path()));
            IndexedComponent& entry = Entry(component->Path());
            entry.projects.insert(projectUri);
            if (known) continue;
            entry.name = component->Name();
            entry.lowerName = text::ToLower(entry.name);
            entry.symbolKind = ComponentSymbolKind(component->Type());
            const std::string text = disk::DecodeCodePage(component->Current(), codePage_);
            const disk::CodeLocation code = disk::LocateCode(text);
            const std::string_view body =
                std::string_view(text).substr(std::min(code.codeOffset, text.size()));
            Fill(entry, text, vb6::ScanDeclarations(body, code.firstCodeLine + 1), nullptr);
        }
    }
}

IndexedComponent& WorkspaceIndex::Entry(const fs::path& path) {
    const fs::path identity = disk::PathIdentity(path);
    const auto found = byPath_.find(identity);
    if (found != byPath_.end()) return components_[found->second];
    byPath_[identity] = components_.size();
    IndexedComponent& entry = components_.emplace_back();
    entry.path = disk::AbsolutePath(path);
    entry.uri = UriFromPath(entry.path);
    return entry;
}

void WorkspaceIndex::Fill(IndexedComponent& component, std::string_view utf8Text,
                          const std::vector<vb6::Declaration>& declarations,
                          const TextDocument* text) const {
    component.symbols.clear();
    component.symbols.reserve(declarations.size());
    // Line texts are needed only for columns in UTF-16 of lines that are not ASCII; the raw
    // lines are split once, and only when a declaration needs them.
    std::vector<disk::RawLine> raw;
    const auto lineText = [&](std::int32_t line) -> std::string_view {
        if (text) return text->Line(line);
        if (raw.empty()) raw = disk::SplitRawLines(utf8Text);
        if (line < 0 || static_cast<std::size_t>(line) >= raw.size()) return {};
        const auto& r = raw[static_cast<std::size_t>(line)];
        return utf8Text.substr(r.offset, r.length);
    };
    for (const vb6::Declaration& declaration : declarations) {
        IndexedSymbol symbol;
        symbol.name = declaration.name;
        symbol.lowerName = text::ToLower(declaration.name);
        symbol.kind = declaration.kind;
        symbol.symbolKind = SymbolKindOf(declaration.kind, declaration.name);
        symbol.isPublic = declaration.isPublic;
        if (declaration.parent >= 0) {
            symbol.container = declarations[static_cast<std::size_t>(declaration.parent)].name;
        }
        symbol.line = declaration.line - 1;
        symbol.character = declaration.column;
        symbol.endCharacter = declaration.column + declaration.length;
        const bool ascii = std::all_of(declaration.name.begin(), declaration.name.end(),
                                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        if (encoding_ == PositionEncoding::Utf16 || !ascii) {
            const std::string_view line = lineText(symbol.line);
            const auto column = std::min(line.size(), static_cast<std::size_t>(declaration.column));
            const auto end =
                std::min(line.size(), column + static_cast<std::size_t>(declaration.length));
            symbol.character = UnitsOf(line.substr(0, column), encoding_);
            symbol.endCharacter =
                symbol.character + UnitsOf(line.substr(column, end - column), encoding_);
        }
        component.symbols.push_back(std::move(symbol));
    }
}

void WorkspaceIndex::IndexText(const fs::path& path, const std::string& utf8Text,
                               const std::vector<vb6::Declaration>& declarations,
                               const TextDocument& text) {
    const auto found = byPath_.find(disk::PathIdentity(path));
    if (found == byPath_.end()) return;  // a file no project lists has no place in the index
    Fill(components_[found->second], utf8Text, declarations, &text);
}

void WorkspaceIndex::IndexFromDisk(const fs::path& path) {
    const auto found = byPath_.find(disk::PathIdentity(path));
    if (found == byPath_.end()) return;
    IndexedComponent& component = components_[found->second];
    std::string text;
    try {
        text = disk::DecodeCodePage(disk::ReadFileBytes(path), codePage_);
    } catch (const disk::FileError&) {
        component.symbols.clear();  // gone: it declares nothing any more
        return;
    }
    const disk::CodeLocation code = disk::LocateCode(text);
    const std::string_view body =
        std::string_view(text).substr(std::min(code.codeOffset, text.size()));
    Fill(component, text, vb6::ScanDeclarations(body, code.firstCodeLine + 1), nullptr);
}

IndexedComponent WorkspaceIndex::Standalone(const fs::path& path,
                                            const std::vector<vb6::Declaration>& declarations,
                                            const TextDocument& text) const {
    IndexedComponent component;
    component.path = path;
    component.uri = UriFromPath(path);
    Fill(component, text.Text(), declarations, &text);
    return component;
}

const IndexedComponent* WorkspaceIndex::ComponentAt(const fs::path& path) const {
    const auto found = byPath_.find(disk::PathIdentity(path));
    return found == byPath_.end() ? nullptr : &components_[found->second];
}

std::vector<const IndexedComponent*> WorkspaceIndex::ProjectMates(
    const IndexedComponent& component) const {
    std::vector<const IndexedComponent*> mates;
    for (const IndexedComponent& other : components_) {
        const bool shares =
            std::any_of(other.projects.begin(), other.projects.end(),
                        [&](const std::string& p) { return component.projects.contains(p); });
        if (shares) mates.push_back(&other);
    }
    return mates;
}

}  // namespace arbolet::lsp
