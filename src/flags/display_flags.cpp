// The display-option flags (see display_flags.h).
#include "flags/display_flags.h"

#include <CLI/CLI.hpp>

namespace arbolet::flags {
namespace {

void AddHideFlag(CLI::App& command, const std::string& name, bool& show, const std::string& what) {
    command.add_flag_callback(
        name, [&show] { show = false; }, "Hide " + what);
}

}  // namespace

void AddDisplayFlags(CLI::App& command, analysis::DisplayOptions& options) {
    AddHideFlag(command, "--hide-variables", options.ShowVariables, "variable declarations");
    AddHideFlag(command, "--hide-constants", options.ShowConstants, "constant declarations");
    AddHideFlag(command, "--hide-compiler", options.ShowCompiler, "compiler directives");
    AddHideFlag(command, "--hide-enums", options.ShowEnums, "enumerations");
    AddHideFlag(command, "--hide-types", options.ShowTypes, "user-defined types");
    AddHideFlag(command, "--hide-section-ends", options.ShowSectionEnd, "the ends of blocks");
    command.add_flag_callback(
        "--sort-by-name", [&options] { options.SortByName = true; },
        "Sort the declarations and procedures by name");
}

}  // namespace arbolet::flags
