// Click sinks for command bar controls.
#include "windows/addin/command_bar_sink.h"

#include <utility>

#include "windows/com/error_info.h"
#include "windows/com/event_sink.h"

namespace arbolet::windows::addin {

void CommandBarClickHandler::Connect(const com::Dispatch& events, const com::Dispatch& control,
                                     std::function<void()> onClick) {
    Disconnect();
    com::Dispatch source =
        events.GetObject(com::members::Events::CommandBarEvents, {com::Variant(control.Object())});
    if (!source) throw VbError(91, "Events.CommandBarEvents", "No event source for the control");
    // Click(CommandBarControl, handled, CancelDefault): the add-in's own controls have no
    // default action to cancel, so the flags are left as they came.
    com::ComPtr<com::EventSink> sink = com::EventSink::Create(
        com::ids::DIID_CommandBarControlEvents,
        [onClick = std::move(onClick)](DISPID id, const std::vector<com::Variant>&) {
            if (id == com::ids::CommandBarControlEvents::Click && onClick) onClick();
        });
    const HRESULT hr = subscription_.Advise(source.Object(), com::ids::DIID_CommandBarControlEvents,
                                            static_cast<IDispatch*>(sink.Get()));
    if (FAILED(hr)) {
        sink->Detach();
        throw com::VbErrorFromCom(hr, nullptr, "CommandBarEvents");
    }
    source_ = std::move(source);
    sink_ = std::move(sink);
}

void CommandBarClickHandler::Disconnect() noexcept {
    subscription_.Unadvise();
    if (sink_) sink_->Detach();
    sink_.Reset();
    source_ = com::Dispatch();
}

}  // namespace arbolet::windows::addin
