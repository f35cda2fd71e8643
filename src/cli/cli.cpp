// The arbolet command line (see cli.h).
#include "cli/cli.h"

#include <CLI/CLI.hpp>

#include "cli/cli_context.h"
#include "cli/commands.h"

namespace arbolet::cli {
namespace {

constexpr const char* kVersion = "arbolet 0.1.0";

void AddCodePageOption(CLI::App& app, CliContext& context) {
    app.add_option("--codepage", context.codePage,
                   "ANSI code page of the VB6 files (default 1252; e.g. 1251, 1253, 932)")
        ->check([](const std::string& value) -> std::string {
            try {
                if (disk::IsSupportedCodePage(std::stoi(value))) return {};
            } catch (const std::exception&) {
            }
            return "unsupported code page " + value;
        });
}

}  // namespace

int RunArbolet(int argc, const char* const* argv, Terminal terminal) {
    CliContext context{terminal.out, terminal.err, terminal.colour};
    CLI::App app{"Arbolet: logic-flow trees and block checks for Visual Basic 6 projects",
                 "arbolet"};
    app.set_version_flag("--version", kVersion);
    app.require_subcommand(1);
    app.fallthrough();
    AddCodePageOption(app, context);
    AddCodeCommand(app, context);
    AddCheckCommand(app, context);
    AddTreeCommand(app, context);
    AddFoldersCommand(app, context);
    AddRenameCommand(app, context);
    AddAddCommand(app, context);
    AddComponentCommands(app, context);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int status = app.exit(error, terminal.out, terminal.err);
        return status == 0 ? kExitSuccess : kExitUsage;
    }
    return context.exitCode;
}

}  // namespace arbolet::cli
