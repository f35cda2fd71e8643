// The popup menu's item list: indexes, keys, sub-menus and how edits renumber them.
#include "popupmenu/menu_items.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "base/vb_error.h"

namespace arbolet::popupmenu {
namespace {

// The captions of one menu, in order, so that whole menus compare at once.
std::vector<std::string> Captions(const MenuItems& menu, std::int32_t parent) {
    std::vector<std::string> captions;
    for (std::int32_t index : menu.ChildrenOf(parent))
        captions.push_back(menu.Caption(index));
    return captions;
}

template <typename Operation>
std::int32_t RaisedNumber(Operation&& operation) {
    try {
        operation();
    } catch (const VbError& error) {
        return error.Number;
    }
    return 0;
}

// A project-style menu: Save, separator, Add with a sub-menu of two, separator, Hide.
MenuItems ProjectMenu() {
    MenuItems menu;
    menu.AddItem("Sa&ve Project", "", 7, 0, -1, false, true, "ProjectSave");
    menu.AddItem("-");
    const std::int32_t add = menu.AddItem("&Add", "", 0, 0, -1, false, true, "ProjectAdd");
    menu.AddItem("&Form", "", 0, add, -1, false, true, "AddForm");
    menu.AddItem("&New Folder", "", 3, add, -1, false, true, "AddFolder");
    menu.AddItem("-");
    menu.AddItem("&Hide", "", 0, 0, -1, false, true, "Hide");
    return menu;
}

TEST(MenuItems, AddedItemsFormMenusAndSubMenusInOrder) {
    const MenuItems menu = ProjectMenu();
    EXPECT_EQ(menu.Count(), 7);
    EXPECT_EQ(Captions(menu, 0),
              (std::vector<std::string>{"Sa&ve Project", "-", "&Add", "-", "&Hide"}));
    EXPECT_EQ(Captions(menu, 3), (std::vector<std::string>{"&Form", "&New Folder"}));
    EXPECT_TRUE(menu.Item(3).HasSubMenu);
    EXPECT_FALSE(menu.Item(1).HasSubMenu);
    EXPECT_EQ(menu.ItemData(5), 3);
    EXPECT_EQ(menu.ItemIcon(5), -1);
    EXPECT_TRUE(menu.Enabled(5));
    EXPECT_FALSE(menu.Checked(5));
}

TEST(MenuItems, CaptionsMakeSeparatorsHeadersAndShortcuts) {
    MenuItems menu;
    menu.AddItem("-");
    menu.AddItem("-Recent files");
    menu.AddItem("&Delete\t^{DEL}");
    EXPECT_TRUE(menu.Item(1).Separator);
    EXPECT_FALSE(menu.Header(1));
    EXPECT_EQ(menu.Item(1).DisplayCaption, "");
    EXPECT_TRUE(menu.Header(2));
    EXPECT_FALSE(menu.Item(2).Separator);
    EXPECT_EQ(menu.Item(2).DisplayCaption, "Recent files");
    EXPECT_EQ(menu.Caption(2), "-Recent files");
    EXPECT_EQ(menu.Item(3).DisplayCaption, "&Delete");
    EXPECT_EQ(menu.Item(3).ShortcutText, "Ctrl+Del");

    menu.Caption(2, "Plain");  // a new caption decides afresh
    EXPECT_FALSE(menu.Header(2));
    menu.Header(2, true);
    EXPECT_TRUE(menu.Header(2));
    EXPECT_EQ(menu.Item(2).DisplayCaption, "Plain");
}

TEST(MenuItems, IndexForKeyFindsTheLowestIndex) {
    MenuItems menu;
    menu.AddItem("a", "", 0, 0, -1, false, true, "Same");
    menu.AddItem("b", "", 0, 0, -1, false, true, "Other");
    menu.AddItem("c", "", 0, 0, -1, false, true, "Same");
    EXPECT_EQ(menu.IndexForKey("Same"), 1);
    EXPECT_EQ(menu.IndexForKey("Other"), 2);
    EXPECT_EQ(menu.IndexForKey("same"), 0);
    EXPECT_EQ(menu.IndexForKey("Missing"), 0);
    menu.RemoveItem(1);
    EXPECT_EQ(menu.IndexForKey("Same"), 2);
}

TEST(MenuItems, InsertItemGoesBeforeAnIndexOrKeyInThatItemsMenu) {
    MenuItems menu = ProjectMenu();
    // Before the first item with the empty key: the separator after Save.
    const std::int32_t go = menu.InsertItem("&Goto Line 42", std::string(), "ProjectAdd", 0, -1,
                                            false, true, "Goto:S1");
    EXPECT_EQ(go, 2);
    menu.InsertItem("-", go);
    EXPECT_EQ(Captions(menu, 0), (std::vector<std::string>{"Sa&ve Project", "-", "&Goto Line 42",
                                                           "-", "&Add", "-", "&Hide"}));
    EXPECT_EQ(menu.HelpText(3), "ProjectAdd");
    // The sub-menu follows its parent to its new index.
    const std::int32_t add = menu.IndexForKey("ProjectAdd");
    EXPECT_EQ(add, 5);
    EXPECT_EQ(Captions(menu, add), (std::vector<std::string>{"&Form", "&New Folder"}));

    const std::int32_t inner = menu.InsertItem("&Class Module", std::string("AddFolder"));
    EXPECT_EQ(menu.ItemParentIndex(inner), add);
    EXPECT_EQ(Captions(menu, add),
              (std::vector<std::string>{"&Form", "&Class Module", "&New Folder"}));
}

TEST(MenuItems, RemoveItemTakesItsSubItemsAndRenumbersTheRest) {
    MenuItems menu = ProjectMenu();
    const std::int32_t nested = menu.AddItem("Deeper", "", 0, 4);
    menu.AddItem("Deepest", "", 0, nested);
    const std::uint16_t hideId = menu.Item(7).Id;

    menu.RemoveItem(std::string("ProjectAdd"));
    EXPECT_EQ(menu.Count(), 4);
    EXPECT_EQ(Captions(menu, 0), (std::vector<std::string>{"Sa&ve Project", "-", "-", "&Hide"}));
    EXPECT_EQ(menu.IndexForKey("AddForm"), 0);
    EXPECT_EQ(menu.ItemForID(hideId), 4);
    for (std::int32_t i = 1; i <= menu.Count(); ++i)
        EXPECT_EQ(menu.ItemParentIndex(i), 0);
}

TEST(MenuItems, ClearSubMenusOfItemKeepsTheEmptySubMenu) {
    MenuItems menu = ProjectMenu();
    menu.ClearSubMenusOfItem(std::string("ProjectAdd"));
    EXPECT_EQ(menu.Count(), 5);
    EXPECT_TRUE(Captions(menu, 3).empty());
    EXPECT_TRUE(menu.Item(3).HasSubMenu);
    EXPECT_EQ(menu.Caption(5), "&Hide");
    menu.AddItem("&Form", "", 0, 3);
    EXPECT_EQ(Captions(menu, 3), (std::vector<std::string>{"&Form"}));
}

TEST(MenuItems, ClearEmptiesTheListAndStartsIdsAfresh) {
    MenuItems menu = ProjectMenu();
    const auto revision = menu.StructureRevision();
    menu.Clear();
    EXPECT_EQ(menu.Count(), 0);
    EXPECT_NE(menu.StructureRevision(), revision);
    menu.AddItem("again");
    EXPECT_EQ(menu.ItemForID(menu.Item(1).Id), 1);
    EXPECT_EQ(menu.ItemForID(0), 0);
}

TEST(MenuItems, EveryItemHasItsOwnId) {
    MenuItems menu = ProjectMenu();
    menu.RemoveItem(2);
    menu.InsertItem("x", 1);
    menu.AddItem("y");
    std::set<std::uint16_t> ids;
    for (std::int32_t i = 1; i <= menu.Count(); ++i) {
        EXPECT_NE(menu.Item(i).Id, 0);
        ids.insert(menu.Item(i).Id);
        EXPECT_EQ(menu.ItemForID(menu.Item(i).Id), i);
    }
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(menu.Count()));
}

TEST(MenuItems, ReplaceItemChangesOnlyWhatIsGiven) {
    MenuItems menu = ProjectMenu();
    menu.ReplaceItem(std::string("AddFolder"), std::string("-Folders"), std::nullopt, 99,
                     std::nullopt, true);
    const std::int32_t index = menu.IndexForKey("AddFolder");
    EXPECT_EQ(index, 5);
    EXPECT_TRUE(menu.Header(5));
    EXPECT_EQ(menu.ItemData(5), 99);
    EXPECT_TRUE(menu.Checked(5));
    EXPECT_TRUE(menu.Enabled(5));
    EXPECT_EQ(menu.ItemParentIndex(5), 3);
    menu.ReplaceItem(5, std::nullopt, std::nullopt, std::nullopt, 4, std::nullopt, false, "K");
    EXPECT_EQ(menu.Caption(5), "-Folders");
    EXPECT_EQ(menu.ItemIcon(5), 4);
    EXPECT_FALSE(menu.Enabled(5));
    EXPECT_EQ(menu.ItemKey(5), "K");
}

TEST(MenuItems, MovingAnItemCarriesItsSubItemsAndRefusesCycles) {
    MenuItems menu = ProjectMenu();
    const std::int32_t extra = menu.AddItem("More");
    menu.ItemParentIndex(3, extra);  // "&Add" with its two sub-items under "More"
    const std::int32_t more = 5;     // the four items that stayed come first
    EXPECT_EQ(menu.Caption(more), "More");
    const std::int32_t add = menu.IndexForKey("ProjectAdd");
    EXPECT_EQ(menu.ItemParentIndex(add), more);
    EXPECT_EQ(Captions(menu, add), (std::vector<std::string>{"&Form", "&New Folder"}));
    EXPECT_EQ(Captions(menu, 0),
              (std::vector<std::string>{"Sa&ve Project", "-", "-", "&Hide", "More"}));

    EXPECT_EQ(RaisedNumber([&] { menu.ItemParentIndex(more, add); }), 5);
    EXPECT_EQ(RaisedNumber([&] { menu.ItemParentIndex(add, add); }), 5);
    EXPECT_EQ(menu.ItemParentIndex(more), 0);
}

TEST(MenuItems, GroupToggleChecksOneItemBetweenSeparators) {
    MenuItems menu;
    for (const char* caption : {"a", "b", "-", "c", "d", "e", "-", "f"})
        menu.AddItem(caption);
    menu.Checked(1, true);
    menu.Checked(4, true);
    menu.Checked(8, true);
    menu.GroupToggle(6);
    EXPECT_TRUE(menu.Checked(1));
    EXPECT_FALSE(menu.Checked(4));
    EXPECT_FALSE(menu.Checked(5));
    EXPECT_TRUE(menu.Checked(6));
    EXPECT_TRUE(menu.Checked(8));
}

TEST(MenuItems, IndexesOutsideTheListRaiseSubscriptOutOfRange) {
    MenuItems menu = ProjectMenu();
    EXPECT_EQ(RaisedNumber([&] { menu.Caption(0); }), 9);
    EXPECT_EQ(RaisedNumber([&] { menu.Checked(8, true); }), 9);
    EXPECT_EQ(RaisedNumber([&] { menu.RemoveItem(-1); }), 9);
    EXPECT_EQ(RaisedNumber([&] { menu.RemoveItem(std::string("Nope")); }), 9);
    EXPECT_EQ(RaisedNumber([&] { menu.InsertItem("x", 8); }), 9);
    EXPECT_EQ(RaisedNumber([&] { menu.AddItem("x", "", 0, 8); }), 9);
    EXPECT_EQ(RaisedNumber([&] { menu.ClearSubMenusOfItem(100); }), 9);
    EXPECT_EQ(menu.Count(), 7);
}

}  // namespace
}  // namespace arbolet::popupmenu
