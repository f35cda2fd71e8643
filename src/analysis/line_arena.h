// LineArena: owner of every clsLine made during one code-tree build.
#pragma once

#include <deque>

#include "analysis/cls_line.h"

namespace arbolet::analysis {

// Owns every clsLine of one build, so that the web of parent and child references is dropped
// as a whole.
class LineArena {
  public:
    LineArena() = default;
    LineArena(const LineArena&) = delete;
    LineArena& operator=(const LineArena&) = delete;
    LineArena(LineArena&&) = default;
    LineArena& operator=(LineArena&&) = default;

    clsLine* Make() { return &lines_.emplace_back(); }
    std::size_t size() const { return lines_.size(); }

  private:
    std::deque<clsLine> lines_;
};

}  // namespace arbolet::analysis
