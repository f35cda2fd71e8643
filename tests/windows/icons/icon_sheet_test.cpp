// The icon sheet format: what a well-formed sheet gives, and a clear line-numbered message for
// each way a hand-edited sheet goes wrong.
#include <gtest/gtest.h>

#include "windows/icons/icon_sheet.h"

namespace arbolet::windows::icons {
namespace {

TEST(IconSheet, ReadsPaletteColoursAndTransparency) {
    const IconSheet sheet = ParseIconSheet(
        "# a comment\r\nsize 2\r\ncolour r FF0000\ncolour b 0000ff\n\nicon dot\n.r\nb.\n"
        "icon full\nrr\nrb  \n");
    ASSERT_EQ(sheet.error, "");
    EXPECT_EQ(sheet.size, 2);
    ASSERT_EQ(sheet.icons.size(), 2u);
    const IconPixels* dot = sheet.Find("dot");
    ASSERT_NE(dot, nullptr);
    EXPECT_EQ(dot->argb, (std::vector<std::uint32_t>{0, 0xFFFF0000u, 0xFF0000FFu, 0}));
    EXPECT_EQ(sheet.Find("full")->argb[3], 0xFF0000FFu) << "trailing blanks are not pixels";
    EXPECT_EQ(sheet.Find("missing"), nullptr);
}

TEST(IconSheet, NamesTheLineOfEachMistake) {
    struct Case {
        const char* text;
        const char* error;
    };
    const Case cases[] = {
        {"size 2\ncolour r FF0000\nicon a\nrr\nr\n",
         "line 5: icon 'a' has a row of 1 pixels, not 2"},
        {"size 2\nicon a\nrr\n", "line 3: icon 'a' uses 'r', which is not in the palette"},
        {"size 2\ncolour r FF0000\nicon a\nrr\n", "line 4: icon 'a' is cut short"},
        {"colour r FF0000\nicon a\n", "line 2: the size must come before the first icon"},
        {"size 0\n", "line 1: the size must be a number from 1 to 256"},
        {"size 9999999999\n", "line 1: the size must be a number from 1 to 256"},
        {"size 1\nsize 1\n", "line 2: the size is given twice"},
        {"size 1\ncolour r GG0000\n", "line 2: a colour is written 'colour C RRGGBB'"},
        {"size 1\ncolour . 000000\n", "line 2: a colour needs a visible character other than '.'"},
        {"size 1\ncolour r 000000\nicon a\nr\nicon a\nr\n", "line 5: icon 'a' is drawn twice"},
        {"size 1\nicon \n", "line 2: an icon needs a name"},
        {"size 1\nhello\n", "line 2: unknown line 'hello'"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ParseIconSheet(c.text).error, c.error) << c.text;
    }
}

TEST(IconSheet, KeepsTheIconsBeforeAMistakeAndSurvivesJunk) {
    const IconSheet sheet = ParseIconSheet("size 1\ncolour r FF0000\nicon a\nr\nicon b\nx\n");
    EXPECT_NE(sheet.Find("a"), nullptr);
    EXPECT_EQ(sheet.Find("b"), nullptr);

    std::string junk;
    for (int i = 0; i < 4096; ++i)
        junk.push_back(static_cast<char>((i * 7919) % 256));
    EXPECT_NE(ParseIconSheet(junk).error, "");
    EXPECT_NE(ParseIconSheet("size 3\ncolour \xff FFFFFF\n").error, "");
}

}  // namespace
}  // namespace arbolet::windows::icons
