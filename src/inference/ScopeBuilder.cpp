// Scope construction from a FROM list and result tables from select lists. It lives with
// inference, whose TypeInferer types the calculated columns; scope/ScopeBuilder.h declares it.
#include <velmor/sql/scope/ScopeBuilder.h>

#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/errors/SemanticErrors.h>

#include "ast/RecordOf.h"
#include "common/Decimal.h"
#include "inference/ResultColumns.h"
#include "inference/Resolutions.h"
#include "inference/StandardAnalysis.h"
#include "types/ColumnOrder.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <string>
#include <utility>

namespace velmor::sql {

namespace {

// Names the columns of one select item. Made anew per item; the counter of unnamed columns
// belongs to the caller so that it runs through the whole select list.
class ColumnInfoVisitor : public ast::VisitorWithResult<ast::NodeVisitor, std::vector<ColumnInfo>> {
public:
  ColumnInfoVisitor(const GlobalTypeContext& global, const std::shared_ptr<ColumnInfoScope>& scope,
                    std::int32_t* columnNumber)
      : m_global(global), m_scope(scope), m_columnNumber(columnNumber) {}

  using ast::NodeVisitor::visit;

  void visit(const ast::ColumnReference& record) override {
    // Without a scope (a query without FROM) no column is known.
    ColumnInfo column = m_scope ? m_scope->columnInfo(record.table, record.column) : ColumnInfo();
    if (column.isNull()) throw UnknownColumnReference(record.table, record.column);
    mResult.push_back(std::move(column));
  }

  void visit(const ast::QualifiedAsterisk& record) override {
    // An unknown qualifier yields nothing here; the qualifier checks report it.
    if (!m_scope) return;
    for (const AsteriskColumn& pair : m_scope->columnsForAsterisk(record.table)) {
      std::vector<ColumnInfo> columns = m_scope->columnsInfo(pair.first, pair.second);
      mResult.insert(mResult.end(), std::make_move_iterator(columns.begin()), std::make_move_iterator(columns.end()));
    }
  }

  void visit(const ast::DerivedColumn& record) override {
    doVisit(record.expression);
    if (mResult.empty()) {
      static const ScopeTypeContext noColumns;
      TypeInferer inferer(m_global, m_scope ? static_cast<const ScopeTypeContext&>(*m_scope) : noColumns);
      std::shared_ptr<Type> type = inferer.inferType(record.expression);
      std::wstring name = record.alias;
      if (name.empty()) {
        name = L"column_";
        detail::appendDecimal(name, (*m_columnNumber)++);
      }
      mResult.push_back(ColumnInfo::calculatedColumn(std::move(name), std::move(type)));
    } else if (!record.alias.empty()) {
      mResult.back() = mResult.back().rename(record.alias);
    }
  }

