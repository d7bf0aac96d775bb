// Token names and the whole-text tokenizer offered to hosts.
#include <velmor/sql/sqllexer/Tokens.h>

#include "sqllexer/SqlLexer.h"

#include <cstdio>

namespace velmor::sql {

namespace {

const char* namedToken(std::uint32_t id) {
  switch (static_cast<TokenId>(id)) {
#define VELMOR_SQL_TOKEN(name, value) \
  case T_##name:                      \
    return #name;
#include <velmor/sql/sqllexer/Tokens.def>
#undef VELMOR_SQL_TOKEN
  }
  return nullptr;
}

} // namespace

std::string tokenName(std::uint32_t id) {
  char buffer[40];
  if (id == T_TERMINATION || id == T_UNINITIALIZED) {
    std::snprintf(buffer, sizeof buffer, "<%s>", namedToken(id));
  } else if (id < 256) {
    std::snprintf(buffer, sizeof buffer, "UCS_0x%06X", static_cast<unsigned>(id));
  } else if (const char* name = namedToken(id)) {
    return name;
  } else {
    std::snprintf(buffer, sizeof buffer, "<UNKNOWN TOKEN-ID: %i>", static_cast<int>(id));
  }
  return buffer;
}

std::vector<SkippedText> skippedText(const std::string& text) {
  SqlLexer lexer(text, nullptr);
  std::vector<SkippedText> skipped;
  lexer.reportSkipped(&skipped);
  while (lexer.lexId(nullptr) != T_TERMINATION) {
  }
  return skipped;
}

std::vector<ScannedToken> tokenize(const std::string& text) {
  SqlLexer lexer(text, nullptr);
  std::vector<ScannedToken> tokens;
  for (;;) {
    ScannedToken token;
    token.id = static_cast<std::uint32_t>(lexer.lex(&token.text, nullptr));
    token.line = lexer.token().line;
    token.column = lexer.token().column;
    tokens.push_back(std::move(token));
    if (tokens.back().id == T_TERMINATION) return tokens;
  }
}

} // namespace velmor::sql
