// Message boxes, or the handler that tests install.
#include "windows/addin/messages.h"

#include "windows/base/ansi_text.h"

namespace arbolet::windows::addin {
namespace {
MessageHandler g_handler = nullptr;
}  // namespace

void ShowMessage(std::string_view text, HWND owner) noexcept {
    if (g_handler != nullptr) {
        g_handler(text);
        return;
    }
    try {
        MessageBoxW(owner, Utf8ToWide(text).c_str(), L"Arbolet", MB_OK | MB_ICONINFORMATION);
    } catch (...) {
    }
}

MessageHandler SetMessageHandler(MessageHandler handler) noexcept {
    const MessageHandler previous = g_handler;
    g_handler = handler;
    return previous;
}

}  // namespace arbolet::windows::addin
