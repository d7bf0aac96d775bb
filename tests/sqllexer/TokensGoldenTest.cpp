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

const bool registered = (test::registerGolden("Tokens", "sqllexer/tokens.golden", describeTokens), true);

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
