// The formats of `arbolet metrics`: a table sized to the terminal, JSON and CSV.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <vector>

#include "check/check_metrics.h"

namespace arbolet::cli {

struct MetricsReport {
    std::vector<check::ComponentFigures> components;  // in the order they were checked
    std::vector<check::ProcedureFigures> procedures;  // sorted and cut to --top
};

// The procedures as a table no wider than `width` (the procedure column is cut first, then the
// component column), then the totals of each component, each project and all.
void WriteMetricsText(std::ostream& out, const MetricsReport& report, std::size_t width);
void WriteMetricsJson(std::ostream& out, const MetricsReport& report);
// One row per procedure, with a header row; fields quoted as RFC 4180 says.
void WriteMetricsCsv(std::ostream& out, const MetricsReport& report);

// The width of the terminal `fd` writes to: COLUMNS when it holds a number, else the terminal's
// own, else nullopt (not a terminal: no limit).
std::optional<std::size_t> TerminalWidth(int fd);

}  // namespace arbolet::cli
