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

class DiskComponent final : public env::VBComponent,
                            public std::enable_shared_from_this<DiskComponent> {
  public:
    DiskComponent(std::string name, ComponentType type, fs::path path,
                  std::optional<ComponentText> text)
        : name_(std::move(name)), type_(type), path_(std::move(path)), text_(std::move(text)) {
        if (text_) original_ = text_->Bytes();
    }

    std::string Name() const override { return name_; }
    void SetName(std::string_view name) override;
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
    // Takes the file's new contents as read from disk.
    void Reload(std::string name, ComponentType type, ComponentText text) {
        name_ = std::move(name);
        type_ = type;
        text_ = std::move(text);
        original_ = text_->Bytes();
    }
    bool HasText() const { return text_.has_value(); }

    std::weak_ptr<env::VBComponents> collection;
    // How the project file lists it: the key's kind and the path as written.
    EntryKind entryKind = EntryKind::Module;
    std::string entryPath;

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
    env::VBComponentRef AddFile(std::string_view fileName) override;
    void Remove(const env::VBComponentRef& component) override;

    std::vector<std::shared_ptr<DiskComponent>> items;

  private:
    std::weak_ptr<env::VBProject> parent_;
};

// ---- projects ----

class DiskProject final : public env::VBProject, public std::enable_shared_from_this<DiskProject> {
  public:
    DiskProject(fs::path path, std::string shownAs, ProjectFile text)
        : path_(std::move(path)),
          shownAs_(std::move(shownAs)),
          text_(std::move(text)),
          original_(text_.Bytes()) {}

