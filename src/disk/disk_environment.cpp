// Projects and groups on disk behind the environment interfaces (see disk_environment.h).
#include "disk/disk_environment.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/component_properties.h"
#include "disk/file_io.h"
#include "disk/group_file.h"
#include "disk/project_file.h"
#include "disk/vb_path.h"
#include "environment/event_hub.h"

namespace arbolet::disk {
namespace fs = std::filesystem;
using env::ComponentType;

namespace {

// The designer class of forms made with the Forms 2.0 designer (VBA-style user forms).
constexpr std::string_view kMsFormsDesigner = "{c62a69f0-16dc-11ce-9e98-00aa00574a4f}";

// How a project file lists a component, by its key.
enum class EntryKind {
    Module,
    Class,
    Form,
    UserControl,
    PropertyPage,
    UserDocument,
    Designer,
    RelatedDoc,
    ResFile
};

struct ComponentEntry {
    EntryKind kind;
    std::string name;  // only Module= and Class= lines name the component
    std::string path;
    std::size_t line;
};

std::optional<EntryKind> KindOfKey(std::string_view key) {
    static constexpr std::pair<std::string_view, EntryKind> kKeys[] = {
        {"module", EntryKind::Module},
        {"class", EntryKind::Class},
        {"form", EntryKind::Form},
        {"usercontrol", EntryKind::UserControl},
        {"propertypage", EntryKind::PropertyPage},
        {"userdocument", EntryKind::UserDocument},
        {"designer", EntryKind::Designer},
        {"relateddoc", EntryKind::RelatedDoc},
        {"resfile32", EntryKind::ResFile},
    };
    const std::string lower = text::ToLower(key);
    for (const auto& [name, kind] : kKeys) {
        if (lower == name) return kind;
    }
    return std::nullopt;
}

std::vector<ComponentEntry> ComponentEntries(const ProjectFile& project) {
    std::vector<ComponentEntry> entries;
    for (const ProjectEntry& entry : project.TopLevel()) {
        const auto kind = KindOfKey(entry.key);
        if (!kind) continue;
        ComponentEntry component{*kind, {}, entry.value, entry.line};
        const auto semicolon = entry.value.find(';');
        if ((kind == EntryKind::Module || kind == EntryKind::Class) &&
            semicolon != std::string::npos) {
            component.name = text::Trim(std::string_view(entry.value).substr(0, semicolon));
            component.path = entry.value.substr(semicolon + 1);
        }
        component.path = Unquoted(text::Trim(component.path));
        entries.push_back(std::move(component));
    }
    return entries;
}

bool HasCode(EntryKind kind) {
    return kind != EntryKind::RelatedDoc && kind != EntryKind::ResFile;
}

// The class after `Begin` in the designer header: "VB.Form", "VB.MDIForm", a GUID, ...
std::string DesignerClass(const ComponentFile& file) {
    const auto end = std::min<std::size_t>(file.lines.size(), 64);
    for (std::size_t i = 0; i < end; ++i) {
        const std::string_view line = text::TrimLeft(file.lines[i]);
        if (text::ToLower(line.substr(0, 6)) != "begin ") continue;
        const std::string_view rest = text::TrimLeft(line.substr(6));
        return text::ToLower(rest.substr(0, rest.find(' ')));
    }
    return {};
}

ComponentType TypeOf(EntryKind kind, const ComponentFile* file) {
    switch (kind) {
        case EntryKind::Module:
            return ComponentType::StdModule;
        case EntryKind::Class:
            return ComponentType::ClassModule;
        case EntryKind::Form:
            return file && DesignerClass(*file) == "vb.mdiform" ? ComponentType::VBMDIForm
                                                                : ComponentType::VBForm;
        case EntryKind::UserControl:
            return ComponentType::UserControl;
        case EntryKind::PropertyPage:
            return ComponentType::PropPage;
        case EntryKind::UserDocument:
            return ComponentType::DocObject;
        case EntryKind::Designer:
            return file && DesignerClass(*file) == kMsFormsDesigner
                       ? ComponentType::MSForm
                       : ComponentType::ActiveXDesigner;
        case EntryKind::RelatedDoc:
            return ComponentType::RelatedDocument;
        case EntryKind::ResFile:
            return ComponentType::ResFile;
    }
    return ComponentType::StdModule;
}

// How to show a file that a project or group names: beside the file that names it.
std::string ShownBeside(const std::string& namingFile, std::string_view vbPath) {
    std::string relative(vbPath);
    std::replace(relative.begin(), relative.end(), '\\', '/');
    const fs::path shown = (PathFromUtf8(namingFile).parent_path() / PathFromUtf8(relative));
    return PathToUtf8(shown.lexically_normal().generic_u8string());
}

bool HasExtension(const fs::path& path, std::string_view lowerExtension) {
    return text::ToLower(PathToUtf8(path.extension())) == lowerExtension;
}

fs::path Canonical(const fs::path& path) {
    std::error_code ec;
    fs::path canonical = fs::weakly_canonical(path, ec);
    return ec ? path : canonical;
}

class DiskCodeModule final : public env::CodeModule {
  public:
    explicit DiskCodeModule(std::vector<std::string> lines) : lines_(std::move(lines)) {}
    std::int32_t CountOfLines() const override { return static_cast<std::int32_t>(lines_.size()); }
    std::string Lines(std::int32_t startLine, std::int32_t count) const override {
        return env::JoinCodeLines(lines_, startLine, count);
    }

