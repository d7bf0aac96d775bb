// The validator: which faults are gathered and which end a run, in order; the UPDATE form;
// reuse of one object; exceptions that are no SqlError.
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/validation/Validator.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace velmor::sql::validation_test {
namespace {

using Errors = std::vector<std::string>;

struct QueryCase {
  const char* name;
  std::function<Select()> query;
  Errors errors;
};

const QueryCase queryCases[] = {
    {"good query",
     [] { return Select({item(col(L"id")), item(col(L"c", L"name"))}).from({tbl(L"cities", L"c")}).where(eq(col(L"id"), num(L"1"))); },
     {}},
    {"aggregate in WHERE is gathered and ORDER BY still typed",
     [] {
       return Select({item(col(L"id"))}).from({tbl(L"cities")})
           .where(op(Op::Greater, {fn(L"count"), num(L"1")}))
           .orderBy({col(L"nosuch")});
     },
     {"AggregateInWhereClause", "UnknownColumnReference(.nosuch)"}},
    {"unknown asterisk qualifier gathered before a fatal unknown function",
     [] {
       return Select({star(L"nosuch")}).from({tbl(L"cities")}).where(eq(fn(L"nofunction", {num(L"1")}), num(L"1")));
     },
     {"UnknownTableReference(nosuch)", "UnknownFunction(nofunction)"}},
    {"unknown column qualifier ends the run while building the result table",
     [] { return Select({item(col(L"nosuch", L"a"))}).from({tbl(L"cities")}); },
     {"UnknownColumnReference(nosuch.a)"}},
    {"unknown table ends the run at once",
     [] { return Select({star(L"nosuch")}).from({tbl(L"cities"), tbl(L"nowhere")}); },
     {"NonExistentTable(nowhere)"}},
    {"HAVING is typed before ORDER BY and GROUP BY",
     [] {
       return Select({item(col(L"id"))}).from({tbl(L"cities")})
           .groupBy({col(L"g")}).having(eq(col(L"h"), num(L"1"))).orderBy({col(L"o")});
     },
     {"UnknownColumnReference(.h)"}},
    {"ORDER BY is typed before GROUP BY",
     [] { return Select({item(col(L"id"))}).from({tbl(L"cities")}).groupBy({col(L"g")}).orderBy({col(L"o")}); },
     {"UnknownColumnReference(.o)"}},
    {"WHERE is typed before HAVING",
     [] {
       return Select({item(col(L"id"))}).from({tbl(L"cities")}).where(eq(col(L"w"), num(L"1"))).having(eq(col(L"h"), num(L"1")));
     },
     {"UnknownColumnReference(.w)"}},
    {"all qualifier faults are gathered, select list then FROM",
     [] {
       return Select({item(col(L"x", L"id")), star(L"y"), item(col(L"x", L"id"))})
           .from({tbl(L"roads", L"x"), tbl(L"cities"), tbl(L"Cities")})
           .where(fn(L"nofunction"));
     },
     {"UnknownTableReference(y)", "AmbiguousTablesReference(Cities)", "UnknownFunction(nofunction)"}},
    {"a qualified column inside a select item ends the run at typing",
     [] {
       return Select({item(fn(L"upper", {col(L"nosuch", L"a")}))}).from({tbl(L"cities")});
     },
     {"UnknownColumnReference(nosuch.a)"}},
    {"qualifier faults inside a select item that types",
     [] {
       return Select({star(L"p"), star(L"roads"), star(L"q")}).from({tbl(L"cities"), tbl(L"cities")});
     },
     {"UnknownTableReference(p)", "UnknownTableReference(q)", "AmbiguousTablesReference(cities)"}},
    {"output columns are seen unqualified only",
     [] { return Select({item(col(L"id"), L"k")}).from({tbl(L"cities")}).where(eq(col(L"k"), num(L"1"))).orderBy({col(L"k")}); },
     {}},
    {"an output column is not reached through a table name",
     [] { return Select({item(col(L"id"), L"k")}).from({tbl(L"cities")}).where(eq(col(L"cities", L"k"), num(L"1"))); },
     {"UnknownColumnReference(cities.k)"}},
    {"an ambiguous column ends the run",
     [] { return Select({item(col(L"name"))}).from({tbl(L"cities"), tbl(L"roads")}); },
     {"AmbiguousColumnReference(.name)"}},
    {"no overload of an operator ends the run",
     [] { return Select({item(col(L"id"))}).from({tbl(L"cities")}).where(op(Op::Like, {col(L"id"), col(L"founded")})); },
     {"NoGoodOperatorOverload(11)"}},
    {"an unsupported operator ends the run",
     [] { return Select({item(col(L"id"))}).from({tbl(L"cities")}).where(op(Op::Regexp, {col(L"name"), str(L"x")})); },
     {"OperatorNotSupported(15)"}},
    {"a query without FROM types literals",
     [] { return Select({item(num(L"1")), item(str(L"a"))}); },
     {}},
    {"a query without FROM knows no column",
     [] { return Select({item(col(L"a"))}); },
     {"UnknownColumnReference(.a)"}},
    {"a query without FROM sees its output columns in WHERE",
     [] { return Select({item(num(L"1"), L"x")}).where(eq(col(L"x"), num(L"1"))); },
     {}},
    {"a context query is gathered last",
     [] {
       const auto inner = Select({item(col(L"id"))}).from({tbl(L"cities")}).where(eq(cast(col(L"id"), col(L"nonsense")), num(L"1")));
       return Select({star(L"nosuch")}).from({inner.derived(L"d")}).where(op(Op::Greater, {fn(L"sum", {col(L"id")}), num(L"1")}));
     },
     {"UnknownTableReference(nosuch)", "AggregateInWhereClause", "ContextQuery"}},
    {"a cast to a known type is no context query",
     [] { return Select({item(cast(col(L"id"), fn(L"varchar", {num(L"20")})))}).from({tbl(L"cities")}); },
     {}},
    {"a grouped subquery in WHERE counts as an aggregate",
     [] {
       return Select({item(col(L"id"))}).from({tbl(L"cities")})
           .where(op(Op::In, {col(L"id"), Select({item(col(L"id"))}).from({tbl(L"roads")}).groupBy({col(L"id")}).node()}));
     },
     {"AggregateInWhereClause"}},
    {"aggregates of a subquery in WHERE don't count",
     [] {
       return Select({item(col(L"id"))}).from({tbl(L"cities")})
           .where(op(Op::In, {col(L"id"), Select({item(fn(L"max", {col(L"id")}))}).from({tbl(L"roads")}).node()}));
     },
     {}},
};

class ValidatorQueries : public testing::TestWithParam<QueryCase> {};

TEST_P(ValidatorQueries, GathersOrEnds) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  const bool good = validator.validate(GetParam().query().q);
  EXPECT_EQ(describe(validator.errors()), GetParam().errors);
  EXPECT_EQ(good, GetParam().errors.empty());
}

INSTANTIATE_TEST_SUITE_P(Validator, ValidatorQueries, testing::ValuesIn(queryCases),
                         [](const auto& info) { return "case" + std::to_string(info.index); });

struct UpdateCase {
  const char* name;
  std::function<ast::UpdateStatement()> statement;
  Errors errors;
};

const UpdateCase updateCases[] = {
    {"good update", [] { return update(L"cities", {{L"id", num(L"1")}, {L"NAME", str(L"x")}}, eq(col(L"id"), num(L"2"))); }, {}},
    {"the value is not compared with the column", [] { return update(L"cities", {{L"id", str(L"x")}}); }, {}},
    {"an unknown table ends the run before any typing",
     [] { return update(L"nosuch", {{L"a", fn(L"nofunction")}}, fn(L"nofunction")); },
     {"UnknownTableReference(nosuch)"}},
    {"the first unknown SET column ends the run",
     [] { return update(L"cities", {{L"id", num(L"1")}, {L"nosuch", num(L"2")}, {L"alsonot", num(L"3")}}); },
     {"UnknownColumnReference(.nosuch)"}},
    {"WHERE is typed before the clauses",
     [] { return update(L"cities", {{L"nosuch", num(L"1")}}, fn(L"nofunction")); },
     {"UnknownFunction(nofunction)"}},
    {"clauses are typed in order",
     [] { return update(L"cities", {{L"id", col(L"bad")}, {L"nosuch", num(L"1")}}); },
     {"UnknownColumnReference(.bad)"}},
    {"the table is known by its own name", [] { return update(L"cities", {{L"id", col(L"cities", L"id")}}); }, {}},
    {"no qualifier, aggregate or context check",
     [] { return update(L"cities", {{L"id", num(L"1")}}, op(Op::Greater, {fn(L"count"), num(L"1")})); },
     {}},
};

class ValidatorUpdates : public testing::TestWithParam<UpdateCase> {};

TEST_P(ValidatorUpdates, GathersOrEnds) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  const bool good = validator.validate(GetParam().statement());
  EXPECT_EQ(describe(validator.errors()), GetParam().errors);
  EXPECT_EQ(good, GetParam().errors.empty());
}

