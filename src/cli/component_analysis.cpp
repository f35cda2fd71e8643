// Loading and analysing one component file (see component_analysis.h).
#include "cli/component_analysis.h"

#include "disk/file_io.h"

namespace arbolet::cli {

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
    component.name = component.file.name.empty() ? path.stem().string() : component.file.name;
    component.tree = analysis::BuildCodeTree(component.file.CodeText(), options);
    return component;
}

std::string DisplayPath(const std::filesystem::path& path) {
    return path.generic_string();
}

}  // namespace arbolet::cli
