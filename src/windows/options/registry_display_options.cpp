// Fills the code view's option record from the option store.
#include "windows/options/registry_display_options.h"

#include "windows/options/settings.h"

namespace arbolet::windows::options {

analysis::DisplayOptions RegistryDisplayOptions::ReadDisplayOptions() {
    // A braced initialiser evaluates its elements from left to right: this is the read order.
    return analysis::DisplayOptions{
        .ShowVariables = options::ShowVariables(),
        .ShowConstants = options::ShowConstants(),
        .ShowCompiler = options::ShowCompiler(),
        .ShowEnums = options::ShowEnums(),
        .ShowTypes = options::ShowTypes(),
        .ShowSectionEnd = options::ShowSectionEnd(),
        .SortByName = options::SortByName(),
    };
}

}  // namespace arbolet::windows::options
