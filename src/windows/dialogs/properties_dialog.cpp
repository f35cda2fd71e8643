// frmProperties over an in-memory dialog template. The options are read when the dialog opens
// and written on OK, each in the order the option store's users have always used, because a
// first read of a missing option stores its default.
#include "windows/dialogs/properties_dialog.h"

#include <array>
#include <exception>

#include "windows/base/own_module.h"
#include "windows/dialogs/code_sample.h"
#include "windows/dialogs/dialog_template.h"
#include "windows/dialogs/help.h"
#include "windows/dialogs/sample_picture.h"
#include "windows/options/settings.h"

namespace arbolet::windows::dialogs {
namespace {

namespace opt = options;

struct DialogState {
    std::exception_ptr error;
};

struct CheckBox {
    WORD id;
    const char* caption;
};

// Top to bottom as they stand in the frame.
constexpr std::array<CheckBox, 7> kCheckBoxes = {{
    {kChkVariables, "Variables"},
    {kChkConst, "Constants"},
    {kChkTypes, "Types"},
    {kChkEnums, "Enumerations"},
    {kChkCompiler, "Compiler Directives"},
    {kChkSectionEnd, "Show Section Ends"},
    {kChkSortByName, "Sort Functions, Etc By Name"},
}};

constexpr std::array<WORD, kSampleCount> kPictures = {kPicOptions2, kPicOptions3, kPicOptions4};

DialogTemplate BuildTemplate() {
    DialogTemplate dialog(kPropertiesCaption, DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU,
                          340, 306);
    dialog.AddControl(ControlClass::Button, "Display Options", kFrame1, BS_GROUPBOX, 7, 7, 118,
                      268);
    short y = 22;
    for (const CheckBox& box : kCheckBoxes) {
        const DWORD group = box.id == kChkVariables ? WS_GROUP : 0;
        dialog.AddControl(ControlClass::Button, box.caption, box.id,
                          BS_3STATE | BS_MULTILINE | WS_TABSTOP | group, 15, y, 104, 20);
        y += 26;
    }
    // Not a display option of the code tree: the samples do not show it.
    dialog.AddControl(ControlClass::Button, "Show Metrics", kChkShowMetrics,
                      BS_3STATE | BS_MULTILINE | WS_TABSTOP, 15, y, 104, 20);
    const std::array<const char*, kSampleCount> frames = {"Sample 2", "Sample 3", "Sample 4"};
    for (int i = 0; i < kSampleCount; ++i) {
        const auto top = static_cast<short>(7 + i * 91);
        dialog.AddControl(ControlClass::Button, frames[static_cast<std::size_t>(i)],
                          static_cast<WORD>(kFraSample2 + i), BS_GROUPBOX | WS_GROUP, 132, top, 201,
                          87);
        dialog.AddControl(SamplePictureClass(), "", kPictures[static_cast<std::size_t>(i)], 0, 139,
                          static_cast<short>(top + 12), 187, 69);
    }
    dialog.AddControl(ControlClass::Button, "OK", kCmdOK, BS_DEFPUSHBUTTON | WS_TABSTOP | WS_GROUP,
                      229, 284, 50, 14);
    dialog.AddControl(ControlClass::Button, "Cancel", kCmdCancel, BS_PUSHBUTTON | WS_TABSTOP, 283,
                      284, 50, 14);
    return dialog;
}

void Check(HWND hDlg, WORD id, bool bValue) {
    CheckDlgButton(hDlg, id, bValue ? BST_CHECKED : BST_UNCHECKED);
}

// True only for a box that is exactly checked: a grey box saves False.
bool Checked(HWND hDlg, WORD id) {
    return IsDlgButtonChecked(hDlg, id) == BST_CHECKED;
}

void LoadOptions(HWND hDlg) {
    Check(hDlg, kChkTypes, opt::ShowTypes());
    Check(hDlg, kChkEnums, opt::ShowEnums());
    Check(hDlg, kChkVariables, opt::ShowVariables());
    Check(hDlg, kChkSectionEnd, opt::ShowSectionEnd());
    Check(hDlg, kChkConst, opt::ShowConstants());
    Check(hDlg, kChkCompiler, opt::ShowCompiler());
    Check(hDlg, kChkSortByName, opt::SortByName());
    Check(hDlg, kChkShowMetrics, opt::ShowMetrics());
}

void SaveOptions(HWND hDlg) {
    opt::ShowTypes(Checked(hDlg, kChkTypes));
    opt::ShowEnums(Checked(hDlg, kChkEnums));
    opt::ShowVariables(Checked(hDlg, kChkVariables));
    opt::ShowSectionEnd(Checked(hDlg, kChkSectionEnd));
    opt::ShowConstants(Checked(hDlg, kChkConst));
    opt::ShowCompiler(Checked(hDlg, kChkCompiler));
    opt::SortByName(Checked(hDlg, kChkSortByName));
    opt::ShowMetrics(Checked(hDlg, kChkShowMetrics));
}

// The options as the boxes show them now, for the samples.
analysis::DisplayOptions TickedOptions(HWND hDlg) {
    analysis::DisplayOptions options;
    options.ShowVariables = Checked(hDlg, kChkVariables);
    options.ShowConstants = Checked(hDlg, kChkConst);
    options.ShowCompiler = Checked(hDlg, kChkCompiler);
    options.ShowEnums = Checked(hDlg, kChkEnums);
    options.ShowTypes = Checked(hDlg, kChkTypes);
    options.ShowSectionEnd = Checked(hDlg, kChkSectionEnd);
    options.SortByName = Checked(hDlg, kChkSortByName);
    return options;
}

// The boxes are three-state so that a grey value can be shown, but a click only ever ticks or
// clears a box, as in the IDE's own dialogs.
void Toggle(HWND hDlg, WORD id) {
    Check(hDlg, id, !Checked(hDlg, id));
}

void RedrawSamples(HWND hDlg) {
    for (const WORD id : kPictures)
        InvalidateRect(GetDlgItem(hDlg, id), nullptr, TRUE);
}

// Runs a registry access; a failure is kept for the caller and closes the dialog.
template <typename Access>
bool Guarded(HWND hDlg, Access&& access) {
    try {
        access();
        return true;
    } catch (...) {
        auto* state = reinterpret_cast<DialogState*>(GetWindowLongPtrW(hDlg, DWLP_USER));
        state->error = std::current_exception();
        EndDialog(hDlg, IDABORT);
        return false;
    }
}

INT_PTR OnInitDialog(HWND hDlg, LPARAM lParam) {
    SetWindowLongPtrW(hDlg, DWLP_USER, lParam);
    for (int i = 0; i < kSampleCount; ++i) {
        SetPictureSample(GetDlgItem(hDlg, kPictures[static_cast<std::size_t>(i)]), i);
    }
    CentreOnScreen(hDlg);
    Guarded(hDlg, [&] { LoadOptions(hDlg); });
    return TRUE;  // the focus goes to the first check box
}

INT_PTR OnCommand(HWND hDlg, WORD id, WORD code) {
    if (id == kCmdOK) {
        if (Guarded(hDlg, [&] { SaveOptions(hDlg); })) EndDialog(hDlg, IDOK);
        return TRUE;
    }
    if (id == kCmdCancel) {
        EndDialog(hDlg, IDCANCEL);
        return TRUE;
    }
    if (id == kChkShowMetrics && code == BN_CLICKED) {
        Toggle(hDlg, id);
        return TRUE;
    }
    if (id >= kChkVariables && id <= kChkSortByName && code == BN_CLICKED) {
        Toggle(hDlg, id);
        RedrawSamples(hDlg);
        return TRUE;
    }
    return FALSE;
}

INT_PTR CALLBACK PropertiesProc(HWND hDlg, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    switch (iMsg) {
        case WM_INITDIALOG:
            return OnInitDialog(hDlg, lParam);
        case WM_COMMAND:
            return OnCommand(hDlg, LOWORD(wParam), HIWORD(wParam));
        case WM_HELP:
            ShowHelp(hDlg, DefaultHelpFile(), kPropertiesHelpTopic);
            return TRUE;
        case kGetSampleOptions:
            *reinterpret_cast<analysis::DisplayOptions*>(lParam) = TickedOptions(hDlg);
            SetWindowLongPtrW(hDlg, DWLP_MSGRESULT, TRUE);
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace

bool ShowPropertiesDialog(HWND hWndOwner) {
    const DialogTemplate dialog = BuildTemplate();
    DialogState state;
    const INT_PTR result = DialogBoxIndirectParamW(
        OwnModule(), dialog.get(), hWndOwner, PropertiesProc, reinterpret_cast<LPARAM>(&state));
    if (state.error) std::rethrow_exception(state.error);
    return result == IDOK;
}

}  // namespace arbolet::windows::dialogs
