// The stdio loop (see stdio_server.h).
#include "lsp/stdio_server.h"

#include <cerrno>
#include <string>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

#include "lsp/message_reader.h"
#include "lsp/server.h"

namespace arbolet::lsp {
namespace {

long ReadInput(char* buffer, unsigned size) {
#ifdef _WIN32
    return _read(0, buffer, size);
#else
    return static_cast<long>(read(0, buffer, size));
#endif
}

void WriteOutput(const std::string& bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
#ifdef _WIN32
        const long n =
            _write(1, bytes.data() + written, static_cast<unsigned>(bytes.size() - written));
#else
        const long n = static_cast<long>(write(1, bytes.data() + written, bytes.size() - written));
#endif
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;  // the client is gone; the loop ends at the end of its input
        written += static_cast<std::size_t>(n);
    }
}

}  // namespace

int RunStdioServer() {
#ifdef _WIN32
    // Content-Length counts bytes: no CRLF translation either way.
    _setmode(0, _O_BINARY);
    _setmode(1, _O_BINARY);
#endif
    Server server(WriteOutput);
    MessageReader reader;
    std::vector<char> buffer(1 << 16);
    std::vector<ReadEvent> batch;
    while (!server.ExitRequested()) {
        const long count = ReadInput(buffer.data(), static_cast<unsigned>(buffer.size()));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            ReadEvent event;
            if (reader.Finish(event)) server.ReportInputError(event.text);
            break;
        }
        reader.Feed(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
        // Everything that has arrived is read before it is handled, so that a cancellation
        // reaches the requests in front of it.
        batch.clear();
        for (ReadEvent event; reader.Next(event);)
            batch.push_back(std::move(event));
        for (const ReadEvent& event : batch) {
            if (event.kind != ReadEvent::Kind::Message ||
                event.text.find("$/cancelRequest") == std::string::npos) {
                continue;
            }
            const Json message = Json::parse(event.text, nullptr, false);
            if (const Json* params = Member(message, "params")) {
                if (const Json* id = Member(*params, "id")) server.Cancel(*id);
            }
        }
        for (const ReadEvent& event : batch) {
            if (server.ExitRequested()) break;
            if (event.kind == ReadEvent::Kind::Message) {
                server.HandleMessage(event.text);
            } else {
                server.ReportInputError(event.text);
            }
        }
    }
    return server.ExitCode();
}

}  // namespace arbolet::lsp
