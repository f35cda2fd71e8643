// The picture boxes of the display options dialog: a window class that draws one sample code
// tree with the options its dialog currently shows.
#pragma once

#include <windows.h>

#include "analysis/display_options.h"

namespace arbolet::windows::dialogs {

// The registered class name (registered on first call, in Arbolet's own module).
const wchar_t* SamplePictureClass() noexcept;

// Sent by a picture to its dialog to learn the options to draw with; the dialog fills the
// DisplayOptions that lParam points to and answers TRUE through DWLP_MSGRESULT.
inline constexpr UINT kGetSampleOptions = WM_APP + 0x41;

// Which sample a picture shows is its GWLP_USERDATA (0, 1 or 2), set by the dialog.
void SetPictureSample(HWND hWndPicture, int sample) noexcept;

}  // namespace arbolet::windows::dialogs
