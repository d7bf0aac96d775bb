// velmor-sql type: the type of an expression in the scope of some of the catalogue's tables.
#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/host/Messages.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/errors/SemanticErrors.h>

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace velmor::cli {

using namespace sql::host; // type names and UTF-8
namespace {

class NoParseContext : public sql::ParseContext {};

// Takes "--from A,B" (or "--from=A,B") out of the leading options; names may repeat the option.
bool takeTables(std::vector<std::string>& args, std::vector<std::string>& tables) {
  for (std::size_t i = 0; i < args.size();) {
    const std::string& arg = args[i];
    std::string list;
    if (arg == "--from") {
      if (i + 1 >= args.size()) return false;
      list = args[i + 1];
      args.erase(args.begin() + static_cast<std::ptrdiff_t>(i), args.begin() + static_cast<std::ptrdiff_t>(i) + 2);
    } else if (arg.rfind("--from=", 0) == 0) {
      list = arg.substr(7);
      args.erase(args.begin() + static_cast<std::ptrdiff_t>(i));
    } else if (arg.size() > 2 && arg.compare(0, 2, "--") == 0) {
      ++i;
      continue;
    } else {
      break;
    }
    std::stringstream names(list);
    std::string name;
    while (std::getline(names, name, ',')) {
      if (name.empty()) return false;
      tables.push_back(name);
    }
    if (list.empty()) return false;
  }
  return true;
}

} // namespace

int runType(const std::vector<std::string>& args) {
  std::vector<std::string> rest = args;
  const auto catalogue = takeCatalogue("type", rest);
  if (!catalogue) return exitUsage;
  std::vector<std::string> tables;
  if (!takeTables(rest, tables)) {
    std::cerr << "velmor-sql type: --from needs TABLE[,TABLE...]\n";
    printCommandUsage("type", std::cerr);
    return exitUsage;
  }
  sql::Scoping scoping = sql::Scoping::Standard;
  if (!takeScoping("type", rest, scoping)) return exitUsage;
  if (auto status = handleOptions("type", rest)) return *status;

  NoParseContext parseContext;
  sql::SqlParser parser(parseContext);
  if (!parser.parse(readInput(rest))) {
    for (const auto& error : parser.errors) std::cerr << error->what() << '\n';
    return exitFailure;
  }
  if (!parser.result.isExpression()) {
    const char* kind = sql::ast::recordName(parser.result);
    std::cerr << "velmor-sql type: not an expression: " << (kind ? kind : "nothing") << '\n';
    return exitUsage;
  }

  try {
    // The tables side by side, as in a FROM list without aliases.
    std::vector<std::shared_ptr<sql::ColumnInfoScope>> scopes;
    for (const auto& name : tables) {
      const std::wstring wide = fromUtf8(name);
      auto info = catalogue->table(wide);
      if (!info) throw sql::NonExistentTable(wide);
      scopes.push_back(std::make_shared<sql::TableInfoScope>(sql::ast::TablePrimary{wide, L""}, std::move(info)));
    }
    const sql::JoinScope scope(std::move(scopes));
    sql::TypeInferer inferer(*catalogue, scope);
    inferer.setScoping(scoping, catalogue.get());
    std::cout << catalogue->typeName(inferer.inferType(parser.result.toExpression())) << '\n';
  } catch (const sql::SqlError& error) {
    std::cout << faultMessage(error, catalogue.get()) << " [" << faultClassName(error) << "]\n";
    return exitFailure;
  }
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace velmor::cli
