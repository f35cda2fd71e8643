// Generated VB6 code for benchmarks: a realistic mix of declarations, procedures and blocks.
#pragma once

#include <string>

namespace arbolet::bench {

// At least `lines` lines of code, whole procedures only, joined with CRLF as the IDE hands them
// over. Its blocks all match, so a check of it finds nothing.
inline std::string GenerateModule(int lines) {
    static const char* const kProcedure[] = {
        "Public Function Compute{n}(ByVal value As Long, Optional ByVal scale As Double = 1) As "
        "Double",
        "    Dim total As Double, i As Long ' running total",
        "    Const LIMIT As Long = 100",
        "    If value < 0 Then Err.Raise 5, \"modGen\", \"Negative: value\"",
        "    For i = 1 To value",
        "        Select Case i Mod 3",
        "            Case 0",
        "                total = total + i * scale: count = count + 1",
        "            Case Else",
        "                total = total - (i / 2)",
        "        End Select",
        "    Next i",
        "    Do While total > LIMIT",
        "        total = total / 2",
        "    Loop",
        "    With mRecord",
        "        .Value = total",
        "        .Label = \"Total: \" & Format$(total, \"0.00\") & _",
        "            \" units\"",
        "    End With",
        "    If total > 1000 Then",
        "        Debug.Print \"large\"",
        "    ElseIf total > 10 Then",
        "        Debug.Print \"medium\"",
        "    Else",
        "        Debug.Print \"small\"",
        "    End If",
        "    Compute{n} = total",
        "End Function",
        "",
    };
    std::string code =
        "Option Explicit\r\nPrivate mRecord As RecordType\r\nPrivate count As Long\r\n";
    int written = 3;
    for (int n = 0; written < lines; ++n) {
        for (const char* line : kProcedure) {
            std::string text = line;
            if (const auto at = text.find("{n}"); at != std::string::npos)
                text.replace(at, 3, std::to_string(n));
            code += text + "\r\n";
            ++written;
        }
    }
    return code;
}

}  // namespace arbolet::bench