  private:
    std::vector<std::string> lines_;
};

template <typename Ref, typename List>
Ref ItemByIndex(const List& items, std::int32_t index, const char* source) {
    if (index < 1 || static_cast<std::size_t>(index) > items.size()) {
        env::enverr::RaiseNotInCollection(source);
    }
    return items[static_cast<std::size_t>(index - 1)];
}

template <typename Ref, typename List>
Ref ItemByName(const List& items, std::string_view name, const char* source) {
    const std::string wanted = text::ToLower(name);
    for (const auto& item : items) {
        if (text::ToLower(item->Name()) == wanted) return item;
    }
    env::enverr::RaiseNotInCollection(source);
}

}  // namespace

std::string LoadWarning::ToString() const {
    return line > 0 ? file + ":" + std::to_string(line) + ": " + message : file + ": " + message;
}

// ---- components ----

class DiskComponent final : public env::VBComponent {
  public:
    DiskComponent(std::string name, ComponentType type, fs::path path,
                  std::optional<ComponentText> text)
        : name_(std::move(name)), type_(type), path_(std::move(path)), text_(std::move(text)) {
        if (text_) original_ = text_->Bytes();
    }

    std::string Name() const override { return name_; }
    ComponentType Type() const override { return type_; }
    std::int16_t FileCount() const override { return 1; }

    std::string FileNames(std::int16_t index) const override {
        if (index != 1) env::enverr::RaiseNotInCollection("VBComponent.FileNames");
        return PathToUtf8(path_);
    }

    std::string ReadProperty(std::string_view key) const override {
        constexpr const char* kSource = "VBComponent.ReadProperty";
        if (!text_) env::enverr::RaiseNoPropertyStore(kSource, PathToUtf8(path_.filename()));
        auto value = text_->ReadProperty(key);
        if (!value) env::enverr::RaisePropertyNotFound(kSource, key);
        return std::move(*value);
    }

    void WriteProperty(std::string_view key, std::string_view value) override {
        constexpr const char* kSource = "VBComponent.WriteProperty";
        if (!text_) env::enverr::RaiseNoPropertyStore(kSource, PathToUtf8(path_.filename()));
        try {
            text_->WriteProperty(key, value);
        } catch (const VbError& error) {
            throw VbError(error.Number, error.Source,
                          PathToUtf8(path_.filename()) + ": " + error.Description);
        }
    }

    std::shared_ptr<env::CodeModule> CodeModule() const override {
        if (!text_) return nullptr;
        const ComponentFile& file = text_->File();
        std::vector<std::string> lines;
        lines.reserve(file.codeLines.size());
        for (const auto index : file.codeLines) {
            lines.push_back(file.lines[static_cast<std::size_t>(index)]);
        }
        return std::make_shared<DiskCodeModule>(std::move(lines));
    }

    std::shared_ptr<env::VBComponents> Collection() const override { return collection.lock(); }

    const fs::path& Path() const { return path_; }
    bool Changed() const { return text_ && text_->Bytes() != original_; }
    const std::string& Original() const { return original_; }
    const std::string& Current() const { return text_ ? text_->Bytes() : original_; }
    void MarkSaved() { original_ = Current(); }

