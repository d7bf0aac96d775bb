// Completion at a cursor against the GIS sample catalogue (golden file host/completion.golden:
// "¦" marks the cursor), and its answers at every offset of awkward texts. Every column, table and
// alias offered is put in place of the word and the statement checked in standard scoping: a
// fault about a name there is marked in the golden output.
#include "support/Golden.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace velmor::sql::test {
namespace {

const std::string cursor = "\xC2\xA6";

bool nameFault(const SqlError& fault) {
  const char* name = host::faultClassName(fault);
  for (const char* kind : {"UnknownColumnReference", "UnknownTableReference", "AmbiguousColumnReference",
                           "NonExistentTable", "AmbiguousTablesReference"}) {
    if (std::strcmp(name, kind) == 0) return true;
  }
  return false;
}

// The fault about a name that `text` has in standard scoping; empty when it has none or does not
// parse (an unfinished statement cannot be judged).
std::string nameFaultOf(const std::string& text) {
  const auto& catalogue = *host::gisSampleCatalogue();
  SqlParser parser(catalogue);
  parser.keepSourceRanges = true;
  if (!parser.parse(text) || !host::isCheckable(parser.result, Scoping::Standard)) return {};
  for (const auto& placed :
       host::checkStatement(parser.result, parser.sourceRanges.get(), catalogue, catalogue, Scoping::Standard)) {
    if (nameFault(*placed.fault)) return host::faultClassName(*placed.fault);
  }
  return {};
}

// The replaced word, then the candidates in their order, a line for each run of one kind, with
// a column's type after a colon.
std::string describe(const std::string& input) {
  const std::size_t at = input.find(cursor);
  if (at == std::string::npos) return "no cursor";
  const std::string text = input.substr(0, at) + input.substr(at + cursor.size());
  const host::Completion completion = host::complete(text, at, *host::gisSampleCatalogue());
  std::string out = "replace \"" + text.substr(completion.replaceBegin, completion.replaceEnd - completion.replaceBegin) + "\"";
  // Tables and aliases are checked where they are all that is offered: elsewhere they qualify.
  bool columns = false;
  for (const auto& candidate : completion.candidates) columns = columns || candidate.kind == host::Candidate::Kind::Column;
  int kind = -1;
  for (const auto& candidate : completion.candidates) {
    if (static_cast<int>(candidate.kind) != kind) {
      kind = static_cast<int>(candidate.kind);
      out.append("\n").append(host::candidateKindName(candidate.kind)).append(":");
    }
    out.append(" ").append(candidate.text);
    if (candidate.kind == host::Candidate::Kind::Column) out.append(":").append(candidate.detail);
    if (candidate.kind == host::Candidate::Kind::Column ||
        (!columns && (candidate.kind == host::Candidate::Kind::Table || candidate.kind == host::Candidate::Kind::Alias))) {
      std::string replaced = text;
      replaced.replace(completion.replaceBegin, completion.replaceEnd - completion.replaceBegin, candidate.text);
      const std::string fault = nameFaultOf(replaced);
      if (!fault.empty()) out.append("!").append(fault);
    }
  }
  return out;
}

const bool registered = (registerGolden("Completion", "host/completion.golden", describe), true);

// Every offset of texts that end badly: no throw, and the replaced range holds the cursor.
TEST(HostCompletion, AnyOffsetOfAnyText) {
  const std::string texts[] = {
      "", "SELECT", "SELECT 'open", "SELECT [open", "SELECT a\xC3", std::string("SELECT \xE2\x82\xAC FROM t\0 x", 18),
      "UPDATE parcels SET a = (SELECT ( FROM", "SELECT a.b.c FROM ((parcels JOIN)) x ON",
      "SELECT * FROM parcels p, (SELECT 1) AS d WHERE p.", ")))(((", "INSERT INTO parcels (a, b) VALUES (1,",
      "SELECT 1; -- x;\nSELECT p. FROM parcels p; /* ; */ SELECT", "CASE WHEN a THEN", "SELECT a FROM t WHERE a BETWEEN 1",
  };
  for (const auto& text : texts) {
    for (std::size_t offset = 0; offset <= text.size() + 2; ++offset) {
      const auto completion = host::complete(text, offset, *host::gisSampleCatalogue());
      EXPECT_LE(completion.replaceBegin, std::min(offset, text.size())) << text << " @" << offset;
      EXPECT_LE(completion.replaceEnd, text.size()) << text << " @" << offset;
      EXPECT_LE(completion.replaceBegin, completion.replaceEnd) << text << " @" << offset;
    }
  }
}

} // namespace
} // namespace velmor::sql::test
