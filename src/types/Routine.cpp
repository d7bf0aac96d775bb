// Overload signatures and the destructors of the host interfaces.
#include <velmor/sql/types/Routine.h>

#include "types/OverloadRules.h"

#include <atomic>
#include <limits>
#include <utility>

namespace velmor::sql {

OverloadInfo::OverloadInfo(type::PlainType returnType, std::vector<type::PlainType> parameters,
                           FullTypeFunction fullType, Determinism determinism,
                           std::vector<type::PlainType> optionalParameters, bool variadic)
    : mReturnType(returnType), mVariadic(variadic), mDeterminism(determinism),
      mParameters(std::move(parameters)), mFullType(std::move(fullType)),
      mOptionalParameters(std::move(optionalParameters)) {}

OverloadInfo::~OverloadInfo() = default;

// A position or count beyond what size_t holds (a 32-bit build) lies past every parameter.
type::PlainType OverloadInfo::parameterType(unsigned long long position) const {
  if (position > std::numeric_limits<std::size_t>::max()) {
    return mVariadic && !mParameters.empty() ? mParameters.back() : type::PlainType::Fault;
  }
  return detail::parameterAt(*this, static_cast<std::size_t>(position));
}

std::vector<type::PlainType> OverloadInfo::parameterTypes(unsigned long long count) const {
  std::vector<type::PlainType> result;
  result.reserve(count);
  for (unsigned long long i = 0; i < count; ++i) result.push_back(parameterType(i));
  return result;
}

bool OverloadInfo::canTakeParams(unsigned long long count) const {
  if (count > std::numeric_limits<std::size_t>::max()) return mVariadic;
  return detail::takesCount(*this, static_cast<std::size_t>(count));
}

bool OverloadInfo::matches(const std::vector<type::PlainType>& types) const {
  if (!canTakeParams(types.size())) return false;
  for (std::size_t i = 0; i < types.size(); ++i) {
    if (parameterType(i) != types[i]) return false;
  }
  return true;
}

std::shared_ptr<Type> OverloadInfo::calcFullType(const std::vector<std::shared_ptr<Type>>& types) const {
  return mFullType(types);
}

OperatorOverloadInfo::OperatorOverloadInfo(type::PlainType returnType,
                                           std::vector<type::PlainType> parameters,
                                           FullTypeFunction fullType, ast::Quantifier quantifier)
    : OverloadInfo(returnType, std::move(parameters), std::move(fullType), Determinism{0}, {}, false),
      mQuantifier(quantifier) {}

bool OperatorOverloadInfo::matches(const std::vector<type::PlainType>& types,
                                   ast::Quantifier quantifier) const {
  return quantifier == mQuantifier && OverloadInfo::matches(types);
}

FunctionInfo::~FunctionInfo() = default;
OperatorInfo::~OperatorInfo() = default;
GlobalTypeContext::~GlobalTypeContext() = default;
RevisedContext::~RevisedContext() = default;

std::uint64_t RevisedContext::nextRevision() noexcept {
  static std::atomic<std::uint64_t> next{1};
  return next.fetch_add(1, std::memory_order_relaxed);
}

} // namespace velmor::sql
