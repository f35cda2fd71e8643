// Message boxes through MessageBoxW; the input box is a small dialog built in memory, so that
// the document needs no resource file of its own.
#include "windows/document/win32_ui.h"

#include <cstdint>
#include <vector>

#include "windows/base/ansi_text.h"

namespace arbolet::windows {
namespace {

constexpr WORD kPromptId = 100;
constexpr WORD kAnswerId = 101;

// A DLGTEMPLATE followed by its items, each DWORD-aligned, as DialogBoxIndirect reads them.
class DialogTemplate {
  public:
    DialogTemplate(const wchar_t* title, short width, short height, WORD items) {
        DLGTEMPLATE header{};
        header.style = DS_MODALFRAME | DS_CENTER | DS_SETFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU;
        header.cdit = items;
        header.cx = width;
        header.cy = height;
        Append(&header, sizeof(header));
        Word(0);  // no menu
        Word(0);  // the standard dialog class
        Text(title);
        Word(8);
        Text(L"MS Shell Dlg");
    }

    void Item(DWORD style, short x, short y, short cx, short cy, WORD id, WORD classAtom,
              const wchar_t* text) {
        Align();
        DLGITEMTEMPLATE item{};
        item.style = style | WS_CHILD | WS_VISIBLE;
        item.x = x;
        item.y = y;
        item.cx = cx;
        item.cy = cy;
        item.id = id;
        Append(&item, sizeof(item));
        Word(0xFFFF);
        Word(classAtom);
        Text(text);
        Word(0);  // no creation data
    }

    const DLGTEMPLATE* get() const { return reinterpret_cast<const DLGTEMPLATE*>(bytes_.data()); }

  private:
    void Append(const void* data, std::size_t size) {
        const auto* begin = static_cast<const std::uint8_t*>(data);
        bytes_.insert(bytes_.end(), begin, begin + size);
    }
    void Word(WORD value) { Append(&value, sizeof(value)); }
    void Text(const wchar_t* text) { Append(text, (wcslen(text) + 1) * sizeof(wchar_t)); }
    void Align() {
        while (bytes_.size() % 4 != 0)
            bytes_.push_back(0);
    }

    // DWORD-aligned storage: the template must start on a DWORD boundary.
    std::vector<std::uint8_t> bytes_;
};

struct InputState {
    std::wstring prompt;
    std::wstring answer;
};

INT_PTR CALLBACK InputProc(HWND dialog, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    auto* state = reinterpret_cast<InputState*>(GetWindowLongPtrW(dialog, DWLP_USER));
    switch (iMsg) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            state = reinterpret_cast<InputState*>(lParam);
            SetDlgItemTextW(dialog, kPromptId, state->prompt.c_str());
            SetDlgItemTextW(dialog, kAnswerId, state->answer.c_str());
            SendDlgItemMessageW(dialog, kAnswerId, EM_SETSEL, 0, -1);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK) {
                const HWND answer = GetDlgItem(dialog, kAnswerId);
                std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(answer)) + 1,
                                  L'\0');
                GetWindowTextW(answer, text.data(), static_cast<int>(text.size()));
                text.resize(wcslen(text.c_str()));
                state->answer = text;
                EndDialog(dialog, IDOK);
                return TRUE;
            }
            if (LOWORD(wParam) == IDCANCEL) {
                EndDialog(dialog, IDCANCEL);
                return TRUE;
            }
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace

HWND Win32Ui::Owner() const noexcept {
    const HWND top = owner_ != nullptr ? GetAncestor(owner_, GA_ROOT) : nullptr;
    return top != nullptr ? top : owner_;
}

void Win32Ui::MsgBox(std::string_view prompt, explorer::MsgBoxIcon icon, std::string_view title) {
    const std::wstring text = Utf8ToWide(prompt);
    const std::wstring caption = Utf8ToWide(title.empty() ? "Arbolet" : title);
    MessageBoxW(Owner(), text.c_str(), caption.c_str(), MB_OK | static_cast<UINT>(icon));
}

std::string Win32Ui::InputBox(std::string_view prompt, std::string_view title,
                              std::string_view defaultText) {
    const std::wstring caption = Utf8ToWide(title.empty() ? "Arbolet" : title);
    DialogTemplate dialog(caption.c_str(), 220, 74, 4);
    dialog.Item(SS_LEFT, 7, 7, 150, 30, kPromptId, 0x0082, L"");
    dialog.Item(ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, 7, 50, 206, 14, kAnswerId, 0x0081, L"");
    dialog.Item(BS_DEFPUSHBUTTON | WS_TABSTOP, 163, 7, 50, 14, IDOK, 0x0080, L"OK");
    dialog.Item(BS_PUSHBUTTON | WS_TABSTOP, 163, 25, 50, 14, IDCANCEL, 0x0080, L"Cancel");
    InputState state{Utf8ToWide(prompt), Utf8ToWide(defaultText)};
    const INT_PTR result = DialogBoxIndirectParamW(GetModuleHandleW(nullptr), dialog.get(), Owner(),
                                                   &InputProc, reinterpret_cast<LPARAM>(&state));
    return result == IDOK ? WideToUtf8(state.answer) : std::string();
}

void Win32Ui::Beep() {
    MessageBeep(MB_OK);
}

}  // namespace arbolet::windows
