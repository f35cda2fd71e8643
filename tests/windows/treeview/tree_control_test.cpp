// The keyed tree over the real comctl32 control: what the nodes remember must be what the
// control shows (order of siblings, texts, open items, pictures), keys behave as the VB
// collection's, and only the user's actions raise the control's events.
#include "windows/treeview/tree_control.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/vb_error.h"
#include "support/test_window.h"
#include "windows/base/ansi_text.h"

namespace arbolet::windows {
namespace {

using tree::NodeKind;
using tree::Relationship;

// A parent window that hands the control's notifications back to it, as the document does.
class TreeHost {
  public:
    TreeHost() {
        static const ATOM registered = [] {
            WNDCLASSW windowClass{};
            windowClass.lpfnWndProc = &TreeHost::Proc;
            windowClass.hInstance = GetModuleHandleW(nullptr);
            windowClass.lpszClassName = L"ArboletTreeHost";
            return RegisterClassW(&windowClass);
        }();
        (void)registered;
        hWnd_ = CreateWindowExW(0, L"ArboletTreeHost", L"tree host", WS_OVERLAPPEDWINDOW, 0, 0, 300,
                                400, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        tree_ = std::make_unique<TreeControl>(hWnd_, 1);
        SetWindowLongPtrW(hWnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(tree_.get()));
        MoveWindow(tree_->hWnd(), 0, 0, 280, 380, FALSE);
    }
    ~TreeHost() {
        SetWindowLongPtrW(hWnd_, GWLP_USERDATA, 0);
        tree_.reset();
        DestroyWindow(hWnd_);
    }
    TreeControl& Tree() { return *tree_; }

  private:
    static LRESULT CALLBACK Proc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
        auto* tree = reinterpret_cast<TreeControl*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
        if (iMsg == WM_NOTIFY && tree != nullptr)
            return tree->OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
        return DefWindowProcW(hWnd, iMsg, wParam, lParam);
    }
    HWND hWnd_ = nullptr;
    std::unique_ptr<TreeControl> tree_;
};

std::string ItemText(HWND tree, HTREEITEM item) {
    wchar_t text[256] = L"";
    TVITEMW data{};
    data.mask = TVIF_HANDLE | TVIF_TEXT;
    data.hItem = item;
    data.pszText = text;
    data.cchTextMax = 256;
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&data));
    return WideToUtf8(text);
}

// The control's own tree, as "a(b c) d": children in brackets after their parent.
std::string ControlOutline(HWND tree, HTREEITEM first) {
    std::string outline;
    for (HTREEITEM item = first; item != nullptr; item = TreeView_GetNextSibling(tree, item)) {
        if (!outline.empty()) outline += ' ';
        outline += ItemText(tree, item);
        if (const HTREEITEM child = TreeView_GetChild(tree, item))
            outline += "(" + ControlOutline(tree, child) + ")";
    }
    return outline;
}

// The same from the nodes' own links.
std::string ModelOutline(tree::NodeRef first) {
    std::string outline;
    for (tree::NodeRef node = first; node; node = node->Next()) {
        if (!outline.empty()) outline += ' ';
        outline += node->Text();
        if (const tree::NodeRef child = node->Child()) outline += "(" + ModelOutline(child) + ")";
    }
    return outline;
}

bool OpenInControl(TreeControl& tree, const tree::Node& node) {
    const HTREEITEM item = dynamic_cast<const TreeItemNode&>(node).Item();
    return (TreeView_GetItemState(tree.hWnd(), item, TVIS_EXPANDED) & TVIS_EXPANDED) != 0;
}

std::int32_t ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const VbError& error) {
        return error.Number;
    }
    return 0;
}

TEST(TreeControl, PlacesNodesWhereTheRelationshipSaysAndTheControlAgrees) {
    TreeHost host;
    TreeControl& tree = host.Tree();
    const auto b = tree.Add(nullptr, Relationship::Last, "b", "b", NodeKind::Other);
    tree.Add(b.get(), Relationship::First, "a", "a", NodeKind::Other);
    const auto d = tree.Add(b.get(), Relationship::Last, "d", "d", NodeKind::Other);
    tree.Add(d.get(), Relationship::Previous, "c", "c", NodeKind::Other);
    const auto y = tree.Add(b.get(), Relationship::Child, "y", "y", NodeKind::Other);
    tree.Add(y.get(), Relationship::Previous, "x", "x", NodeKind::Other);
    tree.Add(y.get(), Relationship::Next, "z", "z", NodeKind::Other);
    tree.Add(b.get(), Relationship::Child, "", "Grüße", NodeKind::Other);

    EXPECT_EQ(ModelOutline(tree.Item("a")), "a b(x y z Grüße) c d");
    EXPECT_EQ(ControlOutline(tree.hWnd(), TreeView_GetRoot(tree.hWnd())), "a b(x y z Grüße) c d");
    EXPECT_EQ(tree.Item("y")->Index(), 5) << "indexes count in the order of adding";
    EXPECT_EQ(b->Children(), 4);

    // Removing a subtree leaves the control and the links in step, and frees its keys.
    tree.Remove(*b);
    EXPECT_EQ(ControlOutline(tree.hWnd(), TreeView_GetRoot(tree.hWnd())), "a c d");
    EXPECT_EQ(ModelOutline(tree.Item("a")), "a c d");
    EXPECT_EQ(tree.Count(), 3);
    EXPECT_EQ(tree.Item(3)->Key(), "c") << "the order of adding, without the gaps";
    EXPECT_FALSE(tree.Exists("y"));
    EXPECT_EQ(ErrorOf([&] { (void)y->Text(); }), tree::treeerr::kNodeDeleted);
    EXPECT_EQ(
        ErrorOf([&] { tree.Add(nullptr, Relationship::Last, "y", "again", NodeKind::Other); }), 0);
    EXPECT_EQ(
        ErrorOf([&] { tree.Add(nullptr, Relationship::Last, "y", "twice", NodeKind::Other); }),
        tree::treeerr::kKeyNotUnique);
    EXPECT_EQ(ErrorOf([&] { (void)tree.Item("b"); }), tree::treeerr::kElementNotFound);
}

