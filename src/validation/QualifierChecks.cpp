// The table qualifier checks.
#include <velmor/sql/validation/QualifierChecks.h>

#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/types/Strings.h>
#include <velmor/sql/errors/SemanticErrors.h>

#include "scope/AsteriskTest.h"

namespace velmor::sql {

UnknownTableQualifiersVisitor::UnknownTableQualifiersVisitor(const TableInfoContext& tableContext,
                                                             const ColumnInfoScope* scope)
    : mTableContext(tableContext), mScope(scope) {}

void UnknownTableQualifiersVisitor::handleTableName(const std::wstring& name) {
  if (name.empty()) return;
  // A table of the host is a valid qualifier even when the FROM list doesn't name it.
  if (mTableContext.table(name)) return;
  if (mScope != nullptr && detail::hasAsteriskColumns(*mScope, name)) return;
  report(UnknownTableReference(name));
}

void UnknownTableQualifiersVisitor::visit(const ast::ColumnReference& record) {
  handleTableName(record.table);
}

void UnknownTableQualifiersVisitor::visit(const ast::QualifiedAsterisk& record) {
  handleTableName(record.table);
}

void AmbiguousTableQualifiersVisitor::visit(const ast::TablePrimary& record) {
  auto first = toLowercase(trimSquareBrackets(record.table));
  auto second = record.alias.empty() ? first : toLowercase(trimSquareBrackets(record.alias));
  // The key is the pair: one table under two aliases, or two tables under one alias, is left
  // to column lookup, which reports an ambiguous column where it matters.
  if (!mSeen.emplace(std::move(first), std::move(second)).second)
    report(AmbiguousTablesReference(record.table));
}

} // namespace velmor::sql
