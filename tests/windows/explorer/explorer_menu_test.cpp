// The context menus as the real popup menu shows them after a right click, read while open:
// each node kind's menu, empty tree space, the background, the enabled states the project's
// environment gives, and a picture of one for people to look at.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "automation.h"
#include "explorer/explorer_window_fixture.h"

namespace arbolet::explorer_app::testing {
namespace {

using nlohmann::json;

class ExplorerMenuTest : public ExplorerWindowTest {
  protected:
    json Menu(const std::string& key, const std::filesystem::path& screenshot = {}) {
        const std::filesystem::path out = folder_ / "menu.json";
        std::string error;
        EXPECT_TRUE(DumpMenu(*window_, key, out, screenshot, error)) << error;
        std::ifstream in(out);
        return json::parse(in, nullptr, false);
    }

    static std::vector<std::string> Captions(const json& items) {
        std::vector<std::string> captions;
        for (const auto& item : items)
            captions.push_back(item["caption"].get<std::string>());
        return captions;
    }
};

const std::vector<std::string> kProjectMenu{
    "Set As Start &Up", "-", "Sa&ve Project", "-", "&Add", "-", "&Hide"};
const std::vector<std::string> kAddMenu{"&Form",         "MD&I Form",      "&Class Module",
                                        "&User Control", "&Property Page", "User &Document",
                                        "&New Folder"};

TEST_F(ExplorerMenuTest, ProjectFolderAndEmptySpaceMenus) {
    Open();
    const json project = Menu("Project~Inventory");
    ASSERT_TRUE(project.contains("items"));
    EXPECT_EQ(Captions(project["items"]), kProjectMenu);
    EXPECT_EQ(project["items"][0]["key"], "ProjectSetStartup");
    EXPECT_TRUE(project["items"][1]["separator"]);
    const json& add = project["items"][4];
    EXPECT_EQ(add["key"], "ProjectAdd");
    EXPECT_EQ(Captions(add["items"]), kAddMenu);
    // A standard EXE project has no user documents, and no MDI form yet.
    EXPECT_TRUE(add["items"][1]["enabled"]);
    EXPECT_FALSE(add["items"][5]["enabled"]);
    EXPECT_TRUE(add["items"][6]["enabled"]);

    const json folder = Menu("Type~Forms~Inventory");
    EXPECT_EQ(Captions(folder["items"]),
              (std::vector<std::string>{"Sa&ve Project", "-", "&Add", "-", "&Hide"}));
    EXPECT_EQ(Tree().SelectedItem()->Key(), "Type~Forms~Inventory") << "selected by the click";

    EXPECT_EQ(Captions(Menu("")["items"]), kProjectMenu) << "the active project's menu";
}

TEST_F(ExplorerMenuTest, ComponentAndCodeLineMenus) {
    Open(true);
    const json module = Menu("modStock~Inventory~");
    EXPECT_EQ(Captions(module["items"]),
              (std::vector<std::string>{"View O&bject", "View C&ode", "-", "&Add", "-",
                                        "&Remove modStock", "-", "&Hide"}));
    EXPECT_FALSE(module["items"][0]["enabled"]) << "a standard module has no designer";
    EXPECT_TRUE(module["items"][1]["enabled"]);
    const json form = Menu("frmMain~Inventory~");
    EXPECT_TRUE(form["items"][0]["enabled"]);

    Press("modLegacy~Inventory~", VK_RIGHT);
    std::filesystem::create_directories("artifacts");
    const json line = Menu("SmodLegacy~Inventory~@13", "artifacts/explorer_menu.png");
    EXPECT_EQ(Captions(line["items"]),
              (std::vector<std::string>{"View O&bject", "View C&ode", "-", "&Goto Line 14", "-",
                                        "&Add", "-", "&Remove modLegacy", "-", "&Hide"}));
    EXPECT_EQ(line["items"][3]["key"], "Goto:SmodLegacy~Inventory~@13");
    EXPECT_TRUE(std::filesystem::exists("artifacts/explorer_menu.png"));
}

TEST_F(ExplorerMenuTest, BackgroundMenuAndUnknownKeys) {
    Open();
    EXPECT_EQ(Captions(Menu("#background")["items"]),
              (std::vector<std::string>{"&Properties", "-", "&About Arbolet", "-", "&Help", "-",
                                        "&Locate Current Line\tCtrl+L", "&Next Error\tF8",
                                        "Pre&vious Error\tShift+F8"}));
    std::string error;
    EXPECT_FALSE(DumpMenu(*window_, "NoSuchNode~", folder_ / "none.json", {}, error));
    EXPECT_NE(error.find("NoSuchNode~"), std::string::npos);
}

}  // namespace
}  // namespace arbolet::explorer_app::testing
