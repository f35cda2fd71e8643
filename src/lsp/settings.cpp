// Reading the client's settings (see settings.h).
#include "lsp/settings.h"

namespace arbolet::lsp {
namespace {

void ReadBool(const Json& object, const char* name, bool& target, bool invert,
              std::vector<std::string>& warnings, const std::string& where) {
    const Json* value = Member(object, name);
    if (!value || value->is_null()) return;
    if (!value->is_boolean()) {
        warnings.push_back(where + name + " is not true or false; ignored");
        return;
    }
    target = value->get<bool>() != invert;
}

void ReadDisplay(const Json& display, analysis::DisplayOptions& options,
                 std::vector<std::string>& warnings, const std::string& where) {
    if (!display.is_object()) {
        if (!display.is_null()) warnings.push_back(where + " is not an object; ignored");
        return;
    }
    const std::string prefix = where + ".";
    ReadBool(display, "hideVariables", options.ShowVariables, true, warnings, prefix);
    ReadBool(display, "hideConstants", options.ShowConstants, true, warnings, prefix);
    ReadBool(display, "hideCompiler", options.ShowCompiler, true, warnings, prefix);
    ReadBool(display, "hideEnums", options.ShowEnums, true, warnings, prefix);
    ReadBool(display, "hideTypes", options.ShowTypes, true, warnings, prefix);
    ReadBool(display, "hideSectionEnds", options.ShowSectionEnd, true, warnings, prefix);
    ReadBool(display, "sortByName", options.SortByName, false, warnings, prefix);
}

void ReadCodePage(const Json& object, Settings& settings, std::vector<std::string>& warnings,
                  const std::string& where) {
    const Json* value = Member(object, "codePage");
    if (!value || value->is_null()) return;
    if (!value->is_number_integer() || value->get<std::int64_t>() < 1 ||
        value->get<std::int64_t>() > 65535 ||
        !disk::IsSupportedCodePage(static_cast<int>(value->get<std::int64_t>()))) {
        warnings.push_back(where + "codePage " + value->dump() +
                           " is not a supported code page; keeping " +
                           std::to_string(settings.codePage));
        return;
    }
    settings.codePage = static_cast<int>(value->get<std::int64_t>());
}

std::vector<std::string> Apply(const Json& object, Settings& settings, const std::string& where) {
    std::vector<std::string> warnings;
    if (!object.is_object()) return warnings;
    ReadCodePage(object, settings, warnings, where);
    ReadBool(object, "blocks", settings.blocks, false, warnings, where);
    if (const Json* display = Member(object, "display")) {
        ReadDisplay(*display, settings.display, warnings, where + "display");
    }
    return warnings;
}

}  // namespace

std::vector<std::string> ApplyInitializationOptions(const Json& options, Settings& settings) {
    return Apply(options, settings, "initializationOptions.");
}

std::vector<std::string> ApplyConfiguration(const Json& settingsParam, Settings& settings) {
    const Json* arbolet = Member(settingsParam, "arbolet");
    if (!arbolet) return {};
    return Apply(*arbolet, settings, "arbolet.");
}

}  // namespace arbolet::lsp
