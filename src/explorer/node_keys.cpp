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

std::string CodeNodeKey(std::string_view componentKey, std::string_view lineId) {
    std::string key = "S";
    key.append(componentKey).append("@").append(lineId);
    return key;
}

namespace {

constexpr std::string_view kFolderKeyPrefix = "Type~";
constexpr std::string_view kPlaceholderPrefix = "Code - ";
constexpr std::string_view kGotoPrefix = "Goto:";

// Project names are identifiers, so the project is the last field of a key. Folder names and the
// file names that stand for some components may hold "~" themselves; they get the rest.
void ReadComponentKey(std::string_view key, KeyNames& names) {
    if (!key.ends_with('~')) return;
    const std::string_view body = key.substr(0, key.size() - 1);
    const std::size_t separator = body.rfind('~');
    if (separator == std::string_view::npos) return;
    names.component = body.substr(0, separator);
    names.project = body.substr(separator + 1);
    names.componentKey = key;
}

}  // namespace

KeyNames ReadKey(tree::NodeKind kind, std::string_view key) {
    KeyNames names;
    switch (kind) {
        case tree::NodeKind::Project:
            if (key.starts_with(kProjectKeyPrefix)) {
                names.project = key.substr(kProjectKeyPrefix.size());
            }
            break;
        case tree::NodeKind::Folder: {
            if (!key.starts_with(kFolderKeyPrefix)) break;
            const std::string_view body = key.substr(kFolderKeyPrefix.size());
            const std::size_t separator = body.rfind('~');
            if (separator == std::string_view::npos) break;
            names.folder = body.substr(0, separator);
            names.project = body.substr(separator + 1);
            break;
        }
        case tree::NodeKind::Component:
            ReadComponentKey(key, names);
            break;
        case tree::NodeKind::Placeholder:
            if (key.starts_with(kPlaceholderPrefix)) {
                ReadComponentKey(key.substr(kPlaceholderPrefix.size()), names);
            }
            break;
        case tree::NodeKind::CodeLine: {
            // Components with code have identifiers for names, so the first "~@" ends the
            // component key; the line identifier may hold "@" and "~" of its own.
            const std::size_t end = key.find("~@");
            if (key.starts_with('S') && end != std::string_view::npos) {
                ReadComponentKey(key.substr(1, end), names);
            }
            break;
        }
        case tree::NodeKind::Other:
            break;
    }
    return names;
}

std::int64_t CodeLineNumber(std::string_view codeKey) {
    constexpr std::int64_t kCap = 999'999'999;
    std::size_t start = codeKey.size();
    while (start > 0 && codeKey[start - 1] >= '0' && codeKey[start - 1] <= '9')
        --start;
    std::int64_t number = 0;
    for (const char digit : codeKey.substr(start)) {
        number = number * 10 + (digit - '0');
        if (number > kCap) return kCap;
    }
    return number;
}

std::string GotoItemKey(std::string_view codeKey) {
    return std::string(kGotoPrefix) + std::string(codeKey);
}

std::optional<std::string> CodeKeyOfGotoItem(std::string_view itemKey) {
    if (!itemKey.starts_with(kGotoPrefix)) return std::nullopt;
    return std::string(itemKey.substr(kGotoPrefix.size()));
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
