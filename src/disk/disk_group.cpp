// Recording the start-up project in a .vbg group (see disk_group.h).
#include "disk/disk_group.h"

#include "disk/disk_objects.h"
#include "disk/group_file.h"
#include "disk/vb_path.h"

namespace arbolet::disk {

DiskGroup::DiskGroup(std::filesystem::path path, std::string bytes, int codePage)
    : path_(std::move(path)), original_(bytes), editor_(std::move(bytes)), codePage_(codePage) {}

bool DiskGroup::SetStartup(const std::filesystem::path& projectFile) {
    const GroupFile group = ParseGroupFile(editor_.Bytes(), codePage_);
    const std::filesystem::path wanted = PathIdentity(projectFile);
    const GroupMember* chosen = nullptr;
    for (const GroupMember& member : group.projects) {
        const auto resolved = ResolveVbPath(path_.parent_path(), member.path);
        if (resolved && PathIdentity(*resolved) == wanted) {
            chosen = &member;
            break;
        }
    }
    if (chosen == nullptr) return false;
    for (const GroupMember& member : group.projects) {
        if (&member == chosen && !member.startup) SetKey(member.line, "StartupProject");
        if (&member != chosen && member.startup) SetKey(member.line, "Project");
    }
    return true;
}

// The key between the line's leading blanks and its "=" (or the blanks before it).
void DiskGroup::SetKey(std::size_t line, std::string_view key) {
    const std::string_view content = editor_.Content(line);
    const std::size_t equals = content.find('=');
    if (equals == std::string_view::npos) return;
    const std::size_t start = content.find_first_not_of(" \t");
    std::size_t end = equals;
    while (end > start && (content[end - 1] == ' ' || content[end - 1] == '\t'))
        --end;
    editor_.ReplaceInLine(line, start, end - start, key);
}

void DiskProjects::SetStartProject(const env::VBProjectRef& project) {
    ProjectList::SetStartProject(project);
    const auto own = std::dynamic_pointer_cast<DiskProject>(project);
    if (group && own) group->SetStartup(own->Path());
}

}  // namespace arbolet::disk
