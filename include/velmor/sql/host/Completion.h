// Completion at a cursor: what may stand there, from the grammar and the catalogue.
#pragma once

#include <velmor/sql/host/Export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace velmor::sql::host {

class Catalogue;

/// One thing that may stand at the cursor.
struct Candidate {
  enum class Kind {
    Keyword,     ///< a keyword in upper case ("SELECT", "IS NOT")
    Punctuation, ///< punctuation or an operator as written ("(", "<=")
    Table,       ///< a table of the catalogue
    Alias,       ///< an alias or a table name of the statement, to qualify a column with
    Column,      ///< a column; qualified ("p.area_sqm") where its bare name is ambiguous
    Function,    ///< a function of the catalogue
  };
  /// The text to put in place of the replaced range (UTF-8).
  std::string text;
  Kind kind = Kind::Keyword;
  /// A column's type ("Decimal(12,2)"); a function's overloads ("(Geometry) -> Double", several
  /// separated by "; "); empty otherwise.
  std::string detail;
};

/// The answer of complete().
struct Completion {
  /// Byte offsets of the range that a candidate replaces: the whole word under the cursor (also
  /// its part after the cursor), or the empty range at the cursor.
  std::size_t replaceBegin = 0;
  std::size_t replaceEnd = 0;
  /// Best first: where a value may stand, the output names (in ORDER BY), then the columns of
  /// the nearest query level and its tables and aliases, then those of each level around it,
  /// then functions, keywords (by text) and punctuation. Each text at most once per kind.
  std::vector<Candidate> candidates;
};

/// What may stand at byte `offset` of the UTF-8 `text`, a document of one or more statements
/// (an offset past the end counts as the end; one inside a code point as that code point's
/// start). Only the statement around the offset is read.
///
/// Keywords and punctuation are exactly the tokens that the grammar accepts after the tokens
/// before the cursor. Where it accepts a name, the statement is read with a stand-in name in
/// place of the word under the cursor, mended where it is unfinished (repairTokens), and the
/// scopes that standard scoping gives the stand-in say which names make sense: the catalogue's
/// tables where a table is named; the columns of the table or alias before a "." as that name
/// means it there (a derived table's computed columns included); an INSERT's or UPDATE's target
/// columns; in USING (...) the columns both sides have; in an expression the columns of every
/// query level from the nearest outward (bare where the bare name means that column there, else
/// qualified), their tables and aliases, and the catalogue's functions. Nothing for a name that
/// the statement makes up (an alias). Every column and table offered makes the statement free
/// of name faults in standard scoping.
///
/// The word under the cursor (letters, digits, '_', '$', any non-ASCII) filters the candidates
/// by its part before the cursor, without regard to case; punctuation is offered only without
/// such a part. No candidates: inside a string, a bracketed name, a number, an operator or a
/// comment; right after bytes the scanner drops (an unclosed quote or bracket, a backtick);
/// after a NUL byte; when the text before the cursor holds a syntax error; and in a statement
/// that holds a lexeme longer than the scanner's window. Never throws but std::bad_alloc, and
/// needs little stack at any depth of nesting. `catalogue` is only read; the call is as
/// thread-safe as its const interface.
VELMOR_SQL_HOST_API Completion complete(const std::string& text, std::size_t offset, const Catalogue& catalogue);

/// "keyword", "punctuation", "table", "alias", "column", "function".
VELMOR_SQL_HOST_API const char* candidateKindName(Candidate::Kind kind);

} // namespace velmor::sql::host
