// The IDE's project, component and command-bar events, bridged into the environment's event
// sources. A bridge advises its COM sink when it is made and unadvises when the explorer lets
// go of the source, so no subscription outlives its user.
#include <functional>

#include "windows/com/connection_point.h"
#include "windows/com/error_info.h"
#include "windows/com/ref_count.h"
#include "windows/com/variant.h"
#include "windows/ide/com_environment.h"
#include "windows/ide/com_objects.h"

namespace arbolet::windows::ide {
namespace {

namespace m = com::members;
namespace ids = com::ids;
using com::Dispatch;
using com::Variant;

// Arguments of one event, first to last.
using EventArguments = std::vector<Variant>;
using EventHandler = std::function<void(DISPID id, const EventArguments& args)>;

// The IDispatch sink a connection point calls; answers for its event interface.
class EventSink final : public IDispatch, private com::ModuleObject {
  public:
    EventSink(const IID& events, EventHandler handler) : events_(events), handler_(handler) {}
    void Detach() noexcept { handler_ = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        if (iid == IID_IUnknown || iid == IID_IDispatch || iid == events_) {
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
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID,
                                            DISPID*) noexcept override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*,
                                     EXCEPINFO* exception, UINT*) noexcept override {
        if (params == nullptr) return E_INVALIDARG;
        // A handler's failure is the add-in's own business: the IDE is not told.
        com::Guarded("Arbolet", [&] {
            if (!handler_) return S_OK;
            EventArguments args;
            for (UINT i = params->cArgs; i > 0; --i) {
                args.push_back(Variant::Copy(params->rgvarg[i - 1]));
            }
            handler_(id, args);
            return S_OK;
        });
        (void)exception;
        return S_OK;
    }

  private:
    com::RefCount refs_;
    IID events_;
    EventHandler handler_;
};

// One environment event source fed by one COM subscription.
template <typename Sink>
struct Bridge {
    env::EventSource<Sink> source;
    Dispatch ideSource;
    com::ComPtr<EventSink> sink;
    com::Advised subscription;

    ~Bridge() {
        subscription.Unadvise();
        if (sink) sink->Detach();
    }
};

// Makes the bridge, advises it on `ideSource`, and answers the source it feeds; the bridge
// lives as long as the answer.
template <typename Sink, typename Deliver>
std::shared_ptr<env::EventSource<Sink>> MakeBridge(const Dispatch& ideSource, const IID& events,
                                                   Deliver deliver) {
    if (!ideSource) return nullptr;
    auto bridge = std::make_shared<Bridge<Sink>>();
    env::EventSource<Sink>* source = &bridge->source;
    bridge->ideSource = ideSource;
    bridge->sink = com::ComPtr<EventSink>::Attach(
        new EventSink(events, [source, deliver](DISPID id, const EventArguments& args) {
            source->Raise([&](Sink& sink) { deliver(sink, id, args); });
        }));
    const HRESULT hr = bridge->subscription.Advise(ideSource.Object(), events,
                                                   static_cast<IDispatch*>(bridge->sink.Get()));
    if (FAILED(hr)) throw com::VbErrorFromCom(hr, nullptr, "Events");
    return std::shared_ptr<env::EventSource<Sink>>(bridge, source);
}

Dispatch ObjectArgument(const EventArguments& args, std::size_t index) {
    return index < args.size() ? Dispatch(args[index].ToDispatch()) : Dispatch();
}

std::string TextArgument(const EventArguments& args, std::size_t index) {
    return index < args.size() ? args[index].ToUtf8().value_or("") : std::string();
}

void DeliverProjectEvent(env::VBProjectsEventsSink& sink, DISPID id, const EventArguments& args) {
    const env::VBProjectRef project = WrapProject(ObjectArgument(args, 0));
    switch (id) {
        case ids::VBProjectsEvents::ItemAdded:
            return sink.ItemAdded(project);
        case ids::VBProjectsEvents::ItemRemoved:
            return sink.ItemRemoved(project);
        case ids::VBProjectsEvents::ItemRenamed:
            return sink.ItemRenamed(project, TextArgument(args, 1));
        case ids::VBProjectsEvents::ItemActivated:
            return sink.ItemActivated(project);
        default:
            return;
    }
}

void DeliverComponentEvent(env::VBComponentsEventsSink& sink, DISPID id,
                           const EventArguments& args) {
    const env::VBComponentRef component = WrapComponent(ObjectArgument(args, 0));
    switch (id) {
        case ids::VBComponentsEvents::ItemAdded:
            return sink.ItemAdded(component);
        case ids::VBComponentsEvents::ItemRemoved:
            return sink.ItemRemoved(component);
        case ids::VBComponentsEvents::ItemRenamed:
            return sink.ItemRenamed(component, TextArgument(args, 1));
        case ids::VBComponentsEvents::ItemSelected:
            return sink.ItemSelected(component);
        case ids::VBComponentsEvents::ItemActivated:
            return sink.ItemActivated(component);
        case ids::VBComponentsEvents::ItemReloaded:
            return sink.ItemReloaded(component);
        default:
            return;
    }
}

// Click(CommandBarControl, handled, CancelDefault): the flags go back through their references.
void DeliverClick(env::CommandBarEventsSink& sink, const env::CommandBarControlRef& control,
                  DISPID id, const EventArguments& args) {
    if (id != ids::CommandBarControlEvents::Click) return;
    bool handled = args.size() > 1 && args[1].ToBool().value_or(false);
    bool cancel = args.size() > 2 && args[2].ToBool().value_or(false);
    sink.Click(control, handled, cancel);
    for (std::size_t i = 1; i < args.size() && i < 3; ++i) {
        const VARIANT* flag = args[i].Get();
        if (flag->vt == (VT_BOOL | VT_BYREF) && flag->pboolVal != nullptr) {
            *flag->pboolVal = (i == 1 ? handled : cancel) ? VARIANT_TRUE : VARIANT_FALSE;
        }
    }
}

class ComEvents final : public env::Events {
  public:
    explicit ComEvents(Dispatch events) : events_(std::move(events)) {}
    std::shared_ptr<env::VBProjectsEvents> VBProjectsEvents() override {
        return MakeBridge<env::VBProjectsEventsSink>(events_.GetObject(m::Events::VBProjectsEvents),
                                                     ids::DIID_VBProjectsEvents,
                                                     DeliverProjectEvent);
    }
    std::shared_ptr<env::VBComponentsEvents> VBComponentsEvents(
        const env::VBProjectRef& project) override {
        return MakeBridge<env::VBComponentsEventsSink>(
            events_.GetObject(m::Events::VBComponentsEvents,
                              {Variant(ObjectOf(project.get()).Object())}),
            ids::DIID_VBComponentsEvents, DeliverComponentEvent);
    }
    std::shared_ptr<env::CommandBarEvents> CommandBarEvents(
        const env::CommandBarControlRef& control) override {
        return MakeBridge<env::CommandBarEventsSink>(
            events_.GetObject(m::Events::CommandBarEvents,
                              {Variant(ObjectOf(control.get()).Object())}),
            ids::DIID_CommandBarControlEvents,
            [control](env::CommandBarEventsSink& sink, DISPID id, const EventArguments& args) {
                DeliverClick(sink, control, id, args);
            });
    }

  private:
    Dispatch events_;
};

}  // namespace

std::shared_ptr<env::Events> WrapEvents(const Dispatch& events) {
    return events ? std::make_shared<ComEvents>(events) : nullptr;
}

}  // namespace arbolet::windows::ide
