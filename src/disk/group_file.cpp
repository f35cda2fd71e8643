// Parsing .vbg project groups (see group_file.h).
#include "disk/group_file.h"

#include "base/utf8.h"
#include "disk/codepage.h"

namespace arbolet::disk {
namespace {

std::string_view TrimBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool IsGroupHeader(std::string_view line) {
    const std::string lower = text::ToLower(TrimBlanks(line));
    return lower == "vbgroup" || lower.starts_with("vbgroup ");
}

}  // namespace

bool GroupFile::IsGroup() const {
    for (const auto& diagnostic : diagnostics) {
        if (diagnostic.severity == FileDiagnostic::Severity::Error) return false;
    }
    return true;
}

GroupFile ParseGroupFile(std::string_view bytes, int codePage) {
    GroupFile group;
    const std::vector<RawLine> lines = SplitRawLines(bytes);
    bool headerSeen = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto fileLine = static_cast<std::int32_t>(i + 1);
        const std::string_view raw = bytes.substr(lines[i].offset, lines[i].length);
        if (raw.find('\0') != std::string_view::npos) {
            group.diagnostics.push_back({FileDiagnostic::Severity::Error, fileLine,
                                         "binary data (a NUL byte): this is not a project group"});
            return group;
        }
        const std::string decoded = DecodeCodePage(raw, codePage);
        const std::string_view line = TrimBlanks(decoded);
        if (line.empty()) continue;
        if (!headerSeen) {
            if (!IsGroupHeader(line)) {
                group.diagnostics.push_back({FileDiagnostic::Severity::Error, fileLine,
                                             "not a project group: the first line must be "
                                             "VBGROUP 5.0"});
                return group;
            }
            headerSeen = true;
            continue;
        }
        const auto equals = line.find('=');
        const std::string key = equals == std::string_view::npos
                                    ? ""
                                    : text::ToLower(TrimBlanks(line.substr(0, equals)));
        if (key == "project" || key == "startupproject") {
            group.projects.push_back(
                {i, std::string(TrimBlanks(line.substr(equals + 1))), key == "startupproject"});
        }
    }
    if (!headerSeen) {
        group.diagnostics.push_back(
            {FileDiagnostic::Severity::Error, 0, "not a project group: the file is empty"});
    }
    return group;
}

}  // namespace arbolet::disk
