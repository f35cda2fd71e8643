// The tree's JSON parts that more than one writer shares.
#include "explorer/tree_json.h"

namespace arbolet::explorer {

void WriteNotExpanded(text::JsonWriter& json, const std::vector<NotExpandedComponent>& components) {
    json.Key("notExpanded");
    json.BeginArray();
    for (const NotExpandedComponent& component : components) {
        json.BeginObject();
        json.Key("key");
        json.String(component.key);
        json.Key("name");
        json.String(component.name);
        json.Key("reason");
        json.String(component.reason);
        json.EndObject();
    }
    json.EndArray();
}

}  // namespace arbolet::explorer
