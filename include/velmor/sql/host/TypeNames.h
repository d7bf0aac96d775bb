// Types, plain types and faults as people read them: `Integer`, `VarChar(50)`,
// `Decimal(5,3)`, `Tuple(Integer, Char(1))`, `Array(Integer)`; one line per fault.
#pragma once

#include <velmor/sql/host/Export.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/types/Type.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmor::sql::host {

/// The enumerator name of a plain type ("VarChar"); "PlainType(N)" for a number without one.
VELMOR_SQL_HOST_API std::string plainTypeName(type::PlainType plainType);

/// The plain type whose enumerator name is `name`, compared without regard to ASCII case.
VELMOR_SQL_HOST_API std::optional<type::PlainType> plainTypeFromName(std::string_view name);

/// A type with its parameters; "none" for an empty pointer (a type that is not known).
VELMOR_SQL_HOST_API std::string typeText(const std::shared_ptr<Type>& type);

/// A list of types as "[Integer, VarChar(5)]".
VELMOR_SQL_HOST_API std::string typesText(const std::vector<std::shared_ptr<Type>>& types);

/// One field of a fault, as the fault class declares them, in order.
struct FaultField {
  enum class Kind {
    Name,        ///< `text`: a name or a piece of the statement (UTF-8)
    Description, ///< `text`: a type, a set of types or a list of candidates as typeText writes them
    Number,      ///< `number`: a count or a position
    Flag,        ///< `number`: 0 or 1
  };
  /// The member's name ("tableName", "argumentTypes").
  const char* name = "";
  Kind kind = Kind::Name;
  std::string text;
  std::int64_t number = 0;
};

/// The class name of a fault ("UnknownColumnReference"); "SqlError" for a class of the host's.
VELMOR_SQL_HOST_API const char* faultClassName(const SqlError& error);

/// The data fields of a fault; empty for the classes that carry none.
VELMOR_SQL_HOST_API std::vector<FaultField> faultFields(const SqlError& error);

/// A fault as one line: its type() number, its class name and its fields as name=value, names
/// and texts in double quotes (inner ones doubled), types as above, lists in brackets.
VELMOR_SQL_HOST_API std::string errorLine(const SqlError& error);

} // namespace velmor::sql::host
