// The emulated IDE's menus and toolbars as data: bars, their controls, popups with their own
// bars, and what each built-in control does. The COM objects of the Office command bars stand
// in front of this model, and the host's main window draws it as a menu and a toolbar.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::vb6host {

class CommandBarModel;
struct CommandBarData;

// MsoControlType values.
inline constexpr std::int32_t kControlButton = 1;
inline constexpr std::int32_t kControlPopup = 10;
// MsoBarType values.
inline constexpr std::int32_t kBarNormal = 0;
inline constexpr std::int32_t kBarMenuBar = 1;
inline constexpr std::int32_t kBarPopup = 2;

class ControlList;

struct BarControl {
    std::int32_t type = kControlButton;
    std::int32_t id = 1;  // 1 for custom controls, as in Office
    bool builtIn = false;
    std::wstring caption, onAction, tag, tooltip, parameter, descriptionText, shortcutText;
    bool enabled = true, visible = true, beginGroup = false;
    std::int32_t faceId = 0, style = 0, state = 0;
    // The host's menu command for this control; unique while the model lives.
    std::uint32_t commandId = 0;
    std::weak_ptr<ControlList> owner;
    std::shared_ptr<CommandBarData> subBar;  // popups only
    // What the IDE does when the control runs, after the click events.
    std::function<void()> action;
    // The IDE's own rule for whether the command is available now.
    std::function<bool()> available;

    bool Enabled() const { return enabled && (!available || available()); }
    bool Deleted() const { return owner.expired(); }
};
using BarControlRef = std::shared_ptr<BarControl>;

class ControlList : public std::enable_shared_from_this<ControlList> {
  public:
    ControlList(CommandBarModel& model, std::weak_ptr<CommandBarData> bar)
        : model_(model), bar_(std::move(bar)) {}

    const std::vector<BarControlRef>& Items() const { return items_; }
    // By caption, ignoring case and the "&" that marks a menu's access key.
    BarControlRef FindByCaption(std::wstring_view caption) const;
    // Adds a control before the 1-based `before`, or at the end.
    BarControlRef Add(std::int32_t type, std::optional<std::int32_t> before);
    void Remove(BarControl& control);
    std::shared_ptr<CommandBarData> Bar() const { return bar_.lock(); }
    CommandBarModel& Model() const { return model_; }

  private:
    CommandBarModel& model_;
    std::weak_ptr<CommandBarData> bar_;
    std::vector<BarControlRef> items_;
};

struct CommandBarData {
    std::wstring name;
    std::int32_t type = kBarNormal;
    bool builtIn = true;
    bool visible = true;
    std::shared_ptr<ControlList> controls;
};
using CommandBarRef = std::shared_ptr<CommandBarData>;

class CommandBarModel {
  public:
    const std::vector<CommandBarRef>& Bars() const { return bars_; }
    CommandBarRef AddBar(std::wstring name, std::int32_t type);
    // Lists a popup's own bar among the bars, as Office lists the menus of its menu bar.
    void ListBar(CommandBarRef bar) { bars_.push_back(std::move(bar)); }
    // By name, ignoring case.
    CommandBarRef FindBar(std::wstring_view name) const;
    // A control anywhere in the model by its command identifier.
    BarControlRef FindCommand(std::uint32_t commandId) const;
    // The first control with this tag, searching popups too.
    BarControlRef FindByTag(std::wstring_view tag) const;
    // Gives a new control its command and, for a popup, its own bar.
    void Prepare(BarControl& control, std::weak_ptr<ControlList> owner);
    // Tells the windows that draw the model to draw it again.
    void Changed();
    void SetOnChanged(std::function<void()> onChanged) { onChanged_ = std::move(onChanged); }
    std::uint32_t Version() const { return version_; }

  private:
    std::vector<CommandBarRef> bars_;
    std::uint32_t nextCommand_ = 1000;
    std::uint32_t version_ = 0;
    std::function<void()> onChanged_;
};

// The caption without its access-key marks: "Add &Form" is "Add Form".
std::wstring PlainCaption(std::wstring_view caption);

}  // namespace arbolet::vb6host
