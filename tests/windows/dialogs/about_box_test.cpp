// The about box as a person meets it: it animates while open, shows the product's texts, and
// goes away on Esc, Enter or a click, giving the owner back.
#include "windows/dialogs/about_box.h"

#include <gtest/gtest.h>

#include "support/dialog_robot.h"
#include "support/screen_capture.h"
#include "support/test_window.h"
#include "windows/dialogs/help.h"
#include "windows/dialogs/product.h"

namespace arbolet::windows::dialogs {
namespace {

using testing::DialogRobot;

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
