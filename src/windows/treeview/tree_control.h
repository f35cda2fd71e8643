// The comctl32 tree view as the explorer's keyed tree: every node of the model is one item of a
// real control. Each node also keeps what it wrote to the control (text, pictures, bold state,
// its place among its relatives), because some versions of the control look an item up in a
// list on every message, which would make walking the tree quadratic. Keys, tags and colours
// live only in the node (colours reach the screen through custom draw, tags as info tips).
// Changes made through this interface never raise the control's own notifications, so the
// explorer's handlers run only for what the user did; under BeginUpdate the control opens
// items and scrolls only once, at EndUpdate.
#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <commctrl.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "treemodel/tree_view.h"

namespace arbolet::windows {

class TreeControl;

class TreeItemNode final : public tree::Node, public std::enable_shared_from_this<TreeItemNode> {
  public:
    std::string Key() const override;
    tree::NodeKind Kind() const override;
    std::string Text() const override;
    bool Bold() const override;
    void SetBold(bool bold) override;
    // The same picture shows whether the item is selected or not.
    std::optional<std::int32_t> Image() const override;
    std::int32_t ForeColor() const override;
    void SetForeColor(std::int32_t colour) override;
    std::string Tag() const override;
    void SetTag(std::string_view tag) override;
    // Shown through the picture the owner's chooser gives a marked node.
    tree::NodeMark Mark() const override;
    void SetMark(tree::NodeMark mark) override;
    bool Expanded() const override;
    void SetExpanded(bool expanded) override;
    bool Selected() const;
    void SetSelected(bool selected) override;
    void EnsureVisible() override;

    std::int32_t Index() const override;
    tree::NodeRef Parent() const override;
    tree::NodeRef Child() const override;
    tree::NodeRef Next() const override;
    tree::NodeRef Previous() const override;
    std::int32_t Children() const override;

    HTREEITEM Item() const { return item_; }

  private:
    friend class TreeControl;

    // Raises kNodeDeleted for a node that has been removed.
    TreeControl& Owner() const;
    static tree::NodeRef Ref(TreeItemNode* node);
    void SetItem(UINT mask, const TVITEMW& values);

    TreeControl* owner_ = nullptr;  // nullptr once removed
    HTREEITEM item_ = nullptr;
    std::string key_;
    tree::NodeKind kind_ = tree::NodeKind::Other;
    tree::NodeMark mark_ = tree::NodeMark::None;
    std::string text_;
    std::string tag_;
    std::optional<std::int32_t> image_;
    std::int32_t foreColor_ = tree::kWindowTextColour;
    bool bold_ = false;
    bool expanded_ = false;
    // Relatives; nullptr at the ends and for top-level nodes' parent.
    TreeItemNode* parent_ = nullptr;
    TreeItemNode* firstChild_ = nullptr;
    TreeItemNode* lastChild_ = nullptr;
    TreeItemNode* previous_ = nullptr;
    TreeItemNode* next_ = nullptr;
    std::int32_t childCount_ = 0;
    std::size_t position_ = 0;  // in the collection's order of addition
};

// What the control tells its owner about the user's actions on it.
struct TreeControlEvents {
    std::function<void(tree::Node& node)> Expand;
    std::function<void(tree::Node& node)> Collapse;
    // The user finished editing a label with a different text. The control keeps the old
    // caption: renaming may rebuild the tree, so the owner applies the change afterwards.
    std::function<void(tree::Node& node, std::string_view newText)> LabelEdited;
    // The selection moved, by the user or by the program; nullptr when nothing is selected.
    std::function<void(tree::Node* node)> SelectionChanged;
    // Enter on a node. The keys that open the context menu reach the parent as WM_CONTEXTMENU.
    std::function<void(tree::Node& node)> Return;
    // A click of the right button anywhere on the control.
    std::function<void()> RightClick;
    // The user started to drag a node with the left button.
    std::function<void(tree::Node& node)> BeginDrag;
};

class TreeControl final : public tree::TreeView, private tree::Nodes {
  public:
    // Creates the control as a child window of `parent`.
    TreeControl(HWND parent, UINT id);
    ~TreeControl() override;
    TreeControl(const TreeControl&) = delete;
    TreeControl& operator=(const TreeControl&) = delete;

    HWND hWnd() const noexcept { return hWnd_; }
    TreeControlEvents& Events() noexcept { return events_; }

    // ---- tree::TreeView ----
    tree::Nodes& Nodes() override { return *this; }
    tree::NodeRef SelectedItem() const override;
    // Bulk changes draw once, at the end; calls nest.
    void BeginUpdate() override;
    void EndUpdate() override;

