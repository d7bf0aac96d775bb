// Reading a catalogue file into the host interfaces of the library.
#include "Catalogue.h"

#include "TypePrinter.h"

#include "DefaultContext.h"

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/types/Strings.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <sstream>

namespace velmor::cli {

using nlohmann::json;
using sql::OperationCode;
using sql::type::PlainType;

namespace {

using RankTable = std::map<PlainType, int>;

// Types that are not listed in the ranking stand above every listed one, in number order.
int rankOf(const RankTable& ranks, PlainType type) {
  const auto found = ranks.find(type);
  return found != ranks.end() ? found->second : 1000000 + static_cast<int>(type);
}

bool carriesLength(PlainType type) {
  switch (type) {
  case PlainType::Binary:
  case PlainType::VarBinary:
  case PlainType::BinaryLargeObject:
  case PlainType::Char:
  case PlainType::VarChar:
  case PlainType::CharLargeObject: return true;
  case PlainType::Contextual:
  case PlainType::Fault:
  case PlainType::Boolean:
  case PlainType::SmallInt:
  case PlainType::Integer:
  case PlainType::BigInt:
  case PlainType::Decimal:
  case PlainType::Numeric:
  case PlainType::Float:
  case PlainType::Real:
  case PlainType::Double:
  case PlainType::Time:
  case PlainType::Date:
  case PlainType::Timestamp:
  case PlainType::Tuple:
  case PlainType::Array: return false;
  }
  return false;
}

// The digits of an exact value: its own, or those of the widest value of an integer type.
sql::PrecisionScaleType digitsOf(const std::shared_ptr<sql::Type>& type) {
  if (const auto* exact = dynamic_cast<const sql::PrecisionScaleType*>(type.get())) return *exact;
  const PlainType plain = type ? type->plainType() : PlainType::Fault;
  if (plain == PlainType::SmallInt) return {PlainType::Decimal, 5, 0};
  if (plain == PlainType::Integer) return {PlainType::Decimal, 10, 0};
  if (plain == PlainType::BigInt) return {PlainType::Decimal, 19, 0};
  return {};
}

int lengthOf(const std::shared_ptr<sql::Type>& type) {
  const auto* sized = dynamic_cast<const sql::LengthType*>(type.get());
  return sized ? sized->length() : 0;
}

class CatalogueFunction final : public sql::FunctionInfo {
public:
  CatalogueFunction(sql::FunctionKind kind, std::vector<std::shared_ptr<sql::OverloadInfo>> overloads)
      : m_kind(kind), m_overloads(std::move(overloads)) {}
  std::vector<std::shared_ptr<sql::OverloadInfo>> overloads() const override { return m_overloads; }
  sql::FunctionKind kind() const override { return m_kind; }

private:
  sql::FunctionKind m_kind;
  std::vector<std::shared_ptr<sql::OverloadInfo>> m_overloads;
};

class CatalogueOperator final : public sql::OperatorInfo {
public:
  explicit CatalogueOperator(std::vector<std::shared_ptr<sql::OperatorOverloadInfo>> overloads)
      : m_overloads(std::move(overloads)) {}
  std::vector<std::shared_ptr<sql::OperatorOverloadInfo>> overloads() const override { return m_overloads; }

private:
  std::vector<std::shared_ptr<sql::OperatorOverloadInfo>> m_overloads;
};

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

std::string trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(" \t");
  return std::string(text.substr(first, last - first + 1));
}

// A parameter as written: a plain type, or the name of a set that the overload is expanded over.
struct ParamSpec {
  PlainType plain = PlainType::Fault;
  int set = -1; // index into the overload's list of bound sets
};

// How an overload computes its full result type.
struct ResultSpec {
  enum class Kind { Fixed, FromSet, Argument, DecimalSum, DecimalProduct, LengthSum, Widest };
  Kind kind = Kind::Fixed;
  std::shared_ptr<sql::Type> fixed;
  int set = -1;
  std::size_t first = 0;
  std::size_t second = 1;
  PlainType plain = PlainType::VarChar;
};

// Upper bound of the overloads one entry may expand to, so that a slip in a file cannot make the
// tool build millions of them.
constexpr std::size_t maxExpansion = 20000;

} // namespace

class CatalogueReader {
public:
  explicit CatalogueReader(std::string source) : m_source(std::move(source)) {}

