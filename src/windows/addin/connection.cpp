// dVisualBasic's connection logic: the tool window, the menu entry, the toolbar button.
#include "windows/addin/connection.h"

#include <string>

#include "base/vb_error.h"
#include "windows/addin/messages.h"
#include "windows/com/log.h"
#include "windows/com/vbide_ids.h"
#include "windows/options/settings.h"

namespace arbolet::windows::addin {
namespace {

namespace m = com::members;
using com::Dispatch;
using com::Variant;

constexpr const char* kCaption = "Arbolet";

// The control of `bar` whose caption is `caption`; empty when there is none.
Dispatch FindControlByCaption(const Dispatch& bar, const std::string& caption) {
    const Dispatch controls = bar.GetObject(m::CommandBar::Controls);
    const std::int32_t count = controls.GetInt(m::CommandBarControls::Count);
    for (std::int32_t i = 1; i <= count; ++i) {
        Dispatch control = controls.GetObject(m::CommandBarControls::Item, {Variant(i)});
        if (control && control.GetText(m::CommandBarControl::Caption) == caption) return control;
    }
    return {};
}

Dispatch CommandBar(const Dispatch& vbe, const char* name) {
    return vbe.GetObject(m::VBE::CommandBars).GetObject(m::CommandBars::Item, {Variant(name)});
}

// Runs one step of a sequence whose errors are ignored, logging what failed.
template <typename Step>
void IgnoringErrors(const char* what, Step&& step) noexcept {
    try {
        step();
    } catch (const VbError& error) {
        com::Log(std::string(what) + ": " + std::to_string(error.Number) + ": " +
                 error.Description);
    } catch (...) {
        com::Log(std::string(what) + " failed");
    }
}

}  // namespace

dVisualBasic::~dVisualBasic() {
    Disconnect();
}

void dVisualBasic::Connect(const Dispatch& vbe, LONG connectMode, const Dispatch& addInInst) {
    VBInstance = vbe;
    if (connectMode != com::ids::kConnectExternal) {
        if (!toolWindow_) CreateToolWindow(addInInst);
        menuEntry_ = AddToAddInMenu(kCaption);
        MenuHandler.Connect(VBInstance.GetObject(m::VBE::Events), menuEntry_, [this] { Show(); });
    }
    if (connectMode == com::ids::kConnectExternal) {
        Show();
    } else if (connectMode == com::ids::kConnectStartup) {
        // At the IDE's start-up the window opens only when it was open when the IDE closed.
        if (options::DisplayForm()) Show();
    } else if (connectMode == com::ids::kConnectAfterStartup) {
        AddToAddInCommandBar(kCaption);
        Show();
    }
}

void dVisualBasic::CreateToolWindow(const Dispatch& addInInst) {
    const Dispatch windows = VBInstance.GetObject(m::VBE::Windows);
    // DocObj is an [in, out] IDispatch*: the IDE puts the created document there.
    IDispatch* documentObject = nullptr;
    VARIANT byRef;
    VariantInit(&byRef);
    byRef.vt = VT_DISPATCH | VT_BYREF;
    byRef.ppdispVal = &documentObject;
    const Variant window = windows.Get(
        m::Windows::CreateToolWindow,
        {Variant(addInInst.Object()), Variant(com::ids::kToolWindowProgId), Variant(kCaption),
         Variant(com::ids::kToolWindowPosition), Variant::Copy(byRef)});
    com::ComPtr<IDispatch> document = com::ComPtr<IDispatch>::Attach(documentObject);
    toolWindow_ = Dispatch(window.ToDispatch());
    mdocAddIn = ToolWindowControl::FromUnknown(document.Get());
    if (!mdocAddIn) mdocAddIn = ToolWindowControl::LastSited();
}

Dispatch dVisualBasic::AddToAddInMenu(const std::string& caption) {
    const Dispatch bar = CommandBar(VBInstance, "Add-Ins");
    if (Dispatch existing = FindControlByCaption(bar, caption)) return existing;
    Dispatch entry =
        bar.GetObject(m::CommandBar::Controls)
            .GetObject(m::CommandBarControls::Add, {Variant(com::ids::kControlButton)});
    entry.Put(m::CommandBarControl::Caption, Variant(caption));
    return entry;
}

void dVisualBasic::AddToAddInCommandBar(const std::string& caption) noexcept {
    try {
        AddToolbarButton(caption);
    } catch (const VbError& error) {
        ShowMessage("Arbolet could not add its toolbar button.\n" + std::to_string(error.Number) +
                        ": " + error.Description,
                    OwnerWindow());
    } catch (...) {
        ShowMessage("Arbolet could not add its toolbar button.\n7: Out of memory", OwnerWindow());
    }
}

void dVisualBasic::AddToolbarButton(const std::string& caption) {
    const Dispatch bar = CommandBar(VBInstance, "Standard");
    if (Dispatch existing = FindControlByCaption(bar, caption)) {
        // Found from an earlier connection: keep it, so that disconnecting removes it.
        button_ = existing;
        MenuHandler2.Connect(VBInstance.GetObject(m::VBE::Events), button_, [this] { Show(); });
        return;
    }
    Dispatch button =
        bar.GetObject(m::CommandBar::Controls)
            .GetObject(m::CommandBarControls::Add, {Variant(com::ids::kControlButton)});
    button.Put(m::CommandBarControl::Caption, Variant(caption));
    button.Put(m::CommandBarControl::Visible, Variant(true));
    button.Put(m::CommandBarButton::Style, Variant(std::int32_t{0}));
    button.Put(m::CommandBarButton::FaceId, Variant(std::int32_t{2557}));
    button.Put(m::CommandBarControl::OnAction, Variant("oButton_Click"));
    button.Put(m::CommandBarControl::Tag, Variant(kCaption));
    button.Put(m::CommandBarControl::TooltipText, Variant(kCaption));
    button_ = button;
    MenuHandler2.Connect(VBInstance.GetObject(m::VBE::Events), button_, [this] { Show(); });
}

void dVisualBasic::Show() noexcept {
    if (!VBInstance) {
        ShowMessage("no active VB Instance resolved", OwnerWindow());
        return;
    }
    IgnoringErrors("Show", [this] {
        if (mdocAddIn && mdocAddIn->Document() != nullptr) {
            mdocAddIn->Document()->Connect(VBInstance, *this);
        }
        options::DisplayForm(true);
        formDisplayed_ = true;
        if (toolWindow_) toolWindow_.Put(m::Window::Visible, Variant(true));
        if (mdocAddIn && mdocAddIn->Document() != nullptr) mdocAddIn->Document()->Shown();
    });
}

void dVisualBasic::Hide() noexcept {
    IgnoringErrors("Hide", [this] {
        options::DisplayForm(false);
        formDisplayed_ = false;
        if (toolWindow_) toolWindow_.Put(m::Window::Visible, Variant(false));
    });
}

void dVisualBasic::Disconnect() noexcept {
    IgnoringErrors("Deleting the menu entry", [this] {
        MenuHandler.Disconnect();
        if (menuEntry_) menuEntry_.Call(m::CommandBarControl::Delete);
    });
    menuEntry_ = Dispatch();
    if (button_) {
        MenuHandler2.Disconnect();
        IgnoringErrors("Deleting the toolbar button",
                       [this] { button_.Call(m::CommandBarControl::Delete); });
        button_ = Dispatch();
    }
    if (mdocAddIn) mdocAddIn->UnloadDocument();
    mdocAddIn.Reset();
    toolWindow_ = Dispatch();
    VBInstance = Dispatch();
}

HWND dVisualBasic::OwnerWindow() const noexcept {
    try {
        if (VBInstance) {
            const Dispatch main = VBInstance.GetObject(m::VBE::MainWindow);
            return reinterpret_cast<HWND>(static_cast<INT_PTR>(main.GetInt(m::Window::HWnd)));
        }
    } catch (...) {
    }
    return GetActiveWindow();
}

}  // namespace arbolet::windows::addin
