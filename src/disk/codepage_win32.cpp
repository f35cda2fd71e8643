// Code page conversion through MultiByteToWideChar and WideCharToMultiByte, for Windows.
#include <windows.h>

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

}  // namespace

bool CanConvert(int codePage) {
    CPINFO info;
    return codePage > 0 && GetCPInfo(static_cast<UINT>(codePage), &info) != 0;
}

std::string Decode(std::string_view bytes, int codePage) {
    if (bytes.empty()) return {};
    const auto page = static_cast<UINT>(codePage);
    const int count = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(page, 0, bytes.data(), count, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(page, 0, bytes.data(), count, wide.data(), size);
    return WideToUtf8(wide);
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
