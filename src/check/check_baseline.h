// Baselines for adopting `arbolet check` on old code: today's findings are recorded by file,
// rule and a fingerprint of the line's text, so that edits elsewhere in a file do not disturb
// them; later runs fail only on findings the baseline does not hold.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "check/check_findings.h"

namespace arbolet::check {

class Baseline {
  public:
    // Reads a baseline file; raises disk::FileError when it cannot be read or is no baseline.
    static Baseline Read(const std::filesystem::path& file);

    // Writes the findings as a baseline file, atomically; raises disk::FileError.
    static void Write(const std::filesystem::path& file, const std::vector<FileResult>& results);

    // Removes the findings the baseline holds (each recorded finding excuses one); returns how
    // many were removed.
    std::size_t Suppress(std::vector<FileResult>& results);

  private:
    explicit Baseline(std::filesystem::path folder) : folder_(std::move(folder)) {}

    using Key = std::tuple<std::string, std::string, std::string>;  // path, rule, fingerprint
    std::filesystem::path folder_;
    std::map<Key, std::size_t> known_;
};

}  // namespace arbolet::check
