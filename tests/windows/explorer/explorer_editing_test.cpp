// Editing the projects through the real tree view, as a user does it, and what lands in the
// files: renaming by label edit, dragging a component onto a folder, dropping a file.
#include <gtest/gtest.h>

#include <shlobj.h>

#include "explorer/explorer_window_fixture.h"

namespace arbolet::explorer_app::testing {
namespace {

using windows::testing::Centre;

class ExplorerEditingTest : public ExplorerWindowTest {
  protected:
    // Edits the label in the control's own edit box and ends the edit as Enter does.
    void EditLabel(const std::string& key, const wchar_t* newText) {
        const HTREEITEM item = ItemOf(key);
        ASSERT_NE(item, nullptr) << key;
        const auto edit = reinterpret_cast<HWND>(
            SendMessageW(Tree().hWnd(), TVM_EDITLABELW, 0, reinterpret_cast<LPARAM>(item)));
        ASSERT_NE(edit, nullptr) << "the control opened its edit box";
        SetWindowTextW(edit, newText);
        SendMessageW(Tree().hWnd(), TVM_ENDEDITLABELNOW, FALSE, 0);
        windows::testing::PumpMessages();
    }
};

TEST_F(ExplorerEditingTest, RenamingByLabelEditRewritesTheComponentAndProject) {
    Open(true);
    const std::string moduleBefore = Read("modStock.bas");
    EditLabel("modStock~Inventory~", L"modStore");
    EXPECT_TRUE(ui_.messages.empty());
    EXPECT_TRUE(Tree().Exists("modStore~Inventory~"));
    EXPECT_FALSE(Tree().Exists("modStock~Inventory~"));
    EXPECT_NE(Read("modStock.bas").find("Attribute VB_Name = \"modStore\""), std::string::npos);
    EXPECT_NE(Read("Inventory.vbp").find("Module=modStore; modStock.bas"), std::string::npos);
    EXPECT_EQ(Read("modStock.bas").size(), moduleBefore.size()) << "only the name changed";
}

TEST_F(ExplorerEditingTest, UnchangedAndInvalidLabelsLeaveTheFilesAlone) {
    Open(true);
    const std::string project = Read("Inventory.vbp");
    const std::string module = Read("clsItem.cls");
    EditLabel("clsItem~Inventory~", L"clsItem");
    EXPECT_TRUE(ui_.messages.empty()) << "an unchanged label is left silently";
    EditLabel("clsItem~Inventory~", L"cls;Item");
    ASSERT_EQ(ui_.messages.size(), 1u) << ::testing::PrintToString(ui_.messages);
    EXPECT_EQ(ui_.messages[0], "Invalid Name: Not a valid name.");
    EditLabel("clsItem~Inventory~", L"clsWarehouse");
    ASSERT_EQ(ui_.messages.size(), 2u);
    EXPECT_EQ(ui_.messages[1], "Invalid Name: You already have an object with this name.");
    EXPECT_EQ(Tree().Item("clsItem~Inventory~")->Text(), "clsItem") << "the old caption stays";
    EXPECT_EQ(Read("Inventory.vbp"), project);
    EXPECT_EQ(Read("clsItem.cls"), module);
}

TEST_F(ExplorerEditingTest, DraggingAComponentOntoAFolderMovesItThere) {
    Open(true);
    ASSERT_TRUE(windows::testing::Activate(window_->hWnd()));
    const std::string source = "clsItem~Inventory~";
    const std::string target = "Type~Archive~Inventory";
    ASSERT_TRUE(Tree().Exists(target));
    Press("Type~Stock Logic~Inventory", VK_RIGHT);
    const POINT from = Centre(ScreenRect(source));
    const POINT to = Centre(ScreenRect(target));
    windows::testing::DragMouse(from, to);
    windows::testing::PumpMessagesFor(300);

    ASSERT_TRUE(Tree().Exists(source));
    EXPECT_EQ(Tree().Item(source)->Parent()->Key(), target);
    EXPECT_NE(Read("clsItem.cls").find("Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Archive\""),
              std::string::npos);
}

// The module's key begins like a project node's; it is a component and goes into the folder.
TEST_F(ExplorerEditingTest, AModuleNamedProjectCanBeDraggedOntoAFolder) {
    AddModuleNamedProject();
    Open(true);
    ASSERT_TRUE(windows::testing::Activate(window_->hWnd()));
    const std::string source = "Project~Inventory~";
    const std::string target = "Type~Archive~Inventory";
    ASSERT_TRUE(Tree().Exists(source));
    Tree().Item(source)->EnsureVisible();
    windows::testing::PumpMessages();
    windows::testing::DragMouse(Centre(ScreenRect(source)), Centre(ScreenRect(target)));
    windows::testing::PumpMessagesFor(300);

    ASSERT_TRUE(Tree().Exists(source));
    EXPECT_EQ(Tree().Item(source)->Parent()->Key(), target);
    EXPECT_NE(Read("Project.bas").find("Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Archive\""),
              std::string::npos);
}

TEST_F(ExplorerEditingTest, AFileDroppedOnTheProjectIsAddedToIt) {
    Open(true);
    folder_.Write("modExtra.bas", "Attribute VB_Name = \"modExtra\"\r\nOption Explicit\r\n");
    const std::wstring name = (folder_ / "modExtra.bas").wstring();
    // The shell's drop: a DROPFILES header, then the file names, each ended by a NUL, and one
    // more NUL.
    const std::size_t bytes = sizeof(DROPFILES) + (name.size() + 2) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GHND, bytes);
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = TRUE;
    const RECT project = ScreenRect("Project~Inventory");
    POINT at = Centre(project);
    ScreenToClient(window_->Document().hWnd(), &at);
    drop->pt = at;
    std::copy(name.begin(), name.end(), reinterpret_cast<wchar_t*>(drop + 1));
    GlobalUnlock(memory);
    SendMessageW(window_->Document().hWnd(), WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
    windows::testing::PumpMessages();

    EXPECT_TRUE(ui_.messages.empty());
    EXPECT_TRUE(Tree().Exists("modExtra~Inventory~"));
    EXPECT_NE(Read("Inventory.vbp").find("Module=modExtra; modExtra.bas"), std::string::npos);
}

}  // namespace
}  // namespace arbolet::explorer_app::testing
