// Content-Length framing (see message_reader.h).
#include "lsp/message_reader.h"

#include <algorithm>
#include <charconv>

namespace arbolet::lsp {
namespace {

constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr std::string_view kLengthName = "content-length:";

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

// Where `content-length:` starts in the text, in any letter case; npos when it is not there.
std::size_t FindLengthName(std::string_view text) {
    const auto found = std::search(text.begin(), text.end(), kLengthName.begin(), kLengthName.end(),
                                   [](char a, char b) { return Lower(a) == b; });
    return found == text.end() ? std::string_view::npos
                               : static_cast<std::size_t>(found - text.begin());
}

// The last `content-length:` in the text, npos when there is none.
std::size_t LastLengthName(std::string_view text) {
    std::size_t last = std::string_view::npos;
    for (std::size_t at = FindLengthName(text); at != std::string_view::npos;) {
        last = at;
        const std::size_t next = FindLengthName(text.substr(at + 1));
        at = next == std::string_view::npos ? next : at + 1 + next;
    }
    return last;
}

// What is kept of an endless header line: enough for a header that starts in it.
constexpr std::size_t kKeptTail = 64;

struct HeaderValue {
    bool found = false;
    bool valid = false;
    std::size_t length = 0;
    bool junkBefore = false;  // bytes before the header name: the last body was longer than said
};

HeaderValue ParseHeader(std::string_view header) {
    HeaderValue value;
    const std::size_t at = FindLengthName(header);
    if (at == std::string_view::npos) return value;
    value.found = true;
    value.junkBefore = at > 0 && header[at - 1] != '\n';
    std::string_view rest = header.substr(at + kLengthName.size());
    while (!rest.empty() && (rest.front() == ' ' || rest.front() == '\t'))
        rest.remove_prefix(1);
    std::size_t length = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), length);
    const std::string_view after(end, static_cast<std::size_t>(rest.data() + rest.size() - end));
    value.valid = error == std::errc() && end != rest.data() &&
                  (after.empty() || after.front() == '\r' || after.front() == ' ');
    value.length = length;
    return value;
}

}  // namespace

void MessageReader::Feed(std::string_view bytes) {
    if (start_ > 0 && start_ >= buffer_.size() / 2) {
        buffer_.erase(0, start_);
        start_ = 0;
    }
    buffer_.append(bytes);
}

void MessageReader::Consume(std::size_t count) {
    start_ += std::min(count, buffer_.size() - start_);
}

bool MessageReader::Next(ReadEvent& event) {
    while (true) {
        switch (state_) {
            case State::Header:
                return ReadHeader(event);
            case State::Body:
                return ReadBody(event);
            case State::SkipBody:
                if (!SkipBody()) return false;
                break;
        }
    }
}

bool MessageReader::ReadHeader(ReadEvent& event) {
    const std::string_view pending = Pending();
    const std::size_t end = pending.find(kHeaderEnd);
    if (end == std::string_view::npos) {
        if (pending.size() <= kMaxHeaderBytes) return false;
        // Keep the tail, which may hold the start of the next header.
        Consume(pending.size() - kKeptTail);
        event = {ReadEvent::Kind::Error, "a message header is longer than " +
                                             std::to_string(kMaxHeaderBytes) +
                                             " bytes; its bytes were skipped"};
        return true;
    }
    if (end > kMaxHeaderBytes) {
        // Junk before a real header: skip to the header's line when there is one.
        const std::size_t header = LastLengthName(pending.substr(0, end));
        Consume(header != std::string_view::npos && header > 0 ? header : end + kHeaderEnd.size());
        event = {ReadEvent::Kind::Error, "a message header is longer than " +
                                             std::to_string(kMaxHeaderBytes) +
                                             " bytes; it was skipped"};
        return true;
    }
    const HeaderValue header = ParseHeader(pending.substr(0, end));
    Consume(end + kHeaderEnd.size());
    if (!header.found || !header.valid) {
        event = {ReadEvent::Kind::Error,
                 header.found ? "a message has an invalid Content-Length; it was skipped"
                              : "a message has no Content-Length header; it was skipped"};
        return true;
    }
    bodyLength_ = header.length;
    if (bodyLength_ > kMaxBodyBytes) {
        state_ = State::SkipBody;
        event = {ReadEvent::Kind::Error, "a message of " + std::to_string(bodyLength_) +
                                             " bytes is over the limit of " +
                                             std::to_string(kMaxBodyBytes) + "; it was skipped"};
        return true;
    }
    state_ = State::Body;
    scanned_ = 0;
    if (header.junkBefore) {
        event = {ReadEvent::Kind::Error,
                 "bytes before a message header were skipped (a Content-Length that was too "
                 "short?)"};
        return true;
    }
    return ReadBody(event);
}

bool MessageReader::ReadBody(ReadEvent& event) {
    const std::string_view pending = Pending();
    // A length that says more than was sent would otherwise swallow the messages after it and
    // leave their senders waiting: a header inside the body shows where the next one begins.
    // JSON cannot hold a header line (raw line breaks only between tokens, and no bare words),
    // so one found there is never part of the message. Bytes already searched are not searched
    // again, so a body arriving in many pieces costs linear time.
    const std::size_t window = std::min(pending.size(), bodyLength_);
    const std::size_t from = scanned_ > kLengthName.size() ? scanned_ - kLengthName.size() : 0;
    const std::size_t found = FindLengthName(pending.substr(from, window - std::min(from, window)));
    scanned_ = window;
    if (found != std::string_view::npos) {
        const std::size_t at = from + found;
        const std::string_view rest = pending.substr(at);
        const std::size_t headerEnd = rest.find(kHeaderEnd);
        if (headerEnd == std::string_view::npos) {
            scanned_ = at;  // look at it again when more has arrived
        } else if (ParseHeader(rest.substr(0, headerEnd)).valid) {
            Consume(at);
            state_ = State::Header;
            event = {ReadEvent::Kind::Error, "a message was shorter than its Content-Length of " +
                                                 std::to_string(bodyLength_) +
                                                 " bytes; it was skipped"};
            return true;
        }
    }
    if (pending.size() < bodyLength_) return false;
    event = {ReadEvent::Kind::Message, std::string(pending.substr(0, bodyLength_))};
    Consume(bodyLength_);
    state_ = State::Header;
    return true;
}

bool MessageReader::SkipBody() {
    const std::size_t available = Pending().size();
    const std::size_t skipped = std::min(available, bodyLength_);
    Consume(skipped);
    bodyLength_ -= skipped;
    if (bodyLength_ > 0) return false;
    state_ = State::Header;
    return true;
}

bool MessageReader::Finish(ReadEvent& event) {
    const bool cut =
        state_ == State::Body || (state_ == State::Header && !Pending().empty() &&
                                  Pending().find_first_not_of("\r\n \t") != std::string_view::npos);
    buffer_.clear();
    start_ = 0;
    state_ = State::Header;
    if (!cut) return false;
    event = {ReadEvent::Kind::Error, "the input ended inside a message"};
    return true;
}

}  // namespace arbolet::lsp
