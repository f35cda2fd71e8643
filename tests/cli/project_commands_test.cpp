// `arbolet tree`, `arbolet folders` and `arbolet check` on projects: output, exit statuses, and
// the files a change rewrites.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/cli_runner.h"
#include "disk/temp_folder.h"

namespace arbolet::cli {
namespace {
namespace fs = std::filesystem;

using testing::Arbolet;
using testing::CliRun;

const std::string kVbp =
    "Type=Exe\r\nModule=modMain; modMain.bas\r\nClass=clsData; clsData.cls\r\n"
    "Form=frmMain.frm\r\nModule=modGone; gone\\modGone.bas\r\nName=\"Shop\"\r\n\r\n"
    "[Quorlin]\r\nQX-TypeName=;Data;Empty;\r\n";
const std::string kModule = "Attribute VB_Name = \"modMain\"\r\nSub Main()\r\nEnd Sub\r\n";
const std::string kClass =
    "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1  'True\r\nEND\r\n"
    "Attribute VB_Name = \"clsData\"\r\nAttribute VB_Ext_KEY = \"QX-TypeName\" ,\"Data\"\r\n"
    "Sub Load()\r\n    If x Then\r\nEnd Sub\r\n";
const std::string kForm =
    "VERSION 5.00\r\nBegin VB.Form frmMain\r\nEnd\r\nAttribute VB_Name = \"frmMain\"\r\n";

class ProjectCommands : public ::testing::Test {
  protected:
    disk::testing::TempFolder folder;
    std::string vbp;

    void SetUp() override {
        folder.Write("modMain.bas", kModule);
        folder.Write("clsData.cls", kClass);
        folder.Write("frmMain.frm", kForm);
        vbp = folder.Write("Shop.vbp", kVbp).string();
    }
};

TEST_F(ProjectCommands, TreeTextShowsFoldersInOrderAndWarnsAboutMissingFiles) {
    const CliRun run = Arbolet({"tree", vbp});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "Shop\n  Data\n    clsData\n  Empty\n  Forms\n    frmMain\n  Modules\n    modMain\n");
    EXPECT_EQ(run.err, fs::path(vbp).generic_string() +
                           ":5: warning: component file not found: gone\\modGone.bas\n");
    const CliRun bold = Arbolet({"tree", vbp}, true);
    EXPECT_EQ(bold.out.substr(0, 13), "\x1b[1mShop\x1b[0m\n");
}

TEST_F(ProjectCommands, TreeJsonListsEveryNodeWithKeyTextBoldImage) {
    const CliRun run = Arbolet({"tree", "--format", "json", vbp});
    ASSERT_EQ(run.status, 0) << run.err;
    const auto nodes = nlohmann::json::parse(run.out).at("nodes");
    ASSERT_EQ(nodes.size(), 1u);
    const auto& project = nodes.at(0);
    EXPECT_EQ(project.at("key"), "Project~Shop");
    EXPECT_EQ(project.at("bold"), true);
    EXPECT_EQ(project.at("image"), 1);
    const auto& dataFolder = project.at("children").at(0);
    EXPECT_EQ(dataFolder,
              nlohmann::json::parse(R"({"key":"Type~Data~Shop","text":"Data","bold":false,
        "image":null,"colour":2147483656,"tag":"","children":[{"key":"clsData~Shop~",
        "text":"clsData","bold":false,"image":2,"colour":2147483656,"tag":"",
        "children":[{"key":"Code - clsData~Shop~","text":"Code List","bold":false,"image":null,
        "colour":2147483656,"tag":"","children":[]}]}]})"));
    EXPECT_EQ(project.at("children").size(), 4u);
}

TEST_F(ProjectCommands, TreeOfAGroupMarksTheStartupProject) {
    folder.Write("Tools/Tools.vbp", "Type=Exe\r\nName=\"Tools\"\r\n");
    const auto vbg = folder.Write(
        "All.vbg", "VBGROUP 5.0\r\nProject=Shop.vbp\r\nStartupProject=tools\\TOOLS.VBP\r\n");
    const CliRun run = Arbolet({"tree", vbg.string()}, true);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("Shop\n  Data\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\x1b[1mTools\x1b[0m\n"), std::string::npos) << run.out;
    EXPECT_LT(run.out.find("Shop"), run.out.find("Tools"));
}

TEST_F(ProjectCommands, TreeRefusesFilesThatAreNoProjects) {
    const auto junk = folder.Write("junk.vbp", std::string("\0\x01\x02", 3));
    const CliRun run = Arbolet({"tree", junk.string()});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("junk.vbp: line 1: binary data"), std::string::npos) << run.err;
    EXPECT_EQ(Arbolet({"tree", (folder / "none.vbp").string()}).status, 2);
}

