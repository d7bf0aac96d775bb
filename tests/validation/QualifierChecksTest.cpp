// Unknown and doubled table qualifiers thrown without a list (the golden cases gather them).
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/validation/QualifierChecks.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

namespace velmor::sql::validation_test {
namespace {

using Errors = std::vector<std::string>;

TEST(QualifierChecks, UnknownQualifiersWithoutScopeOrList) {
  const CountingHost host;
  UnknownTableQualifiersVisitor visitor(host, nullptr);
  visitor.visitAllNodes(parse("a + cities.id"));
  EXPECT_EQ(host.mLookups, 1);  // the unqualified column costs no host call

  try {
    visitor.visitAllNodes(parse("p.a + q.b"));
    FAIL() << "no throw";
  } catch (const UnknownTableReference& error) {
    EXPECT_EQ(error.tableName, L"q");  // the last operand is walked first
  }
  std::vector<std::shared_ptr<SqlError>> errors;
  visitor.setTargetErrorList(&errors);
  visitor.handleTableName(L"p");
  visitor.handleTableName(L"");
  visitor.setTargetErrorList(nullptr);
  EXPECT_THROW(visitor.handleTableName(L"p"), UnknownTableReference);
  EXPECT_EQ(describe(errors), Errors{"UnknownTableReference p"});
}

TEST(QualifierChecks, AmbiguousWithoutListThrowsByValue) {
  AmbiguousTableQualifiersVisitor visitor;
  const auto from = parseAs<ast::QuerySpecification>("SELECT * FROM t AS a, t AS a, t AS b").from;
  visitor.visitAllNodes(from[0]);
  // Brackets kept in a hand-made name are ignored too, and the error keeps the name as written.
  try {
    visitor.visitAllNodes(ast::makeNode(ast::TablePrimary{L"[T]", L"[A]"}));
    FAIL() << "no throw";
  } catch (const AmbiguousTablesReference& error) {
    EXPECT_EQ(error.tableName, L"[T]");
  }
  // The set is left as it was: the pair is still known.
  EXPECT_THROW(visitor.visitAllNodes(from[1]), AmbiguousTablesReference);
  EXPECT_NO_THROW(visitor.visitAllNodes(from[2]));
}

} // namespace
} // namespace velmor::sql::validation_test
