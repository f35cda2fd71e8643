// frmProperties: the display options dialog. Seven check boxes for the options of the option
// store, three sample code trees that follow the ticks, OK and Cancel.
#pragma once

#include <windows.h>

namespace arbolet::windows::dialogs {

inline constexpr const char* kPropertiesCaption = "Arbolet Display Options";
// The help topic F1 opens while the dialog is active.
inline constexpr const char* kPropertiesHelpTopic = "display-options.html";

// Control identifiers, for the front end's tests and for tools that drive the dialog.
enum PropertiesControl : WORD {
    kFrame1 = 1000,
    kChkVariables,
    kChkConst,
    kChkTypes,
    kChkEnums,
    kChkCompiler,
    kChkSectionEnd,
    kChkSortByName,
    kFraSample2,
    kFraSample3,
    kFraSample4,
    kPicOptions2,
    kPicOptions3,
    kPicOptions4,
    kChkShowMetrics,
    kCmdOK = IDOK,
    kCmdCancel = IDCANCEL,
};

// Shows the dialog modally over hWndOwner (a window of the host, such as the VB6 IDE's, which
// stays disabled while the dialog is open). OK writes the seven options and answers true;
// Cancel, Esc and the close box write nothing and answer false. A registry error while loading
// or saving closes the dialog and is raised again here, as VbError, after the owner is enabled.
bool ShowPropertiesDialog(HWND hWndOwner);

}  // namespace arbolet::windows::dialogs
