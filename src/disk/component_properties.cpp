// Reading and writing VB_Ext_KEY module attributes (see component_properties.h).
#include "disk/component_properties.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/codepage.h"
#include "environment/vbide.h"

namespace arbolet::disk {
namespace {

// A cursor over one attribute line.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}

    void SkipBlanks() {
        while (!text_.empty() && (text_.front() == ' ' || text_.front() == '\t')) {
            text_.remove_prefix(1);
        }
    }
    bool Word(std::string_view lowerWord) {
        SkipBlanks();
        if (text_.size() < lowerWord.size() ||
            text::ToLower(text_.substr(0, lowerWord.size())) != lowerWord) {
            return false;
        }
        text_.remove_prefix(lowerWord.size());
        return true;
    }
    bool Symbol(char symbol) {
        SkipBlanks();
        if (text_.empty() || text_.front() != symbol) return false;
        text_.remove_prefix(1);
        return true;
    }
    // A VB string literal, with "" standing for one quote.
    std::optional<std::string> StringLiteral() {
        if (!Symbol('"')) return std::nullopt;
        std::string value;
        while (!text_.empty()) {
            const char c = text_.front();
            text_.remove_prefix(1);
            if (c != '"') {
                value += c;
            } else if (!text_.empty() && text_.front() == '"') {
                value += '"';
                text_.remove_prefix(1);
            } else {
                return value;
            }
        }
        return std::nullopt;
    }
    bool AtEnd() {
        SkipBlanks();
        return text_.empty();
    }
    bool StartsWithBlank() const {
        return !text_.empty() && (text_.front() == ' ' || text_.front() == '\t');
    }

  private:
    std::string_view text_;
};

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c;
        if (c == '"') quoted += '"';
    }
    return quoted + "\"";
}

}  // namespace

std::optional<std::pair<std::string, std::string>> ParseExtKeyAttribute(std::string_view line) {
    Scanner scanner(line);
    if (!scanner.Word("attribute") || !scanner.StartsWithBlank()) return std::nullopt;
    if (!scanner.Word("vb_ext_key") || !scanner.Symbol('=')) return std::nullopt;
    auto key = scanner.StringLiteral();
    if (!key || !scanner.Symbol(',')) return std::nullopt;
    auto value = scanner.StringLiteral();
    if (!value || !scanner.AtEnd()) return std::nullopt;
    return std::pair{std::move(*key), std::move(*value)};
}

std::string FormatExtKeyAttribute(std::string_view key, std::string_view value) {
    return "Attribute VB_Ext_KEY = " + Quoted(key) + " ," + Quoted(value);
}

ComponentText::ComponentText(std::string bytes, int codePage)
    : editor_(std::move(bytes)), codePage_(codePage) {
    file_ = ParseComponentFile(editor_.Bytes(), codePage_);
}

std::optional<std::size_t> ComponentText::FindPropertyLine(std::string_view key) const {
    const std::string wanted = text::ToLower(key);
    for (auto i = file_.attributesBegin; i < file_.attributesEnd; ++i) {
        const auto parsed = ParseExtKeyAttribute(file_.lines[static_cast<std::size_t>(i)]);
        if (parsed && text::ToLower(parsed->first) == wanted) return static_cast<std::size_t>(i);
    }
    return std::nullopt;
}

std::optional<std::string> ComponentText::ReadProperty(std::string_view key) const {
    const auto line = FindPropertyLine(key);
    if (!line) return std::nullopt;
    return ParseExtKeyAttribute(file_.lines[*line])->second;
}

