// A VB-style array: elements addressed from a lower bound that need not be 0, and an "erased"
// state with no elements at all, whose bounds cannot be asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/vb_error.h"
#include "windows/base/module_name.h"

namespace arbolet::windows {

template <typename T>
class VbArray {
  public:
    VbArray() = default;
    VbArray(std::int32_t lowerBound, std::vector<T> elements)
        : lowerBound_(lowerBound), elements_(std::move(elements)) {}

    bool IsEmpty() const noexcept { return elements_.empty(); }
    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(elements_.size()); }

    // Like VB's LBound and UBound, both raise "Subscript out of range" on an erased array.
    std::int32_t LBound() const {
        RequireElements();
        return lowerBound_;
    }
    std::int32_t UBound() const {
        RequireElements();
        return lowerBound_ + Count() - 1;
    }
    bool HasIndex(std::int32_t index) const noexcept {
        return !IsEmpty() && index >= lowerBound_ && index - lowerBound_ < Count();
    }

    const T& operator()(std::int32_t index) const { return elements_[Offset(index)]; }
    T& operator()(std::int32_t index) { return elements_[Offset(index)]; }

    // ReDim Preserve to one more element; an erased array starts at lower bound 1.
    void Append(T element) {
        if (elements_.empty()) lowerBound_ = 1;
        elements_.push_back(std::move(element));
    }
    void Erase() noexcept {
        elements_.clear();
        lowerBound_ = 0;
    }

    const std::vector<T>& Elements() const noexcept { return elements_; }

    friend bool operator==(const VbArray&, const VbArray&) = default;

  private:
    void RequireElements() const {
        if (IsEmpty()) vberr::RaiseSubscriptOutOfRange(RunningModuleName());
    }
    std::size_t Offset(std::int32_t index) const {
        if (!HasIndex(index)) vberr::RaiseSubscriptOutOfRange(RunningModuleName());
        return static_cast<std::size_t>(index - lowerBound_);
    }

    std::int32_t lowerBound_ = 0;
    std::vector<T> elements_;
};

using ByteArray = VbArray<std::uint8_t>;

}  // namespace arbolet::windows
