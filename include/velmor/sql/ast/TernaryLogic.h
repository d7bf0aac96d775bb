// Three-valued truth of SQL: the value behind TRUE, FALSE and UNKNOWN literals.
#pragma once

#include <velmor/sql/Export.h>

namespace velmor::sql {

/// A truth value of SQL's three-valued logic. A plain value; copies are independent.
class VELMOR_SQL_API TernaryLogic {
public:
  /// Numbers are part of the public interface.
  enum Value : int { False = 0, Unknown = 1, True = 2 };
  /// The largest valid number; values above it are a programming error.
  static constexpr Value MaxValue = True;

  /// Stores `value`, then asserts that it is at most MaxValue (source "TernaryLogic").
  TernaryLogic(Value value = Unknown); // NOLINT(google-explicit-constructor): a literal is a value

  /// Kleene conjunction and disjunction. `False && x` and `True || x` never look at `x`.
  /// An operand out of range asserts and, if the process goes on, gives Unknown.
  TernaryLogic operator&&(TernaryLogic other) const;
  TernaryLogic operator||(TernaryLogic other) const;

  Value value() const noexcept { return m_value; }
  bool operator==(const TernaryLogic& other) const noexcept { return m_value == other.m_value; }

  Value m_value;
};

} // namespace velmor::sql
