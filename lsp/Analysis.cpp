// One statement parsed, checked and described for the editor.
#include "Analysis.h"

#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/Messages.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/RoundTrip.h>
#include <velmor/sql/errors/SemanticErrors.h>
#include <velmor/sql/parser/SqlParser.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace velmor::lsp {
namespace {

using sql::host::toUtf8;

bool isWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return std::isalnum(byte) || byte == '_' || byte == '$' || byte >= 0x80;
}

bool sameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

// The last place in `within` of `name` as a whole word (case ignored), where a qualified
// reference names its column after its qualifier; or the first.
std::optional<Span> findName(const std::string& text, Span within, const std::string& name, bool first = false) {
  if (name.empty() || within.end > text.size() || within.begin >= within.end) return std::nullopt;
  std::optional<Span> found;
  for (std::size_t i = within.begin; i + name.size() <= within.end; ++i) {
    if (!sameLetters(std::string_view(text).substr(i, name.size()), name)) continue;
    const bool startsWord = i == 0 || !isWordByte(text[i - 1]);
    const bool endsWord = i + name.size() == text.size() || !isWordByte(text[i + name.size()]);
    if (startsWord && endsWord) {
      found = Span{i, i + name.size()};
      if (first) break;
    }
  }
  return found;
}

// The token at a syntax error's offset: a word, or one character; empty at the end.
Span tokenAt(const std::string& text, std::size_t offset) {
  offset = std::min(offset, text.size());
  std::size_t end = offset;
  if (end < text.size() && isWordByte(text[end])) {
    while (end < text.size() && isWordByte(text[end])) ++end;
  } else if (end < text.size()) {
    ++end;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
  }
  return {offset, end};
}

// The byte offset of a line and column as the parser counts them.
std::size_t offsetOfPlace(const std::string& text, std::size_t line, std::size_t column) {
  std::size_t l = 1;
  std::size_t c = 1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (l > line || (l == line && c >= column)) return i;
    sql::advancePlace(l, c, static_cast<unsigned char>(text[i]));
  }
  return text.size();
}

// The unknown name of a fault and which names could replace it.
struct Unknown {
  std::wstring name;
  const std::vector<std::wstring>* candidates = nullptr;
};

std::optional<Unknown> unknownName(const sql::SqlError& fault, const sql::host::KnownNames& known) {
  if (const auto* column = dynamic_cast<const sql::UnknownColumnReference*>(&fault)) {
    return Unknown{column->columnName, &known.columns};
  }
  if (const auto* table = dynamic_cast<const sql::UnknownTableReference*>(&fault)) {
    return Unknown{table->tableName, &known.tables};
  }
  if (const auto* table = dynamic_cast<const sql::NonExistentTable*>(&fault)) {
    return Unknown{table->tableName, &known.tables};
  }
  if (const auto* function = dynamic_cast<const sql::UnknownFunction*>(&fault)) {
    return Unknown{function->functionName, &known.functions};
  }
  return std::nullopt;
}

// Collects the tables a statement names, each placed at its first mention as a word.
class TableCollector : public sql::ast::TraversalVisitor {
public:
  explicit TableCollector(const std::string& text) : mText(text) {}

  using sql::ast::TraversalVisitor::visit;
  void visit(const sql::ast::TablePrimary& record) override { add(record.table); }
  void visit(const sql::ast::ExplicitTable& record) override { add(record.table); }
  void visit(const sql::ast::InsertStatement& record) override { add(record.table); }
  void visit(const sql::ast::UpdateStatement& record) override { add(record.table); }
  void visit(const sql::ast::DeleteStatement& record) override { add(record.table); }
  void faultAction() override {}

  std::vector<TableUse> tables;

private:
  void add(const std::wstring& table) {
    if (table.empty()) return;
    std::string name = toUtf8(table);
    for (const TableUse& use : tables) {
      if (use.name == name) return;
    }
    // A name the text spells otherwise (quoted with other letters) points at the statement's start.
    const Span place = findName(mText, {0, mText.size()}, name, true).value_or(Span{0, 0});
    tables.push_back({std::move(name), place});
  }

  const std::string& mText;
};

} // namespace

