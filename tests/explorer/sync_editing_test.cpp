// The tree following the projects on disk through their events, and editing in the tree:
// renames of projects, components and folders, moves between folders, and dropped files.
#include <gtest/gtest.h>

#include "disk/file_io.h"
#include "explorer/disk_explorer_fixture.h"

namespace arbolet::explorer::testing {
namespace {

const std::string kShopVbp = Crlf(
    {"Type=Exe", "Module=modMain; modMain.bas", "Class=clsData; clsData.cls", "Form=frmMain.frm",
     "RelatedDoc=readme.txt", "Name=\"Shop\"", "", "[Quorlin]", "QX-TypeName=;Data;Empty;"});
const std::string kToolsVbp =
    Crlf({"Type=OleDll", "Module=modMain; modMain.bas", "Name=\"Tools\""});

class SyncAndEditing : public DiskExplorerTest {
  protected:
    void SetUp() override {
        folder.Write("Shop.vbp", kShopVbp);
        folder.Write("modMain.bas",
                     Crlf({"Attribute VB_Name = \"modMain\"", "Sub Main()", "End Sub"}));
        folder.Write("clsData.cls", Crlf({"VERSION 1.0 CLASS", "BEGIN", "  MultiUse = -1  'True",
                                          "END", "Attribute VB_Name = \"clsData\"",
                                          "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Data\"",
                                          "Sub Load()", "End Sub"}));
        folder.Write("frmMain.frm", Crlf({"VERSION 5.00", "Begin VB.Form frmMain", "End",
                                          "Attribute VB_Name = \"frmMain\""}));
        folder.Write("readme.txt", "notes");
        folder.Write("tools/Tools.vbp", kToolsVbp);
        folder.Write("tools/modMain.bas", Crlf({"Attribute VB_Name = \"modMain\""}));
        folder.Write("extra/modExtra.bas", Crlf({"Attribute VB_Name = \"modExtra\""}));
        folder.Write("extra/frmExtra.frm", Crlf({"VERSION 5.00", "Begin VB.Form frmExtra", "End",
                                                 "Attribute VB_Name = \"frmExtra\""}));
        folder.Write("extra/frmExtra.frx", "binary");
        Open({"Shop.vbp", "tools/Tools.vbp"});
    }

