// Reading and atomically rewriting files. The only place the on-disk layer touches the file system
// for whole-file contents.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace arbolet::disk {

// Thrown for a file that cannot be read or written; the message names the file.
class FileError : public std::runtime_error {
  public:
    FileError(const std::filesystem::path& path, const std::string& what);
    std::filesystem::path path;
};

// The whole file as bytes. Raises FileError when it cannot be read.
std::string ReadFileBytes(const std::filesystem::path& path);

// Replaces the file's contents: writes a temporary file in the same folder, flushes it, then
// renames it over the original, so that a reader sees either the old or the new file and a
// failure leaves the original untouched. Raises FileError with a clear message (read-only file,
// vanished folder, full disk).
void WriteFileAtomic(const std::filesystem::path& path, std::string_view bytes);

}  // namespace arbolet::disk
