// The module-level declarations scanner: what is a declaration, where its name is, what is
// public, and that nothing inside a procedure or a string counts.
#include <gtest/gtest.h>

#include <string>

#include "analysis/vb6_declarations.h"

namespace arbolet::analysis::vb6 {
namespace {

using K = DeclarationKind;

std::string Describe(const std::vector<Declaration>& found) {
    std::string text;
    for (const auto& d : found) {
        text +=
            std::to_string(static_cast<int>(d.kind)) + ":" + d.name + "@" + std::to_string(d.line) +
            "." + std::to_string(d.column) + (d.isPublic ? " public" : "") +
            (d.parent >= 0 ? " in " + found[static_cast<std::size_t>(d.parent)].name : "") + "\n";
    }
    return text;
}

TEST(Vb6Declarations, EveryKindAtModuleLevelWithNameAndScope) {
    const std::string code =
        "Option Explicit\r\n"
        "Private Const A As Long = 1, B = \"x,y\"\r\n"
        "Public Const C = 3\r\n"
        "Dim mCount As Long, mNames(1 To 5) As String\r\n"
        "Private WithEvents mTimer As Timer\r\n"
        "Global gFlag%\r\n"
        "Public Type Point\r\n"
        "    X As Long\r\n"
        "    Y(3) As Long ' comment\r\n"
        "End Type\r\n"
        "Private Enum Colour\r\n"
        "    Red = 1\r\n"
        "    [Dark Blue]\r\n"
        "End Enum\r\n"
        "Private Declare Function GetTickCount Lib \"kernel32\" () As Long\r\n"
        "Public Event Changed(ByVal value As Long)\r\n"
        "Private Sub Helper()\r\n"
        "    Dim local As Long\r\n"
        "    Const inner = 2\r\n"
        "End Sub\r\n"
        "Function Total() As Long: End Function\r\n"
        "Friend Property Get Name() As String\r\n"
        "End Property\r\n"
        "Public Static Sub Counter()\r\n"
        "End Sub\r\n";
    const auto found = ScanDeclarations(code);
    EXPECT_EQ(Describe(found),
              "0:A@2.14\n0:B@2.29\n0:C@3.13 public\n"
              "1:mCount@4.4\n1:mNames@4.20\n1:mTimer@5.19\n1:gFlag%@6.7 public\n"
              "2:Point@7.12 public\n3:X@8.4 public in Point\n3:Y@9.4 public in Point\n"
              "4:Colour@11.13\n5:Red@12.4 in Colour\n5:Dark Blue@13.4 in Colour\n"
              "6:GetTickCount@15.25\n7:Changed@16.13 public\n"
              "8:Helper@17.12\n9:Total@21.9 public\n10:Name@22.20 public\n"
              "8:Counter@24.18 public\n");
    EXPECT_EQ(found[0].detail, "As Long = 1");
    EXPECT_EQ(found[15].detail, "()");
}

TEST(Vb6Declarations, ContinuedLinesPlaceTheNameOnItsOwnPhysicalLine) {
    const std::string code =
        "Private Declare Function _\n"
        "    Beep Lib \"kernel32\" ( _\n"
        "    ByVal f As Long) As Long\n"
        "Public a As Long, _\n"
        "       b As Long\n";
    const auto found = ScanDeclarations(code, 10);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].name, "Beep");
    EXPECT_EQ(found[0].line, 11);
    EXPECT_EQ(found[0].column, 4);
    EXPECT_EQ(found[0].endLine, 12);
    EXPECT_EQ(found[2].name, "b");
    EXPECT_EQ(found[2].line, 14);
    EXPECT_EQ(found[2].column, 7);
}

TEST(Vb6Declarations, NoDeclarationsInStringsCommentsOrBrokenText) {
    EXPECT_TRUE(ScanDeclarations("' Dim x As Long\nRem Const y = 1\nx = \"Dim z\"\n").empty());
    EXPECT_TRUE(ScanDeclarations("Dim\nConst\nPublic Type\nPrivate Enum\nEvent\n").empty());
    // An unclosed Type ends where a procedure starts.
    const auto found = ScanDeclarations("Type T\n  a As Long\nSub S()\nEnd Sub\nDim late\n");
    EXPECT_EQ(Describe(found), "2:T@1.5 public\n3:a@2.2 public in T\n8:S@3.4 public\n1:late@5.4\n");
    // Binary junk and an endless line never fail.
    std::string junk(5000, '\0');
    for (std::size_t i = 0; i < junk.size(); ++i)
        junk[i] = static_cast<char>((i * 7919) % 256);
    ScanDeclarations(junk);
    ScanDeclarations("Dim " + std::string(200000, 'a') + " _\n_\n_");
}

}  // namespace
}  // namespace arbolet::analysis::vb6
