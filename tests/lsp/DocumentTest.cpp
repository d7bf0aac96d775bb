// Documents over many edits and configuration files that change under an open document.
#include "Session.h"

#include <velmor/sql/host/Utf8.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace velmor::lsp::test {
namespace {

using nlohmann::json;

json request(int id, const std::string& method, json params) {
  return {{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(params)}};
}

json notification(const std::string& method, json params) {
  return {{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}};
}

json initialize() { return request(1, "initialize", {{"capabilities", json::object()}}); }

json open(const std::string& uri, const std::string& text) {
  return notification("textDocument/didOpen",
                      {{"textDocument", {{"uri", uri}, {"languageId", "sql"}, {"version", 1}, {"text", text}}}});
}

// The last diagnostics published for `uri` among `messages`.
std::optional<json> diagnosticsFor(const std::vector<json>& messages, const std::string& uri) {
  std::optional<json> found;
  for (const json& message : messages) {
    if (message.value("method", "") == "textDocument/publishDiagnostics" && message["params"]["uri"] == uri) {
      found = message["params"]["diagnostics"];
    }
  }
  return found;
}

// A protocol position in UTF-16 units, counted here independently of the server.
json positionOf(const std::string& text, std::size_t offset) {
  const std::size_t lineStart = text.rfind('\n', offset == 0 ? 0 : offset - 1);
  const std::size_t start = offset == 0 || lineStart == std::string::npos ? 0 : lineStart + 1;
  const std::size_t line = static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(start), '\n'));
  return {{"line", line}, {"character", sql::host::fromUtf8(text.substr(start, offset - start)).size()}};
}

// Keeps offsets on character starts, so that the edits the test makes are whole characters.
std::size_t characterStart(const std::string& text, std::size_t offset) {
  while (offset > 0 && offset < text.size() && (static_cast<unsigned char>(text[offset]) & 0xC0) == 0x80) --offset;
  return offset;
}

std::string largeDocument() {
  const char* statements[] = {
      "SELECT parcel_id, area_sqm FROM parcels WHERE area_sqm > 100;",
      "SELECT p.parcel_id, o.nosuch\n  FROM parcels AS p JOIN owners AS o ON o.owner_id = p.owner_id;",
      "-- the lots of one owner\nSELECT * FROM parcels WHERE owner_id = 7;",
      "UPDATE parcels SET land_use = 'park' WHERE parcel_id = 12;",
      "SELECT 'caf\xC3\xA9 \xF0\x9F\x98\x80', parcl_id FROM parcels;",
      "SELECT FROM parcels;",
      "/* block; comment */ DELETE FROM parcels WHERE parcel_id = 1;",
  };
  std::string text;
  std::size_t lines = 0;
  for (std::size_t i = 0; lines < 5000; ++i) {
    const std::string statement = statements[i % std::size(statements)];
    text += statement + "\n";
    lines += static_cast<std::size_t>(std::count(statement.begin(), statement.end(), '\n')) + 1;
  }
  return text;
}

TEST(Documents, ThousandIncrementalEditsMatchAFreshOpen) {
  const std::string uri = "file:///s/large.sql";
  std::string text = largeDocument();
  Harness edited;
  edited.send({initialize(), open(uri, text)});
  ASSERT_TRUE(diagnosticsFor(edited.take(), uri));
  const std::size_t afterOpen = edited.server.statementsAnalysed();

  std::mt19937 random(25);
  const char* pieces[] = {"x", " ", ";", "\n", "'", "--", "/*", "*/", "parcel_id", "\xC3\xA9", "\xF0\x9F\x98\x80",
                          "SELECT * FROM parcels;\n", ""};
  for (int edit = 0; edit < 1000; ++edit) {
    const std::size_t at = characterStart(text, random() % (text.size() + 1));
    std::size_t end = characterStart(text, std::min(text.size(), at + random() % 12));
    if (end < at) end = at;
    const std::string insert = pieces[random() % std::size(pieces)];
    const json change = {{"range", {{"start", positionOf(text, at)}, {"end", positionOf(text, end)}}}, {"text", insert}};
    text.replace(at, end - at, insert);
    edited.send({notification("textDocument/didChange",
                              {{"textDocument", {{"uri", uri}, {"version", edit + 2}}}, {"contentChanges", {change}}})});
    // Diagnostics now and then, as a client that pauses typing would get them.
    if (edit % 50 == 49) edited.wait(150);
  }
  edited.wait(150);
  const auto diagnostics = diagnosticsFor(edited.take(), uri);
  ASSERT_TRUE(diagnostics);
  // An edit touches a statement or two; 20 publications re-analyse only what changed since the last.
  EXPECT_LT(edited.server.statementsAnalysed() - afterOpen, 3000u);

  Harness fresh;
  fresh.send({initialize(), open(uri, text)});
  const auto expected = diagnosticsFor(fresh.take(), uri);
  ASSERT_TRUE(expected);
  EXPECT_EQ(*diagnostics, *expected);
  const json symbols = request(2, "textDocument/documentSymbol", {{"textDocument", {{"uri", uri}}}});
  edited.send({symbols});
  fresh.send({symbols});
  EXPECT_EQ(edited.take(), fresh.take());
}

