// The errors and small helpers shared by every implementation of the environment interfaces.
#include "environment/vbide.h"

#include <algorithm>

#include "base/vb_error.h"

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

VBProjectRef ProjectOf(const VBComponent& component) {
    auto collection = component.Collection();
    if (!collection) enverr::RaiseObjectNotSet("VBComponent.Collection");
    auto project = collection->Parent();
    if (!project) enverr::RaiseObjectNotSet("VBComponents.Parent");
    return project;
}

std::string JoinCodeLines(const std::vector<std::string>& lines, std::int32_t startLine,
                          std::int32_t count) {
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
