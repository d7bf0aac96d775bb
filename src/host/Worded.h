// Overloads made from signatures in words keep their result rule, so that a catalogue can be
// written back as a file.
#pragma once

#include <velmor/sql/host/Catalogue.h>

namespace velmor::sql::host {

class WordedOverload final : public OverloadInfo {
public:
  WordedOverload(Result result, type::PlainType returnType, std::vector<type::PlainType> parameters,
                 FullTypeFunction fullType, Determinism determinism, std::vector<type::PlainType> optionalParameters,
                 bool variadic)
      : OverloadInfo(returnType, std::move(parameters), std::move(fullType), determinism,
                     std::move(optionalParameters), variadic),
        mResult(std::move(result)) {}
  Result mResult;
};

class WordedOperatorOverload final : public OperatorOverloadInfo {
public:
  WordedOperatorOverload(Result result, type::PlainType returnType, std::vector<type::PlainType> parameters,
                         FullTypeFunction fullType, ast::Quantifier quantifier)
      : OperatorOverloadInfo(returnType, std::move(parameters), std::move(fullType), quantifier),
        mResult(std::move(result)) {}
  Result mResult;
};

} // namespace velmor::sql::host
