// Line preparation: turns a component's code text into the stack of clsLine the builder consumes.
//
// Blanks are normalised, comment lines dropped, continued statements joined onto their first line,
// and each line gets a lower-case key text in which string contents, trailing comments, line
// numbers and named-argument colons are blanked, so that none of them can pass for a keyword or a
// statement separator.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/cls_stack.h"
#include "analysis/line_arena.h"

namespace arbolet::analysis {

// The key text of a trimmed line: lower case, with `""` pairs, string literals, a trailing
// comment, a leading line number and `:=` blanked or cut. Byte positions stay aligned with the
// line, so a position found in the key text is valid in the line.
std::string MakeKeyText(std::string_view trimmedLine);

// Prepares every line of the text and pushes one clsLine per remaining line, last line first, so
// that popping yields them in source order. Returns the number of lines in the split text.
std::int32_t PrepareLines(std::string_view codeText, bool showConstants, LineArena& arena,
                          clsStack& lineStack);

}  // namespace arbolet::analysis
