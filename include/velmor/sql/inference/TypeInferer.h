// Type inference: the type of an expression, a row or a query, with the overload chosen for
// every function and operator call through the host's catalogue.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/scope/Scoping.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Type.h>

#include <exception>
#include <memory>
#include <optional>
#include <vector>

namespace velmor::sql {

namespace detail {
class Resolutions;
}

/// What a TypeInferer in standard scoping asks about the queries that stand in an expression,
/// and where it sends the faults of the parts it goes on past. Validator implements it to check
/// each such query fully; TypeInferer::setScoping makes one of its own. Called on the thread of
/// the walk; borrowed by the inferer, it must outlive it.
class VELMOR_SQL_API QueryAnalysis {
public:
  virtual ~QueryAnalysis();
  /// The types of the columns that `query` (a query specification, a set operation) yields,
  /// analysed in a scope of its own whose outer scope is `around`. None when they are not
  /// known because a fault of the query was reported already. Throws faults otherwise.
  virtual std::optional<std::vector<std::shared_ptr<Type>>> queryColumns(const ast::Node& query,
                                                                        const ScopeTypeContext& around) = 0;
  /// True when faults are gathered: an inferer then types each operand and argument apart,
  /// hands a fault of one to reportFault and goes on with the next, and throws FaultReported
  /// in place of the type it could not find.
  virtual bool gathersFaults() const noexcept = 0;
  /// Called from inside a handler of `fault`, which was thrown while typing one part.
  virtual void reportFault(const SqlError& fault) = 0;
  /// A fault about `node` that was found, not thrown.
  virtual void reportFaultAt(const SqlError& fault, const ast::Node& node) = 0;
};

/// Thrown by a TypeInferer whose QueryAnalysis gathers faults, in place of a type that a fault
/// already reported made unknowable. Not a SqlError: nothing is to be added for it.
class VELMOR_SQL_API FaultReported : public std::exception {
public:
  const char* what() const noexcept override;
};

/// Types expressions. Borrows both contexts (they must outlive it) and belongs to one thread;
/// two inferers may share contexts that are safe to read from several threads.
///
/// The result of the last visit stays in the object: a kind without a type (a table reference,
/// a set operation, a statement) leaves it untouched, so a reused inferer may give the previous
/// node's type for it, while a new one gives an empty pointer. Every operator and function is
/// typed by the overload that the host's catalogue offers; the library fixes no result types.
///
/// Faults are thrown by value and nothing is caught: UnknownColumnReference (after the empty
/// answer has been stored), AmbiguousColumnReference from the scope, UnknownFunction,
/// OperatorNotSupported (before any argument is typed), NoGoodFunctionCandidate,
/// AmbiguousFunctionCall, NoGoodOperatorOverload, AmbiguousOperatorCall, whatever a host
/// callback throws, ast::BadNodeTypeException for a CAST size that is no number, and
/// ast::NullNodeException for an empty handle.
class VELMOR_SQL_API TypeInferer : public ast::VisitorWithResult<ast::NodeVisitor, std::shared_ptr<Type>> {
public:
  TypeInferer(const GlobalTypeContext& globalContext, const ScopeTypeContext& scopeContext);
  /// Temporary contexts would dangle: refused.
  TypeInferer(GlobalTypeContext&& globalContext, const ScopeTypeContext& scopeContext) = delete;
  TypeInferer(const GlobalTypeContext& globalContext, ScopeTypeContext&& scopeContext) = delete;

  using ast::NodeVisitor::visit;
  /// The scope's type of the column; an empty answer throws UnknownColumnReference.
  void visit(const ast::ColumnReference& record) override;
  /// Contextual, whatever the value (DEFAULT and the like).
  void visit(const ast::ContextuallyTypedValueSpecification& record) override;
  /// The type of the expression; the alias plays no part.
  void visit(const ast::DerivedColumn& record) override;
  void visit(const ast::Function& record) override;
  /// Decimal with precision = the units of the text less a point, scale = units behind the point.
  void visit(const ast::Number& record) override;
  void visit(const ast::Operation& record) override;
  /// A TupleType of the columns the asterisk stands for (arity 0 for an unknown qualifier).
  void visit(const ast::QualifiedAsterisk& record) override;
  /// Compatible: querySpecificationType. Standard: the query in a scope of its own; with one
  /// column, that column's type (SubqueryNotScalar for more or none).
  void visit(const ast::QuerySpecification& record) override;
  /// Compatible: no type (faultAction). Standard: as a query specification.
  void visit(const ast::QueryOperation& record) override;
  void visit(const ast::RowValueExpression& record) override;
  void visit(const ast::RowValueExpressionList& record) override;
  void visit(const ast::String& record) override;
  /// Boolean, whatever the value (NULL included).
  void visit(const ast::TernaryLogicNode& record) override;
  /// Silent: records a Fault type in mFaultType and leaves the result alone.
  void faultAction() override;

