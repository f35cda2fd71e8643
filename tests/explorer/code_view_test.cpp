// The code view over projects on disk: code nodes and their keys, texts, tags and colours;
// error nodes made visible; the node limits; collapsing; failed additions absorbed.
#include <gtest/gtest.h>

#include "analysis/colours.h"
#include "explorer/disk_explorer_fixture.h"

namespace arbolet::explorer::testing {
namespace {

const std::string kVbp =
    Crlf({"Type=Exe", "Module=modMain; modMain.bas", "Module=modAlpha; modAlpha.bas",
          "Module=modZulu; modZulu.bas", "Name=\"Shop\""});

std::string Module(const std::string& name, const std::string& code) {
    return "Attribute VB_Name = \"" + name + "\"\r\n" + code;
}

class CodeView : public DiskExplorerTest {
  protected:
    void Write(const std::string& mainCode) {
        folder.Write("Shop.vbp", kVbp);
        folder.Write("modMain.bas", Module("modMain", mainCode));
        folder.Write("modAlpha.bas", Module("modAlpha", Crlf({"Sub A()", "End Sub"})));
        folder.Write("modZulu.bas", Module("modZulu", Crlf({"Sub Z()", "End Sub"})));
    }
};

TEST_F(CodeView, ExpandingShowsKeyedCodeNodesWithCutTextsTagsAndColours) {
    const std::string fifty = "Debug.Print \"" + std::string(36, 'x') + "\"";
    const std::string fiftyOne = "Debug.Print \"" + std::string(37, 'x') + "\"";
    // Two accented letters: 50 characters in 52 bytes once decoded from Windows-1252.
    const std::string accented = "Debug.Print \"" + std::string(34, 'x') + "\xC3\xA9\xC3\xA9\"";
    const std::string accented1252 = "Debug.Print \"" + std::string(34, 'x') + "\xE9\xE9\"";
    ASSERT_EQ(fifty.size(), 50u);
    Write(Crlf({"Sub Main()", fifty, fiftyOne, accented1252, "End Sub"}));
    Open({"Shop.vbp"});
    Expand("modMain~Shop~");

    EXPECT_EQ(ChildKeys("modMain~Shop~"),
              (std::vector<std::string>{"SmodMain~Shop~@0", "SmodMain~Shop~@4"}));
    const auto sub = Node("SmodMain~Shop~@0");
    EXPECT_EQ(sub->Text(), "Sub Main()");
    EXPECT_EQ(sub->ForeColor(), analysis::colour::kBlue);
    EXPECT_FALSE(sub->Image().has_value());
    const auto whole = Node("SmodMain~Shop~@1");
    EXPECT_EQ(whole->Text(), fifty);
    EXPECT_EQ(whole->Tag(), "");
    const auto cut = Node("SmodMain~Shop~@2");
    EXPECT_EQ(cut->Text(), fiftyOne.substr(0, 47) + "...");
    EXPECT_EQ(cut->Tag(), fiftyOne);
    EXPECT_EQ(Node("SmodMain~Shop~@3")->Text(), accented);
    EXPECT_EQ(Node("SmodMain~Shop~@4")->ForeColor(), analysis::colour::kLightGrey);
    EXPECT_EQ(options.reads, 1);
}

TEST_F(CodeView, CollapsingPutsTheComponentBackInPlaceAndTheNextExpansionReadsTheCodeAgain) {
    Write(Crlf({"Sub Main()", "End Sub"}));
    Open({"Shop.vbp"});
    Expand("modMain~Shop~");
    const std::string before = Tree(true);
    explorer->CollapseNode(*Node("modMain~Shop~"));
    EXPECT_EQ(ChildKeys("Type~Modules~Shop"),
              (std::vector<std::string>{"modAlpha~Shop~", "modMain~Shop~", "modZulu~Shop~"}));
    EXPECT_EQ(ChildKeys("modMain~Shop~"), std::vector<std::string>{"Code - modMain~Shop~"});
    EXPECT_EQ(Node("modMain~Shop~")->Image(), 2);
    EXPECT_FALSE(nodes().Exists("SmodMain~Shop~@0"));

    // The first and last component of a folder come back at their places too.
    Expand("modAlpha~Shop~");
    explorer->CollapseNode(*Node("modAlpha~Shop~"));
    Expand("modZulu~Shop~");
    explorer->CollapseNode(*Node("modZulu~Shop~"));
    EXPECT_EQ(ChildKeys("Type~Modules~Shop"),
              (std::vector<std::string>{"modAlpha~Shop~", "modMain~Shop~", "modZulu~Shop~"}));

    folder.Write("modMain.bas", Module("modMain", Crlf({"Sub Main()", "Beep", "End Sub"})));
    vbe->Refresh({folder / "modMain.bas"});
    Expand("modMain~Shop~");
    EXPECT_EQ(Node("SmodMain~Shop~@1")->Text(), "Beep");
    EXPECT_NE(Tree(true), before);
    EXPECT_EQ(options.reads, 4);
}

TEST_F(CodeView, ErrorNodesInsideCollapsedProceduresAreBothMadeVisible) {
    Write(Crlf({"Sub Clean()", "    If a Then", "    End If", "End Sub", "Sub One()",
                "    If a Then", "        x = 1", "End Sub", "Sub Two()", "    Do", "        Next",
                "    Loop", "End Sub"}));
    Open({"Shop.vbp"});
    Expand("modMain~Shop~");
    std::vector<tree::NodeRef> errors;
    for (std::int32_t i = 1; i <= nodes().Count(); ++i) {
        if (nodes().Item(i)->ForeColor() == analysis::colour::kRed) {
            errors.push_back(nodes().Item(i));
        }
    }
    ASSERT_GE(errors.size(), 2u);
    bool inOne = false;
    bool inTwo = false;
    for (const auto& error : errors) {
        for (tree::NodeRef up = error->Parent(); up; up = up->Parent()) {
            EXPECT_TRUE(up->Expanded()) << up->Key() << " above " << error->Text();
            inOne = inOne || up->Text() == "Sub One()";
            inTwo = inTwo || up->Text() == "Sub Two()";
        }
    }
    EXPECT_TRUE(inOne);
    EXPECT_TRUE(inTwo);
    EXPECT_FALSE(Node("SmodMain~Shop~@0")->Expanded());  // Sub Clean() stays closed
}

std::string ManyLines(int count) {
    std::string code;
    code.reserve(static_cast<std::size_t>(count) * 8);
    for (int i = 0; i < count; ++i)
        code += "x = 1\r\n";
    return code;
}

TEST_F(CodeView, AComponentPastTheLimitKeepsItsPlaceholderWithAMessage) {
    Write(ManyLines(32700));
    Open({"Shop.vbp"});
    Expand("modAlpha~Shop~");
    const std::string before = Tree(true);
    Expand("modMain~Shop~");
    ASSERT_EQ(ui.log.size(), 1u);
    EXPECT_EQ(ui.log[0],
              "MsgBox[Too Many Lines|64] This component contains too many lines to display.\r\n"
              "Try closing some components in the tree first.");
    EXPECT_EQ(ChildKeys("modMain~Shop~"), std::vector<std::string>{"Code - modMain~Shop~"});
    EXPECT_FALSE(Node("modMain~Shop~")->Expanded());
    // The other code tree was closed to make room, to no avail.
    EXPECT_FALSE(nodes().Exists("SmodAlpha~Shop~@0"));
    EXPECT_NE(Tree(true), before);
}

TEST_F(CodeView, OtherCodeTreesAreClosedToMakeRoomWithinTheSlack) {
    Write(ManyLines(32300 - 5));
    Open({"Shop.vbp"});
    Expand("modAlpha~Shop~");
    Expand("modZulu~Shop~");
    const std::int32_t others = nodes().Count();
    ASSERT_GT(others + 32295, kNodeLimit);
    Expand("modMain~Shop~");
    EXPECT_TRUE(ui.log.empty());
    EXPECT_FALSE(nodes().Exists("SmodAlpha~Shop~@0"));
    EXPECT_FALSE(nodes().Exists("SmodZulu~Shop~@0"));
    EXPECT_TRUE(nodes().Exists("SmodMain~Shop~@32294"));
    EXPECT_TRUE(Node("modMain~Shop~")->Expanded());
}

TEST_F(CodeView, AFailedAdditionNeitherColoursNorAdoptsAnotherNode) {
    Write(Crlf({"Sub Main()", "    If a Then", "        Beep", "    End If", "End Sub"}));
    Open({"Shop.vbp"});
    // A stranger already holds the key of the If line.
    const auto stranger = nodes().Add(Node("Project~Shop").get(), tree::Relationship::Child,
                                      "SmodMain~Shop~@1", "stranger", tree::NodeKind::Other);
    Expand("modMain~Shop~");
    EXPECT_EQ(stranger->ForeColor(), tree::kWindowTextColour);
    EXPECT_EQ(stranger->Children(), 0);
    EXPECT_EQ(stranger->Parent()->Key(), "Project~Shop");
    // The line below the If has no node to go under; the Sub keeps its other child.
    EXPECT_FALSE(nodes().Exists("SmodMain~Shop~@2"));
    EXPECT_EQ(ChildKeys("SmodMain~Shop~@0"), std::vector<std::string>{"SmodMain~Shop~@3"});
    EXPECT_EQ(Node("SmodMain~Shop~@0")->ForeColor(), analysis::colour::kBlue);
}

TEST_F(CodeView, DisplayOptionsAreReadAtEachBuildAndApplied) {
    Write(Crlf({"Dim a As Long", "Sub Main()", "End Sub"}));
    Open({"Shop.vbp"});
    Expand("modMain~Shop~");
    EXPECT_TRUE(nodes().Exists("SmodMain~Shop~@0"));
    explorer->CollapseNode(*Node("modMain~Shop~"));
    options.options.ShowVariables = false;
    options.options.ShowSectionEnd = false;
    Expand("modMain~Shop~");
    EXPECT_FALSE(nodes().Exists("SmodMain~Shop~@0"));
    EXPECT_EQ(ChildKeys("modMain~Shop~"), std::vector<std::string>{"SmodMain~Shop~@1"});
    EXPECT_EQ(Node("SmodMain~Shop~@1")->Children(), 0);
    EXPECT_EQ(options.reads, 2);
}

TEST_F(CodeView, DeepNestingIsShownWithoutExhaustingTheStack) {
    std::string code = "Sub Main()\r\n";
    for (int i = 0; i < 10000; ++i)
        code += "If a Then\r\n";
    Write(code);
    Open({"Shop.vbp"});
    Expand("modMain~Shop~");
    EXPECT_TRUE(nodes().Exists("SmodMain~Shop~@10000"));
    EXPECT_TRUE(Node("modMain~Shop~")->Expanded());
    explorer->CollapseNode(*Node("modMain~Shop~"));
    EXPECT_FALSE(nodes().Exists("SmodMain~Shop~@10000"));
}

TEST_F(CodeView, OnlyComponentNodesExpandIntoCode) {
    Write(Crlf({"Sub Main()", "End Sub"}));
    Open({"Shop.vbp"});
    const std::string before = Tree(true);
    Expand("Project~Shop");
    Expand("Type~Modules~Shop");
    EXPECT_EQ(Tree(true), before);
    Expand("modMain~Shop~");
    const auto code = ChildKeys("modMain~Shop~");
    explorer->ExpandNode(*Node("SmodMain~Shop~@0"));
    explorer->CollapseNode(*Node("SmodMain~Shop~@0"));
    EXPECT_EQ(ChildKeys("modMain~Shop~"), code);
    explorer->CollapseNode(*Node("Type~Modules~Shop"));
    EXPECT_FALSE(Node("modMain~Shop~")->Expanded());
    EXPECT_EQ(options.reads, 1);
}

}  // namespace
}  // namespace arbolet::explorer::testing
