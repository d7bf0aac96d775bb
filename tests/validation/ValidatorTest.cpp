// The validator beyond the golden cases: queries without FROM, reuse of one object, an outer
// scope, and exceptions that are no SqlError.
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/validation/Validator.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace velmor::sql::validation_test {
namespace {

using Errors = std::vector<std::string>;

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
  EXPECT_EQ(describe(validator.errors()), Errors{"UnknownColumnReference .a"});
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
  EXPECT_EQ(describe(validator.errors()), (Errors{"UnknownTableReference nosuch", "UnknownTableReference nosuch"}));

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
  EXPECT_EQ(describe(validator.errors()), Errors{"UnknownColumnReference .city_id"});
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
  EXPECT_EQ(describe(validator.errors()), Errors(3, "UnknownTableReference nosuch"));
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