StatementAnalysis analyseStatement(const std::string& text, const sql::host::Catalogue& catalogue,
                                   sql::Scoping scoping) {
  StatementAnalysis analysis;
  sql::SqlParser parser(catalogue);
  parser.keepSourceRanges = true;
  bool parsed = false;
  try {
    parsed = parser.parse(text);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    analysis.problems.push_back({{0, text.size()}, error.what(), "SyntaxError", std::nullopt, {}});
    return analysis;
  }
  if (!parsed) {
    const auto* error =
        parser.errors.empty() ? nullptr : dynamic_cast<const sql::UnexpectedLexeme*>(parser.errors.front().get());
    Problem problem;
    problem.code = "SyntaxError";
    if (error) {
      problem.message = error->text.empty() ? std::string("syntax error") : error->text;
      problem.span = tokenAt(text, offsetOfPlace(text, error->line, error->column));
    } else {
      problem.message = parser.errors.empty() ? std::string("syntax error") : parser.errors.front()->what();
      problem.span = {0, 0};
    }
    analysis.problems.push_back(std::move(problem));
    return analysis;
  }
  analysis.parsed = true;
  const sql::ast::Node tree = parser.result;
  const char* kind = sql::ast::recordName(tree);
  analysis.kind = kind ? kind : "";
  TableCollector collector(text);
  collector.visitAllNodes(tree);
  std::sort(collector.tables.begin(), collector.tables.end(),
            [](const TableUse& a, const TableUse& b) { return a.span.begin < b.span.begin; });
  analysis.tables = std::move(collector.tables);

  if (!sql::host::isCheckable(tree, scoping)) return analysis;
  std::vector<sql::host::PlacedFault> faults;
  try {
    faults = sql::host::checkStatement(tree, parser.sourceRanges.get(), catalogue, catalogue, scoping);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    analysis.problems.push_back({{0, text.size()}, std::string("the statement could not be checked: ") + error.what(),
                                 "SqlError", std::nullopt, {}});
    return analysis;
  }
  std::optional<sql::host::KnownNames> known;
  for (const sql::host::PlacedFault& fault : faults) {
    Problem problem;
    problem.code = sql::host::faultClassName(*fault.fault);
    problem.message = fault.message.empty() ? problem.code : fault.message;
    // A fault about no one node (an UPDATE's unknown table) is about the whole statement.
    problem.span = fault.range ? Span{fault.range->beginOffset, fault.range->endOffset} : Span{0, text.size()};
    if (!known) known = sql::host::knownNames(tree, &catalogue);
    if (const auto unknown = unknownName(*fault.fault, *known)) {
      if (const auto close = sql::host::closestName(unknown->name, *unknown->candidates)) {
        if (const auto place = findName(text, problem.span, toUtf8(unknown->name))) {
          problem.fix = toUtf8(*close);
          problem.fixSpan = *place;
        }
      }
    }
    analysis.problems.push_back(std::move(problem));
  }
  return analysis;
}

std::optional<std::string> formatStatement(const std::string& text, const std::string& source,
                                           const sql::host::Catalogue& catalogue) {
  if (text != source) return std::nullopt;
  try {
    sql::SqlParser parser(catalogue);
    if (!parser.parse(text)) return std::nullopt;
    const sql::RoundTripReport report = sql::checkRoundTrip(parser.result, &catalogue);
    if (!report.same) return std::nullopt;
    std::string canonical = toUtf8(report.text);
    if (canonical == source) return std::nullopt;
    return canonical;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::optional<std::string> renameTableIn(const std::string& text, const std::string& source,
                                         const sql::host::Catalogue& catalogue, const std::wstring& oldName,
                                         const std::wstring& newName) {
  sql::SqlParser parser(catalogue);
  if (!parser.parse(text)) return std::nullopt;
  sql::SqlStringBuilder plain(&catalogue);
  sql::RenameTableBuilder renaming(&catalogue, oldName, newName);
  const std::wstring before = plain.buildString(parser.result);
  std::wstring after = renaming.buildString(parser.result);
  if (after == before) return std::nullopt;
  if (text != source) {
    throw std::runtime_error("a statement that names the table has comments, which its rewritten text would lose");
  }
  if (!sql::checkRoundTrip(parser.result, &catalogue).same) {
    throw std::runtime_error("a statement that names the table would read back with another meaning");
  }
  return toUtf8(after);
}

} // namespace velmor::lsp
