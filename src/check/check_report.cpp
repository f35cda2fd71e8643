// Text, JSON and SARIF reports of `arbolet check` (see check_report.h).
#include "check/check_report.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "arbolet/version.h"
#include "check/check_rule_help.h"
#include "check/check_text.h"
#include "disk/vb_path.h"

namespace arbolet::check {
namespace {

constexpr const char* kSourceRoot = "SRCROOT";
// Where the README explains the rules; code-scanning views link each rule there.
constexpr const char* kRulesHelpUri =
    "https://github.com/arbolet/arbolet/blob/main/README.md#arbolet-check-in-ci";

std::string Plural(std::size_t n, const std::string& word) {
    return std::to_string(n) + ' ' + word + (n == 1 ? "" : "s");
}

std::string PercentEncoded(std::string_view text) {
    std::string uri;
    for (unsigned char c : text) {
        if (std::isalnum(c) ||
            std::string_view("/-._~").find(static_cast<char>(c)) != std::string_view::npos) {
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

// file:///C:/dir/ on Windows, file:///dir/ elsewhere.
std::string FileUri(std::string genericPath) {
    std::string prefix = "file://";
    if (genericPath.size() >= 2 && genericPath[1] == ':') {
        prefix += '/' + genericPath.substr(0, 2);
        genericPath.erase(0, 2);
    }
    return prefix + PercentEncoded(genericPath);
}

bool IsAbsolute(const std::string& shownPath) {
    return disk::PathFromUtf8(shownPath).is_absolute() || shownPath.starts_with('/');
}

nlohmann::json PhysicalLocation(const std::string& shownPath, std::int32_t line,
                                std::int32_t column = 0, std::int32_t endColumn = 0) {
    const std::string path = RelativeToWorkingFolder(shownPath);
    nlohmann::json artifact = {{"uri", SarifUri(path)}};
    if (!IsAbsolute(path)) artifact["uriBaseId"] = kSourceRoot;
    nlohmann::json location = {{"artifactLocation", artifact}};
    if (line > 0) {
        nlohmann::json region = {{"startLine", line}};
        if (column > 0 && endColumn > column) {
            region["startColumn"] = column;
            region["endLine"] = line;
            region["endColumn"] = endColumn;
        }
        location["region"] = std::move(region);
    }
    return location;
}

// `primaryLocationLineHash` is what GitHub code scanning matches results of two runs by: the
// line's fingerprint and which of the equal findings on equal lines of the file it is.
nlohmann::json SarifResult(const Finding& f, std::map<std::string, int>& occurrences) {
    nlohmann::json result = {
        {"ruleId", f.rule},
        {"level", f.severity},
        {"message", {{"text", ShownText(f.message)}}},
        {"locations",
         {{{"physicalLocation", PhysicalLocation(f.path, f.line, f.column, f.endColumn)}}}}};
    if (!f.fingerprint.empty()) {
        const int occurrence = ++occurrences[f.path + '\n' + f.rule + '\n' + f.fingerprint];
        result["partialFingerprints"] = {
            {"primaryLocationLineHash", f.fingerprint + ':' + std::to_string(occurrence)},
            {"lineText/v1", f.fingerprint}};
    }
    if (f.relatedLine > 0) {
        result["relatedLocations"] = {
            {{"id", 1},
             {"physicalLocation", PhysicalLocation(f.path, f.relatedLine)},
             {"message", {{"text", ShownText(f.relatedText)}}}}};
    }
    return result;
}

nlohmann::json RuleDescriptor(const RuleInfo& rule) {
    const RuleHelp help = HelpOf(rule.id);
    return {{"id", rule.id},
            {"shortDescription", {{"text", rule.description}}},
            {"fullDescription", {{"text", help.full}}},
            {"help", {{"text", help.help}}},
            {"helpUri", kRulesHelpUri}};
}

std::string WorkingFolderUri() {
    std::error_code ec;
    std::string folder = disk::PathToUtf8(std::filesystem::current_path(ec).generic_u8string());
    if (!folder.ends_with('/')) folder += '/';
    return FileUri(folder);
}

void Dump(std::ostream& out, const nlohmann::json& document) {
    out << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace

CheckTotals CountFindings(const std::vector<FileResult>& results, std::size_t files) {
    CheckTotals totals;
    totals.files = files;
    for (const auto& result : results) {
        std::size_t errors = 0;
        for (const auto& f : result.findings) {
            if (f.severity == "error") {
                ++errors;
            } else {
                ++totals.warnings;
            }
        }
        totals.errors += errors;
        totals.filesWithErrors += errors > 0 ? 1 : 0;
        totals.unreadable |= result.unreadable;
    }
    return totals;
}

void WriteCheckText(std::ostream& out, const std::vector<FileResult>& results,
                    const CheckTotals& totals, bool quiet) {
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            if (quiet && f.severity != "error") continue;
            out << ShownText(f.path);
            if (f.line > 0) out << ':' << f.line;
            out << ": " << f.severity << ": " << ShownText(f.message) << " [" << f.rule << "]\n";
        }
    }
    if (quiet) return;
    if (totals.errors == 0) {
        out << "arbolet: no errors";
    } else {
        out << "arbolet: " << Plural(totals.errors, "error") << " in "
            << Plural(totals.filesWithErrors, "file");
    }
    if (totals.warnings > 0) out << ", " << Plural(totals.warnings, "warning");
    if (totals.baselined > 0) out << ", " << totals.baselined << " known from the baseline";
    out << " (" << Plural(totals.files, "file") << " checked)\n";
}

void WriteCheckJson(std::ostream& out, const std::vector<FileResult>& results,
                    const CheckTotals& totals) {
    auto findings = nlohmann::json::array();
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            nlohmann::json finding = {
                {"path", ShownText(f.path)},       {"line", f.line},
                {"severity", f.severity},          {"rule", f.rule},
                {"message", ShownText(f.message)}, {"fingerprint", f.fingerprint}};
            if (f.column > 0) {
                finding["column"] = f.column;
                finding["endColumn"] = f.endColumn;
            }
            if (f.relatedLine > 0) finding["relatedLine"] = f.relatedLine;
            findings.push_back(std::move(finding));
        }
    }
    Dump(out, {{"diagnostics", findings},
               {"filesChecked", totals.files},
               {"errors", totals.errors},
               {"warnings", totals.warnings},
               {"missingFiles", totals.missing},
               {"baselined", totals.baselined}});
}

void WriteCheckSarif(std::ostream& out, const std::vector<FileResult>& results, RuleSet rules) {
    auto descriptors = nlohmann::json::array();
    for (const auto& rule : CheckRules(rules))
        descriptors.push_back(RuleDescriptor(rule));
    auto sarifResults = nlohmann::json::array();
    std::map<std::string, int> occurrences;
    for (const auto& result : results) {
        for (const auto& f : result.findings)
            sarifResults.push_back(SarifResult(f, occurrences));
    }
    const nlohmann::json driver = {{"name", "arbolet"},
                                   {"version", kVersionText},
                                   {"semanticVersion", kVersionText},
                                   {"informationUri", kRulesHelpUri},
                                   {"rules", descriptors}};
    const nlohmann::json run = {
        {"tool", {{"driver", driver}}},
        {"originalUriBaseIds", {{kSourceRoot, {{"uri", WorkingFolderUri()}}}}},
        {"columnKind", "unicodeCodePoints"},
        {"results", sarifResults}};
    Dump(out, {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
               {"version", "2.1.0"},
               {"runs", {run}}});
}

std::string RelativeToWorkingFolder(const std::string& shownPath) {
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::current_path(ec);
    if (ec) return shownPath;
    std::filesystem::path path = disk::PathFromUtf8(shownPath);
    if (!path.is_absolute()) path = folder / path;
    path = path.lexically_normal();
    const std::filesystem::path relative = path.lexically_relative(folder);
    if (relative.empty() || *relative.begin() == "..")
        return disk::PathToUtf8(path.generic_u8string());
    return disk::PathToUtf8(relative.generic_u8string());
}

std::string SarifUri(const std::string& shownPath) {
    if (IsAbsolute(shownPath)) return FileUri(shownPath);
    return PercentEncoded(shownPath);
}

}  // namespace arbolet::check
