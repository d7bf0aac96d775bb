// The children of each record kind and the tree walk built on them.
#include <velmor/sql/ast/Traversal.h>

#include "ast/RecordOf.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <typeinfo>

namespace velmor::sql::ast {
namespace {

// Children are appended to any container with push_back: the vector of ChildExtractor or the
// work list of a walk, which takes them directly without an intermediate list.
template <class Out>
void reserveMore(Out& out, std::size_t count) {
  if constexpr (requires { out.reserve(count); }) out.reserve(out.size() + count);
}

template <class Out, class H>
void appendAll(Out& out, const std::vector<H>& nodes) {
  for (const auto& node : nodes) out.push_back(node);
}

// Leaves are listed one by one, so that a record kind added to the list without a children
// rule fails to compile here instead of silently hiding its subtree from every walk.
#define VELMOR_SQL_LEAF(Name)                                                                      \
  template <class Out>                                                                             \
  void appendChildren(Out&, const Name&) {}
VELMOR_SQL_LEAF(ColumnReference)
VELMOR_SQL_LEAF(ContextuallyTypedValueSpecification)
VELMOR_SQL_LEAF(ExplicitTable)
VELMOR_SQL_LEAF(IntoClause)
VELMOR_SQL_LEAF(LimitSpecification)
VELMOR_SQL_LEAF(NamedColumnsJoin)
VELMOR_SQL_LEAF(Number)
VELMOR_SQL_LEAF(QualifiedAsterisk)
VELMOR_SQL_LEAF(String)
VELMOR_SQL_LEAF(TablePrimary)
VELMOR_SQL_LEAF(TernaryLogicNode)
#undef VELMOR_SQL_LEAF

// DeleteStatement, FromSource and JoinNode hand on their optional part unchecked: the parser
// stores an EmptyNode there, which the walk passes without a visit.
template <class Out>
void appendChildren(Out& out, const DeleteStatement& r) {
  out.push_back(r.where);
}
template <class Out>
void appendChildren(Out& out, const DerivedColumn& r) {
  out.push_back(r.expression);
}
template <class Out>
void appendChildren(Out& out, const DerivedTable& r) {
  out.push_back(r.query);
}
template <class Out>
void appendChildren(Out& out, const FromSource& r) {
  out.push_back(r.source);
}
template <class Out>
void appendChildren(Out& out, const Function& r) {
  reserveMore(out, r.arguments.size());
  appendAll(out, r.arguments);
}
template <class Out>
void appendChildren(Out& out, const InsertStatement& r) {
  out.push_back(makeNode(r.source));
}
template <class Out>
void appendChildren(Out& out, const JoinCondition& r) {
  out.push_back(r.condition);
}
template <class Out>
void appendChildren(Out& out, const JoinNode& r) {
  reserveMore(out, 3);
  out.push_back(r.left);
  out.push_back(r.right);
  out.push_back(r.specification);
}
template <class Out>
void appendChildren(Out& out, const Operation& r) {
  reserveMore(out, r.operands.size());
  appendAll(out, r.operands);
}
template <class Out>
void appendChildren(Out& out, const QueryOperation& r) {
  reserveMore(out, 2);
  out.push_back(r.left);
  out.push_back(r.right);
}
template <class Out>
void appendChildren(Out& out, const QuerySpecification& r) {
  const bool hasLimit = !r.limit.limit.text.empty() || !r.limit.offset.text.empty();
  reserveMore(out, r.from.size() + r.selectList.size() + 3 + r.groupBy.size() + r.orderBy.size() +
                       (hasLimit ? 1 : 0));
  appendAll(out, r.from);
  appendAll(out, r.selectList);
  if (!r.into.isNull()) out.push_back(r.into);
  if (!r.where.isNull()) out.push_back(r.where);
  appendAll(out, r.groupBy);
  if (!r.having.isNull()) out.push_back(r.having);
  for (const auto& item : r.orderBy) out.push_back(makeNode(item));
  if (hasLimit) out.push_back(makeNode(r.limit));
}
template <class Out>
void appendChildren(Out& out, const Range& r) {
  reserveMore(out, 2);
  out.push_back(r.lower);
  out.push_back(r.upper);
}
template <class Out>
void appendChildren(Out& out, const RowValueExpression& r) {
  reserveMore(out, r.values.size());
  appendAll(out, r.values);
}
template <class Out>
void appendChildren(Out& out, const RowValueExpressionList& r) {
  reserveMore(out, r.rows.size());
  appendAll(out, r.rows);
}
template <class Out>
void appendChildren(Out& out, const SetClause& r) {
  out.push_back(r.value);
}
template <class Out>
void appendChildren(Out& out, const SortSpecification& r) {
  out.push_back(r.key);
}
template <class Out>
void appendChildren(Out& out, const UpdateStatement& r) {
  reserveMore(out, r.clauses.size() + 1);
  for (const auto& clause : r.clauses) out.push_back(makeNode(clause));
  if (!r.where.isNull()) out.push_back(r.where);
}

// Pushes the children of the visited node straight onto a walk's work list.
class WorkListFiller final : public NodeVisitor {
public:
  explicit WorkListFiller(std::deque<Node>& workList) : mWorkList(workList) {}
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void visit(const Name& record) override { appendChildren(mWorkList, record); }
#include <velmor/sql/ast/Records.def>
  void faultAction() override {}

private:
  std::deque<Node>& mWorkList;
};

} // namespace

#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void ChildExtractor::visit(const Name& record) { appendChildren(mResult, record); }
#include <velmor/sql/ast/Records.def>

void ChildExtractor::faultAction() {}

std::vector<Node> children(const Node& node) {
  ChildExtractor extractor;
  node.accept(extractor);
  return std::move(extractor).result();
}

void TraversalVisitor::doVisit(const Node& node) { visitAllNodes(node); }

void TraversalVisitor::visitAllNodes(const Node& root) {
  mStop = false;
  mSkip = false;
  root.accept(*this);
  maybeAddChildren(root);
  while (!mWorkList.empty() && !mStop) {
    // Taken off the list before the visit, so that a visit may push (processNode) freely.
    const Node node = std::move(mWorkList.back());
    mWorkList.pop_back();
    node.accept(*this);
    maybeAddChildren(node);
  }
  mWorkList.clear();
}

void TraversalVisitor::maybeAddChildren(const Node& node) {
  if (mStop || mSkip) {
    mSkip = false;
    return;
  }
  WorkListFiller filler(mWorkList);
  node.accept(filler);
}

void TraversalVisitor::processNode(const Node& node) { mWorkList.push_back(node); }

namespace detail {
namespace {

template <class T>
const std::type_info* nodeKind() {
  if constexpr (std::is_same_v<T, Range>) {
    return nullptr;  // a visitor slot without a node class
  } else {
    return &typeid(NodeImpl<T>);
  }
}

} // namespace

// Filled when the library is loaded. Before that (another library's static initialisers) it is
// empty, and the one-kind checks that read it ask every node the slow way, with the same answers.
const LibraryNodeKinds libraryNodeKinds = [] {
  const auto kinds = std::array{
      nodeKind<EmptyNode>(),
#define VELMOR_SQL_RECORD(Name, isExpr) nodeKind<Name>(),
#include <velmor/sql/ast/Records.def>
  };
  LibraryNodeKinds table{};
  for (const std::type_info* kind : kinds) {
    if (!kind) continue;
    std::size_t slot = libraryNodeSlot(kind);
    while (table[slot] && table[slot] != kind) slot = (slot + 1) % table.size();
    table[slot] = kind;
  }
  return table;
}();

} // namespace detail
} // namespace velmor::sql::ast
