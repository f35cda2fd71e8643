// clsLine: children growth one slot early, Parent links, the copy of the children array and
// the subscript error.
#include <gtest/gtest.h>

#include "analysis/cls_line.h"
#include "base/vb_error.h"

namespace arbolet::analysis {
namespace {

TEST(ClsLine, NewLineHasFiftyOneEmptySlots) {
    clsLine line;
    const auto children = line.Children();
    ASSERT_EQ(children.size(), 51u);
    EXPECT_EQ(line.ChildCount, 0);
    EXPECT_EQ(line.Parent, nullptr);
    for (auto* child : children)
        EXPECT_EQ(child, nullptr);
}

TEST(ClsLine, FiftiethAddGrowsBeforeTheArrayIsFull) {
    clsLine parent;
    std::vector<clsLine> kids(50);
    for (int i = 0; i < 49; ++i)
        parent.Add(&kids[static_cast<std::size_t>(i)]);
    EXPECT_EQ(parent.ChildCapacity(), 50);
    parent.Add(&kids[49]);  // made while ChildCount is 49
    EXPECT_EQ(parent.ChildCapacity(), 100);
    const auto children = parent.Children();
    ASSERT_EQ(children.size(), 101u);
    EXPECT_EQ(children[49], &kids[49]);
    EXPECT_EQ(children[50], nullptr);
}

TEST(ClsLine, AddSetsParentAndClearChildrenKeepsIt) {
    clsLine parent;
    clsLine child;
    parent.Add(&child);
    EXPECT_EQ(child.Parent, &parent);
    EXPECT_EQ(parent.Child(0), &child);
    parent.ClearChildren();
    EXPECT_EQ(parent.ChildCount, 0);
    EXPECT_EQ(parent.Child(0), nullptr);
    EXPECT_EQ(child.Parent, &parent);
    EXPECT_EQ(parent.Children().size(), 51u);
}

TEST(ClsLine, ChildAcceptsAnyIndexUpToCapacityAndRaisesBeyond) {
    clsLine parent;
    clsLine child;
    parent.SetChild(50, &child);
    EXPECT_EQ(parent.Child(50), &child);
    EXPECT_EQ(parent.ChildCount, 0);
    try {
        parent.Child(51);
        FAIL() << "no error raised";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, 9);
        EXPECT_EQ(error.Description, "Subscript out of range");
    }
    EXPECT_THROW(parent.Child(-1), VbError);
}

TEST(ClsLine, ChildrenIsACopy) {
    clsLine parent;
    clsLine child;
    auto copy = parent.Children();
    parent.Add(&child);
    EXPECT_EQ(copy[0], nullptr);
}

}  // namespace
}  // namespace arbolet::analysis
