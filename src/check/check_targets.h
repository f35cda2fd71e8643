// Which component files a `check` of some paths covers.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "check/check_findings.h"

namespace arbolet::check {

struct CheckTarget {
    std::filesystem::path path;
    std::string shown;    // as the user should see it
    std::string project;  // the project it was reached through; empty for files and folders
};

struct CheckTargets {
    std::vector<CheckTarget> files;
    // Missing components, unreadable folders and project warnings, as findings.
    FileResult problems;
    std::size_t missing = 0;  // missing or unreadable files and folders among the problems
    std::vector<std::string> unusedExclusions;  // exclusions that left nothing out
};

// Expands each path: a folder to the component files below it (recursively, in a stable order),
// a .vbp project or .vbg group to the code components it lists, any other file to itself. A file
// reached twice (a module shared by two projects) is checked once; paths matching an exclusion
// glob, or lying in the file or folder an exclusion names as a path, are left out. A path that does
// not exist is an unreadable-file problem; the other paths are still checked.
CheckTargets CollectCheckTargets(const std::vector<std::string>& paths,
                                 const std::vector<std::string>& exclusions, int codePage);

}  // namespace arbolet::check
