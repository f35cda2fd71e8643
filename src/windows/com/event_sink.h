// An event sink for the IDE's connection points: an IDispatch that answers for one event
// interface (and IDispatch and IUnknown, as VB's own sinks do) and hands every event, with its
// arguments first to last, to a handler. Detach ends the handler's calls before the source
// lets go of the sink.
#pragma once

#include <functional>
#include <vector>

#include "windows/com/late_bound.h"
#include "windows/com/ref_count.h"
#include "windows/com/variant.h"

namespace arbolet::windows::com {

class EventSink final : public LateBound<>, private ModuleObject {
  public:
    using Handler = std::function<void(DISPID id, const std::vector<Variant>& args)>;

    // A new sink with one reference, owned by the caller.
    static ComPtr<EventSink> Create(const IID& events, Handler handler);
    void Detach() noexcept { handler_ = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return refs_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID,
                                            DISPID*) noexcept override {
        return DISP_E_UNKNOWNNAME;
    }
    // A handler's failure is the add-in's own business: the IDE is always told S_OK.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*,
                                     EXCEPINFO*, UINT*) noexcept override;

  private:
    EventSink(const IID& events, Handler handler) : events_(events), handler_(std::move(handler)) {}
    ~EventSink() = default;

    RefCount refs_;
    IID events_;
    Handler handler_;
};

}  // namespace arbolet::windows::com
