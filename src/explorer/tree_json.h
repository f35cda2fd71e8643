// Parts of the tree's JSON form shared by `arbolet tree --format json` and the standalone
// explorer's dump of its real control, so that both write the same text.
#pragma once

#include <string>
#include <vector>

#include "base/json_writer.h"

namespace arbolet::explorer {

// A component asked for that stayed closed (over the line limit, or unreadable), and why.
struct NotExpandedComponent {
    std::string key;
    std::string name;
    std::string reason;
};

// Writes the "notExpanded" member: a key, then an array of {key, name, reason}.
void WriteNotExpanded(text::JsonWriter& json, const std::vector<NotExpandedComponent>& components);

}  // namespace arbolet::explorer
