// The tree view held in memory: the same keyed nodes as the Win32 control, for the command-line
// tool, the tests and the benchmarks.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "treemodel/tree_view.h"

namespace arbolet::tree {

class MemoryNodes;

class MemoryNode final : public Node, public std::enable_shared_from_this<MemoryNode> {
  public:
    std::string Key() const override;
    NodeKind Kind() const override;
    std::string Text() const override;
    bool Bold() const override;
    void SetBold(bool bold) override;
    std::optional<std::int32_t> Image() const override;
    std::int32_t ForeColor() const override;
    void SetForeColor(std::int32_t colour) override;
    std::string Tag() const override;
    void SetTag(std::string_view tag) override;
    NodeMark Mark() const override;
    void SetMark(NodeMark mark) override;
    bool Expanded() const override;
    void SetExpanded(bool expanded) override;
    bool Selected() const;
    void SetSelected(bool selected) override;
    void EnsureVisible() override;

    std::int32_t Index() const override;
    NodeRef Parent() const override;
    NodeRef Child() const override;
    NodeRef Next() const override;
    NodeRef Previous() const override;
    std::int32_t Children() const override;

  private:
    friend class MemoryNodes;

    // Raises kNodeDeleted for a node that has been removed.
    const MemoryNode& Live() const;
    MemoryNode& Live();
    NodeRef Ref(MemoryNode* node) const;

    MemoryNodes* owner_ = nullptr;  // nullptr once removed
    std::string key_;
    std::string text_;
    std::string tag_;
    NodeKind kind_ = NodeKind::Other;
    NodeMark mark_ = NodeMark::None;
    std::optional<std::int32_t> image_;
    std::int32_t foreColor_ = kWindowTextColour;
    bool bold_ = false;
    bool expanded_ = false;

    // Links; top-level nodes have the collection's hidden root as parent.
    MemoryNode* parent_ = nullptr;
    MemoryNode* firstChild_ = nullptr;
    MemoryNode* lastChild_ = nullptr;
    MemoryNode* previous_ = nullptr;
    MemoryNode* next_ = nullptr;
    std::int32_t childCount_ = 0;
    std::size_t position_ = 0;  // in the collection's order of addition
};

class MemoryNodes final : public Nodes {
  public:
    MemoryNodes();
    ~MemoryNodes() override;
    MemoryNodes(const MemoryNodes&) = delete;
    MemoryNodes& operator=(const MemoryNodes&) = delete;

    using Nodes::Remove;
    NodeRef Add(const Node* relative, Relationship relationship, std::string_view key,
                std::string_view text, NodeKind kind,
                std::optional<std::int32_t> image = std::nullopt) override;
    std::int32_t Count() const override;
    NodeRef Item(std::string_view key) const override;
    NodeRef Item(std::int32_t index) const override;
    bool Exists(std::string_view key) const override;
    void Remove(const Node& node) override;
    void RemoveChildren(const Node& node) override;
    void Clear() override;

    MemoryNode* SelectedNode() const { return selected_; }
    // How many nodes the collection has stepped to, removed or renumbered since it was made: the
    // tests use it to show that an operation costs what it touches, not what the tree holds.
    std::size_t Work() const { return work_; }

  private:
    friend class MemoryNode;

    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const {
            return std::hash<std::string_view>{}(key);
        }
    };

    MemoryNode& OwnNode(const Node& node) const;
    void Link(MemoryNode& node, MemoryNode& relative, Relationship relationship);
    void Unlink(MemoryNode& node);
    void Detach(MemoryNode& node);
    void Compact() const;
    void CompactWhenMostlyRemoved();
    bool IsHiddenRoot(const MemoryNode* node) const { return node == &root_; }

    MemoryNode root_;  // parent of the top-level nodes, never handed out
    // In order of addition; may still hold removed nodes (`removed_` of them) until compacted.
    mutable std::vector<std::shared_ptr<MemoryNode>> nodes_;
    mutable std::size_t removed_ = 0;
    mutable std::size_t work_ = 0;
    std::unordered_map<std::string, MemoryNode*, KeyHash, std::equal_to<>> byKey_;
    MemoryNode* selected_ = nullptr;
};

class MemoryTreeView final : public TreeView {
  public:
    tree::Nodes& Nodes() override { return nodes_; }
    const MemoryNodes& NodesInMemory() const { return nodes_; }
    void BeginUpdate() override {
        ++updates_;
        ++begun_;
    }
    void EndUpdate() override {
        if (updates_ > 0) --updates_;
    }
    // How many BeginUpdate calls are still open, and how many were made in all.
    int OpenUpdates() const { return updates_; }
    int UpdatesBegun() const { return begun_; }
    NodeRef SelectedItem() const override;

  private:
    MemoryNodes nodes_;
    int updates_ = 0;
    int begun_ = 0;
};

}  // namespace arbolet::tree
