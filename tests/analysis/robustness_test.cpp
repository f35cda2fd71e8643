// Analysis never fails: arbitrary bytes, huge lines, huge modules, deep nesting and random
// statement soup all give a finite, acyclic tree whose error nodes are red.
#include <gtest/gtest.h>

#include <random>

#include "analysis/code_tree.h"
#include "analysis/colours.h"

namespace arbolet::analysis {
namespace {

struct TreeShape {
    std::size_t nodes = 0;
    int maxDepth = 0;
    std::size_t errors = 0;
};

TreeShape ShapeOf(const CodeTree& tree) {
    TreeShape shape;
    WalkTree(*tree.root, [&](const clsLine& line, int depth) {
        ++shape.nodes;
        shape.maxDepth = std::max(shape.maxDepth, depth);
        if (line.LineColour == colour::kRed) ++shape.errors;
    });
    return shape;
}

// Every node but the root was made by the build; a node can be listed twice at most, so a walk
// that visits more nodes than that has found a cycle or a corrupt child list.
void ExpectSane(const CodeTree& tree) {
    const auto shape = ShapeOf(tree);
    EXPECT_LE(shape.nodes, 2 * tree.arena.size());
}

const DisplayOptions kAllOptionCombinations[] = {
    DisplayOptions{},
    DisplayOptions{false, false, false, false, false, false, true},
    DisplayOptions{true, false, true, false, true, false, true},
};

TEST(Robustness, ArbitraryBytes) {
    std::mt19937 random(1234);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int round = 0; round < 200; ++round) {
        std::string junk(static_cast<std::size_t>(random() % 4000), '\0');
        for (char& c : junk)
            c = static_cast<char>(byte(random));
        for (const auto& options : kAllOptionCombinations)
            ExpectSane(BuildCodeTree(junk, options));
    }
}

TEST(Robustness, HundredThousandCharacterLines) {
    const std::string longStatement = "x = " + std::string(100000, 'a') + ": y = 1";
    const std::string longString = "MsgBox \"" + std::string(100000, ':') + "\"";
    // Every colon splits off the rest of the line: 100,000 nodes, each sharing the line's text.
    const std::string manyColons = "If a Then" + std::string(100000, ':') + " b";
    const auto tree = BuildCodeTree(longStatement + "\r\n" + longString + "\r\n" + manyColons, {});
    ExpectSane(tree);
    // x, " y = 1", MsgBox, the If opened by the cut "If a Then", and its missing End If.
    ASSERT_EQ(tree.root->ChildCount, 5);
    EXPECT_EQ(tree.root->Child(3)->Child(2)->LineID.str(), "@~@~@~2");
    EXPECT_EQ(tree.root->Child(1)->LineContent, " y = 1");
    EXPECT_EQ(tree.root->Child(3)->ChildCount, 100000);
}

TEST(Robustness, NextWithOneHundredThousandVariables) {
    std::string next = "Next a";
    for (int i = 0; i < 100000; ++i)
        next += ", a";
    const auto tree = BuildCodeTree("For a = 1 To 2\r\n" + next, {});
    EXPECT_EQ(ShapeOf(tree).errors, 100000u);
    EXPECT_EQ(tree.root->Child(0)->Child(1)->LineID.str(),
              "__1");  // the second variable is the first mismatch
}

TEST(Robustness, TwoHundredThousandLines) {
    std::string code;
    for (int i = 0; i < 50000; ++i)
        code += "Sub P" + std::to_string(i) + "()\r\nIf a Then\r\nx = 1\r\nEnd Sub\r\n";
    const auto tree = BuildCodeTree(code, {});
    ExpectSane(tree);
    EXPECT_EQ(tree.lineCount, 200001);
    // Each procedure reports NO START sub, and its If and the Sub are reported open when the
    // next header or the end comes.
    EXPECT_EQ(ShapeOf(tree).errors, 150000u);
}

TEST(Robustness, NestingTenThousandDeep) {
    std::string code;
    for (int i = 0; i < 10000; ++i)
        code += "If a Then\r\n";
    code += "x = 1\r\n";
    for (int i = 0; i < 10000; ++i)
        code += "End If\r\n";
    const auto tree = BuildCodeTree(code, {});
    const auto shape = ShapeOf(tree);
    EXPECT_EQ(shape.maxDepth, 10001);
    EXPECT_EQ(shape.errors, 0u);

    std::string unclosed;
    for (int i = 0; i < 10000; ++i)
        unclosed += "Do\r\nFor i = 1 To 2\r\n";
    const auto open = BuildCodeTree(unclosed, {});
    EXPECT_EQ(ShapeOf(open).errors, 20000u);
}

TEST(Robustness, RandomStatementSoup) {
    static const char* kLines[] = {"If a Then",
                                   "If a Then b",
                                   "Else",
                                   "ElseIf b Then",
                                   "End If",
                                   "For i = 1 To 2",
                                   "Next",
                                   "Next i, j",
                                   "For Each x In y",
                                   "Do",
                                   "Loop",
                                   "Do While z",
                                   "While q",
                                   "Wend",
                                   "With o",
                                   "End With",
                                   "Select Case s",
                                   "Case 1",
                                   "End Select",
                                   "Sub S()",
                                   "End Sub",
                                   "Function F()",
                                   "End Function",
                                   "Private Sub T()",
                                   "Public Enum E",
                                   "End Enum",
                                   "Type T",
                                   "End Type",
                                   "Private Private X",
                                   "Public Z As Long",
                                   "Dim d",
                                   "Const c = 1",
                                   "#If A Then",
                                   "#Else",
                                   "#End If",
                                   "#Const K = 1",
                                   "End",
                                   "x = 1: y = 2",
                                   "Retry:",
                                   "10 GoTo 10",
                                   "a = \"b:c\"",
                                   "' comment",
                                   "y = a + _",
                                   "Private m As Long: Dim n",
                                   "Property Get P()",
                                   "Loop Until k",
                                   "Enum F",
                                   "Private W",
                                   "Friend Function G()",
                                   "End Property",
                                   ": : :",
                                   "Static Sub U()"};
    std::mt19937 random(42);
    for (int round = 0; round < 300; ++round) {
        std::string code;
        const int count = static_cast<int>(random() % 200);
        for (int i = 0; i < count; ++i)
            code += std::string(kLines[random() % std::size(kLines)]) + "\r\n";
        for (const auto& options : kAllOptionCombinations)
            ExpectSane(BuildCodeTree(code, options));
    }
}

TEST(Robustness, ErrorNodesAreAllRed) {
    const auto tree = BuildCodeTree(
        "End If\r\nNext\r\nLoop\r\nWend\r\nCase 1\r\n#Else\r\nSub A()\r\nIf x Then", {});
    std::size_t errorTexts = 0;
    WalkTree(*tree.root, [&](const clsLine& line, int) {
        if (line.LineContent.view().starts_with("NO START") ||
            line.LineContent.view().starts_with("ERROR")) {
            ++errorTexts;
            EXPECT_EQ(line.LineColour, colour::kRed) << line.LineContent;
        }
    });
    EXPECT_EQ(errorTexts, 9u);
}

}  // namespace
}  // namespace arbolet::analysis