  /// Standard scoping needs the host's tables for the FROM of the queries that stand in
  /// expressions; `tables` is borrowed and must outlive the inferer. Compatible (the default)
  /// needs none. Also resets any analysis set by setQueryAnalysis.
  void setScoping(Scoping scoping, const TableInfoContext* tables = nullptr);
  /// Standard scoping driven by `analysis` (borrowed; null returns to compatible).
  void setQueryAnalysis(QueryAnalysis* analysis) noexcept;
  /// Compatible unless setScoping or setQueryAnalysis asked for standard.
  Scoping scoping() const noexcept { return mAnalysis ? Scoping::Standard : Scoping::Compatible; }

  /// Visits `node` and gives the result (see the class comment for kinds without a type).
  std::shared_ptr<Type> inferType(const ast::ExpressionNode& node);
  /// The same for any node.
  std::shared_ptr<Type> inferNodeType(const ast::Node& node);
  /// One entry per node, each typed by a fresh inferer: a node without a type gives an empty
  /// entry, never a stale one.
  std::vector<std::shared_ptr<Type>> inferTypes(const std::vector<ast::ExpressionNode>& nodes) const;

  /// The type of a call: the host's function (UnknownFunction if none), its overload for the
  /// argument types, and that overload's full type of the converted arguments.
  std::shared_ptr<Type> functionType(const ast::Function& function);
  /// The same for an operator (OperatorNotSupported if the host has none).
  std::shared_ptr<Type> operatorType(const ast::Operation& operation);
  /// The operand types; for a CAST of two operands the second is the type that its target
  /// names (an empty pointer for an unknown name).
  std::vector<std::shared_ptr<Type>> operationTypes(const ast::Operation& operation) const;
  /// Char with the length of the literal's text, escapes included.
  std::shared_ptr<Type> stringType(const ast::String& node);
  /// The overload a call resolves to. Throws as functionType.
  std::shared_ptr<OverloadInfo> inferFunctionOverload(const ast::Function& function);
  /// The overload an operation resolves to. Throws as operatorType.
  std::shared_ptr<OperatorOverloadInfo> inferOperatorOverload(const ast::Operation& operation);

  // Overload resolution. An argument without a type drops out of the plain list that the
  // search sees. Nothing here changes the inferer's result.

  /// The one overload that fits exactly, else the one that fits with conversions. Two exact
  /// fits, or two converted ones and no exact one, throw AmbiguousFunctionCall (candidates:
  /// exact then converted); none throws NoGoodFunctionCandidate (candidates: all).
  std::shared_ptr<OverloadInfo> findOverload(const ast::Function& function, const std::shared_ptr<FunctionInfo>& info,
                                             const std::vector<std::shared_ptr<Type>>& types);
  /// Overloads with the operation's quantifier only. One exact fit wins; several throw
  /// AmbiguousOperatorCall (candidates: the exact ones); none at all throws
  /// NoGoodOperatorOverload (candidates: all); otherwise the converted ones are ranked by
  /// findBestOperatorMatch, whose AmbiguousOperatorOverloads becomes AmbiguousOperatorCall
  /// (candidates: the converted ones).
  std::shared_ptr<OperatorOverloadInfo> findOperatorOverload(const ast::Operation& operation,
                                                             const std::shared_ptr<OperatorInfo>& info,
                                                             const std::vector<std::shared_ptr<Type>>& types);
  /// The overload takes plain.size() arguments and each is its parameter's type, Contextual, or
  /// convertible to it (GlobalTypeContext::canConvert, never asked about Contextual).
  bool matchesWithConversion(const std::shared_ptr<OverloadInfo>& overload,
                             const std::vector<type::PlainType>& plain) const;
  /// The same, and false when the overload serves another quantifier.
  bool matchesWithConversion(const std::shared_ptr<OperatorOverloadInfo>& overload,
                             const std::vector<type::PlainType>& plain, ast::Quantifier quantifier) const;
  /// Ranks candidates by GlobalTypeContext::compareTypes. A single candidate is returned as it is.
  /// Among those whose parameters all stand at or above their arguments, the lowest wins; if
  /// there is none, among those at or above the lowest argument, the highest wins; ties go to
  /// the earlier candidate. Throws AmbiguousOperatorOverloads when nothing fits or two
  /// candidates can't be ordered.
  std::shared_ptr<OperatorOverloadInfo>
  findBestOperatorMatch(const std::vector<std::shared_ptr<OperatorOverloadInfo>>& candidates,
                        const std::vector<type::PlainType>& plain) const;
  /// Whether `a` stands below `b`, comparing required parameters position by position. Throws
  /// AmbiguousOperatorOverloads when positions disagree, std::out_of_range when `b` has fewer
  /// required parameters than `a`.
  bool overloadCompare(const std::shared_ptr<OperatorOverloadInfo>& a,
                       const std::shared_ptr<OperatorOverloadInfo>& b) const;
  /// Each type converted to the plain type at its position through GlobalTypeContext::convert;
  /// a type already of that plain type is kept as the same object. Asserts that both lists have
  /// the same size (source "TypeInferer"); past the end of `to` the types are kept. An empty
  /// pointer (an argument without a type) stays empty.
  std::vector<std::shared_ptr<Type>> convertTypes(const std::vector<std::shared_ptr<Type>>& types,
                                                  const std::vector<type::PlainType>& to) const;

