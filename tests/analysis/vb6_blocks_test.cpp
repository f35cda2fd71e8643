// The VB6 block rules: code the VB6 compiler accepts gives no finding, and each kind of broken
// block structure is reported with what is wrong and where the block began.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis/vb6_blocks.h"

namespace arbolet::analysis::vb6 {
namespace {

std::string Lines(std::initializer_list<const char*> lines, const char* ending = "\r\n") {
    std::string code;
    for (const char* line : lines) {
        code += line;
        code += ending;
    }
    return code;
}

std::vector<std::string> Messages(const std::string& code) {
    std::vector<std::string> messages;
    for (const auto& finding : CheckBlocks(code))
        messages.push_back(finding.message);
    return messages;
}

using Texts = std::vector<std::string>;

struct Accepted {
    const char* what;
    std::string code;
};

TEST(Vb6Blocks, CodeThatCompilesGivesNoFinding) {
    const Accepted cases[] = {
        {"single-line If with a colon after Then",
         Lines({"Sub A()", "    If c Then: x = 1", "    If c Then x = 1: y = 2 Else z = 3",
                "    If a Then If b Then c Else d", "End Sub"})},
        {"block If with a comment after Then",
         Lines({"Sub A()", "    If c Then ' why", "    ElseIf d Then", "    Else", "    End If",
                "End Sub"})},
        {"names ending in an underscore are not continuations",
         Lines({"Enum E", "    LOCAL_", "End Enum", "Sub A()", "    On Error GoTo err_",
                "    If x Then", "    End If", "err_:", "End Sub"})},
        {"continued If becomes single-line",
         Lines({"Sub A()", "    If a And _", "       b Then _", "       x = 1", "End Sub"})},
        {"continued comment hides the next line",
         Lines({"Sub A()", "    ' note _", "    If a Then", "End Sub"})},
        {"Static procedures with modifiers",
         Lines({"Static Sub A()", "End Sub", "Public Static Function B() As Long", "End Function",
                "Private Static Property Get C() As Long", "End Property", "Friend Function D()",
                "End Function", "Sub E()", "    Static n As Long", "End Sub"})},
        {"Next with two variables",
         Lines({"Sub A()", "    For i = 1 To 2", "        For j% = 1 To 2", "    Next j, I",
                "    For Each v In c: Next", "End Sub"})},
        {"#If branches with two procedure headers",
         Lines({"#If VBA7 Then", "Private Declare PtrSafe Function F Lib \"k\" () As LongPtr",
                "Public Sub A(ByVal p As LongPtr)", "#ElseIf Win32 Then",
                "Public Sub A(ByVal p As Long)", "#Else", "Public Sub A(p)", "#End If",
                "    If p Then", "#If DEBUG Then", "    ElseIf q Then", "#Else",
                "    ElseIf r Then", "#End If", "    End If", "End Sub"})},
        {"the other block kinds", Lines({"Option Explicit",
                                         "Private Type T",
                                         "    a As Long",
                                         "End Type",
                                         "Public Enum E",
                                         "    One = 1",
                                         "End Enum",
                                         "Private Declare Function G Lib \"x\" () As Long",
                                         "Public Event Changed()",
                                         "Property Let P(v)",
                                         "End Property",
                                         "Function F()",
                                         "    Select Case x",
                                         "        Case 1: y = 1",
                                         "        Case Is > 5",
                                         "            Do While a: a = a - 1: Loop",
                                         "        Case Else",
                                         "    End Select",
                                         "    Do",
                                         "    Loop Until b",
                                         "    While w",
                                         "    Wend",
                                         "    With obj",
                                         "        .Type = 1",
                                         "    End With",
                                         "    Exit Function",
                                         "    End",
                                         "End Function"})},
        {"labels, line numbers, strings and comments",
         Lines({"Sub A()", "Retry: If x Then", "10  y = \"End If: Next\" ' End Sub", "20 End If",
                "    Rem If x Then", "    z = 1: Rem End If", "    Else_ = 1",
                "    Call F(a:=1): If b Then", "    End If", "End Sub"})},
        {"Else If opens an If of its own",
         Lines({"Sub A()", "    If a Then", "    Else If b Then", "        x", "    End If",
                "    End If", "End Sub"})},
        {"date literals hold colons that separate nothing",
         Lines({"Sub A()", "    If t <> #12:00:00 AM# Then", "        t = #1/1/2000 10:30:00 PM#",
                "    End If", "    Print #1, a: If x# > 1 Then", "    End If", "End Sub"})},
        {"attributes and lone CR line ends", Lines({"Sub A()", "Attribute A.VB_UserMemId = 0",
                                                    "    If a Then", "    End If", "End Sub"},
                                                   "\r")},
    };
    for (const auto& accepted : cases) {
        EXPECT_EQ(Messages(accepted.code), Texts{}) << accepted.what;
    }
}

TEST(Vb6Blocks, MissingEndsNameTheirOpenerAndWhereTheyProbablyBelong) {
    const std::string code = Lines({
        "Sub A()",             // 1
        "    For i = 1 To 3",  // 2
        "        x = i",       // 3
        "    y = 2",           // 4: the Next belonged before here
        "End Sub",             // 5
        "Function B()",        // 6
        "    If a Then",       // 7
        "Sub C()",             // 8
        "End Sub",             // 9
        "Private Type T",      // 10
        "    a As Long",       // 11
    });
    const auto findings = CheckBlocks(code);
    ASSERT_EQ(findings.size(), 4u);
    EXPECT_EQ(findings[0].message, "`For` at line 2 has no `Next` (probably before line 4)");
    EXPECT_EQ(findings[0].rule, BlockRule::UnclosedBlock);
    EXPECT_EQ(findings[0].line, 2);
    EXPECT_EQ(findings[0].relatedLine, 4);
    EXPECT_EQ(findings[1].message,
              "`Function` at line 6 has no `End Function` (probably before line 8)");
    EXPECT_EQ(findings[2].message, "`If` at line 7 has no `End If`");
    EXPECT_EQ(findings[3].message, "`Type` at line 10 has no `End Type`");
}

TEST(Vb6Blocks, StatementsAfterADateLiteralAreStillRead) {
    EXPECT_EQ(Messages(Lines({"Sub A()", "    If t = #10:00# Then: x = 1", "    End If",
                              "    d = #1/1/2000#: If a Then", "End Sub"})),
              (Texts{"`End If` at line 3 has no `If`", "`If` at line 4 has no `End If`"}));
}

TEST(Vb6Blocks, ClosersWithoutOpenersAndMismatches) {
    EXPECT_EQ(Messages(Lines({"Sub A()", "    x = 1", "    End If", "End Sub"})),
              Texts{"`End If` at line 3 has no `If`"});
    EXPECT_EQ(
        Messages(Lines({"Sub A()", "    Loop", "    Wend", "    Next", "    End With",
                        "    End Select", "End Sub", "End Sub", "End Type", "#End If"})),
        (Texts{"`Loop` at line 2 has no `Do`", "`Wend` at line 3 has no `While`",
               "`Next` at line 4 has no `For`", "`End With` at line 5 has no `With`",
               "`End Select` at line 6 has no `Select Case`", "`End Sub` at line 8 has no `Sub`",
               "`End Type` at line 9 has no `Type`", "`#End If` at line 10 has no `#If`"}));
    const auto findings = CheckBlocks(Lines({"Function F()", "End Sub"}));
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].message, "`End Sub` at line 2 closes `Function` opened at line 1");
    // VB6 accepts a procedure closed by another kind's end: a warning, not an error.
    EXPECT_EQ(findings[0].rule, BlockRule::MismatchedProcedureEnd);
    EXPECT_TRUE(IsWarning(findings[0].rule));
    EXPECT_EQ(findings[0].relatedLine, 1);
    const auto property = CheckBlocks(Lines({"Property Get P() As Long", "End Function"}));
    ASSERT_EQ(property.size(), 1u);
    EXPECT_EQ(property[0].rule, BlockRule::MismatchedProcedureEnd);
    // A Type closed by `End Enum` does not compile: still an error.
    const auto type = CheckBlocks(Lines({"Type T", "    a As Long", "End Enum"}));
    ASSERT_EQ(type.size(), 1u);
    EXPECT_EQ(type[0].rule, BlockRule::MismatchedEnd);
    EXPECT_FALSE(IsWarning(type[0].rule));
}

