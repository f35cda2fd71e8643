// .vbp and .vbg text: what is read from it, and edits that change only the bytes they must.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "disk/group_file.h"
#include "disk/line_edit.h"
#include "disk/project_file.h"

namespace arbolet::disk {
namespace {

constexpr int kCp1252 = 1252;

TEST(ProjectFileRead, SeparatesTopLevelKeysFromSections) {
    const ProjectFile file(
        "Type=Exe\r\nForm=frmMain.frm\r\nName=\"Billing\"\r\n\r\n[MS Transaction Server]\r\n"
        "AutoRefresh=1\r\n; a comment\r\n[Quorlin]\r\n QX-TypeName = ;A; B ;\r\n",
        kCp1252);
    ASSERT_EQ(file.TopLevel().size(), 3u);
    EXPECT_EQ(file.TopLevel()[1].key, "Form");
    EXPECT_EQ(file.TopLevel()[1].line, 1u);
    EXPECT_EQ(file.TopLevelValue("NAME"), "\"Billing\"");
    EXPECT_EQ(file.TopLevelValue("AutoRefresh"), std::nullopt);
    ASSERT_EQ(file.Sections().size(), 2u);
    EXPECT_EQ(file.Sections()[0].name, "MS Transaction Server");
    EXPECT_EQ(file.ReadProperty("ms transaction server", "autorefresh"), "1");
    EXPECT_EQ(file.ReadProperty("Quorlin", "QX-TypeName"), ";A; B ;");
    EXPECT_EQ(file.ReadProperty("Quorlin", "Missing"), std::nullopt);
    EXPECT_EQ(file.ReadProperty("Missing", "QX-TypeName"), std::nullopt);
    EXPECT_TRUE(file.Diagnostics().empty());
    EXPECT_EQ(Unquoted("\"Billing\""), "Billing");
    EXPECT_EQ(Unquoted("\""), "\"");
    EXPECT_EQ(Unquoted("1"), "1");
}

TEST(ProjectFileRead, ReportsLinesItCannotReadAndBinaryData) {
    const ProjectFile odd(
        "Type=Exe\ngarbage without equals\nTitle=" + std::string(1100, 'x') + "\n", kCp1252);
    ASSERT_EQ(odd.Diagnostics().size(), 2u);
    EXPECT_EQ(odd.Diagnostics()[0].line, 2);
    EXPECT_EQ(odd.Diagnostics()[1].line, 3);
    EXPECT_NE(odd.Diagnostics()[1].message.find("1023"), std::string::npos);
    EXPECT_FALSE(odd.IsBinary());

    const ProjectFile binary(std::string("Type=Exe\r\nMZ\0\x90\x03", 15), kCp1252);
    EXPECT_TRUE(binary.IsBinary());
    EXPECT_EQ(binary.Diagnostics().front().line, 2);
}

TEST(ProjectFileRead, DecodesTheCodePage) {
    const ProjectFile file("Name=\"Caf\xE9\"\r\n[Quorlin]\r\nQX-TypeName=;D\xE9j\xE0;\r\n",
                           kCp1252);
    EXPECT_EQ(Unquoted(*file.TopLevelValue("Name")), "Caf\xC3\xA9");
    EXPECT_EQ(file.ReadProperty("Quorlin", "QX-TypeName"), ";D\xC3\xA9j\xC3\xA0;");
}

// Each case: the file before, the edit, and the exact bytes after.
struct WriteCase {
    const char* name;
    std::string before;
    const char* section;
    const char* key;
    const char* value;
    std::string after;
};

TEST(ProjectFileWrite, ChangesOnlyTheBytesItMust) {
    const std::string head = "Type=Exe\r\nName=\"P\"\r\nVersionCompanyName=\"Caf\xE9\"\r\n";
    const WriteCase cases[] = {
        {"value replaced, key spelling and blanks kept",
         head + "[Quorlin]\r\nqx-typename = ;A;\r\n", "Quorlin", "QX-TypeName", ";A;B;",
         head + "[Quorlin]\r\nqx-typename = ;A;B;\r\n"},
        {"new key after the section's last key",
         head + "[Quorlin]\r\nOther=1\r\n\r\n[Add]\r\nK=V\r\n", "quorlin", "QX-TypeName", ";A;",
         head + "[Quorlin]\r\nOther=1\r\nQX-TypeName=;A;\r\n\r\n[Add]\r\nK=V\r\n"},
        {"new key in an empty section", head + "[Quorlin]\r\n[Add]\r\n", "Quorlin", "K", "v",
         head + "[Quorlin]\r\nK=v\r\n[Add]\r\n"},
        {"new section at the end", head + "\r\n[MS Transaction Server]\r\nAutoRefresh=1\r\n",
         "Quorlin", "QX-TypeName", ";A;",
         head + "\r\n[MS Transaction Server]\r\nAutoRefresh=1\r\n[Quorlin]\r\nQX-TypeName=;A;\r\n"},
        {"no final line break stays without one", "Type=Exe\r\nName=\"P\"", "Quorlin", "K", "v",
         "Type=Exe\r\nName=\"P\"\r\n[Quorlin]\r\nK=v"},
        {"LF file", "Type=Exe\n[Quorlin]\nQX-TypeName=;A;\n", "Quorlin", "Extra", "1",
         "Type=Exe\n[Quorlin]\nQX-TypeName=;A;\nExtra=1\n"},
        {"mixed endings keep their own", "Type=Exe\r\nName=\"P\"\n[Quorlin]\r\nA=1\n", "Quorlin",
         "B", "2", "Type=Exe\r\nName=\"P\"\n[Quorlin]\r\nA=1\nB=2\n"},
        {"empty file", "", "Quorlin", "K", "v", "[Quorlin]\r\nK=v\r\n"},
        {"value in the code page", head, "Quorlin", "K", "\xC3\xA9t\xC3\xA9",
         head + "[Quorlin]\r\nK=\xE9t\xE9\r\n"},
        {"empty value", head + "[Quorlin]\r\nK=x\r\n", "Quorlin", "K", "",
         head + "[Quorlin]\r\nK=\r\n"},
    };
    for (const auto& c : cases) {
        ProjectFile file(c.before, kCp1252);
        EXPECT_TRUE(file.WriteProperty(c.section, c.key, c.value)) << c.name;
        EXPECT_EQ(file.Bytes(), c.after) << c.name;
        EXPECT_EQ(file.ReadProperty(c.section, c.key), c.value) << c.name;
    }
}

TEST(ProjectFileWrite, TheSameValueChangesNothing) {
    const std::string bytes = "Type=Exe\r\n[Quorlin]\r\nQX-TypeName=;A;\r\n";
    ProjectFile file(bytes, kCp1252);
    EXPECT_FALSE(file.WriteProperty("QUORLIN", "qx-typename", ";A;"));
    EXPECT_EQ(file.Bytes(), bytes);
}

TEST(ProjectFileWrite, RefusesWhatTheFileCannotHold) {
    const std::string bytes = "Type=Exe\r\n[Quorlin]\r\nK=1\r\n";
    ProjectFile file(bytes, kCp1252);
    const std::tuple<const char*, const char*, const char*> refused[] = {
        {"Quorlin", "K", "two\r\nlines"}, {"Quorlin", "K\n", "1"},
        {"Quor]lin", "K", "1"},           {"", "K", "1"},
        {"Quorlin", "A=B", "1"},          {"Quorlin", " ", "1"},
        {"Quorlin", "K", "\xCE\xA9"},  // Greek Omega: not in Windows-1252
    };
    for (const auto& [section, key, value] : refused) {
        EXPECT_THROW(file.WriteProperty(section, key, value), VbError) << section << "/" << key;
        EXPECT_EQ(file.Bytes(), bytes);
    }
}

TEST(LineEditor, InsertsWithTheNeighboursTerminator) {
    LineEditor editor("a\nb\r\nc");
    editor.InsertLine(0, "first");
    editor.InsertLine(2, "between");
    editor.InsertLine(editor.LineCount(), "last");
    EXPECT_EQ(editor.Bytes(), "first\na\nbetween\nb\r\nc\r\nlast");
    editor.ReplaceInLine(1, 0, 99, "A");
    editor.ReplaceContent(3, "B");
    EXPECT_EQ(editor.Bytes(), "first\nA\nbetween\nB\r\nc\r\nlast");

    LineEditor oldMac("x\ry\r");
    oldMac.InsertLine(1, "z");
    EXPECT_EQ(oldMac.Bytes(), "x\rz\ry\r");
}

TEST(GroupFile, ListsProjectsInOrderWithTheStartupProject) {
    const GroupFile group = ParseGroupFile(
        "VBGROUP 5.0\r\nProject=Server\\Server.vbp\r\nStartupProject=Client.vbp\r\n"
        "Project=..\\Shared\\Lib.vbp\r\n",
        kCp1252);
    ASSERT_TRUE(group.IsGroup());
    ASSERT_EQ(group.projects.size(), 3u);
    EXPECT_EQ(group.projects[0].path, "Server\\Server.vbp");
    EXPECT_FALSE(group.projects[0].startup);
    EXPECT_EQ(group.projects[1].path, "Client.vbp");
    EXPECT_TRUE(group.projects[1].startup);
    EXPECT_EQ(group.projects[2].line, 3u);
}

TEST(GroupFile, RefusesFilesThatAreNoGroup) {
    for (const std::string& bytes : {std::string("Type=Exe\r\nProject=a.vbp\r\n"), std::string(""),
                                     std::string("VBGROUP 5.0\r\nProject=\0a.vbp\r\n", 27)}) {
        const GroupFile group = ParseGroupFile(bytes, kCp1252);
        EXPECT_FALSE(group.IsGroup());
        EXPECT_TRUE(group.projects.empty());
    }
    EXPECT_EQ(ParseGroupFile("\r\nType=Exe\r\n", kCp1252).diagnostics.front().line, 2);
}

}  // namespace
}  // namespace arbolet::disk
