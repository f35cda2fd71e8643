// Projects, components and code over the IDE's objects.
#include "windows/ide/com_objects.h"

#include "windows/ide/com_environment.h"

namespace arbolet::windows::ide {
namespace {

namespace m = com::members;
using com::Dispatch;
using com::Variant;

class ComVBE final : public env::VBE {
  public:
    explicit ComVBE(Dispatch vbe) : vbe_(std::move(vbe)) {}
    std::shared_ptr<env::VBProjects> VBProjects() const override {
        Dispatch projects = vbe_.GetObject(m::VBE::VBProjects);
        return projects ? std::make_shared<ComVBProjects>(projects) : nullptr;
    }
    env::VBProjectRef ActiveVBProject() const override {
        return WrapProject(vbe_.GetObject(m::VBE::ActiveVBProject));
    }
    void SetActiveVBProject(const env::VBProjectRef& project) override {
        vbe_.PutRef(m::VBE::ActiveVBProject, Variant(ObjectOf(project.get()).Object()));
    }
    std::shared_ptr<env::Events> Events() const override {
        return WrapEvents(vbe_.GetObject(m::VBE::Events));
    }
    std::shared_ptr<env::CommandBars> CommandBars() const override {
        return WrapCommandBars(vbe_.GetObject(m::VBE::CommandBars));
    }
    env::VBComponentRef SelectedVBComponent() const override {
        return WrapComponent(vbe_.GetObject(m::VBE::SelectedVBComponent));
    }
    // The IDE may refuse (the property is read-only in some versions): its error goes to the
    // caller, which has a message for it.
    void SetSelectedVBComponent(const env::VBComponentRef& component) override {
        vbe_.PutRef(m::VBE::SelectedVBComponent, Variant(ObjectOf(component.get()).Object()));
    }

