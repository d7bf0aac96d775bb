// The SQL writer's table references: derived tables, joins, set operations, INSERT sources.
#include <velmor/sql/builder/SqlStringBuilder.h>

#include "builder/BuildHelpers.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/builder/Keywords.h>

#include <iostream>

namespace velmor::sql {

using builder::holds;
using builder::kSource;
using builder::parenthesize;
using builder::recordOf;

namespace {

// Only a UNION or EXCEPT directly under an INTERSECT needs parentheses.
int rank(ast::QueryOperationCode code) {
  switch (code) {
  case ast::QueryOperationCode::Union:
  case ast::QueryOperationCode::Except: return 1;
  case ast::QueryOperationCode::Intersect: return 0;
  }
  return 0;
}

} // namespace

std::wstring SqlStringBuilder::queryOperationToString(ast::QueryOperationCode operation) {
  switch (operation) {
  case ast::QueryOperationCode::Union: return L"UNION";
  case ast::QueryOperationCode::Except: return L"EXCEPT";
  case ast::QueryOperationCode::Intersect: return L"INTERSECT";
  }
  std::cerr << "Unhandled query operation: " << static_cast<std::int32_t>(operation) << '\n';
  VELMOR_SQL_ASSERT(false, kSource);
  return {};
}

std::wstring SqlStringBuilder::joinTypeToString(ast::Join type) {
  switch (type) {
  case ast::Join::Cross: return L"CROSS";
  case ast::Join::Inner: return L"INNER";
  case ast::Join::LeftOuter: return L"LEFT OUTER";
  case ast::Join::RightOuter: return L"RIGHT OUTER";
  case ast::Join::FullOuter: return L"FULL OUTER";
  }
  std::cerr << "Unhandled join type: " << static_cast<std::int32_t>(type) << '\n';
  VELMOR_SQL_ASSERT(false, kSource);
  return {};
}

bool SqlStringBuilder::needParantheses(const ast::QueryExpressionNode& node, bool right) {
  const builder::Kind kind = builder::kindOf(node);
  if (right) return kind != builder::Kind::TablePrimary;
  return kind == builder::Kind::QuerySpecification || kind == builder::Kind::ExplicitTable;
}

bool SqlStringBuilder::needParantheses(const ast::QueryOperation& outer,
                                       const ast::QueryExpressionNode& node) {
  if (!holds<ast::QueryOperation>(node)) return false;
  return rank(outer.operation) < rank(recordOf<ast::QueryOperation>(node).operation);
}

void SqlStringBuilder::visit(const ast::DerivedTable& record) {
  doVisit(record.query);
  std::wstring& text = mStack.top();
  const std::wstring alias = Keywords::instance().escape(record.alias);
  text.reserve(text.size() + alias.size() + 6);
  text.insert(text.begin(), L'(');
  text += L") AS ";
  text += alias;
}

void SqlStringBuilder::visit(const ast::ExplicitTable& record) {
  std::wstring text = L"TABLE ";
  text += Keywords::instance().escape(record.table);
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::JoinCondition& record) {
  doVisit(record.condition);
  mStack.top().insert(0, L"ON ");
}

void SqlStringBuilder::visit(const ast::NamedColumnsJoin& record) {
  std::wstring text = L"USING ";
  text += columnsToString(record.columns);
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::JoinNode& record) {
  // A join on the left reads flat; anything but a plain table on the right is grouped.
  doVisit(record.left);
  std::wstring text = std::move(mStack.top());
  mStack.pop();
  if (needParantheses(record.left, false)) parenthesize(text);

  doVisit(record.right);
  std::wstring right = std::move(mStack.top());
  mStack.pop();
  if (needParantheses(record.right, true)) parenthesize(right);

  if (record.type == ast::Join::Cross) {
    text += L" CROSS JOIN ";
    text += right;
    mStack.push(std::move(text));
    return;
  }

  std::wstring joinWord = L" ";
  if (record.type != ast::Join::Inner) {
    joinWord += joinTypeToString(record.type);
    joinWord += L' ';
  }

  if (record.specification.isNull()) {
    text += L" NATURAL";
    text += joinWord;
    text += L"JOIN ";
    text += right;
    mStack.push(std::move(text));
    return;
  }
  doVisit(record.specification);
  std::wstring& top = mStack.top();
  text += joinWord;
  text += L"JOIN ";
  text += right;
  text += L' ';
  text += top;
  top = std::move(text);
}

void SqlStringBuilder::visit(const ast::QueryOperation& record) {
  const std::wstring operation = queryOperationToString(record.operation);

  doVisit(record.left);
  std::wstring text = std::move(mStack.top());
  mStack.pop();
  if (needParantheses(record, record.left)) parenthesize(text);

  doVisit(record.right);
  std::wstring& top = mStack.top();
  if (needParantheses(record, record.right)) parenthesize(top);

  text += L' ';
  text += operation;
  text += record.distinct ? L" " : L" ALL ";
  text += top;
  top = std::move(text);
}

void SqlStringBuilder::visit(const ast::FromSource& record) {
  if (record.defaultValues()) {
    mStack.push(L"DEFAULT VALUES");
    return;
  }
  std::wstring text;
  if (!record.columns.empty()) text = columnsToString(record.columns);

  const wchar_t* overriding = L"";
  switch (record.overriding) {
  case ast::Overriding::None: break;
  case ast::Overriding::User: overriding = L"OVERRIDING USER VALUE"; break;
  case ast::Overriding::System: overriding = L"OVERRIDING SYSTEM VALUE"; break;
  }
  const bool hasOverriding = *overriding != L'\0';
  if (!text.empty() && hasOverriding) text += L' ';
  text += overriding;
  if (!text.empty() || hasOverriding) text += L' ';

  doVisit(record.source);
  std::wstring& top = mStack.top();
  // A query stays bare; a row list is what VALUES introduces.
  if (holds<ast::RowValueExpressionList>(record.source)) text += L"VALUES ";
  text += top;
  top = std::move(text);
}

} // namespace velmor::sql
