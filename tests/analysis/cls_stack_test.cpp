// clsStack: growth in steps, empty pops, kept slots, sizing, and the typed containment test.
#include <gtest/gtest.h>

#include "analysis/cls_line.h"
#include "analysis/cls_stack.h"

namespace arbolet::analysis {
namespace {

class OtherObject : public VbObject {
  public:
    std::string_view TypeName() const override { return "OtherObject"; }
    bool Equals(const VbObject&) const override { return true; }  // equal to anything it meets
};

TEST(ClsStack, EmptyStackPopsAndPeeksEmptyWithoutChangingCount) {
    clsStack stack;
    EXPECT_TRUE(stack.Pop().IsEmpty());
    EXPECT_TRUE(stack.Top().IsEmpty());
    EXPECT_EQ(stack.Count(), 0);
    EXPECT_EQ(stack.Capacity(), 300);
}

TEST(ClsStack, GrowsBy150WhenFullAndKeepsOrder) {
    clsStack stack;
    for (std::int32_t i = 0; i < 301; ++i)
        stack.Push(Variant(i));
    EXPECT_EQ(stack.Capacity(), 300);
    stack.Push(Variant(301));  // the 302nd push finds all 301 slots used
    EXPECT_EQ(stack.Capacity(), 450);
    EXPECT_EQ(stack.Count(), 302);
    for (std::int32_t i = 301; i >= 0; --i)
        ASSERT_EQ(stack.Pop().Number(), i);
}

TEST(ClsStack, PopLeavesTheObjectInItsSlotUntilOverwritten) {
    clsStack stack;
    clsLine a;
    clsLine b;
    stack.Push(Variant(&a));
    EXPECT_EQ(stack.Pop().Object(), &a);
    EXPECT_EQ(stack.Slot(0).Object(), &a);
    stack.Push(Variant(&b));
    EXPECT_EQ(stack.Slot(0).Object(), &b);
}

TEST(ClsStack, ValuesAreCopiedAndObjectsShared) {
    clsStack stack;
    std::string text = "end if";
    stack.Push(Variant(text));
    text = "changed";
    EXPECT_EQ(stack.Top().Text(), "end if");
    clsLine line;
    stack.Push(Variant(&line));
    line.LineContent = "after push";
    EXPECT_EQ(static_cast<clsLine*>(stack.Pop().Object())->LineContent, "after push");
}

TEST(ClsStack, SetStackSizeDropsItemsButKeepsCount) {
    clsStack stack;
    stack.Push(Variant("a"));
    stack.Push(Variant("b"));
    stack.SetStackSize(0);
    EXPECT_EQ(stack.Capacity(), 1);
    EXPECT_EQ(stack.Count(), 2);
    EXPECT_TRUE(stack.Top().IsEmpty());
    stack.SetStackSize(-5);
    EXPECT_EQ(stack.Capacity(), 1);
    stack.SetStackSize(20);
    EXPECT_EQ(stack.Capacity(), 20);
}

TEST(ClsStack, StackContainsComparesValuesAndOnlySameTypedObjects) {
    clsStack stack;
    clsLine line;
    stack.Push(Variant("end type"));
    stack.Push(Variant(7));
    stack.Push(Variant(&line));
    EXPECT_TRUE(stack.StackContains(Variant("end type")));
    EXPECT_FALSE(stack.StackContains(Variant("End Type")));  // binary comparison
    EXPECT_TRUE(stack.StackContains(Variant("7")));          // text against number by value
    EXPECT_TRUE(stack.StackContains(Variant(&line)));
    OtherObject other;  // would call itself equal, but its type differs from every slot
    EXPECT_FALSE(stack.StackContains(Variant(&other)));
    clsLine another;
    EXPECT_FALSE(stack.StackContains(Variant(&another)));
}

TEST(ClsStack, PoppedItemsNoLongerCount) {
    clsStack stack;
    stack.Push(Variant("end enum"));
    stack.Pop();
    EXPECT_FALSE(stack.StackContains(Variant("end enum")));
}

}  // namespace
}  // namespace arbolet::analysis
