// Paths in project and group files resolve from the project file's own folder, whatever the
// working folder and however the project was named, with every part matched ignoring letter
// case; added files get the relative path VB writes.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "disk/disk_environment.h"
#include "temp_folder.h"

namespace arbolet::disk {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;

// Runs a test from another working folder, and comes back.
class WorkingFolder {
  public:
    explicit WorkingFolder(const fs::path& folder) : previous_(fs::current_path()) {
        fs::current_path(folder);
    }
    ~WorkingFolder() { fs::current_path(previous_); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

  private:
    fs::path previous_;
};

std::vector<std::string> ComponentNames(const env::VBProject& project) {
    std::vector<std::string> names;
    const auto components = project.VBComponents();
    for (std::int32_t i = 1; i <= components->Count(); ++i)
        names.push_back(components->Item(i)->Name());
    return names;
}

class ProjectPaths : public ::testing::Test {
  protected:
    TempFolder folder;

    void SetUp() override {
        folder.Write("lib/modLib.bas", "Attribute VB_Name = \"modLib\"\r\n");
        folder.Write("lib/modMore.bas", "Attribute VB_Name = \"modMore\"\r\n");
        folder.Write("Modules/Foo.bas", "Attribute VB_Name = \"modFoo\"\r\n");
        folder.Write("proj/P.vbp",
                     "Type=Exe\r\nModule=modLib; ..\\lib\\modLib.bas\r\nName=\"P\"\r\n");
        folder.Write("Fakes.vbp",
                     "Type=Exe\r\nModule=modFoo; modules\\FOO.BAS\r\nName=\"Fakes\"\r\n");
        folder.Write("G.vbg", "VBGROUP 5.0\r\nStartupProject=FAKES.VBP\r\nProject=PROJ\\p.vbp\r\n");
    }
};

TEST_F(ProjectPaths, ParentPathsResolveFromTheProjectFolderWhateverTheWorkingFolder) {
    for (const std::string given : {"P.vbp", "./P.vbp", "../proj/P.vbp"}) {
        const WorkingFolder here(folder / "proj");
        const auto environment = DiskEnvironment::Open({given});
        EXPECT_TRUE(environment->Warnings().empty()) << environment->Warnings()[0].ToString();
        const auto project = environment->VBProjects()->Item(1);
        EXPECT_EQ(ComponentNames(*project), std::vector<std::string>{"modLib"}) << given;
        EXPECT_EQ(fs::path(project->FileName()), fs::canonical(folder / "proj/P.vbp"));
    }
}

TEST_F(ProjectPaths, GroupsInTheWorkingFolderFindTheirProjectsInAnyLetterCase) {
    const WorkingFolder here(folder.Path());
    const auto environment = DiskEnvironment::Open({"G.vbg"});
    EXPECT_TRUE(environment->Warnings().empty()) << environment->Warnings()[0].ToString();
    const auto projects = environment->VBProjects();
    ASSERT_EQ(projects->Count(), 2);
    EXPECT_EQ(projects->StartProject()->Name(), "Fakes");
    EXPECT_EQ(ComponentNames(*projects->Item("Fakes")), std::vector<std::string>{"modFoo"});
    EXPECT_EQ(ComponentNames(*projects->Item("P")), std::vector<std::string>{"modLib"});
}

TEST_F(ProjectPaths, AddingFromTheWorkingFolderWritesThePathRelativeToTheProject) {
    const WorkingFolder here(folder / "proj");
    const auto environment = DiskEnvironment::Open({"P.vbp"});
    const auto components = environment->VBProjects()->Item(1)->VBComponents();
    components->AddFile("../lib/modMore.bas");
    // The file the project already lists, named another way, is refused: a second entry of
    // the same name would keep VB6 from loading the project.
    try {
        components->AddFile("../LIB/./modLib.bas");
        ADD_FAILURE() << "added twice";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, env::enverr::kFileAlreadyInProject);
    }
    environment->Save();
    EXPECT_EQ(folder.Read("proj/P.vbp"),
              "Type=Exe\r\nModule=modLib; ..\\lib\\modLib.bas\r\nName=\"P\"\r\n"
              "Module=modMore; ..\\lib\\modMore.bas\r\n");
}

}  // namespace
}  // namespace arbolet::disk
