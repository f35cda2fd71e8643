// The error object that Arbolet's VB-shaped classes raise: a number, a source and a description.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace arbolet {

class VbError : public std::runtime_error {
  public:
    VbError(std::int32_t number, std::string source, std::string description)
        : std::runtime_error(description),
          Number(number),
          Source(std::move(source)),
          Description(std::move(description)) {}

    std::int32_t Number;
    std::string Source;
    std::string Description;
};

// The runtime errors the classes raise themselves, with VB's numbers and texts.
namespace vberr {
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kObjectNotSet = 91;

[[noreturn]] inline void RaiseSubscriptOutOfRange(const std::string& source) {
    throw VbError(kSubscriptOutOfRange, source, "Subscript out of range");
}
[[noreturn]] inline void RaiseOverflow(const std::string& source) {
    throw VbError(kOverflow, source, "Overflow");
}
}  // namespace vberr

}  // namespace arbolet