  std::shared_ptr<const Catalogue> read(const json& root) {
    auto catalogue = std::shared_ptr<Catalogue>(new Catalogue());
    m_catalogue = catalogue.get();
    expectObject(root, "");
    checkKeys(root, "", {"description", "types", "typeSets", "tables", "functions", "operators",
                         "conversions", "ranking", "precedence"});
    for (const PlainType t : sql::exactNumericTypes) m_sets["exactnumerictypes"].push_back(t);
    for (const PlainType t : sql::numericTypes) m_sets["numerictypes"].push_back(t);
    for (const PlainType t : sql::numericDateTypes) m_sets["numericdatetypes"].push_back(t);
    for (const PlainType t : sql::approximateNumericTypes) m_sets["approximatenumerictypes"].push_back(t);
    for (const PlainType t : sql::characterStringTypes) m_sets["characterstringtypes"].push_back(t);
    for (const PlainType t : sql::binaryStringTypes) m_sets["binarystringtypes"].push_back(t);
    for (const PlainType t : sql::datetimeTypes) m_sets["datetimetypes"].push_back(t);

    // Order matters: names of types and sets come first, the ranking before any result rule
    // that ranks.
    if (root.contains("types")) readAliases(root["types"], "types");
    if (root.contains("typeSets")) readSets(root["typeSets"], "typeSets");
    m_ranks = std::make_shared<RankTable>();
    if (root.contains("ranking")) readRanking(root["ranking"], "ranking");
    catalogue->m_ranks = *m_ranks;
    if (root.contains("tables")) readTables(root["tables"], "tables");
    if (root.contains("functions")) readFunctions(root["functions"], "functions");
    if (root.contains("operators")) readOperators(root["operators"], "operators");
    if (root.contains("conversions")) readConversions(root["conversions"], "conversions");
    if (root.contains("precedence")) {
      catalogue->m_hasPrecedence = true;
      readPrecedence(root["precedence"], "precedence");
    }
    return catalogue;
  }

private:
  [[noreturn]] void fail(const std::string& path, const std::string& what) const {
    throw CatalogueError("catalogue " + m_source + ": " + (path.empty() ? std::string("top level") : path) +
                         ": " + what);
  }

  static std::string member(const std::string& path, const char* key) {
    return path.empty() ? std::string(key) : path + "." + key;
  }
  static std::string element(const std::string& path, std::size_t index) {
    return path + "[" + std::to_string(index) + "]";
  }

  static const char* kindName(const json& value) { return value.type_name(); }

  void expectObject(const json& value, const std::string& path) const {
    if (!value.is_object()) fail(path, std::string("expected an object, found ") + kindName(value));
  }
  void expectArray(const json& value, const std::string& path) const {
    if (!value.is_array()) fail(path, std::string("expected an array, found ") + kindName(value));
  }
  std::string expectString(const json& value, const std::string& path) const {
    if (!value.is_string()) fail(path, std::string("expected a string, found ") + kindName(value));
    return value.get<std::string>();
  }
  std::string nonEmptyString(const json& value, const std::string& path) const {
    std::string text = expectString(value, path);
    if (trimmed(text).empty()) fail(path, "must not be empty");
    return text;
  }
  std::int64_t expectInteger(const json& value, const std::string& path) const {
    if (!value.is_number_integer()) fail(path, std::string("expected an integer, found ") + kindName(value));
    return value.get<std::int64_t>();
  }
  bool expectBool(const json& value, const std::string& path) const {
    if (!value.is_boolean()) fail(path, std::string("expected true or false, found ") + kindName(value));
    return value.get<bool>();
  }
  const json& required(const json& object, const std::string& path, const char* key) const {
    if (!object.contains(key)) fail(path, std::string("missing \"") + key + "\"");
    return object[key];
  }
  void checkKeys(const json& object, const std::string& path, std::initializer_list<const char*> allowed) const {
    for (const auto& item : object.items()) {
      if (std::none_of(allowed.begin(), allowed.end(), [&](const char* key) { return item.key() == key; })) {
        std::string list;
        for (const char* key : allowed) list += std::string(list.empty() ? "" : ", ") + key;
        fail(member(path, item.key().c_str()), "unknown key (expected one of: " + list + ")");
      }
    }
  }
  // A string, or an array of strings; one path per entry.
  std::vector<std::pair<std::string, std::string>> names(const json& value, const std::string& path) const {
    std::vector<std::pair<std::string, std::string>> result;
    if (value.is_array()) {
      if (value.empty()) fail(path, "must not be empty");
      for (std::size_t i = 0; i < value.size(); ++i) result.emplace_back(nonEmptyString(value[i], element(path, i)), element(path, i));
    } else {
      result.emplace_back(nonEmptyString(value, path), path);
    }
    return result;
  }

  // ---- types --------------------------------------------------------------------------------

