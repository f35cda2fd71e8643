// The all-or-nothing save of every changed project and component file (see disk_environment.h).
#include <system_error>
#include <vector>

#include "disk/disk_environment.h"
#include "disk/disk_objects.h"
#include "disk/file_io.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

struct PendingWrite {
    fs::path path;
    const std::string* original;
    const std::string* current;
};

// Refuses before anything is written: a file that is gone, read-only, or changed by someone
// else since it was read would otherwise be lost or half-saved.
void CheckStillAsRead(const PendingWrite& write) {
    std::error_code ec;
    const auto status = fs::status(write.path, ec);
    if (!fs::exists(status)) {
        throw FileError(write.path, "the file has vanished since it was read; nothing was saved");
    }
    if ((status.permissions() & fs::perms::owner_write) == fs::perms::none) {
        throw FileError(write.path, "the file is read-only; nothing was saved");
    }
    if (ReadFileBytes(write.path) != *write.original) {
        throw FileError(write.path,
                        "the file has changed on disk since it was read; nothing was saved");
    }
}

}  // namespace

std::vector<fs::path> DiskEnvironment::ChangedFiles() const {
    std::vector<fs::path> changed;
    if (projects_->group && projects_->group->Changed())
        changed.push_back(projects_->group->Path());
    for (const auto& project : projects_->items) {
        if (project->Changed()) changed.push_back(project->Path());
        for (const auto& component : project->components->items) {
            if (component->Changed()) changed.push_back(component->Path());
        }
    }
    return changed;
}

void DiskEnvironment::Save() {
    std::vector<PendingWrite> writes;
    if (const auto& group = projects_->group; group && group->Changed()) {
        writes.push_back({group->Path(), &group->Original(), &group->Current()});
    }
    for (const auto& project : projects_->items) {
        if (project->Changed()) {
            writes.push_back({project->Path(), &project->Original(), &project->Text().Bytes()});
        }
        for (const auto& component : project->components->items) {
            if (component->Changed()) {
                writes.push_back(
                    {component->Path(), &component->Original(), &component->Current()});
            }
        }
    }
    for (const auto& write : writes)
        CheckStillAsRead(write);
    for (std::size_t i = 0; i < writes.size(); ++i) {
        try {
            WriteFileAtomic(writes[i].path, *writes[i].current);
        } catch (const FileError&) {
            for (std::size_t j = 0; j < i; ++j) {
                try {
                    WriteFileAtomic(writes[j].path, *writes[j].original);
                } catch (const FileError&) {
                    // The first failure is the one to report.
                }
            }
            throw;
        }
    }
    if (projects_->group) projects_->group->MarkSaved();
    for (const auto& project : projects_->items) {
        project->MarkSaved();
        for (const auto& component : project->components->items)
            component->MarkSaved();
    }
}

}  // namespace arbolet::disk
