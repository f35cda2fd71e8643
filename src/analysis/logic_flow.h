// The logic-flow builder and block validator: prepared lines in, a nested clsLine tree out.
//
// Every block statement becomes a node holding the lines inside the block. A stack of expected
// closing keywords validates the nesting; each mismatch becomes a red error node and the build
// goes on, so the builder never fails.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/cls_stack.h"
#include "analysis/display_options.h"
#include "analysis/line_arena.h"

namespace arbolet::analysis {

// The first blank-separated word of the trimmed text; empty when there is none or when the second
// word is "as" (a member declaration such as `x As Long`).
std::string_view FirstWord(std::string_view text);

// A new line with the text as its content, the text in lower case as its key, and the identifier.
clsLine* MakeLine(LineArena& arena, std::string_view text, LineIdentifier identifier);

class LogicFlowBuilder {
  public:
    LogicFlowBuilder(const DisplayOptions& options, LineArena& arena);

    // Consumes the whole line stack, adding lines under `container` and moving it into and out of
    // blocks; closes the blocks still open at the end.
    void BuildFlow(clsStack& lineStack, clsLine*& container);

    // Reports every open block (up to the innermost open conditional-compilation block) as an
    // error node, climbing one level per block.
    void CloseOpenBlocks(clsLine*& container);

  private:
    struct Step;  // the line being processed, with its working texts

    void ProcessLine(Step& step, clsStack& lineStack, clsLine*& container);
    void SplitAtColon(Step& step, clsStack& lineStack);
    bool ProcessOpener(Step& step, clsLine*& container);
    bool ProcessCloser(Step& step, clsLine*& container);
    bool ProcessBranch(Step& step, clsLine*& container);
    void ProcessDeclaration(Step& step, clsLine* container);
    void ProcessScoped(Step& step, clsStack& lineStack, clsLine*& container);
    void ProcessEnd(Step& step, clsLine*& container);
    void ProcessNext(Step& step, clsLine*& container);
    void ProcessOther(Step& step, clsLine* container);

    void OpenBlock(std::string keyword, clsLine* line, clsLine*& container, std::int32_t colour,
                   bool show = true);
    void CloseBlock(clsLine* line, clsLine*& container, std::int32_t colour, bool show,
                    bool closingKey = true);
    void AddWithDefaultKey(clsLine* line, clsLine* container, std::int32_t colour,
                           bool show = true);
    void Add(clsLine* line, clsLine* container, std::int32_t colour, bool show = true);
    void Attach(clsLine* container, clsLine* line);
    // Adds a red error node whose identifier is the offending line's with `prefix` in front,
    // `times` times.
    void Report(std::string_view text, std::string_view prefix, const clsLine& offending,
                clsLine* container, std::size_t times = 1);

    void PushBlock(std::string keyword, std::int32_t openerSource);
    Variant PopBlock(std::int32_t* openerSource = nullptr);

    DisplayOptions options_;
    LineArena& arena_;
    clsStack blockStack_;
    // The source line of each block stack entry's opener, for diagnostics.
    std::vector<std::int32_t> openers_;
};

}  // namespace arbolet::analysis
