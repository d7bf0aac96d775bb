// Standard scoping: query levels, their scopes, and the checks of every clause.
#include "inference/StandardAnalysis.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/errors/SemanticErrors.h>
#include <velmor/sql/types/Strings.h>

#include "ast/RecordOf.h"
#include "common/Decimal.h"
#include "common/DeepStack.h"
#include "common/SmallStack.h"
#include "inference/Resolutions.h"
#include "inference/ResultColumns.h"
#include "scope/AsteriskTest.h"
#include "types/ColumnOrder.h"
#include "types/Folding.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace velmor::sql::detail {

using type::PlainType;

namespace {

// What a level walk needs to know of a node, from one visit of it.
class Shape final : public ast::NodeVisitor {
public:
  using ast::NodeVisitor::visit;
  void visit(const ast::Operation& record) override { operation = &record; }
  void visit(const ast::Function& record) override { function = &record; }
  void visit(const ast::ColumnReference& record) override { reference = &record; }
  void visit(const ast::QuerySpecification&) override { query = true; }
  void visit(const ast::QueryOperation&) override { query = true; }
  void visit(const ast::Number&) override { leaf = true; }
  void visit(const ast::String&) override { leaf = true; }
  void faultAction() override {}

  const ast::Operation* operation = nullptr;
  const ast::Function* function = nullptr;
  const ast::ColumnReference* reference = nullptr;
  bool query = false;
  bool leaf = false;
};

// Walks the expressions of one query level, parent before children and in the order of the
// text, without entering the queries nested in it. `visit(node, shape)` answers whether to go
// below a node.
template <class Visit>
void walkLevel(const ast::Node& root, Visit&& visit) {
  // Pointers into the tree, which outlives the walk; the children of the rarer kinds are
  // listed once and kept beside it: a moved list keeps its room, so their places stay put.
  SmallStack<const ast::Node*, 32> stack;
  stack.push(&root);
  std::vector<std::vector<ast::Node>> listed;
  auto pushAll = [&stack](const auto& nodes) {
    for (auto child = nodes.rbegin(); child != nodes.rend(); ++child) stack.push(&*child);
  };
  while (!stack.empty()) {
    const ast::Node& node = *stack.pop();
    if (node.isNull()) continue;
    Shape shape;
    node.mImpl->accept(shape);
    if (shape.query || !visit(node, shape)) continue;
    // Operations and calls, the bulk of any clause, hand out their operands in place.
    if (shape.operation) {
      pushAll(shape.operation->operands);
    } else if (shape.function) {
      pushAll(shape.function->arguments);
    } else if (!shape.reference && !shape.leaf) {
      listed.push_back(ast::children(node));
      pushAll(listed.back());
    }
  }
}

// A scope that knows only what a TypeInferer may ask: a host's own ScopeTypeContext, taken as the
// outer scope of a query that stands in an expression.
class ForeignScope final : public ColumnInfoScope {
public:
  explicit ForeignScope(const ScopeTypeContext& scope) : m_scope(scope) {}
  ColumnInfo columnInfo(const std::wstring& table, const std::wstring& column) const override {
    std::shared_ptr<Type> type = m_scope.columnType(table, column);
    return type ? ColumnInfo::calculatedColumn(column, std::move(type)) : ColumnInfo();
  }

protected:
  AsteriskColumns columnsForAsterisk_impl(const std::wstring& table) const override {
    return m_scope.columnsForAsterisk(table);
  }
  AsteriskColumns columnsForAsterisk_impl() const override { return m_scope.columnsForAsterisk({}); }

private:
  const ScopeTypeContext& m_scope;
};

// The two sides of a join whose USING or NATURAL columns count once: unqualified, such a column
// is the left side's; `*` gives those columns first, then the rest of each side.
class CoalescedScope final : public ColumnInfoScope {
public:
  CoalescedScope(std::shared_ptr<ColumnInfoScope> left, std::shared_ptr<ColumnInfoScope> right,
                 std::vector<std::wstring> shared)
      : m_join(std::make_shared<JoinScope>(std::vector<std::shared_ptr<ColumnInfoScope>>{left, right})),
        m_left(std::move(left)), m_shared(std::move(shared)) {}

  ColumnInfo columnInfo(const std::wstring& table, const std::wstring& column) const override {
    if (table.empty() && isShared(column)) return m_left->columnInfo(table, column);
    return m_join->columnInfo(table, column);
  }
  std::vector<ColumnInfo> columnsInfo(const std::wstring& table, const std::wstring& column) const override {
    return m_join->columnsInfo(table, column);
  }

protected:
  AsteriskColumns columnsForAsterisk_impl(const std::wstring& table) const override {
    return m_join->columnsForAsterisk(table);
  }
  AsteriskColumns columnsForAsterisk_impl() const override {
    const AsteriskColumns all = m_join->columnsForAsterisk({});
    const AsteriskColumns left = m_left->columnsForAsterisk({});
    AsteriskColumns first;
    AsteriskColumns rest;
    for (const auto& pair : left) (isShared(pair.second) ? first : rest).push_back(pair);
    for (std::size_t i = left.size(); i < all.size(); ++i) {
      if (!isShared(all[i].second)) rest.push_back(all[i]);
    }
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
  }

private:
  bool isShared(const std::wstring& column) const {
    return std::any_of(m_shared.begin(), m_shared.end(),
                       [&column](const std::wstring& shared) { return detail::sameFoldedName(column, shared); });
  }

