// Character-level text helpers over UTF-8, counting characters as VB counts them.
//
// Text inside Arbolet is UTF-8. VB measures lengths and positions in characters, so the few
// places that cut text by length go through these helpers. Every helper accepts arbitrary bytes:
// a byte that does not start a valid sequence counts as one character of its own.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace arbolet::text {

// The byte length of the character at text[i]: its valid UTF-8 sequence, or 1 for a byte that
// starts none.
std::size_t CharByteLength(std::string_view text, std::size_t i);

// Number of characters in the text.
std::size_t CharCount(std::string_view text);

// Whether the text has more than `count` characters; looks no further than it must.
bool HasMoreCharsThan(std::string_view text, std::size_t count);

// The first `count` characters (VB's Left).
std::string_view LeftChars(std::string_view text, std::size_t count);

// Lower-cases ASCII, Latin-1, Latin Extended-A, Greek, Cyrillic and full-width Latin letters,
// keeping every character's byte length, so that positions found in the lower-case text are
// valid in the original (VB's LCase, as far as keyword matching and sorting need it).
std::string ToLower(std::string_view text);
void ToLowerInPlace(std::string& text);

// VB's Trim, LTrim and RTrim: only the blank (code 32) is removed.
std::string_view Trim(std::string_view text);
std::string_view TrimLeft(std::string_view text);
std::string_view TrimRight(std::string_view text);

// Appends the UTF-8 form of a code point (U+FFFD for invalid ones).
void AppendCodePoint(std::string& out, char32_t codePoint);

}  // namespace arbolet::text
