// Tool windows as OLE in-place containers, and the Windows and Window objects.
#include "vb6host/tool_window.h"

#include <olectl.h>

#include "base/vb_error.h"
#include "vb6host/control_site.h"
#include "vb6host/host_context.h"
#include "vb6host/ide_objects.h"
#include "vb6host/vbide_ids.h"
#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {
namespace {

constexpr wchar_t kFrameClass[] = L"ArboletVb6HostToolFrame";
constexpr wchar_t kClientClass[] = L"ArboletVb6HostToolClient";

void RegisterClasses(WNDPROC frameProc) {
    static bool registered = false;
    if (registered) return;
    WNDCLASSW frame{};
    frame.lpfnWndProc = frameProc;
    frame.hInstance = GetModuleHandleW(nullptr);
    frame.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    frame.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    frame.lpszClassName = kFrameClass;
    RegisterClassW(&frame);
    WNDCLASSW client = frame;
    client.lpfnWndProc = DefWindowProcW;
    client.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    client.lpszClassName = kClientClass;
    RegisterClassW(&client);
    registered = true;
}

[[noreturn]] void RaiseCannotCreate(const std::wstring& progId, HRESULT hr) {
    char code[16];
    wsprintfA(code, "%08lX", static_cast<unsigned long>(hr));
    throw VbError(429, "Windows.CreateToolWindow",
                  "ActiveX component can't create object: " + windows::WideToUtf8(progId) + " (0x" +
                      code + ")");
}

SIZEL HimetricOf(const RECT& rect) {
    HDC screen = GetDC(nullptr);
    const int dpiX = GetDeviceCaps(screen, LOGPIXELSX);
    const int dpiY = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return {MulDiv(rect.right - rect.left, 2540, dpiX), MulDiv(rect.bottom - rect.top, 2540, dpiY)};
}

}  // namespace

std::wstring MainFrame::Caption() const {
    wchar_t text[256] = {};
    GetWindowTextW(window_, text, 256);
    return text;
}

// ---- the tool window ----

ToolWindow::ToolWindow(HWND owner, std::wstring progId, std::wstring caption,
                       std::wstring guidPosition)
    : owner_(owner),
      progId_(std::move(progId)),
      caption_(std::move(caption)),
      guidPosition_(std::move(guidPosition)) {}

ToolWindow::~ToolWindow() {
    Close();
}

std::shared_ptr<ToolWindow> ToolWindow::Create(HWND owner, const std::wstring& progId,
                                               const std::wstring& caption,
                                               const std::wstring& guidPosition) {
    RegisterClasses(&ToolWindow::FrameProc);
    auto window = std::shared_ptr<ToolWindow>(new ToolWindow(owner, progId, caption, guidPosition));
    // A docked frame: a child of the main window with its own caption bar.
    window->frame_ =
        CreateWindowExW(WS_EX_TOOLWINDOW, kFrameClass, caption.c_str(),
                        WS_CHILD | WS_CAPTION | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 300, 400,
                        owner, nullptr, GetModuleHandleW(nullptr), nullptr);
    window->client_ =
        CreateWindowExW(0, kClientClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 300,
                        380, window->frame_, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (window->frame_ == nullptr || window->client_ == nullptr) {
        RaiseCannotCreate(progId, HRESULT_FROM_WIN32(GetLastError()));
    }
    SetWindowLongPtrW(window->frame_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window.get()));
    window->Activate();
    return window;
}

// The call order of the IDE's in-place container: site first when the control asks for it,
// then initialisation, host names, extent, and in-place activation.
void ToolWindow::Activate() {
    CLSID clsid{};
    HRESULT hr = CLSIDFromProgID(progId_.c_str(), &clsid);
    if (FAILED(hr)) RaiseCannotCreate(progId_, hr);
    hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IOleObject,
                          reinterpret_cast<void**>(control_.Put()));
    if (FAILED(hr)) RaiseCannotCreate(progId_, hr);
    Step("CoCreateInstance");
    site_ = ComPtr<ControlSite>::Attach(new ControlSite(*this, owner_));

    DWORD status = 0;
    control_->GetMiscStatus(DVASPECT_CONTENT, &status);
    const bool siteFirst = (status & OLEMISC_SETCLIENTSITEFIRST) != 0;
    if (siteFirst) {
        Step("SetClientSite");
        control_->SetClientSite(site_.Get());
    }
    if (auto persist = control_.As<IPersistStreamInit>(IID_IPersistStreamInit)) {
        Step("InitNew");
        persist->InitNew();
    }
    if (!siteFirst) {
        Step("SetClientSite");
        control_->SetClientSite(site_.Get());
    }
    control_->SetHostNames(L"Visual Basic", caption_.c_str());
    RECT client;
    GetClientRect(client_, &client);
    SIZEL extent = HimetricOf(client);
    control_->SetExtent(DVASPECT_CONTENT, &extent);
    Step("DoVerb");
    hr = control_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site_.Get(), 0, client_, &client);
    if (FAILED(hr)) {
        Close();
        RaiseCannotCreate(progId_, hr);
    }
    FitControl();
    document_ = control_.As<IDispatch>(IID_IDispatch);
}

