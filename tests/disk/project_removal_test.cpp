// Taking components and projects out of an environment on disk: the project file loses exactly
// the component's line, the events go out, and the files stay.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "disk/disk_environment.h"
#include "temp_folder.h"

namespace arbolet::disk {
namespace {

using testing::TempFolder;

class RemovalTest : public ::testing::Test {
  protected:
    void SetUp() override {
        folder.Write("modA.bas", "Attribute VB_Name = \"modA\"\n");
        folder.Write("modB.bas", "Attribute VB_Name = \"modB\"\n");
        folder.Write("P.vbp",
                     "Type=Exe\nModule=modA; modA.bas\nModule=modB; modB.bas\n"
                     "Name=\"P\"\n\n[Quorlin]\nQX-TypeName=;Logic;\n");
        folder.Write("Q.vbp", "Type=Exe\nModule=modA; modA.bas\nName=\"Q\"\n");
        environment = DiskEnvironment::Open({folder / "P.vbp", folder / "Q.vbp"});
        events = std::make_shared<Recorder>();
        environment->Events()->VBProjectsEvents()->Advise(events);
        environment->Events()->VBComponentsEvents(nullptr)->Advise(events);
    }

    struct Recorder : env::VBProjectsEventsSink, env::VBComponentsEventsSink {
        void ItemRemoved(const env::VBProjectRef& p) override { seen.push_back("-" + p->Name()); }
        void ItemRemoved(const env::VBComponentRef& c) override { seen.push_back("-" + c->Name()); }
        std::vector<std::string> seen;
    };

    TempFolder folder;
    std::shared_ptr<DiskEnvironment> environment;
    std::shared_ptr<Recorder> events;
};

TEST_F(RemovalTest, RemovingAComponentDropsOnlyItsLineFromTheProjectFile) {
    const auto project = environment->VBProjects()->Item(1);
    const auto components = project->VBComponents();
    components->Remove(components->Item("modB"));
    EXPECT_EQ(components->Count(), 1);
    EXPECT_EQ(events->seen, std::vector<std::string>{"-modB"});
    environment->Save();
    EXPECT_EQ(folder.Read("P.vbp"),
              "Type=Exe\nModule=modA; modA.bas\nName=\"P\"\n\n[Quorlin]\nQX-TypeName=;Logic;\n");
    EXPECT_TRUE(std::filesystem::exists(folder / "modB.bas"));
    // The other project's component of the same file is not this project's to remove.
    const auto other = environment->VBProjects()->Item(2)->VBComponents()->Item("modA");
    try {
        components->Remove(other);
        FAIL() << "a component of another project was removed";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, env::enverr::kSubscriptOutOfRange);
    }
}

TEST_F(RemovalTest, RemovingAProjectClosesItAndMovesTheStartAndActiveProjects) {
    const auto first = environment->VBProjects()->Item(1);
    environment->SetActiveVBProject(first);
    environment->RemoveProject(first);
    EXPECT_EQ(events->seen, std::vector<std::string>{"-P"});
    ASSERT_EQ(environment->VBProjects()->Count(), 1);
    EXPECT_EQ(environment->VBProjects()->StartProject()->Name(), "Q");
    EXPECT_EQ(environment->ActiveVBProject()->Name(), "Q");
    EXPECT_TRUE(std::filesystem::exists(folder / "P.vbp"));
    EXPECT_THROW(environment->RemoveProject(first), VbError);
    // Opened again, it is a project like any other.
    environment->AddFromFile(folder / "P.vbp");
    EXPECT_EQ(environment->VBProjects()->Count(), 2);
}

}  // namespace
}  // namespace arbolet::disk
