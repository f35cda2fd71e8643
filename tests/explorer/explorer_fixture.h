// A project explorer over an in-memory environment and tree, with scripted dialogs, and the
// tree drawn as text so that tests compare whole trees.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "environment/memory_environment.h"
#include "explorer/project_explorer.h"
#include "treemodel/memory_tree.h"

namespace arbolet::explorer::testing {

// Answers input boxes from a script and records every dialog.
struct ScriptedUi : UiServices {
    std::deque<std::string> answers;
    std::vector<std::string> log;

    void MsgBox(std::string_view prompt, MsgBoxIcon icon, std::string_view title) override {
        log.push_back("MsgBox[" + std::string(title) + "|" +
                      std::to_string(static_cast<int>(icon)) + "] " + std::string(prompt));
    }
    std::string InputBox(std::string_view prompt, std::string_view title,
                         std::string_view defaultText) override {
        log.push_back("InputBox[" + std::string(title) + "|" + std::string(defaultText) + "] " +
                      std::string(prompt));
        if (answers.empty()) return {};
        std::string answer = answers.front();
        answers.pop_front();
        return answer;
    }
    void Beep() override { log.push_back("Beep"); }
};

// One line per node, indented two blanks per level; a bold caption is marked with "*". The
// "Code List" placeholders are left out unless asked for.
inline void DrawNodes(const tree::NodeRef& first, int depth, bool placeholders, std::string& out) {
    for (tree::NodeRef node = first; node; node = node->Next()) {
        if (!placeholders && node->Text() == "Code List") continue;
        out += std::string(static_cast<std::size_t>(depth) * 2, ' ') + (node->Bold() ? "*" : "") +
               node->Text() + "\n";
        DrawNodes(node->Child(), depth + 1, placeholders, out);
    }
}

inline std::string Draw(const tree::Nodes& nodes, bool placeholders = false) {
    std::string out;
    DrawNodes(tree::FirstRoot(nodes), 0, placeholders, out);
    return out;
}

class ExplorerTest : public ::testing::Test {
  protected:
    std::shared_ptr<env::MemoryEnvironment> vbe = env::MemoryEnvironment::Create();
    tree::MemoryTreeView view;
    ScriptedUi ui;
    ProjectExplorer explorer{vbe, view, ui};

    tree::Nodes& nodes() { return view.Nodes(); }
    std::string Tree(bool placeholders = false) { return Draw(view.Nodes(), placeholders); }

    static std::string FolderList(const env::VBProject& project) {
        return ProjectExplorer::ReadFolderList(project);
    }
    static std::string StoredFolder(const env::VBComponent& component) {
        try {
            return component.ReadProperty("QX-TypeName");
        } catch (const std::exception&) {
            return "<none>";
        }
    }
};

}  // namespace arbolet::explorer::testing
