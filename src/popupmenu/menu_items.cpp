// The item list of a popup menu: one-based records in one array, sub-menus by parent index.
#include "popupmenu/menu_items.h"

#include <algorithm>

#include "base/vb_error.h"
#include "popupmenu/shortcut_text.h"

namespace arbolet::popupmenu {
namespace {

const std::string kSource = "cPopupMenu";

[[noreturn]] void RaiseInvalidCall() {
    throw VbError(5, kSource, "Invalid procedure call or argument");
}

}  // namespace

void ApplyCaption(MenuItem& item, const std::string& sCaption) {
    item.Caption = sCaption;
    item.Separator = sCaption == "-";
    std::string text = sCaption;
    if (!item.Separator && text.size() > 1 && text.front() == '-') {
        item.Header = true;
        text.erase(0, 1);
    }
    const std::size_t tab = text.find('\t');
    if (tab != std::string::npos) {
        item.ShortcutText = ShortcutDisplayText(std::string_view(text).substr(tab + 1));
        text.erase(tab);
    } else {
        item.ShortcutText.clear();
    }
    item.DisplayCaption = item.Separator ? std::string() : text;
}

MenuItem& MenuItems::At(std::int32_t lIndex) {
    if (lIndex < 1 || lIndex > Count()) vberr::RaiseSubscriptOutOfRange(kSource);
    return items_[static_cast<std::size_t>(lIndex - 1)];
}

const MenuItem& MenuItems::At(std::int32_t lIndex) const {
    if (lIndex < 1 || lIndex > Count()) vberr::RaiseSubscriptOutOfRange(kSource);
    return items_[static_cast<std::size_t>(lIndex - 1)];
}

std::int32_t MenuItems::Resolve(const ItemRef& vKey) const {
    const std::int32_t index = std::holds_alternative<std::int32_t>(vKey)
                                   ? std::get<std::int32_t>(vKey)
                                   : IndexForKey(std::get<std::string>(vKey));
    At(index);  // raises for an index, or a key, that names no item
    return index;
}

std::uint16_t MenuItems::NextId() {
    // IDs travel in the low word of WM_COMMAND, so they stay within 1 to 65535; after a wrap the
    // next free one is taken.
    for (;;) {
        lastId_ = static_cast<std::uint16_t>(lastId_ == 0xFFFF ? 1 : lastId_ + 1);
        if (ItemForID(lastId_) == 0) return lastId_;
        if (Count() >= 0xFFFF) RaiseInvalidCall();
    }
}

void MenuItems::InsertAt(std::int32_t lPosition, MenuItem item) {
    for (MenuItem& other : items_) {
        if (other.ParentIndex >= lPosition) ++other.ParentIndex;
    }
    items_.insert(items_.begin() + (lPosition - 1), std::move(item));
    StructureChanged();
}

std::int32_t MenuItems::AddItem(const std::string& sCaption, const std::string& sHelptext,
                                std::int32_t lItemData, std::int32_t lParentIndex,
                                std::int32_t lIconIndex, bool bChecked, bool bEnabled,
                                const std::string& sKey) {
    if (lParentIndex != 0) At(lParentIndex).HasSubMenu = true;
    MenuItem item;
    ApplyCaption(item, sCaption);
    item.HelpText = sHelptext;
    item.ItemData = lItemData;
    item.ParentIndex = lParentIndex;
    item.IconIndex = lIconIndex;
    item.Checked = bChecked;
    item.Enabled = bEnabled;
    item.Key = sKey;
    item.Id = NextId();
    items_.push_back(std::move(item));
    StructureChanged();
    return Count();
}

std::int32_t MenuItems::InsertItem(const std::string& sCaption, const ItemRef& vKeyBefore,
                                   const std::string& sHelptext, std::int32_t lItemData,
                                   std::int32_t lIconIndex, bool bChecked, bool bEnabled,
                                   const std::string& sKey) {
    const std::int32_t before = Resolve(vKeyBefore);
    MenuItem item;
    ApplyCaption(item, sCaption);
    item.HelpText = sHelptext;
    item.ItemData = lItemData;
    item.ParentIndex = At(before).ParentIndex;
    item.IconIndex = lIconIndex;
    item.Checked = bChecked;
    item.Enabled = bEnabled;
    item.Key = sKey;
    item.Id = NextId();
    InsertAt(before, std::move(item));
    return before;
}

void MenuItems::ReplaceItem(const ItemRef& vKey, const std::optional<std::string>& sCaption,
                            const std::optional<std::string>& sHelptext,
                            std::optional<std::int32_t> lItemData,
                            std::optional<std::int32_t> lIconIndex, std::optional<bool> bChecked,
                            std::optional<bool> bEnabled, const std::optional<std::string>& sKey) {
    MenuItem& item = At(Resolve(vKey));
    if (sCaption) {
        item.Header = false;
        ApplyCaption(item, *sCaption);
    }
    if (sHelptext) item.HelpText = *sHelptext;
    if (lItemData) item.ItemData = *lItemData;
    if (lIconIndex) item.IconIndex = *lIconIndex;
    if (bChecked) item.Checked = *bChecked;
    if (bEnabled) item.Enabled = *bEnabled;
    if (sKey) item.Key = *sKey;
}

bool MenuItems::IsInSubtree(std::int32_t lIndex, std::int32_t lRoot) const {
    // Parent links never form a cycle (the setter refuses that), so the walk ends at the top;
    // the step limit only guards against a broken list.
    for (std::int32_t step = 0; lIndex != 0 && step <= Count(); ++step) {
        if (lIndex == lRoot) return true;
        lIndex = items_[static_cast<std::size_t>(lIndex - 1)].ParentIndex;
    }
    return false;
}

void MenuItems::Reorder(const std::vector<std::int32_t>& newOrder) {
    std::vector<std::int32_t> newIndexOf(items_.size() + 1, 0);
    for (std::size_t position = 0; position < newOrder.size(); ++position) {
        newIndexOf[static_cast<std::size_t>(newOrder[position])] =
            static_cast<std::int32_t>(position + 1);
    }
    std::vector<MenuItem> reordered;
    reordered.reserve(newOrder.size());
    for (std::int32_t old : newOrder) {
        MenuItem item = std::move(items_[static_cast<std::size_t>(old - 1)]);
        item.ParentIndex = newIndexOf[static_cast<std::size_t>(item.ParentIndex)];
        reordered.push_back(std::move(item));
    }
    items_ = std::move(reordered);
    StructureChanged();
}

void MenuItems::RemoveItem(const ItemRef& vKey) {
    const std::int32_t index = Resolve(vKey);
    std::vector<std::int32_t> kept;
    for (std::int32_t i = 1; i <= Count(); ++i) {
        if (!IsInSubtree(i, index)) kept.push_back(i);
    }
    Reorder(kept);
}

void MenuItems::ClearSubMenusOfItem(const ItemRef& vKey) {
    const std::int32_t index = Resolve(vKey);
    std::vector<std::int32_t> kept;
    for (std::int32_t i = 1; i <= Count(); ++i) {
        if (i == index || !IsInSubtree(i, index)) kept.push_back(i);
    }
    Reorder(kept);
}

void MenuItems::Clear() {
    items_.clear();
    lastId_ = 0;
    StructureChanged();
}

std::int32_t MenuItems::IndexForKey(const std::string& sKey) const noexcept {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].Key == sKey) return static_cast<std::int32_t>(i + 1);
    }
    return 0;
}

