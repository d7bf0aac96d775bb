// The server's state and its handlers: documents, configuration, and one handler per method.
#include "Server.h"

#include "Analysis.h"
#include "Services.h"
#include "Settings.h"
#include "Text.h"

#include <velmor/sql/host/Completion.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/host/document/Statements.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <stdexcept>
#include <unordered_map>

namespace velmor::lsp {

using nlohmann::json;
using sql::host::DocumentStatement;

namespace {

// A request that cannot be answered: its code and message go back to the client.
struct RequestError : std::runtime_error {
  RequestError(int code, const std::string& message) : std::runtime_error(message), code(code) {}
  int code;
};

const json& member(const json& object, const char* key) {
  if (!object.is_object()) throw RequestError(InvalidParams, std::string("expected an object holding \"") + key + '"');
  const auto found = object.find(key);
  if (found == object.end()) throw RequestError(InvalidParams, std::string("\"") + key + "\" is missing");
  return *found;
}

std::string stringMember(const json& object, const char* key) {
  const json& value = member(object, key);
  if (!value.is_string()) throw RequestError(InvalidParams, std::string("\"") + key + "\" is not a string");
  return value.get<std::string>();
}

std::size_t countMember(const json& object, const char* key) {
  const json& value = member(object, key);
  if (!value.is_number_integer() || value.get<std::int64_t>() < 0) {
    throw RequestError(InvalidParams, std::string("\"") + key + "\" is not a count");
  }
  return value.get<std::size_t>();
}

Position positionMember(const json& object, const char* key) {
  const json& value = member(object, key);
  return {countMember(value, "line"), countMember(value, "character")};
}

bool isWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return std::isalnum(byte) || byte == '_' || byte == '$' || byte >= 0x80;
}

bool sameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

// The first line of a statement, short enough for an outline.
std::string outlineName(const std::string& source) {
  std::string line = source.substr(0, source.find('\n'));
  while (!line.empty() && std::isspace(static_cast<unsigned char>(line.back()))) line.pop_back();
  constexpr std::size_t limit = 60;
  if (line.size() > limit) {
    std::size_t cut = limit;
    while (cut > 0 && (static_cast<unsigned char>(line[cut]) & 0xC0) == 0x80) --cut;
    line = line.substr(0, cut) + "...";
  }
  return line.empty() ? std::string("statement") : line;
}

int completionKind(sql::host::Candidate::Kind kind) {
  switch (kind) {
  case sql::host::Candidate::Kind::Keyword: return 14;
  case sql::host::Candidate::Kind::Punctuation: return 24;
  case sql::host::Candidate::Kind::Table: return 7;
  case sql::host::Candidate::Kind::Alias: return 6;
  case sql::host::Candidate::Kind::Column: return 5;
  case sql::host::Candidate::Kind::Function: return 3;
  }
  return 1;
}

constexpr int statementSymbolKind = 19; // Object
constexpr int tableSymbolKind = 5;      // Class

} // namespace

// One open document and what is known of its statements.
struct Document {
  std::string uri;
  std::string path;
  std::int64_t version = 0;
  std::string text;
  LineIndex lines;
  bool splitStale = true;
  bool analysesStale = true;
  std::vector<DocumentStatement> statements;
  std::vector<std::shared_ptr<const StatementAnalysis>> analyses;
  // Analyses by statement text, valid for `cacheCatalogue` and `cacheScoping` only.
  std::unordered_map<std::string, std::shared_ptr<const StatementAnalysis>> cache;
  const sql::host::Catalogue* cacheCatalogue = nullptr;
  sql::Scoping cacheScoping = sql::Scoping::Standard;
  Effective effective;
  std::optional<Clock::time_point> due;
};

// What a rename at a place changes: a table of the statement (`word` is its name at the place),
// or the places of an alias (`word` is the one at the place).
struct RenameTarget {
  std::optional<std::string> table;
  std::vector<Span> places;
  Span word;
};

// The text a kit service reads for a place of a document: the statement around it.
struct Slice {
  std::string text;
  std::size_t base = 0;
  std::size_t cursor = 0;
  /// The place is inside a comment: nothing is offered there.
  bool inComment = false;
};

class ServerState {
public:
  ServerState(Server::Send send, Log log, std::string version)
      : mSend(std::move(send)), mLog(log), mVersion(std::move(version)), mSettings(mLog) {}