  // "Name", "Name(N)" or "Name(P,S)"; Name an alias, "any" or a plain type.
  std::shared_ptr<sql::Type> typeFromText(const std::string& written, const std::string& path) const {
    const std::string text = trimmed(written);
    std::string name = text;
    std::vector<int> numbers;
    if (const auto open = text.find('('); open != std::string::npos) {
      if (text.back() != ')') fail(path, "bad type \"" + written + "\": expected a closing parenthesis");
      name = trimmed(text.substr(0, open));
      std::stringstream inside(text.substr(open + 1, text.size() - open - 2));
      std::string part;
      while (std::getline(inside, part, ',')) {
        part = trimmed(part);
        if (part.empty() || part.size() > 9 ||
            !std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; }))
          fail(path, "bad type \"" + written + "\": a length, precision or scale is a number from 0");
        numbers.push_back(std::stoi(part));
      }
      if (numbers.empty() || numbers.size() > 2)
        fail(path, "bad type \"" + written + "\": expected (length) or (precision,scale)");
    }
    if (const auto alias = m_aliases.find(lowered(name)); alias != m_aliases.end()) {
      if (!numbers.empty()) fail(path, "bad type \"" + written + "\": the alias \"" + name + "\" takes no parameters");
      return alias->second;
    }
    std::optional<PlainType> plain = lowered(name) == "any" ? PlainType::Contextual : plainTypeFromName(name);
    if (!plain) {
      if (m_sets.count(lowered(name))) fail(path, "\"" + name + "\" is a set of types, not a type");
      fail(path, "unknown type \"" + name + "\"");
    }
    if (numbers.size() == 1) return std::make_shared<sql::LengthType>(*plain, numbers[0]);
    if (numbers.size() == 2) return std::make_shared<sql::PrecisionScaleType>(*plain, numbers[0], numbers[1]);
    return std::make_shared<sql::Type>(*plain);
  }

  PlainType plainFromText(const std::string& text, const std::string& path) const {
    const auto type = typeFromText(text, path);
    if (dynamic_cast<const sql::LengthType*>(type.get()) || dynamic_cast<const sql::PrecisionScaleType*>(type.get())) {
      if (m_aliases.count(lowered(trimmed(text))) == 0)
        fail(path, "\"" + text + "\": a plain type here, without length or digits");
    }
    return type->plainType();
  }

  // A plain type or the members of a set.
  std::vector<PlainType> plainsOrSet(const std::string& text, const std::string& path) const {
    if (const auto set = m_sets.find(lowered(trimmed(text))); set != m_sets.end()) return set->second;
    return {plainFromText(text, path)};
  }

  void readAliases(const json& value, const std::string& path) {
    expectObject(value, path);
    for (const auto& item : value.items()) {
      const std::string where = member(path, item.key().c_str());
      const std::string key = lowered(trimmed(item.key()));
      if (key.empty() || key == "any" || plainTypeFromName(key) || m_sets.count(key))
        fail(where, "an alias must not be empty or the name of a plain type or a set");
      m_aliases[key] = typeFromText(expectString(item.value(), where), where);
    }
  }

  void readSets(const json& value, const std::string& path) {
    expectObject(value, path);
    for (const auto& item : value.items()) {
      const std::string where = member(path, item.key().c_str());
      const std::string key = lowered(trimmed(item.key()));
      if (key.empty() || key == "any" || plainTypeFromName(key) || m_aliases.count(key) || m_sets.count(key))
        fail(where, "a set's name must not be empty, a type's name or the name of another set");
      expectArray(item.value(), where);
      if (item.value().empty()) fail(where, "a set must not be empty");
      std::vector<PlainType> members;
      for (std::size_t i = 0; i < item.value().size(); ++i) {
        const std::string at = element(where, i);
        for (const PlainType t : plainsOrSet(expectString(item.value()[i], at), at)) {
          if (std::find(members.begin(), members.end(), t) == members.end()) members.push_back(t);
        }
      }
      m_sets[key] = std::move(members);
    }
  }

  void readRanking(const json& value, const std::string& path) {
    expectArray(value, path);
    for (std::size_t level = 0; level < value.size(); ++level) {
      for (const auto& [text, where] : names(value[level], element(path, level))) {
        const PlainType t = plainFromText(text, where);
        if (!m_ranks->emplace(t, static_cast<int>(level)).second)
          fail(where, "\"" + text + "\" is ranked twice");
      }
    }
  }

  void readConversions(const json& value, const std::string& path) {
    expectArray(value, path);
    for (std::size_t i = 0; i < value.size(); ++i) {
      const std::string where = element(path, i);
      expectObject(value[i], where);
      checkKeys(value[i], where, {"from", "to"});
      std::vector<PlainType> from, to;
      for (const auto& [text, at] : names(required(value[i], where, "from"), member(where, "from"))) {
        const auto members = plainsOrSet(text, at);
        from.insert(from.end(), members.begin(), members.end());
      }
      for (const auto& [text, at] : names(required(value[i], where, "to"), member(where, "to"))) {
        const auto members = plainsOrSet(text, at);
        to.insert(to.end(), members.begin(), members.end());
      }
      for (const PlainType a : from) {
        for (const PlainType b : to) {
          if (a != b) m_catalogue->m_conversions.emplace(a, b);
        }
      }
    }
  }

  // ---- tables -------------------------------------------------------------------------------

  void readTables(const json& value, const std::string& path) {
    expectArray(value, path);
    for (std::size_t i = 0; i < value.size(); ++i) {
      const std::string where = element(path, i);
      expectObject(value[i], where);
      checkKeys(value[i], where, {"name", "columns", "description"});
      const std::wstring name = fromUtf8(nonEmptyString(required(value[i], where, "name"), member(where, "name")));
      const std::string columnsPath = member(where, "columns");
      const json& columns = required(value[i], where, "columns");
      expectArray(columns, columnsPath);
      if (columns.empty()) fail(columnsPath, "a table needs at least one column");
      std::vector<sql::ColumnInfo> list;
      std::set<std::wstring> seen;
      for (std::size_t c = 0; c < columns.size(); ++c) {
        const std::string at = element(columnsPath, c);
        list.push_back(readColumn(columns[c], at, name, seen));
      }
      if (!m_catalogue->m_tables.emplace(sql::normalized(name), std::make_shared<sql::GenericTableInfo>(list)).second)
        fail(member(where, "name"), "a second table called \"" + value[i]["name"].get<std::string>() + "\"");
    }
  }

  sql::ColumnInfo readColumn(const json& value, const std::string& path, const std::wstring& table,
                             std::set<std::wstring>& seen) {
    expectObject(value, path);
    checkKeys(value, path, {"name", "names", "type", "originalName", "originalTable", "description"});
    std::vector<std::wstring> columnNames;
    if (value.contains("name") == value.contains("names")) fail(path, "give either \"name\" or \"names\"");
    if (value.contains("name")) {
      columnNames.push_back(fromUtf8(nonEmptyString(value["name"], member(path, "name"))));
    } else {
      const std::string at = member(path, "names");
      expectArray(value["names"], at);
      if (value["names"].empty()) fail(at, "a column needs at least one name");
      for (std::size_t i = 0; i < value["names"].size(); ++i)
        columnNames.push_back(fromUtf8(nonEmptyString(value["names"][i], element(at, i))));
    }
    for (std::size_t i = 0; i < columnNames.size(); ++i) {
      if (!seen.insert(sql::normalized(columnNames[i])).second)
        fail(value.contains("name") ? member(path, "name") : element(member(path, "names"), i),
             "the table has a column of this name already");
    }
    const auto type = typeFromText(expectString(required(value, path, "type"), member(path, "type")), member(path, "type"));
    std::wstring originalName = columnNames.front();
    std::wstring originalTable = table;
    if (value.contains("originalName")) originalName = fromUtf8(expectString(value["originalName"], member(path, "originalName")));
    if (value.contains("originalTable")) originalTable = fromUtf8(expectString(value["originalTable"], member(path, "originalTable")));
    return sql::ColumnInfo(std::move(columnNames), type, std::move(originalName), std::move(originalTable));
  }

  // ---- routines -----------------------------------------------------------------------------

  // The sets an overload is expanded over, in order of first use; each stands for one member at
  // a time in every place that names it.
  struct Expansion {
    std::vector<std::string> sets;
    int bind(const std::string& name) {
      const auto found = std::find(sets.begin(), sets.end(), name);
      if (found != sets.end()) return static_cast<int>(found - sets.begin());
      sets.push_back(name);
      return static_cast<int>(sets.size() - 1);
    }
  };

  std::vector<ParamSpec> readParams(const json& object, const char* key, const std::string& path, Expansion& expansion) const {
    std::vector<ParamSpec> result;
    if (!object.contains(key)) return result;
    const std::string at = member(path, key);
    expectArray(object[key], at);
    for (std::size_t i = 0; i < object[key].size(); ++i) {
      const std::string where = element(at, i);
      const std::string text = expectString(object[key][i], where);
      ParamSpec spec;
      if (m_sets.count(lowered(trimmed(text)))) {
        spec.set = expansion.bind(lowered(trimmed(text)));
      } else {
        spec.plain = plainFromText(text, where);
      }
      result.push_back(spec);
    }
    return result;
  }

  ResultSpec readResult(const json& object, const std::string& path, Expansion& expansion) const {
    const std::string at = member(path, "result");
    const json& value = required(object, path, "result");
    ResultSpec spec;
    if (value.is_string()) {
      const std::string text = value.get<std::string>();
      if (m_sets.count(lowered(trimmed(text)))) {
        spec.kind = ResultSpec::Kind::FromSet;
        spec.set = expansion.bind(lowered(trimmed(text)));
      } else {
        spec.fixed = typeFromText(text, at);
      }
      return spec;
    }
    if (!value.is_object() || value.size() != 1)
      fail(at, "expected a type, or an object with one of: argument, decimalSum, decimalProduct, lengthSum, widest");
    const std::string rule = value.begin().key();
    const json& argument = value.begin().value();
    const std::string where = member(at, rule.c_str());
    auto index = [&](const json& v, const std::string& p) {
      const auto n = expectInteger(v, p);
      if (n < 0 || n > 1000) fail(p, "an argument position counts from 0");
      return static_cast<std::size_t>(n);
    };
    if (rule == "argument") {
      spec.kind = ResultSpec::Kind::Argument;
      spec.first = index(argument, where);
    } else if (rule == "decimalSum" || rule == "decimalProduct") {
      spec.kind = rule == "decimalSum" ? ResultSpec::Kind::DecimalSum : ResultSpec::Kind::DecimalProduct;
      expectArray(argument, where);
      if (argument.size() != 2) fail(where, "expected the positions of two arguments");
      spec.first = index(argument[0], element(where, 0));
      spec.second = index(argument[1], element(where, 1));
    } else if (rule == "lengthSum") {
      spec.kind = ResultSpec::Kind::LengthSum;
      spec.plain = plainFromText(expectString(argument, where), where);
    } else if (rule == "widest") {
      spec.kind = ResultSpec::Kind::Widest;
      if (!expectBool(argument, where)) fail(where, "only true is meaningful");
    } else {
      fail(where, "unknown result rule (expected argument, decimalSum, decimalProduct, lengthSum or widest)");
    }
    return spec;
  }

  // The full-type function of one expanded overload.
  sql::FullTypeFunction fullType(const ResultSpec& spec, const std::vector<PlainType>& members) const {
    using Types = std::vector<std::shared_ptr<sql::Type>>;
    switch (spec.kind) {
    case ResultSpec::Kind::Fixed: return [type = spec.fixed](const Types&) { return type; };
    case ResultSpec::Kind::FromSet: {
      auto type = std::make_shared<sql::Type>(members[static_cast<std::size_t>(spec.set)]);
      return [type = std::shared_ptr<sql::Type>(std::move(type))](const Types&) { return type; };
    }
    case ResultSpec::Kind::Argument:
      return [n = spec.first](const Types& types) { return n < types.size() ? types[n] : nullptr; };
    case ResultSpec::Kind::DecimalSum:
      return [a = spec.first, b = spec.second](const Types& types) -> std::shared_ptr<sql::Type> {
        const auto at = [&](std::size_t i) { return i < types.size() ? digitsOf(types[i]) : sql::PrecisionScaleType(); };
        return std::make_shared<sql::PrecisionScaleType>(at(a) + at(b));
      };
    case ResultSpec::Kind::DecimalProduct:
      return [a = spec.first, b = spec.second](const Types& types) -> std::shared_ptr<sql::Type> {
        const auto at = [&](std::size_t i) { return i < types.size() ? digitsOf(types[i]) : sql::PrecisionScaleType(); };
        const auto x = at(a);
        const auto y = at(b);
        return std::make_shared<sql::PrecisionScaleType>(PlainType::Decimal, x.precision() + y.precision(),
                                                         x.scale() + y.scale());
      };
    case ResultSpec::Kind::LengthSum:
      return [plain = spec.plain](const Types& types) -> std::shared_ptr<sql::Type> {
        int length = 0;
        for (const auto& type : types) length += lengthOf(type);
        return std::make_shared<sql::LengthType>(plain, length);
      };
    case ResultSpec::Kind::Widest:
      return [ranks = m_ranks](const Types& types) -> std::shared_ptr<sql::Type> {
        std::shared_ptr<sql::Type> best;
        for (const auto& type : types) {
          if (!type) continue;
          if (!best) {
            best = type;
            continue;
          }
          const int a = rankOf(*ranks, type->plainType());
          const int b = rankOf(*ranks, best->plainType());
          const bool wider = a != b ? a > b
                                    : lengthOf(type) > lengthOf(best) ||
                                          digitsOf(type).precision() > digitsOf(best).precision();
          if (wider) best = type;
        }
        return best;
      };
    }
    return {};
  }

  PlainType declaredResult(const ResultSpec& spec, const std::vector<PlainType>& members,
                           const std::vector<PlainType>& params) const {
    switch (spec.kind) {
    case ResultSpec::Kind::Fixed: return spec.fixed->plainType();
    case ResultSpec::Kind::FromSet: return members[static_cast<std::size_t>(spec.set)];
    case ResultSpec::Kind::Argument:
      return spec.first < params.size() ? params[spec.first] : (params.empty() ? PlainType::Fault : params.back());
    case ResultSpec::Kind::DecimalSum:
    case ResultSpec::Kind::DecimalProduct: return PlainType::Decimal;
    case ResultSpec::Kind::LengthSum: return spec.plain;
    case ResultSpec::Kind::Widest: return params.empty() ? PlainType::Contextual : params.front();
    }
    return PlainType::Fault;
  }

  static std::vector<PlainType> substitute(const std::vector<ParamSpec>& specs, const std::vector<PlainType>& members) {
    std::vector<PlainType> result;
    result.reserve(specs.size());
    for (const ParamSpec& spec : specs) result.push_back(spec.set < 0 ? spec.plain : members[static_cast<std::size_t>(spec.set)]);
    return result;
  }

  // Calls `make` once for each combination of members of the bound sets.
  void expand(const Expansion& expansion, const std::string& path,
              const std::function<void(const std::vector<PlainType>&)>& make) const {
    std::size_t count = 1;
    for (const auto& name : expansion.sets) {
      count *= m_sets.at(name).size();
      if (count > maxExpansion) fail(path, "expands to more than " + std::to_string(maxExpansion) + " overloads");
    }
    std::vector<PlainType> members(expansion.sets.size());
    std::function<void(std::size_t)> walk = [&](std::size_t depth) {
      if (depth == expansion.sets.size()) {
        make(members);
        return;
      }
      for (const PlainType t : m_sets.at(expansion.sets[depth])) {
        members[depth] = t;
        walk(depth + 1);
      }
    };
    walk(0);
  }

  sql::FunctionKind readKind(const json& value, const std::string& path) const {
    if (value.is_number_integer()) {
      const auto number = expectInteger(value, path);
      if (number < INT32_MIN || number > INT32_MAX) fail(path, "a kind's number must fit in 32 bits");
      return static_cast<sql::FunctionKind>(number);
    }
    const std::string text = lowered(expectString(value, path));
    if (text == "ordinary") return sql::FunctionKind::Ordinary;
    if (text == "aggregate") return sql::FunctionKind::Aggregate;
    if (text == "contextopaque") return sql::FunctionKind::ContextOpaque;
    fail(path, "unknown kind \"" + value.get<std::string>() + "\" (expected Ordinary, Aggregate, ContextOpaque or a number)");
  }

  void readFunctions(const json& value, const std::string& path) {
    expectArray(value, path);
    for (std::size_t i = 0; i < value.size(); ++i) {
      const std::string where = element(path, i);
      expectObject(value[i], where);
      checkKeys(value[i], where, {"name", "kind", "overloads", "description"});
      const std::string name = nonEmptyString(required(value[i], where, "name"), member(where, "name"));
      const auto kind = value[i].contains("kind") ? readKind(value[i]["kind"], member(where, "kind")) : sql::FunctionKind::Ordinary;
      const std::string listPath = member(where, "overloads");
      const json& list = required(value[i], where, "overloads");
      expectArray(list, listPath);
      std::vector<std::shared_ptr<sql::OverloadInfo>> overloads;
      for (std::size_t k = 0; k < list.size(); ++k) readFunctionOverload(list[k], element(listPath, k), overloads);
      if (overloads.empty()) fail(listPath, "a function needs at least one overload");
      auto info = std::make_shared<CatalogueFunction>(kind, std::move(overloads));
      if (!m_catalogue->m_functions.emplace(sql::normalized(fromUtf8(name)), std::move(info)).second)
        fail(member(where, "name"), "a second function called \"" + name + "\"");
    }
  }

  void readFunctionOverload(const json& value, const std::string& path,
                            std::vector<std::shared_ptr<sql::OverloadInfo>>& out) const {
    expectObject(value, path);
    checkKeys(value, path, {"params", "optional", "variadic", "result", "deterministic"});
    Expansion expansion;
    const auto params = readParams(value, "params", path, expansion);
    const auto optional = readParams(value, "optional", path, expansion);
    const bool variadic = value.contains("variadic") && expectBool(value["variadic"], member(path, "variadic"));
    if (variadic && params.empty()) fail(member(path, "variadic"), "a variadic overload needs at least one parameter in \"params\"");
    const bool deterministic = !value.contains("deterministic") || expectBool(value["deterministic"], member(path, "deterministic"));
    const ResultSpec result = readResult(value, path, expansion);
    expand(expansion, path, [&](const std::vector<PlainType>& members) {
      auto required = substitute(params, members);
      const PlainType declared = declaredResult(result, members, required);
      out.push_back(std::make_shared<sql::OverloadInfo>(
          declared, std::move(required), fullType(result, members),
          deterministic ? sql::Determinism::Deterministic : sql::Determinism::NonDeterministic,
          substitute(optional, members), variadic));
    });
  }

  std::optional<OperationCode> builtinOperator(const std::string& name) const {
    for (int code = 1; code <= 50; ++code) {
      const char* known = sql::ast::enumName(static_cast<OperationCode>(code));
      if (known && lowered(known) == lowered(trimmed(name))) return static_cast<OperationCode>(code);
    }
    return std::nullopt;
  }

  sql::ast::Quantifier readQuantifier(const json& value, const std::string& path) const {
    const std::string text = lowered(expectString(value, path));
    if (text == "none") return sql::ast::Quantifier::None;
    if (text == "all") return sql::ast::Quantifier::All;
    if (text == "any") return sql::ast::Quantifier::Any;
    fail(path, "unknown quantifier (expected None, All or Any)");
  }

  void readOperators(const json& value, const std::string& path) {
    expectArray(value, path);
    for (std::size_t i = 0; i < value.size(); ++i) {
      const std::string where = element(path, i);
      expectObject(value[i], where);
      checkKeys(value[i], where, {"operator", "text", "level", "overloads", "description"});
      const std::string codePath = member(where, "operator");
      const json& codeValue = required(value[i], where, "operator");
      OperationCode code;
      if (codeValue.is_number_integer()) {
        const auto number = expectInteger(codeValue, codePath);
        if (number <= 50 || number > INT32_MAX) fail(codePath, "a custom operator has a number above 50 (name a built-in one)");
        code = static_cast<OperationCode>(number);
        const std::string text = nonEmptyString(required(value[i], where, "text"), member(where, "text"));
        m_catalogue->m_operatorTexts[code] = fromUtf8(text);
        if (value[i].contains("level")) {
          const auto level = expectInteger(value[i]["level"], member(where, "level"));
          if (level < 0 || level > 1000) fail(member(where, "level"), "a level is a number from 0 to 1000");
          m_catalogue->m_levels[code] = static_cast<int>(level);
        }
      } else {
        const std::string name = nonEmptyString(codeValue, codePath);
        const auto builtin = builtinOperator(name);
        if (!builtin) fail(codePath, "unknown operator \"" + name + "\" (an OperationCode name, or a number above 50)");
        code = *builtin;
        if (value[i].contains("text")) fail(member(where, "text"), "only a custom operator has a text of its own");
        if (value[i].contains("level")) fail(member(where, "level"), "the level of a built-in operator is set in \"precedence\"");
      }
      const std::string listPath = member(where, "overloads");
      const json& list = required(value[i], where, "overloads");
      expectArray(list, listPath);
      std::vector<std::shared_ptr<sql::OperatorOverloadInfo>> overloads;
      for (std::size_t k = 0; k < list.size(); ++k) readOperatorOverload(list[k], element(listPath, k), overloads);
      if (overloads.empty()) fail(listPath, "an operator needs at least one overload");
      if (!m_catalogue->m_operators.emplace(code, std::make_shared<CatalogueOperator>(std::move(overloads))).second)
        fail(codePath, "the operator is described twice");
    }
  }

  void readOperatorOverload(const json& value, const std::string& path,
                            std::vector<std::shared_ptr<sql::OperatorOverloadInfo>>& out) const {
    expectObject(value, path);
    checkKeys(value, path, {"params", "repeat", "times", "tail", "result", "quantifiers"});
    Expansion expansion;
    const auto params = readParams(value, "params", path, expansion);
    const auto repeat = readParams(value, "repeat", path, expansion);
    const auto tail = readParams(value, "tail", path, expansion);
    std::int64_t fewest = 0, most = 0;
    if (value.contains("repeat") != value.contains("times")) fail(path, "\"repeat\" and \"times\" go together");
    if (value.contains("repeat")) {
      const std::string at = member(path, "times");
      expectArray(value["times"], at);
      if (value["times"].size() != 2) fail(at, "expected [fewest, most]");
      fewest = expectInteger(value["times"][0], element(at, 0));
      most = expectInteger(value["times"][1], element(at, 1));
      if (fewest < 0 || most < fewest || most > 1024) fail(at, "expected 0 <= fewest <= most <= 1024");
      if (repeat.empty()) fail(member(path, "repeat"), "must not be empty");
    }
    if (params.empty() && repeat.empty() && tail.empty()) fail(path, "an operator overload needs parameters");
    std::vector<sql::ast::Quantifier> quantifiers{sql::ast::Quantifier::None};
    if (value.contains("quantifiers")) {
      const std::string at = member(path, "quantifiers");
      expectArray(value["quantifiers"], at);
      if (value["quantifiers"].empty()) fail(at, "must not be empty");
      quantifiers.clear();
      for (std::size_t q = 0; q < value["quantifiers"].size(); ++q)
        quantifiers.push_back(readQuantifier(value["quantifiers"][q], element(at, q)));
    }
    const ResultSpec result = readResult(value, path, expansion);
    expand(expansion, path, [&](const std::vector<PlainType>& members) {
      for (std::int64_t times = fewest; times <= most; ++times) {
        std::vector<PlainType> all = substitute(params, members);
        const auto repeated = substitute(repeat, members);
        for (std::int64_t n = 0; n < times; ++n) all.insert(all.end(), repeated.begin(), repeated.end());
        const auto last = substitute(tail, members);
        all.insert(all.end(), last.begin(), last.end());
        const PlainType declared = declaredResult(result, members, all);
        for (const auto quantifier : quantifiers)
          out.push_back(std::make_shared<sql::OperatorOverloadInfo>(declared, all, fullType(result, members), quantifier));
      }
    });
  }

  void readPrecedence(const json& value, const std::string& path) {
    expectArray(value, path);
    for (std::size_t level = 0; level < value.size(); ++level) {
      for (const auto& [name, where] : names(value[level], element(path, level))) {
        const auto code = builtinOperator(name);
        if (!code) fail(where, "unknown operator \"" + name + "\" (custom operators take a \"level\" of their own)");
        if (!m_catalogue->m_levels.emplace(*code, static_cast<int>(level) + 1).second)
          fail(where, "\"" + name + "\" has a level already");
      }
    }
  }

  std::string m_source;
  Catalogue* m_catalogue = nullptr;
  std::map<std::string, std::vector<PlainType>> m_sets;        // by lower-case name
  std::map<std::string, std::shared_ptr<sql::Type>> m_aliases; // by lower-case name
  std::shared_ptr<RankTable> m_ranks;
};

