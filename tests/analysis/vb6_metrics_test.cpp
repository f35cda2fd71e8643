// Procedure metrics on small procedures whose figures were counted by hand.
#include <gtest/gtest.h>

#include <string>

#include "analysis/crlf_lines.h"
#include "analysis/vb6_metrics.h"

namespace arbolet::analysis::vb6 {
namespace {

using analysis::testing::Lines;

TEST(Vb6Metrics, HandCountedProcedures) {
    const std::string code = Lines({
        "Option Explicit",                                  // 1 outside any procedure
        "Private Function Score(ByVal n As Long) As Long",  // 2
        "    ' a comment line",                             // 3 not code
        "",                                                 // 4 not code
        "    On Error GoTo Failed",                         // 5 +1
        "    If n > 0 And n < 10 Or n = 99 Then",           // 6 +1 +2
        "        For i = 1 To n",                           // 7 +1 depth 2
        "            If i Mod 2 = 0 Then Score = Score + 1 Else Score = Score - 1",  // 8 +1
        "        Next",                                                              // 9
        "    ElseIf n < 0 Then",                                                     // 10 +1
        "        Select Case n",                                                     // 11 depth 2
        "            Case -1, -2: Score = 1",                                        // 12 +1
        "            Case Is < -10",                                                 // 13 +1
        "                Do While n < 0 And Score = 0",   // 14 +1 +1 depth 3
        "                    n = n + 1",                  // 15
        "                Loop",                           // 16
        "            Case Else",                          // 17
        "        End Select",                             // 18
        "    End If",                                     // 19
        "    Exit Function",                              // 20
        "Failed:",                                        // 21
        "    On Error GoTo 0",                            // 22 +0
        "End Function",                                   // 23
        "Public Property Let Value(ByVal v As Variant)",  // 24
        "    With Me",                                    // 25 depth 1
        "#If DEBUG Then",                                 // 26 depth 2
        "        While v: Wend",                          // 27 +1 depth 3
        "#End If",                                        // 28
        "    End With",                                   // 29
        "End Property",                                   // 30
        "Sub Empty()",                                    // 31
        "End Sub",                                        // 32
    });
    const auto metrics = ComputeMetrics(code);
    ASSERT_EQ(metrics.size(), 3u);
    EXPECT_EQ(metrics[0].name, "Score");
    EXPECT_EQ(metrics[0].kind, BlockKind::Function);
    EXPECT_EQ(metrics[0].line, 2);
    EXPECT_EQ(metrics[0].linesOfCode, 20);  // lines 2..23 less 3 and 4
    EXPECT_EQ(metrics[0].maxNesting, 3);
    EXPECT_EQ(metrics[0].complexity, 1 + 1 + 3 + 1 + 1 + 1 + 1 + 1 + 2);
    EXPECT_EQ(ProcedureKeyword(metrics[1].kind), "Property Let");
    EXPECT_EQ(metrics[1].linesOfCode, 7);
    EXPECT_EQ(metrics[1].maxNesting, 3);
    EXPECT_EQ(metrics[1].complexity, 2);
    EXPECT_EQ(metrics[2].linesOfCode, 2);
    EXPECT_EQ(metrics[2].maxNesting, 0);
    EXPECT_EQ(metrics[2].complexity, 1);
}

TEST(Vb6Metrics, DecisionsOfSingleStatements) {
    const struct {
        const char* statement;
        std::int32_t decisions;
    } cases[] = {
        {"If a Then", 1},
        {"If a Then b = 1", 1},
        {"If a Then If b Then c Else If d Then e", 3},  // each Else binds to the nearest If
        {"If a Then b Else If c Or d Then e", 3},
        {"Else If a Then", 1},
        {"ElseIf a Or b And c Then", 3},
        {"If s = \"x And y\" Then", 1},  // words in strings do not count
        {"If x.Or Then", 1},             // nor members
        {"For Each v In c", 1},
        {"Do", 1},
        {"Do Until a Or b", 2},
        {"Loop While a And b", 1},  // the loop was counted at its Do
        {"Loop", 0},
        {"While a Or b", 2},
        {"Case 1, 2", 1},
        {"Case Else", 0},
        {"On Error GoTo Handler", 1},
        {"On Local Error GoTo 100", 1},
        {"On Error GoTo 0", 0},
        {"On Error Resume Next", 0},
        {"10 If a Then", 1},
        {"x = a And b", 0},  // a connective outside a condition
        {"Select Case a Or b", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(StatementDecisions(c.statement), c.decisions) << c.statement;
}

TEST(Vb6Metrics, ContinuationsAttributesAndCutProcedures) {
    const std::string code = Lines({
        "Sub A(x, _",                    // 1
        "      y)",                      // 2
        "Attribute A.VB_UserMemId = 0",  // 3 hidden, not code
        "    If x And _",                // 4 +1 +1
        "       y Then Debug.Print x",   // 5
        "    ' note _",                  // 6 a continued comment: not code
        "      still the note",          // 7
        "Sub B()",                       // 8 cuts A off
        "    Do: Loop",                  // 9 +1
    });
    const auto metrics = ComputeMetrics(code, 100);
    ASSERT_EQ(metrics.size(), 2u);
    EXPECT_EQ(metrics[0].line, 100);
    EXPECT_EQ(metrics[0].lastLine, 106);
    EXPECT_EQ(metrics[0].linesOfCode, 4);
    EXPECT_EQ(metrics[0].complexity, 3);
    EXPECT_EQ(metrics[1].linesOfCode, 2);
    EXPECT_EQ(metrics[1].complexity, 2);
    EXPECT_EQ(metrics[1].maxNesting, 1);
}

TEST(Vb6Metrics, HostileInputStaysLinear) {
    std::string line = "Sub A()\n";
    for (int i = 0; i < 20000; ++i)
        line += "If a Then ";
    line += "\n";
    for (int i = 0; i < 20000; ++i)
        line += "If a Then\n";
    const auto metrics = ComputeMetrics(line);
    ASSERT_EQ(metrics.size(), 1u);
    EXPECT_EQ(metrics[0].maxNesting, 20000);
    EXPECT_GT(metrics[0].complexity, 20000);
}

}  // namespace
}  // namespace arbolet::analysis::vb6
