// Completion's questions to the automaton and the scanner.
#include <velmor/sql/parser/Completion.h>

#include "parser/SqlParserPrivate.h"
#include "sqllexer/SqlLexer.h"

namespace velmor::sql {

std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::vector<std::uint32_t>& ids) {
  SqlParserPrivate automaton;
  return automaton.acceptedAfter(ids);
}

std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::string& prefix) {
  std::vector<std::uint32_t> ids;
  for (const TokenPlace& token : tokenPlaces(prefix)) ids.push_back(token.id);
  return tokensAcceptedAfter(ids);
}

namespace {

// Finds the byte offsets of scanner positions, walking the text once as the scanner counts
// lines and columns. Continuation bytes share their lead byte's column, so a position belongs
// to the first byte at it that starts a code point.
class ByteFinder {
public:
  explicit ByteFinder(const std::string& text) : mText(text) {}

  std::size_t offsetOf(int line, int column) {
    while (mAt < mText.size() &&
           (mLine != line || mColumn != column || (static_cast<unsigned char>(mText[mAt]) & 0xC0) == 0x80)) {
      const auto c = static_cast<unsigned char>(mText[mAt++]);
      if (c == '\n') {
        ++mLine;
        mColumn = 1;
      } else if (c == '\t') {
        mColumn = ((mColumn - 1) & ~3) + 5;
      } else if ((c & 0xC0) != 0x80) {
        ++mColumn;
      }
    }
    return mAt;
  }

private:
  const std::string& mText;
  std::size_t mAt = 0;
  int mLine = 1;
  int mColumn = 1;
};

} // namespace

std::vector<TokenPlace> tokenPlaces(const std::string& text) {
  std::vector<TokenPlace> places;
  SqlLexer lexer(text, nullptr);
  Token token;
  ByteFinder finder(text);
  while (lexer.next(token)) {
    TokenPlace& place = places.emplace_back();
    place.id = token.id;
    place.begin = finder.offsetOf(token.line, token.column);
    // The scanner stands right after the token now.
    place.end = finder.offsetOf(lexer.line(), lexer.column());
  }
  return places;
}

} // namespace velmor::sql
