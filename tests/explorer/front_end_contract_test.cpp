// What every front end relies on: nodes known by the kind stored with them, so that a module
// named "Project" is a component like any other; collapse keeping the component node; and
// operations that say whether they were done, refused or failed.
#include <gtest/gtest.h>

#include "explorer/disk_explorer_fixture.h"

namespace arbolet::explorer::testing {
namespace {

using Status = Outcome::Status;

class FrontEndContract : public DiskExplorerTest {
  protected:
    void SetUp() override {
        folder.Write("Shop.vbp",
                     Crlf({"Type=Exe", "Module=Project; Project.bas", "Module=modMain; modMain.bas",
                           "Name=\"Shop\"", "", "[Quorlin]", "QX-TypeName=;Data;"}));
        folder.Write("Project.bas", Crlf({"Attribute VB_Name = \"Project\"", "Sub Main()",
                                          "    If a Then", "    End If", "End Sub"}));
        folder.Write("modMain.bas", Crlf({"Attribute VB_Name = \"modMain\""}));
        Open({"Shop.vbp"});
    }
};

TEST_F(FrontEndContract, EveryNodeCarriesItsKind) {
    EXPECT_EQ(Node("Project~Shop")->Kind(), tree::NodeKind::Project);
    EXPECT_EQ(Node("Type~Modules~Shop")->Kind(), tree::NodeKind::Folder);
    EXPECT_EQ(Node("Type~Data~Shop")->Kind(), tree::NodeKind::Folder);
    EXPECT_EQ(Node("Project~Shop~")->Kind(), tree::NodeKind::Component);
    EXPECT_EQ(Node("Code - Project~Shop~")->Kind(), tree::NodeKind::Placeholder);
    ASSERT_TRUE(explorer->ExpandNode(*Node("Project~Shop~")).done());
    EXPECT_EQ(Node("SProject~Shop~@0")->Kind(), tree::NodeKind::CodeLine);
}

TEST_F(FrontEndContract, AModuleNamedProjectExpandsAndCollapsesInPlace) {
    const tree::NodeRef module = Node("Project~Shop~");
    ASSERT_TRUE(explorer->ExpandNode(*module).done());
    EXPECT_EQ(ChildKeys("Project~Shop~").front(), "SProject~Shop~@0");
    EXPECT_TRUE(Node("SProject~Shop~@1"));

    const tree::NodeRef previous = module->Previous();
    ASSERT_TRUE(explorer->CollapseNode(*module).done());
    // The very same node, at the same place, with only its placeholder.
    EXPECT_EQ(Node("Project~Shop~"), module);
    EXPECT_EQ(module->Previous(), previous);
    EXPECT_EQ(ChildKeys("Project~Shop~"), std::vector<std::string>{"Code - Project~Shop~"});
    EXPECT_FALSE(Node("SProject~Shop~@1"));
    // Open again: the code comes back.
    ASSERT_TRUE(explorer->ExpandNode(*module).done());
    EXPECT_TRUE(Node("SProject~Shop~@1"));
}

TEST_F(FrontEndContract, AModuleNamedProjectRenamesAndMoves) {
    EXPECT_TRUE(explorer->DropComponent("Project~Shop~", *Node("Type~Data~Shop")).done());
    EXPECT_EQ(Node("Project~Shop~")->Parent()->Key(), "Type~Data~Shop");

    ASSERT_TRUE(explorer->AfterLabelEdit(*Node("Project~Shop~"), "modProject").done());
    EXPECT_FALSE(Node("Project~Shop~"));
    EXPECT_EQ(Node("modProject~Shop~")->Parent()->Key(), "Type~Data~Shop");
    EXPECT_EQ(vbe->VBProjects()->Item(1)->Name(), "Shop");
    vbe->Save();
    EXPECT_NE(folder.Read("Shop.vbp").find("Module=modProject; Project.bas"), std::string::npos);
    EXPECT_NE(folder.Read("Project.bas").find("Attribute VB_Name = \"modProject\""),
              std::string::npos);
}

TEST_F(FrontEndContract, OperationsSayWhatBecameOfThem) {
    // Refusals carry the message the user saw.
    const Outcome taken = explorer->AfterLabelEdit(*Node("Project~Shop~"), "modMain");
    EXPECT_EQ(taken.status(), Status::Refused);
    EXPECT_EQ(taken.message(), "You already have an object with this name.");
    EXPECT_EQ(ui.log.back(), "MsgBox[Invalid Name|48] " + taken.message());

    // The environment's own rule on names is a refusal that explains itself.
    const Outcome notAnIdentifier = explorer->AfterLabelEdit(*Node("modMain~Shop~"), "2nd");
    EXPECT_EQ(notAnIdentifier.status(), Status::Refused);
    EXPECT_FALSE(notAnIdentifier.message().empty());
    EXPECT_TRUE(Node("modMain~Shop~"));

    // Dropping on something that is not a folder, or nothing that is a component file.
    EXPECT_EQ(explorer->DropComponent("modMain~Shop~", *Node("Project~Shop~")).status(),
              Status::Refused);
    EXPECT_EQ(explorer->DropFiles({"notes.txt"}, *Node("Project~Shop")).status(), Status::Refused);
    const Outcome missing = explorer->DropFiles({"gone.bas"}, *Node("Project~Shop"));
    EXPECT_EQ(missing.status(), Status::Failed);
    EXPECT_NE(missing.message().find("gone.bas"), std::string::npos);

    // The new-folder dialog cancelled, then answered.
    EXPECT_EQ(explorer->NewFolder("Project~Shop~").status(), Status::Refused);
    ui.answers = {"Reports"};
    EXPECT_TRUE(explorer->NewFolder("Project~Shop~").done());
    EXPECT_TRUE(Node("Type~Reports~Shop"));
    EXPECT_TRUE(vbe->ChangedFiles().size() == 1);
}

TEST_F(FrontEndContract, ReloadsHoldTheTreeViewsUpdateOpenUntilDone) {
    const int before = view.UpdatesBegun();
    explorer->RefreshProjects();
    EXPECT_EQ(view.UpdatesBegun(), before + 1);
    EXPECT_EQ(view.OpenUpdates(), 0);
    EXPECT_TRUE(Node("Project~Shop~"));
}

}  // namespace
}  // namespace arbolet::explorer::testing
