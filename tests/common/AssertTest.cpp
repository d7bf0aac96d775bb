// The assertion facility: active in Release, reports expression and source, then aborts.
#include <velmor/sql/Assert.h>

#include <gtest/gtest.h>

namespace {

int returned = 0;
void countingHandler(const char*, const char*) { ++returned; }

TEST(AssertDeathTest, ReportsExpressionAndSourceThenAborts) {
  EXPECT_DEATH(VELMOR_SQL_ASSERT(1 + 1 == 3, "AST"), "1 \\+ 1 == 3.*AST");
}

TEST(Assert, HandlerThatReturnsLetsTheCallerGoOn) {
  auto previous = velmor::sql::setAssertionHandler(&countingHandler);
  VELMOR_SQL_ASSERT(false, "TernaryLogic");
  VELMOR_SQL_ASSERT(true, "TernaryLogic");
  velmor::sql::setAssertionHandler(previous);
  EXPECT_EQ(returned, 1);
}

} // namespace
