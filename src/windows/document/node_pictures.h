// Which of Arbolet's tree icons an item of the project tree shows. The explorer gives projects
// and components an image number; folders, placeholders and the start-up project are told apart
// by what the node is, and components by their type. A marked code line, which has no picture
// of its own, shows its mark's sign in the picture's place.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "environment/vbide.h"
#include "treemodel/tree_view.h"

namespace arbolet::windows {

class TreeItemNode;

// What decides a node's picture.
struct NodeLook {
    tree::NodeKind kind = tree::NodeKind::Other;
    std::optional<std::int32_t> modelImage;
    bool bold = false;  // a bold project is the start-up project
    bool expanded = false;
    bool customFolder = false;
    // For components; unknown when the environment cannot say.
    std::optional<env::ComponentType> componentType;
    tree::NodeMark mark = tree::NodeMark::None;
};

// The image-list index of the tree icons for a node; I_IMAGENONE (-2) for unmarked code lines
// and anything else without a picture.
int TreeIconIndexOf(const NodeLook& look) noexcept;

// Reads what decides the picture from an item, asking the environment for a component's type.
NodeLook LookOf(const TreeItemNode& node, const env::VBE* vbe);

}  // namespace arbolet::windows
