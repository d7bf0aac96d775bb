// Column scopes: which column a (qualified) name means inside a query, and what `*` stands for.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/types/Type.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velmor::sql {

/// One column of an asterisk expansion: first the table (the name the scope knows it by), second
/// the column's canonical name as the table spells it.
using AsteriskColumn = std::pair<std::wstring, std::wstring>;
/// The columns an asterisk stands for, in order.
using AsteriskColumns = std::vector<AsteriskColumn>;

/// What a TypeInferer may ask about columns. A concrete class that knows nothing: every answer is
/// empty. Scopes are immutable once built and may be read from several threads at once (as far
/// as the TableInfo objects behind them may).
class VELMOR_SQL_API ScopeTypeContext {
public:
  virtual ~ScopeTypeContext();

  /// The type of the column `column` of table `table` (an empty `table`: any table of the
  /// scope). An empty pointer: not known (or the column has no type). Subclasses may throw
  /// AmbiguousColumnReference.
  virtual std::shared_ptr<Type> columnType(const std::wstring& table, const std::wstring& column) const;
  /// The columns of `table.*`; empty when the scope doesn't know `table`.
  virtual AsteriskColumns columnsForAsterisk_impl(const std::wstring& table) const;
  /// The columns of `*`.
  virtual AsteriskColumns columnsForAsterisk_impl() const;

  /// What `table.*` stands for; an empty `table` means a plain `*`. An unknown qualifier gives
  /// an empty vector, never an error.
  AsteriskColumns columnsForAsterisk(const std::wstring& table) const;
};

/// A scope that can answer with whole columns. Held by std::shared_ptr<ColumnInfoScope>.
class VELMOR_SQL_API ColumnInfoScope : public ScopeTypeContext {
public:
  /// columnInfo(table, column).type(), or an empty pointer for the null column. Lets
  /// AmbiguousColumnReference through.
  std::shared_ptr<Type> columnType(const std::wstring& table, const std::wstring& column) const override;
  /// The column `column` of `table` (an empty `table`: any). The null column when not found.
  /// Throws AmbiguousColumnReference (with `table` and `column` as given) when two tables of one
  /// level both have it.
  virtual ColumnInfo columnInfo(const std::wstring& table, const std::wstring& column) const = 0;
  /// Every column that `table.column` may mean, without an ambiguity check at this level. The
  /// base answers a vector of exactly one element, columnInfo(table, column), the null column
  /// included; a JoinScope leaves null answers out (and may give an empty vector).
  virtual std::vector<ColumnInfo> columnsInfo(const std::wstring& table, const std::wstring& column) const;
};

/// One table of a FROM list, known by its name or (when it has one) its alias only.
class VELMOR_SQL_API TableInfoScope : public ColumnInfoScope {
public:
  /// Keeps normalized(table.table) and normalized(table.alias), and shares `tableInfo`.
  TableInfoScope(const ast::TablePrimary& table, std::shared_ptr<TableInfo> tableInfo);

  /// True when normalized(name) is the table name, or the alias when there is one. Nothing else
  /// is recognised (no schema prefix, no brackets taken off).
  bool isTableName(const std::wstring& name) const;

  /// The null column when `table` is not empty and not this table's name; otherwise the table's
  /// columnByName(column).
  ColumnInfo columnInfo(const std::wstring& table, const std::wstring& column) const override;
  /// The same as the overload without argument when isTableName(table), else empty.
  AsteriskColumns columnsForAsterisk_impl(const std::wstring& table) const override;
  /// All columns in table order, as (alias or else table name, canonical column name).
  AsteriskColumns columnsForAsterisk_impl() const override;

  const std::shared_ptr<TableInfo>& tableInfo() const noexcept { return m_tableInfo; }

private:
  std::shared_ptr<TableInfo> m_tableInfo;
  std::wstring m_tableName;
  std::wstring m_alias;
};

/// Several scopes side by side, left to right: the tables of one FROM list or of a join. The
/// kind of join plays no part: every side keeps all its columns.
class VELMOR_SQL_API JoinScope : public ColumnInfoScope {
public:
  /// Takes over the vector. Empty pointers in it are dropped: they know nothing.
  explicit JoinScope(std::vector<std::shared_ptr<ColumnInfoScope>> scopes);

  /// The first sub-scope's answer that is not null. A later non-null answer from a sub-scope
  /// that contributes to `*` throws AmbiguousColumnReference(table, column); one from a scope
  /// that doesn't (an ExternalScope) is ignored, so an inner column hides an outer one.
  ColumnInfo columnInfo(const std::wstring& table, const std::wstring& column) const override;
  /// The non-null answers of all sub-scopes, in order; nested ambiguity still throws.
  std::vector<ColumnInfo> columnsInfo(const std::wstring& table, const std::wstring& column) const override;
  /// The first non-empty answer of a sub-scope.
  AsteriskColumns columnsForAsterisk_impl(const std::wstring& table) const override;
  /// The sub-scopes' lists in order, each pair (exact comparison) kept at its first occurrence
  /// across sub-scopes; repeats inside one sub-scope's list stay.
  AsteriskColumns columnsForAsterisk_impl() const override;

  const std::vector<std::shared_ptr<ColumnInfoScope>>& scopes() const noexcept { return m_scopes; }

private:
  std::vector<std::shared_ptr<ColumnInfoScope>> m_scopes;
};

/// The scope of an enclosing query, seen from a subquery: names resolve through it, a qualified
/// `outer.*` reaches it, a plain `*` never does.
class VELMOR_SQL_API ExternalScope : public ColumnInfoScope {
public:
  /// Takes over the pointer; an empty one makes a scope that knows nothing.
  explicit ExternalScope(std::shared_ptr<ColumnInfoScope> scope);

  ColumnInfo columnInfo(const std::wstring& table, const std::wstring& column) const override;
  std::vector<ColumnInfo> columnsInfo(const std::wstring& table, const std::wstring& column) const override;
  /// The enclosing scope's columnsForAsterisk(table).
  AsteriskColumns columnsForAsterisk_impl(const std::wstring& table) const override;
  /// Always empty.
  AsteriskColumns columnsForAsterisk_impl() const override;

  /// The enclosing scope; may be empty.
  const std::shared_ptr<ColumnInfoScope>& scope() const noexcept { return m_scope; }

private:
  std::shared_ptr<ColumnInfoScope> m_scope;
};

/// `scope` itself when `external` is empty; otherwise a new JoinScope of {scope, an
/// ExternalScope over `external`}, so that local names are found first.
VELMOR_SQL_API std::shared_ptr<ColumnInfoScope> addExternalScope(std::shared_ptr<ColumnInfoScope> scope,
                                                                  const std::shared_ptr<ColumnInfoScope>& external);

} // namespace velmor::sql
