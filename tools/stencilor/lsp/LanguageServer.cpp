#include <tools/stencilor/lsp/LanguageServer.h>
#include <tools/stencilor/lsp/Requests.h>
#include <tools/stencilor/system/System.h>

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <utility>

namespace stencilor::lsp {

namespace {

const Json nothing;

/// A member of a message; null if there is none.
const Json& memberOf(const Json& message, const char* name) {
    const auto found = message.is_object() ? message.find(name) : message.end();
    return found == message.end() ? nothing : *found;
}

/// The response to a failure.
ResponseError errorOf(const std::exception& failure) {
    if (const auto* const error = dynamic_cast<const ResponseError*>(&failure)) {
        return *error;
    }
    return dynamic_cast<const Json::exception*>(&failure) != nullptr
               ? ResponseError(ErrorCode::InvalidParams, "the parameters do not match the protocol")
               : ResponseError(ErrorCode::InternalError, failure.what());
}

std::vector<std::string> foldersIn(const Json& folders) {
    std::vector<std::string> paths;
    if (folders.is_array()) {
        for (const Json& folder : folders) {
            if (const auto path =
                    system::pathOfUri(folder.at("uri").get_ref<const std::string&>())) {
                paths.push_back(system::identityOf(*path));
            }
        }
    }
    return paths;
}

} // namespace

LanguageServer::LanguageServer(Send send)
    : send_(std::move(send)), publisher_(session_.documents, session_.checks, session_.client,
                                         [this](const char* method, const std::string& params) {
                                             notify(method, params);
                                         }) {}

void LanguageServer::receive(const Received& received) {
    const Json& message = received.message;
    const Json& method = memberOf(message, "method");
    if (message.is_discarded()) {
        sendError(nullptr, ErrorCode::ParseError, "the message is not JSON");
    } else if (method.is_string()) {
        const auto& name = method.get_ref<const std::string&>();
        if (message.contains("id")) {
            answer(message, name, received.isCancelled);
        } else {
            takeNotification(name, memberOf(message, "params"));
        }
    } else if (!message.is_object() || !(message.contains("result") || message.contains("error"))) {
        // A message with one of these members answers one of our requests, which needs no action.
        sendError(nullptr, ErrorCode::InvalidRequest,
                  "the message is neither a request nor a notification");
    }
}

void LanguageServer::answer(const Json& message, const std::string& method, bool isCancelled) {
    const Json& id = message.at("id");
    if (!id.is_string() && !id.is_number()) {
        sendError(nullptr, ErrorCode::InvalidRequest, "the id is neither a string nor a number");
        return;
    }
    if (isCancelled) {
        sendError(id, ErrorCode::RequestCancelled, "the request was cancelled");
        return;
    }
    std::string result;
    try {
        result = callRequest(method, memberOf(message, "params"));
    } catch (const std::exception& failure) {
        const ResponseError error = errorOf(failure);
        sendError(id, error.code(), error.what());
        return;
    }
    send_(R"({"jsonrpc":"2.0","id":)" + write(id) + ",\"result\":" + result + "}");
}

std::string LanguageServer::callRequest(const std::string& method, const Json& params) {
    if (method == "initialize") {
        if (state_ != State::Started) {
            throw ResponseError(ErrorCode::InvalidRequest, "the server is already initialized");
        }
        return write(initialize(params));
    }
    if (state_ == State::Started) {
        throw ResponseError(ErrorCode::ServerNotInitialized, "the server is not initialized yet");
    }
    if (state_ != State::Initialized) {
        throw ResponseError(ErrorCode::InvalidRequest, "the server has been shut down");
    }
    if (method == "shutdown") {
        state_ = State::ShutDown;
        wasShutDown_ = true;
        return "null";
    }
    for (const RequestInfo& request : requests()) {
        if (request.method == method) {
            const bool isTemplate = session_.documents.of(params).isTemplate();
            return isTemplate ? request.answer(session_, params) : "null";
        }
    }
    throw ResponseError(ErrorCode::MethodNotFound, "unknown method: " + method);
}

Json LanguageServer::initialize(const Json& params) {
    session_.client = clientOf(memberOf(params, "capabilities"));
    session_.documents.setEncoding(session_.client.encoding);
    std::vector<std::string> folders = foldersIn(memberOf(params, "workspaceFolders"));
    if (const Json& root = memberOf(params, "rootUri"); folders.empty() && root.is_string()) {
        folders = foldersIn(Json::array({Json{{"uri", root}}}));
    }
    session_.workspace.setFolders(std::move(folders));
    session_.workspace.set(memberOf(params, "initializationOptions"));
    state_ = State::Initialized;

    Json capabilities = {
        {"positionEncoding", session_.client.encoding == Encoding::Utf8 ? "utf-8" : "utf-16"},
        {"textDocumentSync", {{"openClose", true}, {"change", 2}, {"save", true}}},
        {"workspace",
         {{"workspaceFolders", {{"supported", true}, {"changeNotifications", true}}}}}};
    for (const RequestInfo& request : requests()) {
        if (!request.capability.empty()) {
            capabilities[request.capability] = request.options;
        }
    }
    // Only clients with certain capabilities may be sent these options.
    if (!session_.client.takesLiteralActions) {
        capabilities["codeActionProvider"] = true;
    }
    if (!session_.client.preparesRename) {
        capabilities["renameProvider"] = true;
    }
    return {{"capabilities", std::move(capabilities)},
            {"serverInfo", {{"name", "stencilor"}, {"version", STENCILOR_VERSION}}}};
}

void LanguageServer::takeNotification(const std::string& method, const Json& params) {
    if (method == "exit") {
        state_ = State::Ended;
    } else if (state_ == State::Initialized) {
        try {
            callNotification(method, params);
        } catch (const std::exception& failure) {
            log(method + ": " + errorOf(failure).what());
        }
    }
}

void LanguageServer::callNotification(const std::string& method, const Json& params) {
    Documents& documents = session_.documents;
    if (method == "textDocument/didChange") {
        // If one of the changes is invalid, those before it count.
        noteChange(documents.of(params));
        documents.change(params);
    } else if (method == "textDocument/didOpen") {
        documents.open(params.at("textDocument"));
        noteChangeOfAll();
    } else if (method == "textDocument/didClose") {
        documents.close(params);
        noteChangeOfAll();
    } else if (method == "textDocument/didSave" || method == "workspace/didChangeWatchedFiles") {
        noteChangeOfAll();
    } else if (method == "workspace/didChangeConfiguration") {
        // Some clients send an empty object after they have started.
        if (const Json& settings = memberOf(params, "settings"); settings.contains("stencilor")) {
            session_.workspace.set(settings.at("stencilor"));
            noteChangeOfAll();
        }
    } else if (method == "workspace/didChangeWorkspaceFolders") {
        changeFolders(params.at("event"));
        noteChangeOfAll();
    } else if (method == "initialized") {
        watchFiles();
    } else if (!method.starts_with("$/")) {
        log("unknown notification: " + method);
    }
}

/// All files below the folders of the workspace: any may be included or be a context.
void LanguageServer::watchFiles() {
    if (!session_.client.watchesFiles) {
        return;
    }
    const Json watcher = {{"globPattern", "**/*"}};
    const Json registration = {{"id", "watch"},
                               {"method", "workspace/didChangeWatchedFiles"},
                               {"registerOptions", {{"watchers", Json::array({watcher})}}}};
    send({{"jsonrpc", "2.0"},
          {"id", "watch"},
          {"method", "client/registerCapability"},
          {"params", {{"registrations", Json::array({registration})}}}});
}

void LanguageServer::changeFolders(const Json& event) {
    std::vector<std::string> folders = session_.workspace.folders();
    for (const std::string& removed : foldersIn(event.at("removed"))) {
        std::erase(folders, removed);
    }
    for (const std::string& added : foldersIn(event.at("added"))) {
        folders.push_back(added);
    }
    session_.workspace.setFolders(std::move(folders));
}

void LanguageServer::noteChange(const Document& document) {
    if (document.isTemplate()) {
        session_.checks.noteChange(document.name);
    } else {
        session_.checks.noteChangeOfAll();
    }
    due_ = Clock::now() + delay;
}

void LanguageServer::noteChangeOfAll() {
    session_.checks.noteChangeOfAll();
    due_ = Clock::now() + delay;
}

std::optional<LanguageServer::Clock::time_point> LanguageServer::due() const {
    return session_.checks.areDue() && state_ == State::Initialized ? std::optional(due_)
                                                                    : std::nullopt;
}

void LanguageServer::runDue(const Checks::GoOn& goOn) {
    try {
        const auto names = session_.checks.run(goOn);
        for (const std::string& fault : session_.workspace.takeFaults()) {
            notify("window/showMessage", write({{"type", 1}, {"message", fault}}));
        }
        if (names) {
            publisher_.publish(*names);
        }
    } catch (const std::bad_alloc&) {
        log("there is not enough memory to check the templates");
        session_.checks.giveUp();
    }
}

void LanguageServer::send(const Json& message) {
    send_(write(message));
}

void LanguageServer::notify(const char* method, const std::string& params) {
    send_(R"({"jsonrpc":"2.0","method":")" + std::string(method) + R"(","params":)" + params + "}");
}

void LanguageServer::sendError(const Json& id, ErrorCode code, const std::string& message) {
    send({{"jsonrpc", "2.0"},
          {"id", id},
          {"error", {{"code", static_cast<int>(code)}, {"message", message}}}});
}

void LanguageServer::log(const std::string& message) {
    notify("window/logMessage", write({{"type", 1}, {"message", message}}));
}

} // namespace stencilor::lsp
