// The validator: which faults are gathered and which end a run, in order; the UPDATE form;
// reuse of one object; exceptions that are no SqlError.
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/validation/Validator.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace velmor::sql::validation_test {
namespace {

using Errors = std::vector<std::string>;

struct Case {
  const char* text;
  Errors errors;
};

const Case queryCases[] = {
    {"SELECT id, c.name FROM cities AS c WHERE id = 1", {}},
    // Gathered faults don't end the run: ORDER BY is still typed after the aggregate.
    {"SELECT id FROM cities WHERE count() > 1 ORDER BY nosuch", {"AggregateInWhereClause", "UnknownColumnReference(.nosuch)"}},
    {"SELECT nosuch.* FROM cities WHERE nofunction(1) = 1", {"UnknownTableReference(nosuch)", "UnknownFunction(nofunction)"}},
    {"SELECT nosuch.a FROM cities", {"UnknownColumnReference(nosuch.a)"}},
    {"SELECT nosuch.* FROM cities, nowhere", {"NonExistentTable(nowhere)"}},
    {"SELECT name FROM cities, roads", {"AmbiguousColumnReference(.name)"}},
    // HAVING, then ORDER BY, then GROUP BY.
    {"SELECT id FROM cities WHERE w = 1 GROUP BY g HAVING h = 1 ORDER BY o", {"UnknownColumnReference(.w)"}},
    {"SELECT id FROM cities GROUP BY g HAVING h = 1 ORDER BY o", {"UnknownColumnReference(.h)"}},
    {"SELECT id FROM cities GROUP BY g ORDER BY o", {"UnknownColumnReference(.o)"}},
    {"SELECT id FROM cities GROUP BY g", {"UnknownColumnReference(.g)"}},
    // Qualifiers: the select list first, then the FROM list, and all of them.
    {"SELECT x.id, y.*, roads.*, z.* FROM roads AS x, cities, Cities WHERE nofunction()",
     {"UnknownTableReference(y)", "UnknownTableReference(z)", "AmbiguousTablesReference(Cities)", "UnknownFunction(nofunction)"}},
    {"SELECT upper(nosuch.a) FROM cities", {"UnknownColumnReference(nosuch.a)"}},
    // The output columns stand behind the FROM columns, reachable without a qualifier only.
    {"SELECT id AS k FROM cities WHERE k = 1 ORDER BY k", {}},
    {"SELECT id AS k FROM cities WHERE cities.k = 1", {"UnknownColumnReference(cities.k)"}},
    {"SELECT id FROM cities WHERE id LIKE founded", {"NoGoodOperatorOverload(11)"}},
    {"SELECT id FROM cities WHERE name REGEXP 'x'", {"OperatorNotSupported(15)"}},
    {"SELECT id FROM cities WHERE id IN (SELECT id FROM roads GROUP BY id)", {"AggregateInWhereClause"}},
    {"SELECT id FROM cities WHERE id IN (SELECT max(id) FROM roads)", {}},
    {"SELECT CAST(id AS varchar(20)) FROM cities", {}},
    // A context cast where nothing types it; gathered last.
    {"SELECT nosuch.* FROM (SELECT id FROM cities WHERE CAST(id AS nonsense) = 1) AS d WHERE sum(id) > 1",
     {"UnknownTableReference(nosuch)", "AggregateInWhereClause", "ContextQuery"}},
};

const Case updateCases[] = {
    {"UPDATE cities SET id = 1, NAME = 'x' WHERE id = 2", {}},
    {"UPDATE cities SET id = 'x'", {}},
    {"UPDATE cities SET id = cities.id", {}},
    {"UPDATE cities SET id = 1 WHERE count() > 1", {}},
    {"UPDATE nosuch SET a = nofunction() WHERE nofunction()", {"UnknownTableReference(nosuch)"}},
    {"UPDATE cities SET id = 1, nosuch = 2, alsonot = 3", {"UnknownColumnReference(.nosuch)"}},
    {"UPDATE cities SET nosuch = 1 WHERE nofunction()", {"UnknownFunction(nofunction)"}},
    {"UPDATE cities SET id = bad, nosuch = 1", {"UnknownColumnReference(.bad)"}},
};

class ValidatorCases : public testing::TestWithParam<Case> {};

TEST_P(ValidatorCases, GathersOrEnds) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  const auto tree = parse(GetParam().text);
  const bool good = ast::nodeIs<ast::UpdateStatement>(tree)
                        ? validator.validate(ast::getNodeValue<ast::UpdateStatement>(tree))
                        : validator.validate(ast::getNodeValue<ast::QuerySpecification>(tree));
  EXPECT_EQ(describe(validator.errors()), GetParam().errors);
  EXPECT_EQ(good, GetParam().errors.empty());
}

const auto caseName = [](const auto& info) { return "case" + std::to_string(info.index); };
INSTANTIATE_TEST_SUITE_P(Queries, ValidatorCases, testing::ValuesIn(queryCases), caseName);
INSTANTIATE_TEST_SUITE_P(Updates, ValidatorCases, testing::ValuesIn(updateCases), caseName);

// The parser wants a FROM; a host may build a query without one.
ast::QuerySpecification withoutFrom(ast::ExpressionNode value, const std::string& where = "") {
  auto query = parseAs<ast::QuerySpecification>("SELECT a FROM t" + (where.empty() ? "" : " WHERE " + where));
  query.selectList = {ast::makeNode(ast::DerivedColumn{std::move(value), L"x"})};
  query.from.clear();
  return query;
}

TEST(Validator, QueryWithoutFrom) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  EXPECT_TRUE(validator.validate(withoutFrom(parse("1").toExpression(), "x = 2")));
  EXPECT_FALSE(validator.validate(withoutFrom(parse("a").toExpression())));
  EXPECT_EQ(describe(validator.errors()), Errors{"UnknownColumnReference(.a)"});
}

