// One statement of a document: parsed, checked, and its places moved to the document.
#include <velmor/sql/host/document/DocumentCheck.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/parser/SqlParser.h>

namespace velmor::sql::host {

DocumentChecker::DocumentChecker(const GlobalTypeContext& globalContext, const TableInfoContext& tableContext,
                                 Scoping scoping)
    : mGlobal(globalContext), mTables(tableContext), mScoping(scoping), mParseContext(std::make_unique<ParseContext>()),
      mParser(std::make_unique<SqlParser>(*mParseContext)) {
  mParser->keepSourceRanges = true;
}

DocumentChecker::~DocumentChecker() = default;

StatementCheck DocumentChecker::check(const DocumentStatement& statement) {
  StatementCheck result;
  SqlParser& parser = *mParser;
  if (!parser.parse(statement.text)) {
    result.outcome = StatementCheck::Outcome::SyntaxError;
    const auto* error = parser.errors.empty() ? nullptr : dynamic_cast<const UnexpectedLexeme*>(parser.errors.front().get());
    if (error) {
      result.syntaxError = error->text.empty() ? std::string("syntax error") : error->text;
      result.syntaxPlace = documentPlace(statement, statementOffset(statement, error->line, error->column));
    } else {
      result.syntaxError = parser.errors.empty() ? "syntax error" : parser.errors.front()->what();
      result.syntaxPlace = statement.begin;
    }
    parser.clear();
    return result;
  }
  if (!isCheckable(parser.result, mScoping)) {
    result.outcome = StatementCheck::Outcome::NotCheckable;
    const char* kind = ast::recordName(parser.result);
    result.kind = kind ? kind : "nothing";
    parser.clear();
    return result;
  }
  result.faults = checkStatement(parser.result, parser.sourceRanges.get(), mGlobal, mTables, mScoping);
  for (PlacedFault& fault : result.faults) {
    if (fault.range) fault.range = documentRange(statement, *fault.range);
  }
  result.outcome = result.faults.empty() ? StatementCheck::Outcome::Ok : StatementCheck::Outcome::Faults;
  parser.clear();
  return result;
}

} // namespace velmor::sql::host