void ToolWindow::FitControl() {
    if (!control_) return;
    RECT client;
    GetClientRect(client_, &client);
    if (auto inPlace = control_.As<IOleInPlaceObject>(IID_IOleInPlaceObject)) {
        inPlace->SetObjectRects(&client, &client);
    }
}

// The frame follows its size with the control, and closing it hides it, as the IDE's docked
// windows do.
LRESULT CALLBACK ToolWindow::FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<ToolWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr && self->frame_ == window) {
        switch (message) {
            case WM_SIZE:
                MoveWindow(self->client_, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
                self->FitControl();
                return 0;
            case WM_CLOSE:
                self->SetVisible(false);
                return 0;
            case WM_NCDESTROY:
                SetWindowLongPtrW(window, GWLP_USERDATA, 0);
                break;
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void ToolWindow::SetVisible(bool visible) {
    visible_ = visible;
    if (frame_ != nullptr) ShowWindow(frame_, visible ? SW_SHOW : SW_HIDE);
    if (owner_ != nullptr) {
        RECT client;
        GetClientRect(owner_, &client);
        SendMessageW(owner_, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.right, client.bottom));
    }
}

void ToolWindow::Place(const RECT& bounds) {
    if (frame_ == nullptr) return;
    MoveWindow(frame_, bounds.left, bounds.top, bounds.right - bounds.left,
               bounds.bottom - bounds.top, TRUE);
    RECT inner;
    GetClientRect(frame_, &inner);
    if (control_) {
        SIZEL extent = HimetricOf(inner);
        control_->SetExtent(DVASPECT_CONTENT, &extent);
    }
    FitControl();
}

const std::vector<std::wstring>& ToolWindow::RefusedInterfaces() const {
    static const std::vector<std::wstring> none;
    return site_ ? site_->Refused() : none;
}

// Teardown as the IDE does it: deactivate, close, unsite, release.
void ToolWindow::Close() {
    if (control_) {
        if (auto inPlace = control_.As<IOleInPlaceObject>(IID_IOleInPlaceObject)) {
            Step("InPlaceDeactivate");
            inPlace->InPlaceDeactivate();
        }
        Step("Close");
        control_->Close(OLECLOSE_NOSAVE);
        Step("SetClientSite(Nothing)");
        control_->SetClientSite(nullptr);
    }
    activeObject_.Reset();
    document_.Reset();
    control_.Reset();
    if (site_) site_->Detach();
    site_.Reset();
    if (frame_ != nullptr && IsWindow(frame_)) DestroyWindow(frame_);
    frame_ = client_ = nullptr;
    visible_ = false;
}

// ---- Window ----

namespace {
constexpr auto kGet = MemberKind::Property;
constexpr auto kCall = MemberKind::Method;

constexpr Member kWindowMembers[] = {
    {L"VBE", vbide::kWindowVBE, kGet},         {L"Collection", vbide::kWindowCollection, kGet},
    {vbide::members::Window::Close, kCall},    {vbide::members::Window::Caption, kGet},
    {L"Left", vbide::kWindowLeft, kGet},       {L"Top", vbide::kWindowTop, kGet},
    {L"Width", vbide::kWindowWidth, kGet},     {vbide::members::Window::Visible, kGet},
    {L"Height", vbide::kWindowHeight, kGet},   {L"WindowState", vbide::kWindowWindowState, kGet},
    {vbide::members::Window::SetFocus, kCall}, {L"Type", vbide::kWindowType, kGet},
    {vbide::members::Window::HWnd, kGet},
};

// Window positions are in pixels in the host; the IDE gives twips, 15 to the pixel at 96 dpi.
constexpr std::int32_t kTwipsPerPixel = 15;
}  // namespace

const InterfaceInfo WindowObject::kInterface = {L"Window", vbide::ids::IID_Window};

WindowObject::WindowObject(std::shared_ptr<HostContext> context, std::shared_ptr<HostWindow> window)
    : DispatchObject(std::move(context), kInterface, kWindowMembers), window_(std::move(window)) {}

std::string WindowObject::Describe() const {
    return "Window(\"" + windows::WideToUtf8(window_->Caption()) + "\")";
}

void WindowObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    RECT bounds{};
    if (window_->Handle() != nullptr) GetWindowRect(window_->Handle(), &bounds);
    switch (id) {
        case vbide::kWindowVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kWindowCollection:
            return call.ReturnObject(WindowsObjectFor(context).Get());
        case vbide::members::Window::Close.id:
            window_->SetVisible(false);
            return;
        case vbide::members::Window::Caption.id:
            return call.ReturnString(window_->Caption());
        case vbide::members::Window::Visible.id:
            if (call.isPut) {
                window_->SetVisible(Arguments::ToBool(call.args.Value()));
                return;
            }
            return call.ReturnBool(window_->Visible());
        case vbide::kWindowLeft:
        case vbide::kWindowTop:
        case vbide::kWindowWidth:
        case vbide::kWindowHeight: {
            // Docked windows take the place the IDE gives them; a put is accepted and ignored,
            // as the IDE ignores it for docked windows.
            if (call.isPut) return;
            const std::int32_t pixels = id == vbide::kWindowLeft    ? bounds.left
                                        : id == vbide::kWindowTop   ? bounds.top
                                        : id == vbide::kWindowWidth ? bounds.right - bounds.left
                                                                    : bounds.bottom - bounds.top;
            return call.ReturnLong(pixels * kTwipsPerPixel);
        }
        case vbide::kWindowWindowState:
            if (call.isPut) return;
            return call.ReturnLong(0);  // vbext_ws_Normal
        case vbide::members::Window::SetFocus.id:
            if (window_->Handle() != nullptr) SetFocus(window_->Handle());
            return;
        case vbide::kWindowType:
            return call.ReturnLong(window_->Type());
        case vbide::members::Window::HWnd.id:
            return call.ReturnLong(
                static_cast<std::int32_t>(reinterpret_cast<INT_PTR>(window_->Handle())));
    }
}

// ---- Windows ----

namespace {
constexpr Member kWindowsMembers[] = {
    {L"VBE", vbide::kWindowsVBE, kGet},
    {L"Parent", vbide::kWindowsParent, kGet},
    {vbide::members::VBProjects::Item, kCall},
    {vbide::members::Windows::Count, kGet},
    {vbide::members::Windows::CreateToolWindow, kCall},
};

void SetDocObj(VARIANT& slot, IDispatch* document) {
    if (document != nullptr) document->AddRef();
    if (slot.vt == (VT_DISPATCH | VT_BYREF)) {
        if (*slot.ppdispVal != nullptr) (*slot.ppdispVal)->Release();
        *slot.ppdispVal = document;
        return;
    }
    VariantClear(&slot);
    slot.vt = VT_DISPATCH;
    slot.pdispVal = document;
}
}  // namespace

const InterfaceInfo WindowsObject::kInterface = {L"Windows", vbide::ids::IID_Windows};

WindowsObject::WindowsObject(std::shared_ptr<HostContext> context, std::shared_ptr<HostContext>)
    : DispatchObject(std::move(context), kInterface, kWindowsMembers) {}

void WindowsObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::kWindowsVBE:
        case vbide::kWindowsParent:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::members::Windows::Count.id:
            return call.ReturnLong(static_cast<std::int32_t>(context.ToolWindows().size()) + 1);
        case vbide::members::VBProjects::Item.id: {
            const std::int32_t index = call.args.Long(0);
            if (index == 1) return call.ReturnObject(MainWindowObjectFor(context).Get());
            if (index < 2 || static_cast<std::size_t>(index - 1) > context.ToolWindows().size()) {
                throw VbError(9, "Windows.Item", "Subscript out of range");
            }
            const std::shared_ptr<HostWindow> window =
                context.ToolWindows()[static_cast<std::size_t>(index - 2)];
            return call.ReturnObject(context.Wrap<WindowObject>(window).Get());
        }
        case vbide::members::Windows::CreateToolWindow.id: {
            if (!call.args.Has(0)) {
                throw VbError(5, "Windows.CreateToolWindow", "Invalid procedure call or argument");
            }
            const std::wstring guidPosition = call.args.String(3);
            for (const auto& existing : context.ToolWindows()) {
                if (_wcsicmp(existing->GuidPosition().c_str(), guidPosition.c_str()) == 0) {
                    throw VbError(5, "Windows.CreateToolWindow",
                                  "A tool window with this position identifier exists already");
                }
            }
            VARIANT& docObj = call.args.ByRef(4);
            auto window = ToolWindow::Create(context.MainWindow(), call.args.String(1),
                                             call.args.String(2), guidPosition);
            context.AddToolWindow(window);
            SetDocObj(docObj, window->Document());
            const std::shared_ptr<HostWindow> shown = window;
            return call.ReturnObject(context.Wrap<WindowObject>(shown).Get());
        }
    }
}

ComPtr<IDispatch> WindowsObjectFor(HostContext& context) {
    return context.Wrap<WindowsObject>(context.shared_from_this());
}

ComPtr<IDispatch> MainWindowObjectFor(HostContext& context) {
    if (!context.MainFrame()) return {};
    return context.Wrap<WindowObject>(context.MainFrame());
}

}  // namespace arbolet::vb6host
