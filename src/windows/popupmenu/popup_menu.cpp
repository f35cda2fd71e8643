// cPopupMenu: builds system menus from the item list, tracks them, and answers the owner
// window's menu messages while they are shown.
#include "windows/popupmenu/popup_menu.h"

#include <algorithm>
#include <cwctype>
#include <memory>

#include "windows/base/ansi_text.h"

namespace arbolet::windows {
namespace {

// TrackPopupMenu flags: return the command; with vertical alignment when the menu need not keep
// to the left.
constexpr UINT kTrackKeepLeft = 256;   // TPM_RETURNCMD
constexpr UINT kTrackVertical = 320;   // TPM_RETURNCMD | TPM_VERTICAL
constexpr UINT kTrackParamsSize = 20;  // the size of TPMPARAMS

constexpr UINT kMenuMessages[] = {WM_MEASUREITEM, WM_DRAWITEM, WM_MENUSELECT, WM_INITMENUPOPUP,
                                  WM_MENUCHAR};

int TwipsPerPixel(int logPixelsIndex) {
    const WindowDc screen(nullptr);
    const int dpi = GetDeviceCaps(screen.get(), logPixelsIndex);
    return dpi > 0 ? std::max(1, 1440 / dpi) : 15;
}

// The character after the single "&" of a caption, in lower case, or 0.
wchar_t Mnemonic(const std::string& caption) {
    const std::wstring text = Utf8ToWide(caption);
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != L'&') continue;
        if (text[i + 1] != L'&') return static_cast<wchar_t>(std::towlower(text[i + 1]));
        ++i;  // "&&" is a literal ampersand
    }
    return 0;
}

}  // namespace

cPopupMenu::Attachment::Attachment(OwnerClient* client, HWND hWnd, bool withCommand)
    : client_(client), hWnd_(hWnd), withCommand_(withCommand) {
    std::size_t attached = 0;
    try {
        for (UINT message : kMenuMessages) {
            AttachMessage(client_, hWnd_, message);
            ++attached;
        }
        if (withCommand_) AttachMessage(client_, hWnd_, WM_COMMAND);
    } catch (...) {
        for (std::size_t i = 0; i < attached; ++i)
            DetachMessage(client_, hWnd_, kMenuMessages[i]);
        throw;
    }
}

cPopupMenu::Attachment::~Attachment() {
    // The window may be gone already; its properties went with it.
    if (!IsWindow(hWnd_)) return;
    if (withCommand_) DetachMessage(client_, hWnd_, WM_COMMAND);
    for (UINT message : kMenuMessages)
        DetachMessage(client_, hWnd_, message);
}

cPopupMenu::cPopupMenu() = default;

cPopupMenu::~cPopupMenu() {
    DestroySubClass();
}

void cPopupMenu::CreateSubClass() {
    if (subclass_) return;
    subclass_ = std::make_unique<Attachment>(&client_, owner_, true);
}

void cPopupMenu::DestroySubClass() noexcept {
    subclass_.reset();
}

void cPopupMenu::hWndOwner(HWND hWnd) {
    const bool subclassed = subclass_ != nullptr;
    DestroySubClass();
    owner_ = hWnd;
    if (subclassed) CreateSubClass();
}

void cPopupMenu::Clear() {
    subMenus_.clear();
    root_.reset();
    built_ = false;
    MenuItems::Clear();
}

void cPopupMenu::BuildMenus() {
    if (built_ && builtRevision_ == StructureRevision()) {
        ApplyStates(root_.get(), 0);
        return;
    }
    subMenus_.clear();
    root_.reset(CreatePopupMenu());
    Populate(root_.get(), 0);
    builtRevision_ = StructureRevision();
    built_ = true;
}