    std::string Name() const override { return name; }
    void SetName(std::string_view newName) override;
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
    ProjectFile& EditText() { return text_; }
    void Reload(ProjectFile text) {
        text_ = std::move(text);
        original_ = text_.Bytes();
    }

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
            auto component = std::make_shared<DiskComponent>("", TypeOf(entry.kind, nullptr),
                                                             *resolved, std::nullopt);
            component->entryKind = entry.kind;
            component->entryPath = entry.path;
            return component;
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
        auto component = std::make_shared<DiskComponent>(NameOf(entry, text.File(), *resolved),
                                                         type, *resolved, std::move(text));
        component->entryKind = entry.kind;
        component->entryPath = entry.path;
        return component;
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
    project->events = events_;
    project->codePage = codePage_;
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

// ---- renaming and adding ----

namespace {

constexpr std::size_t kMaxVbNameLength = 40;

// A VB identifier: a letter, then letters, digits and underscores, at most 40 characters.
bool IsVbIdentifier(std::string_view name) {
    const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (name.empty() || name.size() > kMaxVbNameLength || !isLetter(name.front())) return false;
    return std::all_of(name.begin(), name.end(),
                       [&](char c) { return isLetter(c) || isDigit(c) || c == '_'; });
}

[[noreturn]] void RaiseInvalidName(const char* source, const std::string& why) {
    throw VbError(env::enverr::kInvalidPropertyValue, source, why);
}

std::string_view KeyOfKind(EntryKind kind) {
    switch (kind) {
        case EntryKind::Module:
            return "Module";
        case EntryKind::Class:
            return "Class";
        case EntryKind::Form:
            return "Form";
        case EntryKind::UserControl:
            return "UserControl";
        case EntryKind::PropertyPage:
            return "PropertyPage";
        case EntryKind::UserDocument:
            return "UserDocument";
        case EntryKind::Designer:
            return "Designer";
        case EntryKind::RelatedDoc:
            return "RelatedDoc";
        case EntryKind::ResFile:
            return "ResFile32";
    }
    return "Module";
}

std::optional<EntryKind> KindOfFile(const fs::path& file) {
    static constexpr std::pair<std::string_view, EntryKind> kKinds[] = {
        {".bas", EntryKind::Module},       {".cls", EntryKind::Class},
        {".frm", EntryKind::Form},         {".ctl", EntryKind::UserControl},
        {".pag", EntryKind::PropertyPage}, {".dob", EntryKind::UserDocument},
        {".dsr", EntryKind::Designer},
    };
    const std::string extension = text::ToLower(PathToUtf8(file.extension()));
    for (const auto& [name, kind] : kKinds) {
        if (extension == name) return kind;
    }
    return std::nullopt;
}

// How a project file writes a path: relative to its folder when it can, with backslashes.
std::string VbPathFor(const fs::path& file, const fs::path& projectFolder) {
    std::error_code ec;
    const fs::path folder = Canonical(fs::absolute(projectFolder, ec));
    const fs::path relative = Canonical(file).lexically_relative(folder);
    std::string text = PathToUtf8(relative.empty() ? Canonical(file) : relative);
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

bool NamesComponentOf(const DiskComponents& components, std::string_view name,
                      const DiskComponent* except) {
    const std::string lower = text::ToLower(name);
    return std::any_of(components.items.begin(), components.items.end(), [&](const auto& c) {
        return c.get() != except && text::ToLower(c->Name()) == lower;
    });
}

}  // namespace

// The file keeps its name; `Attribute VB_Name` and, for modules and classes, the project file's
// entry take the new one.
void DiskComponent::SetName(std::string_view newName) {
    constexpr const char* kSource = "VBComponent.Name";
    const auto components = std::static_pointer_cast<DiskComponents>(collection.lock());
    const auto project =
        components ? std::static_pointer_cast<DiskProject>(components->Parent()) : nullptr;
    if (!text_ || !project) env::enverr::RaiseNotSupported(kSource);
    if (!IsVbIdentifier(newName)) RaiseInvalidName(kSource, "Invalid property value");
    if (NamesComponentOf(*components, newName, this)) {
        RaiseInvalidName(kSource,
                         "Name conflicts with existing module, project, or object "
                         "library");
    }
    ComponentText renamed = *text_;
    renamed.Rename(newName);
    ProjectFile projectText = project->Text();
    if (entryKind == EntryKind::Module || entryKind == EntryKind::Class) {
        for (const ProjectEntry& entry : projectText.TopLevel()) {
            const auto semicolon = entry.value.find(';');
            if (KindOfKey(entry.key) != entryKind || semicolon == std::string::npos ||
                Unquoted(text::Trim(std::string_view(entry.value).substr(semicolon + 1))) !=
                    entryPath) {
                continue;
            }
            projectText.SetTopLevelValue(entry.line,
                                         std::string(newName) + entry.value.substr(semicolon));
            break;
        }
    }
    // Both texts changed or neither: the edits above raise before anything is taken.
    text_ = std::move(renamed);
    project->EditText() = std::move(projectText);
    const std::string oldName = std::exchange(name_, std::string(newName));
    const env::VBComponentRef self = shared_from_this();
    project->RaiseComponentEvent(
        [&](env::VBComponentsEventsSink& sink) { sink.ItemRenamed(self, oldName); });
}

void DiskProject::SetName(std::string_view newName) {
    constexpr const char* kSource = "VBProject.Name";
    if (!IsVbIdentifier(newName)) RaiseInvalidName(kSource, "Invalid property value");
    const auto projects = std::static_pointer_cast<DiskProjects>(collection.lock());
    if (projects) {
        const std::string lower = text::ToLower(newName);
        for (const auto& other : projects->items) {
            if (other.get() != this && text::ToLower(other->name) == lower) {
                RaiseInvalidName(kSource,
                                 "Name conflicts with existing module, project, or "
                                 "object library");
            }
        }
    }
    const std::string quoted = "\"" + std::string(newName) + "\"";
    std::optional<std::size_t> nameLine;
    for (const ProjectEntry& entry : text_.TopLevel()) {
        if (text::ToLower(entry.key) == "name") {
            nameLine = entry.line;
            break;
        }
    }
    if (nameLine) {
        text_.SetTopLevelValue(*nameLine, quoted);
    } else {
        text_.AddTopLevelEntry("Name", quoted);
    }
    const std::string oldName = std::exchange(name, std::string(newName));
    if (auto hub = events.lock()) {
        const env::VBProjectRef self = shared_from_this();
        hub->RaiseProjectEvent(
            [&](env::VBProjectsEventsSink& sink) { sink.ItemRenamed(self, oldName); });
    }
}

env::VBComponentRef DiskComponents::AddFile(std::string_view fileName) {
    constexpr const char* kSource = "VBComponents.AddFile";
    const auto project = std::static_pointer_cast<DiskProject>(Parent());
    if (!project) env::enverr::RaiseObjectNotSet(kSource);
    const fs::path folder = project->Path().parent_path();
    const fs::path given = PathFromUtf8(fileName);
    const auto resolved = ResolveVbPath(fs::current_path(), PathToUtf8(given.generic_u8string()));
    if (!resolved || !fs::is_regular_file(*resolved)) {
        throw VbError(53, kSource, "File not found: '" + std::string(fileName) + "'");
    }
    const auto kind = KindOfFile(*resolved);
    if (!kind) {
        throw VbError(env::enverr::kInvalidProcedureCall, kSource,
                      "'" + std::string(fileName) + "' is not a component file");
    }
    const fs::path canonical = Canonical(*resolved);
    for (const auto& component : items) {
        if (Canonical(component->Path()) == canonical) {
            throw VbError(env::enverr::kFileAlreadyInProject, kSource,
                          "'" + std::string(fileName) + "' is already part of the project");
        }
    }
    std::vector<LoadWarning> warnings;
    const ComponentLoader loader{*project, project->codePage, warnings};
    ComponentEntry entry{*kind, {}, VbPathFor(canonical, folder), 0};
    auto component = loader.Load(entry);
    if (!component) throw VbError(75, kSource, "Path/File access error: '" + entry.path + "'");
    if (NamesComponentOf(*this, component->Name(), nullptr)) {
        throw VbError(env::enverr::kInvalidPropertyValue, kSource,
                      "Name conflicts with existing module, project, or object library: " +
                          component->Name());
    }
    const bool named = *kind == EntryKind::Module || *kind == EntryKind::Class;
    project->EditText().AddTopLevelEntry(
        KeyOfKind(*kind), named ? component->Name() + "; " + entry.path : entry.path);
    component->collection = project->components;
    items.push_back(component);
    const env::VBComponentRef added = component;
    project->RaiseComponentEvent([&](env::VBComponentsEventsSink& sink) { sink.ItemAdded(added); });
    return added;
}

void DiskComponents::Remove(const env::VBComponentRef& component) {
    constexpr const char* kSource = "VBComponents.Remove";
    const auto project = std::static_pointer_cast<DiskProject>(Parent());
    if (!project) env::enverr::RaiseObjectNotSet(kSource);
    const auto found = std::find(items.begin(), items.end(), component);
    if (found == items.end()) env::enverr::RaiseNotInCollection(kSource);
    const std::shared_ptr<DiskComponent> removed = *found;
    for (const ComponentEntry& entry : ComponentEntries(project->Text())) {
        if (entry.kind == removed->entryKind && entry.path == removed->entryPath) {
            project->EditText().RemoveTopLevelEntry(entry.line);
            break;
        }
    }
    items.erase(found);
    const env::VBComponentRef gone = removed;
    project->RaiseComponentEvent(
        [&](env::VBComponentsEventsSink& sink) { sink.ItemRemoved(gone); });
}

// ---- following the files on disk ----

namespace {

bool Contains(const std::vector<fs::path>& paths, const fs::path& path) {
    return std::find(paths.begin(), paths.end(), Canonical(path)) != paths.end();
}

}  // namespace

std::vector<fs::path> DiskEnvironment::Folders() const {
    std::vector<fs::path> folders;
    const auto add = [&](const fs::path& file) {
        const fs::path folder = Canonical(file).parent_path();
        if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
            folders.push_back(folder);
        }
    };
    for (const auto& project : projects_->items) {
        add(project->Path());
        for (const auto& component : project->components->items)
            add(component->Path());
    }
    return folders;
}

void DiskEnvironment::Refresh(const std::vector<fs::path>& changedFiles) {
    std::vector<fs::path> changed;
    for (const auto& file : changedFiles)
        changed.push_back(Canonical(file));
    const auto projects = projects_->items;  // closing a project changes the list
    for (const auto& project : projects)
        RefreshProject(project, changed);
}

void DiskEnvironment::RefreshProject(const std::shared_ptr<DiskProject>& project,
                                     const std::vector<fs::path>& changed) {
    if (Contains(changed, project->Path())) {
        std::error_code ec;
        if (!fs::exists(project->Path(), ec)) {
            CloseProject(project);
            return;
        }
        ReloadProjectFile(project);
    }
    SyncComponents(*project, changed);
}

void DiskEnvironment::CloseProject(const std::shared_ptr<DiskProject>& project) {
    if (project->Changed()) {
        warnings_.push_back({project->ShownAs(), 0, "the project file has gone; it stays open"});
        return;
    }
    auto& items = projects_->items;
    items.erase(std::remove(items.begin(), items.end(), project), items.end());
    const env::VBProjectRef removed = project;
    events_->RaiseProjectEvent([&](env::VBProjectsEventsSink& sink) { sink.ItemRemoved(removed); });
    events_->ForgetProject(project.get());
}

void DiskEnvironment::RemoveProject(const env::VBProjectRef& project) {
    auto& items = projects_->items;
    const auto found = std::find(items.begin(), items.end(), project);
    if (found == items.end()) env::enverr::RaiseNotInCollection("VBProjects.Remove");
    const std::shared_ptr<DiskProject> removed = *found;
    items.erase(found);
    if (projects_->start.lock() == project) {
        projects_->start = items.empty() ? std::weak_ptr<env::VBProject>() : items.front();
    }
    if (active_.lock() == project) active_ = projects_->start;
    const env::VBProjectRef gone = removed;
    events_->RaiseProjectEvent([&](env::VBProjectsEventsSink& sink) { sink.ItemRemoved(gone); });
    events_->ForgetProject(removed.get());
}

void DiskEnvironment::ReloadProjectFile(const std::shared_ptr<DiskProject>& project) {
    std::string bytes;
    try {
        bytes = ReadFileBytes(project->Path());
    } catch (const FileError& error) {
        warnings_.push_back({project->ShownAs(), 0, error.what()});
        return;
    }
    if (bytes == project->Original()) return;
    if (project->Changed()) {
        warnings_.push_back({project->ShownAs(), 0,
                             "changed on disk while it has changes not saved; not reloaded"});
        return;
    }
    ProjectFile text(std::move(bytes), codePage_);
    if (text.IsBinary()) {
        warnings_.push_back({project->ShownAs(), 0, "no longer a project file; not reloaded"});
        return;
    }
    std::vector<LoadWarning> ignored;
    const std::string newName = ProjectNameOf(text, project->Path(), project->ShownAs(), ignored);
    project->Reload(std::move(text));
    if (newName == project->name) return;
    const std::string oldName = std::exchange(project->name, newName);
    const env::VBProjectRef renamed = project;
    events_->RaiseProjectEvent(
        [&](env::VBProjectsEventsSink& sink) { sink.ItemRenamed(renamed, oldName); });
}

// The project file's entries decide which components the project has; a component whose file
// changed is read again.
void DiskEnvironment::SyncComponents(DiskProject& project, const std::vector<fs::path>& changed) {
    auto& items = project.components->items;
    std::vector<std::shared_ptr<DiskComponent>> kept;
    std::vector<std::shared_ptr<DiskComponent>> added;
    std::vector<LoadWarning> ignored;
    const ComponentLoader loader{project, codePage_, ignored};
    for (const ComponentEntry& entry : ComponentEntries(project.Text())) {
        const auto resolved = ResolveVbPath(project.Path().parent_path(), entry.path);
        if (!resolved) continue;
        const fs::path canonical = Canonical(*resolved);
        const auto existing = std::find_if(items.begin(), items.end(), [&](const auto& c) {
            return Canonical(c->Path()) == canonical;
        });
        if (existing != items.end()) {
            kept.push_back(*existing);
        } else if (auto component = loader.Load(entry)) {
            component->collection = project.components;
            kept.push_back(component);
            added.push_back(component);
        }
    }
    std::vector<std::shared_ptr<DiskComponent>> removed;
    for (const auto& component : items) {
        if (std::find(kept.begin(), kept.end(), component) == kept.end())
            removed.push_back(component);
    }
    items = kept;
    for (const auto& component : removed) {
        const env::VBComponentRef gone = component;
        project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemRemoved(gone); });
    }
    for (const auto& component : added) {
        const env::VBComponentRef fresh = component;
        project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemAdded(fresh); });
    }
    for (const auto& component : std::vector(items)) {
        if (Contains(changed, component->Path())) ReloadComponent(project, component);
    }
}

