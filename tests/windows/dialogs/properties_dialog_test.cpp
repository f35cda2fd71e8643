// frmProperties driven as a person would: real clicks and keys on the real dialog, owned by a
// window it does not own, checked against what the registry holds afterwards. Each test starts
// without the options key (the Wine prefix of the test run is thrown away afterwards).
#include "windows/dialogs/properties_dialog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

#include "base/vb_error.h"
#include "raw_registry.h"
#include "support/dialog_robot.h"
#include "support/screen_capture.h"
#include "support/test_window.h"
#include "windows/options/settings.h"

namespace arbolet::windows::dialogs {
namespace {

using testing::DialogRobot;

const char* const kOptionNames[] = {"ShowTypes",      "ShowEnums",     "ShowVariables",
                                    "ShowSectionEnd", "ShowConstants", "ShowCompiler",
                                    "SortByName"};

std::optional<DWORD> Stored(const char* name) {
    const auto raw = testing::ReadRaw(HKEY_CLASSES_ROOT, options::OptionsKeyPath(), name);
    if (!raw || raw->type != REG_DWORD || raw->data.size() != 4) return std::nullopt;
    DWORD value = 0;
    std::memcpy(&value, raw->data.data(), 4);
    return value;
}

void StoreAll(DWORD value) {
    for (const char* name : kOptionNames) {
        testing::WriteRaw(HKEY_CLASSES_ROOT, options::OptionsKeyPath(), name, REG_DWORD,
                          testing::DwordBytes(value));
    }
}

class PropertiesDialog : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::DeleteTree(HKEY_CLASSES_ROOT, options::OptionsKeyPath());
        ASSERT_TRUE(testing::Activate(owner_.get()));
    }
    void TearDown() override { testing::DeleteTree(HKEY_CLASSES_ROOT, options::OptionsKeyPath()); }

    // Shows the dialog while the robot plays the steps; what ShowPropertiesDialog answered.
    bool Run(std::vector<DialogRobot::Step> steps, HWND owner = nullptr) {
        DialogRobot robot(kPropertiesCaption, std::move(steps));
        const bool saved = ShowPropertiesDialog(owner != nullptr ? owner : owner_.get());
        EXPECT_TRUE(robot.Finished()) << "the dialog closed before the script was over";
        EXPECT_FALSE(robot.ClosedByRobot()) << "the script did not close the dialog";
        return saved;
    }

    testing::TestWindow owner_{"Arbolet options owner", true};
};

// Step that records whether each box is checked, top to bottom as kOptionNames.
DialogRobot::Step ReadBoxes(std::vector<UINT>& states) {
    return [&states](HWND hDlg) {
        for (const WORD id : {kChkTypes, kChkEnums, kChkVariables, kChkSectionEnd, kChkConst,
                              kChkCompiler, kChkSortByName}) {
            states.push_back(IsDlgButtonChecked(hDlg, id));
        }
    };
}

TEST_F(PropertiesDialog, FreshInstallShowsEveryBoxClearAndOkSavesFalseForAll) {
    std::vector<UINT> states;
    bool ownerEnabled = true;
    EXPECT_TRUE(Run({ReadBoxes(states),
                     [&](HWND) { ownerEnabled = IsWindowEnabled(owner_.get()) != FALSE; },
                     DialogRobot::Key(VK_RETURN)}));
    EXPECT_EQ(states, std::vector<UINT>(7, BST_UNCHECKED));
    EXPECT_FALSE(ownerEnabled) << "the owner is disabled while the dialog is open";
    EXPECT_TRUE(IsWindowEnabled(owner_.get())) << "and enabled again after";
    for (const char* name : kOptionNames)
        EXPECT_EQ(Stored(name), 0u) << name;
}

// Show Metrics is not one of the seven: off on a fresh install without leaving a value behind,
// and saved beside them by OK.
TEST_F(PropertiesDialog, ShowMetricsIsOffUntilTickedAndThenSaved) {
    EXPECT_FALSE(options::ShowMetrics());
    EXPECT_FALSE(Stored("ShowMetrics").has_value());
    UINT shown = 99;
    EXPECT_TRUE(Run({[&](HWND hDlg) { shown = IsDlgButtonChecked(hDlg, kChkShowMetrics); },
                     DialogRobot::Click(kChkShowMetrics), DialogRobot::Click(kCmdOK)}));
    EXPECT_EQ(shown, static_cast<UINT>(BST_UNCHECKED));
    EXPECT_EQ(Stored("ShowMetrics"), 0xFFFFFFFFu);
    EXPECT_TRUE(options::ShowMetrics());
    EXPECT_EQ(Stored("SortByName"), 0u) << "the others are saved as they were shown";

    // Shown ticked the next time, and cleared by a second click.
    EXPECT_TRUE(Run({[&](HWND hDlg) { shown = IsDlgButtonChecked(hDlg, kChkShowMetrics); },
                     DialogRobot::Click(kChkShowMetrics), DialogRobot::Click(kCmdOK)}));
    EXPECT_EQ(shown, static_cast<UINT>(BST_CHECKED));
    EXPECT_FALSE(options::ShowMetrics());
}

