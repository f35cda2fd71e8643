// Draws the about box's picture into a memory bitmap and copies it in one go, so that the
// animation never flickers.
#include "windows/dialogs/about_picture.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "windows/base/gdi_handles.h"
#include "windows/dialogs/product.h"
#include "windows/dialogs/window_class.h"

namespace arbolet::windows::dialogs {
namespace {

constexpr COLORREF kSkyTop = RGB(28, 72, 140);
constexpr COLORREF kSkyBottom = RGB(150, 196, 236);
constexpr COLORREF kGround = RGB(70, 130, 60);
constexpr COLORREF kBark = RGB(92, 60, 32);
constexpr int kDepth = 7;

void FillGradient(HDC dc, const RECT& rc, COLORREF top, COLORREF bottom) {
    const int height = rc.bottom - rc.top;
    for (int y = 0; y < height; ++y) {
        const auto mix = [&](int a, int b) {
            return a + (b - a) * y / (height > 1 ? height - 1 : 1);
        };
        const OwnedBrush brush(CreateSolidBrush(RGB(mix(GetRValue(top), GetRValue(bottom)),
                                                    mix(GetGValue(top), GetGValue(bottom)),
                                                    mix(GetBValue(top), GetBValue(bottom)))));
        const RECT line{rc.left, rc.top + y, rc.right, rc.top + y + 1};
        FillRect(dc, &line, brush.get());
    }
}

struct Growth {
    double grown;  // how many levels are drawn, fractional while a level grows
    double sway;   // radians added at every fork, varying with time
};

// One branch and, recursively, its two children: a binary tree whose depth is bounded by
// kDepth, so the recursion is too.
void DrawBranch(HDC dc, double x, double y, double angle, double length, int level,
                const Growth& growth) {
    const double part = growth.grown - level;
    if (part <= 0) return;
    const double shown = length * (part < 1 ? part : 1);
    const double x2 = x + std::cos(angle) * shown;
    const double y2 = y - std::sin(angle) * shown;
    const bool leaf = level >= kDepth - 2;
    const int width = leaf ? 2 : kDepth - level + 1;
    const COLORREF colour = leaf ? RGB(60 + level * 12, 150 + level * 8, 50) : kBark;
    const OwnedPen pen(CreatePen(PS_SOLID, width, colour));
    const SelectedObject selected(dc, pen.get());
    MoveToEx(dc, static_cast<int>(x), static_cast<int>(y), nullptr);
    LineTo(dc, static_cast<int>(x2), static_cast<int>(y2));
    if (level + 1 >= kDepth || part < 1) return;
    const double spread = 0.42 + growth.sway * (level + 1) / kDepth;
    DrawBranch(dc, x2, y2, angle + spread, length * 0.74, level + 1, growth);
    DrawBranch(dc, x2, y2, angle - spread * 0.9, length * 0.70, level + 1, growth);
}

OwnedFont TextFont(int height, int weight) {
    return OwnedFont(CreateFontA(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                 OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                                 DEFAULT_PITCH | FF_SWISS, "Tahoma"));
}

// One line of text from x, at most `room` pixels wide: the line is measured in the font it is
// drawn in, and a line too wide for the picture (another DPI, a font substituted for Tahoma, a
// longer translation) gets a smaller font instead of losing its end.
void DrawText(HDC dc, const std::string& text, int x, int y, int height, int weight,
              COLORREF colour, int room) {
    OwnedFont font = TextFont(height, weight);
    // Widths do not shrink exactly with the height (hinting), so the size is measured again.
    for (int tries = 0; tries < 4 && room > 0 && height > 1; ++tries) {
        SIZE size{};
        {
            const SelectedObject selected(dc, font.get());
            GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
        }
        if (size.cx <= room) break;
        height = std::min(height - 1, static_cast<int>(height * room / size.cx));
        font = TextFont(std::max(height, 1), weight);
    }
    const SelectedObject selected(dc, font.get());
    SetTextColor(dc, colour);
    TextOutA(dc, x, y, text.c_str(), static_cast<int>(text.size()));
}

void DrawFrame(HDC dc, const RECT& rc, int frame) {
    const int groundTop = rc.bottom - rc.bottom / 6;
    FillGradient(dc, RECT{0, 0, rc.right, groundTop}, kSkyTop, kSkyBottom);
    const OwnedBrush ground(CreateSolidBrush(kGround));
    const RECT grass{0, groundTop, rc.right, rc.bottom};
    FillRect(dc, &grass, ground.get());

    const Growth growth{kDepth * std::min(1.0, frame / static_cast<double>(kGrowFrames)),
                        0.08 * std::sin(frame / 9.0)};
    const double treeX = rc.right * 0.22;
    DrawBranch(dc, treeX, groundTop, 3.14159265 / 2, rc.bottom * 0.19, 0, growth);

    SetBkMode(dc, TRANSPARENT);
    const int textX = static_cast<int>(rc.right * 0.42);
    const int unit = rc.bottom / 14;
    const int room = rc.right - textX - unit;  // a margin of one unit on the right
    DrawText(dc, kProductName, textX, unit, unit * 3, FW_BOLD, RGB(255, 255, 255), room);
    DrawText(dc, std::string("Version ") + ProductVersion(), textX, unit * 4 + unit / 2, unit,
             FW_NORMAL, RGB(255, 255, 255), room);
    DrawText(dc, kProductTagline, textX, unit * 6, unit * 9 / 10, FW_NORMAL, RGB(230, 240, 255),
             room);
    DrawText(dc, kLicence, textX, unit * 8, unit * 9 / 10, FW_NORMAL, RGB(20, 40, 70), room);
    DrawText(dc, "Click or press Esc to close.", textX, groundTop + unit / 2, unit * 8 / 10,
             FW_NORMAL, RGB(225, 240, 220), room);
}

void Paint(HWND hWnd, HDC target) {
    RECT rc;
    GetClientRect(hWnd, &rc);
    const OwnedDc memory(CreateCompatibleDC(target));
    const OwnedBitmap bitmap(CreateCompatibleBitmap(target, rc.right, rc.bottom));
    {
        const SelectedObject selected(memory.get(), bitmap.get());
        DrawFrame(memory.get(), rc, static_cast<int>(GetWindowLongPtrW(hWnd, GWLP_USERDATA)));
        BitBlt(target, 0, 0, rc.right, rc.bottom, memory.get(), 0, 0, SRCCOPY);
    }
}

LRESULT CALLBACK PictureProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (HandlePaintMessages<Paint>(hWnd, iMsg, wParam, result)) return result;
    if (iMsg == WM_LBUTTONDOWN || iMsg == WM_RBUTTONDOWN) {  // a click anywhere closes the box
        PostMessageW(GetParent(hWnd), WM_COMMAND, IDOK, 0);
        return 0;
    }
    return DefWindowProcW(hWnd, iMsg, wParam, lParam);
}

}  // namespace

const wchar_t* AboutPictureClass() noexcept {
    static const wchar_t* const name =
        RegisterControlClass(L"ArboletAboutPicture", PictureProc, IDC_HAND);
    return name;
}

const char* ProductVersion() noexcept {
    return ARBOLET_VERSION;
}

}  // namespace arbolet::windows::dialogs