std::int32_t MenuItems::ItemForID(std::uint32_t wID) const noexcept {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (wID != 0 && items_[i].Id == wID) return static_cast<std::int32_t>(i + 1);
    }
    return 0;
}

void MenuItems::ItemParentIndex(std::int32_t lIndex, std::int32_t lParentIndex) {
    At(lIndex);
    if (lParentIndex != 0) {
        At(lParentIndex);
        if (IsInSubtree(lParentIndex, lIndex)) RaiseInvalidCall();  // would make a cycle
        items_[static_cast<std::size_t>(lParentIndex - 1)].HasSubMenu = true;
    }
    // The moved item and its sub-items go to the end, as if added again, so that every parent
    // keeps standing before its sub-items.
    std::vector<std::int32_t> order;
    std::vector<std::int32_t> moved;
    for (std::int32_t i = 1; i <= Count(); ++i) {
        (IsInSubtree(i, lIndex) ? moved : order).push_back(i);
    }
    order.insert(order.end(), moved.begin(), moved.end());
    items_[static_cast<std::size_t>(lIndex - 1)].ParentIndex = lParentIndex;
    Reorder(order);
}

void MenuItems::Caption(std::int32_t lIndex, const std::string& sCaption) {
    MenuItem& item = At(lIndex);
    item.Header = false;
    ApplyCaption(item, sCaption);
}

void MenuItems::Header(std::int32_t lIndex, bool bHeader) {
    At(lIndex).Header = bHeader;
}

void MenuItems::GroupToggle(std::int32_t lIndex) {
    const std::int32_t parent = At(lIndex).ParentIndex;
    const std::vector<std::int32_t> siblings = ChildrenOf(parent);
    const auto self = std::find(siblings.begin(), siblings.end(), lIndex);
    auto first = self;
    while (first != siblings.begin() && !At(*(first - 1)).Separator)
        --first;
    auto last = self;
    while (last != siblings.end() && !At(*last).Separator)
        ++last;
    for (auto it = first; it != last; ++it)
        At(*it).Checked = (*it == lIndex);
}

std::vector<std::int32_t> MenuItems::ChildrenOf(std::int32_t lParentIndex) const {
    std::vector<std::int32_t> children;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].ParentIndex == lParentIndex)
            children.push_back(static_cast<std::int32_t>(i + 1));
    }
    return children;
}

}  // namespace arbolet::popupmenu
