// The features of one open document: diagnostics with their rule, related opener and hint;
// the outline with its kinds, blocks, branches and error nodes, and the settings that shape it;
// folding that follows the VB6 block parse; matching keywords.
#include <gtest/gtest.h>

#include <random>

#include "lsp/lsp_client.h"

namespace arbolet::lsp {
namespace {

using testing::Client;
using testing::TempFolder;

const char* const kModule =
    "Attribute VB_Name = \"modDemo\"\r\n"  // 0
    "Option Explicit\r\n"                  // 1
    "Private Const LIMIT = 10\r\n"         // 2
    "Public Type Pair\r\n"                 // 3
    "    a As Long\r\n"                    // 4
    "    b As Long\r\n"                    // 5
    "End Type\r\n"                         // 6
    "' first comment\r\n"                  // 7
    "' second comment\r\n"                 // 8
    "Public Sub Run(ByVal n As Long)\r\n"  // 9
    "    If n > 0 Then: n = 1\r\n"         // 10
    "    If n = 1 Then\r\n"                // 11
    "        n = 2\r\n"                    // 12
    "    ElseIf n = 2 Then\r\n"            // 13
    "        For i = 1 To 3\r\n"           // 14
    "        Next i\r\n"                   // 15
    "    Else\r\n"                         // 16
    "        n = 3\r\n"                    // 17
    "    End If\r\n"                       // 18
    "End Sub\r\n"                          // 19
    "Private Sub Class_Initialize()\r\n"   // 20
    "    Do\r\n"                           // 21
    "End Sub\r\n"                          // 22
    "    End If\r\n";                      // 23

struct Fixture {
    TempFolder folder;
    Client client;
    std::string uri;