TEST(Validator, ReuseKeepsTheListAndTheFormsAnswerDifferently) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  const auto good = parseAs<ast::QuerySpecification>("SELECT id FROM cities");
  const auto goodUpdate = parseAs<ast::UpdateStatement>("UPDATE cities SET id = 1");
  EXPECT_TRUE(validator.validate(good));
  EXPECT_FALSE(validator.validate(parseAs<ast::QuerySpecification>("SELECT nosuch.* FROM cities")));

  // A good query now answers false and adds nothing; a good UPDATE answers true.
  EXPECT_FALSE(validator.validate(good));
  EXPECT_TRUE(validator.validate(goodUpdate));
  EXPECT_FALSE(validator.validate(parseAs<ast::UpdateStatement>("UPDATE nosuch SET id = 1")));
  EXPECT_EQ(describe(validator.errors()), (Errors{"UnknownTableReference(nosuch)", "UnknownTableReference(nosuch)"}));

  validator.mErrors.clear();
  EXPECT_TRUE(validator.validate(good));
}

TEST(Validator, ExternalScopeServesQueriesButNotUpdates) {
  const auto host = testHost();
  const auto roads = std::make_shared<TableInfoScope>(ast::TablePrimary{L"roads", L""}, host.table(L"roads"));
  Validator validator(host, host, roads);
  EXPECT_TRUE(validator.validate(parseAs<ast::QuerySpecification>("SELECT id FROM cities WHERE roads.city_id = id")));
  EXPECT_TRUE(validator.validate(parseAs<ast::QuerySpecification>("SELECT city_id FROM cities")));
  EXPECT_FALSE(validator.validate(parseAs<ast::UpdateStatement>("UPDATE cities SET id = city_id")));
  EXPECT_EQ(describe(validator.errors()), Errors{"UnknownColumnReference(.city_id)"});
}

// A host whose function lookup fails with exceptions of its own.
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
  const auto query = [](const std::string& text) { return parseAs<ast::QuerySpecification>(text); };
  EXPECT_THROW(validator.validate(query("SELECT nosuch.* FROM cities WHERE boom()")), std::runtime_error);
  EXPECT_THROW(validator.validate(query("SELECT nosuch.* FROM cities WHERE nomemory()")), std::bad_alloc);
  EXPECT_THROW(validator.validate(parseAs<ast::UpdateStatement>("UPDATE cities SET id = boom()")), std::runtime_error);
  EXPECT_THROW(validator.validate(query("SELECT CAST(id AS varchar(id)) FROM cities")), ast::BadNodeTypeException);
  EXPECT_THROW(validator.validate(query("SELECT CAST(id AS varchar(99999999999999999999999)) FROM cities")),
               std::out_of_range);
  // An empty handle inside an expression of a hand-made tree.
  auto broken = query("SELECT nosuch.* FROM cities");
  broken.where = ast::makeNode<ast::ExpressionNode>(ast::Operation(OperationCode::Not, {ast::ExpressionNode()}));
  EXPECT_THROW(validator.validate(broken), ast::NullNodeException);
  // What was gathered before stays.
  EXPECT_EQ(describe(validator.errors()), Errors(3, "UnknownTableReference(nosuch)"));
}

TEST(Validator, ListedErrorsAreClonesOfTheMostDerivedClass) {
  const auto host = testHost();
  Validator validator(host, host, nullptr);
  validator.validate(parseAs<ast::QuerySpecification>("SELECT id FROM cities WHERE t.zz = 1"));
  ASSERT_EQ(validator.errors().size(), 1u);
  const auto* error = dynamic_cast<const UnknownColumnReference*>(validator.errors()[0].get());
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->type(), SqlErrorType::UnknownColumnReference);
  EXPECT_EQ(error->tableName, L"t");
}

} // namespace
} // namespace velmor::sql::validation_test
