// RegValue: the tagged value that the registry class reads and writes, holding nothing (Empty),
// a 16-bit or 32-bit integer, a text, or an array of bytes.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "windows/registry/vb_array.h"

namespace arbolet::windows {

class RegValue {
  public:
    RegValue() = default;
    RegValue(std::int16_t value) : value_(value) {}
    RegValue(std::int32_t value) : value_(value) {}
    RegValue(std::string value) : value_(std::move(value)) {}
    RegValue(const char* value) : value_(std::string(value)) {}
    RegValue(ByteArray value) : value_(std::move(value)) {}

    bool IsEmpty() const noexcept { return std::holds_alternative<std::monostate>(value_); }
    bool IsInteger() const noexcept { return std::holds_alternative<std::int16_t>(value_); }
    bool IsText() const noexcept { return std::holds_alternative<std::string>(value_); }
    bool IsByteArray() const noexcept { return std::holds_alternative<ByteArray>(value_); }

    // The held alternative, or nullptr when the value holds another kind.
    const std::int16_t* Integer() const noexcept { return std::get_if<std::int16_t>(&value_); }
    const std::int32_t* Long() const noexcept { return std::get_if<std::int32_t>(&value_); }
    const std::string* Text() const noexcept { return std::get_if<std::string>(&value_); }
    const ByteArray* Bytes() const noexcept { return std::get_if<ByteArray>(&value_); }

    // VB's CStr: Empty gives "", integers their decimal digits, and a byte array the UTF-16
    // text that its bytes spell (an odd last byte is dropped).
    std::string ToText() const;

    // VB's CBool: Empty is False, a number is True when not zero, a text must read "True",
    // "False" or a number. Anything else raises "Type mismatch" (13).
    bool ToBoolean() const;

    friend bool operator==(const RegValue&, const RegValue&) = default;

  private:
    std::variant<std::monostate, std::int16_t, std::int32_t, std::string, ByteArray> value_;
};

}  // namespace arbolet::windows
