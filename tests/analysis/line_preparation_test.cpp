// Line preparation: key texts, line splitting, continuations and the pushed order.
#include <gtest/gtest.h>

#include "analysis/line_preparation.h"

namespace arbolet::analysis {
namespace {

std::vector<clsLine*> PopAll(clsStack& stack) {
    std::vector<clsLine*> lines;
    while (stack.Count() > 0)
        lines.push_back(static_cast<clsLine*>(stack.Pop().Object()));
    return lines;
}

TEST(KeyText, BlanksStringsCommentsLineNumbersAndNamedArguments) {
    EXPECT_EQ(MakeKeyText("MsgBox \"a:b\" ' c:d"), "msgbox       ");
    EXPECT_EQ(MakeKeyText("x = \"He said \"\"hi\"\"\""), "x =" + std::string(17, ' '));
    EXPECT_EQ(MakeKeyText("Call Foo(Arg:=1)"), "call foo(arg  1)");
    EXPECT_EQ(MakeKeyText("100 If A Then"), "    if a then");
    EXPECT_EQ(MakeKeyText("100"), "   ");
    EXPECT_EQ(MakeKeyText("x = \"unclosed : text"), "x =                 ");
}

TEST(KeyText, KeepsByteLengthSoPositionsMatchTheLine) {
    const std::string line = "Ä = \"É\": Ö = 1";
    const std::string key = MakeKeyText(line);
    ASSERT_EQ(key.size(), line.size());
    EXPECT_EQ(key.find(':'), line.find(':'));
    EXPECT_EQ(key.substr(0, 2), "ä");
}

TEST(SplitCodeLines, AcceptsCrLfLfAndLoneCr) {
    const auto lines = SplitCodeLines("a\r\nb\nc\rd");
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[3], "d");
    EXPECT_TRUE(SplitCodeLines("").empty());
    EXPECT_EQ(SplitCodeLines("a\r\n").size(), 2u);
}

TEST(NormaliseBlanks, CollapsesTabsAndRuns) {
    EXPECT_EQ(NormaliseBlanks("\t\tIf  a    Then\t "), " If a Then ");
}

TEST(PrepareLines, PushesInSourceOrderWithIndicesAsIdentifiers) {
    LineArena arena;
    clsStack stack;
    const auto count = PrepareLines("' comment\r\nDim a\r\n\r\n  x = 1  ", true, arena, stack);
    EXPECT_EQ(count, 4);
    const auto lines = PopAll(stack);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]->LineID, "1");
    EXPECT_EQ(lines[0]->LCaseContent, "dim a");
    EXPECT_EQ(lines[1]->LineID, "3");
    EXPECT_EQ(lines[1]->LineContent, "x = 1");
}

TEST(PrepareLines, JoinsContinuationsOntoTheFirstLine) {
    LineArena arena;
    clsStack stack;
    PrepareLines("x = a + _\r\n    b + _\r\n  c\r\ny = 2", true, arena, stack);
    const auto lines = PopAll(stack);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]->LineContent, "x = a +  b +  c");
    EXPECT_EQ(lines[1]->LineID, "3");
}

TEST(PrepareLines, ContinuedCommentIsDroppedWhole) {
    LineArena arena;
    clsStack stack;
    PrepareLines("' note _\r\nIf a Then\r\nEnd If", true, arena, stack);
    const auto lines = PopAll(stack);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]->LineContent, "End If");
}

TEST(PrepareLines, DropsConstantLinesOnlyWhenConstantsAreHidden) {
    LineArena arena;
    clsStack shown;
    clsStack hidden;
    const std::string code = "Const A = 1\r\nPrivate Const B = 2\r\nx = constant";
    PrepareLines(code, true, arena, shown);
    PrepareLines(code, false, arena, hidden);
    EXPECT_EQ(shown.Count(), 3);
    ASSERT_EQ(hidden.Count(), 1);
    EXPECT_EQ(static_cast<clsLine*>(hidden.Top().Object())->LineContent, "x = constant");
}

TEST(PrepareLines, LongContinuationChainStaysLinear) {
    LineArena arena;
    clsStack stack;
    std::string code;
    for (int i = 0; i < 20000; ++i)
        code += "a_\r\n";
    code += "b";
    PrepareLines(code, true, arena, stack);
    ASSERT_EQ(stack.Count(), 1);
    const auto* line = static_cast<clsLine*>(stack.Top().Object());
    EXPECT_EQ(line->LineContent.size(), 20000u * 2 + 1);
}

}  // namespace
}  // namespace arbolet::analysis
