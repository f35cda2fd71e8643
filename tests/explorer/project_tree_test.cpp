// Building the project tree: keys, captions, pictures, the fixed groups and the sorted order.
#include "explorer_fixture.h"

namespace arbolet::explorer::testing {
namespace {

using env::ComponentType;

TEST_F(ExplorerTest, LoadsFoldersAndComponentsInCaseInsensitiveOrder) {
    auto project = vbe->AddProject("Billing");
    project->WriteProperty("Quorlin", "QX-TypeName", ";Utilities; Data Access ;;Empty;");
    project->AddComponent("frmMain", ComponentType::VBForm);
    project->AddComponent("modZeta", ComponentType::StdModule);
    project->AddComponent("MDIMain", ComponentType::VBMDIForm);
    project->AddComponent("modalpha", ComponentType::StdModule);
    project->AddComponent("clsInvoice", ComponentType::ClassModule);
    project->AddComponent("modStrings", ComponentType::StdModule)
        ->WriteProperty("QX-TypeName", "Utilities");
    project->AddComponent("clsDb", ComponentType::ClassModule)
        ->WriteProperty("QX-TypeName", "Data Access");
    project->AddComponent("Bogus", static_cast<ComponentType>(42));
    project->AddComponent("ctlGrid", ComponentType::UserControl);
    project->AddComponent("pagGrid", ComponentType::PropPage);
    project->AddComponent("docHome", ComponentType::DocObject);
    project->AddComponent("DataEnv", ComponentType::ActiveXDesigner);
    project->AddComponent("UserForm1", ComponentType::MSForm);

    explorer.LoadProject(*project);
    EXPECT_EQ(Tree(),
              "*Billing\n"
              "  Class Modules\n"
              "    clsInvoice\n"
              "  Data Access\n"
              "    clsDb\n"
              "  Designers\n"
              "    DataEnv\n"
              "  Empty\n"
              "  Forms\n"
              "    frmMain\n"
              "    MDIMain\n"
              "    UserForm1\n"
              "  Modules\n"
              "    modalpha\n"
              "    modZeta\n"
              "  Property Pages\n"
              "    pagGrid\n"
              "  Unknown\n"
              "    Bogus\n"
              "  User Controls\n"
              "    ctlGrid\n"
              "  User Documents\n"
              "    docHome\n"
              "  Utilities\n"
              "    modStrings\n");
}

TEST_F(ExplorerTest, GivesEveryNodeItsKeyCaptionAndPicture) {
    auto project = vbe->AddProject("P");
    project->AddComponent("modMain", ComponentType::StdModule);
    explorer.LoadProject(*project);

    const auto projectNode = nodes().Item("Project~P");
    EXPECT_EQ(projectNode->Text(), "P");
    EXPECT_EQ(projectNode->Image(), 1);
    EXPECT_EQ(projectNode->Parent(), nullptr);

    const auto folderNode = nodes().Item("Type~Modules~P");
    EXPECT_EQ(folderNode->Text(), "Modules");
    EXPECT_EQ(folderNode->Image(), std::nullopt);
    EXPECT_EQ(folderNode->Parent()->Key(), "Project~P");

    const auto componentNode = nodes().Item("modMain~P~");
    EXPECT_EQ(componentNode->Text(), "modMain");
    EXPECT_EQ(componentNode->Image(), 2);
    EXPECT_EQ(componentNode->Parent()->Key(), "Type~Modules~P");

    const auto placeholder = nodes().Item("Code - modMain~P~");
    EXPECT_EQ(placeholder->Text(), "Code List");
    EXPECT_EQ(placeholder->Image(), std::nullopt);
    EXPECT_EQ(placeholder->Parent(), componentNode);
    EXPECT_EQ(nodes().Count(), 4);
}

TEST_F(ExplorerTest, EmptyOrBlankFolderListsShowOnlyTheFixedGroups) {
    for (const char* list : {"", ";;;", "; ;  ;"}) {
        auto project =
            vbe->AddProject(std::string("P") + std::to_string(vbe->VBProjects()->Count()));
        project->WriteProperty("Quorlin", "QX-TypeName", list);
        project->AddComponent("clsA", ComponentType::ClassModule);
        explorer.LoadProject(*project);
        const auto projectNode = nodes().Item("Project~" + project->Name());
        EXPECT_EQ(projectNode->Children(), 1) << "list '" << list << "'";
        EXPECT_EQ(projectNode->Child()->Text(), "Class Modules");
    }
}

TEST_F(ExplorerTest, UnreadableComponentFoldersFallBackToTheFixedGroup) {
    auto project = vbe->AddProject("P");
    auto form = project->AddComponent("frmA", ComponentType::VBForm);
    form->WriteProperty("QX-TypeName", "Screens");
    form->SetHasPropertyStore(false);
    project->AddComponent("modB", ComponentType::StdModule)->WriteProperty("QX-TypeName", "");
    explorer.LoadProject(*project);
    EXPECT_EQ(Tree(), "*P\n  Forms\n    frmA\n  Modules\n    modB\n");
}

TEST_F(ExplorerTest, ComponentsWithoutNameAreKnownByTheirFile) {
    auto project = vbe->AddProject("P");
    project->AddComponent("", ComponentType::RelatedDocument, "", "C:\\Work\\Docs\\readme.txt");
    project->AddComponent("", ComponentType::ResFile, "", "/srv/vb/App.RES");
    project->AddComponent("modX", ComponentType::StdModule, "", "C:\\modX.bas");
    explorer.LoadProject(*project);
    EXPECT_EQ(Tree(),
              "*P\n  Modules\n    modX\n  Related Documents\n    readme.txt\n"
              "  Resource Files\n    App.RES\n");
    EXPECT_TRUE(nodes().Exists("readme.txt~P~"));
}

TEST_F(ExplorerTest, OnlyTheStartupProjectIsBold) {
    auto first = vbe->AddProject("First");
    auto second = vbe->AddProject("Second");
    vbe->VBProjects()->SetStartProject(second);
    explorer.LoadProject(*first);
    explorer.LoadProject(*second);
    EXPECT_FALSE(nodes().Item("Project~First")->Bold());
    EXPECT_TRUE(nodes().Item("Project~Second")->Bold());
}

TEST_F(ExplorerTest, KeysOfEqualComponentNamesDifferByProject) {
    auto one = vbe->AddProject("One");
    auto two = vbe->AddProject("Two");
    one->AddComponent("modShared", ComponentType::StdModule);
    two->AddComponent("modShared", ComponentType::StdModule);
    explorer.RefreshProjects();
    EXPECT_EQ(nodes().Item("modShared~One~")->Parent()->Key(), "Type~Modules~One");
    EXPECT_EQ(nodes().Item("modShared~Two~")->Parent()->Key(), "Type~Modules~Two");
    EXPECT_TRUE(nodes().Exists("Code - modShared~Two~"));
}

TEST_F(ExplorerTest, LoadingAgainAddsOnlyWhatIsMissing) {
    auto project = vbe->AddProject("P");
    project->WriteProperty("Quorlin", "QX-TypeName", ";Tools;");
    project->AddComponent("modA", ComponentType::StdModule);
    explorer.LoadProject(*project);
    const std::string before = Tree(true);
    const auto count = nodes().Count();
    explorer.LoadProject(*project);
    EXPECT_EQ(Tree(true), before);
    EXPECT_EQ(nodes().Count(), count);

    project->AddComponent("modB", ComponentType::StdModule);
    explorer.LoadProject(*project);
    EXPECT_EQ(nodes().Count(), count + 2);
    EXPECT_EQ(nodes().Item("modB~P~")->Previous()->Key(), "modA~P~");
}

TEST_F(ExplorerTest, FolderNamesDifferingOnlyInCaseShareOneNode) {
    auto project = vbe->AddProject("P");
    project->AddComponent("frmA", ComponentType::VBForm);
    explorer.LoadProject(*project);
    // "Forms" is the only child, then also the last one among several.
    EXPECT_EQ(explorer.GetFolderNode("P", "forms")->Key(), "Type~Forms~P");
    explorer.GetFolderNode("P", "Apples");
    EXPECT_EQ(explorer.GetFolderNode("P", "FORMS")->Key(), "Type~Forms~P");
    explorer.GetFolderNode("P", "Zebra");
    EXPECT_EQ(explorer.GetFolderNode("P", "fOrMs")->Key(), "Type~Forms~P");
    EXPECT_EQ(Tree(), "*P\n  Apples\n  Forms\n    frmA\n  Zebra\n");

    // A component stored in "forms" joins the group node, which keeps its first spelling.
    auto form = project->AddComponent("frmB", ComponentType::VBForm);
    form->WriteProperty("QX-TypeName", "forms");
    explorer.LoadProject(*project);
    EXPECT_EQ(nodes().Item("frmB~P~")->Parent()->Key(), "Type~Forms~P");
}

TEST_F(ExplorerTest, FolderNodesNeedTheirProjectNode) {
    EXPECT_EQ(explorer.GetFolderNode("Nowhere", "Modules"), nullptr);
    EXPECT_EQ(explorer.AddComponentNode("modA", "Modules", "Nowhere"), nullptr);
    EXPECT_EQ(nodes().Count(), 0);
    EXPECT_FALSE(explorer.NodeExists("Project~Nowhere"));
}

TEST_F(ExplorerTest, InsertsNewNodesAmongExistingOnes) {
    auto project = vbe->AddProject("P");
    explorer.LoadProject(*project);
    for (const char* folder : {"Middle", "alpha", "Zulu", "beta", "MIDDLE", "Omega"}) {
        explorer.GetFolderNode("P", folder);
    }
    for (const char* component : {"m", "B", "a", "Z", "c"}) {
        explorer.AddComponentNode(component, "Middle", "P");
    }
    EXPECT_EQ(Tree(),
              "*P\n  alpha\n  beta\n  Middle\n    a\n    B\n    c\n    m\n    Z\n"
              "  Omega\n  Zulu\n");
}

TEST_F(ExplorerTest, RefreshRebuildsEveryProjectAndTakesTheEventSources) {
    auto first = vbe->AddProject("First");
    auto second = vbe->AddProject("Second");
    first->AddComponent("modA", ComponentType::StdModule);
    second->WriteProperty("Quorlin", "QX-TypeName", ";Empty;");
    explorer.GetFolderNode("First", "Stale");  // no project node yet: nothing happens
    nodes().Add(nullptr, tree::Relationship::Last, "Project~Gone", "Gone", tree::NodeKind::Project);

    explorer.RefreshProjects();
    EXPECT_EQ(Tree(), "*First\n  Modules\n    modA\nSecond\n  Empty\n");
    EXPECT_EQ(view.OpenUpdates(), 0);
    EXPECT_EQ(explorer.projEvents, vbe->Events()->VBProjectsEvents());
    EXPECT_EQ(explorer.ComponentEventsOf("First"), vbe->Events()->VBComponentsEvents(first));
    EXPECT_EQ(explorer.ComponentEventsOf("Second"), vbe->Events()->VBComponentsEvents(second));

    vbe->RemoveProject(first);
    explorer.RefreshProjects();
    EXPECT_EQ(Tree(), "Second\n  Empty\n");
}

// Component events of every open project reach the tree, not only the active project's: the
// other project of a group, a project opened later, one closed and opened again, one renamed.
TEST_F(ExplorerTest, ComponentEventsOfEveryOpenProjectReachTheTree) {
    auto first = vbe->AddProject("First");
    auto second = vbe->AddProject("Second");
    first->AddComponent("modA", ComponentType::StdModule);
    auto modB = second->AddComponent("modB", ComponentType::StdModule);
    explorer.RefreshProjects();

    second->RenameComponent(modB, "modB2");
    second->AddComponent("clsB", ComponentType::ClassModule);
    EXPECT_EQ(Tree(),
              "*First\n  Modules\n    modA\nSecond\n  Class Modules\n    clsB\n  Modules\n"
              "    modB2\n");

    auto third = vbe->AddProject("Third");
    third->AddComponent("modC", ComponentType::StdModule);
    EXPECT_TRUE(nodes().Exists("modC~Third~"));

    const auto closedSource = vbe->Events()->VBComponentsEvents(first);
    vbe->RemoveProject(first);
    EXPECT_EQ(closedSource->ConnectionCount(), 0u) << "a closed project is let go";
    EXPECT_EQ(explorer.ComponentEventsOf("First"), nullptr);
    auto reopened = vbe->AddProject("First");
    reopened->AddComponent("modA", ComponentType::StdModule);
    EXPECT_TRUE(nodes().Exists("modA~First~"));

    vbe->RenameProject(second, "Renamed");
    second->RemoveComponent(modB);
    EXPECT_FALSE(nodes().Exists("modB2~Renamed~"));
    EXPECT_TRUE(nodes().Exists("clsB~Renamed~"));
    EXPECT_EQ(explorer.ComponentEventsOf("Second"), nullptr);

    // A second reload follows each project once.
    explorer.RefreshProjects();
    EXPECT_EQ(vbe->Events()->VBComponentsEvents(reopened)->ConnectionCount(), 1u);
    EXPECT_EQ(vbe->Events()->VBComponentsEvents(second)->ConnectionCount(), 1u);
}

TEST_F(ExplorerTest, WithoutEnvironmentTheTreeStaysAsItIs) {
    ProjectExplorer detached(nullptr, view, ui);
    nodes().Add(nullptr, tree::Relationship::Last, "Project~X", "X", tree::NodeKind::Project);
    detached.RefreshProjects();
    EXPECT_EQ(Tree(), "X\n");
    EXPECT_EQ(detached.projEvents, nullptr);
}

}  // namespace
}  // namespace arbolet::explorer::testing
