// Fuzzes the language server's input: any bytes, split into two reads at a point the input
// chooses, go through the message reader; every message it yields goes to an initialized server
// with a document open, so that malformed JSON, wrong parameters and odd edits are answered
// without a crash. Every byte the server writes must be a well-framed message.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "lsp/message_reader.h"
#include "lsp/server.h"

namespace {

using arbolet::lsp::MessageReader;
using arbolet::lsp::ReadEvent;
using arbolet::lsp::Server;

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckFramed(const std::string& framed) {
    MessageReader reader;
    reader.Feed(framed);
    ReadEvent event;
    Require(reader.Next(event) && event.kind == ReadEvent::Kind::Message);
    Require(!reader.Next(event));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    Server server(CheckFramed);
    server.HandleMessage(
        R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"capabilities":{}}})");
    server.HandleMessage(
        R"({"jsonrpc":"2.0","method":"textDocument/didOpen","params":{"textDocument":)"
        R"({"uri":"file:///nonexistent/arbolet-fuzz/m.bas","version":1,"text":"Sub A()\r\nIf x Then\r\nEnd Sub\r\n"}}})");
    MessageReader reader;
    const std::size_t cut = size == 0 ? 0 : data[0] % (size + 1);
    for (const std::string_view part : {input.substr(0, cut), input.substr(cut)}) {
        reader.Feed(part);
        for (ReadEvent event; reader.Next(event);) {
            if (event.kind == ReadEvent::Kind::Error) {
                server.ReportInputError(event.text);
            } else if (event.text.find("executeCommand") == std::string::npos &&
                       event.text.find("WorkspaceFolders") == std::string::npos) {
                // Commands write project files, and new workspace folders are searched on
                // disk: the fuzzer runs neither.
                server.HandleMessage(event.text);
            }
        }
    }
    ReadEvent last;
    if (reader.Finish(last)) server.ReportInputError(last.text);
    return 0;
}
