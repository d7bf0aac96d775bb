// The SQL writer on trees built by hand: forms the parser cannot make, the parenthesis rules
// one by one, the diagnostics of out-of-range values, and a host's derived builder.
#include <velmor/sql/host/Precedence.h>

#include <velmor/sql/Assert.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmor::sql {
namespace {

using namespace ast;
using Op = OperationCode;

ExpressionNode col(const std::wstring& name, const std::wstring& table = L"") {
  return makeNode<ExpressionNode>(ColumnReference{table, name});
}
ExpressionNode num(const std::wstring& text) {
  return makeNode<ExpressionNode>(Number{NumberKind::Integer, text});
}
ExpressionNode bin(Op code, ExpressionNode left, ExpressionNode right,
                   Quantifier quantifier = Quantifier::None) {
  return makeNode<ExpressionNode>(Operation(code, std::move(left), std::move(right), quantifier));
}
ExpressionNode un(Op code, ExpressionNode operand) {
  return makeNode<ExpressionNode>(Operation(code, std::vector<ExpressionNode>{std::move(operand)}));
}
ExpressionNode nary(Op code, std::vector<ExpressionNode> operands) {
  return makeNode<ExpressionNode>(Operation(code, std::move(operands)));
}
ExpressionNode truth(TernaryLogic::Value value) {
  return makeNode<ExpressionNode>(TernaryLogicNode{TernaryLogic(value)});
}
QueryExpressionNode table(const std::wstring& name, const std::wstring& alias = L"") {
  return makeNode<QueryExpressionNode>(TablePrimary{name, alias});
}
QuerySpecification select(std::vector<ExpressionNode> columns, std::vector<QueryExpressionNode> from) {
  QuerySpecification query;
  for (auto& column : columns) query.selectList.push_back(makeNode(DerivedColumn{column, L""}));
  query.from = std::move(from);
  return query;
}
QueryExpressionNode query(std::vector<ExpressionNode> columns, std::vector<QueryExpressionNode> from) {
  return makeNode<QueryExpressionNode>(select(std::move(columns), std::move(from)));
}
QueryExpressionNode setOp(QueryOperationCode code, QueryExpressionNode left, QueryExpressionNode right) {
  return makeNode<QueryExpressionNode>(QueryOperation{code, true, std::move(left), std::move(right)});
}

// A context whose custom operator 51 is "<->" and ranks with the comparisons.
class HostContext : public velmor::sql::host::GrammarPrecedence {
public:
  std::wstring operatorToString(OperationCode code) const override {
    return static_cast<int>(code) == 51 ? L"<->" : L"?";
  }

protected:
  int precedenceLevel(OperationCode code) const override {
    return static_cast<int>(code) == 51 ? 5 : GrammarPrecedence::precedenceLevel(code);
  }
};

struct TreeCase {
  const char* what;
  Node tree;
  std::wstring withContext;
  std::wstring withoutContext;
};

std::vector<TreeCase> treeCases() {
  const auto a = col(L"a"), b = col(L"b"), c = col(L"c");
  const auto custom = static_cast<Op>(51);
  QuerySpecification limited = select({a}, {table(L"t")});
  limited.limit = LimitSpecification{Number{NumberKind::Integer, L"0"}, Number{NumberKind::Integer, L"3"}};
  QuerySpecification negative = select({a}, {table(L"t")});
  negative.limit = LimitSpecification{Number{NumberKind::Integer, L"-5"}, Number{NumberKind::Exact, L"2.5"}};
  FromSource rows{{L"a", L"order"}, Overriding::User,
                  makeNode(RowValueExpressionList{{makeNode<ExpressionNode>(RowValueExpression{{num(L"1"), num(L"2")}})}})};
  FromSource defaults{{L"a"}, Overriding::System, Node()};
  return {
      {"sum times", bin(Op::Multiply, bin(Op::Plus, a, b), c), L"(a + b) * c", L"(a + b) * c"},
      {"plus product", bin(Op::Plus, a, bin(Op::Multiply, b, c)), L"a + b * c", L"a + (b * c)"},
      {"left assoc", bin(Op::Plus, bin(Op::Plus, a, b), c), L"a + b + c", L"(a + b) + c"},
      {"right plus", bin(Op::Plus, a, bin(Op::Plus, b, c)), L"a + b + c", L"a + (b + c)"},
      {"right minus", bin(Op::Minus, a, bin(Op::Minus, b, c)), L"a - (b - c)", L"a - (b - c)"},
      {"right modulo", bin(Op::Modulo, a, bin(Op::Modulo, b, c)), L"a % (b % c)", L"a % (b % c)"},
      {"right power", bin(Op::Power, a, bin(Op::Power, b, c)), L"a ^ b ^ c", L"a ^ (b ^ c)"},
      {"negated negation", un(Op::Minus, un(Op::Minus, a)), L"-(-a)", L"-(-a)"},
      {"not or", un(Op::Not, bin(Op::Or, a, b)), L"NOT (a OR b)", L"NOT (a OR b)"},
      {"not equal", un(Op::Not, bin(Op::Equal, a, b)), L"NOT a = b", L"NOT a = b"},
      {"minus product", un(Op::Minus, bin(Op::Multiply, a, b)), L"-a * b", L"-a * b"},
      {"negated power", bin(Op::Power, un(Op::Minus, a), b), L"(-a) ^ b", L"(-a) ^ b"},
      {"times negated", bin(Op::Multiply, a, un(Op::Minus, b)), L"a * -b", L"a * -b"},
      {"negated times", bin(Op::Multiply, un(Op::Minus, a), b), L"-a * b", L"-a * b"},
      {"plus sign", un(Op::Plus, a), L"+a", L"+a"},
      {"query in list", bin(Op::In, query({a}, {table(L"t")}), makeNode<ExpressionNode>(RowValueExpressionList{{num(L"1"), num(L"2")}})),
       L"SELECT a FROM t IN (1, 2)", L"SELECT a FROM t IN (1, 2)"},
      {"in over or", bin(Op::NotIn, bin(Op::Or, a, b), c), L"a OR b NOT IN (c)", L"a OR b NOT IN (c)"},
      {"any list", bin(Op::Equal, a, makeNode<ExpressionNode>(RowValueExpressionList{{num(L"1"), num(L"2")}}), Quantifier::Any),
       L"a = ANY (1, 2)", L"a = ANY (1, 2)"},
      {"all query", bin(Op::GreaterOrEqual, a, query({b}, {table(L"t")}), Quantifier::All),
       L"a >= ALL (SELECT b FROM t)", L"a >= ALL (SELECT b FROM t)"},
      {"between", nary(Op::Between, {a, num(L"1"), bin(Op::Plus, b, num(L"2"))}), L"a BETWEEN 1 AND (b + 2)", L"a BETWEEN 1 AND (b + 2)"},
      {"fourth operand dropped", nary(Op::NotBetween, {a, b, c, num(L"9")}), L"a NOT BETWEEN b AND (c)", L"a NOT BETWEEN b AND (c)"},
      {"cast", bin(Op::Cast, bin(Op::Plus, a, b), col(L"int")), L"CAST((a + b) AS int)", L"CAST((a + b) AS int)"},
      {"case no subject", nary(Op::Case, {truth(TernaryLogic::True), a, b, c}), L"CASE WHEN a THEN b ELSE c END", L"CASE WHEN a THEN b ELSE c END"},
      {"case subject", nary(Op::Case, {a, num(L"1"), bin(Op::Plus, b, c)}), L"CASE a WHEN 1 THEN b + c END", L"CASE a WHEN 1 THEN b + c END"},
      {"exists set operation", un(Op::Exists, setOp(QueryOperationCode::Union, query({a}, {table(L"t")}), query({b}, {table(L"u")}))),
       L"EXISTS SELECT a FROM t UNION SELECT b FROM u", L"EXISTS SELECT a FROM t UNION SELECT b FROM u"},
      {"custom operator", bin(Op::And, bin(custom, a, b), c), L"a <-> b AND c", L"(a UNKNOWN_OPERATOR b) AND c"},
      {"values", makeNode(Function{L"f", false, SetQuantifier::All, {makeNode<ExpressionNode>(ContextuallyTypedValueSpecification{Value::Null}),
                          makeNode<ExpressionNode>(ContextuallyTypedValueSpecification{Value::Array}),
                          makeNode<ExpressionNode>(ContextuallyTypedValueSpecification{Value::Multiset}),
                          makeNode<ExpressionNode>(ContextuallyTypedValueSpecification{Value::Default})}}),
       L"f(NULL, ARRAY(), MULTISET(), DEFAULT)", L"f(NULL, ARRAY(), MULTISET(), DEFAULT)"},
      {"empty from", makeNode(QuerySpecification{}), L"SELECT * FROM ", L"SELECT * FROM "},
      {"limit zero", makeNode(limited), L"SELECT a FROM t OFFSET 3", L"SELECT a FROM t OFFSET 3"},
      {"limit values", makeNode(negative), L"SELECT a FROM t LIMIT 5 OFFSET 3", L"SELECT a FROM t LIMIT 5 OFFSET 3"},
      {"insert rows", makeNode(InsertStatement{L"t", rows}), L"INSERT INTO t (a, order) OVERRIDING USER VALUE VALUES (1, 2)",
       L"INSERT INTO t (a, order) OVERRIDING USER VALUE VALUES (1, 2)"},
      {"insert defaults", makeNode(InsertStatement{L"select", defaults}), L"INSERT INTO [select] DEFAULT VALUES",
       L"INSERT INTO [select] DEFAULT VALUES"},
      {"union under intersect", setOp(QueryOperationCode::Intersect, setOp(QueryOperationCode::Union, query({a}, {table(L"t")}), query({b}, {table(L"u")})), query({c}, {table(L"v")})),
       L"(SELECT a FROM t UNION SELECT b FROM u) INTERSECT SELECT c FROM v", L"(SELECT a FROM t UNION SELECT b FROM u) INTERSECT SELECT c FROM v"},
      {"right nested flat", setOp(QueryOperationCode::Union, query({a}, {table(L"t")}), setOp(QueryOperationCode::Except, query({b}, {table(L"u")}), query({c}, {table(L"v")}))),
       L"SELECT a FROM t UNION SELECT b FROM u EXCEPT SELECT c FROM v", L"SELECT a FROM t UNION SELECT b FROM u EXCEPT SELECT c FROM v"},
  };
}

// A host's builder without overrides, which the library serves the fragment way.
class FragmentBuilder : public SqlStringBuilder {
public:
  using SqlStringBuilder::SqlStringBuilder;
};

TEST(BuildTreesTest, WritesEachFormWithAndWithoutContext) {
  const HostContext hostContext;
  for (auto& c : treeCases()) {
    SqlStringBuilder withContext(&hostContext);
    SqlStringBuilder withoutContext(nullptr);
    EXPECT_EQ(withContext.buildString(c.tree), c.withContext) << c.what;
    EXPECT_EQ(withoutContext.buildString(c.tree), c.withoutContext) << c.what;
    EXPECT_EQ(FragmentBuilder(&hostContext).buildString(c.tree), c.withContext) << c.what;
    EXPECT_EQ(FragmentBuilder(nullptr).buildString(c.tree), c.withoutContext) << c.what;
  }
}

TEST(BuildTreesTest, RangeIsWrittenWithoutParentheses) {
  SqlStringBuilder builder(nullptr);
  builder.visit(Range{bin(Op::Plus, col(L"a"), num(L"1")), num(L"2")});
  EXPECT_EQ(builder.buildString(num(L"0")), L"0");  // the range's fragment stays below
}

// ---------------------------------------------------------------------------------------------
// Out-of-range values: a message on std::cerr, an assertion, and a well-formed stack after it.

int gAssertions = 0;
void countAssertion(const char*, const char* source) {
  EXPECT_STREQ(source, "SqlStringBuilder");
  ++gAssertions;
}

struct FaultCase {
  const char* what;
  Node tree;
  std::string message;
  int assertions;
  std::wstring text;
};

TEST(BuildTreesTest, OutOfRangeValuesAreReportedAndLeaveTheStackInStep) {
  const auto a = col(L"a");
  Operation badUnary(Op::Multiply, std::vector<ExpressionNode>{a});
  Operation shortCase(Op::Case, std::vector<ExpressionNode>{a, a});
  Operation badQuantifier(Op::Equal, a, a, static_cast<Quantifier>(7));
  Operation custom(static_cast<Op>(77), a, a);
  Operation builtin(Op::Equal, a, a);
  builtin.operation = static_cast<Op>(-3);
  const std::vector<FaultCase> cases = {
      {"unary", makeNode(badUnary), "Unhandled unary operation: 34\n", 1, L""},
      {"case", makeNode(shortCase), "Unexpected parameters count in the case operator: 2\n", 1, L""},
      {"quantifier", makeNode(badQuantifier), "Unhandled quantifier type: 7\n", 1, L"a =  (a)"},
      {"custom", makeNode(custom), "Unhandled custom binary operation: 77\n", 0, L"a UNKNOWN_OPERATOR a"},
      {"builtin", makeNode(builtin), "Unhandled builtin operation: -3\n", 1, L"a  a"},
      {"value", makeNode(ContextuallyTypedValueSpecification{static_cast<Value>(9)}), "Unhandled value: 9\n", 1, L""},
      {"join", makeNode(JoinNode{static_cast<Join>(8), table(L"t"), table(L"u"), makeNode(JoinCondition{a})}),
       "Unhandled join type: 8\n", 1, L"t  JOIN u ON a"},
      {"query operation", makeNode(QueryOperation{static_cast<QueryOperationCode>(5), true, table(L"t"), table(L"u")}),
       "Unhandled query operation: 5\n", 1, L"t  u"},
      {"set clause", makeNode(UpdateStatement{L"t", {SetClause{L"", a}}, ExpressionNode()}), "", 1, L"UPDATE t SET  = a"},
  };
  const auto previous = setAssertionHandler(countAssertion);
  for (const auto& c : cases) {
    gAssertions = 0;
    SqlStringBuilder builder(nullptr);
    testing::internal::CaptureStderr();
    std::wstring text = builder.buildString(c.tree);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.message) << c.what;
    EXPECT_EQ(gAssertions, c.assertions) << c.what;
    EXPECT_EQ(text, c.text) << c.what;
  }
  setAssertionHandler(previous);
}