    explicit Fixture(Json options = Json::object(), bool utf8 = false) {
        client.Initialize(folder.path(), std::move(options), utf8);
        uri = folder.Uri("modDemo.bas");
        client.Open(uri, kModule);
    }
    Json Symbols() {
        return client.Result("textDocument/documentSymbol", Json{{"textDocument", {{"uri", uri}}}});
    }
    Json Highlights(int line, int character) {
        return client.Result("textDocument/documentHighlight",
                             Json{{"textDocument", {{"uri", uri}}},
                                  {"position", {{"line", line}, {"character", character}}}});
    }
};

const Json* Find(const Json& symbols, const std::string& name) {
    for (const Json& symbol : symbols) {
        if (symbol["name"] == name) return &symbol;
    }
    return nullptr;
}

TEST(DocumentFeatures, DiagnosticsCarryRuleOpenerAndHintAtTheirLines) {
    Fixture f;
    const Json diagnostics = f.client.LastDiagnostics(f.uri);
    ASSERT_EQ(diagnostics.size(), 2u) << diagnostics.dump(1);
    const Json& unclosed = diagnostics[0];
    EXPECT_EQ(unclosed["code"], "unclosed-block");
    EXPECT_EQ(unclosed["source"], "arbolet");
    EXPECT_EQ(unclosed["severity"], 1);
    EXPECT_EQ(unclosed["range"]["start"], Json({{"line", 21}, {"character", 4}}));
    const Json& unmatched = diagnostics[1];
    EXPECT_EQ(unmatched["code"], "unmatched-end");
    EXPECT_EQ(unmatched["range"]["start"]["line"], 23);
    EXPECT_NE(unmatched["message"].get<std::string>().find("line 24"), std::string::npos);
    // The checker's own wording, line numbers counted from 1 as in `arbolet check`.
    EXPECT_NE(unclosed["message"].get<std::string>().find("line 22"), std::string::npos);

    // A Next without its For: the related information points at the opener of the block.
    f.client.Notify(
        "textDocument/didChange",
        Json{{"textDocument", {{"uri", f.uri}, {"version", 2}}},
             {"contentChanges", Json::array({{{"range",
                                               {{"start", {{"line", 14}, {"character", 12}}},
                                                {"end", {{"line", 14}, {"character", 13}}}}},
                                              {"text", "j"}}})}});
    const Json changed = f.client.LastDiagnostics(f.uri);
    const Json* nesting = nullptr;
    for (const Json& d : changed) {
        if (d["code"] == "next-nesting") nesting = &d;
    }
    ASSERT_NE(nesting, nullptr) << changed.dump(1);
    EXPECT_EQ((*nesting)["relatedInformation"][0]["location"]["uri"], f.uri);
    EXPECT_EQ((*nesting)["relatedInformation"][0]["location"]["range"]["start"]["line"], 14);
    EXPECT_EQ(f.client.Notifications("textDocument/publishDiagnostics").back()["version"], 2);
}

TEST(DocumentFeatures, OutlineHoldsDeclarationsProceduresBlocksBranchesAndErrors) {
    Fixture f;
    const Json symbols = f.Symbols();
    const Json* limit = Find(symbols, "LIMIT");
    ASSERT_NE(limit, nullptr);
    EXPECT_EQ((*limit)["kind"], 14);
    const Json* pair = Find(symbols, "Pair");
    ASSERT_NE(pair, nullptr);
    EXPECT_EQ((*pair)["kind"], 23);
    ASSERT_EQ((*pair)["children"].size(), 2u);
    EXPECT_EQ((*pair)["children"][1]["name"], "b");
    EXPECT_EQ((*pair)["children"][1]["kind"], 8);

    const Json* run = Find(symbols, "Run");
    ASSERT_NE(run, nullptr);
    EXPECT_EQ((*run)["kind"], 6);
    EXPECT_EQ((*run)["range"]["start"]["line"], 9);
    EXPECT_EQ((*run)["range"]["end"]["line"], 19);
    EXPECT_EQ((*run)["selectionRange"]["start"], Json({{"line", 9}, {"character", 11}}));
    // `If n > 0 Then: n = 1` is a single-line If: no block.
    ASSERT_EQ((*run)["children"].size(), 1u) << (*run)["children"].dump(1);
    const Json& ifBlock = (*run)["children"][0];
    EXPECT_EQ(ifBlock["name"], "If n = 1 Then");
    ASSERT_EQ(ifBlock["children"].size(), 2u);
    EXPECT_EQ(ifBlock["children"][0]["name"], "ElseIf n = 2 Then");
    EXPECT_EQ(ifBlock["children"][0]["children"][0]["name"], "For i = 1 To 3");
    EXPECT_EQ(ifBlock["children"][1]["name"], "Else");

    const Json* init = Find(symbols, "Class_Initialize");
    ASSERT_NE(init, nullptr);
    EXPECT_EQ((*init)["kind"], 9);
    // The unclosed Do holds its error node.
    const Json& doBlock = (*init)["children"][0];
    EXPECT_EQ(doBlock["name"], "Do");
    ASSERT_EQ(doBlock["children"].size(), 1u);
    EXPECT_EQ(doBlock["children"][0]["kind"], 21);
    EXPECT_EQ(doBlock["children"][0]["detail"], "error: unclosed-block");
    // The stray End If after the procedures is an error at the top level.
    const Json& last = symbols.back();
    EXPECT_EQ(last["kind"], 21);
    EXPECT_EQ(last["detail"], "error: unmatched-end");
    EXPECT_EQ(last["range"]["start"]["line"], 23);
}

TEST(DocumentFeatures, SettingsShapeTheOutline) {
    Fixture noBlocks(Json{{"blocks", false},
                          {"display",
                           {{"hideConstants", true},
                            {"hideTypes", true},
                            {"sortByName", true},
                            {"hideSectionEnds", false}}}});
    const Json symbols = noBlocks.Symbols();
    EXPECT_EQ(Find(symbols, "LIMIT"), nullptr);
    EXPECT_EQ(Find(symbols, "Pair"), nullptr);
    const Json* run = Find(symbols, "Run");
    ASSERT_NE(run, nullptr);
    // No blocks, but the section end of the procedure itself.
    ASSERT_EQ((*run)["children"].size(), 1u) << (*run)["children"].dump(1);
    EXPECT_EQ((*run)["children"][0]["name"], "End Sub");
    const Json* init = Find(symbols, "Class_Initialize");
    ASSERT_NE(init, nullptr);
    EXPECT_EQ((*init)["children"][0]["kind"], 21);  // the error stays, under its procedure
    std::vector<std::string> names;
    for (const Json& s : symbols) {
        if (s["kind"] != 21) names.push_back(s["name"]);
    }
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end())) << symbols.dump(1);

