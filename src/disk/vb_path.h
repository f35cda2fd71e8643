// Paths as VB6 project files write them (relative, `\`-separated, any letter case) turned into
// paths of the file system the tool runs on.
#pragma once

#include <filesystem>
#include <map>
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

// ResolveVbPath for many paths at once: each folder is listed at most once for the letter-case
// fallback, so resolving the n entries of a project costs O(n) file-system calls. Keep one only
// for as long as the folders cannot change.
class VbPathResolver {
  public:
    std::optional<std::filesystem::path> Resolve(const std::filesystem::path& folder,
                                                 std::string_view vbPath);

  private:
    // The entry of `folder` whose name equals `part` ignoring letter case.
    std::optional<std::filesystem::path> FindIgnoringCase(const std::filesystem::path& folder,
                                                          std::string_view part);

    // Per folder listed: lower-cased entry name to the first entry of that name.
    std::map<std::filesystem::path, std::map<std::string, std::filesystem::path>> listings_;
};

// The path made absolute from the working folder, with `.` and `..` taken away lexically as
// Windows does, and no trailing separator: where a project's relative paths start from.
std::filesystem::path AbsolutePath(const std::filesystem::path& path);

// The path with links and `..` resolved as far as it exists, so that two names of one file
// compare equal; the path itself when that fails.
std::filesystem::path Canonical(const std::filesystem::path& path);
// What decides whether two paths name one file: the canonical path, and on Windows, where names
// differ in case only, in lower case too. For comparing and keying only, never for opening.
std::filesystem::path PathIdentity(const std::filesystem::path& path);

// Whether two paths name one file once the project is on Windows, where names that differ in
// letter case only are one name: their identities compared ignoring case.
bool SameFileOnWindows(const std::filesystem::path& a, const std::filesystem::path& b);
// Whether `folder` holds an entry named `fileName` in any letter case, which a new file of that
// name would be on Windows.
bool FileNameTaken(const std::filesystem::path& folder, std::string_view fileName);
// The name of the entry of `folder` that is `fileName` in some letter case, as it is spelt there
// (on a file system that ignores case, asking for the name returns the spelling asked for).
std::optional<std::string> SpellingInFolder(const std::filesystem::path& folder,
                                            std::string_view fileName);

// How a project file writes the path of `file`: relative to its folder when it can, with `\`.
std::string VbPathFor(const std::filesystem::path& file,
                      const std::filesystem::path& projectFolder);

// How to show a file that a project or group names: beside the file that names it, as the
// user named that file.
std::string ShownBeside(const std::string& namingFile, std::string_view vbPath);

// Whether the extension, lower-cased, is `lowerExtension` (with its dot).
bool HasExtension(const std::filesystem::path& path, std::string_view lowerExtension);

// How to show a file to the user: relative to the working folder when it lies below it, else in
// full; forward slashes on every platform.
std::string ShownPath(const std::filesystem::path& file);

}  // namespace arbolet::disk
