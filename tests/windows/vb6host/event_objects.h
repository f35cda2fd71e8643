// The event sources the IDE's Events object hands out (VBProjectsEvents, VBComponentsEvents,
// CommandBarEvents): COM objects with one connection point each, which raise the IDE's events
// on every advised sink through IDispatch::Invoke, arguments in reverse order as COM passes them.
#pragma once

#include <ocidl.h>

#include <memory>
#include <vector>

#include "environment/vbide.h"
#include "vb6host/command_bar_model.h"
#include "vb6host/dispatch_object.h"

namespace arbolet::vb6host {

class EventSourceObject;

class ConnectionPoint final : public IConnectionPoint {
  public:
    ConnectionPoint(EventSourceObject& owner, const IID& events) : owner_(owner), events_(events) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) noexcept override;
    HRESULT STDMETHODCALLTYPE
    GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) noexcept override;

    std::size_t SinkCount() const { return sinks_.size(); }
    // Raises an event on every sink advised now; `arguments` in the event's declared order.
    // A sink that fails does not keep the event from the others.
    void Fire(DISPID id, std::vector<VARIANT>& arguments);

  private:
    struct Sink {
        DWORD cookie;
        ComPtr<IDispatch> sink;
    };
    EventSourceObject& owner_;
    IID events_;
    std::vector<Sink> sinks_;
    DWORD lastCookie_ = 0;
};

class EventSourceObject : public DispatchObject, public IConnectionPointContainer {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        return DispatchObject::QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return DispatchObject::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return DispatchObject::Release(); }
    HRESULT STDMETHODCALLTYPE
    EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid,
                                                  IConnectionPoint** point) noexcept override;

    ConnectionPoint& Point() { return point_; }
    using DispatchObject::RecordCall;

    // The first sink came, or the last one went.
    virtual void OnFirstAdvise() {}
    virtual void OnLastUnadvise() {}

  protected:
    EventSourceObject(std::shared_ptr<HostContext> context, InterfaceInfo interfaceInfo,
                      const IID& events);
    void Run(DISPID id, const Call& call) override;
    void* QueryOther(REFIID iid) noexcept override;

  private:
    ConnectionPoint point_;
};

class ProjectsEventsObject final : public EventSourceObject {
  public:
    static const InterfaceInfo kInterface;
    ProjectsEventsObject(std::shared_ptr<HostContext> context,
                         std::shared_ptr<env::VBProjectsEvents> source);
    ~ProjectsEventsObject() override;
    void OnFirstAdvise() override;
    void OnLastUnadvise() override;

  private:
    std::shared_ptr<env::VBProjectsEvents> source_;
    env::VBProjectsEvents::Cookie cookie_ = 0;
};

class ComponentsEventsObject final : public EventSourceObject {
  public:
    static const InterfaceInfo kInterface;
    ComponentsEventsObject(std::shared_ptr<HostContext> context,
                           std::shared_ptr<env::VBComponentsEvents> source);
    ~ComponentsEventsObject() override;
    void OnFirstAdvise() override;
    void OnLastUnadvise() override;

  private:
    std::shared_ptr<env::VBComponentsEvents> source_;
    env::VBComponentsEvents::Cookie cookie_ = 0;
};

class CommandBarEventsObject final : public EventSourceObject {
  public:
    static const InterfaceInfo kInterface;
    CommandBarEventsObject(std::shared_ptr<HostContext> context, BarControlRef control);
    ~CommandBarEventsObject() override;

  private:
    BarControlRef control_;
};

// The IDE's Events object.
class EventsObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    EventsObject(std::shared_ptr<HostContext> context, std::shared_ptr<env::Events> events);

  protected:
    void Run(DISPID id, const Call& call) override;
    void* QueryOther(REFIID iid) noexcept override;

  private:
    std::shared_ptr<env::Events> events_;
};

// Raises Click on the control's sinks; `handled` and `cancelDefault` as the sinks left them.
void FireClick(ConnectionPoint& point, IDispatch* control, bool& handled, bool& cancelDefault);

}  // namespace arbolet::vb6host
