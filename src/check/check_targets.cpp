// Which component files a `check` covers (see check_targets.h).
#include "check/check_targets.h"

#include <algorithm>
#include <optional>
#include <set>

#include "base/utf8.h"
#include "check/path_glob.h"
#include "disk/component_file.h"
#include "disk/disk_environment.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::check {
namespace fs = std::filesystem;
namespace {

class Collector {
  public:
    Collector(const std::vector<std::string>& exclusions, int codePage)
        : exclusions_(exclusions), codePage_(codePage), used_(exclusions.size(), false) {
        // An exclusion is also a path, relative to the working folder or absolute, that leaves
        // out the file or folder it names.
        std::error_code ec;
        workingFolder_ = fs::current_path(ec);
        for (const auto& exclusion : exclusions_)
            excludedPaths_.push_back(Absolute(disk::PathFromUtf8(exclusion)));
    }

    void Add(const std::string& text) {
        const fs::path path = disk::PathFromUtf8(text);
        std::error_code ec;
        if (fs::is_directory(path, ec)) {
            AddFolder(path);
        } else if (IsProjectOrGroup(path)) {
            AddProjects(text);
        } else if (!fs::exists(path, ec)) {
            Problem(
                MakeFinding(Shown(path), 0, "error", kUnreadableFile, "no such file or folder"));
            targets_.problems.unreadable = true;
        } else {
            AddFile(path);
        }
    }

    CheckTargets Take() {
        for (std::size_t i = 0; i < exclusions_.size(); ++i) {
            if (!used_[i]) targets_.unusedExclusions.push_back(exclusions_[i]);
        }
        return std::move(targets_);
    }

  private:
    static bool IsProjectOrGroup(const fs::path& path) {
        const std::string extension = text::ToLower(disk::PathToUtf8(path.extension()));
        return extension == ".vbp" || extension == ".vbg";
    }

    static std::string Shown(const fs::path& path) {
        return disk::PathToUtf8(path.generic_u8string());
    }

    fs::path Absolute(const fs::path& path) const {
        return (path.is_absolute() ? path : workingFolder_ / path).lexically_normal();
    }

    // Whether `path` is `folder` or lies below it.
    static bool Within(const fs::path& path, const fs::path& folder) {
        auto p = path.begin();
        for (auto f = folder.begin(); f != folder.end(); ++f, ++p) {
            if (f->empty() && std::next(f) == folder.end()) return true;  // a trailing `/`
            if (p == path.end() || *p != *f) return false;
        }
        return true;
    }

    // Every exclusion that matches is marked used, so that one matching nothing can be named.
    bool Excluded(const std::string& shown, const fs::path& path) {
        bool excluded = false;
        std::optional<fs::path> absolute;
        for (std::size_t i = 0; i < exclusions_.size(); ++i) {
            bool match = PathMatchesGlob(shown, exclusions_[i]);
            if (!match) {
                if (!absolute) absolute = Absolute(path);
                match = Within(*absolute, excludedPaths_[i]);
            }
            if (match) used_[i] = true;
            excluded = excluded || match;
        }
        return excluded;
    }

    void AddFile(const fs::path& path, std::string shown = {}, std::string project = {}) {
        if (shown.empty()) shown = Shown(path);
        if (Excluded(shown, path)) return;
        std::error_code ec;
        fs::path identity = fs::weakly_canonical(path, ec);
        if (ec) identity = fs::absolute(path, ec).lexically_normal();
        if (!seen_.insert(identity).second) return;
        targets_.files.push_back({path, std::move(shown), std::move(project)});
    }

    void Problem(Finding finding) {
        finding.fingerprint = Fingerprint(finding.message);
        targets_.problems.findings.push_back(std::move(finding));
    }

    void Unreadable(const fs::path& folder, const std::error_code& error) {
        ++targets_.missing;
        Problem(MakeFinding(Shown(folder), 0, "warning", kUnreadableFolder,
                            "the folder cannot be read: " + error.message()));
    }

    // Folders are walked one level at a time so that a folder that cannot be read is reported
    // and the walk goes on. Symbolic links to folders are not followed, so a link cycle ends.
    void AddFolder(const fs::path& root) {
        std::vector<fs::path> folders{root};
        while (!folders.empty()) {
            const fs::path folder = folders.back();
            folders.pop_back();
            std::error_code ec;
            std::vector<fs::path> files;
            std::vector<fs::path> below;
            fs::directory_iterator it(folder, ec);
            for (; !ec && it != fs::directory_iterator(); it.increment(ec)) {
                std::error_code kind;
                const fs::path& entry = it->path();
                if (it->is_directory(kind) && !it->is_symlink(kind)) {
                    if (!Excluded(Shown(entry) + '/', entry)) below.push_back(entry);
                } else if (it->is_regular_file(kind) &&
                           disk::IsComponentFileName(disk::PathToUtf8(entry.filename()))) {
                    files.push_back(entry);
                }
            }
            if (ec) Unreadable(folder, ec);
            std::sort(files.begin(), files.end());
            for (const auto& file : files)
                AddFile(file);
            // Depth first, in name order.
            std::sort(below.begin(), below.end(), std::greater<>());
            folders.insert(folders.end(), below.begin(), below.end());
        }
    }

    void AddProjects(const std::string& text) {
        std::shared_ptr<disk::DiskEnvironment> environment;
        try {
            environment = disk::DiskEnvironment::Open({disk::PathFromUtf8(text)}, codePage_);
        } catch (const disk::FileError& error) {
            Problem(MakeFinding(text, 0, "error", kUnreadableFile, error.what()));
            targets_.problems.unreadable = true;
            return;
        }
        for (const auto& warning : environment->Warnings()) {
            const bool missing = warning.message.find("not found") != std::string::npos;
            const bool unreadable = warning.message.find("cannot be read") != std::string::npos;
            targets_.missing += missing || unreadable ? 1 : 0;
            const std::string_view rule = missing      ? kMissingFile
                                          : unreadable ? kUnreadableFile
                                                       : kProjectFile;
            Problem(MakeFinding(warning.file, warning.line, "warning", rule, warning.message));
        }
        const auto projects = environment->VBProjects();
        for (std::int32_t p = 1; p <= projects->Count(); ++p) {
            const auto project = projects->Item(p);
            const std::string projectName = project->Name();
            const auto components = project->VBComponents();
            for (std::int32_t c = 1; c <= components->Count(); ++c) {
                const auto component = components->Item(c);
                const auto type = component->Type();
                if (type == env::ComponentType::ResFile ||
                    type == env::ComponentType::RelatedDocument) {
                    continue;
                }
                const fs::path file = disk::PathFromUtf8(component->FileNames(1));
                AddFile(file, disk::ShownPath(file), projectName);
            }
        }
    }

    const std::vector<std::string>& exclusions_;
    int codePage_;
    std::vector<bool> used_;
    fs::path workingFolder_;
    std::vector<fs::path> excludedPaths_;
    CheckTargets targets_;
    std::set<fs::path> seen_;
};

}  // namespace

CheckTargets CollectCheckTargets(const std::vector<std::string>& paths,
                                 const std::vector<std::string>& exclusions, int codePage) {
    Collector collector(exclusions, codePage);
    for (const auto& path : paths)
        collector.Add(path);
    return collector.Take();
}

}  // namespace arbolet::check
