// velmor-sql check: a query or an UPDATE validated against the catalogue, each fault with its place.
#include "Catalogue.h"
#include "Commands.h"
#include "Documents.h"
#include "Input.h"
#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/TypeNames.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/parser/SqlParser.h>

#include <nlohmann/json.hpp>

#include <iostream>
#include <string>
#include <vector>

namespace velmor::cli {

using namespace sql::host; // type names and UTF-8
namespace {

class NoParseContext : public sql::ParseContext {};

nlohmann::json placeJson(std::size_t line, std::size_t column, std::size_t offset) {
  return {{"line", line}, {"column", column}, {"offset", offset}};
}

// One fault for an editor: what (class, number, fields, the one-line text) and where.
nlohmann::json faultJson(const PlacedFault& placed) {
  const sql::SqlError& fault = *placed.fault;
  nlohmann::json fields = nlohmann::json::object();
  for (const FaultField& field : faultFields(fault)) {
    switch (field.kind) {
    case FaultField::Kind::Name:
    case FaultField::Kind::Description:
      fields[field.name] = field.text;
      break;
    case FaultField::Kind::Number:
      fields[field.name] = field.number;
      break;
    case FaultField::Kind::Flag:
      fields[field.name] = field.number != 0;
      break;
    }
  }
  nlohmann::json range = nullptr;
  if (placed.range) {
    const sql::SourceRange& r = *placed.range;
    range = {{"begin", placeJson(r.beginLine, r.beginColumn, r.beginOffset)},
             {"end", placeJson(r.endLine, r.endColumn, r.endOffset)}};
  }
  return {{"class", faultClassName(fault)}, {"type", static_cast<int>(fault.type())}, {"fields", fields},
          {"message", placed.message}, {"text", errorLine(fault)}, {"range", range}};
}

} // namespace

int runCheck(const std::vector<std::string>& args) {
  if (auto status = runDocuments(DocumentCommand::Check, args)) return *status;
  std::vector<std::string> rest = args;
  const auto catalogue = takeCatalogue("check", rest);
  if (!catalogue) return exitUsage;
  const bool strict = takeFlag(rest, "--strict");
  const bool json = takeFlag(rest, "--json");
  sql::Scoping scoping = sql::Scoping::Standard;
  if (!takeScoping("check", rest, scoping)) return exitUsage;
  if (auto status = handleOptions("check", rest)) return *status;
  const std::string text = readInput(rest);
  if (!reportSkippedText(text, strict)) return exitFailure;

  NoParseContext parseContext;
  sql::SqlParser parser(parseContext);
  parser.keepSourceRanges = true;
  if (!parser.parse(text)) {
    if (json) {
      const auto* error = dynamic_cast<const sql::UnexpectedLexeme*>(parser.errors.front().get());
      nlohmann::json syntax = {{"message", parser.errors.front()->what()}};
      if (error) syntax["begin"] = {{"line", error->line}, {"column", error->column}};
      std::cout << nlohmann::json{{"ok", false}, {"syntaxError", syntax}, {"faults", nlohmann::json::array()}}.dump(2)
                << '\n';
    }
    for (const auto& error : parser.errors) std::cerr << error->what() << '\n';
    return exitSyntax;
  }

  if (!isCheckable(parser.result, scoping)) {
    const char* kind = sql::ast::recordName(parser.result);
    std::cerr << "velmor-sql check: not checkable: " << (kind ? kind : "nothing")
              << (scoping == sql::Scoping::Compatible
                      ? " (with --scoping compatible only a query specification or an UPDATE can be checked)\n"
                      : "\n");
    return exitUsage;
  }
  const std::vector<PlacedFault> faults =
      checkStatement(parser.result, parser.sourceRanges.get(), *catalogue, *catalogue, scoping);

  if (json) {
    nlohmann::json list = nlohmann::json::array();
    for (const PlacedFault& fault : faults) list.push_back(faultJson(fault));
    std::cout << nlohmann::json{{"ok", faults.empty()}, {"faults", list}}.dump(2) << '\n';
  } else if (faults.empty()) {
    std::cout << "ok\n";
  } else {
    // The place first, so that an editor or a reader finds it at the line's start.
    for (const PlacedFault& fault : faults) {
      if (fault.range) std::cout << sql::rangeText(*fault.range) << ' ';
      std::cout << fault.message << " [" << faultClassName(*fault.fault) << "]\n";
    }
  }
  std::cout.flush();
  return faults.empty() ? exitOk : exitFailure;
}

} // namespace velmor::cli
