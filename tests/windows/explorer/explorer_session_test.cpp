// What the explorer carries from one run to the next and hands to other programs, driven through
// its real window: the window's placement, the recent files of the File menu, the editor started
// for View Code and Goto, the switch to another screen's DPI, and the help file on F1.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "editor_launch.h"
#include "explorer/explorer_window_fixture.h"
#include "explorer/node_keys.h"
#include "explorer_settings.h"
#include "raw_registry.h"
#include "windows/base/ansi_text.h"

namespace arbolet::explorer_app::testing {
namespace {

using windows::testing::PumpMessages;
using windows::testing::PumpMessagesFor;

constexpr const char* kSettingsKey = "Software\\Arbolet\\Explorer";

// A fresh user: nothing remembered, and a window that remembers.
class ExplorerSessionTest : public ExplorerWindowTest {
  protected:
    void SetUp() override {
        windows::testing::DeleteTree(HKEY_CURRENT_USER, kSettingsKey);
        ExplorerWindowTest::SetUp();
        window_ = std::make_unique<MainWindow>(true, &ui_);
    }
    void TearDown() override {
        window_.reset();
        windows::testing::DeleteTree(HKEY_CURRENT_USER, kSettingsKey);
    }

    // Closes the window as its close box does, and starts the program's window again.
    void Restart() {
        SendMessageW(window_->hWnd(), WM_CLOSE, 0, 0);
        PumpMessages();
        window_ = std::make_unique<MainWindow>(true, &ui_);
        window_->ShowAtSavedPlace(SW_SHOWNORMAL);
        PumpMessages();
    }

