// The explorer's help for big projects, driven through its real window with keys from the
// system's input queue: find as you type by name and by procedure, Enter and Esc; F8 and
// Shift+F8 across a group whose two projects have errors, and the status line that counts them;
// Locate going to the line the last Goto opened.
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h, which it needs
#include <commctrl.h>

#include <fstream>
#include <sstream>

#include "analysis/colours.h"
#include "automation.h"
#include "explorer/explorer_window_fixture.h"
#include "explorer/tree_search.h"
#include "explorer_settings.h"
#include "raw_registry.h"
#include "windows/base/ansi_text.h"
#include "windows/icons/tree_icons.h"
#include "windows/options/settings.h"
#include "windows/screenshot/screen_capture.h"

namespace arbolet::explorer_app::testing {
namespace {

using windows::testing::PumpMessagesFor;

// Keys held together, pressed in order and released in reverse, as fingers do.
void Chord(std::initializer_list<WORD> keys) {
    std::vector<INPUT> inputs;
    for (const WORD key : keys) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = key;
        inputs.push_back(input);
    }
    for (auto key = keys.end(); key != keys.begin();) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = *--key;
        input.ki.dwFlags = KEYEVENTF_KEYUP;
        inputs.push_back(input);
    }
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
    PumpMessagesFor(150);
}

// Characters typed one by one, each as its own key press.
void Type(std::wstring_view text) {
    for (const wchar_t character : text) {
        INPUT inputs[2]{};
        inputs[0].type = INPUT_KEYBOARD;
        inputs[0].ki.wScan = character;
        inputs[0].ki.dwFlags = KEYEVENTF_UNICODE;
        inputs[1] = inputs[0];
        inputs[1].ki.dwFlags |= KEYEVENTF_KEYUP;
        SendInput(2, inputs, sizeof(INPUT));
        PumpMessagesFor(40);
    }
    PumpMessagesFor(150);
}

std::string WindowText(HWND window) {
    wchar_t text[256] = L"";
    GetWindowTextW(window, text, 256);
    return windows::WideToUtf8(text);
}

class ExplorerNavigationTest : public ExplorerWindowTest {
  protected:
    void SetUp() override {
        ExplorerWindowTest::SetUp();
        wchar_t self[MAX_PATH] = L"";
        GetModuleFileNameW(nullptr, self, MAX_PATH);
        const auto recorder = std::filesystem::path(self).parent_path() / L"record_arguments.exe";
        record_ = folder_ / "editor arguments.txt";
        SetEditorCommand(L"\"" + recorder.wstring() + L"\" \"" + record_.wstring() +
                         L"\" \"{file}\" -line {line}");
    }
    void TearDown() override {
        if (tip_ != nullptr) DestroyWindow(tip_);
        window_.reset();
        windows::testing::DeleteTree(HKEY_CURRENT_USER, "Software\\Arbolet\\Explorer");
        windows::testing::DeleteTree(HKEY_CLASSES_ROOT, windows::options::OptionsKeyPath());
    }

