// One analysis of a component's text (see document_analysis.h).
#include "lsp/document_analysis.h"

#include <string>

#include "analysis/vb6_statements.h"

namespace arbolet::lsp {
namespace {

namespace vb6 = analysis::vb6;

bool IsCommentLine(std::string_view line) {
    line = vb6::TrimBlanks(line);
    if (line.empty()) return false;
    return line.front() == '\'' || vb6::WordIs(vb6::FirstWord(line), "rem");
}

// The designer section and the attribute lines before the code.
void FindHeader(std::string_view text, const std::vector<disk::RawLine>& raw,
                std::int32_t firstCodeLine, DocumentAnalysis& result) {
    std::optional<std::int32_t> begin;
    std::int32_t depth = 0;
    for (std::int32_t i = 0; i < firstCodeLine && i < static_cast<std::int32_t>(raw.size()); ++i) {
        const auto& line = raw[static_cast<std::size_t>(i)];
        const std::string_view content = vb6::TrimBlanks(text.substr(line.offset, line.length));
        const std::string_view word = vb6::FirstWord(content);
        if (vb6::WordIs(word, "begin") || vb6::WordIs(word, "beginproperty")) {
            if (!begin && depth == 0) begin = i;
            ++depth;
        } else if ((vb6::WordIs(word, "end") || vb6::WordIs(word, "endproperty")) && depth > 0) {
            if (--depth == 0 && begin) result.designer = LineRun{*begin, i};
        } else if (depth == 0 && vb6::WordIs(word, "attribute")) {
            if (result.attributes && result.attributes->last == i - 1) {
                result.attributes->last = i;
            } else if (!result.attributes) {
                result.attributes = LineRun{i, i};
            }
        }
    }
}

void FindCommentRuns(std::string_view text, const std::vector<disk::RawLine>& raw,
                     std::int32_t firstCodeLine, DocumentAnalysis& result) {
    std::optional<LineRun> run;
    const auto close = [&] {
        if (run && run->last > run->first) result.commentRuns.push_back(*run);
        run.reset();
    };
    for (std::int32_t i = firstCodeLine; i < static_cast<std::int32_t>(raw.size()); ++i) {
        const auto& line = raw[static_cast<std::size_t>(i)];
        if (!IsCommentLine(text.substr(line.offset, line.length))) {
            close();
        } else if (run) {
            run->last = i;
        } else {
            run = LineRun{i, i};
        }
    }
    close();
}

}  // namespace

DocumentAnalysis AnalyseDocument(std::string_view utf8Text) {
    // CR CR LF is one line end to the VB6 reader but two to an editor; the analysis follows the
    // editor's lines so that every position it reports is where the editor shows it.
    std::string normalised;
    if (utf8Text.find("\r\r\n") != std::string_view::npos) {
        normalised.reserve(utf8Text.size() + 64);
        for (std::size_t i = 0; i < utf8Text.size(); ++i) {
            if (utf8Text.substr(i).starts_with("\r\r\n")) {
                normalised += "\r\n\r\n";
                i += 2;
            } else {
                normalised += utf8Text[i];
            }
        }
        utf8Text = normalised;
    }
    DocumentAnalysis result;
    disk::CodeLocation code = disk::LocateCode(utf8Text);
    result.firstCodeLine = code.firstCodeLine;
    result.fileDiagnostics = std::move(code.diagnostics);
    const std::string_view body = utf8Text.substr(std::min(code.codeOffset, utf8Text.size()));
    result.blocks = vb6::ParseBlocks(body, code.firstCodeLine + 1);
    result.declarations = vb6::ScanDeclarations(body, code.firstCodeLine + 1);
    FindHeader(utf8Text, code.raw, code.firstCodeLine, result);
    FindCommentRuns(utf8Text, code.raw, code.firstCodeLine, result);
    return result;
}

}  // namespace arbolet::lsp
