// The SQL writer: stack discipline, query assembly, leaves and data-change statements.
#include <velmor/sql/builder/SqlStringBuilder.h>

#include "builder/BuildHelpers.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/builder/Keywords.h>
#include <velmor/sql/types/Strings.h>

#include <iostream>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace velmor::sql {

using builder::appendName;
using builder::holds;
using builder::kSource;
using builder::parenthesize;
using builder::recordOf;

StringBuildContext::~StringBuildContext() = default;

SqlStringBuilder::SqlStringBuilder(const StringBuildContext* context) : mContext(context) {}

SqlStringBuilder::~SqlStringBuilder() = default;

std::wstring SqlStringBuilder::buildString(const ast::Node& node) {
  if (writesChainsWhole()) {
    std::wstring text;
    if (writeDirectly(node, text)) return text;
  }
  const auto stackDepth = mStack.size();
  doVisit(node);
  // A node of EmptyNode pushes nothing; its text is empty rather than a fragment not ours.
  if (mStack.size() == stackDepth) return {};
  std::wstring result = std::move(mStack.top());
  mStack.pop();
  VELMOR_SQL_ASSERT(mStack.size() == stackDepth, kSource);
  return result;
}

void SqlStringBuilder::faultAction() {
  NodeVisitor::faultAction();
  mStack.emplace();
}

// ---------------------------------------------------------------------------------------------
// Query assembly.

void SqlStringBuilder::visit(const ast::QuerySpecification& record) {
  if (nestsQueries(record) && writesChainsWhole()) {
    writeQueryChain(record);
    return;
  }
  visitQuery(record.distinct, record.selectList, record.into, record.from, record.where,
             record.groupBy, record.orderBy, record.having, record.limit);
}

void SqlStringBuilder::visitQuery(bool distinct, const std::vector<ast::Node>& selectList,
                                  const ast::TypeNode<ast::IntoClause>& into,
                                  const std::vector<ast::QueryExpressionNode>& from,
                                  const ast::ExpressionNode& where,
                                  const std::vector<ast::ExpressionNode>& groupBy,
                                  const std::vector<ast::SortSpecification>& orderBy,
                                  const ast::ExpressionNode& having,
                                  const ast::LimitSpecification& limit) {
  const std::wstring quantifier = distinct ? L" DISTINCT " : L" ";
  const std::wstring columns = selectColumns(selectList);

  std::wstring clauses = L"FROM ";
  for (std::size_t i = 0; i < from.size(); ++i) {
    doVisit(from[i]);
    std::wstring& table = mStack.top();
    if (needParantheses(from[i])) parenthesize(table);
    if (i != 0) clauses += L", ";
    clauses += table;
    mStack.pop();
  }
  onFrom(clauses);
  appendClauses(clauses, where, into, groupBy, having, orderBy);

  mStack.push(constructSelect(L"SELECT", quantifier, columns, clauses, limit));
}

std::wstring SqlStringBuilder::selectColumns(const std::vector<ast::Node>& selectList) {
  if (selectList.empty()) return L"*";
  std::wstring columns;
  for (std::size_t i = 0; i < selectList.size(); ++i) {
    doVisit(selectList[i]);
    if (i != 0) columns += L", ";
    columns += mStack.top();
    mStack.pop();
  }
  return columns;
}

void SqlStringBuilder::appendClauses(std::wstring& clauses, const ast::ExpressionNode& where,
                                     const ast::TypeNode<ast::IntoClause>& into,
                                     const std::vector<ast::ExpressionNode>& groupBy, const ast::ExpressionNode& having,
                                     const std::vector<ast::SortSpecification>& orderBy) {
  if (!where.isNull()) {
    doVisit(where);
    clauses += L" WHERE ";
    clauses += mStack.top();
    mStack.pop();
  }
  onWhere(clauses);

  if (!into.isNull()) {
    doVisit(into);
    clauses += L' ';
    clauses += mStack.top();
    mStack.pop();
  }
  onInto(clauses);

  for (std::size_t i = 0; i < groupBy.size(); ++i) {
    doVisit(groupBy[i]);
    clauses += i == 0 ? L" GROUP BY " : L", ";
    clauses += mStack.top();
    mStack.pop();
  }
  onGroupBy(clauses);

  if (!having.isNull()) {
    doVisit(having);
    clauses += L" HAVING ";
    clauses += mStack.top();
    mStack.pop();
  }
  // HAVING is settled before ORDER BY, which follows it in the text.
  onHaving(clauses);

  // A sort specification has no node of its own in the query record; dispatching on the
  // record directly reaches the same (possibly overridden) visit as a wrapping node would.
  for (std::size_t i = 0; i < orderBy.size(); ++i) {
    visit(orderBy[i]);
    clauses += i == 0 ? L" ORDER BY " : L", ";
    clauses += mStack.top();
    mStack.pop();
  }
  onOrderBy(clauses);
}

