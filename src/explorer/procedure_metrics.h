// Size and complexity on the procedure nodes of a code tree: each procedure's lines of code,
// deepest nesting and cyclomatic complexity, as `arbolet metrics` computes them, put where the
// tree shows a node's tip, and which procedures pass the project's quality limits.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/vb6_metrics.h"
#include "treemodel/tree_view.h"

namespace arbolet::explorer {

// "Lines of code 12, maximum nesting 2, cyclomatic complexity 5".
std::string MetricsText(const analysis::vb6::ProcedureMetrics& metrics);

// The limits a procedure must keep, each strictly; none set: nothing passes them.
struct MetricLimits {
    std::optional<int> maxNesting;
    std::optional<int> maxProcedureLines;
    std::optional<int> maxComplexity;
};
// What passes them: "Over the project's limits: nesting 5 > 4, complexity 17 > 15"; "" when
// nothing does.
std::string LimitsText(const analysis::vb6::ProcedureMetrics& metrics, const MetricLimits& limits);

// A procedure node and the metrics of its procedure.
struct ProcedureNode {
    tree::NodeRef node;
    analysis::vb6::ProcedureMetrics metrics;
};

// Finds the node of each procedure of `code` among the component node's code nodes (the node of
// its header line) and adds the metrics to its tag, on a line after the text the tag or the
// node had, so the tip shows both. A procedure over `limits` also gets a last line naming them
// and the OverLimits mark. Procedures without a node (hidden, or left out of a search) are
// skipped.
std::vector<ProcedureNode> ShowMetrics(tree::Node& component, std::string_view code,
                                       const MetricLimits& limits = {});

}  // namespace arbolet::explorer
