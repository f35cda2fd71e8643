// Whole-file reads and atomic rewrites (see file_io.h).
#include "disk/file_io.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <random>
#include <system_error>

#include "disk/file_io_platform.h"
#include "disk/vb_path.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

std::string Describe(int error) {
    return std::generic_category().message(error);
}

fs::path TemporarySibling(const fs::path& path) {
    std::random_device random;
    const auto suffix = std::to_string(random()) + ".tmp";
    fs::path name = ".";
    name += path.filename();
    name += "." + suffix;
    return path.parent_path() / name;
}

// The file a path stands for: a symbolic link is followed, so that the file it points to (which
// other links may share) is the one that changes, and the link stays a link.
fs::path FollowLinks(const fs::path& path) {
    std::error_code ec;
    if (!fs::is_symlink(fs::symlink_status(path, ec))) return path;
    fs::path target = fs::weakly_canonical(path, ec);
    if (ec) throw FileError(path, "cannot follow the link: " + ec.message());
    return target;
}

void Write(const fs::path& path, std::string_view bytes,
           const std::optional<std::string_view>& expected) {
    const fs::path target = FollowLinks(path);
    std::error_code ec;
    const auto status = fs::status(target, ec);
    const bool exists = fs::exists(status);
    if (expected && !exists) throw FileError(path, "the file has vanished since it was read");
    if (exists && (status.permissions() & fs::perms::owner_write) == fs::perms::none) {
        throw FileError(path, "the file is read-only");
    }
    if (exists && fs::hard_link_count(target, ec) > 1) {
        // Replacing the name would leave the other links with the old bytes: write in place,
        // and put the old bytes back if that fails.
        const std::string old = ReadFileBytes(target);
        if (expected && old != *expected) {
            throw FileError(path, "the file has changed on disk since it was read");
        }
        try {
            platform::OverwriteInPlace(target, bytes);
        } catch (const FileError&) {
            try {
                platform::OverwriteInPlace(target, old);
            } catch (const FileError&) {
                // The first failure is the one to report.
            }
            throw;
        }
        return;
    }
    const fs::path temporary = TemporarySibling(target);
    platform::WriteNewFile(temporary, bytes,
                           exists ? std::optional<fs::path>(target) : std::nullopt);
    switch (platform::Replace(temporary, target, expected)) {
        case platform::ReplaceOutcome::Replaced:
            break;
        case platform::ReplaceOutcome::TargetGone:
            throw FileError(path, "the file has vanished since it was read");
        case platform::ReplaceOutcome::TargetChanged:
            throw FileError(path, "the file has changed on disk since it was read");
    }
    platform::FlushFolder(target.parent_path());
}

}  // namespace

FileError::FileError(const fs::path& p, const std::string& what)
    : std::runtime_error(PathToUtf8(p) + ": " + what), path(p) {}

std::string ReadFileBytes(const fs::path& path) {
    std::string bytes;
    ReadFileBytes(path, bytes);
    return bytes;
}

void ReadFileBytes(const fs::path& path, std::string& bytes) {
    bytes.clear();
    std::error_code ec;
    if (fs::is_directory(path, ec)) throw FileError(path, "is a folder, not a file");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw FileError(path, "cannot open: " + Describe(errno));
    in.seekg(0, std::ios::end);
    const auto size = in.tellg();
    if (size > 0) {
        bytes.resize(static_cast<std::size_t>(size));
        in.seekg(0, std::ios::beg);
        in.read(bytes.data(), size);
    }
    if (in.bad()) throw FileError(path, "cannot read: " + Describe(errno));
}

void WriteFileAtomic(const fs::path& path, std::string_view bytes) {
    Write(path, bytes, std::nullopt);
}

void ReplaceFileAtomic(const fs::path& path, std::string_view bytes, std::string_view expected) {
    Write(path, bytes, expected);
}

}  // namespace arbolet::disk
