// An environment held entirely in memory: projects, components, extended properties and code
// created by calls, with the same events the IDE raises. The explorer's tests and benchmarks
// build their projects with it; it also serves wherever no IDE and no files are at hand.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "environment/vbide.h"

namespace arbolet::env {

class MemoryEnvironment;
class MemoryProject;
class MemoryProjects;
class EventHub;

class MemoryComponent final : public VBComponent,
                              public std::enable_shared_from_this<MemoryComponent> {
  public:
    MemoryComponent(std::string name, ComponentType type, std::string fileName, std::string code);

    std::string Name() const override { return name_; }
    void SetName(std::string_view name) override;
    ComponentType Type() const override { return type_; }
    std::int16_t FileCount() const override;
    std::string FileNames(std::int16_t index) const override;
    std::string ReadProperty(std::string_view key) const override;
    void WriteProperty(std::string_view key, std::string_view value) override;
    std::shared_ptr<env::CodeModule> CodeModule() const override;
    std::shared_ptr<env::VBComponents> Collection() const override;

    // Whether the component keeps extended properties (by default every kind but resource files
    // and related documents does).
    void SetHasPropertyStore(bool has);
    void SetCode(std::string code);

  private:
    friend class MemoryProject;

    std::string name_;
    ComponentType type_;
    std::string fileName_;
    std::vector<std::string> codeLines_;
    std::optional<std::map<std::string, std::string>> properties_;  // by lower-case key
    std::weak_ptr<VBComponents> collection_;
};

class MemoryProject final : public VBProject, public std::enable_shared_from_this<MemoryProject> {
  public:
    MemoryProject(std::string name, std::string fileName);

    std::string Name() const override { return name_; }
    void SetName(std::string_view name) override;
    std::string FileName() const override { return fileName_; }
    std::string ReadProperty(std::string_view section, std::string_view key) const override;
    void WriteProperty(std::string_view section, std::string_view key,
                       std::string_view value) override;
    std::shared_ptr<env::VBComponents> VBComponents() const override;
    std::shared_ptr<env::VBProjects> Collection() const override;

    // Adds a component at the end of the project and raises ItemAdded.
    std::shared_ptr<MemoryComponent> AddComponent(std::string name, ComponentType type,
                                                  std::string code = {}, std::string fileName = {});
    // Removes it and raises ItemRemoved; a component of another project is ignored.
    void RemoveComponent(const VBComponentRef& component);
    // Renames it and raises ItemRenamed with the old name.
    void RenameComponent(const VBComponentRef& component, std::string newName);

  private:
    friend class MemoryProjects;
    friend class MemoryEnvironment;
    class Components;

    std::shared_ptr<EventHub> EventsOrNull() const;

    std::string name_;
    std::string fileName_;
    std::map<std::pair<std::string, std::string>, std::string> properties_;  // lower-case keys
    std::shared_ptr<Components> components_;
    std::weak_ptr<MemoryProjects> collection_;
    std::weak_ptr<EventHub> events_;
};

class MemoryEnvironment final : public VBE, public std::enable_shared_from_this<MemoryEnvironment> {
  public:
    static std::shared_ptr<MemoryEnvironment> Create();

    std::shared_ptr<env::VBProjects> VBProjects() const override;
    VBProjectRef ActiveVBProject() const override { return active_.lock(); }
    void SetActiveVBProject(const VBProjectRef& project) override { active_ = project; }
    std::shared_ptr<env::Events> Events() const override;
    std::shared_ptr<env::CommandBars> CommandBars() const override { return nullptr; }

    // Opens a new project at the end of the collection and raises ItemAdded. The first project
    // becomes the start-up and the active project.
    std::shared_ptr<MemoryProject> AddProject(std::string name, std::string fileName = {});
    // Closes it and raises ItemRemoved.
    void RemoveProject(const VBProjectRef& project);
    // Renames it and raises ItemRenamed with the old name.
    void RenameProject(const VBProjectRef& project, std::string newName);

  private:
    MemoryEnvironment();

    std::shared_ptr<MemoryProjects> projects_;
    std::shared_ptr<EventHub> events_;
    std::weak_ptr<VBProject> active_;
};

}  // namespace arbolet::env
