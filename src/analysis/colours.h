// The colours of code-tree nodes: Windows colour values, blue in the high byte, red in the low.
#pragma once

#include <cstdint>

namespace arbolet::analysis::colour {

inline constexpr std::int32_t kBlue = 0xFF0000;       // block openers
inline constexpr std::int32_t kLightGrey = 0xC0C0C0;  // section ends
inline constexpr std::int32_t kDarkGrey = 0x606060;   // constants, events, types and enums
inline constexpr std::int32_t kSlateBlue = 0xCC6060;  // compiler directives, Implements
inline constexpr std::int32_t kNavy = 0x800000;       // variable declarations
inline constexpr std::int32_t kRed = 0x0000FF;        // error nodes
inline constexpr std::int32_t kBlack = 0;             // everything else

inline constexpr bool IsError(std::int32_t c) {
    return c == kRed;
}

}  // namespace arbolet::analysis::colour
