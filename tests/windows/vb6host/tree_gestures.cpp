// The gestures on the tool window's tree, made with SendInput as a user's mouse and keyboard
// make them, and the checks of their effects.
#include "vb6host/tree_gestures.h"

#include <commctrl.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "support/test_window.h"
#include "vb6host/host_context.h"
#include "vb6host/step_report.h"
#include "vb6host/tree_dump.h"
#include "windows/base/ansi_text.h"
#include "windows/screenshot/screen_capture.h"

namespace arbolet::vb6host {
namespace {

using windows::Utf8ToWide;
using windows::WideToUtf8;
using windows::testing::Centre;
using windows::testing::MouseAt;
using windows::testing::PressKey;
using windows::testing::PumpMessagesFor;

std::string Quoted(const std::wstring& text) {
    return "\"" + WideToUtf8(text) + "\"";
}

env::VBComponentRef ComponentNamed(HostContext& context, const std::wstring& name) {
    const auto project = context.Environment().ActiveVBProject();
    if (!project) return nullptr;
    const auto components = project->VBComponents();
    for (std::int32_t i = 1; i <= components->Count(); ++i) {
        const auto component = components->Item(i);
        if (Utf8ToWide(component->Name()) == name) return component;
    }
    return nullptr;
}

// Lines the add-in added to the transcript since `from` that begin with `prefix`.
int LinesSince(HostContext& context, std::size_t from, const std::string& prefix) {
    const auto lines = context.Transcript().Since(from);
    return static_cast<int>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.rfind(prefix, 0) == 0;
    }));
}

HWND OpenMenuWindow() {
    for (HWND menu = FindWindowExW(nullptr, nullptr, L"#32768", nullptr); menu != nullptr;
         menu = FindWindowExW(nullptr, menu, L"#32768", nullptr)) {
        if (IsWindowVisible(menu)) return menu;
    }
    return nullptr;
}

// Acts on the context menu while it is open: the menu runs a message loop of its own, which
// dispatches this thread timer. A menu that stays open after the action is closed, so that the
// scenario cannot hang.
class WhileMenuOpen {
  public:
    explicit WhileMenuOpen(std::function<void()> action) : action_(std::move(action)) {
        current_ = this;
        timer_ = SetTimer(nullptr, 0, 100, &WhileMenuOpen::Tick);
    }
    ~WhileMenuOpen() {
        KillTimer(nullptr, timer_);
        current_ = nullptr;
    }
    WhileMenuOpen(const WhileMenuOpen&) = delete;
    WhileMenuOpen& operator=(const WhileMenuOpen&) = delete;

    bool Opened() const { return opened_; }
    bool ClosedByForce() const { return forced_; }

  private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
        if (current_ != nullptr) current_->OnTick();
    }
    void OnTick() {
        if (OpenMenuWindow() == nullptr) return;
        if (!opened_) {
            opened_ = true;
            action_();
        } else if (++ticksAfter_ > 20) {
            forced_ = true;
            EndMenu();
        }
    }

    static inline WhileMenuOpen* current_ = nullptr;
    std::function<void()> action_;
    UINT_PTR timer_ = 0;
    bool opened_ = false;
    bool forced_ = false;
    int ticksAfter_ = 0;
};

HTREEITEM Caret(HWND tree) {
    return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, TVGN_CARET, 0));
}

// The node, found by its text and on the screen; reports when it is not.
bool Locate(const TreeScene& scene, const std::wstring& name, HTREEITEM& item, RECT& area) {
    item = FindNode(scene.tree, name);
    return scene.report.Check(item != nullptr && NodeScreenRect(scene.tree, item, area),
                              "the tree shows " + Quoted(name));
}

// Types text into the focused window as the keyboard would, one character at a time.
void TypeText(const std::wstring& text) {
    std::vector<INPUT> keys;
    for (const wchar_t character : text) {
        INPUT key{};
        key.type = INPUT_KEYBOARD;
        key.ki.wScan = character;
        key.ki.dwFlags = KEYEVENTF_UNICODE;
        keys.push_back(key);
        key.ki.dwFlags |= KEYEVENTF_KEYUP;
        keys.push_back(key);
    }
    SendInput(static_cast<UINT>(keys.size()), keys.data(), sizeof(INPUT));
}

// Presses F2 on the node, types `text` over the label (or leaves it) and presses Enter;
// false when no edit box opened.
bool EditLabel(const TreeScene& scene, HTREEITEM item, const std::wstring* text) {
    SendMessageW(scene.tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
    SetFocus(scene.tree);
    PressKey(VK_F2);
    PumpMessagesFor(300);
    const auto edit = reinterpret_cast<HWND>(SendMessageW(scene.tree, TVM_GETEDITCONTROL, 0, 0));
    if (edit == nullptr) return false;
    // The edit box opens with its whole text selected, so typing replaces it.
    if (text != nullptr) TypeText(*text);
    PumpMessagesFor(200);
    PressKey(VK_RETURN);
    PumpMessagesFor(300);
    return true;
}

}  // namespace

