#include "cli/language_server.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "cli/commands.h"
#include "cli/debug_messages.h"
#include "cli/language_documents.h"
#include "cli/library_session.h"
#include "exchange/export/file_names.h"
#include "language/completion.h"
#include "language/folder_context.h"
#include "language/outline.h"
#include "telling/texts.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

using Json = DebugJson;

constexpr int parseError = -32700, methodNotFound = -32601, invalidParams = -32602, requestFailed = -32803;
constexpr std::size_t documentLimit = 1000;

struct Server {
    std::ostream &answers;
    LanguageDocuments documents = {};
    bool takesDocumentChanges = false, renamesFiles = false;  // what the editor can do
    bool isShutDown = false;
};

struct Fault {
    int code = 0;
    std::string message;
};

struct Request {
    Server &server;
    const Json &params;

    std::string address() const {
        return argument(argument(params, "textDocument", Json::object()), "uri", std::string());
    }
    const LanguageDocument &document() const {
        const auto found = server.documents.find(address());
        if (found == server.documents.end()) throw Fault{invalidParams, "no such document is open"};
        return found->second;
    }
    TextPlace place() const {
        const Json position = argument(params, "position", Json::object());
        const auto at = [&](const char *name) {
            return static_cast<std::size_t>(std::max(std::int64_t{0}, argument(position, name, std::int64_t{0})));
        };
        return textPlaceOf(document(), {at("line"), at("character")});
    }
    // The token at the place, else the one that ends there.
    std::size_t token() const {
        const ProgramStructure &program = document().structure;
        const std::size_t at = byteOfPlace(document().text, place());
        const std::size_t own = tokenAt(program, at);
        return own != noToken && nameAt(own)                ? own
               : at > 1 && nameAt(tokenAt(program, at - 1)) ? tokenAt(program, at - 1)
                                                            : own;
    }
    std::optional<ProgramName> nameAt(std::size_t token) const { return numalink::nameAt(document().structure, token); }
    ProgramName name() const {
        const auto found = nameAt(token());
        if (!found) throw Fault{requestFailed, "there is no name at this place"};
        return *found;
    }
};

Json positionOf(const DocumentPlace &place) { return {{"line", place.line}, {"character", place.unit}}; }

Json rangeOf(const LanguageDocument &document, std::size_t from, std::size_t to) {
    return {{"start", positionOf(documentPlace(document, from))}, {"end", positionOf(documentPlace(document, to))}};
}

Json rangeOfTokens(const LanguageDocument &document, std::size_t first, std::size_t count) {
    const auto &tokens = document.structure.tokens;
    if (first >= tokens.size()) return rangeOf(document, document.structure.end, document.structure.end);
    if (count == 0) return rangeOf(document, tokens[first].at, tokens[first].at);
    const ProgramToken &last = tokens[std::min(first + count, tokens.size()) - 1];
    return rangeOf(document, tokens[first].at, last.at + last.length);
}

void send(Server &server, Json message) {
    message["jsonrpc"] = "2.0";
    writeMessage(server.answers, message);
}

Json diagnosticOf(const LanguageDocument &document, const Problem &problem) {
    constexpr int severities[] = {1, 2, 4};
    return {{"range", rangeOf(document, problem.at, problem.at + problem.length)},
            {"severity", severities[static_cast<std::size_t>(severityOf(problem.kind))]},
            {"code", problemId(problem.kind)},
            {"source", "numalink"},
            {"message", problemText(problem)}};
}

void publish(Server &server, const std::string &address) {
    const LanguageDocument &document = server.documents.at(address);
    Json list = Json::array();
    for (std::size_t line = 0; line < document.text.lines.size(); line++) {
        const std::ptrdiff_t fault = document.text.lines[line].reading.faultAt;
        if (fault < 0) continue;
        const auto place = static_cast<std::size_t>(fault);
        list.push_back({{"range",
                         {{"start", positionOf(documentPlace(document, TextPlace{line, place}))},
                          {"end", positionOf(documentPlace(document, TextPlace{line, place + 1}))}}},
                        {"severity", 1},
                        {"code", "no-token"},
                        {"source", "numalink"},
                        {"message", wording(Text::problemNoToken)}});
    }
    for (const Problem &problem : problemsOf(document.structure, problemContextAlone()))
        if (!isInFaultyLine(document.text, problem.at)) list.push_back(diagnosticOf(document, problem));
    send(server,
         {{"method", "textDocument/publishDiagnostics"}, {"params", {{"uri", address}, {"diagnostics", list}}}});
}

