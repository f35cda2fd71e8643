// Opening the projects a command names and building their tree, with the load warnings on the
// error stream: what `tree`, `folders` and `check` share.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/terminal_ui.h"
#include "disk/disk_environment.h"
#include "disk/vb_path.h"
#include "explorer/project_explorer.h"
#include "treemodel/memory_tree.h"

namespace arbolet::cli {

struct CliContext;

// "file:line: warning: message" on the error stream, as compilers write it.
void PrintWarning(CliContext& context, const disk::LoadWarning& warning);

// Opens .vbp and .vbg files; nullptr (reported, exit status 2) when one cannot be opened.
std::shared_ptr<disk::DiskEnvironment> OpenProjects(const std::vector<std::string>& paths,
                                                    CliContext& context);

using disk::ShownPath;

// Saves every changed file, naming each on the error stream; false (reported, exit status 2) when
// the save was refused and nothing was written.
bool SaveChanges(CliContext& context, disk::DiskEnvironment& environment);

// Opens exactly one .vbp project; nullptr (reported, exit status 2) otherwise.
std::shared_ptr<disk::DiskEnvironment> OpenOneProject(const std::string& path,
                                                      const std::string& command,
                                                      CliContext& context);

// Sets the exit status from an explorer outcome: a refusal is 1, a failure 2. Its message is
// printed unless the dialog on the terminal just showed it.
bool Report(CliContext& context, const TerminalUi& ui, const explorer::Outcome& outcome);

struct LoadedTree;

// The tree node of the project's component named `name` (ignoring case); nullptr, reported with
// exit status 1, when the project has none.
tree::NodeRef ComponentNode(CliContext& context, LoadedTree& loaded, const env::VBProject& project,
                            const std::string& name);

// The explorer over opened projects, with the tree built.
struct LoadedTree {
    LoadedTree(std::shared_ptr<disk::DiskEnvironment> projects, CliContext& context,
               analysis::IDisplayOptionSource* displayOptions = nullptr);

    std::shared_ptr<disk::DiskEnvironment> environment;
    tree::MemoryTreeView view;
    TerminalUi ui;
    explorer::ProjectExplorer explorer;
};

}  // namespace arbolet::cli
