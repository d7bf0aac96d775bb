// Faults as people read them: one line in words, in the host's own type names, with a
// suggestion where a known name is close to an unknown one.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/host/Export.h>
#include <velmor/sql/types/Type.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql::host {

class Catalogue;

/// The names a statement could have meant: its tables and aliases, their columns and the
/// output names of its select lists, and the catalogue's functions.
struct KnownNames {
  std::vector<std::wstring> tables;
  std::vector<std::wstring> columns;
  std::vector<std::wstring> functions;
};

/// The names that `statement` can reach in `catalogue`: every table of the catalogue, every
/// alias of the statement, the columns of the tables it names, its select items' names, and the
/// catalogue's functions. Null catalogue: the statement's own names only.
VELMOR_SQL_HOST_API KnownNames knownNames(const ast::Node& statement, const Catalogue* catalogue);

/// The name of `candidates` closest to `name` (case ignored) within a few edits (a third of its
/// length, at least one), the first of equally close ones; none when nothing is that close, when
/// `name` is itself a candidate, or when it is shorter than three letters.
VELMOR_SQL_HOST_API std::optional<std::wstring> closestName(const std::wstring& name,
                                                            const std::vector<std::wstring>& candidates);

/// A type in the host's words: the catalogue's own name for it where it has one ("Geometry"),
/// else as typeText writes it; "unknown" for an empty pointer.
VELMOR_SQL_HOST_API std::string typeWords(const std::shared_ptr<Type>& type, const Catalogue* catalogue);

/// One line for a person: `unknown column "nosuch" (did you mean "area_sqm"?)`,
/// `cannot compare Geometry with Integer`. `catalogue` (may be null) names the types and
/// `names` (may be null) feeds the suggestions. Never empty; a host's own fault class gives its
/// class name.
VELMOR_SQL_HOST_API std::string faultMessage(const SqlError& fault, const Catalogue* catalogue,
                                             const KnownNames* names = nullptr);

} // namespace velmor::sql::host
