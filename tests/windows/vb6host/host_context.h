// The state of one emulated IDE session that its COM objects share: the projects on disk, the
// command bars, the code panes, the tool windows, the transcript, the live objects, and the one
// COM object per model object that keeps object identity as the real IDE does.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "disk/disk_environment.h"
#include "vb6host/command_bar_model.h"
#include "vb6host/dispatch_object.h"
#include "vb6host/transcript.h"
#include "windows/com/com_ptr.h"

namespace arbolet::vb6host {

class ToolWindow;
class HostWindow;
class ConnectionPoint;

// The add-in as the IDE knows it: what the Addins key says, and whether it is connected.
struct AddInData {
    std::wstring progId;
    std::wstring guid;
    std::wstring description;
    bool connected = false;
};

// What the IDE remembers of a component's code window.
struct CodePaneState {
    bool shown = false;
    std::int32_t selection[4] = {1, 1, 1, 1};  // start line, column, end line, column
    std::int32_t topLine = 1;
};

class HostContext : public std::enable_shared_from_this<HostContext> {
  public:
    explicit HostContext(std::shared_ptr<disk::DiskEnvironment> environment);
    ~HostContext();
    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

    disk::DiskEnvironment& Environment() const { return *environment_; }
    const std::shared_ptr<disk::DiskEnvironment>& SharedEnvironment() const { return environment_; }
    vb6host::Transcript& Transcript() { return transcript_; }
    CommandBarModel& Bars() { return bars_; }

    // The one object that stands for `model` as `T`, made on first use.
    template <typename T, typename Model>
    ComPtr<IDispatch> Wrap(const std::shared_ptr<Model>& model) {
        if (!model) return {};
        const std::pair<const void*, const void*> key{model.get(), &T::kInterface};
        if (const auto found = cache_.find(key); found != cache_.end()) {
            return ComPtr<IDispatch>(found->second);
        }
        auto object = MakeObject<T>(shared_from_this(), model);
        object->cacheKey_ = key;
        cache_[key] = object.Get();
        return ComPtr<IDispatch>(object.Get());
    }
    void Forget(const std::pair<const void*, const void*>& key) { cache_.erase(key); }

    void ObjectCreated() { ++liveObjects_; }
    void ObjectDestroyed() { --liveObjects_; }
    // COM objects of this session that someone still holds.
    int LiveObjects() const { return liveObjects_; }

    // The component the IDE has selected (the project window's selection).
    env::VBComponentRef SelectedComponent() const { return selected_.lock(); }
    void SelectComponent(const env::VBComponentRef& component);
    CodePaneState& CodePane(const env::VBComponent* component) { return codePanes_[component]; }
    // The component whose code window was shown last.
    env::VBComponentRef ActiveCodeComponent() const { return activeCode_.lock(); }
    void SetActiveCodeComponent(const env::VBComponentRef& component) { activeCode_ = component; }
    // Designers the IDE opened (View Object), by component.
    int DesignerOpened(const env::VBComponent* component) const;
    void OpenDesigner(const env::VBComponent* component) { ++designers_[component]; }

    // The IDE's main window, owner of the tool windows.
    HWND MainWindow() const { return mainWindow_; }
    void SetMainWindow(HWND window);
    const std::shared_ptr<HostWindow>& MainFrame() const { return mainFrame_; }
    // Tool windows made by CreateToolWindow, in order; the context owns them.
    const std::vector<std::shared_ptr<ToolWindow>>& ToolWindows() const { return toolWindows_; }
    void AddToolWindow(std::shared_ptr<ToolWindow> window);
    // Closes and forgets every tool window (the IDE does so when an add-in disconnects).
    void CloseToolWindows();
    // Lays the tool windows out in the main window again.
    void LayOut();

    // Connection points of command-bar clicks: the host raises Click on each advised sink of
    // the control before it runs the control's own command.
    struct ClickSource {
        const BarControl* control;
        ConnectionPoint* point;
    };
    void AddClickSource(const BarControl* control, ConnectionPoint* point);
    void RemoveClickSource(ConnectionPoint* point);
    // Runs a control as a click on it: the click events first, then, unless a handler
    // cancelled it, the IDE's own command. Returns false for a disabled or deleted control.
    bool RunControl(const BarControlRef& control);
    // The messages of the IDE's own commands that failed, in order.
    const std::vector<std::string>& Errors() const { return errors_; }

    // The add-in's connection object as the AddIn object holds it (AddIn.Object).
    ComPtr<IDispatch>& AddInObject() { return addInObject_; }
    const std::shared_ptr<AddInData>& AddIn() const { return addIn_; }

  private:
    std::shared_ptr<disk::DiskEnvironment> environment_;
    vb6host::Transcript transcript_;
    CommandBarModel bars_;
    std::map<std::pair<const void*, const void*>, DispatchObject*> cache_;
    int liveObjects_ = 0;
    std::weak_ptr<env::VBComponent> selected_;
    std::weak_ptr<env::VBComponent> activeCode_;
    std::map<const env::VBComponent*, CodePaneState> codePanes_;
    std::map<const env::VBComponent*, int> designers_;
    HWND mainWindow_ = nullptr;
    std::shared_ptr<HostWindow> mainFrame_;
    std::vector<std::shared_ptr<ToolWindow>> toolWindows_;
    std::vector<ClickSource> clickSources_;
    std::vector<std::string> errors_;
    ComPtr<IDispatch> addInObject_;
    std::shared_ptr<AddInData> addIn_ = std::make_shared<AddInData>();
};

}  // namespace arbolet::vb6host
