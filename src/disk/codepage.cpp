// Code page conversion: Windows-1252 by table (the default, and the hot path), other pages through
// the platform's converter (see codepage_platform.h).
#include "disk/codepage.h"

#include <array>

#include "base/utf8.h"
#include "disk/codepage_platform.h"

namespace arbolet::disk {
namespace {

// Windows-1252 0x80..0x9F; the five undefined bytes map to the C1 controls, as Windows does.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsAscii(std::string_view bytes) {
    for (char c : bytes) {
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    }
    return true;
}

char32_t Decode1252(unsigned char byte) {
    if (byte >= 0x80 && byte <= 0x9F) return kCp1252High[byte - 0x80];
    return byte;
}

std::string DecodeCp1252(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (char c : bytes)
        text::AppendCodePoint(out, Decode1252(static_cast<unsigned char>(c)));
    return out;
}

// Reads one code point from valid or invalid UTF-8; an invalid byte reads as U+FFFD.
char32_t NextCodePoint(std::string_view s, std::size_t& i) {
    const auto lead = static_cast<unsigned char>(s[i]);
    const std::size_t length = lead < 0x80    ? 1
                               : lead >= 0xF0 ? 4
                               : lead >= 0xE0 ? 3
                               : lead >= 0xC2 ? 2
                                              : 0;
    if (length == 0 || i + length > s.size()) {
        ++i;
        return 0xFFFD;
    }
    char32_t c = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t k = 1; k < length; ++k)
        c = (c << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
    i += length;
    return c;
}

std::optional<std::string> EncodeCp1252(std::string_view utf8) {
    std::string out;
    for (std::size_t i = 0; i < utf8.size();) {
        const char32_t c = NextCodePoint(utf8, i);
        if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
            out += static_cast<char>(c);
            continue;
        }
        std::size_t k = 0;
        while (k < kCp1252High.size() && kCp1252High[k] != c)
            ++k;
        if (k == kCp1252High.size()) return std::nullopt;
        out += static_cast<char>(0x80 + k);
    }
    return out;
}

}  // namespace

bool IsSupportedCodePage(int codePage) {
    return codePage == kDefaultCodePage || platform::CanConvert(codePage);
}

std::string DecodeCodePage(std::string_view bytes, int codePage) {
    if (IsAscii(bytes)) return std::string(bytes);
    if (codePage == kDefaultCodePage) return DecodeCp1252(bytes);
    return platform::Decode(bytes, codePage);
}

std::optional<std::string> EncodeCodePage(std::string_view utf8, int codePage) {
    if (IsAscii(utf8)) return std::string(utf8);
    if (codePage == kDefaultCodePage) return EncodeCp1252(utf8);
    return platform::Encode(utf8, codePage);
}

}  // namespace arbolet::disk
