// The text of a .vbg project group: the projects it lists, in order, and its start-up project.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "disk/component_file.h"

namespace arbolet::disk {

struct GroupMember {
    std::size_t line = 0;  // 0-based file line
    std::string path;      // as written, relative to the group's folder
    bool startup = false;  // listed as StartupProject
};

struct GroupFile {
    std::vector<GroupMember> projects;
    // An error diagnostic means the file is no project group at all.
    std::vector<FileDiagnostic> diagnostics;

    bool IsGroup() const;
};

GroupFile ParseGroupFile(std::string_view bytes, int codePage);

}  // namespace arbolet::disk
