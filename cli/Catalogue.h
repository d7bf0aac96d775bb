// The tool's host catalogue: a JSON description of tables, routines, conversions, type ranking
// and operator precedence, read into the library's host interfaces.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/types/Type.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmor::cli {

/// A catalogue that cannot be used. what() is the whole message: the file, the place in it as a
/// JSON path (`functions[3].overloads[0].params[1]`) and what is wrong.
class CatalogueError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A loaded catalogue: immutable once built, so one instance may serve any number of walks.
/// Table and function names match without regard to case (through normalized()).
class Catalogue final : public sql::GlobalTypeContext, public sql::TableInfoContext {
public:
  /// Reads a catalogue from JSON text; `source` names it in messages. Throws CatalogueError.
  static std::shared_ptr<const Catalogue> parse(std::string_view text, const std::string& source);
  /// Reads the file at `path`. Throws CatalogueError, also when the file cannot be read.
  static std::shared_ptr<const Catalogue> load(const std::string& path);
  /// The embedded default catalogue (read once, on first use).
  static std::shared_ptr<const Catalogue> builtin();

  std::shared_ptr<sql::FunctionInfo> function(const std::wstring& name) const override;
  std::shared_ptr<sql::OperatorInfo> operatorInfo(sql::OperationCode code) const override;
  /// True for equal types, from Contextual to anything, to Contextual (a parameter of "any")
  /// from anything, and for the pairs the catalogue lists.
  bool canConvert(sql::type::PlainType from, sql::type::PlainType to) const override;
  /// Keeps a length between length-carrying types and digits between exact numbers; an integer
  /// becomes a decimal of its widest value's digits; "any" (Contextual) keeps the value as it is.
  std::shared_ptr<sql::Type> convert(const std::shared_ptr<sql::Type>& value,
                                     sql::type::PlainType to) const override;
  /// By the catalogue's ranking; types it does not list stand above all listed ones.
  int compareTypes(sql::type::PlainType a, sql::type::PlainType b) const override;
  std::shared_ptr<sql::TableInfo> table(const std::wstring& name) const override;

  /// The binding strength of an operator for the string builder: its level, 0 when the
  /// catalogue ranks operators but not this one, and nothing when the catalogue has no
  /// "precedence" at all (the tool's defaults then apply to built-in operators).
  std::optional<int> precedenceLevel(sql::OperationCode code) const;
  /// The text of a custom operator (code above 50); empty when the catalogue has none.
  std::wstring operatorText(sql::OperationCode code) const;

  std::size_t tableCount() const noexcept { return m_tables.size(); }
  std::size_t functionCount() const noexcept { return m_functions.size(); }
  std::size_t operatorCount() const noexcept { return m_operators.size(); }

private:
  friend class CatalogueReader;
  Catalogue() = default;

  std::map<std::wstring, std::shared_ptr<sql::TableInfo>> m_tables;
  std::map<std::wstring, std::shared_ptr<sql::FunctionInfo>> m_functions;
  std::map<sql::OperationCode, std::shared_ptr<sql::OperatorInfo>> m_operators;
  std::set<std::pair<sql::type::PlainType, sql::type::PlainType>> m_conversions;
  std::map<sql::type::PlainType, int> m_ranks;
  std::map<sql::OperationCode, int> m_levels;
  bool m_hasPrecedence = false;
  std::map<sql::OperationCode, std::wstring> m_operatorTexts;
};

/// The JSON text of the embedded default catalogue (generated from DefaultCatalogue.json).
std::string_view defaultCatalogueText();

/// The catalogue of a subcommand. A "--catalog FILE" (or "--catalog=FILE") among the leading
/// options is taken out of `args` and loaded; without one, the embedded default. On a bad file
/// or a missing FILE the message is on standard error and the result is empty: the caller
/// exits with status 2.
std::shared_ptr<const Catalogue> takeCatalogue(const char* command, std::vector<std::string>& args);

/// UTF-8 bytes to the library's UTF-16 units (invalid bytes stand for themselves).
std::wstring fromUtf8(std::string_view bytes);

} // namespace velmor::cli
