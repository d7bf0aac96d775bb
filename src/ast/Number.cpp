// Reading a numeric literal as an unsigned count (LIMIT, OFFSET, type lengths).
#include <velmor/sql/ast/AST.h>

#include <cmath>
#include <cstdint>
#include <string>

namespace velmor::sql::ast {
namespace {

// Truncation to a signed 64-bit integer as the processor does it: a value out of range or NaN
// gives the "integer indefinite" 0x8000000000000000 instead of undefined behaviour.
std::int64_t truncateToSigned(double value) {
  constexpr double limit = 9223372036854775808.0; // 2^63
  if (!(value > -limit - 1.0 && value < limit)) return INT64_MIN;
  return static_cast<std::int64_t>(value);
}

} // namespace

std::uint64_t Number::unsignedInteger() const {
  if (text.empty()) return 0;
  if (kind == NumberKind::Integer) {
    const long long value = std::stoll(text);
    // Negation in unsigned arithmetic so that the smallest value has an absolute value too.
    return value < 0 ? 0ull - static_cast<unsigned long long>(value)
                     : static_cast<unsigned long long>(value);
  }
  const double rounded = std::floor(std::fabs(std::stod(text)) + 0.5);
  constexpr double twoTo63 = 9223372036854775808.0;
  // Values from 2^63 up do not fit a signed truncation: shift them down and set the top bit.
  if (rounded >= twoTo63)
    return static_cast<std::uint64_t>(truncateToSigned(rounded - twoTo63)) | (1ull << 63);
  return static_cast<std::uint64_t>(truncateToSigned(rounded));
}

} // namespace velmor::sql::ast
