// The grammar's precedence levels, and the context that writes SQL by them.
#include <velmor/sql/host/Precedence.h>

namespace velmor::sql::host {

int grammarPrecedenceLevel(OperationCode code) {
  switch (code) {
  case OperationCode::Invalid: return 0;
  case OperationCode::Or: return 1;
  case OperationCode::Xor: return 2;
  case OperationCode::And: return 3;
  case OperationCode::Not: return 4;
  case OperationCode::Equal:
  case OperationCode::NotEqual: return 5;
  case OperationCode::Less:
  case OperationCode::Greater:
  case OperationCode::LessOrEqual:
  case OperationCode::GreaterOrEqual: return 6;
  case OperationCode::Like:
  case OperationCode::NotLike:
  case OperationCode::Glob:
  case OperationCode::NotGlob:
  case OperationCode::Regexp:
  case OperationCode::NotRegexp: return 7;
  case OperationCode::Between:
  case OperationCode::NotBetween:
  case OperationCode::In:
  case OperationCode::NotIn: return 8;
  case OperationCode::Contains:
  case OperationCode::NotContains:
  case OperationCode::ContainsPart:
  case OperationCode::ContainsEntire:
  case OperationCode::NotContainsEntire:
  case OperationCode::Intersects:
  case OperationCode::NotIntersects:
  case OperationCode::Within:
  case OperationCode::NotWithin:
  case OperationCode::PartlyWithin:
  case OperationCode::EntirelyWithin:
  case OperationCode::NotEntirelyWithin: return 9;
  case OperationCode::Is:
  case OperationCode::IsNot: return 10;
  case OperationCode::Concat:
  case OperationCode::BitOr:
  case OperationCode::BitAnd: return 11;
  case OperationCode::ShiftLeft:
  case OperationCode::ShiftRight: return 12;
  case OperationCode::Plus:
  case OperationCode::Minus: return 13;
  case OperationCode::Multiply:
  case OperationCode::Divide:
  case OperationCode::IntegerDivide:
  case OperationCode::Modulo: return 14;
  case OperationCode::Power: return 15;
  case OperationCode::Exists:
  case OperationCode::Unique:
  case OperationCode::Case:
  case OperationCode::Cast: return 16;
  }
  return 0;
}

int GrammarPrecedence::comparePrecedence(OperationCode inner, OperationCode outer) const {
  return precedenceLevel(inner) - precedenceLevel(outer);
}

std::wstring GrammarPrecedence::operatorToString(OperationCode) const { return L"UNKNOWN_OPERATOR"; }

int GrammarPrecedence::precedenceLevel(OperationCode code) const { return grammarPrecedenceLevel(code); }

} // namespace velmor::sql::host
