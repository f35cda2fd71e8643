// The part of the SARIF 2.1.0 JSON schema that `arbolet check` output uses, as a validator: each
// object kind with its required and allowed properties (the schema forbids any other) and their
// value types, the `level` values, the `uri-reference` format and the minimum line number.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace arbolet::cli::testing {

class SarifSchema {
  public:
    // Every violation found, each naming the JSON path; empty when the log is valid.
    std::vector<std::string> Validate(const nlohmann::json& log) {
        errors_.clear();
        Check(log, "sarifLog", "$");
        return errors_;
    }

  private:
    // A property's type: a kind of object, "string", "integer", "uri", "level", "array:<kind>"
    // or "map:<kind>" (an object whose every value is of the kind).
    struct Kind {
        std::vector<std::string> required;
        std::map<std::string, std::string> properties;
    };

    const std::map<std::string, Kind> kinds_ = {
        {"sarifLog",
         {{"version", "runs"},
          {{"$schema", "uri"},
           {"version", "version"},
           {"runs", "array:run"},
           {"properties", "object"}}}},
        {"run",
         {{"tool"},
          {{"tool", "tool"},
           {"results", "array:result"},
           {"originalUriBaseIds", "map:artifactLocation"},
           {"properties", "object"}}}},
        {"tool", {{"driver"}, {{"driver", "toolComponent"}, {"properties", "object"}}}},
        {"toolComponent",
         {{"name"},
          {{"name", "string"},
           {"version", "string"},
           {"informationUri", "uri"},
           {"rules", "array:reportingDescriptor"},
           {"properties", "object"}}}},
        {"reportingDescriptor",
         {{"id"},
          {{"id", "string"},
           {"shortDescription", "multiformatMessageString"},
           {"fullDescription", "multiformatMessageString"},
           {"properties", "object"}}}},
        {"multiformatMessageString", {{"text"}, {{"text", "string"}, {"markdown", "string"}}}},
        {"result",
         {{"message"},
          {{"ruleId", "string"},
           {"level", "level"},
           {"message", "message"},
           {"locations", "array:location"},
           {"relatedLocations", "array:location"},
           {"partialFingerprints", "map:string"},
           {"properties", "object"}}}},
        {"message", {{}, {{"text", "string"}, {"id", "string"}, {"markdown", "string"}}}},
        {"location",
         {{},
          {{"id", "locationId"},
           {"physicalLocation", "physicalLocation"},
           {"message", "message"},
           {"properties", "object"}}}},
        {"physicalLocation",
         {{}, {{"artifactLocation", "artifactLocation"}, {"region", "region"}}}},
        {"artifactLocation",
         {{}, {{"uri", "uri"}, {"uriBaseId", "string"}, {"properties", "object"}}}},
        {"region", {{}, {{"startLine", "line"}, {"startColumn", "line"}, {"endLine", "line"}}}},
    };

    void Fail(const std::string& path, const std::string& what) {
        errors_.push_back(path + ": " + what);
    }

    static bool IsUriReference(const std::string& text) {
        static const std::string kAllowed =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/?#[]@!$&'()*+,;=%";
        if (text.empty()) return false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (kAllowed.find(text[i]) == std::string::npos) return false;
            if (text[i] == '%' && (i + 2 >= text.size() || !std::isxdigit(text[i + 1]) ||
                                   !std::isxdigit(text[i + 2])))
                return false;
        }
        return true;
    }

    void Check(const nlohmann::json& value, const std::string& type, const std::string& path) {
        if (type == "string") {
            if (!value.is_string()) Fail(path, "not a string");
        } else if (type == "uri") {
            if (!value.is_string() || !IsUriReference(value.get<std::string>()))
                Fail(path, "not a uri-reference");
        } else if (type == "version") {
            if (value != "2.1.0") Fail(path, "version is not 2.1.0");
        } else if (type == "level") {
            static const std::vector<std::string> kLevels = {"none", "note", "warning", "error"};
            if (!value.is_string() || std::find(kLevels.begin(), kLevels.end(),
                                                value.get<std::string>()) == kLevels.end())
                Fail(path, "not a level");
        } else if (type == "line" || type == "locationId") {
            const int minimum = type == "line" ? 1 : -1;
            if (!value.is_number_integer() || value.get<int>() < minimum)
                Fail(path, "not an integer of at least " + std::to_string(minimum));
        } else if (type == "object") {
            if (!value.is_object()) Fail(path, "not an object");
        } else if (type.starts_with("array:")) {
            if (!value.is_array()) return Fail(path, "not an array");
            for (std::size_t i = 0; i < value.size(); ++i)
                Check(value[i], type.substr(6), path + "[" + std::to_string(i) + "]");
        } else if (type.starts_with("map:")) {
            if (!value.is_object()) return Fail(path, "not an object");
            for (const auto& [key, item] : value.items())
                Check(item, type.substr(4), path + "." + key);
        } else {
            CheckObject(value, kinds_.at(type), path);
        }
    }

    void CheckObject(const nlohmann::json& value, const Kind& kind, const std::string& path) {
        if (!value.is_object()) return Fail(path, "not an object");
        for (const auto& name : kind.required) {
            if (!value.contains(name)) Fail(path, "lacks " + name);
        }
        for (const auto& [key, item] : value.items()) {
            const auto property = kind.properties.find(key);
            if (property == kind.properties.end()) {
                Fail(path, "has no property " + key + " in the schema");
            } else {
                Check(item, property->second, path + "." + key);
            }
        }
    }

    std::vector<std::string> errors_;
};

}  // namespace arbolet::cli::testing
