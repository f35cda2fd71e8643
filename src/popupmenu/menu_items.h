// The item list of a popup menu: captions, keys, item data, states and the parent links that make
// sub-menus, kept apart from any system menu so that menus can be built and inspected anywhere.
//
// Indexes are one-based, as the callers' code counts them; an index outside 1 to Count raises
// the subscript-out-of-range error. Items name their parent by index (0 for the top-level menu),
// and the items of one menu stand in index order.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace arbolet::popupmenu {

// An item given either by its index or by its key (the first item with that key).
using ItemRef = std::variant<std::int32_t, std::string>;

struct MenuItem {
    std::string HelpText;
    std::string Caption;            // as the caller passed it
    std::string DisplayCaption;     // the text shown, without header marker and shortcut
    std::string ShortcutText;       // the shortcut shown at the right, e.g. "Ctrl+Del"
    std::uintptr_t MenuHandle = 0;  // the system menu the item stands in, once one is built
    std::int32_t IconIndex = -1;
    std::int32_t ItemData = 0;
    bool Checked = false;
    bool Enabled = true;
    bool RadioCheck = false;
    bool Header = false;
    bool OwnerDraw = false;
    bool Default = false;
    bool Separator = false;
    bool HasSubMenu = false;  // stays set when the sub-items are cleared
    std::string Key;
    std::int32_t ParentIndex = 0;
    std::uint16_t Id = 0;  // unique among the current items, never 0
};

class MenuItems {
  public:
    virtual ~MenuItems() = default;

    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(items_.size()); }

    // Appends an item, to the sub-menu of lParentIndex when that is not 0; returns its index.
    std::int32_t AddItem(const std::string& sCaption, const std::string& sHelptext = {},
                         std::int32_t lItemData = 0, std::int32_t lParentIndex = 0,
                         std::int32_t lIconIndex = -1, bool bChecked = false, bool bEnabled = true,
                         const std::string& sKey = {});
    // Puts an item before an existing one, in the same menu; returns the new item's index.
    std::int32_t InsertItem(const std::string& sCaption, const ItemRef& vKeyBefore,
                            const std::string& sHelptext = {}, std::int32_t lItemData = 0,
                            std::int32_t lIconIndex = -1, bool bChecked = false,
                            bool bEnabled = true, const std::string& sKey = {});
    // Changes the fields that are given and keeps the others.
    void ReplaceItem(const ItemRef& vKey, const std::optional<std::string>& sCaption,
                     const std::optional<std::string>& sHelptext = {},
                     std::optional<std::int32_t> lItemData = {},
                     std::optional<std::int32_t> lIconIndex = {}, std::optional<bool> bChecked = {},
                     std::optional<bool> bEnabled = {},
                     const std::optional<std::string>& sKey = {});
    // Removes the item with all its sub-items, at any depth.
    void RemoveItem(const ItemRef& vKey);
    // Removes the sub-items of an item; the item keeps an (empty) sub-menu.
    void ClearSubMenusOfItem(const ItemRef& vKey);
    void Clear();

    // The first item with the key (keys are compared exactly), or 0.
    std::int32_t IndexForKey(const std::string& sKey) const noexcept;
    // The item carrying a menu ID, or 0.
    std::int32_t ItemForID(std::uint32_t wID) const noexcept;

    std::string ItemKey(std::int32_t lIndex) const { return At(lIndex).Key; }
    void ItemKey(std::int32_t lIndex, const std::string& sKey) { At(lIndex).Key = sKey; }
    std::int32_t ItemData(std::int32_t lIndex) const { return At(lIndex).ItemData; }
    void ItemData(std::int32_t lIndex, std::int32_t lData) { At(lIndex).ItemData = lData; }
    std::int32_t ItemParentIndex(std::int32_t lIndex) const { return At(lIndex).ParentIndex; }
    // Moves the item with its sub-items to the end of another menu.
    void ItemParentIndex(std::int32_t lIndex, std::int32_t lParentIndex);
    std::int32_t ItemIcon(std::int32_t lIndex) const { return At(lIndex).IconIndex; }
    void ItemIcon(std::int32_t lIndex, std::int32_t lIconIndex) {
        At(lIndex).IconIndex = lIconIndex;
    }
    std::string HelpText(std::int32_t lIndex) const { return At(lIndex).HelpText; }
    bool Checked(std::int32_t lIndex) const { return At(lIndex).Checked; }
    void Checked(std::int32_t lIndex, bool bChecked) { At(lIndex).Checked = bChecked; }
    bool RadioCheck(std::int32_t lIndex) const { return At(lIndex).RadioCheck; }
    void RadioCheck(std::int32_t lIndex, bool bRadio) { At(lIndex).RadioCheck = bRadio; }
    bool Enabled(std::int32_t lIndex) const { return At(lIndex).Enabled; }
    void Enabled(std::int32_t lIndex, bool bEnabled) { At(lIndex).Enabled = bEnabled; }
    std::string Caption(std::int32_t lIndex) const { return At(lIndex).Caption; }
    void Caption(std::int32_t lIndex, const std::string& sCaption);
    bool Header(std::int32_t lIndex) const { return At(lIndex).Header; }
    void Header(std::int32_t lIndex, bool bHeader);
    bool OwnerDraw(std::int32_t lIndex) const { return At(lIndex).OwnerDraw; }
    void OwnerDraw(std::int32_t lIndex, bool bOwnerDraw) { At(lIndex).OwnerDraw = bOwnerDraw; }
    bool Default(std::int32_t lIndex) const { return At(lIndex).Default; }
    void Default(std::int32_t lIndex, bool bDefault) { At(lIndex).Default = bDefault; }

    // Checks one radio item and unchecks the others of its group: the neighbouring items of the
    // same menu up to the nearest separators.
    void GroupToggle(std::int32_t lIndex);

    // The whole record, for the code that builds and draws system menus.
    const MenuItem& Item(std::int32_t lIndex) const { return At(lIndex); }
    void MenuHandle(std::int32_t lIndex, std::uintptr_t hMenu) { At(lIndex).MenuHandle = hMenu; }
    // The indexes of the items of one menu (0: the top level), in order.
    std::vector<std::int32_t> ChildrenOf(std::int32_t lParentIndex) const;
    // Rises whenever items are added, removed or moved, so that built menus know they are stale.
    std::uint64_t StructureRevision() const noexcept { return revision_; }

    const std::string& Tag() const noexcept { return tag_; }
    void Tag(std::string sTag) noexcept { tag_ = std::move(sTag); }

  protected:
    MenuItem& At(std::int32_t lIndex);
    const MenuItem& At(std::int32_t lIndex) const;
    std::int32_t Resolve(const ItemRef& vKey) const;

  private:
    std::uint16_t NextId();
    bool IsInSubtree(std::int32_t lIndex, std::int32_t lRoot) const;
    void InsertAt(std::int32_t lPosition, MenuItem item);
    // Keeps the listed items (old indexes) in the listed order and renumbers the parent links.
    void Reorder(const std::vector<std::int32_t>& newOrder);
    void StructureChanged() noexcept { ++revision_; }

    std::vector<MenuItem> items_;
    std::uint16_t lastId_ = 0;
    std::uint64_t revision_ = 0;
    std::string tag_;
};

// Fills a record's caption fields from a caption: "-" makes a separator, "-" followed by text
// a header; a tab divides the text from a shortcut written as the keys are sent ("^+{DEL}").
void ApplyCaption(MenuItem& item, const std::string& sCaption);

}  // namespace arbolet::popupmenu