namespace {

// The query that `query` selects from when its whole FROM is one derived table over a query.
const ast::QuerySpecification* innerQuery(const ast::QuerySpecification& query) {
  if (query.from.size() != 1 || builder::kindOf(query.from[0]) != builder::Kind::DerivedTable) return nullptr;
  const auto& derived = recordOf<ast::DerivedTable>(query.from[0]);
  if (builder::kindOf(derived.query) != builder::Kind::QuerySpecification) return nullptr;
  return &recordOf<ast::QuerySpecification>(derived.query);
}

} // namespace

bool SqlStringBuilder::nestsQueries(const ast::QuerySpecification& query) {
  const ast::QuerySpecification* inner = innerQuery(query);
  return inner != nullptr && innerQuery(*inner) != nullptr;
}

void SqlStringBuilder::writeQueryChain(const ast::QuerySpecification& top) {
  std::vector<const ast::QuerySpecification*> links{&top};
  while (const ast::QuerySpecification* inner = innerQuery(*links.back())) links.push_back(inner);
  const std::size_t outer = links.size() - 1;

  // In the order of the nested visits: each link's select list on the way down, the innermost
  // query whole, then each link's other clauses on the way up.
  std::vector<std::wstring> columns(outer);
  for (std::size_t i = 0; i < outer; ++i) columns[i] = selectColumns(links[i]->selectList);
  doVisit(recordOf<ast::DerivedTable>(links[outer - 1]->from[0]).query);
  std::wstring innermost = std::move(mStack.top());
  mStack.pop();

  // Each link is written with nothing between the parentheses of its derived table and split
  // there: what comes before the inner text and what after. The library's own builders keep
  // the base hooks and constructSelect, which put the clauses right behind the columns.
  std::vector<std::wstring> heads(outer), tails(outer);
  for (std::size_t i = outer; i-- > 0;) {
    const ast::QuerySpecification& query = *links[i];
    std::wstring clauses = L"FROM (";
    const std::size_t gap = clauses.size();
    clauses += L") AS ";
    clauses += Keywords::instance().escape(recordOf<ast::DerivedTable>(query.from[0]).alias);
    onFrom(clauses);
    appendClauses(clauses, query.where, query.into, query.groupBy, query.having, query.orderBy);
    const std::wstring quantifier = query.distinct ? L" DISTINCT " : L" ";
    std::wstring text = constructSelect(L"SELECT", quantifier, columns[i], clauses, query.limit);
    const std::size_t at = std::wstring_view(L"SELECT").size() + quantifier.size() + columns[i].size() + 1 + gap;
    heads[i] = text.substr(0, at);
    tails[i] = text.substr(at);
  }
  std::wstring text;
  for (const std::wstring& head : heads) text += head;
  text += innermost;
  for (std::size_t i = outer; i-- > 0;) text += tails[i];
  mStack.push(std::move(text));
}

std::wstring& SqlStringBuilder::onFrom(std::wstring& clauses) { return clauses; }
std::wstring& SqlStringBuilder::onWhere(std::wstring& clauses) { return clauses; }
std::wstring& SqlStringBuilder::onInto(std::wstring& clauses) { return clauses; }
std::wstring& SqlStringBuilder::onGroupBy(std::wstring& clauses) { return clauses; }
std::wstring& SqlStringBuilder::onOrderBy(std::wstring& clauses) { return clauses; }
std::wstring& SqlStringBuilder::onHaving(std::wstring& clauses) { return clauses; }

std::wstring SqlStringBuilder::constructSelect(const std::wstring& select,
                                               const std::wstring& quantifier,
                                               const std::wstring& columns,
                                               const std::wstring& clauses,
                                               const ast::LimitSpecification& limit) {
  std::wstring text;
  text.reserve(select.size() + quantifier.size() + columns.size() + clauses.size() + 48);
  text += select;
  text += quantifier;
  text += columns;
  text += L' ';
  text += clauses;
  // Values, not literal texts: LIMIT -5 is LIMIT 5, and a 0 drops the clause.
  if (const auto count = limit.limit.unsignedInteger(); count != 0) {
    text += L" LIMIT ";
    builder::appendUnsigned(text, count);
  }
  if (const auto offset = limit.offset.unsignedInteger(); offset != 0) {
    text += L" OFFSET ";
    builder::appendUnsigned(text, offset);
  }
  return text;
}

std::wstring SqlStringBuilder::columnsToString(const std::vector<std::wstring>& columns) {
  // Column lists are written as they stand, without bracketing reserved words.
  std::wstring text = L"(";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i != 0) text += L", ";
    text += columns[i];
  }
  text += L')';
  return text;
}

std::wstring SqlStringBuilder::valueToString(ast::Value value) {
  switch (value) {
  case ast::Value::Null: return L"NULL";
  case ast::Value::Array: return L"ARRAY()";
  case ast::Value::Multiset: return L"MULTISET()";
  case ast::Value::Default: return L"DEFAULT";
  }
  std::cerr << "Unhandled value: " << static_cast<std::int32_t>(value) << '\n';
  VELMOR_SQL_ASSERT(false, kSource);
  return {};
}