void DiskEnvironment::ReloadComponent(DiskProject& project,
                                      const std::shared_ptr<DiskComponent>& component) {
    const std::string shown = PathToUtf8(component->Path().generic_u8string());
    std::error_code ec;
    if (!fs::exists(component->Path(), ec)) {
        if (component->Changed()) {
            warnings_.push_back({shown, 0, "the file has gone; its changes stay unsaved"});
            return;
        }
        auto& items = project.components->items;
        items.erase(std::remove(items.begin(), items.end(), component), items.end());
        const env::VBComponentRef gone = component;
        project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemRemoved(gone); });
        return;
    }
    if (!component->HasText()) return;
    std::string bytes;
    try {
        bytes = ReadFileBytes(component->Path());
    } catch (const FileError& error) {
        warnings_.push_back({shown, 0, error.what()});
        return;
    }
    if (bytes == component->Original()) return;
    if (component->Changed()) {
        warnings_.push_back({shown, 0,
                             "changed on disk while it has changes not saved; not "
                             "reloaded"});
        return;
    }
    ComponentText text(std::move(bytes), codePage_);
    const std::string newName = text.File().name.empty() ? component->Name() : text.File().name;
    const ComponentType type = TypeOf(component->entryKind, &text.File());
    const std::string oldName = component->Name();
    component->Reload(newName, type, std::move(text));
    const env::VBComponentRef reloaded = component;
    if (newName != oldName) {
        project.RaiseComponentEvent(
            [&](env::VBComponentsEventsSink& s) { s.ItemRenamed(reloaded, oldName); });
    }
    project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemReloaded(reloaded); });
}

}  // namespace arbolet::disk
