// The scripted IDE's objects and their behaviour.
#include "addin/fake_vbe.h"

#include <algorithm>

#include "windows/com/error_info.h"

namespace arbolet::windows::testing {
namespace {
namespace m = com::members;

HRESULT Raise(std::int32_t number) {
    return com::HResultFromVbNumber(number);
}

}  // namespace

FakeVbe::FakeVbe() {
    vbe_ = FakeObject::Create("VBE", transcript_);
    addIn_ = FakeObject::Create("AddIn", transcript_);
    auto commandBars = FakeObject::Create("CommandBars", transcript_);
    auto events = FakeObject::Create("Events", transcript_);
    auto windows = FakeObject::Create("Windows", transcript_);
    auto projects = FakeObject::Create("VBProjects", transcript_);
    projects->Property(m::VBProjects::Count, Variant(std::int32_t{0}));
    bars_["Add-Ins"] = MakeBar("Add-Ins");
    bars_["Standard"] = MakeBar("Standard");
    bars_["Menu Bar"] = MakeBar("Menu Bar");

    vbe_->Property(m::VBE::CommandBars, Variant(static_cast<IDispatch*>(commandBars.Get())));
    vbe_->Property(m::VBE::Events, Variant(static_cast<IDispatch*>(events.Get())));
    vbe_->Property(m::VBE::Windows, Variant(static_cast<IDispatch*>(windows.Get())));
    vbe_->Property(m::VBE::VBProjects, Variant(static_cast<IDispatch*>(projects.Get())));
    vbe_->Method(m::VBE::MainWindow,
                 [](WORD, const std::vector<Variant>&, Variant&) { return Raise(91); });

    commandBars->Method(m::CommandBars::Item,
                        [this](WORD, const std::vector<Variant>& args, Variant& result) {
                            auto bar = bars_.find(args.at(0).ToUtf8().value_or(""));
                            if (bar == bars_.end()) return Raise(5);
                            result = Variant(static_cast<IDispatch*>(bar->second.Get()));
                            return S_OK;
                        });
    events->Method(m::Events::CommandBarEvents,
                   [this](WORD, const std::vector<Variant>& args, Variant& result) {
                       ComPtr<FakeObject> control = FakeObject::From(args.at(0));
                       if (!control) return Raise(13);
                       ComPtr<FakeObject>& source = clickSources_[control.Get()];
                       if (!source) {
                           source = FakeObject::Create("CommandBarEvents", transcript_);
                           source->AddEvents(com::ids::DIID_CommandBarControlEvents);
                       }
                       result = Variant(static_cast<IDispatch*>(source.Get()));
                       return S_OK;
                   });
    windows->Method(m::Windows::CreateToolWindow,
                    [this](WORD, const std::vector<Variant>& args, Variant& result) {
                        if (args.size() != 5) return Raise(450);
                        ++toolWindowsCreated_;
                        toolWindow_ = FakeObject::Create("Window", transcript_);
                        toolWindow_->Property(m::Window::Visible, Variant(false));
                        const VARIANT& document = *args[4].Get();
                        if (document.vt == (VT_DISPATCH | VT_BYREF) && document.ppdispVal) {
                            *document.ppdispVal = nullptr;
                        }
                        result = Variant(static_cast<IDispatch*>(toolWindow_.Get()));
                        return S_OK;
                    });
}

ComPtr<FakeObject> FakeVbe::MakeBar(const std::string& name) {
    auto bar = FakeObject::Create("CommandBar", transcript_);
    auto controls = FakeObject::Create("CommandBarControls", transcript_);
    bar->Property(m::CommandBar::Name, Variant(name));
    bar->Property(m::CommandBar::Controls, Variant(static_cast<IDispatch*>(controls.Get())));
    controls->Method(m::CommandBarControls::Count,
                     [this, name](WORD, const std::vector<Variant>&, Variant& result) {
                         result = Variant(static_cast<std::int32_t>(controls_[name].size()));
                         return S_OK;
                     });
    controls->Method(m::CommandBarControls::Item,
                     [this, name](WORD, const std::vector<Variant>& args, Variant& result) {
                         const auto& list = controls_[name];
                         const std::int32_t index = args.at(0).ToInt32().value_or(0);
                         if (index < 1 || index > static_cast<std::int32_t>(list.size())) {
                             return Raise(9);
                         }
                         result = Variant(static_cast<IDispatch*>(list[index - 1].Get()));
                         return S_OK;
                     });
    controls->Method(m::CommandBarControls::Add,
                     [this, name](WORD, const std::vector<Variant>&, Variant& result) {
                         ComPtr<FakeObject> control = MakeControl(name);
                         controls_[name].push_back(control);
                         result = Variant(static_cast<IDispatch*>(control.Get()));
                         return S_OK;
                     });
    return bar;
}

ComPtr<FakeObject> FakeVbe::MakeControl(const std::string& bar) {
    auto control = FakeObject::Create("CommandBarButton", transcript_);
    namespace c = m::CommandBarControl;
    control->Property(c::Caption, Variant(""));
    for (const auto* member : {&c::Visible, &c::Enabled})
        control->Property(*member, Variant(true));
    for (const auto* member : {&c::OnAction, &c::Tag, &c::TooltipText}) {
        control->Property(*member, Variant(""));
    }
    control->Property(m::CommandBarButton::Style, Variant(std::int32_t{0}));
    control->Property(m::CommandBarButton::FaceId, Variant(std::int32_t{0}));
    FakeObject* self = control.Get();
    control->Method(c::Delete, [this, bar, self](WORD, const std::vector<Variant>&, Variant&) {
        auto& list = controls_[bar];
        list.erase(std::remove_if(list.begin(), list.end(),
                                  [self](const auto& item) { return item.Get() == self; }),
                   list.end());
        return S_OK;
    });
    return control;
}

const std::vector<ComPtr<FakeObject>>& FakeVbe::Controls(const std::string& bar) const {
    static const std::vector<ComPtr<FakeObject>> none;
    auto found = controls_.find(bar);
    return found == controls_.end() ? none : found->second;
}

ComPtr<FakeObject> FakeVbe::ClickSource(const ComPtr<FakeObject>& control) const {
    auto found = clickSources_.find(control.Get());
    return found == clickSources_.end() ? ComPtr<FakeObject>() : found->second;
}

void FakeVbe::Click(const ComPtr<FakeObject>& control) {
    ComPtr<FakeObject> source = ClickSource(control);
    if (!source) return;
    VARIANT_BOOL handled = VARIANT_FALSE;
    VARIANT_BOOL cancel = VARIANT_FALSE;
    VARIANT handledArg;
    VariantInit(&handledArg);
    handledArg.vt = VT_BOOL | VT_BYREF;
    handledArg.pboolVal = &handled;
    VARIANT cancelArg = handledArg;
    cancelArg.pboolVal = &cancel;
    source->Raise(com::ids::DIID_CommandBarControlEvents, com::ids::CommandBarControlEvents::Click,
                  {Variant(static_cast<IDispatch*>(control.Get())), Variant::Copy(handledArg),
                   Variant::Copy(cancelArg)});
}

std::vector<std::string> FakeVbe::CallsStartingWith(const std::string& prefix) const {
    std::vector<std::string> lines;
    for (const std::string& line : *transcript_) {
        if (line.rfind(prefix, 0) == 0) lines.push_back(line);
    }
    return lines;
}

}  // namespace arbolet::windows::testing
