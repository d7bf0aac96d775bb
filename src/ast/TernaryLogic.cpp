// Three-valued conjunction and disjunction.
#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/TernaryLogic.h>

namespace velmor::sql {
namespace {

bool inRange(TernaryLogic::Value value) {
  return static_cast<unsigned>(value) <= static_cast<unsigned>(TernaryLogic::MaxValue);
}

// Kept for completeness of the logic; the library itself never negates a literal.
[[maybe_unused]] TernaryLogic operator!(TernaryLogic operand) {
  switch (operand.m_value) {
  case TernaryLogic::False:
  case TernaryLogic::Unknown:
  case TernaryLogic::True:
    return TernaryLogic(static_cast<TernaryLogic::Value>(TernaryLogic::True - operand.m_value));
  }
  VELMOR_SQL_ASSERT(false, "TernaryLogic");
  return TernaryLogic(TernaryLogic::Unknown);
}

} // namespace

TernaryLogic::TernaryLogic(Value value) : m_value(value) {
  VELMOR_SQL_ASSERT(m_value <= MaxValue, "TernaryLogic");
}

TernaryLogic TernaryLogic::operator&&(TernaryLogic other) const {
  // The right operand is looked at only when it decides the result, so a bad one is caught by
  // the constructor (True && x) or by the range check (Unknown && x), never by False && x.
  static constexpr Value unknownAnd[] = {False, Unknown, Unknown};
  switch (m_value) {
  case False:
    return TernaryLogic(False);
  case True:
    return TernaryLogic(other.m_value);
  case Unknown:
    if (inRange(other.m_value)) return TernaryLogic(unknownAnd[other.m_value]);
    break;
  }
  VELMOR_SQL_ASSERT(false, "TernaryLogic");
  return TernaryLogic(Unknown);
}

TernaryLogic TernaryLogic::operator||(TernaryLogic other) const {
  static constexpr Value unknownOr[] = {Unknown, Unknown, True};
  switch (m_value) {
  case True:
    return TernaryLogic(True);
  case False:
    return TernaryLogic(other.m_value);
  case Unknown:
    if (inRange(other.m_value)) return TernaryLogic(unknownOr[other.m_value]);
    break;
  }
  VELMOR_SQL_ASSERT(false, "TernaryLogic");
  return TernaryLogic(Unknown);
}

} // namespace velmor::sql
