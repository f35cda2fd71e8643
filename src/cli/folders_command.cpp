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

// The folders the project lists and those its components name: lower-cased name to the
// spelling first found.
std::map<std::string, std::string> CustomFolders(const env::VBProject& project) {
    std::map<std::string, std::string> folders;
    const auto add = [&](std::string_view name) {
        if (!name.empty()) folders.emplace(text::ToLower(name), std::string(name));
    };
    const std::string list = explorer::ProjectExplorer::ReadFolderList(project);
    std::size_t start = 0;
    for (std::size_t end = list.find(';'); end != std::string::npos; end = list.find(';', start)) {
        add(text::Trim(std::string_view(list).substr(start, end - start)));
        start = end + 1;
    }
    add(text::Trim(std::string_view(list).substr(start)));
    const auto components = project.VBComponents();
    for (std::int32_t i = 1; components && i <= components->Count(); ++i) {
        try {
            add(components->Item(i)->ReadProperty(explorer::kFolderProperty));
        } catch (const VbError&) {
        }
    }
    return folders;
}

// The custom folders in tree order, each with its components.
void ListFolders(CliContext& context, LoadedTree& loaded, const env::VBProject& project) {
    const auto custom = CustomFolders(project);
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

bool RefuseInvalidName(CliContext& context, LoadedTree& loaded, const std::string& name) {
    if (explorer::IsValidFolderName(name)) return false;
    loaded.ui.MsgBox("Not a valid folder name, please try again.",
                     explorer::MsgBoxIcon::Information, "Invalid Folder Name");
    context.Fail(kExitFindings);
    return true;
}

// Whether the tree shows a folder of that name (ignoring case): a custom folder or a fixed group.
bool IsShownFolder(LoadedTree& loaded, const env::VBProject& project, std::string_view name) {
    const tree::NodeRef projectNode =
        loaded.view.Nodes().Item(explorer::ProjectKey(project.Name()));
    for (tree::NodeRef folder = projectNode->Child(); folder; folder = folder->Next()) {
        if (text::ToLower(folder->Text()) == text::ToLower(name)) return true;
    }
    return false;
}

// A move to a folder that does not exist is most likely a typing mistake; it makes a new folder
// only when asked to.
bool RefuseUnknownTarget(CliContext& context, LoadedTree& loaded, const env::VBProject& project,
                         const FoldersOptions& options) {
    if (options.create || options.folder.empty() || explorer::IsFixedGroupName(options.folder) ||
        CustomFolders(project).contains(text::ToLower(options.folder)) ||
        IsShownFolder(loaded, project, options.folder)) {
        return false;
    }
    context.err << "arbolet: " << project.Name() << " has no folder named '" << options.folder
                << "'; give --create to make it\n";
    context.Fail(kExitFindings);
    return true;
}

// Renames the folder as an edit of its caption in the tree would; a fixed group's components
// move into a custom folder of the new name.
bool RenameFolder(CliContext& context, LoadedTree& loaded, env::VBProject& project,
                  const FoldersOptions& options) {
    const tree::NodeRef projectNode =
        loaded.view.Nodes().Item(explorer::ProjectKey(project.Name()));
    tree::NodeRef folder = projectNode->Child();
    while (folder && text::ToLower(folder->Text()) != text::ToLower(options.name))
        folder = folder->Next();
    if (!folder) {
        context.err << "arbolet: " << project.Name() << " has no folder named '" << options.name
                    << "'\n";
        context.Fail(kExitFindings);
        return false;
    }
    const auto existing = CustomFolders(project);
    const auto target = existing.find(text::ToLower(options.newName));
    const bool merges =
        text::ToLower(options.newName) != text::ToLower(options.name) &&
        (target != existing.end() || IsShownFolder(loaded, project, options.newName));
    if (!Report(context, loaded.ui, loaded.explorer.AfterLabelEdit(*folder, options.newName))) {
        return false;
    }
    if (merges) {
        context.err << "arbolet: '" << options.newName << "' already existed: the components of '"
                    << options.name << "' were merged into it\n";
    }
    return true;
}

// Runs the chosen change; false when it was refused.
bool Change(CliContext& context, LoadedTree& loaded, env::VBProject& project,
            const FoldersOptions& options) {
    if (options.rename->parsed()) {
        return RenameFolder(context, loaded, project, options);
    }
    if (options.add->parsed()) {
        return Report(context, loaded.ui, loaded.explorer.AddFolder(project, options.name));
    } else if (options.remove->parsed()) {
        // The folder is taken as it is spelt in the project, whatever the case typed. Removing
        // a fixed group would write an empty folder into every component of its kind.
        const auto folders = CustomFolders(project);
        const auto found = folders.find(text::ToLower(options.name));
        if (found == folders.end()) {
            context.err << "arbolet: '" << options.name << "' is not a custom folder of "
                        << project.Name() << '\n';
            context.Fail(kExitFindings);
            return false;
        }
        loaded.explorer.RemoveFolder(project, found->second);
    } else {
        env::VBComponentRef component;
        try {
            component = project.VBComponents()->Item(options.component);
        } catch (const VbError&) {
            context.err << "arbolet: " << project.Name() << " has no component named '"
                        << options.component << "'\n";
            context.Fail(kExitFindings);
            return false;
        }
        // An empty folder name takes the component back to the fixed group of its kind.
        if (!options.folder.empty() && RefuseInvalidName(context, loaded, options.folder)) {
            return false;
        }
        if (RefuseUnknownTarget(context, loaded, project, options)) return false;
        return Report(context, loaded.ui,
                      loaded.explorer.SetComponentFolder(*component, options.folder));
    }
    return true;
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
