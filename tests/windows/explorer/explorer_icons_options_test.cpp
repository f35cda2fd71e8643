// The explorer wired to Arbolet's own pieces: the real tree control's items carry the icons'
// image-list indexes, and the "ShowProperties" command opens the options dialog, which leaves
// the registry alone when cancelled and rebuilds the open code trees after OK.
#include <gtest/gtest.h>

#include <optional>

#include "explorer/explorer_window_fixture.h"
#include "explorer/node_keys.h"
#include "raw_registry.h"
#include "support/dialog_robot.h"
#include "windows/dialogs/properties_dialog.h"
#include "windows/icons/tree_icons.h"
#include "windows/options/settings.h"

namespace arbolet::explorer_app::testing {
namespace {

using windows::dialogs::kPropertiesCaption;
using windows::icons::IconIndex;
using windows::icons::TreeIcon;
using windows::testing::DialogRobot;

class ExplorerIconsTest : public ExplorerWindowTest {
  protected:
    // The picture the control itself holds for a node's item, selected or not.
    int ImageOf(const std::string& key) {
        TVITEMW item{};
        item.mask = TVIF_HANDLE | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        item.hItem = ItemOf(key);
        if (item.hItem == nullptr ||
            !SendMessageW(Tree().hWnd(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)))
            return -100;
        EXPECT_EQ(item.iImage, item.iSelectedImage) << key;
        return item.iImage;
    }
};

TEST_F(ExplorerIconsTest, ItemsShowTheIconOfWhatTheyAre) {
    Open();
    const auto list = reinterpret_cast<HIMAGELIST>(
        SendMessageW(Tree().hWnd(), TVM_GETIMAGELIST, TVSIL_NORMAL, 0));
    ASSERT_NE(list, nullptr) << "the icon resources reached the program";
    EXPECT_EQ(ImageList_GetImageCount(list), windows::icons::kTreeIconCount);

    EXPECT_EQ(ImageOf("frmMain~Inventory~"), IconIndex(TreeIcon::Form));
    EXPECT_EQ(ImageOf("ctlGauge~Inventory~"), IconIndex(TreeIcon::UserControl));
    // Modules and classes sorted into custom folders keep the picture of their type.
    EXPECT_EQ(ImageOf("modLegacy~Inventory~"), IconIndex(TreeIcon::Module));
    EXPECT_EQ(ImageOf("clsItem~Inventory~"), IconIndex(TreeIcon::Class));
    EXPECT_EQ(ImageOf(explorer::FolderKey("Stock Logic", "Inventory")),
              IconIndex(TreeIcon::CustomFolder));
    EXPECT_EQ(ImageOf(explorer::PlaceholderKey("modLegacy~Inventory~")),
              IconIndex(TreeIcon::CodePlaceholder));
    // The only project of the environment is its start-up project.
    EXPECT_EQ(ImageOf(explorer::ProjectKey("Inventory")), IconIndex(TreeIcon::StartupProject));

    // A fixed group's folder opens and closes with its item.
    const std::string forms = explorer::FolderKey("Forms", "Inventory");
    ASSERT_TRUE(Tree().Exists(forms));
    Press(forms, VK_LEFT);
    EXPECT_EQ(ImageOf(forms), IconIndex(TreeIcon::GroupClosed));
    Press(forms, VK_RIGHT);
    EXPECT_EQ(ImageOf(forms), IconIndex(TreeIcon::GroupOpen));
    // Code lines have no picture.
    Press("modLegacy~Inventory~", VK_RIGHT);
    const tree::NodeRef firstLine = Tree().Item("modLegacy~Inventory~")->Child();
    ASSERT_TRUE(firstLine);
    EXPECT_EQ(ImageOf(firstLine->Key()), I_IMAGENONE);
}

const char* const kOptionNames[] = {"ShowTypes",      "ShowEnums",     "ShowVariables",
                                    "ShowSectionEnd", "ShowConstants", "ShowCompiler",
                                    "SortByName"};

class ExplorerOptionsTest : public ExplorerWindowTest {
  protected:
    void SetUp() override {
        ExplorerWindowTest::SetUp();
        windows::testing::DeleteTree(HKEY_CLASSES_ROOT, windows::options::OptionsKeyPath());
    }
    void TearDown() override {
        windows::testing::DeleteTree(HKEY_CLASSES_ROOT, windows::options::OptionsKeyPath());
    }

