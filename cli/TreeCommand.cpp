// velmor-sql tree: the syntax tree of a text as JSON, or its syntax error.
#include "Commands.h"
#include "Input.h"
#include "JsonTree.h"

#include <velmor/sql/parser/SqlParser.h>

#include <iostream>
#include <memory>
#include <stdexcept>

namespace velmor::cli {

int runTree(const std::vector<std::string>& options) {
  std::vector<std::string> args = options;
  const bool strict = takeFlag(args, "--strict");
  if (auto status = handleOptions("tree", args)) return *status;
  const std::string text = readInput(args);
  if (!reportSkippedText(text, strict)) return exitFailure;

  const sql::ParseContext context;
  sql::SqlParser parser(context);
  try {
    parser.parse(text);
  } catch (const std::runtime_error& error) {
    std::cerr << "velmor-sql tree: " << error.what() << '\n';
    return exitUsage;
  }
  if (!parser.errors.empty()) {
    for (const std::shared_ptr<sql::SqlError>& error : parser.errors) std::cerr << error->what() << '\n';
    return exitFailure;
  }
  writeIndented(std::cout, treeToJson(parser.result));
  std::cout << '\n';
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace velmor::cli
