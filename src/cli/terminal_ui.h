// The explorer's dialogs answered on the terminal: messages go to the error stream, input boxes
// are cancelled (the tool asks nothing interactively), the beep is the bell character.
#pragma once

#include <ostream>

#include "explorer/ui_services.h"

namespace arbolet::cli {

class TerminalUi final : public explorer::UiServices {
  public:
    explicit TerminalUi(std::ostream& err) : err_(err) {}

    void MsgBox(std::string_view prompt, explorer::MsgBoxIcon icon,
                std::string_view title) override;
    std::string InputBox(std::string_view prompt, std::string_view title,
                         std::string_view defaultText) override;
    void Beep() override;

    // The prompt of the last message shown, so that an outcome carrying it is not told twice.
    const std::string& LastMessage() const { return lastMessage_; }

  private:
    std::ostream& err_;
    std::string lastMessage_;
};

}  // namespace arbolet::cli
