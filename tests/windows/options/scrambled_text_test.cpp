// The scrambling that keeps fixed texts, such as the option key, out of the program's data in
// plain form.
#include "windows/options/scrambled_text.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

namespace arbolet::windows {
namespace {

// A literal-like array of the 255 non-zero byte values followed by the terminator.
constexpr std::array<char, 256> kEveryByte = [] {
    std::array<char, 256> text{};
    for (std::size_t i = 0; i < 255; ++i)
        text[i] = static_cast<char>(i + 1);
    return text;
}();

consteval ScrambledText<255> ScrambleEveryByte() {
    char literal[256] = {};
    for (std::size_t i = 0; i < 256; ++i)
        literal[i] = kEveryByte[i];
    return Scramble(literal);
}

consteval ScrambledText<255> ScrambleRepeatedLetter() {
    char literal[256] = {};
    for (std::size_t i = 0; i < 255; ++i)
        literal[i] = 'o';
    return Scramble(literal);
}

TEST(ScrambledText, EveryByteValueComesBackAndNoneIsStoredAsItself) {
    constexpr ScrambledText<255> scrambled = ScrambleEveryByte();
    EXPECT_EQ(Unscramble(scrambled), std::string(kEveryByte.data(), 255));
    for (std::size_t i = 0; i < scrambled.size(); ++i) {
        EXPECT_NE(scrambled[i], static_cast<unsigned char>(kEveryByte[i])) << "byte " << i;
    }
}

TEST(ScrambledText, RepeatedLettersDoNotRepeat) {
    constexpr ScrambledText<255> scrambled = ScrambleRepeatedLetter();
    EXPECT_EQ(std::set<unsigned char>(scrambled.begin(), scrambled.end()).size(), 255u);
}

TEST(ScrambledText, EmptyTextStaysEmpty) {
    EXPECT_EQ(Unscramble(Scramble("")), "");
}

}  // namespace
}  // namespace arbolet::windows
