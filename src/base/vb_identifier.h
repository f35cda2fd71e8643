// The names Visual Basic takes for components and projects: an identifier of at most 40
// characters that is not a reserved word. Pure rules, so every front end refuses the same names
// with the same reasons.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace arbolet {

// The longest name the IDE takes for a component or a project.
inline constexpr std::size_t kMaxVbNameLength = 40;

// Whether the word is one of the language's reserved words (`If`, `Sub`, `Dim`, `String`, ...),
// ignoring letter case.
bool IsVbReservedWord(std::string_view word);

// Why the IDE refuses `name` for a component or a project, as a sentence to show after its
// "Invalid property value"; nullopt when the name is valid. Uniqueness is the caller's to check.
std::optional<std::string> InvalidVbNameReason(std::string_view name);

}  // namespace arbolet
