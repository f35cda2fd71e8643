// publishDiagnostics' contents: the VB6 block findings, as `arbolet check` reports them, and the
// problems of the file itself.
#include <algorithm>

#include "analysis/vb6_statements.h"
#include "lsp/features.h"

namespace arbolet::lsp {
namespace {

constexpr int kSeverityError = 1;
constexpr int kSeverityWarning = 2;

// The line's text without leading and trailing blanks, so the squiggle covers the statement.
Range LineContentRange(const TextDocument& text, std::int32_t line, PositionEncoding encoding) {
    const std::string_view content = text.Line(line);
    const std::string_view trimmed = analysis::vb6::TrimBlanks(content);
    if (trimmed.empty()) return text.LinesRange(line, line, encoding);
    const auto column = static_cast<std::int32_t>(trimmed.data() - content.data());
    return text.RangeOf(line, column, static_cast<std::int32_t>(trimmed.size()), encoding);
}

Json Diagnostic(Range range, int severity, std::string_view code, const std::string& message) {
    return Json{{"range", ToJson(range)},
                {"severity", severity},
                {"code", std::string(code)},
                {"source", "arbolet"},
                {"message", message}};
}

}  // namespace

Json Diagnostics(const DocumentView& document) {
    Json diagnostics = Json::array();
    const auto lastLine = std::max(document.text.LineCount() - 1, 0);
    const auto toLine = [lastLine](std::int32_t fileLine) {
        return std::clamp(fileLine - 1, 0, lastLine);
    };
    for (const auto& problem : document.analysis.fileDiagnostics) {
        const bool error = problem.severity == disk::FileDiagnostic::Severity::Error;
        diagnostics.push_back(Diagnostic(
            LineContentRange(document.text, toLine(std::max(problem.line, 1)), document.encoding),
            error ? kSeverityError : kSeverityWarning, "file-format", problem.message));
    }
    for (const auto& finding : document.analysis.blocks.findings) {
        Json diagnostic =
            Diagnostic(LineContentRange(document.text, toLine(finding.line), document.encoding),
                       kSeverityError, analysis::vb6::RuleId(finding.rule), finding.message);
        if (finding.relatedLine > 0) {
            const Range related =
                LineContentRange(document.text, toLine(finding.relatedLine), document.encoding);
            diagnostic["relatedInformation"] = Json::array(
                {Json{{"location", Json{{"uri", document.uri}, {"range", ToJson(related)}}},
                      {"message", finding.relatedText}}});
        }
        diagnostics.push_back(std::move(diagnostic));
    }
    return diagnostics;
}

}  // namespace arbolet::lsp