    // The settings change at run time.
    noBlocks.client.Notify(
        "workspace/didChangeConfiguration",
        Json{{"settings",
              {{"arbolet", {{"blocks", true}, {"display", {{"hideConstants", false}}}}}}}});
    const Json again = noBlocks.Symbols();
    EXPECT_NE(Find(again, "LIMIT"), nullptr);
    EXPECT_GT((*Find(again, "Run"))["children"].size(), 1u);
    // A setting of the wrong type is a warning, not a change.
    noBlocks.client.Clear();
    noBlocks.client.Notify("workspace/didChangeConfiguration",
                           Json{{"settings", {{"arbolet", {{"codePage", "cyrillic"}}}}}});
    EXPECT_EQ(noBlocks.client.Notifications("window/logMessage").size(), 1u);
}

TEST(DocumentFeatures, FoldingFollowsBlocksBranchesCommentsAndHeader) {
    Fixture f;
    const Json ranges =
        f.client.Result("textDocument/foldingRange", Json{{"textDocument", {{"uri", f.uri}}}});
    std::set<std::tuple<int, int, std::string>> found;
    for (const Json& r : ranges)
        found.insert({r["startLine"], r["endLine"], r.value("kind", "")});
    const std::set<std::tuple<int, int, std::string>> expected = {
        {3, 5, ""},         // Type
        {7, 8, "comment"},  // the comment run
        {9, 18, ""},        // Sub Run, up to its End Sub
        {11, 12, ""},       // If branch
        {13, 15, ""},       // ElseIf branch
        {14, 14 + 0, ""},   // For (one line to its Next: no fold)
        {16, 17, ""},       // Else branch
        {20, 21, ""},       // Class_Initialize
        {21, 21, ""},       // the unclosed Do, cut by End Sub on the next line
    };
    for (const auto& e : expected) {
        if (std::get<0>(e) == std::get<1>(e)) {
            EXPECT_FALSE(found.contains(e));
            continue;
        }
        EXPECT_TRUE(found.contains(e)) << std::get<0>(e) << "-" << std::get<1>(e) << "\n"
                                       << ranges.dump();
    }
    // The single-line If on line 10 is never folded.
    for (const auto& r : found)
        EXPECT_NE(std::get<0>(r), 10);
}

TEST(DocumentFeatures, HighlightsMatchEveryPartOfABlock) {
    Fixture f;
    const auto lines = [](const Json& highlights) {
        std::vector<int> result;
        for (const Json& h : highlights)
            result.push_back(h["range"]["start"]["line"]);
        return result;
    };
    const std::vector<int> ifParts = {11, 13, 16, 18};
    EXPECT_EQ(lines(f.Highlights(11, 5)), ifParts);  // on If
    EXPECT_EQ(lines(f.Highlights(13, 4)), ifParts);  // on ElseIf
    EXPECT_EQ(lines(f.Highlights(16, 6)), ifParts);  // on Else
    EXPECT_EQ(lines(f.Highlights(18, 8)), ifParts);  // on End If
    EXPECT_EQ(lines(f.Highlights(15, 9)), (std::vector<int>{14, 15}));
    EXPECT_EQ(lines(f.Highlights(9, 13)), (std::vector<int>{9, 19}));  // on the name of Run
    EXPECT_EQ(lines(f.Highlights(19, 2)), (std::vector<int>{9, 19}));
    EXPECT_TRUE(f.Highlights(23, 6).empty());  // the unmatched End If
    EXPECT_TRUE(f.Highlights(12, 9).empty());  // not on a keyword
    EXPECT_TRUE(f.Highlights(500, 0).empty());
    const Json first = f.Highlights(11, 5)[0]["range"];
    EXPECT_EQ(first, Json({{"start", {{"line", 11}, {"character", 4}}},
                           {"end", {{"line", 11}, {"character", 6}}}}));
}

