// Owner drawing of popup menu items with GDI: system colours, the system menu font and its bold
// variant, icons from an image list.
#include "windows/popupmenu/menu_painter.h"

#include <algorithm>
#include <string>

#include "windows/base/ansi_text.h"

namespace arbolet::windows {
namespace {

constexpr int kTextMargin = 6;
constexpr int kShortcutGap = 24;
constexpr int kVerticalPadding = 6;
constexpr int kSeparatorHeight = 8;
constexpr int kHeaderPadding = 6;
constexpr int kMinimumIconSize = 16;

int Width(const RECT& rc) noexcept {
    return rc.right - rc.left;
}
int Height(const RECT& rc) noexcept {
    return rc.bottom - rc.top;
}

COLORREF Blend(COLORREF a, COLORREF b, int weightOfA, int total) noexcept {
    const auto mix = [&](int x, int y) {
        return (x * weightOfA + y * (total - weightOfA)) / total;
    };
    return RGB(mix(GetRValue(a), GetRValue(b)), mix(GetGValue(a), GetGValue(b)),
               mix(GetBValue(a), GetBValue(b)));
}

void FillSolid(HDC hdc, const RECT& rc, COLORREF colour) {
    const OwnedBrush brush(CreateSolidBrush(colour));
    FillRect(hdc, &rc, brush.get());
}

// A left-to-right gradient, one column at a time: menus are small enough for that.
void FillGradient(HDC hdc, const RECT& rc, COLORREF from, COLORREF to) {
    const int width = std::max(1, Width(rc));
    for (int x = 0; x < width; ++x) {
        const RECT column{rc.left + x, rc.top, rc.left + x + 1, rc.bottom};
        FillSolid(hdc, column, Blend(to, from, x, width));
    }
}

SIZE TextSize(HDC hdc, HFONT font, const std::wstring& text) {
    const SelectedObject selected(hdc, font);
    RECT rc{0, 0, 0, 0};
    DrawTextW(hdc, text.empty() ? L" " : text.c_str(), -1, &rc, DT_CALCRECT | DT_SINGLELINE);
    return SIZE{text.empty() ? 0 : Width(rc), Height(rc)};
}

void DrawTextIn(HDC hdc, const std::wstring& text, RECT rc, UINT format, COLORREF colour) {
    SetTextColor(hdc, colour);
    DrawTextW(hdc, text.c_str(), -1, &rc, format | DT_SINGLELINE | DT_VCENTER);
}

}  // namespace

MenuPainter::MenuPainter() {
    RefreshMetrics();
}

void MenuPainter::RefreshMetrics() {
    metrics_.GetMetrics();
    menuFont_ = metrics_.FontHandle(MenuFOnt);
    boldMenuFont_.reset(metrics_.BoldenedFontHandle(MenuFOnt));
}

int MenuPainter::IconSize() const noexcept {
    int width = 0;
    int height = 0;
    if (style_.Images != nullptr) ImageList_GetIconSize(style_.Images, &width, &height);
    return std::max({kMinimumIconSize, width, height});
}

int MenuPainter::IconColumnWidth() const noexcept {
    return IconSize() + 8;
}

HFONT MenuPainter::TextFont(const popupmenu::MenuItem& item) const noexcept {
    return item.Default || item.Header ? boldMenuFont_.get() : menuFont_;
}

SIZE MenuPainter::Measure(HDC hdc, const popupmenu::MenuItem& item) {
    const std::wstring caption = Utf8ToWide(item.DisplayCaption);
    if (item.Separator) return SIZE{IconColumnWidth(), kSeparatorHeight};
    if (item.Header) {
        const SIZE text = TextSize(hdc, TextFont(item), caption);
        return SIZE{IconColumnWidth() + text.cx + 2 * kTextMargin, text.cy + kHeaderPadding};
    }
    const SIZE text = TextSize(hdc, TextFont(item), caption);
    int width = IconColumnWidth() + kTextMargin + text.cx + kTextMargin;
    if (!item.ShortcutText.empty()) {
        width += kShortcutGap + TextSize(hdc, menuFont_, Utf8ToWide(item.ShortcutText)).cx;
    }
    const int height = std::max(static_cast<int>(text.cy), IconSize()) + kVerticalPadding;
    return SIZE{width, height};
}

void MenuPainter::Draw(HDC hdc, const RECT& rcItem, const popupmenu::MenuItem& item, bool bSelected,
                       bool bHidePrefix) {
    const int savedDc = SaveDC(hdc);
    SetBkMode(hdc, TRANSPARENT);
    DrawBackground(hdc, rcItem);
    if (item.Separator) {
        DrawSeparator(hdc, rcItem);
    } else if (item.Header) {
        DrawHeader(hdc, rcItem, item);
    } else {
        const bool highlighted = bSelected && (!item.Checked || style_.HighlightCheckedItems);
        if (highlighted) DrawHighlight(hdc, rcItem);
        DrawIconColumn(hdc, rcItem, item, highlighted);
        DrawCaption(hdc, rcItem, item, highlighted, bHidePrefix);
    }
    RestoreDC(hdc, savedDc);
}

void MenuPainter::DrawBackground(HDC hdc, const RECT& rc) const {
    FillRect(hdc, &rc, GetSysColorBrush(COLOR_MENU));
}

void MenuPainter::DrawSeparator(HDC hdc, const RECT& rc) const {
    RECT line{rc.left + 2, rc.top + Height(rc) / 2 - 1, rc.right - 2, rc.bottom};
    DrawEdge(hdc, &line, EDGE_ETCHED, BF_TOP);
}

void MenuPainter::DrawHeader(HDC hdc, const RECT& rc, const popupmenu::MenuItem& item) const {
    const std::wstring caption = Utf8ToWide(item.DisplayCaption);
    const SelectedObject font(hdc, TextFont(item));
    if (style_.HeaderStyle == ecnmHeaderCaptionBar) {
        const RECT bar{rc.left + 1, rc.top + 1, rc.right - 1, rc.bottom - 1};
        FillGradient(hdc, bar, GetSysColor(COLOR_ACTIVECAPTION),
                     GetSysColor(COLOR_GRADIENTACTIVECAPTION));
        RECT text = bar;
        text.left += kTextMargin;
        DrawTextIn(hdc, caption, text, DT_LEFT | DT_NOPREFIX, GetSysColor(COLOR_CAPTIONTEXT));
        return;
    }
    RECT text{rc.left + kTextMargin, rc.top, rc.right - kTextMargin, rc.bottom};
    DrawTextIn(hdc, caption, text, DT_LEFT | DT_NOPREFIX, GetSysColor(COLOR_GRAYTEXT));
    const SIZE size = TextSize(hdc, TextFont(item), caption);
    RECT line{text.left + size.cx + kTextMargin, rc.top + Height(rc) / 2, rc.right - 2, rc.bottom};
    if (line.left < line.right) DrawEdge(hdc, &line, EDGE_ETCHED, BF_TOP);
}

void MenuPainter::DrawHighlight(HDC hdc, const RECT& rc) const {
    const RECT box{rc.left + 1, rc.top, rc.right - 1, rc.bottom};
    const COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT);
    if (style_.GradientHighlight) {
        FillGradient(hdc, box, highlight, Blend(highlight, GetSysColor(COLOR_MENU), 1, 3));
    } else {
        FillSolid(hdc, box, highlight);
    }
}

