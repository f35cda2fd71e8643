// The workspace: projects found under the folder, workspace symbols, definitions across
// components, problems of project files, the project tree, the commands on it, and changes on
// disk taken in without a restart.
#include <gtest/gtest.h>

#include "lsp/lsp_client.h"
#include "lsp/workspace_features.h"

namespace arbolet::lsp {
namespace {

using testing::Client;
using testing::TempFolder;

const std::string kApp =
    "Type=Exe\r\nModule=modMain; modMain.bas\r\nModule=modShared; ../shared/modShared.bas\r\n"
    "Class=clsOrder; clsOrder.cls\r\nModule=modGone; modGone.bas\r\nName=\"App\"\r\n"
    "[Quorlin]\r\nQX-TypeName=;Logic;\r\n";
const std::string kTool =
    "Type=Exe\r\nModule=modShared; ../shared/modShared.bas\r\nModule=modTool; modTool.bas\r\n"
    "Name=\"Tool\"\r\n";
const std::string kMain =
    "Attribute VB_Name = \"modMain\"\r\n"
    "Private mTotal As Long\r\n"
    "Public Sub Main()\r\n"
    "    mTotal = SharedCount + modShared.Helper(1)\r\n"
    "    Dim o As clsOrder\r\n"
    "    ToolOnly\r\n"
    "End Sub\r\n";
const std::string kShared =
    "Attribute VB_Name = \"modShared\"\r\n"
    "Public Const SharedCount = 3\r\n"
    "Public Enum Mode\r\n    ModeFast\r\nEnd Enum\r\n"
    "Private Function Helper(ByVal x As Long) As Long\r\nEnd Function\r\n"
    "Public Function Helper2() As Long\r\nEnd Function\r\n";
const std::string kOrder =
    "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1\r\nEND\r\n"
    "Attribute VB_Name = \"clsOrder\"\r\nAttribute VB_Exposed = False\r\n"
    "Public Property Get Total() As Long\r\nEnd Property\r\n"
    "Private Sub Class_Initialize()\r\nEnd Sub\r\n";
const std::string kTool1 =
    "Attribute VB_Name = \"modTool\"\r\nPublic Sub ToolOnly()\r\nEnd Sub\r\n";

class Workspace : public ::testing::Test {
  protected:
    TempFolder folder;
    Client client;

    void SetUp() override {
        folder.Write("app/App.vbp", kApp);
        folder.Write("app/modMain.bas", kMain);
        folder.Write("app/clsOrder.cls", kOrder);
        folder.Write("shared/modShared.bas", kShared);
        folder.Write("tool/Tool.vbp", kTool);
        folder.Write("tool/modTool.bas", kTool1);
        folder.Write(".hidden/Hidden.vbp", "Type=Exe\r\nName=\"Hidden\"\r\n");
        folder.Write("node_modules/x/X.vbp", "Type=Exe\r\nName=\"X\"\r\n");
        client.Initialize(folder.path());
    }
    Json Symbols(const std::string& query) {
        return client.Result("workspace/symbol", Json{{"query", query}});
    }
    Json DefinitionAt(const std::string& file, int line, int character) {
        const std::string uri = folder.Uri(file);
        client.Open(uri, folder.Read(file));
        return client.Result("textDocument/definition",
                             Json{{"textDocument", {{"uri", uri}}},
                                  {"position", {{"line", line}, {"character", character}}}});
    }
};

TEST_F(Workspace, SymbolsMatchFuzzilyAcrossComponentsWithTheirContainer) {
    const Json all = Symbols("");
    std::map<std::string, int> count;
    for (const Json& s : all)
        ++count[s["name"]];
    // The shared module is indexed once; hidden folders and node_modules are not searched.
    EXPECT_EQ(count["SharedCount"], 1);
    EXPECT_EQ(count["modShared"], 1);
    EXPECT_EQ(count["Hidden"] + count["X"], 0);
    EXPECT_EQ(count["ModeFast"], 0);  // enum members are found by definition, not listed
    for (const char* name : {"Main", "mTotal", "Mode", "Helper", "Total", "clsOrder", "ToolOnly"})
        EXPECT_EQ(count[name], 1) << name;

    const Json fuzzy = Symbols("hlp2");
    ASSERT_EQ(fuzzy.size(), 1u);
    EXPECT_EQ(fuzzy[0]["name"], "Helper2");
    EXPECT_EQ(fuzzy[0]["containerName"], "modShared");
    EXPECT_EQ(fuzzy[0]["location"]["uri"], folder.Uri("shared/modShared.bas"));
    EXPECT_EQ(fuzzy[0]["location"]["range"]["start"], Json({{"line", 7}, {"character", 16}}));
    // Best matches first, case ignored.
    const Json ranked = Symbols("HELPER");
    ASSERT_GE(ranked.size(), 2u);
    EXPECT_EQ(ranked[0]["name"], "Helper");
    EXPECT_EQ(ranked[0]["kind"], 12);
    EXPECT_EQ(FuzzyScore("mt", "mtotal"), 1);
    EXPECT_LT(FuzzyScore("xyz", "mtotal"), 0);
}

TEST_F(Workspace, DefinitionsResolveOwnThenPublicThenQualifiedNames) {
    // mTotal: the module's own private variable.
    Json found = DefinitionAt("app/modMain.bas", 3, 6);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0]["uri"], folder.Uri("app/modMain.bas"));
    EXPECT_EQ(found[0]["range"]["start"], Json({{"line", 1}, {"character", 8}}));
    // SharedCount: a public constant of another component of the project.
    found = DefinitionAt("app/modMain.bas", 3, 16);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0]["uri"], folder.Uri("shared/modShared.bas"));
    EXPECT_EQ(found[0]["range"]["start"]["line"], 1);
    // modShared.Helper: qualified, so the private function of that module is meant.
    found = DefinitionAt("app/modMain.bas", 3, 41);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0]["range"]["start"], Json({{"line", 5}, {"character", 17}}));
    // clsOrder: a component name goes to its file.
    found = DefinitionAt("app/modMain.bas", 4, 14);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0]["uri"], folder.Uri("app/clsOrder.cls"));
    // ToolOnly belongs to a project modMain is not in.
    EXPECT_TRUE(DefinitionAt("app/modMain.bas", 5, 6).is_null());
    // Nothing under the cursor.
    EXPECT_TRUE(DefinitionAt("app/modMain.bas", 3, 0).is_null());
}

