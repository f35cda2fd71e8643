// The dispatcher: keys in any case, the environment's own commands with their rules, the
// commands on nodes, Goto, the front end's dialogs, and the three messages.
#include <gtest/gtest.h>

#include "commands/commands_fixture.h"
#include "disk/file_io.h"

namespace arbolet::commands::testing {
namespace {

using Status = explorer::Outcome::Status;

TEST_F(CommandsTest, SaveRunsTheEnvironmentsSaveInAnyLetterCase) {
    ASSERT_TRUE(explorer->DropComponent("Project~Shop~", *Node("Type~Forms~Shop")).done());
    ASSERT_FALSE(vbe->ChangedFiles().empty());
    EXPECT_TRUE(dispatcher->Run("projectsave", Node("Project~Shop")->Index()).done());
    EXPECT_TRUE(vbe->ChangedFiles().empty());
    EXPECT_NE(folder.Read("Project.bas").find("QX-TypeName"), std::string::npos);

    ASSERT_TRUE(explorer->DropComponent("Project~Shop~", *Node("Type~Class Modules~Shop")).done());
    ASSERT_TRUE(RightClick("Type~Forms~Shop"));
    EXPECT_TRUE(Choose("ProjectSave").done());
    EXPECT_TRUE(vbe->ChangedFiles().empty());
    EXPECT_EQ(vbe->ActiveVBProject()->Name(), "Shop");
}

TEST_F(CommandsTest, AddCommandsRunTheEnvironmentsControlOnlyWhenEnabled) {
    // Add User Document is disabled in a standard EXE: nothing happens, nothing is shown.
    ASSERT_TRUE(RightClick("Project~Shop"));
    const explorer::Outcome refused = Choose("AddUserDocument");
    EXPECT_EQ(refused.status(), Status::Refused);
    EXPECT_EQ(vbe->VBProjects()->Item("Shop")->VBComponents()->Count(), 3);
    EXPECT_TRUE(ui.log.empty());
    EXPECT_FALSE(std::filesystem::exists(folder / "UserDocument1.dob"));

    // No menu offers Add Module, but the command runs; the new module shows in its group.
    EXPECT_TRUE(dispatcher->Run("addmodule", 0, "Project~Shop").done());
    EXPECT_TRUE(std::filesystem::exists(folder / "Module1.bas"));
    ASSERT_TRUE(Node("Module1~Shop~"));
    EXPECT_EQ(Node("Module1~Shop~")->Parent()->Key(), "Type~Modules~Shop");

    // From a component's menu the add goes to that component's project.
    ASSERT_TRUE(RightClick("frmFrame~Tools~"));
    EXPECT_TRUE(Choose("AddUserDocument").done());
    EXPECT_TRUE(std::filesystem::exists(folder / "tools/UserDocument1.dob"));
    EXPECT_EQ(vbe->VBProjects()->Item("Tools")->VBComponents()->Count(), 2);
}

TEST_F(CommandsTest, ViewAndGotoGoThroughTheFrontEnd) {
    ASSERT_TRUE(RightClick("frmMain~Shop~"));
    EXPECT_TRUE(Choose("Object").done());
    EXPECT_TRUE(Choose("Code").done());
    EXPECT_EQ(vbe->SelectedVBComponent()->Name(), "frmMain");

    ASSERT_TRUE(explorer->ExpandNode(*Node("Project~Shop~")).done());
    ASSERT_TRUE(RightClick("SProject~Shop~@1"));
    EXPECT_TRUE(Choose("Goto:SProject~Shop~@1").done());
    // A module has no designer: its View Object does nothing.
    EXPECT_EQ(dispatcher->Run("OBJECT", Node("Project~Shop~")->Index()).status(), Status::Refused);
    EXPECT_EQ(frontEnd.calls,
              (std::vector<std::string>{"Object frmMain", "Code frmMain:1", "Code Project:2"}));

    // The buttons below the tree: the selected node's code or designer.
    frontEnd.calls.clear();
    Node("frmMain~Shop~")->SetSelected(true);
    EXPECT_TRUE(dispatcher->ViewSelected(true).done());
    EXPECT_TRUE(dispatcher->ViewSelected(false).done());
    Node("Project~Shop")->SetSelected(true);
    EXPECT_EQ(dispatcher->ViewSelected(true).status(), Status::Refused);
    EXPECT_EQ(frontEnd.calls, (std::vector<std::string>{"Code frmMain:1", "Object frmMain"}));
}

TEST_F(CommandsTest, AStaleGotoAndAnUnknownKey) {
    ASSERT_TRUE(explorer->ExpandNode(*Node("Project~Shop~")).done());
    ASSERT_TRUE(RightClick("SProject~Shop~@1"));
    ASSERT_TRUE(explorer->CollapseNode(*Node("Project~Shop~")).done());
    EXPECT_EQ(Choose("Goto:SProject~Shop~@1").status(), Status::Failed);
    EXPECT_TRUE(frontEnd.calls.empty());
    EXPECT_TRUE(ui.log.empty());

    // "Goto:" counts only with its capital G; anything unknown is named.
    const explorer::Outcome unknown = dispatcher->Run("goto:SProject~Shop~@1", 0);
    EXPECT_EQ(unknown.status(), Status::Refused);
    EXPECT_EQ(dispatcher->Run("Frobnicate", 0).message(), "No such item: Frobnicate");
    EXPECT_EQ(ui.log, (std::vector<std::string>{"MsgBox[|0] No such item: goto:SProject~Shop~@1",
                                                "MsgBox[|0] No such item: Frobnicate"}));
}

TEST_F(CommandsTest, SetStartupMovesTheBoldMarkAndRecordsItInTheGroup) {
    EXPECT_TRUE(Node("Project~Shop")->Bold());
    ASSERT_TRUE(RightClick("Project~Tools"));
    EXPECT_TRUE(Choose("ProjectSetStartup").done());
    EXPECT_FALSE(Node("Project~Shop")->Bold());
    EXPECT_TRUE(Node("Project~Tools")->Bold());
    EXPECT_EQ(vbe->VBProjects()->StartProject()->Name(), "Tools");
    vbe->Save();
    EXPECT_EQ(folder.Read("All.vbg"),
              Crlf({"VBGROUP 5.0", "Project=Shop.vbp", "StartupProject=tools\\Tools.vbp"}));
}

TEST_F(CommandsTest, RemoveTakesTheEntryAndKeepsTheFile) {
    ASSERT_TRUE(RightClick("clsData~Shop~"));
    EXPECT_TRUE(Choose("Remove").done());
    EXPECT_FALSE(Node("clsData~Shop~"));
    vbe->Save();
    EXPECT_EQ(folder.Read("Shop.vbp"), Crlf({"Type=Exe", "Form=frmMain.frm",
                                             "Module=Project; Project.bas", "Name=\"Shop\""}));
    EXPECT_TRUE(std::filesystem::exists(folder / "clsData.cls"));
}

TEST_F(CommandsTest, TheFrontEndsDialogsAndTheRefusedProperties) {
    for (const char* key : {"Hide", "ShowAbout", "SHOWHELP", "showproperties"})
        EXPECT_TRUE(dispatcher->Run(key, 0).done()) << key;
    frontEnd.propertiesAllowed = false;
    const explorer::Outcome refused = dispatcher->Run("Properties", Node("frmMain~Shop~")->Index());
    EXPECT_EQ(refused.message(),
              "Unable to perform as cannot set SelectedVBProperty - Blame MS for this one");
    EXPECT_EQ(frontEnd.calls, (std::vector<std::string>{"Hide", "ShowAbout", "ShowHelp",
                                                        "ShowProperties", "Properties frmMain"}));
    EXPECT_EQ(ui.log.size(), 1u);
}

TEST(Dispatcher, AComponentNeverSavedMustBeSavedFirst) {
    auto vbe = env::MemoryEnvironment::Create();
    const auto project = vbe->AddProject("P");
    project->AddComponent("Form1", env::ComponentType::VBForm);
    tree::MemoryTreeView view;
    explorer::testing::ScriptedUi ui;
    explorer::ProjectExplorer explorer(vbe, view, ui);
    explorer.RefreshProjects();
    RecordingFrontEnd frontEnd;
    Dispatcher dispatcher(vbe, view, explorer, ui, frontEnd);
    const explorer::Outcome outcome =
        dispatcher.Run("Remove", view.Nodes().Item("Form1~P~")->Index());
    EXPECT_EQ(outcome.status(), Status::Refused);
    EXPECT_EQ(ui.log, std::vector<std::string>{"MsgBox[|64] Must Be Saved First."});
    EXPECT_EQ(project->VBComponents()->Count(), 1);
    // Without command bars the environment's commands fail quietly.
    EXPECT_EQ(dispatcher.Run("AddForm", 0, "Project~P").status(), Status::Failed);
    EXPECT_EQ(ui.log.size(), 1u);
}

}  // namespace
}  // namespace arbolet::commands::testing