TEST_F(ProjectCommands, ExampleProjectShowsCustomFoldersInOrder) {
    const std::string example =
        std::string(ARBOLET_SOURCE_DIR) + "/examples/Inventory/Inventory.vbp";
    const CliRun tree = Arbolet({"tree", example});
    EXPECT_EQ(tree.status, 0) << tree.err;
    EXPECT_EQ(tree.err, "");
    EXPECT_EQ(tree.out,
              "Inventory\n  Archive\n  Class Modules\n    clsWarehouse\n  Data Access\n"
              "    modLegacy\n  Forms\n    frmMain\n  Stock Logic\n    clsItem\n    modStock\n"
              "  User Controls\n    ctlGauge\n");
    const CliRun folders = Arbolet({"folders", example});
    EXPECT_EQ(folders.out,
              "Archive (empty)\nData Access\n  modLegacy\nStock Logic\n  clsItem\n  modStock\n");
}

TEST_F(ProjectCommands, FoldersAddAndMoveWriteOnlyTheLinesTheyMust) {
    CliRun run = Arbolet({"folders", vbp, "add", "Reports"});
    EXPECT_EQ(run.status, 0) << run.err;
    std::string expected = kVbp;
    expected.replace(expected.find(";Data;Empty;"), 12, ";Data;Empty;Reports;");
    EXPECT_EQ(folder.Read("Shop.vbp"), expected);
    EXPECT_EQ(run.out, "Data\n  clsData\nEmpty (empty)\nReports (empty)\n");

    run = Arbolet({"folders", vbp, "move", "FRMMAIN", "Reports"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.Read("frmMain.frm"),
              kForm + "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Reports\"\r\n");
    EXPECT_EQ(run.out, "Data\n  clsData\nEmpty (empty)\nReports\n  frmMain\n");
    EXPECT_EQ(folder.Read("modMain.bas"), kModule);
}

TEST_F(ProjectCommands, FoldersRemoveReturnsComponentsToTheirGroups) {
    const CliRun run = Arbolet({"folders", vbp, "remove", "data"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Empty (empty)\n");
    EXPECT_NE(folder.Read("clsData.cls").find("Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"\"\r\n"),
              std::string::npos);
    // Clearing the component's folder records the empty name, as the explorer does.
    EXPECT_NE(folder.Read("Shop.vbp").find("\r\nQX-TypeName=;Empty;;\r\n"), std::string::npos);
}

TEST_F(ProjectCommands, FoldersRefuseInvalidNamesAndUnknownTargets) {
    const std::pair<std::vector<std::string>, std::string> refused[] = {
        {{"add", "a;b"},
         "arbolet: Invalid Folder Name: Not a valid folder name, please try again.\n"},
        {{"add", "caf\xC3\xA9"},
         "arbolet: Invalid Folder Name: Not a valid folder name, please try again.\n"},
        {{"move", "modMain", "x~y"},
         "arbolet: Invalid Folder Name: Not a valid folder name, please try again.\n"},
        {{"move", "modNone", "Data"}, "arbolet: Shop has no component named 'modNone'\n"},
        {{"remove", "Modules"}, "arbolet: 'Modules' is not a custom folder of Shop\n"},
    };
    for (const auto& [action, message] : refused) {
        std::vector<std::string> args{"folders", vbp};
        args.insert(args.end(), action.begin(), action.end());
        const CliRun run = Arbolet(args);
        EXPECT_EQ(run.status, 1) << action[1];
        EXPECT_EQ(run.err.substr(run.err.find("arbolet:")), message);
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(folder.Read("Shop.vbp"), kVbp);
    EXPECT_EQ(folder.Read("modMain.bas"), kModule);
}

TEST_F(ProjectCommands, AFailedSaveLeavesEveryFileAsItWas) {
    folder.MakeReadOnly("Shop.vbp");
    const CliRun run = Arbolet({"folders", vbp, "move", "modMain", "Tools", "--create"});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("Shop.vbp: the file is read-only; nothing was saved"), std::string::npos)
        << run.err;
    EXPECT_EQ(folder.Read("modMain.bas"), kModule);
    EXPECT_EQ(folder.Read("Shop.vbp"), kVbp);
}

TEST_F(ProjectCommands, CheckOfAProjectChecksTheComponentsItLists) {
    const CliRun run = Arbolet({"check", vbp});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("clsData.cls:8: error: `If` at line 8 has no `End If`"),
              std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("(3 files checked)"), std::string::npos) << run.out;
    // The missing component is a finding of its own, counted as a warning.
    EXPECT_NE(run.out.find(":5: warning: component file not found: gone\\modGone.bas"),
              std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("1 warning"), std::string::npos) << run.out;
}

}  // namespace
}  // namespace arbolet::cli
