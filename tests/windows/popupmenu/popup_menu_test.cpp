// cPopupMenu with real menus under the system's (or Wine's) menu loop: items are chosen with
// keys sent through the input queue while the menu is open.
#include "windows/popupmenu/popup_menu.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "popupmenu/menu_robot.h"
#include "support/test_window.h"

namespace arbolet::windows {
namespace {

using testing::MenuRobot;
using testing::TestWindow;

// One shown, focused owner window for all menus: the keys must reach its thread, and shown
// windows are slow to destroy under Wine without a window manager.
class PopupMenuTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        owner_ = new TestWindow("Arbolet menu owner", true);
        ASSERT_TRUE(testing::Activate(owner_->get()));
    }
    static void TearDownTestSuite() {
        delete owner_;
        owner_ = nullptr;
    }
    void SetUp() override {
        ASSERT_NE(owner_, nullptr);
        testing::Activate(owner_->get());
        menu.hWndOwner(owner_->get());
        menu.Click = [this](std::int32_t index) { clicks.push_back(index); };
        menu.MenuExit = [this] { ++exits; };
        menu.ItemHighlight = [this](std::int32_t index, bool bEnabled, bool) {
            highlights.push_back(index);
            if (!bEnabled) disabledHighlights.push_back(index);
        };
    }
    void TearDown() override { testing::PumpMessagesFor(50); }

    // Shows the menu at the owner's client corner while the robot presses the keys.
    std::int32_t ShowWithKeys(std::vector<WORD> keys) {
        std::vector<MenuRobot::Step> steps;
        for (WORD key : keys)
            steps.push_back(MenuRobot::Key(key));
        MenuRobot robot(std::move(steps));
        return menu.ShowPopupMenu(0, 0);
    }
    int OwnCalls(UINT message) const { return owner_->OwnCalls(message); }

    static TestWindow* owner_;
    cPopupMenu menu;
    std::vector<std::int32_t> clicks;
    std::vector<std::int32_t> highlights;
    std::vector<std::int32_t> disabledHighlights;
    int exits = 0;
};

TestWindow* PopupMenuTest::owner_ = nullptr;

TEST_F(PopupMenuTest, ChoosingAnItemReturnsItsIndexAndRaisesClickOnce) {
    menu.AddItem("&Open");
    menu.AddItem("-");
    menu.AddItem("-Saving");
    menu.AddItem("&Save", "", 0, 0, -1, false, true, "Save");
    menu.AddItem("E&xit");
    const int enters = OwnCalls(WM_ENTERMENULOOP);
    const int exitsSeen = OwnCalls(WM_EXITMENULOOP);

    // Down selects the first item; the next Down passes over the separator and the header.
    EXPECT_EQ(ShowWithKeys({VK_DOWN, VK_DOWN, VK_RETURN}), 4);
    EXPECT_EQ(clicks, (std::vector<std::int32_t>{4}));
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(highlights.front(), 1);
    EXPECT_EQ(highlights.back(), 4);
    EXPECT_GE(OwnCalls(WM_ENTERMENULOOP), enters + 1);
    EXPECT_GE(OwnCalls(WM_EXITMENULOOP), exitsSeen + 1);
    // Nothing of the menu stays attached to the owner.
    EXPECT_EQ(reinterpret_cast<WNDPROC>(GetWindowLongPtrA(owner_->get(), GWLP_WNDPROC)),
              TestWindow::OwnProc());
}

TEST_F(PopupMenuTest, EscapeChoosesNothingAndDisabledItemsAreHighlightedAsSuch) {
    menu.AddItem("&Open");
    menu.AddItem("&Save", "", 0, 0, -1, false, false);
    EXPECT_EQ(ShowWithKeys({VK_DOWN, VK_DOWN, VK_ESCAPE}), 0);
    EXPECT_TRUE(clicks.empty());
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(highlights.front(), 1);
    EXPECT_EQ(disabledHighlights, (std::vector<std::int32_t>{2}));
}

TEST_F(PopupMenuTest, AnEmptyMenuShowsNothingAndReturnsZero) {
    const int enters = OwnCalls(WM_ENTERMENULOOP);
    EXPECT_EQ(ShowWithKeys({VK_DOWN, VK_RETURN}), 0);
    EXPECT_EQ(menu.ShowPopupAbsolute(10, 10), 0);
    EXPECT_TRUE(clicks.empty());
    EXPECT_EQ(exits, 0);
    EXPECT_EQ(OwnCalls(WM_ENTERMENULOOP), enters);
}

