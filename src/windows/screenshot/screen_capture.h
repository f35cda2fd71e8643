// Pictures of what is on the screen, for screenshots that people look at and tests that look
// for colours in them.
#pragma once

#include <windows.h>

#include <filesystem>
#include <vector>

#include "windows/screenshot/png_file.h"

namespace arbolet::windows {

// The screen's pixels inside a rectangle of screen co-ordinates.
RgbImage CaptureScreen(const RECT& area);
// The smallest rectangle around the windows, widened by `margin` on every side.
RECT UnionOfWindows(const std::vector<HWND>& windows, int margin = 0);
// Saves a picture of the window and of any menu open over it; false when nothing was captured
// or the file cannot be written.
bool SaveWindowPicture(HWND window, const std::filesystem::path& out);
// How many pixels have exactly this colour.
int CountPixels(const RgbImage& image, COLORREF colour);

}  // namespace arbolet::windows
