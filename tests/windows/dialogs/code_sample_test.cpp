// The dialog's sample trees come from the real code-tree build, so each option visibly changes
// at least one sample: that is what makes them worth showing.
#include "windows/dialogs/code_sample.h"

#include <gtest/gtest.h>

#include <string_view>

namespace arbolet::windows::dialogs {
namespace {

using analysis::DisplayOptions;

// The index of the first node whose text contains `part`, or -1.
int Find(const std::vector<SampleNode>& nodes, std::string_view part) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].text.find(part) != std::string::npos) return static_cast<int>(i);
    }
    return -1;
}

TEST(CodeSample, DeclarationKindsComeAndGoWithTheirOptions) {
    const DisplayOptions all;
    const auto shown = BuildSampleTree(0, all);
    for (const char* part : {"MAX_ITEMS", "mCount", "eState", "tItem"}) {
        EXPECT_GE(Find(shown, part), 0) << part;
    }
    DisplayOptions none = all;
    none.ShowConstants = none.ShowVariables = none.ShowEnums = none.ShowTypes = false;
    const auto hidden = BuildSampleTree(0, none);
    for (const char* part : {"MAX_ITEMS", "mCount", "eState", "stIdle", "tItem"}) {
        EXPECT_EQ(Find(hidden, part), -1) << part;
    }
    EXPECT_LT(hidden.size(), shown.size());
}

TEST(CodeSample, BlocksNestAndSectionEndsFollowTheirOption) {
    DisplayOptions options;
    const auto flow = BuildSampleTree(1, options);
    const int sub = Find(flow, "Refresh");
    const int loop = Find(flow, "For i");
    const int call = Find(flow, "LoadItem");
    ASSERT_GE(sub, 0);
    ASSERT_GE(loop, 0);
    ASSERT_GE(call, 0);
    EXPECT_LT(flow[static_cast<std::size_t>(sub)].depth,
              flow[static_cast<std::size_t>(loop)].depth);
    EXPECT_LT(flow[static_cast<std::size_t>(loop)].depth,
              flow[static_cast<std::size_t>(call)].depth);
    EXPECT_GE(Find(flow, "End If"), 0);

    options.ShowSectionEnd = false;
    const auto withoutEnds = BuildSampleTree(1, options);
    EXPECT_EQ(Find(withoutEnds, "End If"), -1);
    EXPECT_GE(Find(withoutEnds, "LoadItem"), 0);
}

TEST(CodeSample, DirectivesAndOrderFollowTheirOptions) {
    DisplayOptions options;
    options.SortByName = false;
    const auto unsorted = BuildSampleTree(2, options);
    EXPECT_GT(Find(unsorted, "Apply"), Find(unsorted, "Zoom"));
    EXPECT_GE(Find(unsorted, "#If"), 0);

    options.SortByName = true;
    const auto sorted = BuildSampleTree(2, options);
    EXPECT_LT(Find(sorted, "Apply"), Find(sorted, "Zoom"));

    options.ShowCompiler = false;
    EXPECT_EQ(Find(BuildSampleTree(2, options), "#If"), -1);
}

TEST(CodeSample, NoErrorNodesInTheSamplesAndNothingOutsideThem) {
    for (int sample = 0; sample < kSampleCount; ++sample) {
        for (const SampleNode& node : BuildSampleTree(sample, DisplayOptions{})) {
            EXPECT_NE(node.colour, 255) << "sample " << sample << ": " << node.text;
        }
    }
    EXPECT_TRUE(BuildSampleTree(kSampleCount, DisplayOptions{}).empty());
    EXPECT_TRUE(BuildSampleTree(-1, DisplayOptions{}).empty());
}

}  // namespace
}  // namespace arbolet::windows::dialogs
