// velmor-sql columns: the result columns of a query, as the catalogue describes its tables.
#include "Catalogue.h"
#include "Commands.h"
#include "Documents.h"
#include "Input.h"
#include <velmor/sql/host/Messages.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <string>
#include <vector>

namespace velmor::cli {

using namespace sql::host; // type names and UTF-8
namespace {

class NoParseContext : public sql::ParseContext {};

std::string orDash(const std::wstring& text) { return text.empty() ? std::string("-") : toUtf8(text); }

} // namespace

int runColumns(const std::vector<std::string>& args) {
  if (auto status = runDocuments(DocumentCommand::Columns, args)) return *status;
  std::vector<std::string> rest = args;
  const auto catalogue = takeCatalogue("columns", rest);
  if (!catalogue) return exitUsage;
  const bool strict = takeFlag(rest, "--strict");
  sql::Scoping scoping = sql::Scoping::Standard;
  if (!takeScoping("columns", rest, scoping)) return exitUsage;
  if (auto status = handleOptions("columns", rest)) return *status;
  const std::string text = readInput(rest);
  if (!reportSkippedText(text, strict)) return exitFailure;

  NoParseContext parseContext;
  sql::SqlParser parser(parseContext);
  if (!parser.parse(text)) {
    for (const auto& error : parser.errors) std::cerr << error->what() << '\n';
    return exitSyntax;
  }
  const bool query = sql::ast::nodeIs<sql::ast::QuerySpecification>(parser.result) ||
                     (scoping == sql::Scoping::Standard &&
                      (sql::ast::nodeIs<sql::ast::QueryOperation>(parser.result) ||
                       sql::ast::nodeIs<sql::ast::RowValueExpressionList>(parser.result) ||
                       sql::ast::nodeIs<sql::ast::ExplicitTable>(parser.result)));
  if (!query) {
    const char* kind = sql::ast::recordName(parser.result);
    std::cerr << "velmor-sql columns: no result columns for " << (kind ? kind : "nothing")
              << (scoping == sql::Scoping::Compatible ? " (only a query specification has them here)\n"
                                                      : " (only a query has them)\n");
    return exitUsage;
  }

  std::shared_ptr<sql::TableInfo> table;
  try {
    table = sql::buildTableInfo(*catalogue, *catalogue, parser.result, scoping);
  } catch (const sql::SqlError& error) {
    std::cout << faultMessage(error, catalogue.get()) << " [" << faultClassName(error) << "]\n";
    return exitFailure;
  }

  // Name (with its other names), type, original table, original name: aligned columns.
  std::vector<std::array<std::string, 4>> rows;
  for (std::size_t i = 0; i < table->columnCount(); ++i) {
    const sql::ColumnInfo column = table->columnByIndex(i);
    std::string names;
    for (const auto& name : column.names()) {
      if (!names.empty()) names += '|';
      appendUtf8(name, names);
    }
    rows.push_back({names.empty() ? "-" : names, catalogue->typeName(column.type()), orDash(column.originalTable()),
                    orDash(column.originalName())});
  }
  std::array<std::size_t, 4> widths{};
  for (const auto& row : rows) {
    for (std::size_t k = 0; k < 4; ++k) widths[k] = std::max(widths[k], row[k].size());
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t k = 0; k < 4; ++k) {
      line += row[k];
      if (k < 3) line += std::string(widths[k] - row[k].size() + 2, ' ');
    }
    std::cout << line << '\n';
  }
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace velmor::cli
