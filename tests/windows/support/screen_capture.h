// Screenshots for the Windows tests: the screen's pixels inside a rectangle, and pixel counts.
#pragma once

#include <windows.h>

#include "support/png_file.h"

namespace arbolet::windows::testing {

RgbImage CaptureScreen(const RECT& area);
// How many pixels of the image have exactly `colour`.
int CountPixels(const RgbImage& image, COLORREF colour);

}  // namespace arbolet::windows::testing
