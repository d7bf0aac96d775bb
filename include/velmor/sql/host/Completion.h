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
  /// Byte offsets of the range that a candidate replaces: the half-typed word before the cursor,
  /// or the empty range at the cursor.
  std::size_t replaceBegin = 0;
  std::size_t replaceEnd = 0;
  /// By kind (in the order of Candidate::Kind), then by text; each text at most once per kind.
  std::vector<Candidate> candidates;
};

/// What may stand at byte `offset` of the UTF-8 `text` (an offset past the end counts as the end;
/// one inside a code point as that code point's start).
///
/// Keywords and punctuation are exactly the tokens that the grammar accepts after the tokens
/// before the cursor. Where it accepts a name, the names that make sense there: tables after
/// FROM, JOIN, UPDATE, INTO and TABLE (and after a comma of a FROM list); the columns of a table
/// or alias before a "."; columns of the named table in an INSERT column list and an UPDATE's SET;
/// and in expressions the tables and aliases of the cursor's query (its FROM clause, also where
/// it follows the cursor), their columns and the catalogue's functions. Nothing is offered for
/// a name that the statement makes up (an alias after a table or an expression).
///
/// A word directly before the cursor (letters, digits, '_', '$', any non-ASCII) is the
/// half-typed word: it filters the candidates by prefix without regard to case, and its range is
/// the replaced one; punctuation is offered only without such a word. No candidates: inside a
/// string, a bracketed name, a number or an operator; right after bytes the scanner drops (an
/// unclosed quote or bracket, a backtick); after a NUL byte; and when the text before the cursor
/// holds a syntax error. Never throws but std::bad_alloc. `catalogue` is only read; the call is
/// as thread-safe as its const interface.
VELMOR_SQL_HOST_API Completion complete(const std::string& text, std::size_t offset, const Catalogue& catalogue);

/// "keyword", "punctuation", "table", "alias", "column", "function".
VELMOR_SQL_HOST_API const char* candidateKindName(Candidate::Kind kind);

} // namespace velmor::sql::host
