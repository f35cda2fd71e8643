// A picture of an open menu for people to look at: a header, an icon, a checked item, a
// disabled item with an icon, a separator and an open sub-menu with a radio item, saved as
// artifacts/popup_menu.png beside the test program in the build tree. The test also looks for
// the colours each part must show.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "popupmenu/menu_robot.h"
#include "support/png_file.h"
#include "support/screen_capture.h"
#include "support/test_window.h"
#include "windows/popupmenu/popup_menu.h"

namespace arbolet::windows {
namespace {

using testing::CaptureScreen;
using testing::CountPixels;
using testing::MenuRobot;
using testing::RgbImage;

constexpr COLORREF kMask = RGB(255, 0, 255);
constexpr COLORREF kRed = RGB(210, 20, 20);
constexpr COLORREF kGreen = RGB(20, 170, 60);

// Two 16-pixel icons: a red disc and a green square.
HIMAGELIST MakeIcons() {
    const HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR24 | ILC_MASK, 2, 0);
    const WindowDc screen(nullptr);
    const OwnedDc dc(CreateCompatibleDC(screen.get()));
    const OwnedBitmap strip(CreateCompatibleBitmap(screen.get(), 32, 16));
    {
        const SelectedObject selected(dc.get(), strip.get());
        const RECT all{0, 0, 32, 16};
        const OwnedBrush mask(CreateSolidBrush(kMask));
        FillRect(dc.get(), &all, mask.get());
        const OwnedBrush red(CreateSolidBrush(kRed));
        const OwnedPen redPen(CreatePen(PS_SOLID, 1, kRed));
        const SelectedObject brush(dc.get(), red.get());
        const SelectedObject pen(dc.get(), redPen.get());
        Ellipse(dc.get(), 1, 1, 15, 15);
        const RECT square{18, 2, 30, 14};
        const OwnedBrush green(CreateSolidBrush(kGreen));
        FillRect(dc.get(), &square, green.get());
    }
    ImageList_AddMasked(images, strip.get(), kMask);
    return images;
}

RECT UnionOfWindows(const std::vector<HWND>& windows) {
    RECT all{};
    for (HWND hWnd : windows) {
        RECT rc{};
        GetWindowRect(hWnd, &rc);
        UnionRect(&all, &all, &rc);
    }
    InflateRect(&all, 6, 6);
    return all;
}

TEST(PopupMenuScreenshot, AMenuWithEveryKindOfItem) {
    testing::TestWindow owner("Arbolet menu picture", true);
    ASSERT_TRUE(testing::Activate(owner.get()));
    const HIMAGELIST images = MakeIcons();

    cPopupMenu menu;
    menu.hWndOwner(owner.get());
    menu.ImageList(images);
    menu.AddItem("-Project");
    menu.AddItem("&Open\t^o", "", 0, 0, 0);
    menu.AddItem("&Checked item", "", 0, 0, -1, true);
    menu.AddItem("&Disabled item", "", 0, 0, 1, false, false);
    const std::int32_t defaultItem = menu.AddItem("Default item");
    menu.Default(defaultItem, true);
    menu.AddItem("-");
    const std::int32_t more = menu.AddItem("&More");
    const std::int32_t radio = menu.AddItem("Radio &one", "", 0, more, -1, true);
    menu.RadioCheck(radio, true);
    menu.AddItem("Radio &two", "", 0, more);
    menu.AddItem("With &icon", "", 0, more, 0);

    RgbImage picture;
    int openMenus = 0;
    {
        MenuRobot robot(
            {MenuRobot::Key(VK_DOWN), MenuRobot::Key(VK_DOWN), MenuRobot::Key(VK_DOWN),
             MenuRobot::Key(VK_DOWN), MenuRobot::Key(VK_DOWN), MenuRobot::Key(VK_RIGHT), [] {},
             [&] {
                 const std::vector<HWND> open = MenuRobot::OpenMenuWindows();
                 openMenus = static_cast<int>(open.size());
                 picture = CaptureScreen(UnionOfWindows(open));
             }},
            200);
        EXPECT_EQ(menu.ShowPopupMenu(150, 150), 0);
    }
    ImageList_Destroy(images);

    ASSERT_GT(picture.width, 0);
    CreateDirectoryA("artifacts", nullptr);
    ASSERT_TRUE(testing::WritePng("artifacts/popup_menu.png", picture));
    std::printf("menu picture: artifacts/popup_menu.png (%dx%d)\n", picture.width, picture.height);

    EXPECT_EQ(openMenus, 2) << "the menu and its open sub-menu";
    EXPECT_GT(CountPixels(picture, kRed), 50) << "the enabled icons";
    EXPECT_EQ(CountPixels(picture, kGreen), 0) << "the disabled item's icon is drawn greyed";
    EXPECT_GT(CountPixels(picture, GetSysColor(COLOR_ACTIVECAPTION)), 10) << "the header bar";
    EXPECT_GT(CountPixels(picture, GetSysColor(COLOR_HIGHLIGHT)), 100) << "the selected item";
}

}  // namespace
}  // namespace arbolet::windows
