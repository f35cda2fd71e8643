// The explorer's message boxes, questions and beep as real Windows dialogs, owned by the
// top-level window that holds the document.
#pragma once

#include <windows.h>

#include "explorer/ui_services.h"

namespace arbolet::windows {

class Win32Ui final : public explorer::UiServices {
  public:
    // `owner`: any window inside the top-level window that owns the dialogs.
    explicit Win32Ui(HWND owner) noexcept : owner_(owner) {}

    void MsgBox(std::string_view prompt, explorer::MsgBoxIcon icon,
                std::string_view title) override;
    std::string InputBox(std::string_view prompt, std::string_view title,
                         std::string_view defaultText) override;
    void Beep() override;

  private:
    HWND Owner() const noexcept;
    HWND owner_;
};

}  // namespace arbolet::windows
