// Registration of the subcommands on the command-line parser.
#pragma once

namespace CLI {
class App;
}

namespace arbolet::cli {

struct CliContext;

void AddCodeCommand(CLI::App& app, CliContext& context);
void AddCheckCommand(CLI::App& app, CliContext& context);
void AddMetricsCommand(CLI::App& app, CliContext& context);
void AddTreeCommand(CLI::App& app, CliContext& context);
void AddFoldersCommand(CLI::App& app, CliContext& context);
void AddRenameCommand(CLI::App& app, CliContext& context);
void AddAddCommand(CLI::App& app, CliContext& context);
void AddComponentCommands(CLI::App& app, CliContext& context);
void AddLspCommand(CLI::App& app, CliContext& context);

}  // namespace arbolet::cli
