// The .vbg group the projects were opened from, kept to record a new start-up project: the
// member's `Project=` line becomes `StartupProject=` and the old one's goes back, each line
// keeping its path and line end byte for byte.
#pragma once

#include <filesystem>
#include <string>

#include "disk/line_edit.h"

namespace arbolet::disk {

class DiskGroup {
  public:
    DiskGroup(std::filesystem::path path, std::string bytes, int codePage);

    const std::filesystem::path& Path() const { return path_; }
    bool Changed() const { return editor_.Bytes() != original_; }
    const std::string& Original() const { return original_; }
    const std::string& Current() const { return editor_.Bytes(); }
    void MarkSaved() { original_ = editor_.Bytes(); }

    // Makes the member whose project file is `projectFile` the start-up project; false when
    // the group does not list that project.
    bool SetStartup(const std::filesystem::path& projectFile);

  private:
    void SetKey(std::size_t line, std::string_view key);

    std::filesystem::path path_;
    std::string original_;
    LineEditor editor_;
    int codePage_;
};

}  // namespace arbolet::disk
