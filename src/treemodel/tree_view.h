// The tree view that shows the project tree, shaped like the common controls TreeView and its
// Nodes collection, so that the explorer runs unchanged over the Win32 control and in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace arbolet::tree {

// Where Nodes.Add places a node relative to another (the control's tvwFirst .. tvwChild).
enum class Relationship : std::int32_t {
    First = 0,     // first sibling of the relative
    Last = 1,      // last sibling of the relative
    Next = 2,      // right after the relative
    Previous = 3,  // right before the relative
    Child = 4,     // last child of the relative
};

// The control's error numbers, raised as arbolet::VbError.
namespace treeerr {
inline constexpr std::int32_t kIndexOutOfBounds = 35600;
inline constexpr std::int32_t kElementNotFound = 35601;
inline constexpr std::int32_t kKeyNotUnique = 35602;
inline constexpr std::int32_t kNodeDeleted = 35605;
// VB's own "Invalid procedure call or argument", for a relationship outside 0 to 4.
inline constexpr std::int32_t kInvalidProcedureCall = 5;
}  // namespace treeerr

// The colour a node has until one is set: the system's window text colour.
inline constexpr std::int32_t kWindowTextColour = static_cast<std::int32_t>(0x80000008u);

// What a node stands for, given when it is added and kept with it, so that nobody has to guess
// it from the key text (a module may well be named "Project").
enum class NodeKind : std::int32_t {
    Other = 0,
    Project = 1,
    Folder = 2,  // a fixed group by component type or a custom folder
    Component = 3,
    Placeholder = 4,  // the "Code List" child of a closed component
    CodeLine = 5,
};

// A mark on a node that says something about what it stands for; how it looks (a sign where the
// picture goes, a word in a dump) is up to the view.
enum class NodeMark : std::int32_t {
    None = 0,
    OverLimits = 1,  // a procedure over the project's quality limits
};

class Node;
using NodeRef = std::shared_ptr<Node>;

// One node. Every member raises kNodeDeleted once the node has been removed from its tree.
class Node {
  public:
    virtual ~Node() = default;

    virtual std::string Key() const = 0;
    virtual NodeKind Kind() const = 0;
    virtual std::string Text() const = 0;
    virtual bool Bold() const = 0;
    virtual void SetBold(bool bold) = 0;
    // ImageList index, the same when selected; nullopt for no picture.
    virtual std::optional<std::int32_t> Image() const = 0;
    // A Windows colour value (blue in the high byte).
    virtual std::int32_t ForeColor() const = 0;
    virtual void SetForeColor(std::int32_t colour) = 0;
    virtual std::string Tag() const = 0;
    virtual void SetTag(std::string_view tag) = 0;
    virtual NodeMark Mark() const = 0;
    virtual void SetMark(NodeMark mark) = 0;
    virtual bool Expanded() const = 0;
    virtual void SetExpanded(bool expanded) = 0;
    virtual void SetSelected(bool selected) = 0;
    // Expands the ancestors and scrolls the node into view.
    virtual void EnsureVisible() = 0;

    // 1-based position in the Nodes collection.
    virtual std::int32_t Index() const = 0;
    // Relatives; nullptr stands for Nothing.
    virtual NodeRef Parent() const = 0;
    virtual NodeRef Child() const = 0;  // the first child
    virtual NodeRef Next() const = 0;
    virtual NodeRef Previous() const = 0;
    virtual std::int32_t Children() const = 0;
};

// The keyed collection of all nodes of one tree. Keys are compared exactly (case-sensitive).
class Nodes {
  public:
    virtual ~Nodes() = default;

    // Adds a node relative to `relative` (nullptr: at the end of the top level). An empty key
    // adds a node without key; a key already in use raises kKeyNotUnique.
    virtual NodeRef Add(const Node* relative, Relationship relationship, std::string_view key,
                        std::string_view text, NodeKind kind,
                        std::optional<std::int32_t> image = std::nullopt) = 0;

    virtual std::int32_t Count() const = 0;
    // Look-up by key (raises kElementNotFound) or by 1-based index (raises kIndexOutOfBounds).
    virtual NodeRef Item(std::string_view key) const = 0;
    virtual NodeRef Item(std::int32_t index) const = 0;
    // Whether a node has the key; look-up without raising.
    virtual bool Exists(std::string_view key) const = 0;

    // Removes the node and all its descendants.
    virtual void Remove(const Node& node) = 0;
    void Remove(std::string_view key) { Remove(*Item(key)); }
    // Removes the descendants of the node and keeps the node itself (a tree view may be in the
    // middle of notifying about it).
    virtual void RemoveChildren(const Node& node) = 0;
    virtual void Clear() = 0;
};

// The control itself: its nodes and the little of its own state the explorer touches.
class TreeView {
  public:
    virtual ~TreeView() = default;
    virtual tree::Nodes& Nodes() = 0;
    // Around bulk changes (a full reload): the control need not repaint until the last EndUpdate.
    // Calls nest.
    virtual void BeginUpdate() = 0;
    virtual void EndUpdate() = 0;
    // The selected node, nullptr when none is.
    virtual NodeRef SelectedItem() const = 0;
};

// Holds a tree view's update open for a scope.
class UpdateScope {
  public:
    explicit UpdateScope(TreeView& view) : view_(view) { view_.BeginUpdate(); }
    ~UpdateScope() { view_.EndUpdate(); }
    UpdateScope(const UpdateScope&) = delete;
    UpdateScope& operator=(const UpdateScope&) = delete;

  private:
    TreeView& view_;
};

// The first top-level node, nullptr for an empty tree.
NodeRef FirstRoot(const tree::Nodes& nodes);

}  // namespace arbolet::tree