INSTANTIATE_TEST_SUITE_P(Validator, ValidatorUpdates, testing::ValuesIn(updateCases),
                         [](const auto& info) { return "case" + std::to_string(info.index); });

TEST(Validator, ReuseKeepsTheListAndTheFormsAnswerDifferently) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  const auto good = Select({item(col(L"id"))}).from({tbl(L"cities")});
  EXPECT_TRUE(validator.validate(good.q));
  EXPECT_FALSE(validator.validate(Select({star(L"nosuch")}).from({tbl(L"cities")}).q));
  ASSERT_EQ(validator.errors().size(), 1u);

  // A good query now answers false and adds nothing; a good UPDATE answers true.
  EXPECT_FALSE(validator.validate(good.q));
  EXPECT_TRUE(validator.validate(update(L"cities", {{L"id", num(L"1")}})));
  EXPECT_EQ(validator.errors().size(), 1u);

  EXPECT_FALSE(validator.validate(update(L"nosuch", {{L"id", num(L"1")}})));
  EXPECT_EQ(describe(validator.errors()), (Errors{"UnknownTableReference(nosuch)", "UnknownTableReference(nosuch)"}));

  validator.mErrors.clear();
  EXPECT_TRUE(validator.validate(good.q));
}

TEST(Validator, ExternalScopeServesQueriesButNotUpdates) {
  const auto host = testHost();
  const auto roads = std::make_shared<TableInfoScope>(ast::TablePrimary{L"roads", L""}, host.table(L"roads"));
  Validator validator(host, host, roads);
  EXPECT_TRUE(validator.validate(Select({item(col(L"id"))}).from({tbl(L"cities")}).where(eq(col(L"roads", L"city_id"), col(L"id"))).q));
  EXPECT_TRUE(validator.validate(Select({item(col(L"city_id"))}).from({tbl(L"cities")}).q));
  EXPECT_FALSE(validator.validate(update(L"cities", {{L"id", col(L"city_id")}})));
  EXPECT_EQ(describe(validator.errors()), Errors{"UnknownColumnReference(.city_id)"});
}