TEST(BuildTreesTest, NullHandlesThrowAndUnwrittenKindsKeepTheStack) {
  SqlStringBuilder builder(nullptr);
  EXPECT_THROW(builder.buildString(Node()), NullNodeException);
  EXPECT_EQ(builder.buildString(makeEmptyNode()), L"");
  // ROW() parses to a row without values, which cannot be written.
  EXPECT_THROW(builder.buildString(makeNode(RowValueExpression{})), std::out_of_range);
  EXPECT_THROW(builder.buildString(makeNode(UpdateStatement{L"t", {}, ExpressionNode()})), std::out_of_range);
  // A LIMIT beyond the reading of its value lets the reader's exception through.
  QuerySpecification huge = select({col(L"a")}, {table(L"t")});
  huge.limit.limit = Number{NumberKind::Integer, L"99999999999999999999"};
  EXPECT_THROW(builder.buildString(makeNode(huge)), std::out_of_range);
  testing::internal::CaptureStderr();
  builder.visit(LimitSpecification{});
  EXPECT_NE(testing::internal::GetCapturedStderr().find("should never call"), std::string::npos);
  EXPECT_EQ(builder.buildString(num(L"1")), L"1");
}

// ---------------------------------------------------------------------------------------------
// A host's derived builder.

class TopBuilder : public SqlStringBuilder {
public:
  using SqlStringBuilder::SqlStringBuilder;
  std::wstring& onFrom(std::wstring& clauses) override { return clauses += L" WITH (NOLOCK)"; }
  std::wstring& onWhere(std::wstring& clauses) override {
    seen.push_back(clauses);
    return clauses;
  }
  std::wstring constructSelect(const std::wstring& select, const std::wstring& quantifier,
                               const std::wstring& columns, const std::wstring& clauses,
                               const LimitSpecification& limit) override {
    std::wstring text = select + quantifier;
    if (!limit.limit.text.empty()) text += L"TOP " + limit.limit.text + L" ";
    return text + columns + L" " + clauses;
  }
  std::vector<std::wstring> seen;
};

