// Metrics on procedure nodes: the tip text, the procedure nodes found by their header line in a
// normal, a sorted and a searched code tree, and the quality limits named in the tip and marked.
#include <gtest/gtest.h>

#include "explorer/disk_explorer_fixture.h"
#include "explorer/procedure_metrics.h"
#include "explorer/tree_search.h"

namespace arbolet::explorer::testing {
namespace {

const std::string kLongHeader =
    "Public Function Total(ByVal firstArgument As Long, ByVal second As Long) As Long";

class ProcedureMetricsTest : public DiskExplorerTest {
  protected:
    void SetUp() override {
        folder.Write("Shop.vbp",
                     Crlf({"Type=Exe", "Module=modMain; modMain.bas", "Name=\"Shop\""}));
        folder.Write("modMain.bas",
                     "Attribute VB_Name = \"modMain\"\r\n" +
                         Crlf({"Option Explicit", "Sub Zeta()", "    Dim i As Long",
                               "    For i = 1 To 3", "        If i = 2 And ready Then",
                               "            Beep", "        End If", "    Next", "End Sub",
                               kLongHeader, "    Total = firstArgument + second", "End Function"}));
        Open({"Shop.vbp"});
        explorer->CodeShown = [this](tree::Node& component, std::string_view code) {
            shown = ShowMetrics(component, code);
        };
    }
    std::vector<ProcedureNode> shown;
};

TEST_F(ProcedureMetricsTest, ProcedureNodesGetTheirMetricsInTheirTips) {
    Expand("modMain~Shop~");
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].node->Key(), "SmodMain~Shop~@1");
    EXPECT_EQ(shown[0].metrics.linesOfCode, 8);
    EXPECT_EQ(shown[0].metrics.maxNesting, 2);
    EXPECT_EQ(shown[0].metrics.complexity, 4);  // For, If, And
    EXPECT_EQ(Node("SmodMain~Shop~@1")->Tag(),
              "Sub Zeta()\r\nLines of code 8, maximum nesting 2, cyclomatic complexity 4");
    // A cut caption keeps its whole text in the tip, above the metrics.
    EXPECT_EQ(Node("SmodMain~Shop~@9")->Tag(),
              kLongHeader + "\r\nLines of code 3, maximum nesting 0, cyclomatic complexity 1");
    // Other nodes keep their tips.
    EXPECT_EQ(Node("SmodMain~Shop~@3")->Tag(), "");
    EXPECT_EQ(Node("SmodMain~Shop~@8")->Tag(), "");
}

TEST_F(ProcedureMetricsTest, SortedAndSearchedTreesFindTheirProceduresByLine) {
    options.options.SortByName = true;
    Expand("modMain~Shop~");
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].node->Key(), "SmodMain~Shop~@1");
    EXPECT_EQ(shown[1].node->Key(), "SmodMain~Shop~@9");

    ProcedureIndex procedures;
    ApplySearch(*explorer, view, ParseSearch(":total"), procedures);
    ASSERT_EQ(shown.size(), 1u) << "only the procedure the search shows";
    EXPECT_EQ(shown[0].node->Key(), "SmodMain~Shop~@9");
    EXPECT_TRUE(Node("SmodMain~Shop~@9")->Tag().ends_with("cyclomatic complexity 1"));
}

TEST_F(ProcedureMetricsTest, AProcedureOverTheLimitsSaysWhichAndIsMarked) {
    explorer->CodeShown = [this](tree::Node& component, std::string_view code) {
        shown = ShowMetrics(component, code, {std::nullopt, 5, 3});
    };
    Expand("modMain~Shop~");
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_TRUE(Node("SmodMain~Shop~@1")
                    ->Tag()
                    .ends_with("complexity 4\r\n"
                               "Over the project's limits: lines of code 8 > 5, complexity 4 > 3"))
        << Node("SmodMain~Shop~@1")->Tag();
    EXPECT_EQ(Node("SmodMain~Shop~@1")->Mark(), tree::NodeMark::OverLimits);
    EXPECT_TRUE(Node("SmodMain~Shop~@9")->Tag().ends_with("cyclomatic complexity 1"));
    EXPECT_EQ(Node("SmodMain~Shop~@9")->Mark(), tree::NodeMark::None) << "within the limits";
    EXPECT_EQ(Node("SmodMain~Shop~@3")->Mark(), tree::NodeMark::None) << "no procedure";

    // A new code tree is measured afresh: within wider limits nothing is marked.
    explorer->CollapseNode(*Node("modMain~Shop~"));
    explorer->CodeShown = [this](tree::Node& component, std::string_view code) {
        shown = ShowMetrics(component, code, {2, 8, 4});
    };
    Expand("modMain~Shop~");
    EXPECT_EQ(Node("SmodMain~Shop~@1")->Mark(), tree::NodeMark::None);
    EXPECT_TRUE(Node("SmodMain~Shop~@1")->Tag().ends_with("cyclomatic complexity 4"));
}

TEST(MetricLimits, APassedLimitIsStrictlyAboveAndNamedInOrder) {
    analysis::vb6::ProcedureMetrics metrics;
    metrics.linesOfCode = 80;
    metrics.maxNesting = 4;
    metrics.complexity = 15;
    EXPECT_EQ(LimitsText(metrics, {}), "");
    EXPECT_EQ(LimitsText(metrics, {4, 80, 15}), "");
    EXPECT_EQ(LimitsText(metrics, {3, std::nullopt, std::nullopt}),
              "Over the project's limits: nesting 4 > 3");
    EXPECT_EQ(LimitsText(metrics, {std::nullopt, 79, std::nullopt}),
              "Over the project's limits: lines of code 80 > 79");
    EXPECT_EQ(
        LimitsText(metrics, {3, 79, 14}),
        "Over the project's limits: lines of code 80 > 79, nesting 4 > 3, complexity 15 > 14");
    EXPECT_EQ(MetricsText(metrics),
              "Lines of code 80, maximum nesting 4, cyclomatic complexity 15");
}

}  // namespace
}  // namespace arbolet::explorer::testing
