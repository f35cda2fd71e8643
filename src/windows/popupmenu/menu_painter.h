// Measures and draws the items of the popup menu: an icon column with icons, check marks and
// radio marks, the caption with its shortcut, separators, headers, and the disabled and
// highlighted looks, in the system menu fonts.
#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <commctrl.h>

#include <cstdint>

#include "popupmenu/menu_items.h"
#include "windows/base/gdi_handles.h"
#include "windows/metrics/nc_metrics.h"

namespace arbolet::windows {

enum ECNMHeaderStyle : std::int32_t {
    ecnmHeaderCaptionBar = 0,  // a small caption bar across the menu
    ecnmHeaderSeparator = 1,   // a separator line with small text in it
};

// The menu-wide settings the drawing follows.
struct MenuStyle {
    HIMAGELIST Images = nullptr;
    std::int32_t TickIcon = -1;    // image replacing the check mark; -1 for the drawn mark
    std::int32_t OptionIcon = -1;  // image replacing the radio mark; -1 for the drawn mark
    bool GradientHighlight = false;
    ECNMHeaderStyle HeaderStyle = ecnmHeaderCaptionBar;
    bool HighlightCheckedItems = true;
};

class MenuPainter {
  public:
    MenuPainter();

    MenuStyle& Style() noexcept { return style_; }
    const MenuStyle& Style() const noexcept { return style_; }

    // Reads the system metrics and fonts again, after the user changed them.
    void RefreshMetrics();

    // The size an item needs, the width without what the system adds for sub-menu arrows.
    SIZE Measure(HDC hdc, const popupmenu::MenuItem& item);
    void Draw(HDC hdc, const RECT& rcItem, const popupmenu::MenuItem& item, bool bSelected,
              bool bHidePrefix);

  private:
    int IconSize() const noexcept;
    int IconColumnWidth() const noexcept;
    HFONT TextFont(const popupmenu::MenuItem& item) const noexcept;

    void DrawBackground(HDC hdc, const RECT& rc) const;
    void DrawSeparator(HDC hdc, const RECT& rc) const;
    void DrawHeader(HDC hdc, const RECT& rc, const popupmenu::MenuItem& item) const;
    void DrawHighlight(HDC hdc, const RECT& rc) const;
    void DrawIconColumn(HDC hdc, const RECT& rc, const popupmenu::MenuItem& item,
                        bool bSelected) const;
    void DrawCheckMark(HDC hdc, const RECT& box, bool bRadio, COLORREF colour) const;
    void DrawImage(HDC hdc, std::int32_t lIcon, int x, int y, bool bDisabled) const;
    void DrawCaption(HDC hdc, const RECT& rc, const popupmenu::MenuItem& item, bool bSelected,
                     bool bHidePrefix) const;

    MenuStyle style_;
    cNCMetrics metrics_;
    HFONT menuFont_ = nullptr;  // owned by metrics_
    OwnedFont boldMenuFont_;
};

}  // namespace arbolet::windows
