// Opening projects for the commands (see project_loading.h).
#include "cli/project_loading.h"

#include "base/utf8.h"
#include "base/vb_error.h"
#include "cli/cli_context.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"
#include "explorer/project_edits.h"

namespace arbolet::cli {

void PrintWarning(CliContext& context, const disk::LoadWarning& warning) {
    context.err << (warning.line > 0
                        ? warning.file + ":" + std::to_string(warning.line) + ": warning: "
                        : warning.file + ": warning: ")
                << warning.message << '\n';
}

std::shared_ptr<disk::DiskEnvironment> OpenProjects(const std::vector<std::string>& paths,
                                                    CliContext& context) {
    std::vector<std::filesystem::path> files;
    for (const auto& path : paths)
        files.push_back(disk::PathFromUtf8(path));
    try {
        auto environment = disk::DiskEnvironment::Open(files, context.codePage);
        for (const auto& warning : environment->Warnings())
            PrintWarning(context, warning);
        return environment;
    } catch (const disk::FileError& error) {
        context.err << "arbolet: " << error.what() << '\n';
        context.Fail(kExitUsage);
        return nullptr;
    }
}

bool SaveChanges(CliContext& context, disk::DiskEnvironment& environment) {
    const auto changed = environment.ChangedFiles();
    try {
        environment.Save();
    } catch (const disk::FileError& error) {
        context.err << "arbolet: " << error.what() << '\n';
        context.Fail(kExitUsage);
        return false;
    }
    for (const auto& file : changed) {
        context.err << "arbolet: wrote " << ShownPath(file) << '\n';
    }
    return true;
}

std::shared_ptr<disk::DiskEnvironment> OpenOneProject(const std::string& path,
                                                      const std::string& command,
                                                      CliContext& context) {
    if (text::ToLower(disk::PathToUtf8(disk::PathFromUtf8(path).extension())) != ".vbp") {
        context.err << "arbolet: " << command << " works on one .vbp project, not " << path << '\n';
        context.Fail(kExitUsage);
        return nullptr;
    }
    return OpenProjects({path}, context);
}

bool Report(CliContext& context, const TerminalUi& ui, const explorer::Outcome& outcome) {
    if (outcome.done()) return true;
    const bool failed = outcome.status() == explorer::Outcome::Status::Failed;
    if (!outcome.message().empty() && outcome.message() != ui.LastMessage()) {
        context.err << "arbolet: " << outcome.message() << '\n';
    }
    context.Fail(failed ? kExitUsage : kExitFindings);
    return false;
}

tree::NodeRef ComponentNode(CliContext& context, LoadedTree& loaded, const env::VBProject& project,
                            const std::string& name) {
    explorer::EditContext edits{loaded.explorer, loaded.view, loaded.ui};
    if (tree::NodeRef node = explorer::ComponentNodeNamed(edits, project, name)) return node;
    context.err << "arbolet: " << explorer::NoSuchComponentMessage(project, name) << '\n';
    context.Fail(kExitFindings);
    return nullptr;
}

LoadedTree::LoadedTree(std::shared_ptr<disk::DiskEnvironment> projects, CliContext& context,
                       analysis::IDisplayOptionSource* displayOptions)
    : environment(std::move(projects)),
      ui(context.err),
      explorer(environment, view, ui, displayOptions) {
    explorer.RefreshProjects();
}

}  // namespace arbolet::cli