    // The window in front with the keyboard on its tree.
    void FocusTree() {
        ASSERT_TRUE(windows::testing::Activate(window_->hWnd()));
        SetFocus(Tree().hWnd());
        PumpMessagesFor(50);
    }
    windows::DocNavigation& Navigation() { return window_->Document().Navigation(); }
    std::string Selected() {
        const tree::NodeRef node = Tree().SelectedItem();
        return node ? node->Key() : "";
    }
    std::string FirstVisible() {
        const HTREEITEM first = TreeView_GetFirstVisible(Tree().hWnd());
        const tree::NodeRef node = first != nullptr ? Tree().NodeOf(first) : nullptr;
        return node ? node->Key() : "";
    }
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
    int FileLineOf(const std::string& file, const std::string& start) {
        std::istringstream text(Read(file));
        int number = 0;
        for (std::string line; std::getline(text, line);) {
            ++number;
            if (line.starts_with(start)) return number;
        }
        return 0;
    }
    // The tip the document gives the control for a node. Windows' tree view asks its parent with
    // TVN_GETINFOTIP when the pointer rests on the node; Wine's does not ask, so the question
    // is put here as the control puts it.
    std::string AskTip(const std::string& key) {
        TVITEMW item{};
        item.mask = TVIF_PARAM | TVIF_HANDLE;
        item.hItem = ItemOf(key);
        if (!SendMessageW(Tree().hWnd(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)))
            return "(no item)";
        wchar_t text[1024] = L"";
        NMTVGETINFOTIPW ask{};
        ask.hdr.hwndFrom = Tree().hWnd();
        ask.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(Tree().hWnd()));
        ask.hdr.code = TVN_GETINFOTIPW;
        ask.pszText = text;
        ask.cchTextMax = 1024;
        ask.hItem = item.hItem;
        ask.lParam = item.lParam;
        SendMessageW(GetParent(Tree().hWnd()), WM_NOTIFY, ask.hdr.idFrom,
                     reinterpret_cast<LPARAM>(&ask));
        return windows::WideToUtf8(text);
    }
    // Shows a node's tip for the picture where Windows' tree view shows it, under the label, in
    // a tooltip control of the test's own (Wine's tree view shows none).
    void ShowTipOf(const std::string& key) {
        tipText_ = windows::Utf8ToWide(AskTip(key));
        tip_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                               WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0, window_->hWnd(),
                               nullptr, nullptr, nullptr);
        TTTOOLINFOW tool{};
        tool.cbSize = sizeof(tool);
        tool.uFlags = TTF_TRACK | TTF_ABSOLUTE;
        tool.hwnd = window_->hWnd();
        tool.lpszText = tipText_.data();
        SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
        SendMessageW(tip_, TTM_SETMAXTIPWIDTH, 0, 800);  // lines break at CR LF only
        const RECT label = ScreenRect(key);
        SendMessageW(tip_, TTM_TRACKPOSITION, 0, MAKELPARAM(label.left, label.bottom + 4));
        SendMessageW(tip_, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
        PumpMessagesFor(100);
    }
    void SavePicture(const char* file) {
        UpdateWindow(window_->hWnd());
        PumpMessagesFor(200);
        std::vector<HWND> shown{window_->hWnd()};
        if (tip_ != nullptr) shown.push_back(tip_);
        const windows::RgbImage picture = windows::CaptureScreen(windows::UnionOfWindows(shown));
        std::filesystem::create_directories("artifacts");
        ASSERT_TRUE(windows::WritePng(file, picture));
        std::printf("picture: %s (%dx%d)\n", file, picture.width, picture.height);
    }

    std::filesystem::path record_;
    HWND tip_ = nullptr;
    std::wstring tipText_;
};

TEST_F(ExplorerNavigationTest, TypingFiltersTheTreeAndEscBringsItBackAsItWas) {
    Open(true);
    // A tree taller than the window, scrolled, with a node selected deep in a code tree.
    Press("modStock~Inventory~", VK_RIGHT);
    Press("modLegacy~Inventory~", VK_RIGHT);
    Press("SmodStock~Inventory~@15", VK_LEFT);  // the developer closed StateOf
    Tree().Item("SmodStock~Inventory~@26")->SetSelected(true);
    for (int i = 0; i < 12; ++i)
        SendMessageW(Tree().hWnd(), WM_VSCROLL, SB_LINEDOWN, 0);
    const explorer::TreeSnapshot before = explorer::TakeSnapshot(Tree());
    const std::string firstVisible = FirstVisible();
    const std::int32_t count = Tree().Count();
    ASSERT_NE(firstVisible, "Project~Inventory") << "scrolled";

    FocusTree();
    Chord({VK_CONTROL, 'F'});
    EXPECT_EQ(GetFocus(), Navigation().SearchBox());
    Type(L"stock");
    EXPECT_EQ(Navigation().SearchText(), "stock");
    // modStock by its name, clsItem in the "Stock Logic" folder; nothing else.
    EXPECT_TRUE(Tree().Exists("modStock~Inventory~"));
    EXPECT_TRUE(Tree().Exists("clsItem~Inventory~"));
    EXPECT_FALSE(Tree().Exists("modLegacy~Inventory~"));
    EXPECT_FALSE(Tree().Exists("frmMain~Inventory~"));
    EXPECT_FALSE(Tree().Exists("Type~Forms~Inventory"));
    EXPECT_TRUE(Tree().Item("Type~Stock Logic~Inventory")->Expanded());
    SavePicture("artifacts/explorer_filter.png");

    Chord({VK_ESCAPE});
    EXPECT_EQ(Navigation().SearchText(), "");
    EXPECT_EQ(GetFocus(), Tree().hWnd());
    const explorer::TreeSnapshot after = explorer::TakeSnapshot(Tree());
    EXPECT_EQ(after.expanded, before.expanded);
    EXPECT_EQ(after.selected, "SmodStock~Inventory~@26");
    EXPECT_EQ(FirstVisible(), firstVisible);
    EXPECT_EQ(Tree().Count(), count);
    EXPECT_TRUE(ui_.messages.empty());
}

