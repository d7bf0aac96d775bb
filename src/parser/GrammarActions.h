// Small record builders that keep the grammar's actions to one line each.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/parser/SqlParser.h>

#include "ast/NodePool.h"
#include "parser/RangeRecorder.h"
#include "parser/SqlParserPrivate.h"
#include "parser/ValueSlabs.h"
#include "sqllexer/Location.h"
#include "sqllexer/InlineScan.h"
#include "sqllexer/SqlLexer.h"

#include <algorithm>
#include <iterator>
#include <cstring>
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
/// A node of the record that `make()` returns, made in place: a record's texts and lists are
/// written once, where the node holds them.
template <class H = ast::Node, class Make>
H newNodeFrom(Make&& make) {
  return ast::detail::makePooledNodeFrom<H>(std::forward<Make>(make));
}
template <class H = ast::Node>
H newEmptyNode() {
  return ast::detail::makePooledEmptyNode<H>();
}

/// The next token for the automaton: its id, its place, and its text in the value slot of the
/// five tokens that carry one (the text waits in the session, and the slot holds where).
inline int nextToken(SemanticValue* value, SymbolPlace* place, ParseSession& session) {
  SqlLexer& lexer = *session.lexer;
  const int id = lexer.lexIdInline();
  const std::uint32_t number = session.tokens++;
  *place = SymbolPlace{number, number, 0};
  if (session.ranges) [[unlikely]] {
    const std::size_t end = lexer.lexemeEnd();
    session.ranges->token(Position(lexer.token().line, lexer.token().column), Position(lexer.line(), lexer.column()),
                          id == T_TERMINATION ? end : lexer.lexemeBegin(), end);
  }
  if (carriesText(static_cast<std::uint32_t>(id))) {
    value->text = static_cast<TextIndex>(session.texts->size());
    session.texts->push_back({lexer.inText(lexer.token().text), 0, lexer.token().ascii});
  } else if (id == '(' && lexer.openParentheses() > session.nestingLimit) {
    // Parentheses that leave no node behind still take a place on the automaton's stack each.
    nestingTooDeep(session);
  }
  return id;
}

/// The wide text of a token: each token's text goes to one record. An omitted optional name
/// (noText) is the empty text.
inline std::wstring take(ParseSession& session, TextIndex index) {
  if (index == noText) return {};
  const TextPiece& piece = (*session.texts)[index];
  const auto* bytes = reinterpret_cast<const unsigned char*>(piece.bytes.data());
  std::wstring text = piece.ascii ? std::wstring(bytes, bytes + piece.bytes.size()) : Lexer::widen(piece.bytes);
  if (piece.sign) [[unlikely]] text.insert(text.begin(), piece.sign);
  return text;
}

/// The value of a string token.
inline ASTStringValue takeString(ParseSession& session, TextIndex index) {
  const std::string_view raw = (*session.texts)[index].bytes;
  ASTStringValue value;
  // One quoted piece without escapes or doubled quotes, the usual literal, is its inside.
  const char delimiter = raw.front();
  const std::string_view inside = raw.substr(1, raw.size() - 2);
  bool plain = true;
  for (const char c : inside) plain &= c != delimiter && c != '\\';
  if (plain) {
    value.m_value = Lexer::widen(inside);
  } else {
    std::wstring wide;
    Lexer::assignWide(raw, wide);
    value.parse(wide);
  }
  return value;
}

/// A token's text with a sign put before it.
inline TextIndex signedText(ParseSession& session, wchar_t sign, TextIndex index) {
  (*session.texts)[index].sign = sign;
  return index;
}

/// Stores `value` for the rules above and names it.
template <class T>
Slot<std::decay_t<T>> put(ParseSession& session, T&& value) {
  auto& values = session.values->of<std::decay_t<T>>();
  const auto index = static_cast<std::uint32_t>(values.size());
  values.push_back(std::forward<T>(value));
  return {index};
}

/// The value behind `slot`, left in place.
template <class T>
T& at(const ParseSession& session, Slot<T> slot) {
  return session.values->of<T>()[slot.index];
}

/// The value behind `slot`, moved out: each value goes to one rule.
template <class T>
T take(ParseSession& session, Slot<T> slot) {
  return session.values->of<T>().take(slot.index);
}