bool ComponentText::WriteProperty(std::string_view key, std::string_view value) {
    constexpr const char* kSource = "VBComponent.WriteProperty";
    if (key.find_first_of("\r\n") != std::string_view::npos ||
        value.find_first_of("\r\n") != std::string_view::npos) {
        throw VbError(env::enverr::kInvalidProcedureCall, kSource,
                      "An extended property cannot hold a line break");
    }
    RequireReadableStructure(kSource);
    const auto line = FindPropertyLine(key);
    const std::string keyAsWritten =
        line ? ParseExtKeyAttribute(file_.lines[*line])->first : std::string(key);
    if (line && ParseExtKeyAttribute(file_.lines[*line])->second == value) return false;
    const auto encoded = EncodeCodePage(FormatExtKeyAttribute(keyAsWritten, value), codePage_);
    if (!encoded) {
        throw VbError(env::enverr::kInvalidProcedureCall, kSource,
                      "'" + std::string(value) + "' cannot be written in code page " +
                          std::to_string(codePage_));
    }
    if (line) {
        editor_.ReplaceContent(*line, *encoded);
    } else {
        InsertLineBehindMark(static_cast<std::size_t>(file_.attributesEnd), *encoded);
    }
    file_ = ParseComponentFile(editor_.Bytes(), codePage_);
    return true;
}

// A file whose structure could not be read is not edited: the new line could land anywhere.
void ComponentText::RequireReadableStructure(const char* source) const {
    for (const auto& diagnostic : file_.diagnostics) {
        if (diagnostic.severity != FileDiagnostic::Severity::Error) continue;
        throw VbError(env::enverr::kNotSupported, source,
                      "cannot be changed safely: line " + std::to_string(diagnostic.line) + ": " +
                          diagnostic.message);
    }
}

void ComponentText::Rename(std::string_view newName) {
    constexpr const char* kSource = "VBComponent.Name";
    RequireReadableStructure(kSource);
    const auto encoded = EncodeCodePage(newName, codePage_);
    if (!encoded || newName.find_first_of("\"\r\n") != std::string_view::npos) {
        throw VbError(env::enverr::kInvalidPropertyValue, kSource, "Invalid property value");
    }
    const std::string oldName = file_.name;
    std::optional<std::size_t> nameLine;
    for (auto i = file_.attributesBegin; i < file_.attributesEnd && !nameLine; ++i) {
        const std::string line = text::ToLower(file_.lines[static_cast<std::size_t>(i)]);
        const auto rest = text::TrimLeft(text::TrimLeft(line).substr(9));
        if (rest.starts_with("vb_name")) nameLine = static_cast<std::size_t>(i);
    }
    if (nameLine) {
        // Only the text between the quotes changes; the quotes are the same byte in every
        // supported code page.
        const std::string_view raw = editor_.Content(*nameLine);
        const auto open = raw.find('"');
        const auto close = open == std::string_view::npos ? open : raw.find('"', open + 1);
        if (open == std::string_view::npos) {
            const std::string_view mark = raw.substr(0, *nameLine == 0 ? Utf8BomLength(raw) : 0);
            editor_.ReplaceContent(*nameLine,
                                   std::string(mark) + "Attribute VB_Name = \"" + *encoded + "\"");
        } else {
            editor_.ReplaceInLine(*nameLine, open + 1,
                                  (close == std::string_view::npos ? raw.size() : close) - open - 1,
                                  *encoded);
        }
    } else {
        InsertLineBehindMark(static_cast<std::size_t>(file_.attributesBegin),
                             "Attribute VB_Name = \"" + *encoded + "\"");
    }
    RenameDesignerBlock(oldName, *encoded);
    file_ = ParseComponentFile(editor_.Bytes(), codePage_);
}