  std::shared_ptr<JoinScope> m_join;
  std::shared_ptr<ColumnInfoScope> m_left;
  std::vector<std::wstring> m_shared; // normalized
};

// Whether two expressions of one level are the same: the same record with the same values,
// column references by the column they resolve to. Iterative, as trees may be deep.
class SameExpression {
public:
  explicit SameExpression(const LevelScope& level) : m_level(level) {}

  bool operator()(const ast::Node& a, const ast::Node& b) const {
    std::vector<std::pair<ast::Node, ast::Node>> work{{a, b}};
    while (!work.empty()) {
      auto [x, y] = std::move(work.back());
      work.pop_back();
      if (x.isNull() || y.isNull()) {
        if (x.isNull() != y.isNull()) return false;
        continue;
      }
      if (!sameRecord(x, y)) return false;
      const std::vector<ast::Node> xs = ast::children(x);
      const std::vector<ast::Node> ys = ast::children(y);
      if (xs.size() != ys.size()) return false;
      for (std::size_t i = 0; i < xs.size(); ++i) work.emplace_back(xs[i], ys[i]);
    }
    return true;
  }

private:
  bool sameRecord(const ast::Node& x, const ast::Node& y) const {
    if (ast::detail::holds<ast::ColumnReference>(x)) {
      if (!ast::detail::holds<ast::ColumnReference>(y)) return false;
      const auto& a = ast::detail::recordIn<ast::ColumnReference>(x);
      const auto& b = ast::detail::recordIn<ast::ColumnReference>(y);
      if (sameNames(a.table, b.table) && sameNames(a.column, b.column)) return true;
      const ColumnInfo ca = resolve(a);
      const ColumnInfo cb = resolve(b);
      return !ca.isNull() && !cb.isNull() && sameColumn(ca, cb);
    }
    if (ast::detail::holds<ast::Number>(x)) {
      return ast::detail::holds<ast::Number>(y) && ast::detail::recordIn<ast::Number>(x).text == ast::detail::recordIn<ast::Number>(y).text;
    }
    if (ast::detail::holds<ast::String>(x)) {
      return ast::detail::holds<ast::String>(y) &&
             ast::detail::recordIn<ast::String>(x).value.toString() == ast::detail::recordIn<ast::String>(y).value.toString();
    }
    if (ast::detail::holds<ast::Function>(x)) {
      if (!ast::detail::holds<ast::Function>(y)) return false;
      const auto& a = ast::detail::recordIn<ast::Function>(x);
      const auto& b = ast::detail::recordIn<ast::Function>(y);
      return sameNames(a.name, b.name) && a.asterisk == b.asterisk && a.setQuantifier == b.setQuantifier;
    }
    if (ast::detail::holds<ast::Operation>(x)) {
      if (!ast::detail::holds<ast::Operation>(y)) return false;
      const auto& a = ast::detail::recordIn<ast::Operation>(x);
      const auto& b = ast::detail::recordIn<ast::Operation>(y);
      return a.operation == b.operation && a.quantifier == b.quantifier;
    }
    if (ast::detail::holds<ast::TernaryLogicNode>(x)) {
      return ast::detail::holds<ast::TernaryLogicNode>(y) &&
             ast::detail::recordIn<ast::TernaryLogicNode>(x).value == ast::detail::recordIn<ast::TernaryLogicNode>(y).value;
    }
    // Anything else (rows, lists, queries) is never taken for a grouped expression.
    return false;
  }

  ColumnInfo resolve(const ast::ColumnReference& reference) const {
    if (!m_level.m_local) return {};
    try {
      return m_level.m_local->columnInfo(reference.table, reference.column);
    } catch (const SqlError&) {
      return {};
    }
  }

  const LevelScope& m_level;
};

enum class Family { Other, Binary, Character, Boolean, Numeric, Datetime };

Family familyOf(PlainType type) {
  switch (type) {
  case PlainType::Binary:
  case PlainType::VarBinary:
  case PlainType::BinaryLargeObject:
    return Family::Binary;
  case PlainType::Char:
  case PlainType::VarChar:
  case PlainType::CharLargeObject:
    return Family::Character;
  case PlainType::Boolean:
    return Family::Boolean;
  case PlainType::SmallInt:
  case PlainType::Integer:
  case PlainType::BigInt:
  case PlainType::Decimal:
  case PlainType::Numeric:
  case PlainType::Float:
  case PlainType::Real:
  case PlainType::Double:
    return Family::Numeric;
  case PlainType::Time:
  case PlainType::Date:
  case PlainType::Timestamp:
    return Family::Datetime;
  case PlainType::Contextual:
  case PlainType::Fault:
  case PlainType::Tuple:
  case PlainType::Array:
    return Family::Other;
  }
  return Family::Other;
}

bool isNullLiteral(const ast::Node& node) {
  return ast::detail::holds<ast::TernaryLogicNode>(node) &&
         ast::detail::recordIn<ast::TernaryLogicNode>(node).value.value() == TernaryLogic::Unknown;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Level scopes.

namespace {

// Up to this many columns are searched one by one: a table's index costs more to build than the
// few searches of a short list save.
constexpr std::size_t kShortList = 32;

// The position of the first column that answers to `name`, as GenericTableInfo's index finds it
// (the first column to claim a normalized name keeps it), or npos.
std::size_t firstNamed(const std::vector<ColumnInfo>& columns, const std::wstring& name) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (const std::wstring& candidate : columns[i].names()) {
      if (sameNames(candidate, name)) return i;
    }
  }
  return TableInfo::npos;
}

// A short list of a query's columns as a table, searched without an index.
class ListedTable final : public TableInfo {
public:
  explicit ListedTable(std::vector<ColumnInfo> columns) : m_columns(std::move(columns)) {}
  std::size_t columnCount() const override { return m_columns.size(); }
  ColumnInfo columnByIndex(std::size_t index) const override {
    return index < m_columns.size() ? m_columns[index] : ColumnInfo();
  }
  std::size_t indexByName(const std::wstring& name) const override { return firstNamed(m_columns, name); }

private:
  std::vector<ColumnInfo> m_columns;
};

// The columns of a derived table or a bare query in a FROM, as a table.
std::shared_ptr<TableInfo> tableOf(std::vector<ColumnInfo> columns) {
  if (columns.size() > kShortList) return std::make_shared<GenericTableInfo>(std::move(columns));
  return std::make_shared<ListedTable>(std::move(columns));
}

} // namespace

