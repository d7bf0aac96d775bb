// The values of one parse that the automaton's stack refers to by Slot.
#pragma once

#include <velmor/sql/ast/AST.h>

#include "SqlGrammar.tab.hpp"

#include <string>
#include <tuple>
#include <vector>

namespace velmor::sql {

/// One list per kind of value. A rule's value is appended and later moved out by the rule that
/// takes it, so the lists only grow during a parse; clear() after the parse destroys what a
/// failed parse left and keeps the room for the next one.
class ValueSlabs {
public:
  template <class T>
  std::vector<T>& of() {
    return std::get<std::vector<T>>(mValues);
  }

  /// Emptied lists whose room a new list may take; kept across parses.
  template <class E>
  std::vector<std::vector<E>>& sparesOf() {
    return std::get<std::vector<std::vector<E>>>(mSpares);
  }

  void clear() {
    std::apply([](auto&... values) { (values.clear(), ...); }, mValues);
  }

  /// Gives back the room of every list longer than `entries`, and spare lists beyond that many:
  /// what a parser keeps between parses stays bounded, whatever texts it read.
  void trim(std::size_t entries) {
    std::apply([entries](auto&... values) { (trimRoom(values, entries), ...); }, mValues);
    std::apply([entries](auto&... spares) { (trimSpares(spares, entries), ...); }, mSpares);
  }

  /// Gives back the room of `list` when it holds more than `entries`.
  template <class T>
  static void trimRoom(std::vector<T>& list, std::size_t entries) {
    if (list.capacity() > entries) std::vector<T>().swap(list);
  }

private:
  // Spare lists are kept while their room, counted in bytes, stays within what `entries`
  // elements of the list's kind take: one list grown by a long text does not stay.
  template <class E>
  static void trimSpares(std::vector<std::vector<E>>& spares, std::size_t entries) {
    const std::size_t budget = entries * sizeof(E);
    std::size_t used = 0;
    std::size_t kept = 0;
    for (std::vector<E>& spare : spares) {
      const std::size_t bytes = spare.capacity() * sizeof(E);
      if (kept == entries || used + bytes > budget) continue;
      used += bytes;
      if (&spares[kept] != &spare) spares[kept] = std::move(spare);
      ++kept;
    }
    spares.resize(kept);
  }

  std::tuple<std::vector<ast::Node>, std::vector<ast::QueryExpressionNode>, std::vector<ast::ExpressionNode>,
             std::vector<ast::TypeNode<ast::IntoClause>>, std::vector<ast::SortSpecification>,
             std::vector<ast::SetClause>, std::vector<ast::LimitSpecification>, std::vector<ast::FromSource>,
             std::vector<std::vector<ast::Node>>, std::vector<std::vector<ast::QueryExpressionNode>>,
             std::vector<std::vector<ast::ExpressionNode>>, std::vector<std::vector<ast::SortSpecification>>,
             std::vector<std::vector<ast::SetClause>>, std::vector<std::vector<std::wstring>>>
      mValues;
  std::tuple<std::vector<std::vector<ast::Node>>, std::vector<std::vector<ast::QueryExpressionNode>>,
             std::vector<std::vector<ast::ExpressionNode>>, std::vector<std::vector<ast::SortSpecification>>,
             std::vector<std::vector<ast::SetClause>>, std::vector<std::vector<std::wstring>>>
      mSpares;
};

} // namespace velmor::sql