    std::weak_ptr<env::VBComponents> collection;

  private:
    std::string name_;
    ComponentType type_;
    fs::path path_;
    std::optional<ComponentText> text_;
    std::string original_;
};

class DiskComponents final : public env::VBComponents {
  public:
    explicit DiskComponents(std::weak_ptr<env::VBProject> parent) : parent_(std::move(parent)) {}
    std::int32_t Count() const override { return static_cast<std::int32_t>(items.size()); }
    env::VBComponentRef Item(std::int32_t index) const override {
        return ItemByIndex<env::VBComponentRef>(items, index, "VBComponents.Item");
    }
    env::VBComponentRef Item(std::string_view name) const override {
        return ItemByName<env::VBComponentRef>(items, name, "VBComponents.Item");
    }
    env::VBProjectRef Parent() const override { return parent_.lock(); }

    std::vector<std::shared_ptr<DiskComponent>> items;

  private:
    std::weak_ptr<env::VBProject> parent_;
};

// ---- projects ----

class DiskProject final : public env::VBProject {
  public:
    DiskProject(fs::path path, std::string shownAs, ProjectFile text)
        : path_(std::move(path)),
          shownAs_(std::move(shownAs)),
          text_(std::move(text)),
          original_(text_.Bytes()) {}

    std::string Name() const override { return name; }
    std::string FileName() const override { return PathToUtf8(path_); }

    std::string ReadProperty(std::string_view section, std::string_view key) const override {
        auto value = text_.ReadProperty(section, key);
        if (!value) env::enverr::RaisePropertyNotFound("VBProject.ReadProperty", key);
        return std::move(*value);
    }

    void WriteProperty(std::string_view section, std::string_view key,
                       std::string_view value) override {
        text_.WriteProperty(section, key, value);
    }

    std::shared_ptr<env::VBComponents> VBComponents() const override { return components; }
    std::shared_ptr<env::VBProjects> Collection() const override { return collection.lock(); }

    const fs::path& Path() const { return path_; }
    const std::string& ShownAs() const { return shownAs_; }
    const ProjectFile& Text() const { return text_; }
    bool Changed() const { return text_.Bytes() != original_; }
    const std::string& Original() const { return original_; }
    void MarkSaved() { original_ = text_.Bytes(); }

    std::string name;
    std::shared_ptr<DiskComponents> components;
    std::weak_ptr<env::VBProjects> collection;

  private:
    fs::path path_;
    std::string shownAs_;
    ProjectFile text_;
    std::string original_;
};

class DiskProjects final : public env::VBProjects {
  public:
    std::int32_t Count() const override { return static_cast<std::int32_t>(items.size()); }
    env::VBProjectRef Item(std::int32_t index) const override {
        return ItemByIndex<env::VBProjectRef>(items, index, "VBProjects.Item");
    }
    env::VBProjectRef Item(std::string_view name) const override {
        return ItemByName<env::VBProjectRef>(items, name, "VBProjects.Item");
    }
    env::VBProjectRef StartProject() const override { return start.lock(); }
    void SetStartProject(const env::VBProjectRef& project) override { start = project; }

    std::vector<std::shared_ptr<DiskProject>> items;
    std::weak_ptr<env::VBProject> start;
};

// ---- loading ----

namespace {

struct ComponentLoader {
    const DiskProject& project;
    int codePage;
    std::vector<LoadWarning>& warnings;

    std::shared_ptr<DiskComponent> Load(const ComponentEntry& entry) const {
        const fs::path folder = project.Path().parent_path();
        const auto line = static_cast<std::int32_t>(entry.line + 1);
        const auto resolved = ResolveVbPath(folder, entry.path);
        if (!resolved) {
            warnings.push_back(
                {project.ShownAs(), line, "component file not found: " + entry.path});
            return nullptr;
        }
        if (!HasCode(entry.kind)) {
            return std::make_shared<DiskComponent>("", TypeOf(entry.kind, nullptr), *resolved,
                                                   std::nullopt);
        }
        std::string bytes;
        try {
            bytes = ReadFileBytes(*resolved);
        } catch (const FileError& error) {
            warnings.push_back({project.ShownAs(), line,
                                "component file cannot be read: " + std::string(error.what())});
            return nullptr;
        }
        ComponentText text(std::move(bytes), codePage);
        ReportDamage(entry, text.File());
        const ComponentType type = TypeOf(entry.kind, &text.File());
        return std::make_shared<DiskComponent>(NameOf(entry, text.File(), *resolved), type,
                                               *resolved, std::move(text));
    }

