// The explanations of the rules (see check_rule_help.h).
#include "check/check_rule_help.h"

#include <algorithm>
#include <iterator>

namespace arbolet::check {
namespace {

struct Entry {
    std::string_view id;
    RuleHelp help;
};

constexpr Entry kHelp[] = {
    {"unclosed-block",
     {"A block (If, For, Do, While, Select Case, With, a procedure, Type, Enum or #If) that is "
      "still open where its procedure or the module ends. VB6 refuses to compile it.",
      "Add the missing end statement; the message says where the block began and, when the "
      "indentation shows it, where the end probably belongs."}},
    {"unmatched-end",
     {"A closing statement (End If, Next, Loop, Wend, End Select, End With, End Sub, #End If, "
      "...) without the statement that opens its block. VB6 refuses to compile it.",
      "Remove the extra end, or restore the opening statement that was lost."}},
    {"misplaced-branch",
     {"Else, ElseIf, Case, #Else or #ElseIf outside the block it belongs to, or an ElseIf or "
      "Else after the Else of its If.",
      "Move the branch inside its block, or close the inner block that is still open before it."}},
    {"next-nesting",
     {"A Next whose variable is not the variable of the innermost open For.",
      "Close the inner loop first, or name the right variable in the Next."}},
    {"mismatched-end",
     {"An End statement of another kind than the block it closes, such as End Enum closing a "
      "Type. VB6 refuses to compile it.",
      "Use the end statement that matches the block."}},
    {"mismatched-procedure-end",
     {"A procedure closed by the end of another kind of procedure (Property Get ... End "
      "Function). VB6 accepts it, but readers and tools are misled.",
      "Use End Sub, End Function or End Property to match the procedure's header."}},
    {"statement-before-case",
     {"A statement between Select Case and its first Case. VB6 refuses to compile it.",
      "Move the statement before the Select Case or into a Case."}},
    {"conditional-branches",
     {"#If branches that leave different blocks open, so that the code compiles under one set "
      "of constants and not under another.",
      "Make every branch open and close the same blocks."}},
    {"misplaced-declaration",
     {"A declaration inside a Type or Enum block, as the tool window reports it.",
      "Close the Type or Enum before the declaration."}},
    {"file-format",
     {"A component file that VB6 cannot load as it stands: binary data, an unclosed designer "
      "block, or a line longer than VB6 reads.",
      "Restore the file from version control or save it again from VB6."}},
    {"unreadable-file",
     {"A file that cannot be read, a named path that does not exist, or a file that is no VB6 "
      "component.",
      "Check the path and the file's permissions."}},
    {"missing-file",
     {"A component or project that a .vbp or .vbg lists but that does not exist.",
      "Add the file, or remove its line from the project."}},
    {"unreadable-folder",
     {"A folder below a checked folder that cannot be read, so its files were not checked.",
      "Check the folder's permissions, or leave it out with --exclude."}},
    {"project-file",
     {"Something wrong in a .vbp or .vbg file that did not stop it loading.",
      "Correct the project line the message names."}},
    {"byte-order-mark",
     {"A component file that starts with a UTF-8 byte-order mark. VB6 reads files in the "
      "system's code page and takes the mark for part of the first line.",
      "Save the file without a byte-order mark, in the code page VB6 uses."}},
    {"max-nesting",
     {"A procedure whose blocks nest deeper than the limit set with --max-nesting or "
      "max-nesting in .arbolet.json.",
      "Move inner blocks into procedures of their own, or return early."}},
    {"max-procedure-lines",
     {"A procedure with more lines of code than the limit set with --max-procedure-lines or "
      "max-procedure-lines in .arbolet.json.",
      "Split the procedure into smaller ones."}},
    {"max-complexity",
     {"A procedure whose cyclomatic complexity is above the limit set with --max-complexity or "
      "max-complexity in .arbolet.json.",
      "Split the procedure, or replace chains of conditions with tables or Select Case."}},
};

}  // namespace

RuleHelp HelpOf(std::string_view ruleId) {
    const auto it = std::find_if(std::begin(kHelp), std::end(kHelp),
                                 [&](const Entry& entry) { return entry.id == ruleId; });
    if (it != std::end(kHelp)) return it->help;
    return {"A finding of arbolet check.", "See the README's rule table."};
}

}  // namespace arbolet::check
