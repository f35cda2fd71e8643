// Finding the node of a code line, counting the components with block errors, and stepping
// from red node to red node across the projects of a group, forwards, backwards and round.
#include <gtest/gtest.h>

#include "analysis/colours.h"
#include "explorer/code_navigation.h"
#include "explorer/disk_explorer_fixture.h"

namespace arbolet::explorer::testing {
namespace {

std::string Module(const std::string& name, const std::string& code) {
    return "Attribute VB_Name = \"" + name + "\"\r\n" + code;
}

class Navigation : public DiskExplorerTest {
  protected:
    // Two projects: Alpha with a clean module and one with a lost End If; Beta with a module
    // with a stray Next, and one the checker flags whose tree has no red node.
    void WriteGroup() {
        folder.Write("G.vbg", "VBGROUP 5.0\r\nStartupProject=Alpha.vbp\r\nProject=Beta.vbp\r\n");
        folder.Write("Alpha.vbp", Crlf({"Type=Exe", "Module=modClean; modClean.bas",
                                        "Module=modIf; modIf.bas", "Name=\"Alpha\""}));
        folder.Write("Beta.vbp", Crlf({"Type=Exe", "Module=modNext; modNext.bas",
                                       "Module=modSelect; modSelect.bas", "Name=\"Beta\""}));
        folder.Write("modClean.bas", Module("modClean", Crlf({"Sub Clean()", "End Sub"})));
        folder.Write(
            "modIf.bas",
            Module("modIf", Crlf({"Sub One()", "    If a Then", "        x = 1", "End Sub"})));
        folder.Write("modNext.bas", Module("modNext", Crlf({"Sub Two()", "    Do", "        Next",
                                                            "    Loop", "End Sub"})));
        folder.Write("modSelect.bas",
                     Module("modSelect", Crlf({"Sub Three()", "    Select Case a", "        x = 1",
                                               "    Case 1", "    End Select", "End Sub"})));
        Open({"G.vbg"});
        census.Recount(*explorer, nodes());
    }
    std::string Step(const tree::Node* from, bool forward) {
        const tree::NodeRef found = StepToError(*explorer, nodes(), census, from, forward);
        return found ? found->Key() : "";
    }
    std::vector<std::string> RedKeys(const std::string& componentKey) {
        std::vector<std::string> keys;
        for (std::int32_t i = 1; i <= nodes().Count(); ++i) {
            const auto node = nodes().Item(i);
            if (analysis::colour::IsError(node->ForeColor()) &&
                node->Key().starts_with("S" + componentKey))
                keys.push_back(node->Key());
        }
        return keys;
    }
    BlockErrorCensus census;
};

TEST_F(Navigation, TheNodeOfALineIsTheInnermostThatContainsIt) {
    folder.Write("Shop.vbp", Crlf({"Type=Exe", "Module=modMain; modMain.bas", "Name=\"Shop\""}));
    folder.Write("modMain.bas",
                 Module("modMain", Crlf({"Option Explicit", "", "Sub Main()", "    x = 1", "",
                                         "    If a Then", "        y = 2", "    End If", "End Sub",
                                         "", "Function F()", "End Function"})));
    Open({"Shop.vbp"});
    const auto locate = [&](std::string project, std::string component, std::int64_t line) {
        const auto node =
            LocateLine(*explorer, nodes(), {std::move(project), std::move(component), line});
        return node ? node->Key() : "";
    };
    // Locating opens the component.
    EXPECT_EQ(locate("Shop", "modMain", 7), "SmodMain~Shop~@6");
    EXPECT_TRUE(Node("modMain~Shop~")->Expanded());
    EXPECT_EQ(locate("Shop", "modMain", 6), "SmodMain~Shop~@5");  // the If itself
    EXPECT_EQ(locate("Shop", "modMain", 8), "SmodMain~Shop~@7");  // its End If
    EXPECT_EQ(locate("Shop", "modMain", 5), "SmodMain~Shop~@2");  // a blank line in Main
    EXPECT_EQ(locate("Shop", "modMain", 9), "SmodMain~Shop~@8");  // End Sub
    EXPECT_EQ(locate("", "MODMAIN", 11), "SmodMain~Shop~@10");    // any project, any case
    EXPECT_EQ(locate("Shop", "modMain", 1), "SmodMain~Shop~@0");
    // Between the procedures, past the end, before the start: the component itself.
    EXPECT_EQ(locate("Shop", "modMain", 10), "modMain~Shop~");
    EXPECT_EQ(locate("Shop", "modMain", 400), "modMain~Shop~");
    EXPECT_EQ(locate("Shop", "modMain", -3), "modMain~Shop~");
    EXPECT_EQ(locate("Shop", "modGone", 1), "");
    EXPECT_EQ(locate("Other", "modMain", 1), "");
}

TEST_F(Navigation, TheCensusCountsComponentsTheCheckerFlagsWithoutOpeningThem) {
    WriteGroup();
    EXPECT_EQ(census.Count(), 3);
    EXPECT_TRUE(census.Flagged("modIf~Alpha~"));
    EXPECT_TRUE(census.Flagged("modSelect~Beta~"));
    EXPECT_FALSE(census.Flagged("modClean~Alpha~"));
    EXPECT_EQ(CensusText(census.Count()), "3 components with block errors");
    EXPECT_EQ(CensusText(1), "1 component with block errors");
    EXPECT_EQ(CensusText(0), "");
    EXPECT_TRUE(nodes().Exists("Code - modIf~Alpha~")) << "still closed";

    // A change is checked again through the explorer's notice; a removal forgets.
    explorer->ComponentCodeChanged = [&](const std::string& key, bool gone) {
        census.Recheck(*explorer, key, gone);
    };
    folder.Write("modIf.bas", Module("modIf", Crlf({"Sub One()", "End Sub"})));
    vbe->Refresh({folder / "modIf.bas"});
    EXPECT_FALSE(census.Flagged("modIf~Alpha~"));
    census.Recheck(*explorer, "modNext~Beta~", true);
    EXPECT_EQ(census.Count(), 1);
}

TEST_F(Navigation, StepsGoThroughRedNodesInTreeOrderAcrossProjectsAndRound) {
    WriteGroup();
    // The checker flags modSelect, but its tree has no red node: it is opened, then closed.
    Expand("modIf~Alpha~");
    Expand("modNext~Beta~");
    const std::vector<std::string> ifRed = RedKeys("modIf~Alpha~");
    const std::vector<std::string> nextRed = RedKeys("modNext~Beta~");
    ASSERT_FALSE(ifRed.empty());
    ASSERT_FALSE(nextRed.empty());
    explorer->CollapseNode(*Node("modIf~Alpha~"));
    explorer->CollapseNode(*Node("modNext~Beta~"));

    std::vector<std::string> all = ifRed;
    all.insert(all.end(), nextRed.begin(), nextRed.end());
    std::vector<std::string> forward;
    std::string at = Step(nullptr, true);
    for (std::size_t i = 0; i < all.size() + 1 && !at.empty(); ++i) {
        forward.push_back(at);
        at = Step(Node(at).get(), true);
    }
    std::vector<std::string> expected = all;
    expected.push_back(all.front());  // round past the end
    EXPECT_EQ(forward, expected);
    EXPECT_TRUE(nodes().Exists("Code - modSelect~Beta~")) << "closed again";
    EXPECT_TRUE(nodes().Exists("Code - modClean~Alpha~")) << "never opened";

    // Backwards from the first error goes round to the last; from a project node to the error
    // before it.
    EXPECT_EQ(Step(Node(all.front()).get(), false), all.back());
    EXPECT_EQ(Step(Node("Project~Beta").get(), false), ifRed.back());
    EXPECT_EQ(Step(Node("Project~Beta").get(), true), nextRed.front());
    EXPECT_EQ(Step(Node("modNext~Beta~").get(), true), nextRed.front());
    EXPECT_EQ(Step(nullptr, false), all.back());
}

TEST_F(Navigation, OpenComponentsAreWalkedEvenWhenTheCheckerSeesNothing) {
    WriteGroup();
    BlockErrorCensus empty;
    EXPECT_EQ(StepToError(*explorer, nodes(), empty, nullptr, true), nullptr);
    Expand("modNext~Beta~");
    const auto found = StepToError(*explorer, nodes(), empty, nullptr, true);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->Key(), RedKeys("modNext~Beta~").front());
    // The only error, found again from itself.
    EXPECT_EQ(StepToError(*explorer, nodes(), empty, found.get(), true), found);
    EXPECT_EQ(StepToError(*explorer, nodes(), empty, found.get(), false), found);
}

}  // namespace
}  // namespace arbolet::explorer::testing