  // Queries and rows.

  /// The types that one select item contributes: the columns of an asterisk or the fields of a
  /// row, else the one type of the item (an empty pointer when it has none).
  std::vector<std::shared_ptr<Type>> selectItemTypes(const ast::Node& item) const;
  /// selectItemTypes of every item, concatenated.
  std::vector<std::shared_ptr<Type>> selectTypes(const std::vector<ast::Node>& list) const;
  /// An ArrayType of the row type: the one select type, or a TupleType of them all. The select
  /// list is typed in this inferer's scope; the query's own clauses are not looked at.
  std::shared_ptr<Type> querySpecificationType(const ast::QuerySpecification& query) const;
  /// A TupleType of the values' types, whatever their number.
  std::shared_ptr<Type> rowValueType(const ast::RowValueExpression& row) const;
  /// A TupleType of arity 0 for no rows; an ArrayType of the first row's type when every row's
  /// plain type is that of the first or converts to it; otherwise a TupleType of all row types.
  /// A row without a type fits nothing (and a first row without one fits no other row).
  std::shared_ptr<Type> rowsValueType(const ast::RowValueExpressionList& list) const;

protected:
  const GlobalTypeContext& mGlobalContext;
  const ScopeTypeContext& mScopeContext;
  /// What faultAction last made; nothing reads it.
  std::shared_ptr<Type> mFaultType;

private:
  struct PartOf {};
  // An inferer for one part, with this one's scoping and memo (no look-up of the thread's).
  TypeInferer(const TypeInferer& whole, PartOf) noexcept
      : mGlobalContext(whole.mGlobalContext), mScopeContext(whole.mScopeContext), mAnalysis(whole.mAnalysis),
        mResolutions(whole.mResolutions) {}
  TypeInferer part() const;
  std::shared_ptr<Type> typeOfPart(const ast::Node& node) const;
  // Standard scoping: the row type of a query in an expression (one column, or a TupleType).
  std::shared_ptr<Type> queryRowType(const ast::Node& query) const;
  std::shared_ptr<Type> scalarQueryType(const ast::Node& query) const;
  void standardOperationTypes(const ast::Operation& operation, std::vector<std::shared_ptr<Type>>& types) const;
  // What inferTypes and operationTypes give, into `types` (empty on entry).
  void inferTypesInto(const std::vector<ast::ExpressionNode>& nodes, std::vector<std::shared_ptr<Type>>& types) const;
  void operationTypesInto(const ast::Operation& operation, std::vector<std::shared_ptr<Type>>& types) const;

  QueryAnalysis* mAnalysis = nullptr;
  std::shared_ptr<QueryAnalysis> mOwnAnalysis;
  // operatorType for a binary operation whose left operand is one too (a AND b AND c), without
  // an analysis: the chain is typed in a loop, in the order and with the answers of the
  // recursion, so that a long chain needs no deep stack and a fault unwinds few frames.
  std::shared_ptr<Type> chainType(const ast::Operation& top);
  // The type of a call or an operation from its operand types, once its overload is known. The
  // list is the caller's own, done with after: its types are converted in place to the
  // overload's parameter types.
  std::shared_ptr<Type> convertedType(std::vector<std::shared_ptr<Type>>& types, const OverloadInfo& overload,
                                      std::size_t count) const;
  // The overloads chosen so far in the check that made this inferer, if one runs.
  detail::Resolutions* mResolutions = nullptr;
  std::shared_ptr<OperatorOverloadInfo> resolveOperatorOverload(const ast::Operation& operation,
                                                                const std::shared_ptr<OperatorInfo>& info,
                                                                const std::vector<std::shared_ptr<Type>>& types,
                                                                const std::vector<type::PlainType>& plain);
  std::shared_ptr<OverloadInfo> resolveOverload(const ast::Function& function, const std::shared_ptr<FunctionInfo>& info,
                                                const std::vector<std::shared_ptr<Type>>& types,
                                                const std::vector<type::PlainType>& plain);

  void appendSelectItemTypes(const ast::Node& item, std::vector<std::shared_ptr<Type>>& out) const;
  bool fitsWithConversion(const OverloadInfo& overload, const std::vector<type::PlainType>& plain) const;
};

} // namespace velmor::sql