// ---- Catalogue ------------------------------------------------------------------------------

std::shared_ptr<const Catalogue> Catalogue::parse(std::string_view text, const std::string& source) {
  json root;
  try {
    root = json::parse(text.begin(), text.end());
  } catch (const json::parse_error& error) {
    // The library's message starts with its own tag; the rest names line and column.
    std::string message = error.what();
    if (const auto tag = message.find("] "); message.rfind("[json.exception", 0) == 0 && tag != std::string::npos)
      message.erase(0, tag + 2);
    throw CatalogueError("catalogue " + source + ": not valid JSON: " + message);
  }
  return CatalogueReader(source).read(root);
}

std::shared_ptr<const Catalogue> Catalogue::load(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw CatalogueError("catalogue " + path + ": cannot be read");
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (file.bad()) throw CatalogueError("catalogue " + path + ": cannot be read");
  return parse(text, path);
}

std::shared_ptr<const Catalogue> Catalogue::builtin() {
  static const std::shared_ptr<const Catalogue> instance = parse(defaultCatalogueText(), "(embedded default)");
  return instance;
}

std::shared_ptr<sql::FunctionInfo> Catalogue::function(const std::wstring& name) const {
  const auto found = m_functions.find(sql::normalized(name));
  return found == m_functions.end() ? nullptr : found->second;
}

