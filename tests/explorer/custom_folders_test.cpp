// Custom folders: the stored folder list and component folders, and the commands that edit them.
#include "explorer_fixture.h"

namespace arbolet::explorer::testing {
namespace {

using env::ComponentType;

TEST(FolderNames, AllowPrintableAsciiWithoutSemicolonOrTilde) {
    for (const char* valid :
         {"Data Access", "a", " ", "!\"#$%&'()*+,-./0123456789:<=>?@[\\]^_`{|}", "New Folder"}) {
        EXPECT_TRUE(IsValidFolderName(valid)) << valid;
    }
    for (const char* invalid : {"", "a~b", "~", "a;b", "tab\there", "new\nline", "caf\xC3\xA9",
                                "\x7F", "\xE2\x82\xAC", "end\x1F"}) {
        EXPECT_FALSE(IsValidFolderName(invalid)) << invalid;
    }
}

std::string Names(tree::NodeKind kind, std::string_view key) {
    const KeyNames names = ReadKey(kind, key);
    return names.project + "|" + names.folder + "|" + names.component + "|" + names.componentKey;
}

TEST(NodeKeys, AreReadByTheKindTheTreeStored) {
    using tree::NodeKind;
    EXPECT_EQ(Names(NodeKind::Project, "Project~Billing"), "Billing|||");
    EXPECT_EQ(Names(NodeKind::Folder, "Type~Data Access~Billing"), "Billing|Data Access||");
    // A module named like the project prefix is still a component.
    EXPECT_EQ(Names(NodeKind::Component, "Project~Shop~"), "Shop||Project|Project~Shop~");
    EXPECT_EQ(Names(NodeKind::Component, "PROGRA~1.DOC~Shop~"),
              "Shop||PROGRA~1.DOC|PROGRA~1.DOC~Shop~");
    EXPECT_EQ(Names(NodeKind::Placeholder, "Code - modA~P~"), "P||modA|modA~P~");
    EXPECT_EQ(Names(NodeKind::CodeLine, "SProject~Shop~@@~x41"), "Shop||Project|Project~Shop~");
    // Keys that are not of the kind's form give nothing rather than a wrong name.
    for (const auto& [kind, key] :
         std::vector<std::pair<NodeKind, std::string>>{{NodeKind::Project, "Type~A~B"},
                                                       {NodeKind::Folder, "Type~NoProject"},
                                                       {NodeKind::Component, "modA~P"},
                                                       {NodeKind::Component, "~"},
                                                       {NodeKind::Placeholder, "modA~P~"},
                                                       {NodeKind::CodeLine, "modA~P~@1"},
                                                       {NodeKind::Other, "Project~P"}}) {
        EXPECT_EQ(Names(kind, key), "|||") << key;
    }
    EXPECT_EQ(CodeNodeKey(ComponentKey("modA", "P"), "41"), "SmodA~P~@41");
    EXPECT_EQ(FolderKey("Forms", "P"), "Type~Forms~P");
    EXPECT_EQ(PlaceholderKey(ComponentKey("modA", "P")), "Code - modA~P~");
}

TEST(NodeKeys, CodeLinesAndGotoItems) {
    EXPECT_EQ(CodeLineNumber("SmodA~P~@41"), 41);
    EXPECT_EQ(CodeLineNumber("SmodA~P~@I~x7"), 7);
    EXPECT_EQ(CodeLineNumber("SmodA~P~@x"), 0);
    EXPECT_EQ(CodeLineNumber(std::string(40, '9')), 999'999'999);
    EXPECT_EQ(GotoItemKey("SmodA~P~@4"), "Goto:SmodA~P~@4");
    EXPECT_EQ(CodeKeyOfGotoItem("Goto:SmodA~P~@4"), "SmodA~P~@4");
    EXPECT_EQ(CodeKeyOfGotoItem("goto:SmodA~P~@4"), std::nullopt);
    EXPECT_EQ(CodeKeyOfGotoItem("Goto"), std::nullopt);
}

TEST(NodeKeys, FixedGroupNames) {
    EXPECT_TRUE(IsFixedGroupName("class MODULES"));
    EXPECT_TRUE(IsFixedGroupName("Unknown"));
    EXPECT_FALSE(IsFixedGroupName("Class Module"));
}

class FolderListTest : public ExplorerTest {
  protected:
    std::shared_ptr<env::MemoryProject> project = vbe->AddProject("P");

