// Builds the tree's image list from the icon sheets that the resource script embeds as text.
#include "windows/icons/tree_icons.h"

#include <array>
#include <vector>

#include "windows/base/gdi_handles.h"
#include "windows/base/own_module.h"
#include "windows/icons/icon_sheet.h"

namespace arbolet::windows::icons {
namespace {

constexpr std::array<std::string_view, kTreeIconCount> kNames = {
    "project",          "startup_project",  "group_closed",
    "group_open",       "custom_folder",    "form",
    "mdi_form",         "module",           "class",
    "user_control",     "property_page",    "user_document",
    "designer",         "related_document", "resource_file",
    "code_placeholder", "over_limits"};

std::string_view SheetResource(int size) noexcept {
    const HMODULE module = OwnModule();
    const char* name = size == 32 ? "ARBOLET_ICONS32" : "ARBOLET_ICONS16";
    HRSRC found = FindResourceA(module, name, MAKEINTRESOURCEA(10));  // RT_RCDATA
    if (found == nullptr) return {};
    HGLOBAL loaded = LoadResource(module, found);
    const void* data = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (data == nullptr) return {};
    return {static_cast<const char*>(data), SizeofResource(module, found)};
}

// A strip of every icon side by side: the colour bitmap (32-bit, with alpha) and the mask
// (one bit a pixel, set where the picture is transparent).
struct Strip {
    OwnedBitmap colour;
    OwnedBitmap mask;
};

Strip DrawStrip(const IconSheet& sheet) {
    const int size = sheet.size;
    const int width = size * kTreeIconCount;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -size;  // top-down rows
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    Strip strip;
    strip.colour.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!strip.colour) return strip;

    const int maskStride = ((width + 15) / 16) * 2;  // monochrome rows are WORD aligned
    std::vector<BYTE> maskBits(static_cast<std::size_t>(maskStride * size), 0);
    auto* pixels = static_cast<std::uint32_t*>(bits);
    for (int i = 0; i < kTreeIconCount; ++i) {
        const IconPixels* icon = sheet.Find(kNames[static_cast<std::size_t>(i)]);
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const std::uint32_t argb =
                    icon != nullptr ? icon->argb[static_cast<std::size_t>(y * size + x)] : 0;
                const int column = i * size + x;
                // Opaque pixels only, so the colour needs no premultiplying.
                pixels[y * width + column] = argb;
                if ((argb >> 24) == 0) {
                    maskBits[static_cast<std::size_t>(y * maskStride + column / 8)] |=
                        static_cast<BYTE>(0x80 >> (column % 8));
                }
            }
        }
    }
    GdiFlush();
    strip.mask.reset(CreateBitmap(width, size, 1, 1, maskBits.data()));
    return strip;
}

}  // namespace

std::string_view IconName(TreeIcon icon) noexcept {
    const auto index = static_cast<std::size_t>(icon);
    return index < kNames.size() ? kNames[index] : std::string_view{};
}

TreeIcon IconForComponentType(std::int32_t componentType) noexcept {
    switch (componentType) {
        case 2:
            return TreeIcon::Class;
        case 3:
            return TreeIcon::Designer;  // a UserForm is edited in a designer
        case 4:
            return TreeIcon::ResourceFile;
        case 5:
            return TreeIcon::Form;
        case 6:
            return TreeIcon::MdiForm;
        case 7:
            return TreeIcon::PropertyPage;
        case 8:
            return TreeIcon::UserControl;
        case 9:
            return TreeIcon::UserDocument;
        case 10:
            return TreeIcon::RelatedDocument;
        case 11:
            return TreeIcon::Designer;
        default:
            return TreeIcon::Module;
    }
}

int IconSizeForDpi(UINT dpi) noexcept {
    return dpi >= 144 ? 32 : 16;
}

HIMAGELIST CreateTreeImageList(UINT dpi) noexcept {
    try {
        const int size = IconSizeForDpi(dpi);
        const IconSheet sheet = ParseIconSheet(SheetResource(size));
        if (!sheet.error.empty() || sheet.size != size) return nullptr;
        const Strip strip = DrawStrip(sheet);
        if (!strip.colour || !strip.mask) return nullptr;
        HIMAGELIST list = ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, kTreeIconCount, 0);
        if (list == nullptr) return nullptr;
        if (ImageList_Add(list, strip.colour.get(), strip.mask.get()) != 0) {
            ImageList_Destroy(list);
            return nullptr;
        }
        return list;
    } catch (...) {  // out of memory: no list rather than an exception into a window procedure
        return nullptr;
    }
}

}  // namespace arbolet::windows::icons
