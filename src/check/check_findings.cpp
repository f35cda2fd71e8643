// Checking one component file under either rule set (see check_findings.h).
#include "check/check_findings.h"

#include <algorithm>
#include <optional>

#include "analysis/colours.h"
#include "analysis/vb6_block_tree.h"
#include "analysis/vb6_blocks.h"
#include "analysis/vb6_metrics.h"
#include "base/utf8.h"
#include "check/component_analysis.h"
#include "check/quality_rules.h"
#include "disk/codepage.h"
#include "disk/component_file.h"
#include "disk/file_io.h"

namespace arbolet::check {
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

// The lines of a file's bytes, split only when a finding needs its line's text.
class LazyLines {
  public:
    explicit LazyLines(std::string_view bytes) : bytes_(bytes) {}

    std::string_view operator()(std::int32_t line) {
        if (!split_) {
            lines_ = disk::SplitRawLines(bytes_);
            split_ = true;
        }
        if (line < 1 || static_cast<std::size_t>(line) > lines_.size()) return {};
        const disk::RawLine& raw = lines_[static_cast<std::size_t>(line - 1)];
        return bytes_.substr(raw.offset, raw.length);
    }

  private:
    std::string_view bytes_;
    // A flag beside the vector rather than an optional one: GCC 12 takes the optional's storage
    // for uninitialised at -O2.
    bool split_ = false;
    std::vector<disk::RawLine> lines_;
};

// The statement on a decoded line: from its first character that is no blank to its last, in
// characters counted from 1, the end exclusive.
void SetColumns(std::string_view line, Finding& finding) {
    const std::string_view trimmed = text::Trim(line);
    if (trimmed.empty()) return;
    const auto before = line.substr(0, static_cast<std::size_t>(trimmed.data() - line.data()));
    finding.column = static_cast<std::int32_t>(text::CharCount(before)) + 1;
    finding.endColumn = finding.column + static_cast<std::int32_t>(text::CharCount(trimmed));
}

// The code below the module attributes, checked as bytes with the file's own line numbers;
// only the names quoted in messages are decoded. With quality limits, the same pass gives the
// block tree the procedure figures come from.
void AddVb6Findings(std::string_view bytes, const disk::CodeLocation& code, int codePage,
                    const std::string& shown, const QualityLimits& limits, FileResult& result) {
    LazyLines lineText(bytes);
    const auto decoded = [codePage](std::string_view text) {
        return IsAscii(text) ? std::string(text) : disk::DecodeCodePage(text, codePage);
    };
    const std::string_view source = bytes.substr(code.codeOffset);
    const auto firstLine = code.firstCodeLine + 1;
    analysis::vb6::BlockTree tree;
    if (limits.Any()) {
        tree = analysis::vb6::ParseBlocks(source, firstLine);
    } else {
        tree.findings = analysis::vb6::CheckBlocks(source, firstLine);
    }
    for (auto& block : tree.findings) {
        const char* severity = analysis::vb6::IsWarning(block.rule) ? "warning" : "error";
        Finding finding = MakeFinding(shown, block.line, severity,
                                      analysis::vb6::RuleId(block.rule), decoded(block.message));
        finding.relatedLine = block.relatedLine;
        finding.relatedText = decoded(block.relatedText);
        const std::string text = decoded(lineText(block.line));
        finding.fingerprint = Fingerprint(text);
        SetColumns(text, finding);
        result.findings.push_back(std::move(finding));
    }
    if (limits.Any()) {
        AddQualityFindings(analysis::vb6::ComputeMetrics(source, tree, firstLine), limits, shown,
                           decoded, lineText, result);
    }
}

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

void AddByteOrderMark(const std::string& shown, FileResult& result) {
    Finding finding =
        MakeFinding(shown, 1, "warning", kByteOrderMark,
                    "the file starts with a UTF-8 byte-order mark, which VB6 does not expect: "
                    "it reads the mark as part of the first line");
    finding.fingerprint = Fingerprint(finding.message);
    result.findings.push_back(std::move(finding));
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
    if (rules == RuleSet::Vb6) {
        all.push_back(
            {kByteOrderMark, "A component file that starts with a UTF-8 byte-order mark"});
        const auto quality = QualityRules();
        all.insert(all.end(), quality.begin(), quality.end());
    }
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

FileResult CheckComponentBytes(std::string_view bytes, const std::string& shown, int codePage,
                               RuleSet rules, const QualityLimits& limits) {
    FileResult result;
    if (rules == RuleSet::Vb6) {
        // The mark is reported, then read past, so that it hides neither the header nor the
        // first line's statement; line numbers do not change.
        if (bytes.starts_with(kUtf8Mark)) {
            AddByteOrderMark(shown, result);
            bytes.remove_prefix(kUtf8Mark.size());
        }
        const disk::CodeLocation code = disk::LocateCode(bytes);
        AddDiagnostics(code.diagnostics, shown, result);
        AddVb6Findings(bytes, code, codePage, shown, limits, result);
    } else {
        AnalysedComponent component;
        disk::ComponentFile file = disk::ParseComponentFile(bytes, codePage);
        AddDiagnostics(file.diagnostics, shown, result);
        component.tree = analysis::BuildCodeTree(file.CodeText(), analysis::DisplayOptions{});
        component.file = std::move(file);
        AddWindowFindings(component, shown, result);
    }
    // Compiler order: by line, and in the order found within a line.
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return result;
}

FileResult CheckComponentFile(const std::filesystem::path& path, const std::string& shown,
                              int codePage, RuleSet rules, const QualityLimits& limits) {
    // One buffer per thread: files checked in turn reuse its memory.
    thread_local std::string bytes;
    try {
        disk::ReadFileBytes(path, bytes);
    } catch (const disk::FileError& error) {
        FileResult result;
        result.unreadable = true;
        result.findings.push_back(MakeFinding(shown, 0, "error", kUnreadableFile, error.what()));
        return result;
    }
    FileResult result = CheckComponentBytes(bytes, shown, codePage, rules, limits);
    // A long-running caller (the language server) keeps no huge file's memory.
    constexpr std::size_t kKeptBuffer = 16u << 20;
    if (bytes.capacity() > kKeptBuffer) std::string().swap(bytes);
    return result;
}

}  // namespace arbolet::check