void MenuPainter::DrawIconColumn(HDC hdc, const RECT& rc, const popupmenu::MenuItem& item,
                                 bool bSelected) const {
    const int size = IconSize();
    const int x = rc.left + (IconColumnWidth() - size) / 2;
    const int y = rc.top + (Height(rc) - size) / 2;
    const RECT box{x - 2, y - 2, x + size + 2, y + size + 2};
    const bool disabled = !item.Enabled;
    const bool hasIcon = item.IconIndex >= 0 && style_.Images != nullptr;

    if (item.Checked) {
        // A checked item's icon sits in a sunken, lighter box, so that the check shows without
        // a mark.
        if (!bSelected) {
            FillSolid(hdc, box, Blend(GetSysColor(COLOR_MENU), RGB(255, 255, 255), 1, 2));
        }
        RECT edge = box;
        DrawEdge(hdc, &edge, BDR_SUNKENOUTER, BF_RECT);
    }
    if (hasIcon) {
        DrawImage(hdc, item.IconIndex, x, y, disabled);
        return;
    }
    if (!item.Checked) return;
    const std::int32_t markIcon = item.RadioCheck ? style_.OptionIcon : style_.TickIcon;
    if (markIcon >= 0 && style_.Images != nullptr) {
        DrawImage(hdc, markIcon, x, y, disabled);
        return;
    }
    const COLORREF colour = disabled    ? GetSysColor(COLOR_GRAYTEXT)
                            : bSelected ? GetSysColor(COLOR_HIGHLIGHTTEXT)
                                        : GetSysColor(COLOR_MENUTEXT);
    DrawCheckMark(hdc, RECT{x, y, x + size, y + size}, item.RadioCheck, colour);
}

