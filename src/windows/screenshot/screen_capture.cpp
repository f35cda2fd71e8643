// Screen capture through a DIB section, so the pixels come back in a known layout.
#include "windows/screenshot/screen_capture.h"

#include "windows/base/gdi_handles.h"

namespace arbolet::windows {

RECT UnionOfWindows(const std::vector<HWND>& windows, int margin) {
    RECT all{};
    for (HWND hWnd : windows) {
        RECT rc{};
        GetWindowRect(hWnd, &rc);
        UnionRect(&all, &all, &rc);
    }
    InflateRect(&all, margin, margin);
    return all;
}

RgbImage CaptureScreen(const RECT& area) {
    RgbImage image;
    image.width = area.right - area.left;
    image.height = area.bottom - area.top;
    if (image.width <= 0 || image.height <= 0) return RgbImage{};
    const WindowDc screen(nullptr);
    const OwnedDc dc(CreateCompatibleDC(screen.get()));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = image.width;
    info.bmiHeader.biHeight = -image.height;  // top-down rows
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    const OwnedBitmap bitmap(CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap) return RgbImage{};
    {
        const SelectedObject selected(dc.get(), bitmap.get());
        BitBlt(dc.get(), 0, 0, image.width, image.height, screen.get(), area.left, area.top,
               SRCCOPY);
    }
    GdiFlush();
    const auto* bgra = static_cast<const std::uint8_t*>(bits);
    image.rgb.reserve(static_cast<std::size_t>(image.width * image.height * 3));
    for (int i = 0; i < image.width * image.height; ++i) {
        image.rgb.push_back(bgra[i * 4 + 2]);
        image.rgb.push_back(bgra[i * 4 + 1]);
        image.rgb.push_back(bgra[i * 4 + 0]);
    }
    return image;
}

int CountPixels(const RgbImage& image, COLORREF colour) {
    int count = 0;
    for (std::size_t i = 0; i + 2 < image.rgb.size(); i += 3) {
        if (image.rgb[i] == GetRValue(colour) && image.rgb[i + 1] == GetGValue(colour) &&
            image.rgb[i + 2] == GetBValue(colour)) {
            ++count;
        }
    }
    return count;
}

bool SaveWindowPicture(HWND window, const std::filesystem::path& out) {
    std::vector<HWND> shown{window};
    // Open menus are top-level windows of the menu class owned by no one.
    for (HWND menu = FindWindowExW(nullptr, nullptr, L"#32768", nullptr); menu != nullptr;
         menu = FindWindowExW(nullptr, menu, L"#32768", nullptr)) {
        if (IsWindowVisible(menu)) shown.push_back(menu);
    }
    const RgbImage picture = CaptureScreen(UnionOfWindows(shown));
    return picture.width != 0 && WritePng(out, picture);
}

}  // namespace arbolet::windows