class ConfigFiles : public ::testing::Test {
protected:
  void SetUp() override {
    folder = std::filesystem::temp_directory_path() / ("velmor-lsp-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder / "queries");
    write(".velmor-sql.json", R"({"catalog": "c.json"})");
    write("c.json", R"({"tables": [{"name": "lots", "columns": [{"name": "lot_id", "type": "Integer"}]}]})");
  }
  void TearDown() override { std::filesystem::remove_all(folder); }
  void write(const std::string& name, const std::string& text) { std::ofstream(folder / name) << text; }
  std::string uriOf(const std::string& name) const { return "file://" + (folder / name).string(); }

  std::filesystem::path folder;
};

TEST_F(ConfigFiles, ReloadedWhenTheyChange) {
  const std::string uri = uriOf("queries/q.sql");
  const std::string catalogue = uriOf("c.json");
  const json watched = notification("workspace/didChangeWatchedFiles", {{"changes", json::array()}});
  Harness harness;
  harness.send({initialize(), open(uri, "SELECT lot_id FROM lots")});
  EXPECT_EQ(diagnosticsFor(harness.take(), uri), json::array());

  // Another table: the document's table is gone (the size differs, so the change shows).
  write("c.json", R"({"tables": [{"name": "plots", "columns": [{"name": "lot_id", "type": "Integer"}]}]})");
  harness.send({watched});
  const auto gone = diagnosticsFor(harness.take(), uri);
  ASSERT_TRUE(gone);
  ASSERT_EQ(gone->size(), 1u);
  EXPECT_EQ((*gone)[0]["code"], "NonExistentTable");

  // A bad file is a diagnostic on itself, at the place its message names.
  write("c.json", "{\"tables\": [\n  {\"name\": }\n]}");
  harness.send({watched});
  std::vector<json> messages = harness.take();
  const auto fault = diagnosticsFor(messages, catalogue);
  ASSERT_TRUE(fault);
  ASSERT_EQ(fault->size(), 1u);
  EXPECT_EQ((*fault)[0]["code"], "CatalogueError");
  EXPECT_EQ((*fault)[0]["range"]["start"], json({{"line", 1}, {"character", 11}}));

  // Mended: the file's diagnostic is cleared and the catalogue serves again.
  write("c.json", R"({"tables": [{"name": "lots", "columns": [{"name": "lot_id", "type": "Integer"}]}]})");
  harness.send({watched});
  messages = harness.take();
  EXPECT_EQ(diagnosticsFor(messages, catalogue), json::array());
  EXPECT_EQ(diagnosticsFor(messages, uri), json::array());

  // The configuration file itself: bad JSON, then a bad value, each a diagnostic on it.
  const std::string config = uriOf(".velmor-sql.json");
  for (const char* text : {"{\"catalog\": ", "{\"scoping\": \"loose\"}"}) {
    write(".velmor-sql.json", text);
    harness.send({watched});
    const auto configFault = diagnosticsFor(harness.take(), config);
    ASSERT_TRUE(configFault) << text;
    EXPECT_EQ(configFault->size(), 1u) << text;
  }
  std::filesystem::remove(folder / ".velmor-sql.json");
  harness.send({watched});
  messages = harness.take();
  EXPECT_EQ(diagnosticsFor(messages, config), json::array());
  // Without the file, the built-in catalogue: no table "lots".
  ASSERT_TRUE(diagnosticsFor(messages, uri));
  EXPECT_EQ(diagnosticsFor(messages, uri)->size(), 1u);
}

} // namespace
} // namespace velmor::lsp::test
