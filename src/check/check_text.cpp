// Showing bytes that are not UTF-8 (see check_text.h).
#include "check/check_text.h"

namespace arbolet::check {
namespace {

// The length of the valid UTF-8 sequence at `at`, or 0.
std::size_t SequenceLength(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = 0;
    char32_t minimum = 0;
    char32_t code = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        minimum = 0x80;
        code = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        minimum = 0x800;
        code = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        minimum = 0x10000;
        code = lead & 0x07;
    } else {
        return 0;
    }
    if (at + length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        const auto c = static_cast<unsigned char>(text[at + i]);
        if ((c & 0xC0) != 0x80) return 0;
        code = (code << 6) | (c & 0x3F);
    }
    if (code < minimum || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return length;
}

}  // namespace

std::string ShownText(std::string_view bytes) {
    std::string shown;
    shown.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        if (c < 0x80) {
            shown += static_cast<char>(c);
            ++i;
            continue;
        }
        const std::size_t length = SequenceLength(bytes, i);
        if (length > 0) {
            shown.append(bytes.substr(i, length));
            i += length;
            continue;
        }
        static constexpr char kHex[] = "0123456789ABCDEF";
        shown += "\\x";
        shown += kHex[c >> 4];
        shown += kHex[c & 0xF];
        ++i;
    }
    return shown;
}

}  // namespace arbolet::check
