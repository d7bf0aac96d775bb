// OverloadInfo's rules for its parameters, read from its public fields in place: the exported
// members use them, and overload resolution, which asks them of every overload of an operator
// (an operator has dozens), inlines them.
#pragma once

#include <velmor/sql/types/Routine.h>

#include <cstddef>

namespace velmor::sql::detail {

/// Parameter at `position` (from 0), with r required and o optional parameters: required i for
/// i < r; optional i - r for i < r + o; beyond that the last required parameter when variadic
/// (without required parameters there is nothing to repeat), else Fault.
inline type::PlainType parameterAt(const OverloadInfo& overload, std::size_t position) noexcept {
  const std::size_t required = overload.mParameters.size();
  if (position < required) return overload.mParameters[position];
  if (position < required + overload.mOptionalParameters.size()) return overload.mOptionalParameters[position - required];
  if (overload.mVariadic && required != 0) return overload.mParameters.back();
  return type::PlainType::Fault;
}

/// At least the required count, and at most required + optional unless variadic.
inline bool takesCount(const OverloadInfo& overload, std::size_t count) noexcept {
  const std::size_t required = overload.mParameters.size();
  return count >= required && (overload.mVariadic || count <= required + overload.mOptionalParameters.size());
}

} // namespace velmor::sql::detail
