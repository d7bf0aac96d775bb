// Types and plain types as the tool writes and reads them: `Integer`, `VarChar(50)`,
// `Decimal(5,3)`, `Tuple(Integer, Char(1))`, `Array(Integer)`.
#pragma once

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

} // namespace velmor::cli
