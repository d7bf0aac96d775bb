// The language server: JSON-RPC messages in, answers and notifications out, over the host kit.
#pragma once

#include "Framing.h"
#include "Log.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmor::lsp {

using Clock = std::chrono::steady_clock;

/// JSON-RPC and protocol error codes the server answers with.
enum ErrorCode : int {
  ParseError = -32700,
  InvalidRequest = -32600,
  MethodNotFound = -32601,
  InvalidParams = -32602,
  InternalError = -32603,
  ServerNotInitialized = -32002,
  RequestFailed = -32803,
  RequestCancelled = -32800,
};

class ServerState;

/// Serves one client. Single-threaded: every call comes from one thread, and time is handed in,
/// so that a test can run a session without waiting. Messages go out through `send` in the
/// order they are made. No call throws but std::bad_alloc: a bad message is answered with an
/// error or logged.
class Server {
public:
  using Send = std::function<void(const nlohmann::json& message)>;

  Server(Send send, Log log, std::string version);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// One message body as it came: a request, a notification or a response of the client.
  void handleBody(std::string_view body, Clock::time_point now);
  void handle(const nlohmann::json& message, Clock::time_point now);
  /// Marks a request as cancelled before it is handled: it is then answered RequestCancelled.
  void cancel(const nlohmann::json& id);
  /// Drops the cancellations of requests that never came (their answers went out before).
  void forgetCancellations();
  /// Publishes the diagnostics whose delay is over at `now`.
  void runDue(Clock::time_point now);
  /// When runDue has something to do next; none when nothing waits.
  std::optional<Clock::time_point> nextDue() const;

  /// True once the client sent `exit`; then exitCode() is 0 after a shutdown request, else 1.
  bool exited() const;
  int exitCode() const;

  /// Statements analysed since the server began (unchanged ones are taken from the document's
  /// cache and not counted).
  std::size_t statementsAnalysed() const;
  /// Bytes held for open documents: texts, statements and their analyses (an estimate).
  std::size_t documentBytes() const;

private:
  std::unique_ptr<ServerState> mState;
};

/// A server behind the framing: bytes in; the frames read at once are handled as one batch, in
/// which cancellations take effect before the requests they cancel.
class Connection {
public:
  explicit Connection(Server& server, const Log& log) : mServer(server), mLog(log) {}

  void feed(std::string_view bytes) { mReader.feed(bytes); }
  /// Handles every whole frame fed so far, then runs what is due at `now`.
  void process(Clock::time_point now);

private:
  Server& mServer;
  const Log& mLog;
  FrameReader mReader;
};

/// Reads `input` until `exit` or its end, the server writing through its own `send`; the exit
/// status.
int runStdio(Server& server, const Log& log, int input);

/// A whole server on standard input and output, as `velmor-sql lsp` runs it: logs to stderr or
/// `logFile` at `level`. The process's exit status.
int serveStdio(const std::string& logFile, LogLevel level, const std::string& version);

} // namespace velmor::lsp
