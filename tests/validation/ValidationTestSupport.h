// Hand-built trees and error descriptions shared by the validation tests.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/validation/SemanticErrors.h>

#include "support/SampleHost.h"

#include <memory>
#include <string>
#include <vector>

namespace velmor::sql::validation_test {

using ast::ExpressionNode;
using ast::Node;
using ast::QueryExpressionNode;
using Op = OperationCode;

inline ExpressionNode col(std::wstring column) {
  return ast::makeNode<ExpressionNode>(ast::ColumnReference{L"", std::move(column)});
}
inline ExpressionNode col(std::wstring table, std::wstring column) {
  return ast::makeNode<ExpressionNode>(ast::ColumnReference{std::move(table), std::move(column)});
}
inline ExpressionNode num(std::wstring text) {
  return ast::makeNode<ExpressionNode>(ast::Number{ast::NumberKind::Integer, std::move(text)});
}
inline ExpressionNode str(const std::wstring& text) {
  return ast::makeNode<ExpressionNode>(ast::String{ASTStringValue(L"'" + text + L"'")});
}
inline ExpressionNode op(Op code, std::vector<ExpressionNode> operands,
                         ast::Quantifier quantifier = ast::Quantifier::None) {
  return ast::makeNode<ExpressionNode>(ast::Operation(code, std::move(operands), quantifier));
}
inline ExpressionNode eq(ExpressionNode left, ExpressionNode right) {
  return op(Op::Equal, {std::move(left), std::move(right)});
}
inline ExpressionNode fn(std::wstring name, std::vector<ExpressionNode> arguments = {}) {
  ast::Function call;
  call.name = std::move(name);
  call.arguments = std::move(arguments);
  return ast::makeNode<ExpressionNode>(std::move(call));
}
/// CAST(value AS typeName); the type name is a column reference or a call, as the parser makes.
inline ExpressionNode cast(ExpressionNode value, ExpressionNode typeName) {
  return op(Op::Cast, {std::move(value), std::move(typeName)});
}
inline Node item(ExpressionNode value, std::wstring alias = L"") {
  return ast::makeNode(ast::DerivedColumn{std::move(value), std::move(alias)});
}
inline Node star(std::wstring table = L"") { return ast::makeNode(ast::QualifiedAsterisk{std::move(table)}); }
inline QueryExpressionNode tbl(std::wstring name, std::wstring alias = L"") {
  return ast::makeNode<QueryExpressionNode>(ast::TablePrimary{std::move(name), std::move(alias)});
}

/// A query built clause by clause; optional parts hold EmptyNode as the parser stores them.
struct Select {
  ast::QuerySpecification q;

  explicit Select(std::vector<Node> items) {
    q.selectList = std::move(items);
    q.into = ast::makeEmptyNode<ast::TypeNode<ast::IntoClause>>();
    q.where = ast::makeEmptyNode<ExpressionNode>();
    q.having = ast::makeEmptyNode<ExpressionNode>();
  }
  Select& from(std::vector<QueryExpressionNode> references) {
    q.from = std::move(references);
    return *this;
  }
  Select& where(ExpressionNode condition) {
    q.where = std::move(condition);
    return *this;
  }
  Select& groupBy(std::vector<ExpressionNode> keys) {
    q.groupBy = std::move(keys);
    return *this;
  }
  Select& having(ExpressionNode condition) {
    q.having = std::move(condition);
    return *this;
  }
  Select& orderBy(std::vector<ExpressionNode> keys) {
    for (auto& key : keys) q.orderBy.push_back(ast::SortSpecification{std::move(key), true, {}});
    return *this;
  }
  ExpressionNode node() const { return ast::makeNode<ExpressionNode>(q); }
  QueryExpressionNode derived(std::wstring alias) const {
    return ast::makeNode<QueryExpressionNode>(
        ast::DerivedTable{ast::makeNode<QueryExpressionNode>(q), std::move(alias)});
  }
};

inline ast::UpdateStatement update(std::wstring table, std::vector<ast::SetClause> clauses,
                                   ExpressionNode where = ast::makeEmptyNode<ExpressionNode>()) {
  return ast::UpdateStatement{std::move(table), std::move(clauses), std::move(where)};
}

inline std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

/// "Name(fields)" for the faults the library raises, the number otherwise.
inline std::string describe(const SqlError& error) {
  if (auto* e = dynamic_cast<const NonExistentTable*>(&error)) return "NonExistentTable(" + narrow(e->tableName) + ")";
  if (auto* e = dynamic_cast<const UnknownTableReference*>(&error))
    return "UnknownTableReference(" + narrow(e->tableName) + ")";
  if (auto* e = dynamic_cast<const AmbiguousTablesReference*>(&error))
    return "AmbiguousTablesReference(" + narrow(e->tableName) + ")";
  if (auto* e = dynamic_cast<const UnknownColumnReference*>(&error))
    return "UnknownColumnReference(" + narrow(e->tableName) + "." + narrow(e->columnName) + ")";
  if (auto* e = dynamic_cast<const AmbiguousColumnReference*>(&error))
    return "AmbiguousColumnReference(" + narrow(e->tableName) + "." + narrow(e->columnName) + ")";
  if (auto* e = dynamic_cast<const UnknownFunction*>(&error)) return "UnknownFunction(" + narrow(e->functionName) + ")";
  if (auto* e = dynamic_cast<const NoGoodFunctionCandidate*>(&error))
    return "NoGoodFunctionCandidate(" + narrow(e->functionName) + ")";
  if (auto* e = dynamic_cast<const NoGoodOperatorOverload*>(&error))
    return "NoGoodOperatorOverload(" + std::to_string(static_cast<int>(e->operation)) + ")";
  if (auto* e = dynamic_cast<const OperatorNotSupported*>(&error))
    return "OperatorNotSupported(" + std::to_string(static_cast<int>(e->operation)) + ")";
  if (dynamic_cast<const AggregateInWhereClause*>(&error)) return "AggregateInWhereClause";
  if (dynamic_cast<const ContextQuery*>(&error)) return "ContextQuery";
  return "type " + std::to_string(static_cast<int>(error.type()));
}

inline std::vector<std::string> describe(const std::vector<std::shared_ptr<SqlError>>& errors) {
  std::vector<std::string> out;
  for (const auto& error : errors) out.push_back(describe(*error));
  return out;
}

/// The sample host with CAST between integer and varchar, and IN over a list or a query.
inline sample::SampleHost testHost() {
  using type::PlainType;
  sample::SampleHost host;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> casts;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> in;
  for (const PlainType from : {PlainType::Integer, PlainType::VarChar}) {
    for (const PlainType to : {PlainType::Integer, PlainType::VarChar})
      casts.push_back(std::make_shared<OperatorOverloadInfo>(to, std::vector{from, to}, sample::sameAs(1)));
    in.push_back(std::make_shared<OperatorOverloadInfo>(PlainType::Boolean, std::vector{from, PlainType::Array},
                                                        sample::returns(PlainType::Boolean)));
  }
  host.addOperator(Op::Cast, std::move(casts));
  host.addOperator(Op::In, std::move(in));
  return host;
}

} // namespace velmor::sql::validation_test
