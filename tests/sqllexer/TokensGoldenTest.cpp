// data/sqllexer/tokens.golden: each text and its tokens as "LINE:COLUMN NAME text", the final
// <TERMINATION> included. Text units outside printable ASCII are written as \uXXXX.
#include "support/Golden.h"

#include <velmor/sql/sqllexer/Tokens.h>

#include <gtest/gtest.h>

#include <string>

namespace velmor::sql {
namespace {

std::string describeTokens(const std::string& input) {
  std::string out;
  for (const ScannedToken& token : tokenize(input)) {
    if (!out.empty()) out += '\n';
    out += std::to_string(token.line) + ':' + std::to_string(token.column) + ' ' + tokenName(token.id);
    if (carriesText(token.id)) out += ' ' + test::shownOf(token.text);
  }
  return out;
}

// data/sqllexer/skipped.golden: what the scanner passes over without a token, as
// "dropped|after-nul OFFSET+LENGTH at LINE:COLUMN", or "nothing"; texts beyond the window included.
std::string describeSkipped(const std::string& input) {
  std::string text = input;
  // "<N*piece>" stands for N copies of the piece, for texts longer than the scanner's window.
  for (auto open = text.find('<'); open != std::string::npos; open = text.find('<', open)) {
    const auto star = text.find('*', open), close = text.find('>', open);
    if (star == std::string::npos || close == std::string::npos || star > close) break;
    const std::size_t count = std::stoul(text.substr(open + 1, star - open - 1));
    const std::string piece = text.substr(star + 1, close - star - 1);
    std::string copies;
    for (std::size_t i = 0; i < count; ++i) copies += piece;
    text.replace(open, close - open + 1, copies);
    open += copies.size();
  }
  std::string out;
  for (const SkippedText& part : skippedText(text)) {
    if (!out.empty()) out += '\n';
    out += part.kind == SkippedText::Kind::Dropped ? "dropped " : "after-nul ";
    out += std::to_string(part.offset) + '+' + std::to_string(part.length) + " at " + std::to_string(part.line) + ':' +
           std::to_string(part.column);
  }
  return out.empty() ? "nothing" : out;
}

const bool registered = (test::registerGolden("Tokens", "sqllexer/tokens.golden", describeTokens),
                         test::registerGolden("Skipped", "sqllexer/skipped.golden", describeSkipped), true);

TEST(TokenNames, AllRanges) {
  const std::pair<std::uint32_t, const char*> cases[] = {
      {0, "<TERMINATION>"}, {1, "<UNINITIALIZED>"}, {38, "UCS_0x000026"},   {40, "UCS_0x000028"},
      {124, "UCS_0x00007C"}, {258, "ALL"},          {317, "PARAM_NAME"},    {318, "IDENTIFIER"},
      {322, "STRING"},       {323, "EXCEPT"},       {347, "ISNOT"},         {353, "MOD"},
      {354, "<UNKNOWN TOKEN-ID: 354>"},             {0xFFFFFFFFu, "<UNKNOWN TOKEN-ID: -1>"},
  };
  for (const auto& [id, name] : cases) EXPECT_EQ(tokenName(id), name) << id;
  // The named tokens run from 258 to 353 without a gap.
  for (std::uint32_t id = 258; id <= 353; ++id) EXPECT_EQ(tokenName(id).find('<'), std::string::npos) << id;
}

} // namespace
} // namespace velmor::sql
