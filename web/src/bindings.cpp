// The WebAssembly face of the library for the JavaScript package: every call takes strings and
// numbers and answers JSON text, which the package reads with JSON.parse (far cheaper than making
// objects one by one across the boundary). No C++ exception leaves this file. Offsets are counted
// in UTF-16 code units, as JavaScript strings index, and converted here.
#include "Bindings.h"
#include "JsonTree.h"

#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/host/Messages.h>
#include <velmor/sql/host/Precedence.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/host/document/DocumentCheck.h>
#include <velmor/sql/host/document/Statements.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/errors/SemanticErrors.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>

#include <emscripten/bind.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace sql = velmor::sql;
namespace host = velmor::sql::host;
using velmor::web::answer;
using velmor::web::Json;
using velmor::web::Units;

// The engine's call stack, not memory, bounds how deep a walk may recurse here; this limit
// keeps every stage of the deepest accepted statement well inside it.
constexpr std::size_t kNestingLimit = 1000;

// Catalogues live here under a number that the package holds; they are read-only once made.
std::map<int, std::shared_ptr<const host::Catalogue>> gCatalogues;
int gNextCatalogue = 1;

const host::Catalogue* catalogueOf(int handle) {
  const auto it = gCatalogues.find(handle);
  return it == gCatalogues.end() ? nullptr : it->second.get();
}

int keep(std::shared_ptr<const host::Catalogue> catalogue) {
  gCatalogues[gNextCatalogue] = std::move(catalogue);
  return gNextCatalogue++;
}

