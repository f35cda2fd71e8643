// Loading and analysing one component file (see component_analysis.h).
#include "check/component_analysis.h"

#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::check {

std::optional<std::int32_t> AnalysedComponent::FileLineOf(const analysis::clsLine& line) const {
    return file.FileLineOfCodeLine(line.SourceIndex);
}

AnalysedComponent AnalyseComponentFile(const std::filesystem::path& path, int codePage,
                                       const analysis::DisplayOptions& options) {
    AnalysedComponent component;
    component.path = path;
    std::string bytes;
    try {
        bytes = disk::ReadFileBytes(path);
    } catch (const disk::FileError& error) {
        component.readError = error.what();
        return component;
    }
    component.file = disk::ParseComponentFile(bytes, codePage);
    component.name =
        component.file.name.empty() ? disk::PathToUtf8(path.stem()) : component.file.name;
    component.tree = analysis::BuildCodeTree(component.file.CodeText(), options);
    return component;
}

std::string DisplayPath(const std::filesystem::path& path) {
    return disk::PathToUtf8(path.generic_u8string());
}

}  // namespace arbolet::check
