// The display-option flags, under the name the commands know them by.
#pragma once

#include "flags/display_flags.h"

namespace arbolet::cli {

using flags::AddDisplayFlags;

}  // namespace arbolet::cli
