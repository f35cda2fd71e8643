// The top-level sort: the keys computed from each declaration kind, and the order they give.
#include <gtest/gtest.h>

#include "analysis/code_tree.h"
#include "analysis/declaration_sort.h"

namespace arbolet::analysis {
namespace {

std::string KeyOf(const std::string& lcase, const std::string& sortBy = "") {
    clsLine line;
    line.LCaseContent = lcase;
    line.SortBy = sortBy;
    return DeclarationSortKey(line);
}

TEST(DeclarationSortKey, ByDeclarationKind) {
    EXPECT_EQ(KeyOf("option explicit"), "     option explicit");
    EXPECT_EQ(KeyOf("dim x as long"), "   dim x as long");
    EXPECT_EQ(KeyOf("const a = 1"), "   const a = 1");
    EXPECT_EQ(KeyOf("declare function gettickcount lib \"k\""),
              "   declare gettickcount lib \"k\"");
    EXPECT_EQ(KeyOf("declare sub sleep lib"), "   declare sleep lib");
    EXPECT_EQ(KeyOf("static keep as long"), "   dim keep as long");
    EXPECT_EQ(KeyOf("global g"), "   dim g");
    EXPECT_EQ(KeyOf("  sub zeta()  "), "zeta()");
    EXPECT_EQ(KeyOf("function alpha() as long"), "alpha() as long");
    EXPECT_EQ(KeyOf("property get middle()"), "middle()");
    EXPECT_EQ(KeyOf("x = 1"), "x = 1");
    EXPECT_EQ(KeyOf("ignored", "sub foo() ZZZ"), "foo() ZZZ");
    EXPECT_EQ(KeyOf("sub"), "");
}

TEST(SortTopLevel, PropertyPairStaysTogetherAndEndsFollowTheirOpeners) {
    const auto tree = BuildCodeTree(
        "Public Property Let Size(v)\r\nEnd Property\r\nSub Apply()\r\nEnd Sub\r\n"
        "Public Property Get Size()\r\nEnd Property",
        DisplayOptions{.SortByName = true});
    std::vector<std::string> order;
    for (std::int32_t i = 0; i < tree.root->ChildCount; ++i)
        order.push_back(tree.root->Child(i)->LineContent.str());
    const std::vector<std::string> expected = {"Sub Apply()",
                                               "End Sub",
                                               "Public Property Get Size()",
                                               "End Property",
                                               "Public Property Let Size(v)",
                                               "End Property"};
    EXPECT_EQ(order, expected);
}

TEST(SortTopLevel, RootWithoutChildrenIsUntouched) {
    clsLine root;
    SortTopLevel(root);
    EXPECT_EQ(root.ChildCount, 0);
}

TEST(SortTopLevel, LargeTopLevelIsSortedLikeTheSmallOne) {
    std::string code;
    for (int i = 6000; i > 0; --i)
        code += "Sub P" + std::to_string(100000 + i) + "()\r\nEnd Sub\r\n";
    const auto tree = BuildCodeTree(code, DisplayOptions{.SortByName = true});
    ASSERT_EQ(tree.root->ChildCount, 12000);
    for (std::int32_t i = 0; i + 1 < tree.root->ChildCount; ++i) {
        ASSERT_LE(tree.root->Child(i)->SortBy, tree.root->Child(i + 1)->SortBy) << i;
    }
    EXPECT_EQ(tree.root->Child(0)->LineContent, "Sub P100001()");
    EXPECT_EQ(tree.root->Child(1)->LineContent, "End Sub");
}

}  // namespace
}  // namespace arbolet::analysis
