// clsStack: slots grow in steps of 150 and are never cleared on Pop.
#include "analysis/cls_stack.h"

#include <limits>

#include "base/vb_error.h"

namespace arbolet::analysis {

namespace {
const Variant kEmpty;
}

clsStack::clsStack() : items_(kInitialCapacity + 1) {}

void clsStack::Push(const Variant& data) {
    if (capacity_ < count_) {
        if (capacity_ > std::numeric_limits<std::int32_t>::max() - kGrowthStep) {
            vberr::RaiseOverflow("clsStack");
        }
        capacity_ += kGrowthStep;
        // std::vector grows geometrically underneath, so the 150-slot steps stay amortised O(1).
        items_.resize(static_cast<std::size_t>(capacity_) + 1);
    }
    items_[static_cast<std::size_t>(count_)] = data;
    ++count_;
}

Variant clsStack::Pop() {
    if (count_ <= 0) return Variant{};
    --count_;
    return items_[static_cast<std::size_t>(count_)];
}

Variant clsStack::Top() const {
    if (count_ <= 0) return Variant{};
    return items_[static_cast<std::size_t>(count_ - 1)];
}

std::string_view clsStack::TopText() const {
    if (count_ <= 0) return {};
    return items_[static_cast<std::size_t>(count_ - 1)].Text();
}

bool clsStack::StackContains(const Variant& item) const {
    for (std::int32_t i = count_ - 1; i >= 0; --i) {
        const Variant& slot = items_[static_cast<std::size_t>(i)];
        // Objects of another class are skipped, never compared.
        if (slot.IsObject() && item.IsObject() && slot.Object() && item.Object() &&
            slot.Object()->TypeName() != item.Object()->TypeName()) {
            continue;
        }
        if (slot == item) return true;
    }
    return false;
}

void clsStack::SetStackSize(std::int32_t lSize) {
    if (lSize < 1) lSize = 1;
    capacity_ = lSize;
    items_.assign(static_cast<std::size_t>(lSize) + 1, Variant{});
}

const Variant& clsStack::Slot(std::int32_t index) const {
    if (index < 0 || index > capacity_) return kEmpty;
    return items_[static_cast<std::size_t>(index)];
}

}  // namespace arbolet::analysis
