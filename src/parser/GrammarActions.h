// Small record builders that keep the grammar's actions to one line each.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/parser/SqlParser.h>

#include "ast/NodePool.h"
#include "parser/RangeRecorder.h"
#include "parser/SqlParserPrivate.h"
#include "sqllexer/Location.h"
#include "sqllexer/SqlLexer.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velmor::sql::grammar {

/// makeNode and makeEmptyNode with blocks from the node pool: the next parse reuses the blocks
/// of the tree released before it. Named apart from them, which argument lookup would also find.
template <class H = ast::Node, class T>
H newNode(T&& record) {
  return ast::detail::makePooledNode<H>(std::forward<T>(record));
}
template <class H = ast::Node>
H newEmptyNode() {
  return ast::detail::makePooledEmptyNode<H>();
}

/// The wide text of a token, moved out of the session: each token's text goes to one record.
/// An omitted optional name (noText) is the empty text.
inline std::wstring take(ParseSession& session, TextIndex index) {
  if (index == noText) return {};
  return std::move((*session.texts)[index]);
}

/// The location of a rule's symbol: from the begin of its first part to the end of its last
/// (an empty rule sits at the end of the symbol before it), as deep as its deepest part.
/// `parts[1]` to `parts[count]` are the rule's parts, `parts[0]` the symbol below them.
template <class Parts>
[[gnu::always_inline]] inline void span(Location& current, const Parts& parts, int count) {
  if (count == 0) {
    current.begin = current.end = parts[0].location.end;
    current.depth = 0;
    return;
  }
  // The parts lie side by side in the automaton's stack, the first lowest.
  const auto* first = &parts[1];
  current.begin = first[0].location.begin;
  current.end = first[count - 1].location.end;
  int depth = first[0].location.depth;
  for (int i = 1; i < count; ++i) depth = std::max(depth, first[i].location.depth);
  current.depth = depth;
}

/// The rule made `made` over its parts: one level deeper, within the nesting limit; its place is
/// noted when the caller keeps source ranges.
template <class Made>
inline void nest(Location& location, const ParseSession& session, const Made& made) {
  if (++location.depth > session.nestingLimit) nestingTooDeep(session);
  if constexpr (requires { made.mImpl; }) {
    if (session.ranges) [[unlikely]] session.ranges->node(made.mImpl.get(), location);
  }
}

/// A list that grows by append: room for four from the start saves the first regrowths, which
/// most select lists, argument lists and value rows would otherwise take.
template <class T>
std::unique_ptr<std::decay_t<T>> boxed(T&& record) {
  return std::make_unique<std::decay_t<T>>(std::forward<T>(record));
}

template <class T>
std::vector<std::decay_t<T>> listOf(T&& first) {
  std::vector<std::decay_t<T>> list;
  list.reserve(4);
  list.push_back(std::forward<T>(first));
  return list;
}

template <class T, class U>
std::vector<T> append(std::vector<T>&& list, U&& element) {
  list.push_back(std::forward<U>(element));
  return std::move(list);
}

inline std::vector<ast::ExpressionNode> appendPair(std::vector<ast::ExpressionNode>&& list,
                                                   ast::ExpressionNode when, ast::ExpressionNode then) {
  list.push_back(std::move(when));
  list.push_back(std::move(then));
  return std::move(list);
}

inline ast::ExpressionNode unary(OperationCode code, ast::ExpressionNode operand) {
  std::vector<ast::ExpressionNode> operands;
  operands.push_back(std::move(operand));
  return newNode<ast::ExpressionNode>(ast::Operation(code, std::move(operands)));
}

inline ast::ExpressionNode binary(OperationCode code, ast::ExpressionNode left, ast::ExpressionNode right,
                                  ast::Quantifier quantifier = ast::Quantifier::None) {
  return newNode<ast::ExpressionNode>(ast::Operation(code, std::move(left), std::move(right), quantifier));
}

