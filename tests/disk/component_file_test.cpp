// Component files: exactly the code-window text the IDE shows, with the map back to file lines.
#include <gtest/gtest.h>

#include "disk/component_file.h"

namespace arbolet::disk {
namespace {

const char* const kForm =
    "VERSION 5.00\r\n"
    "Object = \"{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0\"; \"MSCOMCTL.OCX\"\r\n"
    "Begin VB.Form frmMain \r\n"
    "   Caption         =   \"Main\"\r\n"
    "   Begin VB.ListBox lstItems \r\n"
    "      BeginProperty Font \r\n"
    "         Name            =   \"Tahoma\"\r\n"
    "      EndProperty\r\n"
    "   End\r\n"
    "End\r\n"
    "Attribute VB_Name = \"frmMain\"\r\n"
    "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Screens\"\r\n"
    "Option Explicit\r\n"
    "Public Property Get Value() As Long\r\n"
    "Attribute Value.VB_UserMemId = 0\r\n"
    "End Property\r\n";

TEST(ComponentFile, FormShowsOnlyTheCodeWindowLines) {
    const auto file = ParseComponentFile(kForm, 1252);
    EXPECT_EQ(file.name, "frmMain");
    EXPECT_EQ(file.attributesBegin, 10);
    EXPECT_EQ(file.attributesEnd, 12);
    EXPECT_EQ(file.CodeText(),
              "Option Explicit\r\nPublic Property Get Value() As Long\r\nEnd Property");
    EXPECT_EQ(file.FileLineOfCodeLine(0), 13);
    EXPECT_EQ(file.FileLineOfCodeLine(2), 16);  // the member attribute line is skipped
    EXPECT_FALSE(file.FileLineOfCodeLine(3).has_value());
    EXPECT_TRUE(file.diagnostics.empty());
}

TEST(ComponentFile, ClassHeaderBlockInUpperCase) {
    const auto file = ParseComponentFile(
        "VERSION 1.0 CLASS\nBEGIN\n  MultiUse = -1  'True\nEND\nAttribute VB_Name = \"clsItem\"\n"
        "Attribute VB_Exposed = False\nPrivate m As Long\n",
        1252);
    EXPECT_EQ(file.name, "clsItem");
    EXPECT_EQ(file.CodeText(), "Private m As Long");
}

TEST(ComponentFile, ModuleWithMixedLineEndingsAndNoTrailingBreak) {
    const auto file = ParseComponentFile("Attribute VB_Name = \"modA\"\nSub A()\r\nEnd Sub", 1252);
    EXPECT_EQ(file.CodeText(), "Sub A()\r\nEnd Sub");
    ASSERT_EQ(file.raw.size(), 3u);
    EXPECT_EQ(file.raw[0].ending, LineEnding::LF);
    EXPECT_EQ(file.raw[1].ending, LineEnding::CRLF);
    EXPECT_EQ(file.raw[2].ending, LineEnding::None);
}

TEST(ComponentFile, DecodesTheCodePage) {
    const auto western = ParseComponentFile("x = \"Quantit\xE9 \x80\"\r\n", 1252);
    EXPECT_EQ(western.CodeText(), "x = \"Quantité €\"");
    const auto cyrillic = ParseComponentFile("x = \"\xCF\xF0\xE8\xE2\xE5\xF2\"\r\n", 1251);
    EXPECT_EQ(cyrillic.CodeText(), "x = \"Привет\"");
}

TEST(ComponentFile, BrokenFilesGiveDiagnosticsNotFailures) {
    const auto unclosed =
        ParseComponentFile("VERSION 5.00\nBegin VB.Form F\n  Caption = \"x\"\n", 1252);
    ASSERT_EQ(unclosed.diagnostics.size(), 1u);
    EXPECT_EQ(unclosed.diagnostics[0].line, 2);
    EXPECT_TRUE(unclosed.codeLines.empty());

    const std::string binary("MZ\x90\0\x03\0\0\0\nabc", 11);
    const auto junk = ParseComponentFile(binary, 1252);
    ASSERT_FALSE(junk.diagnostics.empty());
    EXPECT_EQ(junk.diagnostics[0].severity, FileDiagnostic::Severity::Error);
    EXPECT_EQ(junk.diagnostics[0].line, 1);

    const auto huge = ParseComponentFile("x = 1\n" + std::string(5000, 'a') + "\n", 1252);
    ASSERT_EQ(huge.diagnostics.size(), 1u);
    EXPECT_EQ(huge.diagnostics[0].severity, FileDiagnostic::Severity::Warning);
    EXPECT_EQ(huge.diagnostics[0].line, 2);
}

TEST(ComponentFile, LocatingTheCodeWithoutDecodingAgreesWithTheReader) {
    const std::string cyrillicModule =
        "Attribute VB_Name = \"\xCC\xEE\xE4\"\r\nOption Explicit\r\nx = \"\xCF\"\r\n";
    // A designer header longer than the first lines looked at, a long line far into the code,
    // lone CRs, and a header cut short at the end.
    std::string longHeader = "VERSION 5.00\r\nBegin VB.Form F\r\n";
    for (int i = 0; i < 3000; ++i)
        longHeader += "   Begin VB.Label L" + std::to_string(i) + "\r\n   End\r\n";
    longHeader += "End\r\nAttribute VB_Name = \"F\"\r\nOption Explicit\r\n";
    std::string longLine = "Attribute VB_Name = \"M\"\r\n";
    for (int i = 0; i < 400; ++i)
        longLine += "x = 1\r\n";
    longLine += "y = \"" + std::string(3000, 'a') + "\"\r\nz = 2\r\n";
    // Lines just within and just beyond the length VB6 loads, far from the start.
    std::string edges = longLine.substr(0, longLine.find("y = "));
    edges += std::string(1023, 'b') + "\r\n" + std::string(1023, 'c') + "\n" +
             std::string(1024, 'd') + "\n" + std::string(1024, 'e');
    std::string cut = "VERSION 5.00\nBegin VB.Form F\n";
    for (int i = 0; i < 500; ++i)
        cut += "  Caption = \"x\"\n";
    for (const std::string& bytes :
         {std::string(kForm), cyrillicModule, std::string("VERSION 5.00\nBegin VB.Form F\n"),
          std::string("MZ\x90\0\x03\0\0\0\nabc", 11), std::string(), longHeader, longLine,
          std::string("Attribute VB_Name = \"C\"\rSub A()\rEnd Sub\r"), cut, edges}) {
        const auto located = LocateCode(bytes);
        const auto parsed = ParseComponentFile(bytes, 1251);
        EXPECT_EQ(located.firstCodeLine, parsed.attributesEnd);
        ASSERT_EQ(located.diagnostics.size(), parsed.diagnostics.size());
        for (std::size_t i = 0; i < located.diagnostics.size(); ++i)
            EXPECT_EQ(located.diagnostics[i].message, parsed.diagnostics[i].message);
        const std::string_view code = std::string_view(bytes).substr(located.codeOffset);
        if (!parsed.codeLines.empty()) {
            EXPECT_TRUE(code.starts_with(bytes.substr(
                located.raw[static_cast<std::size_t>(parsed.codeLines[0])].offset, 6)));
        } else {
            EXPECT_TRUE(code.empty() || located.firstCodeLine == std::ssize(located.raw));
        }
    }
    EXPECT_EQ(LocateCode(kForm).codeOffset, std::string_view(kForm).find("Option Explicit"));
}

TEST(ComponentFile, EmptyFile) {
    const auto file = ParseComponentFile("", 1252);
    EXPECT_TRUE(file.lines.empty());
    EXPECT_EQ(file.CodeText(), "");
}

TEST(ComponentFile, RecognisesCodeFileKindsInAnyCase) {
    EXPECT_TRUE(IsComponentFileName("Form1.FRM"));
    EXPECT_TRUE(IsComponentFileName("a.b.cls"));
    EXPECT_FALSE(IsComponentFileName("Form1.frx"));
    EXPECT_FALSE(IsComponentFileName("Project.vbp"));
    EXPECT_FALSE(IsComponentFileName("bas"));
}

}  // namespace
}  // namespace arbolet::disk
