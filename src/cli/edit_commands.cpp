// `arbolet rename` and `arbolet add`: renaming a component and adding files to a project, as an
// edit of a caption and a drop of files onto the tree do it, saved to the project's files.
#include <CLI/CLI.hpp>

#include "base/vb_error.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/project_loading.h"

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

// The tree traps the environment's errors, so the reason for a refused name is asked of the
// same rule the environment applies.
void ExplainRefusedName(CliContext& context, const env::VBProject& project,
                        const RenameOptions& options) {
    const auto components = project.VBComponents();
    std::string why = "the name was refused";
    try {
        const env::VBComponentRef component = components->Item(options.component);
        env::CheckComponentName(*components, options.newName, component.get());
    } catch (const VbError& error) {
        why = error.Description;
    }
    context.err << "arbolet: " << project.Name() << " does not take '" << options.newName
                << "' as a component name: " << why << "\n";
}

void RunRename(CliContext& context, const RenameOptions& options) {
    auto environment = OpenOneProject(options.project, "rename", context);
    if (!environment) return;
    LoadedTree loaded(environment, context);
    const env::VBProjectRef project = environment->VBProjects()->Item(1);
    std::string key;
    try {
        const auto component = project->VBComponents()->Item(options.component);
        key = explorer::ComponentKey(explorer::ComponentDisplayName(*component), project->Name());
    } catch (const VbError&) {
    }
    if (key.empty() || !loaded.view.Nodes().Exists(key)) {
        context.err << "arbolet: " << project->Name() << " has no component named '"
                    << options.component << "'\n";
        context.Fail(kExitFindings);
        return;
    }
    const explorer::Outcome outcome =
        loaded.explorer.AfterLabelEdit(*loaded.view.Nodes().Item(key), options.newName);
    if (!outcome.done()) ExplainRefusedName(context, *project, options);
    FinishChange(context, loaded, outcome);
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
