// JSON-RPC messages, positions and URIs (see protocol.h).
#include "lsp/protocol.h"

#include "disk/vb_path.h"

namespace arbolet::lsp {
namespace {

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string PercentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            const int high = HexValue(text[i + 1]);
            const int low = HexValue(text[i + 2]);
            if (high >= 0 && low >= 0) {
                decoded += static_cast<char>(high * 16 + low);
                i += 2;
                continue;
            }
        }
        decoded += text[i];
    }
    return decoded;
}

bool KeepsInUri(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~' || c == '/';
}

}  // namespace

std::string Frame(const Json& message) {
    const std::string body = message.dump(-1, ' ', false, Json::error_handler_t::replace);
    return "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

// Initializer lists copy their elements, so large results are moved in afterwards.
Json ResponseMessage(const Json& id, Json result) {
    Json message{{"jsonrpc", "2.0"}, {"id", id}};
    message["result"] = std::move(result);
    return message;
}

Json ErrorMessage(const Json& id, int code, std::string_view message) {
    return Json{{"jsonrpc", "2.0"},
                {"id", id},
                {"error", Json{{"code", code}, {"message", std::string(message)}}}};
}

Json NotificationMessage(std::string_view method, Json params) {
    Json message{{"jsonrpc", "2.0"}, {"method", std::string(method)}};
    message["params"] = std::move(params);
    return message;
}

Json ToJson(Position position) {
    return Json{{"line", position.line}, {"character", position.character}};
}

Json ToJson(const Range& range) {
    return Json{{"start", ToJson(range.start)}, {"end", ToJson(range.end)}};
}

Position PositionFromJson(const Json& json) {
    if (!json.is_object()) throw RequestError(error_code::kInvalidParams, "a position is missing");
    const auto line = IntegerMember(json, "line");
    const auto character = IntegerMember(json, "character");
    const auto clamp = [](std::int64_t value) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, 0, INT32_MAX));
    };
    return {clamp(line), clamp(character)};
}

Range RangeFromJson(const Json& json) {
    if (!json.is_object()) throw RequestError(error_code::kInvalidParams, "a range is missing");
    const Json* start = Member(json, "start");
    const Json* end = Member(json, "end");
    if (!start || !end) throw RequestError(error_code::kInvalidParams, "a range is incomplete");
    return {PositionFromJson(*start), PositionFromJson(*end)};
}

std::optional<std::filesystem::path> PathFromUri(std::string_view uri) {
    constexpr std::string_view kScheme = "file://";
    if (uri.size() < kScheme.size()) return std::nullopt;
    for (std::size_t i = 0; i < kScheme.size(); ++i) {
        const char c = uri[i];
        if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c) != kScheme[i])
            return std::nullopt;
    }
    std::string_view rest = uri.substr(kScheme.size());
    // file://host/path: only the local host is ours.
    const auto slash = rest.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    rest.remove_prefix(slash);
    std::string decoded = PercentDecoded(rest);
#ifdef _WIN32
    // file:///c:/dir -> c:/dir
    if (decoded.size() >= 3 && decoded[0] == '/' && decoded[2] == ':') decoded.erase(0, 1);
#endif
    return disk::PathFromUtf8(decoded);
}

std::string UriFromPath(const std::filesystem::path& path) {
    std::string text = disk::PathToUtf8(path.generic_u8string());
    std::string uri = "file://";
    if (text.empty() || text.front() != '/') uri += '/';
    static constexpr char kHex[] = "0123456789ABCDEF";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (KeepsInUri(byte)) {
            uri += c;
        } else {
            uri += '%';
            uri += kHex[byte >> 4];
            uri += kHex[byte & 0xF];
        }
    }
    return uri;
}

const Json* Member(const Json& object, std::string_view name) {
    if (!object.is_object()) return nullptr;
    const auto found = object.find(name);
    return found == object.end() ? nullptr : &*found;
}

const std::string& StringMember(const Json& object, std::string_view name) {
    const Json* member = Member(object, name);
    if (!member || !member->is_string()) {
        throw RequestError(error_code::kInvalidParams,
                           "the string member \"" + std::string(name) + "\" is missing");
    }
    return member->get_ref<const std::string&>();
}

std::int64_t IntegerMember(const Json& object, std::string_view name) {
    const Json* member = Member(object, name);
    if (!member || !member->is_number_integer()) {
        throw RequestError(error_code::kInvalidParams,
                           "the integer member \"" + std::string(name) + "\" is missing");
    }
    return member->get<std::int64_t>();
}

}  // namespace arbolet::lsp