std::wstring SqlStringBuilder::ternaryToString(TernaryLogic::Value value) {
  // Any number that is neither true nor false reads as unknown.
  if (value == TernaryLogic::True) return L"TRUE";
  if (value == TernaryLogic::False) return L"FALSE";
  return L"UNKNOWN";
}

bool SqlStringBuilder::needParantheses(const ast::Node& node) {
  return holds<ast::QuerySpecification>(node);
}

bool SqlStringBuilder::needParantheses(const ast::QueryExpressionNode& node) {
  const builder::Kind kind = builder::kindOf(node);
  return kind == builder::Kind::QueryOperation || kind == builder::Kind::QuerySpecification ||
         kind == builder::Kind::ExplicitTable;
}

// ---------------------------------------------------------------------------------------------
// Leaves.

void SqlStringBuilder::visit(const ast::ColumnReference& record) {
  std::wstring text;
  text.reserve(record.table.size() + record.column.size() + 5);
  if (!record.table.empty()) {
    appendName(text, record.table);
    text += L'.';
  }
  appendName(text, record.column);
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::QualifiedAsterisk& record) {
  std::wstring text;
  if (!record.table.empty()) {
    appendName(text, record.table);
    text += L'.';
  }
  text += L'*';
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::Number& record) { mStack.push(record.text); }

void SqlStringBuilder::visit(const ast::String& record) {
  std::wstring text = record.value.toString();
  escape(text, L'"');
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::TablePrimary& record) {
  std::wstring text;
  text.reserve(record.table.size() + record.alias.size() + 8);
  appendName(text, record.table);
  if (!record.alias.empty()) {
    text += L" AS ";
    appendName(text, record.alias);
  }
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::IntoClause& record) {
  std::wstring text = L"INTO ";
  text += Keywords::instance().escape(record.table);
  if (record.noSelect) text += L" NOSELECT";
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::DerivedColumn& record) {
  doVisit(record.expression);
  std::wstring& text = mStack.top();
  if (needParantheses(record.expression)) parenthesize(text);
  if (!record.alias.empty()) {
    text += L" AS ";
    appendName(text, record.alias);
  }
}

void SqlStringBuilder::visit(const ast::SortSpecification& record) {
  doVisit(record.key);
  std::wstring& text = mStack.top();
  if (!record.ascending) text += L" DESC";
  switch (record.nulls) {
  case ast::NullOrdering::Unspecified: break;
  case ast::NullOrdering::First: text += L" NULLS FIRST"; break;
  case ast::NullOrdering::Last: text += L" NULLS LAST"; break;
  }
}

void SqlStringBuilder::visit(const ast::TernaryLogicNode& record) {
  mStack.push(ternaryToString(record.value.value()));
}

void SqlStringBuilder::visit(const ast::ContextuallyTypedValueSpecification& record) {
  mStack.push(valueToString(record.value));
}

// ---------------------------------------------------------------------------------------------
// Data-change statements. The target table is bracketed when reserved; a SET column is not.

void SqlStringBuilder::visit(const ast::DeleteStatement& record) {
  std::wstring text = L"DELETE FROM ";
  text += Keywords::instance().escape(record.table);
  if (!record.where.isNull()) {
    doVisit(record.where);
    text += L" WHERE ";
    text += mStack.top();
    mStack.pop();
  }
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::InsertStatement& record) {
  visit(record.source);
  std::wstring& source = mStack.top();
  std::wstring text = L"INSERT INTO ";
  text.reserve(text.size() + record.table.size() + source.size() + 3);
  text += Keywords::instance().escape(record.table);
  text += L' ';
  text += source;
  source = std::move(text);
}

void SqlStringBuilder::visit(const ast::SetClause& clause) {
  VELMOR_SQL_ASSERT(!clause.column.empty(), kSource);
  doVisit(clause.value);
  std::wstring& value = mStack.top();
  if (needParantheses(clause.value)) parenthesize(value);
  std::wstring text;
  text.reserve(clause.column.size() + value.size() + 3);
  text += clause.column;
  text += L" = ";
  text += value;
  value = std::move(text);
}

void SqlStringBuilder::visit(const ast::UpdateStatement& record) {
  if (record.clauses.empty()) throw std::out_of_range("an UPDATE without assignments cannot be written");
  visit(record.clauses[0]);
  std::wstring assignments = std::move(mStack.top());
  mStack.pop();
  for (std::size_t i = 1; i < record.clauses.size(); ++i) {
    visit(record.clauses[i]);
    assignments += L", ";
    assignments += mStack.top();
    mStack.pop();
  }
  std::wstring text = L"UPDATE ";
  text += Keywords::instance().escape(record.table);
  text += L" SET ";
  text += assignments;
  if (!record.where.isNull()) {
    doVisit(record.where);
    text += L" WHERE ";
    text += mStack.top();
    mStack.pop();
  }
  mStack.push(std::move(text));
}

} // namespace velmor::sql
