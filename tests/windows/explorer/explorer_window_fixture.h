// The standalone explorer's window over a copy of the Inventory example, with the document's
// message boxes recorded instead of shown, and helpers that act on the real tree view.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "disk/temp_folder.h"
#include "main_window.h"
#include "support/test_window.h"

namespace arbolet::explorer_app::testing {

class RecordingUi final : public explorer::UiServices {
  public:
    void MsgBox(std::string_view prompt, explorer::MsgBoxIcon, std::string_view title) override {
        messages.push_back(std::string(title) + ": " + std::string(prompt));
    }
    std::string InputBox(std::string_view, std::string_view, std::string_view) override {
        return answer;
    }
    void Beep() override {}

    std::vector<std::string> messages;
    std::string answer;
};

class ExplorerWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const std::filesystem::path example =
            std::filesystem::path(ARBOLET_SOURCE_DIR) / "examples" / "Inventory";
        for (const auto& entry : std::filesystem::directory_iterator(example))
            std::filesystem::copy_file(entry.path(), folder_.Path() / entry.path().filename());
        window_ = std::make_unique<MainWindow>(false, &ui_);
    }

    // Opens the copied project; `visible` places the window on the screen for input and
    // pictures.
    void Open(bool visible = false) {
        if (visible) {
            SetWindowPos(window_->hWnd(), nullptr, 30, 30, 420, 640, SWP_NOZORDER);
            ShowWindow(window_->hWnd(), SW_SHOWNORMAL);
        }
        std::string error;
        ASSERT_TRUE(window_->Open({ProjectFile()}, &display_, &error)) << error;
        windows::testing::PumpMessages();
    }

    // Adds a standard module named "Project" (with one procedure) to the copied project: its
    // node key begins like a project node's.
    void AddModuleNamedProject() {
        folder_.Write("Project.bas",
                      "Attribute VB_Name = \"Project\"\r\nOption Explicit\r\n"
                      "Public Sub Main()\r\n    If True Then\r\n    End If\r\n"
                      "End Sub\r\n");
        std::string project = Read("Inventory.vbp");
        const std::string after = "Module=modLegacy; modLegacy.bas\r\n";
        const std::size_t at = project.find(after);
        ASSERT_NE(at, std::string::npos);
        project.insert(at + after.size(), "Module=Project; Project.bas\r\n");
        folder_.Write("Inventory.vbp", project);
    }

    std::filesystem::path ProjectFile() const { return folder_ / "Inventory.vbp"; }
    std::string Read(const std::string& file) const { return folder_.Read(file); }

    windows::TreeControl& Tree() { return window_->Document().treMain(); }
    HTREEITEM ItemOf(const std::string& key) {
        if (!Tree().Exists(key)) return nullptr;
        return dynamic_cast<const windows::TreeItemNode&>(*Tree().Item(key)).Item();
    }
    // A key press on the tree with the item selected, as the keyboard delivers it.
    void Press(const std::string& key, WPARAM virtualKey) {
        const HTREEITEM item = ItemOf(key);
        ASSERT_NE(item, nullptr) << key;
        SendMessageW(Tree().hWnd(), TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
        SendMessageW(Tree().hWnd(), WM_KEYDOWN, virtualKey, 0);
        SendMessageW(Tree().hWnd(), WM_KEYUP, virtualKey, 0);
        windows::testing::PumpMessages();
    }
    // The item's rectangle in screen co-ordinates; empty when it is scrolled or folded away.
    RECT ScreenRect(const std::string& key) {
        RECT area{};
        if (!windows::ItemRect(Tree().hWnd(), ItemOf(key), true, area)) return RECT{};
        MapWindowPoints(Tree().hWnd(), nullptr, reinterpret_cast<POINT*>(&area), 2);
        return area;
    }

    disk::testing::TempFolder folder_;
    RecordingUi ui_;
    // What `arbolet tree` shows without flags: every kind of line, in file order.
    analysis::FixedDisplayOptions display_;
    std::unique_ptr<MainWindow> window_;
};

}  // namespace arbolet::explorer_app::testing