TEST_F(Workspace, EditsInTheEditorAndChangesOnDiskReachTheIndex) {
    const std::string uri = folder.Uri("tool/modTool.bas");
    client.Open(uri, kTool1);
    client.Notify(
        "textDocument/didChange",
        Json{{"textDocument", {{"uri", uri}, {"version", 2}}},
             {"contentChanges",
              Json::array({{{"text", kTool1 + "Public Sub Brandnew()\r\nEnd Sub\r\n"}}})}});
    EXPECT_EQ(Symbols("brandnew").size(), 1u);
    // Closing without saving forgets the edit.
    client.Notify("textDocument/didClose", Json{{"textDocument", {{"uri", uri}}}});
    EXPECT_TRUE(Symbols("brandnew").empty());
    // A change on disk, announced by the client's watcher.
    folder.Write("tool/modTool.bas", kTool1 + "Public Sub FromDisk()\r\nEnd Sub\r\n");
    client.Notify("workspace/didChangeWatchedFiles",
                  Json{{"changes", Json::array({{{"uri", uri}, {"type", 2}}})}});
    EXPECT_EQ(Symbols("fromdisk").size(), 1u);
    // A project file that lists a new component: the workspace is read again.
    folder.Write("tool/modNew.bas",
                 "Attribute VB_Name = \"modNew\"\r\nSub NewOne()\r\nEnd Sub\r\n");
    folder.Write("tool/Tool.vbp", kTool + "Module=modNew; modNew.bas\r\n");
    client.Clear();
    client.Notify(
        "workspace/didChangeWatchedFiles",
        Json{{"changes", Json::array({{{"uri", folder.Uri("tool/Tool.vbp")}, {"type", 2}}})}});
    EXPECT_EQ(Symbols("newone").size(), 1u);
    EXPECT_FALSE(client.Notifications("arbolet/projectTreeChanged").empty());
}

TEST_F(Workspace, AMissingComponentIsADiagnosticOnTheProjectFile) {
    const Json diagnostics = client.LastDiagnostics(folder.Uri("app/App.vbp"));
    ASSERT_EQ(diagnostics.size(), 1u) << diagnostics.dump();
    EXPECT_EQ(diagnostics[0]["range"]["start"]["line"], 4);
    EXPECT_NE(diagnostics[0]["message"].get<std::string>().find("modGone.bas"), std::string::npos);
    EXPECT_EQ(diagnostics[0]["severity"], 2);
    // Fixed on disk: the diagnostic goes away.
    folder.Write("app/modGone.bas", "Attribute VB_Name = \"modGone\"\r\n");
    client.Notify(
        "workspace/didChangeWatchedFiles",
        Json{{"changes", Json::array({{{"uri", folder.Uri("app/App.vbp")}, {"type", 2}}})}});
    EXPECT_TRUE(client.LastDiagnostics(folder.Uri("app/App.vbp")).empty());
}

