// Types, plain types and faults as the tool writes them: `Integer`, `VarChar(50)`,
// `Decimal(5,3)`, `Tuple(Integer, Char(1))`, `Array(Integer)`; one line per fault.
#pragma once

#include <velmor/sql/parser/SqlError.h>
#include <velmor/sql/types/Type.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmor::cli {

/// The enumerator name of a plain type ("VarChar"); "PlainType(N)" for a number without one.
std::string plainTypeName(sql::type::PlainType plainType);

/// The plain type whose enumerator name is `name`, compared without regard to ASCII case.
std::optional<sql::type::PlainType> plainTypeFromName(std::string_view name);

/// A type with its parameters; "none" for an empty pointer (a type that is not known).
std::string typeText(const std::shared_ptr<sql::Type>& type);

/// A list of types as "[Integer, VarChar(5)]".
std::string typesText(const std::vector<std::shared_ptr<sql::Type>>& types);

/// A fault as one line: its type() number, its class name and its fields as name=value, texts
/// in double quotes (inner ones doubled), types as above, lists in brackets.
std::string errorLine(const sql::SqlError& error);

} // namespace velmor::cli
