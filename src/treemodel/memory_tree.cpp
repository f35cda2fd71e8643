// The in-memory tree: sibling lists for the shape, a hash map for keys, a vector for indexes.
// Removed nodes stay in the vector until an index is asked for or they outnumber the live ones,
// so that removing a node costs what is below it, not what is in the whole tree.
#include "treemodel/memory_tree.h"

#include <algorithm>

#include "base/vb_error.h"

namespace arbolet::tree {
namespace {

constexpr const char* kNodeSource = "Node";
constexpr const char* kNodesSource = "Nodes";

[[noreturn]] void RaiseNodeDeleted() {
    throw VbError(treeerr::kNodeDeleted, kNodeSource, "Control has been deleted");
}
[[noreturn]] void RaiseElementNotFound() {
    throw VbError(treeerr::kElementNotFound, kNodesSource, "Element not found");
}

}  // namespace

NodeRef FirstRoot(const tree::Nodes& nodes) {
    if (nodes.Count() == 0) return nullptr;
    NodeRef node = nodes.Item(1);
    while (NodeRef parent = node->Parent())
        node = parent;
    while (NodeRef previous = node->Previous())
        node = previous;
    return node;
}

// ---- MemoryNode ----

const MemoryNode& MemoryNode::Live() const {
    if (owner_ == nullptr) RaiseNodeDeleted();
    return *this;
}
MemoryNode& MemoryNode::Live() {
    if (owner_ == nullptr) RaiseNodeDeleted();
    return *this;
}

NodeRef MemoryNode::Ref(MemoryNode* node) const {
    ++owner_->work_;
    if (node == nullptr || owner_->IsHiddenRoot(node)) return nullptr;
    return node->shared_from_this();
}

std::string MemoryNode::Key() const {
    return Live().key_;
}
NodeKind MemoryNode::Kind() const {
    return Live().kind_;
}
std::string MemoryNode::Text() const {
    return Live().text_;
}
bool MemoryNode::Bold() const {
    return Live().bold_;
}
void MemoryNode::SetBold(bool bold) {
    Live().bold_ = bold;
}
std::optional<std::int32_t> MemoryNode::Image() const {
    return Live().image_;
}
std::int32_t MemoryNode::ForeColor() const {
    return Live().foreColor_;
}
void MemoryNode::SetForeColor(std::int32_t colour) {
    Live().foreColor_ = colour;
}
std::string MemoryNode::Tag() const {
    return Live().tag_;
}
void MemoryNode::SetTag(std::string_view tag) {
    Live().tag_ = tag;
}
NodeMark MemoryNode::Mark() const {
    return Live().mark_;
}
void MemoryNode::SetMark(NodeMark mark) {
    Live().mark_ = mark;
}
bool MemoryNode::Expanded() const {
    return Live().expanded_;
}
void MemoryNode::SetExpanded(bool expanded) {
    Live().expanded_ = expanded;
}
bool MemoryNode::Selected() const {
    return Live().owner_->selected_ == this;
}

void MemoryNode::SetSelected(bool selected) {
    MemoryNodes& owner = *Live().owner_;
    if (selected) {
        owner.selected_ = this;
    } else if (owner.selected_ == this) {
        owner.selected_ = nullptr;
    }
}

void MemoryNode::EnsureVisible() {
    Live();
    for (MemoryNode* up = parent_; !owner_->IsHiddenRoot(up); up = up->parent_) {
        up->expanded_ = true;
    }
}

std::int32_t MemoryNode::Index() const {
    Live().owner_->Compact();
    return static_cast<std::int32_t>(position_ + 1);
}
NodeRef MemoryNode::Parent() const {
    return Ref(Live().parent_);
}
NodeRef MemoryNode::Child() const {
    return Ref(Live().firstChild_);
}
NodeRef MemoryNode::Next() const {
    return Ref(Live().next_);
}
NodeRef MemoryNode::Previous() const {
    return Ref(Live().previous_);
}
std::int32_t MemoryNode::Children() const {
    return Live().childCount_;
}

// ---- MemoryNodes ----

MemoryNodes::MemoryNodes() {
    root_.owner_ = this;
}

MemoryNodes::~MemoryNodes() {
    // Node references that outlive the tree must raise rather than reach into freed memory.
    for (auto& node : nodes_)
        node->owner_ = nullptr;
}

MemoryNode& MemoryNodes::OwnNode(const Node& node) const {
    auto* own = dynamic_cast<const MemoryNode*>(&node);
    if (own == nullptr) RaiseElementNotFound();
    if (own->owner_ == nullptr) RaiseNodeDeleted();
    if (own->owner_ != this) RaiseElementNotFound();
    return const_cast<MemoryNode&>(*own);
}

NodeRef MemoryNodes::Add(const Node* relative, Relationship relationship, std::string_view key,
                         std::string_view text, NodeKind kind, std::optional<std::int32_t> image) {
    MemoryNode* anchor = relative != nullptr ? &OwnNode(*relative) : nullptr;
    if (anchor != nullptr && (static_cast<std::int32_t>(relationship) < 0 ||
                              static_cast<std::int32_t>(relationship) > 4)) {
        throw VbError(treeerr::kInvalidProcedureCall, kNodesSource,
                      "Invalid procedure call or argument");
    }
    if (!key.empty() && byKey_.find(key) != byKey_.end()) {
        throw VbError(treeerr::kKeyNotUnique, kNodesSource, "Key is not unique in collection");
    }
    auto node = std::make_shared<MemoryNode>();
    node->owner_ = this;
    node->key_ = key;
    node->text_ = text;
    node->kind_ = kind;
    node->image_ = image;
    node->position_ = nodes_.size();
    if (anchor == nullptr) {
        Link(*node, root_, Relationship::Child);
    } else {
        Link(*node, *anchor, relationship);
    }
    nodes_.push_back(node);
    if (!key.empty()) byKey_.emplace(node->key_, node.get());
    return node;
}

void MemoryNodes::Link(MemoryNode& node, MemoryNode& relative, Relationship relationship) {
    MemoryNode* parent = relationship == Relationship::Child ? &relative : relative.parent_;
    MemoryNode* before = nullptr;  // the sibling the node goes in front of; nullptr: at the end
    switch (relationship) {
        case Relationship::First:
            before = parent->firstChild_;
            break;
        case Relationship::Last:
            before = nullptr;
            break;
        case Relationship::Next:
            before = relative.next_;
            break;
        case Relationship::Previous:
            before = &relative;
            break;
        case Relationship::Child:
            before = nullptr;
            break;
    }
    node.parent_ = parent;
    node.next_ = before;
    node.previous_ = before != nullptr ? before->previous_ : parent->lastChild_;
    (node.previous_ != nullptr ? node.previous_->next_ : parent->firstChild_) = &node;
    (before != nullptr ? before->previous_ : parent->lastChild_) = &node;
    ++parent->childCount_;
}

void MemoryNodes::Unlink(MemoryNode& node) {
    MemoryNode* parent = node.parent_;
    (node.previous_ != nullptr ? node.previous_->next_ : parent->firstChild_) = node.next_;
    (node.next_ != nullptr ? node.next_->previous_ : parent->lastChild_) = node.previous_;
    --parent->childCount_;
    node.parent_ = node.previous_ = node.next_ = nullptr;
}

std::int32_t MemoryNodes::Count() const {
    return static_cast<std::int32_t>(nodes_.size() - removed_);
}

NodeRef MemoryNodes::Item(std::string_view key) const {
    auto found = byKey_.find(key);
    if (found == byKey_.end()) RaiseElementNotFound();
    return found->second->shared_from_this();
}

NodeRef MemoryNodes::Item(std::int32_t index) const {
    if (index < 1 || index > Count()) {
        throw VbError(treeerr::kIndexOutOfBounds, kNodesSource, "Index out of bounds");
    }
    Compact();
    return nodes_[static_cast<std::size_t>(index - 1)];
}

bool MemoryNodes::Exists(std::string_view key) const {
    return byKey_.find(key) != byKey_.end();
}

// Marks the node and its descendants removed and forgets their keys; they leave the index
// order at the next compaction.
void MemoryNodes::Detach(MemoryNode& top) {
    std::vector<MemoryNode*> pending{&top};
    while (!pending.empty()) {
        MemoryNode* node = pending.back();
        pending.pop_back();
        for (MemoryNode* child = node->firstChild_; child != nullptr; child = child->next_) {
            pending.push_back(child);
        }
        if (!node->key_.empty()) byKey_.erase(node->key_);
        if (selected_ == node) selected_ = nullptr;
        ++removed_;
        ++work_;
        node->owner_ = nullptr;
        node->parent_ = node->firstChild_ = node->lastChild_ = nullptr;
        node->previous_ = node->next_ = nullptr;
        node->childCount_ = 0;
    }
}

void MemoryNodes::Remove(const Node& node) {
    MemoryNode& top = OwnNode(node);
    Unlink(top);
    Detach(top);
    CompactWhenMostlyRemoved();
}

void MemoryNodes::RemoveChildren(const Node& node) {
    MemoryNode& parent = OwnNode(node);
    while (MemoryNode* child = parent.firstChild_) {
        Unlink(*child);
        Detach(*child);
    }
    CompactWhenMostlyRemoved();
}

// Drops the removed nodes from the index order and renumbers the rest. Positions are only read
// through an index, so nothing needs them right while nodes are being removed.
void MemoryNodes::Compact() const {
    if (removed_ == 0) return;
    std::erase_if(nodes_,
                  [](const std::shared_ptr<MemoryNode>& n) { return n->owner_ == nullptr; });
    for (std::size_t i = 0; i < nodes_.size(); ++i)
        nodes_[i]->position_ = i;
    work_ += nodes_.size() + removed_;
    removed_ = 0;
}

// Removed nodes may outlive their removal by as many again as there are live ones, which keeps
// the cost of compacting in proportion to what was removed.
void MemoryNodes::CompactWhenMostlyRemoved() {
    if (removed_ > nodes_.size() / 2) Compact();
}

void MemoryNodes::Clear() {
    for (auto& node : nodes_)
        node->owner_ = nullptr;
    nodes_.clear();
    removed_ = 0;
    byKey_.clear();
    selected_ = nullptr;
    root_.firstChild_ = root_.lastChild_ = nullptr;
    root_.childCount_ = 0;
}

NodeRef MemoryTreeView::SelectedItem() const {
    MemoryNode* selected = nodes_.SelectedNode();
    return selected != nullptr ? selected->shared_from_this() : nullptr;
}

}  // namespace arbolet::tree
