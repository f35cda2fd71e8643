// `arbolet lsp`: the language server on standard input and output, for editors.
#include <CLI/CLI.hpp>

#include "cli/cli_context.h"
#include "cli/commands.h"
#include "lsp/stdio_server.h"

namespace arbolet::cli {

void AddLspCommand(CLI::App& app, CliContext& context) {
    CLI::App* command = app.add_subcommand(
        "lsp",
        "Run the language server over standard input and output (LSP 3.17): diagnostics, "
        "outline, folding, matching blocks, workspace symbols, definitions, the project tree");
    // Many clients name the transport on the command line; standard input and output is the only
    // one, so the flag is taken and changes nothing.
    command->add_flag("--stdio")->description(
        "Talk over standard input and output (the default and only way)");
    command->callback([&context] { context.exitCode = lsp::RunStdioServer(); });
}

}  // namespace arbolet::cli
