// `arbolet new`, `arbolet remove` and `arbolet startup`: the tree's menu commands Add, Remove and
// Set As Start Up run through the dispatcher over projects on disk, then saved.
#include <CLI/CLI.hpp>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/project_loading.h"
#include "cli/terminal_front_end.h"
#include "commands/dispatcher.h"
#include "disk/vb_path.h"

namespace arbolet::cli {
namespace {

struct NewOptions {
    std::string project;
    std::string kind;
    std::string name;
};

struct RemoveOptions {
    std::string project;
    std::string component;
};

struct StartupOptions {
    std::string group;
    std::string project;
};

// The dispatcher's add command for each kind, with the rule that disables it.
struct AddKind {
    const char* word;
    const char* key;
    const char* rule;
};
constexpr AddKind kAddKinds[] = {
    {"form", "AddForm", ""},
    {"mdiform", "AddMDIForm", "a project holds one MDI form at most"},
    {"module", "AddModule", ""},
    {"class", "AddClass", ""},
    {"usercontrol", "AddUserControl", ""},
    {"propertypage", "AddPropertyPage", ""},
    {"userdocument", "AddUserDocument", "user documents belong in ActiveX EXE and DLL projects"},
};

// The explorer over the opened projects with the dispatcher and the terminal's front end.
struct CommandSession {
    CommandSession(std::shared_ptr<disk::DiskEnvironment> projects, CliContext& context)
        : loaded(std::move(projects), context),
          frontEnd(context.out, context.err, context.codePage),
          dispatcher(loaded.environment, loaded.view, loaded.explorer, loaded.ui, frontEnd) {}

