// The framing reader: messages split anywhere, and every kind of broken framing reported and
// skipped so that the messages after it still arrive.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lsp/message_reader.h"

namespace arbolet::lsp {
namespace {

std::string Framed(const std::string& body) {
    return "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::vector<ReadEvent> ReadAll(MessageReader& reader) {
    std::vector<ReadEvent> events;
    for (ReadEvent event; reader.Next(event);)
        events.push_back(event);
    return events;
}

std::vector<std::string> Messages(const std::vector<ReadEvent>& events) {
    std::vector<std::string> bodies;
    for (const auto& event : events) {
        if (event.kind == ReadEvent::Kind::Message) bodies.push_back(event.text);
    }
    return bodies;
}

std::size_t Errors(const std::vector<ReadEvent>& events) {
    std::size_t count = 0;
    for (const auto& event : events)
        count += event.kind == ReadEvent::Kind::Error;
    return count;
}

TEST(MessageReader, MessagesSplitAtAnyByteArriveWhole) {
    const std::string a = R"({"jsonrpc":"2.0","method":"a"})";
    const std::string b = R"({"jsonrpc":"2.0","id":1,"method":"b","params":{"text":"é\r\n"}})";
    const std::string stream =
        Framed(a) + "Content-Type: application/vscode-jsonrpc; charset=utf-8\r\n" + Framed(b);
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
        MessageReader reader;
        reader.Feed(stream.substr(0, cut));
        std::vector<ReadEvent> events = ReadAll(reader);
        reader.Feed(stream.substr(cut));
        for (auto& event : ReadAll(reader))
            events.push_back(event);
        EXPECT_EQ(Messages(events), (std::vector<std::string>{a, b})) << "cut at " << cut;
        EXPECT_EQ(Errors(events), 0u);
    }
}

TEST(MessageReader, BrokenFramingIsReportedAndTheNextMessageStillArrives) {
    const std::string good = R"({"id":2})";
    struct Case {
        const char* what;
        std::string stream;
    };
    const std::vector<Case> cases = {
        {"no Content-Length", "Content-Type: x\r\n\r\n{}" + Framed(good)},
        {"a length that is no number", "Content-Length: many\r\n\r\n" + Framed(good)},
        {"a negative length", "Content-Length: -5\r\n\r\n" + Framed(good)},
        {"a header over the limit", std::string(kMaxHeaderBytes + 100, 'x') + Framed(good)},
        {"a header line over the limit",
         "X-Junk: " + std::string(kMaxHeaderBytes + 10, 'y') + "\r\n\r\n" + Framed(good)},
        {"a length longer than the body", "Content-Length: 500\r\n\r\n{\"id\":1}" + Framed(good)},
        {"a length shorter than the body", "Content-Length: 3\r\n\r\n{\"id\":1}" + Framed(good)},
    };
    for (const Case& c : cases) {
        MessageReader reader;
        reader.Feed(c.stream);
        const auto events = ReadAll(reader);
        EXPECT_GE(Errors(events), 1u) << c.what;
        const auto bodies = Messages(events);
        ASSERT_FALSE(bodies.empty()) << c.what;
        EXPECT_EQ(bodies.back(), good) << c.what;
    }
}

TEST(MessageReader, ABodyOverTheLimitIsSkippedWithoutKeepingIt) {
    MessageReader reader;
    const std::size_t length = kMaxBodyBytes + 1;
    reader.Feed("Content-Length: " + std::to_string(length) + "\r\n\r\n");
    auto events = ReadAll(reader);
    ASSERT_EQ(Errors(events), 1u);
    const std::string chunk(1 << 20, ' ');
    std::size_t sent = 0;
    while (sent + chunk.size() <= length) {
        reader.Feed(chunk);
        sent += chunk.size();
        EXPECT_TRUE(ReadAll(reader).empty());
    }
    reader.Feed(std::string(length - sent, ' ') + Framed("{}"));
    events = ReadAll(reader);
    EXPECT_EQ(Messages(events), std::vector<std::string>{"{}"});
}

TEST(MessageReader, TheEndOfTheInputInsideAMessageIsReportedOnce) {
    MessageReader reader;
    reader.Feed("Content-Length: 10\r\n\r\n{\"a\"");
    EXPECT_TRUE(ReadAll(reader).empty());
    ReadEvent event;
    EXPECT_TRUE(reader.Finish(event));
    EXPECT_EQ(event.kind, ReadEvent::Kind::Error);
    EXPECT_FALSE(reader.Finish(event));

    MessageReader clean;
    clean.Feed(Framed("{}") + "\r\n");
    EXPECT_EQ(Messages(ReadAll(clean)).size(), 1u);
    EXPECT_FALSE(clean.Finish(event));
}

}  // namespace
}  // namespace arbolet::lsp
