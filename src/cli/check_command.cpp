// `arbolet check`: every error node of every component reported compiler-style, as text, JSON or
// SARIF 2.1.0, with an exit status for CI.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <nlohmann/json.hpp>
#include <thread>

#include "analysis/colours.h"
#include "cli/check_targets.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/component_analysis.h"

namespace arbolet::cli {
namespace {

struct Finding {
    std::string path;
    std::int32_t line = 1;
    std::string severity;  // "error" or "warning"
    std::string rule;
    std::string message;
};

struct FileResult {
    std::vector<Finding> findings;
    bool unreadable = false;
};

struct Rule {
    const char* id;
    const char* description;
};

constexpr Rule kRules[] = {
    {"unmatched-end", "A closing statement without the statement that opens its block"},
    {"unclosed-block", "A block that is still open where a procedure or the module ends"},
    {"next-nesting", "A Next whose variable does not match the innermost open For"},
    {"misplaced-declaration", "A declaration inside a Type or Enum block"},
    {"file-format", "A component file that VB6 cannot load as it stands"},
    {"unreadable-file", "A file that cannot be read"},
};

std::string RuleOf(std::string_view message) {
    if (message.starts_with("NO START")) return "unmatched-end";
    if (message.starts_with("ERROR - NO")) return "unclosed-block";
    if (message == "ERROR NEXT STATEMENT NESTING") return "next-nesting";
    return "misplaced-declaration";
}

FileResult CheckFile(const std::filesystem::path& path, int codePage) {
    FileResult result;
    const std::string shown = DisplayPath(path);
    const auto component = AnalyseComponentFile(path, codePage, analysis::DisplayOptions{});
    if (component.readError) {
        result.unreadable = true;
        result.findings.push_back({shown, 0, "error", "unreadable-file", *component.readError});
        return result;
    }
    for (const auto& diagnostic : component.file.diagnostics) {
        const bool error = diagnostic.severity == disk::FileDiagnostic::Severity::Error;
        result.unreadable |= error;
        result.findings.push_back({shown, std::max(diagnostic.line, 1), error ? "error" : "warning",
                                   "file-format", diagnostic.message});
    }
    analysis::WalkTree(*component.tree.root, [&](const analysis::clsLine& line, int) {
        if (!analysis::colour::IsError(line.LineColour)) return;
        const auto fileLine = component.FileLineOf(line).value_or(1);
        result.findings.push_back(
            {shown, fileLine, "error", RuleOf(line.LineContent), line.LineContent.str()});
    });
    // Compiler order: by line, and in tree order within a line.
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return result;
}

// Checks the files on every core; results keep the order of the files.
std::vector<FileResult> CheckAll(const std::vector<std::filesystem::path>& files, int codePage) {
    std::vector<FileResult> results(files.size());
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++)
            results[i] = CheckFile(files[i], codePage);
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

struct Totals {
    std::size_t files = 0;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t filesWithErrors = 0;
    bool unreadable = false;
};

Totals Count(const std::vector<FileResult>& results) {
    Totals totals;
    totals.files = results.size();
    for (const auto& result : results) {
        const auto errors = std::count_if(result.findings.begin(), result.findings.end(),
                                          [](const Finding& f) { return f.severity == "error"; });
        totals.errors += static_cast<std::size_t>(errors);
        totals.warnings += result.findings.size() - static_cast<std::size_t>(errors);
        totals.filesWithErrors += errors > 0 ? 1 : 0;
        totals.unreadable |= result.unreadable;
    }
    return totals;
}

std::string Plural(std::size_t n, const std::string& word) {
    return std::to_string(n) + ' ' + word + (n == 1 ? "" : "s");
}

void WriteText(std::ostream& out, const std::vector<FileResult>& results, const Totals& totals) {
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            out << f.path;
            if (f.line > 0) out << ':' << f.line;
            out << ": " << f.severity << ": " << f.message << '\n';
        }
    }
    if (totals.errors == 0) {
        out << "arbolet: no errors";
    } else {
        out << "arbolet: " << Plural(totals.errors, "error") << " in "
            << Plural(totals.filesWithErrors, "file");
    }
    if (totals.warnings > 0) out << ", " << Plural(totals.warnings, "warning");
    out << " (" << Plural(totals.files, "file") << " checked)\n";
}

void WriteJson(std::ostream& out, const std::vector<FileResult>& results, const Totals& totals) {
    auto findings = nlohmann::json::array();
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            findings.push_back({{"path", f.path},
                                {"line", f.line},
                                {"severity", f.severity},
                                {"rule", f.rule},
                                {"message", f.message}});
        }
    }
    const nlohmann::json document = {{"diagnostics", findings},
                                     {"filesChecked", totals.files},
                                     {"errors", totals.errors},
                                     {"warnings", totals.warnings}};
    out << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

std::string SarifUri(const std::string& path) {
    std::string uri;
    for (unsigned char c : path) {
        if (std::isalnum(c) ||
            std::string_view("/-._~:").find(static_cast<char>(c)) != std::string_view::npos) {
            uri += static_cast<char>(c);
        } else {
            static constexpr char kHex[] = "0123456789ABCDEF";
            uri += '%';
            uri += kHex[c >> 4];
            uri += kHex[c & 0xF];
        }
    }
    return uri;
}

void WriteSarif(std::ostream& out, const std::vector<FileResult>& results) {
    auto rules = nlohmann::json::array();
    for (const auto& rule : kRules) {
        rules.push_back({{"id", rule.id}, {"shortDescription", {{"text", rule.description}}}});
    }
    auto sarifResults = nlohmann::json::array();
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            nlohmann::json location = {{"artifactLocation", {{"uri", SarifUri(f.path)}}}};
            if (f.line > 0) location["region"] = {{"startLine", f.line}};
            sarifResults.push_back({{"ruleId", f.rule},
                                    {"level", f.severity},
                                    {"message", {{"text", f.message}}},
                                    {"locations", {{{"physicalLocation", location}}}}});
        }
    }
    const nlohmann::json driver = {{"name", "arbolet"}, {"version", "0.1.0"}, {"rules", rules}};
    const nlohmann::json document = {
        {"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
        {"version", "2.1.0"},
        {"runs", {{{"tool", {{"driver", driver}}}, {"results", sarifResults}}}}};
    out << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

struct CheckOptions {
    std::vector<std::string> paths;
    std::string format = "text";
};

void RunCheck(CliContext& context, const CheckOptions& options) {
    const auto files = CollectCheckTargets(options.paths, context);
    const auto results = CheckAll(files, context.codePage);
    const Totals totals = Count(results);
    if (options.format == "json") {
        WriteJson(context.out, results, totals);
    } else if (options.format == "sarif") {
        WriteSarif(context.out, results);
    } else {
        WriteText(context.out, results, totals);
    }
    if (totals.unreadable) context.Fail(kExitUsage);
    if (totals.errors > 0) context.Fail(kExitFindings);
}

}  // namespace

void AddCheckCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command = app.add_subcommand(
        "check",
        "Report every block error of component files, folders (searched recursively) or projects");
    command->add_option("paths", options->paths, "Component files or folders")->required();
    command->add_option("--format", options->format, "Output format")
        ->check(CLI::IsMember({"text", "json", "sarif"}));
    command->callback([&context, options] { RunCheck(context, *options); });
}

}  // namespace arbolet::cli
