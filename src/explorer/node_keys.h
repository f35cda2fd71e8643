// The keys, captions and pictures of the project tree's nodes, and the persisted folder data's
// names. Every part of the program finds nodes again by these keys.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "environment/vbide.h"

namespace arbolet::explorer {

// Where the folder list of a project and the folder of a component are stored.
inline constexpr std::string_view kFolderSection = "Quorlin";
inline constexpr std::string_view kFolderProperty = "QX-TypeName";

// ImageList indexes.
inline constexpr std::int32_t kProjectImage = 1;
inline constexpr std::int32_t kComponentImage = 2;

inline constexpr std::string_view kProjectKeyPrefix = "Project~";
inline constexpr std::string_view kPlaceholderText = "Code List";

std::string ProjectKey(std::string_view projectName);
std::string FolderKey(std::string_view folderName, std::string_view projectName);
std::string ComponentKey(std::string_view componentName, std::string_view projectName);
std::string PlaceholderKey(std::string_view componentKey);

// Element `index` (0-based) of the key split at "~"; empty when the key has fewer elements.
std::string_view KeyField(std::string_view key, std::size_t index);

// The fixed group a component shows in when it has no custom folder.
std::string_view FixedGroupCaption(env::ComponentType type);
// Whether a folder name is one of the fixed groups, in any letter case.
bool IsFixedGroupName(std::string_view folderName);

// The name a component is known by in the tree: its name, or for a component without one
// (a related document, a resource file) the name of its first file.
std::string ComponentDisplayName(const env::VBComponent& component);

// At least one character, and none of: control characters, ";", and everything from "~" (126)
// up, which keeps the key separator out and limits names to plain ASCII on purpose.
bool IsValidFolderName(std::string_view name);

}  // namespace arbolet::explorer
