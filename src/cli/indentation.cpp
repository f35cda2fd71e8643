// Capped indentation of tree lines (see indentation.h).
#include "cli/indentation.h"

namespace arbolet::cli {

std::string Indentation(std::size_t depth) {
    if (depth <= kMaxIndentLevels) return std::string(depth * 2, ' ');
    return std::string(kMaxIndentLevels * 2, ' ') + "[" + std::to_string(depth) + "] ";
}

}  // namespace arbolet::cli
