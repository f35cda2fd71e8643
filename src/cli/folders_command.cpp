// `arbolet folders`: the custom folders of a project and the components in each; adding and
// removing folders and moving components, saved to the project's files.
#include <CLI/CLI.hpp>
#include <map>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/project_loading.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"
#include "explorer/project_edits.h"

namespace arbolet::cli {
namespace {

struct FoldersOptions {
    std::string project;
    std::string name;       // add, remove
    std::string component;  // move
    std::string folder;     // move
    std::string newName;    // rename
    bool create = false;    // move: a new folder may be made
    CLI::App* add = nullptr;
    CLI::App* rename = nullptr;
    CLI::App* remove = nullptr;
    CLI::App* move = nullptr;
};

explorer::EditContext EditsOf(LoadedTree& loaded) {
    return {loaded.explorer, loaded.view, loaded.ui};
}

// The custom folders in tree order, each with its components.
void ListFolders(CliContext& context, LoadedTree& loaded, const env::VBProject& project) {
    const auto custom = explorer::CustomFolders(project);
    const tree::NodeRef projectNode =
        loaded.view.Nodes().Item(explorer::ProjectKey(project.Name()));
    bool any = false;
    for (tree::NodeRef folder = projectNode->Child(); folder; folder = folder->Next()) {
        if (!custom.contains(text::ToLower(folder->Text()))) continue;
        any = true;
        context.out << folder->Text() << (folder->Children() == 0 ? " (empty)" : "") << '\n';
        for (tree::NodeRef component = folder->Child(); component; component = component->Next()) {
            context.out << "  " << component->Text() << '\n';
        }
    }
    if (!any) context.out << "(no custom folders)\n";
}

// Renames the folder as an edit of its caption in the tree would; a fixed group's components
// move into a custom folder of the new name.
bool RenameFolder(CliContext& context, LoadedTree& loaded, env::VBProject& project,
                  const FoldersOptions& options) {
    auto edits = EditsOf(loaded);
    bool merged = false;
    if (!Report(
            context, loaded.ui,
            explorer::RenameFolderNamed(edits, project, options.name, options.newName, merged))) {
        return false;
    }
    if (merged) {
        context.err << "arbolet: '" << options.newName << "' already existed: the components of '"
                    << options.name << "' were merged into it\n";
    }
    return true;
}

// Runs the chosen change; false when it was refused.
bool Change(CliContext& context, LoadedTree& loaded, env::VBProject& project,
            const FoldersOptions& options) {
    auto edits = EditsOf(loaded);
    if (options.rename->parsed()) return RenameFolder(context, loaded, project, options);
    if (options.add->parsed()) {
        return Report(context, loaded.ui, explorer::AddFolderNamed(edits, project, options.name));
    }
    if (options.remove->parsed()) {
        return Report(context, loaded.ui,
                      explorer::RemoveFolderNamed(edits, project, options.name));
    }
    explorer::Outcome outcome = explorer::MoveComponentNamed(edits, project, options.component,
                                                             options.folder, options.create);
    if (outcome.message() == explorer::NoSuchFolderMessage(project, options.folder)) {
        outcome = explorer::Outcome::Refused(outcome.message() + "; give --create to make it");
    }
    return Report(context, loaded.ui, outcome);
}

void RunFolders(CliContext& context, const FoldersOptions& options) {
    auto environment = OpenOneProject(options.project, "folders", context);
    if (!environment) return;
    LoadedTree loaded(environment, context);
    const env::VBProjectRef project = environment->VBProjects()->Item(1);
    const bool changing = options.add->parsed() || options.remove->parsed() ||
                          options.move->parsed() || options.rename->parsed();
    if (changing) {
        if (!Change(context, loaded, *project, options)) return;
        if (!SaveChanges(context, *environment)) return;
        loaded.explorer.RefreshProjects();
    }
    ListFolders(context, loaded, *project);
}

}  // namespace

void AddFoldersCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<FoldersOptions>();
    CLI::App* command = app.add_subcommand(
        "folders", "List a project's custom folders and their components, or change them");
    command->add_option("project", options->project, "The .vbp project")->required();
    command->require_subcommand(0, 1);
    options->add = command->add_subcommand("add", "Add a custom folder");
    options->add->add_option("name", options->name, "Folder name")->required();
    options->remove = command->add_subcommand(
        "remove", "Remove a custom folder; its components go back to their fixed groups");
    options->remove->add_option("name", options->name, "Folder name")->required();
    options->move = command->add_subcommand(
        "move", "Put a component in a folder (\"\" for the fixed group of its kind)");
    options->move->add_option("component", options->component, "Component name")->required();
    options->move->add_option("folder", options->folder, "Folder name")->required();
    options->move->add_flag("--create", options->create,
                            "Make the folder when the project has none of that name");
    options->rename = command->add_subcommand(
        "rename",
        "Rename a folder; renaming a fixed group moves its components into a custom "
        "folder of the new name");
    options->rename->add_option("old", options->name, "Folder name")->required();
    options->rename->add_option("new", options->newName, "New folder name")->required();
    command->callback([&context, options] { RunFolders(context, *options); });
}

}  // namespace arbolet::cli
