// Texts that the program keeps in its data only in scrambled form. Scrambling happens at
// compile time, so the plain text never reaches the binary; Unscramble restores it at run time.
#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace arbolet::windows {

namespace scrambling {
// Each byte is XORed with a key from 1 to 255 that runs through all 255 values before it
// repeats, so that no byte of the plain text survives as itself and, within 255 bytes, a
// repeated letter never gives the same byte twice.
constexpr unsigned char KeyAt(std::size_t index) noexcept {
    return static_cast<unsigned char>(1u + (index * 29u + 0x5Bu) % 255u);
}
}  // namespace scrambling

template <std::size_t N>
using ScrambledText = std::array<unsigned char, N>;

// The scrambled bytes of a string literal, without its terminator.
template <std::size_t N>
consteval ScrambledText<N - 1> Scramble(const char (&text)[N]) {
    ScrambledText<N - 1> bytes{};
    for (std::size_t i = 0; i + 1 < N; ++i) {
        bytes[i] =
            static_cast<unsigned char>(static_cast<unsigned char>(text[i]) ^ scrambling::KeyAt(i));
    }
    return bytes;
}

template <std::size_t N>
std::string Unscramble(const ScrambledText<N>& bytes) {
    std::string text(N, '\0');
    for (std::size_t i = 0; i < N; ++i) {
        text[i] = static_cast<char>(bytes[i] ^ scrambling::KeyAt(i));
    }
    return text;
}

}  // namespace arbolet::windows
