// The IDE's menus and toolbars (Office command bars) as the environment's command bars.
#include "windows/ide/com_objects.h"

namespace arbolet::windows::ide {
namespace {

namespace m = com::members;
using com::Dispatch;
using com::Variant;

class ComCommandBarControls;

class ComCommandBarControl final : public env::CommandBarControl {
  public:
    explicit ComCommandBarControl(Dispatch control) : control_(std::move(control)) {}
    std::string Caption() const override { return control_.GetText(m::CommandBarControl::Caption); }
    void SetCaption(std::string_view caption) override {
        control_.Put(m::CommandBarControl::Caption, Variant(caption));
    }
    bool Enabled() const override { return control_.GetBool(m::CommandBarControl::Enabled); }
    void SetEnabled(bool enabled) override {
        control_.Put(m::CommandBarControl::Enabled, Variant(enabled));
    }
    std::int32_t FaceId() const override { return control_.GetInt(m::CommandBarButton::FaceId); }
    void SetFaceId(std::int32_t faceId) override {
        control_.Put(m::CommandBarButton::FaceId, Variant(faceId));
    }
    std::string OnAction() const override {
        return control_.GetText(m::CommandBarControl::OnAction);
    }
    void SetOnAction(std::string_view action) override {
        control_.Put(m::CommandBarControl::OnAction, Variant(action));
    }
    std::string Tag() const override { return control_.GetText(m::CommandBarControl::Tag); }
    void SetTag(std::string_view tag) override {
        control_.Put(m::CommandBarControl::Tag, Variant(tag));
    }
    void Execute() override { control_.Call(m::CommandBarControl::Execute); }
    // accDoDefaultAction with its optional child omitted (the control itself).
    void DoDefaultAction() override {
        control_.Call(m::CommandBarControl::accDoDefaultAction, {Variant::Missing()});
    }
    void Delete() override { control_.Call(m::CommandBarControl::Delete); }
    std::shared_ptr<env::CommandBarControls> Controls() const override;
    const Dispatch& Object() const { return control_; }

  private:
    Dispatch control_;
};

env::CommandBarControlRef WrapControl(const Dispatch& control) {
    return control ? std::make_shared<ComCommandBarControl>(control) : nullptr;
}

class ComCommandBarControls final : public env::CommandBarControls {
  public:
    explicit ComCommandBarControls(Dispatch controls) : controls_(std::move(controls)) {}
    std::int32_t Count() const override { return controls_.GetInt(m::CommandBarControls::Count); }
    env::CommandBarControlRef Item(std::int32_t index) const override {
        return WrapControl(controls_.GetObject(m::CommandBarControls::Item, {Variant(index)}));
    }
    env::CommandBarControlRef Item(std::string_view caption) const override {
        return WrapControl(controls_.GetObject(m::CommandBarControls::Item, {Variant(caption)}));
    }
    env::CommandBarControlRef Add(env::ControlType type, std::optional<std::int32_t> before,
                                  bool temporary) override {
        const Variant position = before ? Variant(*before) : Variant::Missing();
        return WrapControl(
            controls_.GetObject(m::CommandBarControls::Add,
                                {Variant(static_cast<std::int32_t>(type)), Variant::Missing(),
                                 Variant::Missing(), position, Variant(temporary)}));
    }

  private:
    Dispatch controls_;
};

std::shared_ptr<env::CommandBarControls> ComCommandBarControl::Controls() const {
    // Only popups have controls; a button answers that it has no such member.
    const std::int32_t type = control_.GetInt(m::CommandBarControl::Type);
    if (type != com::ids::kControlPopup) return nullptr;
    Dispatch controls = control_.GetObject(m::CommandBarPopup::Controls);
    return controls ? std::make_shared<ComCommandBarControls>(controls) : nullptr;
}

class ComCommandBar final : public env::CommandBar {
  public:
    explicit ComCommandBar(Dispatch bar) : bar_(std::move(bar)) {}
    std::string Name() const override { return bar_.GetText(m::CommandBar::Name); }
    std::shared_ptr<env::CommandBarControls> Controls() const override {
        Dispatch controls = bar_.GetObject(m::CommandBar::Controls);
        return controls ? std::make_shared<ComCommandBarControls>(controls) : nullptr;
    }

  private:
    Dispatch bar_;
};

class ComCommandBars final : public env::CommandBars {
  public:
    explicit ComCommandBars(Dispatch bars) : bars_(std::move(bars)) {}
    std::int32_t Count() const override { return bars_.GetInt(m::CommandBars::Count); }
    env::CommandBarRef Item(std::string_view name) const override {
        return Wrap(bars_.GetObject(m::CommandBars::Item, {Variant(name)}));
    }
    env::CommandBarRef Item(std::int32_t index) const override {
        return Wrap(bars_.GetObject(m::CommandBars::Item, {Variant(index)}));
    }

  private:
    static env::CommandBarRef Wrap(const Dispatch& bar) {
        return bar ? std::make_shared<ComCommandBar>(bar) : nullptr;
    }
    Dispatch bars_;
};

}  // namespace

Dispatch ObjectOf(const env::CommandBarControl* control) {
    const auto* own = dynamic_cast<const ComCommandBarControl*>(control);
    return own != nullptr ? own->Object() : Dispatch();
}

std::shared_ptr<env::CommandBars> WrapCommandBars(const Dispatch& commandBars) {
    return commandBars ? std::make_shared<ComCommandBars>(commandBars) : nullptr;
}

}  // namespace arbolet::windows::ide
