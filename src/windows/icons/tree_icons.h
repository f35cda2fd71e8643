// Arbolet's own tree icons as an image list: which picture stands at which index, and the
// factory that builds the list for a screen's DPI from the icon sheets in the module's resources.
#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <commctrl.h>

#include <cstdint>
#include <string_view>

namespace arbolet::windows::icons {

// Image list indexes (zero-based), in the order the pictures are added.
enum class TreeIcon : int {
    Project,
    StartupProject,
    GroupClosed,
    GroupOpen,
    CustomFolder,
    Form,
    MdiForm,
    Module,
    Class,
    UserControl,
    PropertyPage,
    UserDocument,
    Designer,
    RelatedDocument,
    ResourceFile,
    CodePlaceholder,
    // The warning sign of a procedure over the project's quality limits.
    OverLimits,
};
inline constexpr int kTreeIconCount = static_cast<int>(TreeIcon::OverLimits) + 1;

constexpr int IconIndex(TreeIcon icon) noexcept {
    return static_cast<int>(icon);
}

// The icon's name in the icon sheets ("project", "group_open", ...).
std::string_view IconName(TreeIcon icon) noexcept;

// The picture of a component of a vbext_ComponentType; an unknown kind gets the module's.
TreeIcon IconForComponentType(std::int32_t componentType) noexcept;

// The pixel size of the icons used at a DPI: 16, or 32 from 144 DPI (150 %) up.
int IconSizeForDpi(UINT dpi) noexcept;

// Builds the image list of every TreeIcon at the size for the DPI (32-bit colour with a mask,
// so that both the old and the themed common controls draw it transparent). The
// caller owns the list and frees it with ImageList_Destroy. nullptr when the icon resources are
// missing or malformed: the sheets come with the library's compiled resource script, which reaches
// a program or DLL only through PUBLIC links (or a direct one) to arbolet_win_icons.
HIMAGELIST CreateTreeImageList(UINT dpi) noexcept;

}  // namespace arbolet::windows::icons
