// The add-in's message boxes, with the information icon. Tests take the messages instead of
// showing them, since nobody would be there to close a box.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace arbolet::windows::addin {

using MessageHandler = void (*)(std::string_view text);

// Shows `text` in a message box owned by `owner` (may be null), or hands it to the handler.
void ShowMessage(std::string_view text, HWND owner = nullptr) noexcept;
// Replaces the message box; nullptr restores it. Answers the previous handler.
MessageHandler SetMessageHandler(MessageHandler handler) noexcept;

}  // namespace arbolet::windows::addin
