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

TEST_F(EditCommands, FoldersMoveMakesNoFolderFromATypoAndRenameSaysWhenItMerges) {
    const CliRun typo = Arbolet({"folders", vbp, "move", "modMain", "Tols"});
    EXPECT_EQ(typo.status, 1);
    EXPECT_NE(typo.err.find("Shop has no folder named 'Tols'; give --create to make it"),
              std::string::npos)
        << typo.err;
    EXPECT_EQ(folder.Read("Shop.vbp"), kVbp);
    EXPECT_EQ(folder.Read("modMain.bas"), kModule);

    EXPECT_EQ(Arbolet({"folders", vbp, "move", "modMain", "Tools", "--create"}).status, 0);
    EXPECT_EQ(Arbolet({"folders", vbp, "move", "frmMain", "tools"}).status, 0);  // exists now
    EXPECT_EQ(Arbolet({"folders", vbp, "add", "Data"}).status, 0);
    const CliRun merged = Arbolet({"folders", vbp, "rename", "Data", "TOOLS"});
    EXPECT_EQ(merged.status, 0) << merged.err;
    EXPECT_NE(merged.err.find("'TOOLS' already existed: the components of 'Data' were merged"),
              std::string::npos)
        << merged.err;
    const CliRun plain = Arbolet({"folders", vbp, "rename", "TOOLS", "Kit"});
    EXPECT_EQ(plain.err.find("merged"), std::string::npos) << plain.err;
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

// Editors that save UTF-8 put a byte-order mark before the first line; the attribute behind
// it is still the component's name, and the mark stays where it was.
TEST_F(EditCommands, RenameFindsTheNameBehindAByteOrderMark) {
    const std::string bom = "\xEF\xBB\xBF";
    folder.Write("modMain.bas", bom + kModule);
    const CliRun tree = Arbolet({"tree", "--expand", "modMain", vbp});
    EXPECT_NE(tree.out.find("    modMain\n      Sub Main()\n"), std::string::npos) << tree.out;
    const CliRun run = Arbolet({"rename", vbp, "modMain", "modStart"});
    ASSERT_EQ(run.status, 0) << run.err;
    std::string expected = bom + kModule;
    expected.replace(expected.find("modMain"), 7, "modStart");
    EXPECT_EQ(folder.Read("modMain.bas"), expected);

    // A module without a name line gets one behind the mark, not before it.
    folder.Write("lib/modLib.bas", bom + "Sub Helper()\r\nEnd Sub\r\n");
    ASSERT_EQ(Arbolet({"add", vbp, (folder / "lib/modLib.bas").string()}).status, 0);
    const CliRun named = Arbolet({"rename", vbp, "modLib", "modHelp"});
    ASSERT_EQ(named.status, 0) << named.err;
    EXPECT_EQ(folder.Read("lib/modLib.bas"),
              bom + "Attribute VB_Name = \"modHelp\"\r\nSub Helper()\r\nEnd Sub\r\n");
}

// A user control is hosted by the forms, controls and pages of its project as
// `Begin Project.Name`: renaming it renames those lines too, in every file or in none.
TEST_F(EditCommands, RenamingAUserControlRenamesWhereItIsHosted) {
    const std::string control =
        "VERSION 5.00\r\nBegin VB.UserControl ctlGauge \r\n   ClientHeight = 100\r\nEnd\r\n"
        "Attribute VB_Name = \"ctlGauge\"\r\nAttribute VB_Exposed = False\r\n";
    const std::string host =
        "VERSION 5.00\r\nBegin VB.Form frmMain\r\n   Begin Shop.ctlGauge ctlGauge1\n"
        "      Left = 10\r\n   End\r\n   Begin VB.Frame fra\r\n"
        "      Begin shop.CTLGAUGE ctlGauge2 \r\n      End\r\n   End\r\n"
        "   Begin Shop.ctlGaugeX other\r\n   End\r\nEnd\r\n"
        "Attribute VB_Name = \"frmMain\"\r\nDim a As ctlGauge\r\n";
    const std::string page =
        "VERSION 5.00\r\nBegin VB.PropertyPage ppgGauge\r\n   Begin Shop.ctlGauge g\r\n"
        "   End\r\nEnd\r\nAttribute VB_Name = \"ppgGauge\"\r\n";
    folder.Write("ctlGauge.ctl", control);
    folder.Write("frmMain.frm", host);
    folder.Write("ppgGauge.pag", page);
    const std::string project = kVbp + "UserControl=ctlGauge.ctl\r\nPropertyPage=ppgGauge.pag\r\n";
    folder.Write("Shop.vbp", project);

    // A host that cannot be written stops the whole rename.
    folder.MakeReadOnly("ppgGauge.pag");
    const CliRun refused = Arbolet({"rename", vbp, "ctlGauge", "ctlMeter"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("ppgGauge.pag"), std::string::npos) << refused.err;
    EXPECT_EQ(folder.Read("ctlGauge.ctl"), control);
    EXPECT_EQ(folder.Read("frmMain.frm"), host);
    EXPECT_EQ(folder.Read("Shop.vbp"), project);
    fs::permissions(folder / "ppgGauge.pag", fs::perms::owner_write, fs::perm_options::add);

    const CliRun run = Arbolet({"rename", vbp, "ctlGauge", "ctlMeter"});
    ASSERT_EQ(run.status, 0) << run.err;
    std::string expectedHost = host;
    expectedHost.replace(expectedHost.find("Shop.ctlGauge ctlGauge1"), 13, "Shop.ctlMeter");
    expectedHost.replace(expectedHost.find("shop.CTLGAUGE"), 13, "shop.ctlMeter");
    EXPECT_EQ(folder.Read("frmMain.frm"), expectedHost);
    EXPECT_EQ(folder.Read("ppgGauge.pag"),
              "VERSION 5.00\r\nBegin VB.PropertyPage ppgGauge\r\n   Begin Shop.ctlMeter g\r\n"
              "   End\r\nEnd\r\nAttribute VB_Name = \"ppgGauge\"\r\n");
    EXPECT_NE(folder.Read("ctlGauge.ctl").find("Begin VB.UserControl ctlMeter \r\n"),
              std::string::npos);
    EXPECT_NE(run.err.find("frmMain.frm"), std::string::npos) << run.err;
}

// A control of an ActiveX control project in a group is hosted by the other projects' forms
// under that project's name; they follow the rename too, and a form of an unrelated project
// that hosts a control of the same name elsewhere does not.
TEST_F(EditCommands, RenamingAUserControlInAGroupRenamesItsHostsInTheOtherProjects) {
    folder.Write("ocx/Gauges.vbp", "Type=Control\r\nUserControl=Meter.ctl\r\nName=\"Gauges\"\r\n");
    folder.Write("ocx/Meter.ctl",
                 "VERSION 5.00\r\nBegin VB.UserControl Meter\r\nEnd\r\n"
                 "Attribute VB_Name = \"Meter\"\r\n");
    const std::string host =
        "VERSION 5.00\r\nBegin VB.Form frmMain\r\n   Begin Gauges.Meter m\r\n   End\r\n"
        "   Begin Shop.Meter s\r\n   End\r\nEnd\r\nAttribute VB_Name = \"frmMain\"\r\n";
    folder.Write("frmMain.frm", host);
    const std::string group =
        folder
            .Write("All.vbg",
                   "VBGROUP 5.0\r\nStartupProject=Shop.vbp\r\nProject=ocx\\Gauges.vbp\r\n")
            .string();
    // `rename` takes one project; the group's environment is what the tool window has.
    auto environment = disk::DiskEnvironment::Open({group});
    const auto gauges = environment->VBProjects()->Item("Gauges");
    gauges->VBComponents()->Item("Meter")->SetName("Dial");
    environment->Save();
    std::string expected = host;
    expected.replace(expected.find("Gauges.Meter") + 7, 5, "Dial");
    EXPECT_EQ(folder.Read("frmMain.frm"), expected);
    EXPECT_NE(folder.Read("ocx/Meter.ctl").find("Begin VB.UserControl Dial\r\n"),
              std::string::npos);
}

// A folder that cannot be seen, or a second spelling of one that exists, is no new folder.
TEST_F(EditCommands, FoldersAddRefusesBlankAndExistingNames) {
    ASSERT_EQ(Arbolet({"folders", vbp, "add", "Tools"}).status, 0);
    const std::string before = folder.Read("Shop.vbp");
    for (const std::string name : {"   ", "tools", " TOOLS ", "forms"}) {
        const CliRun run = Arbolet({"folders", vbp, "add", name});
        EXPECT_EQ(run.status, 1) << "'" << name << "'";
        EXPECT_FALSE(run.err.empty()) << "'" << name << "'";
        EXPECT_EQ(folder.Read("Shop.vbp"), before) << "'" << name << "'";
    }
    EXPECT_NE(Arbolet({"folders", vbp, "add", "tools"}).err.find("'Tools' already exists"),
              std::string::npos);
}

// Refusals exit with 1, a path that is not there with 2, and neither goes unsaid.
TEST_F(EditCommands, ExitStatusesOfANameClashAndOfAMissingPath) {
    folder.Write("lib/Other.bas", "Attribute VB_Name = \"frmMain\"\r\n");
    const CliRun clash = Arbolet({"add", vbp, (folder / "lib/Other.bas").string()});
    EXPECT_EQ(clash.status, 1) << clash.err;
    EXPECT_NE(clash.err.find("frmMain"), std::string::npos) << clash.err;
    EXPECT_EQ(folder.Read("Shop.vbp"), kVbp);

    const std::string missing = (folder / "nothere.bas").string();
    const CliRun code = Arbolet({"code", missing, (folder / "modMain.bas").string()});
    EXPECT_EQ(code.status, 2);
    EXPECT_NE(code.err.find("nothere.bas"), std::string::npos) << code.err;
    EXPECT_NE(code.out.find("modMain"), std::string::npos) << code.out;
}

// A name that matches no component is most likely mistyped; "all" is a word in any case.
TEST_F(EditCommands, TreeExpandWarnsOfNamesThatMatchNothing) {
    const CliRun typo = Arbolet({"tree", "--expand", "modMian,FRMMAIN", vbp});
    EXPECT_EQ(typo.status, 0) << typo.err;
    EXPECT_NE(typo.err.find("warning: no component is named 'modMian'"), std::string::npos)
        << typo.err;
    EXPECT_EQ(typo.err.find("FRMMAIN"), std::string::npos) << typo.err;
    EXPECT_NE(typo.out.find("    frmMain\n      Dim a As Long\n"), std::string::npos) << typo.out;

    const CliRun all = Arbolet({"tree", "--expand", "ALL", vbp});
    EXPECT_EQ(all.err, "");
    EXPECT_NE(all.out.find("      Sub Main()\n"), std::string::npos) << all.out;
    EXPECT_NE(all.out.find("      Dim a As Long\n"), std::string::npos) << all.out;
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
    // A component moved to another folder by another program shows in that folder.
    EXPECT_EQ(Arbolet({"folders", vbp, "move", "modLib", "Tools", "--create"}).status, 0);
    EXPECT_TRUE(stepUntil("Type~Tools~Shop", true));
    EXPECT_EQ(loaded.view.Nodes().Item("modLib~Shop~")->Parent()->Key(), "Type~Tools~Shop");
    // An empty folder added to the project's list alone shows too.
    EXPECT_EQ(Arbolet({"folders", vbp, "add", "Reports"}).status, 0);
    EXPECT_TRUE(stepUntil("Type~Reports~Shop", true));

    fs::remove(folder / "frmMain.frm");
    EXPECT_TRUE(stepUntil("frmMain~Shop~", false));
    // As a one-shot tree would, the watch says why the component went.
    EXPECT_NE(err.str().find("Shop.vbp:3: warning: component file not found: frmMain.frm"),
              std::string::npos)
        << err.str();
    EXPECT_FALSE(loaded.view.Nodes().Exists("Type~Forms~Shop") &&
                 loaded.view.Nodes().Item("Type~Forms~Shop")->Children() > 0);
}

}  // namespace
}  // namespace arbolet::cli