OutputColumns::OutputColumns(const OutputColumns& other) { *this = other; }

OutputColumns& OutputColumns::operator=(const OutputColumns& other) {
  if (this == &other) return *this;
  m_index.reset();
  if (!other.m_columns) {
    m_own.clear();
    m_columns = nullptr;
    return *this;
  }
  m_own = *other.m_columns;
  m_columns = &m_own;
  // A copy may be read from any thread: its index is made now, not on a first search.
  if (m_own.size() > kShortList) m_index = std::make_shared<GenericTableInfo>(m_own);
  return *this;
}

ColumnInfo OutputColumns::find(const std::wstring& name) const {
  if (!m_columns) return {};
  if (m_columns->size() > kShortList) {
    if (!m_index) m_index = std::make_shared<GenericTableInfo>(*m_columns);
    return m_index->columnByName(name);
  }
  const std::size_t index = firstNamed(*m_columns, name);
  return index == TableInfo::npos ? ColumnInfo() : (*m_columns)[index];
}

bool LevelScope::knowsQualifier(const std::wstring& name) const {
  return (m_local && hasAsteriskColumns(*m_local, name)) || failedName(name);
}

bool LevelScope::failedName(const std::wstring& name) const {
  return std::any_of(m_failed.begin(), m_failed.end(),
                     [&name](const std::wstring& failed) { return sameFoldedName(name, failed); });
}

ColumnInfo LevelScope::columnInfo(const std::wstring& table, const std::wstring& column) const {
  const bool plain = table.empty();
  if (plain && m_outputUse == Output::First) {
    ColumnInfo found = m_output.find(column);
    if (!found.isNull()) return found;
  }
  // The nearest level that has the name wins; a qualifier is resolved where it stands first.
  for (const LevelScope* level = this; level != nullptr; level = level->m_parent) {
    if (level->m_local) {
      ColumnInfo found = level->m_local->columnInfo(table, column);
      if (!found.isNull()) return found;
    }
    if (!plain && level->knowsQualifier(table)) {
      if (level->failedName(table)) throw FaultReported();
      return {};
    }
  }
  if (plain && m_outputUse == Output::Last) {
    ColumnInfo found = m_output.find(column);
    if (!found.isNull()) return found;
  }
  if (!plain) throw UnknownTableReference(table);
  // A column of a table that could not be read is no fault of its own.
  for (const LevelScope* level = this; level != nullptr; level = level->m_parent) {
    if (level->m_incomplete) throw FaultReported();
  }
  return {};
}

std::vector<ColumnInfo> LevelScope::columnsInfo(const std::wstring& table, const std::wstring& column) const {
  ColumnInfo found = columnInfo(table, column);
  if (found.isNull()) return {};
  return {std::move(found)};
}

AsteriskColumns LevelScope::columnsForAsterisk_impl(const std::wstring& table) const {
  for (const LevelScope* level = this; level != nullptr; level = level->m_parent) {
    if (!level->m_local) continue;
    AsteriskColumns columns = level->m_local->columnsForAsterisk(table);
    if (!columns.empty()) return columns;
  }
  return {};
}

AsteriskColumns LevelScope::columnsForAsterisk_impl() const {
  // `*` never reaches out of its own query.
  return m_local ? m_local->columnsForAsterisk({}) : AsteriskColumns{};
}

// ---------------------------------------------------------------------------------------------
// The analysis.

StandardAnalysis::StandardAnalysis(const GlobalTypeContext& global, const TableInfoContext& tables, FaultSink* sink)
    : mGlobal(global), mTables(tables), mSink(sink) {}

template <class Part>
void StandardAnalysis::part(Part&& run) {
  if (!mSink) {
    run();
    return;
  }
  try {
    run();
  } catch (const FaultReported&) {
    // Its fault is in the list already.
    ++mCuts;
  } catch (const SqlError& error) {
    ++mCuts;
    mSink->caught(error);
  }
}

StandardAnalysis::TypingMark StandardAnalysis::typingMark() const noexcept {
  return {typingMarks().aggregates, mCuts};
}

