// The arbolet command line (see cli.h).
#include "cli/cli.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "arbolet/version.h"

#include "cli/cli_context.h"
#include "cli/commands.h"

namespace arbolet::cli {
namespace {

constexpr const char* kVersion = "arbolet " ARBOLET_VERSION_TEXT;

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

// --color always|never overrides what the terminal suggests; auto keeps it.
void AddColourOption(CLI::App& app, CliContext& context, bool terminalColour) {
    app.add_option_function<std::string>(
           "--color",
           [&context, terminalColour](const std::string& mode) {
               context.colour = mode == "always" || (mode == "auto" && terminalColour);
           },
           "Colours and bold: auto (on a terminal that takes them, NO_COLOR unset, TERM not "
           "dumb), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
}

// The first word that is no option when it names no subcommand: the parser would only say that
// a subcommand is required.
std::optional<std::string> UnknownSubcommand(const CLI::App& app, int argc,
                                             const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--codepage" || word == "--color") {
            ++i;  // its value
            continue;
        }
        if (word.starts_with("-")) continue;
        for (const CLI::App* command : app.get_subcommands({})) {
            if (command->get_name() == word) return std::nullopt;
        }
        return std::string(word);
    }
    return std::nullopt;
}

}  // namespace

int RunArbolet(int argc, const char* const* argv, Terminal terminal) {
    CliContext context{terminal.out, terminal.err, terminal.colour, terminal.depth};
    CLI::App app{"Arbolet: logic-flow trees and block checks for Visual Basic 6 projects",
                 "arbolet"};
    app.set_version_flag("--version", kVersion);
    // CLI11 reads "/name" as an option on Windows, which turns a root-relative path such as
    // /projects/App.vbp into an unknown option. Arbolet's options are only ever "--name".
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.fallthrough();
    AddCodePageOption(app, context);
    AddColourOption(app, context, terminal.colour);
    AddCodeCommand(app, context);
    AddCheckCommand(app, context);
    AddTreeCommand(app, context);
    AddFoldersCommand(app, context);
    AddRenameCommand(app, context);
    AddAddCommand(app, context);
    AddComponentCommands(app, context);
    AddMetricsCommand(app, context);
    AddLspCommand(app, context);
    if (const auto unknown = UnknownSubcommand(app, argc, argv)) {
        terminal.err << "arbolet: unknown subcommand '" << *unknown << "'; the subcommands are";
        const char* separator = " ";
        for (const CLI::App* command : app.get_subcommands({})) {
            terminal.err << separator << command->get_name();
            separator = ", ";
        }
        terminal.err << " (arbolet --help tells more)\n";
        return kExitUsage;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int status = app.exit(error, terminal.out, terminal.err);
        return status == 0 ? kExitSuccess : kExitUsage;
    }
    return context.exitCode;
}

}  // namespace arbolet::cli
