// `arbolet rename` and `arbolet add`: renaming a component and adding files to a project, as an
// edit of a caption and a drop of files onto the tree do it, saved to the project's files.
#include <CLI/CLI.hpp>

#include "base/vb_error.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/project_loading.h"
#include "explorer/project_edits.h"

namespace arbolet::cli {
namespace {

struct RenameOptions {
    std::string project;
    std::string component;
    std::string newName;
};

struct AddOptions {
    std::string project;
    std::vector<std::string> files;
};

// Whatever was done is saved, also when a later file of the same command was refused.
void FinishChange(CliContext& context, LoadedTree& loaded, const explorer::Outcome& outcome) {
    Report(context, loaded.ui, outcome);
    SaveChanges(context, *loaded.environment);
}

void RunRename(CliContext& context, const RenameOptions& options) {
    auto environment = OpenOneProject(options.project, "rename", context);
    if (!environment) return;
    LoadedTree loaded(environment, context);
    const env::VBProjectRef project = environment->VBProjects()->Item(1);
    explorer::EditContext edits{loaded.explorer, loaded.view, loaded.ui};
    FinishChange(
        context, loaded,
        explorer::RenameComponentNamed(edits, *project, options.component, options.newName));
}

void RunAdd(CliContext& context, const AddOptions& options) {
    auto environment = OpenOneProject(options.project, "add", context);
    if (!environment) return;
    LoadedTree loaded(environment, context);
    const env::VBProjectRef project = environment->VBProjects()->Item(1);
    const tree::NodeRef projectNode =
        loaded.view.Nodes().Item(explorer::ProjectKey(project->Name()));
    FinishChange(context, loaded, loaded.explorer.DropFiles(options.files, *projectNode));
}

}  // namespace

void AddRenameCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<RenameOptions>();
    CLI::App* command = app.add_subcommand(
        "rename", "Rename a component: its VB_Name and its project entry; the file keeps its name");
    command->add_option("project", options->project, "The .vbp project")->required();
    command->add_option("component", options->component, "Component name")->required();
    command->add_option("name", options->newName, "New name")->required();
    command->callback([&context, options] { RunRename(context, *options); });
}

void AddAddCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<AddOptions>();
    CLI::App* command = app.add_subcommand(
        "add",
        "Add component files to a project; a companion file (.frx, .ctx, ...) adds its "
        "component file");
    command->add_option("project", options->project, "The .vbp project")->required();
    command->add_option("files", options->files, "Files to add")->required();
    command->callback([&context, options] { RunAdd(context, *options); });
}

}  // namespace arbolet::cli
