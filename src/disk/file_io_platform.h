// The few file operations std::filesystem does not offer: durable writes, replacing a file only
// while it exists, writing in place, and flushing a folder. One implementation per platform.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace arbolet::disk::platform {

// Creates `file` (which must not exist) with `bytes`, flushed to the disk, with the permissions
// and, where the system allows, the owner of `like` when given.
void WriteNewFile(const std::filesystem::path& file, std::string_view bytes,
                  const std::optional<std::filesystem::path>& like);

// Why a replacement did not happen.
enum class ReplaceOutcome { Replaced, TargetGone, TargetChanged };

// Puts `replacement` in the place of `target`. With `expected`, the target must exist and hold
// exactly those bytes at the moment it is replaced; otherwise it is left as it is (never
// recreated) and `replacement` removed. Raises FileError for other failures.
ReplaceOutcome Replace(const std::filesystem::path& replacement,
                       const std::filesystem::path& target,
                       const std::optional<std::string_view>& expected);

// Overwrites the file's bytes where they are, so that every hard link to it sees them, then
// flushes it to the disk. Raises FileError.
void OverwriteInPlace(const std::filesystem::path& file, std::string_view bytes);

// Makes the folder's entries (a rename in it) durable; nothing where the system needs no such
// step.
void FlushFolder(const std::filesystem::path& folder);

}  // namespace arbolet::disk::platform
