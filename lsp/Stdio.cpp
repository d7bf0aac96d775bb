// The server on a pair of file descriptors: poll for input, publish what is due in between.
#include "Server.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

namespace velmor::lsp {

void Connection::process(Clock::time_point now) {
  struct Pending {
    std::optional<nlohmann::json> message;
    std::string body;
  };
  std::vector<Pending> batch;
  while (auto frame = mReader.next()) {
    if (!frame->fault.empty()) {
      mLog.error("dropped " + frame->fault);
      continue;
    }
    Pending pending;
    pending.message = nlohmann::json::parse(frame->body, nullptr, false);
    if (pending.message->is_discarded()) pending.message.reset();
    pending.body = std::move(frame->body);
    batch.push_back(std::move(pending));
  }
  // A cancellation that came with the request it cancels wins over it.
  for (const Pending& pending : batch) {
    if (!pending.message || !pending.message->is_object()) continue;
    const auto method = pending.message->find("method");
    if (method == pending.message->end() || *method != "$/cancelRequest") continue;
    const auto params = pending.message->find("params");
    if (params != pending.message->end() && params->is_object() && params->contains("id")) {
      mServer.cancel(params->at("id"));
    }
  }
  for (const Pending& pending : batch) {
    if (pending.message) {
      mServer.handle(*pending.message, now);
    } else {
      mServer.handleBody(pending.body, now);
    }
    if (mServer.exited()) return;
  }
  // Requests are answered in the batch that brings them; a later cancellation has nothing left.
  mServer.forgetCancellations();
  mServer.runDue(now);
}

int runStdio(Server& server, const Log& log, int input) {
  Connection connection(server, log);
  std::vector<char> buffer(std::size_t{1} << 16);
  while (!server.exited()) {
    int timeout = -1;
    if (const auto due = server.nextDue()) {
      const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - Clock::now()).count();
      timeout = wait < 0 ? 0 : static_cast<int>(std::min<long long>(wait, 60000));
    }
    pollfd fd{input, POLLIN, 0};
    const int ready = ::poll(&fd, 1, timeout);
    if (ready < 0) {
      if (errno == EINTR) continue;
      log.error("poll failed on the input");
      break;
    }
    if (ready == 0) {
      server.runDue(Clock::now());
      continue;
    }
    const ssize_t got = ::read(input, buffer.data(), buffer.size());
    if (got < 0) {
      if (errno == EINTR || errno == EAGAIN) continue;
      log.error("reading the input failed");
      break;
    }
    if (got == 0) {
      log.info("the input ended");
      break;
    }
    connection.feed(std::string_view(buffer.data(), static_cast<std::size_t>(got)));
    connection.process(Clock::now());
  }
  return server.exited() ? server.exitCode() : 1;
}

int serveStdio(const std::string& logFile, LogLevel level, const std::string& version) {
  // A client that goes away must not kill the server in the middle of a write.
  std::signal(SIGPIPE, SIG_IGN);
  std::FILE* stream = stderr;
  if (!logFile.empty()) {
    stream = std::fopen(logFile.c_str(), "a");
    if (!stream) {
      std::fprintf(stderr, "velmor-sql lsp: cannot open the log file %s\n", logFile.c_str());
      return 2;
    }
  }
  const Log log(stream, level);
  bool broken = false;
  Server server(
      [&broken, &log](const nlohmann::json& message) {
        if (broken) return;
        const std::string out = frame(message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
        std::size_t written = 0;
        while (written < out.size()) {
          const ssize_t n = ::write(STDOUT_FILENO, out.data() + written, out.size() - written);
          if (n < 0 && errno == EINTR) continue;
          if (n <= 0) {
            log.error("writing to the client failed; answers are dropped from here on");
            broken = true;
            return;
          }
          written += static_cast<std::size_t>(n);
        }
      },
      log, version);
  log.info("velmor-sql " + version + " serving on standard input and output");
  const int status = runStdio(server, log, STDIN_FILENO);
  if (stream != stderr) std::fclose(stream);
  return status;
}

} // namespace velmor::lsp
