// Writes a syntax tree back as canonical SQL text.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/TernaryLogic.h>

#include <deque>
#include <functional>
#include <stack>
#include <string>
#include <utility>
#include <vector>

namespace velmor::sql {

/// The host's say in the output: operator precedence and the spelling of custom operators.
/// Implemented by the host; the library only calls it, from the thread that runs the builder.
class VELMOR_SQL_API StringBuildContext {
public:
  virtual ~StringBuildContext();

  /// Negative when `inner` binds less tightly than `outer`, 0 when equally, positive when
  /// tighter. Only the sign is looked at.
  virtual int comparePrecedence(OperationCode inner, OperationCode outer) const = 0;

  /// The text of a custom operator (a code above 50).
  virtual std::wstring operatorToString(OperationCode code) const = 0;
};

/// A visitor that turns a tree into SQL text: one blank between tokens, upper-case keywords,
/// strings in double quotes, reserved names in brackets, and parentheses only where the
/// meaning or the context's precedence needs them.
///
/// Each visit leaves exactly one text fragment more on `mStack` than it found: the text of the
/// record it visited. A derived builder overrides visits, the clause hooks or constructSelect,
/// and must keep that discipline. One builder serves one walk at a time; different builders
/// may walk one tree at once.
///
/// buildString on a SqlStringBuilder or RenameTableBuilder itself (no derived class) writes the
/// same text in one pass into a buffer that the builder keeps between calls (up to 256 KiB),
/// without the visits above; whatever those would report it leaves to them.
class VELMOR_SQL_API SqlStringBuilder : public ast::NodeVisitor {
public:
  using Transform = std::function<std::wstring&(std::wstring&)>;

  /// `context` is not owned and may be null: then every nested binary operator gets
  /// parentheses and custom operators are written as "UNKNOWN_OPERATOR".
  explicit SqlStringBuilder(const StringBuildContext* context);
  ~SqlStringBuilder() override;

  /// The text of `node`. Re-entrant from a derived builder's own visit, since it measures
  /// the stack against the depth it finds. Throws ast::NullNodeException for an empty handle;
  /// a node holding EmptyNode has no text (ask isNull first; the result is then empty).
  /// Throws std::out_of_range for a row without values (as ROW() parses) or an UPDATE without
  /// assignments, and lets through that of a LIMIT or OFFSET beyond 64 bits.
  /// Exceptions of a walk leave fragments behind, which later calls tolerate.
  std::wstring buildString(const ast::Node& node);

  using ast::NodeVisitor::visit;
  void visit(const ast::ColumnReference& record) override;
  void visit(const ast::ContextuallyTypedValueSpecification& record) override;
  void visit(const ast::DeleteStatement& record) override;
  void visit(const ast::DerivedColumn& record) override;
  void visit(const ast::DerivedTable& record) override;
  void visit(const ast::ExplicitTable& record) override;
  void visit(const ast::FromSource& record) override;
  void visit(const ast::Function& record) override;
  void visit(const ast::InsertStatement& record) override;
  void visit(const ast::IntoClause& record) override;
  void visit(const ast::JoinCondition& record) override;
  void visit(const ast::JoinNode& record) override;
  void visit(const ast::NamedColumnsJoin& record) override;
  void visit(const ast::Number& record) override;
  void visit(const ast::Operation& record) override;
  void visit(const ast::QualifiedAsterisk& record) override;
  void visit(const ast::QueryOperation& record) override;
  void visit(const ast::QuerySpecification& record) override;
  void visit(const ast::Range& record) override;
  void visit(const ast::RowValueExpression& record) override;
  void visit(const ast::RowValueExpressionList& record) override;
  void visit(const ast::SetClause& clause) override;
  void visit(const ast::SortSpecification& record) override;
  void visit(const ast::String& record) override;
  void visit(const ast::TablePrimary& record) override;
  void visit(const ast::TernaryLogicNode& record) override;
  void visit(const ast::UpdateStatement& record) override;
  /// Reports through the base, then pushes an empty fragment to keep the stack in step.
  void faultAction() override;

  /// Built-in operators (1 to 50) by their fixed text; custom ones (above 50) through the
  /// context. Out-of-range codes are reported on std::cerr.
  virtual std::wstring operationToString(OperationCode code) const;
  /// "TRUE", "FALSE", and "UNKNOWN" for any other number.
  virtual std::wstring ternaryToString(TernaryLogic::Value value);

