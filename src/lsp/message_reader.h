// Reading JSON-RPC messages framed by `Content-Length` headers out of a byte stream that
// arrives in pieces of any size. Malformed framing is reported and skipped, never fatal: the
// reader finds the next header and goes on, so that one bad message cannot stop the server or
// leave it waiting for bytes that will not come.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace arbolet::lsp {

inline constexpr std::size_t kMaxHeaderBytes = 8 * 1024;
inline constexpr std::size_t kMaxBodyBytes = 64 * 1024 * 1024;

struct ReadEvent {
    enum class Kind { Message, Error };
    Kind kind = Kind::Message;
    std::string text;  // the body of a message, or what was wrong with the framing
};

class MessageReader {
  public:
    // Takes the next bytes of the stream.
    void Feed(std::string_view bytes);
    // The next complete message or framing error; false when more bytes are needed.
    bool Next(ReadEvent& event);
    // The stream ended: a message cut short is reported once.
    bool Finish(ReadEvent& event);

  private:
    enum class State { Header, Body, SkipBody };

    bool ReadHeader(ReadEvent& event);
    bool ReadBody(ReadEvent& event);
    bool SkipBody();
    std::string_view Pending() const { return std::string_view(buffer_).substr(start_); }
    void Consume(std::size_t count);

    std::string buffer_;
    std::size_t start_ = 0;
    State state_ = State::Header;
    std::size_t bodyLength_ = 0;
    std::size_t scanned_ = 0;  // body bytes already searched for a following header
};

}  // namespace arbolet::lsp
