// `arbolet check`: block errors of component files, folders and projects reported compiler-style,
// as text, JSON or SARIF 2.1.0, with an exit status for CI.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <thread>

#include "check/check_baseline.h"
#include "check/check_config.h"
#include "check/check_report.h"
#include "check/check_report_ci.h"
#include "check/check_targets.h"
#include "check/check_text.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "disk/component_file.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::cli {

using check::Baseline;
using check::CheckComponentFile;
using check::CheckTarget;
using check::CheckTargets;
using check::CheckTotals;
using check::CollectCheckTargets;
using check::CountFindings;
using check::FileResult;
using check::Fingerprint;
using check::RuleSet;
using check::WriteCheckJson;
using check::WriteCheckSarif;
using check::WriteCheckText;
namespace {

constexpr const char* kCheckHelp = R"(Inputs:
  FILE.bas .cls .frm .ctl .pag .dob .dsr   a component file
  FOLDER                                   every component file below it, recursively
  PROJECT.vbp                              the components the project lists
  GROUP.vbg                                the components of every project of the group
A file reached twice (a module shared by two projects) is checked once.

Rules (--rules):
  vb6     block structure as the VB6 compiler accepts it (default)
  window  exactly the red error nodes of the tool window and of `arbolet code`

Quality limits (opt in; also "max-nesting", "max-procedure-lines", "max-complexity" in
.arbolet.json in the working folder or the nearest folder above it; flags win):
  --max-nesting N          deepest block inside a procedure (the procedure is depth 0)
  --max-procedure-lines N  lines of code of a procedure (blank and comment lines aside)
  --max-complexity N       cyclomatic complexity of a procedure
A procedure above a limit is a warning at its header.

Exit status:
  0  no errors (warnings, such as missing components, do not count without --strict)
  1  errors were found (none beyond the --baseline, when one is given); with --strict also
     warnings
  2  usage error, a file that cannot be read or is not VB6, a configuration or baseline that
     cannot be read or written (--write-baseline still writes the file); with --strict also
     missing components, unreadable folders, no file checked. Findings the baseline holds
     count for nothing.)";

struct CheckOptions {
    std::vector<std::string> paths;
    std::string format = "text";
    std::string rules = "vb6";
    std::vector<std::string> exclusions;
    std::string baseline;
    std::string writeBaseline;
    bool quiet = false;
    bool strict = false;
    int maxNesting = 0;
    int maxProcedureLines = 0;
    int maxComplexity = 0;
};

// The limits of the command line over those of the nearest `.arbolet.json`; false (reported,
// exit status 2) when that file cannot be used.
bool QualityLimitsOf(CliContext& context, const CheckOptions& options,
                     check::QualityLimits& limits) {
    std::error_code ec;
    if (const auto file = check::FindConfig(std::filesystem::current_path(ec))) {
        try {
            limits = check::LoadConfig(*file, disk::ShownPath(*file));
        } catch (const check::ConfigError& error) {
            context.err << "arbolet: " << error.what() << '\n';
            context.Fail(kExitUsage);
            return false;
        }
    }
    check::QualityLimits flags;
    if (options.maxNesting > 0) flags.maxNesting = options.maxNesting;
    if (options.maxProcedureLines > 0) flags.maxProcedureLines = options.maxProcedureLines;
    if (options.maxComplexity > 0) flags.maxComplexity = options.maxComplexity;
    limits.OverrideWith(flags);
    return true;
}

// Files that are no VB6 component are refused, as `code` refuses them, rather than read as
// code; exclusions that left nothing out are named, since a mistyped one hides nothing.
void RefuseOthers(CliContext& context, CheckTargets& targets) {
    std::erase_if(targets.files, [&](const CheckTarget& target) {
        if (disk::IsComponentFileName(disk::PathToUtf8(target.path.filename()))) return false;
        context.err << "arbolet: " << check::ShownText(target.shown)
                    << ": not a component file (.bas .cls .frm .ctl .pag .dob .dsr), a .vbp "
                       "project, a .vbg group or a folder\n";
        context.Fail(kExitUsage);
        return true;
    });
    for (const auto& exclusion : targets.unusedExclusions) {
        context.err << "arbolet: warning: --exclude " << check::ShownText(exclusion)
                    << " matches nothing\n";
    }
}

// What a baseline leaves: a file counts as unreadable, and a problem as missing, only while a
// finding says so.
void RecountProblems(std::vector<FileResult>& results, CheckTotals& totals) {
    totals.missing = 0;
    totals.unreadable = false;
    for (auto& result : results) {
        result.unreadable = std::any_of(
            result.findings.begin(), result.findings.end(), [](const check::Finding& f) {
                return f.severity == "error" &&
                       (f.rule == check::kUnreadableFile || f.rule == check::kFileFormat);
            });
        totals.unreadable |= result.unreadable;
        for (const auto& f : result.findings) {
            const bool missing = f.rule == check::kMissingFile ||
                                 f.rule == check::kUnreadableFolder ||
                                 (f.rule == check::kUnreadableFile && f.severity == "warning");
            totals.missing += missing ? 1 : 0;
        }
    }
}