std::shared_ptr<sql::OperatorInfo> Catalogue::operatorInfo(OperationCode code) const {
  const auto found = m_operators.find(code);
  return found == m_operators.end() ? nullptr : found->second;
}

bool Catalogue::canConvert(PlainType from, PlainType to) const {
  if (from == to || from == PlainType::Contextual || to == PlainType::Contextual) return true;
  return m_conversions.count({from, to}) != 0;
}

std::shared_ptr<sql::Type> Catalogue::convert(const std::shared_ptr<sql::Type>& value, PlainType to) const {
  if (to == PlainType::Contextual) return value;
  if (carriesLength(to)) {
    if (const auto* sized = dynamic_cast<const sql::LengthType*>(value.get()))
      return std::make_shared<sql::LengthType>(to, sized->length());
  }
  if (value && (to == PlainType::Decimal || to == PlainType::Numeric)) {
    const PlainType from = value->plainType();
    if (dynamic_cast<const sql::PrecisionScaleType*>(value.get()) || from == PlainType::SmallInt ||
        from == PlainType::Integer || from == PlainType::BigInt) {
      const auto digits = digitsOf(value);
      return std::make_shared<sql::PrecisionScaleType>(to, digits.precision(), digits.scale());
    }
  }
  return std::make_shared<sql::Type>(to);
}

