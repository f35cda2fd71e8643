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
    std::string Text() const override;
    void SetText(std::string_view text) override;
    bool Bold() const override;
    void SetBold(bool bold) override;
    std::optional<std::int32_t> Image() const override;
    void SetImage(std::optional<std::int32_t> image) override;
    std::optional<std::int32_t> SelectedImage() const override;
    void SetSelectedImage(std::optional<std::int32_t> image) override;
    std::int32_t ForeColor() const override;
    void SetForeColor(std::int32_t colour) override;
    std::string Tag() const override;
    void SetTag(std::string_view tag) override;
    bool Expanded() const override;
    void SetExpanded(bool expanded) override;
    bool Selected() const override;
    void SetSelected(bool selected) override;
    void EnsureVisible() override;

    std::int32_t Index() const override;
    NodeRef Parent() const override;
    NodeRef Child() const override;
    NodeRef Next() const override;
    NodeRef Previous() const override;
    NodeRef FirstSibling() const override;
    NodeRef LastSibling() const override;
    NodeRef Root() const override;
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
    std::optional<std::int32_t> image_;
    std::optional<std::int32_t> selectedImage_;
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

    using Nodes::Add;
    using Nodes::Remove;
    NodeRef Add(const Node* relative, Relationship relationship, std::string_view key,
                std::string_view text, std::optional<std::int32_t> image = std::nullopt,
                std::optional<std::int32_t> selectedImage = std::nullopt) override;
    std::int32_t Count() const override;
    NodeRef Item(std::string_view key) const override;
    NodeRef Item(std::int32_t index) const override;
    bool Exists(std::string_view key) const override;
    void Remove(const Node& node) override;
    void Clear() override;

    MemoryNode* SelectedNode() const { return selected_; }

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
    bool IsHiddenRoot(const MemoryNode* node) const { return node == &root_; }

    MemoryNode root_;  // parent of the top-level nodes, never handed out
    std::vector<std::shared_ptr<MemoryNode>> nodes_;
    std::unordered_map<std::string, MemoryNode*, KeyHash, std::equal_to<>> byKey_;
    MemoryNode* selected_ = nullptr;
};

class MemoryTreeView final : public TreeView {
  public:
    tree::Nodes& Nodes() override { return nodes_; }
    const MemoryNodes& NodesInMemory() const { return nodes_; }
    bool Visible() const override { return visible_; }
    void SetVisible(bool visible) override { visible_ = visible; }
    NodeRef SelectedItem() const override;

  private:
    MemoryNodes nodes_;
    bool visible_ = true;
};

}  // namespace arbolet::tree