// A host whose function lookup fails with an exception of its own.
class FailingHost : public sample::SampleHost {
public:
  FailingHost() : SampleHost(testHost()) {}
  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override {
    if (name == L"boom") throw std::runtime_error("host failure");
    if (name == L"nomemory") throw std::bad_alloc();
    return SampleHost::function(name);
  }
};

TEST(Validator, ExceptionsThatAreNoSqlErrorPassThrough) {
  const FailingHost host;
  Validator validator(host, host, nullptr);
  const auto withNosuch = [](ExpressionNode where) {
    return Select({star(L"nosuch")}).from({tbl(L"cities")}).where(std::move(where)).q;
  };
  EXPECT_THROW(validator.validate(withNosuch(fn(L"boom"))), std::runtime_error);
  EXPECT_EQ(describe(validator.errors()), Errors{"UnknownTableReference(nosuch)"});
  EXPECT_THROW(validator.validate(withNosuch(fn(L"nomemory"))), std::bad_alloc);
  EXPECT_THROW(validator.validate(update(L"cities", {{L"id", fn(L"boom")}})), std::runtime_error);
  // An empty handle inside an expression, and a cast size that is no number.
  EXPECT_THROW(validator.validate(withNosuch(op(Op::Not, {ExpressionNode()}))), ast::NullNodeException);
  EXPECT_THROW(validator.validate(Select({item(cast(col(L"id"), fn(L"varchar", {col(L"id")})))}).from({tbl(L"cities")}).q),
               ast::BadNodeTypeException);
  EXPECT_EQ(describe(validator.errors()), Errors(3, "UnknownTableReference(nosuch)"));
}

TEST(Validator, ListedErrorsAreClonesOfTheMostDerivedClass) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  validator.validate(Select({item(col(L"id"))}).from({tbl(L"cities")}).where(eq(col(L"t", L"zz"), num(L"1"))).q);
  ASSERT_EQ(validator.errors().size(), 1u);
  const auto* error = dynamic_cast<const UnknownColumnReference*>(validator.errors()[0].get());
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->type(), SqlErrorType::UnknownColumnReference);
  EXPECT_EQ(error->tableName, L"t");
}

} // namespace
} // namespace velmor::sql::validation_test
