// The syntax tree: value handles, the record of each node kind, their enumerations, and the
// double-dispatch visitor through which every other part of the library reads a tree.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/ASTStringValue.h>
#include <velmor/sql/ast/TernaryLogic.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace velmor::sql {

/// Operators of the tree. The numbers are shared with the host's operator descriptions;
/// a number above 50 is a custom operator of the host.
enum class OperationCode : std::int32_t {
#define VELMOR_SQL_OPERATION(Name, Number, Text) Name = Number,
#include <velmor/sql/ast/OperationCodes.def>
};

namespace ast {

enum class Quantifier : std::int32_t { None = 0, All = 1, Any = 2 };
enum class SetQuantifier : std::int32_t { Unspecified = 0, Distinct = 1, All = 2 };
enum class Join : std::int32_t { Cross = 0, Inner = 1, LeftOuter = 2, RightOuter = 3, FullOuter = 4 };
enum class Value : std::int32_t { Null = 0, Array = 1, Multiset = 2, Default = 3 };
enum class QueryOperationCode : std::int32_t { Union = 0, Except = 1, Intersect = 2 };
enum class Overriding : std::int32_t { None = 0, User = 1, System = 2 };
enum class NullOrdering : std::uint8_t { Unspecified = 0, First = 1, Last = 2 };
enum class NumberKind : std::int32_t { Integer = 0, Exact = 1, Approximate = 2 };

class NodeVisitor;
struct EmptyNode;
#define VELMOR_SQL_RECORD(Name, isExpr) struct Name;
#include <velmor/sql/ast/Records.def>

/// Thrown by Node::accept on a handle with no implementation.
class VELMOR_SQL_API NullNodeException : public std::runtime_error {
public:
  NullNodeException();
};

/// Thrown when a node is asked for a kind that it does not hold.
class VELMOR_SQL_API BadNodeTypeException : public std::runtime_error {
public:
  BadNodeTypeException();
};

/// The abstract node behind every handle.
class VELMOR_SQL_API NodeInterface {
public:
  virtual ~NodeInterface();
  virtual bool isNull() const = 0;
  virtual void accept(NodeVisitor& visitor) const = 0;
  virtual bool isExpression() const = 0;
};

class ExpressionNode;

/// A value handle on an immutable tree node. Copies share the node (atomic reference count).
/// Absence has two forms, both null: an empty `mImpl`, and a node holding EmptyNode.
class VELMOR_SQL_API Node {
public:
  Node() = default;
  explicit Node(std::shared_ptr<NodeInterface> impl) noexcept : mImpl(std::move(impl)) {}

  /// True for an empty handle and for a node of EmptyNode.
  bool isNull() const;
  /// False for an empty handle; otherwise the fixed property of the record kind.
  bool isExpression() const;
  /// Dispatches to the visitor's slot for the held record; a node of EmptyNode calls nothing.
  /// Throws NullNodeException on an empty handle.
  void accept(NodeVisitor& visitor) const;
  /// Asserts that the handle is not empty (source "AST").
  void check() const;
  /// A handle sharing this node as an expression; throws BadNodeTypeException when the handle
  /// is empty or the record kind is no expression.
  ExpressionNode toExpression() const;

  std::shared_ptr<NodeInterface> mImpl;
};

/// A handle that holds a value expression (or a query or table reference, which are expressions).
class VELMOR_SQL_API ExpressionNode : public Node {
public:
  ExpressionNode() = default;
  explicit ExpressionNode(std::shared_ptr<NodeInterface> impl) noexcept : Node(std::move(impl)) {}
};

/// A handle that holds something that can stand where a query or a table can.
class VELMOR_SQL_API QueryExpressionNode : public ExpressionNode {
public:
  QueryExpressionNode() = default;
  explicit QueryExpressionNode(std::shared_ptr<NodeInterface> impl) noexcept
      : ExpressionNode(std::move(impl)) {}
};

/// A handle that holds a node of record kind T, or nothing (either null form).
template <class T>
class TypeNode : public Node {
public:
  TypeNode() = default;
  explicit TypeNode(std::shared_ptr<NodeInterface> impl) noexcept : Node(std::move(impl)) {}
};

// ---------------------------------------------------------------------------------------------
// Records. Plain structs with public fields in their fixed order.

struct EmptyNode {};

struct ColumnReference {
  std::wstring table;
  std::wstring column;
};

struct ContextuallyTypedValueSpecification {
  Value value = Value::Null;
};

struct DeleteStatement {
  std::wstring table;
  ExpressionNode where;
};

struct DerivedColumn {
  ExpressionNode expression;
  std::wstring alias;
};

struct DerivedTable {
  QueryExpressionNode query;
  std::wstring alias;
};

struct ExplicitTable {
  std::wstring table;
};

struct FromSource {
  std::vector<std::wstring> columns;
  Overriding overriding = Overriding::None;
  Node source;

