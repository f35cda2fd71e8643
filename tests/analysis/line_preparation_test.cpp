// Line preparation: key texts, line splitting, continuations and the pushed order.
#include <gtest/gtest.h>

#include <memory>

#include "analysis/line_preparation.h"

namespace arbolet::analysis {
namespace {

// The prepared lines in the order the builder pops them; the arena keeps them alive.
struct Prepared {
    LineArena arena;
    std::int32_t count = 0;
    std::vector<clsLine*> lines;
};

std::unique_ptr<Prepared> Prepare(std::string_view code, bool showConstants = true) {
    auto prepared = std::make_unique<Prepared>();
    clsStack stack;
    prepared->count = PrepareLines(code, showConstants, prepared->arena, stack);
    while (stack.Count() > 0)
        prepared->lines.push_back(static_cast<clsLine*>(stack.Pop().Object()));
    return prepared;
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

TEST(PrepareLines, PushesInSourceOrderWithIndicesAsIdentifiers) {
    const auto prepared = Prepare("' comment\r\nDim a\r\n\r\n  x = 1  ");
    EXPECT_EQ(prepared->count, 4);
    const auto& lines = prepared->lines;
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]->LineID, "1");
    EXPECT_EQ(lines[0]->LCaseContent, "dim a");
    EXPECT_EQ(lines[1]->LineID, "3");
    EXPECT_EQ(lines[1]->LineContent, "x = 1");
}

TEST(PrepareLines, JoinsContinuationsOntoTheFirstLine) {
    const auto joined = Prepare("x = a + _\r\n    b + _\r\n  c\r\ny = 2");
    ASSERT_EQ(joined->lines.size(), 2u);
    EXPECT_EQ(joined->lines[0]->LineContent, "x = a +  b +  c");
    EXPECT_EQ(joined->lines[1]->LineID, "3");

    const auto comment = Prepare("' note _\r\nIf a Then\r\nEnd If");  // dropped whole
    ASSERT_EQ(comment->lines.size(), 1u);
    EXPECT_EQ(comment->lines[0]->LineContent, "End If");

    std::string chain;  // bottom-up joining must stay linear
    for (int i = 0; i < 20000; ++i)
        chain += "a_\r\n";
    const auto longChain = Prepare(chain + "b");
    ASSERT_EQ(longChain->lines.size(), 1u);
    EXPECT_EQ(longChain->lines[0]->LineContent.size(), 20000u * 2 + 1);
}

TEST(PrepareLines, DropsConstantLinesOnlyWhenConstantsAreHidden) {
    const std::string code = "Const A = 1\r\nPrivate Const B = 2\r\nx = constant";
    EXPECT_EQ(Prepare(code)->lines.size(), 3u);
    const auto hidden = Prepare(code, false);
    ASSERT_EQ(hidden->lines.size(), 1u);
    EXPECT_EQ(hidden->lines[0]->LineContent, "x = constant");
}

}  // namespace
}  // namespace arbolet::analysis
