// The environment's menus and toolbars (the Office command bars that VBE.CommandBars returns),
// as far as the add-in uses them: finding a bar, adding and removing buttons, running a command.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "environment/event_source.h"

namespace arbolet::env {

// MsoControlType values the add-in creates.
enum class ControlType : std::int32_t { Button = 1, Popup = 10 };

class CommandBarControls;

class CommandBarControl {
  public:
    virtual ~CommandBarControl() = default;
    virtual std::string Caption() const = 0;
    virtual void SetCaption(std::string_view caption) = 0;
    virtual bool Enabled() const = 0;
    virtual void SetEnabled(bool enabled) = 0;
    virtual std::int32_t FaceId() const = 0;
    virtual void SetFaceId(std::int32_t faceId) = 0;
    virtual std::string OnAction() const = 0;
    virtual void SetOnAction(std::string_view action) = 0;
    virtual std::string Tag() const = 0;
    virtual void SetTag(std::string_view tag) = 0;
    // Runs the control's command, as a click would.
    virtual void Execute() = 0;
    // The accessibility default action (accDoDefaultAction): for the environment's own menu
    // items the same as a click, which opens its own dialogs.
    virtual void DoDefaultAction() { Execute(); }
    virtual void Delete() = 0;
    // Sub-controls of a popup; nullptr for a button.
    virtual std::shared_ptr<CommandBarControls> Controls() const = 0;
};
using CommandBarControlRef = std::shared_ptr<CommandBarControl>;

class CommandBarControls {
  public:
    virtual ~CommandBarControls() = default;
    virtual std::int32_t Count() const = 0;
    // By 1-based index or by caption; raises kSubscriptOutOfRange when absent.
    virtual CommandBarControlRef Item(std::int32_t index) const = 0;
    virtual CommandBarControlRef Item(std::string_view caption) const = 0;
    // Adds a control before the 1-based position `before` (nullopt: at the end).
    virtual CommandBarControlRef Add(ControlType type, std::optional<std::int32_t> before,
                                     bool temporary) = 0;
};

class CommandBar {
  public:
    virtual ~CommandBar() = default;
    virtual std::string Name() const = 0;
    virtual std::shared_ptr<CommandBarControls> Controls() const = 0;
};
using CommandBarRef = std::shared_ptr<CommandBar>;

class CommandBars {
  public:
    virtual ~CommandBars() = default;
    virtual std::int32_t Count() const = 0;
    // By name ("Menu Bar", "Add-Ins", "Standard") or 1-based index; raises when absent.
    virtual CommandBarRef Item(std::string_view name) const = 0;
    virtual CommandBarRef Item(std::int32_t index) const = 0;
};

// The handler side of _dispCommandBarControlEvents.
class CommandBarEventsSink {
  public:
    virtual ~CommandBarEventsSink() = default;
    virtual void Click(const CommandBarControlRef& control, bool& handled, bool& cancelDefault) = 0;
};
using CommandBarEvents = EventSource<CommandBarEventsSink>;

}  // namespace arbolet::env
