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

TEST_F(FileIo, ReplacingAFileReadEarlierRefusesOneChangedOrDeletedMeanwhile) {
    const auto path = folder_ / "m.bas";
    WriteFileAtomic(path, "read");
    ReplaceFileAtomic(path, "saved", "read");
    EXPECT_EQ(ReadFileBytes(path), "saved");

    WriteFileAtomic(path, "changed elsewhere");
    EXPECT_THROW(ReplaceFileAtomic(path, "mine", "saved"), FileError);
    EXPECT_EQ(ReadFileBytes(path), "changed elsewhere");

    fs::remove(path);
    try {
        ReplaceFileAtomic(path, "mine", "changed elsewhere");
        FAIL() << "recreated a deleted file";
    } catch (const FileError& error) {
        EXPECT_NE(std::string(error.what()).find("vanished"), std::string::npos) << error.what();
    }
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 0);
}

TEST_F(FileIo, TheFileKeepsItsPermissions) {
    const auto path = folder_ / "m.bas";
    WriteFileAtomic(path, "old");
    const auto chosen = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(path, chosen);
    const auto before = fs::status(path).permissions();
    WriteFileAtomic(path, "new");
    EXPECT_EQ(fs::status(path).permissions(), before);
    EXPECT_EQ(ReadFileBytes(path), "new");
}

TEST_F(FileIo, ALinkIsWrittenThroughAndStaysALink) {
    const auto shared = folder_ / "shared" / "modShared.bas";
    fs::create_directories(shared.parent_path());
    WriteFileAtomic(shared, "old");
    const auto link = folder_ / "modLink.bas";
    std::error_code ec;
    fs::create_symlink(shared, link, ec);
    if (ec) GTEST_SKIP() << "no symbolic links here: " << ec.message();
    ReplaceFileAtomic(link, "new", "old");
    EXPECT_TRUE(fs::is_symlink(fs::symlink_status(link)));
    EXPECT_EQ(ReadFileBytes(shared), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(shared.parent_path()), fs::directory_iterator()),
              1);
}

TEST_F(FileIo, EveryHardLinkSeesTheChange) {
    const auto first = folder_ / "a.bas";
    WriteFileAtomic(first, "old bytes, longer than the new ones");
    const auto second = folder_ / "b.bas";
    std::error_code ec;
    fs::create_hard_link(first, second, ec);
    if (ec) GTEST_SKIP() << "no hard links here: " << ec.message();
    // Wine makes the link but reports one link per file, so its writes cannot tell.
    if (fs::hard_link_count(first, ec) < 2) GTEST_SKIP() << "hard links are not counted here";
    ReplaceFileAtomic(second, "new", "old bytes, longer than the new ones");
    EXPECT_EQ(ReadFileBytes(first), "new");
    EXPECT_EQ(fs::hard_link_count(first), 2u);
    EXPECT_THROW(ReplaceFileAtomic(first, "mine", "old bytes, longer than the new ones"),
                 FileError);
    EXPECT_EQ(ReadFileBytes(second), "new");
}

}  // namespace
}  // namespace arbolet::disk