  /// True when `source` is null in either form: DEFAULT VALUES.
  VELMOR_SQL_API bool defaultValues() const;
};

struct Function {
  std::wstring name;
  bool asterisk = false;
  SetQuantifier setQuantifier = SetQuantifier::Unspecified;
  std::vector<ExpressionNode> arguments;
};

struct InsertStatement {
  std::wstring table;
  FromSource source;
};

struct IntoClause {
  std::wstring table;
  bool noSelect = false;

  VELMOR_SQL_API bool isEqual(const IntoClause& other) const;
};

struct JoinCondition {
  ExpressionNode condition;
};

struct JoinNode {
  Join type = Join::Cross;
  QueryExpressionNode left;
  QueryExpressionNode right;
  Node specification;
};

struct Number {
  NumberKind kind = NumberKind::Integer;
  std::wstring text;

  VELMOR_SQL_API bool isEqual(const Number& other) const;
  /// The literal as an unsigned integer: 0 for an empty text; the absolute value of an integer;
  /// otherwise the absolute value rounded half up. Lets std::invalid_argument and
  /// std::out_of_range through for a text that is no number or out of range.
  VELMOR_SQL_API std::uint64_t unsignedInteger() const;
};

struct LimitSpecification {
  Number limit;
  Number offset;

  VELMOR_SQL_API bool isEqual(const LimitSpecification& other) const;
};

struct NamedColumnsJoin {
  std::vector<std::wstring> columns;
};

struct Operation {
  OperationCode operation = OperationCode::Invalid;
  Quantifier quantifier = Quantifier::None;
  std::vector<ExpressionNode> operands;

  Operation() = default;
  /// Both operands in order; asserts "operation != OperationCode::Invalid" (source "AST").
  VELMOR_SQL_API Operation(OperationCode operation, ExpressionNode left, ExpressionNode right,
                           Quantifier quantifier = Quantifier::None);
  /// Takes over the operands (one for a unary operator); asserts as above.
  VELMOR_SQL_API Operation(OperationCode operation, std::vector<ExpressionNode> operands,
                           Quantifier quantifier = Quantifier::None);

  /// Exactly one operand.
  VELMOR_SQL_API bool unary() const;
  /// An empty handle when unary(), else operand 0 (throws std::out_of_range when missing).
  VELMOR_SQL_API ExpressionNode left() const;
  /// Operand 0 when unary(), else operand 1 (throws std::out_of_range when missing).
  VELMOR_SQL_API ExpressionNode right() const;
};

struct QualifiedAsterisk {
  std::wstring table;
};

struct QueryOperation {
  QueryOperationCode operation = QueryOperationCode::Union;
  bool distinct = true;
  QueryExpressionNode left;
  QueryExpressionNode right;
};

struct SortSpecification {
  ExpressionNode key;
  bool ascending = true;
  NullOrdering nulls = NullOrdering::Unspecified;

  /// `key` is the same node (identity) and the flags are equal.
  VELMOR_SQL_API bool isEqual(const SortSpecification& other) const;
};

struct QuerySpecification {
  bool distinct = false;
  std::vector<Node> selectList;
  TypeNode<IntoClause> into;
  std::vector<QueryExpressionNode> from;
  ExpressionNode where;
  std::vector<ExpressionNode> groupBy;
  std::vector<SortSpecification> orderBy;
  ExpressionNode having;
  LimitSpecification limit;

