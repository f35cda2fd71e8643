// Choosing the project tree's pictures.
#include "windows/document/node_pictures.h"

#include <exception>

#include "explorer/node_keys.h"
#include "windows/icons/tree_icons.h"
#include "windows/treeview/tree_control.h"

namespace arbolet::windows {
namespace {

using icons::TreeIcon;

TreeIcon FolderIcon(const NodeLook& look) {
    if (look.customFolder) return TreeIcon::CustomFolder;
    return look.expanded ? TreeIcon::GroupOpen : TreeIcon::GroupClosed;
}

std::optional<env::ComponentType> ComponentTypeOf(const TreeItemNode& node, const env::VBE* vbe) {
    if (vbe == nullptr) return std::nullopt;
    try {
        const explorer::KeyNames names = explorer::ReadKey(node.Kind(), node.Key());
        const env::VBProjectRef project = vbe->VBProjects()->Item(names.project);
        if (!project) return std::nullopt;
        const env::VBComponentRef component = project->VBComponents()->Item(names.component);
        if (!component) return std::nullopt;
        return component->Type();
    } catch (const std::exception&) {
        // A component the environment no longer knows shows the module's picture.
        return std::nullopt;
    }
}

}  // namespace

int TreeIconIndexOf(const NodeLook& look) noexcept {
    if (look.modelImage == explorer::kProjectImage) {
        return icons::IconIndex(look.bold ? TreeIcon::StartupProject : TreeIcon::Project);
    }
    if (look.modelImage == explorer::kComponentImage) {
        const auto type = look.componentType.value_or(env::ComponentType::StdModule);
        return icons::IconIndex(icons::IconForComponentType(static_cast<std::int32_t>(type)));
    }
    switch (look.kind) {
        case tree::NodeKind::Folder:
            return icons::IconIndex(FolderIcon(look));
        case tree::NodeKind::Placeholder:
            return icons::IconIndex(TreeIcon::CodePlaceholder);
        case tree::NodeKind::CodeLine:
            // The tree keeps a picture's room before every item; Wine's image lists draw an
            // overlay over a transparent picture only where the picture itself is opaque, so
            // the sign takes the empty picture's place rather than overlaying it.
            return look.mark == tree::NodeMark::OverLimits ? icons::IconIndex(TreeIcon::OverLimits)
                                                           : I_IMAGENONE;
        default:
            return I_IMAGENONE;
    }
}

NodeLook LookOf(const TreeItemNode& node, const env::VBE* vbe) {
    NodeLook look;
    look.kind = node.Kind();
    look.modelImage = node.Image();
    look.bold = node.Bold();
    look.expanded = node.Expanded();
    look.mark = node.Mark();
    if (look.kind == tree::NodeKind::Folder) {
        look.customFolder = !explorer::IsFixedGroupName(node.Text());
    }
    if (look.modelImage == explorer::kComponentImage)
        look.componentType = ComponentTypeOf(node, vbe);
    return look;
}

}  // namespace arbolet::windows