bool StandardAnalysis::mayHoldAggregates(const TypingMark& since) const noexcept {
  return typingMarks().aggregates != since.aggregates || mCuts != since.cuts;
}

template <class Fault>
void StandardAnalysis::fault(const Fault& error, const ast::Node* node) {
  if (!mSink) throw error;
  mSink->found(error, node);
}

void StandardAnalysis::reportFault(const SqlError& error) {
  if (mSink) mSink->caught(error);
}

void StandardAnalysis::reportFaultAt(const SqlError& error, const ast::Node& node) {
  if (mSink) mSink->found(error, &node);
}

std::shared_ptr<Type> StandardAnalysis::typeIn(const LevelScope& level, const ast::Node& expression) {
  if (mObserver) mObserver->typing(expression, level);
  TypeInferer inferer(mGlobal, level);
  inferer.setQueryAnalysis(this);
  return inferer.inferNodeType(expression);
}

void StandardAnalysis::typeClause(const LevelScope& level, const ast::Node& clause) {
  if (mObserver && !mObserver->wants(clause)) return;
  part([&] { typeIn(level, clause); });
}

bool StandardAnalysis::isAggregateCall(const ast::Node& node) const {
  return isAggregateCall(ast::detail::recordOf<ast::Function>(node));
}

bool StandardAnalysis::isAggregateCall(const ast::Function* function) const {
  if (!function) return false;
  const auto info = mGlobal.function(function->name);
  return info && info->kind() == FunctionKind::Aggregate;
}

std::optional<std::vector<std::shared_ptr<Type>>> StandardAnalysis::queryColumns(const ast::Node& query,
                                                                                 const ScopeTypeContext& around) {
  Columns columns;
  if (const auto* level = dynamic_cast<const LevelScope*>(&around)) {
    columns = checkQuery(query, level);
  } else {
    // A host's own scope around the query: it becomes the query's one outer level.
    LevelScope outer(nullptr);
    if (const auto* scope = dynamic_cast<const ColumnInfoScope*>(&around)) {
      outer.m_local = std::shared_ptr<ColumnInfoScope>(std::shared_ptr<void>(), const_cast<ColumnInfoScope*>(scope));
    } else {
      outer.m_local = std::make_shared<ForeignScope>(around);
    }
    columns = checkQuery(query, &outer);
  }
  if (!columns.complete) return std::nullopt;
  std::vector<std::shared_ptr<Type>> types;
  types.reserve(columns.columns.size());
  for (const ColumnInfo& column : columns.columns) types.push_back(column.type());
  return types;
}

void StandardAnalysis::checkStatement(const ast::Node& statement, const std::shared_ptr<ColumnInfoScope>& external) {
  const ResolutionScope resolutions(mGlobal);
  LevelScope outside(nullptr);
  outside.m_local = external;
  const LevelScope* outer = external ? &outside : nullptr;
  if (ast::detail::holds<ast::UpdateStatement>(statement)) {
    checkUpdate(ast::detail::recordIn<ast::UpdateStatement>(statement), statement, outer);
  } else if (ast::detail::holds<ast::InsertStatement>(statement)) {
    checkInsert(ast::detail::recordIn<ast::InsertStatement>(statement), statement, outer);
  } else if (ast::detail::holds<ast::DeleteStatement>(statement)) {
    checkDelete(ast::detail::recordIn<ast::DeleteStatement>(statement), statement, outer);
  } else {
    checkQuery(statement, outer);
  }
}

StandardAnalysis::Columns StandardAnalysis::checkQuery(const ast::Node& query, const LevelScope* outer) {
  // Queries nest in FROM lists without a walk through Node::accept, so each level watches the
  // stack itself.
  return withStackResult<Columns>([&] { return checkQueryHere(query, outer); });
}

StandardAnalysis::Columns StandardAnalysis::checkQueryHere(const ast::Node& query, const LevelScope* outer) {
  if (ast::detail::holds<ast::QuerySpecification>(query)) {
    return checkSpecification(ast::detail::recordIn<ast::QuerySpecification>(query), outer);
  }
  if (ast::detail::holds<ast::QueryOperation>(query)) {
    return checkOperation(ast::detail::recordIn<ast::QueryOperation>(query), query, outer);
  }
  if (ast::detail::holds<ast::RowValueExpressionList>(query)) {
    return checkValues(ast::detail::recordIn<ast::RowValueExpressionList>(query), outer);
  }
  if (ast::detail::holds<ast::ExplicitTable>(query)) {
    return checkExplicitTable(ast::detail::recordIn<ast::ExplicitTable>(query), query);
  }
  if (ast::detail::holds<ast::DerivedTable>(query)) {
    return checkQuery(ast::detail::recordIn<ast::DerivedTable>(query).query, outer);
  }
  return {};
}

// ---------------------------------------------------------------------------------------------
// FROM.