TEST(Vb6Blocks, TypeAndEnumMembersNamedLikeKeywordsAreMembers) {
    EXPECT_EQ(Messages(Lines({"Private Type T", "    Type As Long", "    Next As Long",
                              "    sUB As Long", "    Function(3) As Byte", "    Property As Long",
                              "    Enum As Integer", "End Type", "Enum E", "    Type = 1",
                              "    Sub", "    Property", "End Enum"})),
              Texts{});
    // A real header inside a Type still ends it.
    EXPECT_EQ(Messages(Lines({"Type T", "    a As Long", "Sub S()", "End Sub"})),
              Texts{"`Type` at line 1 has no `End Type` (probably before line 3)"});
}

TEST(Vb6Blocks, NextNamesTheLoopItCloses) {
    // The wrong variable: the Next lines up with the inner loop.
    const auto wrong = CheckBlocks(Lines({"Sub A()", "    For j = 1 To 2", "        For i = 1 To 2",
                                          "        Next j", "    Next j", "End Sub"}));
    ASSERT_FALSE(wrong.empty());
    EXPECT_EQ(wrong[0].message, "`Next j` at line 4 closes `For i` opened at line 3");
    EXPECT_EQ(wrong[0].rule, BlockRule::NextNesting);
    EXPECT_EQ(wrong[0].relatedLine, 3);
    // A missing `Next i`: the `Next j` lines up with the outer loop.
    EXPECT_EQ(Messages(Lines({"Sub A()", "    For j = 1 To 2", "        For i = 1 To 2",
                              "            x = 1", "    Next j", "End Sub"})),
              Texts{"`For` at line 3 has no `Next` (probably before line 5)"});
}

