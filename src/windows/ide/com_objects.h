// The adapter's object classes, shared by its source files.
#pragma once

#include <memory>
#include <string>

#include "environment/vbide.h"
#include "windows/com/dispatch.h"

namespace arbolet::windows::ide {

class ComCodeModule final : public env::CodeModule {
  public:
    explicit ComCodeModule(com::Dispatch module) : module_(std::move(module)) {}
    std::int32_t CountOfLines() const override;
    std::string Lines(std::int32_t startLine, std::int32_t count) const override;
    const com::Dispatch& Object() const { return module_; }

  private:
    com::Dispatch module_;
};

class ComVBComponent final : public env::VBComponent {
  public:
    explicit ComVBComponent(com::Dispatch component) : component_(std::move(component)) {}
    std::string Name() const override;
    void SetName(std::string_view name) override;
    env::ComponentType Type() const override;
    std::int16_t FileCount() const override;
    std::string FileNames(std::int16_t index) const override;
    std::string ReadProperty(std::string_view key) const override;
    void WriteProperty(std::string_view key, std::string_view value) override;
    std::shared_ptr<env::CodeModule> CodeModule() const override;
    std::shared_ptr<env::VBComponents> Collection() const override;
    const com::Dispatch& Object() const { return component_; }

  private:
    com::Dispatch component_;
};

class ComVBComponents final : public env::VBComponents {
  public:
    explicit ComVBComponents(com::Dispatch components) : components_(std::move(components)) {}
    std::int32_t Count() const override;
    env::VBComponentRef Item(std::int32_t index) const override;
    env::VBComponentRef Item(std::string_view name) const override;
    env::VBProjectRef Parent() const override;
    env::VBComponentRef AddFile(std::string_view fileName) override;
    void Remove(const env::VBComponentRef& component) override;

  private:
    com::Dispatch components_;
};

class ComVBProject final : public env::VBProject {
  public:
    explicit ComVBProject(com::Dispatch project) : project_(std::move(project)) {}
    std::string Name() const override;
    void SetName(std::string_view name) override;
    std::string FileName() const override;
    std::string ReadProperty(std::string_view section, std::string_view key) const override;
    void WriteProperty(std::string_view section, std::string_view key,
                       std::string_view value) override;
    std::shared_ptr<env::VBComponents> VBComponents() const override;
    std::shared_ptr<env::VBProjects> Collection() const override;
    const com::Dispatch& Object() const { return project_; }

  private:
    com::Dispatch project_;
};

class ComVBProjects final : public env::VBProjects {
  public:
    explicit ComVBProjects(com::Dispatch projects) : projects_(std::move(projects)) {}
    std::int32_t Count() const override;
    env::VBProjectRef Item(std::int32_t index) const override;
    env::VBProjectRef Item(std::string_view name) const override;
    env::VBProjectRef StartProject() const override;
    void SetStartProject(const env::VBProjectRef& project) override;

  private:
    com::Dispatch projects_;
};

// The IDE object behind an environment object of this adapter; empty for any other.
com::Dispatch ObjectOf(const env::VBProject* project);
com::Dispatch ObjectOf(const env::VBComponent* component);
com::Dispatch ObjectOf(const env::CommandBarControl* control);

std::shared_ptr<env::Events> WrapEvents(const com::Dispatch& events);
std::shared_ptr<env::CommandBars> WrapCommandBars(const com::Dispatch& commandBars);

}  // namespace arbolet::windows::ide