TEST(TreeControl, OpensItemsOnceTheyHaveChildrenAndAfterAnUpdate) {
    TreeHost host;
    TreeControl& tree = host.Tree();
    const auto top = tree.Add(nullptr, Relationship::Last, "top", "top", NodeKind::Other);
    // Open before it has children: the control cannot open it yet, the first child does.
    top->SetExpanded(true);
    const auto middle = tree.Add(top.get(), Relationship::Child, "mid", "mid", NodeKind::Other);
    EXPECT_TRUE(OpenInControl(tree, *top));

    // Inside an update, making a deep node visible opens its ancestors at the end only.
    tree::NodeRef deep;
    {
        const tree::UpdateScope update(tree);
        deep = tree.Add(middle.get(), Relationship::Child, "deep", "deep", NodeKind::Other);
        deep->EnsureVisible();
        EXPECT_TRUE(middle->Expanded());
        EXPECT_FALSE(OpenInControl(tree, *middle));
    }
    EXPECT_TRUE(OpenInControl(tree, *middle));
    RECT area{};
    EXPECT_TRUE(ItemRect(tree.hWnd(), dynamic_cast<const TreeItemNode&>(*deep).Item(), true, area));

    top->SetExpanded(false);
    EXPECT_FALSE(OpenInControl(tree, *top));
    EXPECT_TRUE(middle->Expanded()) << "a closed parent keeps its children's state";
}

// The owner's chooser decides an item's picture; a node's mark changes it at once, also for
// items added before the pictures were set.
TEST(TreeControl, PicturesFollowTheChooserAndTheMark) {
    TreeHost host;
    TreeControl& tree = host.Tree();
    const auto early = tree.Add(nullptr, Relationship::Last, "a", "a", NodeKind::CodeLine);
    const auto shown = [&](const tree::NodeRef& node) {
        TVITEMW item{};
        item.mask = TVIF_HANDLE | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        item.hItem = dynamic_cast<const TreeItemNode&>(*node).Item();
        SendMessageW(tree.hWnd(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        EXPECT_EQ(item.iSelectedImage, item.iImage) << "the same picture when selected";
        return item.iImage;
    };
    EXPECT_EQ(shown(early), I_IMAGENONE);
    early->SetMark(tree::NodeMark::OverLimits);
    EXPECT_EQ(shown(early), I_IMAGENONE) << "without a chooser the mark shows nothing";

    tree.SetPictures(nullptr, [](const TreeItemNode& node) {
        return node.Mark() == tree::NodeMark::OverLimits ? 7 : 3;
    });
    const auto late = tree.Add(nullptr, Relationship::Last, "b", "b", NodeKind::CodeLine);
    EXPECT_EQ(shown(early), 7);
    EXPECT_EQ(shown(late), 3);
    late->SetMark(tree::NodeMark::OverLimits);
    early->SetMark(tree::NodeMark::None);
    EXPECT_EQ(shown(late), 7);
    EXPECT_EQ(shown(early), 3);
    EXPECT_EQ(late->Mark(), tree::NodeMark::OverLimits);
    tree.Remove(*late);
    EXPECT_EQ(ErrorOf([&] { late->SetMark(tree::NodeMark::None); }), tree::treeerr::kNodeDeleted);
}

// Selection changes are told whoever made them (the host follows the active project).
TEST(TreeControl, OnlyTheUsersActionsRaiseEvents) {
    TreeHost host;
    TreeControl& tree = host.Tree();
    std::vector<std::string> events;
    tree.Events().Expand = [&](tree::Node& node) { events.push_back("expand " + node.Key()); };
    tree.Events().Collapse = [&](tree::Node& node) { events.push_back("collapse " + node.Key()); };
    tree.Events().SelectionChanged = [&](tree::Node* node) {
        events.push_back("select " + (node != nullptr ? node->Key() : std::string("-")));
    };
    const auto top = tree.Add(nullptr, Relationship::Last, "top", "top", NodeKind::Other);
    tree.Add(top.get(), Relationship::Child, "child", "child", NodeKind::Other);
    top->SetExpanded(true);
    top->SetExpanded(false);
    top->SetSelected(true);
    EXPECT_EQ(events, (std::vector<std::string>{"select top"}));
    events.clear();

    SendMessageW(tree.hWnd(), WM_KEYDOWN, VK_RIGHT, 0);
    SendMessageW(tree.hWnd(), WM_KEYDOWN, VK_LEFT, 0);
    SendMessageW(tree.hWnd(), WM_KEYDOWN, VK_RIGHT, 0);
    SendMessageW(tree.hWnd(), WM_KEYDOWN, VK_DOWN, 0);
    testing::PumpMessages();
    EXPECT_EQ(events, (std::vector<std::string>{"expand top", "collapse top", "expand top",
                                                "select child"}));
    EXPECT_TRUE(top->Expanded());
    EXPECT_EQ(tree.SelectedItem()->Key(), "child");
}

}  // namespace
}  // namespace arbolet::windows