std::shared_ptr<ColumnInfoScope> StandardAnalysis::fromReference(const ast::Node& reference, LevelScope& level) {
  if (ast::detail::holds<ast::TablePrimary>(reference)) {
    const auto& primary = ast::detail::recordIn<ast::TablePrimary>(reference);
    const std::wstring& name = primary.alias.empty() ? primary.table : primary.alias;
    level.m_names.push_back({normalized(name), name, reference, nullptr});
    std::shared_ptr<TableInfo> info = mTables.table(primary.table);
    if (!info) {
      fault(NonExistentTable(primary.table), &reference);
      level.m_incomplete = true;
      level.m_failed.push_back(normalized(name));
      if (mObserver) mObserver->declared(reference, level);
      return nullptr;
    }
    auto scope = std::make_shared<TableInfoScope>(ast::TablePrimary{name, {}}, std::move(info));
    level.m_names.back().scope = scope;
    if (mObserver) mObserver->declared(reference, level);
    return scope;
  }
  if (ast::detail::holds<ast::DerivedTable>(reference)) {
    const auto& derived = ast::detail::recordIn<ast::DerivedTable>(reference);
    // A derived table sees the levels around its query, not the tables beside it.
    Columns columns = checkQuery(derived.query, level.m_parent);
    if (!columns.complete) {
      level.m_incomplete = true;
      level.m_failed.push_back(normalized(derived.alias));
    }
    auto scope = std::make_shared<TableInfoScope>(ast::TablePrimary{derived.alias, {}}, tableOf(std::move(columns.columns)));
    level.m_names.push_back({normalized(derived.alias), derived.alias, reference, scope});
    if (mObserver) mObserver->declared(reference, level);
    return scope;
  }
  if (ast::detail::holds<ast::JoinNode>(reference)) {
    const auto& join = ast::detail::recordIn<ast::JoinNode>(reference);
    const std::size_t firstName = level.m_names.size();
    std::shared_ptr<ColumnInfoScope> left = fromReference(join.left, level);
    std::shared_ptr<ColumnInfoScope> right = fromReference(join.right, level);
    if (!left || !right) {
      // An unknown side: its columns are unknown, and so is what the condition means.
      return left ? left : right;
    }
    std::vector<std::wstring> shared;
    if (ast::detail::holds<ast::NamedColumnsJoin>(join.specification)) {
      for (const std::wstring& column : ast::detail::recordIn<ast::NamedColumnsJoin>(join.specification).columns) {
        part([&] {
          if (left->columnInfo({}, column).isNull() || right->columnInfo({}, column).isNull()) {
            fault(UnknownColumnReference({}, column), &join.specification);
          }
        });
        shared.push_back(normalized(column));
      }
    } else if (join.specification.isNull() && join.type != ast::Join::Cross) {
      // NATURAL: the columns of one name on both sides.
      for (const AsteriskColumn& pair : left->columnsForAsterisk({})) {
        if (!right->columnInfo({}, pair.second).isNull()) shared.push_back(normalized(pair.second));
      }
    }
    std::shared_ptr<ColumnInfoScope> scope;
    if (shared.empty()) {
      scope = std::make_shared<JoinScope>(std::vector<std::shared_ptr<ColumnInfoScope>>{left, right});
    } else {
      scope = std::make_shared<CoalescedScope>(left, right, std::move(shared));
    }
    if (ast::detail::holds<ast::JoinCondition>(join.specification)) {
      // ON sees the two sides of its join and the levels around the query.
      LevelScope on(level.m_parent);
      on.m_local = scope;
      on.m_incomplete = level.m_incomplete;
      on.m_failed = level.m_failed;
      if (mObserver) on.m_names.assign(level.m_names.begin() + static_cast<std::ptrdiff_t>(firstName), level.m_names.end());
      const ast::Node& condition = ast::detail::recordIn<ast::JoinCondition>(join.specification).condition;
      const TypingMark mark = typingMark();
      typeClause(on, condition);
      checkAggregates(condition, mark);
    }
    return scope;
  }
  // Anything else in a FROM (a bare query) is read as a derived table without a name.
  Columns columns = checkQuery(reference, level.m_parent);
  if (!columns.complete) level.m_incomplete = true;
  auto scope = std::make_shared<TableInfoScope>(ast::TablePrimary{}, tableOf(std::move(columns.columns)));
  level.m_names.push_back({{}, {}, reference, scope});
  return scope;
}

// ---------------------------------------------------------------------------------------------
// Queries.

namespace {
// The column a reference names, or the null column when finding it fails.
ColumnInfo columnQuietly(const LevelScope& level, const ast::ColumnReference& column) {
  try {
    return level.columnInfo(column.table, column.column);
  } catch (const SqlError&) {
    return {};
  } catch (const FaultReported&) {
    return {};
  }
}
} // namespace

