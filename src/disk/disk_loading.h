// Reading a project's components from disk, shared by the first load, by adding files and by
// following changes.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "disk/component_entry.h"
#include "disk/disk_environment.h"
#include "disk/disk_objects.h"
#include "disk/vb_path.h"

namespace arbolet::disk {

// Reads the component file an entry of the project names. A file that is missing or cannot
// be read gives a warning naming the project line and no component; damage inside the file
// (binary data, an unclosed designer block) gives a warning and the component as far as it
// could be read.
class ComponentLoader {
  public:
    ComponentLoader(const DiskProject& project, int codePage, std::vector<LoadWarning>& warnings)
        : project_(project), codePage_(codePage), warnings_(warnings) {}

    std::shared_ptr<DiskComponent> Load(const ComponentEntry& entry);
    // The file an entry names, resolved from the project's folder; nullopt when missing.
    std::optional<std::filesystem::path> Resolve(const ComponentEntry& entry);

  private:
    void ReportDamage(const ComponentEntry& entry, const ComponentFile& file) const;

    const DiskProject& project_;
    int codePage_;
    std::vector<LoadWarning>& warnings_;
    VbPathResolver resolver_;
};

// The project's `Name`; a project file without one is named after the file, with a warning.
std::string ProjectNameOf(const ProjectFile& text, const std::filesystem::path& path,
                          const std::string& shown, std::vector<LoadWarning>& warnings);

}  // namespace arbolet::disk
