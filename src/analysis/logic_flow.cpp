// The logic-flow builder and block validator (see logic_flow.h).
#include "analysis/logic_flow.h"

#include <algorithm>
#include <array>

#include "analysis/colours.h"
#include "base/utf8.h"

namespace arbolet::analysis {
namespace {

constexpr std::int32_t kBlockStackSize = 20;

// The n-th word of the text split at single blanks (adjacent blanks give empty words).
std::string_view WordAt(std::string_view text, std::size_t n) {
    std::size_t start = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const auto blank = text.find(' ', start);
        if (blank == std::string_view::npos) return {};
        start = blank + 1;
    }
    const auto end = text.find(' ', start);
    return text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
}

std::string_view SafeSubstr(std::string_view text, std::size_t from) {
    return from >= text.size() ? std::string_view{} : text.substr(from);
}

std::size_t LeadingBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? text.size() : first;
}

// Whether a "Then" ends the line, making an If (or #If) a block rather than a single-line If.
bool IsBlockIf(std::string_view key) {
    const auto then = key.rfind("then");
    if (then == std::string_view::npos) return false;
    return text::Trim(SafeSubstr(key, then + 4)).empty();
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

clsLine* AsLine(const Variant& item) {
    VbObject* object = item.Object();
    return object != nullptr && object->TypeName() == "clsLine" ? static_cast<clsLine*>(object)
                                                                : nullptr;
}

clsLine* ParentOf(clsLine* container) {
    return container ? container->Parent : nullptr;
}

std::string_view SortKeyOf(const clsLine* container) {
    return container ? container->SortBy.view() : std::string_view{};
}

// Whether `line` is `container` or one of its ancestors; adding it would close a cycle.
bool WouldCycle(const clsLine* line, const clsLine* container) {
    if (line == container) return true;
    if (line->Parent == nullptr && line->ChildCount == 0) return false;  // never placed yet
    for (const clsLine* c = container; c != nullptr; c = c->Parent) {
        if (c == line) return true;
    }
    return false;
}

// Drops the last child of a container, as when a hidden Enum or Type vanishes with its members.
void DropLastChild(clsLine* container) {
    if (container == nullptr || container->ChildCount <= 0) return;
    container->SetChild(container->ChildCount - 1, nullptr);
    --container->ChildCount;
}

}  // namespace

// The working texts of a line are views: the key text is its LCaseContent trimmed and the display
// text its LineContent, each standing for the text followed by one blank. Views keep the colon
// split linear on lines with thousands of colons.
struct LogicFlowBuilder::Step {
    clsLine* line = nullptr;
    std::string_view key;
    std::string_view display;
    std::string_view firstWord;
};

std::string_view FirstWord(std::string_view text) {
    const auto trimmed = text::Trim(text);
    if (trimmed.empty()) return {};
    const auto blank = trimmed.find(' ');
    if (blank == std::string_view::npos) return trimmed;
    const std::string_view second = WordAt(trimmed, 1);
    const bool secondIsAs =
        second.size() == 2 && (second[0] | 0x20) == 'a' && (second[1] | 0x20) == 's';
    if (secondIsAs) return {};
    return trimmed.substr(0, blank);
}

clsLine* MakeLine(LineArena& arena, std::string_view text, LineIdentifier identifier) {
    clsLine* line = arena.Make();
    line->LineContent = arena.Text(text);
    line->LCaseContent = arena.Text(text::ToLower(text));
    line->LineID = std::move(identifier);
    return line;
}

LogicFlowBuilder::LogicFlowBuilder(const DisplayOptions& options, LineArena& arena)
    : options_(options), arena_(arena) {
    blockStack_.SetStackSize(kBlockStackSize);
}

void LogicFlowBuilder::BuildFlow(clsStack& lineStack, clsLine*& container) {
    while (lineStack.Count() >= 1) {
        clsLine* line = AsLine(lineStack.Pop());
        if (line == nullptr) continue;
        Step step;
        step.line = line;
        step.key = text::Trim(line->LCaseContent.view());
        step.display = line->LineContent.view();
        ProcessLine(step, lineStack, container);
    }
    CloseOpenBlocks(container);
}

void LogicFlowBuilder::ProcessLine(Step& step, clsStack& lineStack, clsLine*& container) {
    SplitAtColon(step, lineStack);
    step.firstWord = FirstWord(step.key);
    const std::string_view w = step.firstWord;
    if (ProcessOpener(step, container) || ProcessCloser(step, container) ||
        ProcessBranch(step, container)) {
        return;
    }
    if (IsOneOf(w, {"dim", "static", "global"})) {
        ProcessDeclaration(step, container);
    } else if (IsOneOf(w, {"public", "private", "friend"})) {
        ProcessScoped(step, lineStack, container);
    } else {
        ProcessOther(step, container);
    }
}

