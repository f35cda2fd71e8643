// Find as you type over projects on disk: what a typed text asks for, procedure declarations,
// the tree cut down by component, folder and procedure names, the first match, and the tree
// brought back exactly once the search is cleared.
#include <gtest/gtest.h>

#include "explorer/disk_explorer_fixture.h"
#include "explorer/tree_search.h"

namespace arbolet::explorer::testing {
namespace {

std::string Module(const std::string& name, const std::string& code) {
    return "Attribute VB_Name = \"" + name + "\"\r\n" + code;
}

TEST(SearchText, PrefixesBlanksAndLetterCase) {
    using Kind = SearchQuery::Kind;
    const std::vector<std::tuple<std::string, Kind, std::string>> cases = {
        {"", Kind::None, ""},
        {"   ", Kind::None, ""},
        {":", Kind::None, ""},
        {": ", Kind::None, ""},
        {"Stock", Kind::Name, "stock"},
        {"  mOd ", Kind::Name, "mod"},
        {":Refresh", Kind::Procedure, "refresh"},
        {" : Re", Kind::Procedure, "re"},
        {"\xC3\x89t\xC3\xA9", Kind::Name, "\xC3\xA9t\xC3\xA9"},  // "Été": VB lower-cases it
    };
    for (const auto& [typed, kind, text] : cases) {
        const SearchQuery query = ParseSearch(typed);
        EXPECT_EQ(query.kind, kind) << "'" << typed << "'";
        EXPECT_EQ(query.text, text) << "'" << typed << "'";
    }
}

TEST(SearchText, ProcedureDeclarationsAndWhatIsNotOne) {
    const std::vector<std::pair<std::string, std::optional<std::string>>> cases = {
        {"Sub Main()", "Main"},
        {"Public Sub Form_Load()", "Form_Load"},
        {"Private Static Function Total(ByVal a As Long) As Long", "Total"},
        {"Friend Property Get Count() As Long", "Count"},
        {"Public Property Let Name(ByVal v As String)", "Name"},
        {"Property Set Item(o As Object)", "Item"},
        {"  Function NoBrackets As Long", "NoBrackets"},
        {"Sub Trailing 'comment", "Trailing"},
        {"PRIVATE SUB Shout()", "Shout"},
        {"Private Declare Function GetTickCount Lib \"kernel32\" () As Long", std::nullopt},
        {"Property Value()", std::nullopt},
        {"End Sub", std::nullopt},
        {"Exit Function", std::nullopt},
        {"Sub_Count = 3", std::nullopt},
        {"Function = 3", std::nullopt},
        {"Sub A.B()", std::nullopt},
        {"Public Event Changed()", std::nullopt},
        {"Sub", std::nullopt},
        {"", std::nullopt},
        {std::string("Sub \xFF\x00x", 7), std::nullopt},
    };
    for (const auto& [statement, name] : cases)
        EXPECT_EQ(ProcedureNameOf(statement), name) << statement;
}

const std::string kVbp =
    Crlf({"Type=Exe", "Module=modStock; modStock.bas", "Module=modReports; modReports.bas",
          "Class=clsStockItem; clsStockItem.cls", "Class=clsOrder; clsOrder.cls", "Name=\"Shop\""});

std::string ClassFile(const std::string& name, const std::string& code) {
    return Crlf({"VERSION 1.0 CLASS", "BEGIN", "  MultiUse = -1  'True", "END"}) +
           Module(name, code);
}

class TreeSearch : public DiskExplorerTest {
  protected:
    void SetUp() override {
        folder.Write("Shop.vbp", kVbp);
        folder.Write("modStock.bas",
                     Module("modStock", Crlf({"Option Explicit", "Public Sub RefreshStock()",
                                              "    If a Then", "        b", "    End If", "End Sub",
                                              "Function Count() As Long", "End Function"})));
        folder.Write("modReports.bas",
                     Module("modReports", Crlf({"Sub Print_Report()", "End Sub",
                                                "Private Sub refreshAll()", "End Sub"})));
        folder.Write(
            "clsStockItem.cls",
            ClassFile("clsStockItem", Crlf({"Property Get Price() As Long", "End Property"})));
        folder.Write("clsOrder.cls", ClassFile("clsOrder", Crlf({"Sub Place()", "End Sub"})));
        Open({"Shop.vbp"});
    }
    SearchResult Search(std::string_view typed) {
        return ApplySearch(*explorer, view, ParseSearch(typed), procedures);
    }
    ProcedureIndex procedures;
};

TEST_F(TreeSearch, NamesKeepMatchingComponentsAndFoldersUnderTheirProjects) {
    SearchResult result = Search("STOCK");
    EXPECT_EQ(Tree(), "*Shop\n  Class Modules\n    clsStockItem\n  Modules\n    modStock\n");
    EXPECT_EQ(result.components, 2);
    EXPECT_TRUE(Node("Project~Shop")->Expanded());
    EXPECT_TRUE(Node("Type~Modules~Shop")->Expanded());

    // A folder that matches keeps all its components; a shorter text widens the tree again.
    result = Search("class");
    EXPECT_EQ(Tree(), "*Shop\n  Class Modules\n    clsOrder\n    clsStockItem\n");
    EXPECT_EQ(result.components, 2);
    EXPECT_TRUE(Node("Type~Class Modules~Shop")->Expanded());
    EXPECT_EQ(Search("s").components, 4);

    result = Search("nothing like it");
    EXPECT_EQ(Tree(), "");
    EXPECT_EQ(FirstMatch(nodes()), nullptr);

    Search("");
    EXPECT_EQ(Tree(),
              "*Shop\n  Class Modules\n    clsOrder\n    clsStockItem\n  Modules\n"
              "    modReports\n    modStock\n");
}

TEST_F(TreeSearch, ProceduresShowUnderTheirComponentsKeyedAsANormalExpansion) {
    // The keys and texts of a normal expansion, to compare with.
    Expand("modStock~Shop~");
    const std::string ifKey = "SmodStock~Shop~@2";
    ASSERT_TRUE(nodes().Exists(ifKey));
    const std::string ifText = Node(ifKey)->Text();

    const SearchResult result = Search(":refresh");
    EXPECT_EQ(result.components, 2);
    EXPECT_EQ(result.procedures, 2);
    EXPECT_EQ(Tree(),
              "*Shop\n  Modules\n    modReports\n      Private Sub refreshAll()\n"
              "    modStock\n      Public Sub RefreshStock()\n        If a Then\n"
              "          b\n        End If\n");
    EXPECT_TRUE(Node("modStock~Shop~")->Expanded());
    EXPECT_EQ(Node(ifKey)->Text(), ifText);
    EXPECT_FALSE(nodes().Exists("SmodStock~Shop~@6")) << "Count does not match";
    EXPECT_FALSE(nodes().Exists("Code - modStock~Shop~"));

    // Enter opens the first procedure; with names, the first component.
    EXPECT_EQ(FirstMatch(nodes())->Key(), "SmodReports~Shop~@2");
    Search("order");
    EXPECT_EQ(FirstMatch(nodes())->Key(), "clsOrder~Shop~");

    // A property's name counts; a text no procedure has empties the tree.
    Search(":price");
    EXPECT_EQ(Tree(),
              "*Shop\n  Class Modules\n    clsStockItem\n      Property Get Price() As Long\n");
    Search(":zzz");
    EXPECT_EQ(Tree(), "");
}

TEST_F(TreeSearch, ProcedureNamesAreReadOnceUntilTheComponentIsForgotten) {
    Search(":refresh");
    folder.Write("modReports.bas", Module("modReports", Crlf({"Sub RefreshMore()", "End Sub"})));
    vbe->Refresh({folder / "modReports.bas"});
    // The index still has the old names: the document forgets a component when it changes.
    Search(":refreshmore");
    EXPECT_EQ(Tree(), "");
    procedures.Forget("modReports~Shop~");
    Search(":refreshmore");
    EXPECT_EQ(Tree(), "*Shop\n  Modules\n    modReports\n      Sub RefreshMore()\n");
}

TEST_F(TreeSearch, ClearingBringsBackExpansionAndSelection) {
    Expand("modStock~Shop~");
    // The developer closed the procedure with the If and the Class Modules folder was never open.
    Node("SmodStock~Shop~@1")->SetExpanded(false);
    Node("SmodStock~Shop~@6")->SetSelected(true);
    Node("Project~Shop")->SetExpanded(true);
    Node("Type~Modules~Shop")->SetExpanded(true);
    const std::string before = Tree(true);
    const TreeSnapshot snapshot = TakeSnapshot(view);
    EXPECT_EQ(snapshot.selected, "SmodStock~Shop~@6");

    Search(":refresh");
    Search("class");
    ASSERT_NE(Tree(true), before);
    RestoreSnapshot(*explorer, view, snapshot);

    EXPECT_EQ(Tree(true), before);
    EXPECT_EQ(TakeSnapshot(view).expanded, snapshot.expanded);
    ASSERT_NE(view.SelectedItem(), nullptr);
    EXPECT_EQ(view.SelectedItem()->Key(), "SmodStock~Shop~@6");
    EXPECT_FALSE(Node("Type~Class Modules~Shop")->Expanded());
    EXPECT_FALSE(Node("SmodStock~Shop~@1")->Expanded());
    EXPECT_TRUE(nodes().Exists("Code - modReports~Shop~"));
}

TEST_F(TreeSearch, NodesInTreeOrderGoDepthFirst) {
    Expand("modReports~Shop~");
    std::vector<std::string> keys;
    for (const auto& node : NodesInTreeOrder(nodes()))
        keys.push_back(node->Key());
    EXPECT_EQ(keys, (std::vector<std::string>{
                        "Project~Shop", "Type~Class Modules~Shop", "clsOrder~Shop~",
                        "Code - clsOrder~Shop~", "clsStockItem~Shop~", "Code - clsStockItem~Shop~",
                        "Type~Modules~Shop", "modReports~Shop~", "SmodReports~Shop~@0",
                        "SmodReports~Shop~@1", "SmodReports~Shop~@2", "SmodReports~Shop~@3",
                        "modStock~Shop~", "Code - modStock~Shop~"}));
}

}  // namespace
}  // namespace arbolet::explorer::testing
