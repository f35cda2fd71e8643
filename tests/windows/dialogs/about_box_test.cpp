// The about box as a person meets it: it animates while open, shows the product's texts, and
// goes away on Esc, Enter or a click, giving the owner back.
#include "windows/dialogs/about_box.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/dialog_robot.h"
#include "support/screen_capture.h"
#include "support/test_window.h"
#include "windows/dialogs/about_picture.h"
#include "windows/dialogs/help.h"
#include "windows/dialogs/product.h"

namespace arbolet::windows::dialogs {
namespace {

using testing::DialogRobot;

// Pixels of the sky's right margin that differ from the sky at the edge: each row of the sky is
// one colour, so only text reaching into the margin makes any.
int TextInRightMargin(const testing::RgbImage& image) {
    const int margin = image.height / 20;
    const int skyBottom = image.height * 4 / 5;
    int differing = 0;
    for (int y = 0; y < skyBottom; ++y) {
        const auto* row = &image.rgb[static_cast<std::size_t>(y) * image.width * 3];
        const auto* edge = row + (image.width - 1) * 3;
        for (int x = image.width - margin; x < image.width - 1; ++x) {
            const auto* pixel = row + x * 3;
            if (!std::equal(pixel, pixel + 3, edge)) ++differing;
        }
    }
    return differing;
}

class AboutBox : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(testing::Activate(owner_.get())); }

    // Shows the box while the robot plays the steps; whether the steps closed it themselves.
    void Run(std::vector<DialogRobot::Step> steps) {
        DialogRobot robot(kAboutCaption, std::move(steps));
        ShowAboutBox(owner_.get());
        EXPECT_TRUE(robot.Finished()) << "the box closed before the script was over";
        EXPECT_FALSE(robot.ClosedByRobot()) << "the script did not close the box";
        EXPECT_TRUE(IsWindowEnabled(owner_.get()));
    }

    testing::TestWindow owner_{"Arbolet about owner", true};
};

TEST_F(AboutBox, ClosesOnEscapeEnterAndAClick) {
    Run({DialogRobot::Key(VK_ESCAPE)});
    Run({DialogRobot::Key(VK_RETURN)});
    Run({DialogRobot::Click(kAboutPicture)});
}

TEST_F(AboutBox, AnimatesWhileOpenAndAPictureIsSaved) {
    testing::RgbImage early;
    testing::RgbImage late;
    bool ownerDisabled = false;
    const auto capture = [](testing::RgbImage& image) {
        return [&image](HWND hDlg) {
            UpdateWindow(hDlg);
            image = testing::CaptureWindow(GetDlgItem(hDlg, kAboutPicture));
        };
    };
    DialogRobot::Step wait = [](HWND) {};
    Run({capture(early), [&](HWND) { ownerDisabled = !IsWindowEnabled(owner_.get()); }, wait, wait,
         wait, wait, wait, wait, wait, wait, capture(late), DialogRobot::Key(VK_ESCAPE)});
    ASSERT_GT(late.width, 0);
    EXPECT_TRUE(ownerDisabled) << "the box is modal to its owner";
    EXPECT_NE(early.rgb, late.rgb) << "the picture moves on its own";
    EXPECT_GT(testing::CountPixels(late, RGB(255, 255, 255)), 200) << "the product's name";
    EXPECT_TRUE(testing::SaveArtifact("about_box.png", late));
    EXPECT_EQ(TextInRightMargin(late), 0) << "a line of text runs into the picture's edge";
}

// Every line of text fits the picture, also when the picture is narrower for its height than the
// box's (another font or DPI changes that ratio): lines too long get a smaller font.
TEST(AboutPicture, TextStaysClearOfTheRightEdge) {
    for (const SIZE size : {SIZE{480, 225}, SIZE{380, 225}, SIZE{300, 225}}) {
        const HWND picture = CreateWindowExW(0, AboutPictureClass(), L"", WS_POPUP, 0, 0, size.cx,
                                             size.cy, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(picture, nullptr);
        const testing::RgbImage image =
            testing::DrawPicture(size.cx, size.cy, RGB(0, 0, 0), [&](HDC dc) {
                SendMessageW(picture, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
            });
        DestroyWindow(picture);
        EXPECT_GT(testing::CountPixels(image, RGB(255, 255, 255)), 100) << size.cx;
        EXPECT_EQ(TextInRightMargin(image), 0) << "at " << size.cx << " x " << size.cy;
        if (size.cx == 300) {
            EXPECT_TRUE(testing::SaveArtifact("about_box_narrow.png", image));
        }
    }
}

TEST(AboutText, NamesTheProductAndTheBuildsVersion) {
    EXPECT_STREQ(kProductName, "Arbolet");
    EXPECT_STREQ(ProductVersion(), ARBOLET_PROJECT_VERSION);
}

TEST(HelpFile, SitsBesideTheModuleWithOneBackslash) {
    EXPECT_EQ(HelpFilePath("C:\\Program Files\\Arbolet"),
              "C:\\Program Files\\Arbolet\\Arbolet.chm");
    EXPECT_EQ(HelpFilePath("C:\\"), "C:\\Arbolet.chm");
    EXPECT_EQ(HelpFilePath("\\\\server\\share\\"), "\\\\server\\share\\Arbolet.chm");
    const std::string beside = DefaultHelpFile();
    EXPECT_NE(beside.find("\\tests\\windows\\Arbolet.chm"), std::string::npos) << beside;
}

TEST(HelpFile, AMissingFileOpensNothing) {
    EXPECT_FALSE(ShowHelp(nullptr, "Z:\\no\\such\\folder\\Arbolet.chm"));
    EXPECT_FALSE(ShowHelp(nullptr, ""));
}

}  // namespace
}  // namespace arbolet::windows::dialogs