int Catalogue::compareTypes(PlainType a, PlainType b) const {
  const int x = rankOf(m_ranks, a);
  const int y = rankOf(m_ranks, b);
  return x < y ? -1 : (x > y ? 1 : 0);
}

std::shared_ptr<sql::TableInfo> Catalogue::table(const std::wstring& name) const {
  const auto found = m_tables.find(sql::normalized(name));
  return found == m_tables.end() ? nullptr : found->second;
}

std::optional<int> Catalogue::precedenceLevel(OperationCode code) const {
  const auto found = m_levels.find(code);
  if (found != m_levels.end()) return found->second;
  if (m_hasPrecedence || static_cast<int>(code) > 50) return 0;
  return std::nullopt;
}

std::wstring Catalogue::operatorText(OperationCode code) const {
  const auto found = m_operatorTexts.find(code);
  return found == m_operatorTexts.end() ? std::wstring() : found->second;
}

// ---- helpers --------------------------------------------------------------------------------

std::shared_ptr<const Catalogue> takeCatalogue(const char* command, std::vector<std::string>& args) {
  std::optional<std::string> path;
  for (std::size_t i = 0; i < args.size();) {
    const std::string& arg = args[i];
    if (arg == "--catalog" || arg.rfind("--catalog=", 0) == 0) {
      std::string value;
      if (arg == "--catalog") {
        if (i + 1 >= args.size()) {
          std::cerr << "velmor-sql " << command << ": --catalog needs a FILE\n";
          return nullptr;
        }
        value = args[i + 1];
        args.erase(args.begin() + static_cast<std::ptrdiff_t>(i), args.begin() + static_cast<std::ptrdiff_t>(i) + 2);
      } else {
        value = arg.substr(10);
        args.erase(args.begin() + static_cast<std::ptrdiff_t>(i));
      }
      if (path) {
        std::cerr << "velmor-sql " << command << ": --catalog given twice\n";
        return nullptr;
      }
      path = value;
      continue;
    }
    // Skip other leading options (and the value of --from) so that their order is free.
    if (arg == "--from") {
      i += 2;
      continue;
    }
    if (arg.size() > 2 && arg.compare(0, 2, "--") == 0) {
      ++i;
      continue;
    }
    break;
  }
  try {
    return path ? Catalogue::load(*path) : Catalogue::builtin();
  } catch (const CatalogueError& error) {
    std::cerr << "velmor-sql: " << error.what() << '\n';
  }
  return nullptr;
}