Json initialize(const Request &request) {
    const auto part = [](const Json &whole, const char *name) { return argument(whole, name, Json::object()); };
    const Json edits = part(part(part(request.params, "capabilities"), "workspace"), "workspaceEdit");
    const Json operations = argument(edits, "resourceOperations", Json::array());
    request.server.takesDocumentChanges = argument(edits, "documentChanges", false);
    request.server.renamesFiles =
        request.server.takesDocumentChanges && std::ranges::find(operations, "rename") != operations.end();
    return {{"capabilities",
             {{"positionEncoding", "utf-16"},
              {"textDocumentSync", 1},
              {"completionProvider", Json::object()},
              {"hoverProvider", true},
              {"documentSymbolProvider", true},
              {"definitionProvider", true},
              {"referencesProvider", true},
              {"renameProvider", true},
              {"documentFormattingProvider", true}}},
            {"serverInfo", {{"name", "numalink-cli"}}}};
}

Json shutDown(const Request &request) {
    request.server.isShutDown = true;
    return nullptr;
}

Json complete(const Request &request) {
    const LanguageDocument &document = request.document();
    const TextPlace place = request.place();
    const ViewLine &line = document.lines[place.line];
    const CompletionQuery query = completionQuery(line, readLine(line, true), place.character);
    std::vector<std::string> programs;
    for (const auto &[address, other] : request.server.documents)
        if (areInOneFolder(address, request.address())) programs.push_back(other.name);
    constexpr int itemKinds[] = {3, 18, 17, 6, 6};  // function, reference, file, variables
    Json items = Json::array();
    for (const Completion &each : completionsOf(query, document.structure, programs)) {
        const ReferenceRow *row = each.kind == CompletionKind::token ? referenceOf(each.token) : nullptr;
        const std::string text = utf8FromCalculator(row != nullptr ? tokenOnView(each.bytes, false) : each.shown);
        Json item = {{"label", utf8FromCalculator(each.shown)},
                     {"kind", itemKinds[static_cast<std::size_t>(each.kind)]},
                     {"sortText", std::to_string(1000000 - each.rank)},
                     {"filterText", utf8FromCalculator(query.letters)},
                     {"textEdit",
                      {{"range",
                        {{"start", positionOf(documentPlace(document, TextPlace{place.line, query.from}))},
                         {"end", positionOf(documentPlace(document, place))}}},
                       {"newText", text}}}};
        if (row != nullptr) {
            item["detail"] = row->syntax;
            item["documentation"] = referenceMeaning(*row);
        }
        items.push_back(std::move(item));
    }
    return {{"isIncomplete", true}, {"items", items}};
}

Json hover(const Request &request) {
    const LanguageDocument &document = request.document();
    const std::size_t token = tokenAt(document.structure, byteOfPlace(document.text, request.place()));
    if (token == noToken || document.structure.tokens[token].role != TokenRole::code) return nullptr;
    const ReferenceRow *row = referenceOf(document.structure.tokens[token].code);
    if (row == nullptr) return nullptr;
    const std::string text = "```\n" + std::string(row->syntax) + "\n```\n" + std::string(referenceMeaning(*row)) +
                             "\n\n" + wording(Text::tokenKeys, {std::string(row->keys)});
    return {{"contents", {{"kind", "markdown"}, {"value", text}}}, {"range", rangeOfTokens(document, token, 1)}};
}

Json symbols(const Request &request) {
    const LanguageDocument &document = request.document();
    constexpr int symbolKinds[] = {15, 20, 12, 23};  // string, key, function, struct
    constexpr const char *heads[] = {"", "Lbl ", "Prog ", "Menu "};
    Json list = Json::array();
    for (const OutlineEntry &entry : outlineOf(document.structure)) {
        const auto kind = static_cast<std::size_t>(entry.kind);
        const Json range = rangeOfTokens(document, entry.token, 1);
        std::string name = heads[kind] + utf8FromCalculator(entry.text);
        if (name.empty()) name = "'";
        list.push_back({{"name", name}, {"kind", symbolKinds[kind]}, {"range", range}, {"selectionRange", range}});
    }
    return list;
}

Json definition(const Request &request) {
    const auto name = request.nameAt(request.token());
    if (!name) return nullptr;
    if (name->kind == NameKind::program) {
        const std::string address = addressOfProgram(request.server.documents, request.address(), name->program);
        if (address.empty()) return nullptr;
        const Json start = positionOf({0, 0});
        return {{"uri", address}, {"range", {{"start", start}, {"end", start}}}};
    }
    for (const NameUse &use : usesOf(request.document().structure, *name))
        if (use.kind != NameUseKind::reads)
            return {{"uri", request.address()}, {"range", rangeOfTokens(request.document(), use.first, use.count)}};
    return nullptr;
}