void StandardAnalysis::selectItem(const ast::Node& item, LevelScope& level, std::int32_t& counter, Columns& result) {
  if (ast::detail::holds<ast::QualifiedAsterisk>(item)) {
    const std::wstring& table = ast::detail::recordIn<ast::QualifiedAsterisk>(item).table;
    part([&] {
      const AsteriskColumns pairs = level.columnsForAsterisk(table);
      if (pairs.empty() && !table.empty()) {
        bool failed = false;
        for (const LevelScope* at = &level; at != nullptr; at = at->m_parent) failed = failed || at->failedName(table);
        result.complete = false;
        if (!failed) fault(UnknownTableReference(table), &item);
        return;
      }
      if (table.empty() && level.m_incomplete) result.complete = false;
      for (const AsteriskColumn& pair : pairs) {
        ColumnInfo column = level.columnInfo(pair.first, pair.second);
        if (!column.isNull()) result.columns.push_back(std::move(column));
      }
    });
    return;
  }
  if (!ast::detail::holds<ast::DerivedColumn>(item)) return;
  const auto& derived = ast::detail::recordIn<ast::DerivedColumn>(item);
  const bool reference = ast::detail::holds<ast::ColumnReference>(derived.expression);
  std::wstring name = derived.alias;
  // The counter moves for every unnamed calculated item, typed or not, so names stay stable.
  if (name.empty() && !reference) {
    name = L"column_";
    appendDecimal(name, counter++);
  }
  bool typed = false;
  part([&] {
    if (reference) {
      const auto& column = ast::detail::recordIn<ast::ColumnReference>(derived.expression);
      // Typing a bare reference is finding its column, so a column found is kept as its type.
      // Anything else (no column, a fault, a watcher) is left to typing, which says where.
      ColumnInfo found = mObserver ? ColumnInfo() : columnQuietly(level, column);
      if (found.isNull()) {
        typeIn(level, derived.expression);
        found = level.columnInfo(column.table, column.column);
      }
      if (!derived.alias.empty()) found = found.rename(derived.alias);
      result.columns.push_back(std::move(found));
    } else {
      result.columns.push_back(ColumnInfo::calculatedColumn(name, typeIn(level, derived.expression)));
    }
    typed = true;
  });
  if (!typed) result.complete = false;
}

StandardAnalysis::Columns StandardAnalysis::checkSpecification(const ast::QuerySpecification& query,
                                                              const LevelScope* outer) {
  LevelScope level(outer);

  std::vector<std::shared_ptr<ColumnInfoScope>> scopes;
  for (const ast::QueryExpressionNode& reference : query.from) {
    if (auto scope = fromReference(reference, level)) scopes.push_back(std::move(scope));
  }
  const std::vector<LevelScope::Declared>& names = level.m_names;
  if (scopes.size() == 1) {
    level.m_local = std::move(scopes.front());
  } else if (!scopes.empty()) {
    level.m_local = std::make_shared<JoinScope>(std::move(scopes));
  }
  // One name stands for one table of a level; the same name at another level is no clash.
  for (std::size_t i = 1; i < names.size(); ++i) {
    if (names[i].key.empty()) continue;
    for (std::size_t j = 0; j < i; ++j) {
      if (names[j].key == names[i].key) {
        fault(AmbiguousTablesReference(names[i].written), &names[i].node);
        break;
      }
    }
  }

  const TypingMark beforeItems = typingMark();
  Columns result;
  result.columns.reserve(query.selectList.size());
  std::int32_t counter = 1;
  for (const ast::Node& item : query.selectList) selectItem(item, level, counter, result);
  result.columns = nameResultColumns(std::move(result.columns));
  level.m_output.borrow(&result.columns);

  // WHERE, GROUP BY and HAVING see the output columns behind everything else, ORDER BY before.
  level.m_outputUse = LevelScope::Output::Last;
  if (!query.where.isNull()) {
    const TypingMark mark = typingMark();
    typeClause(level, query.where);
    checkAggregates(query.where, mark);
  }
  for (const ast::ExpressionNode& key : query.groupBy) typeClause(level, key);
  if (!query.having.isNull()) typeClause(level, query.having);
  level.m_outputUse = LevelScope::Output::First;
  for (const ast::SortSpecification& sort : query.orderBy) typeClause(level, sort.key);
  level.m_outputUse = LevelScope::Output::None;

  checkGrouping(query, level, beforeItems);
  return result;
}

StandardAnalysis::Columns StandardAnalysis::checkOperation(const ast::QueryOperation& operation,
                                                          const ast::Node& node, const LevelScope* outer) {
  // The columns are the left side's. A watcher that spares what it does not ask about spares a
  // right side that holds none of its nodes, and a left side too when its nodes are all on the
  // right: no node asked about can then see the columns.
  if (mObserver && mObserver->wants(operation.right) && !mObserver->wants(operation.left)) {
    return checkQuery(operation.right, outer);
  }
  Columns left = checkQuery(operation.left, outer);
  if (mObserver && !mObserver->wants(operation.right)) return left;
  const Columns right = checkQuery(operation.right, outer);
  if (left.complete && right.complete && left.columns.size() != right.columns.size()) {
    fault(ColumnCountMismatch(left.columns.size(), right.columns.size()), &node);
  }
  left.complete = left.complete && right.complete;
  return left;
}

StandardAnalysis::Columns StandardAnalysis::checkValues(const ast::RowValueExpressionList& list,
                                                       const LevelScope* outer) {
  LevelScope level(outer);
  Columns result;
  std::optional<std::size_t> width;
  for (const ast::ExpressionNode& row : list.rows) {
    bool typed = false;
    std::vector<std::shared_ptr<Type>> fields;
    part([&] {
      std::shared_ptr<Type> type = typeIn(level, row);
      if (type && type->plainType() == PlainType::Tuple) {
        fields = static_cast<const TupleType&>(*type).types();
      } else {
        fields.push_back(std::move(type));
      }
      typed = true;
    });
    if (!typed) {
      result.complete = false;
      continue;
    }
    if (!width) {
      width = fields.size();
      for (std::size_t i = 0; i < fields.size(); ++i) {
        std::wstring name = L"column_";
        appendDecimal(name, static_cast<std::int64_t>(i + 1));
        result.columns.push_back(ColumnInfo::calculatedColumn(std::move(name), fields[i]));
      }
    } else if (*width != fields.size()) {
      fault(ColumnCountMismatch(*width, fields.size()), &row);
    }
  }
  return result;
}

