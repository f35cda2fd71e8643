// Whole-file reads and atomic rewrites (see file_io.h).
#include "disk/file_io.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>

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

}  // namespace

FileError::FileError(const fs::path& p, const std::string& what)
    : std::runtime_error(PathToUtf8(p) + ": " + what), path(p) {}

std::string ReadFileBytes(const fs::path& path) {
    std::error_code ec;
    if (fs::is_directory(path, ec)) throw FileError(path, "is a folder, not a file");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw FileError(path, "cannot open: " + Describe(errno));
    std::string bytes;
    in.seekg(0, std::ios::end);
    const auto size = in.tellg();
    if (size > 0) {
        bytes.resize(static_cast<std::size_t>(size));
        in.seekg(0, std::ios::beg);
        in.read(bytes.data(), size);
    }
    if (in.bad()) throw FileError(path, "cannot read: " + Describe(errno));
    return bytes;
}

void WriteFileAtomic(const fs::path& path, std::string_view bytes) {
    std::error_code ec;
    const auto status = fs::status(path, ec);
    if (fs::exists(status) && (status.permissions() & fs::perms::owner_write) == fs::perms::none) {
        throw FileError(path, "the file is read-only");
    }
    const fs::path temporary = TemporarySibling(path);
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out)
            throw FileError(path, "cannot create a temporary file beside it: " + Describe(errno));
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            out.close();
            fs::remove(temporary, ec);
            throw FileError(path, "cannot write: " + Describe(errno));
        }
    }
    if (fs::exists(status)) fs::permissions(temporary, status.permissions(), ec);
    fs::rename(temporary, path, ec);
    if (ec) {
        const std::string reason = ec.message();
        fs::remove(temporary, ec);
        throw FileError(path, "cannot replace the file: " + reason);
    }
}

}  // namespace arbolet::disk