  /// Shallow: child nodes compare by identity, never by content.
  VELMOR_SQL_API bool isEqual(const QuerySpecification& other) const;
};

struct Range {
  ExpressionNode lower;
  ExpressionNode upper;
};

struct RowValueExpression {
  std::vector<ExpressionNode> values;
};

struct RowValueExpressionList {
  std::vector<ExpressionNode> rows;
};

struct SetClause {
  std::wstring column;
  ExpressionNode value;
};

struct String {
  ASTStringValue value;
};

struct TablePrimary {
  std::wstring table;
  std::wstring alias;
};

struct TernaryLogicNode {
  TernaryLogic value;
};

struct UpdateStatement {
  std::wstring table;
  std::vector<SetClause> clauses;
  ExpressionNode where;
};

// ---------------------------------------------------------------------------------------------
// Visitor.

/// One slot per record kind. Every slot of the base calls faultAction(), so a derived visitor
/// overrides the kinds it is prepared for and any other kind is a detected fault.
class VELMOR_SQL_API NodeVisitor {
public:
  virtual ~NodeVisitor();
#define VELMOR_SQL_RECORD(Name, isExpr) virtual void visit(const Name& record);
#include <velmor/sql/ast/Records.def>
  /// Writes "<dynamic class name> should never call it's fault action. Something went wrong."
  /// to std::cerr and goes on.
  virtual void faultAction();

  /// Applies this visitor to one node: node.accept(*this).
  void doVisit(const Node& node);
};

// ---------------------------------------------------------------------------------------------
// Node classes.

namespace detail {
template <class T>
struct IsExpressionKind : std::false_type {};
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  template <>                                                                                      \
  struct IsExpressionKind<Name> : std::bool_constant<isExpr> {};
#include <velmor/sql/ast/Records.def>

// Releasing a deep tree through nested destructors would overflow the stack, so a dying node
// hands the children it alone owns to a per-thread work list instead, which the outermost
// release drains one node at a time. Leaves and shared children cost no more than before.
#define VELMOR_SQL_RECORD(Name, isExpr) VELMOR_SQL_API void releaseChildren(Name& record) noexcept;
#include <velmor/sql/ast/Records.def>
} // namespace detail

/// The node of one record kind, holding the record by value.
template <class T>
class VELMOR_SQL_API NodeImpl final : public NodeInterface {
  static_assert(!std::is_same_v<T, Range>, "Range is a visitor slot only and has no node class");

public:
  explicit NodeImpl(const T& value) : mValue(value) {}
  explicit NodeImpl(T&& value) : mValue(std::move(value)) {}
  /// Holds the record that `make()` returns, made in place: none of its texts and lists moves.
  template <class Make, std::enable_if_t<std::is_same_v<std::invoke_result_t<Make>, T>, int> = 0>
  NodeImpl(std::in_place_t, Make&& make) : mValue(std::forward<Make>(make)()) {}
  /// Releases the subtree without recursion, however deep it is.
  ~NodeImpl() override { detail::releaseChildren(mValue); }
  bool isNull() const override { return false; }
  void accept(NodeVisitor& visitor) const override { visitor.visit(mValue); }
  bool isExpression() const override { return detail::IsExpressionKind<T>::value; }
  const T& value() const noexcept { return mValue; }

  T mValue;
};

/// The parser's stand-in for a missing optional part: null, and visits nothing at all.
template <>
class VELMOR_SQL_API NodeImpl<EmptyNode> final : public NodeInterface {
public:
  NodeImpl() = default;
  explicit NodeImpl(EmptyNode) {}
  bool isNull() const override { return true; }
  void accept(NodeVisitor&) const override {}
  bool isExpression() const override { return false; }
};

/// Makes a node of `record` in one allocation. The handle type H is Node by default.
template <class H = Node, class T>
H makeNode(T&& record) {
  return H(std::make_shared<NodeImpl<std::decay_t<T>>>(std::forward<T>(record)));
}

/// A node of EmptyNode, as the parser stores for a missing optional part.
template <class H = Node>
H makeEmptyNode() {
  return H(std::make_shared<NodeImpl<EmptyNode>>());
}

} // namespace ast
} // namespace velmor::sql