StandardAnalysis::Columns StandardAnalysis::checkExplicitTable(const ast::ExplicitTable& table, const ast::Node& node) {
  Columns result;
  std::shared_ptr<TableInfo> info = mTables.table(table.table);
  if (!info) {
    fault(NonExistentTable(table.table), &node);
    result.complete = false;
    return result;
  }
  const std::size_t count = info->columnCount();
  for (std::size_t i = 0; i < count; ++i) result.columns.push_back(info->columnByIndex(i));
  return result;
}

// ---------------------------------------------------------------------------------------------
// Aggregates and grouping.

void StandardAnalysis::checkAggregates(const ast::Node& condition, const TypingMark& since) {
  if (mObserver) return; // faults only
  if (!mayHoldAggregates(since)) return;
  walkLevel(condition, [&](const ast::Node& node, const Shape& shape) {
    if (!isAggregateCall(shape.function)) return true;
    fault(AggregateInWhereClause(), &node);
    return false;
  });
}

void StandardAnalysis::checkGrouping(const ast::QuerySpecification& query, const LevelScope& level,
                                     const TypingMark& since) {
  if (mObserver) return; // faults only
  if (!level.m_local) return;
  // Without GROUP BY, only an aggregate call makes the level grouped.
  if (query.groupBy.empty() && !mayHoldAggregates(since)) return;
  // Places in the tree, which outlives the check.
  std::vector<const ast::Node*> checked;
  checked.reserve(query.selectList.size() + 1 + query.orderBy.size());
  for (const ast::Node& item : query.selectList) {
    if (ast::detail::holds<ast::DerivedColumn>(item)) checked.push_back(&ast::detail::recordIn<ast::DerivedColumn>(item).expression);
  }
  if (!query.having.isNull()) checked.push_back(&query.having);
  const std::size_t orderFrom = checked.size();
  for (const ast::SortSpecification& sort : query.orderBy) checked.push_back(&sort.key);

  bool grouped = !query.groupBy.empty();
  for (std::size_t i = 0; i < checked.size() && !grouped; ++i) {
    walkLevel(*checked[i], [&](const ast::Node&, const Shape& shape) {
      if (isAggregateCall(shape.function)) grouped = true;
      return !grouped;
    });
  }
  if (!grouped) return;

  // The keys: each GROUP BY expression, and the select item that an ordinal or an output name
  // in GROUP BY stands for.
  std::vector<ast::Node> keys(query.groupBy.begin(), query.groupBy.end());
  for (const ast::ExpressionNode& key : query.groupBy) {
    if (ast::detail::holds<ast::Number>(key)) {
      const auto& number = ast::detail::recordIn<ast::Number>(key);
      if (number.kind == ast::NumberKind::Integer) {
        const std::uint64_t position = number.unsignedInteger();
        if (position >= 1 && position <= query.selectList.size()) {
          const ast::Node& item = query.selectList[position - 1];
          if (ast::detail::holds<ast::DerivedColumn>(item)) keys.push_back(ast::detail::recordIn<ast::DerivedColumn>(item).expression);
        }
      }
    } else if (ast::detail::holds<ast::ColumnReference>(key)) {
      const auto& reference = ast::detail::recordIn<ast::ColumnReference>(key);
      if (!reference.table.empty()) continue;
      for (const ast::Node& item : query.selectList) {
        if (!ast::detail::holds<ast::DerivedColumn>(item)) continue;
        const auto& derived = ast::detail::recordIn<ast::DerivedColumn>(item);
        if (!derived.alias.empty() && sameNames(derived.alias, reference.column)) {
          keys.push_back(derived.expression);
        }
      }
    }
  }

  const SameExpression same(level);
  for (std::size_t i = 0; i < checked.size(); ++i) {
    const bool inOrderBy = i >= orderFrom;
    walkLevel(*checked[i], [&](const ast::Node& node, const Shape& shape) {
      if (isAggregateCall(shape.function)) return false;
      for (const ast::Node& key : keys) {
        if (same(node, key)) return false;
      }
      if (!shape.reference) return true;
      const auto& reference = *shape.reference;
      try {
        // An output name in ORDER BY is the output column; elsewhere the FROM's column wins.
        if (inOrderBy && reference.table.empty() && !level.m_output.find(reference.column).isNull()) {
          return false;
        }
        if (level.m_local->columnInfo(reference.table, reference.column).isNull()) return false;
      } catch (const SqlError&) {
        return false; // reported where it was typed
      }
      fault(UngroupedColumnReference(reference.table, reference.column), &node);
      return false;
    });
  }
}

// ---------------------------------------------------------------------------------------------
// Data-change statements.

bool StandardAnalysis::assignable(const std::shared_ptr<Type>& target, const std::shared_ptr<Type>& source,
                                  const ast::Node* value) const {
  if (!target || !source) return true;
  const PlainType to = target->plainType();
  const PlainType from = source->plainType();
  if (to == from || from == PlainType::Contextual || to == PlainType::Contextual) return true;
  // NULL reads as a Boolean, and a string literal as whatever its column takes.
  if (value && (isNullLiteral(*value) || ast::detail::holds<ast::String>(*value))) return true;
  if (mGlobal.canConvert(from, to)) return true;
  // Assignment converts within a family (a decimal literal into an integer column), and any
  // number, date or truth value into a character column.
  const Family a = familyOf(from);
  const Family b = familyOf(to);
  if (a == b && a != Family::Other) return true;
  return b == Family::Character && (a == Family::Numeric || a == Family::Datetime || a == Family::Boolean);
}

