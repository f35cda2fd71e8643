// `arbolet new`, `remove` and `startup` on copies of real-looking projects: exactly the lines
// they must change, byte for byte, the IDE's refusals with their reasons, and new files that the
// other commands open.
#include <gtest/gtest.h>

#include "cli/cli_runner.h"
#include "disk/temp_folder.h"

namespace arbolet::cli {
namespace {

using testing::Arbolet;
using testing::CliRun;

// Mixed line ends and a section the tool knows nothing about must survive every change.
const std::string kShopVbp =
    "Type=Exe\r\n"
    "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#..\\..\\Windows\\system32\\"
    "stdole2.tlb#OLE Automation\r\n"
    "Form=frmMain.frm\r\n"
    "Module=Project; Project.bas\n"
    "Class=clsData; clsData.cls\r\n"
    "Startup=\"frmMain\"\r\n"
    "Name=\"Shop\"\r\n"
    "\r\n"
    "[MS Transaction Server]\r\n"
    "AutoRefresh=1\r\n";
const std::string kToolsVbp = "Type=OleDll\r\nName=\"Tools\"\r\nVersionCompatible32=\"0\"";
const std::string kGroup = "VBGROUP 5.0\r\nStartupProject=Shop.vbp\r\nProject=tools\\Tools.vbp\r\n";

class ComponentCommands : public ::testing::Test {
  protected:
    disk::testing::TempFolder folder;
    std::string shop;
    std::string tools;
    std::string group;

    void SetUp() override {
        shop = folder.Write("Shop.vbp", kShopVbp).string();
        tools = folder.Write("tools/Tools.vbp", kToolsVbp).string();
        group = folder.Write("All.vbg", kGroup).string();
        folder.Write("frmMain.frm",
                     "VERSION 5.00\r\nBegin VB.Form frmMain\r\nEnd\r\n"
                     "Attribute VB_Name = \"frmMain\"\r\n");
        folder.Write("Project.bas",
                     "Attribute VB_Name = \"Project\"\r\nSub Main()\r\n"
                     "    If a Then\r\n    End If\r\nEnd Sub\r\n");
        folder.Write("clsData.cls",
                     "VERSION 1.0 CLASS\r\nBEGIN\r\nEND\r\n"
                     "Attribute VB_Name = \"clsData\"\r\n");
        // A file that takes Form1's name: the default skips to Form2.
        folder.Write("Form1.frm", "not ours");
    }

