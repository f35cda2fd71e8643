// The handler of a command bar control's clicks (_dispCommandBarControlEvents): a small
// IDispatch sink that the IDE's CommandBarEvents object calls, and the subscription that keeps
// that object and its advise cookie alive as long as the control is in use.
#pragma once

#include <functional>

#include "base/vb_error.h"
#include "windows/com/connection_point.h"
#include "windows/com/dispatch.h"
#include "windows/com/event_sink.h"

namespace arbolet::windows::addin {

class CommandBarClickHandler {
  public:
    CommandBarClickHandler() = default;
    CommandBarClickHandler(const CommandBarClickHandler&) = delete;
    CommandBarClickHandler& operator=(const CommandBarClickHandler&) = delete;
    ~CommandBarClickHandler() { Disconnect(); }

    // Subscribes `onClick` to the clicks of `control`, through `events`
    // (VBE.Events.CommandBarEvents(control)); raises the IDE's errors as VbError.
    void Connect(const com::Dispatch& events, const com::Dispatch& control,
                 std::function<void()> onClick);
    void Disconnect() noexcept;

  private:
    com::Dispatch source_;
    com::Advised subscription_;
    com::ComPtr<com::EventSink> sink_;
};

}  // namespace arbolet::windows::addin
