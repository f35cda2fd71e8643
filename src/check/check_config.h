// The quality limits of `arbolet check` from a `.arbolet.json` file: JSON with `//` and `/* */`
// comments, found in the working folder or the nearest folder above it, as linters find theirs.
//
//   {
//     "max-nesting": 4,            // deepest block inside a procedure
//     "max-procedure-lines": 80,   /* lines of code of a procedure */
//     "max-complexity": 15         // cyclomatic complexity of a procedure
//   }
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace arbolet::check {

struct QualityLimits {
    std::optional<int> maxNesting;
    std::optional<int> maxProcedureLines;
    std::optional<int> maxComplexity;

    bool Any() const { return maxNesting || maxProcedureLines || maxComplexity; }
    // Limits given on the command line win over the file's.
    void OverrideWith(const QualityLimits& other);
};

inline constexpr std::string_view kConfigFileName = ".arbolet.json";

// A configuration that cannot be used; the message names the file and the line.
class ConfigError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Reads the text of a configuration file shown to the user as `shown`. Unknown keys, values that
// are not whole numbers from 1 up, and malformed JSON raise ConfigError.
QualityLimits ParseConfig(std::string_view text, const std::string& shown);

// The `.arbolet.json` in `folder` or the nearest folder above it; nullopt when there is none.
std::optional<std::filesystem::path> FindConfig(const std::filesystem::path& folder);

// Reads and parses a configuration file; raises ConfigError (also when it cannot be read).
QualityLimits LoadConfig(const std::filesystem::path& file, const std::string& shown);

}  // namespace arbolet::check
