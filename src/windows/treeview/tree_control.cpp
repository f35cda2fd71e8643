// The comctl32 tree view behind the explorer's keyed tree.
#include "windows/treeview/tree_control.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/vb_error.h"
#include "windows/base/ansi_text.h"

namespace arbolet::windows {
namespace {

constexpr const char* kNodesSource = "TreeView.Nodes";
// Stands for "after the last sibling" where a sibling pointer is expected.
TreeItemNode* const kAtEnd = reinterpret_cast<TreeItemNode*>(std::uintptr_t{1});

[[noreturn]] void RaiseElementNotFound() {
    throw VbError(tree::treeerr::kElementNotFound, kNodesSource, "Element not found");
}

[[noreturn]] void RaiseNodeDeleted() {
    throw VbError(tree::treeerr::kNodeDeleted, "TreeView.Node",
                  "Control's collection has been modified");
}

// A Windows colour value with the system-colour flag in its high byte stands for a system colour.
COLORREF ScreenColour(std::int32_t colour) {
    const auto value = static_cast<std::uint32_t>(colour);
    if ((value & 0xFF000000u) == 0x80000000u) return GetSysColor(static_cast<int>(value & 0xFFu));
    return static_cast<COLORREF>(value & 0x00FFFFFFu);
}

}  // namespace

bool ItemRect(HWND tree, HTREEITEM item, bool textOnly, RECT& area) {
    // The message takes the item's handle in the rectangle it fills.
    static_assert(sizeof(RECT) >= sizeof(HTREEITEM));
    std::memcpy(&area, &item, sizeof(item));
    return SendMessageW(tree, TVM_GETITEMRECT, textOnly ? TRUE : FALSE,
                        reinterpret_cast<LPARAM>(&area)) != 0;
}

int ControlImage(std::optional<std::int32_t> image) {
    return image && *image >= 1 ? *image - 1 : I_IMAGENONE;
}

std::optional<std::int32_t> ModelImage(int controlImage) {
    if (controlImage < 0) return std::nullopt;
    return controlImage + 1;
}

// ---- TreeItemNode ----

TreeControl& TreeItemNode::Owner() const {
    if (owner_ == nullptr) RaiseNodeDeleted();
    return *owner_;
}

tree::NodeRef TreeItemNode::Ref(TreeItemNode* node) {
    return node != nullptr ? node->shared_from_this() : nullptr;
}

void TreeItemNode::SetItem(UINT mask, const TVITEMW& values) {
    const TreeControl& owner = Owner();
    TVITEMW item = values;
    item.mask = mask | TVIF_HANDLE;
    item.hItem = item_;
    SendMessageW(owner.hWnd_, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

std::string TreeItemNode::Key() const {
    Owner();
    return key_;
}

tree::NodeKind TreeItemNode::Kind() const {
    Owner();
    return kind_;
}

std::string TreeItemNode::Text() const {
    Owner();
    return text_;
}

bool TreeItemNode::Bold() const {
    Owner();
    return bold_;
}

void TreeItemNode::SetBold(bool bold) {
    Owner();
    TVITEMW item{};
    item.stateMask = TVIS_BOLD;
    item.state = bold ? TVIS_BOLD : 0;
    SetItem(TVIF_STATE, item);
    bold_ = bold;
    // The start-up project is bold and has a picture of its own.
    Owner().ShowPicture(*this);
}

std::optional<std::int32_t> TreeItemNode::Image() const {
    Owner();
    return image_;
}

std::int32_t TreeItemNode::ForeColor() const {
    Owner();
    return foreColor_;
}

void TreeItemNode::SetForeColor(std::int32_t colour) {
    const TreeControl& owner = Owner();
    if (foreColor_ == colour) return;
    foreColor_ = colour;
    if (owner.updating_ > 0) return;
    RECT area{};
    if (ItemRect(owner.hWnd_, item_, false, area)) InvalidateRect(owner.hWnd_, &area, FALSE);
}

std::string TreeItemNode::Tag() const {
    Owner();
    return tag_;
}

void TreeItemNode::SetTag(std::string_view tag) {
    Owner();
    tag_ = tag;
}

bool TreeItemNode::Expanded() const {
    Owner();
    return expanded_;
}

// The model remembers the state even while the node has no children, as the VB control does;
// the control can only open an item that has some, so Add opens it when its first child comes.
void TreeItemNode::SetExpanded(bool expanded) {
    TreeControl& owner = Owner();
    expanded_ = expanded;
    owner.ShowPicture(*this);
    owner.SyncExpanded(*this);
}

bool TreeItemNode::Selected() const {
    const TreeControl& owner = Owner();
    return TreeView_GetSelection(owner.hWnd_) == item_;
}

void TreeItemNode::SetSelected(bool selected) {
    const TreeControl& owner = Owner();
    if (selected == Selected()) return;
    const TreeControl::Quiet quiet(owner);
    SendMessageW(owner.hWnd_, TVM_SELECTITEM, TVGN_CARET,
                 reinterpret_cast<LPARAM>(selected ? item_ : nullptr));
}

void TreeItemNode::EnsureVisible() {
    TreeControl& owner = Owner();
    for (TreeItemNode* up = parent_; up != nullptr; up = up->parent_) {
        if (!up->expanded_) {
            up->expanded_ = true;
            owner.ShowPicture(*up);
            owner.SyncExpanded(*up);
        }
    }
    owner.ScrollTo(*this);
}

std::int32_t TreeItemNode::Index() const {
    Owner();
    return static_cast<std::int32_t>(position_ + 1);
}

tree::NodeRef TreeItemNode::Parent() const {
    Owner();
    return Ref(parent_);
}

tree::NodeRef TreeItemNode::Child() const {
    Owner();
    return Ref(firstChild_);
}

tree::NodeRef TreeItemNode::Next() const {
    Owner();
    return Ref(next_);
}

tree::NodeRef TreeItemNode::Previous() const {
    Owner();
    return Ref(previous_);
}

tree::NodeMark TreeItemNode::Mark() const {
    Owner();
    return mark_;
}

void TreeItemNode::SetMark(tree::NodeMark mark) {
    TreeControl& owner = Owner();
    if (mark_ == mark) return;
    mark_ = mark;
    owner.ShowPicture(*this);
}

std::int32_t TreeItemNode::Children() const {
    Owner();
    return childCount_;
}

// ---- TreeControl ----

TreeControl::TreeControl(HWND parent, UINT id) {
    constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES |
                             TVS_LINESATROOT | TVS_EDITLABELS | TVS_SHOWSELALWAYS | TVS_INFOTIP;
    hWnd_ = CreateWindowExW(WS_EX_CLIENTEDGE, WC_TREEVIEWW, L"", kStyle, 0, 0, 100, 100, parent,
                            reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)),
                            GetModuleHandleW(nullptr), nullptr);
    if (hWnd_ == nullptr) {
        throw VbError(static_cast<std::int32_t>(GetLastError()), "TreeView",
                      "The tree view could not be created");
    }
}

TreeControl::~TreeControl() {
    // Node references that outlive the control must raise rather than reach a dead window.
    for (auto& node : nodes_)
        node->owner_ = nullptr;
    if (IsWindow(hWnd_)) DestroyWindow(hWnd_);
}

void TreeControl::SetPictures(HIMAGELIST list, PictureChooser chooser) {
    chooser_ = std::move(chooser);
    TreeView_SetImageList(hWnd_, list, TVSIL_NORMAL);
    for (auto& node : nodes_) {
        if (node->owner_ != nullptr) ShowPicture(*node);
    }
}

int TreeControl::PictureOf(const TreeItemNode& node) const {
    return chooser_ ? chooser_(node) : ControlImage(node.image_);
}

void TreeControl::ShowPicture(TreeItemNode& node) {
    TVITEMW item{};
    item.iImage = PictureOf(node);
    item.iSelectedImage = item.iImage;
    node.SetItem(TVIF_IMAGE | TVIF_SELECTEDIMAGE, item);
}

tree::NodeRef TreeControl::SelectedItem() const {
    return NodeOf(TreeView_GetSelection(hWnd_));
}

void TreeControl::BeginUpdate() {
    if (updating_++ == 0) SendMessageW(hWnd_, WM_SETREDRAW, FALSE, 0);
}

void TreeControl::EndUpdate() {
    if (updating_ == 0 || --updating_ > 0) return;
    FlushPending();
    SendMessageW(hWnd_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(hWnd_, nullptr, TRUE);
}

TreeItemNode* TreeControl::NodeAt(HTREEITEM item) const {
    if (item == nullptr) return nullptr;
    TVITEMW data{};
    data.mask = TVIF_PARAM | TVIF_HANDLE;
    data.hItem = item;
    if (!SendMessageW(hWnd_, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&data))) return nullptr;
    return reinterpret_cast<TreeItemNode*>(data.lParam);
}

tree::NodeRef TreeControl::NodeOf(HTREEITEM item) const {
    TreeItemNode* node = NodeAt(item);
    return node != nullptr ? node->shared_from_this() : nullptr;
}

tree::NodeRef TreeControl::HitTest(POINT client) const {
    TVHITTESTINFO hit{};
    hit.pt = client;
    const auto item = reinterpret_cast<HTREEITEM>(
        SendMessageW(hWnd_, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    if ((hit.flags & TVHT_ONITEM) == 0) return nullptr;
    return NodeOf(item);
}

void TreeControl::EditLabel(const tree::Node& node) {
    const TreeItemNode& own = OwnNode(node);
    SetFocus(hWnd_);
    SendMessageW(hWnd_, TVM_EDITLABELW, 0, reinterpret_cast<LPARAM>(own.item_));
}

TreeItemNode& TreeControl::OwnNode(const tree::Node& node) const {
    auto* own = dynamic_cast<const TreeItemNode*>(&node);
    if (own == nullptr) RaiseElementNotFound();
    if (own->owner_ == nullptr) RaiseNodeDeleted();
    if (own->owner_ != this) RaiseElementNotFound();
    return const_cast<TreeItemNode&>(*own);
}

void TreeControl::Placement(TreeItemNode* anchor, tree::Relationship relationship,
                            TreeItemNode*& parent, TreeItemNode*& after) {
    parent = nullptr;
    after = nullptr;
    if (anchor == nullptr) {
        after = kAtEnd;
        return;
    }
    if (relationship == tree::Relationship::Child) {
        parent = anchor;
        after = kAtEnd;
        return;
    }
    parent = anchor->parent_;
    switch (relationship) {
        case tree::Relationship::First:
            after = nullptr;
            break;
        case tree::Relationship::Next:
            after = anchor;
            break;
        case tree::Relationship::Previous:
            after = anchor->previous_;
            break;
        default:
            after = kAtEnd;
            break;
    }
}

// Puts the node into the cached links: under `parent` (nullptr: the top level), after `after`
// (nullptr: first; kAtEnd: last).
void TreeControl::Link(TreeItemNode& node, TreeItemNode* parent, TreeItemNode* after) {
    TreeItemNode*& first = parent != nullptr ? parent->firstChild_ : firstRoot_;
    TreeItemNode*& last = parent != nullptr ? parent->lastChild_ : lastRoot_;
    if (after == kAtEnd) after = last;
    node.parent_ = parent;
    node.previous_ = after;
    node.next_ = after != nullptr ? after->next_ : first;
    (node.next_ != nullptr ? node.next_->previous_ : last) = &node;
    (after != nullptr ? after->next_ : first) = &node;
    if (parent != nullptr) ++parent->childCount_;
}

tree::NodeRef TreeControl::Add(const tree::Node* relative, tree::Relationship relationship,
                               std::string_view key, std::string_view text, tree::NodeKind kind,
                               std::optional<std::int32_t> image) {
    TreeItemNode* anchor = relative != nullptr ? &OwnNode(*relative) : nullptr;
    if (anchor != nullptr && (static_cast<std::int32_t>(relationship) < 0 ||
                              static_cast<std::int32_t>(relationship) > 4)) {
        throw VbError(tree::treeerr::kInvalidProcedureCall, kNodesSource,
                      "Invalid procedure call or argument");
    }
    if (!key.empty() && byKey_.find(key) != byKey_.end()) {
        throw VbError(tree::treeerr::kKeyNotUnique, kNodesSource,
                      "Key is not unique in collection");
    }
    TreeItemNode* parent = nullptr;
    TreeItemNode* after = nullptr;
    Placement(anchor, relationship, parent, after);

    auto node = std::make_shared<TreeItemNode>();
    node->owner_ = this;
    node->key_ = key;
    node->kind_ = kind;
    node->text_ = text;
    node->image_ = image;
    node->position_ = nodes_.size();

    std::wstring wide = Utf8ToWide(text);
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent != nullptr ? parent->item_ : TVI_ROOT;
    insert.hInsertAfter = after == kAtEnd ? TVI_LAST : after != nullptr ? after->item_ : TVI_FIRST;
    insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    insert.item.pszText = wide.data();
    insert.item.iImage = PictureOf(*node);
    insert.item.iSelectedImage = insert.item.iImage;
    insert.item.lParam = reinterpret_cast<LPARAM>(node.get());
    {
        const Quiet quiet(*this);
        node->item_ = reinterpret_cast<HTREEITEM>(
            SendMessageW(hWnd_, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
    }
    if (node->item_ == nullptr) {
        throw VbError(tree::treeerr::kInvalidProcedureCall, kNodesSource,
                      "The tree view refused the node");
    }
    Link(*node, parent, after);
    nodes_.push_back(node);
    if (!key.empty()) byKey_.emplace(node->key_, node.get());
    if (parent != nullptr && parent->childCount_ == 1 && parent->expanded_) SyncExpanded(*parent);
    return node;
}

std::int32_t TreeControl::Count() const {
    return static_cast<std::int32_t>(nodes_.size());
}

tree::NodeRef TreeControl::Item(std::string_view key) const {
    const auto found = byKey_.find(key);
    if (found == byKey_.end()) RaiseElementNotFound();
    return found->second->shared_from_this();
}

tree::NodeRef TreeControl::Item(std::int32_t index) const {
    if (index < 1 || index > Count()) {
        throw VbError(tree::treeerr::kIndexOutOfBounds, kNodesSource, "Index out of bounds");
    }
    return nodes_[static_cast<std::size_t>(index - 1)];
}

bool TreeControl::Exists(std::string_view key) const {
    return byKey_.find(key) != byKey_.end();
}

// Marks the node and its descendants removed and forgets their keys; the caller compacts.
void TreeControl::Detach(TreeItemNode& top) {
    std::vector<TreeItemNode*> pending{&top};
    while (!pending.empty()) {
        TreeItemNode* node = pending.back();
        pending.pop_back();
        for (TreeItemNode* child = node->firstChild_; child != nullptr; child = child->next_)
            pending.push_back(child);
        if (!node->key_.empty()) byKey_.erase(node->key_);
        node->owner_ = nullptr;
        node->item_ = nullptr;
        node->parent_ = node->firstChild_ = node->lastChild_ = nullptr;
        node->previous_ = node->next_ = nullptr;
        node->childCount_ = 0;
    }
}

void TreeControl::Compact() {
    std::erase_if(
        nodes_, [](const std::shared_ptr<TreeItemNode>& node) { return node->owner_ == nullptr; });
    for (std::size_t i = 0; i < nodes_.size(); ++i)
        nodes_[i]->position_ = i;
}

void TreeControl::Unlink(TreeItemNode& node) {
    TreeItemNode* parent = node.parent_;
    (node.previous_ != nullptr ? node.previous_->next_
                               : (parent != nullptr ? parent->firstChild_ : firstRoot_)) =
        node.next_;
    (node.next_ != nullptr ? node.next_->previous_
                           : (parent != nullptr ? parent->lastChild_ : lastRoot_)) = node.previous_;
    if (parent != nullptr) --parent->childCount_;
}

void TreeControl::Remove(const tree::Node& node) {
    TreeItemNode& top = OwnNode(node);
    const HTREEITEM item = top.item_;
    Unlink(top);
    Detach(top);
    {
        const Quiet quiet(*this);
        SendMessageW(hWnd_, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(item));
    }
    Compact();
}

// The children go one by one, in a single compaction; the node itself stays in the control.
void TreeControl::RemoveChildren(const tree::Node& node) {
    TreeItemNode& parent = OwnNode(node);
    if (parent.firstChild_ == nullptr) return;
    const Quiet quiet(*this);
    while (TreeItemNode* child = parent.firstChild_) {
        const HTREEITEM item = child->item_;
        Unlink(*child);
        Detach(*child);
        SendMessageW(hWnd_, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(item));
    }
    Compact();
}

void TreeControl::Clear() {
    for (auto& node : nodes_)
        node->owner_ = nullptr;
    {
        const Quiet quiet(*this);
        SendMessageW(hWnd_, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    }
    nodes_.clear();
    byKey_.clear();
    firstRoot_ = lastRoot_ = nullptr;
    pendingExpand_.clear();
    pendingVisible_.reset();
}

void TreeControl::SyncExpanded(TreeItemNode& node) {
    if (&node == expanding_) return;
    if (updating_ > 0) {
        pendingExpand_.push_back(node.weak_from_this());
        return;
    }
    const Quiet quiet(*this);
    SendMessageW(hWnd_, TVM_EXPAND, node.expanded_ ? TVE_EXPAND : TVE_COLLAPSE,
                 reinterpret_cast<LPARAM>(node.item_));
}

void TreeControl::ScrollTo(TreeItemNode& node) {
    if (updating_ > 0) {
        pendingVisible_ = node.weak_from_this();
        return;
    }
    const Quiet quiet(*this);
    SendMessageW(hWnd_, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(node.item_));
}

void TreeControl::FlushPending() {
    std::vector<std::weak_ptr<TreeItemNode>> expand;
    expand.swap(pendingExpand_);
    for (const auto& weak : expand) {
        const auto node = weak.lock();
        if (node && node->owner_ == this) SyncExpanded(*node);
    }
    const auto visible = pendingVisible_.lock();
    pendingVisible_.reset();
    if (visible && visible->owner_ == this) ScrollTo(*visible);
}

// ---- notifications ----

LRESULT TreeControl::OnNotify(const NMHDR& header) {
    if (header.hwndFrom != hWnd_) return 0;
    switch (header.code) {
        case NM_CUSTOMDRAW:
            return OnCustomDraw(*reinterpret_cast<NMTVCUSTOMDRAW*>(const_cast<NMHDR*>(&header)));
        case TVN_GETINFOTIPW:
            OnGetInfoTip(*reinterpret_cast<NMTVGETINFOTIPW*>(const_cast<NMHDR*>(&header)));
            return 0;
        case TVN_ITEMEXPANDINGW:
            return OnItemExpanding(reinterpret_cast<const NMTREEVIEWW&>(header));
        case TVN_ITEMEXPANDEDW: {
            const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
            TreeItemNode* node = NodeAt(change.itemNew.hItem);
            if (quiet_ > 0 || node == nullptr || (change.action & TVE_COLLAPSE) == 0) return 0;
            node->expanded_ = false;
            ShowPicture(*node);
            if (events_.Collapse) events_.Collapse(*node);
            return 0;
        }
        case TVN_BEGINLABELEDITW:
            editing_ = reinterpret_cast<const NMTVDISPINFOW&>(header).item.hItem;
            return FALSE;
        case TVN_ENDLABELEDITW:
            return OnEndLabelEdit(reinterpret_cast<const NMTVDISPINFOW&>(header));
        case TVN_BEGINDRAGW: {
            const auto& drag = reinterpret_cast<const NMTREEVIEWW&>(header);
            TreeItemNode* node = NodeAt(drag.itemNew.hItem);
            if (node != nullptr && events_.BeginDrag) events_.BeginDrag(*node);
            return 0;
        }
        case TVN_SELCHANGEDW: {
            const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
            if (events_.SelectionChanged) events_.SelectionChanged(NodeAt(change.itemNew.hItem));
            return 0;
        }
        case NM_RCLICK:
            if (!events_.RightClick) return FALSE;
            events_.RightClick();
            return TRUE;
        case NM_RETURN: {
            TreeItemNode* node = NodeAt(TreeView_GetSelection(hWnd_));
            if (node != nullptr && events_.Return) events_.Return(*node);
            return TRUE;
        }
        case TVN_KEYDOWN: {
            const auto& key = reinterpret_cast<const NMTVKEYDOWN&>(header);
            TreeItemNode* node = NodeAt(TreeView_GetSelection(hWnd_));
            if (key.wVKey == VK_F2 && node != nullptr) EditLabel(*node);
            return 0;
        }
        default:
            return 0;
    }
}

// Only the expansion runs the handler here, so that the code tree is in place before the
// control opens the item; the collapse runs once the item is closed.
LRESULT TreeControl::OnItemExpanding(const NMTREEVIEWW& change) {
    TreeItemNode* node = NodeAt(change.itemNew.hItem);
    if (quiet_ > 0 || node == nullptr || (change.action & TVE_EXPAND) == 0) return FALSE;
    node->expanded_ = true;
    ShowPicture(*node);
    // The control opens the item itself once the handler is done.
    expanding_ = node;
    if (events_.Expand) events_.Expand(*node);
    expanding_ = nullptr;
    // The handler may have replaced the node; the control opens what now has children.
    return FALSE;
}

// Some versions of the control end an edit twice (once more when its edit box loses the
// focus); only the first end counts.
LRESULT TreeControl::OnEndLabelEdit(const NMTVDISPINFOW& edit) {
    if (edit.item.hItem != editing_) return FALSE;
    editing_ = nullptr;
    TreeItemNode* node = NodeAt(edit.item.hItem);
    if (node == nullptr || edit.item.pszText == nullptr) return FALSE;
    const std::string newText = WideToUtf8(edit.item.pszText);
    if (newText == node->Text()) return FALSE;
    if (events_.LabelEdited) events_.LabelEdited(*node, newText);
    return FALSE;
}

LRESULT TreeControl::OnCustomDraw(NMTVCUSTOMDRAW& draw) const {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
            return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT: {
            const auto* node = reinterpret_cast<const TreeItemNode*>(draw.nmcd.lItemlParam);
            const bool highlighted =
                (draw.nmcd.uItemState & CDIS_SELECTED) != 0 && GetFocus() == hWnd_;
            if (node != nullptr && node->foreColor_ != tree::kWindowTextColour && !highlighted)
                draw.clrText = ScreenColour(node->foreColor_);
            return CDRF_DODEFAULT;
        }
        default:
            return CDRF_DODEFAULT;
    }
}

void TreeControl::OnGetInfoTip(NMTVGETINFOTIPW& tip) const {
    const auto* node = reinterpret_cast<const TreeItemNode*>(tip.lParam);
    if (node == nullptr || node->tag_.empty() || tip.pszText == nullptr || tip.cchTextMax <= 0)
        return;
    const std::wstring wide = Utf8ToWide(node->tag_);
    const std::size_t count = std::min<std::size_t>(wide.size(), tip.cchTextMax - 1);
    std::copy_n(wide.data(), count, tip.pszText);
    tip.pszText[count] = L'\0';
}

}  // namespace arbolet::windows
