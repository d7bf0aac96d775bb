// Parsed statements, the test host and error descriptions shared by the validation tests.
#pragma once

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/validation/SemanticErrors.h>

#include "scope/Describe.h"
#include "support/SampleHost.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmor::sql::validation_test {

/// The tree of a statement or an expression; a syntax error fails the test input itself.
inline ast::Node parse(const std::string& text) {
  const ParseContext context;
  SqlParser parser(context);
  if (!parser.parse(text)) throw std::invalid_argument("test input does not parse: " + text);
  return parser.result;
}

template <class Record>
Record parseAs(const std::string& text) {
  return ast::getNodeValue<Record>(parse(text));
}

inline std::vector<std::string> describe(const std::vector<std::shared_ptr<SqlError>>& errors) {
  std::vector<std::string> out;
  for (const auto& error : errors) out.push_back(test::faultText(*error));
  return out;
}

/// The sample host, counting its function and table lookups.
class CountingHost : public sample::SampleHost {
public:
  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override {
    ++mLookups;
    return SampleHost::function(name);
  }
  std::shared_ptr<TableInfo> table(const std::wstring& name) const override {
    ++mLookups;
    return SampleHost::table(name);
  }
  mutable int mLookups = 0;
};

/// The sample host with CAST between integer and varchar, and IN over a query.
inline sample::SampleHost testHost() {
  using type::PlainType;
  sample::SampleHost host;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> casts;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> in;
  for (const PlainType from : {PlainType::Integer, PlainType::VarChar}) {
    for (const PlainType to : {PlainType::Integer, PlainType::VarChar})
      casts.push_back(std::make_shared<OperatorOverloadInfo>(to, std::vector{from, to}, sample::sameAs(1)));
    in.push_back(std::make_shared<OperatorOverloadInfo>(PlainType::Boolean, std::vector{from, PlainType::Array},
                                                        sample::returns(PlainType::Boolean)));
  }
  host.addOperator(OperationCode::Cast, std::move(casts));
  host.addOperator(OperationCode::In, std::move(in));
  return host;
}

} // namespace velmor::sql::validation_test
