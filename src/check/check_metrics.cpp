// Measuring component files (see check_metrics.h).
#include "check/check_metrics.h"

#include <algorithm>

#include "analysis/vb6_metrics.h"
#include "disk/codepage.h"
#include "disk/component_file.h"
#include "disk/file_io.h"

namespace arbolet::check {
namespace {

std::string Decoded(std::string_view text, int codePage) {
    const bool ascii = std::all_of(text.begin(), text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return ascii ? std::string(text) : disk::DecodeCodePage(std::string(text), codePage);
}

std::int32_t Figure(const ProcedureFigures& p, FigureOrder order) {
    switch (order) {
        case FigureOrder::Complexity:
            return p.complexity;
        case FigureOrder::Nesting:
            return p.maxNesting;
        case FigureOrder::Lines:
            return p.linesOfCode;
        case FigureOrder::Source:
            break;
    }
    return 0;
}

}  // namespace

ComponentFigures MeasureComponentFile(const std::filesystem::path& path, const std::string& shown,
                                      int codePage) {
    ComponentFigures figures;
    figures.path = shown;
    std::string bytes;
    try {
        bytes = disk::ReadFileBytes(path);
    } catch (const disk::FileError& error) {
        figures.error = error.what();
        return figures;
    }
    std::string_view view = bytes;
    if (view.starts_with("\xEF\xBB\xBF")) view.remove_prefix(3);  // as check reads it
    const disk::CodeLocation code = disk::LocateCode(view);
    for (const auto& diagnostic : code.diagnostics) {
        if (diagnostic.severity == disk::FileDiagnostic::Severity::Error) {
            figures.error = diagnostic.message;
            return figures;
        }
    }
    const auto firstLine = static_cast<std::int32_t>(code.firstCodeLine + 1);
    for (auto& metrics : analysis::vb6::ComputeMetrics(view.substr(code.codeOffset), firstLine)) {
        ProcedureFigures procedure;
        procedure.component = shown;
        procedure.name = Decoded(metrics.name, codePage);
        procedure.kind = analysis::vb6::ProcedureKeyword(metrics.kind);
        procedure.line = metrics.line;
        procedure.linesOfCode = metrics.linesOfCode;
        procedure.maxNesting = metrics.maxNesting;
        procedure.complexity = metrics.complexity;
        figures.procedures.push_back(std::move(procedure));
    }
    return figures;
}

FigureTotals Totals(const std::vector<ProcedureFigures>& procedures) {
    FigureTotals totals;
    for (const auto& p : procedures) {
        ++totals.procedures;
        totals.linesOfCode += p.linesOfCode;
        totals.maxNesting = std::max(totals.maxNesting, p.maxNesting);
        totals.complexity += p.complexity;
        totals.maxComplexity = std::max(totals.maxComplexity, p.complexity);
    }
    return totals;
}

void Add(FigureTotals& totals, const FigureTotals& more) {
    totals.procedures += more.procedures;
    totals.linesOfCode += more.linesOfCode;
    totals.maxNesting = std::max(totals.maxNesting, more.maxNesting);
    totals.complexity += more.complexity;
    totals.maxComplexity = std::max(totals.maxComplexity, more.maxComplexity);
}

void SortProcedures(std::vector<ProcedureFigures>& procedures, FigureOrder order) {
    if (order == FigureOrder::Source) return;
    std::stable_sort(procedures.begin(), procedures.end(),
                     [order](const ProcedureFigures& a, const ProcedureFigures& b) {
                         return Figure(a, order) > Figure(b, order);
                     });
}

}  // namespace arbolet::check
