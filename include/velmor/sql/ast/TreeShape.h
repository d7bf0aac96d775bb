// Deep comparison of two trees by their content, where isEqual compares children by identity.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>

#include <optional>
#include <utility>

namespace velmor::sql::ast {

/// How firstDifference treats grouping.
enum class Grouping {
  /// Every nesting counts: `a OR (b OR c)` and `(a OR b) OR c` differ.
  Exact,
  /// A chain of one AND or one OR counts as one list of its operands, however it is nested, since
  /// the grouping of such a chain does not change what it means: `a OR (b OR c)` and
  /// `(a OR b) OR c` are the same; `a AND (b OR c)` and `(a AND b) OR c` are not, nor is any other
  /// operator regrouped (`a * (b / c)`).
  Associative,
};

/// The first place, in walk order (parent before children, children in field order), where two
/// trees differ: the roots when they differ themselves, else the two corresponding nodes that
/// are alike but have a child that is not, so that the grouping shows. Empty when the trees have
/// the same shape: the same record kinds with the same values (names, numbers, texts,
/// operators, flags) and the same children in the same places, down to the leaves. The two
/// forms of a null node count as the same. Works without recursion, at any depth; throws
/// nothing but std::bad_alloc. Thread-safe on shared trees.
/// With Grouping::Associative, a difference inside an AND or OR chain names the chains' heads.
VELMOR_SQL_API std::optional<std::pair<Node, Node>> firstDifference(const Node& left, const Node& right,
                                                                   Grouping grouping = Grouping::Exact);

/// True when firstDifference finds none.
VELMOR_SQL_API bool sameTree(const Node& left, const Node& right);

} // namespace velmor::sql::ast
