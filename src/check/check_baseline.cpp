// Reading, writing and applying check baselines (see check_baseline.h).
#include "check/check_baseline.h"

#include <nlohmann/json.hpp>

#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::check {
namespace fs = std::filesystem;
namespace {

constexpr int kFormatVersion = 1;

fs::path AbsoluteFolderOf(const fs::path& file) {
    std::error_code ec;
    const fs::path absolute = fs::absolute(file, ec);
    return (ec ? file : absolute).parent_path();
}

// A finding's path relative to the baseline's folder, so that the baseline holds wherever the
// check runs from.
std::string RelativeTo(const fs::path& folder, const std::string& shownPath) {
    std::error_code ec;
    const fs::path absolute = fs::absolute(disk::PathFromUtf8(shownPath), ec).lexically_normal();
    const fs::path relative = absolute.lexically_relative(folder);
    return disk::PathToUtf8((relative.empty() ? absolute : relative).generic_u8string());
}

}  // namespace

Baseline Baseline::Read(const fs::path& file) {
    const std::string bytes = disk::ReadFileBytes(file);
    Baseline baseline(AbsoluteFolderOf(file));
    try {
        const auto document = nlohmann::json::parse(bytes);
        if (document.at("version").get<int>() != kFormatVersion)
            throw disk::FileError(file, "baseline of an unknown version");
        for (const auto& entry : document.at("findings")) {
            ++baseline
                  .known_[{entry.at("path").get<std::string>(), entry.at("rule").get<std::string>(),
                           entry.at("fingerprint").get<std::string>()}];
        }
    } catch (const nlohmann::json::exception& error) {
        throw disk::FileError(file, std::string("not an arbolet baseline: ") + error.what());
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
                                {"message", f.message}});
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
