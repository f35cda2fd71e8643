// Projects and groups opened from real files: components, start-up project, warnings, and saves
// that change only what they must and refuse to leave anything half-written.
#include <gtest/gtest.h>

#include <functional>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/disk_environment.h"
#include "disk/file_io.h"
#include "temp_folder.h"

namespace arbolet::disk {
namespace {

using env::ComponentType;
using testing::TempFolder;

const std::string kModule =
    "Attribute VB_Name = \"modMain\"\r\nOption Explicit\r\n\r\nSub Main()\r\n"
    "End Sub\r\n";
const std::string kClass =
    "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1  'True\r\nEND\r\n"
    "Attribute VB_Name = \"clsItem\"\r\nAttribute VB_Exposed = False\r\n"
    "Option Explicit\r\nPublic Property Get Value() As Long\r\n"
    "Attribute Value.VB_UserMemId = 0\r\nEnd Property\r\n";
std::string Form(const std::string& kind, const std::string& name) {
    return "VERSION 5.00\r\nBegin " + kind + " " + name +
           "\r\n   Caption = \"Caf\xE9\"\r\nEnd\r\n" + "Attribute VB_Name = \"" + name +
           "\"\r\nOption Explicit\r\n";
}

std::string ThrownMessage(auto&& call) {
    try {
        call();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "(nothing thrown)";
}

std::vector<std::string> WarningTexts(const DiskEnvironment& environment) {
    std::vector<std::string> texts;
    for (const auto& warning : environment.Warnings())
        texts.push_back(warning.ToString());
    return texts;
}

class DiskProjectTest : public ::testing::Test {
  protected:
    TempFolder folder;

    // A project with one component of every kind, its files in sub-folders whose names differ
    // in letter case from the project's `\` paths.
    std::filesystem::path WriteFullProject() {
        folder.Write("P/Modules/modMain.bas", kModule);
        folder.Write("P/clsItem.cls", kClass);
        folder.Write("P/Forms/frmMain.frm", Form("VB.Form", "frmMain"));
        folder.Write("P/Forms/mdiMain.frm", Form("VB.MDIForm", "mdiMain"));
        folder.Write("P/ctlGauge.ctl", Form("VB.UserControl", "ctlGauge"));
        folder.Write("P/pagGauge.pag", Form("VB.PropertyPage", "pagGauge"));
        folder.Write("P/docHome.dob", Form("VB.UserDocument", "docHome"));
        folder.Write("P/dsrEnv.dsr", Form("{C0E45035-5775-11D0-B388-00A0C9055D8E}", "dsrEnv"));
        folder.Write("P/UserForm1.dsr",
                     Form("{C62A69F0-16DC-11CE-9E98-00AA00574A4F}", "UserForm1"));
        folder.Write("P/App.res", std::string("\0\0\0\0 binary", 11));
        folder.Write("P/ReadMe.txt", "notes");
        return folder.Write(
            "P/P.vbp",
            "Type=Exe\r\nModule=Main; MODULES\\MODMAIN.BAS\r\n"
            "Class=clsItem; clsItem.cls\r\nForm=forms\\FRMMAIN.frm\r\n"
            "Form=Forms\\mdiMain.frm\r\nUserControl=ctlGauge.ctl\r\n"
            "PropertyPage=pagGauge.pag\r\nUserDocument=docHome.dob\r\n"
            "Designer=dsrEnv.dsr\r\nDesigner=UserForm1.dsr\r\n"
            "ResFile32=\"app.RES\"\r\nRelatedDoc=.\\readme.txt\r\nName=\"Full\"\r\n");
    }
};

TEST_F(DiskProjectTest, ReadsEveryComponentKind) {
    const auto vbp = WriteFullProject();
    const auto environment = DiskEnvironment::Open({vbp});
    EXPECT_TRUE(environment->Warnings().empty()) << WarningTexts(*environment).front();
    const auto project = environment->VBProjects()->Item(1);
    EXPECT_EQ(project->Name(), "Full");
    EXPECT_EQ(std::filesystem::path(project->FileName()), std::filesystem::absolute(vbp));
    const auto components = project->VBComponents();
    const std::vector<std::pair<std::string, ComponentType>> expected = {
        {"modMain", ComponentType::StdModule},    {"clsItem", ComponentType::ClassModule},
        {"frmMain", ComponentType::VBForm},       {"mdiMain", ComponentType::VBMDIForm},
        {"ctlGauge", ComponentType::UserControl}, {"pagGauge", ComponentType::PropPage},
        {"docHome", ComponentType::DocObject},    {"dsrEnv", ComponentType::ActiveXDesigner},
        {"UserForm1", ComponentType::MSForm},     {"", ComponentType::ResFile},
        {"", ComponentType::RelatedDocument}};
    ASSERT_EQ(components->Count(), static_cast<std::int32_t>(expected.size()));
    for (std::int32_t i = 1; i <= components->Count(); ++i) {
        const auto component = components->Item(i);
        EXPECT_EQ(component->Name(), expected[static_cast<std::size_t>(i - 1)].first);
        EXPECT_EQ(component->Type(), expected[static_cast<std::size_t>(i - 1)].second)
            << component->Name();
        EXPECT_EQ(component->FileCount(), 1);
        EXPECT_EQ(env::ProjectOf(*component), project);
    }
    // Windows finds the files under the spelling of the project file, other systems under the
    // spelling on disk.
    const auto lowerPath = [](const std::string& path) {
        return text::ToLower(std::filesystem::path(path).generic_string());
    };
    EXPECT_EQ(lowerPath(components->Item(1)->FileNames(1)),
              lowerPath(std::filesystem::absolute(folder / "P/Modules/modMain.bas").string()));
    EXPECT_EQ(lowerPath(components->Item(10)->FileNames(1)),
              lowerPath(std::filesystem::absolute(folder / "P/App.res").string()));
    EXPECT_THROW(components->Item(1)->FileNames(2), VbError);
}

TEST_F(DiskProjectTest, HandsOutTheCodeWindowText) {
    const auto environment = DiskEnvironment::Open({WriteFullProject()});
    const auto components = environment->VBProjects()->Item(1)->VBComponents();
    const auto klass = components->Item("CLSITEM")->CodeModule();
    ASSERT_NE(klass, nullptr);
    EXPECT_EQ(klass->Lines(1, klass->CountOfLines()),
              "Option Explicit\r\nPublic Property Get Value() As Long\r\nEnd Property");
    EXPECT_EQ(components->Item("frmMain")->CodeModule()->Lines(1, 1), "Option Explicit");
    EXPECT_EQ(components->Item(10)->CodeModule(), nullptr);
    EXPECT_EQ(components->Item(11)->CodeModule(), nullptr);
}

TEST_F(DiskProjectTest, ResourceFilesAndRelatedDocumentsHaveNoPropertyStore) {
    const auto environment = DiskEnvironment::Open({WriteFullProject()});
    const auto components = environment->VBProjects()->Item(1)->VBComponents();
    for (std::int32_t index : {10, 11}) {
        const auto component = components->Item(index);
        try {
            component->ReadProperty("QX-TypeName");
            ADD_FAILURE() << "read from component " << index;
        } catch (const VbError& e) {
            EXPECT_EQ(e.Number, env::enverr::kNotSupported);
        }
        EXPECT_THROW(component->WriteProperty("QX-TypeName", "X"), VbError);
    }
    EXPECT_TRUE(environment->ChangedFiles().empty());
}

TEST_F(DiskProjectTest, AMissingComponentFileIsAWarningNamingTheLine) {
    folder.Write("P/modMain.bas", kModule);
    const auto vbp =
        folder.Write("P/P.vbp",
                     "Type=Exe\r\nModule=modGone; modGone.bas\r\nModule=modMain; modMain.bas\r\n"
                     "Form=C:\\Elsewhere\\frmX.frm\r\nName=\"P\"\r\n");
    const auto environment = DiskEnvironment::Open({vbp});
    const std::string shown = vbp.generic_string();
    EXPECT_EQ(WarningTexts(*environment),
              (std::vector<std::string>{
                  shown + ":2: component file not found: modGone.bas",
                  shown + ":4: component file not found: C:\\Elsewhere\\frmX.frm"}));
    const auto components = environment->VBProjects()->Item(1)->VBComponents();
    ASSERT_EQ(components->Count(), 1);
    EXPECT_EQ(components->Item(1)->Name(), "modMain");
}

TEST_F(DiskProjectTest, DamagedFilesAreReportedAndNotEdited) {
    folder.Write("P/modJunk.bas", std::string("Attribute VB_Name = \"modJunk\"\r\n\0\x01\x02", 34));
    folder.Write("P/modOk.bas", "Attribute VB_Name = \"modOk\"\r\n");
    const auto vbp = folder.Write("P/P.vbp",
                                  "Module=modJunk; modJunk.bas\r\nModule=modOk; modOk.bas\r\n"
                                  "what is this line\r\nName=\"P\"\r\n");
    const auto environment = DiskEnvironment::Open({vbp});
    const auto warnings = WarningTexts(*environment);
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_EQ(warnings[0], vbp.generic_string() +
                               ":3: neither [Section] nor Key=Value; the line is left as it is");
    EXPECT_NE(warnings[1].find("modJunk.bas:2: binary data"), std::string::npos) << warnings[1];
    const auto junk = environment->VBProjects()->Item(1)->VBComponents()->Item("modJunk");
    EXPECT_THROW(junk->WriteProperty("QX-TypeName", "X"), VbError);
    EXPECT_TRUE(environment->ChangedFiles().empty());
}

TEST_F(DiskProjectTest, RefusesFilesThatAreNoProjects) {
    const auto binary = folder.Write("bin.vbp", std::string("Type=Exe\r\n\0\0MZ", 14));
    EXPECT_NE(
        ThrownMessage([&] { DiskEnvironment::Open({binary}); }).find("bin.vbp: line 2: binary"),
        std::string::npos);
    const auto group = folder.Write("g.vbg", "Type=Exe\r\n");
    EXPECT_NE(ThrownMessage([&] { DiskEnvironment::Open({group}); }).find("VBGROUP 5.0"),
              std::string::npos);
    const auto other = folder.Write("x.bas", kModule);
    EXPECT_NE(ThrownMessage([&] { DiskEnvironment::Open({other}); }).find("x.bas: is neither"),
              std::string::npos);
    EXPECT_THROW(DiskEnvironment::Open({folder / "missing.vbp"}), FileError);
}

TEST_F(DiskProjectTest, GroupsListProjectsInOrderWithTheirStartupProject) {
    folder.Write("G/Server/Server.vbp", "Type=OleDll\r\nName=\"Server\"\r\n");
    folder.Write("G/Client/Client.vbp", "Type=Exe\r\nName=\"Client\"\r\n");
    folder.Write("G/Tools.vbp", "Type=Exe\r\nName=\"Tools\"\r\n");
    const auto vbg = folder.Write("G/All.VBG",
                                  "VBGROUP 5.0\r\nProject=server\\SERVER.vbp\r\n"
                                  "StartupProject=Client\\Client.vbp\r\nProject=Gone.vbp\r\n"
                                  "Project=Tools.vbp\r\n");
    const auto environment = DiskEnvironment::Open({vbg});
    const auto projects = environment->VBProjects();
    ASSERT_EQ(projects->Count(), 3);
    EXPECT_EQ(projects->Item(1)->Name(), "Server");
    EXPECT_EQ(projects->Item(2)->Name(), "Client");
    EXPECT_EQ(projects->Item(3)->Name(), "Tools");
    EXPECT_EQ(projects->StartProject()->Name(), "Client");
    EXPECT_EQ(environment->ActiveVBProject()->Name(), "Client");
    EXPECT_EQ(
        WarningTexts(*environment),
        std::vector<std::string>{vbg.generic_string() + ":4: project file not found: Gone.vbp"});
}

TEST_F(DiskProjectTest, WithoutStartupProjectTheFirstProjectStarts) {
    const auto a = folder.Write("A.vbp", "Name=\"A\"\r\n");
    const auto b = folder.Write("B.vbp", "Type=Exe\r\n");
    const auto alsoA = folder.Write("Other/A.vbp", "Name=\"a\"\r\n");
    const auto environment = DiskEnvironment::Open({b, a, b, alsoA});
    const auto projects = environment->VBProjects();
    ASSERT_EQ(projects->Count(), 3);
    EXPECT_EQ(projects->Item(1)->Name(), "B");  // named after its file
    EXPECT_EQ(projects->StartProject(), projects->Item(1));
    EXPECT_EQ(
        WarningTexts(*environment),
        (std::vector<std::string>{
            b.generic_string() + ": no Name line; the project is named B",
            b.generic_string() + ": the project is already open",
            alsoA.generic_string() +
                ": another open project is also named a; their nodes in the tree are shared"}));
}

TEST_F(DiskProjectTest, OpeningAProjectRaisesItemAdded) {
    struct Recorder : env::VBProjectsEventsSink {
        std::vector<std::string> added;
        void ItemAdded(const env::VBProjectRef& project) override {
            added.push_back(project->Name());
        }
    };
    const auto environment = DiskEnvironment::Open({folder.Write("A.vbp", "Name=\"A\"\r\n")});
    auto recorder = std::make_shared<Recorder>();
    environment->Events()->VBProjectsEvents()->Advise(recorder);
    environment->AddFromFile(folder.Write("B.vbp", "Name=\"B\"\r\n"));
    EXPECT_EQ(recorder->added, std::vector<std::string>{"B"});
    EXPECT_EQ(environment->VBProjects()->Item("b")->Name(), "B");
}

// ---- saving ----

class DiskSaveTest : public DiskProjectTest {
  protected:
    // A CRLF project in Windows-1252 with keys and sections the tool does not know.
    const std::string vbpHead =
        "Type=Exe\r\nReference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE\r\n"
        "Module=modMain; modMain.bas\r\nObject={831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0; "
        "mscomctl.ocx\r\nClass=clsItem; clsItem.cls\r\nName=\"Caf\xE9\"\r\n"
        "VersionCompanyName=\"Soci\xE9t\xE9 G\xE9n\xE9rale\"\r\nUnknownKey=42\r\n\r\n"
        "[MS Transaction Server]\r\nAutoRefresh=1\r\n\r\n[SomeAddIn]\r\nSetting=\xC0 la carte\r\n";

    std::shared_ptr<DiskEnvironment> OpenProject(const std::string& vbp) {
        folder.Write("P/modMain.bas", kModule);
        folder.Write("P/clsItem.cls", kClass);
        return DiskEnvironment::Open({folder.Write("P/P.vbp", vbp)});
    }
    std::shared_ptr<DiskEnvironment> Reopen() {
        return DiskEnvironment::Open({folder / "P/P.vbp"});
    }
};

TEST_F(DiskSaveTest, EveryPropertyEditSurvivesASaveAndAReopen) {
    auto environment = OpenProject(vbpHead + "\r\n[Quorlin]\r\nQX-TypeName=;Old;\r\n");
    auto project = environment->VBProjects()->Item(1);
    project->WriteProperty("Quorlin", "QX-TypeName", ";Old;New;");  // changed value
    project->WriteProperty("Quorlin", "Extra", "1");                // new key
    project->WriteProperty("Fresh", "Key", "\xC3\xA9t\xC3\xA9");    // new section
    auto module = project->VBComponents()->Item("modMain");
    module->WriteProperty("QX-TypeName", "Tools");  // new attribute
    auto klass = project->VBComponents()->Item("clsItem");
    klass->WriteProperty("QX-TypeName", "Data");
    klass->WriteProperty("QX-TypeName", "Data \"Access\"");  // changed attribute
    EXPECT_EQ(environment->ChangedFiles().size(), 3u);
    environment->Save();
    EXPECT_TRUE(environment->ChangedFiles().empty());

    environment = Reopen();
    project = environment->VBProjects()->Item(1);
    EXPECT_EQ(project->Name(), "Caf\xC3\xA9");
    EXPECT_EQ(project->ReadProperty("Quorlin", "QX-TypeName"), ";Old;New;");
    EXPECT_EQ(project->ReadProperty("Quorlin", "Extra"), "1");
    EXPECT_EQ(project->ReadProperty("Fresh", "Key"), "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(project->VBComponents()->Item("modMain")->ReadProperty("QX-TypeName"), "Tools");
    EXPECT_EQ(project->VBComponents()->Item("clsItem")->ReadProperty("QX-TypeName"),
              "Data \"Access\"");
    EXPECT_EQ(project->VBComponents()->Item("clsItem")->CodeModule()->CountOfLines(), 3);
}

TEST_F(DiskSaveTest, EveryOtherByteStaysAsItWas) {
    auto environment = OpenProject(vbpHead);
    environment->VBProjects()->Item(1)->WriteProperty("Quorlin", "QX-TypeName", ";Tools;");
    environment->VBProjects()->Item(1)->VBComponents()->Item("modMain")->WriteProperty(
        "QX-TypeName", "Tools");
    environment->Save();
    EXPECT_EQ(folder.Read("P/P.vbp"), vbpHead + "[Quorlin]\r\nQX-TypeName=;Tools;\r\n");
    EXPECT_EQ(
        folder.Read("P/modMain.bas"),
        "Attribute VB_Name = \"modMain\"\r\nAttribute VB_Ext_KEY = \"QX-TypeName\" ,\"Tools\"\r\n"
        "Option Explicit\r\n\r\nSub Main()\r\nEnd Sub\r\n");
    EXPECT_EQ(folder.Read("P/clsItem.cls"), kClass);
}

TEST_F(DiskSaveTest, LfAndMixedFilesKeepTheirLineEndings) {
    const std::string lf =
        "Type=Exe\nModule=modMain; modMain.bas\nName=\"P\"\n[Quorlin]\nQX-TypeName=;A;\n";
    const std::string mixed = "Type=Exe\r\nModule=modMain; modMain.bas\nName=\"P\"\r\n";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {lf, ";A;B;",
         "Type=Exe\nModule=modMain; modMain.bas\nName=\"P\"\n[Quorlin]\nQX-TypeName=;A;B;\n"},
        {mixed, ";B;", mixed + "[Quorlin]\r\nQX-TypeName=;B;\r\n"},
    };
    for (const auto& [before, list, after] : cases) {
        auto environment = OpenProject(before);
        environment->VBProjects()->Item(1)->WriteProperty("Quorlin", "QX-TypeName", list);
        environment->Save();
        EXPECT_EQ(folder.Read("P/P.vbp"), after);
    }
}

// A CRLF file converted twice ends its lines with CR CR LF: one line end, written back as such.
TEST_F(DiskSaveTest, CrCrLfIsOneLineEndAndStaysOne) {
    const auto doubled = [](std::string text) {
        for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; at += 3)
            text.insert(at, "\r");
        return text;
    };
    folder.Write("P/modMain.bas", doubled(kModule));
    folder.Write("P/clsItem.cls", doubled(kClass));
    auto environment = DiskEnvironment::Open({folder.Write("P/P.vbp", doubled(vbpHead))});
    auto project = environment->VBProjects()->Item(1);
    const auto klass = project->VBComponents()->Item("clsItem");
    EXPECT_EQ(klass->CodeModule()->Lines(1, 10),
              "Option Explicit\r\nPublic Property Get Value() As Long\r\nEnd Property");
    klass->WriteProperty("QX-TypeName", "Data");
    project->WriteProperty("Quorlin", "QX-TypeName", ";Data;");
    environment->Save();
    EXPECT_EQ(folder.Read("P/clsItem.cls"),
              doubled("VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1  'True\r\nEND\r\n"
                      "Attribute VB_Name = \"clsItem\"\r\nAttribute VB_Exposed = False\r\n"
                      "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Data\"\r\n"
                      "Option Explicit\r\nPublic Property Get Value() As Long\r\n"
                      "Attribute Value.VB_UserMemId = 0\r\nEnd Property\r\n"));
    EXPECT_EQ(folder.Read("P/P.vbp"), doubled(vbpHead + "[Quorlin]\r\nQX-TypeName=;Data;\r\n"));
}

TEST_F(DiskSaveTest, WritingTheSameValuesChangesNoFile) {
    auto environment = OpenProject(vbpHead + "[Quorlin]\r\nQX-TypeName=;A;\r\n");
    folder.MakeReadOnly("P/modMain.bas");
    folder.MakeReadOnly("P/P.vbp");
    environment->VBProjects()->Item(1)->WriteProperty("Quorlin", "QX-TypeName", ";A;");
    EXPECT_TRUE(environment->ChangedFiles().empty());
    environment->Save();  // would fail on the read-only files if it touched them
}

TEST_F(DiskSaveTest, AReadOnlyFileFailsTheWholeSave) {
    auto environment = OpenProject(vbpHead);
    auto project = environment->VBProjects()->Item(1);
    project->VBComponents()->Item("modMain")->WriteProperty("QX-TypeName", "Tools");
    project->WriteProperty("Quorlin", "QX-TypeName", ";Tools;");
    folder.MakeReadOnly("P/modMain.bas");
    const std::string message = ThrownMessage([&] { environment->Save(); });
    EXPECT_NE(message.find("modMain.bas"), std::string::npos) << message;
    EXPECT_NE(message.find("read-only"), std::string::npos) << message;
    EXPECT_EQ(folder.Read("P/P.vbp"), vbpHead);
    EXPECT_EQ(folder.Read("P/modMain.bas"), kModule);
    EXPECT_EQ(environment->ChangedFiles().size(), 2u);  // still pending
}

TEST_F(DiskSaveTest, AVanishedOrChangedFileFailsTheWholeSave) {
    auto environment = OpenProject(vbpHead);
    auto project = environment->VBProjects()->Item(1);
    project->WriteProperty("Quorlin", "QX-TypeName", ";Tools;");
    project->VBComponents()->Item("clsItem")->WriteProperty("QX-TypeName", "Tools");

    std::filesystem::remove(folder / "P/clsItem.cls");
    std::string message = ThrownMessage([&] { environment->Save(); });
    EXPECT_NE(message.find("clsItem.cls: the file has vanished"), std::string::npos) << message;
    EXPECT_EQ(folder.Read("P/P.vbp"), vbpHead);
    EXPECT_FALSE(std::filesystem::exists(folder / "P/clsItem.cls"));

    folder.Write("P/clsItem.cls", kClass + "' edited elsewhere\r\n");
    message = ThrownMessage([&] { environment->Save(); });
    EXPECT_NE(message.find("changed on disk"), std::string::npos) << message;
    EXPECT_EQ(folder.Read("P/P.vbp"), vbpHead);
    EXPECT_EQ(folder.Read("P/clsItem.cls"), kClass + "' edited elsewhere\r\n");
}

// Another program changes or deletes a file while the others are being written: that file
// keeps what the other program left, and the files written before it get their old bytes back.
TEST_F(DiskSaveTest, AFileChangedOrDeletedDuringTheSaveIsNeverOverwrittenOrRecreated) {
    const std::string edited = kClass + "' edited elsewhere\r\n";
    const std::pair<std::string, std::function<void()>> meddlers[] = {
        {"changed on disk", [&] { folder.Write("P/clsItem.cls", edited); }},
        {"vanished", [&] { std::filesystem::remove(folder / "P/clsItem.cls"); }},
    };
    for (const auto& meddler : meddlers) {
        const std::string& reason = meddler.first;
        const std::function<void()>& meddle = meddler.second;
        auto environment = OpenProject(vbpHead);
        auto project = environment->VBProjects()->Item(1);
        project->WriteProperty("Quorlin", "QX-TypeName", ";Tools;");
        project->VBComponents()->Item("clsItem")->WriteProperty("QX-TypeName", "Tools");
        std::vector<std::string> written;
        const std::string message = ThrownMessage([&] {
            environment->Save([&](const std::filesystem::path& file) {
                written.push_back(file.filename().string());
                if (file.filename() == "clsItem.cls") meddle();
            });
        });
        EXPECT_EQ(written, (std::vector<std::string>{"P.vbp", "clsItem.cls"}));
        EXPECT_NE(message.find("clsItem.cls: the file has " + reason), std::string::npos)
            << message;
        EXPECT_NE(message.find("nothing was saved"), std::string::npos) << message;
        EXPECT_EQ(folder.Read("P/P.vbp"), vbpHead);
        if (reason == "vanished") {
            EXPECT_FALSE(std::filesystem::exists(folder / "P/clsItem.cls"));
        } else {
            EXPECT_EQ(folder.Read("P/clsItem.cls"), edited);
        }
    }
}

}  // namespace
}  // namespace arbolet::disk
