// Standard scoping: each query level with a scope of its own, every clause of every statement
// typed, and faults either thrown (a plain inferer) or gathered part by part (a Validator).
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql::detail {

/// Where a gathering analysis puts its faults.
class FaultSink {
public:
  virtual ~FaultSink() = default;
  /// Called inside the handler of `fault`, thrown while one part was typed.
  virtual void caught(const SqlError& fault) = 0;
  /// A fault that was found rather than thrown; `node` is what it is about, or null.
  virtual void found(const SqlError& fault, const ast::Node* node) = 0;
};

/// A query's output columns as the clauses after its select list see them. A level borrows the
/// list its query is building; a copy of the level (which outlives the query) owns one.
class OutputColumns {
public:
  OutputColumns() = default;
  OutputColumns(const OutputColumns& other);
  OutputColumns& operator=(const OutputColumns& other);

  void borrow(const std::vector<ColumnInfo>* columns) noexcept {
    m_columns = columns;
    m_index.reset();
  }
  /// Null until the list is known.
  const std::vector<ColumnInfo>* columns() const noexcept { return m_columns; }
  /// The first column that answers to `name`, as a table of these columns would find it; the
  /// null column when none does or the list is not known yet.
  ColumnInfo find(const std::wstring& name) const;

private:
  std::vector<ColumnInfo> m_own;
  const std::vector<ColumnInfo>* m_columns = nullptr;
  // A long list is searched through a table of its own, made on its first search.
  mutable std::shared_ptr<GenericTableInfo> m_index;
};

/// The scope of one query level: the columns of its FROM, then the levels around it, and for
/// the clauses that may name them, the query's own output columns.
class LevelScope final : public ColumnInfoScope {
public:
  enum class Output { None, First, Last };

  /// A name that the level's FROM declares.
  struct Declared {
    std::wstring key;     ///< normalized, empty for a bare query
    std::wstring written;
    ast::Node node;
    std::shared_ptr<ColumnInfoScope> scope; ///< null when not known
  };

  explicit LevelScope(const LevelScope* parent) : m_parent(parent) {}

  ColumnInfo columnInfo(const std::wstring& table, const std::wstring& column) const override;
  std::vector<ColumnInfo> columnsInfo(const std::wstring& table, const std::wstring& column) const override;

  /// True when `name` (a table or alias) stands in this level's FROM, known or not.
  bool knowsQualifier(const std::wstring& name) const;
  /// True when `name` is a table of this level's FROM whose columns are not known.
  bool failedName(const std::wstring& name) const;

  std::shared_ptr<ColumnInfoScope> m_local;  ///< the FROM, or null
  OutputColumns m_output;                    ///< the output columns, once known
  Output m_outputUse = Output::None;
  bool m_incomplete = false;                 ///< a part of the FROM is not known
  std::vector<std::wstring> m_failed;        ///< normalized names of the unknown parts
  std::vector<Declared> m_names;             ///< the FROM's names in the order of the text
  const LevelScope* m_parent;

protected:
  AsteriskColumns columnsForAsterisk_impl(const std::wstring& table) const override;
  AsteriskColumns columnsForAsterisk_impl() const override;
};

/// Watches an analysis: where each expression is typed and each FROM item declared.
class AnalysisObserver {
public:
  virtual ~AnalysisObserver() = default;
  /// `expression` is about to be typed in `level`.
  virtual void typing(const ast::Node& expression, const LevelScope& level) = 0;
  /// `item` (a table or a derived table of a FROM) now stands in `level`'s names.
  virtual void declared(const ast::Node& item, const LevelScope& level) = 0;
  /// Whether a part that adds no columns (WHERE, ON, GROUP BY, HAVING, ORDER BY, the right side
  /// of a set operation) is to be checked at all: a watcher that asks about a few nodes spares
  /// the rest.
  virtual bool wants(const ast::Node& clause) const = 0;
};

/// The analysis behind Scoping::Standard.
class StandardAnalysis final : public QueryAnalysis {
public:
  /// With a sink, faults are gathered part by part; without one, the first is thrown.
  StandardAnalysis(const GlobalTypeContext& global, const TableInfoContext& tables, FaultSink* sink);

  /// Checks a statement of any kind; `external` is the scope of an enclosing statement, or null.
  void checkStatement(const ast::Node& statement, const std::shared_ptr<ColumnInfoScope>& external);

  std::optional<std::vector<std::shared_ptr<Type>>> queryColumns(const ast::Node& query,
                                                                const ScopeTypeContext& around) override;
  bool gathersFaults() const noexcept override { return mSink != nullptr; }
  void reportFault(const SqlError& fault) override;
  void reportFaultAt(const SqlError& fault, const ast::Node& node) override;

  /// What a query yields; not complete when a fault left a column unknown.
  struct Columns {
    std::vector<ColumnInfo> columns;
    bool complete = true;
  };
  Columns checkQuery(const ast::Node& query, const LevelScope* outer);

  /// Borrowed; null for none.
  void setObserver(AnalysisObserver* observer) noexcept { mObserver = observer; }
  /// Parts that a fault ended before they were typed whole, so far.
  std::uint64_t cuts() const noexcept { return mCuts; }

private:
  Columns checkQueryHere(const ast::Node& query, const LevelScope* outer);
  Columns checkSpecification(const ast::QuerySpecification& query, const LevelScope* outer);
  Columns checkOperation(const ast::QueryOperation& operation, const ast::Node& node, const LevelScope* outer);
  Columns checkValues(const ast::RowValueExpressionList& list, const LevelScope* outer);
  Columns checkExplicitTable(const ast::ExplicitTable& table, const ast::Node& node);
  void checkUpdate(const ast::UpdateStatement& update, const ast::Node& node, const LevelScope* outer);
  void checkInsert(const ast::InsertStatement& insert, const ast::Node& node, const LevelScope* outer);
  void checkDelete(const ast::DeleteStatement& statement, const ast::Node& node, const LevelScope* outer);

  std::shared_ptr<ColumnInfoScope> fromReference(const ast::Node& reference, LevelScope& level);
  void selectItem(const ast::Node& item, LevelScope& level, std::int32_t& counter, Columns& result);
  /// Where typing stood: a clause typed whole since then holds an aggregate call only if the
  /// marks moved (see TypingMarks).
  struct TypingMark {
    std::uint64_t aggregates;
    std::uint64_t cuts;
  };
  TypingMark typingMark() const noexcept;
  bool mayHoldAggregates(const TypingMark& since) const noexcept;

  void checkGrouping(const ast::QuerySpecification& query, const LevelScope& level, const TypingMark& since);
  void checkAggregates(const ast::Node& condition, const TypingMark& since);
  void checkAssignment(const std::shared_ptr<Type>& target, const std::shared_ptr<Type>& source,
                       const ast::Node& value, const std::wstring& table, const std::wstring& column, bool insert);

  std::shared_ptr<Type> typeIn(const LevelScope& level, const ast::Node& expression);
  /// Types a clause that adds no columns as one part, unless the observer spares it.
  void typeClause(const LevelScope& level, const ast::Node& clause);
  bool isAggregateCall(const ast::Node& node) const;
  bool isAggregateCall(const ast::Function* function) const;
  bool assignable(const std::shared_ptr<Type>& target, const std::shared_ptr<Type>& source,
                  const ast::Node* value) const;

  /// Runs one independent part: with a sink, a fault ends only that part.
  template <class Part>
  void part(Part&& run);
  /// A fault found about `node` (or none): gathered, or thrown without a sink.
  template <class Fault>
  void fault(const Fault& error, const ast::Node* node);

  const GlobalTypeContext& mGlobal;
  const TableInfoContext& mTables;
  FaultSink* mSink;
  AnalysisObserver* mObserver = nullptr;
  // Parts that a fault ended before they were typed whole.
  std::uint64_t mCuts = 0;
};

} // namespace velmor::sql::detail
