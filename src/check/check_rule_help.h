// What each rule of `arbolet check` finds and what to do about it, for reports that explain
// their rules (SARIF's full description and help).
#pragma once

#include <string_view>

namespace arbolet::check {

struct RuleHelp {
    std::string_view full;  // what the rule finds, and why it matters
    std::string_view help;  // how to fix a finding
};

RuleHelp HelpOf(std::string_view ruleId);

}  // namespace arbolet::check
