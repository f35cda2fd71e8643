// cPopupMenu: the context menus of the tool window. The item list (popupmenu::MenuItems) turns
// into real system menus when a menu is shown; every item is drawn by this class, with the
// system menu fonts, icons from an image list, check marks, headers and separators.
//
// The owner window's menu messages reach the class through the subclassing service: for the
// time a menu is shown, or for good after CreateSubClass.
#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <commctrl.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "popupmenu/menu_items.h"
#include "windows/base/gdi_handles.h"
#include "windows/popupmenu/menu_painter.h"
#include "windows/subclass/subclass.h"

namespace arbolet::windows {

// What DrawItem hands to a caller that draws an OwnerDraw item itself.
struct PopupMenuDrawArgs {
    HDC hDC;
    std::int32_t lMenuIndex;
    RECT rcItem;
    bool bSelected;
    bool bChecked;
    bool bDisabled;
};

class cPopupMenu : public popupmenu::MenuItems {
  public:
    cPopupMenu();
    ~cPopupMenu() override;
    cPopupMenu(const cPopupMenu&) = delete;
    cPopupMenu& operator=(const cPopupMenu&) = delete;

    // Events. Handlers run on the menu's thread, in the middle of the menu's own loop.
    std::function<void(std::int32_t ItemNumber)> Click;
    std::function<void(std::int32_t ItemNumber, bool bEnabled, bool bSeparator)> ItemHighlight;
    std::function<void()> MenuExit;
    // Before a sub-menu opens; the handler may change the sub-menu's items.
    std::function<void(std::int32_t ParentItemNumber)> InitPopupMenu;
    std::function<void(const PopupMenuDrawArgs& args)> DrawItem;
    std::function<void(std::int32_t lMenuIndex, std::int32_t& lWidth, std::int32_t& lHeight)>
        MeasureItem;

    // The menu ID of an item, or for an item with a sub-menu that menu's handle.
    std::intptr_t IDForItem(std::int32_t lIndex);

    void CreateSubClass();
    void DestroySubClass() noexcept;

    bool GradientHighlight() const noexcept { return painter_.Style().GradientHighlight; }
    void GradientHighlight(bool bGradient) noexcept {
        painter_.Style().GradientHighlight = bGradient;
    }
    ECNMHeaderStyle HeaderStyle() const noexcept { return painter_.Style().HeaderStyle; }
    void HeaderStyle(ECNMHeaderStyle eStyle) noexcept { painter_.Style().HeaderStyle = eStyle; }
    bool HighlightCheckedItems() const noexcept { return painter_.Style().HighlightCheckedItems; }
    void HighlightCheckedItems(bool bHighlight) noexcept {
        painter_.Style().HighlightCheckedItems = bHighlight;
    }
    HWND hWndOwner() const noexcept { return owner_; }
    void hWndOwner(HWND hWnd);
    HIMAGELIST ImageList() const noexcept { return painter_.Style().Images; }
    void ImageList(HIMAGELIST hImageList) noexcept { painter_.Style().Images = hImageList; }

    // Shows the menu at a point of the owner window's client area given in twips, avoiding the
    // exclusion rectangle when one is given; returns the chosen item's index or 0.
    std::int32_t ShowPopupMenu(std::int32_t lLeft, std::int32_t lTop, std::int32_t lExcludeLeft = 0,
                               std::int32_t lExcludeTop = 0, std::int32_t lExcludeRight = 0,
                               std::int32_t lExcludeBottom = 0, bool bTryToKeepLeft = true);
    // The same for the sub-menu of one item.
    std::int32_t ShowPopupMenuAtIndex(std::int32_t lIndex, std::int32_t lLeft, std::int32_t lTop,
                                      std::int32_t lExcludeLeft = 0, std::int32_t lExcludeTop = 0,
                                      std::int32_t lExcludeRight = 0,
                                      std::int32_t lExcludeBottom = 0, bool bTryToKeepLeft = true);
    // Shows the menu at a screen position in pixels; the exclusion rectangle is in screen pixels.
    std::int32_t ShowPopupAbsolute(std::int32_t lLeftPixel, std::int32_t lTopPixel,
                                   std::int32_t lExcludeLeft = 0, std::int32_t lExcludeTop = 0,
                                   std::int32_t lExcludeRight = 0, std::int32_t lExcludeBottom = 0,
                                   bool bTryToKeepLeft = true);

    // The system menu that holds an item; valid until the items change.
    HMENU hMenu(std::int32_t lIndex);
    // The drawn size of an item; the width is that of the widest item of its menu.
    std::int32_t MenuItemHeight(std::int32_t lIndex);
    std::int32_t MenuItemWidth(std::int32_t lIndex);

    // Runs what choosing the item with this menu ID runs: the Click event.
    void EmulateMenuClick(std::uint32_t wID);

    void Clear();

  private:
    class OwnerClient : public ISubclass {
      public:
        explicit OwnerClient(cPopupMenu& menu) noexcept : menu_(menu) {}
        EMsgResponse MsgResponse() override { return response_; }
        void MsgResponse(EMsgResponse response) override { response_ = response; }
        LRESULT WindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) override;

      private:
        cPopupMenu& menu_;
        EMsgResponse response_ = emrPostProcess;
    };
    // Attaches the client to the owner's menu messages for one scope.
    class Attachment {
      public:
        Attachment(OwnerClient* client, HWND hWnd, bool withCommand);
        ~Attachment();
        Attachment(const Attachment&) = delete;
        Attachment& operator=(const Attachment&) = delete;

      private:
        OwnerClient* client_;
        HWND hWnd_;
        bool withCommand_;
    };

    // The messages handled; each answers whether it consumed the message.
    bool OnMeasureItem(MEASUREITEMSTRUCT& measure);
    bool OnDrawItem(const DRAWITEMSTRUCT& draw);
    void OnMenuSelect(UINT item, UINT flags, HMENU hMenu);
    void OnInitMenuPopup(HMENU hMenu);
    bool OnMenuChar(wchar_t character, HMENU hMenu, LRESULT& result);
    bool OnCommand(UINT wID);

    void BuildMenus();
    void Populate(HMENU hMenu, std::int32_t lParentIndex);
    // Carries the enabled states over to menus built earlier.
    void ApplyStates(HMENU hMenu, std::int32_t lParentIndex);
    std::int32_t ItemOfSubMenu(HMENU hMenu) const noexcept;
    std::int32_t Track(HMENU hMenu, POINT at, const RECT* exclude, bool bTryToKeepLeft);
    POINT TwipsToScreen(std::int32_t lLeft, std::int32_t lTop) const;

    HWND owner_ = nullptr;
    OwnerClient client_{*this};
    std::unique_ptr<Attachment> subclass_;
    MenuPainter painter_;
    OwnedMenu root_;
    std::map<std::int32_t, HMENU> subMenus_;  // by the index of the item that opens them
    std::uint64_t builtRevision_ = 0;
    bool built_ = false;
    UINT pendingCommand_ = 0;
};

}  // namespace arbolet::windows
