// The frame window of the standalone explorer.
#include "main_window.h"

#include <commdlg.h>

#include <algorithm>
#include <exception>
#include <string>

#include "disk/file_io.h"
#include "explorer/node_keys.h"
#include "explorer_settings.h"
#include "windows/base/ansi_text.h"
#include "windows/document/win32_ui.h"

namespace arbolet::explorer_app {
namespace {

constexpr const wchar_t* kClassName = L"ArboletExplorerFrame";
constexpr const wchar_t* kTitle = L"Arbolet Explorer";
constexpr UINT kFilesChanged = WM_APP + 10;

enum CommandId : UINT {
    kOpen = 100,
    kSave,
    kExit,
    kEditor,
    kDisplayOptions,
    kHelpContents,
    kAbout,
    kRecentFirst = 200,  // kRecentFirst + n opens recent file n
};

ATOM RegisterFrameClass(WNDPROC proc) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = proc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    windowClass.hIcon = LoadIcon(nullptr, IDI_APPLICATION);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = kClassName;
    return RegisterClassExW(&windowClass);
}

HACCEL CreateAccelerators() {
    ACCEL keys[] = {
        {FCONTROL | FVIRTKEY, 'O', kOpen},
        {FCONTROL | FVIRTKEY, 'S', kSave},
        {FVIRTKEY, VK_F1, kHelpContents},
    };
    return CreateAcceleratorTableW(keys, static_cast<int>(std::size(keys)));
}

std::wstring Widen(std::string_view text) {
    return windows::Utf8ToWide(text);
}

}  // namespace

// A place saved on a screen that is no longer there (unplugged, or a smaller layout) would
// open the window out of reach: such a rectangle moves into the nearest screen's work area,
// as much of its size kept as fits.
RECT OnSomeScreen(const RECT& place) {
    if (MonitorFromRect(&place, MONITOR_DEFAULTTONULL) != nullptr) return place;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    if (!GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &monitor)) return place;
    const RECT& work = monitor.rcWork;
    const LONG width = std::min(place.right - place.left, work.right - work.left);
    const LONG height = std::min(place.bottom - place.top, work.bottom - work.top);
    const LONG left = std::clamp(place.left, work.left, work.right - width);
    const LONG top = std::clamp(place.top, work.top, work.bottom - height);
    return RECT{left, top, left + width, top + height};
}

void BecomeDpiAware() {
    using SetContextFn = BOOL(WINAPI*)(HANDLE);
    const HMODULE user32 = GetModuleHandleW(L"user32.dll");
    const auto setContext = reinterpret_cast<SetContextFn>(
        reinterpret_cast<void*>(GetProcAddress(user32, "SetProcessDpiAwarenessContext")));
    // DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2
    if (setContext != nullptr && setContext(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-4))))
        return;
    SetProcessDPIAware();
}