// Calls of a program are looked for in all documents of the folder, all else in its own.
std::vector<std::string> addressesFor(const Request &request, const ProgramName &name) {
    std::vector<std::string> addresses = {request.address()};
    for (const auto &[address, other] : request.server.documents)
        if (name.kind == NameKind::program && address != addresses[0] && areInOneFolder(address, addresses[0]))
            addresses.push_back(address);
    return addresses;
}

Json references(const Request &request) {
    const ProgramName name = request.name();
    const Json context = argument(request.params, "context", Json::object());
    const bool definesToo = argument(context, "includeDeclaration", true);
    Json list = Json::array();
    for (const std::string &address : addressesFor(request, name)) {
        const LanguageDocument &document = request.server.documents.at(address);
        for (const NameUse &use : usesOf(document.structure, name))
            if (definesToo || use.kind != NameUseKind::defines)
                list.push_back({{"uri", address}, {"range", rangeOfTokens(document, use.first, use.count)}});
    }
    return list;
}

// Refuses a name that a label or program can't have.
void checkNewName(const Request &request, const ProgramName &name, const std::string &typed) {
    int missing = 0;
    const std::string codes = calculatorFromUtf8(typed, &missing);
    if (name.kind == NameKind::label) {
        const auto tokens = labelTokens(codes);
        if (!tokens || missing > 0) throw Fault{requestFailed, wording(Text::renameNoLabel, {typed})};
        if (!labelIsFree(request.document().structure, name.label, *tokens))
            throw Fault{requestFailed, wording(Text::renameLabelTaken, {typed})};
    } else if (name.kind != NameKind::program) {
        throw Fault{requestFailed, "labels and programs have names that can be changed"};
    } else if (codes.empty() || missing > 0 || codes.size() > programNameLimit ||
               codes.find('"') != std::string::npos) {
        throw Fault{requestFailed, wording(Text::programNameTooLong)};
    }
}

struct FileRename {
    std::string from, to;  // addresses; empty where no file has the name
};

// The file that carries a program's name.
FileRename fileRenameOf(const Request &request, const ProgramName &name, const std::string &typed) {
    const LanguageDocuments &documents = request.server.documents;
    const std::string from = addressOfProgram(documents, request.address(), name.program);
    if (from.empty()) return {};
    if (safeFileName(typed) != typed) throw Fault{requestFailed, "no file can have this name"};
    const std::string to = addressBeside(from, typed);
    const std::string other = addressOfProgram(documents, from, calculatorFromUtf8(typed));
    if ((!other.empty() && other != from) || (to != from && isFileOnDisk(to)))
        throw Fault{requestFailed, wording(Text::nameTaken)};
    return {from, to};
}

void tellFileStays(Server &server, const FileRename &file) {
    constexpr int warning = 2;
    const std::string told = wording(Text::languageFileStays, {fileNameOf(file.from), fileNameOf(file.to)});
    send(server, {{"method", "window/showMessage"}, {"params", {{"type", warning}, {"message", told}}}});
}

// Edits ahead of the file's new name: they go by the old one.
Json renamesOf(Server &server, const Json &edits, const FileRename &file) {
    Json changes = Json::array();
    for (const auto &[address, list] : edits.items()) {
        const auto version = server.documents.at(address).version;
        changes.push_back({{"textDocument", {{"uri", address}, {"version", version ? Json(*version) : Json(nullptr)}}},
                           {"edits", list}});
    }
    if (file.from != file.to && server.renamesFiles)
        changes.push_back({{"kind", "rename"}, {"oldUri", file.from}, {"newUri", file.to}});
    return {{"documentChanges", changes}};
}

Json rename(const Request &request) {
    const ProgramName name = request.name();
    const std::string typed = argument(request.params, "newName", std::string());
    checkNewName(request, name, typed);
    const FileRename file = name.kind == NameKind::program ? fileRenameOf(request, name, typed) : FileRename{};
    Json edits = Json::object();
    for (const std::string &address : addressesFor(request, name)) {
        const LanguageDocument &document = request.server.documents.at(address);
        Json list = Json::array();
        for (const NameUse &use : usesOf(document.structure, name))
            list.push_back({{"range", rangeOfTokens(document, use.first, use.count)}, {"newText", typed}});
        if (!list.empty()) edits[address] = list;
    }
    if (file.from != file.to && !request.server.renamesFiles) tellFileStays(request.server, file);
    return request.server.takesDocumentChanges ? renamesOf(request.server, edits, file) : Json{{"changes", edits}};
}

