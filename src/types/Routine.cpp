// Overload signatures and the destructors of the host interfaces.
#include <velmor/sql/types/Routine.h>

#include <utility>

namespace velmor::sql {

OverloadInfo::OverloadInfo(type::PlainType returnType, std::vector<type::PlainType> parameters,
                           FullTypeFunction fullType, Determinism determinism,
                           std::vector<type::PlainType> optionalParameters, bool variadic)
    : mReturnType(returnType), mVariadic(variadic), mDeterminism(determinism),
      mParameters(std::move(parameters)), mFullType(std::move(fullType)),
      mOptionalParameters(std::move(optionalParameters)) {}

OverloadInfo::~OverloadInfo() = default;

type::PlainType OverloadInfo::parameterType(unsigned long long position) const {
  const auto required = mParameters.size();
  if (position < required) return mParameters[position];
  if (position < required + mOptionalParameters.size()) return mOptionalParameters[position - required];
  // A variadic overload repeats its last required parameter, never an optional one. Without
  // a required parameter there is nothing to repeat: treat it as past the end.
  if (mVariadic && required != 0) return mParameters.back();
  return type::PlainType::Fault;
}

std::vector<type::PlainType> OverloadInfo::parameterTypes(unsigned long long count) const {
  std::vector<type::PlainType> result;
  result.reserve(count);
  for (unsigned long long i = 0; i < count; ++i) result.push_back(parameterType(i));
  return result;
}

bool OverloadInfo::canTakeParams(unsigned long long count) const {
  if (count < mParameters.size()) return false;
  if (mVariadic) return true;
  return count <= mParameters.size() + mOptionalParameters.size();
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

} // namespace velmor::sql
