// The streaming JSON writer (see json_writer.h).
#include "base/json_writer.h"

#include <array>

namespace arbolet::text {
namespace {

// Length of the valid UTF-8 sequence at s[i], or 0 when the byte starts none.
std::size_t ValidSequence(std::string_view s, std::size_t i) {
    const auto lead = static_cast<unsigned char>(s[i]);
    const std::size_t length = lead >= 0xF0 && lead <= 0xF4   ? 4
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xC2 && lead <= 0xDF ? 2
                                                              : 0;
    if (length == 0 || i + length > s.size()) return 0;
    for (std::size_t k = 1; k < length; ++k) {
        if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return 0;
    }
    return length;
}

}  // namespace

void JsonWriter::WriteEscaped(std::ostream& out, std::string_view text) {
    static constexpr std::array<char, 16> kHex = {'0', '1', '2', '3', '4', '5', '6', '7',
                                                  '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
    out << '"';
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x80) {
            const std::size_t length = ValidSequence(text, i);
            if (length == 0) {
                out << "\\ufffd";
                ++i;
            } else {
                out.write(text.data() + i, static_cast<std::streamsize>(length));
                i += length;
            }
            continue;
        }
        if (c == '"' || c == '\\') {
            out << '\\' << static_cast<char>(c);
        } else if (c == '\n') {
            out << "\\n";
        } else if (c == '\r') {
            out << "\\r";
        } else if (c == '\t') {
            out << "\\t";
        } else if (c < 0x20 || c == 0x7F) {
            out << "\\u00" << kHex[c >> 4] << kHex[c & 0xF];
        } else {
            out << static_cast<char>(c);
        }
        ++i;
    }
    out << '"';
}

void JsonWriter::BeforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (!hasMember_.empty()) {
        if (hasMember_.back()) out_ << ',';
        hasMember_.back() = true;
    }
}

void JsonWriter::BeginObject() {
    BeforeValue();
    out_ << '{';
    hasMember_.push_back(false);
}

void JsonWriter::EndObject() {
    out_ << '}';
    hasMember_.pop_back();
}

void JsonWriter::BeginArray() {
    BeforeValue();
    out_ << '[';
    hasMember_.push_back(false);
}

void JsonWriter::EndArray() {
    out_ << ']';
    hasMember_.pop_back();
}

void JsonWriter::Key(std::string_view key) {
    BeforeValue();
    WriteEscaped(out_, key);
    out_ << ':';
    afterKey_ = true;
}

void JsonWriter::String(std::string_view value) {
    BeforeValue();
    WriteEscaped(out_, value);
}

void JsonWriter::Integer(std::int64_t value) {
    BeforeValue();
    out_ << value;
}

void JsonWriter::OptionalInteger(std::optional<std::int64_t> value) {
    if (value) {
        Integer(*value);
    } else {
        Null();
    }
}

void JsonWriter::Bool(bool value) {
    BeforeValue();
    out_ << (value ? "true" : "false");
}

void JsonWriter::Null() {
    BeforeValue();
    out_ << "null";
}

}  // namespace arbolet::text
