// VB's comparison rules for the variant values held by clsStack.
#include "analysis/variant.h"

#include <charconv>
#include <optional>

#include "base/utf8.h"

namespace arbolet::analysis {
namespace {

std::optional<double> ParseNumber(std::string_view text) {
    text = text::Trim(text);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

VbObject* Variant::Object() const {
    const auto* object = std::get_if<VbObject*>(&value_);
    return object ? *object : nullptr;
}

std::string_view Variant::Text() const {
    const auto* text = std::get_if<std::string>(&value_);
    return text ? std::string_view(*text) : std::string_view{};
}

double Variant::Number() const {
    if (const auto* i = std::get_if<std::int32_t>(&value_)) return *i;
    if (const auto* d = std::get_if<double>(&value_)) return *d;
    return 0;
}

bool operator==(const Variant& a, const Variant& b) {
    if (a.IsObject() || b.IsObject()) {
        if (!a.IsObject() || !b.IsObject()) return false;
        const VbObject* x = a.Object();
        const VbObject* y = b.Object();
        if (x == nullptr || y == nullptr) return x == y;
        return x->TypeName() == y->TypeName() && x->Equals(*y);
    }
    if (a.IsEmpty() && b.IsEmpty()) return true;
    if (a.IsEmpty()) return b.IsText() ? b.Text().empty() : b.Number() == 0;
    if (b.IsEmpty()) return b == a;
    if (a.IsText() && b.IsText()) return a.Text() == b.Text();
    if (a.IsNumber() && b.IsNumber()) return a.Number() == b.Number();
    // A text against a number compares by the text's numeric value; non-numeric text differs.
    const Variant& text = a.IsText() ? a : b;
    const Variant& number = a.IsText() ? b : a;
    const auto parsed = ParseNumber(text.Text());
    return parsed && *parsed == number.Number();
}

}  // namespace arbolet::analysis
