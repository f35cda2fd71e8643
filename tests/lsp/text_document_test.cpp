// Positions in UTF-16 and UTF-8 over CRLF, LF and CR lines, and edits at those positions.
#include <gtest/gtest.h>

#include "lsp/text_document.h"

namespace arbolet::lsp {
namespace {

TEST(TextDocument, LinesEndAtCrLfLfAndLoneCr) {
    const TextDocument text("a\r\nb\nc\rd\r\r\ne");
    ASSERT_EQ(text.LineCount(), 6);
    EXPECT_EQ(text.Line(0), "a");
    EXPECT_EQ(text.Line(1), "b");
    EXPECT_EQ(text.Line(2), "c");
    EXPECT_EQ(text.Line(3), "d");
    EXPECT_EQ(text.Line(4), "");
    EXPECT_EQ(text.Line(5), "e");
    EXPECT_EQ(text.Line(6), "");
    EXPECT_EQ(TextDocument("x\n").LineCount(), 2);
}

TEST(TextDocument, ColumnsCountUtf16UnitsOrUtf8Bytes) {
    // "é" is 2 bytes and 1 unit, "😀" is 4 bytes and 2 units (a surrogate pair).
    const TextDocument text("x = \"é😀\" ' z\r\nnext");
    const auto z = text.Text().find('z');
    EXPECT_EQ(text.PositionOf(0, static_cast<std::int32_t>(z), PositionEncoding::Utf16).character,
              12);
    EXPECT_EQ(text.PositionOf(0, static_cast<std::int32_t>(z), PositionEncoding::Utf8).character,
              static_cast<std::int32_t>(z));
    EXPECT_EQ(text.OffsetOf({0, 12}, PositionEncoding::Utf16), z);
    // Past the end of a line is its end; past the last line is the end of the text.
    EXPECT_EQ(text.OffsetOf({0, 500}, PositionEncoding::Utf16), text.Text().find('\r'));
    EXPECT_EQ(text.OffsetOf({9, 0}, PositionEncoding::Utf16), text.Text().size());
    // Inside a surrogate pair the position stays before the character.
    const auto emoji = text.Text().find("\xF0");
    EXPECT_EQ(text.OffsetOf({0, 7}, PositionEncoding::Utf16), emoji);
    // Bytes that are no UTF-8 count one unit each.
    EXPECT_EQ(UnitsOf("a\xFF\xFE"
                      "b",
                      PositionEncoding::Utf16),
              4);
}

TEST(TextDocument, ReplaceEditsTheRangeInTheEncodingGiven) {
    TextDocument text("If a Then\r\n    é = 1\r\nEnd If");
    text.Replace({{1, 4}, {1, 5}}, "b", PositionEncoding::Utf16);
    EXPECT_EQ(text.Line(1), "    b = 1");
    text.Replace({{0, 9}, {1, 0}}, "\n", PositionEncoding::Utf16);
    EXPECT_EQ(text.Text(), "If a Then\n    b = 1\r\nEnd If");
    // A reversed range is the same range.
    text.Replace({{2, 6}, {2, 0}}, "Loop", PositionEncoding::Utf8);
    EXPECT_EQ(text.Line(2), "Loop");
    text.Replace({{0, 0}, {99, 0}}, "", PositionEncoding::Utf8);
    EXPECT_EQ(text.LineCount(), 1);
    EXPECT_EQ(text.Text(), "");
}

}  // namespace
}  // namespace arbolet::lsp
