// Documents: statements split at ';' with their places (golden file host/documents.golden), and
// the checks of a document's statements with places in the document (host/document-check.golden).
// An input may start with options in brackets: "[lines]", "[no-comments]", and for checks
// "[compatible]" (compatible scoping instead of standard).
#include "support/Golden.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/document/DocumentCheck.h>
#include <velmor/sql/host/document/Statements.h>

#include <gtest/gtest.h>

#include <string>

namespace velmor::sql::test {
namespace {

host::SplitOptions optionsOf(std::string& input) {
  host::SplitOptions options;
  for (;;) {
    if (input.rfind("[lines] ", 0) == 0) {
      options.lineEnds = true;
      input.erase(0, 8);
    } else if (input.rfind("[no-comments] ", 0) == 0) {
      options.comments = false;
      input.erase(0, 14);
    } else {
      return options;
    }
  }
}

std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\n') out += "\\n";
    else if (c == '\r') out += "\\r";
    else if (c == '\t') out += "\\t";
    else out += c;
  }
  return out;
}

std::string placeText(const host::DocumentPlace& place) {
  return std::to_string(place.line) + ':' + std::to_string(place.column) + '@' + std::to_string(place.offset);
}

std::string split(const std::string& line) {
  std::string input = line;
  const host::SplitOptions options = optionsOf(input);
  const auto whole = host::splitStatements(input, options);
  // The same document fed a byte at a time, through one splitter used twice: pieces and reuse
  // must not change a thing.
  host::StatementSplitter splitter(options);
  std::vector<host::DocumentStatement> pieces;
  for (int round = 0; round < 2; ++round) {
    pieces.clear();
    for (const char byte : input) splitter.feed(std::string_view(&byte, 1), pieces);
    splitter.finish(pieces);
  }
  EXPECT_EQ(pieces.size(), whole.size());
  for (std::size_t i = 0; i < whole.size() && i < pieces.size(); ++i) {
    EXPECT_EQ(pieces[i].text, whole[i].text);
    EXPECT_EQ(pieces[i].begin, whole[i].begin);
    EXPECT_EQ(pieces[i].end, whole[i].end);
    EXPECT_EQ(pieces[i].index, i);
  }
  if (whole.empty()) return "none";
  std::string out;
  for (const auto& statement : whole) {
    if (!out.empty()) out += '\n';
    EXPECT_EQ(statement.source, input.substr(statement.begin.offset, statement.end.offset - statement.begin.offset));
    out += placeText(statement.begin) + '-' + placeText(statement.end) + " [" + escaped(statement.text) + ']';
  }
  return out;
}

std::string check(const std::string& line) {
  static const auto catalogue = host::gisSampleCatalogue();
  std::string input = line;
  const bool compatible = input.rfind("[compatible] ", 0) == 0;
  if (compatible) input.erase(0, 13);
  const host::SplitOptions options = optionsOf(input);
  host::DocumentChecker checker(*catalogue, *catalogue, compatible ? Scoping::Compatible : Scoping::Standard);
  std::string out;
  for (const auto& statement : host::splitStatements(input, options)) {
    if (!out.empty()) out += '\n';
    out += '#' + std::to_string(statement.index) + ' ';
    const host::StatementCheck result = checker.check(statement);
    switch (result.outcome) {
    case host::StatementCheck::Outcome::Ok: out += "ok"; break;
    case host::StatementCheck::Outcome::Faults: out += "faults"; break;
    case host::StatementCheck::Outcome::SyntaxError:
      out += "syntax error at " + placeText(result.syntaxPlace) + ": " + result.syntaxError;
      break;
    case host::StatementCheck::Outcome::NotCheckable: out += "not checkable: " + result.kind; break;
    }
    for (const auto& fault : result.faults) {
      out += "\n  " + (fault.range ? rangeText(*fault.range) + " @" + std::to_string(fault.range->beginOffset) + '-' +
                                         std::to_string(fault.range->endOffset)
                                   : std::string("no range")) +
             ' ' + host::faultClassName(*fault.fault) + ": " + fault.message;
    }
  }
  return out.empty() ? "none" : out;
}

const bool registered = (registerGolden("DocumentSplit", "host/documents.golden", split),
                         registerGolden("DocumentCheck", "host/document-check.golden", check), true);

} // namespace
} // namespace velmor::sql::test
