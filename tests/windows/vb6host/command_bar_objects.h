// The Office 97 command bar objects the IDE's VBE.CommandBars returns (CommandBars,
// CommandBar, CommandBarControls, CommandBarButton, CommandBarPopup), in front of the host's
// command bar model.
#pragma once

#include <memory>

#include "vb6host/command_bar_model.h"
#include "vb6host/dispatch_object.h"

namespace arbolet::vb6host {

class CommandBarsObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    CommandBarsObject(std::shared_ptr<HostContext> context, std::shared_ptr<CommandBarModel> model);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<CommandBarModel> model_;
};

class CommandBarObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    CommandBarObject(std::shared_ptr<HostContext> context, CommandBarRef bar);
    std::string Describe() const override;

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    CommandBarRef bar_;
};

class ControlsObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    ControlsObject(std::shared_ptr<HostContext> context, std::shared_ptr<ControlList> controls);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<ControlList> controls_;
};

// A button or a popup: the members of CommandBarControl, and those of its own kind.
class ControlObject : public DispatchObject {
  public:
    const BarControlRef& Model() const { return control_; }
    std::string Describe() const override;

  protected:
    ControlObject(std::shared_ptr<HostContext> context, InterfaceInfo interfaceInfo,
                  std::span<const Member> members, BarControlRef control);
    void Run(DISPID id, const Call& call) override;
    void* QueryOther(REFIID iid) noexcept override;
    // Members only this kind of control has; false when the DISPID is not one of them.
    virtual bool RunOwn(DISPID id, const Call& call) = 0;

    BarControlRef control_;
};

class ButtonObject final : public ControlObject {
  public:
    static const InterfaceInfo kInterface;
    ButtonObject(std::shared_ptr<HostContext> context, BarControlRef control);

  protected:
    bool RunOwn(DISPID id, const Call& call) override;
};

class PopupObject final : public ControlObject {
  public:
    static const InterfaceInfo kInterface;
    PopupObject(std::shared_ptr<HostContext> context, BarControlRef control);

  protected:
    bool RunOwn(DISPID id, const Call& call) override;
};

ComPtr<IDispatch> CommandBarsObjectFor(HostContext& context);
ComPtr<IDispatch> ControlObjectFor(HostContext& context, const BarControlRef& control);
// The control behind an object an add-in hands back; nullptr for anything else.
BarControlRef ControlOf(IDispatch* object);

}  // namespace arbolet::vb6host
