// The language server: the protocol's life cycle, the open documents and the workspace, and the
// dispatch of each message to its feature. It takes one message body at a time and sends what
// it answers through a callback, so that tests drive it in-process and the stdio loop is thin.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "lsp/document_analysis.h"
#include "lsp/protocol.h"
#include "lsp/settings.h"
#include "lsp/text_document.h"
#include "lsp/workspace_index.h"

namespace arbolet::lsp {

class Server {
  public:
    // Receives each framed message the server sends (responses, notifications, requests).
    using Sender = std::function<void(const std::string& framed)>;

    explicit Server(Sender send);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Handles one message body; never throws. A body that is not JSON gets a ParseError.
    void HandleMessage(std::string_view body);
    // A framing problem of the input: logged to the client.
    void ReportInputError(const std::string& message);
    // Marks requests cancelled before they are handled (the loop reads ahead).
    void Cancel(const Json& id);

    bool ExitRequested() const { return exitRequested_; }
    // 0 after shutdown, 1 when exit came without it.
    int ExitCode() const { return shutdown_ ? 0 : 1; }

  private:
    struct OpenDocument;
    // A result as a JSON value, or already written as JSON text.
    struct Reply {
        Reply(Json value) : json(std::move(value)) {}
        static Reply Text(std::string text) {
            Reply reply(nullptr);
            reply.text = std::move(text);
            return reply;
        }
        Json json;
        std::optional<std::string> text;
    };

    void Dispatch(const std::string& method, const Json* id, const Json& params);
    Reply Request(const std::string& method, const Json& params);
    void Notification(const std::string& method, const Json& params);

    Json Initialize(const Json& params);
    void Initialized();
    void DidOpen(const Json& params);
    void DidChange(const Json& params);
    void DidSave(const Json& params);
    void DidClose(const Json& params);
    void DidChangeWatchedFiles(const Json& params);
    void DidChangeConfiguration(const Json& params);
    void DidChangeWorkspaceFolders(const Json& params);
    Json ExecuteCommand(const Json& params);
    Json ProjectTreeRequest(const Json& params);

    OpenDocument& Document(const Json& params);
    const DocumentAnalysis& Analysis(OpenDocument& document);
    void Analyse(OpenDocument& document);
    void PublishDiagnostics(OpenDocument& document);
    void PublishProjectProblems();
    void LoadWorkspace();
    const IndexedComponent& ComponentOf(OpenDocument& document, IndexedComponent& scratch);
    std::optional<std::string> UnsavedChangesIn(const std::vector<std::filesystem::path>& files);

    void Send(const Json& message);
    void Log(int type, const std::string& message);

    Sender send_;
    bool initialized_ = false;
    bool shutdown_ = false;
    bool exitRequested_ = false;
    bool dynamicWatchers_ = false;
    PositionEncoding encoding_ = PositionEncoding::Utf16;
    Settings settings_;
    std::vector<std::filesystem::path> folders_;
    std::map<std::string, std::unique_ptr<OpenDocument>> documents_;
    WorkspaceIndex index_;
    std::set<std::string> publishedProblems_;  // project files that have diagnostics shown
    std::set<std::string> cancelled_;          // ids (as JSON text) of cancelled requests
    std::int64_t nextRequestId_ = 1;
};

}  // namespace arbolet::lsp