TEST(BuildTreesTest, DerivedBuilderRewritesClausesAndFrame) {
  QuerySpecification q = select({col(L"a")}, {table(L"t")});
  q.where = bin(Op::Equal, col(L"a"), num(L"1"));
  q.limit.limit = Number{NumberKind::Integer, L"10"};
  TopBuilder builder(nullptr);
  EXPECT_EQ(builder.buildString(makeNode(q)), L"SELECT TOP 10 a FROM t WITH (NOLOCK) WHERE a = 1");
  ASSERT_EQ(builder.seen.size(), 1u);
  EXPECT_EQ(builder.seen[0], L"FROM t WITH (NOLOCK) WHERE a = 1");
}

class BrokenBuilder : public SqlStringBuilder {
public:
  using SqlStringBuilder::SqlStringBuilder;
  void visit(const Number& record) override {
    SqlStringBuilder::visit(record);
    mStack.emplace(L"extra");
  }
};

TEST(BuildTreesTest, BrokenStackDisciplineAsserts) {
  BrokenBuilder builder(nullptr);
  EXPECT_DEATH(builder.buildString(num(L"1")), "mStack.size\\(\\) == stackDepth");
}

// ---------------------------------------------------------------------------------------------
// Renaming on trees the parser cannot make.

TEST(BuildTreesTest, RenameWithEmptyOldNameQualifiesEveryPlainColumn) {
  QuerySpecification q = select({col(L"a"), col(L"b", L"t")}, {table(L"t")});
  q.selectList.push_back(makeNode(QualifiedAsterisk{L""}));
  RenameTableBuilder builder(nullptr, L"", L"order");
  EXPECT_EQ(builder.buildString(makeNode(q)), L"SELECT [order].a, t.b, * FROM t");
}

} // namespace
} // namespace velmor::sql
