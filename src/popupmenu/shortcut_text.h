// Shortcut keys as menus show them: "^+{DEL}", the way keys are written for sending, becomes
// "Ctrl+Shift+Del".
#pragma once

#include <string>
#include <string_view>

namespace arbolet::popupmenu {

// The display text of a shortcut. "^", "+" and "%" in front stand for Ctrl, Shift and Alt; a
// named key goes in braces ("{HOME}", "{PGUP}", "{F5}"); any other key is one character, shown
// in capitals. Names the menu does not know are shown as written inside the braces.
std::string ShortcutDisplayText(std::string_view sKeys);

}  // namespace arbolet::popupmenu
