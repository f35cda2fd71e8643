// The indentation of tree lines in text output. Deep trees (blocks nested thousands deep) would
// otherwise print indentation quadratic in their size; past a fixed depth the depth is written
// as a number instead.
#pragma once

#include <cstddef>
#include <string>

namespace arbolet::cli {

// The deepest level drawn as blanks, two per level.
inline constexpr std::size_t kMaxIndentLevels = 64;

// Two blanks per level up to kMaxIndentLevels; deeper, the blanks of that level and the depth
// in brackets: "[200] ".
std::string Indentation(std::size_t depth);

}  // namespace arbolet::cli