    // kShopVbp with one line inserted before `before`.
    static std::string ShopWith(const std::string& before, const std::string& line) {
        std::string expected = kShopVbp;
        expected.insert(expected.find(before), line);
        return expected;
    }
};

TEST_F(ComponentCommands, NewAddsTheFileAndOneLineAfterItsKind) {
    const CliRun form = Arbolet({"new", shop, "form"});
    ASSERT_EQ(form.status, 0) << form.err;
    EXPECT_EQ(form.out.substr(0, 13), "added Form2 (");
    EXPECT_TRUE(form.out.ends_with("Form2.frm)\n")) << form.out;
    EXPECT_EQ(folder.Read("Shop.vbp"), ShopWith("Module=Project", "Form=Form2.frm\r\n"));
    EXPECT_EQ(folder.Read("Form1.frm"), "not ours");

    const CliRun module = Arbolet({"new", shop, "module", "modTools"});
    ASSERT_EQ(module.status, 0) << module.err;
    // After the module entry, with that entry's own line end.
    std::string expected = ShopWith("Module=Project", "Form=Form2.frm\r\n");
    expected.insert(expected.find("Class="), "Module=modTools; modTools.bas\n");
    EXPECT_EQ(folder.Read("Shop.vbp"), expected);
    EXPECT_EQ(folder.Read("modTools.bas"), "Attribute VB_Name = \"modTools\"\r\n");

    // A project without components takes the entry after its Type line; the missing final
    // line end is added to the line before the new one only.
    const CliRun document = Arbolet({"new", tools, "userdocument"});
    ASSERT_EQ(document.status, 0) << document.err;
    EXPECT_EQ(folder.Read("tools/Tools.vbp"),
              "Type=OleDll\r\nUserDocument=UserDocument1.dob\r\nName=\"Tools\"\r\n"
              "VersionCompatible32=\"0\"");
}

TEST_F(ComponentCommands, NewFilesOpenInTreeAndCode) {
    for (const char* kind : {"form", "mdiform", "class", "usercontrol", "propertypage"}) {
        ASSERT_EQ(Arbolet({"new", shop, kind}).status, 0) << kind;
    }
    const CliRun tree = Arbolet({"tree", shop});
    EXPECT_EQ(tree.status, 0) << tree.err;
    EXPECT_EQ(tree.out,
              "Shop\n  Class Modules\n    Class1\n    clsData\n  Forms\n    Form2\n    frmMain\n"
              "    MDIForm1\n  Modules\n    Project\n  Property Pages\n    PropertyPage1\n"
              "  User Controls\n    UserControl1\n");
    const CliRun code =
        Arbolet({"code", (folder / "Form2.frm").string(), (folder / "MDIForm1.frm").string(),
                 (folder / "Class1.cls").string(), (folder / "UserControl1.ctl").string(),
                 (folder / "PropertyPage1.pag").string()});
    EXPECT_EQ(code.status, 0) << code.err;
    EXPECT_EQ(code.err, "");
    // The designer block and the attributes are the IDE's.
    const std::string mdi = folder.Read("MDIForm1.frm");
    EXPECT_EQ(mdi.substr(0, 39), "VERSION 5.00\r\nBegin VB.MDIForm MDIForm1");
    EXPECT_NE(mdi.find("End\r\nAttribute VB_Name = \"MDIForm1\"\r\n"
                       "Attribute VB_GlobalNameSpace = False\r\n"),
              std::string::npos);
    EXPECT_NE(folder.Read("Class1.cls").find("Attribute VB_Creatable = True\r\n"),
              std::string::npos);
}

TEST_F(ComponentCommands, NewRefusesWithTheIdesRuleAndChangesNothing) {
    ASSERT_EQ(Arbolet({"new", shop, "mdiform"}).status, 0);
    const std::string before = folder.Read("Shop.vbp");
    const CliRun second = Arbolet({"new", shop, "mdiform"});
    EXPECT_EQ(second.status, 1);
    EXPECT_NE(second.err.find("a project holds one MDI form at most"), std::string::npos);
    const CliRun document = Arbolet({"new", shop, "userdocument"});
    EXPECT_EQ(document.status, 1);
    EXPECT_NE(document.err.find("user documents belong in ActiveX EXE and DLL projects"),
              std::string::npos);
    for (const auto& [name, reason] : std::vector<std::pair<std::string, std::string>>{
             {"Sub", "reserved word"},
             {"9lives", "does not begin with a letter"},
             {std::string(41, 'm'), "at most 40"},
             {"CLSDATA", "the component clsData has that name"},
             {"Shop", "the project"}}) {
        const CliRun run = Arbolet({"new", shop, "class", name});
        EXPECT_EQ(run.status, 1) << name;
        EXPECT_NE(run.err.find("Shop does not take '" + name + "' as a component name: "),
                  std::string::npos)
            << run.err;
        EXPECT_NE(run.err.find(reason), std::string::npos) << run.err;
    }
    // A name whose file is there already is not written over.
    const CliRun clash = Arbolet({"new", shop, "form", "Form1"});
    EXPECT_EQ(clash.status, 2);
    EXPECT_NE(clash.err.find("Form1.frm"), std::string::npos) << clash.err;
    EXPECT_EQ(folder.Read("Form1.frm"), "not ours");
    EXPECT_EQ(folder.Read("Shop.vbp"), before);
    EXPECT_EQ(Arbolet({"new", shop, "widget"}).status, 2);

    // A project file that cannot be written: no entry, and no new file left behind.
    folder.MakeReadOnly("Shop.vbp");
    const CliRun readOnly = Arbolet({"new", shop, "module"});
    EXPECT_EQ(readOnly.status, 2);
    EXPECT_NE(readOnly.err.find("read-only"), std::string::npos) << readOnly.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "Module1.bas"));
    EXPECT_EQ(folder.Read("Shop.vbp"), before);
}

