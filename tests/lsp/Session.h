// Scripted sessions with the language server, run in-process with a clock the script moves.
#pragma once

#include <Server.h>

#include <string>
#include <vector>

namespace velmor::lsp::test {

/// A server, its connection and every message it sent, on a clock of its own.
struct Harness {
  Harness();

  /// Frames each message, feeds them as one batch and processes it.
  void send(const std::vector<nlohmann::json>& messages);
  /// Lets `ms` milliseconds pass and runs what is due.
  void wait(int ms);
  /// The messages sent since the last call, taken.
  std::vector<nlohmann::json> take();

  Log log;
  std::vector<nlohmann::json> out;
  Server server;
  Connection connection;
  Clock::time_point now{};
};

/// Runs a session script (see tests/data/lsp/README.md) and gives its transcript: the script with
/// each batch followed by what the server sent, one "< " line a message.
std::string runSession(const std::string& script, const std::string& dataDir);

} // namespace velmor::lsp::test
