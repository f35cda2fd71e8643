// What the about box says about the product: its name, version and licence.
#pragma once

namespace arbolet::windows::dialogs {

inline constexpr const char* kProductName = "Arbolet";
inline constexpr const char* kProductTagline = "Visual Basic 6 projects as logic-flow trees";
inline constexpr const char* kLicence = "Released under the MIT License.";

// The build's version ("0.1.0"), the same one `arbolet --version` prints.
const char* ProductVersion() noexcept;

}  // namespace arbolet::windows::dialogs
