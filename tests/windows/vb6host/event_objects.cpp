// Connection points of the IDE's events, fed by the environment's own event sources.
#include "vb6host/event_objects.h"

#include <olectl.h>

#include <algorithm>
#include <new>

#include "base/vb_error.h"
#include "vb6host/command_bar_objects.h"
#include "vb6host/host_context.h"
#include "vb6host/ide_objects.h"
#include "vb6host/vbide_ids.h"
#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {
namespace {

VARIANT ObjectArgument(const ComPtr<IDispatch>& object) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_DISPATCH;
    v.pdispVal = object.Get();
    if (v.pdispVal) v.pdispVal->AddRef();
    return v;
}

VARIANT StringArgument(std::string_view utf8) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_BSTR;
    v.bstrVal = SysAllocString(windows::Utf8ToWide(utf8).c_str());
    return v;
}

void Clear(std::vector<VARIANT>& arguments) {
    for (VARIANT& argument : arguments)
        VariantClear(&argument);
}

// Forwards the environment's project events to the connection point's sinks.
class ProjectsBridge final : public env::VBProjectsEventsSink {
  public:
    ProjectsBridge(HostContext& context, ConnectionPoint& point)
        : context_(context), point_(point) {}
    void ItemAdded(const env::VBProjectRef& p) override {
        Fire(vbide::ids::VBComponentsEvents::ItemAdded, p);
    }
    void ItemRemoved(const env::VBProjectRef& p) override {
        Fire(vbide::ids::VBComponentsEvents::ItemRemoved, p);
    }
    void ItemRenamed(const env::VBProjectRef& p, std::string_view oldName) override {
        std::vector<VARIANT> arguments{ObjectArgument(ProjectObjectFor(context_, p)),
                                       StringArgument(oldName)};
        point_.Fire(vbide::ids::VBComponentsEvents::ItemRenamed, arguments);
        Clear(arguments);
    }
    void ItemActivated(const env::VBProjectRef& p) override {
        Fire(vbide::ids::VBProjectsEvents::ItemActivated, p);
    }

  private:
    void Fire(DISPID id, const env::VBProjectRef& project) {
        std::vector<VARIANT> arguments{ObjectArgument(ProjectObjectFor(context_, project))};
        point_.Fire(id, arguments);
        Clear(arguments);
    }
    HostContext& context_;
    ConnectionPoint& point_;
};

class ComponentsBridge final : public env::VBComponentsEventsSink {
  public:
    ComponentsBridge(HostContext& context, ConnectionPoint& point)
        : context_(context), point_(point) {}
    void ItemAdded(const env::VBComponentRef& c) override {
        Fire(vbide::ids::VBComponentsEvents::ItemAdded, c);
    }
    void ItemRemoved(const env::VBComponentRef& c) override {
        Fire(vbide::ids::VBComponentsEvents::ItemRemoved, c);
    }
    void ItemRenamed(const env::VBComponentRef& c, std::string_view oldName) override {
        std::vector<VARIANT> arguments{ObjectArgument(ComponentObjectFor(context_, c)),
                                       StringArgument(oldName)};
        point_.Fire(vbide::ids::VBComponentsEvents::ItemRenamed, arguments);
        Clear(arguments);
    }
    void ItemSelected(const env::VBComponentRef& c) override {
        Fire(vbide::ids::VBComponentsEvents::ItemSelected, c);
    }
    void ItemActivated(const env::VBComponentRef& c) override {
        Fire(vbide::ids::VBComponentsEvents::ItemActivated, c);
    }
    void ItemReloaded(const env::VBComponentRef& c) override {
        Fire(vbide::ids::VBComponentsEvents::ItemReloaded, c);
    }

  private:
    void Fire(DISPID id, const env::VBComponentRef& component) {
        std::vector<VARIANT> arguments{ObjectArgument(ComponentObjectFor(context_, component))};
        point_.Fire(id, arguments);
        Clear(arguments);
    }
    HostContext& context_;
    ConnectionPoint& point_;
};

}  // namespace

// ---- the connection point ----

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IConnectionPoint) return E_NOINTERFACE;
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

// The point lives inside its source object and keeps it alive while it is held.
ULONG ConnectionPoint::AddRef() noexcept {
    return owner_.AddRef();
}