MainWindow::MainWindow(bool remember, explorer::UiServices* ui) : remember_(remember), ui_(ui) {
    static const ATOM registered = RegisterFrameClass(&MainWindow::Proc);
    (void)registered;
    hWnd_ =
        CreateWindowExW(WS_EX_ACCEPTFILES, kClassName, kTitle, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                        CW_USEDEFAULT, 420, 640, nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (hWnd_ == nullptr) throw std::runtime_error("The explorer's window could not be created");
    accelerators_ = CreateAccelerators();
    BuildMenu();
}

MainWindow::~MainWindow() {
    follower_.reset();
    document_.reset();
    if (IsWindow(hWnd_)) {
        SetWindowLongPtrW(hWnd_, GWLP_USERDATA, 0);
        DestroyWindow(hWnd_);
    }
    if (accelerators_ != nullptr) DestroyAcceleratorTable(accelerators_);
}

void MainWindow::ShowAtSavedPlace(int showCommand) {
    const auto placement = remember_ ? SavedPlacement() : std::nullopt;
    if (placement) {
        WINDOWPLACEMENT place = *placement;
        if (place.showCmd == SW_SHOWMINIMIZED || place.showCmd == SW_MINIMIZE)
            place.showCmd = SW_SHOWNORMAL;
        place.rcNormalPosition = OnSomeScreen(place.rcNormalPosition);
        SetWindowPlacement(hWnd_, &place);
    } else {
        ShowWindow(hWnd_, showCommand);
    }
    UpdateWindow(hWnd_);
}

bool MainWindow::Open(const std::vector<std::filesystem::path>& files,
                      analysis::IDisplayOptionSource* displayOptions, std::string* error) {
    std::shared_ptr<disk::DiskEnvironment> environment;
    try {
        environment = disk::DiskEnvironment::Open(files);
    } catch (const std::exception& failure) {
        if (error != nullptr) {
            *error = failure.what();
        } else {
            Tell(failure.what());
        }
        return false;
    }
    follower_.reset();
    environment_ = environment;
    openFiles_ = files;
    document_->SetEnvironment(environment_, displayOptions);
    document_->Show();
    OnSelectionChanged(nullptr);
    follower_ = std::make_unique<DiskFollower>(hWnd_, kFilesChanged, environment_->Folders());
    if (remember_) {
        for (const auto& file : files)
            AddRecentFile(std::filesystem::absolute(file));
        BuildMenu();
    }
    UpdateTitle();
    if (!environment_->Warnings().empty() && error == nullptr && remember_) {
        std::string text;
        for (const auto& warning : environment_->Warnings())
            text += warning.ToString() + "\r\n";
        Tell(text);
    }
    return true;
}

void MainWindow::SaveChanges() {
    if (!environment_ || environment_->ChangedFiles().empty()) return;
    try {
        environment_->Save();
    } catch (const std::exception& failure) {
        Tell(failure.what());
    }
}

void MainWindow::FollowDisk() {
    if (!follower_ || !environment_) return;
    const auto changes = follower_->TakeChanges();
    if (changes.empty()) return;
    windows::TreeControl& tree = document_->treMain();
    tree.BeginUpdate();
    try {
        environment_->Refresh(changes);
    } catch (const std::exception&) {
        // What could not be read stays as it was; the next change tries again.
    }
    tree.EndUpdate();
}

// The active project, which the commands act on and the "Project" menu reflects: the selected
// node's project, else the start-up project.
void MainWindow::OnSelectionChanged(tree::Node* node) {
    if (!environment_) return;
    try {
        const auto projects = environment_->VBProjects();
        env::VBProjectRef project;
        explorer::ProjectExplorer* explorer = document_->Explorer();
        if (node != nullptr && explorer != nullptr) project = explorer->ProjectOfNode(*node);
        if (!project) project = projects->StartProject();
        if (project) environment_->SetActiveVBProject(project);
    } catch (const std::exception&) {
        // The active project stays what it was.
    }
}

bool MainWindow::TranslateAccelerator(MSG& message) const {
    return ::TranslateAcceleratorW(hWnd_, accelerators_, &message) != 0;
}

void MainWindow::BuildMenu() {
    const HMENU bar = CreateMenu();
    const HMENU file = CreatePopupMenu();
    AppendMenuW(file, MF_STRING, kOpen, L"&Open...\tCtrl+O");
    AppendMenuW(file, MF_STRING, kSave, L"&Save\tCtrl+S");
    const auto recent = remember_ ? RecentFiles() : std::vector<std::filesystem::path>{};
    if (!recent.empty()) AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
    for (std::size_t i = 0; i < recent.size(); ++i) {
        const std::wstring caption = L"&" + std::to_wstring(i + 1) + L" " + recent[i].wstring();
        AppendMenuW(file, MF_STRING, kRecentFirst + i, caption.c_str());
    }
    AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(file, MF_STRING, kExit, L"E&xit");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), L"&File");
    const HMENU options = CreatePopupMenu();
    AppendMenuW(options, MF_STRING, kDisplayOptions, L"&Display Options...");
    AppendMenuW(options, MF_STRING, kEditor, L"&Editor...");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(options), L"&Options");
    const HMENU help = CreatePopupMenu();
    AppendMenuW(help, MF_STRING, kHelpContents, L"&Contents\tF1");
    AppendMenuW(help, MF_STRING, kAbout, L"&About Arbolet...");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(help), L"&Help");
    const HMENU old = GetMenu(hWnd_);
    SetMenu(hWnd_, bar);
    if (old != nullptr) DestroyMenu(old);
}

void MainWindow::UpdateTitle() {
    std::wstring title = kTitle;
    if (!openFiles_.empty()) title = openFiles_.front().filename().wstring() + L" - " + title;
    SetWindowTextW(hWnd_, title.c_str());
}

void MainWindow::AskToOpen() {
    std::wstring buffer(32768, L'\0');
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = hWnd_;
    dialog.lpstrFilter = L"Visual Basic projects (*.vbp;*.vbg)\0*.vbp;*.vbg\0All files\0*.*\0";
    dialog.lpstrFile = buffer.data();
    dialog.nMaxFile = static_cast<DWORD>(buffer.size());
    dialog.Flags = OFN_FILEMUSTEXIST | OFN_ALLOWMULTISELECT | OFN_EXPLORER | OFN_HIDEREADONLY;
    if (!GetOpenFileNameW(&dialog)) return;
    // One file, or a folder followed by the names chosen in it, each ended by a NUL.
    std::vector<std::filesystem::path> files;
    const std::wstring first(buffer.c_str());
    for (const wchar_t* name = buffer.c_str() + first.size() + 1; *name != L'\0';
         name += wcslen(name) + 1) {
        files.push_back(std::filesystem::path(first) / name);
    }
    if (files.empty()) files.emplace_back(first);
    Open(files);
}