  void faultAction() override {}

private:
  const GlobalTypeContext& m_global;
  const std::shared_ptr<ColumnInfoScope>& m_scope;
  std::int32_t* m_columnNumber;
};

} // namespace

std::shared_ptr<ColumnInfoScope> buildScopeForTableReference(const GlobalTypeContext& global,
                                                             const TableInfoContext& tables,
                                                             const ast::QueryExpressionNode& reference,
                                                             const std::shared_ptr<ColumnInfoScope>& external) {
  class BuildTableScopeVisitor : public ast::VisitorWithResult<ast::NodeVisitor, std::shared_ptr<ColumnInfoScope>> {
  public:
    BuildTableScopeVisitor(const GlobalTypeContext& global, const TableInfoContext& tables,
                           const std::shared_ptr<ColumnInfoScope>& external)
        : m_global(global), m_tables(tables), m_external(external) {}

    using ast::NodeVisitor::visit;

    void visit(const ast::DerivedTable& record) override {
      m_alias = record.alias;
      doVisit(record.query);
    }

    void visit(const ast::JoinNode& record) override {
      // The kind of join and its condition don't shape the scope: each side keeps its columns.
      mResult = std::make_shared<JoinScope>(std::vector<std::shared_ptr<ColumnInfoScope>>{
          buildScopeForTableReference(m_global, m_tables, record.left, m_external),
          buildScopeForTableReference(m_global, m_tables, record.right, m_external)});
    }

    void visit(const ast::QuerySpecification& record) override {
      const std::shared_ptr<ColumnInfoScope> inner = buildScope(m_global, m_tables, record, m_external);
      std::shared_ptr<TableInfo> info = buildTableInfo(m_global, inner, record.selectList);
      mResult = std::make_shared<TableInfoScope>(ast::TablePrimary{m_alias, {}}, std::move(info));
    }

    void visit(const ast::TablePrimary& record) override {
      std::shared_ptr<TableInfo> info = m_tables.table(record.table);
      if (!info) throw NonExistentTable(record.table);
      // Once a table has an alias, the alias is its only name in the query.
      mResult = std::make_shared<TableInfoScope>(ast::TablePrimary{record.alias.empty() ? record.table : record.alias, {}},
                                                 std::move(info));
    }

    void faultAction() override {}

  private:
    std::wstring m_alias;
    const GlobalTypeContext& m_global;
    const TableInfoContext& m_tables;
    const std::shared_ptr<ColumnInfoScope>& m_external;
  };

  BuildTableScopeVisitor visitor(global, tables, external);
  visitor.doVisit(reference);
  return std::move(visitor).result();
}

std::shared_ptr<ColumnInfoScope> buildScope(const GlobalTypeContext& global, const TableInfoContext& tables,
                                            const ast::QuerySpecification& query,
                                            const std::shared_ptr<ColumnInfoScope>& external) {
  if (query.from.empty()) return {};
  if (query.from.size() == 1) {
    return addExternalScope(buildScopeForTableReference(global, tables, query.from[0], external), external);
  }
  std::vector<std::shared_ptr<ColumnInfoScope>> scopes;
  scopes.reserve(query.from.size());
  for (const ast::QueryExpressionNode& reference : query.from) {
    scopes.push_back(buildScopeForTableReference(global, tables, reference, external));
  }
  return addExternalScope(std::make_shared<JoinScope>(std::move(scopes)), external);
}

namespace detail {

std::vector<ColumnInfo> nameResultColumns(std::vector<ColumnInfo> raw) {
  // Renamed in place: the columns before the one at hand are exactly those kept so far. A short
  // select list (nearly all) is searched in place; a long one through slots by the hash of the
  // first name, as equal columns have equal names: they meet in one run of taken slots.
  constexpr std::size_t kShortList = 16;
  const bool shortList = raw.size() <= kShortList;
  std::vector<std::size_t> slots; // a kept column's index + 1, 0 for a free slot; at most half full
  std::size_t mask = 0;
  if (!shortList) {
    std::size_t size = 2 * kShortList;
    while (size < 2 * raw.size()) size *= 2;
    slots.assign(size, 0);
    mask = size - 1;
  }
  const auto firstSlot = [&](const ColumnInfo& column) {
    return std::hash<std::wstring_view>()(column.canonicalName()) & mask;
  };
  std::size_t kept = 0;
  const auto take = [&](const ColumnInfo& column) {
    if (shortList) {
      for (std::size_t i = 0; i < kept; ++i) {
        if (sameColumn(raw[i], column)) return false;
      }
      return true;
    }
    for (std::size_t slot = firstSlot(column); slots[slot] != 0; slot = (slot + 1) & mask) {
      if (sameColumn(raw[slots[slot] - 1], column)) return false;
    }
    return true;
  };
  const auto keep = [&](std::size_t index) {
    if (shortList) return;
    std::size_t slot = firstSlot(raw[index]);
    while (slots[slot] != 0) slot = (slot + 1) & mask;
    slots[slot] = index + 1;
  };
  // The renamed candidates of a column depend only on its original table and name. A suffix
  // once found taken stays taken (the kept list only grows), so the search for the next repeat
  // of the same column starts where the last one stopped: n repeats cost n tries, not n^2 / 2.
  std::map<std::pair<std::wstring, std::wstring>, int> nextSuffix;
  for (; kept < raw.size(); ++kept) {
    ColumnInfo& column = raw[kept];
    if (!take(column)) {
      // A new name always grows from originalName, never from an alias: x, x1, x2.
      int& k = nextSuffix.try_emplace({column.originalTable(), column.originalName()}, 1).first->second;
      do {
        std::wstring name = column.originalName();
        appendDecimal(name, k++);
        column = column.rename(std::move(name));
      } while (!take(column));
    }
    keep(kept);
  }
  return raw;
}

} // namespace detail

std::shared_ptr<TableInfo> buildTableInfo(const GlobalTypeContext& global, const std::shared_ptr<ColumnInfoScope>& scope,
                                          const std::vector<ast::Node>& selectList) {
  std::vector<ColumnInfo> raw;
  std::int32_t columnNumber = 1;
  for (const ast::Node& item : selectList) {
    ColumnInfoVisitor visitor(global, scope, &columnNumber);
    visitor.doVisit(item);
    for (ColumnInfo& column : visitor.result()) raw.push_back(std::move(column));
  }
  return std::make_shared<GenericTableInfo>(detail::nameResultColumns(std::move(raw)));
}

std::shared_ptr<TableInfo> buildTableInfo(const GlobalTypeContext& global, const TableInfoContext& tables,
                                          const ast::QuerySpecification& query,
                                          const std::shared_ptr<ColumnInfoScope>& external) {
  return buildTableInfo(global, buildScope(global, tables, query, external), query.selectList);
}

std::shared_ptr<TableInfo> buildTableInfo(const GlobalTypeContext& global, const TableInfoContext& tables,
                                          const ast::Node& query, Scoping scoping,
                                          const std::shared_ptr<ColumnInfoScope>& external) {
  if (scoping == Scoping::Compatible) {
    if (!ast::detail::holds<ast::QuerySpecification>(query)) return std::make_shared<GenericTableInfo>(std::vector<ColumnInfo>{});
    return buildTableInfo(global, tables, ast::getNodeValue<ast::QuerySpecification>(query), external);
  }
  const detail::ResolutionScope resolutions(global);
  detail::StandardAnalysis analysis(global, tables, nullptr);
  detail::LevelScope outside(nullptr);
  outside.m_local = external;
  return std::make_shared<GenericTableInfo>(analysis.checkQuery(query, external ? &outside : nullptr).columns);
}

} // namespace velmor::sql
