// Character counting, cutting and lower-casing over UTF-8, including invalid bytes.
#include <gtest/gtest.h>

#include "base/utf8.h"

namespace arbolet::text {
namespace {

TEST(Utf8, CountsCharactersNotBytes) {
    EXPECT_EQ(CharCount("abc"), 3u);
    EXPECT_EQ(CharCount("Quantité"), 8u);
    EXPECT_EQ(CharCount("日本"), 2u);
    EXPECT_EQ(CharCount("\xFF\xFE"), 2u);  // invalid bytes count one each
    EXPECT_EQ(CharCount("\xC3"), 1u);      // truncated sequence
}

TEST(Utf8, LeftNeverSplitsACharacter) {
    EXPECT_EQ(LeftChars("éèê", 2), "éè");
    EXPECT_EQ(LeftChars("ab", 5), "ab");
    EXPECT_EQ(LeftChars("日本語", 1), "日");
}

TEST(Utf8, LowerCaseKeepsByteLengths) {
    EXPECT_EQ(ToLower("END IF"), "end if");
    EXPECT_EQ(ToLower("ÀÉÎÕÜ×"), "àéîõü×");
    EXPECT_EQ(ToLower("ΑΒΓ ДЖЯ ЁЂ"), "αβγ джя ёђ");
    EXPECT_EQ(ToLower("ĀĹŁŹŒ"), "āĺłźœ");
    EXPECT_EQ(ToLower("ＡＢ"), "ａｂ");
    const std::string junk = "\xC3\x28\xFF A";
    EXPECT_EQ(ToLower(junk), "\xC3\x28\xFF a");
}

TEST(Utf8, TrimRemovesOnlyBlanks) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\ta\t"), "\ta\t");
    EXPECT_EQ(Trim("   "), "");
}

TEST(Utf8, AppendCodePointReplacesInvalidOnes) {
    std::string out;
    AppendCodePoint(out, U'€');
    AppendCodePoint(out, 0xD800);
    EXPECT_EQ(out, "€\xEF\xBF\xBD");
}

}  // namespace
}  // namespace arbolet::text
