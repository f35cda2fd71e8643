// The figures `arbolet metrics` shows: every procedure of the components checked, with lines of
// code, deepest nesting and cyclomatic complexity (definitions in analysis/vb6_metrics.h), and
// totals per component and per project.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace arbolet::check {

struct ProcedureFigures {
    std::string component;  // the component file, as shown
    std::string name;       // decoded from the file's code page
    std::string kind;       // "Sub", "Function", "Property Get", ...
    std::int32_t line = 0;  // of the header in the file
    std::int32_t linesOfCode = 0;
    std::int32_t maxNesting = 0;
    std::int32_t complexity = 1;
};

struct FigureTotals {
    std::int32_t procedures = 0;
    std::int64_t linesOfCode = 0;
    std::int32_t maxNesting = 0;     // the deepest of all
    std::int64_t complexity = 0;     // the sum
    std::int32_t maxComplexity = 0;  // the highest of one procedure
};

struct ComponentFigures {
    std::string path;     // as shown
    std::string project;  // the project it was reached through; empty for files and folders
    std::vector<ProcedureFigures> procedures;
    std::string error;  // why it could not be measured; empty when it was
};

// Measures one component file. Never throws: a file that cannot be read gets an `error`.
ComponentFigures MeasureComponentFile(const std::filesystem::path& path, const std::string& shown,
                                      int codePage);

FigureTotals Totals(const std::vector<ProcedureFigures>& procedures);
void Add(FigureTotals& totals, const FigureTotals& more);

enum class FigureOrder { Source, Complexity, Nesting, Lines };

// Highest first for the figures (ties in source order); in source order otherwise.
void SortProcedures(std::vector<ProcedureFigures>& procedures, FigureOrder order);

}  // namespace arbolet::check
