// The about box: a dialog holding only its picture, and a timer of its own that advances the
// picture's frame. Enter and Esc reach the dialog as IDOK and IDCANCEL, a click on the picture
// as IDOK; each closes it.
#include "windows/dialogs/about_box.h"

#include "windows/base/own_module.h"
#include "windows/dialogs/about_picture.h"
#include "windows/dialogs/dialog_template.h"

namespace arbolet::windows::dialogs {
namespace {

constexpr UINT_PTR kAnimationTimer = 1;
constexpr UINT kFrameMs = 40;

void NextFrame(HWND hDlg) {
    const HWND picture = GetDlgItem(hDlg, kAboutPicture);
    SetWindowLongPtrW(picture, GWLP_USERDATA, GetWindowLongPtrW(picture, GWLP_USERDATA) + 1);
    InvalidateRect(picture, nullptr, FALSE);
}

INT_PTR CALLBACK AboutProc(HWND hDlg, UINT iMsg, WPARAM wParam, LPARAM) {
    switch (iMsg) {
        case WM_INITDIALOG: {
            CentreOnScreen(hDlg);
            SetTimer(hDlg, kAnimationTimer, kFrameMs, nullptr);
            return TRUE;
        }
        case WM_TIMER:
            if (wParam == kAnimationTimer) NextFrame(hDlg);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
                KillTimer(hDlg, kAnimationTimer);
                EndDialog(hDlg, LOWORD(wParam));
            }
            return TRUE;
        case WM_DESTROY:
            KillTimer(hDlg, kAnimationTimer);
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace

void ShowAboutBox(HWND hWndOwner) {
    DialogTemplate dialog(kAboutCaption, DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU, 320,
                          150);
    dialog.AddControl(AboutPictureClass(), "", kAboutPicture, 0, 0, 0, 320, 150);
    DialogBoxIndirectParamW(OwnModule(), dialog.get(), hWndOwner, AboutProc, 0);
}

}  // namespace arbolet::windows::dialogs
