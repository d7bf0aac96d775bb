// What the server knows of one statement, in offsets of the statement's own text, so that an
// unchanged statement keeps its answer wherever it moves in the document.
#pragma once

#include "Text.h"

#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/scope/Scoping.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmor::lsp {

/// A fault or syntax error of a statement.
struct Problem {
  Span span;
  std::string message;
  /// The fault's class ("UnknownColumnReference"), "SyntaxError" for a text that does not parse.
  std::string code;
  /// A close known name for an unknown one: the text to put at `fixSpan`.
  std::optional<std::string> fix;
  Span fixSpan;
};

/// A table a statement names.
struct TableUse {
  std::string name;
  Span span;
};

struct StatementAnalysis {
  bool parsed = false;
  std::vector<Problem> problems;
  /// The statement's record name ("QuerySpecification"), empty when it does not parse.
  std::string kind;
  /// Tables in the order of the text, each name once.
  std::vector<TableUse> tables;
};

/// Parses and checks one statement's text (comments blanked) against `catalogue`. Never throws
/// but std::bad_alloc.
StatementAnalysis analyseStatement(const std::string& text, const sql::host::Catalogue& catalogue,
                                   sql::Scoping scoping);

/// The canonical text of a statement when it differs from `source` and may replace it: the text
/// parses, reads back as the same tree, and `source` has no comments (`text` differs from it)
/// that the canonical text would drop. None otherwise.
std::optional<std::string> formatStatement(const std::string& text, const std::string& source,
                                           const sql::host::Catalogue& catalogue);

/// The statement with the table `oldName` renamed, canonical, when that changes it. Throws
/// std::runtime_error naming the reason when the statement names the table but cannot be
/// rewritten without loss (comments, a canonical text of another meaning).
std::optional<std::string> renameTableIn(const std::string& text, const std::string& source,
                                         const sql::host::Catalogue& catalogue, const std::wstring& oldName,
                                         const std::wstring& newName);

} // namespace velmor::lsp