void StandardAnalysis::checkAssignment(const std::shared_ptr<Type>& target, const std::shared_ptr<Type>& source,
                                       const ast::Node& value, const std::wstring& table, const std::wstring& column,
                                       bool insert) {
  if (assignable(target, source, &value)) return;
  if (insert) {
    fault(InsertSourceTypeMismatch({target}, {source}, table, column), &value);
  } else {
    fault(SetClauseTypeMismatch({target}, {source}, column), &value);
  }
}

void StandardAnalysis::checkUpdate(const ast::UpdateStatement& update, const ast::Node& node,
                                   const LevelScope* outer) {
  std::shared_ptr<TableInfo> info = mTables.table(update.table);
  if (!info) {
    fault(UnknownTableReference(update.table), &node);
    return;
  }
  LevelScope level(outer);
  level.m_local = std::make_shared<TableInfoScope>(ast::TablePrimary{update.table, {}}, info);
  level.m_names.push_back({normalized(update.table), update.table, node, level.m_local});
  if (!update.where.isNull()) {
    const TypingMark mark = typingMark();
    typeClause(level, update.where);
    checkAggregates(update.where, mark);
  }
  for (const ast::SetClause& clause : update.clauses) {
    const ColumnInfo column = level.m_local->columnInfo({}, clause.column);
    if (column.isNull()) fault(UnknownColumnReference({}, clause.column), nullptr);
    part([&] {
      const std::shared_ptr<Type> type = typeIn(level, clause.value);
      if (!column.isNull()) checkAssignment(column.type(), type, clause.value, update.table, clause.column, false);
    });
  }
}

void StandardAnalysis::checkInsert(const ast::InsertStatement& insert, const ast::Node& node,
                                   const LevelScope* outer) {
  std::shared_ptr<TableInfo> info = mTables.table(insert.table);
  if (!info) {
    fault(UnknownTableReference(insert.table), &node);
    // The values are still checked by themselves.
  }
  // The target columns: those named, or all in table order; an unknown one is a null column.
  std::vector<ColumnInfo> targets;
  bool targetsKnown = static_cast<bool>(info);
  if (info && insert.source.columns.empty()) {
    const std::size_t count = info->columnCount();
    for (std::size_t i = 0; i < count; ++i) targets.push_back(info->columnByIndex(i));
  } else {
    for (const std::wstring& name : insert.source.columns) {
      ColumnInfo column = info ? info->columnByName(name) : ColumnInfo();
      if (info && column.isNull()) fault(UnknownColumnReference(insert.table, name), &node);
      targets.push_back(std::move(column));
    }
  }

  const ast::Node& source = insert.source.source;
  if (source.isNull()) return; // DEFAULT VALUES
  LevelScope level(outer);
  if (ast::detail::holds<ast::RowValueExpressionList>(source)) {
    for (const ast::ExpressionNode& row : ast::detail::recordIn<ast::RowValueExpressionList>(source).rows) {
      std::vector<ast::ExpressionNode> values;
      if (ast::detail::holds<ast::RowValueExpression>(row)) values = ast::detail::recordIn<ast::RowValueExpression>(row).values;
      else values.push_back(row);
      if (targetsKnown && values.size() != targets.size()) {
        fault(ColumnCountMismatch(targets.size(), values.size()), &row);
      }
      for (std::size_t i = 0; i < values.size(); ++i) {
        part([&] {
          const std::shared_ptr<Type> type = typeIn(level, values[i]);
          if (targetsKnown && i < targets.size() && !targets[i].isNull()) {
            checkAssignment(targets[i].type(), type, values[i], insert.table, targets[i].canonicalName(), true);
          }
        });
      }
    }
    return;
  }
  const Columns columns = checkQuery(source, outer);
  if (!columns.complete || !targetsKnown) return;
  if (columns.columns.size() != targets.size()) {
    fault(ColumnCountMismatch(targets.size(), columns.columns.size()), &source);
    return;
  }
  for (std::size_t i = 0; i < targets.size(); ++i) {
    if (targets[i].isNull()) continue;
    // A query's column is no literal: only its type speaks.
    if (!assignable(targets[i].type(), columns.columns[i].type(), nullptr)) {
      fault(InsertSourceTypeMismatch({targets[i].type()}, {columns.columns[i].type()}, insert.table,
                                     targets[i].canonicalName()),
            &source);
    }
  }
}

void StandardAnalysis::checkDelete(const ast::DeleteStatement& statement, const ast::Node& node,
                                   const LevelScope* outer) {
  std::shared_ptr<TableInfo> info = mTables.table(statement.table);
  if (!info) {
    fault(UnknownTableReference(statement.table), &node);
    return;
  }
  LevelScope level(outer);
  level.m_local = std::make_shared<TableInfoScope>(ast::TablePrimary{statement.table, {}}, std::move(info));
  level.m_names.push_back({normalized(statement.table), statement.table, node, level.m_local});
  if (!statement.where.isNull()) {
    const TypingMark mark = typingMark();
    typeClause(level, statement.where);
    checkAggregates(statement.where, mark);
  }
}

} // namespace velmor::sql::detail
