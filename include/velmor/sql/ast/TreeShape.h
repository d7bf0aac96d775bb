// Deep comparison of two trees by their content, where isEqual compares children by identity.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>

#include <optional>
#include <utility>

namespace velmor::sql::ast {

/// The first place, in walk order (parent before children, children in field order), where two
/// trees differ: the roots when they differ themselves, else the two corresponding nodes that
/// are alike but have a child that is not, so that the grouping shows. Empty when the trees have
/// the same shape: the same record kinds with the same values (names, numbers, texts,
/// operators, flags) and the same children in the same places, down to the leaves. The two
/// forms of a null node count as the same. Works without recursion, at any depth; throws
/// nothing but std::bad_alloc. Thread-safe on shared trees.
VELMOR_SQL_API std::optional<std::pair<Node, Node>> firstDifference(const Node& left, const Node& right);

/// True when firstDifference finds none.
VELMOR_SQL_API bool sameTree(const Node& left, const Node& right);

} // namespace velmor::sql::ast
