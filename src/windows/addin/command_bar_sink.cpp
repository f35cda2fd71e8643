// Click sinks for command bar controls.
#include "windows/addin/command_bar_sink.h"

#include <utility>

#include "windows/com/error_info.h"
#include "windows/com/ref_count.h"
#include "windows/com/variant.h"

namespace arbolet::windows::addin {
namespace {

class ClickSink final : public IDispatch, private com::ModuleObject {
  public:
    explicit ClickSink(std::function<void()> onClick) : onClick_(std::move(onClick)) {}

    // Called when the subscription ends, so that a late click does nothing.
    void Detach() noexcept { onClick_ = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        if (iid == IID_IUnknown || iid == IID_IDispatch ||
            iid == com::ids::DIID_CommandBarControlEvents) {
            *object = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return refs_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG count = refs_.Release();
        if (count == 0) delete this;
        return count;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        if (count == nullptr) return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept override {
        if (info != nullptr) *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) noexcept override {
        if (count != 1 || names == nullptr || ids == nullptr) return DISP_E_UNKNOWNNAME;
        if (_wcsicmp(names[0], L"Click") != 0) {
            ids[0] = DISPID_UNKNOWN;
            return DISP_E_UNKNOWNNAME;
        }
        ids[0] = com::ids::CommandBarControlEvents::Click;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*,
                                     EXCEPINFO* exception, UINT*) noexcept override {
        if (id != com::ids::CommandBarControlEvents::Click) return DISP_E_MEMBERNOTFOUND;
        // Click(CommandBarControl, handled, CancelDefault): the add-in's own button has no
        // default action to cancel, so the flags are left as they came.
        const HRESULT hr = com::Guarded("Arbolet.dVisualBasic", [this] {
            if (onClick_) onClick_();
            return S_OK;
        });
        return com::ToDispatchException(hr, exception);
    }

  private:
    com::RefCount refs_;
    std::function<void()> onClick_;
};

}  // namespace

void CommandBarClickHandler::Connect(const com::Dispatch& events, const com::Dispatch& control,
                                     std::function<void()> onClick) {
    Disconnect();
    com::Dispatch source =
        events.GetObject(com::members::Events::CommandBarEvents, {com::Variant(control.Object())});
    if (!source) throw VbError(91, "Events.CommandBarEvents", "No event source for the control");
    auto* sink = new ClickSink(std::move(onClick));
    com::ComPtr<IDispatch> sinkPointer = com::ComPtr<IDispatch>::Attach(sink);
    const HRESULT hr =
        subscription_.Advise(source.Object(), com::ids::DIID_CommandBarControlEvents, sink);
    if (FAILED(hr)) {
        sink->Detach();
        throw com::VbErrorFromCom(hr, nullptr, "CommandBarEvents");
    }
    source_ = std::move(source);
    sink_ = std::move(sinkPointer);
}

void CommandBarClickHandler::Disconnect() noexcept {
    subscription_.Unadvise();
    if (sink_) static_cast<ClickSink*>(sink_.Get())->Detach();
    sink_.Reset();
    source_ = com::Dispatch();
}

}  // namespace arbolet::windows::addin
