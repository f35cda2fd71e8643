// The object model over files on disk: components with the bytes of their file, the project
// with the text of its .vbp, and their collections. Each object keeps what was read and what
// it holds now, so that a save knows which files changed. Used only inside src/disk.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "disk/codepage.h"
#include "disk/component_entry.h"
#include "disk/component_properties.h"
#include "disk/disk_group.h"
#include "disk/project_file.h"
#include "environment/collection_items.h"
#include "environment/event_hub.h"
#include "environment/vbide.h"

namespace arbolet::disk {

class DiskProject;

class DiskComponent final : public env::VBComponent,
                            public std::enable_shared_from_this<DiskComponent> {
  public:
    // `text` is empty for kinds without code (resource files, related documents).
    DiskComponent(std::string name, env::ComponentType type, std::filesystem::path path,
                  std::optional<ComponentText> text);

    std::string Name() const override { return name_; }
    void SetName(std::string_view name) override;
    env::ComponentType Type() const override { return type_; }
    std::int16_t FileCount() const override { return 1; }
    std::string FileNames(std::int16_t index) const override;
    std::string ReadProperty(std::string_view key) const override;
    void WriteProperty(std::string_view key, std::string_view value) override;
    std::shared_ptr<env::CodeModule> CodeModule() const override;
    std::shared_ptr<env::VBComponents> Collection() const override { return collection.lock(); }

    const std::filesystem::path& Path() const { return path_; }
    bool HasText() const { return text_.has_value(); }
    bool Changed() const { return text_ && text_->Bytes() != original_; }
    const std::string& Original() const { return original_; }
    const std::string& Current() const { return text_ ? text_->Bytes() : original_; }
    void MarkSaved() { original_ = Current(); }
    // Takes the file's new contents as read from disk.
    void Reload(std::string name, env::ComponentType type, ComponentText text);

    std::weak_ptr<env::VBComponents> collection;
    // How the project file lists it: the key's kind and the path as written.
    EntryKind entryKind = EntryKind::Module;
    std::string entryPath;

  private:
    void RenameInProjectFile(ProjectFile& projectText, std::string_view oldName,
                             std::string_view newName) const;
    std::vector<std::pair<std::shared_ptr<DiskComponent>, ComponentText>> HostsRenamed(
        const DiskProject& project, std::string_view newName) const;

    std::string name_;
    env::ComponentType type_;
    std::filesystem::path path_;
    std::optional<ComponentText> text_;
    std::string original_;
};

class DiskComponents final : public env::ComponentList<DiskComponent> {
  public:
    using ComponentList::ComponentList;
    env::VBComponentRef AddFile(std::string_view fileName) override;
    void Remove(const env::VBComponentRef& component) override;
};

class DiskProject final : public env::VBProject, public std::enable_shared_from_this<DiskProject> {
  public:
    DiskProject(std::filesystem::path path, std::string shownAs, ProjectFile text);

    std::string Name() const override { return name; }
    void SetName(std::string_view newName) override;
    std::string FileName() const override;
    std::string ReadProperty(std::string_view section, std::string_view key) const override;
    void WriteProperty(std::string_view section, std::string_view key,
                       std::string_view value) override {
        text_.WriteProperty(section, key, value);
    }
    std::shared_ptr<env::VBComponents> VBComponents() const override { return components; }
    std::shared_ptr<env::VBProjects> Collection() const override { return collection.lock(); }

    const std::filesystem::path& Path() const { return path_; }
    // The project file as the user or the group named it, for messages.
    const std::string& ShownAs() const { return shownAs_; }
    const ProjectFile& Text() const { return text_; }
    ProjectFile& EditText() { return text_; }
    bool Changed() const { return text_.Bytes() != original_; }
    const std::string& Original() const { return original_; }
    void MarkSaved() { original_ = text_.Bytes(); }
    // Takes the file's new contents as read from disk.
    void Reload(ProjectFile text);

    template <typename Deliver>
    void RaiseComponentEvent(Deliver&& deliver) {
        if (auto hub = events.lock()) hub->RaiseComponentEvent(this, deliver);
    }

    std::string name;
    std::shared_ptr<DiskComponents> components;
    std::weak_ptr<env::VBProjects> collection;
    std::weak_ptr<env::EventHub> events;
    int codePage = kDefaultCodePage;

  private:
    std::filesystem::path path_;
    std::string shownAs_;
    ProjectFile text_;
    std::string original_;
};

// A new start-up project is also recorded in the group the projects came from, if any.
class DiskProjects final : public env::ProjectList<DiskProject> {
  public:
    void SetStartProject(const env::VBProjectRef& project) override;

    std::shared_ptr<DiskGroup> group;
};

// The component's project, or nullptr when it belongs to none.
std::shared_ptr<DiskProject> OwningProject(const DiskComponent& component);

}  // namespace arbolet::disk
