// Completion at a cursor against the GIS sample catalogue (golden file host/completion.golden:
// "¦" marks the cursor), and its answers at every offset of awkward texts.
#include "support/Golden.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Completion.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace velmor::sql::test {
namespace {

const std::string cursor = "\xC2\xA6";

// The replaced word, then one line per kind: texts, with a column's type after a colon.
std::string describe(const std::string& input) {
  const std::size_t at = input.find(cursor);
  if (at == std::string::npos) return "no cursor";
  const std::string text = input.substr(0, at) + input.substr(at + cursor.size());
  const host::Completion completion = host::complete(text, at, *host::gisSampleCatalogue());
  std::string out = "replace \"" + text.substr(completion.replaceBegin, completion.replaceEnd - completion.replaceBegin) + "\"";
  std::map<int, std::string> lines;
  for (const auto& candidate : completion.candidates) {
    std::string& line = lines[static_cast<int>(candidate.kind)];
    if (line.empty()) line = std::string(host::candidateKindName(candidate.kind)) + ":";
    line += " " + candidate.text;
    if (candidate.kind == host::Candidate::Kind::Column) line += ":" + candidate.detail;
  }
  for (const auto& [kind, line] : lines) out += "\n" + line;
  return out;
}

const bool registered = (registerGolden("Completion", "host/completion.golden", describe), true);

// Every offset of texts that end badly: no throw, and the replaced range lies before the cursor.
TEST(HostCompletion, AnyOffsetOfAnyText) {
  const std::string texts[] = {
      "", "SELECT", "SELECT 'open", "SELECT [open", "SELECT a\xC3", "SELECT \xE2\x82\xAC FROM t\0 x",
      "UPDATE parcels SET a = (SELECT ( FROM", "SELECT a.b.c FROM ((parcels JOIN)) x ON",
      "SELECT * FROM parcels p, (SELECT 1) AS d WHERE p.", ")))(((", "INSERT INTO parcels (a, b) VALUES (1,",
  };
  for (const auto& text : texts) {
    for (std::size_t offset = 0; offset <= text.size() + 2; ++offset) {
      const auto completion = host::complete(text, offset, *host::gisSampleCatalogue());
      EXPECT_LE(completion.replaceBegin, completion.replaceEnd) << text << " @" << offset;
      EXPECT_LE(completion.replaceEnd, std::min(offset, text.size())) << text << " @" << offset;
    }
  }
}

} // namespace
} // namespace velmor::sql::test
