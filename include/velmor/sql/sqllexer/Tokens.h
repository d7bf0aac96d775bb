// Token ids of the scanner, their names, and a whole-text tokenizer for hosts and tools.
#pragma once

#include <velmor/sql/Export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace velmor::sql {

/// The id of a token as the scanner sends it. 0 ends the input, 1 is never sent, a token of
/// one character has that character's code ('(' is 40), and the named tokens run from 258
/// (T_ALL) to 353 (T_MOD). The numbers are fixed: hosts and the parser rely on them.
enum TokenId : std::uint32_t {
#define VELMOR_SQL_TOKEN(name, id) T_##name = id,
#include <velmor/sql/sqllexer/Tokens.def>
#undef VELMOR_SQL_TOKEN
};

/// The first and last ids of the tokens that carry text (T_IDENTIFIER .. T_STRING).
inline constexpr std::uint32_t firstTextToken = T_IDENTIFIER;
inline constexpr std::uint32_t lastTextToken = T_STRING;

/// True for the five tokens whose text the scanner hands on: identifiers, numbers, strings.
constexpr bool carriesText(std::uint32_t id) noexcept {
  return id >= firstTextToken && id <= lastTextToken;
}

/// The name of a token id: "<TERMINATION>" and "<UNINITIALIZED>" for 0 and 1, "UCS_0x000028"
/// (six upper-case hexadecimal digits) for a one-character token (ids 2 to 255), the name
/// without its "T_" prefix for a named token ("SELECT", "LT_EQ"), and "<UNKNOWN TOKEN-ID: N>"
/// for any other id. Thread-safe.
VELMOR_SQL_API std::string tokenName(std::uint32_t id);

/// One token of a text, as tokenize() gives it.
struct ScannedToken {
  std::uint32_t id = T_UNINITIALIZED;
  /// Position of the token's first character; lines and columns start at 1, a tab moves the
  /// column to the next stop of a grid of width 4.
  int line = 1;
  int column = 1;
  /// UTF-16 units of the token's text (without the brackets of a bracketed identifier, with
  /// the quotes of a string); empty unless carriesText(id).
  std::wstring text;
};

/// Scans a whole UTF-8 text. The result always ends with the T_TERMINATION token; input that
/// matches no token is dropped silently and a NUL byte ends the text as described for the
/// parser. Throws std::runtime_error (text beginning "Distance between lexeme start and
/// current pointer exceeds buffer size.") when one lexeme is too long for the scanner's
/// 131,072-byte window, and std::bad_alloc. Reentrant: no state is shared between calls.
VELMOR_SQL_API std::vector<ScannedToken> tokenize(const std::string& text);

/// A part of a text that the scanner passed over without a token: what a parse of the text
/// silently ignores. White space is not listed.
struct SkippedText {
  enum class Kind {
    /// Bytes that match no token (`$`, a backtick, an unclosed quote's opening mark, invalid
    /// UTF-8), or a lexeme cut short by a NUL; adjacent ones form one range.
    Dropped,
    /// A NUL byte, where the text ends for the scanner, and everything after it.
    AfterNul,
  };
  Kind kind = Kind::Dropped;
  /// Byte offset into the text and length in bytes.
  std::size_t offset = 0;
  std::size_t length = 0;
  /// Where the range starts, counted as token positions are.
  int line = 1;
  int column = 1;
};

/// The ranges of `text` that the scanner skips, in text order; empty when every byte but
/// white space belongs to a token. Throws as tokenize does. Reentrant.
VELMOR_SQL_API std::vector<SkippedText> skippedText(const std::string& text);

} // namespace velmor::sql
