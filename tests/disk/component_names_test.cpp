// Renaming components and projects on disk refuses what the IDE refuses, with the IDE's error
// and a reason, and leaves every file as it was.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "disk/disk_environment.h"
#include "temp_folder.h"

namespace arbolet::disk {
namespace {

using testing::TempFolder;

const std::string kVbp =
    "Type=Exe\r\nModule=modMain; modMain.bas\r\nClass=clsItem; clsItem.cls\r\n"
    "Name=\"Shop\"\r\n";

class ComponentNames : public ::testing::Test {
  protected:
    TempFolder folder;
    std::shared_ptr<DiskEnvironment> environment;

    void SetUp() override {
        folder.Write("modMain.bas", "Attribute VB_Name = \"modMain\"\r\nSub Main()\r\nEnd Sub\r\n");
        folder.Write("clsItem.cls", "Attribute VB_Name = \"clsItem\"\r\n");
        environment = DiskEnvironment::Open({folder.Write("Shop.vbp", kVbp)});
    }

    env::VBComponentRef Module() const {
        return environment->VBProjects()->Item(1)->VBComponents()->Item("modMain");
    }

    // The error the rename raises; the rename must not happen.
    VbError Refusal(const std::string& name) const {
        try {
            Module()->SetName(name);
        } catch (const VbError& error) {
            return error;
        }
        ADD_FAILURE() << "'" << name << "' was taken";
        return VbError(0, "", "");
    }
};

TEST_F(ComponentNames, ReservedWordsAndNonIdentifiersAreRefusedWithTheReason) {
    const std::pair<std::string, std::string> cases[] = {
        {"If", "'If' is a reserved word of Visual Basic"},
        {"sub", "'sub' is a reserved word of Visual Basic"},
        {"Dim", "'Dim' is a reserved word of Visual Basic"},
        {"String", "'String' is a reserved word of Visual Basic"},
        {"1bad", "'1bad' does not begin with a letter"},
        {"bad name", "'bad name' holds a blank"},
        {std::string(41, 'm'), "is 41 characters long; a name has at most 40"},
    };
    for (const auto& [name, reason] : cases) {
        const VbError error = Refusal(name);
        EXPECT_EQ(error.Number, 380) << name;
        EXPECT_EQ(error.Description.rfind("Invalid property value: ", 0), 0u) << error.Description;
        EXPECT_NE(error.Description.find(reason), std::string::npos) << error.Description;
    }
    EXPECT_EQ(Module()->Name(), "modMain");
    EXPECT_TRUE(environment->ChangedFiles().empty());
    EXPECT_NO_THROW(Module()->SetName(std::string(40, 'm')));
}

TEST_F(ComponentNames, NamesInUseInAnyCaseAreRefusedButTheComponentMayChangeItsOwnCase) {
    const VbError taken = Refusal("CLSITEM");
    EXPECT_EQ(taken.Number, 380);
    EXPECT_EQ(taken.Description,
              "Name conflicts with existing module, project, or object library: the component "
              "clsItem has that name");
    EXPECT_NE(Refusal("shop").Description.find("the project Shop has that name"),
              std::string::npos);
    EXPECT_TRUE(environment->ChangedFiles().empty());

    Module()->SetName("MODMAIN");
    EXPECT_EQ(Module()->Name(), "MODMAIN");
    environment->Save();
    EXPECT_EQ(folder.Read("Shop.vbp"),
              "Type=Exe\r\nModule=MODMAIN; modMain.bas\r\nClass=clsItem; clsItem.cls\r\n"
              "Name=\"Shop\"\r\n");
}

TEST_F(ComponentNames, ProjectsFollowTheSameRule) {
    const auto project = environment->VBProjects()->Item(1);
    for (const std::string name : {"Select", "2nd", "my shop", "clsitem"}) {
        try {
            project->SetName(name);
            ADD_FAILURE() << "'" << name << "' was taken";
        } catch (const VbError& error) {
            EXPECT_EQ(error.Number, 380);
            EXPECT_EQ(error.Source, "VBProject.Name");
        }
    }
    EXPECT_EQ(project->Name(), "Shop");
    EXPECT_EQ(folder.Read("Shop.vbp"), kVbp);
    EXPECT_TRUE(environment->ChangedFiles().empty());
}

}  // namespace
}  // namespace arbolet::disk
