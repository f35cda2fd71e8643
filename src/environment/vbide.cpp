// The errors and small helpers shared by every implementation of the environment interfaces.
#include "environment/vbide.h"

#include <algorithm>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "base/vb_identifier.h"

namespace arbolet::env {
namespace enverr {

void RaisePropertyNotFound(const std::string& source, std::string_view key) {
    throw VbError(kInvalidProcedureCall, source,
                  "The extended property '" + std::string(key) + "' does not exist");
}

void RaiseNoPropertyStore(const std::string& source, std::string_view component) {
    throw VbError(kNotSupported, source,
                  "'" + std::string(component) + "' has no extended-property store");
}

void RaiseNotInCollection(const std::string& source) {
    throw VbError(kSubscriptOutOfRange, source, "Subscript out of range");
}

void RaiseObjectNotSet(const std::string& source) {
    throw VbError(kObjectNotSet, source, "Object variable or With block variable not set");
}

void RaiseNotSupported(const std::string& source) {
    throw VbError(kNotSupported, source, "Object doesn't support this property or method");
}

}  // namespace enverr

void VBComponent::SetName(std::string_view) {
    enverr::RaiseNotSupported("VBComponent.Name");
}

VBComponentRef VBComponents::AddFile(std::string_view) {
    enverr::RaiseNotSupported("VBComponents.AddFile");
}

void VBComponents::Remove(const VBComponentRef&) {
    enverr::RaiseNotSupported("VBComponents.Remove");
}

void VBProject::SetName(std::string_view) {
    enverr::RaiseNotSupported("VBProject.Name");
}

namespace {

void CheckValidName(const char* source, std::string_view name) {
    if (const auto why = InvalidVbNameReason(name)) {
        throw VbError(enverr::kInvalidPropertyValue, source, "Invalid property value: " + *why);
    }
}

[[noreturn]] void RaiseNameInUse(const char* source, const std::string& taken,
                                 std::string_view byWhat) {
    throw VbError(enverr::kInvalidPropertyValue, source,
                  std::string(enverr::kNameConflicts) + ": " + std::string(byWhat) + " " + taken +
                      " has that name");
}

}  // namespace

void CheckComponentName(const VBComponents& components, std::string_view name,
                        const VBComponent* renamed) {
    constexpr const char* kSource = "VBComponent.Name";
    CheckValidName(kSource, name);
    const std::string lower = text::ToLower(name);
    const std::int32_t count = components.Count();
    for (std::int32_t i = 1; i <= count; ++i) {
        const VBComponentRef other = components.Item(i);
        if (other.get() != renamed && text::ToLower(other->Name()) == lower) {
            RaiseNameInUse(kSource, other->Name(), "the component");
        }
    }
    if (const VBProjectRef project = components.Parent()) {
        if (text::ToLower(project->Name()) == lower) {
            RaiseNameInUse(kSource, project->Name(), "the project");
        }
    }
}

void CheckProjectName(const VBProjects& projects, std::string_view name, const VBProject* renamed) {
    constexpr const char* kSource = "VBProject.Name";
    CheckValidName(kSource, name);
    const std::string lower = text::ToLower(name);
    const std::int32_t count = projects.Count();
    for (std::int32_t i = 1; i <= count; ++i) {
        const VBProjectRef other = projects.Item(i);
        if (other.get() != renamed && text::ToLower(other->Name()) == lower) {
            RaiseNameInUse(kSource, other->Name(), "the project");
        }
    }
    const auto components = renamed ? renamed->VBComponents() : nullptr;
    const std::int32_t componentCount = components ? components->Count() : 0;
    for (std::int32_t i = 1; i <= componentCount; ++i) {
        const VBComponentRef component = components->Item(i);
        if (text::ToLower(component->Name()) == lower) {
            RaiseNameInUse(kSource, component->Name(), "the component");
        }
    }
}

VBProjectRef ProjectOf(const VBComponent& component) {
    auto collection = component.Collection();
    if (!collection) enverr::RaiseObjectNotSet("VBComponent.Collection");
    auto project = collection->Parent();
    if (!project) enverr::RaiseObjectNotSet("VBComponents.Parent");
    return project;
}

// The object model's argument checks, then the lines joined with CRLF; lines past the end are
// left out.
std::string LinesCodeModule::Lines(std::int32_t startLine, std::int32_t count) const {
    const auto& lines = lines_;
    if (startLine < 1 || count < 0) {
        throw VbError(enverr::kInvalidProcedureCall, "CodeModule.Lines",
                      "Invalid procedure call or argument");
    }
    std::string text;
    const auto first = static_cast<std::size_t>(startLine - 1);
    const std::size_t end = std::min(lines.size(), first + static_cast<std::size_t>(count));
    for (std::size_t i = first; i < end; ++i) {
        if (i > first) text += "\r\n";
        text += lines[i];
    }
    return text;
}

}  // namespace arbolet::env
