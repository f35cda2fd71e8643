// Golden tests of the VB6 block rules of `arbolet check`: one construct per file under
// tests/golden/check, code that compiles (no finding) and broken code (every finding, with the
// rule, where its block began and where the end probably belonged).
#include <gtest/gtest.h>

#include <string>

#include "analysis/vb6_blocks.h"
#include "support/golden.h"

namespace arbolet::testing {
namespace {

std::string RenderFindings(const std::string& code) {
    std::string text;
    for (const auto& finding : analysis::vb6::CheckBlocks(code)) {
        text += std::to_string(finding.line) + ": ";
        text += analysis::vb6::IsWarning(finding.rule) ? "warning: " : "error: ";
        text += finding.message + " [" + std::string(analysis::vb6::RuleId(finding.rule)) + "]";
        if (finding.relatedLine > 0)
            text += " (" + std::to_string(finding.relatedLine) + ": " + finding.relatedText + ")";
        text += '\n';
    }
    return text;
}

class CheckGoldenFiles : public ::testing::TestWithParam<std::filesystem::path> {};

TEST_P(CheckGoldenFiles, FindingsMatch) {
    const GoldenCase golden = LoadGolden(GetParam());
    // Files whose name ends in _ok hold code VB6 compiles: they must stay free of errors.
    const std::string actual = RenderFindings(golden.input);
    if (GetParam().stem().string().ends_with("_ok")) {
        EXPECT_EQ(actual.find(": error: "), std::string::npos) << actual;
    }
    CheckGolden(golden, actual);
}

std::string CaseName(const ::testing::TestParamInfo<std::filesystem::path>& info) {
    std::string name = info.param.stem().string();
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Files, CheckGoldenFiles,
                         ::testing::ValuesIn(GoldenFiles(ARBOLET_SOURCE_DIR "/tests/golden/check")),
                         CaseName);

}  // namespace
}  // namespace arbolet::testing
