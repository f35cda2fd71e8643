// An in-process client of the language server for tests: sends messages as JSON, collects what
// the server sends (through the real framing) and finds responses and notifications in it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "lsp/message_reader.h"
#include "lsp/protocol.h"
#include "lsp/server.h"

namespace arbolet::lsp::testing {

class Client {
  public:
    Client() : server_([this](const std::string& framed) { Receive(framed); }) {}

    void Send(const Json& message) { server_.HandleMessage(message.dump()); }
    void SendRaw(std::string_view body) { server_.HandleMessage(body); }

    // Sends a request and returns its response (the whole message).
    Json Request(const std::string& method, Json params = Json::object()) {
        const int id = nextId_++;
        Send(Json{{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", params}});
        for (auto it = received_.rbegin(); it != received_.rend(); ++it) {
            if (it->contains("id") && (*it)["id"] == id && !it->contains("method")) return *it;
        }
        ADD_FAILURE() << "no response to " << method;
        return Json();
    }
    Json Result(const std::string& method, Json params = Json::object()) {
        Json response = Request(method, std::move(params));
        EXPECT_FALSE(response.contains("error")) << response.dump();
        return response.value("result", Json());
    }
    void Notify(const std::string& method, Json params = Json::object()) {
        Send(Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", params}});
    }

    Json Initialize(const std::filesystem::path& root, Json options = Json::object(),
                    bool utf8 = false) {
        Json capabilities = Json::object();
        if (utf8) capabilities["general"] = Json{{"positionEncodings", {"utf-8", "utf-16"}}};
        Json result = Result("initialize", Json{{"rootUri", UriFromPath(root)},
                                                {"capabilities", capabilities},
                                                {"initializationOptions", options}});
        Notify("initialized");
        return result;
    }

    void Open(const std::string& uri, const std::string& text, int version = 1) {
        Notify(
            "textDocument/didOpen",
            Json{{"textDocument",
                  Json{{"uri", uri}, {"languageId", "vb"}, {"version", version}, {"text", text}}}});
    }

    // Notifications with that method, oldest first.
    std::vector<Json> Notifications(const std::string& method) const {
        std::vector<Json> found;
        for (const Json& message : received_) {
            if (message.value("method", "") == method && !message.contains("id"))
                found.push_back(message["params"]);
        }
        return found;
    }
    // The diagnostics last published for a uri.
    Json LastDiagnostics(const std::string& uri) const {
        Json last;
        for (const Json& params : Notifications("textDocument/publishDiagnostics")) {
            if (params["uri"] == uri) last = params["diagnostics"];
        }
        return last;
    }
    const std::vector<Json>& Received() const { return received_; }
    void Clear() { received_.clear(); }
    Server& server() { return server_; }

  private:
    // Everything the server sends goes through the reader, so that framing is checked too.
    void Receive(const std::string& framed) {
        reader_.Feed(framed);
        ReadEvent event;
        while (reader_.Next(event)) {
            ASSERT_EQ(event.kind, ReadEvent::Kind::Message) << event.text;
            Json message = Json::parse(event.text, nullptr, false);
            ASSERT_FALSE(message.is_discarded()) << event.text;
            received_.push_back(std::move(message));
        }
    }

    Server server_;
    MessageReader reader_;
    std::vector<Json> received_;
    int nextId_ = 1;
};

// A folder under the temporary folder, removed with its contents at the end of the test.
class TempFolder {
  public:
    TempFolder() {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        path_ = std::filesystem::temp_directory_path() /
                ("arbolet-lsp-" + std::string(info->test_suite_name()) + "-" + info->name());
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    const std::filesystem::path& path() const { return path_; }
    void Write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream in(path_ / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    std::string Uri(const std::string& name) const { return UriFromPath(path_ / name); }

  private:
    std::filesystem::path path_;
};

}  // namespace arbolet::lsp::testing
