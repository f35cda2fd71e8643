// The keys, captions and pictures of the project tree's nodes, and the persisted folder data's
// names. Every part of the program finds nodes again by these keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "environment/vbide.h"
#include "treemodel/tree_view.h"

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
// A code node's key: from its component's key and its line's identifier.
std::string CodeNodeKey(std::string_view componentKey, std::string_view lineId);

// The names a node's key is made of, read by what the node is (its kind as the tree stores it,
// never guessed from the text). Fields the kind does not have stay empty; so do all of them for
// a key that is not of the kind's form.
struct KeyNames {
    std::string project;
    std::string folder;
    std::string component;
    // For placeholders and code nodes: the key of their component node.
    std::string componentKey;
};
KeyNames ReadKey(tree::NodeKind kind, std::string_view key);

// The line a code node stands for: the trailing digits of its key as a 0-based number (0 when
// there are none; very long digit runs are capped rather than overflowing).
std::int64_t CodeLineNumber(std::string_view codeKey);

// A menu item key that goes to a code node's line, and back; "Goto:" is compared with its case.
std::string GotoItemKey(std::string_view codeKey);
std::optional<std::string> CodeKeyOfGotoItem(std::string_view itemKey);

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
