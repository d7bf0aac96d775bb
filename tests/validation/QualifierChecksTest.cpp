// Unknown and doubled table qualifiers, gathered into a list or thrown.
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/validation/QualifierChecks.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

namespace velmor::sql::validation_test {
namespace {

using Errors = std::vector<std::string>;

// The sample host, counting its table lookups.
class CountingHost : public sample::SampleHost {
public:
  std::shared_ptr<TableInfo> table(const std::wstring& name) const override {
    ++mLookups;
    return SampleHost::table(name);
  }
  mutable int mLookups = 0;
};

struct Case {
  const char* text;
  Errors errors;
};

// Select lists searched with a scope that knows the alias x only.
const Case unknownCases[] = {
    {"SELECT roads.id, COUNTRIES.* FROM x", {}},
    {"SELECT x.id, X.* FROM x", {}},
    {"SELECT nosuch.a, NoSuch.* FROM x", {"UnknownTableReference(nosuch)", "UnknownTableReference(NoSuch)"}},
    {"SELECT q.a + q.b FROM x", {"UnknownTableReference(q)", "UnknownTableReference(q)"}},
    {"SELECT (SELECT sub.a FROM roads AS sub) FROM x", {"UnknownTableReference(sub)"}},
    {"SELECT upper(city.name), a FROM x", {"UnknownTableReference(city)"}},
};

class UnknownQualifiers : public testing::TestWithParam<Case> {};

TEST_P(UnknownQualifiers, Gathered) {
  const sample::SampleHost host;
  const TableInfoScope scope(ast::TablePrimary{L"x", L""}, host.table(L"cities"));
  UnknownTableQualifiersVisitor visitor(host, &scope);
  std::vector<std::shared_ptr<SqlError>> errors;
  visitor.setTargetErrorList(&errors);
  for (const auto& item : parseAs<ast::QuerySpecification>(GetParam().text).selectList) visitor.visitAllNodes(item);
  EXPECT_EQ(describe(errors), GetParam().errors);
}

const auto caseName = [](const auto& info) { return "case" + std::to_string(info.index); };
INSTANTIATE_TEST_SUITE_P(QualifierChecks, UnknownQualifiers, testing::ValuesIn(unknownCases), caseName);

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
  EXPECT_EQ(describe(errors), Errors{"UnknownTableReference(p)"});
}

const Case ambiguousCases[] = {
    {"SELECT * FROM t, t", {"AmbiguousTablesReference(t)"}},
    {"SELECT * FROM t, T", {"AmbiguousTablesReference(T)"}},
    {"SELECT * FROM [t], t", {"AmbiguousTablesReference(t)"}},
    {"SELECT * FROM t AS a, t AS b", {}},
    {"SELECT * FROM t AS a, u AS a", {}},
    {"SELECT * FROM t AS a, t AS A", {"AmbiguousTablesReference(t)"}},
    {"SELECT * FROM t, t AS t", {"AmbiguousTablesReference(t)"}},
    {"SELECT * FROM t, t, t", {"AmbiguousTablesReference(t)", "AmbiguousTablesReference(t)"}},
    {"SELECT * FROM t, (SELECT * FROM t) AS d", {"AmbiguousTablesReference(t)"}},
    {"SELECT * FROM t AS x JOIN t AS x ON 1 = 1", {"AmbiguousTablesReference(t)"}},
};

class AmbiguousQualifiers : public testing::TestWithParam<Case> {};

TEST_P(AmbiguousQualifiers, Gathered) {
  AmbiguousTableQualifiersVisitor visitor;
  std::vector<std::shared_ptr<SqlError>> errors;
  visitor.setTargetErrorList(&errors);
  for (const auto& reference : parseAs<ast::QuerySpecification>(GetParam().text).from) visitor.visitAllNodes(reference);
  EXPECT_EQ(describe(errors), GetParam().errors);
}

INSTANTIATE_TEST_SUITE_P(QualifierChecks, AmbiguousQualifiers, testing::ValuesIn(ambiguousCases), caseName);

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
