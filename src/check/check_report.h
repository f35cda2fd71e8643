// Writing what `arbolet check` found: compiler-style text, JSON, or SARIF 2.1.0.
#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

#include "check/check_findings.h"

namespace arbolet::check {

struct CheckTotals {
    std::size_t files = 0;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t filesWithErrors = 0;
    std::size_t missing = 0;    // missing or unreadable files and folders
    std::size_t baselined = 0;  // known findings the baseline keeps quiet
    bool unreadable = false;
};

CheckTotals CountFindings(const std::vector<FileResult>& results, std::size_t files);

// `path:line: error: message` lines, then a summary line; `quiet` leaves out warnings and the
// summary.
void WriteCheckText(std::ostream& out, const std::vector<FileResult>& results,
                    const CheckTotals& totals, bool quiet);
void WriteCheckJson(std::ostream& out, const std::vector<FileResult>& results,
                    const CheckTotals& totals);
void WriteCheckSarif(std::ostream& out, const std::vector<FileResult>& results, RuleSet rules);

// A SARIF artifact URI for a shown path: relative paths stay relative (to the working folder,
// named by a uriBaseId), absolute ones become file:// URIs. Percent-encoded.
std::string SarifUri(const std::string& shownPath);

// A path below the working folder relative to it (`/` between parts); any other path absolute.
std::string RelativeToWorkingFolder(const std::string& shownPath);

}  // namespace arbolet::check
