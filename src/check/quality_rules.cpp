// Warnings of the quality limits (see quality_rules.h).
#include "check/quality_rules.h"

namespace arbolet::check {
namespace {

std::string Quoted(const std::string& name) {
    return "`" + name + "`";
}

}  // namespace

std::vector<RuleInfo> QualityRules() {
    return {
        {kMaxNesting, "A procedure whose blocks nest deeper than --max-nesting allows"},
        {kMaxProcedureLines, "A procedure with more lines of code than --max-procedure-lines"},
        {kMaxComplexity, "A procedure whose cyclomatic complexity is above --max-complexity"},
    };
}

void AddQualityFindings(const std::vector<analysis::vb6::ProcedureMetrics>& procedures,
                        const QualityLimits& limits, const std::string& shown,
                        const std::function<std::string(std::string_view)>& decoded,
                        const std::function<std::string_view(std::int32_t)>& lineText,
                        FileResult& result) {
    for (const auto& procedure : procedures) {
        const std::string name = Quoted(decoded(procedure.name));
        const auto add = [&](std::string_view rule, std::string message) {
            Finding finding =
                MakeFinding(shown, procedure.line, "warning", rule, std::move(message));
            finding.fingerprint = Fingerprint(decoded(lineText(procedure.line)));
            result.findings.push_back(std::move(finding));
        };
        if (limits.maxNesting && procedure.maxNesting > *limits.maxNesting) {
            add(kMaxNesting, name + " nests blocks " + std::to_string(procedure.maxNesting) +
                                 " deep, more than the limit of " +
                                 std::to_string(*limits.maxNesting));
        }
        if (limits.maxProcedureLines && procedure.linesOfCode > *limits.maxProcedureLines) {
            add(kMaxProcedureLines, name + " has " + std::to_string(procedure.linesOfCode) +
                                        " lines of code, more than the limit of " +
                                        std::to_string(*limits.maxProcedureLines));
        }
        if (limits.maxComplexity && procedure.complexity > *limits.maxComplexity) {
            add(kMaxComplexity,
                name + " has a complexity of " + std::to_string(procedure.complexity) +
                    ", more than the limit of " + std::to_string(*limits.maxComplexity));
        }
    }
}

}  // namespace arbolet::check