// Checks the files on every core; results keep the order of the files.
std::vector<FileResult> CheckAll(const std::vector<CheckTarget>& files, int codePage, RuleSet rules,
                                 const check::QualityLimits& limits) {
    std::vector<FileResult> results(files.size());
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++)
            results[i] = CheckComponentFile(files[i].path, files[i].shown, codePage, rules, limits);
    };
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::thread> workers;
    for (unsigned k = 1; k < std::min<std::size_t>(cores, files.size()); ++k)
        workers.emplace_back(work);
    work();
    for (auto& worker : workers)
        worker.join();
    return results;
}

// Applies the baseline; false (reported, exit status 2) when it cannot be read.
bool ApplyBaseline(CliContext& context, const std::string& file, std::vector<FileResult>& results,
                   std::size_t& suppressed) {
    try {
        suppressed = Baseline::Read(disk::PathFromUtf8(file)).Suppress(results);
        return true;
    } catch (const disk::FileError& error) {
        context.err << "arbolet: " << error.what() << '\n';
        context.Fail(kExitUsage);
        return false;
    }
}

void WriteBaseline(CliContext& context, const std::string& file,
                   const std::vector<FileResult>& results, std::size_t findings) {
    try {
        Baseline::Write(disk::PathFromUtf8(file), results);
        context.err << "arbolet: wrote the baseline " << file << " with " << findings
                    << (findings == 1 ? " finding\n" : " findings\n");
    } catch (const disk::FileError& error) {
        context.err << "arbolet: " << error.what() << '\n';
        context.Fail(kExitUsage);
    }
}

void RunCheck(CliContext& context, const CheckOptions& options) {
    const RuleSet rules = options.rules == "window" ? RuleSet::Window : RuleSet::Vb6;
    check::QualityLimits limits;
    if (rules == RuleSet::Vb6 && !QualityLimitsOf(context, options, limits)) return;
    CheckTargets targets = CollectCheckTargets(options.paths, options.exclusions, context.codePage);
    RefuseOthers(context, targets);
    std::vector<FileResult> results = CheckAll(targets.files, context.codePage, rules, limits);
    results.insert(results.begin(), std::move(targets.problems));
    for (auto& result : results) {
        for (auto& f : result.findings) {
            if (f.fingerprint.empty()) f.fingerprint = Fingerprint(f.message);
        }
    }
    std::size_t suppressed = 0;
    if (!options.baseline.empty() &&
        !ApplyBaseline(context, options.baseline, results, suppressed)) {
        return;
    }
    CheckTotals totals = CountFindings(results, targets.files.size());
    RecountProblems(results, totals);
    totals.baselined = suppressed;
    if (options.format == "json") {
        WriteCheckJson(context.out, results, totals);
    } else if (options.format == "sarif") {
        WriteCheckSarif(context.out, results, rules);
    } else if (options.format == "github") {
        check::WriteCheckGithub(context.out, results);
    } else if (options.format == "gitlab") {
        check::WriteCheckGitlab(context.out, results);
    } else {
        WriteCheckText(context.out, results, totals, options.quiet);
    }
    if (!options.writeBaseline.empty()) {
        WriteBaseline(context, options.writeBaseline, results, totals.errors + totals.warnings);
    } else if (totals.errors > 0 || (options.strict && totals.warnings > 0)) {
        context.Fail(kExitFindings);
    }
    if (totals.unreadable) context.Fail(kExitUsage);
    if (options.strict && (totals.missing > 0 || totals.files == 0)) context.Fail(kExitUsage);
}

}  // namespace

void AddCheckCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command = app.add_subcommand(
        "check", "Report every block error of component files, folders or projects, for CI");
    command->footer(kCheckHelp);
    command->add_option("paths", options->paths, "Component files, folders, .vbp or .vbg files")
        ->required();
    command
        ->add_option("--format", options->format,
                     "Output format: text, json, sarif, github (workflow commands) or gitlab "
                     "(Code Quality)")
        ->check(CLI::IsMember({"text", "json", "sarif", "github", "gitlab"}));
    command->add_option("--rules", options->rules, "Rule set: vb6 (default) or window")
        ->check(CLI::IsMember({"vb6", "window"}));
    command
        ->add_option("--exclude", options->exclusions,
                     "Leave out paths matching a glob (`*`, `?`, `**`); repeatable")
        ->allow_extra_args(false);
    command->add_option("--baseline", options->baseline,
                        "Fail only on findings this baseline file does not hold");
    command->add_option("--write-baseline", options->writeBaseline,
                        "Record today's findings in a baseline file, and exit 0 on them");
    command->add_flag("--quiet", options->quiet, "Print only errors: no warnings, no summary");
    command->add_flag("--strict", options->strict,
                      "Warnings fail (exit 1); missing components, unreadable folders or no file "
                      "checked fail (exit 2)");
    command
        ->add_option("--max-nesting", options->maxNesting,
                     "Warn about procedures whose blocks nest deeper than N")
        ->check(CLI::PositiveNumber);
    command
        ->add_option("--max-procedure-lines", options->maxProcedureLines,
                     "Warn about procedures with more than N lines of code")
        ->check(CLI::PositiveNumber);
    command
        ->add_option("--max-complexity", options->maxComplexity,
                     "Warn about procedures whose cyclomatic complexity is above N")
        ->check(CLI::PositiveNumber);
    command->callback([&context, options] { RunCheck(context, *options); });
}

}  // namespace arbolet::cli
