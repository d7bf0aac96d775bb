// Completion's questions to the automaton and the scanner.
#include <velmor/sql/parser/Completion.h>

#include "SqlGrammar.tab.hpp"
#include "sqllexer/SqlLexer.h"

namespace velmor::sql {

std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::vector<std::uint32_t>& ids) {
  return grammar::acceptedAfter(ids);
}

std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::string& prefix) {
  std::vector<std::uint32_t> ids;
  for (const TokenPlace& token : tokenPlaces(prefix)) ids.push_back(token.id);
  return tokensAcceptedAfter(ids);
}

std::vector<TokenPlace> tokenPlaces(const std::string& text) {
  std::vector<TokenPlace> places;
  SqlLexer lexer(text, nullptr);
  Token token;
  while (lexer.next(token)) places.push_back({token.id, lexer.lexemeBegin(), lexer.lexemeEnd()});
  return places;
}

} // namespace velmor::sql