    bool Rename(const std::string& key, const std::string& text) {
        return explorer->AfterLabelEdit(*nodes().Item(key), text).done();
    }
};

TEST_F(SyncAndEditing, InvalidNamesAndNamesInUseAreRefusedEverywhere) {
    EXPECT_FALSE(Rename("modMain~Shop~", "mod~Main"));
    EXPECT_FALSE(Rename("Project~Shop", "Caf\xC3\xA9"));
    EXPECT_FALSE(Rename("Type~Data~Shop", ""));
    EXPECT_FALSE(Rename("Project~Shop", "Tools"));
    EXPECT_FALSE(Rename("modMain~Shop~", "clsData"));
    EXPECT_FALSE(Rename("Code - modMain~Shop~", "Other"));
    EXPECT_EQ(ui.log, (std::vector<std::string>{
                          "MsgBox[Invalid Name|64] Not a valid name.",
                          "MsgBox[Invalid Name|64] Not a valid name.",
                          "MsgBox[Invalid Name|64] Not a valid name.",
                          "MsgBox[Invalid Name|48] You already have a project with this name.",
                          "MsgBox[Invalid Name|48] You already have an object with this name.",
                      }));
    EXPECT_TRUE(vbe->ChangedFiles().empty());
}

TEST_F(SyncAndEditing, RenamingAComponentMovesItsNodeAndRewritesItsNameButNotItsFile) {
    const std::string before = Tree();
    // The same name in another project is allowed.
    EXPECT_TRUE(Rename("clsData~Shop~", "modMain2"));
    EXPECT_TRUE(Rename("modMain2~Shop~", "clsStore"));
    EXPECT_TRUE(nodes().Exists("clsStore~Shop~"));
    EXPECT_FALSE(nodes().Exists("clsData~Shop~"));
    EXPECT_EQ(Node("clsStore~Shop~")->Parent()->Key(), "Type~Data~Shop");  // kept its folder
    EXPECT_TRUE(Rename("frmMain~Shop~", "frmShop"));
    vbe->Save();
    EXPECT_EQ(folder.Read("Shop.vbp"), [] {
        std::string text = kShopVbp;
        text.replace(text.find("clsData; "), 7, "clsStore");
        return text;
    }());
    EXPECT_NE(folder.Read("clsData.cls").find("Attribute VB_Name = \"clsStore\"\r\n"),
              std::string::npos);
    EXPECT_EQ(folder.Read("frmMain.frm"), Crlf({"VERSION 5.00", "Begin VB.Form frmShop", "End",
                                                "Attribute VB_Name = \"frmShop\""}));
    EXPECT_NE(Tree(), before);
    // The environment refuses what VB would: not an identifier.
    EXPECT_FALSE(Rename("frmShop~Shop~", "frm Shop") && nodes().Exists("frm Shop~Shop~"));
}

TEST_F(SyncAndEditing, RenamingAProjectReloadsItWithItsEmptyFoldersAndBoldStart) {
    EXPECT_TRUE(Rename("Project~Shop", "Store"));
    EXPECT_FALSE(nodes().Exists("Project~Shop"));
    EXPECT_EQ(Tree(),
              "*Store\n  Data\n    clsData\n  Empty\n  Forms\n    frmMain\n"
              "  Modules\n    modMain\n  Related Documents\n    readme.txt\nTools\n  Modules\n"
              "    modMain\n");
    vbe->Save();
    EXPECT_NE(folder.Read("Shop.vbp").find("Name=\"Store\"\r\n"), std::string::npos);
}

TEST_F(SyncAndEditing, RenamingACustomFolderKeepsItsExpandedStateAndAFixedGroupBecomesCustom) {
    Node("Type~Data~Shop")->SetExpanded(true);
    EXPECT_TRUE(Rename("Type~Data~Shop", "Storage"));
    ASSERT_TRUE(Node("Type~Storage~Shop"));
    EXPECT_TRUE(Node("Type~Storage~Shop")->Expanded());
    EXPECT_TRUE(Node("Project~Shop")->Expanded());
    EXPECT_EQ(ChildKeys("Type~Storage~Shop"), std::vector<std::string>{"clsData~Shop~"});

    EXPECT_TRUE(Rename("Type~Forms~Shop", "Screens"));
    EXPECT_FALSE(Node("Type~Screens~Shop")->Expanded());
    EXPECT_FALSE(nodes().Exists("Type~Forms~Shop"));
    EXPECT_EQ(ProjectExplorer::ReadFolderList(*vbe->VBProjects()->Item("Shop")),
              ";Empty;Storage;Screens;");
    vbe->Save();
    EXPECT_NE(
        folder.Read("frmMain.frm").find("Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Screens\""),
        std::string::npos);
}

TEST_F(SyncAndEditing, MovingAComponentTakesItsNodeAndAnEmptiedFolderAlong) {
    explorer->DropComponent("clsData~Shop~", *Node("Type~Empty~Shop"));
    EXPECT_EQ(ChildKeys("Type~Empty~Shop"), std::vector<std::string>{"clsData~Shop~"});
    EXPECT_FALSE(nodes().Exists("Type~Data~Shop"));
    // Onto its own folder, onto a component, or without key: nothing happens.
    const std::string before = Tree(true);
    explorer->DropComponent("clsData~Shop~", *Node("Type~Empty~Shop"));
    explorer->DropComponent("clsData~Shop~", *Node("modMain~Shop~"));
    explorer->DropComponent("", *Node("Type~Modules~Shop"));
    EXPECT_EQ(Tree(true), before);
    explorer->DropComponent("readme.txt~Shop~", *Node("Type~Empty~Shop"));
    EXPECT_EQ(ui.log, std::vector<std::string>{
                          "MsgBox[Cannot Move File|64] This component cannot be moved as it does "
                          "not support extended properties."});
    EXPECT_EQ(Node("readme.txt~Shop~")->Parent()->Key(), "Type~Related Documents~Shop");
}

TEST_F(SyncAndEditing, DroppedFilesAreAddedByKindIntoTheFolderDroppedOn) {
    const std::string extra = (folder / "extra").string();
    explorer->DropFiles({extra + "/frmExtra.frx", extra + "/notes.txt", extra + "/README"},
                        *Node("Type~Data~Shop"));
    ASSERT_TRUE(Node("frmExtra~Shop~"));
    EXPECT_EQ(Node("frmExtra~Shop~")->Parent()->Key(), "Type~Data~Shop");
    explorer->DropFiles({extra + "/modExtra.bas"}, *Node("Project~Shop"));
    EXPECT_EQ(Node("modExtra~Shop~")->Parent()->Key(), "Type~Modules~Shop");
    explorer->DropFiles({extra + "/modExtra.bas", extra + "/gone.cls"}, *Node("Project~Shop"));
    ASSERT_EQ(ui.log.size(), 2u);
    EXPECT_EQ(ui.log[0],
              "MsgBox[Existing File|64] " + extra + "/modExtra.bas is already part of Shop");
    EXPECT_TRUE(ui.log[1].starts_with("MsgBox[Cannot Add File|16] File not found"));
    vbe->Save();
    const std::string vbp = folder.Read("Shop.vbp");
    EXPECT_NE(vbp.find("Form=extra\\frmExtra.frm\r\nModule=modExtra; extra\\modExtra.bas\r\n"),
              std::string::npos)
        << vbp;
    EXPECT_NE(folder.Read("extra/frmExtra.frm").find("\"QX-TypeName\" ,\"Data\""),
              std::string::npos);
}

TEST_F(SyncAndEditing, ChangesOnDiskArriveAsEventsForShownAndNeverShownComponents) {
    Expand("modMain~Shop~");
    // The project file loses a module, gains one, and the module left behind changes.
    folder.Write("Shop.vbp", Crlf({"Type=Exe", "Class=clsData; clsData.cls", "Form=frmMain.frm",
                                   "Module=modExtra; extra\\modExtra.bas", "Name=\"Shop\"", "",
                                   "[Quorlin]", "QX-TypeName=;Data;Empty;"}));
    vbe->Refresh({folder / "Shop.vbp"});
    EXPECT_FALSE(nodes().Exists("modMain~Shop~"));
    EXPECT_FALSE(nodes().Exists("SmodMain~Shop~@0"));
    EXPECT_FALSE(nodes().Exists("readme.txt~Shop~"));
    EXPECT_EQ(ChildKeys("Type~Modules~Shop"), std::vector<std::string>{"modExtra~Shop~"});

    // A component renamed in its file moves; an open one is closed to be read again.
    Expand("clsData~Shop~");
    folder.Write("clsData.cls",
                 Crlf({"VERSION 1.0 CLASS", "BEGIN", "END", "Attribute VB_Name = \"clsStore\"",
                       "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Data\""}));
    vbe->Refresh({folder / "clsData.cls"});
    EXPECT_FALSE(nodes().Exists("clsData~Shop~"));
    EXPECT_EQ(ChildKeys("Type~Data~Shop"), std::vector<std::string>{"clsStore~Shop~"});
    EXPECT_EQ(ChildKeys("clsStore~Shop~"), std::vector<std::string>{"Code - clsStore~Shop~"});
}

TEST_F(SyncAndEditing, EventsForComponentsNeverShownChangeNothing) {
    // As for a component added while the tool window was not connected.
    nodes().Remove("modMain~Shop~");
    const std::string before = Tree(true);
    folder.Write("modMain.bas", Crlf({"Attribute VB_Name = \"modMain\"", "Sub Other()"}));
    vbe->Refresh({folder / "modMain.bas"});
    EXPECT_EQ(Tree(true), before);
    const auto component = vbe->VBProjects()->Item("Shop")->VBComponents()->Item("modMain");
    explorer->ComponentActivated(*component);
    std::filesystem::remove(folder / "modMain.bas");
    vbe->Refresh({folder / "modMain.bas"});
    EXPECT_EQ(Tree(true), before);
    EXPECT_EQ(vbe->VBProjects()->Item("Shop")->VBComponents()->Count(), 3);
    EXPECT_EQ(view.SelectedItem(), nullptr);
}

TEST_F(SyncAndEditing, ActivatingSelectsACollapsedComponentButLeavesAnOpenOneAlone) {
    const auto components = vbe->VBProjects()->Item("Shop")->VBComponents();
    explorer->ComponentActivated(*components->Item("frmMain"));
    EXPECT_EQ(view.SelectedItem()->Key(), "frmMain~Shop~");
    EXPECT_TRUE(Node("Type~Forms~Shop")->Expanded());
    Expand("modMain~Shop~");
    explorer->ComponentActivated(*components->Item("modMain"));
    EXPECT_EQ(view.SelectedItem()->Key(), "frmMain~Shop~");
}

TEST_F(SyncAndEditing, ProjectsClosedOrRenamedOnDiskLeaveOrMoveTheirNodes) {
    folder.Write("Shop.vbp", kShopVbp.substr(0, kShopVbp.find("Name=")) + "Name=\"Store\"\r\n");
    vbe->Refresh({folder / "Shop.vbp"});
    EXPECT_FALSE(nodes().Exists("Project~Shop"));
    EXPECT_TRUE(nodes().Exists("Project~Store"));
    EXPECT_FALSE(nodes().Exists("Type~Empty~Store"));  // the folder list went with the edit
    std::filesystem::remove(folder / "tools/Tools.vbp");
    vbe->Refresh({folder / "tools/Tools.vbp"});
    EXPECT_FALSE(nodes().Exists("Project~Tools"));
    EXPECT_EQ(vbe->VBProjects()->Count(), 1);
}

TEST_F(SyncAndEditing, UnsavedChangesAreNeverOverwrittenByAReload) {
    explorer->DropComponent("modMain~Shop~", *Node("Type~Empty~Shop"));
    folder.Write("modMain.bas", Crlf({"Attribute VB_Name = \"modMain\"", "Sub Edited()"}));
    vbe->Refresh({folder / "modMain.bas"});
    EXPECT_EQ(Node("modMain~Shop~")->Parent()->Key(), "Type~Empty~Shop");
    ASSERT_FALSE(vbe->Warnings().empty());
    EXPECT_NE(vbe->Warnings().back().message.find("not saved"), std::string::npos);
    EXPECT_THROW(vbe->Save(), disk::FileError);
    EXPECT_EQ(folder.Read("modMain.bas"),
              Crlf({"Attribute VB_Name = \"modMain\"", "Sub Edited()"}));
}

}  // namespace
}  // namespace arbolet::explorer::testing
