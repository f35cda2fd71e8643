// Command bars, controls, buttons and popups as IDispatch objects over the host's model.
#include "vb6host/command_bar_objects.h"

#include "base/vb_error.h"
#include "vb6host/host_context.h"
#include "vb6host/ide_objects.h"
#include "vb6host/vbide_ids.h"
#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {
namespace {

constexpr auto kGet = MemberKind::Property;
constexpr auto kCall = MemberKind::Method;
// Office's creator code of its own applications ("MSO ").
constexpr std::int32_t kCreator = 0x4D534F20;

bool IsText(const VARIANT& value) {
    return value.vt == VT_BSTR || value.vt == (VT_BSTR | VT_BYREF);
}

[[noreturn]] void RaiseInvalidArgument(const char* source) {
    throw VbError(5, source, "Invalid procedure call or argument");
}

ComPtr<IDispatch> BarObjectFor(HostContext& context, const CommandBarRef& bar) {
    return context.Wrap<CommandBarObject>(bar);
}

BarControlRef ItemOfList(const ControlList& list, const VARIANT& index) {
    if (IsText(index)) {
        if (auto found = list.FindByCaption(Arguments::ToString(index))) return found;
    } else {
        const std::int32_t number = Arguments::ToLong(index);
        if (number >= 1 && static_cast<std::size_t>(number) <= list.Items().size()) {
            return list.Items()[static_cast<std::size_t>(number - 1)];
        }
    }
    RaiseInvalidArgument("CommandBarControls.Item");
}

// FindControl(Type, Id, Tag, Visible): the first control that matches every given criterion.
BarControlRef FindControl(const std::vector<CommandBarRef>& bars, const Arguments& args) {
    const auto matches = [&](const BarControl& c) {
        if (args.Has(0) && Arguments::ToLong(args.At(0)) != c.type) return false;
        if (args.Has(1) && Arguments::ToLong(args.At(1)) != c.id) return false;
        if (args.Has(2) && Arguments::ToString(args.At(2)) != c.tag) return false;
        if (args.Has(3) && Arguments::ToBool(args.At(3)) && !c.visible) return false;
        return true;
    };
    std::vector<const ControlList*> pending;
    for (const CommandBarRef& bar : bars)
        pending.push_back(bar->controls.get());
    for (std::size_t i = 0; i < pending.size(); ++i) {
        for (const BarControlRef& control : pending[i]->Items()) {
            if (matches(*control)) return control;
            if (control->subBar) pending.push_back(control->subBar->controls.get());
        }
    }
    return nullptr;
}

// ---- CommandBars ----

constexpr Member kBarsMembers[] = {
    {vbide::members::VBProjects::Item, kGet},
    {L"_NewEnum", DISPID_NEWENUM, kCall},
    {L"Application", vbide::kBarsApplication, kGet},
    {L"Creator", vbide::kBarsCreator, kGet},
    {L"ActiveMenuBar", vbide::kBarsActiveMenuBar, kGet},
    {vbide::members::CommandBars::Add, kCall},
    {vbide::members::CommandBars::Count, kGet},
    {vbide::members::CommandBars::FindControl, kCall},
    {L"Parent", vbide::kBarsParent, kGet},
};

}  // namespace

const InterfaceInfo CommandBarsObject::kInterface = {L"CommandBars", vbide::ids::IID_CommandBars};

CommandBarsObject::CommandBarsObject(std::shared_ptr<HostContext> context,
                                     std::shared_ptr<CommandBarModel> model)
    : DispatchObject(std::move(context), kInterface, kBarsMembers), model_(std::move(model)) {}

void CommandBarsObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBProjects::Item.id: {
            const VARIANT& index = call.args.At(0);
            CommandBarRef bar;
            if (IsText(index)) {
                bar = model_->FindBar(Arguments::ToString(index));
            } else {
                const std::int32_t number = Arguments::ToLong(index);
                if (number >= 1 && static_cast<std::size_t>(number) <= model_->Bars().size()) {
                    bar = model_->Bars()[static_cast<std::size_t>(number - 1)];
                }
            }
            if (!bar) RaiseInvalidArgument("CommandBars.Item");
            return call.ReturnObject(BarObjectFor(context, bar).Get());
        }
        case DISPID_NEWENUM: {
            std::vector<ComPtr<IDispatch>> items;
            for (const CommandBarRef& bar : model_->Bars())
                items.push_back(BarObjectFor(context, bar));
            return ReturnEnumerator(call, std::move(items));
        }
        case vbide::kBarsApplication:
        case vbide::kBarsParent:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kBarsCreator:
            return call.ReturnLong(kCreator);
        case vbide::kBarsActiveMenuBar:
            return call.ReturnObject(BarObjectFor(context, model_->FindBar(L"Menu Bar")).Get());
        case vbide::members::CommandBars::Add.id: {
            std::wstring name = call.args.Has(0) ? call.args.String(0) : L"Custom";
            if (model_->FindBar(name)) RaiseInvalidArgument("CommandBars.Add");
            const bool menuBar = call.args.Has(2) && call.args.Bool(2);
            auto bar = model_->AddBar(std::move(name), menuBar ? kBarMenuBar : kBarNormal);
            bar->builtIn = false;
            model_->Changed();
            return call.ReturnObject(BarObjectFor(context, bar).Get());
        }
        case vbide::members::CommandBars::Count.id:
            return call.ReturnLong(static_cast<std::int32_t>(model_->Bars().size()));
        case vbide::members::CommandBars::FindControl.id:
            return call.ReturnObject(
                ControlObjectFor(context, FindControl(model_->Bars(), call.args)).Get());
    }
}

// ---- CommandBar ----

namespace {
constexpr Member kBarMembers[] = {
    {L"Application", vbide::kBarApplication, kGet},
    {L"Creator", vbide::kBarCreator, kGet},
    {L"BuiltIn", vbide::kBarBuiltIn, kGet},
    {vbide::members::CommandBar::Controls, kGet},
    {L"Enabled", vbide::kBarEnabled, kGet},
    {L"FindControl", vbide::kBarFindControl, kCall},
    {L"Index", vbide::kBarIndex, kGet},
    {vbide::members::CommandBar::Name, kGet},
    {L"NameLocal", vbide::kBarNameLocal, kGet},
    {L"Parent", vbide::kBarParent, kGet},
    {L"Type", vbide::kBarType, kGet},
    {vbide::members::CommandBar::Visible, kGet},
    {L"accName", vbide::kAccName, kGet},
};
}  // namespace

const InterfaceInfo CommandBarObject::kInterface = {L"CommandBar", vbide::ids::IID_CommandBar};

CommandBarObject::CommandBarObject(std::shared_ptr<HostContext> context, CommandBarRef bar)
    : DispatchObject(std::move(context), kInterface, kBarMembers), bar_(std::move(bar)) {}

std::string CommandBarObject::Describe() const {
    return "CommandBar(\"" + windows::WideToUtf8(bar_->name) + "\")";
}

void CommandBarObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::kBarApplication:
        case vbide::kBarParent:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kBarCreator:
            return call.ReturnLong(kCreator);
        case vbide::kBarBuiltIn:
            return call.ReturnBool(bar_->builtIn);
        case vbide::members::CommandBar::Controls.id:
            return call.ReturnObject(context.Wrap<ControlsObject>(bar_->controls).Get());
        case vbide::kBarEnabled:
            return call.ReturnBool(true);
        case vbide::kBarFindControl:
            return call.ReturnObject(
                ControlObjectFor(context, FindControl({bar_}, call.args)).Get());
        case vbide::kBarIndex: {
            const auto& bars = context.Bars().Bars();
            const auto found = std::find(bars.begin(), bars.end(), bar_);
            return call.ReturnLong(
                found == bars.end() ? 0 : static_cast<std::int32_t>(found - bars.begin()) + 1);
        }
        case vbide::members::CommandBar::Name.id:
        case vbide::kBarNameLocal:
        case vbide::kAccName:
            return call.ReturnString(bar_->name);
        case vbide::kBarType:
            return call.ReturnLong(bar_->type);
        case vbide::members::CommandBar::Visible.id:
            if (call.isPut) {
                bar_->visible = Arguments::ToBool(call.args.Value());
                context.Bars().Changed();
                return;
            }
            return call.ReturnBool(bar_->visible);
    }
}