    // The File menu's recent files, as the menu shows them ("&1 C:\...").
    std::vector<std::wstring> RecentItems() const {
        std::vector<std::wstring> items;
        const HMENU file = GetSubMenu(GetMenu(window_->hWnd()), 0);
        for (int i = 0; i < GetMenuItemCount(file); ++i) {
            wchar_t caption[MAX_PATH + 8] = L"";
            GetMenuStringW(file, static_cast<UINT>(i), caption, MAX_PATH + 8, MF_BYPOSITION);
            if (caption[0] == L'&' && iswdigit(caption[1])) items.emplace_back(caption);
        }
        return items;
    }
    // Chooses the n-th recent file (from 1) in the File menu, as clicking it does.
    void ChooseRecent(int n) {
        const HMENU file = GetSubMenu(GetMenu(window_->hWnd()), 0);
        for (int i = 0; i < GetMenuItemCount(file); ++i) {
            wchar_t caption[MAX_PATH + 8] = L"";
            GetMenuStringW(file, static_cast<UINT>(i), caption, MAX_PATH + 8, MF_BYPOSITION);
            if (std::wstring(caption).starts_with(L"&" + std::to_wstring(n) + L" ")) {
                SendMessageW(window_->hWnd(), WM_COMMAND, GetMenuItemID(file, static_cast<int>(i)),
                             0);
                PumpMessages();
                return;
            }
        }
        ADD_FAILURE() << "no recent file " << n;
    }
    // Another project file beside the example's components.
    std::filesystem::path CopyOfProject(const std::string& name) {
        const std::filesystem::path copy = folder_ / (name + ".vbp");
        std::filesystem::copy_file(ProjectFile(), copy);
        return copy;
    }
    // The project the window shows, by its title.
    std::wstring Title() const {
        wchar_t title[MAX_PATH] = L"";
        GetWindowTextW(window_->hWnd(), title, MAX_PATH);
        return title;
    }
    std::wstring Shown(int n, const std::filesystem::path& file) const {
        return L"&" + std::to_wstring(n) + L" " + std::filesystem::absolute(file).wstring();
    }
};

RECT WindowRect(HWND hWnd) {
    RECT area{};
    GetWindowRect(hWnd, &area);
    return area;
}

::testing::AssertionResult SameRect(const RECT& expected, const RECT& actual) {
    if (EqualRect(&expected, &actual)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "expected (" << expected.left << "," << expected.top << ")-(" << expected.right << ","
           << expected.bottom << "), got (" << actual.left << "," << actual.top << ")-("
           << actual.right << "," << actual.bottom << ")";
}

TEST_F(ExplorerSessionTest, TheWindowOpensWhereItWasClosed) {
    window_->ShowAtSavedPlace(SW_SHOWNORMAL);
    PumpMessages();
    SetWindowPos(window_->hWnd(), nullptr, 130, 90, 530, 610, SWP_NOZORDER);
    PumpMessages();
    const RECT moved = WindowRect(window_->hWnd());
    Restart();
    EXPECT_TRUE(SameRect(moved, WindowRect(window_->hWnd())));

    // A place on a screen that is gone: the window comes back onto the screen, its size kept.
    WINDOWPLACEMENT lost{};
    lost.length = sizeof(lost);
    lost.showCmd = SW_SHOWNORMAL;
    lost.rcNormalPosition = RECT{6000, 5000, 6500, 5600};
    SendMessageW(window_->hWnd(), WM_CLOSE, 0, 0);
    PumpMessages();
    SavePlacement(lost);
    window_ = std::make_unique<MainWindow>(true, &ui_);
    window_->ShowAtSavedPlace(SW_SHOWNORMAL);
    PumpMessages();
    const RECT back = WindowRect(window_->hWnd());
    EXPECT_NE(MonitorFromRect(&back, MONITOR_DEFAULTTONULL), nullptr);
    EXPECT_EQ(back.right - back.left, 500);
    EXPECT_EQ(back.bottom - back.top, 600);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(window_->hWnd(), MONITOR_DEFAULTTONEAREST), &monitor);
    RECT inside{};
    IntersectRect(&inside, &back, &monitor.rcWork);
    EXPECT_TRUE(SameRect(back, inside)) << "wholly on the screen";
}

// The rule behind the placement, on the screens of the machine: a place on some screen stays,
// one on none moves into the nearest screen's work area with as much of its size as fits.
TEST(SavedPlacement, ComesBackOntoTheScreen) {
    MONITORINFO primary{};
    primary.cbSize = sizeof(primary);
    const POINT origin{0, 0};
    GetMonitorInfoW(MonitorFromPoint(origin, MONITOR_DEFAULTTOPRIMARY), &primary);
    const RECT& work = primary.rcWork;

    const RECT partly{work.right - 100, work.top + 10, work.right + 300, work.top + 410};
    EXPECT_TRUE(SameRect(partly, OnSomeScreen(partly)));

    const RECT right =
        OnSomeScreen(RECT{work.right + 5000, work.top + 20, work.right + 5400, work.top + 320});
    EXPECT_TRUE(SameRect(RECT{work.right - 400, work.top + 20, work.right, work.top + 320}, right));

    const LONG width = work.right - work.left;
    const LONG height = work.bottom - work.top;
    const RECT huge = OnSomeScreen(RECT{-9000 - 2 * width, -9000, -9000, -9000 + 3 * height});
    EXPECT_TRUE(SameRect(work, huge));
}

// The list logic on its own: a file opened again moves up instead of showing twice, whatever
// the case of its name, and the oldest falls off the end.
TEST(RecentFileList, MovesRepeatsUpAndDropsTheOldest) {
    std::vector<std::filesystem::path> list;
    for (int i = 0; i < static_cast<int>(kMaxRecentFiles); ++i)
        list = WithRecentFile(list, L"C:\\p\\" + std::to_wstring(i) + L".vbp");
    list = WithRecentFile(list, L"c:\\P\\3.VBP");
    ASSERT_EQ(list.size(), kMaxRecentFiles);
    EXPECT_EQ(list.front(), L"c:\\P\\3.VBP");
    EXPECT_EQ(std::count_if(
                  list.begin(), list.end(),
                  [](const auto& file) { return _wcsicmp(file.c_str(), L"C:\\p\\3.vbp") == 0; }),
              1);
    list = WithRecentFile(list, L"C:\\p\\new.vbp");
    ASSERT_EQ(list.size(), kMaxRecentFiles);
    EXPECT_EQ(list.back(), L"C:\\p\\1.vbp") << "0.vbp, the oldest, is gone";
}

// The editor's command line: every {file} and {line} is replaced, anything else is the user's.
TEST(EditorCommand, ReplacesEveryPlaceholderAndNothingElse) {
    const std::filesystem::path file = L"C:\\My Projects\\mod{line}.bas";
    EXPECT_EQ(ExpandEditorCommand(L"\"ed.exe\" \"{file}\" +{line}", file, 42),
              L"\"ed.exe\" \"C:\\My Projects\\mod{line}.bas\" +42")
        << "a {line} inside the file's name stays";
    EXPECT_EQ(ExpandEditorCommand(L"ed {file}:{line}:{line} {File} {lin", file, 7),
              L"ed C:\\My Projects\\mod{line}.bas:7:7 {File} {lin");
    EXPECT_EQ(ExpandEditorCommand(L"", file, 1), L"");
}

TEST_F(ExplorerSessionTest, RecentFilesComeFirstAreBoundedAndReopen) {
    const auto first = CopyOfProject("First");
    const auto second = CopyOfProject("Second");
    ASSERT_TRUE(window_->Open({first}, &display_));
    ASSERT_TRUE(window_->Open({second}, &display_));
    EXPECT_EQ(RecentItems(), (std::vector<std::wstring>{Shown(1, second), Shown(2, first)}));

    // Choosing the older file opens it and brings it to the top.
    ChooseRecent(2);
    EXPECT_EQ(Title(), L"First.vbp - Arbolet Explorer");
    EXPECT_EQ(RecentItems(), (std::vector<std::wstring>{Shown(1, first), Shown(2, second)}));

    // Only the last few files are kept, also in the next run.
    for (std::size_t i = 0; i < kMaxRecentFiles + 2; ++i)
        ASSERT_TRUE(window_->Open({CopyOfProject("More" + std::to_string(i))}, &display_));
    Restart();
    const auto items = RecentItems();
    ASSERT_EQ(items.size(), kMaxRecentFiles);
    EXPECT_EQ(items.front(),
              Shown(1, folder_ / ("More" + std::to_string(kMaxRecentFiles + 1) + ".vbp")));
    EXPECT_TRUE(ui_.messages.empty());
}

TEST_F(ExplorerSessionTest, AVanishedRecentFileIsNamedAndDropped) {
    const auto kept = CopyOfProject("Kept");
    const auto gone = CopyOfProject("Gone");
    ASSERT_TRUE(window_->Open({kept}, &display_));
    ASSERT_TRUE(window_->Open({gone}, &display_));
    std::filesystem::remove(gone);

    ChooseRecent(1);
    ASSERT_EQ(ui_.messages.size(), 1u);
    EXPECT_NE(ui_.messages[0].find(windows::WideToUtf8(std::filesystem::absolute(gone).wstring())),
              std::string::npos)
        << ui_.messages[0];
    EXPECT_EQ(RecentItems(), (std::vector<std::wstring>{Shown(1, kept)}));
    // The tree still shows what was open.
    EXPECT_EQ(Title(), L"Gone.vbp - Arbolet Explorer");
    Restart();
    EXPECT_EQ(RecentItems(), (std::vector<std::wstring>{Shown(1, kept)}));
}

// The stand-in editor beside the tests writes its arguments to a file.
class ExplorerEditorTest : public ExplorerSessionTest {
  protected:
    void SetUp() override {
        ExplorerSessionTest::SetUp();
        wchar_t self[MAX_PATH] = L"";
        GetModuleFileNameW(nullptr, self, MAX_PATH);
        const std::filesystem::path recorder =
            std::filesystem::path(self).parent_path() / L"record_arguments.exe";
        ASSERT_TRUE(std::filesystem::exists(recorder)) << recorder.string();
        record_ = folder_ / "editor arguments.txt";
        SetEditorCommand(L"\"" + recorder.wstring() + L"\" \"" + record_.wstring() +
                         L"\" \"{file}\" -line {line}");
        Open();
    }