// The tool window's document is a child window inside the IDE: the dialog is then modal to the
// IDE's top-level window, which is given back when it closes.
TEST_F(PropertiesDialog, AChildWindowAsOwnerDisablesItsTopLevelWindow) {
    const HWND document = CreateWindowExA(0, "STATIC", "document", WS_CHILD | WS_VISIBLE, 0, 0, 50,
                                          50, owner_.get(), nullptr, nullptr, nullptr);
    ASSERT_NE(document, nullptr);
    HWND dialogOwner = nullptr;
    bool topLevelEnabled = true;
    EXPECT_FALSE(Run({[&](HWND hDlg) {
                          dialogOwner = GetWindow(hDlg, GW_OWNER);
                          topLevelEnabled = IsWindowEnabled(owner_.get()) != FALSE;
                      },
                      DialogRobot::Key(VK_ESCAPE)},
                     document));
    EXPECT_EQ(dialogOwner, owner_.get());
    EXPECT_FALSE(topLevelEnabled);
    EXPECT_TRUE(IsWindowEnabled(owner_.get()));
    DestroyWindow(document);
}

TEST_F(PropertiesDialog, ClickedBoxesAreSavedByOk) {
    StoreAll(0);
    EXPECT_TRUE(Run({DialogRobot::Click(kChkConst), DialogRobot::Click(kChkSortByName),
                     DialogRobot::Click(kChkSortByName), DialogRobot::Click(kChkTypes),
                     DialogRobot::Click(kCmdOK)}));
    for (const char* name : kOptionNames) {
        const bool on = std::string(name) == "ShowConstants" || std::string(name) == "ShowTypes";
        EXPECT_EQ(Stored(name), on ? 0xFFFFFFFFu : 0u) << name;
    }
}

TEST_F(PropertiesDialog, TheKeyboardAloneTicksBoxesAndSaves) {
    StoreAll(0);
    // The focus starts on the first box (Variables); Tab moves to the next one.
    EXPECT_TRUE(Run({DialogRobot::Key(VK_SPACE), DialogRobot::Key(VK_TAB),
                     DialogRobot::Key(VK_SPACE), DialogRobot::Key(VK_RETURN)}));
    for (const char* name : kOptionNames) {
        const bool on =
            std::string(name) == "ShowVariables" || std::string(name) == "ShowConstants";
        EXPECT_EQ(Stored(name), on ? 0xFFFFFFFFu : 0u) << name;
    }
}

TEST_F(PropertiesDialog, CancelAndEscapeLeaveTheRegistryAsItWas) {
    StoreAll(7);  // any non-zero value reads as True
    std::vector<UINT> states;
    EXPECT_FALSE(Run({ReadBoxes(states), DialogRobot::Click(kChkVariables),
                      DialogRobot::Click(kChkCompiler), DialogRobot::Click(kCmdCancel)}));
    EXPECT_EQ(states, std::vector<UINT>(7, BST_CHECKED));
    EXPECT_FALSE(Run({DialogRobot::Click(kChkEnums), DialogRobot::Key(VK_ESCAPE)}));
    for (const char* name : kOptionNames)
        EXPECT_EQ(Stored(name), 7u) << name;
}

TEST_F(PropertiesDialog, AGreyBoxSavesFalse) {
    StoreAll(1);
    EXPECT_TRUE(Run({[](HWND hDlg) { CheckDlgButton(hDlg, kChkEnums, BST_INDETERMINATE); },
                     DialogRobot::Key(VK_RETURN)}));
    EXPECT_EQ(Stored("ShowEnums"), 0u);
    EXPECT_EQ(Stored("ShowTypes"), 0xFFFFFFFFu);
}

// The pixels of the samples' pictures, to tell whether a tick changed what they show.
testing::RgbImage Samples(HWND hDlg) {
    RECT all{};
    for (const WORD id : {kPicOptions2, kPicOptions3, kPicOptions4}) {
        RECT rc{};
        GetWindowRect(GetDlgItem(hDlg, id), &rc);
        UnionRect(&all, &all, &rc);
    }
    return testing::CaptureScreen(all);
}

TEST_F(PropertiesDialog, SamplesFollowTheTicksAndAPictureIsSaved) {
    StoreAll(0xFFFFFFFF);
    testing::RgbImage before;
    testing::RgbImage afterConstants;
    testing::RgbImage afterSectionEnds;
    testing::RgbImage window;
    const auto capture = [](testing::RgbImage& image) {
        return [&image](HWND hDlg) {
            UpdateWindow(hDlg);
            image = Samples(hDlg);
        };
    };
    EXPECT_FALSE(Run({capture(before), DialogRobot::Click(kChkConst), capture(afterConstants),
                      DialogRobot::Click(kChkSectionEnd), capture(afterSectionEnds),
                      DialogRobot::Click(kChkConst), DialogRobot::Click(kChkSectionEnd),
                      DialogRobot::Click(kChkSortByName),
                      [&](HWND hDlg) {
                          UpdateWindow(hDlg);
                          window = testing::CaptureWindow(hDlg);
                      },
                      DialogRobot::Key(VK_ESCAPE)}));
    ASSERT_GT(before.width, 0);
    EXPECT_NE(before.rgb, afterConstants.rgb) << "unticking Constants changes a sample";
    EXPECT_NE(afterConstants.rgb, afterSectionEnds.rgb) << "so does unticking Show Section Ends";
    EXPECT_TRUE(testing::SaveArtifact("options_dialog.png", window));
}

}  // namespace
}  // namespace arbolet::windows::dialogs
