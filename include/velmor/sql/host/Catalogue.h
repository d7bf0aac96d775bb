// The host kit's in-memory catalogue: one object that answers every host interface the library
// asks for, filled through a small API, a JSON file or both.
#pragma once

#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/host/Export.h>
#include <velmor/sql/host/Precedence.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/types/Type.h>

#include <cstddef>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmor::sql::host {

/// A catalogue that cannot be built or read. what() is the whole message; for a file it names the
/// file, the place in it as a JSON path (`functions[3].overloads[0].params[1]`) and what is wrong.
class VELMOR_SQL_HOST_API CatalogueError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// How an overload written as text computes its full result type.
struct VELMOR_SQL_HOST_API Result {
  enum class Rule { Type, Argument, DecimalSum, DecimalProduct, LengthSum, Widest };
  Rule rule = Rule::Type;
  std::string type;                ///< Rule::Type: a type or set name ("Decimal(5,2)", "numericTypes")
  std::size_t first = 0, second = 1; ///< argument positions of Argument, DecimalSum, DecimalProduct
  type::PlainType plain = type::PlainType::VarChar; ///< LengthSum: the plain type of the sum

  Result(const char* typeText) : type(typeText) {} // NOLINT: a type text is the common case
  Result(std::string typeText) : type(std::move(typeText)) {} // NOLINT
  /// The type of argument `position` as it was converted.
  static Result argument(std::size_t position);
  /// A decimal whose digits are the sum of those of two arguments (integers count their widest value).
  static Result decimalSum(std::size_t a, std::size_t b);
  /// A decimal with the precisions and the scales of two arguments added.
  static Result decimalProduct(std::size_t a, std::size_t b);
  /// `plain` with the lengths of all arguments added.
  static Result lengthSum(type::PlainType plain);
  /// The argument that stands highest in the ranking (then the longest, then the most digits).
  static Result widest();

private:
  Result() = default;
};

/// A function signature in words. Parameter texts are plain type names, host type names, "any"
/// (Contextual) or names of type sets; an overload naming a set stands for one overload per member
/// (each set one member at a time, the same member wherever the set is named).
struct VELMOR_SQL_HOST_API Signature {
  std::vector<std::string> params;
  Result result;
  std::vector<std::string> optional = {};
  bool variadic = false;  ///< the last of `params` repeats
  bool deterministic = true;
};

/// An operator signature in words: `params`, then `repeat` from `times.first` to `times.second`
/// times, then `tail`; one overload per count and per quantifier.
struct VELMOR_SQL_HOST_API OperatorSignature {
  std::vector<std::string> params;
  Result result;
  std::vector<ast::Quantifier> quantifiers = {ast::Quantifier::None};
  std::vector<std::string> repeat = {};
  std::pair<int, int> times = {0, 0};
  std::vector<std::string> tail = {};
};

/// A column in words: its name, a type text ("VarChar(40)", a host type name) and perhaps further
/// names that find it too.
struct Column {
  std::wstring name;
  std::string type;
  std::vector<std::wstring> otherNames = {};
};

class Catalogue;
/// The catalogue as JSON text in the format of catalogue files (docs/catalogue.md), which reads
/// back into an equal catalogue: host type names, type sets of its own, tables, functions and
/// operators with their overloads one by one, conversions, ranking and precedence. Overloads
/// made from signatures keep their result rule; those handed over as objects are written with
/// their declared result type, and an operator overload whose last operand repeats with up to
/// 1024 repeats. Throws CatalogueError for a table or type that has no text form.
VELMOR_SQL_HOST_API std::string writeCatalogue(const Catalogue& catalogue);