// A colon outside strings, comments and named arguments separates statements: the rest of the
// line becomes a line of its own, processed next.
void LogicFlowBuilder::SplitAtColon(Step& step, clsStack& lineStack) {
    // The key text always ends in a blank, so a colon in it is never its last character.
    const auto colon = step.key.find(':');
    if (colon == std::string_view::npos) return;
    clsLine* line = step.line;
    clsLine* rest = arena_.Make();
    rest->LineColour = line->LineColour;
    rest->SortBy = line->SortBy;
    rest->SourceIndex = line->SourceIndex;
    // Stored texts may carry leading blanks that the key text lost to trimming.
    const std::size_t from = LeadingBlanks(line->LCaseContent.view()) + colon + 1;
    rest->LCaseContent = line->LCaseContent.Suffix(from);
    rest->LineContent = line->LineContent.Suffix(from);
    rest->LineID = line->LineID.Prefixed("@~");

    step.key = step.key.substr(0, colon);
    step.display = step.display.substr(0, step.display.find(':'));
    if (text::HasMoreCharsThan(rest->LineContent.view(), 1)) {
        lineStack.Push(Variant(static_cast<VbObject*>(rest)));
    }
}

bool LogicFlowBuilder::ProcessOpener(Step& step, clsLine*& container) {
    const std::string_view w = step.firstWord;
    clsLine* line = step.line;
    if (w == "for") {
        const bool each = WordAt(step.key, 1) == "each";
        OpenBlock("next " + std::string(WordAt(step.key, each ? 2 : 1)), line, container,
                  colour::kBlue);
    } else if (w == "do") {
        if (blockStack_.TopText() == "do") {  // closes a Loop that came first
            PopBlock();
            CloseBlock(line, container, colour::kLightGrey, options_.ShowSectionEnd);
        } else {
            OpenBlock("loop", line, container, colour::kBlue);
        }
    } else if (w == "while") {
        OpenBlock("wend", line, container, colour::kBlue);
    } else if (w == "if") {
        if (IsBlockIf(step.key)) {
            OpenBlock("end if", line, container, colour::kBlue);
        } else {
            Add(line, container, colour::kBlue);
        }
    } else if (w == "#if") {
        if (!IsBlockIf(step.key)) {
            Add(line, container, colour::kSlateBlue, options_.ShowCompiler);
        } else if (options_.ShowCompiler) {
            OpenBlock("#end if", line, container, colour::kSlateBlue);
        } else {
            PushBlock("#end if", line->SourceIndex);  // hidden conditional blocks are transparent
        }
    } else if (w == "with") {
        OpenBlock("end with", line, container, colour::kBlue);
    } else if (w == "select") {
        OpenBlock("end select", line, container, colour::kBlack);
    } else if (IsOneOf(w, {"sub", "function", "property"})) {
        CloseOpenBlocks(container);
        OpenBlock("end " + std::string(w), line, container, colour::kBlue);
    } else if (IsOneOf(w, {"enum", "type"})) {
        CloseOpenBlocks(container);
        OpenBlock("end " + std::string(w), line, container, colour::kDarkGrey);
    } else {
        return false;
    }
    return true;
}

bool LogicFlowBuilder::ProcessCloser(Step& step, clsLine*& container) {
    const std::string_view w = step.firstWord;
    clsLine* line = step.line;
    const std::string_view top = blockStack_.TopText();
    if (w == "end") {
        ProcessEnd(step, container);
    } else if (w == "loop") {
        if (top == "loop") {
            PopBlock();
            CloseBlock(line, container, colour::kLightGrey, options_.ShowSectionEnd);
        } else {
            // A Loop without Do opens a block that a following Do closes.
            PushBlock("do", line->SourceIndex);
            AddWithDefaultKey(line, container, colour::kBlue);
            container = line;
            Report("NO START DO", "L", *line, container);
        }
    } else if (w == "next") {
        ProcessNext(step, container);
    } else if (w == "wend") {
        if (top == "wend") {
            PopBlock();
            CloseBlock(line, container, colour::kLightGrey, options_.ShowSectionEnd, false);
        } else {
            Report("NO START WHILE", "WE", *line, container);
        }
    } else if (w == "#end") {
        if (top == "#end if") {
            PopBlock();
            if (options_.ShowCompiler) {
                CloseBlock(line, container, colour::kSlateBlue, options_.ShowSectionEnd);
            }
        } else {
            Report("NO START #IF", "#I", *line, container);
        }
    } else {
        return false;
    }
    return true;
}

