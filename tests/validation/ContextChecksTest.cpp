// Context casts and aggregate detection.
#include <velmor/sql/validation/ContextChecks.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

namespace velmor::sql::validation_test {
namespace {

// The sample host (objectinfo is ContextOpaque, count Aggregate), counting function lookups.
class CountingHost : public sample::SampleHost {
public:
  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override {
    ++mLookups;
    return SampleHost::function(name);
  }
  mutable int mLookups = 0;
};

struct Case {
  const char* text;
  bool expected;
};

const Case contextCases[] = {
    {"SELECT CAST(a AS integer) FROM t", false},
    {"SELECT CAST(a AS varchar(20)) FROM t", false},
    {"SELECT CAST(a AS nonsense) FROM t", true},
    {"SELECT CAST(a AS nonsense(1)) FROM t", true},
    {"SELECT a FROM t WHERE CAST(a AS t.x) = 1", true},
    {"SELECT CAST(a AS 5) FROM t", true},
    {"SELECT CAST(a AS date(1)) FROM t", true},
    {"SELECT CAST(CAST(a AS nonsense) AS integer) FROM t", true},
    // Opaque functions hide their arguments outside a select list only.
    {"SELECT objectinfo(CAST(a AS nonsense)) FROM t", true},
    {"SELECT a FROM t WHERE ObjectInfo(CAST(a AS nonsense)) = 1", false},
    {"SELECT a FROM t WHERE upper(CAST(a AS nonsense)) = 1", true},
    {"SELECT a FROM t HAVING count(CAST(a AS nonsense)) = 1", true},
    {"SELECT a FROM t WHERE nofunction(CAST(a AS nonsense)) = 1", true},
    {"SELECT (SELECT a FROM u WHERE objectinfo(CAST(a AS nonsense))) FROM t", false},
    {"SELECT (SELECT objectinfo(CAST(a AS nonsense)) FROM u) FROM t", true},
    {"SELECT (SELECT a FROM u), objectinfo(CAST(a AS nonsense)) FROM t", true},
    // Every clause that produces values.
    {"SELECT a FROM t ORDER BY a, CAST(a AS nonsense)", true},
    {"SELECT a FROM t GROUP BY CAST(a AS nonsense), a", true},
    {"SELECT a FROM t GROUP BY a HAVING CAST(a AS nonsense)", true},
    {"SELECT * FROM (SELECT CAST(a AS nonsense) AS x FROM t) AS d", true},
    {"SELECT * FROM t JOIN u ON CAST(a AS nonsense) = 1", true},
    {"SELECT * FROM t NATURAL JOIN u", false},
    {"SELECT a FROM t WHERE a IN (1, CAST(a AS nonsense))", true},
    {"SELECT a FROM t WHERE EXISTS (SELECT * FROM t UNION SELECT CAST(a AS nonsense) FROM u)", true},
    {"SELECT a FROM t LIMIT 1", false},
};

class ContextQueries : public testing::TestWithParam<Case> {};

TEST_P(ContextQueries, IsContext) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  EXPECT_EQ(visitor.isContext(parseAs<ast::QuerySpecification>(GetParam().text)), GetParam().expected);
  EXPECT_FALSE(visitor.inSelect());
}

const auto caseName = [](const auto& info) { return "case" + std::to_string(info.index); };
INSTANTIATE_TEST_SUITE_P(ContextCheck, ContextQueries, testing::ValuesIn(contextCases), caseName);

TEST(ContextCheck, AnAnswerIsFinalForTheObject) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  const auto clean = parseAs<ast::QuerySpecification>("SELECT a FROM t");
  EXPECT_FALSE(visitor.isContext(clean));
  EXPECT_TRUE(visitor.isContext(parseAs<ast::QuerySpecification>("SELECT CAST(a AS x) FROM t")));
  EXPECT_TRUE(visitor.isContext(clean));
}

// Statements are visited directly; isContext of a clean query then reads the answer.
struct StatementCase {
  const char* text;
  bool expected;
  int lookups;
};

const StatementCase statementCases[] = {
    {"UPDATE t SET a = upper(b) WHERE objectinfo(CAST(a AS x))", false, 2},
    {"UPDATE t SET a = CAST(a AS x) WHERE upper(b)", true, 0},
    {"DELETE FROM t WHERE CAST(a AS x) = 1", true, 0},
    {"DELETE FROM t", false, 0},
    {"INSERT INTO t SELECT CAST(a AS x) FROM u", true, 0},
    {"INSERT INTO t VALUES (1, CAST(a AS x))", true, 0},
    {"INSERT INTO t DEFAULT VALUES", false, 0},
};

class ContextStatements : public testing::TestWithParam<StatementCase> {};

TEST_P(ContextStatements, IsContext) {
  const CountingHost host;
  ContextCheckVisitor visitor(host);
  parse(GetParam().text).accept(visitor);
  EXPECT_EQ(host.mLookups, GetParam().lookups);
  EXPECT_EQ(visitor.isContext(parseAs<ast::QuerySpecification>("SELECT upper(a) FROM t")), GetParam().expected);
  EXPECT_EQ(host.mLookups, GetParam().lookups);  // a select list asks the host nothing
}

INSTANTIATE_TEST_SUITE_P(ContextCheck, ContextStatements, testing::ValuesIn(statementCases), caseName);

TEST(ContextCheck, ASizeThatIsNoNumberPassesThrough) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  EXPECT_THROW(visitor.isContext(parseAs<ast::QuerySpecification>("SELECT CAST(a AS varchar(b)) FROM t")),
               ast::BadNodeTypeException);
}

const Case aggregateCases[] = {
    {"count(a)", true},
    {"a + 1", false},
    {"abs(SUM(a))", true},
    {"nofunction(a)", false},
    {"objectinfo(a, 1)", false},
    {"SELECT max(a) FROM t", true},
    {"SELECT a FROM t GROUP BY a", true},
    {"a IN (SELECT count(b) FROM u)", false},
    {"a IN (SELECT b FROM u GROUP BY b)", true},
    {"SELECT (SELECT count(b) FROM u) FROM t", false},
    {"SELECT (SELECT b FROM u GROUP BY b) FROM t", true},
    {"(SELECT b FROM u) + avg(a)", true},
    {"EXISTS (SELECT a FROM t UNION SELECT count(b) FROM u)", false},
};

class AggregateQueries : public testing::TestWithParam<Case> {};

TEST_P(AggregateQueries, IsAggregate) {
  const sample::SampleHost host;
  AggregateQueryDetector detector(host);
  EXPECT_EQ(detector.isAggregate(parse(GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(AggregateQueryDetector, AggregateQueries, testing::ValuesIn(aggregateCases), caseName);

TEST(AggregateQueryDetector, StopsAtTheFirstAggregateAndThrowsOnAnEmptyHandle) {
  const CountingHost host;
  AggregateQueryDetector detector(host);
  // The walk takes the last operand first and stops there.
  EXPECT_TRUE(detector.isAggregate(parse("upper(a) + count()")));
  EXPECT_EQ(host.mLookups, 1);
  EXPECT_THROW(detector.isAggregate(ast::Node()), ast::NullNodeException);
}

} // namespace
} // namespace velmor::sql::validation_test
