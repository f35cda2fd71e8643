// The in-memory tree view: placement by relationship, keys, indexes, removal and node state.
#include <gtest/gtest.h>

#include <string>

#include "base/vb_error.h"
#include "treemodel/memory_tree.h"

namespace arbolet::tree {
namespace {

// The shape of the tree as text: top-level nodes by key, children in parentheses.
std::string Shape(const NodeRef& first) {
    std::string out;
    for (NodeRef node = first; node; node = node->Next()) {
        if (!out.empty()) out += ",";
        out += node->Key();
        if (node->Children() > 0) out += "(" + Shape(node->Child()) + ")";
    }
    return out;
}

std::string Shape(const Nodes& nodes) {
    return Shape(FirstRoot(nodes));
}

// Adds by the relative's key, as the tests name nodes; "" adds at the top level.
NodeRef Put(Nodes& nodes, std::string_view relative, Relationship relationship,
            std::string_view key, std::string_view text, NodeKind kind = NodeKind::Other) {
    const NodeRef anchor = relative.empty() ? nullptr : nodes.Item(relative);
    return nodes.Add(anchor.get(), relationship, key, text, kind);
}

std::int32_t ErrorNumber(auto&& call) {
    try {
        call();
    } catch (const VbError& e) {
        return e.Number;
    }
    return 0;
}

TEST(MemoryTree, PlacesNodesByRelationship) {
    MemoryNodes nodes;
    Put(nodes, "", Relationship::Last, "B", "b");
    Put(nodes, "B", Relationship::Previous, "A", "a");
    Put(nodes, "B", Relationship::Next, "D", "d");
    Put(nodes, "D", Relationship::Previous, "C", "c");
    Put(nodes, "C", Relationship::First, "0", "zero");
    Put(nodes, "0", Relationship::Last, "E", "e");
    Put(nodes, "B", Relationship::Child, "B2", "b2");
    Put(nodes, "B2", Relationship::Previous, "B1", "b1");
    Put(nodes, "B", Relationship::Child, "B3", "b3");
    Put(nodes, "B1", Relationship::Child, "B1a", "b1a");
    EXPECT_EQ(Shape(nodes), "0,A,B(B1(B1a),B2,B3),C,D,E");

    const NodeRef b2 = nodes.Item("B2");
    EXPECT_EQ(b2->Parent()->Key(), "B");
    EXPECT_EQ(b2->Previous()->Key(), "B1");
    EXPECT_EQ(b2->Next()->Key(), "B3");
    EXPECT_EQ(nodes.Item("B")->Children(), 3);
    EXPECT_EQ(nodes.Item("B")->Child()->Key(), "B1");
    EXPECT_EQ(nodes.Item("A")->Parent(), nullptr);
    EXPECT_EQ(nodes.Item("0")->Previous(), nullptr);
    EXPECT_EQ(nodes.Item("E")->Next(), nullptr);
    EXPECT_EQ(nodes.Item("B3")->Child(), nullptr);
}

TEST(MemoryTree, IndexesFollowTheOrderOfAddition) {
    MemoryNodes nodes;
    Put(nodes, "", Relationship::Last, "second", "");
    Put(nodes, "second", Relationship::Previous, "first", "");
    EXPECT_EQ(nodes.Count(), 2);
    EXPECT_EQ(nodes.Item("second")->Index(), 1);
    EXPECT_EQ(nodes.Item("first")->Index(), 2);
    EXPECT_EQ(nodes.Item(2)->Key(), "first");
    EXPECT_EQ(ErrorNumber([&] { nodes.Item(0); }), treeerr::kIndexOutOfBounds);
    EXPECT_EQ(ErrorNumber([&] { nodes.Item(3); }), treeerr::kIndexOutOfBounds);
}

// Removed nodes leave the index order at once as far as anyone can see, also when the tree
// renumbers the rest only later, and nodes added afterwards come last.
TEST(MemoryTree, IndexesSkipRemovedNodesAndKeepCountingAdditions) {
    MemoryNodes nodes;
    for (const char* key : {"a", "b", "c", "d", "e", "f"})
        Put(nodes, "", Relationship::Last, key, "");
    Put(nodes, "c", Relationship::Child, "c1", "");
    Put(nodes, "c1", Relationship::Child, "c11", "");
    nodes.Remove("c");
    EXPECT_EQ(nodes.Count(), 5);
    Put(nodes, "a", Relationship::Next, "late", "");
    nodes.Remove("e");
    std::string order;
    for (std::int32_t i = 1; i <= nodes.Count(); ++i) {
        EXPECT_EQ(nodes.Item(i)->Index(), i);
        order += nodes.Item(i)->Key() + " ";
    }
    EXPECT_EQ(order, "a b d f late ");
    EXPECT_EQ(nodes.Item("late")->Index(), 5);
    EXPECT_EQ(ErrorNumber([&] { nodes.Item(6); }), treeerr::kIndexOutOfBounds);
    EXPECT_EQ(Shape(nodes), "a,late,b,d,f");
}

TEST(MemoryTree, KeysAreUniqueAndExact) {
    MemoryNodes nodes;
    Put(nodes, "", Relationship::Last, "Key", "one");
    EXPECT_EQ(ErrorNumber([&] { Put(nodes, "", Relationship::Last, "Key", "two"); }),
              treeerr::kKeyNotUnique);
    EXPECT_EQ(nodes.Count(), 1);
    EXPECT_EQ(nodes.Item("Key")->Text(), "one");

    Put(nodes, "", Relationship::Last, "key", "lower case is another key");
    EXPECT_TRUE(nodes.Exists("key"));
    EXPECT_FALSE(nodes.Exists("KEY"));
    EXPECT_EQ(ErrorNumber([&] { nodes.Item("KEY"); }), treeerr::kElementNotFound);

    Put(nodes, "", Relationship::Last, "", "no key");
    Put(nodes, "", Relationship::Last, "", "no key either");
    EXPECT_EQ(nodes.Count(), 4);
    EXPECT_FALSE(nodes.Exists(""));
}

TEST(MemoryTree, RejectsBadRelativesAndRelationships) {
    MemoryNodes nodes;
    MemoryNodes other;
    const NodeRef stranger = Put(other, "", Relationship::Last, "S", "");
    Put(nodes, "", Relationship::Last, "A", "");
    EXPECT_EQ(ErrorNumber([&] {
                  nodes.Add(stranger.get(), Relationship::Child, "X", "", NodeKind::Other);
              }),
              treeerr::kElementNotFound);
    EXPECT_EQ(ErrorNumber([&] { Put(nodes, "missing", Relationship::Child, "X", ""); }),
              treeerr::kElementNotFound);
    EXPECT_EQ(ErrorNumber([&] { Put(nodes, "A", static_cast<Relationship>(7), "X", ""); }),
              treeerr::kInvalidProcedureCall);
    EXPECT_FALSE(nodes.Exists("X"));
    EXPECT_EQ(nodes.Count(), 1);
}

TEST(MemoryTree, RemovesNodesWithTheirDescendants) {
    MemoryNodes nodes;
    Put(nodes, "", Relationship::Last, "A", "");
    Put(nodes, "A", Relationship::Child, "A1", "");
    Put(nodes, "A1", Relationship::Child, "A1x", "");
    Put(nodes, "A", Relationship::Child, "A2", "");
    Put(nodes, "", Relationship::Last, "B", "");
    const NodeRef a1 = nodes.Item("A1");
    const NodeRef a1x = nodes.Item("A1x");
    a1x->SetSelected(true);

    nodes.Remove("A1");
    EXPECT_EQ(Shape(nodes), "A(A2),B");
    EXPECT_EQ(nodes.Count(), 3);
    EXPECT_EQ(nodes.Item("A")->Children(), 1);
    EXPECT_EQ(nodes.Item("A2")->Previous(), nullptr);
    EXPECT_FALSE(nodes.Exists("A1x"));
    EXPECT_EQ(nodes.Item("A2")->Index(), 2);
    EXPECT_EQ(nodes.Item("B")->Index(), 3);
    EXPECT_EQ(nodes.SelectedNode(), nullptr);
    EXPECT_EQ(ErrorNumber([&] { a1->Key(); }), treeerr::kNodeDeleted);
    EXPECT_EQ(ErrorNumber([&] { a1x->Parent(); }), treeerr::kNodeDeleted);
    EXPECT_EQ(ErrorNumber([&] { nodes.Remove(*a1); }), treeerr::kNodeDeleted);

    // The key is free again.
    Put(nodes, "B", Relationship::Previous, "A1", "again");
    EXPECT_EQ(Shape(nodes), "A(A2),A1,B");

    nodes.Remove("A");
    EXPECT_EQ(Shape(nodes), "A1,B");
    EXPECT_EQ(nodes.Item("A1")->Previous(), nullptr);
}

TEST(MemoryTree, ClearAndDestructionLeaveNoUsableNodes) {
    auto nodes = std::make_unique<MemoryNodes>();
    Put(*nodes, "", Relationship::Last, "A", "");
    const NodeRef child = Put(*nodes, "A", Relationship::Child, "B", "");
    nodes->Clear();
    EXPECT_EQ(nodes->Count(), 0);
    EXPECT_EQ(FirstRoot(*nodes), nullptr);
    EXPECT_EQ(ErrorNumber([&] { child->Text(); }), treeerr::kNodeDeleted);

    const NodeRef survivor = Put(*nodes, "", Relationship::Last, "A", "");
    EXPECT_EQ(Shape(*nodes), "A");
    nodes.reset();
    EXPECT_EQ(ErrorNumber([&] { survivor->Next(); }), treeerr::kNodeDeleted);
}

TEST(MemoryTree, RemovingChildrenKeepsTheNodeItsKeyAndItsPlace) {
    MemoryNodes nodes;
    Put(nodes, "", Relationship::Last, "A", "");
    Put(nodes, "A", Relationship::Child, "A1", "");
    Put(nodes, "A1", Relationship::Child, "A1x", "");
    Put(nodes, "A", Relationship::Child, "A2", "");
    Put(nodes, "", Relationship::Last, "B", "");
    Put(nodes, "B", Relationship::Child, "B1", "");
    const NodeRef a = nodes.Item("A");
    const NodeRef a2 = nodes.Item("A2");

    nodes.RemoveChildren(*a);
    EXPECT_EQ(Shape(nodes), "A,B(B1)");
    EXPECT_EQ(a->Children(), 0);
    EXPECT_EQ(a->Child(), nullptr);
    EXPECT_EQ(nodes.Count(), 3);
    EXPECT_EQ(nodes.Item("B1")->Index(), 3);
    EXPECT_FALSE(nodes.Exists("A1x"));
    EXPECT_EQ(ErrorNumber([&] { a2->Key(); }), treeerr::kNodeDeleted);

    // The same node takes new children, under keys that are free again.
    Put(nodes, "A", Relationship::Child, "A1", "again");
    EXPECT_EQ(Shape(nodes), "A(A1),B(B1)");
    nodes.RemoveChildren(*nodes.Item("A1"));
    EXPECT_EQ(Shape(nodes), "A(A1),B(B1)");
}

TEST(MemoryTree, KeepsNodeState) {
    MemoryTreeView view;
    Nodes& nodes = view.Nodes();
    const NodeRef top = nodes.Add(nullptr, Relationship::Last, "T", "top", NodeKind::Project, 1);
    const NodeRef middle =
        nodes.Add(top.get(), Relationship::Child, "M", "middle", NodeKind::Component);
    const NodeRef leaf =
        nodes.Add(middle.get(), Relationship::Child, "L", "leaf", NodeKind::CodeLine);

    EXPECT_EQ(top->Image(), 1);
    EXPECT_EQ(top->Kind(), NodeKind::Project);
    EXPECT_EQ(leaf->Kind(), NodeKind::CodeLine);
    EXPECT_EQ(middle->Image(), std::nullopt);
    EXPECT_EQ(leaf->ForeColor(), kWindowTextColour);
    EXPECT_FALSE(top->Bold());

    leaf->SetBold(true);
    leaf->SetForeColor(0x0000FF);
    leaf->SetTag("tag");
    EXPECT_TRUE(leaf->Bold());
    EXPECT_EQ(leaf->ForeColor(), 0x0000FF);
    EXPECT_EQ(leaf->Tag(), "tag");

    leaf->EnsureVisible();
    EXPECT_TRUE(top->Expanded());
    EXPECT_TRUE(middle->Expanded());
    EXPECT_FALSE(leaf->Expanded());

    leaf->SetSelected(true);
    middle->SetSelected(true);
    EXPECT_EQ(view.SelectedItem(), middle);
    middle->SetSelected(false);
    EXPECT_EQ(view.SelectedItem(), nullptr);

    // Updates nest; an unmatched end does not go below zero.
    view.BeginUpdate();
    view.BeginUpdate();
    view.EndUpdate();
    EXPECT_EQ(view.OpenUpdates(), 1);
    view.EndUpdate();
    view.EndUpdate();
    EXPECT_EQ(view.OpenUpdates(), 0);
}

}  // namespace
}  // namespace arbolet::tree
