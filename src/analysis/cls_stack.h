// clsStack: the last-in, first-out stack of variant items used for the line and block stacks.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "analysis/variant.h"

namespace arbolet::analysis {

class clsStack {
  public:
    static constexpr std::int32_t kInitialCapacity = 300;
    static constexpr std::int32_t kGrowthStep = 150;

    clsStack();

    std::int32_t Count() const { return count_; }
    // Removes and returns the top item; Empty when the stack is empty. The slot keeps its item.
    Variant Pop();
    void Push(const Variant& data);
    // The top item without removing it; Empty when the stack is empty.
    Variant Top() const;
    bool StackContains(const Variant& item) const;
    // Re-dimensions the storage to indices 0..lSize (at least 1) and drops the contents.
    // Count is left as it was: the call is meant for an empty stack.
    void SetStackSize(std::int32_t lSize);

    // The highest valid slot index.
    std::int32_t Capacity() const { return capacity_; }
    // The item in a slot, including slots above Count (0..Capacity); for inspection.
    const Variant& Slot(std::int32_t index) const;
    // The top item's text without copying it; empty when the top is not a text.
    std::string_view TopText() const;

  private:
    std::vector<Variant> items_;
    std::int32_t count_ = 0;
    std::int32_t capacity_ = kInitialCapacity;
};

}  // namespace arbolet::analysis