/// The place of a rule's symbol: from the first token of its first part to the last of its
/// last (an empty rule sits at the last token of the symbol before it), as deep as its deepest
/// part. `parts[1]` to `parts[count]` are the places of the rule's parts, `parts[0]` that of the
/// symbol below them.
[[gnu::always_inline]] inline void span(SymbolPlace& current, const SymbolPlace* parts, int count) {
  if (count == 0) {
    current.first = current.last = parts[0].last;
    current.depth = 0;
    return;
  }
  // Most reductions have one part (the chains from an expression down to a name or number).
  if (count == 1) {
    current = parts[1];
    return;
  }
  current.first = parts[1].first;
  current.last = parts[count].last;
  int depth = parts[1].depth;
  for (int i = 2; i <= count; ++i) depth = std::max(depth, parts[i].depth);
  current.depth = depth;
}

/// Moves the automaton's three stacks, `used` bytes each, into room for twice as many entries:
/// the session's room when it is large enough already and not where the stacks are, else new
/// room that then becomes the session's. Throws std::bad_alloc when memory runs out.
template <class State, class Value, class Place>
void growStacks(AutomatonStacks& room, State** states, std::ptrdiff_t stateBytes, Value** values,
                std::ptrdiff_t valueBytes, Place** places, std::ptrdiff_t placeBytes, std::ptrdiff_t* size) {
  const std::ptrdiff_t wanted = 2 * *size;
  const bool inRoom = *states == reinterpret_cast<State*>(room.states.get());
  if (inRoom || room.size < wanted) {
    AutomatonStacks bigger;
    bigger.states = std::make_unique<std::byte[]>(static_cast<std::size_t>(wanted) * sizeof(State));
    bigger.values = std::make_unique<std::byte[]>(static_cast<std::size_t>(wanted) * sizeof(Value));
    bigger.places = std::make_unique<std::byte[]>(static_cast<std::size_t>(wanted) * sizeof(Place));
    bigger.size = wanted;
    std::memcpy(bigger.states.get(), *states, static_cast<std::size_t>(stateBytes));
    std::memcpy(bigger.values.get(), *values, static_cast<std::size_t>(valueBytes));
    std::memcpy(bigger.places.get(), *places, static_cast<std::size_t>(placeBytes));
    room = std::move(bigger);
  } else {
    std::memcpy(room.states.get(), *states, static_cast<std::size_t>(stateBytes));
    std::memcpy(room.values.get(), *values, static_cast<std::size_t>(valueBytes));
    std::memcpy(room.places.get(), *places, static_cast<std::size_t>(placeBytes));
  }
  *states = reinterpret_cast<State*>(room.states.get());
  *values = reinterpret_cast<Value*>(room.values.get());
  *places = reinterpret_cast<Place*>(room.places.get());
  *size = room.size;
}

/// The rule made `made` over its parts: one level deeper, within the nesting limit; its place is
/// noted when the caller keeps source ranges.
template <class T>
inline void nest(SymbolPlace& location, const ParseSession& session, Slot<T> made) {
  if (++location.depth > session.nestingLimit) nestingTooDeep(session);
  if constexpr (requires(const T& node) { node.mImpl; }) {
    if (session.ranges) [[unlikely]] {
      const T& node = at(session, made);
      // An omitted part is an EmptyNode, which stands for no text.
      if (!node.isNull()) session.ranges->node(node.mImpl.get(), location);
    }
  }
}

/// Lists longer than this give their room back when taken instead of keeping it for the next.
inline constexpr std::size_t maxSpareListRoom = 1024;

/// A stored list of one element that grows by append, in the room of a list taken before it:
/// growing happens in room that parses keep, and the list a record gets is made once, at its
/// exact size, when a rule takes it.
template <class T>
Slot<std::vector<std::decay_t<T>>> newList(ParseSession& session, T&& first) {
  using E = std::decay_t<T>;
  auto& spares = session.values->sparesOf<E>();
  std::vector<E> list;
  if (spares.empty()) {
    list.reserve(8);
  } else {
    list = std::move(spares.back());
    spares.pop_back();
  }
  list.push_back(std::forward<T>(first));
  return put(session, std::move(list));
}