    // The node of an item of the control, nullptr for none.
    tree::NodeRef NodeOf(HTREEITEM item) const;
    // Chooses the image-list index an item shows (I_IMAGENONE for none) from what its node is.
    using PictureChooser = std::function<int(const TreeItemNode& node)>;
    // Shows the pictures of `list` (owned by the caller, who keeps it alive while it is shown),
    // chosen for every item by `chooser`; items are updated when their picture, bold state,
    // mark or expansion changes. Without a chooser an item shows the model's image counted
    // from 0.
    void SetPictures(HIMAGELIST list, PictureChooser chooser);

    // The node at a point of the control's client area, nullptr on empty space.
    tree::NodeRef HitTest(POINT client) const;
    // Starts editing the label of a node, as a slow second click does.
    void EditLabel(const tree::Node& node);

    // A WM_NOTIFY that the control sent to its parent; answers the message's result.
    LRESULT OnNotify(const NMHDR& header);

    // ---- tree::Nodes ----
    using tree::Nodes::Add;
    using tree::Nodes::Remove;
    tree::NodeRef Add(const tree::Node* relative, tree::Relationship relationship,
                      std::string_view key, std::string_view text, tree::NodeKind kind,
                      std::optional<std::int32_t> image = std::nullopt) override;
    std::int32_t Count() const override;
    tree::NodeRef Item(std::string_view key) const override;
    tree::NodeRef Item(std::int32_t index) const override;
    bool Exists(std::string_view key) const override;
    void Remove(const tree::Node& node) override;
    void RemoveChildren(const tree::Node& node) override;
    void Clear() override;

  private:
    friend class TreeItemNode;

    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const {
            return std::hash<std::string_view>{}(key);
        }
    };
    // Holds the control's own notifications back for one scope.
    class Quiet {
      public:
        explicit Quiet(const TreeControl& control) : control_(control) { ++control_.quiet_; }
        ~Quiet() { --control_.quiet_; }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

      private:
        const TreeControl& control_;
    };

    TreeItemNode& OwnNode(const tree::Node& node) const;
    TreeItemNode* NodeAt(HTREEITEM item) const;
    // The parent and the sibling the new node follows (nullptr: first) for Nodes.Add.
    static void Placement(TreeItemNode* anchor, tree::Relationship relationship,
                          TreeItemNode*& parent, TreeItemNode*& after);
    void Link(TreeItemNode& node, TreeItemNode* parent, TreeItemNode* after);
    void Unlink(TreeItemNode& node);
    void Detach(TreeItemNode& top);
    void Compact();
    // Opens or closes an item in the control now, or at EndUpdate while updating.
    void SyncExpanded(TreeItemNode& node);
    void ScrollTo(TreeItemNode& node);
    void FlushPending();
    int PictureOf(const TreeItemNode& node) const;
    void ShowPicture(TreeItemNode& node);
    LRESULT OnCustomDraw(NMTVCUSTOMDRAW& draw) const;
    void OnGetInfoTip(NMTVGETINFOTIPW& tip) const;
    LRESULT OnItemExpanding(const NMTREEVIEWW& change);
    LRESULT OnEndLabelEdit(const NMTVDISPINFOW& edit);

    HWND hWnd_ = nullptr;
    TreeControlEvents events_;
    PictureChooser chooser_;
    std::vector<std::shared_ptr<TreeItemNode>> nodes_;
    std::unordered_map<std::string, TreeItemNode*, KeyHash, std::equal_to<>> byKey_;
    TreeItemNode* firstRoot_ = nullptr;
    TreeItemNode* lastRoot_ = nullptr;
    // Work for the control held back until EndUpdate: items to open or close, and the last
    // item to scroll into view.
    std::vector<std::weak_ptr<TreeItemNode>> pendingExpand_;
    std::weak_ptr<TreeItemNode> pendingVisible_;
    HTREEITEM editing_ = nullptr;        // the item whose label is being edited
    TreeItemNode* expanding_ = nullptr;  // the item the user is opening
    mutable int quiet_ = 0;
    int updating_ = 0;
    bool removed_ = false;  // nodes were removed since the last compaction
};

// The rectangle of an item in the control's client area (of its text only, or of its whole
// row); false when the item is folded away.
bool ItemRect(HWND tree, HTREEITEM item, bool textOnly, RECT& area);

// The control's image indexes count from 0; the model's, as VB's ImageList, from 1.
int ControlImage(std::optional<std::int32_t> image);
std::optional<std::int32_t> ModelImage(int controlImage);

}  // namespace arbolet::windows
