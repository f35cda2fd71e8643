// Code page round trips and the characters each page cannot hold.
#include <gtest/gtest.h>

#include "disk/codepage.h"

namespace arbolet::disk {
namespace {

TEST(CodePage, Windows1252RoundTripsEveryByte) {
    std::string all;
    for (int b = 0; b < 256; ++b)
        all += static_cast<char>(b);
    const std::string utf8 = DecodeCodePage(all, 1252);
    EXPECT_EQ(EncodeCodePage(utf8, 1252), all);
    EXPECT_EQ(DecodeCodePage("\x80\x9F\xFF", 1252), "€Ÿÿ");
}

TEST(CodePage, OtherPagesDecodeAndEncode) {
    ASSERT_TRUE(IsSupportedCodePage(1253));
    EXPECT_EQ(DecodeCodePage("\xC1\xE8\xE7", 1253), "Αθη");
    EXPECT_EQ(EncodeCodePage("Αθη", 1253), "\xC1\xE8\xE7");
    ASSERT_TRUE(IsSupportedCodePage(932));
    EXPECT_EQ(DecodeCodePage("\x93\xFA\x96\x7B", 932), "日本");
    EXPECT_EQ(EncodeCodePage("日本", 932), "\x93\xFA\x96\x7B");
}

TEST(CodePage, UnrepresentableTextIsRefusedAndJunkIsReplaced) {
    EXPECT_FALSE(EncodeCodePage("日本", 1252).has_value());
    EXPECT_FALSE(EncodeCodePage("Привет", 1253).has_value());
    EXPECT_EQ(DecodeCodePage("z\x81", 932), "z\xEF\xBF\xBD");  // a lead byte cut off
    EXPECT_FALSE(IsSupportedCodePage(0));
    EXPECT_FALSE(IsSupportedCodePage(99999));
}

}  // namespace
}  // namespace arbolet::disk
