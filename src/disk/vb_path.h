// Paths as VB6 project files write them (relative, `\`-separated, any letter case) turned into
// paths of the file system the tool runs on.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace arbolet::disk {

// Conversions between UTF-8 text and paths that hold on every platform (a narrow string is
// not UTF-8 on Windows).
std::filesystem::path PathFromUtf8(std::string_view text);
std::string PathToUtf8(const std::filesystem::path& path);

// Finds the file a project names: relative to `folder` unless absolute, `\` or `/` separated,
// each part matched exactly or else ignoring letter case. nullopt when nothing matches (also
// for a drive-letter path on a system without drives).
std::optional<std::filesystem::path> ResolveVbPath(const std::filesystem::path& folder,
                                                   std::string_view vbPath);

}  // namespace arbolet::disk
