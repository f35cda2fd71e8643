// Reading `.arbolet.json` (see check_config.h). A small reader of its own rather than a JSON
// library, so that every message can name the line at fault, comments included.
#include "check/check_config.h"

#include <cctype>
#include <charconv>
#include <system_error>

#include "disk/file_io.h"

namespace arbolet::check {
namespace {

class ConfigReader {
  public:
    ConfigReader(std::string_view text, const std::string& shown) : text_(text), shown_(shown) {}

    QualityLimits Read() {
        Blank();
        Expect('{', "the configuration must be a JSON object");
        Blank();
        if (Peek() == '}') {
            ++at_;
        } else {
            while (true) {
                Member();
                Blank();
                if (Peek() == ',') {
                    ++at_;
                    Blank();
                    continue;
                }
                Expect('}', "expected `,` or `}` after a value");
                break;
            }
        }
        Blank();
        if (at_ < text_.size()) Fail("unexpected text after the closing `}`");
        return limits_;
    }

  private:
    void Member() {
        const std::size_t keyLine = line_;
        const std::string key = String();
        Blank();
        Expect(':', "expected `:` after the key \"" + key + "\"");
        Blank();
        std::optional<int>* target = nullptr;
        if (key == "max-nesting") target = &limits_.maxNesting;
        if (key == "max-procedure-lines") target = &limits_.maxProcedureLines;
        if (key == "max-complexity") target = &limits_.maxComplexity;
        if (target == nullptr) {
            FailAt(keyLine, "unknown key \"" + key +
                                "\" (known: max-nesting, max-procedure-lines, max-complexity)");
        }
        *target = PositiveNumber(key);
    }

    int PositiveNumber(const std::string& key) {
        const std::size_t start = at_;
        while (at_ < text_.size() &&
               (std::isalnum(static_cast<unsigned char>(text_[at_])) || text_[at_] == '-' ||
                text_[at_] == '.' || text_[at_] == '"' || text_[at_] == '+'))
            ++at_;
        const std::string_view value = text_.substr(start, at_ - start);
        int number = 0;
        const auto [end, error] =
            std::from_chars(value.data(), value.data() + value.size(), number);
        if (value.empty() || error != std::errc() || end != value.data() + value.size() ||
            number < 1) {
            Fail("\"" + key + "\" must be a whole number from 1 up, not " +
                 (value.empty() ? std::string("nothing") : std::string(value)));
        }
        return number;
    }

    std::string String() {
        Expect('"', "expected a key in double quotes");
        std::string value;
        while (at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\n') Fail("a string runs past the end of its line");
            if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
            value += text_[at_++];
        }
        Expect('"', "a string is not closed");
        return value;
    }

    // Blanks, line ends and comments.
    void Blank() {
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (c == '\n') {
                ++line_;
                ++at_;
            } else if (c == ' ' || c == '\t' || c == '\r') {
                ++at_;
            } else if (text_.substr(at_).starts_with("//")) {
                while (at_ < text_.size() && text_[at_] != '\n')
                    ++at_;
            } else if (text_.substr(at_).starts_with("/*")) {
                const std::size_t startLine = line_;
                at_ += 2;
                while (at_ < text_.size() && !text_.substr(at_).starts_with("*/")) {
                    if (text_[at_] == '\n') ++line_;
                    ++at_;
                }
                if (at_ >= text_.size()) FailAt(startLine, "a /* comment is not closed");
                at_ += 2;
            } else {
                return;
            }
        }
    }

    char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    void Expect(char c, const std::string& message) {
        if (Peek() != c) Fail(message);
        ++at_;
    }

    [[noreturn]] void Fail(const std::string& message) const { FailAt(line_, message); }

    [[noreturn]] void FailAt(std::size_t line, const std::string& message) const {
        throw ConfigError(shown_ + ":" + std::to_string(line) + ": " + message);
    }

    std::string_view text_;
    const std::string& shown_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
    QualityLimits limits_;
};

}  // namespace

void QualityLimits::OverrideWith(const QualityLimits& other) {
    if (other.maxNesting) maxNesting = other.maxNesting;
    if (other.maxProcedureLines) maxProcedureLines = other.maxProcedureLines;
    if (other.maxComplexity) maxComplexity = other.maxComplexity;
}

QualityLimits ParseConfig(std::string_view text, const std::string& shown) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    return ConfigReader(text, shown).Read();
}

std::optional<std::filesystem::path> FindConfig(const std::filesystem::path& folder) {
    std::error_code ec;
    std::filesystem::path at = std::filesystem::absolute(folder, ec);
    if (ec) at = folder;
    while (true) {
        const std::filesystem::path candidate = at / kConfigFileName;
        if (std::filesystem::is_regular_file(candidate, ec)) return candidate;
        if (!at.has_parent_path() || at.parent_path() == at) return std::nullopt;
        at = at.parent_path();
    }
}

QualityLimits LoadConfig(const std::filesystem::path& file, const std::string& shown) {
    std::string bytes;
    try {
        bytes = disk::ReadFileBytes(file);
    } catch (const disk::FileError& error) {
        throw ConfigError(error.what());
    }
    return ParseConfig(bytes, shown);
}

}  // namespace arbolet::check
