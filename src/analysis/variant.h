// The variant value held by clsStack slots: empty, a number, a text, or a shared object reference.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace arbolet::analysis {

// Base of every object that can travel in a Variant. Objects are shared, never copied: the
// variant holds a non-owning reference and the owner keeps the object alive.
class VbObject {
  public:
    virtual ~VbObject() = default;
    // The class name, as VB's TypeName reports it.
    virtual std::string_view TypeName() const = 0;
    // VB's ordinary equality between two objects of the same type; identity by default.
    virtual bool Equals(const VbObject& other) const { return this == &other; }
};

class Variant {
  public:
    Variant() = default;
    Variant(std::int32_t value) : value_(value) {}
    Variant(double value) : value_(value) {}
    Variant(std::string value) : value_(std::move(value)) {}
    Variant(std::string_view value) : value_(std::string(value)) {}
    Variant(const char* value) : value_(std::string(value)) {}
    Variant(VbObject* object) : value_(object) {}

    bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
    bool IsObject() const { return std::holds_alternative<VbObject*>(value_); }
    bool IsText() const { return std::holds_alternative<std::string>(value_); }
    bool IsNumber() const {
        return std::holds_alternative<std::int32_t>(value_) ||
               std::holds_alternative<double>(value_);
    }

    // The object reference, or nullptr when the variant holds none.
    VbObject* Object() const;
    // The text, or an empty view when the variant holds no text.
    std::string_view Text() const;
    // The number, or 0 when the variant holds none.
    double Number() const;

    // VB's `=` between two variants: numbers numerically, texts by binary comparison, a text
    // and a number by the text's numeric value, Empty as "" or 0, objects as described by
    // VbObject::Equals when their type names agree. Mismatched kinds compare unequal.
    friend bool operator==(const Variant& a, const Variant& b);

  private:
    std::variant<std::monostate, std::int32_t, double, std::string, VbObject*> value_;
};

}  // namespace arbolet::analysis
