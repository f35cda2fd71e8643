// The IDE's windows as an add-in sees them: the main window, and the dockable tool windows of
// Windows.CreateToolWindow, each an OLE in-place container that creates a control by ProgID and
// activates it in its frame; and the Windows and Window objects in front of them.
#pragma once

#include <ole2.h>
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "vb6host/dispatch_object.h"
#include "windows/com/com_ptr.h"

namespace arbolet::vb6host {

class ControlSite;

// A window the Window object can stand for.
class HostWindow {
  public:
    virtual ~HostWindow() = default;
    virtual HWND Handle() const = 0;
    virtual std::wstring Caption() const = 0;
    virtual bool Visible() const = 0;
    virtual void SetVisible(bool visible) = 0;
    virtual void Close() = 0;
    // vbext_WindowType.
    virtual std::int32_t Type() const = 0;
};

// The IDE's main window.
class MainFrame final : public HostWindow {
  public:
    explicit MainFrame(HWND window) : window_(window) {}
    HWND Handle() const override { return window_; }
    std::wstring Caption() const override;
    bool Visible() const override { return IsWindowVisible(window_) != FALSE; }
    void SetVisible(bool visible) override { ShowWindow(window_, visible ? SW_SHOW : SW_HIDE); }
    void Close() override {}
    std::int32_t Type() const override { return 12; }  // vbext_wt_MainWindow

  private:
    HWND window_;
};

class ToolWindow final : public HostWindow, public std::enable_shared_from_this<ToolWindow> {
  public:
    // Creates the frame, hidden, docked in `owner`, and the control named by `progId`, sited
    // and in-place active in it. Raises arbolet::VbError when the control cannot be made.
    static std::shared_ptr<ToolWindow> Create(HWND owner, const std::wstring& progId,
                                              const std::wstring& caption,
                                              const std::wstring& guidPosition);
    ~ToolWindow() override;

    HWND Handle() const override { return frame_; }
    std::wstring Caption() const override { return caption_; }
    bool Visible() const override { return visible_; }
    void SetVisible(bool visible) override;
    // Deactivates and releases the control and destroys the frame; idempotent.
    void Close() override;
    std::int32_t Type() const override { return 15; }  // vbext_wt_ToolWindow

    const std::wstring& ProgId() const { return progId_; }
    const std::wstring& GuidPosition() const { return guidPosition_; }
    // The window the control lives in.
    HWND Client() const { return client_; }
    // The control's IDispatch: what DocObj returns.
    IDispatch* Document() const { return document_.Get(); }
    bool InPlaceActive() const { return inPlaceActive_; }
    void SetInPlaceActive(bool active) { inPlaceActive_ = active; }
    // Places the frame at `bounds` of its owner and the control in the frame's client area.
    void Place(const RECT& bounds);
    // Interfaces the control asked the site for that the site does not offer, for the log.
    const std::vector<std::wstring>& RefusedInterfaces() const;
    // What the container did, in order ("SetClientSite", "DoVerb", ...), for tests.
    const std::vector<std::string>& Steps() const { return steps_; }
    void Step(std::string step) { steps_.push_back(std::move(step)); }
    IOleInPlaceActiveObject* ActiveObject() const { return activeObject_.Get(); }
    void SetActiveObject(IOleInPlaceActiveObject* object) {
        activeObject_ = ComPtr<IOleInPlaceActiveObject>(object);
    }

  private:
    ToolWindow(HWND owner, std::wstring progId, std::wstring caption, std::wstring guidPosition);
    void Activate();
    void FitControl();
    static LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND owner_;
    std::wstring progId_, caption_, guidPosition_;
    HWND frame_ = nullptr;
    HWND client_ = nullptr;
    bool visible_ = false;
    bool inPlaceActive_ = false;
    ComPtr<ControlSite> site_;
    ComPtr<IOleObject> control_;
    ComPtr<IDispatch> document_;
    ComPtr<IOleInPlaceActiveObject> activeObject_;
    std::vector<std::string> steps_;
};

class WindowObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    WindowObject(std::shared_ptr<HostContext> context, std::shared_ptr<HostWindow> window);
    std::string Describe() const override;

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<HostWindow> window_;
};

// The Windows collection: the main window and the tool windows.
class WindowsObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    WindowsObject(std::shared_ptr<HostContext> context, std::shared_ptr<HostContext> self);

  protected:
    void Run(DISPID id, const Call& call) override;
};

ComPtr<IDispatch> WindowsObjectFor(HostContext& context);
ComPtr<IDispatch> MainWindowObjectFor(HostContext& context);

}  // namespace arbolet::vb6host
