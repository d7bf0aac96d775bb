// Types, plain types and faults as people read them: `Integer`, `VarChar(50)`,
// `Decimal(5,3)`, `Tuple(Integer, Char(1))`, `Array(Integer)`; one line per fault.
#pragma once

#include <velmor/sql/host/Export.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/types/Type.h>

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

/// A fault as one line: its type() number, its class name and its fields as name=value, texts
/// in double quotes (inner ones doubled), types as above, lists in brackets.
VELMOR_SQL_HOST_API std::string errorLine(const SqlError& error);

} // namespace velmor::sql::host
