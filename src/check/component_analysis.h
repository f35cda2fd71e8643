// Loading one component file and building its code tree: what `code` and `check` share.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "analysis/code_tree.h"
#include "disk/component_file.h"

namespace arbolet::check {

struct AnalysedComponent {
    std::filesystem::path path;
    std::string name;  // VB_Name, or the file's stem when the file has none
    disk::ComponentFile file;
    analysis::CodeTree tree;
    // Set when the file could not be read; nothing else is then filled in.
    std::optional<std::string> readError;

    // The 1-based file line of a node, or nullopt when it has none.
    std::optional<std::int32_t> FileLineOf(const analysis::clsLine& line) const;
};

AnalysedComponent AnalyseComponentFile(const std::filesystem::path& path, int codePage,
                                       const analysis::DisplayOptions& options);

// The path as the user should see it: forward slashes on every platform.
std::string DisplayPath(const std::filesystem::path& path);

}  // namespace arbolet::check