std::string failure(const std::string& kind, const std::string& message) {
  return Json{{"error", {{"kind", kind}, {"message", message}}}}.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Runs a call and turns whatever it throws into an error answer.
template <class Body>
std::string guarded(Body&& body) {
  try {
    return body();
  } catch (const host::CatalogueError& error) {
    return failure("catalogue", error.what());
  } catch (const std::bad_alloc&) {
    return failure("memory", "out of memory");
  } catch (const std::exception& error) {
    return failure("value", error.what());
  }
}

Json place(std::size_t line, std::size_t column, std::uint32_t offset) {
  return {{"line", line}, {"column", column}, {"offset", offset}};
}

// The UTF-16 index of a line and column as the scanner counts them (tabs to every fourth column).
std::uint32_t unitAt(const std::string& text, const Units& units, std::size_t line, std::size_t column) {
  std::size_t atLine = 1, atColumn = 1, i = 0;
  for (; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    // Only a code point's first byte is a place; continuation bytes belong to the one before.
    const bool starts = (byte & 0xC0) != 0x80;
    if (starts && (atLine > line || (atLine == line && atColumn >= column))) break;
    if (byte == '\n') {
      ++atLine;
      atColumn = 1;
    } else if (byte == '\t') {
      atColumn = ((atColumn - 1) & ~std::size_t{3}) + 5;
    } else if (starts) {
      ++atColumn;
    }
  }
  return units.unitOf(i);
}

// A parse with ranges kept; a syntax error comes back as its answer.
struct Parsed {
  sql::ast::Node tree;
  std::shared_ptr<const sql::SourceRanges> ranges;
  std::string error;
};

Parsed parseText(const std::string& text, bool ranges) {
  const sql::ParseContext context;
  sql::SqlParser parser(context);
  parser.nestingLimit = kNestingLimit;
  parser.keepSourceRanges = ranges;
  Parsed parsed;
  if (parser.parse(text)) {
    parsed.tree = parser.result;
    parsed.ranges = parser.sourceRanges;
    return parsed;
  }
  const sql::SqlError& error = *parser.errors.front();
  const auto* lexeme = dynamic_cast<const sql::UnexpectedLexeme*>(&error);
  Json syntax = {{"kind", "syntax"}, {"message", error.what()}};
  if (lexeme) {
    const Units units(text);
    syntax["place"] = place(lexeme->line, lexeme->column, unitAt(text, units, lexeme->line, lexeme->column));
  }
  parsed.error = answer(Json{{"error", syntax}});
  return parsed;
}

Json rangeJson(const sql::SourceRange& range, const Units& units) {
  return {{"begin", place(range.beginLine, range.beginColumn, units.unitOf(range.beginOffset))},
          {"end", place(range.endLine, range.endColumn, units.unitOf(range.endOffset))}};
}

Json faultJson(const sql::SqlError& fault, const std::string& message) {
  Json fields = Json::object();
  for (const host::FaultField& field : host::faultFields(fault)) {
    switch (field.kind) {
    case host::FaultField::Kind::Name:
    case host::FaultField::Kind::Description: fields[field.name] = field.text; break;
    case host::FaultField::Kind::Number: fields[field.name] = field.number; break;
    case host::FaultField::Kind::Flag: fields[field.name] = field.number != 0; break;
    }
  }
  return {{"className", host::faultClassName(fault)},
          {"number", static_cast<int>(fault.type())},
          {"message", message},
          {"text", host::errorLine(fault)},
          {"fields", fields}};
}

Json placedJson(const host::PlacedFault& placed, const Units& units) {
  Json json = faultJson(*placed.fault, placed.message);
  json["range"] = placed.range ? rangeJson(*placed.range, units) : Json(nullptr);
  return json;
}

sql::Scoping scopingNamed(const std::string& name) {
  if (name == "standard") return sql::Scoping::Standard;
  if (name == "compatible") return sql::Scoping::Compatible;
  throw std::invalid_argument("scoping must be \"standard\" or \"compatible\"");
}

const host::Catalogue& needCatalogue(int handle) {
  const host::Catalogue* catalogue = catalogueOf(handle);
  if (!catalogue) throw std::invalid_argument("the catalogue was disposed of");
  return *catalogue;
}

std::string parse(const std::string& text) {
  return guarded([&] {
    const Parsed parsed = parseText(text, false);
    if (!parsed.error.empty()) return parsed.error;
    return answer(Json{{"tree", velmor::cli::treeToJson(parsed.tree)}});
  });
}

// A negative handle writes with the grammar's precedence, 0 with none.
std::string write(const std::string& text, int handle, bool rename, const std::string& oldName,
                  const std::string& newName) {
  return guarded([&] {
    const Parsed parsed = parseText(text, false);
    if (!parsed.error.empty()) return parsed.error;
    const host::GrammarPrecedence grammar;
    const sql::StringBuildContext* context = nullptr;
    if (handle < 0) context = &grammar;
    if (handle > 0) context = &needCatalogue(handle);
    std::wstring written;
    if (rename) {
      written = sql::RenameTableBuilder(context, host::fromUtf8(oldName), host::fromUtf8(newName)).buildString(parsed.tree);
    } else {
      written = sql::SqlStringBuilder(context).buildString(parsed.tree);
    }
    return answer(Json{{"text", host::toUtf8(written)}});
  });
}

std::string format(const std::string& text, int handle) { return write(text, handle, false, {}, {}); }

std::string renameTable(const std::string& text, const std::string& oldName, const std::string& newName, int handle) {
  return write(text, handle, true, oldName, newName);
}

std::string check(const std::string& text, int handle, const std::string& scopingName) {
  return guarded([&] {
    const sql::Scoping scoping = scopingNamed(scopingName);
    const host::Catalogue& catalogue = needCatalogue(handle);
    const Parsed parsed = parseText(text, true);
    if (!parsed.error.empty()) return parsed.error;
    if (!host::isCheckable(parsed.tree, scoping)) {
      const char* kind = sql::ast::recordName(parsed.tree);
      return failure("value", std::string("not checkable: ") + (kind ? kind : "nothing") +
                                  (scoping == sql::Scoping::Compatible
                                       ? " (with compatible scoping only a query specification or an UPDATE can be checked)"
                                       : ""));
    }
    const Units units(text);
    Json faults = Json::array();
    for (const auto& fault : host::checkStatement(parsed.tree, parsed.ranges.get(), catalogue, catalogue, scoping)) {
      faults.push_back(placedJson(fault, units));
    }
    return answer(Json{{"faults", std::move(faults)}});
  });
}

// Every statement of a text of many, as an editor shows them: its range, outcome and faults.
std::string checkDocument(const std::string& text, int handle, const std::string& scopingName) {
  return guarded([&] {
    const sql::Scoping scoping = scopingNamed(scopingName);
    const host::Catalogue& catalogue = needCatalogue(handle);
    const Units units(text);
    host::DocumentChecker checker(catalogue, catalogue, scoping);
    static constexpr const char* outcomes[] = {"ok", "faults", "syntax error", "not checkable"};
    Json statements = Json::array();
    for (const host::DocumentStatement& statement : host::splitStatements(text, host::SplitOptions{})) {
      const host::StatementCheck result = checker.check(statement);
      Json faults = Json::array();
      for (const auto& fault : result.faults) faults.push_back(placedJson(fault, units));
      Json item = {{"outcome", outcomes[static_cast<int>(result.outcome)]},
                   {"begin", place(statement.begin.line, statement.begin.column, units.unitOf(statement.begin.offset))},
                   {"end", place(statement.end.line, statement.end.column, units.unitOf(statement.end.offset))},
                   {"text", statement.text},
                   {"faults", std::move(faults)}};
      if (result.outcome == host::StatementCheck::Outcome::SyntaxError) {
        const host::DocumentPlace& at = result.syntaxPlace;
        item["syntaxError"] = {{"message", result.syntaxError}, {"place", place(at.line, at.column, units.unitOf(at.offset))}};
      }
      if (!result.kind.empty()) item["kind"] = result.kind;
      statements.push_back(std::move(item));
    }
    return answer(Json{{"statements", std::move(statements)}});
  });
}

std::string columns(const std::string& text, int handle, const std::string& scopingName) {
  return guarded([&] {
    const sql::Scoping scoping = scopingNamed(scopingName);
    const host::Catalogue& catalogue = needCatalogue(handle);
    const Parsed parsed = parseText(text, false);
    if (!parsed.error.empty()) return parsed.error;
    const sql::ast::Node& tree = parsed.tree;
    const bool query = sql::ast::nodeIs<sql::ast::QuerySpecification>(tree) ||
                       (scoping == sql::Scoping::Standard && (sql::ast::nodeIs<sql::ast::QueryOperation>(tree) ||
                                                              sql::ast::nodeIs<sql::ast::RowValueExpressionList>(tree) ||
                                                              sql::ast::nodeIs<sql::ast::ExplicitTable>(tree)));
    if (!query) {
      const char* kind = sql::ast::recordName(tree);
      return failure("value", std::string("no result columns for ") + (kind ? kind : "nothing") +
                                  (scoping == sql::Scoping::Compatible ? " (only a query specification has them here)"
                                                                       : " (only a query has them)"));
    }
    std::shared_ptr<sql::TableInfo> table;
    try {
      table = sql::buildTableInfo(catalogue, catalogue, tree, scoping);
    } catch (const sql::SqlError& error) {
      return answer(Json{{"fault", faultJson(error, host::faultMessage(error, &catalogue))}});
    }
    Json list = Json::array();
    for (std::size_t i = 0; i < table->columnCount(); ++i) {
      const sql::ColumnInfo column = table->columnByIndex(i);
      Json names = Json::array();
      for (const auto& name : column.names()) names.push_back(host::toUtf8(name));
      list.push_back({{"name", host::toUtf8(column.canonicalName())},
                      {"names", std::move(names)},
                      {"type", catalogue.typeName(column.type())},
                      {"table", host::toUtf8(column.originalTable())},
                      {"column", host::toUtf8(column.originalName())}});
    }
    return answer(Json{{"columns", std::move(list)}});
  });
}

std::string complete(const std::string& text, double offset, int handle) {
  return guarded([&] {
    const host::Catalogue& catalogue = needCatalogue(handle);
    const Units units(text);
    const host::Completion completion = host::complete(text, units.byteOf(offset), catalogue);
    Json candidates = Json::array();
    for (const auto& candidate : completion.candidates) {
      candidates.push_back({{"text", candidate.text},
                            {"kind", host::candidateKindName(candidate.kind)},
                            {"detail", candidate.detail}});
    }
    return answer(Json{{"from", units.unitOf(completion.replaceBegin)},
                       {"to", units.unitOf(completion.replaceEnd)},
                       {"candidates", std::move(candidates)}});
  });
}

std::string catalogueStandard() {
  return guarded([] {
    auto catalogue = std::make_shared<host::Catalogue>();
    catalogue->addStandardSql();
    return answer(Json{{"handle", keep(std::move(catalogue))}});
  });
}

std::string catalogueGisSample() {
  return guarded([] { return answer(Json{{"handle", keep(host::gisSampleCatalogue())}}); });
}

std::string catalogueFromJson(const std::string& text, const std::string& source) {
  return guarded([&] { return answer(Json{{"handle", keep(host::parseCatalogue(text, source))}}); });
}

std::string catalogueToJson(int handle) {
  return guarded([&] { return answer(Json{{"text", host::writeCatalogue(needCatalogue(handle))}}); });
}

// Each table with its columns and their types in the catalogue's names.
std::string catalogueTables(int handle) {
  return guarded([&] {
    const host::Catalogue& catalogue = needCatalogue(handle);
    Json tables = Json::array();
    for (const std::wstring& name : catalogue.tableNames()) {
      const std::shared_ptr<sql::TableInfo> table = catalogue.table(name);
      Json columns = Json::array();
      for (std::size_t i = 0; table && i < table->columnCount(); ++i) {
        const sql::ColumnInfo column = table->columnByIndex(i);
        columns.push_back({{"name", host::toUtf8(column.canonicalName())}, {"type", catalogue.typeName(column.type())}});
      }
      tables.push_back({{"name", host::toUtf8(name)}, {"columns", std::move(columns)}});
    }
    Json functions = Json::array();
    for (const std::wstring& name : catalogue.functionNames()) functions.push_back(host::toUtf8(name));
    return answer(Json{{"tables", std::move(tables)}, {"functions", std::move(functions)}});
  });
}

void catalogueDispose(int handle) { gCatalogues.erase(handle); }

std::string gisSampleText() { return std::string(host::gisSampleCatalogueText()); }

} // namespace

EMSCRIPTEN_BINDINGS(velmor_sql) {
  emscripten::function("parse", &parse);
  emscripten::function("format", &format);
  emscripten::function("rename", &renameTable);
  emscripten::function("check", &check);
  emscripten::function("checkDocument", &checkDocument);
  emscripten::function("columns", &columns);
  emscripten::function("complete", &complete);
  emscripten::function("hover", +[](const std::string& text, double offset, int handle) {
    return guarded([&] { return velmor::web::hover(text, offset, needCatalogue(handle)); });
  });
  emscripten::function("signatureHelp", +[](const std::string& text, double offset, int handle) {
    return guarded([&] { return velmor::web::signatureHelp(text, offset, needCatalogue(handle)); });
  });
  emscripten::function("catalogueStandard", &catalogueStandard);
  emscripten::function("catalogueGisSample", &catalogueGisSample);
  emscripten::function("catalogueFromJson", &catalogueFromJson);
  emscripten::function("catalogueToJson", &catalogueToJson);
  emscripten::function("catalogueTables", &catalogueTables);
  emscripten::function("catalogueDispose", &catalogueDispose);
  emscripten::function("gisSampleText", &gisSampleText);
}
