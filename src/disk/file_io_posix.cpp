// Durable writes and careful replacement on POSIX systems (see file_io_platform.h).
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include "disk/file_io.h"
#include "disk/file_io_platform.h"

namespace arbolet::disk::platform {
namespace fs = std::filesystem;

namespace {

std::string Describe(int error) {
    return std::generic_category().message(error);
}

// Closes the descriptor on every path out.
class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return fd_; }
    // Closes now, reporting the error a delayed write may only show here.
    int Close() {
        const int result = ::close(fd_);
        fd_ = -1;
        return result;
    }

  private:
    int fd_;
};

// Writes every byte at the start of the file, truncates it to them and flushes it.
void WriteAllAndSync(int fd, std::string_view bytes, const fs::path& named) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written =
            ::pwrite(fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) throw FileError(named, "cannot write: " + Describe(errno));
        done += static_cast<std::size_t>(written);
    }
    if (::ftruncate(fd, static_cast<off_t>(bytes.size())) != 0) {
        throw FileError(named, "cannot write: " + Describe(errno));
    }
    if (::fsync(fd) != 0) throw FileError(named, "cannot flush to the disk: " + Describe(errno));
}

bool Holds(const fs::path& file, std::string_view expected) {
    try {
        return ReadFileBytes(file) == expected;
    } catch (const FileError&) {
        return false;
    }
}

}  // namespace

void WriteNewFile(const fs::path& file, std::string_view bytes,
                  const std::optional<fs::path>& like) {
    Descriptor fd(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (fd.Get() < 0) {
        throw FileError(file, "cannot create a temporary file beside it: " + Describe(errno));
    }
    try {
        struct stat original {};
        if (like && ::stat(like->c_str(), &original) == 0) {
            // The owner first: changing it can clear set-user-id bits that the mode then restores.
            [[maybe_unused]] const int owned = ::fchown(fd.Get(), original.st_uid, original.st_gid);
            ::fchmod(fd.Get(), original.st_mode & 07777);
        }
        WriteAllAndSync(fd.Get(), bytes, file);
        if (fd.Close() != 0) throw FileError(file, "cannot write: " + Describe(errno));
    } catch (const FileError&) {
        ::unlink(file.c_str());
        throw;
    }
}

ReplaceOutcome Replace(const fs::path& replacement, const fs::path& target,
                       const std::optional<std::string_view>& expected) {
    const auto discard = [&] { ::unlink(replacement.c_str()); };
#ifdef RENAME_EXCHANGE
    // Swapping the two names replaces the target only if it still exists; what was swapped out
    // is then checked, and swapped back when someone changed it in the meantime.
    if (expected) {
        if (::renameat2(AT_FDCWD, replacement.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) ==
            0) {
            if (Holds(replacement, *expected)) {
                discard();
                return ReplaceOutcome::Replaced;
            }
            ::renameat2(AT_FDCWD, replacement.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE);
            discard();
            return ReplaceOutcome::TargetChanged;
        }
        if (errno == ENOENT) {
            discard();
            return ReplaceOutcome::TargetGone;
        }
        // A file system without the exchange: check as late as possible, then rename.
    }
#endif
    if (expected) {
        std::error_code ec;
        if (!fs::exists(target, ec)) {
            discard();
            return ReplaceOutcome::TargetGone;
        }
        if (!Holds(target, *expected)) {
            discard();
            return ReplaceOutcome::TargetChanged;
        }
    }
    if (std::rename(replacement.c_str(), target.c_str()) != 0) {
        const int error = errno;
        discard();
        throw FileError(target, "cannot replace the file: " + Describe(error));
    }
    return ReplaceOutcome::Replaced;
}

void OverwriteInPlace(const fs::path& file, std::string_view bytes) {
    Descriptor fd(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
    if (fd.Get() < 0) throw FileError(file, "cannot open for writing: " + Describe(errno));
    WriteAllAndSync(fd.Get(), bytes, file);
    if (fd.Close() != 0) throw FileError(file, "cannot write: " + Describe(errno));
}

void FlushFolder(const fs::path& folder) {
    Descriptor fd(
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.Get() >= 0) ::fsync(fd.Get());
}

}  // namespace arbolet::disk::platform
