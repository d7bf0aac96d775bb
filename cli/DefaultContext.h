// The precedence the tool writes SQL with when no catalogue says otherwise: the grammar's order.
#pragma once

#include <velmor/sql/builder/SqlStringBuilder.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::cli {

using sql::OperationCode;

/// Binding strength of a built-in operator, 1 (OR) to 16 (EXISTS, UNIQUE, CASE, CAST); 0 for
/// the invalid code and for custom operators, which a catalogue may rank instead.
constexpr int defaultPrecedenceLevel(OperationCode code) {
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

/// The tool's default StringBuildContext: the grammar's levels, and no custom operators (their
/// text is "UNKNOWN_OPERATOR"). Stateless, so one instance may serve any number of builders.
class DefaultStringBuildContext : public sql::StringBuildContext {
public:
  int comparePrecedence(OperationCode inner, OperationCode outer) const override {
    return precedenceLevel(inner) - precedenceLevel(outer);
  }
  std::wstring operatorToString(OperationCode) const override { return L"UNKNOWN_OPERATOR"; }

protected:
  /// A catalogue-driven context overrides this to rank custom operators or change the order.
  virtual int precedenceLevel(OperationCode code) const { return defaultPrecedenceLevel(code); }
};

/// The context of format and rename: with "--catalog FILE" among the leading `args` (taken out
/// of them), that catalogue's levels and custom operator texts, the defaults where it has none;
/// otherwise the defaults. Empty after a bad catalogue, whose message is then on standard error
/// (the command exits with status 2). Defined with the catalogue (Catalogue.cpp).
std::unique_ptr<DefaultStringBuildContext> takeStringBuildContext(const char* command,
                                                                  std::vector<std::string>& args);

} // namespace velmor::cli
