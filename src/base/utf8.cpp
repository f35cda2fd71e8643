// Character-level text helpers over UTF-8 (see utf8.h).
#include "base/utf8.h"

#include <cstdint>

namespace arbolet::text {

std::size_t CharByteLength(std::string_view text, std::size_t i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    std::size_t length = 1;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
    } else {
        return 1;
    }
    if (i + length > text.size()) return 1;
    for (std::size_t k = 1; k < length; ++k) {
        if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return 1;
    }
    return length;
}

namespace {

char32_t DecodeTwoByte(unsigned char a, unsigned char b) {
    return (static_cast<char32_t>(a & 0x1F) << 6) | (b & 0x3F);
}

// Lower case of a two-byte code point when it keeps its length, else the code point itself.
char32_t LowerTwoByte(char32_t c) {
    if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) ||     // Latin-1 capitals
        (c >= 0x391 && c <= 0x3AB && c != 0x3A2) ||  // Greek capitals
        (c >= 0x410 && c <= 0x42F)) {                // Cyrillic capitals
        return c + 0x20;
    }
    if (c >= 0x400 && c <= 0x40F) return c + 0x50;  // Cyrillic capitals with marks
    if (c >= 0x100 && c <= 0x17F && c != 0x130 && c != 0x138 && c != 0x149 && c != 0x178) {
        // Latin Extended-A pairs capital/small; the block shifts parity at U+0139..U+0148 and
        // U+0179..U+017E.
        const bool oddCapitals = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
        const bool isCapital = oddCapitals ? (c % 2 == 1) : (c % 2 == 0);
        return isCapital ? c + 1 : c;
    }
    return c;
}

void LowerSequence(std::string& text, std::size_t i, std::size_t length) {
    auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[i + k]); };
    if (length == 2) {
        const char32_t lower = LowerTwoByte(DecodeTwoByte(byte(0), byte(1)));
        text[i] = static_cast<char>(0xC0 | (lower >> 6));
        text[i + 1] = static_cast<char>(0x80 | (lower & 0x3F));
    } else if (length == 3 && byte(0) == 0xEF && byte(1) == 0xBC && byte(2) >= 0xA1 &&
               byte(2) <= 0xBA) {
        // Full-width A..Z (U+FF21..U+FF3A) to a..z (U+FF41..U+FF5A).
        text[i + 1] = static_cast<char>(0xBD);
        text[i + 2] = static_cast<char>(byte(2) - 0x20);
    }
}

}  // namespace

std::size_t CharCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); i += CharByteLength(text, i))
        ++count;
    return count;
}

bool HasMoreCharsThan(std::string_view text, std::size_t count) {
    return LeftChars(text, count).size() < text.size();
}

std::string_view LeftChars(std::string_view text, std::size_t count) {
    std::size_t i = 0;
    for (std::size_t n = 0; n < count && i < text.size(); ++n)
        i += CharByteLength(text, i);
    return text.substr(0, i);
}

void ToLowerInPlace(std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x80) {
            if (c >= 'A' && c <= 'Z') text[i] = static_cast<char>(c + 32);
            ++i;
            continue;
        }
        const std::size_t length = CharByteLength(text, i);
        if (length > 1) LowerSequence(text, i, length);
        i += length;
    }
}

std::string ToLower(std::string_view text) {
    std::string result(text);
    ToLowerInPlace(result);
    return result;
}

std::string_view TrimLeft(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view{} : text.substr(first);
}

std::string_view TrimRight(std::string_view text) {
    const auto last = text.find_last_not_of(' ');
    return last == std::string_view::npos ? std::string_view{} : text.substr(0, last + 1);
}

std::string_view Trim(std::string_view text) {
    return TrimRight(TrimLeft(text));
}

void AppendCodePoint(std::string& out, char32_t c) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = 0xFFFD;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

}  // namespace arbolet::text