TEST_F(ExplorerNavigationTest, AProcedureSearchShowsItsCodeAndEnterOpensIt) {
    Open(true);
    FocusTree();
    Chord({VK_CONTROL, 'F'});
    Type(L":isavail");
    // The procedure under its component, opened, with the keys a normal expansion gives.
    EXPECT_TRUE(Tree().Item("modStock~Inventory~")->Expanded());
    EXPECT_EQ(Tree().Item("SmodStock~Inventory~@41")->Text().substr(0, 29),
              "Private Function IsAvailable(");
    EXPECT_TRUE(Tree().Exists("SmodStock~Inventory~@42"));
    EXPECT_FALSE(Tree().Exists("SmodStock~Inventory~@15")) << "StateOf does not match";
    EXPECT_FALSE(Tree().Exists("clsItem~Inventory~"));
    SavePicture("artifacts/explorer_filter_procedure.png");

    Chord({VK_RETURN});
    EXPECT_EQ(EditorArguments(),
              (std::vector<std::string>{
                  windows::WideToUtf8((folder_ / "modStock.bas").wstring()), "-line",
                  std::to_string(FileLineOf("modStock.bas", "Private Function IsAvailable"))}));

    // Locate goes to the line Enter opened, in the whole tree again.
    Chord({VK_ESCAPE});
    Press("modStock~Inventory~", VK_LEFT);
    Chord({VK_CONTROL, 'L'});
    EXPECT_EQ(Selected(), "SmodStock~Inventory~@41");
    EXPECT_TRUE(Tree().Exists("clsItem~Inventory~"));
}

TEST_F(ExplorerNavigationTest, F8StepsThroughTheRedNodesOfTwoProjects) {
    folder_.Write("modBroken.bas",
                  "Attribute VB_Name = \"modBroken\"\r\nSub B()\r\n"
                  "    If x Then\r\n        y = 1\r\nEnd Sub\r\n");
    folder_.Write("Second.vbp",
                  "Type=Exe\r\nModule=modBroken; modBroken.bas\r\nName=\"Second\"\r\n");
    folder_.Write("Both.vbg",
                  "VBGROUP 5.0\r\nStartupProject=Inventory.vbp\r\nProject=Second.vbp\r\n");
    SetWindowPos(window_->hWnd(), nullptr, 30, 30, 420, 640, SWP_NOZORDER);
    ShowWindow(window_->hWnd(), SW_SHOWNORMAL);
    std::string error;
    ASSERT_TRUE(window_->Open({folder_ / "Both.vbg"}, &display_, &error)) << error;
    PumpMessagesFor(100);

    EXPECT_TRUE(IsWindowVisible(Navigation().StatusLine()));
    EXPECT_EQ(WindowText(Navigation().StatusLine()), "2 components with block errors");
    EXPECT_TRUE(Tree().Exists("Code - modLegacy~Inventory~")) << "counted without opening";

    FocusTree();
    Tree().Item("Project~Inventory")->SetSelected(true);
    std::vector<std::string> forward;
    for (int i = 0; i < 40; ++i) {
        Chord({VK_F8});
        forward.push_back(Selected());
        if (forward.size() > 1 && forward.back() == forward.front()) break;
    }
    ASSERT_GE(forward.size(), 3u);
    EXPECT_EQ(forward.back(), forward.front()) << "round past the end";
    forward.pop_back();
    for (const std::string& key : forward) {
        ASSERT_TRUE(Tree().Exists(key));
        EXPECT_TRUE(analysis::colour::IsError(Tree().Item(key)->ForeColor())) << key;
    }
    EXPECT_TRUE(forward.front().starts_with("SmodLegacy~Inventory~@"));
    EXPECT_TRUE(forward.back().starts_with("SmodBroken~Second~@"));
    EXPECT_TRUE(Tree().Exists("Code - clsItem~Inventory~")) << "a clean component stays closed";

    // Backwards from the first error: round to the last, then back through the others.
    Tree().Item(forward.front())->SetSelected(true);
    Chord({VK_SHIFT, VK_F8});
    EXPECT_EQ(Selected(), forward.back());
    Chord({VK_SHIFT, VK_F8});
    EXPECT_EQ(Selected(), forward[forward.size() - 2]);
    EXPECT_TRUE(ui_.messages.empty());
}

