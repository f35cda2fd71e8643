// Golden tests of the whole analysis: code text and display options in, coloured tree out.
// Each file under tests/golden/analysis holds one case.
#include <gtest/gtest.h>

#include "analysis/code_tree.h"
#include "analysis/tree_text.h"
#include "support/golden.h"

namespace arbolet::testing {
namespace {

analysis::DisplayOptions OptionsOf(const GoldenCase& golden) {
    analysis::DisplayOptions options;
    options.ShowVariables = !HasOption(golden, "hide-variables");
    options.ShowConstants = !HasOption(golden, "hide-constants");
    options.ShowCompiler = !HasOption(golden, "hide-compiler");
    options.ShowEnums = !HasOption(golden, "hide-enums");
    options.ShowTypes = !HasOption(golden, "hide-types");
    options.ShowSectionEnd = !HasOption(golden, "hide-section-ends");
    options.SortByName = HasOption(golden, "sort-by-name");
    return options;
}

// Golden inputs are stored with LF; the IDE hands code over joined with CRLF.
std::string AsIdeText(const std::string& input) {
    std::string text;
    for (char c : input) {
        if (c == '\n') text += '\r';
        text += c;
    }
    if (text.size() >= 2) text.resize(text.size() - 2);  // no break after the last line
    return text;
}

class AnalysisGolden : public ::testing::TestWithParam<std::filesystem::path> {};

TEST_P(AnalysisGolden, TreeMatches) {
    const GoldenCase golden = LoadGolden(GetParam());
    const auto tree = analysis::BuildCodeTree(AsIdeText(golden.input), OptionsOf(golden));
    CheckGolden(golden, RenderTree(*tree.root));
}

std::string CaseName(const ::testing::TestParamInfo<std::filesystem::path>& info) {
    std::string name = info.param.stem().string();
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Files, AnalysisGolden,
                         ::testing::ValuesIn(GoldenFiles(ARBOLET_SOURCE_DIR
                                                         "/tests/golden/analysis")),
                         CaseName);

}  // namespace
}  // namespace arbolet::testing
