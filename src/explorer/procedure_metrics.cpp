// Metrics on procedure nodes.
#include "explorer/procedure_metrics.h"

#include <map>

#include "explorer/node_keys.h"

namespace arbolet::explorer {

std::string MetricsText(const analysis::vb6::ProcedureMetrics& metrics) {
    return "Lines of code " + std::to_string(metrics.linesOfCode) + ", maximum nesting " +
           std::to_string(metrics.maxNesting) + ", cyclomatic complexity " +
           std::to_string(metrics.complexity);
}

std::string LimitsText(const analysis::vb6::ProcedureMetrics& metrics, const MetricLimits& limits) {
    std::string text;
    const auto add = [&text](const char* what, int value, const std::optional<int>& limit) {
        if (!limit || value <= *limit) return;
        text += text.empty() ? "Over the project's limits: " : ", ";
        text += std::string(what) + " " + std::to_string(value) + " > " + std::to_string(*limit);
    };
    add("lines of code", metrics.linesOfCode, limits.maxProcedureLines);
    add("nesting", metrics.maxNesting, limits.maxNesting);
    add("complexity", metrics.complexity, limits.maxComplexity);
    return text;
}

// Procedures stand at the top of a code tree, also when sorted by name or found by a search.
std::vector<ProcedureNode> ShowMetrics(tree::Node& component, std::string_view code,
                                       const MetricLimits& limits) {
    std::map<std::int64_t, tree::NodeRef> byLine;
    for (tree::NodeRef child = component.Child(); child; child = child->Next()) {
        if (child->Kind() == tree::NodeKind::CodeLine)
            byLine.emplace(CodeLineNumber(child->Key()), child);
    }
    std::vector<ProcedureNode> shown;
    if (byLine.empty()) return shown;
    for (analysis::vb6::ProcedureMetrics& metrics : analysis::vb6::ComputeMetrics(code)) {
        const auto found = byLine.find(static_cast<std::int64_t>(metrics.line) - 1);
        if (found == byLine.end()) continue;
        tree::Node& node = *found->second;
        const std::string before = node.Tag().empty() ? node.Text() : node.Tag();
        std::string tip = before + "\r\n" + MetricsText(metrics);
        if (const std::string over = LimitsText(metrics, limits); !over.empty()) {
            tip += "\r\n" + over;
            node.SetMark(tree::NodeMark::OverLimits);
        }
        node.SetTag(tip);
        shown.push_back({found->second, std::move(metrics)});
    }
    return shown;
}

}  // namespace arbolet::explorer
