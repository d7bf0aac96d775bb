// The grammar's operator precedence as a StringBuildContext, for hosts without a catalogue.
#pragma once

#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/host/Export.h>

#include <string>

namespace velmor::sql::host {

/// Binding strength of a built-in operator in the grammar, 1 (OR) to 16 (EXISTS, UNIQUE, CASE,
/// CAST); 0 for the invalid code and for custom operators (codes above 50).
VELMOR_SQL_HOST_API int grammarPrecedenceLevel(OperationCode code);

/// A StringBuildContext with the grammar's levels, under which canonical text keeps only the
/// parentheses the grammar needs; custom operators are written "UNKNOWN_OPERATOR". Stateless:
/// one instance may serve any number of builders on any threads.
class VELMOR_SQL_HOST_API GrammarPrecedence : public StringBuildContext {
public:
  int comparePrecedence(OperationCode inner, OperationCode outer) const override;
  std::wstring operatorToString(OperationCode code) const override;

protected:
  /// A subclass overrides this to rank custom operators or change the order.
  virtual int precedenceLevel(OperationCode code) const;
};

} // namespace velmor::sql::host