void MenuPainter::DrawCheckMark(HDC hdc, const RECT& box, bool bRadio, COLORREF colour) const {
    const int cx = (box.left + box.right) / 2;
    const int cy = (box.top + box.bottom) / 2;
    if (bRadio) {
        const OwnedBrush brush(CreateSolidBrush(colour));
        const OwnedPen pen(CreatePen(PS_SOLID, 1, colour));
        const SelectedObject selectedBrush(hdc, brush.get());
        const SelectedObject selectedPen(hdc, pen.get());
        Ellipse(hdc, cx - 3, cy - 3, cx + 4, cy + 4);
        return;
    }
    const OwnedPen pen(CreatePen(PS_SOLID, 2, colour));
    const SelectedObject selectedPen(hdc, pen.get());
    const POINT tick[] = {{cx - 4, cy}, {cx - 1, cy + 3}, {cx + 4, cy - 3}};
    Polyline(hdc, tick, 3);
}

void MenuPainter::DrawImage(HDC hdc, std::int32_t lIcon, int x, int y, bool bDisabled) const {
    if (lIcon < 0 || lIcon >= ImageList_GetImageCount(style_.Images)) return;
    if (!bDisabled) {
        ImageList_Draw(style_.Images, lIcon, hdc, x, y, ILD_TRANSPARENT);
        return;
    }
    const HICON icon = ImageList_GetIcon(style_.Images, lIcon, ILD_TRANSPARENT);
    if (icon == nullptr) return;
    int width = 0;
    int height = 0;
    ImageList_GetIconSize(style_.Images, &width, &height);
    DrawStateW(hdc, nullptr, nullptr, reinterpret_cast<LPARAM>(icon), 0, x, y, width, height,
               DST_ICON | DSS_DISABLED);
    DestroyIcon(icon);
}

void MenuPainter::DrawCaption(HDC hdc, const RECT& rc, const popupmenu::MenuItem& item,
                              bool bSelected, bool bHidePrefix) const {
    RECT text{rc.left + IconColumnWidth() + kTextMargin, rc.top, rc.right - kTextMargin, rc.bottom};
    const UINT prefix = bHidePrefix ? DT_HIDEPREFIX : 0;
    const std::wstring caption = Utf8ToWide(item.DisplayCaption);
    const std::wstring shortcut = Utf8ToWide(item.ShortcutText);
    const SelectedObject font(hdc, TextFont(item));

    const auto drawBoth = [&](const RECT& where, COLORREF colour) {
        DrawTextIn(hdc, caption, where, DT_LEFT | prefix, colour);
        if (!shortcut.empty()) DrawTextIn(hdc, shortcut, where, DT_RIGHT | DT_NOPREFIX, colour);
    };
    if (!item.Enabled) {
        // The classic engraved look: a light copy one pixel down and right, grey on top.
        if (!bSelected) {
            drawBoth(RECT{text.left + 1, text.top + 1, text.right + 1, text.bottom + 1},
                     GetSysColor(COLOR_3DHILIGHT));
        }
        drawBoth(text, GetSysColor(COLOR_GRAYTEXT));
        return;
    }
    drawBoth(text, GetSysColor(bSelected ? COLOR_HIGHLIGHTTEXT : COLOR_MENUTEXT));
}

}  // namespace arbolet::windows
