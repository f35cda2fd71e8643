// The explorer's real tree view: read back, it equals what `arbolet tree --format json` prints
// for the same project; expanding a component with broken blocks shows its red error nodes; the
// tree follows files changed on disk.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "analysis/colours.h"
#include "automation.h"
#include "cli/cli_runner.h"
#include "explorer/explorer_window_fixture.h"
#include "windows/screenshot/screen_capture.h"

namespace arbolet::explorer_app::testing {
namespace {

std::string ReadAll(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    return buffer.str();
}

class ExplorerTreeTest : public ExplorerWindowTest {};

TEST_F(ExplorerTreeTest, TheControlReadBackEqualsTheCommandLineTree) {
    Open();
    for (const std::string expand : {"", "modLegacy,CLSITEM", "all"}) {
        const std::filesystem::path out = folder_ / "dump.json";
        ASSERT_TRUE(DumpTree(*window_, expand, out));
        std::vector<std::string> args{"tree", "--format", "json", ProjectFile().string()};
        if (!expand.empty()) args.insert(args.end(), {"--expand", expand});
        const auto cli = cli::testing::Arbolet(args);
        ASSERT_EQ(cli.status, 0) << cli.err;
        EXPECT_EQ(ReadAll(out), cli.out) << "--expand " << expand;
    }
    // Reading back leaves every component closed again, with its placeholder.
    EXPECT_TRUE(Tree().Exists("Code - modLegacy~Inventory~"));
    EXPECT_FALSE(Tree().Item("modLegacy~Inventory~")->Expanded());
}

// Whether a node is a component comes from the tree, not from its key: a module named Project
// has a key that begins like a project's, and is opened and read back all the same.
TEST_F(ExplorerTreeTest, AModuleNamedProjectIsReadBackOpenLikeAnyComponent) {
    AddModuleNamedProject();
    Open();
    const std::filesystem::path out = folder_ / "dump.json";
    ASSERT_TRUE(DumpTree(*window_, "all", out));
    const auto cli = cli::testing::Arbolet(
        {"tree", "--format", "json", "--expand", "all", ProjectFile().string()});
    ASSERT_EQ(cli.status, 0) << cli.err;
    EXPECT_EQ(ReadAll(out), cli.out);
    EXPECT_NE(ReadAll(out).find("SProject~Inventory~@"), std::string::npos)
        << "the module's code lines";
}

TEST_F(ExplorerTreeTest, ExpandingAComponentShowsItsErrorNodesInRed) {
    Open(true);
    Press("modLegacy~Inventory~", VK_RIGHT);
    ASSERT_FALSE(Tree().Exists("Code - modLegacy~Inventory~")) << "the placeholder went";

    int errors = 0;
    for (std::int32_t i = 1; i <= Tree().Count(); ++i) {
        const tree::NodeRef node = Tree().Item(i);
        if (!analysis::colour::IsError(node->ForeColor())) continue;
        ++errors;
        // Every ancestor is open, so the error can be scrolled to.
        for (tree::NodeRef up = node->Parent(); up; up = up->Parent())
            EXPECT_TRUE(up->Expanded()) << node->Text() << " under " << up->Text();
    }
    EXPECT_GE(errors, 3) << "modLegacy has a lost End If, crossed Next and a stray End If";

    // Scrolled to the top, the picture shows the project's icons above the open component; its
    // errors are drawn in red by the custom draw.
    SendMessageW(Tree().hWnd(), WM_VSCROLL, SB_TOP, 0);
    UpdateWindow(window_->hWnd());
    windows::testing::PumpMessagesFor(200);
    const windows::RgbImage picture =
        windows::CaptureScreen(windows::UnionOfWindows({window_->hWnd()}));
    std::filesystem::create_directories("artifacts");
    ASSERT_TRUE(windows::WritePng("artifacts/explorer_tree.png", picture));
    std::printf("tree picture: artifacts/explorer_tree.png (%dx%d)\n", picture.width,
                picture.height);
    EXPECT_GT(windows::CountPixels(picture, RGB(255, 0, 0)), 40) << "red error texts";

    // Collapsing puts the placeholder back and drops the code nodes.
    const std::int32_t before = Tree().Count();
    Press("modLegacy~Inventory~", VK_LEFT);
    EXPECT_TRUE(Tree().Exists("Code - modLegacy~Inventory~"));
    EXPECT_LT(Tree().Count(), before);
}

TEST_F(ExplorerTreeTest, TheTreeFollowsFilesChangedOnDisk) {
    Open();
    ASSERT_FALSE(Tree().Exists("modAudit~Inventory~"));
    folder_.Write("modAudit.bas", "Attribute VB_Name = \"modAudit\"\r\nOption Explicit\r\n");
    std::string project = Read("Inventory.vbp");
    project.insert(project.find("Class=clsItem"), "Module=modAudit; modAudit.bas\r\n");
    folder_.Write("Inventory.vbp", project);
    for (int wait = 0; wait < 60 && !Tree().Exists("modAudit~Inventory~"); ++wait)
        windows::testing::PumpMessagesFor(100);
    EXPECT_TRUE(Tree().Exists("modAudit~Inventory~"));
}

}  // namespace
}  // namespace arbolet::explorer_app::testing