void cPopupMenu::Populate(HMENU hMenu, std::int32_t lParentIndex) {
    UINT position = 0;
    for (std::int32_t index : ChildrenOf(lParentIndex)) {
        const popupmenu::MenuItem& item = Item(index);
        MENUITEMINFOA info{};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_FTYPE | MIIM_ID | MIIM_STATE | MIIM_DATA | MIIM_SUBMENU;
        // Separators and headers are separators to the system, so that keyboard navigation
        // passes over them, but they are drawn here like every other item.
        info.fType = MFT_OWNERDRAW;
        if ((item.Separator || item.Header) && !item.HasSubMenu) info.fType |= MFT_SEPARATOR;
        info.fState = item.Enabled ? MFS_ENABLED : MFS_DISABLED;
        info.wID = item.Id;
        info.dwItemData = item.Id;
        if (item.HasSubMenu) {
            const HMENU subMenu = CreatePopupMenu();
            subMenus_[index] = subMenu;
            Populate(subMenu, index);
            info.hSubMenu = subMenu;
        }
        InsertMenuItemA(hMenu, position++, TRUE, &info);
        MenuHandle(index, reinterpret_cast<std::uintptr_t>(hMenu));
    }
}

void cPopupMenu::ApplyStates(HMENU hMenu, std::int32_t lParentIndex) {
    UINT position = 0;
    for (std::int32_t index : ChildrenOf(lParentIndex)) {
        MENUITEMINFOA info{};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_STATE;
        info.fState = Item(index).Enabled ? MFS_ENABLED : MFS_DISABLED;
        SetMenuItemInfoA(hMenu, position++, TRUE, &info);
        const auto subMenu = subMenus_.find(index);
        if (subMenu != subMenus_.end()) ApplyStates(subMenu->second, index);
    }
}

std::int32_t cPopupMenu::ItemOfSubMenu(HMENU hMenu) const noexcept {
    for (const auto& [index, subMenu] : subMenus_) {
        if (subMenu == hMenu) return index;
    }
    return 0;
}

HMENU cPopupMenu::hMenu(std::int32_t lIndex) {
    Item(lIndex);
    BuildMenus();
    return reinterpret_cast<HMENU>(Item(lIndex).MenuHandle);
}

std::intptr_t cPopupMenu::IDForItem(std::int32_t lIndex) {
    if (!Item(lIndex).HasSubMenu) return Item(lIndex).Id;
    BuildMenus();
    return reinterpret_cast<std::intptr_t>(subMenus_[lIndex]);
}

std::int32_t cPopupMenu::MenuItemHeight(std::int32_t lIndex) {
    const WindowDc screen(nullptr);
    return painter_.Measure(screen.get(), Item(lIndex)).cy;
}

std::int32_t cPopupMenu::MenuItemWidth(std::int32_t lIndex) {
    const WindowDc screen(nullptr);
    LONG widest = 0;
    for (std::int32_t sibling : ChildrenOf(Item(lIndex).ParentIndex)) {
        widest = std::max(widest, painter_.Measure(screen.get(), Item(sibling)).cx);
    }
    return widest;
}

POINT cPopupMenu::TwipsToScreen(std::int32_t lLeft, std::int32_t lTop) const {
    POINT at{lLeft / TwipsPerPixel(LOGPIXELSX), lTop / TwipsPerPixel(LOGPIXELSY)};
    ClientToScreen(owner_, &at);
    return at;
}

