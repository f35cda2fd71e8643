// The block tree: which statements open blocks, where their keywords are, how they nest and
// end, and that its findings are exactly the checker's.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis/crlf_lines.h"
#include "analysis/vb6_block_tree.h"

namespace arbolet::analysis::vb6 {
namespace {

using analysis::testing::Lines;

// The text a span covers in the code.
std::string Covered(const std::string& code, const Span& span, std::int32_t firstLine = 1) {
    std::size_t start = 0;
    for (std::int32_t line = firstLine; line < span.line; ++line)
        start = code.find('\n', start) + 1;
    return code.substr(start + static_cast<std::size_t>(span.column),
                       static_cast<std::size_t>(span.length));
}

constexpr const char* kKinds[] = {
    "Sub",    "Function", "PropertyGet", "PropertyLet", "PropertySet", "Type", "Enum", "If",
    "Select", "For",      "ForEach",     "Do",          "While",       "With", "#If"};

// The tree as "kind name [opener..last] closed/open" lines, indented by depth.
std::vector<std::string> Outline(const BlockTree& tree) {
    std::vector<std::string> lines;
    const auto visit = [&](auto&& self, std::int32_t index, int depth) -> void {
        const Block& block = tree.blocks[static_cast<std::size_t>(index)];
        lines.push_back(std::string(static_cast<std::size_t>(depth) * 2, ' ') +
                        kKinds[static_cast<int>(block.kind)] + " " + block.name + " [" +
                        std::to_string(block.opener.line) + ".." + std::to_string(block.lastLine) +
                        "]" + (block.closer ? "" : " open"));
        for (const std::int32_t child : block.children) {
            EXPECT_EQ(tree.blocks[static_cast<std::size_t>(child)].parent, index);
            self(self, child, depth + 1);
        }
    };
    for (const std::int32_t root : tree.roots)
        visit(visit, root, 0);
    return lines;
}

using Texts = std::vector<std::string>;

TEST(Vb6BlockTree, NestedBlocksWithTheirKeywordsAndBranches) {
    const std::string code = Lines({
        "Option Explicit",                     // 1
        "Private Type Point",                  // 2
        "    Type As Long",                    // 3 a member, not a block
        "End Type",                            // 4
        "Public Property Get Size() As Long",  // 5
        "    With Me",                         // 6
        "        If a Then",                   // 7
        "            For Each v In c",         // 8
        "            Next",                    // 9
        "        ElseIf b Then",               // 10
        "            Select Case x",           // 11
        "            Case 1: Do: Loop",        // 12
        "            Case Else",               // 13
        "            End Select",              // 14
        "        Else",                        // 15
        "            While w: Wend",           // 16
        "        End If",                      // 17
        "    End With",                        // 18
        "End Property",                        // 19
    });
    const BlockTree tree = ParseBlocks(code);
    EXPECT_TRUE(tree.findings.empty());
    EXPECT_EQ(Outline(tree), (Texts{
                                 "Type Point [2..4]",
                                 "PropertyGet Size [5..19]",
                                 "  With With Me [6..18]",
                                 "    If If a Then [7..17]",
                                 "      ForEach For Each v In c [8..9]",
                                 "      Select Select Case x [11..14]",
                                 "        Do Do [12..12]",
                                 "      While While w [16..16]",
                             }));
    const Block& property = tree.blocks[1];
    EXPECT_EQ(Covered(code, property.opener), "Public Property Get");
    EXPECT_EQ(Covered(code, property.nameSpan), "Size");
    EXPECT_EQ(Covered(code, *property.closer), "End Property");
    const Block& branching = tree.blocks[3];
    ASSERT_EQ(branching.middles.size(), 2u);
    EXPECT_EQ(Covered(code, branching.middles[0]), "ElseIf");
    EXPECT_EQ(branching.middles[0].line, 10);
    EXPECT_EQ(Covered(code, branching.middles[1]), "Else");
    EXPECT_EQ(Covered(code, *branching.closer), "End If");
    EXPECT_EQ(Covered(code, tree.blocks[4].opener), "For Each");
    EXPECT_EQ(Covered(code, tree.blocks[5].opener), "Select Case");
    EXPECT_EQ(tree.blocks[5].middles.size(), 2u);
    EXPECT_EQ(Covered(code, *tree.blocks[6].closer), "Loop");
    EXPECT_EQ(tree.blocks[6].closer->column, 24);
    EXPECT_EQ(Covered(code, *tree.blocks[7].closer), "Wend");
}

TEST(Vb6BlockTree, StatementsThatOpenNoBlock) {
    const BlockTree tree = ParseBlocks(Lines({
        "Sub A()",
        "    If x Then y = 1",
        "    If x Then: y = 1",
        "    If x Then y = 1 Else z = 2",
        "    For i = 1 To 2: Next",
        "    s = \"If a Then\" ' For i = 1 To 2",
        "End Sub",
    }));
    EXPECT_TRUE(tree.findings.empty());
    EXPECT_EQ(Outline(tree), (Texts{"Sub A [1..7]", "  For For i = 1 To 2 [5..5]"}));
}

TEST(Vb6BlockTree, ContinuedStatementsKeepPhysicalPositions) {
    const std::string code = Lines({
        "Private Function _",    // 1
        "    Twice(ByVal n _",   // 2
        "    As Long) As Long",  // 3
        "    If n > 0 And _",    // 4
        "       n < 9 Then",     // 5
        "    End If",            // 6
        "End Function",          // 7
    });
    const BlockTree tree = ParseBlocks(code, 1);
    ASSERT_EQ(tree.blocks.size(), 2u);
    const Block& function = tree.blocks[0];
    EXPECT_EQ(function.name, "Twice");
    EXPECT_EQ(function.nameSpan.line, 2);
    EXPECT_EQ(Covered(code, function.nameSpan), "Twice");
    EXPECT_EQ(Covered(code, function.opener), "Private Function");
    EXPECT_EQ(function.openerEndLine, 3);
    const Block& condition = tree.blocks[1];
    EXPECT_EQ(condition.opener.line, 4);
    EXPECT_EQ(condition.openerEndLine, 5);
    EXPECT_EQ(Covered(code, *condition.closer), "End If");
    // Lines count from the first line given.
    const BlockTree shifted = ParseBlocks(code, 11);
    EXPECT_EQ(shifted.blocks[1].opener.line, 14);
    EXPECT_EQ(shifted.blocks[1].closer->line, 16);
    EXPECT_EQ(Covered(code, shifted.blocks[1].opener, 11), "If");
}

TEST(Vb6BlockTree, ConditionalBranchesAreBlocks) {
    const std::string code = Lines({
        "#If Win64 Then",             // 1
        "Sub A(ByVal p As LongPtr)",  // 2
        "#Else",                      // 3
        "Sub A(ByVal p As Long)",     // 4
        "#End If",                    // 5
        "    #If DEBUG Then",         // 6
        "    Debug.Print p",          // 7
        "    #ElseIf TRACE Then",     // 8
        "    #End If",                // 9
        "End Sub",                    // 10
    });
    const BlockTree tree = ParseBlocks(code);
    EXPECT_TRUE(tree.findings.empty());
    EXPECT_EQ(Outline(tree), (Texts{
                                 "#If #If Win64 Then [1..5]",
                                 "  Sub A [2..10]",
                                 "    #If #If DEBUG Then [6..9]",
                                 "  Sub A [4..4] open",
                             }));
    EXPECT_EQ(Covered(code, tree.blocks[0].middles.at(0)), "#Else");
    EXPECT_EQ(Covered(code, *tree.blocks[0].closer), "#End If");
    EXPECT_EQ(Covered(code, tree.blocks[3].middles.at(0)), "#ElseIf");
}

TEST(Vb6BlockTree, BrokenStructureStillGivesATree) {
    const std::string code = Lines({
        "Sub A()",             // 1
        "    For i = 1 To 2",  // 2
        "        If a Then",   // 3
        "    Next i",          // 4 cuts the If
        "    End With",        // 5 unmatched
        "Function B()",        // 6 cuts nothing: A is still open
        "    Do",              // 7
    });
    const BlockTree tree = ParseBlocks(code);
    EXPECT_EQ(Outline(tree), (Texts{
                                 "Sub A [1..5] open",
                                 "  For For i = 1 To 2 [2..4]",
                                 "    If If a Then [3..3] open",
                                 "Function B [6..7] open",
                                 "  Do Do [7..7] open",
                             }));
    EXPECT_EQ(tree.findings.size(), 5u);
    // The same findings as the checker's, in the same order.
    const auto checked = CheckBlocks(code);
    ASSERT_EQ(checked.size(), tree.findings.size());
    for (std::size_t i = 0; i < checked.size(); ++i) {
        EXPECT_EQ(checked[i].message, tree.findings[i].message);
        EXPECT_EQ(checked[i].line, tree.findings[i].line);
    }
}

TEST(Vb6BlockTree, HostileInputGivesAFiniteTree) {
    std::string deep;
    for (int i = 0; i < 20000; ++i)
        deep += "If a Then\n";
    const BlockTree tree = ParseBlocks(deep);
    ASSERT_EQ(tree.blocks.size(), 20000u);
    EXPECT_EQ(tree.blocks.back().parent, 19998);
    std::string junk = std::string("\0_ \r\n:#If\"'", 12) + std::string(50000, ':') + "_";
    for (int i = 0; i < 2000; ++i)
        junk += "#Else\n#If x\n Sub _\n";
    const BlockTree broken = ParseBlocks(junk);
    for (const Block& block : broken.blocks) {
        EXPECT_LT(block.parent, static_cast<std::int32_t>(broken.blocks.size()));
        EXPECT_LE(block.opener.line, block.lastLine);
    }
}

}  // namespace
}  // namespace arbolet::analysis::vb6
