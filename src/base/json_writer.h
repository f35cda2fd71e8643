// A small streaming JSON writer: output stays flat in memory however deep the tree is.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string_view>
#include <vector>

namespace arbolet::text {

class JsonWriter {
  public:
    explicit JsonWriter(std::ostream& out) : out_(out) {}

    void BeginObject();
    void EndObject();
    void BeginArray();
    void EndArray();
    void Key(std::string_view key);
    void String(std::string_view value);
    void Integer(std::int64_t value);
    void OptionalInteger(std::optional<std::int64_t> value);
    void Bool(bool value);
    void Null();

    // Writes the text as a JSON string, escaping quotes, backslashes, controls and invalid UTF-8.
    static void WriteEscaped(std::ostream& out, std::string_view text);

  private:
    void BeforeValue();

    std::ostream& out_;
    // One entry per open object or array: whether it already holds a member.
    std::vector<bool> hasMember_;
    bool afterKey_ = false;
};

}  // namespace arbolet::text
