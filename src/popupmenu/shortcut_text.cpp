// Translates sent-key notation into the key names that menus show.
#include "popupmenu/shortcut_text.h"

#include <array>
#include <cctype>
#include <utility>

namespace arbolet::popupmenu {
namespace {

struct KeyName {
    std::string_view written;
    std::string_view shown;
};

constexpr std::array<KeyName, 14> kKeyNames = {{
    {"HOME", "Home"},
    {"END", "End"},
    {"LEFT", "Left Arrow"},
    {"RIGHT", "Right Arrow"},
    {"UP", "Up Arrow"},
    {"DOWN", "Down Arrow"},
    {"PGUP", "Page Up"},
    {"DEL", "Del"},
    {"DELETE", "Del"},
    {"ENTER", "Enter"},
    {"TAB", "Tab"},
    {"ESC", "Esc"},
    {"ESCAPE", "Esc"},
    {"BREAK", "Break"},
}};

std::string Upper(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return result;
}

std::string NamedKey(std::string_view name) {
    const std::string upper = Upper(name);
    for (const KeyName& key : kKeyNames) {
        if (upper == key.written) return std::string(key.shown);
    }
    return std::string(name);
}

}  // namespace

std::string ShortcutDisplayText(std::string_view sKeys) {
    std::string result;
    std::size_t pos = 0;
    // A modifier sign is only a modifier while a key still follows it.
    for (; pos + 1 < sKeys.size(); ++pos) {
        const char c = sKeys[pos];
        if (c == '^') {
            result += "Ctrl+";
        } else if (c == '+') {
            result += "Shift+";
        } else if (c == '%') {
            result += "Alt+";
        } else {
            break;
        }
    }
    const std::string_view key = sKeys.substr(pos);
    if (key.size() >= 2 && key.front() == '{' && key.back() == '}') {
        result += NamedKey(key.substr(1, key.size() - 2));
    } else if (key == "~") {
        result += "Enter";
    } else {
        result += Upper(key);
    }
    return result;
}

}  // namespace arbolet::popupmenu
