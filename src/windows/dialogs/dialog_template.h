// Builds dialog templates in memory, so that Arbolet's dialogs need no resource script and work
// from whichever module (the add-in DLL or a program) links them.
#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace arbolet::windows::dialogs {

// Predefined control classes of a dialog template.
enum class ControlClass : WORD { Button = 0x0080, Edit = 0x0081, Static = 0x0082 };

class DialogTemplate {
  public:
    // Positions and sizes are in dialog units; the font is the shell's dialog font.
    DialogTemplate(std::string_view caption, DWORD style, short cx, short cy);

    void AddControl(ControlClass controlClass, std::string_view text, WORD id, DWORD style, short x,
                    short y, short cx, short cy);
    // A control of a registered window class, by name.
    void AddControl(std::wstring_view className, std::string_view text, WORD id, DWORD style,
                    short x, short y, short cx, short cy);

    const DLGTEMPLATE* get() const noexcept;

  private:
    void AlignToDword();
    void AddWord(WORD value);
    void AddText(std::string_view text);
    void AddWideText(std::wstring_view text);
    void AddItemHeader(DWORD style, WORD id, short x, short y, short cx, short cy);

    std::vector<WORD> words_;
};

// Centres a dialog on the screen its owner is on (the primary screen without an owner).
void CentreOnScreen(HWND hDlg) noexcept;

}  // namespace arbolet::windows::dialogs
