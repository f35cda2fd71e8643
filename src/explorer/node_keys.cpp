// Node keys, fixed group captions and the folder-name rule.
#include "explorer/node_keys.h"

#include <array>

#include "base/utf8.h"

namespace arbolet::explorer {

std::string ProjectKey(std::string_view projectName) {
    return std::string(kProjectKeyPrefix) + std::string(projectName);
}

std::string FolderKey(std::string_view folderName, std::string_view projectName) {
    return "Type~" + std::string(folderName) + "~" + std::string(projectName);
}

std::string ComponentKey(std::string_view componentName, std::string_view projectName) {
    return std::string(componentName) + "~" + std::string(projectName) + "~";
}

std::string PlaceholderKey(std::string_view componentKey) {
    return "Code - " + std::string(componentKey);
}

std::string_view KeyField(std::string_view key, std::size_t index) {
    for (std::size_t i = 0; i < index; ++i) {
        const std::size_t separator = key.find('~');
        if (separator == std::string_view::npos) return {};
        key.remove_prefix(separator + 1);
    }
    return key.substr(0, key.find('~'));
}

std::string_view FixedGroupCaption(env::ComponentType type) {
    using env::ComponentType;
    switch (type) {
        case ComponentType::StdModule:
            return "Modules";
        case ComponentType::ClassModule:
            return "Class Modules";
        case ComponentType::MSForm:
        case ComponentType::VBForm:
        case ComponentType::VBMDIForm:
            return "Forms";
        case ComponentType::ResFile:
            return "Resource Files";
        case ComponentType::PropPage:
            return "Property Pages";
        case ComponentType::UserControl:
            return "User Controls";
        case ComponentType::DocObject:
            return "User Documents";
        case ComponentType::RelatedDocument:
            return "Related Documents";
        case ComponentType::ActiveXDesigner:
            return "Designers";
    }
    return "Unknown";
}

bool IsFixedGroupName(std::string_view folderName) {
    static constexpr std::array<std::string_view, 10> kLowerCaptions = {
        "unknown",           "modules",        "class modules", "forms",
        "resource files",    "property pages", "user controls", "user documents",
        "related documents", "designers"};
    const std::string lower = text::ToLower(folderName);
    for (std::string_view caption : kLowerCaptions) {
        if (lower == caption) return true;
    }
    return false;
}

std::string ComponentDisplayName(const env::VBComponent& component) {
    std::string name = component.Name();
    if (!name.empty() || component.FileCount() < 1) return name;
    const std::string file = component.FileNames(1);
    // The IDE hands out Windows paths; a path of the platform's own form is taken apart as well.
    const std::size_t slash = file.find_last_of("\\/");
    return slash == std::string::npos ? file : file.substr(slash + 1);
}

bool IsValidFolderName(std::string_view name) {
    if (name.empty()) return false;
    for (const char c : name) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 32 || code == ';' || code >= 126) return false;
    }
    return true;
}

}  // namespace arbolet::explorer
