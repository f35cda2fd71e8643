// Texts from file names and file contents as `check` shows them: UTF-8 stays as it is, bytes
// that are not UTF-8 (a Latin-1 file name on Linux) are shown as `\xE9`, so that two names never
// look alike and no replacement character hides what the name is.
#pragma once

#include <string>
#include <string_view>

namespace arbolet::check {

std::string ShownText(std::string_view bytes);

}  // namespace arbolet::check
