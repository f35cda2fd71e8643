// A JSON Schema validator over nlohmann::json for the keywords the SARIF schema uses: $ref to
// local definitions, type (one or several), enum, properties, required, additionalProperties
// (false or a schema), items, minItems, uniqueItems, minimum, maximum, and the formats uri and
// uri-reference. Keywords it does not know are ignored, as JSON Schema says.
#pragma once

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::testing {

class JsonSchema {
  public:
    explicit JsonSchema(nlohmann::json schema) : schema_(std::move(schema)) {}

    // Every violation, each naming the JSON path of the value; empty when the value is valid.
    std::vector<std::string> Validate(const nlohmann::json& value) const {
        std::vector<std::string> errors;
        Check(schema_, value, "$", errors);
        return errors;
    }

  private:
    const nlohmann::json& Resolve(const nlohmann::json& schema) const {
        const nlohmann::json* at = &schema;
        // Chains of references end: a schema whose references loop is refused.
        for (int hops = 0; at->is_object() && at->contains("$ref") && hops < 64; ++hops) {
            const std::string ref = (*at)["$ref"];
            at = &schema_.at(nlohmann::json::json_pointer(ref.substr(1)));
        }
        return *at;
    }

    static bool HasType(const nlohmann::json& value, const std::string& type) {
        if (type == "object") return value.is_object();
        if (type == "array") return value.is_array();
        if (type == "string") return value.is_string();
        if (type == "integer") return value.is_number_integer();
        if (type == "number") return value.is_number();
        if (type == "boolean") return value.is_boolean();
        if (type == "null") return value.is_null();
        return false;
    }

    // A URI reference: no blanks, controls or characters that must be percent-encoded; a URI
    // also has a scheme.
    static bool IsUri(const std::string& text, bool reference) {
        for (const unsigned char c : text) {
            if (c <= 0x20 || c >= 0x7F ||
                std::string_view("\"<>\\^`{|}").find(static_cast<char>(c)) !=
                    std::string_view::npos)
                return false;
        }
        if (reference) return true;
        const auto colon = text.find(':');
        return colon != std::string::npos && colon > 0 &&
               std::isalpha(static_cast<unsigned char>(text[0]));
    }

    void Check(const nlohmann::json& raw, const nlohmann::json& value, const std::string& path,
               std::vector<std::string>& errors) const {
        const nlohmann::json& schema = Resolve(raw);
        if (!schema.is_object()) return;
        if (schema.contains("type")) {
            const auto& type = schema["type"];
            bool ok = false;
            if (type.is_string()) {
                ok = HasType(value, type);
            } else {
                for (const auto& t : type)
                    ok = ok || HasType(value, t);
            }
            if (!ok) {
                errors.push_back(path + ": not of type " + type.dump());
                return;
            }
        }
        if (schema.contains("enum")) {
            const auto& allowed = schema["enum"];
            if (std::find(allowed.begin(), allowed.end(), value) == allowed.end())
                errors.push_back(path + ": " + value.dump() + " is not one of " + allowed.dump());
        }
        if (value.is_number()) {
            if (schema.contains("minimum") && value.get<double>() < schema["minimum"].get<double>())
                errors.push_back(path + ": below the minimum " + schema["minimum"].dump());
            if (schema.contains("maximum") && value.get<double>() > schema["maximum"].get<double>())
                errors.push_back(path + ": above the maximum " + schema["maximum"].dump());
        }
        if (value.is_string() && schema.contains("format")) {
            const std::string format = schema["format"];
            if ((format == "uri" || format == "uri-reference") &&
                !IsUri(value.get<std::string>(), format == "uri-reference"))
                errors.push_back(path + ": not a valid " + format + ": " + value.dump());
        }
        if (value.is_array()) CheckArray(schema, value, path, errors);
        if (value.is_object()) CheckObject(schema, value, path, errors);
    }

    void CheckArray(const nlohmann::json& schema, const nlohmann::json& value,
                    const std::string& path, std::vector<std::string>& errors) const {
        if (schema.contains("minItems") && value.size() < schema["minItems"].get<std::size_t>())
            errors.push_back(path + ": fewer items than " + schema["minItems"].dump());
        if (schema.value("uniqueItems", false)) {
            for (std::size_t i = 0; i < value.size(); ++i) {
                for (std::size_t j = i + 1; j < value.size(); ++j) {
                    if (value[i] == value[j])
                        errors.push_back(path + ": items " + std::to_string(i) + " and " +
                                         std::to_string(j) + " are equal");
                }
            }
        }
        if (schema.contains("items")) {
            for (std::size_t i = 0; i < value.size(); ++i)
                Check(schema["items"], value[i], path + "[" + std::to_string(i) + "]", errors);
        }
    }

    void CheckObject(const nlohmann::json& schema, const nlohmann::json& value,
                     const std::string& path, std::vector<std::string>& errors) const {
        for (const auto& name : schema.value("required", nlohmann::json::array())) {
            if (!value.contains(name.get<std::string>()))
                errors.push_back(path + ": lacks the required " + name.dump());
        }
        const auto properties = schema.value("properties", nlohmann::json::object());
        for (const auto& [name, member] : value.items()) {
            const std::string at = path + "." + name;
            if (properties.contains(name)) {
                Check(properties[name], member, at, errors);
            } else if (schema.contains("additionalProperties")) {
                const auto& additional = schema["additionalProperties"];
                if (additional.is_boolean()) {
                    if (!additional.get<bool>()) errors.push_back(at + ": not allowed here");
                } else {
                    Check(additional, member, at, errors);
                }
            }
        }
    }

    nlohmann::json schema_;
};

}  // namespace arbolet::testing
