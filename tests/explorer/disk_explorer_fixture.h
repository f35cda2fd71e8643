// An explorer over projects written to a temporary folder and opened from disk, with scripted
// dialogs and a display option source that counts its reads.
#pragma once

#include <memory>

#include "disk/disk_environment.h"
#include "disk/temp_folder.h"
#include "explorer/explorer_fixture.h"

namespace arbolet::explorer::testing {

struct CountingOptions : analysis::IDisplayOptionSource {
    analysis::DisplayOptions options;
    int reads = 0;
    analysis::DisplayOptions ReadDisplayOptions() override {
        ++reads;
        return options;
    }
};

inline std::string Crlf(std::initializer_list<std::string_view> lines) {
    std::string text;
    for (const auto line : lines)
        text.append(line).append("\r\n");
    return text;
}

class DiskExplorerTest : public ::testing::Test {
  protected:
    disk::testing::TempFolder folder;
    std::shared_ptr<disk::DiskEnvironment> vbe;
    tree::MemoryTreeView view;
    ScriptedUi ui;
    CountingOptions options;
    std::unique_ptr<ProjectExplorer> explorer;

    void Open(const std::vector<std::string>& files) {
        std::vector<std::filesystem::path> paths;
        for (const auto& file : files)
            paths.push_back(folder / file);
        vbe = disk::DiskEnvironment::Open(paths);
        explorer = std::make_unique<ProjectExplorer>(vbe, view, ui, &options);
        explorer->RefreshProjects();
    }

    tree::Nodes& nodes() { return view.Nodes(); }
    tree::NodeRef Node(const std::string& key) {
        return nodes().Exists(key) ? nodes().Item(key) : nullptr;
    }
    std::string Tree(bool placeholders = false) { return Draw(view.Nodes(), placeholders); }
    void Expand(const std::string& key) { explorer->ExpandNode(*nodes().Item(key)); }
    std::vector<std::string> ChildKeys(const std::string& key) {
        std::vector<std::string> keys;
        for (tree::NodeRef child = nodes().Item(key)->Child(); child; child = child->Next())
            keys.push_back(child->Key());
        return keys;
    }
};

}  // namespace arbolet::explorer::testing
