// Parsing and editing .vbp project files (see project_file.h).
#include "disk/project_file.h"

#include <algorithm>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/codepage.h"
#include "environment/vbide.h"

namespace arbolet::disk {
namespace {

constexpr const char* kWriteSource = "VBProject.WriteProperty";

std::string_view TrimBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

bool SameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && text::ToLower(a) == text::ToLower(b);
}

[[noreturn]] void RaiseUnstorable(const std::string& what) {
    throw VbError(env::enverr::kInvalidProcedureCall, kWriteSource, what);
}

void RequireSingleLine(std::string_view text, std::string_view what) {
    if (text.find_first_of("\r\n") != std::string_view::npos) {
        RaiseUnstorable(std::string(what) + " cannot hold a line break");
    }
}

}  // namespace

std::string Unquoted(std::string_view value) {
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
        value = value.substr(1, value.size() - 2);
    }
    return std::string(value);
}

ProjectFile::ProjectFile(std::string bytes, int codePage)
    : editor_(std::move(bytes)), codePage_(codePage) {
    Parse();
}

bool ProjectFile::IsBinary() const {
    for (const auto& diagnostic : diagnostics_) {
        if (diagnostic.severity == FileDiagnostic::Severity::Error) return true;
    }
    return false;
}

void ProjectFile::Parse() {
    topLevel_.clear();
    sections_.clear();
    diagnostics_.clear();
    if (Bytes().find('\0') != std::string::npos) {
        for (std::size_t i = 0; i < editor_.LineCount(); ++i) {
            if (editor_.Content(i).find('\0') == std::string_view::npos) continue;
            diagnostics_.push_back({FileDiagnostic::Severity::Error,
                                    static_cast<std::int32_t>(i + 1),
                                    "binary data (a NUL byte): this is not a VB6 project file"});
            return;
        }
    }
    for (std::size_t i = 0; i < editor_.LineCount(); ++i) {
        const auto fileLine = static_cast<std::int32_t>(i + 1);
        const std::string_view raw = editor_.Content(i);
        if (raw.size() > kMaxVbLineBytes) {
            diagnostics_.push_back(
                {FileDiagnostic::Severity::Warning, fileLine,
                 "line of " + std::to_string(raw.size()) + " bytes; VB6 loads at most 1023"});
        }
        const std::string decoded = DecodeCodePage(raw, codePage_);
        const std::string_view line = TrimBlanks(decoded);
        if (line.empty() || line.front() == ';') continue;
        const auto equals = line.find('=');
        if (line.front() == '[' && line.find(']') != std::string_view::npos &&
            (equals == std::string_view::npos || equals > line.find(']'))) {
            sections_.push_back({std::string(line.substr(1, line.find(']') - 1)), i, {}});
        } else if (equals != std::string_view::npos) {
            ProjectEntry entry{i, std::string(TrimBlanks(line.substr(0, equals))),
                               std::string(TrimBlanks(line.substr(equals + 1)))};
            (sections_.empty() ? topLevel_ : sections_.back().entries).push_back(std::move(entry));
        } else {
            diagnostics_.push_back({FileDiagnostic::Severity::Warning, fileLine,
                                    "neither [Section] nor Key=Value; the line is left as it is"});
        }
    }
}

std::optional<std::string> ProjectFile::TopLevelValue(std::string_view key) const {
    for (const auto& entry : topLevel_) {
        if (SameName(entry.key, key)) return entry.value;
    }
    return std::nullopt;
}

const ProjectSection* ProjectFile::FindSection(std::string_view name) const {
    for (const auto& section : sections_) {
        if (SameName(section.name, name)) return &section;
    }
    return nullptr;
}

std::optional<std::string> ProjectFile::ReadProperty(std::string_view section,
                                                     std::string_view key) const {
    const ProjectSection* found = FindSection(section);
    if (found == nullptr) return std::nullopt;
    for (const auto& entry : found->entries) {
        if (SameName(entry.key, key)) return entry.value;
    }
    return std::nullopt;
}

std::string ProjectFile::Encode(std::string_view text) const {
    auto encoded = EncodeCodePage(text, codePage_);
    if (!encoded) {
        RaiseUnstorable("'" + std::string(text) + "' cannot be written in code page " +
                        std::to_string(codePage_));
    }
    return std::move(*encoded);
}

bool ProjectFile::WriteProperty(std::string_view section, std::string_view key,
                                std::string_view value) {
    RequireSingleLine(section, "A section name");
    RequireSingleLine(key, "A key");
    RequireSingleLine(value, "A value");
    if (section.empty() || section.find(']') != std::string_view::npos) {
        RaiseUnstorable("'" + std::string(section) + "' cannot be a section name");
    }
    if (TrimBlanks(key).empty() || key.find('=') != std::string_view::npos ||
        TrimBlanks(key).front() == '[' || TrimBlanks(key).front() == ';') {
        RaiseUnstorable("'" + std::string(key) + "' cannot be a key");
    }
    const std::string encodedValue = Encode(value);
    const std::string newLine = Encode(key) + "=" + encodedValue;
    const ProjectSection* found = FindSection(section);
    if (found == nullptr) {
        editor_.InsertLine(editor_.LineCount(), Encode("[" + std::string(section) + "]"));
        editor_.InsertLine(editor_.LineCount(), newLine);
    } else {
        const ProjectEntry* existing = nullptr;
        for (const auto& entry : found->entries) {
            if (SameName(entry.key, key)) {
                existing = &entry;
                break;
            }
        }
        if (existing != nullptr) {
            if (existing->value == value) return false;
            // The blanks between "=" and the value are kept, as is everything before them.
            const std::string_view raw = editor_.Content(existing->line);
            const std::size_t valueStart =
                std::min(raw.find_first_not_of(" \t", raw.find('=') + 1), raw.size());
            editor_.ReplaceInLine(existing->line, valueStart, raw.size() - valueStart,
                                  encodedValue);
        } else {
            const std::size_t after =
                found->entries.empty() ? found->headerLine : found->entries.back().line;
            editor_.InsertLine(after + 1, newLine);
        }
    }
    Parse();
    return true;
}

void ProjectFile::SetTopLevelValue(std::size_t line, std::string_view value) {
    RequireSingleLine(value, "A value");
    const std::string encoded = Encode(value);
    const std::string_view raw = editor_.Content(line);
    const std::size_t equals = raw.find('=');
    if (equals == std::string_view::npos) RaiseUnstorable("the line holds no value");
    const std::size_t valueStart = std::min(raw.find_first_not_of(" \t", equals + 1), raw.size());
    editor_.ReplaceInLine(line, valueStart, raw.size() - valueStart, encoded);
    Parse();
}

void ProjectFile::AddTopLevelEntry(std::string_view key, std::string_view value) {
    RequireSingleLine(key, "A key");
    RequireSingleLine(value, "A value");
    const std::string newLine = Encode(key) + "=" + Encode(value);
    const std::size_t before = topLevel_.empty() ? 0 : topLevel_.back().line + 1;
    editor_.InsertLine(before, newLine);
    Parse();
}

void ProjectFile::InsertTopLevelEntry(std::size_t afterLine, std::string_view key,
                                      std::string_view value) {
    RequireSingleLine(key, "A key");
    RequireSingleLine(value, "A value");
    editor_.InsertLine(afterLine + 1, Encode(key) + "=" + Encode(value));
    Parse();
}

void ProjectFile::RemoveTopLevelEntry(std::size_t line) {
    editor_.RemoveLine(line);
    Parse();
}

}  // namespace arbolet::disk
