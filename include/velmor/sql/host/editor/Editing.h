// Editor services at a cursor: hover, signature help, definitions and the occurrences of a name,
// all answered from the scopes that standard scoping gives each query level of the statement.
#pragma once

#include <velmor/sql/host/Export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql::host {

class Catalogue;

/// A stretch of a text: byte offsets of its first byte and one past its last.
struct TextRange {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool operator==(const TextRange&) const = default;
};

/// What the thing under the cursor is.
struct Hover {
  enum class Kind {
    Column,     ///< a column reference: its table and type
    Table,      ///< a table of the catalogue, or a derived table, by name or alias: its columns
    Function,   ///< a function call's name: its overloads and the one chosen
    Expression, ///< any other expression (an operator, a literal, a subquery): its type
    OutputName, ///< a select item's alias, or its use in ORDER BY: the item's type
  };
  Kind kind = Kind::Expression;
  /// The range the answer is about (the name, or the whole expression).
  TextRange range;
  /// One line: "column parcels.area_sqm: Decimal(12,2)", "table parcels", "function ST_Area",
  /// "Boolean". Types in the catalogue's names.
  std::string title;
  /// Further lines: a table's columns ("parcel_id: Integer"), a function's overloads
  /// ("ST_Area(Geometry) -> Double"), the chosen one first and marked "(chosen)".
  std::vector<std::string> details;
  /// The type in the catalogue's names, when the thing has one.
  std::string type;
};

/// One overload of a function as signature help shows it.
struct CallSignature {
  /// "ST_Buffer(Geometry, Double) -> Geometry".
  std::string label;
  /// Byte ranges of each parameter inside `label`.
  std::vector<TextRange> parameters;
};

/// The calls whose parentheses hold the cursor, innermost: its overloads and where the cursor is.
struct SignatureHelp {
  /// The function's name as the catalogue spells it.
  std::string function;
  std::vector<CallSignature> signatures;
  /// The overload that the arguments typed so far resolve to, else the first that takes at least
  /// as many arguments as are written.
  std::size_t activeSignature = 0;
  /// The argument the cursor is in, from 0 (commas before the cursor at the call's own level).
  std::size_t activeParameter = 0;
  /// From the function's name to its closing parenthesis (or the statement's end).
  TextRange call;
};

/// Where a name used at the cursor is declared in its statement.
struct Definition {
  /// The name under the cursor.
  TextRange origin;
  /// The declaration: an alias after its table or expression, a derived table's select item, a
  /// select item's alias named in ORDER BY, a USING column.
  TextRange target;
};

/// The thing under byte `offset` of the UTF-8 `text` (a document of one or more statements; an
/// offset right after a name counts as on it). None for keywords, punctuation, white space and
/// places the statement's reading cannot tell. Never throws but std::bad_alloc.
VELMOR_SQL_HOST_API std::optional<Hover> hover(const std::string& text, std::size_t offset,
                                               const Catalogue& catalogue);

/// Signature help inside the parentheses of a call at `offset`; none outside any call or for a
/// function the catalogue does not have. Never throws but std::bad_alloc.
VELMOR_SQL_HOST_API std::optional<SignatureHelp> signatureHelp(const std::string& text, std::size_t offset,
                                                               const Catalogue& catalogue);

/// The declaration of the alias, derived column or output name used at `offset`; none for
/// anything else (a catalogue table or column has no place in the text). Never throws but
/// std::bad_alloc.
VELMOR_SQL_HOST_API std::optional<Definition> definition(const std::string& text, std::size_t offset,
                                                         const Catalogue& catalogue);

/// Every place in its statement where the alias or output name at `offset` is declared or used,
/// in text order (the declaration among them); empty for anything else. An editor renames an
/// alias by rewriting each range. Never throws but std::bad_alloc.
VELMOR_SQL_HOST_API std::vector<TextRange> occurrences(const std::string& text, std::size_t offset,
                                                       const Catalogue& catalogue);

/// "column", "table", "function", "expression", "output name".
VELMOR_SQL_HOST_API const char* hoverKindName(Hover::Kind kind);

} // namespace velmor::sql::host
