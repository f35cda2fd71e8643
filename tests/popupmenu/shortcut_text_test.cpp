// Shortcut display texts: modifiers, named keys and plain characters.
#include "popupmenu/shortcut_text.h"

#include <gtest/gtest.h>

namespace arbolet::popupmenu {
namespace {

TEST(ShortcutDisplayText, ModifiersComeFirstInTheOrderWritten) {
    EXPECT_EQ(ShortcutDisplayText("^c"), "Ctrl+C");
    EXPECT_EQ(ShortcutDisplayText("^+{DEL}"), "Ctrl+Shift+Del");
    EXPECT_EQ(ShortcutDisplayText("%{BREAK}"), "Alt+Break");
    EXPECT_EQ(ShortcutDisplayText("+^x"), "Shift+Ctrl+X");
}

TEST(ShortcutDisplayText, NamedKeysTakeTheirMenuNames) {
    EXPECT_EQ(ShortcutDisplayText("{HOME}"), "Home");
    EXPECT_EQ(ShortcutDisplayText("{end}"), "End");
    EXPECT_EQ(ShortcutDisplayText("{LEFT}"), "Left Arrow");
    EXPECT_EQ(ShortcutDisplayText("{RIGHT}"), "Right Arrow");
    EXPECT_EQ(ShortcutDisplayText("{UP}"), "Up Arrow");
    EXPECT_EQ(ShortcutDisplayText("{DOWN}"), "Down Arrow");
    EXPECT_EQ(ShortcutDisplayText("{PGUP}"), "Page Up");
    EXPECT_EQ(ShortcutDisplayText("{DELETE}"), "Del");
    EXPECT_EQ(ShortcutDisplayText("{ENTER}"), "Enter");
    EXPECT_EQ(ShortcutDisplayText("~"), "Enter");
    EXPECT_EQ(ShortcutDisplayText("{TAB}"), "Tab");
    EXPECT_EQ(ShortcutDisplayText("{ESC}"), "Esc");
    EXPECT_EQ(ShortcutDisplayText("{F5}"), "F5");
}

TEST(ShortcutDisplayText, LoneSignsAndOddInputAreKeysThemselves) {
    EXPECT_EQ(ShortcutDisplayText("+"), "+");
    EXPECT_EQ(ShortcutDisplayText("^+"), "Ctrl++");
    EXPECT_EQ(ShortcutDisplayText(""), "");
    EXPECT_EQ(ShortcutDisplayText("{"), "{");
    EXPECT_EQ(ShortcutDisplayText("{}"), "");
}

}  // namespace
}  // namespace arbolet::popupmenu
