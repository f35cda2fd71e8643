// The context menus: entries, keys, item data and enabled states by node kind, the Add sub-menu
// from the environment's own controls, and when no menu is shown at all.
#include <gtest/gtest.h>

#include "commands/commands_fixture.h"

namespace arbolet::commands::testing {
namespace {

using Lines = std::vector<std::string>;

TEST_F(CommandsTest, AProjectNodeHasSevenEntriesAndATypeGroupFive) {
    ASSERT_TRUE(RightClick("Project~Shop"));
    const std::string at = Index("Project~Shop");
    EXPECT_EQ(Items(), (Lines{"Set As Start &Up|ProjectSetStartup|" + at + "|on", "-||0|on",
                              "Sa&ve Project|ProjectSave|" + at + "|on", "-||0|on",
                              "&Add|ProjectAdd|0|on", "-||0|on", "&Hide|Hide|0|on"}));

    ASSERT_TRUE(RightClick("Type~Forms~Shop"));
    const std::string group = Index("Type~Forms~Shop");
    EXPECT_EQ(Items(), (Lines{"Sa&ve Project|ProjectSave|" + group + "|on", "-||0|on",
                              "&Add|ProjectAdd|0|on", "-||0|on", "&Hide|Hide|0|on"}));
}

TEST_F(CommandsTest, TheAddSubMenuFollowsTheEnvironmentsRulesForTheProject) {
    // A standard EXE without MDI form: no user documents.
    ASSERT_TRUE(RightClick("Project~Shop"));
    const std::string at = Index("Project~Shop");
    EXPECT_EQ(
        AddItems(),
        (Lines{"  &Form|AddForm|0|on", "  MD&I Form|AddMDIForm|0|on",
               "  &Class Module|AddClass|0|on", "  &User Control|AddUserControl|0|on",
               "  &Property Page|AddPropertyPage|0|on", "  User &Document|AddUserDocument|0|off",
               "  &New Folder|AddFolder|" + at + "|on"}));
    // The menu reads the controls for the project it was opened on, whichever was active: an
    // ActiveX DLL that has its MDI form.
    ASSERT_TRUE(RightClick("Type~Forms~Tools"));
    EXPECT_EQ(vbe->ActiveVBProject()->Name(), "Tools");
    EXPECT_FALSE(menu.Enabled(menu.IndexForKey("AddMDIForm")));
    EXPECT_TRUE(menu.Enabled(menu.IndexForKey("AddUserDocument")));
    ASSERT_TRUE(RightClick("frmMain~Shop~"));
    EXPECT_TRUE(menu.Enabled(menu.IndexForKey("AddMDIForm")));
    EXPECT_FALSE(menu.Enabled(menu.IndexForKey("AddUserDocument")));
}

TEST_F(CommandsTest, ComponentMenusReadTheViewCommandsForTheClickedComponent) {
    ASSERT_TRUE(RightClick("frmMain~Shop~"));
    const std::string form = Index("frmMain~Shop~");
    EXPECT_EQ(Items(),
              (Lines{"View O&bject|Object|" + form + "|on", "View C&ode|Code|" + form + "|on",
                     "-||0|on", "&Add|ProjectAdd|0|on", "-||0|on",
                     "&Remove frmMain|Remove|" + form + "|on", "-||0|on", "&Hide|Hide|0|on"}));
    EXPECT_EQ(AddItems().size(), 7u);

    // A standard module named like the project prefix: a component menu, no designer.
    ASSERT_TRUE(RightClick("Project~Shop~"));
    EXPECT_EQ(menu.Caption(1), "View O&bject");
    EXPECT_FALSE(menu.Enabled(1));
    EXPECT_TRUE(menu.Enabled(2));
    EXPECT_EQ(menu.Caption(menu.IndexForKey("Remove")), "&Remove Project");
}

TEST_F(CommandsTest, ACodeLineMenuOffersItsLineWithItsOwnSeparator) {
    ASSERT_TRUE(explorer->ExpandNode(*Node("Project~Shop~")).done());
    ASSERT_TRUE(RightClick("SProject~Shop~@1"));
    const std::string line = Index("SProject~Shop~@1");
    EXPECT_EQ(Items(),
              (Lines{"View O&bject|Object|" + line + "|off", "View C&ode|Code|" + line + "|on",
                     "-||0|on", "&Goto Line 2|Goto:SProject~Shop~@1|" + line + "|on", "-||0|on",
                     "&Add|ProjectAdd|0|on", "-||0|on", "&Remove Project|Remove|" + line + "|on",
                     "-||0|on", "&Hide|Hide|0|on"}));
    EXPECT_EQ(menu.HelpText(menu.IndexForKey("Goto:SProject~Shop~@1")), "ProjectAdd");

    // The line number is the key's trailing digits plus one.
    menus->CodeLineMenu(*nodes().Add(Node("SProject~Shop~@0").get(), tree::Relationship::Child,
                                     "SProject~Shop~@41", "x", tree::NodeKind::CodeLine));
    EXPECT_EQ(menu.Caption(menu.IndexForKey("Goto:SProject~Shop~@41")), "&Goto Line 42");
}

TEST_F(CommandsTest, OnlyTheRightButtonOverAnOpenProjectOpensAMenu) {
    EXPECT_FALSE(menus->BuildTreeMenu(MouseButton::Left, Node("Project~Shop").get()));
    EXPECT_FALSE(menus->BuildTreeMenu(MouseButton::Middle, Node("Project~Shop").get()));
    EXPECT_FALSE(menus->BuildBackgroundMenu(MouseButton::Left));
    EXPECT_FALSE(RightClick("Code - frmMain~Shop~"));

    // Empty tree space: the active project's menu.
    vbe->SetActiveVBProject(vbe->VBProjects()->Item("Tools"));
    ASSERT_TRUE(menus->BuildTreeMenu(MouseButton::Right, nullptr));
    EXPECT_EQ(menu.Count(), 7 + 7);
    EXPECT_EQ(menu.Tag(), "Project~Tools");
    EXPECT_EQ(menu.ItemData(menu.IndexForKey("ProjectSave")), Node("Project~Tools")->Index());

    ASSERT_TRUE(menus->BuildBackgroundMenu(MouseButton::Right));
    EXPECT_EQ(Items(), (Lines{"&Properties|ShowProperties|0|on", "-||0|on",
                              "&About Arbolet|ShowAbout|0|on", "-||0|on", "&Help|ShowHelp|0|on"}));
}

TEST_F(CommandsTest, NoProjectMeansNoMenu) {
    auto empty = env::MemoryEnvironment::Create();
    tree::MemoryTreeView emptyView;
    explorer::ProjectExplorer emptyExplorer(empty, emptyView, ui);
    ContextMenus emptyMenus(menu, empty, emptyView.Nodes(), emptyExplorer);
    EXPECT_FALSE(emptyMenus.BuildTreeMenu(MouseButton::Right, nullptr));
    ContextMenus detached(menu, nullptr, emptyView.Nodes(), emptyExplorer);
    EXPECT_FALSE(detached.BuildTreeMenu(MouseButton::Right, nullptr));
    EXPECT_EQ(menu.Count(), 0);
}

TEST_F(CommandsTest, AMissingControlLeavesTheStateReadLast) {
    const auto viewMenu =
        vbe->CommandBars()->Item("Menu Bar")->Controls()->Item("View")->Controls();
    viewMenu->Item("Code")->Delete();
    // For the module, "Object" reads disabled and "Code" has no control of its own any more.
    ASSERT_TRUE(RightClick("Project~Shop~"));
    EXPECT_FALSE(menu.Enabled(menu.IndexForKey("Object")));
    EXPECT_FALSE(menu.Enabled(menu.IndexForKey("Code")));
    ASSERT_TRUE(RightClick("frmMain~Shop~"));
    EXPECT_TRUE(menu.Enabled(menu.IndexForKey("Code")));
}

}  // namespace
}  // namespace arbolet::commands::testing
