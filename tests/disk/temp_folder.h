// A folder of real files for one test, removed afterwards.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace arbolet::disk::testing {

class TempFolder {
  public:
    TempFolder() {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        // Unique per run, so that test programs running at the same time never share a folder.
        root_ = std::filesystem::temp_directory_path() /
                ("arbolet-" + std::string(test->test_suite_name()) + "-" + test->name() + "-" +
                 std::to_string(std::random_device{}()));
        Remove();
        std::filesystem::create_directories(root_);
    }
    ~TempFolder() { Remove(); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return root_; }
    std::filesystem::path operator/(const std::string& relative) const { return root_ / relative; }

    std::filesystem::path Write(const std::string& relative, const std::string& bytes) const {
        const auto path = root_ / relative;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return path;
    }

    std::string Read(const std::string& relative) const {
        std::ifstream in(root_ / relative, std::ios::binary);
        std::stringstream buffer;
        buffer << in.rdbuf();
        return buffer.str();
    }

    void MakeReadOnly(const std::string& relative) const {
        std::filesystem::permissions(root_ / relative, std::filesystem::perms::owner_read |
                                                           std::filesystem::perms::group_read);
    }

  private:
    void Remove() {
        std::error_code ec;
        for (auto it = std::filesystem::recursive_directory_iterator(root_, ec);
             !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
            std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                         std::filesystem::perm_options::add, ec);
        }
        std::filesystem::remove_all(root_, ec);
    }

    std::filesystem::path root_;
};

}  // namespace arbolet::disk::testing