TEST_F(PopupMenuTest, SubMenusOpenWithTheRightKeyAndTheirItemsAreChosen) {
    const std::int32_t file = menu.AddItem("&File");
    menu.AddItem("&New", "", 0, file);
    menu.AddItem("&Open", "", 0, file);
    menu.AddItem("E&xit");
    std::vector<std::int32_t> opened;
    menu.InitPopupMenu = [&](std::int32_t parent) { opened.push_back(parent); };

    // Right opens the sub-menu with its first item selected.
    EXPECT_EQ(ShowWithKeys({VK_DOWN, VK_RIGHT, VK_DOWN, VK_RETURN}), 3);
    EXPECT_EQ(clicks, (std::vector<std::int32_t>{3}));
    EXPECT_EQ(opened, (std::vector<std::int32_t>{1}));
}

TEST_F(PopupMenuTest, InitPopupMenuMayChangeTheSubMenuAboutToOpen) {
    const std::int32_t recent = menu.AddItem("&Recent");
    menu.AddItem("(none)", "", 0, recent, -1, false, false);
    menu.AddItem("E&xit");
    menu.InitPopupMenu = [&](std::int32_t parent) {
        menu.ClearSubMenusOfItem(parent);
        menu.AddItem("first.vbp", "", 0, parent, -1, false, true, "first");
        menu.AddItem("second.vbp", "", 0, parent, -1, false, true, "second");
    };
    const std::int32_t chosen = ShowWithKeys({VK_DOWN, VK_RIGHT, VK_DOWN, VK_RETURN});
    EXPECT_EQ(chosen, menu.IndexForKey("second"));
    EXPECT_EQ(menu.Caption(chosen), "second.vbp");
    EXPECT_EQ(clicks, (std::vector<std::int32_t>{chosen}));
}

TEST_F(PopupMenuTest, ShowPopupMenuAtIndexShowsOneSubMenu) {
    const std::int32_t add = menu.AddItem("&Add");
    menu.AddItem("&Form", "", 0, add);
    menu.AddItem("&Class Module", "", 0, add);
    std::vector<MenuRobot::Step> steps{MenuRobot::Key(VK_DOWN), MenuRobot::Key(VK_DOWN),
                                       MenuRobot::Key(VK_RETURN)};
    MenuRobot robot(std::move(steps));
    EXPECT_EQ(menu.ShowPopupMenuAtIndex(add, 0, 0), 3);
    EXPECT_EQ(menu.ShowPopupMenuAtIndex(2, 0, 0), 0) << "an item without a sub-menu";
}

TEST_F(PopupMenuTest, MnemonicsChooseOwnerDrawnItems) {
    menu.AddItem("&Open");
    menu.AddItem("Sa&ve\t^s");
    menu.AddItem("E&xit");
    EXPECT_EQ(ShowWithKeys({'V'}), 2);
    EXPECT_EQ(clicks, (std::vector<std::int32_t>{2}));
}

TEST_F(PopupMenuTest, WithALastingSubclassClickArrivesThroughTheOwnersCommand) {
    menu.AddItem("&Open");
    menu.AddItem("&Save");
    menu.CreateSubClass();
    const int commands = OwnCalls(WM_COMMAND);
    EXPECT_EQ(ShowWithKeys({VK_DOWN, VK_DOWN, VK_RETURN}), 2);
    EXPECT_EQ(clicks, (std::vector<std::int32_t>{2}));
    EXPECT_EQ(OwnCalls(WM_COMMAND), commands) << "the menu's command is the menu's own";

    // Other commands still reach the window.
    SendMessageA(owner_->get(), WM_COMMAND, MAKEWPARAM(2, 0), 0);
    EXPECT_EQ(OwnCalls(WM_COMMAND), commands + 1);
    EXPECT_EQ(clicks.size(), 1u);

    menu.DestroySubClass();
    EXPECT_EQ(reinterpret_cast<WNDPROC>(GetWindowLongPtrA(owner_->get(), GWLP_WNDPROC)),
              TestWindow::OwnProc());
}