// Case, Else and #Else close the previous branch and open the next as a sibling of the opener.
bool LogicFlowBuilder::ProcessBranch(Step& step, clsLine*& container) {
    const std::string_view w = step.firstWord;
    clsLine* line = step.line;
    const std::string_view top = blockStack_.TopText();
    if (w == "case" || w == "else" || w == "elseif") {
        const bool isCase = w == "case";
        if (top == (isCase ? "end select" : "end if")) {
            AddWithDefaultKey(line, ParentOf(container), colour::kBlue);
            container = line;
        } else if (isCase) {
            Report("NO START SELECT", "S", *line, container);
        } else {
            Report("NO START IF", "I", *line, container);
        }
    } else if (w == "#else" || w == "#elseif") {
        if (top != "#end if") {
            Report("NO START #IF", "#I", *line, container);
        } else if (options_.ShowCompiler) {
            line->SortBy = arena_.Text(SortKeyOf(container), "YZZZ");
            AddWithDefaultKey(line, ParentOf(container), colour::kSlateBlue);
            container = line;
        }
    } else {
        return false;
    }
    return true;
}

void LogicFlowBuilder::ProcessDeclaration(Step& step, clsLine* container) {
    if (blockStack_.StackContains(Variant("end enum")) ||
        blockStack_.StackContains(Variant("end type"))) {
        Add(step.line, container, colour::kRed);  // a variable declared inside a Type or Enum
    } else if (WordAt(step.key, 1) == "const") {
        Add(step.line, container, colour::kDarkGrey, options_.ShowConstants);
    } else {
        Add(step.line, container, colour::kNavy, options_.ShowVariables);
    }
}

// Public, Private and Friend are dropped and the line is processed again under the rest of its
// key text; a scoped variable becomes a Dim, and a scoped member of an Enum or Type a member.
void LogicFlowBuilder::ProcessScoped(Step& step, clsStack& lineStack, clsLine*& container) {
    clsLine* line = step.line;
    line->LCaseContent = arena_.Text(text::Trim(SafeSubstr(step.key, step.firstWord.size())), " ");
    const std::string_view rest = line->LCaseContent.view();
    const std::string_view w = rest.substr(0, rest.find(' '));
    const bool scopedVariable =
        !w.empty() && !IsOneOf(w, {"enum", "type", "sub", "function", "property", "event",
                                   "declare", "const", "static", "withevents"});
    if (scopedVariable) {
        const std::string_view top = blockStack_.TopText();
        if (top == "end enum" || top == "end type") {
            const bool show = top == "end enum" ? options_.ShowEnums : options_.ShowTypes;
            AddWithDefaultKey(line, ParentOf(container), colour::kDarkGrey, show);
            container = line;
        } else {
            line->LCaseContent = arena_.Text("dim ", line->LCaseContent.view());
        }
    }
    lineStack.Push(Variant(static_cast<VbObject*>(line)));
}

void LogicFlowBuilder::ProcessEnd(Step& step, clsLine*& container) {
    clsLine* line = step.line;
    const std::string w(WordAt(step.key, 1));
    const std::string top(blockStack_.TopText());
    if (top == "end enum" || top == "end type") {
        const std::string kind = top.substr(4);
        const bool show = kind == "enum" ? options_.ShowEnums : options_.ShowTypes;
        PopBlock();
        line->SortBy = arena_.Text(SortKeyOf(container), "ZZZ");
        container = ParentOf(container);
        if (w != kind) {
            Report("NO START " + w, "I", *line, container);
        } else if (!show) {
            DropLastChild(container);  // a hidden Enum or Type vanishes with its members
        } else {
            Add(line, container, colour::kLightGrey, options_.ShowSectionEnd);
        }
    } else if (top == "end " + w) {
        PopBlock();
        CloseBlock(line, container, colour::kLightGrey, options_.ShowSectionEnd);
    } else if (w.empty()) {
        Add(line, container, colour::kBlack);  // a bare End statement
    } else {
        Report("NO START " + w, "I", *line, container);
    }
}