  void handle(const json& message, Clock::time_point now);
  void respondError(const json& id, int code, const std::string& message) {
    mSend({{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", code}, {"message", message}}}});
  }
  void runDue(Clock::time_point now);
  std::optional<Clock::time_point> nextDue() const;

  std::set<std::string> cancelled;
  bool exited = false;
  bool shutdown = false;
  std::size_t analysed = 0;
  std::map<std::string, Document> documents;

private:
  json dispatchRequest(const std::string& method, const json& params);
  void dispatchNotification(const std::string& method, const json& params, Clock::time_point now);

  json initialize(const json& params);
  void didOpen(const json& params, Clock::time_point now);
  void didChange(const json& params, Clock::time_point now);
  void didClose(const json& params);
  void configurationChanged(Clock::time_point now);
  void watchFiles();

  json completion(const json& params);
  json hover(const json& params);
  json signatureHelp(const json& params);
  json definition(const json& params);
  json highlight(const json& params);
  json documentSymbol(const json& params);
  json formatting(const json& params, bool range);
  json rename(const json& params);
  json prepareRename(const json& params);
  RenameTarget renameTarget(Document& document, std::size_t offset);
  json codeAction(const json& params);

  Document& document(const json& params);
  void split(Document& document);
  void refresh(Document& document);
  void publish(Document& document);
  void publishFileFaults();
  Slice sliceAt(Document& document, std::size_t offset);
  std::size_t offsetOf(const Document& document, Position position) const {
    return document.lines.offsetOf(document.text, position, mEncoding);
  }
  json position(const Document& document, std::size_t offset) const {
    const Position p = document.lines.positionOf(document.text, offset, mEncoding);
    return {{"line", p.line}, {"character", p.character}};
  }
  json range(const Document& document, std::size_t begin, std::size_t end) const {
    return {{"start", position(document, begin)}, {"end", position(document, end)}};
  }
  json diagnostic(const Document& document, std::size_t base, const Problem& problem) const;

  Server::Send mSend;
  Log mLog;
  std::string mVersion;
  Settings mSettings;
  Encoding mEncoding = Encoding::Utf16;
  bool mInitialized = false;
  // The client can watch files for the server: configuration and catalogue files then reload
  // as soon as they change, not at the next edit.
  bool mCanWatch = false;
  // The faults of configuration and catalogue files as last published, by path.
  std::map<std::string, std::string> mPublishedFileFaults;
};

void ServerState::handle(const json& message, Clock::time_point now) {
  if (!message.is_object()) {
    mLog.error("a message that is not a JSON object");
    respondError(nullptr, InvalidRequest, "a message must be a JSON object");
    return;
  }
  const auto idIt = message.find("id");
  const json id = idIt == message.end() ? json() : *idIt;
  const bool hasId = idIt != message.end();
  const auto methodIt = message.find("method");
  if (methodIt == message.end()) {
    // A response to nothing the server asked: logged and dropped.
    if (hasId && (message.contains("result") || message.contains("error"))) {
      mLog.debug("a response from the client was ignored");
      return;
    }
    mLog.error("a message without a method");
    if (hasId) respondError(id, InvalidRequest, "a request needs a method");
    return;
  }
  if (!methodIt->is_string() || (hasId && !id.is_string() && !id.is_number_integer())) {
    mLog.error("a message with a bad method or id");
    respondError(hasId && (id.is_string() || id.is_number_integer()) ? id : json(), InvalidRequest,
                 "the method must be a string and the id a number or a string");
    return;
  }
  const std::string method = methodIt->get<std::string>();
  const auto paramsIt = message.find("params");
  const json params = paramsIt == message.end() ? json::object() : *paramsIt;
  if (!hasId) {
    try {
      dispatchNotification(method, params, now);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      mLog.error("notification " + method + " failed: " + error.what());
    }
    return;
  }
  const std::string key = id.dump();
  if (cancelled.erase(key) > 0) {
    respondError(id, RequestCancelled, "the request was cancelled");
    return;
  }
  if (shutdown) {
    respondError(id, InvalidRequest, "the server is shutting down");
    return;
  }
  if (!mInitialized && method != "initialize") {
    respondError(id, ServerNotInitialized, "the server is not initialized");
    return;
  }
  try {
    json result = dispatchRequest(method, params);
    mSend({{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
  } catch (const RequestError& error) {
    if (error.code != MethodNotFound) mLog.warning(method + ": " + error.what());
    respondError(id, error.code, error.what());
  } catch (const json::exception& error) {
    mLog.warning(method + ": " + error.what());
    respondError(id, InvalidParams, error.what());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    mLog.error(method + " failed: " + error.what());
    respondError(id, InternalError, error.what());
  }
}

json ServerState::dispatchRequest(const std::string& method, const json& params) {
  if (method == "initialize") {
    if (mInitialized) throw RequestError(InvalidRequest, "initialize was sent twice");
    return initialize(params);
  }
  if (method == "shutdown") {
    shutdown = true;
    return nullptr;
  }
  if (method == "textDocument/completion") return completion(params);
  if (method == "textDocument/hover") return hover(params);
  if (method == "textDocument/signatureHelp") return signatureHelp(params);
  if (method == "textDocument/definition") return definition(params);
  if (method == "textDocument/documentHighlight") return highlight(params);
  if (method == "textDocument/documentSymbol") return documentSymbol(params);
  if (method == "textDocument/formatting") return formatting(params, false);
  if (method == "textDocument/rangeFormatting") return formatting(params, true);
  if (method == "textDocument/rename") return rename(params);
  if (method == "textDocument/prepareRename") return prepareRename(params);
  if (method == "textDocument/codeAction") return codeAction(params);
  throw RequestError(MethodNotFound, "unknown method " + method);
}

void ServerState::dispatchNotification(const std::string& method, const json& params, Clock::time_point now) {
  if (method == "exit") {
    exited = true;
    return;
  }
  if (!mInitialized) {
    mLog.debug("before initialize, dropped " + method);
    return;
  }
  if (method == "initialized") return watchFiles();
  if (method == "$/cancelRequest" || method == "$/setTrace") return;
  if (method == "textDocument/didOpen") return didOpen(params, now);
  if (method == "textDocument/didChange") return didChange(params, now);
  if (method == "textDocument/didClose") return didClose(params);
  if (method == "textDocument/didSave") return;
  if (method == "workspace/didChangeConfiguration") {
    // Clients that have their settings pulled send none here: the last ones stay.
    const auto settings = params.find("settings");
    if (settings != params.end() && !settings->is_null()) mSettings.setClient(*settings);
    return configurationChanged(now);
  }
  if (method == "workspace/didChangeWatchedFiles") return configurationChanged(now);
  mLog.debug("ignored notification " + method);
}

json ServerState::initialize(const json& params) {
  mInitialized = true;
  const json* encodings = nullptr;
  if (params.is_object()) {
    const auto capabilities = params.find("capabilities");
    if (capabilities != params.end() && capabilities->is_object()) {
      const auto general = capabilities->find("general");
      if (general != capabilities->end() && general->is_object()) {
        const auto found = general->find("positionEncodings");
        if (found != general->end() && found->is_array()) encodings = &*found;
      }
    }
    if (capabilities != params.end() && capabilities->is_object()) {
      const json::json_pointer watch("/workspace/didChangeWatchedFiles/dynamicRegistration");
      mCanWatch = capabilities->contains(watch) && capabilities->at(watch) == true;
    }
    const auto root = params.find("rootUri");
    if (root != params.end() && root->is_string()) mSettings.setRoot(pathOfUri(root->get<std::string>()));
    const auto options = params.find("initializationOptions");
    if (options != params.end()) mSettings.setClient(*options);
  }
  if (encodings && std::find(encodings->begin(), encodings->end(), "utf-8") != encodings->end()) {
    mEncoding = Encoding::Utf8;
  }
  json capabilities = {
      {"positionEncoding", mEncoding == Encoding::Utf8 ? "utf-8" : "utf-16"},
      {"textDocumentSync", {{"openClose", true}, {"change", 2}}},
      {"completionProvider", {{"triggerCharacters", {"."}}}},
      {"hoverProvider", true},
      {"signatureHelpProvider", {{"triggerCharacters", {"(", ","}}}},
      {"definitionProvider", true},
      {"documentHighlightProvider", true},
      {"documentSymbolProvider", true},
      {"documentFormattingProvider", true},
      {"documentRangeFormattingProvider", true},
      {"renameProvider", {{"prepareProvider", true}}},
      {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}},
  };
  return {{"capabilities", std::move(capabilities)}, {"serverInfo", {{"name", "velmor-sql"}, {"version", mVersion}}}};
}

Document& ServerState::document(const json& params) {
  const std::string uri = stringMember(member(params, "textDocument"), "uri");
  const auto found = documents.find(uri);
  if (found == documents.end()) throw RequestError(InvalidParams, "the document " + uri + " is not open");
  return found->second;
}

void ServerState::didOpen(const json& params, Clock::time_point now) {
  const json& item = member(params, "textDocument");
  const std::string uri = stringMember(item, "uri");
  Document& document = documents[uri];
  document = Document();
  document.uri = uri;
  document.path = pathOfUri(uri);
  document.text = stringMember(item, "text");
  const auto version = item.find("version");
  if (version != item.end() && version->is_number_integer()) document.version = version->get<std::int64_t>();
  document.lines = LineIndex(document.text);
  document.due = now;
}

void ServerState::didChange(const json& params, Clock::time_point now) {
  Document& document = this->document(params);
  const json& changes = member(params, "contentChanges");
  if (!changes.is_array()) throw RequestError(InvalidParams, "\"contentChanges\" is not an array");
  for (const json& change : changes) {
    const std::string text = stringMember(change, "text");
    const auto rangeIt = change.find("range");
    if (rangeIt == change.end() || rangeIt->is_null()) {
      document.text = text;
    } else {
      std::size_t begin = offsetOf(document, positionMember(*rangeIt, "start"));
      std::size_t end = offsetOf(document, positionMember(*rangeIt, "end"));
      if (end < begin) std::swap(begin, end);
      document.text.replace(begin, end - begin, text);
    }
    document.lines = LineIndex(document.text);
  }
  const json& identifier = member(params, "textDocument");
  const auto version = identifier.find("version");
  if (version != identifier.end() && version->is_number_integer()) document.version = version->get<std::int64_t>();
  document.splitStale = true;
  document.analysesStale = true;
  document.due = now + std::chrono::milliseconds(document.effective.delayMs);
}

void ServerState::didClose(const json& params) {
  const std::string uri = stringMember(member(params, "textDocument"), "uri");
  if (documents.erase(uri) == 0) return;
  mSend({{"jsonrpc", "2.0"},
         {"method", "textDocument/publishDiagnostics"},
         {"params", {{"uri", uri}, {"diagnostics", json::array()}}}});
}

void ServerState::configurationChanged(Clock::time_point now) {
  for (auto& [uri, document] : documents) {
    document.analysesStale = true;
    document.due = now;
  }
}

void ServerState::watchFiles() {
  if (!mCanWatch) return;
  json watchers = json::array({{{"globPattern", std::string("**/") + configFileName}}, {{"globPattern", "**/*.json"}}});
  mSend({{"jsonrpc", "2.0"},
         {"id", "velmor-sql/watch"},
         {"method", "client/registerCapability"},
         {"params",
          {{"registrations",
            {{{"id", "velmor-sql/watch"},
              {"method", "workspace/didChangeWatchedFiles"},
              {"registerOptions", {{"watchers", std::move(watchers)}}}}}}}}});
}

void ServerState::split(Document& document) {
  if (!document.splitStale) return;
  document.statements = sql::host::splitStatements(document.text);
  document.splitStale = false;
  document.analysesStale = true;
}

void ServerState::refresh(Document& document) {
  split(document);
  const Effective effective = mSettings.resolve(document.path);
  publishFileFaults();
  if (effective.catalogue.get() != document.cacheCatalogue || effective.scoping != document.cacheScoping) {
    document.cache.clear();
    document.cacheCatalogue = effective.catalogue.get();
    document.cacheScoping = effective.scoping;
    document.analysesStale = true;
  }
  document.effective = effective;
  if (!document.analysesStale) return;
  // Statements whose text is unchanged keep their analysis; the rest are analysed again, and
  // analyses of statements that are gone are dropped with the old map.
  std::unordered_map<std::string, std::shared_ptr<const StatementAnalysis>> kept;
  document.analyses.clear();
  document.analyses.reserve(document.statements.size());
  for (const DocumentStatement& statement : document.statements) {
    std::shared_ptr<const StatementAnalysis> analysis;
    if (const auto found = document.cache.find(statement.text); found != document.cache.end()) {
      analysis = found->second;
    } else if (const auto again = kept.find(statement.text); again != kept.end()) {
      analysis = again->second;
    } else {
      analysis = std::make_shared<const StatementAnalysis>(
          analyseStatement(statement.text, *effective.catalogue, effective.scoping));
      ++analysed;
    }
    kept.emplace(statement.text, analysis);
    document.analyses.push_back(std::move(analysis));
  }
  document.cache = std::move(kept);
  document.analysesStale = false;
}

json ServerState::diagnostic(const Document& document, std::size_t base, const Problem& problem) const {
  return {{"range", range(document, base + problem.span.begin, base + problem.span.end)},
          {"severity", 1},
          {"code", problem.code},
          {"source", "velmor-sql"},
          {"message", problem.message}};
}

void ServerState::publish(Document& document) {
  refresh(document);
  json diagnostics = json::array();
  for (std::size_t i = 0; i < document.statements.size(); ++i) {
    for (const Problem& problem : document.analyses[i]->problems) {
      diagnostics.push_back(diagnostic(document, document.statements[i].begin.offset, problem));
    }
  }
  mSend({{"jsonrpc", "2.0"},
         {"method", "textDocument/publishDiagnostics"},
         {"params", {{"uri", document.uri}, {"version", document.version}, {"diagnostics", std::move(diagnostics)}}}});
}

void ServerState::publishFileFaults() {
  const std::map<std::string, FileFault>& faults = mSettings.faults();
  for (auto it = mPublishedFileFaults.begin(); it != mPublishedFileFaults.end();) {
    if (faults.count(it->first) == 0) {
      mSend({{"jsonrpc", "2.0"},
             {"method", "textDocument/publishDiagnostics"},
             {"params", {{"uri", uriOfPath(it->first)}, {"diagnostics", json::array()}}}});
      it = mPublishedFileFaults.erase(it);
    } else {
      ++it;
    }
  }
  for (const auto& [path, fault] : faults) {
    const auto published = mPublishedFileFaults.find(path);
    if (published != mPublishedFileFaults.end() && published->second == fault.message) continue;
    mPublishedFileFaults[path] = fault.message;
    mLog.warning(fault.message);
    const json place = {{"line", fault.line}, {"character", fault.character}};
    json diagnostic = {{"range", {{"start", place}, {"end", place}}},
                       {"severity", 1},
                       {"code", "CatalogueError"},
                       {"source", "velmor-sql"},
                       {"message", fault.message}};
    mSend({{"jsonrpc", "2.0"},
           {"method", "textDocument/publishDiagnostics"},
           {"params", {{"uri", uriOfPath(path)}, {"diagnostics", json::array({std::move(diagnostic)})}}}});
  }
}

void ServerState::runDue(Clock::time_point now) {
  for (auto& [uri, document] : documents) {
    if (document.due && *document.due <= now) {
      document.due.reset();
      try {
        publish(document);
      } catch (const std::bad_alloc&) {
        throw;
      } catch (const std::exception& error) {
        mLog.error("diagnostics of " + uri + " failed: " + error.what());
      }
    }
  }
}

std::optional<Clock::time_point> ServerState::nextDue() const {
  std::optional<Clock::time_point> next;
  for (const auto& [uri, document] : documents) {
    if (document.due && (!next || *document.due < *next)) next = document.due;
  }
  return next;
}

Slice ServerState::sliceAt(Document& document, std::size_t offset) {
  split(document);
  if (document.effective.catalogue == nullptr) document.effective = mSettings.resolve(document.path);
  const auto& statements = document.statements;
  const auto after = std::upper_bound(statements.begin(), statements.end(), offset,
                                      [](std::size_t at, const DocumentStatement& s) { return at < s.begin.offset; });
  const DocumentStatement* statement = after == statements.begin() ? nullptr : &*(after - 1);
  if (statement && offset <= statement->end.offset) {
    // Inside the statement a comment shows as bytes the splitter blanked; a cursor right after
    // the "*/" that closes one is outside it.
    const std::size_t at = offset - statement->begin.offset;
    const std::string& text = statement->text;
    const std::string& source = statement->source;
    const bool onBlanked = at < text.size() && text[at] != source[at];
    const bool afterBlanked = at > 0 && text[at - 1] != source[at - 1] &&
                              !(at >= 2 && source[at - 1] == '/' && source[at - 2] == '*');
    return {text, statement->begin.offset, at, onBlanked || afterBlanked};
  }
  // Past the statement's end (or before the first): white space, comments and perhaps the ';'
  // that ends the statement, after which a new one begins at the cursor.
  const std::size_t from = statement ? statement->end.offset : 0;
  std::string text = statement ? statement->text : std::string();
  bool ended = statement == nullptr;
  enum { Code, Line, Block } state = Code;
  for (std::size_t i = from; i < offset; ++i) {
    const char c = document.text[i];
    const char next = i + 1 < offset ? document.text[i + 1] : '\0';
    if (state == Code && c == ';') {
      ended = true;
    } else if (state == Code && c == '-' && next == '-') {
      state = Line;
    } else if (state == Code && c == '/' && next == '*') {
      text += "  ";
      ++i;
      state = Block;
      continue;
    } else if (state == Line && c == '\n') {
      state = Code;
    } else if (state == Block && c == '*' && next == '/') {
      text += "  ";
      ++i;
      state = Code;
      continue;
    }
    text += c == '\n' ? '\n' : ' ';
  }
  if (ended) return {std::string(), offset, 0, state != Code};
  return {std::move(text), statement->begin.offset, offset - statement->begin.offset, state != Code};
}

json ServerState::completion(const json& params) {
  Document& document = this->document(params);
  const std::size_t offset = offsetOf(document, positionMember(params, "position"));
  const Slice slice = sliceAt(document, offset);
  if (slice.inComment) return {{"isIncomplete", false}, {"items", json::array()}};
  const sql::host::Completion answer = sql::host::complete(slice.text, slice.cursor, *document.effective.catalogue);
  const json replaced = range(document, slice.base + answer.replaceBegin, slice.base + answer.replaceEnd);
  json items = json::array();
  char order[24];
  for (std::size_t i = 0; i < answer.candidates.size(); ++i) {
    const sql::host::Candidate& candidate = answer.candidates[i];
    std::snprintf(order, sizeof order, "%06zu", i);
    json item = {{"label", candidate.text},
                 {"kind", completionKind(candidate.kind)},
                 {"sortText", order},
                 {"filterText", candidate.text},
                 {"textEdit", {{"range", replaced}, {"newText", candidate.text}}}};
    if (!candidate.detail.empty()) item["detail"] = candidate.detail;
    items.push_back(std::move(item));
  }
  return {{"isIncomplete", false}, {"items", std::move(items)}};
}

json ServerState::hover(const json& params) {
  Document& document = this->document(params);
  const Slice slice = sliceAt(document, offsetOf(document, positionMember(params, "position")));
  const auto answer = hoverAt(slice.text, slice.cursor, *document.effective.catalogue);
  if (!answer) return nullptr;
  std::string value = "```sql\n" + answer->title + "\n```";
  if (!answer->details.empty()) value += "\n";
  for (const std::string& line : answer->details) value += "\n- " + line;
  return {{"contents", {{"kind", "markdown"}, {"value", value}}},
          {"range", range(document, slice.base + answer->span.begin, slice.base + answer->span.end)}};
}

json ServerState::signatureHelp(const json& params) {
  Document& document = this->document(params);
  const Slice slice = sliceAt(document, offsetOf(document, positionMember(params, "position")));
  if (slice.inComment) return nullptr;
  const auto answer = signaturesAt(slice.text, slice.cursor, *document.effective.catalogue);
  if (!answer) return nullptr;
  json signatures = json::array();
  for (const SignatureAnswer::Overload& signature : answer->overloads) {
    json parameters = json::array();
    for (const Span& parameter : signature.parameters) {
      // Offsets into the label count in the client's units, as positions do.
      const std::string_view label = signature.label;
      const std::size_t begin = unitCount(label.substr(0, std::min(parameter.begin, label.size())), mEncoding);
      const std::size_t end = unitCount(label.substr(0, std::min(parameter.end, label.size())), mEncoding);
      parameters.push_back({{"label", {begin, end}}});
    }
    signatures.push_back({{"label", signature.label}, {"parameters", std::move(parameters)}});
  }
  return {{"signatures", std::move(signatures)},
          {"activeSignature", answer->activeSignature},
          {"activeParameter", answer->activeParameter}};
}

json ServerState::definition(const json& params) {
  Document& document = this->document(params);
  const Slice slice = sliceAt(document, offsetOf(document, positionMember(params, "position")));
  const auto answer = definitionAt(slice.text, slice.cursor, *document.effective.catalogue);
  if (!answer) return nullptr;
  return {{"uri", document.uri}, {"range", range(document, slice.base + answer->begin, slice.base + answer->end)}};
}

json ServerState::highlight(const json& params) {
  Document& document = this->document(params);
  const Slice slice = sliceAt(document, offsetOf(document, positionMember(params, "position")));
  json highlights = json::array();
  for (const Span& place : occurrencesAt(slice.text, slice.cursor, *document.effective.catalogue)) {
    highlights.push_back({{"range", range(document, slice.base + place.begin, slice.base + place.end)}});
  }
  return highlights;
}

json ServerState::documentSymbol(const json& params) {
  Document& document = this->document(params);
  refresh(document);
  json symbols = json::array();
  for (std::size_t i = 0; i < document.statements.size(); ++i) {
    const DocumentStatement& statement = document.statements[i];
    const StatementAnalysis& analysis = *document.analyses[i];
    const std::size_t base = statement.begin.offset;
    json children = json::array();
    std::string tables;
    for (const TableUse& table : analysis.tables) {
      tables += (tables.empty() ? "" : ", ") + table.name;
      const json place = range(document, base + table.span.begin, base + table.span.end);
      children.push_back({{"name", table.name}, {"kind", tableSymbolKind}, {"range", place}, {"selectionRange", place}});
    }
    const json whole = range(document, base, statement.end.offset);
    symbols.push_back({{"name", outlineName(statement.source)},
                       {"detail", analysis.parsed ? tables : std::string("does not parse")},
                       {"kind", statementSymbolKind},
                       {"range", whole},
                       {"selectionRange", whole},
                       {"children", std::move(children)}});
  }
  return symbols;
}

json ServerState::formatting(const json& params, bool ranged) {
  Document& document = this->document(params);
  split(document);
  if (document.effective.catalogue == nullptr) document.effective = mSettings.resolve(document.path);
  std::size_t from = 0;
  std::size_t to = document.text.size();
  if (ranged) {
    const json& within = member(params, "range");
    from = offsetOf(document, positionMember(within, "start"));
    to = offsetOf(document, positionMember(within, "end"));
  }
  json edits = json::array();
  for (const DocumentStatement& statement : document.statements) {
    if (statement.end.offset < from || statement.begin.offset > to) continue;
    if (const auto canonical = formatStatement(statement.text, statement.source, *document.effective.catalogue)) {
      edits.push_back({{"range", range(document, statement.begin.offset, statement.end.offset)}, {"newText", *canonical}});
    }
  }
  return edits;
}

RenameTarget ServerState::renameTarget(Document& document, std::size_t offset) {
  RenameTarget target;
  const Slice slice = sliceAt(document, offset);
  refresh(document);
  // A table named by the word at the cursor wins over the alias it may have: the alias's
  // occurrences are the answer only where the word is no table of the statement.
  std::size_t begin = offset;
  std::size_t end = offset;
  while (begin > 0 && isWordByte(document.text[begin - 1])) --begin;
  while (end < document.text.size() && isWordByte(document.text[end])) ++end;
  const std::string word = document.text.substr(begin, end - begin);
  for (std::size_t i = 0; i < document.statements.size() && !target.table && !word.empty(); ++i) {
    const DocumentStatement& statement = document.statements[i];
    if (offset < statement.begin.offset || offset > statement.end.offset) continue;
    for (const TableUse& use : document.analyses[i]->tables) {
      if (sameLetters(use.name, word)) target.table = use.name;
    }
  }
  if (target.table) {
    target.word = {begin, end};
    return target;
  }
  for (const Span& place : occurrencesAt(slice.text, slice.cursor, *document.effective.catalogue)) {
    target.places.push_back({slice.base + place.begin, slice.base + place.end});
    if (target.places.back().begin <= offset && offset <= target.places.back().end) target.word = target.places.back();
  }
  return target;
}

json ServerState::prepareRename(const json& params) {
  Document& document = this->document(params);
  const std::size_t offset = offsetOf(document, positionMember(params, "position"));
  const RenameTarget target = renameTarget(document, offset);
  if (!target.table && target.places.empty()) return nullptr;
  return range(document, target.word.begin, target.word.end);
}

json ServerState::rename(const json& params) {
  Document& document = this->document(params);
  const std::size_t offset = offsetOf(document, positionMember(params, "position"));
  const std::string newName = stringMember(params, "newName");
  if (newName.empty()) throw RequestError(InvalidParams, "the new name is empty");
  const RenameTarget target = renameTarget(document, offset);
  json edits = json::array();
  if (!target.table) {
    if (target.places.empty()) throw RequestError(RequestFailed, "no table or alias to rename here");
    for (const Span& place : target.places) {
      edits.push_back({{"range", range(document, place.begin, place.end)}, {"newText", newName}});
    }
    return {{"changes", {{document.uri, std::move(edits)}}}};
  }
  const std::wstring oldName = sql::host::fromUtf8(*target.table);
  const std::wstring wideNew = sql::host::fromUtf8(newName);
  for (const DocumentStatement& statement : document.statements) {
    try {
      if (const auto renamed =
              renameTableIn(statement.text, statement.source, *document.effective.catalogue, oldName, wideNew)) {
        edits.push_back({{"range", range(document, statement.begin.offset, statement.end.offset)}, {"newText", *renamed}});
      }
    } catch (const std::runtime_error& error) {
      const sql::host::DocumentPlace& place = statement.begin;
      throw RequestError(RequestFailed, std::string("cannot rename: ") + error.what() + " (line " +
                                            std::to_string(place.line) + ")");
    }
  }
  return {{"changes", {{document.uri, std::move(edits)}}}};
}

json ServerState::codeAction(const json& params) {
  Document& document = this->document(params);
  const json& within = member(params, "range");
  const std::size_t from = offsetOf(document, positionMember(within, "start"));
  const std::size_t to = offsetOf(document, positionMember(within, "end"));
  refresh(document);
  json actions = json::array();
  for (std::size_t i = 0; i < document.statements.size(); ++i) {
    const std::size_t base = document.statements[i].begin.offset;
    if (document.statements[i].end.offset < from || base > to) continue;
    for (const Problem& problem : document.analyses[i]->problems) {
      if (!problem.fix || base + problem.span.end < from || base + problem.span.begin > to) continue;
      const std::string written = document.text.substr(base + problem.fixSpan.begin, problem.fixSpan.end - problem.fixSpan.begin);
      json edit = {{"range", range(document, base + problem.fixSpan.begin, base + problem.fixSpan.end)},
                   {"newText", *problem.fix}};
      actions.push_back({{"title", "Replace \"" + written + "\" with \"" + *problem.fix + "\""},
                         {"kind", "quickfix"},
                         {"isPreferred", true},
                         {"diagnostics", json::array({diagnostic(document, base, problem)})},
                         {"edit", {{"changes", {{document.uri, json::array({std::move(edit)})}}}}}});
    }
  }
  return actions;
}

// ---------------------------------------------------------------------------------------------

Server::Server(Send send, Log log, std::string version)
    : mState(std::make_unique<ServerState>(std::move(send), log, std::move(version))) {}

Server::~Server() = default;

void Server::handleBody(std::string_view body, Clock::time_point now) {
  json message = json::parse(body, nullptr, false);
  if (message.is_discarded()) {
    mState->respondError(nullptr, ParseError, "the message is not JSON");
    return;
  }
  handle(message, now);
}

void Server::handle(const json& message, Clock::time_point now) { mState->handle(message, now); }

void Server::cancel(const json& id) {
  if (id.is_string() || id.is_number_integer()) mState->cancelled.insert(id.dump());
}

void Server::forgetCancellations() { mState->cancelled.clear(); }

void Server::runDue(Clock::time_point now) { mState->runDue(now); }

std::optional<Clock::time_point> Server::nextDue() const { return mState->nextDue(); }

bool Server::exited() const { return mState->exited; }

int Server::exitCode() const { return mState->shutdown ? 0 : 1; }

std::size_t Server::statementsAnalysed() const { return mState->analysed; }

std::size_t Server::documentBytes() const {
  std::size_t bytes = 0;
  for (const auto& [uri, document] : mState->documents) {
    bytes += sizeof(Document) + document.text.capacity() + document.lines.lines() * sizeof(std::size_t);
    for (const DocumentStatement& statement : document.statements) {
      bytes += sizeof statement + statement.text.capacity() + statement.source.capacity();
    }
    for (const auto& [text, analysis] : document.cache) {
      bytes += text.capacity() + sizeof(StatementAnalysis) + 64;
      for (const Problem& problem : analysis->problems) bytes += sizeof problem + problem.message.capacity();
      for (const TableUse& table : analysis->tables) bytes += sizeof table + table.name.capacity();
    }
  }
  return bytes;
}

} // namespace velmor::lsp