ULONG ConnectionPoint::Release() noexcept {
    return owner_.Release();
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* iid) noexcept {
    if (iid == nullptr) return E_POINTER;
    *iid = events_;
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(
    IConnectionPointContainer** container) noexcept {
    if (container == nullptr) return E_POINTER;
    *container = &owner_;
    owner_.AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) noexcept {
    if (cookie != nullptr) *cookie = 0;
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    owner_.RecordCall(L"Advise", {});
    ComPtr<IDispatch> dispatch = ComPtr<IUnknown>(sink).As<IDispatch>(events_);
    if (!dispatch) dispatch = ComPtr<IUnknown>(sink).As<IDispatch>(IID_IDispatch);
    if (!dispatch) return CONNECT_E_CANNOTCONNECT;
    try {
        sinks_.push_back({++lastCookie_, dispatch});
        if (sinks_.size() == 1) owner_.OnFirstAdvise();
    } catch (...) {
        return E_OUTOFMEMORY;
    }
    *cookie = lastCookie_;
    return S_OK;
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) noexcept {
    owner_.RecordCall(L"Unadvise", {std::to_string(cookie)});
    const auto found = std::find_if(sinks_.begin(), sinks_.end(),
                                    [&](const Sink& s) { return s.cookie == cookie; });
    if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
    // Keeps this object alive while the last sink goes, which may release it.
    ComPtr<IDispatch> keep(&owner_);
    sinks_.erase(found);
    if (sinks_.empty()) owner_.OnLastUnadvise();
    return S_OK;
}

// No caller of the IDE enumerates its sinks; COM allows a point to refuse.
HRESULT ConnectionPoint::EnumConnections(IEnumConnections** connections) noexcept {
    if (connections != nullptr) *connections = nullptr;
    return E_NOTIMPL;
}

void ConnectionPoint::Fire(DISPID id, std::vector<VARIANT>& arguments) {
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    const std::vector<Sink> snapshot = sinks_;
    // A sink may unadvise and so release the source while the event goes round.
    const ComPtr<IDispatch> keep(static_cast<IDispatch*>(&owner_));
    for (const Sink& sink : snapshot) {
        EXCEPINFO exception{};
        sink.sink->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr,
                          &exception, nullptr);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
    }
}

void FireClick(ConnectionPoint& point, IDispatch* control, bool& handled, bool& cancelDefault) {
    VARIANT_BOOL handledFlag = handled ? VARIANT_TRUE : VARIANT_FALSE;
    VARIANT_BOOL cancelFlag = cancelDefault ? VARIANT_TRUE : VARIANT_FALSE;
    std::vector<VARIANT> arguments(3);
    for (VARIANT& argument : arguments)
        VariantInit(&argument);
    arguments[0].vt = VT_DISPATCH;
    arguments[0].pdispVal = control;
    arguments[1].vt = VT_BOOL | VT_BYREF;
    arguments[1].pboolVal = &handledFlag;
    arguments[2].vt = VT_BOOL | VT_BYREF;
    arguments[2].pboolVal = &cancelFlag;
    point.Fire(vbide::ids::CommandBarControlEvents::Click,
               arguments);  // nothing here to clear: all borrowed
    handled = handledFlag != VARIANT_FALSE;
    cancelDefault = cancelFlag != VARIANT_FALSE;
}

// ---- sources ----

EventSourceObject::EventSourceObject(std::shared_ptr<HostContext> context,
                                     InterfaceInfo interfaceInfo, const IID& events)
    : DispatchObject(std::move(context), interfaceInfo, {}), point_(*this, events) {}

void EventSourceObject::Run(DISPID, const Call&) {
    throw VbError(438, "Invoke", "Object doesn't support this property or method");
}

void* EventSourceObject::QueryOther(REFIID iid) noexcept {
    if (iid == IID_IConnectionPointContainer) return static_cast<IConnectionPointContainer*>(this);
    return nullptr;
}

// One connection point, found by its interface; no caller here enumerates them.
HRESULT EventSourceObject::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    if (points != nullptr) *points = nullptr;
    return E_NOTIMPL;
}

HRESULT EventSourceObject::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    LPOLESTR text = nullptr;
    if (SUCCEEDED(StringFromIID(iid, &text))) {
        RecordCall(L"FindConnectionPoint", {windows::WideToUtf8(text)});
        CoTaskMemFree(text);
    }
    IID events{};
    point_.GetConnectionInterface(&events);
    if (iid != events) return CONNECT_E_NOCONNECTION;
    *point = &point_;
    point_.AddRef();
    return S_OK;
}