    std::string AfterAdd(const std::string& list, const std::string& name) {
        project->WriteProperty("Quorlin", "QX-TypeName", list);
        explorer.AddProjectFolder(*project, name);
        return FolderList(*project);
    }
    std::string AfterRemove(const std::string& list, const std::string& name) {
        project->WriteProperty("Quorlin", "QX-TypeName", list);
        explorer.RemoveProjectFolder(*project, name);
        return FolderList(*project);
    }
};

TEST_F(FolderListTest, AddingJoinsWithSingleSeparators) {
    explorer.AddProjectFolder(*project, "Data");  // no list stored yet
    EXPECT_EQ(FolderList(*project), ";Data;");
    EXPECT_EQ(AfterAdd("", "Data"), ";Data;");
    EXPECT_EQ(AfterAdd(";A;", "B"), ";A;B;");
    EXPECT_EQ(AfterAdd(";Database;", "Data"), ";Database;Data;");
    EXPECT_EQ(AfterAdd(";A;Data;B;", "Data"), ";A;Data;B;");
    EXPECT_EQ(AfterAdd(";A;Data;", "data"), ";A;Data;data;");  // membership is case-sensitive
    EXPECT_EQ(AfterAdd(";A", "B"), ";A;B;");
    EXPECT_EQ(AfterAdd(";A;", ""), ";A;;");
    EXPECT_EQ(AfterAdd(";A;;", ""), ";A;;");
}

TEST_F(FolderListTest, RemovingTakesOutEveryOccurrence) {
    EXPECT_EQ(AfterRemove(";Data;Forms2;Data;", "Data"), ";Forms2;");
    EXPECT_EQ(AfterRemove(";A;B;", "C"), ";A;B;");
    EXPECT_EQ(AfterRemove(";A;B;", "a"), ";A;B;");
    EXPECT_EQ(AfterRemove(";A;", "A"), ";");
    explorer.RemoveProjectFolder(*vbe->AddProject("Fresh"), "A");
    EXPECT_EQ(FolderList(*vbe->VBProjects()->Item("Fresh")), "");
}

TEST_F(ExplorerTest, SettingAFolderStoresItWithTheComponentAndTheProject) {
    auto project = vbe->AddProject("P");
    auto module = project->AddComponent("modA", ComponentType::StdModule);
    explorer.SetComponentFolder(*module, "Tools");
    EXPECT_EQ(StoredFolder(*module), "Tools");
    EXPECT_EQ(FolderList(*project), ";Tools;");
    EXPECT_EQ(explorer.GetComponentFolder(*module), "Tools");

    explorer.SetComponentFolder(*module, "Helpers");
    EXPECT_EQ(StoredFolder(*module), "Helpers");
    EXPECT_EQ(FolderList(*project), ";Tools;Helpers;");
    EXPECT_TRUE(ui.log.empty());
}

TEST_F(ExplorerTest, SettingTheCurrentFolderInAnyCaseWritesNothing) {
    auto project = vbe->AddProject("P");
    auto form = project->AddComponent("frmA", ComponentType::VBForm);
    explorer.SetComponentFolder(*form, "FORMS");
    EXPECT_EQ(StoredFolder(*form), "<none>");
    EXPECT_EQ(FolderList(*project), "");

    form->WriteProperty("QX-TypeName", "Screens");
    explorer.SetComponentFolder(*form, "screens");
    EXPECT_EQ(StoredFolder(*form), "Screens");
    EXPECT_EQ(FolderList(*project), "");
}

TEST_F(ExplorerTest, ComponentsWithoutStoreAreReportedAndStayInTheirGroup) {
    auto project = vbe->AddProject("P");
    auto resource = project->AddComponent("", ComponentType::ResFile, "", "C:\\P\\App.res");
    auto form = project->AddComponent("frmA", ComponentType::VBForm);
    form->SetHasPropertyStore(false);
    explorer.SetComponentFolder(*resource, "Stuff");
    explorer.SetComponentFolder(*form, "Stuff");
    EXPECT_EQ(ui.log, (std::vector<std::string>{
                          "MsgBox[Unable to set folder|64] The component 'App.res' does not "
                          "support extended properties.",
                          "MsgBox[Unable to set folder|64] The component 'frmA' does not "
                          "support extended properties."}));
    EXPECT_EQ(FolderList(*project), "");
    explorer.RefreshProjects();
    EXPECT_EQ(Tree(), "*P\n  Forms\n    frmA\n  Resource Files\n    App.res\n");
}

TEST_F(ExplorerTest, AddFolderShowsTheFolderInPlaceAndRecordsIt) {
    auto project = vbe->AddProject("P");
    project->AddComponent("modA", ComponentType::StdModule);
    project->AddComponent("clsA", ComponentType::ClassModule);
    explorer.RefreshProjects();
    explorer.AddFolder(*project, "Helpers");
    EXPECT_EQ(Tree(), "*P\n  Class Modules\n    clsA\n  Helpers\n  Modules\n    modA\n");
    EXPECT_EQ(FolderList(*project), ";Helpers;");
    EXPECT_TRUE(nodes().Exists("Type~Helpers~P"));
}

TEST_F(ExplorerTest, RemoveFolderReturnsItsComponentsToTheirGroups) {
    auto project = vbe->AddProject("P");
    project->WriteProperty("Quorlin", "QX-TypeName", ";Tools;Other;");
    auto module = project->AddComponent("modA", ComponentType::StdModule);
    auto klass = project->AddComponent("clsB", ComponentType::ClassModule);
    auto kept = project->AddComponent("modC", ComponentType::StdModule);
    module->WriteProperty("QX-TypeName", "Tools");
    klass->WriteProperty("QX-TypeName", "TOOLS");
    kept->WriteProperty("QX-TypeName", "Other");
    explorer.RefreshProjects();
    EXPECT_EQ(Tree(), "*P\n  Other\n    modC\n  Tools\n    clsB\n    modA\n");

    explorer.RemoveFolder(*project, "Tools");
    EXPECT_EQ(Tree(), "*P\n  Class Modules\n    clsB\n  Modules\n    modA\n  Other\n    modC\n");
    EXPECT_EQ(StoredFolder(*module), "");
    EXPECT_EQ(StoredFolder(*klass), "");
    EXPECT_EQ(StoredFolder(*kept), "Other");
    // Clearing a component's folder records the empty name, which loading skips.
    EXPECT_EQ(FolderList(*project), ";Other;;");
}

TEST_F(ExplorerTest, RemovingAnEmptyFolderTakesItsNodeAway) {
    auto project = vbe->AddProject("P");
    project->WriteProperty("Quorlin", "QX-TypeName", ";Empty;");
    explorer.RefreshProjects();
    EXPECT_EQ(Tree(), "*P\n  Empty\n");
    explorer.RemoveFolder(*project, "Empty");
    EXPECT_EQ(Tree(), "*P\n");
    EXPECT_EQ(FolderList(*project), ";");
}

TEST_F(ExplorerTest, NewFolderAsksUntilTheNameIsValid) {
    auto project = vbe->AddProject("P");
    project->AddComponent("modA", ComponentType::StdModule);
    explorer.RefreshProjects();
    ui.answers = {"Bad;Name", "Caf\xC3\xA9", "Good Name"};
    explorer.NewFolder("modA~P~");
    const std::string prompt = "] Enter the name of the new folder you want to add:";
    const std::string refused =
        "MsgBox[Invalid Folder Name|64] Not a valid folder name, please "
        "try again.";
    EXPECT_EQ(ui.log,
              (std::vector<std::string>{"InputBox[Enter Folder Name|New Folder" + prompt, refused,
                                        "InputBox[Enter Folder Name|Bad;Name" + prompt, refused,
                                        "InputBox[Enter Folder Name|Caf\xC3\xA9" + prompt}));
    EXPECT_EQ(FolderList(*project), ";Good Name;");
    EXPECT_EQ(Tree(), "*P\n  Good Name\n  Modules\n    modA\n");
}

// A blank name would be trimmed away on loading, and a second spelling of a folder is that
// folder: both are asked again, as an invalid name is, and AddFolder refuses them too.
TEST_F(ExplorerTest, NewFolderAsksAgainForABlankOrExistingName) {
    auto project = vbe->AddProject("P");
    project->WriteProperty("Quorlin", "QX-TypeName", ";Tools;");
    project->AddComponent("modA", ComponentType::StdModule);
    explorer.RefreshProjects();
    ui.answers = {"   ", " TOOLS ", "modules", "Reports"};
    EXPECT_TRUE(explorer.NewFolder("Project~P").done());
    const std::string prompt = "] Enter the name of the new folder you want to add:";
    EXPECT_EQ(ui.log, (std::vector<std::string>{
                          "InputBox[Enter Folder Name|New Folder" + prompt,
                          "MsgBox[Invalid Folder Name|64] Not a valid folder name, please try "
                          "again.",
                          "InputBox[Enter Folder Name|   " + prompt,
                          "MsgBox[Invalid Folder Name|64] A folder named 'Tools' already exists.",
                          "InputBox[Enter Folder Name| TOOLS " + prompt,
                          "MsgBox[Invalid Folder Name|64] A folder named 'Modules' already "
                          "exists.",
                          "InputBox[Enter Folder Name|modules" + prompt}));
    EXPECT_EQ(FolderList(*project), ";Tools;Reports;");

    EXPECT_EQ(explorer.AddFolder(*project, "reports").status(), Outcome::Status::Refused);
    EXPECT_EQ(explorer.AddFolder(*project, "\t").status(), Outcome::Status::Refused);
    EXPECT_EQ(FolderList(*project), ";Tools;Reports;");
    // Nor can a folder be renamed to a blank name.
    EXPECT_FALSE(explorer.AfterLabelEdit(*nodes().Item("Type~Tools~P"), "  ").done());
    EXPECT_EQ(FolderList(*project), ";Tools;Reports;");
}

TEST_F(ExplorerTest, NewFolderStopsOnCancelEmptyKeyOrMissingProject) {
    auto project = vbe->AddProject("P");
    explorer.RefreshProjects();
    explorer.NewFolder("");
    EXPECT_EQ(ui.log, std::vector<std::string>{"Beep"});

    ui.log.clear();
    ui.answers = {""};
    explorer.NewFolder("Project~P");
    EXPECT_EQ(ui.log.size(), 1u);
    EXPECT_EQ(FolderList(*project), "");

    ui.log.clear();
    explorer.NewFolder("No such node");
    EXPECT_TRUE(ui.log.empty());

    // A node outside any project: climbing ends at a top-level node that is no project.
    const auto other =
        nodes().Add(nullptr, tree::Relationship::Last, "Other", "Other", tree::NodeKind::Other);
    nodes().Add(other.get(), tree::Relationship::Child, "Inner", "Inner", tree::NodeKind::Other);
    explorer.NewFolder("Inner");
    EXPECT_TRUE(ui.log.empty());

    // The project node stands for a project that has been closed.
    nodes().Add(nullptr, tree::Relationship::Last, "Project~Closed", "Closed",
                tree::NodeKind::Project);
    ui.answers = {"X"};
    explorer.NewFolder("Project~Closed");
    EXPECT_EQ(FolderList(*project), "");
}

}  // namespace
}  // namespace arbolet::explorer::testing
