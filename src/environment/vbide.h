// The development environment as the explorer sees it: the projects, their components and the
// events, shaped like the VB6 extensibility object model (VBIDE), so that a COM implementation
// over the real IDE and the implementation over files on disk can stand behind the same calls.
//
// Objects are shared and reference-counted as in COM; nullptr stands for Nothing. Failures raise
// arbolet::VbError, as the object model raises run-time errors.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "environment/command_bars.h"
#include "environment/event_source.h"

namespace arbolet::env {

// vbext_ComponentType. Other values can occur and are kept as they are.
enum class ComponentType : std::int32_t {
    StdModule = 1,
    ClassModule = 2,
    MSForm = 3,
    ResFile = 4,
    VBForm = 5,
    VBMDIForm = 6,
    PropPage = 7,
    UserControl = 8,
    DocObject = 9,
    RelatedDocument = 10,
    ActiveXDesigner = 11,
};

// The run-time errors raised through these interfaces.
namespace enverr {
// A missing extended property, or an argument the call cannot take.
inline constexpr std::int32_t kInvalidProcedureCall = 5;
// An index or name that is not in a collection.
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
// A parent object that no longer exists.
inline constexpr std::int32_t kObjectNotSet = 91;
// A component kind without extended-property store, or a call the environment does not offer.
inline constexpr std::int32_t kNotSupported = 438;
// A name the object does not take (not an identifier, or already in use).
inline constexpr std::int32_t kInvalidPropertyValue = 380;
// VBComponents.AddFile with a file that the project already holds.
inline constexpr std::int32_t kFileAlreadyInProject = 60059;

// The IDE's text for a name already taken, in the collection or by the project.
inline constexpr std::string_view kNameConflicts =
    "Name conflicts with existing module, project, or object library";

[[noreturn]] void RaisePropertyNotFound(const std::string& source, std::string_view key);
[[noreturn]] void RaiseNoPropertyStore(const std::string& source, std::string_view component);
[[noreturn]] void RaiseNotInCollection(const std::string& source);
[[noreturn]] void RaiseObjectNotSet(const std::string& source);
[[noreturn]] void RaiseNotSupported(const std::string& source);
}  // namespace enverr

class VBE;
class VBProjects;
class VBProject;
class VBComponents;
class VBComponent;
class CodeModule;
class Events;

using VBProjectRef = std::shared_ptr<VBProject>;
using VBComponentRef = std::shared_ptr<VBComponent>;

// The code text of a component, as the code window shows it.
class CodeModule {
  public:
    virtual ~CodeModule() = default;
    virtual std::int32_t CountOfLines() const = 0;
    // `count` lines from the 1-based `startLine`, joined with CRLF. Lines past the end are left
    // out; a start below 1 or a negative count raises kInvalidProcedureCall.
    virtual std::string Lines(std::int32_t startLine, std::int32_t count) const = 0;
};

class VBComponent {
  public:
    virtual ~VBComponent() = default;
    // Empty for related documents and resource files, which are known by their file.
    virtual std::string Name() const = 0;
    // Renames the component and raises ItemRenamed; raises kInvalidPropertyValue for a name it
    // cannot take.
    virtual void SetName(std::string_view name);
    virtual ComponentType Type() const = 0;
    virtual std::int16_t FileCount() const = 0;
    // The full path of the 1-based file; raises kSubscriptOutOfRange outside 1..FileCount.
    virtual std::string FileNames(std::int16_t index) const = 0;
    // Extended properties kept with the component's file. Reading a missing key raises
    // kInvalidProcedureCall; a kind without store raises kNotSupported on both.
    virtual std::string ReadProperty(std::string_view key) const = 0;
    virtual void WriteProperty(std::string_view key, std::string_view value) = 0;
    // nullptr for a component without code (resource files, related documents).
    virtual std::shared_ptr<env::CodeModule> CodeModule() const = 0;
    virtual std::shared_ptr<env::VBComponents> Collection() const = 0;
};

class VBComponents {
  public:
    virtual ~VBComponents() = default;
    virtual std::int32_t Count() const = 0;
    // By 1-based index or by name (case-insensitive); raises kSubscriptOutOfRange when absent.
    virtual VBComponentRef Item(std::int32_t index) const = 0;
    virtual VBComponentRef Item(std::string_view name) const = 0;
    virtual VBProjectRef Parent() const = 0;
    // Adds a component file to the project and raises ItemAdded; raises kFileAlreadyInProject
    // for a file the project holds, and other errors for files it cannot add.
    virtual VBComponentRef AddFile(std::string_view fileName);
    // Takes the component out of the project (its files stay) and raises ItemRemoved.
    virtual void Remove(const VBComponentRef& component);
};

class VBProject {
  public:
    virtual ~VBProject() = default;
    virtual std::string Name() const = 0;
    // Renames the project and raises ItemRenamed; raises kInvalidPropertyValue for a name it
    // cannot take.
    virtual void SetName(std::string_view name);
    // The full path of the project file; empty for a project never saved.
    virtual std::string FileName() const = 0;
    // Extended properties kept with the project file, by section and key. Reading a missing
    // value raises kInvalidProcedureCall.
    virtual std::string ReadProperty(std::string_view section, std::string_view key) const = 0;
    virtual void WriteProperty(std::string_view section, std::string_view key,
                               std::string_view value) = 0;
    // nullptr when the project's components are not available.
    virtual std::shared_ptr<env::VBComponents> VBComponents() const = 0;
    virtual std::shared_ptr<env::VBProjects> Collection() const = 0;
};

class VBProjects {
  public:
    virtual ~VBProjects() = default;
    virtual std::int32_t Count() const = 0;
    virtual VBProjectRef Item(std::int32_t index) const = 0;
    virtual VBProjectRef Item(std::string_view name) const = 0;
    // The start-up project; nullptr when there is none.
    virtual VBProjectRef StartProject() const = 0;
    virtual void SetStartProject(const VBProjectRef& project) = 0;
};

// The handler side of _dispVBProjectsEvents.
class VBProjectsEventsSink {
  public:
    virtual ~VBProjectsEventsSink() = default;
    virtual void ItemAdded(const VBProjectRef& /*project*/) {}
    virtual void ItemRemoved(const VBProjectRef& /*project*/) {}
    virtual void ItemRenamed(const VBProjectRef& /*project*/, std::string_view /*oldName*/) {}
    virtual void ItemActivated(const VBProjectRef& /*project*/) {}
};

// The handler side of _dispVBComponentsEvents.
class VBComponentsEventsSink {
  public:
    virtual ~VBComponentsEventsSink() = default;
    virtual void ItemAdded(const VBComponentRef& /*component*/) {}
    virtual void ItemRemoved(const VBComponentRef& /*component*/) {}
    virtual void ItemRenamed(const VBComponentRef& /*component*/, std::string_view /*oldName*/) {}
    virtual void ItemSelected(const VBComponentRef& /*component*/) {}
    virtual void ItemActivated(const VBComponentRef& /*component*/) {}
    virtual void ItemReloaded(const VBComponentRef& /*component*/) {}
};

using VBProjectsEvents = EventSource<VBProjectsEventsSink>;
using VBComponentsEvents = EventSource<VBComponentsEventsSink>;

class Events {
  public:
    virtual ~Events() = default;
    virtual std::shared_ptr<env::VBProjectsEvents> VBProjectsEvents() = 0;
    // Events of one project's components; nullptr asks for the components of every project.
    virtual std::shared_ptr<env::VBComponentsEvents> VBComponentsEvents(
        const VBProjectRef& project) = 0;
    // Clicks on a command bar control.
    virtual std::shared_ptr<env::CommandBarEvents> CommandBarEvents(
        const CommandBarControlRef& control) = 0;
};

class VBE {
  public:
    virtual ~VBE() = default;
    virtual std::shared_ptr<env::VBProjects> VBProjects() const = 0;
    // The project the environment's commands act on; nullptr when no project is open.
    virtual VBProjectRef ActiveVBProject() const = 0;
    virtual void SetActiveVBProject(const VBProjectRef& project) = 0;
    // The component the environment's commands act on (the project window's selection);
    // nullptr when none is. Environments without a selection ignore the setting.
    virtual VBComponentRef SelectedVBComponent() const { return nullptr; }
    virtual void SetSelectedVBComponent(const VBComponentRef& /*component*/) {}
    virtual std::shared_ptr<env::Events> Events() const = 0;
    // nullptr where there are no menus and toolbars (projects opened from disk).
    virtual std::shared_ptr<env::CommandBars> CommandBars() const = 0;
};

// Raise what the IDE raises for a name it refuses (kInvalidPropertyValue): "Invalid property
// value: " and the reason for a name that is no valid name (reserved word, no identifier, over 40
// characters), and kNameConflicts and the name in use for one taken, ignoring letter case, by
// another component of the collection or by its project (by another open project or one of its
// own components, for a project). `renamed` is the object taking the name, which may keep its
// own in another case.
void CheckComponentName(const VBComponents& components, std::string_view name,
                        const VBComponent* renamed);
void CheckProjectName(const VBProjects& projects, std::string_view name, const VBProject* renamed);

// The component's project, through Collection.Parent; raises kObjectNotSet when it is gone.
VBProjectRef ProjectOf(const VBComponent& component);

// A code module over the lines of a component's code window, for implementations that hold
// the lines themselves.
class LinesCodeModule final : public CodeModule {
  public:
    explicit LinesCodeModule(std::vector<std::string> lines) : lines_(std::move(lines)) {}
    std::int32_t CountOfLines() const override { return static_cast<std::int32_t>(lines_.size()); }
    std::string Lines(std::int32_t startLine, std::int32_t count) const override;

  private:
    std::vector<std::string> lines_;
};

}  // namespace arbolet::env
