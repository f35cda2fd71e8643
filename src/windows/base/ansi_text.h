// Conversions between Arbolet's UTF-8 text and the texts that cross the Windows API: the
// system's ANSI code page for the 8-bit ("A") functions, UTF-16 for the wide ones.
//
// Every conversion accepts arbitrary bytes: what does not convert becomes the code page's
// replacement character, and embedded NUL characters are kept.
#pragma once

#include <string>
#include <string_view>

namespace arbolet::windows {

std::wstring Utf8ToWide(std::string_view text);
std::string WideToUtf8(std::wstring_view text);

std::wstring AnsiToWide(std::string_view text);
std::string WideToAnsi(std::wstring_view text);

std::string Utf8ToAnsi(std::string_view text);
std::string AnsiToUtf8(std::string_view text);

}  // namespace arbolet::windows
