// The language server on any document text and any positions: every request is answered with a
// result or an error, and the bytes of the input, read as a stream, never stop the server.
#include "FuzzSupport.h"

#include <Server.h>

using nlohmann::json;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  velmor::sql::fuzz::setLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = velmor::sql::fuzz::text(data, size);
  std::size_t answered = 0;
  std::size_t asked = 0;
  velmor::lsp::Server server(
      [&](const json& message) {
        if (message.contains("id") && !message.contains("method")) {
          VELMOR_FUZZ_CHECK(message.contains("result") != message.contains("error"), "a result or an error");
          ++answered;
        }
      },
      velmor::lsp::Log(), "fuzz");
  velmor::lsp::Clock::time_point now{};
  auto request = [&](const std::string& method, json params) {
    server.handle({{"jsonrpc", "2.0"}, {"id", ++asked}, {"method", method}, {"params", std::move(params)}}, now);
  };
  request("initialize", {{"capabilities", {{"general", {{"positionEncodings", {size % 2 ? "utf-8" : "utf-16"}}}}}}});
  const json document = {{"uri", "file:///fuzz/f.sql"}};
  server.handle({{"jsonrpc", "2.0"},
                 {"method", "textDocument/didOpen"},
                 {"params", {{"textDocument", {{"uri", "file:///fuzz/f.sql"}, {"version", 1}, {"text", text}}}}}},
                now);
  server.runDue(now);
  // Places from the input's own bytes: lines and characters near and past the text's.
  for (std::size_t i = 0; i + 1 < size && i < 16; i += 2) {
    const json at = {{"line", data[i] % 8}, {"character", data[i + 1] % 64}};
    const json place = {{"textDocument", document}, {"position", at}};
    request("textDocument/completion", place);
    request("textDocument/hover", place);
    request("textDocument/signatureHelp", place);
    request("textDocument/definition", place);
    request("textDocument/documentHighlight", place);
    request("textDocument/rename", {{"textDocument", document}, {"position", at}, {"newName", "renamed"}});
    const json range = {{"start", at}, {"end", {{"line", data[i] % 4}, {"character", 0}}}};
    request("textDocument/codeAction", {{"textDocument", document}, {"range", range}, {"context", json::object()}});
    request("textDocument/rangeFormatting", {{"textDocument", document}, {"range", range}, {"options", json::object()}});
    server.handle({{"jsonrpc", "2.0"},
                   {"method", "textDocument/didChange"},
                   {"params",
                    {{"textDocument", {{"uri", "file:///fuzz/f.sql"}, {"version", i + 2}}},
                     {"contentChanges", {{{"range", range}, {"text", text.substr(i, 3)}}}}}}},
                  now);
  }
  request("textDocument/documentSymbol", {{"textDocument", document}});
  request("textDocument/formatting", {{"textDocument", document}, {"options", json::object()}});
  now += std::chrono::seconds(1);
  server.runDue(now);
  VELMOR_FUZZ_CHECK(answered == asked, "every request answered");

  // The same bytes as a stream from a client.
  velmor::lsp::Connection connection(server, velmor::lsp::Log());
  connection.feed(text);
  connection.process(now);
  return 0;
}
