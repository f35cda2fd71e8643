// What `arbolet check` finds: findings per file, with the rule ids every output format shares.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "check/check_config.h"

namespace arbolet::check {

struct Finding {
    std::string path;       // as shown to the user
    std::int32_t line = 0;  // 1-based; 0 when it concerns the whole file
    std::string severity;   // "error" or "warning"
    std::string rule;
    std::string message;
    std::int32_t relatedLine = 0;  // where the block concerned began; 0 when none
    std::string relatedText;
    std::string fingerprint;  // of the line's text, so that edits elsewhere keep it
    // The statement on the line, in characters from 1 (end exclusive); 0 when unknown.
    std::int32_t column = 0;
    std::int32_t endColumn = 0;
};

inline Finding MakeFinding(std::string path, std::int32_t line, std::string severity,
                           std::string_view rule, std::string message) {
    Finding finding;
    finding.path = std::move(path);
    finding.line = line;
    finding.severity = std::move(severity);
    finding.rule = rule;
    finding.message = std::move(message);
    return finding;
}

struct FileResult {
    std::vector<Finding> findings;
    bool unreadable = false;
};

enum class RuleSet { Vb6, Window };

struct RuleInfo {
    std::string_view id;
    std::string_view description;
};

// Every rule id the given rule set can report, file and project rules included.
std::vector<RuleInfo> CheckRules(RuleSet rules);

// The fingerprint of a line's text: blanks around and inside it do not count.
std::string Fingerprint(std::string_view lineText);

// Checks the bytes of a component file as they are on disk (in its code page), such as an
// editor's unsaved text; `shown` is the path as the user should see it.
// Quality limits (vb6 rules only) add warnings for procedures above them.
FileResult CheckComponentBytes(std::string_view bytes, const std::string& shown, int codePage,
                               RuleSet rules, const QualityLimits& limits = {});

// Checks one component file; `shown` is the path as the user should see it.
FileResult CheckComponentFile(const std::filesystem::path& path, const std::string& shown,
                              int codePage, RuleSet rules, const QualityLimits& limits = {});

// Rules of the files and projects themselves.
inline constexpr std::string_view kMissingFile = "missing-file";
inline constexpr std::string_view kUnreadableFile = "unreadable-file";
inline constexpr std::string_view kUnreadableFolder = "unreadable-folder";
inline constexpr std::string_view kProjectFile = "project-file";
inline constexpr std::string_view kFileFormat = "file-format";
inline constexpr std::string_view kByteOrderMark = "byte-order-mark";

}  // namespace arbolet::check