std::int32_t cPopupMenu::ShowPopupMenu(std::int32_t lLeft, std::int32_t lTop,
                                       std::int32_t lExcludeLeft, std::int32_t lExcludeTop,
                                       std::int32_t lExcludeRight, std::int32_t lExcludeBottom,
                                       bool bTryToKeepLeft) {
    if (Count() == 0) return 0;
    BuildMenus();
    const POINT at = TwipsToScreen(lLeft, lTop);
    if (lExcludeLeft == 0 && lExcludeTop == 0 && lExcludeRight == 0 && lExcludeBottom == 0) {
        return Track(root_.get(), at, nullptr, bTryToKeepLeft);
    }
    const POINT topLeft = TwipsToScreen(lExcludeLeft, lExcludeTop);
    const POINT bottomRight = TwipsToScreen(lExcludeRight, lExcludeBottom);
    const RECT exclude{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
    return Track(root_.get(), at, &exclude, bTryToKeepLeft);
}

std::int32_t cPopupMenu::ShowPopupMenuAtIndex(std::int32_t lIndex, std::int32_t lLeft,
                                              std::int32_t lTop, std::int32_t lExcludeLeft,
                                              std::int32_t lExcludeTop, std::int32_t lExcludeRight,
                                              std::int32_t lExcludeBottom, bool bTryToKeepLeft) {
    if (!Item(lIndex).HasSubMenu) return 0;
    BuildMenus();
    const HMENU subMenu = subMenus_[lIndex];
    const POINT at = TwipsToScreen(lLeft, lTop);
    if (lExcludeLeft == 0 && lExcludeTop == 0 && lExcludeRight == 0 && lExcludeBottom == 0) {
        return Track(subMenu, at, nullptr, bTryToKeepLeft);
    }
    const POINT topLeft = TwipsToScreen(lExcludeLeft, lExcludeTop);
    const POINT bottomRight = TwipsToScreen(lExcludeRight, lExcludeBottom);
    const RECT exclude{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
    return Track(subMenu, at, &exclude, bTryToKeepLeft);
}

std::int32_t cPopupMenu::ShowPopupAbsolute(std::int32_t lLeftPixel, std::int32_t lTopPixel,
                                           std::int32_t lExcludeLeft, std::int32_t lExcludeTop,
                                           std::int32_t lExcludeRight, std::int32_t lExcludeBottom,
                                           bool bTryToKeepLeft) {
    if (Count() == 0) return 0;
    BuildMenus();
    const POINT at{lLeftPixel, lTopPixel};
    if (lExcludeLeft == 0 && lExcludeTop == 0 && lExcludeRight == 0 && lExcludeBottom == 0) {
        return Track(root_.get(), at, nullptr, bTryToKeepLeft);
    }
    const RECT exclude{lExcludeLeft, lExcludeTop, lExcludeRight, lExcludeBottom};
    return Track(root_.get(), at, &exclude, bTryToKeepLeft);
}

std::int32_t cPopupMenu::Track(HMENU hMenu, POINT at, const RECT* exclude, bool bTryToKeepLeft) {
    // Without a lasting subclass the owner's menu messages are taken for this one menu only.
    std::unique_ptr<Attachment> forThisMenu;
    if (!subclass_) forThisMenu = std::make_unique<Attachment>(&client_, owner_, false);

    const UINT flags = bTryToKeepLeft ? kTrackKeepLeft : kTrackVertical;
    SendMessageA(owner_, WM_ENTERMENULOOP, 1, 0);
    UINT command = 0;
    if (exclude != nullptr) {
        TPMPARAMS params{};
        params.cbSize = kTrackParamsSize;
        params.rcExclude = *exclude;
        command = static_cast<UINT>(TrackPopupMenuEx(hMenu, flags, at.x, at.y, owner_, &params));
    } else {
        command = static_cast<UINT>(TrackPopupMenu(hMenu, flags, at.x, at.y, 0, owner_, nullptr));
    }
    SendMessageA(owner_, WM_EXITMENULOOP, 1, 0);
    forThisMenu.reset();
    if (MenuExit) MenuExit();

    const std::int32_t index = command > 0 ? ItemForID(command) : 0;
    if (index == 0) return 0;
    if (subclass_) {
        // The subclass turns the command into the Click event, as for any other menu command.
        pendingCommand_ = command;
        SendMessageA(owner_, WM_COMMAND, MAKEWPARAM(command, 0), 0);
        pendingCommand_ = 0;
    } else if (Click) {
        Click(index);
    }
    return index;
}

void cPopupMenu::EmulateMenuClick(std::uint32_t wID) {
    const std::int32_t index = ItemForID(wID);
    if (index != 0 && Click) Click(index);
}

bool cPopupMenu::OnMeasureItem(MEASUREITEMSTRUCT& measure) {
    if (measure.CtlType != ODT_MENU) return false;
    const std::int32_t index = ItemForID(static_cast<std::uint32_t>(measure.itemData));
    if (index == 0) return false;
    const WindowDc screen(owner_);
    const SIZE size = painter_.Measure(screen.get(), Item(index));
    std::int32_t width = size.cx;
    std::int32_t height = size.cy;
    if (Item(index).OwnerDraw && MeasureItem) MeasureItem(index, width, height);
    measure.itemWidth = static_cast<UINT>(std::max(0, width));
    measure.itemHeight = static_cast<UINT>(std::max(0, height));
    return true;
}

bool cPopupMenu::OnDrawItem(const DRAWITEMSTRUCT& draw) {
    if (draw.CtlType != ODT_MENU) return false;
    const std::int32_t index = ItemForID(static_cast<std::uint32_t>(draw.itemData));
    if (index == 0) return false;
    const bool selected = (draw.itemState & ODS_SELECTED) != 0;
    if (Item(index).OwnerDraw && DrawItem) {
        DrawItem(PopupMenuDrawArgs{draw.hDC, index, draw.rcItem, selected, Item(index).Checked,
                                   !Item(index).Enabled});
        return true;
    }
    painter_.Draw(draw.hDC, draw.rcItem, Item(index), selected,
                  (draw.itemState & ODS_NOACCEL) != 0);
    return true;
}

void cPopupMenu::OnMenuSelect(UINT item, UINT flags, HMENU hMenu) {
    if (hMenu == nullptr || !ItemHighlight) return;  // the menu closing
    UINT id = item;
    if ((flags & MF_POPUP) != 0) {
        // For an item that opens a sub-menu the system passes its position, not its ID.
        MENUITEMINFOA info{};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_ID;
        if (!GetMenuItemInfoA(hMenu, item, TRUE, &info)) return;
        id = info.wID;
    }
    const std::int32_t index = ItemForID(id);
    if (index != 0) ItemHighlight(index, Item(index).Enabled, Item(index).Separator);
}

void cPopupMenu::OnInitMenuPopup(HMENU hMenu) {
    const std::int32_t parent = ItemOfSubMenu(hMenu);
    if (parent == 0 || !InitPopupMenu) return;
    const std::uint64_t before = StructureRevision();
    InitPopupMenu(parent);
    if (StructureRevision() == before || parent > Count() || !Item(parent).HasSubMenu) return;
    // The handler changed the items: refill the sub-menu that is about to open. Other menus
    // follow at the next show.
    while (GetMenuItemCount(hMenu) > 0)
        DeleteMenu(hMenu, 0, MF_BYPOSITION);
    std::erase_if(subMenus_, [](const auto& entry) { return !IsMenu(entry.second); });
    Populate(hMenu, parent);
    subMenus_[parent] = hMenu;
}

bool cPopupMenu::OnMenuChar(wchar_t character, HMENU hMenu, LRESULT& result) {
    const std::int32_t parent = hMenu == root_.get() ? 0 : ItemOfSubMenu(hMenu);
    if (parent == 0 && hMenu != root_.get()) return false;
    const wchar_t wanted = static_cast<wchar_t>(std::towlower(character));
    UINT position = 0;
    for (std::int32_t index : ChildrenOf(parent)) {
        const popupmenu::MenuItem& item = Item(index);
        if (item.Enabled && !item.Separator && !item.Header &&
            Mnemonic(item.DisplayCaption) == wanted) {
            result = MAKELRESULT(position, MNC_EXECUTE);
            return true;
        }
        ++position;
    }
    return false;
}

bool cPopupMenu::OnCommand(UINT wID) {
    if (pendingCommand_ == 0 || wID != pendingCommand_) return false;
    const std::int32_t index = ItemForID(wID);
    if (index != 0 && Click) Click(index);
    return true;
}

LRESULT cPopupMenu::OwnerClient::WindowProc(HWND, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    bool consumed = false;
    LRESULT result = 0;
    switch (iMsg) {
        case WM_MEASUREITEM:
            consumed = menu_.OnMeasureItem(*reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
            result = TRUE;
            break;
        case WM_DRAWITEM:
            consumed = menu_.OnDrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            result = TRUE;
            break;
        case WM_MENUSELECT:
            menu_.OnMenuSelect(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HMENU>(lParam));
            break;
        case WM_INITMENUPOPUP:
            menu_.OnInitMenuPopup(reinterpret_cast<HMENU>(wParam));
            break;
        case WM_MENUCHAR:
            consumed = menu_.OnMenuChar(static_cast<wchar_t>(LOWORD(wParam)),
                                        reinterpret_cast<HMENU>(lParam), result);
            break;
        case WM_COMMAND:
            consumed = HIWORD(wParam) == 0 && lParam == 0 && menu_.OnCommand(LOWORD(wParam));
            break;
        default:
            break;
    }
    response_ = consumed ? emrConsume : emrPostProcess;
    return consumed ? result : 0;
}

}  // namespace arbolet::windows
