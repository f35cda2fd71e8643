// LineArena: owner of every clsLine made during one code-tree build.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
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

    // Copies texts into pooled blocks that live as long as the arena, so that the texts a build
    // puts together (closing keys, error texts) cost no allocation of their own.
    SharedText Text(std::string_view first, std::string_view second = {}) {
        const std::size_t size = first.size() + second.size();
        char* data = Reserve(size);
        std::copy(first.begin(), first.end(), data);
        std::copy(second.begin(), second.end(), data + first.size());
        return SharedText::Borrowed(data, size);
    }

    // Keeps a text buffer alive as long as the arena; lines borrow slices of it.
    std::string& Keep(std::string text) {
        return *buffers_.emplace_back(std::make_unique<std::string>(std::move(text)));
    }

    std::size_t size() const {
        return chunks_.empty() ? 0 : (chunks_.size() - 1) * kChunkSize + used_;
    }

  private:
    char* Reserve(std::size_t size) {
        if (size > kTextBlockSize / 4) {
            return textBlocks_.emplace_back(std::make_unique<char[]>(size + 1)).get();
        }
        if (textUsed_ + size > kTextBlockSize || textBlocks_.empty()) {
            // A fresh block goes in front of any oversized one, which stays where it is.
            textBlocks_.push_back(std::make_unique<char[]>(kTextBlockSize));
            textBlock_ = textBlocks_.back().get();
            textUsed_ = 0;
        }
        char* data = textBlock_ + textUsed_;
        textUsed_ += size;
        return data;
    }

    static constexpr std::size_t kChunkSize = 256;
    static constexpr std::size_t kTextBlockSize = 64 * 1024;
    std::vector<std::unique_ptr<char[]>> textBlocks_;
    char* textBlock_ = nullptr;
    std::size_t textUsed_ = 0;
    std::vector<std::unique_ptr<clsLine[]>> chunks_;
    std::vector<std::unique_ptr<std::string>> buffers_;
    std::size_t used_ = 0;
};

}  // namespace arbolet::analysis
