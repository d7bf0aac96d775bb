// Compact builders of hand-made trees for the scope and inference tests.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>

#include <stdexcept>

#include <string>
#include <utility>
#include <vector>

namespace velmor::sql::test {

using E = ast::ExpressionNode;
using Q = ast::QueryExpressionNode;

inline E col(std::wstring column) { return ast::makeNode<E>(ast::ColumnReference{L"", std::move(column)}); }
inline E col(std::wstring table, std::wstring column) {
  return ast::makeNode<E>(ast::ColumnReference{std::move(table), std::move(column)});
}
inline E num(std::wstring text) { return ast::makeNode<E>(ast::Number{ast::NumberKind::Exact, std::move(text)}); }
/// A string literal from its raw form with quotes ('it''s').
inline E str(const std::wstring& raw) { return ast::makeNode<E>(ast::String{ASTStringValue(raw)}); }
inline E contextual(ast::Value value) { return ast::makeNode<E>(ast::ContextuallyTypedValueSpecification{value}); }
inline E fn(std::wstring name, std::vector<E> arguments = {}) {
  return ast::makeNode<E>(ast::Function{std::move(name), false, ast::SetQuantifier::Unspecified, std::move(arguments)});
}
inline E op(OperationCode code, std::vector<E> operands, ast::Quantifier quantifier = ast::Quantifier::None) {
  return ast::makeNode<E>(ast::Operation(code, std::move(operands), quantifier));
}
inline E row(std::vector<E> values) { return ast::makeNode<E>(ast::RowValueExpression{std::move(values)}); }
inline E rows(std::vector<E> list) { return ast::makeNode<E>(ast::RowValueExpressionList{std::move(list)}); }

inline ast::Node item(E expression, std::wstring alias = L"") {
  return ast::makeNode(ast::DerivedColumn{std::move(expression), std::move(alias)});
}
inline ast::Node star(std::wstring table = L"") { return ast::makeNode(ast::QualifiedAsterisk{std::move(table)}); }

inline Q tp(std::wstring table, std::wstring alias = L"") {
  return ast::makeNode<Q>(ast::TablePrimary{std::move(table), std::move(alias)});
}
inline ast::QuerySpecification spec(std::vector<ast::Node> items, std::vector<Q> from = {}) {
  ast::QuerySpecification query;
  query.selectList = std::move(items);
  query.from = std::move(from);
  return query;
}
inline Q query(std::vector<ast::Node> items, std::vector<Q> from = {}) {
  return ast::makeNode<Q>(spec(std::move(items), std::move(from)));
}
inline Q derived(Q query, std::wstring alias) {
  return ast::makeNode<Q>(ast::DerivedTable{std::move(query), std::move(alias)});
}

/// The query of an SQL text; a text that doesn't parse to a query throws std::invalid_argument.
inline ast::QuerySpecification parseQuery(const std::string& sql) {
  struct NoContext : ParseContext {};
  NoContext context;
  SqlParser parser(context);
  if (!parser.parse(sql)) throw std::invalid_argument("does not parse: " + sql);
  return ast::getNodeValue<ast::QuerySpecification>(parser.result);
}

} // namespace velmor::sql::test
