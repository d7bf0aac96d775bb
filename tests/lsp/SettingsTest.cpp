// Settings objects, file URIs, log levels, and the server's life on a pipe.
#include "Session.h"

#include <Settings.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <thread>

namespace velmor::lsp {
namespace {

using nlohmann::json;

struct SettingsCase {
  const char* given;
  // "catalog|scoping|delay" with "-" for unset, or "error".
  const char* expected;
};

const SettingsCase settingsCases[] = {
    {"null", "-|-|-"},
    {"{}", "-|-|-"},
    {R"({"catalog": "c.json"})", "/base/c.json|-|-"},
    {R"({"catalog": "/abs/c.json"})", "/abs/c.json|-|-"},
    {R"({"catalog": "../up/c.json"})", "/up/c.json|-|-"},
    {R"({"catalog": ""})", "-|-|-"},
    {R"({"catalog": null, "scoping": null})", "-|-|-"},
    {R"({"catalog": 3})", "error"},
    {R"({"scoping": "standard"})", "-|standard|-"},
    {R"({"scoping": "compatible"})", "-|compatible|-"},
    {R"({"scoping": "Standard"})", "error"},
    {R"({"diagnosticsDelay": 0})", "-|-|0"},
    {R"({"diagnosticsDelay": 10000})", "-|-|10000"},
    {R"({"diagnosticsDelay": 10001})", "error"},
    {R"({"diagnosticsDelay": -1})", "error"},
    {R"({"diagnosticsDelay": 1.5})", "error"},
    {R"({"velmor-sql": {"scoping": "compatible"}, "scoping": "standard"})", "-|compatible|-"},
    {R"({"velmorSql": {"diagnosticsDelay": 5}})", "-|-|5"},
    {R"([1])", "error"},
};

std::string describe(const SettingsLayer& layer) {
  std::string scoping = "-";
  if (layer.scoping) scoping = *layer.scoping == sql::Scoping::Standard ? "standard" : "compatible";
  return layer.catalog.value_or("-") + "|" + scoping + "|" + (layer.delayMs ? std::to_string(*layer.delayMs) : "-");
}

TEST(Settings, ReadFromObjects) {
  for (const SettingsCase& c : settingsCases) {
    std::string got;
    try {
      got = describe(readSettings(json::parse(c.given), "/base"));
    } catch (const std::runtime_error&) {
      got = "error";
    }
    EXPECT_EQ(got, c.expected) << c.given;
  }
}

TEST(Settings, FileUris) {
  const std::pair<const char*, const char*> paths[] = {
      {"file:///tmp/a.sql", "/tmp/a.sql"},
      {"file:///tmp/a%20b%C3%A9.sql", "/tmp/a b\xC3\xA9.sql"},
      {"file:///tmp/100%", "/tmp/100%"},
      {"file://server/share/a.sql", ""},
      {"untitled:Untitled-1", ""},
  };
  for (const auto& [uri, path] : paths) EXPECT_EQ(pathOfUri(uri), path) << uri;
  EXPECT_EQ(uriOfPath("/tmp/a b\xC3\xA9.sql"), "file:///tmp/a%20b%C3%A9.sql");
  EXPECT_EQ(pathOfUri(uriOfPath("/x/[y]#z.sql")), "/x/[y]#z.sql");
}

TEST(Settings, LogLevels) {
  EXPECT_EQ(logLevelNamed("warn"), LogLevel::Warning);
  EXPECT_EQ(logLevelNamed("debug"), LogLevel::Debug);
  EXPECT_FALSE(logLevelNamed("verbose"));
  const Log log(stderr, LogLevel::Warning);
  EXPECT_TRUE(log.enabled(LogLevel::Error));
  EXPECT_TRUE(log.enabled(LogLevel::Warning));
  EXPECT_FALSE(log.enabled(LogLevel::Info));
  EXPECT_FALSE(Log().enabled(LogLevel::Error));
}

// The server on a pipe: the exit status is 0 only after shutdown, and the end of the input
// without exit ends it too.
TEST(Stdio, ExitStatus) {
  const std::pair<std::vector<std::string>, int> runs[] = {
      {{R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"capabilities":{}}})",
        R"({"jsonrpc":"2.0","id":2,"method":"shutdown"})", R"({"jsonrpc":"2.0","method":"exit"})"},
       0},
      {{R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"capabilities":{}}})",
        R"({"jsonrpc":"2.0","method":"exit"})"},
       1},
      {{R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"capabilities":{}}})", "not json"}, 1},
  };
  for (const auto& [messages, status] : runs) {
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    std::string bytes;
    for (const std::string& message : messages) bytes += frame(message);
    std::thread writer([&bytes, fd = fds[1]] {
      // In pieces, so that a frame spans reads.
      for (std::size_t at = 0; at < bytes.size(); at += 7) {
        const std::size_t n = std::min<std::size_t>(7, bytes.size() - at);
        if (::write(fd, bytes.data() + at, n) != static_cast<ssize_t>(n)) break;
      }
      ::close(fd);
    });
    std::vector<json> sent;
    const Log log;
    Server server([&sent](const json& message) { sent.push_back(message); }, log, "test");
    EXPECT_EQ(runStdio(server, log, fds[0]), status) << messages.back();
    writer.join();
    ::close(fds[0]);
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.front()["id"], 1);
  }
}

} // namespace
} // namespace velmor::lsp
