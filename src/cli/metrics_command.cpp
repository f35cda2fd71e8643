// `arbolet metrics`: lines of code, deepest nesting and cyclomatic complexity of every procedure
// of component files, folders and projects, with totals per component and per project.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "check/check_metrics.h"
#include "check/check_targets.h"
#include "check/check_text.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/metrics_format.h"
#include "disk/component_file.h"
#include "disk/vb_path.h"

namespace arbolet::cli {
namespace {

constexpr const char* kMetricsHelp = R"(Inputs: as for `arbolet check` (files, folders, .vbp, .vbg).

Figures of each procedure:
  LINES       lines of code: its lines from the header to its end, less blank and comment lines
  NESTING     its deepest block (If, Select Case, loops, With, #If); the procedure is depth 0
  COMPLEXITY  1, plus one per If, ElseIf, loop, Case (not Case Else), And and Or in a
              condition, and On Error GoTo to a label

Exit status: 0 measured; 2 usage error or a file that cannot be read.)";

struct MetricsOptions {
    std::vector<std::string> paths;
    std::vector<std::string> exclusions;
    std::string format = "text";
    std::string sort;
    std::size_t top = 0;
};

check::FigureOrder OrderOf(const std::string& sort) {
    if (sort == "complexity") return check::FigureOrder::Complexity;
    if (sort == "nesting") return check::FigureOrder::Nesting;
    if (sort == "lines") return check::FigureOrder::Lines;
    return check::FigureOrder::Source;
}

// Problems of the paths (missing files, unreadable folders) go to the error stream; a file
// that cannot be measured sets exit status 2.
void ReportProblems(CliContext& context, const check::CheckTargets& targets) {
    for (const auto& f : targets.problems.findings) {
        context.err << "arbolet: " << check::ShownText(f.path);
        if (f.line > 0) context.err << ':' << f.line;
        context.err << ": " << f.severity << ": " << check::ShownText(f.message) << '\n';
    }
    if (targets.problems.unreadable) context.Fail(kExitUsage);
    for (const auto& exclusion : targets.unusedExclusions) {
        context.err << "arbolet: warning: --exclude " << check::ShownText(exclusion)
                    << " matches nothing\n";
    }
}

void RunMetrics(CliContext& context, const MetricsOptions& options) {
    const check::CheckTargets targets =
        check::CollectCheckTargets(options.paths, options.exclusions, context.codePage);
    ReportProblems(context, targets);
    MetricsReport report;
    for (const auto& target : targets.files) {
        if (!disk::IsComponentFileName(disk::PathToUtf8(target.path.filename()))) {
            context.err << "arbolet: " << check::ShownText(target.shown)
                        << ": not a component file (.bas .cls .frm .ctl .pag .dob .dsr), a .vbp "
                           "project, a .vbg group or a folder\n";
            context.Fail(kExitUsage);
            continue;
        }
        check::ComponentFigures figures =
            check::MeasureComponentFile(target.path, target.shown, context.codePage);
        figures.project = target.project;
        if (!figures.error.empty()) {
            context.err << "arbolet: " << check::ShownText(target.shown) << ": "
                        << check::ShownText(figures.error) << '\n';
            context.Fail(kExitUsage);
        }
        report.procedures.insert(report.procedures.end(), figures.procedures.begin(),
                                 figures.procedures.end());
        report.components.push_back(std::move(figures));
    }
    check::SortProcedures(report.procedures, OrderOf(options.sort));
    if (options.top > 0 && report.procedures.size() > options.top)
        report.procedures.resize(options.top);
    if (options.format == "json") {
        WriteMetricsJson(context.out, report);
    } else if (options.format == "csv") {
        WriteMetricsCsv(context.out, report);
    } else {
        WriteMetricsText(context.out, report, TerminalWidth(1).value_or(SIZE_MAX));
    }
}

}  // namespace

void AddMetricsCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<MetricsOptions>();
    CLI::App* command = app.add_subcommand(
        "metrics", "Lines of code, nesting and complexity of every procedure, with totals");
    command->footer(kMetricsHelp);
    command->add_option("paths", options->paths, "Component files, folders, .vbp or .vbg files")
        ->required();
    command->add_option("--format", options->format, "Output format: text, json or csv")
        ->check(CLI::IsMember({"text", "json", "csv"}));
    command
        ->add_option("--sort", options->sort,
                     "Highest first by complexity, nesting or lines (default: source order)")
        ->check(CLI::IsMember({"complexity", "nesting", "lines"}));
    command->add_option("--top", options->top, "Show only the first N procedures")
        ->check(CLI::PositiveNumber);
    command
        ->add_option("--exclude", options->exclusions,
                     "Leave out paths matching a glob (`*`, `?`, `**`); repeatable")
        ->allow_extra_args(false);
    command->callback([&context, options] { RunMetrics(context, *options); });
}

}  // namespace arbolet::cli
