// LineArena: owner of every clsLine made during one code-tree build.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "analysis/cls_line.h"

namespace arbolet::analysis {

// Lines are made in chunks, so that a module of 100,000 lines costs a few hundred allocations,
// and the web of parent and child references is dropped as a whole. Addresses never move.
class LineArena {
  public:
    LineArena() = default;
    LineArena(const LineArena&) = delete;
    LineArena& operator=(const LineArena&) = delete;
    LineArena(LineArena&&) = default;
    LineArena& operator=(LineArena&&) = default;

    clsLine* Make() {
        if (used_ == kChunkSize || chunks_.empty()) {
            chunks_.push_back(std::make_unique<clsLine[]>(kChunkSize));
            used_ = 0;
        }
        return &chunks_.back()[used_++];
    }

    // Keeps a text buffer alive as long as the arena; lines borrow slices of it.
    std::string& Keep(std::string text) {
        return *buffers_.emplace_back(std::make_unique<std::string>(std::move(text)));
    }

    std::size_t size() const {
        return chunks_.empty() ? 0 : (chunks_.size() - 1) * kChunkSize + used_;
    }

  private:
    static constexpr std::size_t kChunkSize = 256;
    std::vector<std::unique_ptr<clsLine[]>> chunks_;
    std::vector<std::unique_ptr<std::string>> buffers_;
    std::size_t used_ = 0;
};

}  // namespace arbolet::analysis