// ---- CommandBarControls ----

namespace {
constexpr Member kControlsMembers[] = {
    {vbide::members::VBProjects::Item, kGet},
    {L"_NewEnum", DISPID_NEWENUM, kCall},
    {L"Application", vbide::kControlsApplication, kGet},
    {L"Creator", vbide::kControlsCreator, kGet},
    {vbide::members::CommandBarControls::Add, kCall},
    {vbide::members::CommandBarControls::Count, kGet},
    {L"Parent", vbide::kControlsParent, kGet},
};
}  // namespace

const InterfaceInfo ControlsObject::kInterface = {L"CommandBarControls",
                                                  vbide::ids::IID_CommandBarControls};

ControlsObject::ControlsObject(std::shared_ptr<HostContext> context,
                               std::shared_ptr<ControlList> controls)
    : DispatchObject(std::move(context), kInterface, kControlsMembers),
      controls_(std::move(controls)) {}

void ControlsObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBProjects::Item.id:
            return call.ReturnObject(
                ControlObjectFor(context, ItemOfList(*controls_, call.args.At(0))).Get());
        case DISPID_NEWENUM: {
            std::vector<ComPtr<IDispatch>> items;
            for (const BarControlRef& control : controls_->Items())
                items.push_back(ControlObjectFor(context, control));
            return ReturnEnumerator(call, std::move(items));
        }
        case vbide::kControlsApplication:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kControlsCreator:
            return call.ReturnLong(kCreator);
        case vbide::members::CommandBarControls::Add.id: {
            const std::int32_t type = call.args.Has(0) ? call.args.Long(0) : kControlButton;
            if (type != kControlButton && type != kControlPopup) {
                RaiseInvalidArgument("CommandBarControls.Add");
            }
            std::optional<std::int32_t> before;
            if (call.args.Has(3)) before = call.args.Long(3);
            return call.ReturnObject(ControlObjectFor(context, controls_->Add(type, before)).Get());
        }
        case vbide::members::CommandBarControls::Count.id:
            return call.ReturnLong(static_cast<std::int32_t>(controls_->Items().size()));
        case vbide::kControlsParent:
            return call.ReturnObject(BarObjectFor(context, controls_->Bar()).Get());
    }
}

// ---- controls ----

