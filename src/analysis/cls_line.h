// clsLine: one node of a component's code tree, with its texts, colour, sort key and children.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "analysis/line_identifier.h"
#include "analysis/shared_text.h"
#include "analysis/variant.h"

namespace arbolet::analysis {

class clsLine : public VbObject {
  public:
    static constexpr std::int32_t kChildGrowthStep = 50;

    clsLine();

    std::string_view TypeName() const override { return "clsLine"; }

    LineIdentifier LineID;
    std::int32_t LineColour = 0;
    SharedText LineContent;
    SharedText LCaseContent;
    SharedText SortBy;
    clsLine* Parent = nullptr;
    std::int32_t ChildCount = 0;

    // Index of the code line that this node reports on (the statement's first line, or for an
    // error node the offending or opening line); -1 when it has none. Not shown in the tree:
    // it lets diagnostics point at a file line.
    std::int32_t SourceIndex = -1;

    // A copy of the whole children array, empty slots included: child capacity + 1 entries.
    std::vector<clsLine*> Children() const;
    // The child at an index from 0 to the child capacity; raises "Subscript out of range" beyond.
    clsLine* Child(std::int32_t index) const;
    void SetChild(std::int32_t index, clsLine* line);
    // Appends a child and sets its Parent.
    void Add(clsLine* oLine);
    // Empties the used slots and resets ChildCount; the array keeps its size and the removed
    // children keep their Parent.
    void ClearChildren();

    // The highest index of the children array.
    std::int32_t ChildCapacity() const { return childCapacity_; }

  private:
    // Holds the used slots and at least up to ChildCount; slots up to childCapacity_ that are not
    // stored here read as empty, so that a fresh line needs no allocation.
    std::vector<clsLine*> children_;
    std::int32_t childCapacity_ = kChildGrowthStep;
};

}  // namespace arbolet::analysis
