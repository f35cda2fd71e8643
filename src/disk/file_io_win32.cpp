// Durable writes and careful replacement on Windows (see file_io_platform.h).
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <string>
#include <system_error>

#include "disk/file_io.h"
#include "disk/file_io_platform.h"

namespace arbolet::disk::platform {
namespace fs = std::filesystem;

namespace {

std::string Describe(DWORD error) {
    return std::system_category().message(static_cast<int>(error));
}

// Closes the handle on every path out.
class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() {
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE Get() const { return handle_; }
    bool Valid() const { return handle_ != INVALID_HANDLE_VALUE; }

  private:
    HANDLE handle_;
};

// Writes every byte at the start of the file, cuts it after them and flushes it.
void WriteAllAndFlush(HANDLE file, std::string_view bytes, const fs::path& named) {
    LARGE_INTEGER start{};
    if (!SetFilePointerEx(file, start, nullptr, FILE_BEGIN)) {
        throw FileError(named, "cannot write: " + Describe(GetLastError()));
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, 1 << 20));
        DWORD written = 0;
        if (!WriteFile(file, bytes.data() + done, chunk, &written, nullptr) || written == 0) {
            throw FileError(named, "cannot write: " + Describe(GetLastError()));
        }
        done += written;
    }
    if (!SetEndOfFile(file) || !FlushFileBuffers(file)) {
        throw FileError(named, "cannot flush to the disk: " + Describe(GetLastError()));
    }
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
    std::optional<FileError> failure;
    {
        Handle handle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!handle.Valid()) {
            throw FileError(
                file, "cannot create a temporary file beside it: " + Describe(GetLastError()));
        }
        try {
            WriteAllAndFlush(handle.Get(), bytes, file);
        } catch (const FileError& error) {
            failure = error;
        }
    }
    if (failure) {
        DeleteFileW(file.c_str());
        throw *failure;
    }
    std::error_code ec;
    if (like) fs::permissions(file, fs::status(*like, ec).permissions(), ec);
}

ReplaceOutcome Replace(const fs::path& replacement, const fs::path& target,
                       const std::optional<std::string_view>& expected) {
    const auto discard = [&] { DeleteFileW(replacement.c_str()); };
    if (expected) {
        if (!Holds(target, *expected)) {
            std::error_code ec;
            const bool gone = !fs::exists(target, ec);
            discard();
            return gone ? ReplaceOutcome::TargetGone : ReplaceOutcome::TargetChanged;
        }
        // ReplaceFile fails when the target no longer exists, so it is never recreated; it
        // keeps the target's attributes and security.
        if (ReplaceFileW(target.c_str(), replacement.c_str(), nullptr,
                         REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr)) {
            return ReplaceOutcome::Replaced;
        }
        const DWORD error = GetLastError();
        discard();
        if (error == ERROR_FILE_NOT_FOUND) return ReplaceOutcome::TargetGone;
        throw FileError(target, "cannot replace the file: " + Describe(error));
    }
    if (!MoveFileExW(replacement.c_str(), target.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        const DWORD error = GetLastError();
        discard();
        throw FileError(target, "cannot replace the file: " + Describe(error));
    }
    return ReplaceOutcome::Replaced;
}

void OverwriteInPlace(const fs::path& file, std::string_view bytes) {
    Handle handle(CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.Valid()) {
        throw FileError(file, "cannot open for writing: " + Describe(GetLastError()));
    }
    WriteAllAndFlush(handle.Get(), bytes, file);
}

void FlushFolder(const fs::path&) {
    // NTFS journals its folder entries; a flushed file renamed with write-through is durable.
}

}  // namespace arbolet::disk::platform