    LoadedTree loaded;
    TerminalFrontEnd frontEnd;
    commands::Dispatcher dispatcher;
};

// Saves what the command did; a refusal or failure saves nothing, as nothing was done.
void Finish(CliContext& context, CommandSession& session, const explorer::Outcome& outcome) {
    if (!Report(context, session.loaded.ui, outcome)) return;
    SaveChanges(context, *session.loaded.environment);
}

void RunNew(CliContext& context, const NewOptions& options) {
    auto environment = OpenOneProject(options.project, "new", context);
    if (!environment) return;
    const AddKind* kind = nullptr;
    for (const AddKind& candidate : kAddKinds) {
        if (options.kind == candidate.word) kind = &candidate;
    }
    if (!kind) return;  // the parser checks the word
    CommandSession session(environment, context);
    const env::VBProjectRef project = environment->VBProjects()->Item(1);
    const auto components = project->VBComponents();
    if (!options.name.empty()) {
        // The IDE's own rule on names, with its reason, before anything is written.
        try {
            env::CheckComponentName(*components, options.name, nullptr);
        } catch (const VbError& error) {
            context.err << "arbolet: " << project->Name() << " does not take '" << options.name
                        << "' as a component name: " << error.Description << '\n';
            context.Fail(kExitFindings);
            return;
        }
        environment->SetNextComponentName(options.name);
    }
    const std::int32_t before = components->Count();
    const explorer::Outcome outcome =
        session.dispatcher.Run(kind->key, 0, explorer::ProjectKey(project->Name()));
    if (!Report(context, session.loaded.ui, outcome)) {
        if (*kind->rule != '\0') context.err << "arbolet: " << kind->rule << '\n';
        return;
    }
    if (components->Count() == before) return;
    const env::VBComponentRef added = components->Item(components->Count());
    const std::filesystem::path file = disk::PathFromUtf8(added->FileNames(1));
    if (!SaveChanges(context, *environment)) {
        // The project does not list it, so the new file would only be litter.
        std::error_code ec;
        std::filesystem::remove(file, ec);
        return;
    }
    context.out << "added " << added->Name() << " (" << ShownPath(file) << ")\n";
}

void RunRemove(CliContext& context, const RemoveOptions& options) {
    auto environment = OpenOneProject(options.project, "remove", context);
    if (!environment) return;
    CommandSession session(environment, context);
    const env::VBProjectRef project = environment->VBProjects()->Item(1);
    const tree::NodeRef node = ComponentNode(context, session.loaded, *project, options.component);
    if (!node) return;
    const std::string name = node->Text();
    const std::string key = node->Key();
    const std::string startup = disk::StartupObject(*project);
    const explorer::Outcome outcome = session.dispatcher.Run("Remove", node->Index());
    if (!Report(context, session.loaded.ui, outcome)) return;
    if (session.loaded.view.Nodes().Exists(key)) {
        // Success is said only of a change that happened.
        context.err << "arbolet: " << name << " is still part of " << project->Name()
                    << "; nothing was saved\n";
        context.Fail(kExitUsage);
        return;
    }
    if (!SaveChanges(context, *environment)) return;
    context.out << "removed " << name << " from " << project->Name() << " (its files stay)\n";
    if (const std::string now = disk::StartupObject(*project); now != startup) {
        context.out << (now == "Sub Main" ? "the project now starts with Sub Main"
                                          : "the project now has no start-up object")
                    << " (it started with " << startup << ")\n";
    }
}

void RunStartup(CliContext& context, const StartupOptions& options) {
    const auto extension =
        text::ToLower(disk::PathToUtf8(disk::PathFromUtf8(options.group).extension()));
    if (extension != ".vbg") {
        context.err << "arbolet: startup works on a .vbg group; a project on its own has no "
                       "group file to record its start-up project in\n";
        context.Fail(kExitUsage);
        return;
    }
    auto environment = OpenProjects({options.group}, context);
    if (!environment) return;
    CommandSession session(environment, context);
    const std::string key = explorer::ProjectKey(options.project);
    env::VBProjectRef project;
    try {
        project = environment->VBProjects()->Item(options.project);
    } catch (const VbError&) {
    }
    if (!project || !session.loaded.view.Nodes().Exists(explorer::ProjectKey(project->Name()))) {
        context.err << "arbolet: the group has no project named '" << options.project << "'\n";
        context.Fail(kExitFindings);
        return;
    }
    const std::int32_t index =
        session.loaded.view.Nodes().Item(explorer::ProjectKey(project->Name()))->Index();
    const explorer::Outcome outcome = session.dispatcher.Run("ProjectSetStartup", index);
    if (outcome.done()) {
        if (environment->ChangedFiles().empty()) {
            context.out << project->Name() << " is the start-up project already\n";
        } else {
            context.out << project->Name() << " is now the start-up project\n";
        }
    }
    Finish(context, session, outcome);
}

}  // namespace

void AddComponentCommands(CLI::App& app, CliContext& context) {
    auto create = std::make_shared<NewOptions>();
    CLI::App* newCommand = app.add_subcommand(
        "new",
        "Add a new component as the Project menu does: a file beside the project with "
        "the IDE's default name (or NAME), and its project entry");
    newCommand->add_option("project", create->project, "The .vbp project")->required();
    newCommand
        ->add_option("kind", create->kind,
                     "form, mdiform, module, class, usercontrol, propertypage or userdocument")
        ->required()
        ->check(CLI::IsMember(
            {"form", "mdiform", "module", "class", "usercontrol", "propertypage", "userdocument"}));
    newCommand->add_option("name", create->name, "Component name (default: Form1, Module1, ...)");
    newCommand->callback([&context, create] { RunNew(context, *create); });

    auto remove = std::make_shared<RemoveOptions>();
    CLI::App* removeCommand =
        app.add_subcommand("remove", "Take a component out of its project; its files stay on disk");
    removeCommand->add_option("project", remove->project, "The .vbp project")->required();
    removeCommand->add_option("component", remove->component, "Component name")->required();
    removeCommand->callback([&context, remove] { RunRemove(context, *remove); });

    auto startup = std::make_shared<StartupOptions>();
    CLI::App* startupCommand = app.add_subcommand(
        "startup", "Make a project of a group its start-up project (StartupProject= in the .vbg)");
    startupCommand->add_option("group", startup->group, "The .vbg group")->required();
    startupCommand->add_option("project", startup->project, "Project name")->required();
    startupCommand->callback([&context, startup] { RunStartup(context, *startup); });
}

}  // namespace arbolet::cli
