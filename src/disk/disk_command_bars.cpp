// The command bars of projects on disk (see disk_command_bars.h).
#include "disk/disk_command_bars.h"

#include <functional>
#include <string>
#include <vector>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/disk_environment.h"
#include "disk/disk_objects.h"
#include "disk/new_component.h"

namespace arbolet::disk {
namespace {

// Menus are found by caption as shown, the accelerator's "&" and the letter case aside.
std::string PlainCaption(std::string_view caption) {
    std::string plain;
    for (const char c : caption) {
        if (c != '&') plain += c;
    }
    return text::ToLower(plain);
}

class DiskControls;

class DiskControl final : public env::CommandBarControl {
  public:
    DiskControl(std::string caption, std::function<bool()> enabled, std::function<void()> action,
                std::weak_ptr<DiskControls> parent);

    std::string Caption() const override { return caption_; }
    void SetCaption(std::string_view caption) override { caption_ = caption; }
    bool Enabled() const override { return enabledRule_ ? enabledRule_() : enabled_; }
    // A state set by hand replaces the rule, as a customised menu would.
    void SetEnabled(bool enabled) override {
        enabledRule_ = nullptr;
        enabled_ = enabled;
    }
    std::int32_t FaceId() const override { return faceId_; }
    void SetFaceId(std::int32_t faceId) override { faceId_ = faceId; }
    std::string OnAction() const override { return onAction_; }
    void SetOnAction(std::string_view action) override { onAction_ = action; }
    std::string Tag() const override { return tag_; }
    void SetTag(std::string_view tag) override { tag_ = tag; }
    // A disabled control does nothing, as a click on a greyed item.
    void Execute() override {
        if (Enabled() && action_) action_();
    }
    void Delete() override;
    std::shared_ptr<env::CommandBarControls> Controls() const override;

    std::shared_ptr<DiskControls> children;

  private:
    std::string caption_;
    std::function<bool()> enabledRule_;
    std::function<void()> action_;
    std::weak_ptr<DiskControls> parent_;
    bool enabled_ = true;
    std::int32_t faceId_ = 0;
    std::string onAction_;
    std::string tag_;
};

class DiskControls final : public env::CommandBarControls,
                           public std::enable_shared_from_this<DiskControls> {
  public:
    std::int32_t Count() const override { return static_cast<std::int32_t>(items.size()); }
    env::CommandBarControlRef Item(std::int32_t index) const override {
        if (index < 1 || index > Count()) env::enverr::RaiseNotInCollection("Controls.Item");
        return items[static_cast<std::size_t>(index - 1)];
    }
    env::CommandBarControlRef Item(std::string_view caption) const override {
        const std::string wanted = PlainCaption(caption);
        for (const auto& control : items) {
            if (PlainCaption(control->Caption()) == wanted) return control;
        }
        env::enverr::RaiseNotInCollection("Controls.Item");
    }
    env::CommandBarControlRef Add(env::ControlType type, std::optional<std::int32_t> before,
                                  bool) override {
        auto control = std::make_shared<DiskControl>("", nullptr, nullptr, weak_from_this());
        if (type == env::ControlType::Popup) control->children = std::make_shared<DiskControls>();
        const auto at = before && *before >= 1 && *before <= Count() ? items.begin() + (*before - 1)
                                                                     : items.end();
        items.insert(at, control);
        return control;
    }

    // Adds a control with its rule and action; a popup when it gets children.
    std::shared_ptr<DiskControl> Put(std::string caption, std::function<bool()> enabled = nullptr,
                                     std::function<void()> action = nullptr) {
        items.push_back(std::make_shared<DiskControl>(std::move(caption), std::move(enabled),
                                                      std::move(action), weak_from_this()));
        return items.back();
    }
    std::shared_ptr<DiskControl> PutMenu(std::string caption) {
        auto menu = Put(std::move(caption));
        menu->children = std::make_shared<DiskControls>();
        return menu;
    }

    std::vector<std::shared_ptr<DiskControl>> items;
};

DiskControl::DiskControl(std::string caption, std::function<bool()> enabled,
                         std::function<void()> action, std::weak_ptr<DiskControls> parent)
    : caption_(std::move(caption)),
      enabledRule_(std::move(enabled)),
      action_(std::move(action)),
      parent_(std::move(parent)) {}

void DiskControl::Delete() {
    if (const auto parent = parent_.lock()) {
        std::erase_if(parent->items, [this](const auto& item) { return item.get() == this; });
    }
}

std::shared_ptr<env::CommandBarControls> DiskControl::Controls() const {
    return children;
}

class DiskCommandBar final : public env::CommandBar {
  public:
    explicit DiskCommandBar(std::string name) : name_(std::move(name)) {}
    std::string Name() const override { return name_; }
    std::shared_ptr<env::CommandBarControls> Controls() const override { return controls; }

    std::shared_ptr<DiskControls> controls = std::make_shared<DiskControls>();