    // The editor's arguments once it has run; empty when it did not start within a while.
    std::vector<std::string> EditorArguments() {
        for (int wait = 0; wait < 100 && !std::filesystem::exists(record_); ++wait)
            PumpMessagesFor(50);
        std::ifstream in(record_);
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        in.close();
        std::filesystem::remove(record_);
        return lines;
    }
    // The line of a file (from 1) that begins with a text.
    int FileLineOf(const std::string& file, const std::string& start) {
        std::istringstream text(Read(file));
        int number = 0;
        for (std::string line; std::getline(text, line);) {
            ++number;
            if (line.starts_with(start)) return number;
        }
        return 0;
    }
    std::string PathOf(const std::string& file) const {
        return windows::WideToUtf8((folder_ / file).wstring());
    }

    std::filesystem::path record_;
};

TEST_F(ExplorerEditorTest, ViewCodeAndGotoStartTheEditorAtTheFileLine) {
    // Enter on a component is View Code: its code begins past the file's attributes.
    Press("modLegacy~Inventory~", VK_RETURN);
    EXPECT_EQ(EditorArguments(),
              (std::vector<std::string>{PathOf("modLegacy.bas"), "-line",
                                        std::to_string(FileLineOf("modLegacy.bas", "'"))}));

    // Goto on a code line of a form: the line of the file, past the form's designer block.
    Press("frmMain~Inventory~", VK_RIGHT);
    tree::NodeRef target;
    for (std::int32_t i = 1; i <= Tree().Count() && !target; ++i) {
        const tree::NodeRef node = Tree().Item(i);
        if (node->Kind() == tree::NodeKind::CodeLine && node->Text().starts_with("Private Sub"))
            target = node;
    }
    ASSERT_TRUE(target) << "a procedure in frmMain";
    target->SetSelected(true);
    window_->Document().RunMenuCommand("Goto:" + target->Key());
    const int line = FileLineOf("frmMain.frm", target->Text());
    ASSERT_GT(line, 1);
    EXPECT_EQ(EditorArguments(),
              (std::vector<std::string>{PathOf("frmMain.frm"), "-line", std::to_string(line)}));
    EXPECT_TRUE(ui_.messages.empty());
}

TEST_F(ExplorerSessionTest, AnotherScreensDpiResizesTheWindowAndSwitchesPictures) {
    window_->ShowAtSavedPlace(SW_SHOWNORMAL);
    Open();
    const auto iconSize = [&] {
        const auto list = reinterpret_cast<HIMAGELIST>(
            SendMessageW(Tree().hWnd(), TVM_GETIMAGELIST, TVSIL_NORMAL, 0));
        int width = 0;
        int height = 0;
        ImageList_GetIconSize(list, &width, &height);
        return std::pair{width, height};
    };
    const auto fontHeight = [&] {
        LOGFONTW font{};
        GetObjectW(reinterpret_cast<HFONT>(SendMessageW(Tree().hWnd(), WM_GETFONT, 0, 0)),
                   sizeof(font), &font);
        return std::abs(font.lfHeight);
    };
    EXPECT_EQ(iconSize(), (std::pair{16, 16}));
    const int smallFont = fontHeight();
    const auto treeTop = [&] {
        RECT area{};
        GetWindowRect(Tree().hWnd(), &area);
        MapWindowPoints(nullptr, window_->Document().hWnd(), reinterpret_cast<POINT*>(&area), 2);
        return static_cast<int>(area.top);
    };
    const int smallTop = treeTop();

    // What Windows sends when the window is dragged onto a 200 % screen.
    RECT suggested{100, 80, 940, 1000};
    SendMessageW(window_->hWnd(), WM_DPICHANGED, MAKEWPARAM(192, 192),
                 reinterpret_cast<LPARAM>(&suggested));
    PumpMessages();
    EXPECT_TRUE(SameRect(suggested, WindowRect(window_->hWnd())));
    EXPECT_EQ(iconSize(), (std::pair{32, 32}));
    EXPECT_GE(fontHeight(), 2 * smallFont - 1);
    EXPECT_GE(treeTop(), 2 * smallTop - 1) << "the buttons above the tree grew";
    EXPECT_NE(Tree().Item("frmMain~Inventory~")->Text(), "") << "the tree survived";

    // And back to 100 %.
    suggested = RECT{100, 80, 520, 540};
    SendMessageW(window_->hWnd(), WM_DPICHANGED, MAKEWPARAM(96, 96),
                 reinterpret_cast<LPARAM>(&suggested));
    PumpMessages();
    EXPECT_EQ(iconSize(), (std::pair{16, 16}));
    EXPECT_EQ(fontHeight(), smallFont);
    EXPECT_EQ(treeTop(), smallTop);
}

// The help viewer's window: HTML Help shows the file's title in its caption.
HWND HelpViewer() {
    return FindWindowW(L"HH Parent", L"Arbolet Help");
}

// Waits for the help viewer while the window's messages run through the program's accelerators.
HWND AwaitHelpViewer(const MainWindow& window) {
    for (int wait = 0; wait < 100 && HelpViewer() == nullptr; ++wait) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (window.TranslateAccelerator(message)) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(20);
    }
    return HelpViewer();
}

void CloseHelpViewer() {
    if (const HWND viewer = HelpViewer()) SendMessageW(viewer, WM_CLOSE, 0, 0);
    PumpMessages();
}

// The menus' Help items run the same command; the viewer takes seconds to start under Wine, so
// it is opened once, by the key.
TEST_F(ExplorerSessionTest, F1OpensTheHelpFileBesideTheProgram) {
    window_->ShowAtSavedPlace(SW_SHOWNORMAL);
    Open();
    ASSERT_TRUE(std::filesystem::exists(window_->Document().HelpFile()))
        << window_->Document().HelpFile();
    ASSERT_EQ(HelpViewer(), nullptr);

    PostMessageW(Tree().hWnd(), WM_KEYDOWN, VK_F1, 0);
    const HWND viewer = AwaitHelpViewer(*window_);
    ASSERT_NE(viewer, nullptr) << "F1 opened no help";
    EXPECT_TRUE(IsWindowVisible(viewer));
    CloseHelpViewer();
    EXPECT_TRUE(ui_.messages.empty());
}

}  // namespace
}  // namespace arbolet::explorer_app::testing