  /// Clause hooks. Each receives the whole clause text assembled so far (from "FROM " on) and
  /// may change it in place; the result is ignored. Called whether the clause exists or not,
  /// in the order from, where, into, group by, having, order by. The defaults do nothing.
  virtual std::wstring& onFrom(std::wstring& clauses);
  virtual std::wstring& onWhere(std::wstring& clauses);
  virtual std::wstring& onInto(std::wstring& clauses);
  virtual std::wstring& onGroupBy(std::wstring& clauses);
  virtual std::wstring& onOrderBy(std::wstring& clauses);
  virtual std::wstring& onHaving(std::wstring& clauses);
  /// Joins the frame of a query: select, quantifier, columns, a blank, clauses, then
  /// " LIMIT n" and " OFFSET m" for values that are not 0.
  virtual std::wstring constructSelect(const std::wstring& select, const std::wstring& quantifier,
                                       const std::wstring& columns, const std::wstring& clauses,
                                       const ast::LimitSpecification& limit);

  /// Pushes the text of a query made of these parts.
  void visitQuery(bool distinct, const std::vector<ast::Node>& selectList,
                  const ast::TypeNode<ast::IntoClause>& into,
                  const std::vector<ast::QueryExpressionNode>& from, const ast::ExpressionNode& where,
                  const std::vector<ast::ExpressionNode>& groupBy,
                  const std::vector<ast::SortSpecification>& orderBy,
                  const ast::ExpressionNode& having, const ast::LimitSpecification& limit);
  /// Pushes the text of `op`; `transform` is applied in place to each operand's finished text.
  void processOperation(const ast::Operation& op, const Transform& transform);
  /// Pushes the text of a CASE with these operands (subject, WHEN/THEN pairs, optional ELSE).
  void visitCase(const std::vector<ast::ExpressionNode>& operands, const Transform& transform);

  /// "(a, b)" with the names as they are, "()" for none.
  static std::wstring columnsToString(const std::vector<std::wstring>& columns);
  /// "NULL", "ARRAY()", "MULTISET()" or "DEFAULT".
  static std::wstring valueToString(ast::Value value);
  /// "ALL" or "ANY".
  static std::wstring quantifierToString(ast::Quantifier quantifier);
  /// "UNION", "EXCEPT" or "INTERSECT".
  static std::wstring queryOperationToString(ast::QueryOperationCode operation);
  /// The words of a join type: "CROSS", "INNER", "LEFT OUTER", "RIGHT OUTER", "FULL OUTER".
  static std::wstring joinTypeToString(ast::Join type);

  /// A select-list expression, routine argument or SET value: true for a QuerySpecification.
  static bool needParantheses(const ast::Node& node);
  /// An element of a FROM list: true for a QueryOperation, QuerySpecification or ExplicitTable.
  static bool needParantheses(const ast::QueryExpressionNode& node);
  /// A side of a join: on the left a QuerySpecification or ExplicitTable, on the right anything
  /// but a TablePrimary.
  static bool needParantheses(const ast::QueryExpressionNode& node, bool right);
  /// An operand of a query operation: a UNION or EXCEPT directly under an INTERSECT.
  static bool needParantheses(const ast::QueryOperation& outer, const ast::QueryExpressionNode& node);
  /// The left or right operand of `op`, by the fixed rules and the context's precedence.
  bool needParantheses(const ast::Operation& op, bool right) const;

protected:
  const StringBuildContext* mContext;
  std::stack<std::wstring, std::deque<std::wstring>> mStack;

private:
  // The parts of visitQuery: the select list, and the clauses from WHERE on with their hooks.
  std::wstring selectColumns(const std::vector<ast::Node>& selectList);
  void appendClauses(std::wstring& clauses, const ast::ExpressionNode& where,
                     const ast::TypeNode<ast::IntoClause>& into, const std::vector<ast::ExpressionNode>& groupBy,
                     const ast::ExpressionNode& having, const std::vector<ast::SortSpecification>& orderBy);

  // Chains (operators each in the first operand of the one above, queries each selecting from
  // a derived table over the next) written in one pass so that the cost stays linear in their
  // length; only where nothing could observe the inner links.
  bool writesChainsWhole() const;
  void writeUnaryChain(std::vector<const ast::Operation*>& chain);
  void writeInfixChain(std::vector<const ast::Operation*>& chain);
  static bool nestsQueries(const ast::QuerySpecification& query);
  void writeQueryChain(const ast::QuerySpecification& top);

  // The library's own builders write a tree front to back into one buffer, without fragments;
  // false when the tree has something that only the walk above reports (a fault, a node of
  // EmptyNode where a record is due), and nothing has been written then.
  bool writeDirectly(const ast::Node& node, std::wstring& text);
  void giveUp(std::wstring& buffer, std::size_t links, std::size_t queries);
  // Kept between calls for their capacity: the direct path's buffer and its work lists (links
  // of an operator chain with whether each one's left side is grouped, links of a query chain).
  std::wstring mDirectBuffer;
  std::vector<std::pair<const ast::Operation*, bool>> mDirectLinks;
  std::vector<const ast::QuerySpecification*> mDirectQueries;
};

} // namespace velmor::sql
