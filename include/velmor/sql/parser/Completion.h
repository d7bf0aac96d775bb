// What the grammar accepts at the end of a text's beginning, and where a text's tokens lie:
// the parts of completion at a cursor that need the automaton and the scanner.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/sqllexer/Tokens.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql {

/// The token ids that the parser's automaton would shift right after the tokens `ids` (as the
/// scanner gives them, without T_TERMINATION), in the automaton's symbol order (T_TERMINATION
/// first when the tokens form a whole statement). Exact: a token is listed when and only when
/// a text of `ids` followed by it does not fail at that token. nullopt when `ids` fail before
/// their end (T_TERMINATION among them, or an id the scanner never sends, fails too).
/// Reentrant; throws only std::bad_alloc.
VELMOR_SQL_API std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::vector<std::uint32_t>& ids);

/// The same for the tokens of a UTF-8 text; nullopt as well when it holds a NUL byte, where the
/// scanner ends a text: nothing can follow that. Throws as tokenize() does.
VELMOR_SQL_API std::optional<std::vector<std::uint32_t>> tokensAcceptedAfter(const std::string& prefix);

/// A change that mends a run of tokens: `id` put before the token at `index` (at the end when
/// `index` is the run's length), or the token at `index` dropped.
struct TokenFix {
  std::size_t index = 0;
  bool drop = false;
  std::uint32_t id = T_TERMINATION;

  bool operator==(const TokenFix&) const = default;
};

/// Fixes, in the order of the tokens, that turn `ids` into a whole statement for the automaton:
/// at each token where the run fails, a name, a ')' or a ',' put before it or the token dropped,
/// whichever lets the next two tokens through; after `maxFixes` such fixes, or where none helps,
/// the rest of the run is dropped. Then the tokens that close what is still open (')', a name,
/// END, THEN, ...) at the end. Empty for a run that is a whole statement already; nullopt when
/// nothing closes it. Time linear in the run's length. Reentrant; throws only std::bad_alloc.
VELMOR_SQL_API std::optional<std::vector<TokenFix>> repairTokens(const std::vector<std::uint32_t>& ids,
                                                                 std::size_t maxFixes = 8);

/// One token of a text with its place in bytes.
struct TokenPlace {
  std::uint32_t id = T_TERMINATION;
  /// Byte offsets into the text of the token's first byte and one past its last: a bracketed
  /// identifier with its brackets, a string with its quotes and every piece of it.
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// The tokens of a UTF-8 text, as tokenize() finds them but without the closing T_TERMINATION,
/// with their byte ranges. Throws as tokenize() does. Reentrant.
VELMOR_SQL_API std::vector<TokenPlace> tokenPlaces(const std::string& text);

/// The same, but nullopt for a text that holds a lexeme longer than the scanner's window, which
/// is then neither thrown nor written to std::cerr: for tools that scan text as it is typed.
VELMOR_SQL_API std::optional<std::vector<TokenPlace>> tryTokenPlaces(const std::string& text);

} // namespace velmor::sql
