// Dialogs on the terminal (see terminal_ui.h).
#include "cli/terminal_ui.h"

namespace arbolet::cli {

void TerminalUi::MsgBox(std::string_view prompt, explorer::MsgBoxIcon, std::string_view title) {
    lastMessage_ = prompt;
    err_ << "arbolet: " << title << ": " << prompt << '\n';
}

std::string TerminalUi::InputBox(std::string_view, std::string_view, std::string_view) {
    return {};
}

void TerminalUi::Beep() {
    err_ << '\a';
}

}  // namespace arbolet::cli
