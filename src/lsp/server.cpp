// The server's life cycle and dispatch (see server.h).
#include "lsp/server.h"

#include <algorithm>

#include "arbolet/version.h"
#include "base/utf8.h"
#include "disk/codepage.h"
#include "disk/component_file.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"
#include "lsp/features.h"
#include "lsp/project_features.h"
#include "lsp/workspace_features.h"

namespace arbolet::lsp {

namespace fs = std::filesystem;

namespace {

constexpr int kLogError = 1;
constexpr int kLogWarning = 2;
constexpr int kLogInfo = 3;

bool IsProjectFile(const fs::path& path) {
    return disk::HasExtension(path, ".vbp") || disk::HasExtension(path, ".vbg");
}

const Json& ParamsObject(const Json& params) {
    static const Json empty = Json::object();
    return params.is_object() ? params : empty;
}

const Json& TextDocumentOf(const Json& params) {
    const Json* document = Member(params, "textDocument");
    if (!document || !document->is_object())
        throw RequestError(error_code::kInvalidParams, "textDocument is missing");
    return *document;
}

}  // namespace

struct Server::OpenDocument {
    std::string uri;
    std::optional<fs::path> path;
    bool component = false;  // a file kind with code (not a project file or anything else)
    TextDocument text;
    std::int64_t version = 0;
    bool dirty = false;  // changed in the editor since it was opened or saved
    std::optional<DocumentAnalysis> analysis;
};

Server::Server(Sender send) : send_(std::move(send)) {}

Server::~Server() = default;

void Server::Send(const Json& message) {
    send_(Frame(message));
}

void Server::Log(int type, const std::string& message) {
    Send(NotificationMessage("window/logMessage", Json{{"type", type}, {"message", message}}));
}

void Server::ReportInputError(const std::string& message) {
    Log(kLogError, "arbolet: " + message);
}

void Server::Cancel(const Json& id) {
    if (id.is_string() || id.is_number_integer()) cancelled_.insert(id.dump());
}

void Server::HandleMessage(std::string_view body) {
    Json message = Json::parse(body, nullptr, false);
    if (message.is_discarded()) {
        Send(ErrorMessage(nullptr, error_code::kParseError, "the message is not valid JSON"));
        return;
    }
    const Json* method = Member(message, "method");
    const Json* id = Member(message, "id");
    if (id && !(id->is_string() || id->is_number_integer())) {
        Send(ErrorMessage(nullptr, error_code::kInvalidRequest,
                          "a request id must be a string or an integer"));
        return;
    }
    if (!method || !method->is_string()) {
        // A response to one of our requests (client/registerCapability), or junk.
        if (Member(message, "result") || Member(message, "error")) return;
        Send(ErrorMessage(id ? *id : Json(nullptr), error_code::kInvalidRequest,
                          "the message has no method"));
        return;
    }
    const Json* params = Member(message, "params");
    Dispatch(method->get<std::string>(), id, params ? *params : Json::object());
}

void Server::Dispatch(const std::string& method, const Json* id, const Json& params) {
    if (!id) {
        try {
            Notification(method, params);
        } catch (const std::exception& error) {
            Log(kLogWarning, "arbolet: " + method + ": " + error.what());
        }
        return;
    }
    if (cancelled_.erase(id->dump()) > 0) {
        Send(ErrorMessage(*id, error_code::kRequestCancelled, "the request was cancelled"));
        return;
    }
    try {
        if (!initialized_ && method != "initialize") {
            throw RequestError(error_code::kServerNotInitialized, "the server is not initialized");
        }
        if (shutdown_ && method != "shutdown") {
            throw RequestError(error_code::kInvalidRequest, "the server is shutting down");
        }
        Reply reply = Request(method, params);
        if (!reply.text) {
            Send(ResponseMessage(*id, std::move(reply.json)));
        } else {
            const std::string body =
                R"({"jsonrpc":"2.0","id":)" + id->dump() + R"(,"result":)" + *reply.text + "}";
            send_("Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        }
    } catch (const RequestError& error) {
        Send(ErrorMessage(*id, error.code, error.what()));
    } catch (const std::exception& error) {
        Send(ErrorMessage(*id, error_code::kInternalError, method + ": " + error.what()));
    }
}

Server::Reply Server::Request(const std::string& method, const Json& params) {
    if (method == "initialize") return Initialize(params);
    if (method == "shutdown") {
        shutdown_ = true;
        return Json(nullptr);
    }
    if (method == "textDocument/documentSymbol") {
        OpenDocument& document = Document(params);
        if (!document.component) return Json::array();
        return Reply::Text(DocumentSymbols(
            {document.uri, document.text, Analysis(document), encoding_}, settings_));
    }
    if (method == "textDocument/foldingRange") {
        OpenDocument& document = Document(params);
        if (!document.component) return Json::array();
        return FoldingRanges({document.uri, document.text, Analysis(document), encoding_});
    }
    if (method == "textDocument/documentHighlight") {
        OpenDocument& document = Document(params);
        if (!document.component) return Json::array();
        const Json* position = Member(params, "position");
        if (!position) throw RequestError(error_code::kInvalidParams, "position is missing");
        return DocumentHighlights({document.uri, document.text, Analysis(document), encoding_},
                                  PositionFromJson(*position));
    }
    if (method == "textDocument/definition") {
        OpenDocument& document = Document(params);
        if (!document.component) return Json(nullptr);
        const Json* position = Member(params, "position");
        if (!position) throw RequestError(error_code::kInvalidParams, "position is missing");
        IndexedComponent scratch;
        return Definition(index_, ComponentOf(document, scratch), document.text,
                          PositionFromJson(*position), encoding_);
    }
    if (method == "workspace/symbol") {
        const Json* query = Member(params, "query");
        return WorkspaceSymbols(
            index_, query && query->is_string() ? query->get<std::string>() : std::string());
    }
    if (method == "workspace/executeCommand") return ExecuteCommand(params);
    if (method == "arbolet/projectTree") return ProjectTreeRequest(params);
    throw RequestError(error_code::kMethodNotFound, "unknown method " + method);
}

void Server::Notification(const std::string& method, const Json& params) {
    if (method == "exit") {
        exitRequested_ = true;
        return;
    }
    if (method == "$/cancelRequest") {
        if (const Json* id = Member(params, "id")) Cancel(*id);
        return;
    }
    if (!initialized_ || shutdown_) return;
    if (method == "initialized") return Initialized();
    if (method == "textDocument/didOpen") return DidOpen(params);
    if (method == "textDocument/didChange") return DidChange(params);
    if (method == "textDocument/didSave") return DidSave(params);
    if (method == "textDocument/didClose") return DidClose(params);
    if (method == "workspace/didChangeWatchedFiles") return DidChangeWatchedFiles(params);
    if (method == "workspace/didChangeConfiguration") return DidChangeConfiguration(params);
    if (method == "workspace/didChangeWorkspaceFolders") return DidChangeWorkspaceFolders(params);
    // $/setTrace, $/progress and notifications of later versions need nothing from us.
}

Json Server::Initialize(const Json& paramsIn) {
    if (initialized_) throw RequestError(error_code::kInvalidRequest, "initialize came twice");
    const Json& params = ParamsObject(paramsIn);
    const Json* capabilities = Member(params, "capabilities");
    encoding_ = PositionEncoding::Utf16;
    if (const Json* general = capabilities ? Member(*capabilities, "general") : nullptr) {
        if (const Json* encodings = Member(*general, "positionEncodings");
            encodings && encodings->is_array()) {
            for (const Json& encoding : *encodings) {
                if (encoding == "utf-8") encoding_ = PositionEncoding::Utf8;
            }
        }
    }
    if (const Json* workspace = capabilities ? Member(*capabilities, "workspace") : nullptr) {
        if (const Json* watched = Member(*workspace, "didChangeWatchedFiles")) {
            const Json* dynamic = Member(*watched, "dynamicRegistration");
            dynamicWatchers_ = dynamic && dynamic->is_boolean() && dynamic->get<bool>();
        }
    }
    folders_.clear();
    if (const Json* folders = Member(params, "workspaceFolders"); folders && folders->is_array()) {
        for (const Json& folder : *folders) {
            const Json* uri = Member(folder, "uri");
            if (!uri || !uri->is_string()) continue;
            if (auto path = PathFromUri(uri->get<std::string>())) folders_.push_back(*path);
        }
    }
    if (folders_.empty()) {
        const Json* root = Member(params, "rootUri");
        if (root && root->is_string()) {
            if (auto path = PathFromUri(root->get<std::string>())) folders_.push_back(*path);
        }
    }
    std::vector<std::string> warnings;
    if (const Json* options = Member(params, "initializationOptions")) {
        warnings = ApplyInitializationOptions(*options, settings_);
    }
    initialized_ = true;
    for (const auto& warning : warnings)
        Log(kLogWarning, "arbolet: " + warning);
    Json commands = Json::array();
    for (const char* command : kProjectCommands)
        commands.push_back(command);
    return Json{
        {"capabilities",
         Json{{"positionEncoding", encoding_ == PositionEncoding::Utf8 ? "utf-8" : "utf-16"},
              {"textDocumentSync",
               Json{{"openClose", true}, {"change", 2}, {"save", Json{{"includeText", false}}}}},
              {"documentSymbolProvider", true},
              {"foldingRangeProvider", true},
              {"documentHighlightProvider", true},
              {"definitionProvider", true},
              {"workspaceSymbolProvider", true},
              {"executeCommandProvider", Json{{"commands", commands}}},
              {"workspace", Json{{"workspaceFolders",
                                  Json{{"supported", true}, {"changeNotifications", true}}}}}}},
        {"serverInfo", Json{{"name", "arbolet"}, {"version", ARBOLET_VERSION_TEXT}}}};
}

void Server::Initialized() {
    if (dynamicWatchers_) {
        const Json watchers = Json::array({Json{
            {"globPattern",
             "**/*.{vbp,vbg,VBP,VBG,bas,cls,frm,ctl,pag,dob,dsr,BAS,CLS,FRM,CTL,PAG,DOB,DSR}"}}});
        Send(
            Json{{"jsonrpc", "2.0"},
                 {"id", "arbolet-watch-" + std::to_string(nextRequestId_++)},
                 {"method", "client/registerCapability"},
                 {"params",
                  Json{{"registrations",
                        Json::array({Json{{"id", "arbolet-files"},
                                          {"method", "workspace/didChangeWatchedFiles"},
                                          {"registerOptions", Json{{"watchers", watchers}}}}})}}}});
    }
    LoadWorkspace();
}

void Server::LoadWorkspace() {
    index_.Load(WorkspaceIndex::FindProjectFiles(folders_), settings_.codePage, encoding_);
    // Open documents keep what the editor holds.
    for (auto& [uri, document] : documents_) {
        if (document->component && document->path && document->analysis) {
            index_.IndexText(*document->path, document->text.Text(),
                             document->analysis->declarations, document->text);
        }
    }
    PublishProjectProblems();
    Log(kLogInfo, "arbolet: " + std::to_string(index_.ProjectFiles().size()) + " project files, " +
                      std::to_string(index_.Components().size()) + " components indexed");
    Send(NotificationMessage("arbolet/projectTreeChanged", Json::object()));
}

void Server::PublishProjectProblems() {
    std::set<std::string> now;
    for (const auto& [uri, problems] : index_.ProjectProblems()) {
        Json diagnostics = Json::array();
        for (const ProjectProblem& problem : problems) {
            const Range range{{problem.line, 0}, {problem.line, 1000}};
            diagnostics.push_back(Json{{"range", ToJson(range)},
                                       {"severity", problem.error ? 1 : 2},
                                       {"code", problem.error ? "unreadable-file" : "project-file"},
                                       {"source", "arbolet"},
                                       {"message", problem.message}});
        }
        if (diagnostics.empty() && !publishedProblems_.contains(uri)) continue;
        if (!diagnostics.empty()) now.insert(uri);
        Send(NotificationMessage("textDocument/publishDiagnostics",
                                 Json{{"uri", uri}, {"diagnostics", std::move(diagnostics)}}));
    }
    // Files that vanished from the workspace lose their diagnostics too.
    for (const std::string& uri : publishedProblems_) {
        if (!index_.ProjectProblems().contains(uri)) {
            Send(NotificationMessage("textDocument/publishDiagnostics",
                                     Json{{"uri", uri}, {"diagnostics", Json::array()}}));
        }
    }
    publishedProblems_ = std::move(now);
}

Server::OpenDocument& Server::Document(const Json& params) {
    const std::string& uri = StringMember(TextDocumentOf(params), "uri");
    const auto found = documents_.find(uri);
    if (found != documents_.end()) return *found->second;
    // A document the editor did not open is read from disk, in the projects' code page.
    auto document = std::make_unique<OpenDocument>();
    document->uri = uri;
    document->path = PathFromUri(uri);
    if (!document->path) throw RequestError(error_code::kInvalidParams, "not a file URI: " + uri);
    try {
        document->text.SetText(
            disk::DecodeCodePage(disk::ReadFileBytes(*document->path), settings_.codePage));
    } catch (const disk::FileError& error) {
        throw RequestError(error_code::kRequestFailed, error.what());
    }
    document->component = disk::IsComponentFileName(disk::PathToUtf8(document->path->filename()));
    static thread_local std::unique_ptr<OpenDocument> closed;
    closed = std::move(document);
    return *closed;
}

void Server::Analyse(OpenDocument& document) {
    document.analysis = AnalyseDocument(document.text.Text());
    if (document.path) {
        index_.IndexText(*document.path, document.text.Text(), document.analysis->declarations,
                         document.text);
    }
}

const DocumentAnalysis& Server::Analysis(OpenDocument& document) {
    if (!document.analysis) Analyse(document);
    return *document.analysis;
}

void Server::PublishDiagnostics(OpenDocument& document) {
    Json diagnostics =
        document.component
            ? Diagnostics({document.uri, document.text, Analysis(document), encoding_})
            : Json::array();
    if (!document.component) {
        // A project file shows the problems of its loading.
        const auto found = index_.ProjectProblems().find(document.uri);
        if (found == index_.ProjectProblems().end()) return;
        return PublishProjectProblems();
    }
    Json params{{"uri", document.uri}, {"diagnostics", std::move(diagnostics)}};
    params["version"] = document.version;
    Send(NotificationMessage("textDocument/publishDiagnostics", std::move(params)));
}

const IndexedComponent& Server::ComponentOf(OpenDocument& document, IndexedComponent& scratch) {
    const DocumentAnalysis& analysis = Analysis(document);
    if (document.path) {
        if (const IndexedComponent* component = index_.ComponentAt(*document.path))
            return *component;
    }
    scratch =
        index_.Standalone(document.path.value_or(fs::path()), analysis.declarations, document.text);
    scratch.uri = document.uri;
    return scratch;
}

void Server::DidOpen(const Json& params) {
    const Json& item = TextDocumentOf(params);
    auto document = std::make_unique<OpenDocument>();
    document->uri = StringMember(item, "uri");
    document->path = PathFromUri(document->uri);
    document->text.SetText(StringMember(item, "text"));
    if (const Json* version = Member(item, "version"); version && version->is_number_integer())
        document->version = version->get<std::int64_t>();
    document->component =
        document->path && disk::IsComponentFileName(disk::PathToUtf8(document->path->filename()));
    if (document->path) {
        // The editor may open a file with changes it kept from an earlier session.
        try {
            document->dirty = disk::DecodeCodePage(disk::ReadFileBytes(*document->path),
                                                   settings_.codePage) != document->text.Text();
        } catch (const disk::FileError&) {
            document->dirty = true;
        }
    }
    OpenDocument& stored = *(documents_[document->uri] = std::move(document));
    if (stored.component) Analyse(stored);
    PublishDiagnostics(stored);
}

void Server::DidChange(const Json& params) {
    OpenDocument& document = Document(params);
    if (!documents_.contains(document.uri)) {
        throw RequestError(error_code::kInvalidParams, "didChange for a document not open");
    }
    if (const Json* version = Member(TextDocumentOf(params), "version");
        version && version->is_number_integer()) {
        document.version = version->get<std::int64_t>();
    }
    const Json* changes = Member(params, "contentChanges");
    if (!changes || !changes->is_array()) return;
    for (const Json& change : *changes) {
        const std::string& text = StringMember(change, "text");
        if (const Json* range = Member(change, "range")) {
            document.text.Replace(RangeFromJson(*range), text, encoding_);
        } else {
            document.text.SetText(text);
        }
    }
    document.dirty = true;
    document.analysis.reset();
    if (document.component) Analyse(document);
    PublishDiagnostics(document);
}

void Server::DidSave(const Json& params) {
    const std::string& uri = StringMember(TextDocumentOf(params), "uri");
    const auto found = documents_.find(uri);
    if (found != documents_.end()) found->second->dirty = false;
    const auto path = PathFromUri(uri);
    if (path && IsProjectFile(*path)) LoadWorkspace();
}

void Server::DidClose(const Json& params) {
    const std::string& uri = StringMember(TextDocumentOf(params), "uri");
    const auto found = documents_.find(uri);
    if (found == documents_.end()) return;
    const bool component = found->second->component;
    const auto path = found->second->path;
    documents_.erase(found);
    if (!component) return;
    // What the editor did not save is gone: the index goes back to the file on disk.
    if (path) index_.IndexFromDisk(*path);
    Send(NotificationMessage("textDocument/publishDiagnostics",
                             Json{{"uri", uri}, {"diagnostics", Json::array()}}));
}

void Server::DidChangeWatchedFiles(const Json& params) {
    const Json* changes = Member(params, "changes");
    if (!changes || !changes->is_array()) return;
    bool projects = false;
    std::vector<fs::path> components;
    for (const Json& change : *changes) {
        const Json* uri = Member(change, "uri");
        if (!uri || !uri->is_string()) continue;
        const auto path = PathFromUri(uri->get<std::string>());
        if (!path) continue;
        if (IsProjectFile(*path)) {
            projects = true;
        } else if (!documents_.contains(uri->get<std::string>())) {
            components.push_back(*path);
        }
    }
    if (projects) return LoadWorkspace();
    for (const fs::path& path : components)
        index_.IndexFromDisk(path);
}

void Server::DidChangeConfiguration(const Json& params) {
    const Json* settings = Member(params, "settings");
    if (!settings) return;
    const int codePage = settings_.codePage;
    for (const auto& warning : ApplyConfiguration(*settings, settings_))
        Log(kLogWarning, "arbolet: " + warning);
    if (settings_.codePage != codePage) LoadWorkspace();
}

void Server::DidChangeWorkspaceFolders(const Json& params) {
    const Json* event = Member(params, "event");
    if (!event) return;
    const auto uris = [&](const char* name) {
        std::vector<fs::path> paths;
        const Json* list = Member(*event, name);
        if (!list || !list->is_array()) return paths;
        for (const Json& folder : *list) {
            const Json* uri = Member(folder, "uri");
            if (uri && uri->is_string()) {
                if (auto path = PathFromUri(uri->get<std::string>())) paths.push_back(*path);
            }
        }
        return paths;
    };
    for (const fs::path& removed : uris("removed"))
        std::erase(folders_, removed);
    for (const fs::path& added : uris("added"))
        folders_.push_back(added);
    LoadWorkspace();
}

std::optional<std::string> Server::UnsavedChangesIn(const std::vector<fs::path>& files) {
    for (const fs::path& file : files) {
        const fs::path identity = disk::PathIdentity(file);
        for (const auto& [uri, document] : documents_) {
            if (document->dirty && document->path &&
                disk::PathIdentity(*document->path) == identity) {
                return disk::PathToUtf8(file.filename()) +
                       " has unsaved changes in the editor; save or close it first";
            }
        }
    }
    return std::nullopt;
}

Json Server::ExecuteCommand(const Json& params) {
    const std::string& command = StringMember(params, "command");
    const Json* arguments = Member(params, "arguments");
    const fs::path project = RunProjectCommand(
        command, arguments ? *arguments : Json::array(), settings_.codePage,
        [this](const std::vector<fs::path>& files) { return UnsavedChangesIn(files); });
    LoadWorkspace();
    Send(NotificationMessage("arbolet/projectTreeChanged",
                             Json{{"project", UriFromPath(disk::AbsolutePath(project))}}));
    return nullptr;
}

Json Server::ProjectTreeRequest(const Json& params) {
    std::optional<fs::path> project;
    if (const Json* uri = Member(params, "project"); uri && uri->is_string()) {
        project = PathFromUri(uri->get<std::string>());
        if (!project) throw RequestError(error_code::kInvalidParams, "project is no file URI");
    }
    return ProjectTree(index_.Environment(), project);
}

}  // namespace arbolet::lsp
