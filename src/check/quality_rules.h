// The opt-in quality limits of `arbolet check`: a procedure nested too deep, too long or too
// complex is a warning at its header, naming its figure and the limit.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/vb6_metrics.h"
#include "check/check_config.h"
#include "check/check_findings.h"

namespace arbolet::check {

inline constexpr std::string_view kMaxNesting = "max-nesting";
inline constexpr std::string_view kMaxProcedureLines = "max-procedure-lines";
inline constexpr std::string_view kMaxComplexity = "max-complexity";

// The rule ids and descriptions of the limits, for reports that list rules.
std::vector<RuleInfo> QualityRules();

// Adds a warning for every figure above its limit. `decoded` turns names and line texts from the
// file's code page into UTF-8; `lineText` gives a file line's text for the fingerprint.
void AddQualityFindings(const std::vector<analysis::vb6::ProcedureMetrics>& procedures,
                        const QualityLimits& limits, const std::string& shown,
                        const std::function<std::string(std::string_view)>& decoded,
                        const std::function<std::string_view(std::int32_t)>& lineText,
                        FileResult& result);

}  // namespace arbolet::check