std::wstring fromUtf8(std::string_view bytes) {
  std::wstring units;
  units.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    std::uint32_t code = lead;
    std::size_t length = 1;
    if (lead >= 0xF0 && lead < 0xF8) {
      code = lead & 0x07u;
      length = 4;
    } else if (lead >= 0xE0 && lead < 0xF0) {
      code = lead & 0x0Fu;
      length = 3;
    } else if (lead >= 0xC0 && lead < 0xE0) {
      code = lead & 0x1Fu;
      length = 2;
    }
    bool valid = i + length <= bytes.size();
    for (std::size_t k = 1; valid && k < length; ++k) {
      const auto next = static_cast<unsigned char>(bytes[i + k]);
      valid = (next & 0xC0u) == 0x80u;
      code = (code << 6) | (next & 0x3Fu);
    }
    if (!valid) {
      code = lead;
      length = 1;
    }
    i += length;
    if (code >= 0x10000) {
      code -= 0x10000;
      units += static_cast<wchar_t>(0xD800 + (code >> 10));
      units += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
    } else {
      units += static_cast<wchar_t>(code);
    }
  }
  return units;
}

// ---- the string builder's context ----------------------------------------------------------

namespace {

// The catalogue's precedence levels and operator texts over the tool's defaults.
class CatalogueStringBuildContext final : public DefaultStringBuildContext {
public:
  explicit CatalogueStringBuildContext(std::shared_ptr<const Catalogue> catalogue)
      : m_catalogue(std::move(catalogue)) {}

  std::wstring operatorToString(OperationCode code) const override {
    std::wstring text = m_catalogue->operatorText(code);
    return text.empty() ? DefaultStringBuildContext::operatorToString(code) : text;
  }

protected:
  int precedenceLevel(OperationCode code) const override {
    const auto level = m_catalogue->precedenceLevel(code);
    return level ? *level : DefaultStringBuildContext::precedenceLevel(code);
  }

private:
  std::shared_ptr<const Catalogue> m_catalogue;
};

} // namespace

std::unique_ptr<DefaultStringBuildContext> takeStringBuildContext(const char* command,
                                                                  std::vector<std::string>& args) {
  const bool named = std::any_of(args.begin(), args.end(), [](const std::string& arg) {
    return arg == "--catalog" || arg.rfind("--catalog=", 0) == 0;
  });
  if (!named) return std::make_unique<DefaultStringBuildContext>();
  auto catalogue = takeCatalogue(command, args);
  if (!catalogue) return nullptr;
  return std::make_unique<CatalogueStringBuildContext>(std::move(catalogue));
}

} // namespace velmor::cli
