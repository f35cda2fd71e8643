// Screen and memory pictures for the Windows tests, through a 32-bit top-down DIB section.
#include "support/screen_capture.h"

#include <cstdio>
#include <string>

#include "windows/base/gdi_handles.h"

namespace arbolet::windows::testing {
namespace {

// Runs `fill` on a memory DC holding a fresh DIB and returns the DIB's pixels as RGB.
RgbImage Render(int width, int height, const std::function<void(HDC)>& fill) {
    RgbImage image;
    if (width <= 0 || height <= 0) return image;
    const WindowDc screen(nullptr);
    const OwnedDc dc(CreateCompatibleDC(screen.get()));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // top-down rows
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    const OwnedBitmap bitmap(CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap) return image;
    {
        const SelectedObject selected(dc.get(), bitmap.get());
        fill(dc.get());
    }
    GdiFlush();
    image.width = width;
    image.height = height;
    const auto* bgra = static_cast<const std::uint8_t*>(bits);
    image.rgb.reserve(static_cast<std::size_t>(width * height * 3));
    for (int i = 0; i < width * height; ++i) {
        image.rgb.push_back(bgra[i * 4 + 2]);
        image.rgb.push_back(bgra[i * 4 + 1]);
        image.rgb.push_back(bgra[i * 4 + 0]);
    }
    return image;
}

}  // namespace

RgbImage CaptureWindow(HWND hWnd) {
    RECT rc{};
    GetWindowRect(hWnd, &rc);
    return CaptureScreen(rc);
}

RgbImage DrawPicture(int width, int height, COLORREF background,
                     const std::function<void(HDC)>& draw) {
    return Render(width, height, [&](HDC dc) {
        const RECT all{0, 0, width, height};
        const OwnedBrush brush(CreateSolidBrush(background));
        FillRect(dc, &all, brush.get());
        draw(dc);
    });
}

bool SaveArtifact(const char* fileName, const RgbImage& image) {
    CreateDirectoryA("artifacts", nullptr);
    const std::string path = std::string("artifacts/") + fileName;
    const bool saved = WritePng(path, image);
    std::printf("picture: %s (%dx%d)%s\n", path.c_str(), image.width, image.height,
                saved ? "" : " NOT SAVED");
    return saved;
}

}  // namespace arbolet::windows::testing