namespace {

// Where the control's name lies in the bytes of `Begin Project.Control name`, when the class
// names `projectName.controlName` (ignoring case). The keyword, the dot and the blanks are the
// same byte in every supported code page, so the line is taken apart in its own bytes; only the
// names are decoded to be compared.
struct HostedName {
    std::size_t column;
    std::size_t length;
};

std::optional<HostedName> FindHostedControl(std::string_view raw, int codePage,
                                            std::string_view projectName,
                                            std::string_view controlName) {
    const std::size_t start = raw.find_first_not_of(" \t");
    if (start == std::string_view::npos || raw.size() - start < 6) return std::nullopt;
    if (text::ToLower(raw.substr(start, 5)) != "begin") return std::nullopt;
    const std::size_t classStart = raw.find_first_not_of(" \t", start + 5);
    if (classStart == start + 5 || classStart == std::string_view::npos) return std::nullopt;
    const std::size_t classEnd = std::min(raw.find_first_of(" \t", classStart), raw.size());
    const std::string_view className = raw.substr(classStart, classEnd - classStart);
    const std::size_t dot = className.find('.');
    if (dot == std::string_view::npos) return std::nullopt;
    const std::string project = DecodeCodePage(className.substr(0, dot), codePage);
    const std::string control = DecodeCodePage(className.substr(dot + 1), codePage);
    if (text::ToLower(project) != text::ToLower(projectName) ||
        text::ToLower(control) != text::ToLower(controlName)) {
        return std::nullopt;
    }
    return HostedName{classStart + dot + 1, className.size() - dot - 1};
}

}  // namespace

bool ComponentText::RenameHostedControl(std::string_view projectName, std::string_view oldName,
                                        std::string_view newName) {
    constexpr const char* kSource = "VBComponent.Name";
    const std::size_t bom = Utf8BomLength(editor_.Bytes());
    std::vector<std::pair<std::size_t, HostedName>> found;
    for (std::size_t i = 0; i < static_cast<std::size_t>(file_.attributesBegin); ++i) {
        const std::size_t skip = i == 0 ? bom : 0;
        if (auto name = FindHostedControl(editor_.Content(i).substr(skip), codePage_, projectName,
                                          oldName)) {
            name->column += skip;
            found.emplace_back(i, *name);
        }
    }
    if (found.empty()) return false;
    // A designer block that is never closed leaves the attributes unknown: the file cannot be
    // edited safely, and the control would stay under its old name in it.
    RequireReadableStructure(kSource);
    const auto encoded = EncodeCodePage(newName, codePage_);
    if (!encoded) {
        throw VbError(env::enverr::kInvalidPropertyValue, kSource,
                      "'" + std::string(newName) + "' cannot be written in code page " +
                          std::to_string(codePage_));
    }
    for (const auto& [line, name] : found)
        editor_.ReplaceInLine(line, name.column, name.length, *encoded);
    file_ = ParseComponentFile(editor_.Bytes(), codePage_);
    return true;
}

// A line before the first line of the file goes behind its byte-order mark.
void ComponentText::InsertLineBehindMark(std::size_t before, const std::string& line) {
    const std::size_t bom = Utf8BomLength(editor_.Bytes());
    if (before != 0 || bom == 0 || editor_.LineCount() == 0) {
        editor_.InsertLine(before, line);
        return;
    }
    const std::string first(editor_.Content(0).substr(bom));
    editor_.InsertLine(0, line);
    editor_.ReplaceContent(0, std::string(kUtf8Bom) + line);
    editor_.ReplaceContent(1, first);
}

// `Begin VB.Form frmMain`: the IDE writes the component's name there too.
void ComponentText::RenameDesignerBlock(std::string_view oldName, const std::string& encodedName) {
    if (oldName.empty()) return;
    for (auto i = 0; i < file_.attributesBegin; ++i) {
        const std::string& line = file_.lines[static_cast<std::size_t>(i)];
        const std::string_view trimmed = text::TrimLeft(line);
        if (text::ToLower(trimmed.substr(0, 6)) != "begin ") continue;
        const std::string_view rest = text::TrimLeft(trimmed.substr(6));
        const auto classEnd = rest.find(' ');
        if (classEnd == std::string_view::npos) return;
        const std::string_view name = text::Trim(rest.substr(classEnd));
        if (text::ToLower(name) != text::ToLower(oldName)) return;
        // A line whose bytes are its characters (ASCII) holds the name at the same position.
        const auto column = static_cast<std::size_t>(name.data() - line.data());
        if (editor_.Content(static_cast<std::size_t>(i)) != line) return;
        editor_.ReplaceInLine(static_cast<std::size_t>(i), column, name.size(), encodedName);
        return;
    }
}

}  // namespace arbolet::disk
