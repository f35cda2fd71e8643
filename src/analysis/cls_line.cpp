// clsLine: children grow by 50, one slot before the array is full.
#include "analysis/cls_line.h"

#include <limits>

#include "base/vb_error.h"

namespace arbolet::analysis {

clsLine::clsLine() = default;

std::vector<clsLine*> clsLine::Children() const {
    std::vector<clsLine*> copy(static_cast<std::size_t>(childCapacity_) + 1, nullptr);
    std::copy(children_.begin(), children_.end(), copy.begin());
    return copy;
}

clsLine* clsLine::Child(std::int32_t index) const {
    if (index < 0 || index > childCapacity_) vberr::RaiseSubscriptOutOfRange("clsLine");
    const auto slot = static_cast<std::size_t>(index);
    return slot < children_.size() ? children_[slot] : nullptr;
}

void clsLine::SetChild(std::int32_t index, clsLine* line) {
    if (index < 0 || index > childCapacity_) vberr::RaiseSubscriptOutOfRange("clsLine");
    const auto slot = static_cast<std::size_t>(index);
    if (slot >= children_.size()) children_.resize(slot + 1, nullptr);
    children_[slot] = line;
}

void clsLine::Add(clsLine* oLine) {
    if (ChildCount >= childCapacity_ - 1) {
        if (childCapacity_ > std::numeric_limits<std::int32_t>::max() - kChildGrowthStep) {
            vberr::RaiseOverflow("clsLine");
        }
        childCapacity_ += kChildGrowthStep;
    }
    oLine->Parent = this;
    SetChild(ChildCount, oLine);
    ++ChildCount;
}

void clsLine::ClearChildren() {
    const auto used = std::min(children_.size(), static_cast<std::size_t>(std::max(ChildCount, 0)));
    std::fill(children_.begin(), children_.begin() + static_cast<std::ptrdiff_t>(used), nullptr);
    ChildCount = 0;
}

}  // namespace arbolet::analysis