const InterfaceInfo ProjectsEventsObject::kInterface = {L"VBProjectsEvents",
                                                        vbide::kIidVBProjectsEventsClass};

ProjectsEventsObject::ProjectsEventsObject(std::shared_ptr<HostContext> context,
                                           std::shared_ptr<env::VBProjectsEvents> source)
    : EventSourceObject(std::move(context), kInterface, vbide::ids::DIID_VBProjectsEvents),
      source_(std::move(source)) {}

ProjectsEventsObject::~ProjectsEventsObject() {
    OnLastUnadvise();
}

void ProjectsEventsObject::OnFirstAdvise() {
    cookie_ = source_->Advise(std::make_shared<ProjectsBridge>(Context(), Point()));
}

void ProjectsEventsObject::OnLastUnadvise() {
    source_->Unadvise(std::exchange(cookie_, 0));
}

const InterfaceInfo ComponentsEventsObject::kInterface = {L"VBComponentsEvents",
                                                          vbide::kIidVBComponentsEventsClass};

ComponentsEventsObject::ComponentsEventsObject(std::shared_ptr<HostContext> context,
                                               std::shared_ptr<env::VBComponentsEvents> source)
    : EventSourceObject(std::move(context), kInterface, vbide::ids::DIID_VBComponentsEvents),
      source_(std::move(source)) {}

ComponentsEventsObject::~ComponentsEventsObject() {
    OnLastUnadvise();
}

void ComponentsEventsObject::OnFirstAdvise() {
    cookie_ = source_->Advise(std::make_shared<ComponentsBridge>(Context(), Point()));
}

void ComponentsEventsObject::OnLastUnadvise() {
    source_->Unadvise(std::exchange(cookie_, 0));
}

const InterfaceInfo CommandBarEventsObject::kInterface = {L"CommandBarEvents",
                                                          vbide::kIidCommandBarEventsClass};

CommandBarEventsObject::CommandBarEventsObject(std::shared_ptr<HostContext> context,
                                               BarControlRef control)
    : EventSourceObject(std::move(context), kInterface, vbide::ids::DIID_CommandBarControlEvents),
      control_(std::move(control)) {
    Context().AddClickSource(control_.get(), &Point());
}

CommandBarEventsObject::~CommandBarEventsObject() {
    Context().RemoveClickSource(&Point());
}

// ---- Events ----

namespace {
constexpr Member kEventsMembers[] = {
    {L"VBProjectsEvents", vbide::members::Events::VBProjectsEvents.id, MemberKind::Property},
    {L"VBComponentsEvents", vbide::members::Events::VBComponentsEvents.id, MemberKind::Property},
    {L"CommandBarEvents", vbide::members::Events::CommandBarEvents.id, MemberKind::Property},
};
}  // namespace

const InterfaceInfo EventsObject::kInterface = {L"Events", vbide::ids::IID_Events};

EventsObject::EventsObject(std::shared_ptr<HostContext> context,
                           std::shared_ptr<env::Events> events)
    : DispatchObject(std::move(context), kInterface, kEventsMembers), events_(std::move(events)) {}

void* EventsObject::QueryOther(REFIID iid) noexcept {
    // Events2 adds build events to the same object; its first members are these.
    if (iid == vbide::kIidEvents2) return static_cast<IDispatch*>(this);
    return nullptr;
}

void EventsObject::Run(DISPID id, const Call& call) {
    switch (id) {
        case vbide::members::Events::VBProjectsEvents.id:
            call.ReturnObject(
                Context().Wrap<ProjectsEventsObject>(events_->VBProjectsEvents()).Get());
            return;
        case vbide::members::Events::VBComponentsEvents.id: {
            const env::VBProjectRef project = ProjectOf(call.args.Object(0));
            call.ReturnObject(
                Context().Wrap<ComponentsEventsObject>(events_->VBComponentsEvents(project)).Get());
            return;
        }
        case vbide::members::Events::CommandBarEvents.id: {
            const BarControlRef control = ControlOf(call.args.Object(0));
            if (!control)
                throw VbError(5, "Events.CommandBarEvents", "Invalid procedure call or argument");
            call.ReturnObject(Context().Wrap<CommandBarEventsObject>(control).Get());
            return;
        }
    }
}

}  // namespace arbolet::vb6host