TEST_F(ComponentCommands, RemoveTakesOnlyTheEntryLine) {
    const CliRun run = Arbolet({"remove", shop, "project"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "removed Project from Shop (its files stay)\n");
    std::string expected = kShopVbp;
    expected.erase(expected.find("Module=Project"),
                   std::string("Module=Project; Project.bas\n").size());
    EXPECT_EQ(folder.Read("Shop.vbp"), expected);
    EXPECT_FALSE(folder.Read("Project.bas").empty());

    const CliRun missing = Arbolet({"remove", shop, "Project"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("Shop has no component named 'Project'"), std::string::npos);
    EXPECT_EQ(folder.Read("Shop.vbp"), expected);
}

// A component listed twice (under two spellings of its path) is one component: removing it
// takes every entry, or the next load would bring it back.
TEST_F(ComponentCommands, RemoveTakesEveryEntryOfAComponentListedTwice) {
    std::string twice = kShopVbp;
    twice.insert(twice.find("Startup="), "Module=Project; .\\PROJECT.BAS\r\n");
    folder.Write("Shop.vbp", twice);
    const CliRun run = Arbolet({"remove", shop, "Project"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.Read("Shop.vbp").find("Module="), std::string::npos)
        << folder.Read("Shop.vbp");
    EXPECT_EQ(Arbolet({"tree", shop}).out.find("Project\n"), std::string::npos);
}

// Removing the start-up form leaves the project starting where the IDE would have it start:
// Sub Main when a module has one, else nothing; the output says so.
TEST_F(ComponentCommands, RemovingTheStartupFormMovesTheStartupToSubMainOrNone) {
    folder.Write("Project.bas",
                 "Attribute VB_Name = \"Project\"\r\n\tPublic  Sub\tMain ()\r\n"
                 "End Sub\r\n");
    const CliRun run = Arbolet({"remove", shop, "frmMain"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("the project now starts with Sub Main"), std::string::npos) << run.out;
    std::string expected = kShopVbp;
    expected.erase(expected.find("Form=frmMain.frm"), std::string("Form=frmMain.frm\r\n").size());
    expected.replace(expected.find("\"frmMain\""), 9, "\"Sub Main\"");
    EXPECT_EQ(folder.Read("Shop.vbp"), expected);

    // A Sub Main in a class, or a private one, or a commented-out one, does not count.
    folder.Write("Shop.vbp", kShopVbp);
    folder.Write("Project.bas",
                 "Attribute VB_Name = \"Project\"\r\n' Sub Main()\r\n"
                 "Private Sub Main()\r\nEnd Sub\r\nSub MainLoop()\r\nEnd Sub\r\n");
    folder.Write("clsData.cls",
                 "VERSION 1.0 CLASS\r\nBEGIN\r\nEND\r\n"
                 "Attribute VB_Name = \"clsData\"\r\nPublic Sub Main()\r\nEnd Sub\r\n");
    const CliRun none = Arbolet({"remove", shop, "FRMMAIN"});
    ASSERT_EQ(none.status, 0) << none.err;
    EXPECT_NE(none.out.find("the project now has no start-up object"), std::string::npos)
        << none.out;
    EXPECT_NE(folder.Read("Shop.vbp").find("Startup=\"(None)\"\r\n"), std::string::npos);

    // Removing another component leaves the start-up object alone and says nothing of it.
    folder.Write("Shop.vbp", kShopVbp);
    const CliRun other = Arbolet({"remove", shop, "clsData"});
    ASSERT_EQ(other.status, 0) << other.err;
    EXPECT_EQ(other.out.find("start"), std::string::npos) << other.out;
    EXPECT_NE(folder.Read("Shop.vbp").find("Startup=\"frmMain\""), std::string::npos);
}

// Windows file names ignore letter case: a file that differs only in case is the same file.
TEST_F(ComponentCommands, FileNameClashesIgnoreLetterCase) {
    folder.Write("module1.bas", "Attribute VB_Name = \"Other\"\r\n");
    const CliRun module = Arbolet({"new", shop, "module"});
    ASSERT_EQ(module.status, 0) << module.err;
    EXPECT_NE(module.out.find("added Module2 ("), std::string::npos) << module.out;
    const CliRun named = Arbolet({"new", shop, "module", "MODULE1"});
    EXPECT_EQ(named.status, 2);
    EXPECT_NE(named.err.find("module1.bas"), std::string::npos) << named.err;
    // Listed rather than asked for: a file system that ignores case finds MODULE1.bas anyway.
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        EXPECT_NE(entry.path().filename(), "MODULE1.bas");
    EXPECT_EQ(folder.Read("module1.bas"), "Attribute VB_Name = \"Other\"\r\n");

    // A second file that differs from a listed one only in case is that file on Windows.
    folder.Write("CLSDATA.cls",
                 "VERSION 1.0 CLASS\r\nBEGIN\r\nEND\r\n"
                 "Attribute VB_Name = \"clsOther\"\r\n");
    const std::string before = folder.Read("Shop.vbp");
    const CliRun add = Arbolet({"add", shop, (folder / "CLSDATA.cls").string()});
    EXPECT_EQ(add.status, 1) << add.err;
    EXPECT_NE(add.err.find("is already part of Shop"), std::string::npos) << add.err;
    EXPECT_EQ(folder.Read("Shop.vbp"), before);
}

// The module attributes of a new component depend on the kind of project it joins, as the
// defaults of the IDE's Instancing and Public properties do.
TEST_F(ComponentCommands, NewComponentsTakeTheAttributesOfTheirProjectType) {
    struct Case {
        std::string type, kind, file, expected;
    };
    const Case cases[] = {
        {"Exe", "class", "Class1.cls", "True/False"},
        {"OleDll", "class", "Class1.cls", "True/True"},
        {"OleExe", "class", "Class1.cls", "True/True"},
        {"Control", "class", "Class1.cls", "False/True"},
        {"Exe", "usercontrol", "UserControl1.ctl", "True/False"},
        {"OleDll", "usercontrol", "UserControl1.ctl", "True/False"},
        {"Control", "usercontrol", "UserControl1.ctl", "True/True"},
        {"Exe", "propertypage", "PropertyPage1.pag", "True/False"},
        {"Control", "propertypage", "PropertyPage1.pag", "True/True"},
        {"OleExe", "userdocument", "UserDocument1.dob", "True/True"},
        {"Control", "form", "Form1.frm", "False/False"},
    };
    for (const Case& c : cases) {
        disk::testing::TempFolder project;
        const std::string vbp =
            project.Write("P.vbp", "Type=" + c.type + "\r\nName=\"P\"\r\n").string();
        const CliRun run = Arbolet({"new", vbp, c.kind});
        ASSERT_EQ(run.status, 0) << c.type << " " << c.kind << ": " << run.err;
        const std::string text = project.Read(c.file);
        const auto creatable = text.find("Attribute VB_Creatable = ");
        const auto exposed = text.find("Attribute VB_Exposed = ");
        ASSERT_NE(creatable, std::string::npos) << text;
        ASSERT_NE(exposed, std::string::npos) << text;
        const auto value = [&](std::size_t at, std::size_t skip) {
            return text.substr(at + skip, text.find('\r', at) - at - skip);
        };
        EXPECT_EQ(value(creatable, 25) + "/" + value(exposed, 23), c.expected)
            << c.type << " " << c.kind;
    }
}

TEST_F(ComponentCommands, StartupRewritesTheTwoGroupLines) {
    const CliRun run = Arbolet({"startup", group, "tools"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Tools is now the start-up project\n");
    EXPECT_EQ(folder.Read("All.vbg"),
              "VBGROUP 5.0\r\nProject=Shop.vbp\r\nStartupProject=tools\\Tools.vbp\r\n");
    const CliRun tree = Arbolet({"tree", "--format", "json", group});
    EXPECT_NE(tree.out.find("\"key\":\"Project~Tools\",\"text\":\"Tools\",\"bold\":true"),
              std::string::npos)
        << tree.out;

    const CliRun again = Arbolet({"startup", group, "Tools"});
    EXPECT_EQ(again.out, "Tools is the start-up project already\n");
    EXPECT_EQ(Arbolet({"startup", group, "Nowhere"}).status, 1);
    const CliRun loose = Arbolet({"startup", shop, "Shop"});
    EXPECT_EQ(loose.status, 2);
    EXPECT_NE(loose.err.find("no group file"), std::string::npos);
    EXPECT_EQ(folder.Read("Shop.vbp"), kShopVbp);
}

TEST_F(ComponentCommands, AModuleNamedProjectExpandsRenamesAndMoves) {
    const CliRun tree = Arbolet({"tree", "--expand", "Project", shop});
    EXPECT_NE(tree.out.find("    Project\n      Sub Main()\n        If a Then\n"),
              std::string::npos)
        << tree.out;
    EXPECT_EQ(Arbolet({"folders", shop, "move", "--create", "Project", "Core"}).status, 0);
    const CliRun renamed = Arbolet({"rename", shop, "Project", "modCore"});
    EXPECT_EQ(renamed.status, 0) << renamed.err;
    EXPECT_EQ(Arbolet({"folders", shop}).out, "Core\n  modCore\n");
}

}  // namespace
}  // namespace arbolet::cli
