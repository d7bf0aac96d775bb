// Completion's questions to the automaton and the scanner.
#include <velmor/sql/parser/Completion.h>

#include "SqlGrammar.tab.hpp"
#include "sqllexer/SqlLexer.h"

namespace velmor::sql {

std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::vector<std::uint32_t>& ids) {
  return grammar::acceptedAfter(ids);
}

std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::string& prefix) {
  // The scanner ends a text at a NUL byte: what follows it is no part of the prefix it reads.
  if (prefix.find('\0') != std::string::npos) return std::nullopt;
  std::vector<std::uint32_t> ids;
  for (const TokenPlace& token : tokenPlaces(prefix)) ids.push_back(token.id);
  return tokensAcceptedAfter(ids);
}

std::optional<std::vector<TokenFix>> repairTokens(const std::vector<std::uint32_t>& ids, std::size_t maxFixes) {
  auto fixes = grammar::repair(ids, maxFixes);
  if (!fixes) return std::nullopt;
  std::vector<TokenFix> out;
  out.reserve(fixes->size());
  for (const recognizer::Fix& fix : *fixes) out.push_back({fix.index, fix.drop, fix.id});
  return out;
}

std::vector<TokenPlace> tokenPlaces(const std::string& text) {
  std::vector<TokenPlace> places;
  SqlLexer lexer(text, nullptr);
  Token token;
  while (lexer.next(token)) places.push_back({token.id, lexer.lexemeBegin(), lexer.lexemeEnd()});
  return places;
}

std::optional<std::vector<TokenPlace>> tryTokenPlaces(const std::string& text) {
  std::vector<TokenPlace> places;
  SqlLexer lexer(text, nullptr);
  lexer.setQuiet(true);
  Token token;
  try {
    while (lexer.next(token)) places.push_back({token.id, lexer.lexemeBegin(), lexer.lexemeEnd()});
  } catch (const std::runtime_error&) {
    if (lexer.status() != Lexer::Status::Error) throw;
    return std::nullopt;
  }
  return places;
}

} // namespace velmor::sql
