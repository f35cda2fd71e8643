// Reading, writing and applying check baselines (see check_baseline.h).
#include "check/check_baseline.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "check/check_text.h"

#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::check {
namespace fs = std::filesystem;
namespace {

constexpr int kFormatVersion = 1;

// The folder of a file, absolute and without `..`, so that `--baseline ../base.json` relates
// paths as well as an absolute name does.
fs::path AbsoluteFolderOf(const fs::path& file) {
    std::error_code ec;
    const fs::path absolute = fs::absolute(file, ec);
    return (ec ? file : absolute).lexically_normal().parent_path();
}

// A finding's path relative to the baseline's folder with `/` between its parts, so that the
// baseline holds wherever the check runs from and on every system; bytes that are not UTF-8
// are escaped, so that such names stay apart and match again.
std::string RelativeTo(const fs::path& folder, const std::string& shownPath) {
    std::error_code ec;
    const fs::path absolute = fs::absolute(disk::PathFromUtf8(shownPath), ec).lexically_normal();
    const fs::path relative = absolute.lexically_relative(folder);
    return ShownText(disk::PathToUtf8((relative.empty() ? absolute : relative).generic_u8string()));
}

// The line of a byte offset, counted from 1.
std::size_t LineAt(std::string_view bytes, std::size_t offset) {
    offset = std::min(offset, bytes.size());
    return 1 + static_cast<std::size_t>(std::count(
                   bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

[[noreturn]] void NotABaseline(const fs::path& file, const std::string& what) {
    throw disk::FileError(file, "not an arbolet baseline: " + what);
}

std::string Member(const nlohmann::json& entry, const char* key, const fs::path& file,
                   std::size_t index) {
    const auto it = entry.find(key);
    if (it == entry.end() || !it->is_string()) {
        NotABaseline(file, "finding " + std::to_string(index + 1) + " has no text \"" + key + "\"");
    }
    return it->get<std::string>();
}

}  // namespace

Baseline Baseline::Read(const fs::path& file) {
    const std::string bytes = disk::ReadFileBytes(file);
    Baseline baseline(AbsoluteFolderOf(file));
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(bytes);
    } catch (const nlohmann::json::parse_error& error) {
        NotABaseline(file, "not JSON at line " + std::to_string(LineAt(bytes, error.byte)));
    }
    if (!document.is_object()) NotABaseline(file, "not a JSON object");
    const auto version = document.find("version");
    if (version == document.end() || !version->is_number_integer())
        NotABaseline(file, "no \"version\" number");
    if (version->get<std::int64_t>() != kFormatVersion)
        NotABaseline(file, "version " + version->dump() + ", which this arbolet does not know");
    const auto findings = document.find("findings");
    if (findings == document.end() || !findings->is_array())
        NotABaseline(file, "no \"findings\" list");
    for (std::size_t i = 0; i < findings->size(); ++i) {
        const auto& entry = (*findings)[i];
        if (!entry.is_object())
            NotABaseline(file, "finding " + std::to_string(i + 1) + " is not a JSON object");
        ++baseline.known_[{Member(entry, "path", file, i), Member(entry, "rule", file, i),
                           Member(entry, "fingerprint", file, i)}];
    }
    return baseline;
}

void Baseline::Write(const fs::path& file, const std::vector<FileResult>& results) {
    const fs::path folder = AbsoluteFolderOf(file);
    auto findings = nlohmann::json::array();
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            findings.push_back({{"path", RelativeTo(folder, f.path)},
                                {"rule", f.rule},
                                {"fingerprint", f.fingerprint},
                                {"line", f.line},
                                {"message", ShownText(f.message)}});
        }
    }
    const nlohmann::json document = {{"version", kFormatVersion}, {"findings", findings}};
    disk::WriteFileAtomic(
        file, document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n');
}

std::size_t Baseline::Suppress(std::vector<FileResult>& results) {
    std::size_t suppressed = 0;
    for (auto& result : results) {
        std::erase_if(result.findings, [&](const Finding& f) {
            const auto known = known_.find({RelativeTo(folder_, f.path), f.rule, f.fingerprint});
            if (known == known_.end() || known->second == 0) return false;
            --known->second;
            ++suppressed;
            return true;
        });
    }
    return suppressed;
}

}  // namespace arbolet::check
