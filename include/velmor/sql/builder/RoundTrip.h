// Whether a tree's canonical text reads back as the same tree: the canonical form loses
// information in a few places (parentheses the precedence does not need, some nestings that
// only a host-built tree has), and a host can check for it before it stores a rewritten text.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <string>

namespace velmor::sql {

/// What writing a tree and reading the text back gave.
struct RoundTripReport {
  /// The canonical text of the tree (SqlStringBuilder with the given context).
  std::wstring text;
  /// True when `text` parses to a tree of the same shape (ast::firstDifference with
  /// Grouping::Associative: a chain of one AND or one OR may come back grouped otherwise).
  bool same = false;
  /// When `text` does not parse: the syntax error's message, with its line and column in
  /// `text`. Empty otherwise.
  std::string syntaxError;
  /// When `text` parses to another tree: the first subtree that differs, as written without a
  /// precedence context (every nested operation in parentheses, so that the grouping shows),
  /// in the tree given and in the tree read back. Empty otherwise.
  std::wstring written;
  std::wstring readBack;
};

/// Writes `tree` with `context` (null for none), parses the text with `nestingLimit`, and
/// compares. Never throws for a tree that the parser made; SqlStringBuilder's
/// exceptions for host-built trees (ROW(), an UPDATE without assignments) pass through, as do
/// std::bad_alloc and the scanner's lexeme-size error. Keeps no state; thread-safe on shared
/// trees.
VELMOR_SQL_API RoundTripReport checkRoundTrip(const ast::Node& tree, const StringBuildContext* context,
                                              int nestingLimit = SqlParser::maxNestingDepth);

} // namespace velmor::sql
