// Column numbers and suffixes are written without a formatted print; the text must be the
// one std::to_wstring gives.
#include "common/Decimal.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

TEST(Decimal, WritesWhatToWstringWrites) {
  const std::int64_t values[] = {0, 1, 9, 10, 11, 99, 100, 2147483647, 2147483648LL, -1, -10,
                                 std::numeric_limits<std::int64_t>::max(),
                                 std::numeric_limits<std::int64_t>::min()};
  for (const std::int64_t value : values) {
    std::wstring text = L"x";
    velmor::sql::detail::appendDecimal(text, value);
    EXPECT_EQ(text, L"x" + std::to_wstring(value)) << value;
  }
}

} // namespace
