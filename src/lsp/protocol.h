// JSON-RPC 2.0 and LSP basics the handlers share: error codes, messages, positions and ranges
// as JSON, and document URIs as paths.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "lsp/text_document.h"

namespace arbolet::lsp {

using Json = nlohmann::json;

namespace error_code {
inline constexpr int kParseError = -32700;
inline constexpr int kInvalidRequest = -32600;
inline constexpr int kMethodNotFound = -32601;
inline constexpr int kInvalidParams = -32602;
inline constexpr int kInternalError = -32603;
inline constexpr int kServerNotInitialized = -32002;
inline constexpr int kRequestFailed = -32803;
inline constexpr int kRequestCancelled = -32800;
}  // namespace error_code

// A request that cannot be answered; becomes an error response with its code.
class RequestError : public std::runtime_error {
  public:
    RequestError(int errorCode, const std::string& message)
        : std::runtime_error(message), code(errorCode) {}
    int code;
};

// The framed form of a message: the Content-Length header and the JSON text.
std::string Frame(const Json& message);

Json ResponseMessage(const Json& id, Json result);
Json ErrorMessage(const Json& id, int code, std::string_view message);
Json NotificationMessage(std::string_view method, Json params);

Json ToJson(Position position);
Json ToJson(const Range& range);
Position PositionFromJson(const Json& json);
Range RangeFromJson(const Json& json);

// file:// URIs: percent-decoded to a path, and paths percent-encoded to URIs. Other schemes
// give nullopt.
std::optional<std::filesystem::path> PathFromUri(std::string_view uri);
std::string UriFromPath(const std::filesystem::path& path);

// The member of a JSON object, or nullptr when it is missing or the value is no object.
const Json* Member(const Json& object, std::string_view name);
// Typed members; RequestError (InvalidParams) when missing or of the wrong type.
const std::string& StringMember(const Json& object, std::string_view name);
std::int64_t IntegerMember(const Json& object, std::string_view name);

}  // namespace arbolet::lsp