TEST_F(Workspace, ProjectTreeHasTheExplorersNodesWithoutPlaceholders) {
    const Json tree = client.Result("arbolet/projectTree");
    ASSERT_EQ(tree["nodes"].size(), 2u) << tree.dump(1);
    const Json& app = tree["nodes"][0];
    EXPECT_EQ(app["kind"], "project");
    EXPECT_EQ(app["text"], "App");
    EXPECT_EQ(app["icon"], "project-startup");
    EXPECT_EQ(app["bold"], true);
    EXPECT_EQ(app["uri"], folder.Uri("app/App.vbp"));
    EXPECT_EQ(app["image"], 1);
    std::map<std::string, Json> folders;
    for (const Json& node : app["children"])
        folders[node["text"]] = node;
    ASSERT_TRUE(folders.contains("Logic"));
    EXPECT_EQ(folders["Logic"]["custom"], true);
    EXPECT_EQ(folders["Logic"]["icon"], "custom-folder");
    EXPECT_TRUE(folders["Logic"]["children"].empty());
    const Json& classes = folders["Class Modules"];
    EXPECT_EQ(classes["icon"], "folder-closed");
    const Json& order = classes["children"][0];
    EXPECT_EQ(order["kind"], "component");
    EXPECT_EQ(order["icon"], "class");
    EXPECT_EQ(order["key"], "clsOrder~App~");
    EXPECT_EQ(order["uri"], folder.Uri("app/clsOrder.cls"));
    EXPECT_EQ(order["project"], folder.Uri("app/App.vbp"));
    EXPECT_TRUE(order["children"].empty());  // no "Code List" placeholder
    // One project asked for.
    const Json tool =
        client.Result("arbolet/projectTree", Json{{"project", folder.Uri("tool/Tool.vbp")}});
    ASSERT_EQ(tool["nodes"].size(), 1u);
    EXPECT_EQ(tool["nodes"][0]["text"], "Tool");
    EXPECT_EQ(tool["nodes"][0]["icon"], "project");
}

TEST_F(Workspace, CommandsChangeTheProjectOrRefuseWithoutWriting) {
    const std::string vbp = folder.Uri("app/App.vbp");
    client.Clear();
    EXPECT_TRUE(client
                    .Result("workspace/executeCommand", Json{{"command", "arbolet.folders.add"},
                                                             {"arguments", {vbp, "Reports"}}})
                    .is_null());
    EXPECT_NE(folder.Read("app/App.vbp").find("QX-TypeName=;Logic;Reports;"), std::string::npos);
    const auto changed = client.Notifications("arbolet/projectTreeChanged");
    ASSERT_FALSE(changed.empty());
    EXPECT_EQ(changed.back()["project"], vbp);

    EXPECT_TRUE(
        client
            .Result("workspace/executeCommand", Json{{"command", "arbolet.folders.move"},
                                                     {"arguments", {vbp, "modMain", "Reports"}}})
            .is_null());
    EXPECT_NE(folder.Read("app/modMain.bas").find("Reports"), std::string::npos);

    const std::string before = folder.Read("app/App.vbp");
    const auto refused = [&](Json arguments, const std::string& command) {
        const Json response = client.Request("workspace/executeCommand",
                                             Json{{"command", command}, {"arguments", arguments}});
        EXPECT_EQ(response["error"]["code"], error_code::kRequestFailed) << response.dump();
        return response["error"]["message"].get<std::string>();
    };
    EXPECT_EQ(refused({vbp, "Bad;Name"}, "arbolet.folders.add"),
              "Not a valid folder name, please try again.");
    EXPECT_EQ(refused({vbp, "Nope"}, "arbolet.folders.remove"),
              "'Nope' is not a custom folder of App");
    EXPECT_EQ(refused({vbp, "modMain", "clsOrder"}, "arbolet.rename"),
              "App does not take 'clsOrder' as a component name: Name conflicts with existing "
              "module, project, or object library: the component clsOrder has that name");
    EXPECT_EQ(folder.Read("app/App.vbp"), before);

    // A file with unsaved changes in the editor is never written.
    const std::string main = folder.Uri("app/modMain.bas");
    client.Open(main, folder.Read("app/modMain.bas"));
    client.Notify("textDocument/didChange",
                  Json{{"textDocument", {{"uri", main}, {"version", 2}}},
                       {"contentChanges", Json::array({{{"text", kMain + "' edited\r\n"}}})}});
    const std::string onDisk = folder.Read("app/modMain.bas");
    const std::string message = refused({vbp, "modMain", "modFirst"}, "arbolet.rename");
    EXPECT_NE(message.find("unsaved changes"), std::string::npos) << message;
    EXPECT_EQ(folder.Read("app/modMain.bas"), onDisk);
    // Once saved, it may be written.
    folder.Write("app/modMain.bas", kMain + "' edited\r\n");
    client.Notify("textDocument/didSave", Json{{"textDocument", {{"uri", main}}}});
    EXPECT_TRUE(
        client
            .Result("workspace/executeCommand", Json{{"command", "arbolet.rename"},
                                                     {"arguments", {vbp, "modMain", "modFirst"}}})
            .is_null());
    EXPECT_NE(folder.Read("app/modMain.bas").find("VB_Name = \"modFirst\""), std::string::npos);
    // Arguments of the wrong form.
    EXPECT_EQ(
        client.Request("workspace/executeCommand",
                       Json{{"command", "arbolet.rename"}, {"arguments", {vbp}}})["error"]["code"],
        error_code::kInvalidParams);
}

}  // namespace
}  // namespace arbolet::lsp
