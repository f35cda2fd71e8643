// The shared state of an emulated IDE session, and running its command bar controls.
#include "vb6host/host_context.h"

#include "vb6host/command_bar_objects.h"
#include "vb6host/event_objects.h"
#include "vb6host/ide_objects.h"
#include "vb6host/tool_window.h"
#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {

HostContext::HostContext(std::shared_ptr<disk::DiskEnvironment> environment)
    : environment_(std::move(environment)) {}

HostContext::~HostContext() {
    CloseToolWindows();
}

void HostContext::SetMainWindow(HWND window) {
    mainWindow_ = window;
    mainFrame_ = std::make_shared<vb6host::MainFrame>(window);
}

void HostContext::SelectComponent(const env::VBComponentRef& component) {
    selected_ = component;
    environment_->SetSelectedVBComponent(component);
    if (!component) return;
    if (auto project = env::ProjectOf(*component)) environment_->SetActiveVBProject(project);
}

int HostContext::DesignerOpened(const env::VBComponent* component) const {
    const auto found = designers_.find(component);
    return found == designers_.end() ? 0 : found->second;
}

void HostContext::AddToolWindow(std::shared_ptr<ToolWindow> window) {
    toolWindows_.push_back(std::move(window));
}

void HostContext::CloseToolWindows() {
    // Closing a window may call back into the add-in, which may ask for the list again.
    auto windows = std::move(toolWindows_);
    toolWindows_.clear();
    for (const auto& window : windows)
        window->Close();
    LayOut();
}

void HostContext::LayOut() {
    if (mainWindow_ != nullptr && IsWindow(mainWindow_)) {
        RECT client;
        GetClientRect(mainWindow_, &client);
        SendMessageW(mainWindow_, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.right, client.bottom));
    }
}

void HostContext::AddClickSource(const BarControl* control, ConnectionPoint* point) {
    clickSources_.push_back({control, point});
}

void HostContext::RemoveClickSource(ConnectionPoint* point) {
    std::erase_if(clickSources_, [&](const ClickSource& s) { return s.point == point; });
}

bool HostContext::RunControl(const BarControlRef& control) {
    if (!control || control->Deleted() || !control->Enabled()) return false;
    const ComPtr<IDispatch> object = ControlObjectFor(*this, control);
    bool handled = false;
    bool cancelDefault = false;
    std::vector<ConnectionPoint*> points;
    for (const ClickSource& source : clickSources_) {
        if (source.control == control.get()) points.push_back(source.point);
    }
    for (ConnectionPoint* point : points) {
        // A handler may release its source; only points still known are raised.
        const bool known = std::any_of(clickSources_.begin(), clickSources_.end(),
                                       [&](const ClickSource& s) { return s.point == point; });
        if (known) FireClick(*point, object.Get(), handled, cancelDefault);
    }
    if (!cancelDefault && control->action) {
        // The IDE shows its own message for a command that fails; the host keeps it.
        try {
            control->action();
        } catch (const std::exception& error) {
            errors_.push_back(windows::WideToUtf8(PlainCaption(control->caption)) + ": " +
                              error.what());
        }
    }
    return true;
}

}  // namespace arbolet::vb6host