TEST(DocumentFeatures, NonAsciiColumnsAreInTheNegotiatedEncoding) {
    for (const bool utf8 : {false, true}) {
        TempFolder folder;
        Client client;
        client.Initialize(folder.path(), Json::object(), utf8);
        const std::string uri = folder.Uri("m.bas");
        client.Open(uri, "Sub S()\r\n    x = \"日本\": If a Then\r\nEnd Sub\r\n");
        const Json diagnostics = client.LastDiagnostics(uri);
        ASSERT_EQ(diagnostics.size(), 1u);
        // `If` after a string of two three-byte characters.
        const Json highlights =
            client.Result("textDocument/documentHighlight",
                          Json{{"textDocument", {{"uri", uri}}},
                               {"position", {{"line", 1}, {"character", utf8 ? 19 : 15}}}});
        ASSERT_EQ(highlights.size(), 1u) << utf8;
        EXPECT_EQ(highlights[0]["range"]["start"]["character"], utf8 ? 18 : 14);
        EXPECT_EQ(highlights[0]["range"]["end"]["character"], utf8 ? 20 : 16);
    }
}

// Random edits sent as incremental changes leave the document where opening the final text
// would: the same diagnostics, symbols and folding.
TEST(DocumentFeatures, IncrementalEditsAgreeWithTheFinalTextOpenedFresh) {
    const std::vector<std::string> pieces = {"If x Then\r\n",
                                             "End If\r\n",
                                             "For i = 1 To 2\n",
                                             "Next\r",
                                             "Sub A()\r\n",
                                             "End Sub\r\n",
                                             "Else\r\n",
                                             "é",
                                             "😀",
                                             "Select Case y\r\n",
                                             "Case 1\r\n",
                                             "End Select\n",
                                             "x = 1: y = 2\r\n",
                                             "#If W Then\r\n",
                                             "#End If\r\n",
                                             "' c\r\n",
                                             "\r\n",
                                             " _\r\n",
                                             "With z\r\n",
                                             "End With\r\n"};
    std::mt19937 random(1234);
    for (const bool utf8 : {false, true}) {
        TempFolder folder;
        Client edited;
        edited.Initialize(folder.path(), Json::object(), utf8);
        const std::string uri = folder.Uri("edited.bas");
        edited.Open(uri, kModule);
        TextDocument mirror(kModule);
        const PositionEncoding encoding = utf8 ? PositionEncoding::Utf8 : PositionEncoding::Utf16;
        for (int step = 0; step < 300; ++step) {
            const auto position = [&] {
                const int line = static_cast<int>(random() % (mirror.LineCount() + 1));
                const int character = static_cast<int>(random() % 40);
                // Where the editor would put it: never inside a character.
                const std::size_t offset = mirror.OffsetOf({line, character}, encoding);
                const std::string before = mirror.Text().substr(0, offset);
                TextDocument prefix(before);
                const int last = prefix.LineCount() - 1;
                return Position{last, UnitsOf(prefix.Line(last), encoding)};
            };
            Position a = position();
            Position b = random() % 3 == 0 ? position() : a;
            if (b.line < a.line || (b.line == a.line && b.character < a.character)) std::swap(a, b);
            std::string text = random() % 4 == 0 ? "" : pieces[random() % pieces.size()];
            // A CR LF is never cut in two by an edit at a line's end.
            mirror.Replace({a, b}, text, encoding);
            edited.Notify("textDocument/didChange",
                          Json{{"textDocument", {{"uri", uri}, {"version", step + 2}}},
                               {"contentChanges",
                                Json::array({{{"range", ToJson(Range{a, b})}, {"text", text}}})}});
        }
        Client fresh;
        fresh.Initialize(folder.path(), Json::object(), utf8);
        fresh.Open(uri, mirror.Text());
        EXPECT_EQ(edited.LastDiagnostics(uri), fresh.LastDiagnostics(uri));
        const Json params{{"textDocument", {{"uri", uri}}}};
        EXPECT_EQ(edited.Result("textDocument/documentSymbol", params),
                  fresh.Result("textDocument/documentSymbol", params));
        EXPECT_EQ(edited.Result("textDocument/foldingRange", params),
                  fresh.Result("textDocument/foldingRange", params));
    }
}

}  // namespace
}  // namespace arbolet::lsp
