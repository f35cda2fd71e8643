// The about box's picture: a tree that grows and sways, drawn frame by frame, with the product's
// texts beside it.
#pragma once

#include <windows.h>

namespace arbolet::windows::dialogs {

// The registered class name (registered on first call, in Arbolet's own module). The window's
// GWLP_USERDATA holds the frame number the dialog's timer advances.
const wchar_t* AboutPictureClass() noexcept;

// Frames until the tree is fully grown; it sways for as long as the box is open.
inline constexpr int kGrowFrames = 40;

}  // namespace arbolet::windows::dialogs
