// Context casts and aggregate detection beyond the golden cases: answers that stay, faults
// that pass through, and where the walk stops.
#include <velmor/sql/validation/ContextChecks.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

namespace velmor::sql::validation_test {
namespace {

TEST(ContextCheck, AnAnswerIsFinalForTheObject) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  const auto clean = parseAs<ast::QuerySpecification>("SELECT a FROM t");
  EXPECT_FALSE(visitor.isContext(clean));
  EXPECT_TRUE(visitor.isContext(parseAs<ast::QuerySpecification>("SELECT CAST(a AS x) FROM t")));
  EXPECT_TRUE(visitor.isContext(clean));
}

TEST(ContextCheck, ASizeThatIsNoNumberPassesThrough) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  EXPECT_THROW(visitor.isContext(parseAs<ast::QuerySpecification>("SELECT CAST(a AS varchar(b)) FROM t")),
               ast::BadNodeTypeException);
}

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
