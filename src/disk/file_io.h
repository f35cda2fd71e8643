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
// The same into `bytes`, whose memory is reused: a caller reading many files in turn (a check of
// a code base) keeps one buffer instead of fresh pages for each file.
void ReadFileBytes(const std::filesystem::path& path, std::string& bytes);

// Replaces the file's contents: writes a temporary file in the same folder, flushes it to the
// disk, renames it over the original and flushes the folder, so that a reader sees either the
// old or the new file and a failure leaves the original untouched. The file keeps its
// permissions (and owner, where allowed); a symbolic link is written through to the file it
// points to, and a file with several hard links is rewritten in place so that every link sees
// the change. Raises FileError with a clear message (read-only file, vanished folder, full disk).
void WriteFileAtomic(const std::filesystem::path& path, std::string_view bytes);

// WriteFileAtomic for a file read earlier: it is replaced only while it still holds `expected`,
// checked at the moment of the replacement. A file changed since, or deleted (it is never
// recreated), is left as it is and FileError raised.
void ReplaceFileAtomic(const std::filesystem::path& path, std::string_view bytes,
                       std::string_view expected);

}  // namespace arbolet::disk
