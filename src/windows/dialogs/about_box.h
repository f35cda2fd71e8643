// The about box: an animated picture with the product's name, version and licence. A click,
// Enter or Esc closes it.
#pragma once

#include <windows.h>

namespace arbolet::windows::dialogs {

inline constexpr const char* kAboutCaption = "About Arbolet";
// The picture control that fills the box, for tests.
inline constexpr WORD kAboutPicture = 1100;

// Shows the about box modally over hWndOwner (which stays disabled while it is open).
void ShowAboutBox(HWND hWndOwner);

}  // namespace arbolet::windows::dialogs
