// Showing components on the terminal (see terminal_front_end.h).
#include "cli/terminal_front_end.h"

#include <exception>

#include "cli/project_loading.h"
#include "disk/component_file.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::cli {
namespace {

std::string FileOf(const env::VBComponent& component) {
    return component.FileCount() >= 1 ? component.FileNames(1) : std::string();
}

}  // namespace

void TerminalFrontEnd::ShowObject(const env::VBComponent& component) {
    out_ << ShownPath(disk::PathFromUtf8(FileOf(component))) << '\n';
}

// The code line is turned into the line of the file, past its designer block and attributes.
void TerminalFrontEnd::ShowCode(const env::VBComponent& component, std::int64_t line) {
    const std::filesystem::path file = disk::PathFromUtf8(FileOf(component));
    std::int64_t fileLine = line;
    try {
        const disk::ComponentFile parsed =
            disk::ParseComponentFile(disk::ReadFileBytes(file), codePage_);
        if (const auto mapped = parsed.FileLineOfCodeLine(static_cast<std::int32_t>(line - 1))) {
            fileLine = *mapped;
        }
    } catch (const std::exception&) {
        // An unreadable file is still named, at the code line.
    }
    out_ << ShownPath(file) << ':' << fileLine << '\n';
}

bool TerminalFrontEnd::SelectForProperties(const env::VBComponent&) {
    return false;
}

}  // namespace arbolet::cli
