// Atomic rewrites: contents replaced whole, nothing left behind, clear errors that name the file.
#include <gtest/gtest.h>

#include <filesystem>

#include "disk/file_io.h"
#include "disk/temp_folder.h"

namespace arbolet::disk {
namespace {
namespace fs = std::filesystem;

class FileIo : public ::testing::Test {
  protected:
    testing::TempFolder temp_;
    const fs::path& folder_ = temp_.Path();
};

TEST_F(FileIo, RewriteReplacesBytesExactlyAndLeavesNoTemporaryFile) {
    const auto path = folder_ / "p.vbp";
    WriteFileAtomic(path, std::string("a\r\nb\n\0c", 7));
    WriteFileAtomic(path, "Name=\"X\"\r\n");
    EXPECT_EQ(ReadFileBytes(path), "Name=\"X\"\r\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

TEST_F(FileIo, ReadOnlyFileIsRefusedEvenForRoot) {
    const auto path = folder_ / "p.vbp";
    WriteFileAtomic(path, "old");
    fs::permissions(path, fs::perms::owner_read | fs::perms::group_read);
    try {
        WriteFileAtomic(path, "new");
        FAIL() << "wrote a read-only file";
    } catch (const FileError& error) {
        EXPECT_NE(std::string(error.what()).find("p.vbp"), std::string::npos);
        EXPECT_NE(std::string(error.what()).find("read-only"), std::string::npos);
    }
    EXPECT_EQ(ReadFileBytes(path), "old");
}

TEST_F(FileIo, MissingFolderAndFileGiveErrorsNamingThem) {
    EXPECT_THROW(WriteFileAtomic(folder_ / "gone" / "p.vbp", "x"), FileError);
    try {
        ReadFileBytes(folder_ / "missing.bas");
        FAIL();
    } catch (const FileError& error) {
        EXPECT_NE(std::string(error.what()).find("missing.bas"), std::string::npos);
    }
    EXPECT_THROW(ReadFileBytes(folder_), FileError);
}

}  // namespace
}  // namespace arbolet::disk
