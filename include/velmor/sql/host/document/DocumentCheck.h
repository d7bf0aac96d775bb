// Checking the statements of a document one after another, with places in the document.
#pragma once

#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/Export.h>
#include <velmor/sql/host/document/Statements.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {
class ParseContext;
class SqlParser;
} // namespace velmor::sql

namespace velmor::sql::host {

/// What checking one statement of a document gave.
struct StatementCheck {
  enum class Outcome {
    Ok,           ///< parsed and checked, no fault
    Faults,       ///< parsed and checked, `faults` holds them
    SyntaxError,  ///< did not parse: `syntaxError` and `syntaxPlace`
    NotCheckable, ///< parsed, but not a statement the scoping mode checks: `kind`
  };
  Outcome outcome = Outcome::Ok;
  /// The faults with their messages, each with its range moved to the document (offsets, lines
  /// and columns of the document).
  std::vector<PlacedFault> faults;
  /// The parser's message without its place, and the place in the document.
  std::string syntaxError;
  DocumentPlace syntaxPlace;
  /// The record name of a statement that cannot be checked ("InsertStatement").
  std::string kind;
};

/// Parses and checks statements of documents. Holds one parser, kept from one statement to the
/// next: one checker per thread; the contexts are only read and may be shared by any number of
/// checkers, and must outlive this one.
class VELMOR_SQL_HOST_API DocumentChecker {
public:
  /// Checks in `scoping` mode: standard scoping checks every statement kind, compatible scoping
  /// only a query specification or an UPDATE.
  DocumentChecker(const GlobalTypeContext& globalContext, const TableInfoContext& tableContext,
                  Scoping scoping = Scoping::Standard);
  ~DocumentChecker();
  DocumentChecker(const DocumentChecker&) = delete;
  DocumentChecker& operator=(const DocumentChecker&) = delete;

  /// Parses `statement.text` and, when the scoping mode checks such a statement, validates it:
  /// the one place where a document's statement is checked. Throws only what the parser and
  /// validator let through (std::bad_alloc).
  StatementCheck check(const DocumentStatement& statement);

private:
  const GlobalTypeContext& mGlobal;
  const TableInfoContext& mTables;
  Scoping mScoping;
  std::unique_ptr<ParseContext> mParseContext;
  std::unique_ptr<SqlParser> mParser;
};

} // namespace velmor::sql::host
