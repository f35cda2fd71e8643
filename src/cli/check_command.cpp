// `arbolet check`: block errors of component files, folders and projects reported compiler-style,
// as text, JSON or SARIF 2.1.0, with an exit status for CI.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <thread>

#include "check/check_baseline.h"
#include "check/check_report.h"
#include "check/check_targets.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
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

Exit status:
  0  no errors (warnings, such as missing components, do not count without --strict)
  1  errors were found (none beyond the --baseline, when one is given)
  2  usage error, a file that cannot be read or is not VB6, a baseline that cannot be read
     or written; with --strict also missing components, unreadable folders, no file checked)";

struct CheckOptions {
    std::vector<std::string> paths;
    std::string format = "text";
    std::string rules = "vb6";
    std::vector<std::string> exclusions;
    std::string baseline;
    std::string writeBaseline;
    bool quiet = false;
    bool strict = false;
};

// Checks the files on every core; results keep the order of the files.
std::vector<FileResult> CheckAll(const std::vector<CheckTarget>& files, int codePage,
                                 RuleSet rules) {
    std::vector<FileResult> results(files.size());
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++)
            results[i] = CheckComponentFile(files[i].path, files[i].shown, codePage, rules);
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
    CheckTargets targets = CollectCheckTargets(options.paths, options.exclusions, context.codePage);
    std::vector<FileResult> results = CheckAll(targets.files, context.codePage, rules);
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
    totals.missing = targets.missing;
    totals.baselined = suppressed;
    if (options.format == "json") {
        WriteCheckJson(context.out, results, totals);
    } else if (options.format == "sarif") {
        WriteCheckSarif(context.out, results, rules);
    } else {
        WriteCheckText(context.out, results, totals, options.quiet);
    }
    if (!options.writeBaseline.empty()) {
        WriteBaseline(context, options.writeBaseline, results, totals.errors + totals.warnings);
    } else if (totals.errors > 0) {
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
    command->add_option("--format", options->format, "Output format: text, json or sarif")
        ->check(CLI::IsMember({"text", "json", "sarif"}));
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
                      "Missing components, unreadable folders or no file checked fail (exit 2)");
    command->callback([&context, options] { RunCheck(context, *options); });
}

}  // namespace arbolet::cli
