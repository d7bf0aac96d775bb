// Parsed statements, the test host and error descriptions shared by the validation tests.
#pragma once

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/validation/SemanticErrors.h>

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

inline std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

/// "Name(fields)" for the faults the library raises, the number otherwise.
inline std::string describe(const SqlError& error) {
  const auto names = [](const std::wstring& table, const std::wstring& column) {
    return "(" + narrow(table) + "." + narrow(column) + ")";
  };
  if (auto* e = dynamic_cast<const NonExistentTable*>(&error)) return "NonExistentTable(" + narrow(e->tableName) + ")";
  if (auto* e = dynamic_cast<const UnknownTableReference*>(&error))
    return "UnknownTableReference(" + narrow(e->tableName) + ")";
  if (auto* e = dynamic_cast<const AmbiguousTablesReference*>(&error))
    return "AmbiguousTablesReference(" + narrow(e->tableName) + ")";
  if (auto* e = dynamic_cast<const UnknownColumnReference*>(&error))
    return "UnknownColumnReference" + names(e->tableName, e->columnName);
  if (auto* e = dynamic_cast<const AmbiguousColumnReference*>(&error))
    return "AmbiguousColumnReference" + names(e->tableName, e->columnName);
  if (auto* e = dynamic_cast<const UnknownFunction*>(&error)) return "UnknownFunction(" + narrow(e->functionName) + ")";
  if (auto* e = dynamic_cast<const NoGoodOperatorOverload*>(&error))
    return "NoGoodOperatorOverload(" + std::to_string(static_cast<int>(e->operation)) + ")";
  if (auto* e = dynamic_cast<const OperatorNotSupported*>(&error))
    return "OperatorNotSupported(" + std::to_string(static_cast<int>(e->operation)) + ")";
  if (dynamic_cast<const AggregateInWhereClause*>(&error)) return "AggregateInWhereClause";
  if (dynamic_cast<const ContextQuery*>(&error)) return "ContextQuery";
  return "type " + std::to_string(static_cast<int>(error.type()));
}

inline std::vector<std::string> describe(const std::vector<std::shared_ptr<SqlError>>& errors) {
  std::vector<std::string> out;
  for (const auto& error : errors) out.push_back(describe(*error));
  return out;
}

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
