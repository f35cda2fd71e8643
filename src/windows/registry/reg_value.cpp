// The VB conversions of RegValue to text and to Boolean.
#include "windows/registry/reg_value.h"

#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "base/vb_error.h"
#include "windows/base/ansi_text.h"
#include "windows/base/module_name.h"

namespace arbolet::windows {
namespace {

constexpr std::int32_t kTypeMismatch = 13;

[[noreturn]] void RaiseTypeMismatch() {
    throw VbError(kTypeMismatch, RunningModuleName(), "Type mismatch");
}

std::string BytesAsUtf16Text(const ByteArray& bytes) {
    const std::vector<std::uint8_t>& data = bytes.Elements();
    std::wstring wide;
    wide.reserve(data.size() / 2);
    for (std::size_t i = 0; i + 1 < data.size(); i += 2) {
        wide.push_back(static_cast<wchar_t>(data[i] | (data[i + 1] << 8)));
    }
    return WideToUtf8(wide);
}

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

bool TextToBoolean(std::string_view text) {
    text = TrimBlanks(text);
    if (EqualsIgnoringAsciiCase(text, "true")) return true;
    if (EqualsIgnoringAsciiCase(text, "false")) return false;
    if (text.empty() || text.find_first_not_of("0123456789+-.eE") != std::string_view::npos) {
        RaiseTypeMismatch();
    }
    const std::string digits(text);
    char* end = nullptr;
    errno = 0;
    const double number = std::strtod(digits.c_str(), &end);
    if (end != digits.c_str() + digits.size() || errno == ERANGE) RaiseTypeMismatch();
    return number != 0;
}

}  // namespace

std::string RegValue::ToText() const {
    if (const auto* integer = Integer()) return std::to_string(*integer);
    if (const auto* number = Long()) return std::to_string(*number);
    if (const auto* text = Text()) return *text;
    if (const auto* bytes = Bytes()) return BytesAsUtf16Text(*bytes);
    return {};
}

bool RegValue::ToBoolean() const {
    if (const auto* integer = Integer()) return *integer != 0;
    if (const auto* number = Long()) return *number != 0;
    if (const auto* text = Text()) return TextToBoolean(*text);
    if (IsByteArray()) RaiseTypeMismatch();
    return false;
}

}  // namespace arbolet::windows
