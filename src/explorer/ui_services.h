// The few dialogs the explorer's commands need: a message box, an input box and the beep. The
// command-line tool answers them on the terminal, the Windows shell with real dialogs.
#pragma once

#include <string>
#include <string_view>

namespace arbolet::explorer {

// The icon of a message box (VB's vbCritical .. vbInformation values).
enum class MsgBoxIcon {
    None = 0,
    Critical = 16,
    Question = 32,
    Exclamation = 48,
    Information = 64
};

class UiServices {
  public:
    virtual ~UiServices() = default;
    // A message with an OK button.
    virtual void MsgBox(std::string_view prompt, MsgBoxIcon icon, std::string_view title) = 0;
    // Asks for a line of text; an empty answer also stands for Cancel.
    virtual std::string InputBox(std::string_view prompt, std::string_view title,
                                 std::string_view defaultText) = 0;
    // The system beep.
    virtual void Beep() = 0;
};

}  // namespace arbolet::explorer
