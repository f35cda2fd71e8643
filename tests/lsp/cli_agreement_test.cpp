// The server and the command line agree: the project tree has the nodes of `arbolet tree
// --format json` without the placeholders, and a refused command gives the message the command
// line prints for the same refusal.
#include <gtest/gtest.h>

#include "cli/cli_runner.h"
#include "lsp/lsp_client.h"

namespace arbolet::lsp {
namespace {

using cli::testing::Arbolet;
using testing::Client;
using testing::TempFolder;

class CliAgreement : public ::testing::Test {
  protected:
    TempFolder folder;
    Client client;
    std::string vbp;

    void SetUp() override {
        folder.Write("Shop.vbp",
                     "Type=Exe\r\nModule=modMain; modMain.bas\r\nClass=clsCart; clsCart.cls\r\n"
                     "Form=frmMain.frm\r\nName=\"Shop\"\r\n[Quorlin]\r\nQX-TypeName=;Orders;\r\n");
        folder.Write("modMain.bas", "Attribute VB_Name = \"modMain\"\r\nSub Main()\r\nEnd Sub\r\n");
        folder.Write("clsCart.cls", "VERSION 1.0 CLASS\r\nBEGIN\r\nEND\r\n"
                                    "Attribute VB_Name = \"clsCart\"\r\n");
        folder.Write("frmMain.frm", "VERSION 5.00\r\nBegin VB.Form frmMain\r\nEnd\r\n"
                                    "Attribute VB_Name = \"frmMain\"\r\n");
        vbp = (folder.path() / "Shop.vbp").string();
        client.Initialize(folder.path());
    }

    // The refusal the server gives, and the last line the command line prints for it.
    void ExpectSameRefusal(const std::string& command, const Json& arguments,
                           std::vector<std::string> cliArguments) {
        const Json response = client.Request(
            "workspace/executeCommand", Json{{"command", command}, {"arguments", arguments}});
        ASSERT_TRUE(response.contains("error")) << response.dump();
        const auto run = Arbolet(cliArguments);
        EXPECT_EQ(run.status, 1) << run.err;
        std::string last = run.err.substr(0, run.err.size() - 1);
        last = last.substr(last.rfind('\n') + 1);
        EXPECT_EQ("arbolet: " + response["error"]["message"].get<std::string>(), last)
            << command;
    }
};

void CollectKeys(const Json& nodes, std::vector<std::string>& keys, bool skipPlaceholders) {
    for (const Json& node : nodes) {
        if (skipPlaceholders && node["key"].get<std::string>().starts_with("Code - ")) continue;
        keys.push_back(node["key"].get<std::string>() + "|" + node["text"].get<std::string>() +
                       "|" + (node["bold"].get<bool>() ? "bold" : ""));
        CollectKeys(node["children"], keys, skipPlaceholders);
    }
}

TEST_F(CliAgreement, ProjectTreeIsTheTreeCommandWithoutPlaceholders) {
    const auto run = Arbolet({"tree", "--format", "json", vbp});
    ASSERT_EQ(run.status, 0) << run.err;
    std::vector<std::string> expected;
    CollectKeys(Json::parse(run.out)["nodes"], expected, true);
    std::vector<std::string> actual;
    CollectKeys(client.Result("arbolet/projectTree")["nodes"], actual, false);
    EXPECT_EQ(actual, expected);
    EXPECT_GT(actual.size(), 5u);
}

TEST_F(CliAgreement, RefusalsCarryTheCommandLinesMessages) {
    const std::string uri = folder.Uri("Shop.vbp");
    ExpectSameRefusal("arbolet.folders.remove", {uri, "Nope"}, {"folders", vbp, "remove", "Nope"});
    ExpectSameRefusal("arbolet.folders.rename", {uri, "Nope", "Other"},
                      {"folders", vbp, "rename", "Nope", "Other"});
    ExpectSameRefusal("arbolet.rename", {uri, "modMain", "clsCart"},
                      {"rename", vbp, "modMain", "clsCart"});
    ExpectSameRefusal("arbolet.rename", {uri, "modNone", "modOther"},
                      {"rename", vbp, "modNone", "modOther"});
    ExpectSameRefusal("arbolet.folders.move", {uri, "modNone", "Orders"},
                      {"folders", vbp, "move", "modNone", "Orders"});
    // The tool window's message box, as the terminal shows it: title, then the message.
    const Json response =
        client.Request("workspace/executeCommand",
                       Json{{"command", "arbolet.folders.add"}, {"arguments", {uri, "a;b"}}});
    const auto run = Arbolet({"folders", vbp, "add", "a;b"});
    EXPECT_NE(run.err.find(response["error"]["message"].get<std::string>()), std::string::npos)
        << run.err;
}

}  // namespace
}  // namespace arbolet::lsp