void MainWindow::AskForEditor() {
    windows::Win32Ui ui(hWnd_);
    const std::string current = windows::WideToUtf8(EditorCommand());
    const std::string answer = ui.InputBox(
        "The command line that opens a file at a line, with {file} and {line} in it.\r\n"
        "Enter the word associated to use the program associated with the file.",
        "Editor", current.empty() ? "associated" : current);
    // An empty answer is the Cancel button.
    if (answer.empty()) return;
    SetEditorCommand(answer == "associated" ? std::wstring() : windows::Utf8ToWide(answer));
}

void MainWindow::OnCommand(UINT id) {
    switch (id) {
        case kOpen:
            AskToOpen();
            return;
        case kSave:
            SaveChanges();
            return;
        case kExit:
            PostMessageW(hWnd_, WM_CLOSE, 0, 0);
            return;
        case kEditor:
            AskForEditor();
            return;
        case kDisplayOptions:
            frontEnd_->ShowProperties();
            return;
        case kHelpContents:
            frontEnd_->ShowHelp();
            return;
        case kAbout:
            frontEnd_->ShowAbout();
            return;
        default:
            break;
    }
    if (id >= kRecentFirst && id < kRecentFirst + kMaxRecentFiles) {
        const auto recent = RecentFiles();
        const std::size_t index = id - kRecentFirst;
        if (index < recent.size()) OpenRecent(recent[index]);
    }
}

// A recent file that has gone since is taken off the list, and the user is told which.
void MainWindow::OpenRecent(const std::filesystem::path& file) {
    std::error_code error;
    if (std::filesystem::exists(file, error)) {
        Open({file});
        return;
    }
    RemoveRecentFile(file);
    BuildMenu();
    Tell(windows::WideToUtf8(L"The file " + file.wstring() +
                             L" no longer exists. It has been removed from the recent files."));
}

void MainWindow::Tell(const std::string& text) {
    if (ui_ != nullptr) {
        ui_->MsgBox(text, explorer::MsgBoxIcon::Information, windows::WideToUtf8(kTitle));
        return;
    }
    const std::wstring wide = Widen(text);
    MessageBoxW(hWnd_, wide.c_str(), kTitle, MB_OK | MB_ICONINFORMATION);
}

LRESULT CALLBACK MainWindow::Proc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    if (iMsg == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    if (self == nullptr) return DefWindowProcW(hWnd, iMsg, wParam, lParam);
    if (self->hWnd_ == nullptr) self->hWnd_ = hWnd;
    try {
        return self->Handle(iMsg, wParam, lParam);
    } catch (const std::exception&) {
        return 0;
    }
}

LRESULT MainWindow::Handle(UINT iMsg, WPARAM wParam, LPARAM lParam) {
    switch (iMsg) {
        case WM_CREATE:
            frontEnd_ = std::make_unique<ExplorerFrontEnd>(hWnd_);
            document_ = std::make_unique<windows::docAddin>(hWnd_, *frontEnd_, ui_);
            frontEnd_->HelpFile(document_->HelpFile());
            frontEnd_->OptionsChanged = [this] { document_->RebuildCodeTrees(); };
            document_->ProjectFilesDropped = [this](const std::vector<std::filesystem::path>& f) {
                Open(f);
            };
            document_->Edited = [this] { SaveChanges(); };
            document_->SelectionChanged = [this](tree::Node* node) { OnSelectionChanged(node); };
            document_->CurrentCodeLocation = [this] { return frontEnd_->LastShownCode(); };
            return 0;
        case WM_SIZE:
            if (document_) document_->Resize(0, 0, LOWORD(lParam), HIWORD(lParam));
            return 0;
        case WM_SETFOCUS:
            if (document_) SetFocus(document_->treMain().hWnd());
            return 0;
        case WM_DPICHANGED: {
            const auto* suggested = reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(hWnd_, nullptr, suggested->left, suggested->top,
                         suggested->right - suggested->left, suggested->bottom - suggested->top,
                         SWP_NOZORDER | SWP_NOACTIVATE);
            if (document_) document_->SetDpi(HIWORD(wParam));
            return 0;
        }
        case WM_DROPFILES: {
            // Project files dropped on the frame outside the document.
            const auto drop = reinterpret_cast<HDROP>(wParam);
            std::vector<std::filesystem::path> files;
            const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
            for (UINT i = 0; i < count; ++i) {
                wchar_t name[MAX_PATH] = L"";
                DragQueryFileW(drop, i, name, MAX_PATH);
                files.emplace_back(name);
            }
            DragFinish(drop);
            if (!files.empty()) Open(files);
            return 0;
        }
        case kFilesChanged:
            FollowDisk();
            return 0;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam));
            return 0;
        case WM_CLOSE:
            if (remember_) {
                WINDOWPLACEMENT placement{};
                placement.length = sizeof(placement);
                if (GetWindowPlacement(hWnd_, &placement)) SavePlacement(placement);
            }
            follower_.reset();
            DestroyWindow(hWnd_);
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(hWnd_, iMsg, wParam, lParam);
    }
}

}  // namespace arbolet::explorer_app