TEST(Vb6Blocks, BranchesOutsideTheirBlocks) {
    EXPECT_EQ(Messages(Lines(
                  {"Sub A()", "    Else", "    ElseIf x Then", "    Case 1", "#Else", "End Sub"})),
              (Texts{"`Else` at line 2 has no `If`", "`ElseIf` at line 3 has no `If`",
                     "`Case` at line 4 has no `Select Case`", "`#Else` at line 5 has no `#If`"}));
    EXPECT_EQ(Messages(Lines(
                  {"Sub A()", "    If a Then", "    Else", "    Else", "    End If", "End Sub"})),
              Texts{"`Else` at line 4 comes after the `Else` at line 3 of the `If` at line 2"});
    EXPECT_EQ(Messages(Lines({"Sub A()", "    Select Case x", "        y = 1", "    Case 1",
                              "    End Select", "End Sub"})),
              Texts{"statement at line 3 comes before the first `Case` of `Select Case` at "
                    "line 2"});
}

TEST(Vb6Blocks, BlocksLeftOpenInsideABranchAreReportedWhereTheBranchEnds) {
    // The If opened in the first Case is still open at the second.
    EXPECT_EQ(Messages(Lines({"Sub A()", "    Select Case x", "    Case 1", "        If a Then",
                              "    Case 2", "    End Select", "End Sub"})),
              Texts{"`If` at line 4 has no `End If`"});
}

TEST(Vb6Blocks, ConditionalBranchesMustAgree) {
    const auto findings = CheckBlocks(Lines({"Sub A()", "#If X Then", "    If a Then", "#Else",
                                             "    b = 1", "#End If", "    End If", "End Sub"}));
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].message,
              "the `#Else` branch at line 4 leaves other blocks open than the `#If` branch at "
              "line 2");
    EXPECT_EQ(findings[0].rule, BlockRule::ConditionalBranches);
    EXPECT_EQ(findings[0].relatedLine, 2);
    // A branch may close what was open at the `#If`, as long as every branch does.
    EXPECT_EQ(Messages(Lines({"Sub A()", "#If X Then", "End Sub", "#Else", "End Sub", "#End If"})),
              Texts{});
    EXPECT_EQ(Messages(Lines({"#If X Then", "Sub A()", "End Sub"})),
              Texts{"`#If` at line 1 has no `#End If`"});
}

TEST(Vb6Blocks, LineNumbersCountFromTheFirstLineGiven) {
    const auto findings = CheckBlocks("x = 1\nEnd If\n", 40);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].line, 41);
    EXPECT_EQ(findings[0].message, "`End If` at line 41 has no `If`");
    // CR CR LF, left by a double conversion, ends one line, as the component reader counts it.
    const auto doubled =
        CheckBlocks("Sub A()\r\r\n    If a Then\r\r\n        x\r\r\nEnd Sub\r\r\n");
    ASSERT_EQ(doubled.size(), 1u);
    EXPECT_EQ(doubled[0].message, "`If` at line 2 has no `End If` (probably before line 4)");
}

TEST(Vb6Blocks, HostileInputStaysLinearAndNeverFails) {
    std::string deep;
    for (int i = 0; i < 30000; ++i)
        deep += "If a Then\n";
    EXPECT_EQ(CheckBlocks(deep).size(), 30000u);
    std::string singleLine = "Sub A()\n";
    for (int i = 0; i < 200000; ++i)
        singleLine += "If a Then Else ";
    EXPECT_EQ(Messages(singleLine + "\nEnd Sub\n"), Texts{});
    std::string conditionals;
    for (int i = 0; i < 20000; ++i)
        conditionals += "#If A Then\nFor i = 1 To 2\n#Else\n";
    EXPECT_FALSE(CheckBlocks(conditionals).empty());
    std::string junk;
    for (int i = 0; i < 5000; ++i)
        junk += std::string("\0\"_ :'#\r", 8)[i % 8];
    junk += std::string(100000, ':');
    CheckBlocks(junk);
}

}  // namespace
}  // namespace arbolet::analysis::vb6
