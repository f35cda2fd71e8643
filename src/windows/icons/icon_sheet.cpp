// The icon sheet parser: one pass over the lines, stopping at the first malformed one.
#include "windows/icons/icon_sheet.h"

#include <array>
#include <charconv>
#include <optional>

namespace arbolet::windows::icons {
namespace {

constexpr int kMaxSize = 256;

std::string_view TrimLineEnd(std::string_view line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) {
        line.remove_suffix(1);
    }
    return line;
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::optional<std::uint32_t> ParseHexColour(std::string_view hex) {
    if (hex.size() != 6) return std::nullopt;
    std::uint32_t rgb = 0;
    const auto [end, ec] = std::from_chars(hex.data(), hex.data() + hex.size(), rgb, 16);
    if (ec != std::errc{} || end != hex.data() + hex.size()) return std::nullopt;
    return 0xFF000000u | rgb;
}

class SheetReader {
  public:
    IconSheet Read(std::string_view text) {
        while (!text.empty() && sheet_.error.empty()) {
            const std::size_t end = text.find('\n');
            const std::string_view line =
                TrimLineEnd(text.substr(0, end == std::string_view::npos ? text.size() : end));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
            ++lineNumber_;
            ReadLine(line);
        }
        if (sheet_.error.empty() && rowsLeft_ > 0)
            Fail("icon '" + current_.name + "' is cut short");
        return std::move(sheet_);
    }

  private:
    void ReadLine(std::string_view line) {
        if (rowsLeft_ > 0) return ReadRow(line);
        if (line.empty() || line.front() == '#') return;
        if (StartsWith(line, "size ")) return ReadSize(line.substr(5));
        if (StartsWith(line, "colour ")) return ReadColour(line.substr(7));
        if (line == "icon") return StartIcon({});
        if (StartsWith(line, "icon ")) return StartIcon(line.substr(5));
        Fail("unknown line '" + std::string(line.substr(0, 40)) + "'");
    }

    void ReadSize(std::string_view value) {
        int size = 0;
        const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), size);
        if (ec != std::errc{} || end != value.data() + value.size() || size < 1 ||
            size > kMaxSize) {
            return Fail("the size must be a number from 1 to 256");
        }
        if (sheet_.size != 0) return Fail("the size is given twice");
        sheet_.size = size;
    }

    void ReadColour(std::string_view value) {
        const std::optional<std::uint32_t> argb =
            value.size() == 8 && value[1] == ' ' ? ParseHexColour(value.substr(2)) : std::nullopt;
        if (!argb) return Fail("a colour is written 'colour C RRGGBB'");
        const auto c = static_cast<unsigned char>(value[0]);
        if (c == '.' || c <= ' ' || c >= 127)
            return Fail("a colour needs a visible character other than '.'");
        palette_[c] = *argb;
    }

    void StartIcon(std::string_view name) {
        if (sheet_.size == 0) return Fail("the size must come before the first icon");
        if (name.empty()) return Fail("an icon needs a name");
        if (sheet_.icons.contains(name))
            return Fail("icon '" + std::string(name) + "' is drawn twice");
        current_ = IconPixels{std::string(name), {}};
        current_.argb.reserve(static_cast<std::size_t>(sheet_.size * sheet_.size));
        rowsLeft_ = sheet_.size;
    }

    void ReadRow(std::string_view row) {
        if (static_cast<int>(row.size()) != sheet_.size) {
            return Fail("icon '" + current_.name + "' has a row of " + std::to_string(row.size()) +
                        " pixels, not " + std::to_string(sheet_.size));
        }
        for (const char ch : row) {
            const auto c = static_cast<unsigned char>(ch);
            if (c == '.') {
                current_.argb.push_back(0);
            } else if (palette_[c] != 0) {
                current_.argb.push_back(palette_[c]);
            } else {
                return Fail("icon '" + current_.name + "' uses '" + std::string(1, ch) +
                            "', which is not in the palette");
            }
        }
        if (--rowsLeft_ == 0) sheet_.icons.emplace(current_.name, std::move(current_));
    }

    void Fail(const std::string& what) {
        sheet_.error = "line " + std::to_string(lineNumber_) + ": " + what;
        rowsLeft_ = 0;
    }

    IconSheet sheet_;
    std::array<std::uint32_t, 256> palette_{};
    IconPixels current_;
    int rowsLeft_ = 0;
    int lineNumber_ = 0;
};

}  // namespace

const IconPixels* IconSheet::Find(std::string_view name) const {
    const auto found = icons.find(name);
    return found == icons.end() ? nullptr : &found->second;
}

IconSheet ParseIconSheet(std::string_view text) {
    return SheetReader{}.Read(text);
}

}  // namespace arbolet::windows::icons
