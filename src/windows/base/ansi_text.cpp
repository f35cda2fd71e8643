// Text conversions through MultiByteToWideChar and WideCharToMultiByte.
#include "windows/base/ansi_text.h"

#include <windows.h>

#include <climits>

namespace arbolet::windows {
namespace {

// The API counts in int; longer texts are cut rather than overflowing the count.
int ClampedLength(std::size_t length) noexcept {
    return length > INT_MAX ? INT_MAX : static_cast<int>(length);
}

std::wstring ToWide(std::string_view text, UINT codePage) {
    const int length = ClampedLength(text.size());
    if (length == 0) return {};
    const int needed = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    if (needed <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), needed);
    return wide;
}

std::string FromWide(std::wstring_view text, UINT codePage) {
    const int length = ClampedLength(text.size());
    if (length == 0) return {};
    const int needed =
        WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return {};
    std::string narrow(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
    return narrow;
}

}  // namespace

std::wstring Utf8ToWide(std::string_view text) {
    return ToWide(text, CP_UTF8);
}
std::string WideToUtf8(std::wstring_view text) {
    return FromWide(text, CP_UTF8);
}

std::wstring AnsiToWide(std::string_view text) {
    return ToWide(text, CP_ACP);
}
std::string WideToAnsi(std::wstring_view text) {
    return FromWide(text, CP_ACP);
}

std::string Utf8ToAnsi(std::string_view text) {
    return WideToAnsi(Utf8ToWide(text));
}
std::string AnsiToUtf8(std::string_view text) {
    return WideToUtf8(AnsiToWide(text));
}

}  // namespace arbolet::windows