// Next closes one loop per variable named (or the innermost loop when none is named); every
// variable that does not match the innermost open loop is a nesting error.
void LogicFlowBuilder::ProcessNext(Step& step, clsLine*& container) {
    clsLine* line = step.line;
    if (!blockStack_.TopText().starts_with("next ")) {
        Report("NO START FOR", "N", *line, container);
        return;
    }
    std::string variables(text::Trim(SafeSubstr(step.key, 4)));
    if (variables.empty()) variables = std::string(SafeSubstr(blockStack_.TopText(), 5));
    std::size_t position = 0;
    std::size_t start = 0;
    while (true) {
        const auto comma = variables.find(',', start);
        const auto variable = text::Trim(std::string_view(variables).substr(
            start, comma == std::string::npos ? std::string::npos : comma - start));
        if (blockStack_.TopText() == "next " + std::string(variable)) {
            PopBlock();
        } else {
            Report("ERROR NEXT STATEMENT NESTING", "_", *line, container, position);
        }
        if (comma == std::string::npos) break;
        start = comma + 1;
        ++position;
    }
    container = ParentOf(container);
    Add(line, container, colour::kLightGrey, options_.ShowSectionEnd);
}

void LogicFlowBuilder::ProcessOther(Step& step, clsLine* container) {
    const std::string_view w = step.firstWord;
    clsLine* line = step.line;
    if (w == "const") {
        Add(line, container, colour::kDarkGrey, options_.ShowConstants);
    } else if (w == "declare" || w == "option") {
        Add(line, container, colour::kBlack);
    } else if (w == "implements") {
        Add(line, container, colour::kSlateBlue);
    } else if (w == "event") {
        Add(line, container, colour::kDarkGrey);
    } else if (step.display.starts_with('#')) {
        if (!options_.ShowCompiler) return;
        // Other directives are shown as written, with their whole text as the key.
        clsLine* directive = MakeLine(arena_, arena_.Text(step.display, " "), line->LineID);
        directive->SourceIndex = line->SourceIndex;
        Add(directive, container, colour::kSlateBlue);
    } else {
        Add(line, container, colour::kBlack);
    }
}

void LogicFlowBuilder::CloseOpenBlocks(clsLine*& container) {
    while (blockStack_.Count() > 0) {
        if (ParentOf(container) != nullptr) container = container->Parent;
        if (blockStack_.TopText().starts_with('#')) return;  // open #If blocks are never reported
        std::int32_t opener = -1;
        const Variant entry = PopBlock(&opener);  // the closing keyword the block waits for
        clsLine* error =
            MakeLine(arena_, "ERROR - NO " + std::string(entry.Text()),
                     container ? container->LineID.Prefixed("ERROR~") : LineIdentifier("ERROR~"));
        error->LineColour = colour::kRed;
        error->SourceIndex = opener;
        Attach(container, error);
    }
}

void LogicFlowBuilder::OpenBlock(std::string keyword, clsLine* line, clsLine*& container,
                                 std::int32_t colour, bool show) {
    PushBlock(std::move(keyword), line->SourceIndex);
    AddWithDefaultKey(line, container, colour, show);
    container = line;
}

// The closing line sorts right after its opener, then the container moves out of the block.
void LogicFlowBuilder::CloseBlock(clsLine* line, clsLine*& container, std::int32_t colour,
                                  bool show, bool closingKey) {
    if (closingKey) line->SortBy = arena_.Text(SortKeyOf(container), "ZZZ");
    container = ParentOf(container);
    Add(line, container, colour, show);
}

void LogicFlowBuilder::AddWithDefaultKey(clsLine* line, clsLine* container, std::int32_t colour,
                                         bool show) {
    if (line->SortBy.empty()) line->SortBy = line->LCaseContent;
    Add(line, container, colour, show);
}

void LogicFlowBuilder::Add(clsLine* line, clsLine* container, std::int32_t colour, bool show) {
    line->LineColour = colour;
    if (show) Attach(container, line);
}

// Invalid code can ask for a line to be added under itself; such an addition is skipped.
void LogicFlowBuilder::Attach(clsLine* container, clsLine* line) {
    if (container == nullptr || WouldCycle(line, container)) return;
    container->Add(line);
}

void LogicFlowBuilder::Report(std::string_view text, std::string_view prefix,
                              const clsLine& offending, clsLine* container, std::size_t times) {
    clsLine* error = MakeLine(arena_, text, offending.LineID.Prefixed(prefix, times));
    error->LineColour = colour::kRed;
    error->SourceIndex = offending.SourceIndex;
    Attach(container, error);
}

void LogicFlowBuilder::PushBlock(std::string keyword, std::int32_t openerSource) {
    blockStack_.Push(Variant(std::move(keyword)));
    openers_.push_back(openerSource);
}

Variant LogicFlowBuilder::PopBlock(std::int32_t* openerSource) {
    if (!openers_.empty()) {
        if (openerSource) *openerSource = openers_.back();
        openers_.pop_back();
    }
    return blockStack_.Pop();
}

}  // namespace arbolet::analysis
