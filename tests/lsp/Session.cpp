// The session runner: script lines in, transcript out.
#include "Session.h"

#include <sstream>

namespace velmor::lsp::test {
namespace {

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
  if (from.empty()) return text;
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Raw bytes of a "!" line: \r, \n, \\ and \xHH escapes.
std::string unescape(const std::string& text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 >= text.size()) {
      bytes += text[i];
      continue;
    }
    const char next = text[++i];
    if (next == 'r') bytes += '\r';
    else if (next == 'n') bytes += '\n';
    else if (next == 'x' && i + 2 < text.size()) {
      bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else bytes += next;
  }
  return bytes;
}

} // namespace

Harness::Harness()
    : server([this](const nlohmann::json& message) { out.push_back(message); }, log, "test"), connection(server, log) {}

void Harness::send(const std::vector<nlohmann::json>& messages) {
  for (const nlohmann::json& message : messages) connection.feed(frame(message.dump()));
  connection.process(now);
}

void Harness::wait(int ms) {
  now += std::chrono::milliseconds(ms);
  server.runDue(now);
}

std::vector<nlohmann::json> Harness::take() { return std::exchange(out, {}); }

std::string runSession(const std::string& script, const std::string& dataDir) {
  Harness harness;
  std::ostringstream transcript;
  bool pending = false;
  auto flush = [&] {
    if (pending) harness.connection.process(harness.now);
    pending = false;
    for (const nlohmann::json& message : harness.take()) {
      transcript << "< " << replaceAll(message.dump(), dataDir, "$DATA") << '\n';
    }
  };
  std::istringstream lines(script);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("< ", 0) == 0 || line == "<") continue;
    const bool joins = line.rfind(">+ ", 0) == 0 || line.rfind("!+ ", 0) == 0;
    if (!joins) flush();
    transcript << line << '\n';
    const std::string body = line.size() > 3 ? replaceAll(line.substr(joins ? 3 : 2), "$DATA", dataDir) : "";
    if (line.rfind("> ", 0) == 0 || line.rfind(">+ ", 0) == 0) {
      // Written as JSON lines; sent exactly as written, so that a bad one stays bad.
      harness.connection.feed(frame(body));
      pending = true;
    } else if (line.rfind("! ", 0) == 0 || line.rfind("!+ ", 0) == 0) {
      harness.connection.feed(unescape(body));
      pending = true;
    } else if (line.rfind("~ ", 0) == 0) {
      harness.wait(std::stoi(line.substr(2)));
      flush();
    }
  }
  flush();
  return transcript.str();
}

} // namespace velmor::lsp::test