TEST_F(ExplorerNavigationTest, WithShowMetricsAProceduresTipShowsItsSizeAndComplexity) {
    windows::options::ShowMetrics(true);
    // The project's quality limits: StateOf passes the complexity, IsAvailable does not.
    folder_.Write(".arbolet.json", "{\n  // as check reads it\n  \"max-complexity\": 2\n}\n");
    Open(true);
    Press("modStock~Inventory~", VK_RIGHT);
    const std::string procedure = "SmodStock~Inventory~@15";  // Public Function StateOf(...)
    ASSERT_TRUE(Tree().Exists(procedure));
    const std::string tip = Tree().Item(procedure)->Tag();
    EXPECT_NE(tip.find("Public Function StateOf(ByVal quantity As Long"), std::string::npos) << tip;
    EXPECT_NE(tip.find("\r\nLines of code "), std::string::npos) << tip;
    EXPECT_NE(tip.find("cyclomatic complexity 3"), std::string::npos) << tip;  // two Cases
    EXPECT_EQ(Tree().Item("SmodStock~Inventory~@16")->Tag(), "") << "a block is no procedure";
    EXPECT_TRUE(tip.ends_with("\r\nOver the project's limits: complexity 3 > 2")) << tip;
    const std::string within = Tree().Item("SmodStock~Inventory~@41")->Tag();
    EXPECT_TRUE(within.ends_with("cyclomatic complexity 1")) << within;

    EXPECT_EQ(AskTip(procedure), tip);
}

// A procedure over the project's limits shows the warning sign in its picture's place: in the
// control, on the screen and in the dump. One within them, and everything else, has none.
TEST_F(ExplorerNavigationTest, AProcedureOverTheLimitsShowsTheWarningSign) {
    windows::options::ShowMetrics(true);
    folder_.Write(".arbolet.json", "{ \"max-complexity\": 2 }\n");
    Open(true);
    Press("modStock~Inventory~", VK_RIGHT);
    const std::string over = "SmodStock~Inventory~@15";    // StateOf, complexity 3
    const std::string within = "SmodStock~Inventory~@41";  // IsAvailable, complexity 1
    const auto picture = [&](const std::string& key) {
        TVITEMW item{};
        item.mask = TVIF_HANDLE | TVIF_IMAGE;
        item.hItem = ItemOf(key);
        SendMessageW(Tree().hWnd(), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        return item.iImage;
    };
    EXPECT_EQ(picture(over), windows::icons::IconIndex(windows::icons::TreeIcon::OverLimits));
    EXPECT_EQ(picture(within), I_IMAGENONE);
    EXPECT_EQ(picture("SmodStock~Inventory~@16"), I_IMAGENONE) << "a block is no procedure";

    // The sign's yellow stands in the picture's place, left of the label.
    const auto signPixels = [&](const std::string& key) {
        UpdateWindow(Tree().hWnd());
        PumpMessagesFor(100);
        RECT label = ScreenRect(key);
        label.right = label.left;
        label.left -= 24;
        return windows::CountPixels(windows::CaptureScreen(label), RGB(0xF8, 0xD0, 0x48));
    };
    EXPECT_GT(signPixels(over), 20);
    EXPECT_EQ(signPixels(within), 0);
    ShowTipOf(over);
    SavePicture("artifacts/explorer_metrics.png");
    DestroyWindow(tip_);
    tip_ = nullptr;

    // Read back, the marked item alone says so.
    Press("modStock~Inventory~", VK_LEFT);
    const std::filesystem::path out = folder_ / "dump.json";
    ASSERT_TRUE(DumpTree(*window_, "modStock", out));
    const std::string dump = Read("dump.json");
    const std::size_t mark = dump.find(R"("mark":"over-limits")");
    ASSERT_NE(mark, std::string::npos) << dump;
    EXPECT_EQ(dump.find(R"("mark")", mark + 1), std::string::npos) << "one marked item";
    const std::size_t owner = dump.rfind(R"("key":")" + over + "\"", mark);
    ASSERT_NE(owner, std::string::npos) << dump;
    EXPECT_EQ(dump.substr(owner + 1, mark - owner).find(R"("key":)"), std::string::npos)
        << "the mark belongs to StateOf's item";
}

}  // namespace
}  // namespace arbolet::explorer_app::testing
