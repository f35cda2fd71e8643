// Draws a sample code tree as the tool window's tree view would: indented nodes in their line
// colours, joined to their parents by tree lines.
#include "windows/dialogs/sample_picture.h"

#include <vector>

#include "windows/base/gdi_handles.h"
#include "windows/dialogs/code_sample.h"
#include "windows/dialogs/window_class.h"

namespace arbolet::windows::dialogs {
namespace {

constexpr int kMargin = 4;

struct Layout {
    int lineHeight;
    int indent;
};

int Indent(const Layout& layout, int depth) {
    return kMargin + (depth - 1) * layout.indent;
}

void DrawLines(HDC dc, const std::vector<SampleNode>& nodes, const Layout& layout) {
    const OwnedPen pen(CreatePen(PS_SOLID, 1, GetSysColor(COLOR_GRAYTEXT)));
    const SelectedObject selectedPen(dc, pen.get());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].depth <= 1) continue;
        std::size_t parent = i;
        while (parent > 0 && nodes[parent].depth >= nodes[i].depth)
            --parent;
        const int x = Indent(layout, nodes[i].depth - 1) + layout.indent / 3;
        const int parentMid = static_cast<int>(parent) * layout.lineHeight + layout.lineHeight - 2;
        const int mid = static_cast<int>(i) * layout.lineHeight + layout.lineHeight / 2 + kMargin;
        MoveToEx(dc, x, parentMid + kMargin, nullptr);
        LineTo(dc, x, mid);
        LineTo(dc, Indent(layout, nodes[i].depth) - 2, mid);
    }
}

void DrawTexts(HDC dc, const std::vector<SampleNode>& nodes, const Layout& layout, int width) {
    SetBkMode(dc, TRANSPARENT);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const int x = Indent(layout, nodes[i].depth);
        RECT rc{x, kMargin + static_cast<int>(i) * layout.lineHeight, width - kMargin,
                kMargin + static_cast<int>(i + 1) * layout.lineHeight};
        SetTextColor(dc, static_cast<COLORREF>(nodes[i].colour));
        DrawTextA(dc, nodes[i].text.c_str(), static_cast<int>(nodes[i].text.size()), &rc,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
}

void Paint(HWND hWnd, HDC dc) {
    RECT client;
    GetClientRect(hWnd, &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_WINDOW));
    DrawEdge(dc, &client, EDGE_SUNKEN, BF_RECT);

    analysis::DisplayOptions options;
    const HWND dialog = GetParent(hWnd);
    SendMessageW(dialog, kGetSampleOptions, 0, reinterpret_cast<LPARAM>(&options));
    const int sample = static_cast<int>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    std::vector<SampleNode> nodes;
    try {
        nodes = BuildSampleTree(sample, options);
    } catch (...) {  // out of memory: an empty picture, never an exception through WM_PAINT
    }

    const SelectedObject font(dc,
                              reinterpret_cast<HGDIOBJ>(SendMessageW(dialog, WM_GETFONT, 0, 0)));
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    const Layout layout{metrics.tmHeight, metrics.tmAveCharWidth * 3};
    const HRGN clip = CreateRectRgn(2, 2, client.right - 2, client.bottom - 2);
    SelectClipRgn(dc, clip);
    DeleteObject(clip);
    DrawLines(dc, nodes, layout);
    DrawTexts(dc, nodes, layout, client.right);
    SelectClipRgn(dc, nullptr);
}

LRESULT CALLBACK PictureProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (HandlePaintMessages<Paint>(hWnd, iMsg, wParam, result)) return result;
    return DefWindowProcW(hWnd, iMsg, wParam, lParam);
}

}  // namespace

const wchar_t* SamplePictureClass() noexcept {
    static const wchar_t* const name =
        RegisterControlClass(L"ArboletCodeSample", PictureProc, IDC_ARROW);
    return name;
}

void SetPictureSample(HWND hWndPicture, int sample) noexcept {
    SetWindowLongPtrW(hWndPicture, GWLP_USERDATA, sample);
    InvalidateRect(hWndPicture, nullptr, TRUE);
}

}  // namespace arbolet::windows::dialogs