TEST_F(PopupMenuTest, MenusOpenWhereTheTwipsAndPixelsSay) {
    menu.AddItem("&Open");
    HDC screen = GetDC(nullptr);
    const int twipsX = 1440 / GetDeviceCaps(screen, LOGPIXELSX);
    const int twipsY = 1440 / GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);

    POINT expected{30, 20};
    ClientToScreen(owner_->get(), &expected);
    RECT shown{};
    {
        MenuRobot robot({[&] {
            const std::vector<HWND> open = MenuRobot::OpenMenuWindows();
            if (!open.empty()) GetWindowRect(open.front(), &shown);
        }});
        menu.ShowPopupMenu(30 * twipsX + twipsX - 1, 20 * twipsY);
    }
    EXPECT_EQ(shown.left, expected.x);
    EXPECT_EQ(shown.top, expected.y);

    RECT absolute{};
    {
        MenuRobot robot({[&] {
            const std::vector<HWND> open = MenuRobot::OpenMenuWindows();
            if (!open.empty()) GetWindowRect(open.front(), &absolute);
        }});
        menu.ShowPopupAbsolute(321, 234);
    }
    EXPECT_EQ(absolute.left, 321);
    EXPECT_EQ(absolute.top, 234);
}

TEST_F(PopupMenuTest, MenuHandlesAndIdsFollowTheItems) {
    const std::int32_t file = menu.AddItem("&File");
    const std::int32_t open = menu.AddItem("&Open", "", 0, file);
    const std::int32_t exit = menu.AddItem("E&xit");
    const HMENU root = menu.hMenu(exit);
    EXPECT_TRUE(IsMenu(root));
    EXPECT_EQ(menu.hMenu(file), root);
    EXPECT_EQ(GetMenuItemCount(root), 2);
    const HMENU sub = menu.hMenu(open);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(sub), menu.IDForItem(file));
    EXPECT_EQ(GetSubMenu(root, 0), sub);
    EXPECT_EQ(menu.ItemForID(static_cast<std::uint32_t>(menu.IDForItem(exit))), exit);

    menu.EmulateMenuClick(static_cast<std::uint32_t>(menu.IDForItem(open)));
    menu.EmulateMenuClick(0xFFFF);
    EXPECT_EQ(clicks, (std::vector<std::int32_t>{open}));

    menu.Clear();
    EXPECT_FALSE(IsMenu(root));
}

TEST_F(PopupMenuTest, TheWidestItemSetsTheWidthOfItsMenu) {
    menu.AddItem("&Open");
    menu.AddItem("A much longer caption than the others");
    menu.AddItem("-");
    const std::int32_t more = menu.AddItem("&More");
    menu.AddItem("x", "", 0, more);
    EXPECT_EQ(menu.MenuItemWidth(1), menu.MenuItemWidth(2));
    EXPECT_EQ(menu.MenuItemWidth(3), menu.MenuItemWidth(1));
    EXPECT_LT(menu.MenuItemWidth(5), menu.MenuItemWidth(1));
    EXPECT_LT(menu.MenuItemHeight(3), menu.MenuItemHeight(1)) << "separators are thin";
    cNCMetrics metrics;
    ASSERT_TRUE(metrics.GetMetrics());
    EXPECT_GE(menu.MenuItemHeight(1), std::abs(metrics.FontDescription(MenuFOnt).lfHeight));
}

TEST_F(PopupMenuTest, CallersDrawTheirOwnerDrawItemsThemselves) {
    menu.AddItem("&Plain");
    const std::int32_t custom = menu.AddItem("&Custom");
    menu.OwnerDraw(custom, true);
    std::vector<std::int32_t> measured;
    std::vector<std::int32_t> drawn;
    menu.MeasureItem = [&](std::int32_t index, std::int32_t& width, std::int32_t& height) {
        measured.push_back(index);
        width = 200;
        height = 40;
    };
    menu.DrawItem = [&](const PopupMenuDrawArgs& args) {
        drawn.push_back(args.lMenuIndex);
        EXPECT_EQ(args.rcItem.bottom - args.rcItem.top, 40);
    };
    EXPECT_EQ(ShowWithKeys({VK_DOWN, VK_DOWN, VK_RETURN}), custom);
    EXPECT_EQ(measured, (std::vector<std::int32_t>{custom}));
    ASSERT_FALSE(drawn.empty());
    for (std::int32_t index : drawn)
        EXPECT_EQ(index, custom);
}

}  // namespace
}  // namespace arbolet::windows
