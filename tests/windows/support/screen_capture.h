// Pictures for the Windows tests: the pixels of a screen area, of a window, or of whatever a
// callback draws into a memory bitmap, as RGB images for the PNG writer and for colour checks.
#pragma once

#include <windows.h>

#include <functional>

#include "windows/screenshot/screen_capture.h"

namespace arbolet::windows::testing {

using windows::CaptureScreen;
using windows::RgbImage;
using windows::WritePng;
using windows::CountPixels;
using windows::UnionOfWindows;

// A window as it stands on the screen. Without a window manager (Xvfb) it has no caption bar.
RgbImage CaptureWindow(HWND hWnd);
// A width x height picture drawn by `draw` into a memory device context filled with `background`.
RgbImage DrawPicture(int width, int height, COLORREF background,
                     const std::function<void(HDC)>& draw);
// Saves under "artifacts/" beside the test program (made when missing) and prints the path.
bool SaveArtifact(const char* fileName, const RgbImage& image);

}  // namespace arbolet::windows::testing
