// The code view's source of display options on Windows: the option store in the registry.
#pragma once

#include "analysis/display_options.h"

namespace arbolet::windows::options {

class RegistryDisplayOptions final : public analysis::IDisplayOptionSource {
  public:
    // Reads the seven options once each, through the store, in the order the code view has
    // always read them.
    analysis::DisplayOptions ReadDisplayOptions() override;
};

}  // namespace arbolet::windows::options
