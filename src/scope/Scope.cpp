// Column scopes: name resolution and asterisk expansion over tables, joins and enclosing queries.
#include <velmor/sql/scope/Scope.h>

#include <velmor/sql/types/Strings.h>
#include <velmor/sql/errors/SemanticErrors.h>

#include "scope/AsteriskTest.h"
#include "types/Folding.h"

#include <range/v3/range/conversion.hpp>
#include <range/v3/view/filter.hpp>
#include <range/v3/view/transform.hpp>

#include <algorithm>
#include <set>
#include <typeinfo>
#include <utility>

namespace velmor::sql {

ScopeTypeContext::~ScopeTypeContext() = default;

std::shared_ptr<Type> ScopeTypeContext::columnType(const std::wstring&, const std::wstring&) const { return {}; }

AsteriskColumns ScopeTypeContext::columnsForAsterisk_impl(const std::wstring&) const { return {}; }

AsteriskColumns ScopeTypeContext::columnsForAsterisk_impl() const { return {}; }

AsteriskColumns ScopeTypeContext::columnsForAsterisk(const std::wstring& table) const {
  return table.empty() ? columnsForAsterisk_impl() : columnsForAsterisk_impl(table);
}

std::shared_ptr<Type> ColumnInfoScope::columnType(const std::wstring& table, const std::wstring& column) const {
  const ColumnInfo info = columnInfo(table, column);
  if (info.isNull()) return {};
  return info.type();
}

std::vector<ColumnInfo> ColumnInfoScope::columnsInfo(const std::wstring& table, const std::wstring& column) const {
  return {columnInfo(table, column)};
}

TableInfoScope::TableInfoScope(const ast::TablePrimary& table, std::shared_ptr<TableInfo> tableInfo)
    : m_tableInfo(std::move(tableInfo)), m_tableName(normalized(table.table)), m_alias(normalized(table.alias)) {}

bool TableInfoScope::isTableName(const std::wstring& name) const {
  return detail::sameFoldedName(name, m_tableName) || (!m_alias.empty() && detail::sameFoldedName(name, m_alias));
}

ColumnInfo TableInfoScope::columnInfo(const std::wstring& table, const std::wstring& column) const {
  if (!m_tableInfo || (!table.empty() && !isTableName(table))) return {};
  return m_tableInfo->columnByName(column);
}

AsteriskColumns TableInfoScope::columnsForAsterisk_impl(const std::wstring& table) const {
  if (!isTableName(table)) return {};
  return columnsForAsterisk_impl();
}

AsteriskColumns TableInfoScope::columnsForAsterisk_impl() const {
  if (!m_tableInfo) return {};
  const std::wstring& name = m_alias.empty() ? m_tableName : m_alias;
  std::vector<std::wstring> columns = m_tableInfo->columnsNames({});
  return columns | ranges::views::transform([&name](std::wstring& column) { return AsteriskColumn(name, std::move(column)); }) |
         ranges::to<AsteriskColumns>();
}

JoinScope::JoinScope(std::vector<std::shared_ptr<ColumnInfoScope>> scopes) : m_scopes(std::move(scopes)) {
  // A derived table over a set operation has no scope; it stands in the list as nothing.
  std::erase(m_scopes, nullptr);
}

ColumnInfo JoinScope::columnInfo(const std::wstring& table, const std::wstring& column) const {
  ColumnInfo result;
  for (const auto& scope : m_scopes) {
    ColumnInfo found = scope->columnInfo(table, column);
    if (found.isNull()) continue;
    if (result.isNull()) {
      result = std::move(found);
      continue;
    }
    // A later hit conflicts only when its scope takes part in `*`: an enclosing query's scope
    // doesn't, so an inner column simply hides an outer one of the same name.
    if (detail::hasAsteriskColumns(*scope, std::wstring())) throw AmbiguousColumnReference(table, column);
  }
  return result;
}

std::vector<ColumnInfo> JoinScope::columnsInfo(const std::wstring& table, const std::wstring& column) const {
  std::vector<ColumnInfo> result;
  for (const auto& scope : m_scopes) {
    ColumnInfo found = scope->columnInfo(table, column);
    if (!found.isNull()) result.push_back(std::move(found));
  }
  return result;
}

AsteriskColumns JoinScope::columnsForAsterisk_impl(const std::wstring& table) const {
  for (const auto& scope : m_scopes) {
    AsteriskColumns columns = scope->columnsForAsterisk(table);
    if (!columns.empty()) return columns;
  }
  return {};
}

AsteriskColumns JoinScope::columnsForAsterisk_impl() const {
  AsteriskColumns result;
  std::set<AsteriskColumn> seen;
  for (const auto& scope : m_scopes) {
    // Filter against the pairs of earlier scopes only, so that repeats inside one list stay.
    AsteriskColumns listed = scope->columnsForAsterisk_impl();
    AsteriskColumns fresh = listed | ranges::views::filter([&seen](const AsteriskColumn& pair) { return !seen.contains(pair); }) |
                            ranges::to<AsteriskColumns>();
    seen.insert(fresh.begin(), fresh.end());
    if (result.empty()) {
      result = std::move(fresh);
    } else {
      result.insert(result.end(), std::make_move_iterator(fresh.begin()), std::make_move_iterator(fresh.end()));
    }
  }
  return result;
}

ExternalScope::ExternalScope(std::shared_ptr<ColumnInfoScope> scope) : m_scope(std::move(scope)) {}

ColumnInfo ExternalScope::columnInfo(const std::wstring& table, const std::wstring& column) const {
  return m_scope ? m_scope->columnInfo(table, column) : ColumnInfo();
}

std::vector<ColumnInfo> ExternalScope::columnsInfo(const std::wstring& table, const std::wstring& column) const {
  return m_scope ? m_scope->columnsInfo(table, column) : std::vector<ColumnInfo>();
}

AsteriskColumns ExternalScope::columnsForAsterisk_impl(const std::wstring& table) const {
  return m_scope ? m_scope->columnsForAsterisk(table) : AsteriskColumns();
}

AsteriskColumns ExternalScope::columnsForAsterisk_impl() const { return {}; }

std::shared_ptr<ColumnInfoScope> addExternalScope(std::shared_ptr<ColumnInfoScope> scope,
                                                  const std::shared_ptr<ColumnInfoScope>& external) {
  if (!external) return scope;
  return std::make_shared<JoinScope>(
      std::vector<std::shared_ptr<ColumnInfoScope>>{std::move(scope), std::make_shared<ExternalScope>(external)});
}

namespace detail {

bool hasAsteriskColumns(const ScopeTypeContext& scope, const std::wstring& table) {
  const std::type_info& kind = typeid(scope);
  if (kind == typeid(TableInfoScope)) {
    const auto& tableScope = static_cast<const TableInfoScope&>(scope);
    if (!table.empty() && !tableScope.isTableName(table)) return false;
    return tableScope.tableInfo() && tableScope.tableInfo()->columnCount() > 0;
  }
  if (kind == typeid(JoinScope)) {
    // The first side that lists columns is in the list, whatever the others list.
    for (const auto& side : static_cast<const JoinScope&>(scope).scopes()) {
      if (hasAsteriskColumns(*side, table)) return true;
    }
    return false;
  }
  if (kind == typeid(ExternalScope)) {
    const auto& outer = static_cast<const ExternalScope&>(scope).scope();
    return !table.empty() && outer && hasAsteriskColumns(*outer, table);
  }
  return !scope.columnsForAsterisk(table).empty();
}

} // namespace detail

} // namespace velmor::sql