namespace {

#define ARBOLET_CONTROL_MEMBERS                                                                    \
    {L"Application", vbide::kControlApplication, kGet},                                            \
        {L"Creator", vbide::kControlCreator, kGet},                                                \
        {vbide::members::CommandBarControl::BeginGroup, kGet},                                     \
        {L"BuiltIn", vbide::kControlBuiltIn, kGet},                                                \
        {vbide::members::CommandBarControl::Caption, kGet},                                        \
        {vbide::members::CommandBarControl::Delete, kCall},                                        \
        {L"DescriptionText", vbide::kControlDescriptionText, kGet},                                \
        {vbide::members::CommandBarControl::Enabled, kGet},                                        \
        {vbide::members::CommandBarControl::Execute, kCall},                                       \
        {vbide::members::CommandBarControl::Id, kGet}, {L"Index", vbide::kControlIndex, kGet},     \
        {vbide::members::CommandBarControl::OnAction, kGet},                                       \
        {L"Parent", vbide::kControlParent, kGet}, {L"Parameter", vbide::kControlParameter, kGet},  \
        {vbide::members::CommandBarControl::Tag, kGet},                                            \
        {vbide::members::CommandBarControl::TooltipText, kGet},                                    \
        {vbide::members::CommandBarControl::Type, kGet},                                           \
        {vbide::members::CommandBarControl::Visible, kGet}, {L"accName", vbide::kAccName, kGet}, { \
        L"accDoDefaultAction", vbide::members::CommandBarControl::accDoDefaultAction.id, kCall     \
    }

constexpr Member kButtonMembers[] = {
    ARBOLET_CONTROL_MEMBERS,
    {L"BuiltInFace", vbide::kButtonBuiltInFace, kGet},
    {vbide::members::CommandBarButton::FaceId, kGet},
    {L"ShortcutText", vbide::kButtonShortcutText, kGet},
    {L"State", vbide::kButtonState, kGet},
    {vbide::members::CommandBarButton::Style, kGet},
};

constexpr Member kPopupMembers[] = {
    ARBOLET_CONTROL_MEMBERS,
    {L"CommandBar", vbide::kPopupCommandBar, kGet},
    {vbide::members::CommandBarPopup::Controls, kGet},
};
#undef ARBOLET_CONTROL_MEMBERS

// Reads or writes one text property.
void TextProperty(const Call& call, std::wstring& field, CommandBarModel& model) {
    if (call.isPut) {
        field = Arguments::ToString(call.args.Value());
        model.Changed();
        return;
    }
    call.ReturnString(field);
}

void BoolProperty(const Call& call, bool& field, CommandBarModel& model) {
    if (call.isPut) {
        field = Arguments::ToBool(call.args.Value());
        model.Changed();
        return;
    }
    call.ReturnBool(field);
}

void LongProperty(const Call& call, std::int32_t& field, CommandBarModel& model) {
    if (call.isPut) {
        field = Arguments::ToLong(call.args.Value());
        model.Changed();
        return;
    }
    call.ReturnLong(field);
}

}  // namespace

ControlObject::ControlObject(std::shared_ptr<HostContext> context, InterfaceInfo interfaceInfo,
                             std::span<const Member> members, BarControlRef control)
    : DispatchObject(std::move(context), interfaceInfo, members), control_(std::move(control)) {}

std::string ControlObject::Describe() const {
    return windows::WideToUtf8(InterfaceName()) + "(\"" + windows::WideToUtf8(control_->caption) +
           "\")";
}

void* ControlObject::QueryOther(REFIID iid) noexcept {
    if (iid == vbide::ids::IID_CommandBarControl) return static_cast<IDispatch*>(this);
    return nullptr;
}

void ControlObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    BarControl& c = *control_;
    CommandBarModel& model = context.Bars();
    if (c.Deleted()) {
        throw VbError(-2147467259, windows::WideToUtf8(InterfaceName()),
                      "The control has been deleted");
    }
    switch (id) {
        case vbide::kControlApplication:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kControlCreator:
            return call.ReturnLong(kCreator);
        case vbide::members::CommandBarControl::BeginGroup.id:
            return BoolProperty(call, c.beginGroup, model);
        case vbide::kControlBuiltIn:
            return call.ReturnBool(c.builtIn);
        case vbide::members::CommandBarControl::Caption.id:
        case vbide::kAccName:
            return TextProperty(call, c.caption, model);
        case vbide::members::CommandBarControl::Delete.id: {
            const auto owner = c.owner.lock();
            owner->Remove(c);
            return;
        }
        case vbide::kControlDescriptionText:
            return TextProperty(call, c.descriptionText, model);
        case vbide::members::CommandBarControl::Enabled.id:
            if (call.isPut) return BoolProperty(call, c.enabled, model);
            return call.ReturnBool(c.Enabled());
        case vbide::members::CommandBarControl::Execute.id:
        case vbide::members::CommandBarControl::accDoDefaultAction.id:
            context.RunControl(control_);
            return;
        case vbide::members::CommandBarControl::Id.id:
            return call.ReturnLong(c.id);
        case vbide::kControlIndex: {
            const auto& items = c.owner.lock()->Items();
            const auto found = std::find(items.begin(), items.end(), control_);
            return call.ReturnLong(static_cast<std::int32_t>(found - items.begin()) + 1);
        }
        case vbide::members::CommandBarControl::OnAction.id:
            return TextProperty(call, c.onAction, model);
        case vbide::kControlParent:
            return call.ReturnObject(BarObjectFor(context, c.owner.lock()->Bar()).Get());
        case vbide::kControlParameter:
            return TextProperty(call, c.parameter, model);
        case vbide::members::CommandBarControl::Tag.id:
            return TextProperty(call, c.tag, model);
        case vbide::members::CommandBarControl::TooltipText.id:
            return TextProperty(call, c.tooltip, model);
        case vbide::members::CommandBarControl::Type.id:
            return call.ReturnLong(c.type);
        case vbide::members::CommandBarControl::Visible.id:
            return BoolProperty(call, c.visible, model);
        default:
            if (!RunOwn(id, call))
                throw VbError(438, "Invoke", "Object doesn't support this property or method");
    }
}

const InterfaceInfo ButtonObject::kInterface = {L"CommandBarButton",
                                                vbide::ids::IID_CommandBarButton};

ButtonObject::ButtonObject(std::shared_ptr<HostContext> context, BarControlRef control)
    : ControlObject(std::move(context), kInterface, kButtonMembers, std::move(control)) {}

bool ButtonObject::RunOwn(DISPID id, const Call& call) {
    BarControl& c = *control_;
    CommandBarModel& model = Context().Bars();
    switch (id) {
        case vbide::kButtonBuiltInFace:
            call.ReturnBool(c.builtIn && c.faceId == 0);
            return true;
        case vbide::members::CommandBarButton::FaceId.id:
            LongProperty(call, c.faceId, model);
            return true;
        case vbide::kButtonShortcutText:
            TextProperty(call, c.shortcutText, model);
            return true;
        case vbide::kButtonState:
            LongProperty(call, c.state, model);
            return true;
        case vbide::members::CommandBarButton::Style.id:
            LongProperty(call, c.style, model);
            return true;
    }
    return false;
}

const InterfaceInfo PopupObject::kInterface = {L"CommandBarPopup", vbide::ids::IID_CommandBarPopup};

PopupObject::PopupObject(std::shared_ptr<HostContext> context, BarControlRef control)
    : ControlObject(std::move(context), kInterface, kPopupMembers, std::move(control)) {}

bool PopupObject::RunOwn(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::kPopupCommandBar:
            call.ReturnObject(BarObjectFor(context, control_->subBar).Get());
            return true;
        case vbide::members::CommandBarPopup::Controls.id:
            call.ReturnObject(context.Wrap<ControlsObject>(control_->subBar->controls).Get());
            return true;
    }
    return false;
}

ComPtr<IDispatch> CommandBarsObjectFor(HostContext& context) {
    // The model lives in the context; the alias keeps the context alive with the object.
    const std::shared_ptr<CommandBarModel> model(context.shared_from_this(), &context.Bars());
    return context.Wrap<CommandBarsObject>(model);
}

ComPtr<IDispatch> ControlObjectFor(HostContext& context, const BarControlRef& control) {
    if (!control) return {};
    if (control->type == kControlPopup) return context.Wrap<PopupObject>(control);
    return context.Wrap<ButtonObject>(control);
}

BarControlRef ControlOf(IDispatch* object) {
    auto* control = dynamic_cast<ControlObject*>(HostObjectOf(object));
    return control ? control->Model() : nullptr;
}

}  // namespace arbolet::vb6host
