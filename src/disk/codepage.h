// Conversion between the ANSI code pages that VB6 files are written in and UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace arbolet::disk {

inline constexpr int kDefaultCodePage = 1252;

// Whether the code page can be decoded and encoded on this platform (1250-1258, 874, 932, 936,
// 949, 950 and the other pages the platform knows).
bool IsSupportedCodePage(int codePage);

// Decodes bytes in the code page to UTF-8. Never fails: a byte sequence the code page does not
// define becomes U+FFFD. Pure ASCII is passed through unchanged without conversion work.
std::string DecodeCodePage(std::string_view bytes, int codePage);

// Encodes UTF-8 text in the code page; nullopt when a character has no form in it.
std::optional<std::string> EncodeCodePage(std::string_view utf8, int codePage);

}  // namespace arbolet::disk
