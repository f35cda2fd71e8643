// Screen capture through a DIB section.
#include "support/screen_capture.h"

#include "windows/gdi_handles.h"

namespace arbolet::windows::testing {

// The screen's pixels inside a rectangle.
RgbImage CaptureScreen(const RECT& area) {
    RgbImage image;
    image.width = area.right - area.left;
    image.height = area.bottom - area.top;
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

}  // namespace arbolet::windows::testing
