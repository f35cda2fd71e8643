// `arbolet tree --expand`, `rename`, `add` and `folders rename` on projects in a temporary folder,
// and the tree following real file changes as `tree --watch` does.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/cli_context.h"
#include "cli/cli_runner.h"
#include "cli/tree_watch.h"
#include "disk/temp_folder.h"

namespace arbolet::cli {
namespace {
namespace fs = std::filesystem;

using testing::Arbolet;
using testing::CliRun;

const std::string kVbp =
    "Type=Exe\r\nModule=modMain; modMain.bas\r\nForm=frmMain.frm\r\n"
    "Name=\"Shop\"\r\n";
const std::string kModule =
    "Attribute VB_Name = \"modMain\"\r\nSub Main()\r\n    If x Then\r\n"
    "        Debug.Print \"a text long enough to be cut at fifty\"\r\n"
    "End Sub\r\n";
const std::string kForm =
    "VERSION 5.00\r\nBegin VB.Form frmMain\r\nEnd\r\n"
    "Attribute VB_Name = \"frmMain\"\r\nDim a As Long\r\n";

class EditCommands : public ::testing::Test {
  protected:
    disk::testing::TempFolder folder;
    std::string vbp;

    void SetUp() override {
        folder.Write("modMain.bas", kModule);
        folder.Write("frmMain.frm", kForm);
        folder.Write("lib/modLib.bas", "Attribute VB_Name = \"modLib\"\r\n");
        vbp = folder.Write("Shop.vbp", kVbp).string();
    }
};

TEST_F(EditCommands, TreeExpandShowsCodeNodesWithKeysColoursAndTags) {
    const CliRun run = Arbolet({"tree", "--expand", "MODMAIN", "--format", "json", vbp});
    ASSERT_EQ(run.status, 0) << run.err;
    const auto modules = nlohmann::json::parse(run.out)["nodes"][0]["children"][1];
    const auto module = modules["children"][0];
    ASSERT_EQ(module["key"], "modMain~Shop~");
    const auto sub = module["children"][0];
    EXPECT_EQ(sub["key"], "SmodMain~Shop~@0");
    EXPECT_EQ(sub["colour"], 0xFF0000);
    const auto print = sub["children"][0]["children"][0];
    EXPECT_EQ(print["text"], "Debug.Print \"a text long enough to be cut at fi...");
    EXPECT_EQ(print["tag"], "Debug.Print \"a text long enough to be cut at fifty\"");
    // The error node is red; the form was not asked for and keeps its placeholder.
    EXPECT_NE(run.out.find("\"colour\":255"), std::string::npos);
    const auto form = nlohmann::json::parse(run.out)["nodes"][0]["children"][0]["children"][0];
    EXPECT_EQ(form["children"][0]["key"], "Code - frmMain~Shop~");

    const CliRun all = Arbolet({"tree", "--expand", "all", "--hide-variables", vbp});
    EXPECT_EQ(all.out.find("Dim a"), std::string::npos);
    EXPECT_NE(all.out.find("    frmMain\n  Modules\n    modMain\n      Sub Main()\n"),
              std::string::npos)
        << all.out;
}

TEST_F(EditCommands, RenameAndAddRewriteTheFilesAndRefusalsChangeNothing) {
    const CliRun taken = Arbolet({"rename", vbp, "modMain", "frmMain"});
    EXPECT_EQ(taken.status, 1);
    EXPECT_NE(taken.err.find("Invalid Name: You already have an object with this name."),
              std::string::npos);
    EXPECT_EQ(folder.Read("Shop.vbp"), kVbp);

    const CliRun renamed = Arbolet({"rename", vbp, "modmain", "modStart"});
    EXPECT_EQ(renamed.status, 0) << renamed.err;
    EXPECT_EQ(folder.Read("Shop.vbp"),
              "Type=Exe\r\nModule=modStart; modMain.bas\r\n"
              "Form=frmMain.frm\r\nName=\"Shop\"\r\n");
    EXPECT_EQ(folder.Read("modMain.bas").substr(0, 32), "Attribute VB_Name = \"modStart\"\r\n");

    const std::string lib = (folder / "lib/modLib.bas").string();
    const CliRun added = Arbolet({"add", vbp, lib});
    EXPECT_EQ(added.status, 0) << added.err;
    EXPECT_EQ(folder.Read("Shop.vbp"),
              "Type=Exe\r\nModule=modStart; modMain.bas\r\n"
              "Form=frmMain.frm\r\nName=\"Shop\"\r\n"
              "Module=modLib; lib\\modLib.bas\r\n");
    const CliRun again = Arbolet({"add", vbp, lib});
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.err.find("Existing File: " + lib + " is already part of Shop"),
              std::string::npos);
}

TEST_F(EditCommands, EveryRefusedComponentNameIsPrintedWithItsReason) {
    const std::pair<std::string, std::string> cases[] = {
        {"If", "Invalid property value: 'If' is a reserved word of Visual Basic"},
        {"1bad", "Invalid property value: '1bad' does not begin with a letter"},
        {"bad name", "Invalid property value: 'bad name' holds a blank"},
        {std::string(41, 'x'), "is 41 characters long; a name has at most 40"},
        {"FRMMAIN",
         "Name conflicts with existing module, project, or object library: the component "
         "frmMain has that name"},
    };
    for (const auto& [name, reason] : cases) {
        const CliRun run = Arbolet({"rename", vbp, "modMain", name});
        EXPECT_EQ(run.status, 1) << name;
        EXPECT_NE(run.err.find("Shop does not take '" + name + "' as a component name: "),
                  std::string::npos)
            << run.err;
        EXPECT_NE(run.err.find(reason), std::string::npos) << run.err;
    }
    EXPECT_EQ(folder.Read("Shop.vbp"), kVbp);
    EXPECT_EQ(folder.Read("modMain.bas"), kModule);
}

TEST_F(EditCommands, FoldersRenameOfAFixedGroupMovesItsComponentsIntoACustomFolder) {
    const CliRun run = Arbolet({"folders", vbp, "rename", "forms", "Screens"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Screens\n  frmMain\n");
    EXPECT_NE(folder.Read("Shop.vbp").find("[Quorlin]\r\nQX-TypeName=;Screens;\r\n"),
              std::string::npos);
    const CliRun missing = Arbolet({"folders", vbp, "rename", "Nothing", "Else"});
    EXPECT_EQ(missing.status, 1);
}

TEST_F(EditCommands, TheWatchedTreeFollowsRealFileChanges) {
    std::ostringstream out;
    std::ostringstream err;
    CliContext context{out, err};
    auto environment = disk::DiskEnvironment::Open({vbp});
    LoadedTree loaded(environment, context);
    TreeWatch watch(loaded, context);
    const std::atomic<bool> stop{false};
    const auto stepUntil = [&](const std::string& key, bool present) {
        for (int i = 0; i < 20 && loaded.view.Nodes().Exists(key) != present; ++i)
            watch.Step(std::chrono::milliseconds(200), stop);
        return loaded.view.Nodes().Exists(key) == present;
    };
    EXPECT_FALSE(watch.Step(std::chrono::milliseconds(50), stop));

    loaded.explorer.ExpandNode(*loaded.view.Nodes().Item("modMain~Shop~"));
    folder.Write("modMain.bas", "Attribute VB_Name = \"modMain\"\r\nSub Changed()\r\n");
    EXPECT_TRUE(stepUntil("SmodMain~Shop~@0", false));  // reloaded: the code tree is closed
    loaded.explorer.ExpandNode(*loaded.view.Nodes().Item("modMain~Shop~"));
    EXPECT_EQ(loaded.view.Nodes().Item("SmodMain~Shop~@0")->Text(), "Sub Changed()");

    folder.Write("Shop.vbp", kVbp + "Module=modLib; lib\\modLib.bas\r\n");
    EXPECT_TRUE(stepUntil("modLib~Shop~", true));
    fs::remove(folder / "frmMain.frm");
    EXPECT_TRUE(stepUntil("frmMain~Shop~", false));
    EXPECT_FALSE(loaded.view.Nodes().Exists("Type~Forms~Shop") &&
                 loaded.view.Nodes().Item("Type~Forms~Shop")->Children() > 0);
}

}  // namespace
}  // namespace arbolet::cli