  private:
    std::string name_;
};

class DiskCommandBars final : public env::CommandBars {
  public:
    std::int32_t Count() const override { return static_cast<std::int32_t>(bars.size()); }
    env::CommandBarRef Item(std::string_view name) const override {
        for (const auto& bar : bars) {
            if (text::ToLower(bar->Name()) == text::ToLower(name)) return bar;
        }
        env::enverr::RaiseNotInCollection("CommandBars.Item");
    }
    env::CommandBarRef Item(std::int32_t index) const override {
        if (index < 1 || index > Count()) env::enverr::RaiseNotInCollection("CommandBars.Item");
        return bars[static_cast<std::size_t>(index - 1)];
    }

    std::vector<std::shared_ptr<DiskCommandBar>> bars;
};

// What the rules and actions read: the environment's active project and selected component.
class Rules {
  public:
    explicit Rules(std::weak_ptr<DiskEnvironment> environment)
        : environment_(std::move(environment)) {}

    std::shared_ptr<DiskProject> Active() const {
        const auto environment = environment_.lock();
        return environment ? std::dynamic_pointer_cast<DiskProject>(environment->ActiveVBProject())
                           : nullptr;
    }
    env::VBComponentRef Selected() const {
        const auto environment = environment_.lock();
        return environment ? environment->SelectedVBComponent() : nullptr;
    }
    bool HasActive() const { return Active() != nullptr; }
    bool SelectedHasCode() const {
        const auto component = Selected();
        return component && component->CodeModule() != nullptr;
    }
    bool SelectedHasDesigner() const {
        const auto component = Selected();
        return component && HasDesigner(component->Type());
    }
    bool CanAdd(NewComponentKind kind) const {
        const auto project = Active();
        return project && CanAddNewComponent(*project, kind);
    }
    void Add(NewComponentKind kind) const {
        const auto project = Active();
        const auto environment = environment_.lock();
        if (!project || !environment) env::enverr::RaiseObjectNotSet("VBE.ActiveVBProject");
        AddNewComponent(*project, kind, environment->TakeNextComponentName());
    }
    void Save() const {
        if (const auto environment = environment_.lock()) environment->Save();
    }

  private:
    std::weak_ptr<DiskEnvironment> environment_;
};

// Showing a designer or code window is the front end's: the commands go through it.
[[noreturn]] void NoWindows() {
    env::enverr::RaiseNotSupported("CommandBarControl.Execute");
}

void FillMenuBar(DiskControls& bar, const std::shared_ptr<Rules>& rules) {
    const auto file = bar.PutMenu("&File")->children;
    file->Put(
        "Save Project", [rules] { return rules->HasActive(); }, [rules] { rules->Save(); });

    const auto view = bar.PutMenu("&View")->children;
    view->Put(
        "Code", [rules] { return rules->SelectedHasCode(); }, NoWindows);
    view->Put(
        "Object", [rules] { return rules->SelectedHasDesigner(); }, NoWindows);

    const auto project = bar.PutMenu("&Project")->children;
    const auto add = [&](std::string caption, std::function<bool()> enabled,
                         NewComponentKind kind) {
        project->Put(std::move(caption), std::move(enabled), [rules, kind] { rules->Add(kind); });
    };
    const auto always = [rules] { return rules->HasActive(); };
    add("Add Form", always, NewComponentKind::Form);
    add(
        "Add MDI Form", [rules] { return rules->CanAdd(NewComponentKind::MDIForm); },
        NewComponentKind::MDIForm);
    add("Add Module", always, NewComponentKind::Module);
    add("Add Class Module", always, NewComponentKind::Class);
    add("Add User Control", always, NewComponentKind::UserControl);
    add("Add Property Page", always, NewComponentKind::PropertyPage);
    add(
        "Add User Document", [rules] { return rules->CanAdd(NewComponentKind::UserDocument); },
        NewComponentKind::UserDocument);

    bar.PutMenu("&Add-Ins");
}

}  // namespace

std::shared_ptr<env::CommandBars> MakeDiskCommandBars(std::weak_ptr<DiskEnvironment> environment) {
    const auto rules = std::make_shared<Rules>(std::move(environment));
    auto bars = std::make_shared<DiskCommandBars>();
    for (const char* name : {"Menu Bar", "Add-Ins", "Standard"})
        bars->bars.push_back(std::make_shared<DiskCommandBar>(name));
    FillMenuBar(*bars->bars[0]->controls, rules);
    return bars;
}

std::shared_ptr<env::CommandBars> DiskEnvironment::CommandBars() const {
    if (!commandBars_) {
        commandBars_ =
            MakeDiskCommandBars(std::const_pointer_cast<DiskEnvironment>(shared_from_this()));
    }
    return commandBars_;
}

std::optional<std::string> DiskEnvironment::TakeNextComponentName() {
    return std::exchange(nextComponentName_, std::nullopt);
}

}  // namespace arbolet::disk
