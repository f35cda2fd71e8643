// Components and projects read from disk (see disk_objects.h). Renaming and adding live in
// disk_rename_add.cpp.
#include "disk/disk_objects.h"

#include <utility>
#include <vector>

#include "base/vb_error.h"
#include "disk/vb_path.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

DiskComponent::DiskComponent(std::string name, env::ComponentType type, fs::path path,
                             std::optional<ComponentText> text)
    : name_(std::move(name)), type_(type), path_(std::move(path)), text_(std::move(text)) {
    if (text_) original_ = text_->Bytes();
}

std::string DiskComponent::FileNames(std::int16_t index) const {
    if (index != 1) env::enverr::RaiseNotInCollection("VBComponent.FileNames");
    return PathToUtf8(path_);
}

std::string DiskComponent::ReadProperty(std::string_view key) const {
    constexpr const char* kSource = "VBComponent.ReadProperty";
    if (!text_) env::enverr::RaiseNoPropertyStore(kSource, PathToUtf8(path_.filename()));
    auto value = text_->ReadProperty(key);
    if (!value) env::enverr::RaisePropertyNotFound(kSource, key);
    return std::move(*value);
}

void DiskComponent::WriteProperty(std::string_view key, std::string_view value) {
    constexpr const char* kSource = "VBComponent.WriteProperty";
    if (!text_) env::enverr::RaiseNoPropertyStore(kSource, PathToUtf8(path_.filename()));
    try {
        text_->WriteProperty(key, value);
    } catch (const VbError& error) {
        throw VbError(error.Number, error.Source,
                      PathToUtf8(path_.filename()) + ": " + error.Description);
    }
}

std::shared_ptr<env::CodeModule> DiskComponent::CodeModule() const {
    if (!text_) return nullptr;
    const ComponentFile& file = text_->File();
    std::vector<std::string> lines;
    lines.reserve(file.codeLines.size());
    for (const auto index : file.codeLines) {
        lines.push_back(file.lines[static_cast<std::size_t>(index)]);
    }
    return std::make_shared<env::LinesCodeModule>(std::move(lines));
}

void DiskComponent::Reload(std::string name, env::ComponentType type, ComponentText text) {
    name_ = std::move(name);
    type_ = type;
    text_ = std::move(text);
    original_ = text_->Bytes();
}

DiskProject::DiskProject(fs::path path, std::string shownAs, ProjectFile text)
    : path_(std::move(path)),
      shownAs_(std::move(shownAs)),
      text_(std::move(text)),
      original_(text_.Bytes()) {}

std::string DiskProject::FileName() const {
    return PathToUtf8(path_);
}

std::string DiskProject::ReadProperty(std::string_view section, std::string_view key) const {
    auto value = text_.ReadProperty(section, key);
    if (!value) env::enverr::RaisePropertyNotFound("VBProject.ReadProperty", key);
    return std::move(*value);
}

void DiskProject::Reload(ProjectFile text) {
    text_ = std::move(text);
    original_ = text_.Bytes();
}

std::shared_ptr<DiskProject> OwningProject(const DiskComponent& component) {
    const auto components = component.collection.lock();
    return components ? std::static_pointer_cast<DiskProject>(components->Parent()) : nullptr;
}

}  // namespace arbolet::disk
