// velmor-sql format and rename: a statement written back as canonical SQL.

#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"

#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace velmor::cli {
namespace {

using sql::host::fromUtf8;
using sql::host::toUtf8;

class NoParseContext : public sql::ParseContext {};

// Parses the text and writes it with `builder`; syntax errors go to stderr, one per line.
// A tree the writer cannot write (a row of no values) fails the same way, with its reason.
int formatWith(sql::SqlStringBuilder& builder, const std::string& text) {
  std::string out;
  try {
    NoParseContext parseContext;
    sql::SqlParser parser(parseContext);
    if (!parser.parse(text)) {
      for (const auto& error : parser.errors) std::cerr << error->what() << '\n';
      return exitFailure;
    }
    out = toUtf8(builder.buildString(parser.result));
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return exitFailure;
  }
  out += '\n';
  std::cout.write(out.data(), static_cast<std::streamsize>(out.size()));
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace

int runFormat(const std::vector<std::string>& args) {
  std::vector<std::string> rest = args;
  const auto context = takeStringBuildContext("format", rest);
  if (!context) return exitUsage;
  bool useContext = true;
  if (!rest.empty() && rest.front() == "--no-context") {
    useContext = false;
    rest.erase(rest.begin());
  }
  if (auto status = handleOptions("format", rest)) return *status;
  sql::SqlStringBuilder builder(useContext ? context.get() : nullptr);
  return formatWith(builder, readInput(rest));
}

int runRename(const std::vector<std::string>& options) {
  std::vector<std::string> args = options;
  const auto context = takeStringBuildContext("rename", args);
  if (!context) return exitUsage;
  if (auto status = handleOptions("rename", args)) return *status;
  if (args.size() < 2) {
    printCommandUsage("rename", std::cerr);
    return exitUsage;
  }
  const std::vector<std::string> rest(args.begin() + 2, args.end());
  sql::RenameTableBuilder builder(context.get(), fromUtf8(args[0]), fromUtf8(args[1]));
  return formatWith(builder, readInput(rest));
}

} // namespace velmor::cli
