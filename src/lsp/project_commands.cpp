// workspace/executeCommand: the folder and rename commands of the project tree, run by the
// explorer's shared edits on the project as it is on disk, and saved atomically unless a file
// they would write has unsaved changes in the editor.
#include <vector>

#include "base/utf8.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"
#include "explorer/project_edits.h"
#include "lsp/project_features.h"
#include "treemodel/memory_tree.h"

namespace arbolet::lsp {
namespace {

namespace fs = std::filesystem;

// A refusal's message box is the refusal's message, which goes back as the error.
class QuietUi final : public explorer::UiServices {
  public:
    void MsgBox(std::string_view, explorer::MsgBoxIcon, std::string_view) override {}
    std::string InputBox(std::string_view, std::string_view, std::string_view) override {
        return {};
    }
    void Beep() override {}
};

std::vector<std::string> StringArguments(const std::string& command, const Json& arguments,
                                         std::size_t count) {
    if (!arguments.is_array() || arguments.size() != count) {
        throw RequestError(error_code::kInvalidParams,
                           command + " takes " + std::to_string(count) + " arguments");
    }
    std::vector<std::string> values;
    for (const Json& argument : arguments) {
        if (!argument.is_string()) {
            throw RequestError(error_code::kInvalidParams, command + " takes string arguments");
        }
        values.push_back(argument.get<std::string>());
    }
    return values;
}

std::size_t ArgumentCount(const std::string& command) {
    if (command == "arbolet.folders.add" || command == "arbolet.folders.remove") return 2;
    if (command == "arbolet.folders.rename" || command == "arbolet.folders.move" ||
        command == "arbolet.rename") {
        return 3;
    }
    throw RequestError(error_code::kInvalidParams, "unknown command " + command);
}

explorer::Outcome Run(const std::string& command, const std::vector<std::string>& arguments,
                      explorer::EditContext& edits, env::VBProject& project) {
    if (command == "arbolet.folders.add") {
        return explorer::AddFolderNamed(edits, project, arguments[1]);
    }
    if (command == "arbolet.folders.remove") {
        return explorer::RemoveFolderNamed(edits, project, arguments[1]);
    }
    if (command == "arbolet.folders.rename") {
        bool merged = false;
        return explorer::RenameFolderNamed(edits, project, arguments[1], arguments[2], merged);
    }
    if (command == "arbolet.folders.move") {
        // The tree offers only folders that exist; a name typed into a prompt makes one.
        return explorer::MoveComponentNamed(edits, project, arguments[1], arguments[2], true);
    }
    return explorer::RenameComponentNamed(edits, project, arguments[1], arguments[2]);
}

}  // namespace

fs::path RunProjectCommand(const std::string& command, const Json& argumentsJson, int codePage,
                           const WriteGuard& mayWrite) {
    const std::vector<std::string> arguments =
        StringArguments(command, argumentsJson, ArgumentCount(command));
    const auto projectFile = PathFromUri(arguments[0]);
    if (!projectFile || !disk::HasExtension(*projectFile, ".vbp")) {
        throw RequestError(error_code::kInvalidParams,
                           command + " works on one .vbp project, not " + arguments[0]);
    }
    std::shared_ptr<disk::DiskEnvironment> environment;
    try {
        environment = disk::DiskEnvironment::Open({*projectFile}, codePage);
    } catch (const disk::FileError& error) {
        throw RequestError(error_code::kRequestFailed, error.what());
    }
    tree::MemoryTreeView view;
    QuietUi ui;
    explorer::ProjectExplorer explorer(environment, view, ui);
    explorer.RefreshProjects();
    explorer::EditContext edits{explorer, view, ui};
    const env::VBProjectRef project = environment->VBProjects()->Item(1);
    const explorer::Outcome outcome = Run(command, arguments, edits, *project);
    if (!outcome.done()) {
        throw RequestError(error_code::kRequestFailed, outcome.message().empty()
                                                           ? command + " was refused"
                                                           : outcome.message());
    }
    if (const auto refusal = mayWrite(environment->ChangedFiles())) {
        throw RequestError(error_code::kRequestFailed, *refusal);
    }
    try {
        environment->Save();
    } catch (const disk::FileError& error) {
        throw RequestError(error_code::kRequestFailed, error.what());
    }
    return *projectFile;
}

}  // namespace arbolet::lsp