inline ast::ExpressionNode ternary(OperationCode code, ast::ExpressionNode first, ast::ExpressionNode second,
                                   ast::ExpressionNode third) {
  std::vector<ast::ExpressionNode> operands;
  operands.reserve(3);
  operands.push_back(std::move(first));
  operands.push_back(std::move(second));
  operands.push_back(std::move(third));
  return newNode<ast::ExpressionNode>(ast::Operation(code, std::move(operands)));
}

/// The subject first, then the WHEN/THEN pairs, then the ELSE when there is one (a non-empty
/// handle).
inline ast::ExpressionNode caseOf(ast::ExpressionNode subject, std::vector<ast::ExpressionNode>&& pairs,
                                  ast::ExpressionNode otherwise) {
  std::vector<ast::ExpressionNode> operands;
  operands.reserve(pairs.size() + 2);
  operands.push_back(std::move(subject));
  for (ast::ExpressionNode& operand : pairs) operands.push_back(std::move(operand));
  if (otherwise.mImpl) operands.push_back(std::move(otherwise));
  return newNode<ast::ExpressionNode>(ast::Operation(OperationCode::Case, std::move(operands)));
}

inline ast::ExpressionNode truthOf(TernaryLogic::Value value) {
  return newNode<ast::ExpressionNode>(ast::TernaryLogicNode{TernaryLogic(value)});
}

inline ast::ExpressionNode numberOf(ast::NumberKind kind, std::wstring text) {
  return newNode<ast::ExpressionNode>(ast::Number{kind, std::move(text)});
}

inline ast::ExpressionNode functionOf(std::wstring name, bool asterisk, ast::SetQuantifier quantifier,
                                      std::vector<ast::ExpressionNode>&& arguments) {
  return newNode<ast::ExpressionNode>(ast::Function{std::move(name), asterisk, quantifier, std::move(arguments)});
}

inline ast::LimitSpecification limitOf(std::wstring limit, std::wstring offset) {
  return ast::LimitSpecification{ast::Number{ast::NumberKind::Integer, std::move(limit)},
                                 ast::Number{ast::NumberKind::Integer, std::move(offset)}};
}

/// A set operation is DISTINCT unless ALL is written.
inline ast::QueryExpressionNode queryOperation(ast::QueryOperationCode code, ast::SetQuantifier quantifier,
                                               ast::QueryExpressionNode left, ast::QueryExpressionNode right) {
  return newNode<ast::QueryExpressionNode>(
      ast::QueryOperation{code, quantifier != ast::SetQuantifier::All, std::move(left), std::move(right)});
}

inline ast::QueryExpressionNode joinOf(ast::Join type, ast::QueryExpressionNode left, ast::QueryExpressionNode right,
                                       ast::Node specification) {
  return newNode<ast::QueryExpressionNode>(
      ast::JoinNode{type, std::move(left), std::move(right), std::move(specification)});
}

/// A query is DISTINCT only when the word is written; without a LIMIT or OFFSET clause (a null
/// limit) both numbers are empty.
inline ast::QueryExpressionNode querySpecification(
    ast::SetQuantifier quantifier, std::vector<ast::Node>&& selectList, ast::TypeNode<ast::IntoClause> into,
    std::vector<ast::QueryExpressionNode>&& from, ast::ExpressionNode where, std::vector<ast::ExpressionNode>&& groupBy,
    ast::ExpressionNode having, std::vector<ast::SortSpecification>&& orderBy,
    std::unique_ptr<ast::LimitSpecification> limit) {
  return newNode<ast::QueryExpressionNode>(ast::QuerySpecification{
      quantifier == ast::SetQuantifier::Distinct, std::move(selectList), std::move(into), std::move(from),
      std::move(where), std::move(groupBy), std::move(orderBy), std::move(having),
      limit ? std::move(*limit) : limitOf({}, {})});
}

} // namespace velmor::sql::grammar