void RightClickViewCode(const TreeScene& scene, const std::wstring& name,
                        const std::wstring& selected, const std::filesystem::path& picture) {
    Report& report = scene.report;
    const auto component = ComponentNamed(scene.context, name);
    const auto other = ComponentNamed(scene.context, selected);
    if (!report.Check(component && other,
                      "the project has " + Quoted(name) + " and " + Quoted(selected))) {
        return;
    }
    scene.context.SelectComponent(other);
    HTREEITEM item = nullptr;
    RECT area{};
    if (!windows::testing::Activate(scene.main) || !Locate(scene, name, item, area)) {
        report.Check(false, "the IDE takes the mouse and keyboard");
        return;
    }
    bool selectedNode = false;
    bool pictureSaved = picture.empty();
    WhileMenuOpen watch([&] {
        selectedNode = Caret(scene.tree) == item;
        if (!picture.empty()) pictureSaved = windows::SaveWindowPicture(scene.main, picture);
        PressKey('O');  // View C&ode
    });
    const POINT at = Centre(area);
    INPUT click[] = {MouseAt(at, 0), MouseAt(at, MOUSEEVENTF_RIGHTDOWN),
                     MouseAt(at, MOUSEEVENTF_RIGHTUP)};
    SendInput(static_cast<UINT>(std::size(click)), click, sizeof(INPUT));
    PumpMessagesFor(1500);
    report.Check(watch.Opened(), "a right click on " + Quoted(name) + " opens the context menu");
    report.Check(selectedNode, "the right-clicked node is selected while its menu is open");
    report.Check(pictureSaved,
                 "a picture of the open menu is saved to " + WideToUtf8(picture.wstring()));
    report.Check(watch.Opened() && !watch.ClosedByForce(), "its access key closes the menu");
    report.Check(scene.context.ActiveCodeComponent() == component &&
                     scene.context.CodePane(component.get()).shown,
                 "\"View Code\" shows the code of " + Quoted(name) + ", not of the IDE's " +
                     "selected " + Quoted(selected));
}

void RenameByLabelEdit(const TreeScene& scene, const std::wstring& name,
                       const std::wstring& newName) {
    Report& report = scene.report;
    const auto component = ComponentNamed(scene.context, name);
    HTREEITEM item = nullptr;
    RECT area{};
    if (!report.Check(component != nullptr, "the project has " + Quoted(name)) ||
        !Locate(scene, name, item, area)) {
        return;
    }
    const std::string put = "put VBComponent.Name ";
    std::size_t from = scene.context.Transcript().Size();
    report.Check(EditLabel(scene, item, &newName),
                 "F2 on " + Quoted(name) + " opens the label for editing");
    report.Check(LinesSince(scene.context, from, put + Quoted(newName)) == 1,
                 "typing " + Quoted(newName) + " and Enter renames the component in the IDE");
    report.Check(Utf8ToWide(component->Name()) == newName, "the IDE calls it " + Quoted(newName));
    report.Check(FindNode(scene.tree, newName) != nullptr && FindNode(scene.tree, name) == nullptr,
                 "the tree calls it " + Quoted(newName));
    item = FindNode(scene.tree, newName);
    from = scene.context.Transcript().Size();
    report.Check(item != nullptr && EditLabel(scene, item, nullptr) &&
                     LinesSince(scene.context, from, put) == 0 &&
                     Utf8ToWide(component->Name()) == newName,
                 "a label left unchanged renames nothing");
}

void DragOntoFolder(const TreeScene& scene, const std::wstring& name, const std::wstring& folder) {
    Report& report = scene.report;
    const auto component = ComponentNamed(scene.context, name);
    HTREEITEM source = nullptr, target = nullptr;
    RECT from{}, to{};
    if (!report.Check(component != nullptr, "the project has " + Quoted(name)) ||
        !Locate(scene, name, source, from) || !Locate(scene, folder, target, to) ||
        !windows::testing::Activate(scene.main)) {
        return;
    }
    // Both ends must still be on the screen once both were scrolled into view.
    NodeScreenRect(scene.tree, source, from);
    NodeScreenRect(scene.tree, target, to);
    const POINT start = Centre(from);
    const POINT end = Centre(to);
    windows::testing::DragMouse(start, end);
    PumpMessagesFor(500);
    const HTREEITEM moved = FindNode(scene.tree, name);
    report.Check(moved != nullptr && ParentText(scene.tree, moved) == folder,
                 "dragged onto " + Quoted(folder) + ", the tree shows " + Quoted(name) + " there");
    std::string recorded;
    try {
        recorded = component->ReadProperty("QX-TypeName");
    } catch (const std::exception&) {
    }
    report.Check(Utf8ToWide(recorded) == folder, "the component records the folder " +
                                                     Quoted(folder) + " (QX-TypeName is " +
                                                     Quoted(Utf8ToWide(recorded)) + ")");
}

}  // namespace arbolet::vb6host
