// Which of Arbolet's tree icons an item of the project tree shows. The explorer gives projects
// and components an image number; folders, placeholders and the start-up project are told apart
// by what the node is, and components by their type; a node's mark is drawn over its picture.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "environment/vbide.h"
#include "treemodel/tree_view.h"
#include "windows/treeview/tree_control.h"

namespace arbolet::windows {

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

// The picture of a node in the tree icons' image list: I_IMAGENONE (-2) for code lines and
// anything else without one, unless it is marked: a mark is an overlay, over a blank picture
// where the node has none.
TreeControl::Picture PictureOf(const NodeLook& look) noexcept;

// Reads what decides the picture from an item, asking the environment for a component's type.
NodeLook LookOf(const TreeItemNode& node, const env::VBE* vbe);

}  // namespace arbolet::windows