// Each token as its view shows it; a line with a fault stays.
Json formatting(const Request &request) {
    const LanguageDocument &document = request.document();
    Json edits = Json::array();
    for (std::size_t line = 0; line < document.lines.size(); line++) {
        const ViewLine shown = shownLine(document.lines[line], readLine(document.lines[line], true));
        if (shown.text == document.lines[line].text) continue;
        edits.push_back(
            {{"range", {{"start", positionOf({line, 0})}, {"end", positionOf({line, document.lengths[line]})}}},
             {"newText", utf8FromCalculator(shown.text)}});
    }
    return edits;
}

void readInto(const Request &request, const std::string &text) {
    const Json version = argument(request.params, "textDocument", Json::object());
    LanguageDocument document = readDocument(request.address(), text);
    if (const auto found = version.find("version"); found != version.end() && found->is_number_integer())
        document.version = found->get<std::int64_t>();
    request.server.documents[request.address()] = std::move(document);
}

// A notification gives nothing.
Json opened(const Request &request) {
    const Json document = argument(request.params, "textDocument", Json::object());
    const std::string address = request.address();
    if (request.server.documents.size() >= documentLimit && !request.server.documents.contains(address)) return nullptr;
    readInto(request, argument(document, "text", std::string()));
    publish(request.server, address);
    return nullptr;
}

Json changed(const Request &request) {
    const Json changes = argument(request.params, "contentChanges", Json::array());
    const std::string address = request.address();
    if (changes.empty() || !request.server.documents.contains(address)) return nullptr;
    readInto(request, argument(changes.back(), "text", std::string()));
    publish(request.server, address);
    return nullptr;
}

Json closed(const Request &request) {
    request.server.documents.erase(request.address());
    send(request.server, {{"method", "textDocument/publishDiagnostics"},
                          {"params", {{"uri", request.address()}, {"diagnostics", Json::array()}}}});
    return nullptr;
}

struct MethodRow {
    const char *name;
    Json (*run)(const Request &request);
};
constexpr MethodRow methods[] = {
    {"initialize", initialize},
    {"shutdown", shutDown},
    {"textDocument/didOpen", opened},
    {"textDocument/didChange", changed},
    {"textDocument/didClose", closed},
    {"textDocument/completion", complete},
    {"textDocument/hover", hover},
    {"textDocument/documentSymbol", symbols},
    {"textDocument/definition", definition},
    {"textDocument/references", references},
    {"textDocument/rename", rename},
    {"textDocument/formatting", formatting},
};

void refuse(Server &server, const Json &id, const Fault &fault) {
    send(server, {{"id", id}, {"error", {{"code", fault.code}, {"message", fault.message}}}});
}

void serve(Server &server, const Json &message, const std::string &method) {
    const auto id = message.find("id");
    const bool wantsAnswer = id != message.end();
    const Json params = argument(message, "params", Json::object());
    const auto row =
        std::ranges::find(methods, method, [](const MethodRow &each) { return std::string_view(each.name); });
    try {
        if (row == std::end(methods)) throw Fault{methodNotFound, "unknown method: " + method};
        Json result = row->run({server, params});
        if (wantsAnswer) send(server, {{"id", *id}, {"result", std::move(result)}});
    } catch (const Fault &fault) {
        if (wantsAnswer) refuse(server, *id, fault);
    }
}

int runLanguageServer() {
    if (!loadTables()) return commandFailed("casio.ptt beside the program can't be read");
    userInterface.statusText = userInterfaceSilent.statusText;  // the output belongs to the protocol
    return serveLanguage(std::cin, std::cout);
}

}  // namespace

int serveLanguage(std::istream &requests, std::ostream &answers) {
    Server server{answers};
    for (std::string text; readDebugMessage(requests, text);) {
        const Json message = Json::parse(text, nullptr, false);
        if (!message.is_object()) {
            refuse(server, nullptr, {parseError, "not an object"});
            continue;
        }
        const std::string method = argument(message, "method", std::string());
        if (method == "exit") break;
        if (!method.empty()) serve(server, message, method);
    }
    return server.isShutDown ? exitDone : exitShown;
}

CommandRun declareLanguageServer(CLI::App &command) {
    command.footer(
        "For text files of programs in their readable form, UTF-8. Exit status: 0 after a shutdown, else 1.");
    return [] { return runLanguageServer(); };
}

}  // namespace numalink
