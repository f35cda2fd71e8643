// Checking one component file under either rule set (see check_findings.h).
#include "cli/check_findings.h"

#include <algorithm>

#include "analysis/colours.h"
#include "analysis/vb6_blocks.h"
#include "cli/component_analysis.h"
#include "disk/codepage.h"
#include "disk/component_file.h"
#include "disk/file_io.h"

namespace arbolet::cli {
namespace {

constexpr RuleInfo kFileRules[] = {
    {kFileFormat, "A component file that VB6 cannot load as it stands"},
    {kUnreadableFile, "A file that cannot be read"},
    {kMissingFile, "A file that a project or group lists but that does not exist"},
    {kUnreadableFolder, "A folder below a checked folder that cannot be read"},
    {kProjectFile, "Something wrong in a project or group file that did not stop it loading"},
};

constexpr RuleInfo kWindowRules[] = {
    {"unmatched-end", "A closing statement without the statement that opens its block"},
    {"unclosed-block", "A block that is still open where a procedure or the module ends"},
    {"next-nesting", "A Next whose variable does not match the innermost open For"},
    {"misplaced-declaration", "A declaration inside a Type or Enum block"},
};

std::string WindowRuleOf(std::string_view message) {
    if (message.starts_with("NO START")) return "unmatched-end";
    if (message.starts_with("ERROR - NO")) return "unclosed-block";
    if (message == "ERROR NEXT STATEMENT NESTING") return "next-nesting";
    return "misplaced-declaration";
}

std::string_view FileLine(const disk::ComponentFile& file, std::int32_t line) {
    if (line < 1 || static_cast<std::size_t>(line) > file.lines.size()) return {};
    return file.lines[static_cast<std::size_t>(line - 1)];
}

void AddWindowFindings(const AnalysedComponent& component, const std::string& shown,
                       FileResult& result) {
    analysis::WalkTree(*component.tree.root, [&](const analysis::clsLine& line, int) {
        if (!analysis::colour::IsError(line.LineColour)) return;
        const auto fileLine = component.FileLineOf(line).value_or(1);
        Finding finding = MakeFinding(shown, fileLine, "error", WindowRuleOf(line.LineContent),
                                      line.LineContent.str());
        finding.fingerprint = Fingerprint(FileLine(component.file, fileLine));
        result.findings.push_back(std::move(finding));
    });
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The code below the module attributes, checked as bytes with the file's own line numbers;
// only the names quoted in messages are decoded.
void AddVb6Findings(std::string_view bytes, const disk::CodeLocation& code, int codePage,
                    const std::string& shown, FileResult& result) {
    const auto lineText = [&](std::int32_t line) -> std::string_view {
        if (line < 1 || static_cast<std::size_t>(line) > code.raw.size()) return {};
        const disk::RawLine& raw = code.raw[static_cast<std::size_t>(line - 1)];
        return bytes.substr(raw.offset, raw.length);
    };
    const auto decoded = [codePage](std::string text) {
        return IsAscii(text) ? text : disk::DecodeCodePage(text, codePage);
    };
    for (auto& block :
         analysis::vb6::CheckBlocks(bytes.substr(code.codeOffset), code.firstCodeLine + 1)) {
        const char* severity = analysis::vb6::IsWarning(block.rule) ? "warning" : "error";
        Finding finding =
            MakeFinding(shown, block.line, severity, analysis::vb6::RuleId(block.rule),
                        decoded(std::move(block.message)));
        finding.relatedLine = block.relatedLine;
        finding.relatedText = decoded(std::move(block.relatedText));
        finding.fingerprint = Fingerprint(decoded(std::string(lineText(block.line))));
        result.findings.push_back(std::move(finding));
    }
}

void AddDiagnostics(const std::vector<disk::FileDiagnostic>& diagnostics, const std::string& shown,
                    FileResult& result) {
    for (const auto& diagnostic : diagnostics) {
        const bool error = diagnostic.severity == disk::FileDiagnostic::Severity::Error;
        result.unreadable |= error;
        result.findings.push_back(MakeFinding(shown, std::max(diagnostic.line, 1),
                                              error ? "error" : "warning", kFileFormat,
                                              diagnostic.message));
    }
}

}  // namespace

std::vector<RuleInfo> CheckRules(RuleSet rules) {
    std::vector<RuleInfo> all;
    if (rules == RuleSet::Window) {
        all.assign(std::begin(kWindowRules), std::end(kWindowRules));
    } else {
        for (const auto rule : analysis::vb6::kAllBlockRules)
            all.push_back({analysis::vb6::RuleId(rule), analysis::vb6::RuleDescription(rule)});
    }
    all.insert(all.end(), std::begin(kFileRules), std::end(kFileRules));
    return all;
}

std::string Fingerprint(std::string_view lineText) {
    // FNV-1a over the words of the line, one blank between them.
    std::uint64_t hash = 0xcbf29ce484222325ull;
    const auto add = [&hash](unsigned char c) {
        hash ^= c;
        hash *= 0x100000001b3ull;
    };
    bool pendingBlank = false;
    for (const char c : lineText) {
        if (c == ' ' || c == '\t') {
            pendingBlank = true;
            continue;
        }
        if (pendingBlank && hash != 0xcbf29ce484222325ull) add(' ');
        pendingBlank = false;
        add(static_cast<unsigned char>(c));
    }
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text(16, '0');
    for (int i = 15; i >= 0; --i, hash >>= 4)
        text[static_cast<std::size_t>(i)] = kHex[hash & 0xF];
    return text;
}

FileResult CheckComponentFile(const std::filesystem::path& path, const std::string& shown,
                              int codePage, RuleSet rules) {
    FileResult result;
    const analysis::DisplayOptions noOptions{};
    AnalysedComponent component;
    std::string bytes;
    try {
        bytes = disk::ReadFileBytes(path);
    } catch (const disk::FileError& error) {
        result.unreadable = true;
        result.findings.push_back(MakeFinding(shown, 0, "error", kUnreadableFile, error.what()));
        return result;
    }
    if (rules == RuleSet::Vb6) {
        const disk::CodeLocation code = disk::LocateCode(bytes);
        AddDiagnostics(code.diagnostics, shown, result);
        AddVb6Findings(bytes, code, codePage, shown, result);
    } else {
        disk::ComponentFile file = disk::ParseComponentFile(bytes, codePage);
        AddDiagnostics(file.diagnostics, shown, result);
        component.tree = analysis::BuildCodeTree(file.CodeText(), noOptions);
        component.file = std::move(file);
        AddWindowFindings(component, shown, result);
    }
    // Compiler order: by line, and in the order found within a line.
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return result;
}

}  // namespace arbolet::cli