/// An in-memory host catalogue: tables, type names, functions, operators, conversions, ranking
/// and precedence. Implements GlobalTypeContext, TableInfoContext, StringBuildContext and
/// ParseContext, so one object serves SqlParser, SqlStringBuilder, TypeInferer, Validator and the
/// scope functions.
///
/// Names of tables, functions, type names and sets match without regard to case (tables and
/// functions through normalized(), type texts by ASCII case). Filling is not thread-safe; once
/// filled, the const interface may serve any number of threads, and the library's objects borrow
/// the catalogue, which must outlive them. Lookups that find nothing give an empty pointer.
///
/// Every change through a method gives the catalogue a new revision (RevisedContext), so checks
/// may remember their overload choices from statement to statement until the next change. The
/// overloads and operators handed to the catalogue, or read from it, are not to be changed in
/// place afterwards: add or set them again instead.
class VELMOR_SQL_HOST_API Catalogue : public GlobalTypeContext,
                                      public RevisedContext,
                                      public TableInfoContext,
                                      public StringBuildContext,
                                      public ParseContext {
public:
  /// An empty catalogue: no tables, no routines, only the identity conversions, the grammar's
  /// precedence, and the seven library type sets by name ("numericTypes", ...).
  Catalogue();
  ~Catalogue() override;
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

  /// Adds the standard SQL set: the built-in operators with their usual overloads over the plain
  /// types, spatial predicates over `geometry` (also the host type name "Geometry"), CASE of any
  /// number of branches, the usual conversions and ranking, and the type sets "integerTypes",
  /// "comparableTypes" and "orderedTypes". The grammar's precedence stays. The CASE overload
  /// ranks its results by this catalogue, so it is meant for this catalogue only. Throws
  /// CatalogueError when the catalogue has sets of those names already.
  void addStandardSql(type::PlainType geometry = type::PlainType::BinaryLargeObject);
  /// True once addStandardSql has run on this catalogue (a file that extends the standard set
  /// then adds to it as it stands).
  bool hasStandardSql() const noexcept { return m_standardSql; }

  // ---- types ---------------------------------------------------------------------------------
  /// A host type name (matched without ASCII case) for a type, usable wherever a type text is.
  /// Throws CatalogueError for an empty name, a plain type's name, "any" or a set's name.
  void addTypeName(const std::string& name, std::shared_ptr<Type> type);
  /// A named set of plain types for signatures; members may be plain types or other sets.
  /// Throws CatalogueError for a name that is taken or a member that is no plain type or set.
  void addTypeSet(const std::string& name, const std::vector<std::string>& members);
  /// The type of a text: "Integer", "VarChar(40)", "Decimal(12,2)", a host type name or "any".
  /// Throws CatalogueError naming the fault.
  std::shared_ptr<Type> typeOf(std::string_view text) const;
  /// The plain types a parameter text stands for: one, or the members of a set. Throws
  /// CatalogueError for a text with a length or digits, or an unknown name.
  std::vector<type::PlainType> plainTypesOf(std::string_view text) const;
  /// Whether `text` names a type set, or a host type name.
  bool isTypeSet(std::string_view text) const;
  bool isTypeName(std::string_view text) const;
  /// A type as people read it, in this catalogue's own words where one of its type names
  /// stands for exactly it, or for its plain type without a length ("Geometry", not
  /// "BinaryLargeObject"); otherwise as typeText writes it. "none" for an empty pointer.
  std::string typeName(const std::shared_ptr<Type>& type) const;

  // ---- tables --------------------------------------------------------------------------------
  /// Adds a table of columns in words, its base table being itself. Throws CatalogueError for a
  /// second table of the name, no columns, a column name twice or a bad type.
  void addTable(const std::wstring& name, const std::vector<Column>& columns);
  /// Adds a table of ready columns or the host's own TableInfo (held shared).
  void addTable(const std::wstring& name, std::vector<ColumnInfo> columns);
  void addTable(const std::wstring& name, std::shared_ptr<TableInfo> table);

  // ---- routines ------------------------------------------------------------------------------
  /// Adds overloads to the function `name` (created with `kind` on first use; a later kind
  /// replaces it). Throws CatalogueError for a bad signature.
  void addFunction(const std::wstring& name, FunctionKind kind, const std::vector<Signature>& signatures);
  void addFunction(const std::wstring& name, const std::vector<Signature>& signatures) {
    addFunction(name, FunctionKind::Ordinary, signatures);
  }
  void addFunction(const std::wstring& name, FunctionKind kind, std::vector<std::shared_ptr<OverloadInfo>> overloads);
  /// Adds overloads to an operator. Throws CatalogueError for a bad signature.
  void addOperator(OperationCode code, const std::vector<OperatorSignature>& signatures);
  void addOperator(OperationCode code, std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads);
  /// The overloads a signature stands for, without adding them. Throws CatalogueError.
  std::vector<std::shared_ptr<OverloadInfo>> overloadsOf(const Signature& signature) const;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloadsOf(const OperatorSignature& signature) const;
  /// Replaces what the catalogue answers for `code` by the host's own OperatorInfo.
  void setOperator(OperationCode code, std::shared_ptr<OperatorInfo> info);
  /// A custom operator (code above 50): its text and its binding strength on the level scale.
  void addCustomOperator(OperationCode code, std::wstring text, int level);

  // ---- conversions, ranking, precedence ------------------------------------------------------
  /// Values of `from` may stand where `to` is asked for (each pair of the two lists).
  void addConversion(type::PlainType from, type::PlainType to);
  void addConversions(const std::vector<std::string>& from, const std::vector<std::string>& to);
  /// The ranking, lowest first; types on one level rank equally, unlisted ones above all.
  void setRanking(const std::vector<std::vector<type::PlainType>>& levels);
  /// Replaces the grammar's precedence: level 1 binds loosest; built-in operators not listed get 0.
  void setPrecedence(const std::vector<std::vector<OperationCode>>& levels);
  /// Sets one operator's level (custom operators included) without dropping the others.
  void setPrecedenceLevel(OperationCode code, int level);

  // ---- what the library asks -----------------------------------------------------------------
  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override;
  std::shared_ptr<OperatorInfo> operatorInfo(OperationCode code) const override;
  /// True for equal types, from Contextual, to Contextual, and for the added pairs.
  bool canConvert(type::PlainType from, type::PlainType to) const override;
  /// Keeps a length between length-carrying types and digits between exact numbers; an integer
  /// becomes a decimal of its widest value's digits; Contextual keeps the value as it is.
  std::shared_ptr<Type> convert(const std::shared_ptr<Type>& value, type::PlainType to) const override;
  /// By the ranking; unlisted types stand above all listed ones, in number order.
  int compareTypes(type::PlainType a, type::PlainType b) const override;
  std::uint64_t revision() const noexcept override { return m_revision; }
  std::shared_ptr<TableInfo> table(const std::wstring& name) const override;
  int comparePrecedence(OperationCode inner, OperationCode outer) const override;
  /// The text of a custom operator; "UNKNOWN_OPERATOR" for one the catalogue does not know.
  std::wstring operatorToString(OperationCode code) const override;

  /// The level used for `code` by comparePrecedence.
  int precedenceLevel(OperationCode code) const;
  /// The rank of a plain type (unlisted ones above all listed).
  int rankOf(type::PlainType type) const;

  std::size_t tableCount() const noexcept { return m_tables.size(); }
  std::size_t functionCount() const noexcept { return m_functions.size(); }
  std::size_t operatorCount() const noexcept { return m_operators.size(); }
  /// Table and function names as first given, in the order of their normalized forms.
  std::vector<std::wstring> tableNames() const;
  std::vector<std::wstring> functionNames() const;

private:
  friend VELMOR_SQL_HOST_API std::string writeCatalogue(const Catalogue& catalogue);
  class Function;
  class Operator;
  struct Expansion;

  std::vector<type::PlainType> paramTypes(const std::vector<std::string>& texts, Expansion& expansion) const;
  FullTypeFunction fullType(const Result& result, const std::vector<type::PlainType>& members,
                            const Expansion& expansion, type::PlainType& declared,
                            const std::vector<type::PlainType>& params) const;

  std::map<std::wstring, std::pair<std::wstring, std::shared_ptr<TableInfo>>> m_tables;
  std::map<std::wstring, std::shared_ptr<Function>> m_functions;
  std::map<OperationCode, std::shared_ptr<OperatorInfo>> m_operators;
  std::set<std::pair<type::PlainType, type::PlainType>> m_conversions;
  std::shared_ptr<std::map<type::PlainType, int>> m_ranks;
  // The same two for the plain types numbered below 32, as a bit a pair and a rank a type: the
  // library asks them for every overload it weighs.
  static constexpr int denseTypes = 32;
  std::array<std::uint32_t, denseTypes> m_convertible{};
  std::array<int, denseTypes> m_denseRanks{};
  // The library's operators (numbered below 64) by number: the library asks for one per
  // operation it types. Each points at its entry of m_operators, whose place never moves.
  std::array<const std::shared_ptr<OperatorInfo>*, 64> m_denseOperators{};
  std::shared_ptr<OperatorInfo>& operatorSlot(OperationCode code);
  std::map<OperationCode, int> m_levels;
  bool m_ownPrecedence = false;
  bool m_standardSql = false;
  std::map<OperationCode, std::wstring> m_operatorTexts;
  std::map<std::string, std::shared_ptr<Type>> m_typeNames;           // by lower-case name
  std::map<std::string, std::vector<type::PlainType>> m_typeSets;     // by lower-case name
  std::map<std::string, std::string> m_givenNames; // type names and sets as given, by lower-case name
  std::uint64_t m_revision = RevisedContext::nextRevision();
  // Called by every method that changes what the catalogue answers.
  void changed() noexcept { m_revision = RevisedContext::nextRevision(); }
};

} // namespace velmor::sql::host
