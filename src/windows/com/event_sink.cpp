// The event sink's IUnknown and IDispatch.
#include "windows/com/event_sink.h"

#include "windows/com/error_info.h"

namespace arbolet::windows::com {

ComPtr<EventSink> EventSink::Create(const IID& events, Handler handler) {
    return ComPtr<EventSink>::Attach(new EventSink(events, std::move(handler)));
}

HRESULT EventSink::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == events_) {
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG EventSink::Release() noexcept {
    const ULONG count = refs_.Release();
    if (count == 0) delete this;
    return count;
}

HRESULT EventSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                          UINT*) noexcept {
    if (params == nullptr) return E_INVALIDARG;
    Guarded("Arbolet", [&] {
        if (!handler_) return S_OK;
        // A copy, so that a handler that detaches the sink does not destroy itself mid-call.
        const Handler handler = handler_;
        std::vector<Variant> args;
        for (UINT i = params->cArgs; i > 0; --i)
            args.push_back(Variant::Copy(params->rgvarg[i - 1]));
        handler(id, args);
        return S_OK;
    });
    return S_OK;
}

}  // namespace arbolet::windows::com
