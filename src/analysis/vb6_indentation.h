// Where a block that was never closed most likely ended, judged by the code's indentation.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace arbolet::analysis::vb6 {

// The indentation of a line in columns, a tab reaching the next multiple of four.
std::int32_t IndentOf(std::string_view line);

// The indentation of every physical line, or -1 for lines that say nothing about the block
// structure: blank and comment lines, continuation lines, directives, labels and numbered lines.
std::vector<std::int32_t> CodeIndentation(std::string_view code);

// For a block opened on line `opener` whose missing end was noticed on line `noticed` (0-based
// physical lines): the first code line after the block's body that is indented no deeper than
// the opener. Only when the body is indented deeper than the opener, so that indentation says
// something. `budget` bounds the lines looked at over all calls, keeping the search linear.
std::optional<std::int32_t> ProbableEnd(const std::vector<std::int32_t>& indents,
                                        std::int32_t opener, std::int32_t noticed,
                                        std::int64_t& budget);

}  // namespace arbolet::analysis::vb6
