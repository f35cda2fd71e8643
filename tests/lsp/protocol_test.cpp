// The protocol's life cycle and its answers to wrong messages: initialize and the negotiated
// encoding, requests before initialize, unknown methods, bodies that are not JSON, shutdown and
// the exit status, cancellation.
#include <gtest/gtest.h>

#include "disk/vb_path.h"
#include "lsp/lsp_client.h"

namespace arbolet::lsp {
namespace {

using testing::Client;
using testing::TempFolder;

TEST(Protocol, InitializeNegotiatesTheEncodingAndListsTheCapabilities) {
    TempFolder folder;
    Client utf16;
    const Json result = utf16.Initialize(folder.path());
    const Json& capabilities = result["capabilities"];
    EXPECT_EQ(capabilities["positionEncoding"], "utf-16");
    EXPECT_EQ(capabilities["textDocumentSync"]["change"], 2);
    for (const char* provider :
         {"documentSymbolProvider", "foldingRangeProvider", "documentHighlightProvider",
          "definitionProvider", "workspaceSymbolProvider"}) {
        EXPECT_EQ(capabilities[provider], true) << provider;
    }
    EXPECT_EQ(capabilities["executeCommandProvider"]["commands"].size(), 5u);
    EXPECT_EQ(result["serverInfo"]["name"], "arbolet");

    Client utf8;
    EXPECT_EQ(
        utf8.Initialize(folder.path(), Json::object(), true)["capabilities"]["positionEncoding"],
        "utf-8");
    // A second initialize is an error; the server keeps working.
    EXPECT_EQ(utf8.Request("initialize", Json::object())["error"]["code"],
              error_code::kInvalidRequest);
}

TEST(Protocol, WrongMessagesGetTheirErrorsAndTheServerGoesOn) {
    TempFolder folder;
    Client client;
    EXPECT_EQ(client.Request("textDocument/documentSymbol")["error"]["code"],
              error_code::kServerNotInitialized);
    client.Initialize(folder.path());
    EXPECT_EQ(client.Request("textDocument/unknownThing")["error"]["code"],
              error_code::kMethodNotFound);
    client.Clear();
    client.SendRaw("{not json");
    ASSERT_EQ(client.Received().size(), 1u);
    EXPECT_EQ(client.Received()[0]["error"]["code"], error_code::kParseError);
    EXPECT_TRUE(client.Received()[0]["id"].is_null());
    client.Clear();
    client.SendRaw("[1,2,3]");
    client.SendRaw(R"({"jsonrpc":"2.0","id":{"odd":1},"method":"shutdown"})");
    for (const Json& message : client.Received())
        EXPECT_EQ(message["error"]["code"], error_code::kInvalidRequest);
    client.Clear();
    client.Notify("custom/unknownNotification", Json{{"x", 1}});
    client.Notify("$/setTrace", Json{{"value", "verbose"}});
    EXPECT_TRUE(client.Received().empty());
    // Parameters of the wrong form are InvalidParams, not a crash.
    EXPECT_EQ(client.Request("textDocument/documentHighlight",
                             Json{{"textDocument", 5}})["error"]["code"],
              error_code::kInvalidParams);
    EXPECT_EQ(client.Request("textDocument/foldingRange", Json::array())["error"]["code"],
              error_code::kInvalidParams);
    EXPECT_FALSE(client.server().ExitRequested());
}

TEST(Protocol, ExitStatusDependsOnShutdown) {
    TempFolder folder;
    Client orderly;
    orderly.Initialize(folder.path());
    EXPECT_TRUE(orderly.Result("shutdown").is_null());
    EXPECT_EQ(orderly.Request("workspace/symbol", Json{{"query", ""}})["error"]["code"],
              error_code::kInvalidRequest);
    orderly.Notify("exit");
    EXPECT_TRUE(orderly.server().ExitRequested());
    EXPECT_EQ(orderly.server().ExitCode(), 0);

    Client abrupt;
    abrupt.Initialize(folder.path());
    abrupt.Notify("exit");
    EXPECT_TRUE(abrupt.server().ExitRequested());
    EXPECT_EQ(abrupt.server().ExitCode(), 1);
}

TEST(Protocol, ACancelledRequestIsAnsweredAsCancelled) {
    TempFolder folder;
    Client client;
    client.Initialize(folder.path());
    client.server().Cancel(Json(77));
    client.Clear();
    client.Send(Json{{"jsonrpc", "2.0"},
                     {"id", 77},
                     {"method", "workspace/symbol"},
                     {"params", Json{{"query", "x"}}}});
    ASSERT_EQ(client.Received().size(), 1u);
    EXPECT_EQ(client.Received()[0]["error"]["code"], error_code::kRequestCancelled);
    // Only that request: the next one with another id is answered.
    EXPECT_TRUE(client.Result("workspace/symbol", Json{{"query", "x"}}).is_array());
}

TEST(Protocol, UrisAndPathsRoundTrip) {
    // From UTF-8 explicitly: a narrow literal is read in the ANSI code page on Windows.
    const std::filesystem::path path = disk::PathFromUtf8("/tmp/a folder/é#1.bas");
    const std::string uri = UriFromPath(path);
    EXPECT_EQ(uri, "file:///tmp/a%20folder/%C3%A9%231.bas");
    EXPECT_EQ(PathFromUri(uri), path);
    EXPECT_EQ(PathFromUri("FILE:///x/y.bas"), std::filesystem::path("/x/y.bas"));
    EXPECT_FALSE(PathFromUri("untitled:Untitled-1"));
    EXPECT_FALSE(PathFromUri("file:"));
}

}  // namespace
}  // namespace arbolet::lsp
