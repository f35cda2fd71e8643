// The workspace: the .vbg and .vbp files found under the workspace folders, opened as one disk
// environment, and an index of the module-level symbols of every component (a component that
// two projects share is indexed once). Open documents replace their component's entry with what
// the editor holds.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "analysis/vb6_declarations.h"
#include "disk/disk_environment.h"
#include "lsp/text_document.h"

namespace arbolet::lsp {

struct IndexedSymbol {
    std::string name;
    std::string lowerName;
    analysis::vb6::DeclarationKind kind = analysis::vb6::DeclarationKind::Variable;
    int symbolKind = 13;
    bool isPublic = false;
    std::string container;  // the Type or Enum of a member
    std::int32_t line = 0;  // 0-based
    std::int32_t character = 0;
    std::int32_t endCharacter = 0;  // in the negotiated encoding
};

struct IndexedComponent {
    std::filesystem::path path;
    std::string uri;
    std::string name;
    std::string lowerName;
    int symbolKind = 2;              // Module, or Class for classes, forms and controls
    std::set<std::string> projects;  // the uris of the .vbp files that list it
    std::vector<IndexedSymbol> symbols;
};

// A problem of a project or group file, at a 0-based line.
struct ProjectProblem {
    std::int32_t line = 0;
    std::string message;
    bool error = false;
};

class WorkspaceIndex {
  public:
    // Finds the project and group files below the folders (hidden folders and node_modules
    // skipped), in a stable order.
    static std::vector<std::filesystem::path> FindProjectFiles(
        const std::vector<std::filesystem::path>& folders);

    // Opens the files and indexes every component; files that cannot be opened are left out
    // with a problem on them.
    void Load(const std::vector<std::filesystem::path>& projectFiles, int codePage,
              PositionEncoding encoding);

    // Re-indexes one component from the editor's text (or from disk when the editor closed it).
    void IndexText(const std::filesystem::path& path, const std::string& utf8Text,
                   const std::vector<analysis::vb6::Declaration>& declarations,
                   const TextDocument& text);
    void IndexFromDisk(const std::filesystem::path& path);
    // An entry for a document that no project lists, so that it still finds its own names.
    IndexedComponent Standalone(const std::filesystem::path& path,
                                const std::vector<analysis::vb6::Declaration>& declarations,
                                const TextDocument& text) const;

    const std::vector<IndexedComponent>& Components() const { return components_; }
    const IndexedComponent* ComponentAt(const std::filesystem::path& path) const;
    // The components that share a project with `component`, itself included.
    std::vector<const IndexedComponent*> ProjectMates(const IndexedComponent& component) const;
    // Problems per project or group file (by its uri); files without problems are listed too,
    // so that fixed ones get their diagnostics cleared.
    const std::map<std::string, std::vector<ProjectProblem>>& ProjectProblems() const {
        return problems_;
    }
    const std::vector<std::filesystem::path>& ProjectFiles() const { return projectFiles_; }
    std::shared_ptr<disk::DiskEnvironment> Environment() const { return environment_; }
    int CodePage() const { return codePage_; }

  private:
    void OpenEnvironment(std::vector<std::filesystem::path> files);
    void IndexEnvironment();
    IndexedComponent& Entry(const std::filesystem::path& path);
    void Fill(IndexedComponent& component, std::string_view utf8Text,
              const std::vector<analysis::vb6::Declaration>& declarations,
              const TextDocument* text) const;

    std::vector<std::filesystem::path> projectFiles_;
    std::shared_ptr<disk::DiskEnvironment> environment_;
    std::vector<IndexedComponent> components_;
    std::map<std::filesystem::path, std::size_t> byPath_;  // identity path -> component
    std::map<std::string, std::vector<ProjectProblem>> problems_;
    int codePage_ = disk::kDefaultCodePage;
    PositionEncoding encoding_ = PositionEncoding::Utf16;
};

}  // namespace arbolet::lsp
