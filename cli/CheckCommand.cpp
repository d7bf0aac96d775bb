// velmor-sql check: a query or an UPDATE validated against the catalogue.
#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"
#include <velmor/sql/host/TypeNames.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/validation/Validator.h>

#include <iostream>
#include <string>
#include <vector>

namespace velmor::cli {

using namespace sql::host; // type names and UTF-8
namespace {

class NoParseContext : public sql::ParseContext {};

} // namespace

int runCheck(const std::vector<std::string>& args) {
  std::vector<std::string> rest = args;
  const auto catalogue = takeCatalogue("check", rest);
  if (!catalogue) return exitUsage;
  const bool strict = takeFlag(rest, "--strict");
  if (auto status = handleOptions("check", rest)) return *status;
  const std::string text = readInput(rest);
  if (!reportSkippedText(text, strict)) return exitFailure;

  NoParseContext parseContext;
  sql::SqlParser parser(parseContext);
  if (!parser.parse(text)) {
    for (const auto& error : parser.errors) std::cerr << error->what() << '\n';
    return exitFailure;
  }

  sql::Validator validator(*catalogue, *catalogue);
  bool good = false;
  if (sql::ast::nodeIs<sql::ast::QuerySpecification>(parser.result)) {
    good = validator.validate(sql::ast::getNodeValue<sql::ast::QuerySpecification>(parser.result));
  } else if (sql::ast::nodeIs<sql::ast::UpdateStatement>(parser.result)) {
    good = validator.validate(sql::ast::getNodeValue<sql::ast::UpdateStatement>(parser.result));
  } else {
    const char* kind = sql::ast::recordName(parser.result);
    std::cerr << "velmor-sql check: not checkable: " << (kind ? kind : "nothing")
              << " (only a query specification or an UPDATE can be checked)\n";
    return exitUsage;
  }

  if (good) {
    std::cout << "ok\n";
  } else {
    for (const auto& error : validator.mErrors) std::cout << errorLine(*error) << '\n';
  }
  std::cout.flush();
  return good ? exitOk : exitFailure;
}

} // namespace velmor::cli