    static void Store(const char* name, DWORD value) {
        windows::testing::WriteRaw(HKEY_CLASSES_ROOT, windows::options::OptionsKeyPath(), name,
                                   REG_DWORD, windows::testing::DwordBytes(value));
    }
    static std::optional<std::string> Stored(const char* name) {
        const auto raw =
            windows::testing::ReadRaw(HKEY_CLASSES_ROOT, windows::options::OptionsKeyPath(), name);
        if (!raw) return std::nullopt;
        return raw->data;
    }

    // Opens the project with the options the registry holds, as the program does.
    void OpenWithStoredOptions() {
        SetWindowPos(window_->hWnd(), nullptr, 30, 30, 420, 640, SWP_NOZORDER);
        ShowWindow(window_->hWnd(), SW_SHOWNORMAL);
        std::string error;
        ASSERT_TRUE(window_->Open({ProjectFile()}, nullptr, &error)) << error;
        windows::testing::PumpMessages();
    }

    // Chooses "Properties" while the robot plays the steps on the options dialog.
    void ChooseProperties(std::vector<DialogRobot::Step> steps) {
        DialogRobot robot(kPropertiesCaption, std::move(steps));
        window_->Document().RunMenuCommand("ShowProperties");
        EXPECT_TRUE(robot.Finished()) << "the options dialog did not open";
        EXPECT_FALSE(robot.ClosedByRobot()) << "the script did not close the dialog";
    }

    std::int32_t CodeNodes(const std::string& componentKey) {
        std::int32_t count = 0;
        for (std::int32_t i = 1; i <= Tree().Count(); ++i) {
            const tree::NodeRef node = Tree().Item(i);
            if (node->Kind() == tree::NodeKind::CodeLine &&
                explorer::ReadKey(node->Kind(), node->Key()).componentKey == componentKey)
                ++count;
        }
        return count;
    }
};

// Every option is stored first: reading a missing one leaves a value behind by design.
TEST_F(ExplorerOptionsTest, EscapeInTheOptionsDialogChangesNothing) {
    for (const char* name : kOptionNames)
        Store(name, 7);
    OpenWithStoredOptions();
    std::vector<std::optional<std::string>> before;
    for (const char* name : kOptionNames)
        before.push_back(Stored(name));
    ChooseProperties(
        {DialogRobot::Click(windows::dialogs::kChkVariables), DialogRobot::Key(VK_ESCAPE)});
    for (std::size_t i = 0; i < std::size(kOptionNames); ++i)
        EXPECT_EQ(Stored(kOptionNames[i]), before[i]) << kOptionNames[i];
    EXPECT_EQ(Stored("ShowVariables"), windows::testing::DwordBytes(7));
    EXPECT_TRUE(ui_.messages.empty());
}

TEST_F(ExplorerOptionsTest, AfterOkTheOpenCodeTreesFollowTheNewOptions) {
    for (const char* name : kOptionNames)
        Store(name, 0xFFFFFFFF);
    Store("SortByName", 0);
    OpenWithStoredOptions();
    const std::string stock = "modStock~Inventory~";
    Press(stock, VK_RIGHT);
    const std::int32_t everything = CodeNodes(stock);
    ASSERT_GT(everything, 0);

    ChooseProperties({DialogRobot::Click(windows::dialogs::kChkVariables),
                      DialogRobot::Click(windows::dialogs::kChkSectionEnd),
                      DialogRobot::Click(windows::dialogs::kChkConst),
                      DialogRobot::Key(VK_RETURN)});
    ASSERT_TRUE(Tree().Exists(stock));
    EXPECT_TRUE(Tree().Item(stock)->Expanded()) << "the component stays open";
    EXPECT_LT(CodeNodes(stock), everything) << "fewer kinds of line are shown";
    EXPECT_GT(CodeNodes(stock), 0);
}

}  // namespace
}  // namespace arbolet::explorer_app::testing