  private:
    Dispatch vbe_;
};

}  // namespace

std::shared_ptr<env::VBE> WrapVbe(const Dispatch& vbe) {
    return vbe ? std::make_shared<ComVBE>(vbe) : nullptr;
}

env::VBProjectRef WrapProject(const Dispatch& project) {
    return project ? std::make_shared<ComVBProject>(project) : nullptr;
}

env::VBComponentRef WrapComponent(const Dispatch& component) {
    return component ? std::make_shared<ComVBComponent>(component) : nullptr;
}

Dispatch ObjectOf(const env::VBComponent* component) {
    const auto* own = dynamic_cast<const ComVBComponent*>(component);
    return own != nullptr ? own->Object() : Dispatch();
}

Dispatch ObjectOf(const env::VBProject* project) {
    const auto* own = dynamic_cast<const ComVBProject*>(project);
    return own != nullptr ? own->Object() : Dispatch();
}

void GotoLine(const env::VBComponent& component, std::int32_t line) {
    const auto* own = dynamic_cast<const ComVBComponent*>(&component);
    if (own == nullptr) env::enverr::RaiseNotSupported("CodePane.SetSelection");
    const Dispatch module = own->Object().GetObject(m::VBComponent::CodeModule);
    if (!module) env::enverr::RaiseObjectNotSet("VBComponent.CodeModule");
    const Dispatch pane = module.GetObject(m::CodeModule::CodePane);
    if (!pane) env::enverr::RaiseObjectNotSet("CodeModule.CodePane");
    pane.Call(m::CodePane::Show);
    pane.Put(m::CodePane::TopLine, Variant(line));
    pane.Call(m::CodePane::SetSelection,
              {Variant(line), Variant(std::int32_t{1}), Variant(line), Variant(std::int32_t{1})});
}

// ---- code ----

std::int32_t ComCodeModule::CountOfLines() const {
    return module_.GetInt(m::CodeModule::CountOfLines);
}

std::string ComCodeModule::Lines(std::int32_t startLine, std::int32_t count) const {
    if (count == 0) return {};
    return module_.GetText(m::CodeModule::Lines, {Variant(startLine), Variant(count)});
}

// ---- components ----

std::string ComVBComponent::Name() const {
    return component_.GetText(m::VBComponent::Name);
}

void ComVBComponent::SetName(std::string_view name) {
    component_.Put(m::VBComponent::Name, Variant(name));
}

env::ComponentType ComVBComponent::Type() const {
    return static_cast<env::ComponentType>(component_.GetInt(m::VBComponent::Type));
}

std::int16_t ComVBComponent::FileCount() const {
    return static_cast<std::int16_t>(component_.GetInt(m::VBComponent::FileCount));
}

std::string ComVBComponent::FileNames(std::int16_t index) const {
    return component_.GetText(m::VBComponent::FileNames, {Variant(std::int32_t{index})});
}

std::string ComVBComponent::ReadProperty(std::string_view key) const {
    return component_.GetText(m::VBComponent::ReadProperty, {Variant(key)});
}

void ComVBComponent::WriteProperty(std::string_view key, std::string_view value) {
    component_.Call(m::VBComponent::WriteProperty, {Variant(key), Variant(value)});
}

std::shared_ptr<env::CodeModule> ComVBComponent::CodeModule() const {
    Dispatch module = component_.GetObject(m::VBComponent::CodeModule);
    return module ? std::make_shared<ComCodeModule>(module) : nullptr;
}

std::shared_ptr<env::VBComponents> ComVBComponent::Collection() const {
    Dispatch collection = component_.GetObject(m::VBComponent::Collection);
    return collection ? std::make_shared<ComVBComponents>(collection) : nullptr;
}

std::int32_t ComVBComponents::Count() const {
    return components_.GetInt(m::VBComponents::Count);
}

env::VBComponentRef ComVBComponents::Item(std::int32_t index) const {
    return WrapComponent(components_.GetObject(m::VBComponents::Item, {Variant(index)}));
}

env::VBComponentRef ComVBComponents::Item(std::string_view name) const {
    return WrapComponent(components_.GetObject(m::VBComponents::Item, {Variant(name)}));
}

env::VBProjectRef ComVBComponents::Parent() const {
    return WrapProject(components_.GetObject(m::VBComponents::Parent));
}

env::VBComponentRef ComVBComponents::AddFile(std::string_view fileName) {
    return WrapComponent(components_.GetObject(m::VBComponents::AddFile, {Variant(fileName)}));
}

void ComVBComponents::Remove(const env::VBComponentRef& component) {
    components_.Call(m::VBComponents::Remove, {Variant(ObjectOf(component.get()).Object())});
}

// ---- projects ----

std::string ComVBProject::Name() const {
    return project_.GetText(m::VBProject::Name);
}

void ComVBProject::SetName(std::string_view name) {
    project_.Put(m::VBProject::Name, Variant(name));
}

std::string ComVBProject::FileName() const {
    return project_.GetText(m::VBProject::FileName);
}

std::string ComVBProject::ReadProperty(std::string_view section, std::string_view key) const {
    return project_.GetText(m::VBProject::ReadProperty, {Variant(section), Variant(key)});
}

void ComVBProject::WriteProperty(std::string_view section, std::string_view key,
                                 std::string_view value) {
    project_.Call(m::VBProject::WriteProperty, {Variant(section), Variant(key), Variant(value)});
}

std::shared_ptr<env::VBComponents> ComVBProject::VBComponents() const {
    Dispatch components = project_.GetObject(m::VBProject::VBComponents);
    return components ? std::make_shared<ComVBComponents>(components) : nullptr;
}

std::shared_ptr<env::VBProjects> ComVBProject::Collection() const {
    Dispatch collection = project_.GetObject(m::VBProject::Collection);
    return collection ? std::make_shared<ComVBProjects>(collection) : nullptr;
}

std::int32_t ComVBProjects::Count() const {
    return projects_.GetInt(m::VBProjects::Count);
}

env::VBProjectRef ComVBProjects::Item(std::int32_t index) const {
    return WrapProject(projects_.GetObject(m::VBProjects::Item, {Variant(index)}));
}

env::VBProjectRef ComVBProjects::Item(std::string_view name) const {
    return WrapProject(projects_.GetObject(m::VBProjects::Item, {Variant(name)}));
}

env::VBProjectRef ComVBProjects::StartProject() const {
    return WrapProject(projects_.GetObject(m::VBProjects::StartProject));
}

void ComVBProjects::SetStartProject(const env::VBProjectRef& project) {
    projects_.PutRef(m::VBProjects::StartProject, Variant(ObjectOf(project.get()).Object()));
}

}  // namespace arbolet::windows::ide
