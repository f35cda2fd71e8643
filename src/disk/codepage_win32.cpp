// Code page conversion through MultiByteToWideChar and WideCharToMultiByte, for Windows.
#include <windows.h>

#include <optional>

#include "disk/codepage_platform.h"

namespace arbolet::disk::platform {
namespace {

std::string WideToUtf8(const std::wstring& wide) {
    if (wide.empty()) return {};
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()),
                                         nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), out.data(), size,
                        nullptr, nullptr);
    return out;
}

// Decodes a run that the code page accepts whole; empty when it does not.
std::optional<std::wstring> DecodeStrict(std::string_view bytes, UINT page) {
    const int count = static_cast<int>(bytes.size());
    const int size =
        MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), count, nullptr, 0);
    if (size == 0) return std::nullopt;
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), count, wide.data(), size);
    return wide;
}

// Character by character, so that only the sequences the code page does not define become
// U+FFFD (Windows would otherwise put the code page's default character there).
std::wstring DecodeLeniently(std::string_view bytes, UINT page) {
    std::wstring wide;
    for (std::size_t i = 0; i < bytes.size();) {
        const bool lead = IsDBCSLeadByteEx(page, static_cast<BYTE>(bytes[i])) != 0;
        const std::size_t length = lead && i + 1 < bytes.size() ? 2 : 1;
        const auto piece = DecodeStrict(bytes.substr(i, length), page);
        if (piece) {
            wide += *piece;
            i += length;
        } else {
            wide += L'\xFFFD';
            ++i;
        }
    }
    return wide;
}

}  // namespace

bool CanConvert(int codePage) {
    CPINFO info;
    return codePage > 0 && GetCPInfo(static_cast<UINT>(codePage), &info) != 0;
}

std::string Decode(std::string_view bytes, int codePage) {
    if (bytes.empty()) return {};
    const auto page = static_cast<UINT>(codePage);
    const auto whole = DecodeStrict(bytes, page);
    return WideToUtf8(whole ? *whole : DecodeLeniently(bytes, page));
}

std::optional<std::string> Encode(std::string_view utf8, int codePage) {
    if (utf8.empty()) return std::string{};
    const int count = static_cast<int>(utf8.size());
    const int wideSize =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), count, nullptr, 0);
    if (wideSize == 0) return std::nullopt;
    std::wstring wide(static_cast<std::size_t>(wideSize), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), count, wide.data(), wideSize);
    const auto page = static_cast<UINT>(codePage);
    BOOL lossy = FALSE;
    const int size = WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, wide.data(), wideSize, nullptr,
                                         0, nullptr, &lossy);
    if (size == 0 || lossy) return std::nullopt;
    std::string out(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, wide.data(), wideSize, out.data(), size,
                        nullptr, nullptr);
    return out;
}

}  // namespace arbolet::disk::platform