/// The slot of a value that is not stored: an omitted part, made empty where it goes.
inline constexpr std::uint32_t notStored = ~std::uint32_t{0};
/// An empty list, for an omitted clause.
template <class E>
inline constexpr Slot<std::vector<E>> emptyList{notStored};

/// A stored list, moved out at its exact size; its room goes to the next list.
template <class E>
std::vector<E> take(ParseSession& session, Slot<std::vector<E>> slot) {
  if (slot.index == notStored) return {};
  std::vector<E> list = session.values->of<std::vector<E>>().take(slot.index);
  std::vector<E> exact(std::make_move_iterator(list.begin()), std::make_move_iterator(list.end()));
  list.clear();
  if (list.capacity() > 0 && list.capacity() <= maxSpareListRoom) {
    session.values->sparesOf<E>().push_back(std::move(list));
  }
  return exact;
}

/// Appends to a stored list in place, so that a long list is not moved for each element.
template <class T, class U>
Slot<std::vector<T>> append(ParseSession& session, Slot<std::vector<T>> list, U&& element) {
  at(session, list).push_back(std::forward<U>(element));
  return list;
}

inline Slot<std::vector<ast::ExpressionNode>> appendPair(ParseSession& session,
                                                         Slot<std::vector<ast::ExpressionNode>> list,
                                                         ast::ExpressionNode when, ast::ExpressionNode then) {
  auto& pairs = at(session, list);
  pairs.push_back(std::move(when));
  pairs.push_back(std::move(then));
  return list;
}


inline ast::ExpressionNode unary(OperationCode code, ast::ExpressionNode operand) {
  std::vector<ast::ExpressionNode> operands;
  operands.push_back(std::move(operand));
  return newNodeFrom<ast::ExpressionNode>([&] { return ast::Operation(code, std::move(operands)); });
}

inline ast::ExpressionNode binary(OperationCode code, ast::ExpressionNode left, ast::ExpressionNode right,
                                  ast::Quantifier quantifier = ast::Quantifier::None) {
  return newNodeFrom<ast::ExpressionNode>(
      [&] { return ast::Operation(code, std::move(left), std::move(right), quantifier); });
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

inline ast::ExpressionNode numberOf(ast::NumberKind kind, ParseSession& session, TextIndex text) {
  return newNodeFrom<ast::ExpressionNode>([&] { return ast::Number{kind, take(session, text)}; });
}

inline ast::ExpressionNode functionOf(std::wstring name, bool asterisk, ast::SetQuantifier quantifier,
                                      std::vector<ast::ExpressionNode>&& arguments) {
  return newNodeFrom<ast::ExpressionNode>(
      [&] { return ast::Function{std::move(name), asterisk, quantifier, std::move(arguments)}; });
}

/// No LIMIT and no OFFSET: nothing stored, and the record's empty part is made where it goes.
inline constexpr Slot<ast::LimitSpecification> noLimit{notStored};

inline ast::LimitSpecification take(ParseSession& session, Slot<ast::LimitSpecification> slot) {
  if (slot.index == notStored) return {};
  return session.values->of<ast::LimitSpecification>().take(slot.index);
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

/// A query is DISTINCT only when the word is written.
inline ast::QueryExpressionNode querySpecification(
    ast::SetQuantifier quantifier, std::vector<ast::Node>&& selectList, ast::TypeNode<ast::IntoClause> into,
    std::vector<ast::QueryExpressionNode>&& from, ast::ExpressionNode where, std::vector<ast::ExpressionNode>&& groupBy,
    ast::ExpressionNode having, std::vector<ast::SortSpecification>&& orderBy,
    ast::LimitSpecification&& limit) {
  return newNodeFrom<ast::QueryExpressionNode>([&] {
    return ast::QuerySpecification{quantifier == ast::SetQuantifier::Distinct,
                                   std::move(selectList),
                                   std::move(into),
                                   std::move(from),
                                   std::move(where),
                                   std::move(groupBy),
                                   std::move(orderBy),
                                   std::move(having),
                                   std::move(limit)};
  });
}

} // namespace velmor::sql::grammar