    // The name in the file wins; a module or class without one keeps the project's name for it.
    static std::string NameOf(const ComponentEntry& entry, const ComponentFile& file,
                              const fs::path& path) {
        if (!file.name.empty()) return file.name;
        if (!entry.name.empty()) return entry.name;
        return PathToUtf8(path.stem());
    }

    void ReportDamage(const ComponentEntry& entry, const ComponentFile& file) const {
        for (const auto& diagnostic : file.diagnostics) {
            if (diagnostic.severity != FileDiagnostic::Severity::Error) continue;
            warnings.push_back(
                {ShownBeside(project.ShownAs(), entry.path), diagnostic.line, diagnostic.message});
        }
    }
};

std::string ProjectNameOf(const ProjectFile& text, const fs::path& path, const std::string& shown,
                          std::vector<LoadWarning>& warnings) {
    std::string name = Unquoted(text::Trim(text.TopLevelValue("Name").value_or("")));
    if (name.empty()) {
        name = PathToUtf8(path.stem());
        warnings.push_back({shown, 0, "no Name line; the project is named " + name});
    }
    return name;
}

}  // namespace

DiskEnvironment::DiskEnvironment(int codePage)
    : codePage_(codePage),
      projects_(std::make_shared<DiskProjects>()),
      events_(std::make_shared<env::EventHub>()) {}

std::shared_ptr<DiskEnvironment> DiskEnvironment::Open(const std::vector<fs::path>& files,
                                                       int codePage) {
    auto environment = std::shared_ptr<DiskEnvironment>(new DiskEnvironment(codePage));
    for (const fs::path& file : files) {
        if (HasExtension(file, ".vbg")) {
            environment->OpenGroup(file);
        } else if (HasExtension(file, ".vbp")) {
            environment->AddFromFile(file);
        } else {
            throw FileError(file, "is neither a .vbp project nor a .vbg project group");
        }
    }
    auto& projects = *environment->projects_;
    if (projects.start.expired() && !projects.items.empty()) projects.start = projects.items[0];
    environment->active_ = projects.start;
    return environment;
}

std::shared_ptr<env::VBProjects> DiskEnvironment::VBProjects() const {
    return projects_;
}

std::shared_ptr<env::Events> DiskEnvironment::Events() const {
    return events_;
}

bool DiskEnvironment::IsOpen(const fs::path& projectFile) const {
    const fs::path canonical = Canonical(projectFile);
    return std::any_of(projects_->items.begin(), projects_->items.end(),
                       [&](const auto& p) { return Canonical(p->Path()) == canonical; });
}

bool DiskEnvironment::HasProjectNamed(const std::string& name) const {
    const std::string lower = text::ToLower(name);
    return std::any_of(projects_->items.begin(), projects_->items.end(),
                       [&](const auto& p) { return text::ToLower(p->name) == lower; });
}

env::VBProjectRef DiskEnvironment::AddFromFile(const fs::path& projectFile) {
    return LoadProject(projectFile, PathToUtf8(projectFile.generic_u8string()));
}

std::shared_ptr<DiskProject> DiskEnvironment::LoadProject(const fs::path& projectFile,
                                                          const std::string& shownAs) {
    if (IsOpen(projectFile)) {
        warnings_.push_back({shownAs, 0, "the project is already open"});
        return nullptr;
    }
    ProjectFile text(ReadFileBytes(projectFile), codePage_);
    if (text.IsBinary()) {
        const auto& diagnostic = text.Diagnostics().front();
        throw FileError(projectFile,
                        "line " + std::to_string(diagnostic.line) + ": " + diagnostic.message);
    }
    for (const auto& diagnostic : text.Diagnostics()) {
        warnings_.push_back({shownAs, diagnostic.line, diagnostic.message});
    }
    auto project = std::make_shared<DiskProject>(projectFile, shownAs, std::move(text));
    project->name = ProjectNameOf(project->Text(), projectFile, shownAs, warnings_);
    if (HasProjectNamed(project->name)) {
        warnings_.push_back({shownAs, 0,
                             "another open project is also named " + project->name +
                                 "; their nodes in the tree are shared"});
    }
    project->components = std::make_shared<DiskComponents>(project);
    project->collection = projects_;
    const ComponentLoader loader{*project, codePage_, warnings_};
    for (const ComponentEntry& entry : ComponentEntries(project->Text())) {
        if (auto component = loader.Load(entry)) {
            component->collection = project->components;
            project->components->items.push_back(std::move(component));
        }
    }
    projects_->items.push_back(project);
    env::VBProjectRef added = project;
    events_->RaiseProjectEvent([&](env::VBProjectsEventsSink& sink) { sink.ItemAdded(added); });
    return project;
}

void DiskEnvironment::OpenGroup(const fs::path& groupFile) {
    const GroupFile group = ParseGroupFile(ReadFileBytes(groupFile), codePage_);
    if (!group.IsGroup()) {
        const auto& diagnostic = group.diagnostics.front();
        throw FileError(groupFile, diagnostic.line > 0 ? "line " + std::to_string(diagnostic.line) +
                                                             ": " + diagnostic.message
                                                       : diagnostic.message);
    }
    const std::string groupShown = PathToUtf8(groupFile.generic_u8string());
    for (const GroupMember& member : group.projects) {
        const auto line = static_cast<std::int32_t>(member.line + 1);
        const auto resolved = ResolveVbPath(groupFile.parent_path(), member.path);
        if (!resolved) {
            warnings_.push_back({groupShown, line, "project file not found: " + member.path});
            continue;
        }
        try {
            auto project = LoadProject(*resolved, ShownBeside(groupShown, member.path));
            if (project && member.startup && projects_->start.expired()) {
                projects_->start = project;
            }
        } catch (const FileError& error) {
            warnings_.push_back({groupShown, line, error.what()});
        }
    }
}

// ---- saving ----

namespace {

struct PendingWrite {
    fs::path path;
    const std::string* original;
    const std::string* current;
};

// Refuses before anything is written: a file that is gone, read-only, or changed by someone
// else since it was read would otherwise be lost or half-saved.
void CheckStillAsRead(const PendingWrite& write) {
    std::error_code ec;
    const auto status = fs::status(write.path, ec);
    if (!fs::exists(status)) {
        throw FileError(write.path, "the file has vanished since it was read; nothing was saved");
    }
    if ((status.permissions() & fs::perms::owner_write) == fs::perms::none) {
        throw FileError(write.path, "the file is read-only; nothing was saved");
    }
    if (ReadFileBytes(write.path) != *write.original) {
        throw FileError(write.path,
                        "the file has changed on disk since it was read; nothing was saved");
    }
}

}  // namespace

std::vector<fs::path> DiskEnvironment::ChangedFiles() const {
    std::vector<fs::path> changed;
    for (const auto& project : projects_->items) {
        if (project->Changed()) changed.push_back(project->Path());
        for (const auto& component : project->components->items) {
            if (component->Changed()) changed.push_back(component->Path());
        }
    }
    return changed;
}

void DiskEnvironment::Save() {
    std::vector<PendingWrite> writes;
    for (const auto& project : projects_->items) {
        if (project->Changed()) {
            writes.push_back({project->Path(), &project->Original(), &project->Text().Bytes()});
        }
        for (const auto& component : project->components->items) {
            if (component->Changed()) {
                writes.push_back(
                    {component->Path(), &component->Original(), &component->Current()});
            }
        }
    }
    for (const auto& write : writes)
        CheckStillAsRead(write);
    for (std::size_t i = 0; i < writes.size(); ++i) {
        try {
            WriteFileAtomic(writes[i].path, *writes[i].current);
        } catch (const FileError&) {
            for (std::size_t j = 0; j < i; ++j) {
                try {
                    WriteFileAtomic(writes[j].path, *writes[j].original);
                } catch (const FileError&) {
                    // The first failure is the one to report.
                }
            }
            throw;
        }
    }
    for (const auto& project : projects_->items) {
        project->MarkSaved();
        for (const auto& component : project->components->items)
            component->MarkSaved();
    }
}

}  // namespace arbolet::disk
