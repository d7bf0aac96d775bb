// Catalogue files: the JSON format read into the in-memory catalogue, and the embedded samples.
#include <velmor/sql/host/CatalogueFile.h>

#include "Worded.h"

#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/types/Strings.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <iterator>

namespace velmor::sql::host {

using nlohmann::json;
using type::PlainType;

namespace {

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

class CatalogueReader {
public:
  CatalogueReader(Catalogue& catalogue, std::string source) : m_catalogue(catalogue), m_source(std::move(source)) {}

  void read(const json& root) {
    expectObject(root, "");
    checkKeys(root, "", {"description", "extends", "types", "typeSets", "tables", "functions", "operators",
                         "conversions", "ranking", "precedence"});
    // Order matters: names of types and sets come first, the ranking before any result rule
    // that ranks. The file's own types come before the standard set, so that a "Geometry" of the
    // file is the one its spatial predicates take.
    if (root.contains("types")) readAliases(root["types"], "types");
    if (root.contains("extends")) {
      const json& base = root["extends"];
      if (!base.is_string() || lowered(base.get<std::string>()) != "standard")
        fail("extends", "unknown base " + base.dump() + " (expected \"standard\")");
      if (!m_catalogue.hasStandardSql()) m_catalogue.addStandardSql();
    }
    if (root.contains("typeSets")) readSets(root["typeSets"], "typeSets");
    if (root.contains("ranking")) readRanking(root["ranking"], "ranking");
    if (root.contains("tables")) readTables(root["tables"], "tables");
    if (root.contains("functions")) readFunctions(root["functions"], "functions");
    if (root.contains("operators")) readOperators(root["operators"], "operators");
    if (root.contains("conversions")) readConversions(root["conversions"], "conversions");
    if (root.contains("precedence")) readPrecedence(root["precedence"], "precedence");
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

  std::shared_ptr<Type> typeFromText(const std::string& text, const std::string& path) const {
    try {
      return m_catalogue.typeOf(text);
    } catch (const CatalogueError& error) {
      fail(path, error.what());
    }
  }

  // A plain type or the members of a set.
  std::vector<PlainType> plainsOrSet(const std::string& text, const std::string& path) const {
    try {
      return m_catalogue.plainTypesOf(text);
    } catch (const CatalogueError& error) {
      fail(path, error.what());
    }
  }

  PlainType plainFromText(const std::string& text, const std::string& path) const {
    if (m_catalogue.isTypeSet(text)) typeFromText(text, path); // names the set
    return plainsOrSet(text, path).front();
  }

  bool reservedName(const std::string& key) const {
    return key.empty() || key == "any" || plainTypeFromName(key) || m_catalogue.isTypeSet(key);
  }

  void readAliases(const json& value, const std::string& path) {
    expectObject(value, path);
    for (const auto& item : value.items()) {
      const std::string where = member(path, item.key().c_str());
      if (reservedName(lowered(trimmed(item.key()))))
        fail(where, "an alias must not be empty or the name of a plain type or a set");
      m_catalogue.addTypeName(item.key(), typeFromText(expectString(item.value(), where), where));
    }
  }

  void readSets(const json& value, const std::string& path) {
    expectObject(value, path);
    for (const auto& item : value.items()) {
      const std::string where = member(path, item.key().c_str());
      if (reservedName(lowered(trimmed(item.key()))) || m_catalogue.isTypeName(item.key()))
        fail(where, "a set's name must not be empty, a type's name or the name of another set");
      expectArray(item.value(), where);
      if (item.value().empty()) fail(where, "a set must not be empty");
      std::vector<std::string> members;
      for (std::size_t i = 0; i < item.value().size(); ++i) {
        const std::string at = element(where, i);
        members.push_back(expectString(item.value()[i], at));
        plainsOrSet(members.back(), at);
      }
      m_catalogue.addTypeSet(item.key(), members);
    }
  }

  void readRanking(const json& value, const std::string& path) {
    expectArray(value, path);
    std::vector<std::vector<PlainType>> levels(value.size());
    std::set<PlainType> seen;
    for (std::size_t level = 0; level < value.size(); ++level) {
      for (const auto& [text, where] : names(value[level], element(path, level))) {
        const PlainType t = plainFromText(text, where);
        if (!seen.insert(t).second) fail(where, "\"" + text + "\" is ranked twice");
        levels[level].push_back(t);
      }
    }
    m_catalogue.setRanking(levels);
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
        for (const PlainType b : to) m_catalogue.addConversion(a, b);
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
      std::vector<ColumnInfo> list;
      std::set<std::wstring> seen;
      for (std::size_t c = 0; c < columns.size(); ++c) list.push_back(readColumn(columns[c], element(columnsPath, c), name, seen));
      if (m_catalogue.table(name))
        fail(member(where, "name"), "a second table called \"" + value[i]["name"].get<std::string>() + "\"");
      m_catalogue.addTable(name, std::move(list));
    }
  }

  ColumnInfo readColumn(const json& value, const std::string& path, const std::wstring& table, std::set<std::wstring>& seen) {
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
      if (!seen.insert(normalized(columnNames[i])).second)
        fail(value.contains("name") ? member(path, "name") : element(member(path, "names"), i),
             "the table has a column of this name already");
    }
    const auto type = typeFromText(expectString(required(value, path, "type"), member(path, "type")), member(path, "type"));
    std::wstring originalName = columnNames.front();
    std::wstring originalTable = table;
    if (value.contains("originalName")) originalName = fromUtf8(expectString(value["originalName"], member(path, "originalName")));
    if (value.contains("originalTable")) originalTable = fromUtf8(expectString(value["originalTable"], member(path, "originalTable")));
    return ColumnInfo(std::move(columnNames), type, std::move(originalName), std::move(originalTable));
  }

  // ---- routines -----------------------------------------------------------------------------

  std::vector<std::string> readParams(const json& object, const char* key, const std::string& path) const {
    std::vector<std::string> result;
    if (!object.contains(key)) return result;
    const std::string at = member(path, key);
    expectArray(object[key], at);
    for (std::size_t i = 0; i < object[key].size(); ++i) {
      const std::string where = element(at, i);
      result.push_back(expectString(object[key][i], where));
      if (!m_catalogue.isTypeSet(result.back())) plainFromText(result.back(), where);
    }
    return result;
  }

  Result readResult(const json& object, const std::string& path) const {
    const std::string at = member(path, "result");
    const json& value = required(object, path, "result");
    if (value.is_string()) {
      const std::string text = value.get<std::string>();
      if (!m_catalogue.isTypeSet(text)) typeFromText(text, at);
      return Result(text);
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
    if (rule == "argument") return Result::argument(index(argument, where));
    if (rule == "decimalSum" || rule == "decimalProduct") {
      expectArray(argument, where);
      if (argument.size() != 2) fail(where, "expected the positions of two arguments");
      const auto a = index(argument[0], element(where, 0));
      const auto b = index(argument[1], element(where, 1));
      return rule == "decimalSum" ? Result::decimalSum(a, b) : Result::decimalProduct(a, b);
    }
    if (rule == "lengthSum") return Result::lengthSum(plainFromText(expectString(argument, where), where));
    if (rule == "widest") {
      if (!expectBool(argument, where)) fail(where, "only true is meaningful");
      return Result::widest();
    }
    fail(where, "unknown result rule (expected argument, decimalSum, decimalProduct, lengthSum or widest)");
  }

  FunctionKind readKind(const json& value, const std::string& path) const {
    if (value.is_number_integer()) {
      const auto number = expectInteger(value, path);
      if (number < INT32_MIN || number > INT32_MAX) fail(path, "a kind's number must fit in 32 bits");
      return static_cast<FunctionKind>(number);
    }
    const std::string text = lowered(expectString(value, path));
    if (text == "ordinary") return FunctionKind::Ordinary;
    if (text == "aggregate") return FunctionKind::Aggregate;
    if (text == "contextopaque") return FunctionKind::ContextOpaque;
    fail(path, "unknown kind \"" + value.get<std::string>() + "\" (expected Ordinary, Aggregate, ContextOpaque or a number)");
  }

  void readFunctions(const json& value, const std::string& path) {
    expectArray(value, path);
    for (std::size_t i = 0; i < value.size(); ++i) {
      const std::string where = element(path, i);
      expectObject(value[i], where);
      checkKeys(value[i], where, {"name", "kind", "overloads", "description"});
      const std::string name = nonEmptyString(required(value[i], where, "name"), member(where, "name"));
      const auto kind = value[i].contains("kind") ? readKind(value[i]["kind"], member(where, "kind")) : FunctionKind::Ordinary;
      const std::string listPath = member(where, "overloads");
      const json& list = required(value[i], where, "overloads");
      expectArray(list, listPath);
      std::vector<std::shared_ptr<OverloadInfo>> overloads;
      for (std::size_t k = 0; k < list.size(); ++k) {
        const std::string at = element(listPath, k);
        const Signature signature = readFunctionOverload(list[k], at);
        // Expanded one at a time so that a fault names its overload.
        expanded(at, [&] {
          auto made = m_catalogue.overloadsOf(signature);
          overloads.insert(overloads.end(), made.begin(), made.end());
        });
      }
      if (overloads.empty()) fail(listPath, "a function needs at least one overload");
      if (m_catalogue.function(fromUtf8(name))) fail(member(where, "name"), "a second function called \"" + name + "\"");
      m_catalogue.addFunction(fromUtf8(name), kind, std::move(overloads));
    }
  }

  Signature readFunctionOverload(const json& value, const std::string& path) const {
    expectObject(value, path);
    checkKeys(value, path, {"params", "optional", "variadic", "result", "deterministic"});
    auto params = readParams(value, "params", path);
    auto optional = readParams(value, "optional", path);
    const bool variadic = value.contains("variadic") && expectBool(value["variadic"], member(path, "variadic"));
    if (variadic && params.empty()) fail(member(path, "variadic"), "a variadic overload needs at least one parameter in \"params\"");
    const bool deterministic = !value.contains("deterministic") || expectBool(value["deterministic"], member(path, "deterministic"));
    return Signature{std::move(params), readResult(value, path), std::move(optional), variadic, deterministic};
  }

  std::optional<OperationCode> builtinOperator(const std::string& name) const {
    for (int code = 1; code <= 50; ++code) {
      const char* known = ast::enumName(static_cast<OperationCode>(code));
      if (known && lowered(known) == lowered(trimmed(name))) return static_cast<OperationCode>(code);
    }
    return std::nullopt;
  }

  ast::Quantifier readQuantifier(const json& value, const std::string& path) const {
    const std::string text = lowered(expectString(value, path));
    if (text == "none") return ast::Quantifier::None;
    if (text == "all") return ast::Quantifier::All;
    if (text == "any") return ast::Quantifier::Any;
    fail(path, "unknown quantifier (expected None, All or Any)");
  }

  void readOperators(const json& value, const std::string& path) {
    expectArray(value, path);
    std::set<OperationCode> described;
    for (std::size_t i = 0; i < value.size(); ++i) {
      const std::string where = element(path, i);
      expectObject(value[i], where);
      checkKeys(value[i], where, {"operator", "text", "level", "overloads", "description"});
      const std::string codePath = member(where, "operator");
      const json& codeValue = required(value[i], where, "operator");
      OperationCode code;
      std::optional<std::wstring> text;
      int level = 0;
      if (codeValue.is_number_integer()) {
        const auto number = expectInteger(codeValue, codePath);
        if (number <= 50 || number > INT32_MAX) fail(codePath, "a custom operator has a number above 50 (name a built-in one)");
        code = static_cast<OperationCode>(number);
        text = fromUtf8(nonEmptyString(required(value[i], where, "text"), member(where, "text")));
        if (value[i].contains("level")) {
          const auto read = expectInteger(value[i]["level"], member(where, "level"));
          if (read < 0 || read > 1000) fail(member(where, "level"), "a level is a number from 0 to 1000");
          level = static_cast<int>(read);
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
      std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads;
      for (std::size_t k = 0; k < list.size(); ++k) {
        const std::string at = element(listPath, k);
        const OperatorSignature signature = readOperatorOverload(list[k], at);
        expanded(at, [&] {
          auto made = m_catalogue.overloadsOf(signature);
          overloads.insert(overloads.end(), made.begin(), made.end());
        });
      }
      if (overloads.empty()) fail(listPath, "an operator needs at least one overload");
      if (!described.insert(code).second) fail(codePath, "the operator is described twice");
      if (text) m_catalogue.addCustomOperator(code, *text, level);
      m_catalogue.addOperator(code, std::move(overloads));
    }
  }

  OperatorSignature readOperatorOverload(const json& value, const std::string& path) const {
    expectObject(value, path);
    checkKeys(value, path, {"params", "repeat", "times", "tail", "result", "quantifiers"});
    OperatorSignature signature{readParams(value, "params", path), Result("Fault")};
    signature.repeat = readParams(value, "repeat", path);
    signature.tail = readParams(value, "tail", path);
    if (value.contains("repeat") != value.contains("times")) fail(path, "\"repeat\" and \"times\" go together");
    if (value.contains("repeat")) {
      const std::string at = member(path, "times");
      expectArray(value["times"], at);
      if (value["times"].size() != 2) fail(at, "expected [fewest, most]");
      const auto fewest = expectInteger(value["times"][0], element(at, 0));
      const auto most = expectInteger(value["times"][1], element(at, 1));
      if (fewest < 0 || most < fewest || most > 1024) fail(at, "expected 0 <= fewest <= most <= 1024");
      if (signature.repeat.empty()) fail(member(path, "repeat"), "must not be empty");
      signature.times = {static_cast<int>(fewest), static_cast<int>(most)};
    }
    if (signature.params.empty() && signature.repeat.empty() && signature.tail.empty())
      fail(path, "an operator overload needs parameters");
    if (value.contains("quantifiers")) {
      const std::string at = member(path, "quantifiers");
      expectArray(value["quantifiers"], at);
      if (value["quantifiers"].empty()) fail(at, "must not be empty");
      signature.quantifiers.clear();
      for (std::size_t q = 0; q < value["quantifiers"].size(); ++q)
        signature.quantifiers.push_back(readQuantifier(value["quantifiers"][q], element(at, q)));
    }
    signature.result = readResult(value, path);
    return signature;
  }

  void readPrecedence(const json& value, const std::string& path) {
    expectArray(value, path);
    std::vector<std::vector<OperationCode>> levels(value.size());
    std::set<OperationCode> seen;
    for (std::size_t level = 0; level < value.size(); ++level) {
      for (const auto& [name, where] : names(value[level], element(path, level))) {
        const auto code = builtinOperator(name);
        if (!code) fail(where, "unknown operator \"" + name + "\" (custom operators take a \"level\" of their own)");
        if (!seen.insert(*code).second) fail(where, "\"" + name + "\" has a level already");
        levels[level].push_back(*code);
      }
    }
    m_catalogue.setPrecedence(levels);
  }

  // Runs one expansion; a fault it raises is placed at `path`.
  template <class F>
  void expanded(const std::string& path, F&& make) const {
    try {
      make();
    } catch (const CatalogueError& error) {
      fail(path, error.what());
    }
  }

  Catalogue& m_catalogue;
  std::string m_source;
};

} // namespace

void readCatalogue(Catalogue& catalogue, std::string_view text, const std::string& source) {
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
  CatalogueReader(catalogue, source).read(root);
}

std::shared_ptr<const Catalogue> parseCatalogue(std::string_view text, const std::string& source) {
  auto catalogue = std::make_shared<Catalogue>();
  readCatalogue(*catalogue, text, source);
  return catalogue;
}

std::shared_ptr<const Catalogue> loadCatalogue(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw CatalogueError("catalogue " + path + ": cannot be read");
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (file.bad()) throw CatalogueError("catalogue " + path + ": cannot be read");
  return parseCatalogue(text, path);
}

namespace {

// A type as a file names it; a type the reader could not read back has no text form.
std::string typeWord(const Catalogue& catalogue, const std::shared_ptr<Type>& type) {
  const std::string text = typeText(type);
  try {
    (void)catalogue.typeOf(text);
  } catch (const CatalogueError&) {
    throw CatalogueError("the type " + text + " has no text form in a catalogue file");
  }
  return text;
}

json plainWords(const std::vector<PlainType>& types) {
  json list = json::array();
  for (const PlainType t : types) list.push_back(t == PlainType::Contextual ? std::string("any") : plainTypeName(t));
  return list;
}

json resultWords(const OverloadInfo& overload) {
  const Result* result = nullptr;
  if (const auto* worded = dynamic_cast<const WordedOverload*>(&overload)) result = &worded->mResult;
  if (const auto* worded = dynamic_cast<const WordedOperatorOverload*>(&overload)) result = &worded->mResult;
  if (!result) return plainTypeName(overload.mReturnType);
  switch (result->rule) {
  case Result::Rule::Type: return result->type;
  case Result::Rule::Argument: return json{{"argument", result->first}};
  case Result::Rule::DecimalSum: return json{{"decimalSum", {result->first, result->second}}};
  case Result::Rule::DecimalProduct: return json{{"decimalProduct", {result->first, result->second}}};
  case Result::Rule::LengthSum: return json{{"lengthSum", plainTypeName(result->plain)}};
  case Result::Rule::Widest: return json{{"widest", true}};
  }
  return plainTypeName(overload.mReturnType);
}

json kindWord(FunctionKind kind) {
  switch (kind) {
  case FunctionKind::Ordinary: return "Ordinary";
  case FunctionKind::Aggregate: return "Aggregate";
  case FunctionKind::ContextOpaque: return "ContextOpaque";
  }
  return static_cast<std::int32_t>(kind); // a host's own number
}

const char* quantifierWord(ast::Quantifier quantifier) {
  switch (quantifier) {
  case ast::Quantifier::None: return "None";
  case ast::Quantifier::All: return "All";
  case ast::Quantifier::Any: return "Any";
  }
  return "None";
}

} // namespace

std::string writeCatalogue(const Catalogue& catalogue) {
  json root = json::object();
  json types = json::object();
  for (const auto& [key, type] : catalogue.m_typeNames) types[catalogue.m_givenNames.at(key)] = typeWord(catalogue, type);
  if (!types.empty()) root["types"] = types;

  // The library's seven sets are known to every reader.
  const Catalogue plain;
  json sets = json::object();
  for (const auto& [key, members] : catalogue.m_typeSets) {
    if (!plain.isTypeSet(key)) sets[catalogue.m_givenNames.at(key)] = plainWords(members);
  }
  if (!sets.empty()) root["typeSets"] = sets;

  json tables = json::array();
  for (const auto& [key, entry] : catalogue.m_tables) {
    const auto& [name, table] = entry;
    json columns = json::array();
    for (std::size_t i = 0; i < table->columnCount(); ++i) {
      const ColumnInfo column = table->columnByIndex(i);
      json item = json::object();
      if (column.names().size() == 1) {
        item["name"] = toUtf8(column.names().front());
      } else {
        item["names"] = json::array();
        for (const auto& columnName : column.names()) item["names"].push_back(toUtf8(columnName));
      }
      item["type"] = typeWord(catalogue, column.type());
      if (column.originalName() != column.names().front()) item["originalName"] = toUtf8(column.originalName());
      if (column.originalTable() != name) item["originalTable"] = toUtf8(column.originalTable());
      columns.push_back(item);
    }
    tables.push_back({{"name", toUtf8(name)}, {"columns", columns}});
  }
  if (!tables.empty()) root["tables"] = tables;

  json functions = json::array();
  for (const auto& name : catalogue.functionNames()) {
    const auto function = catalogue.function(name);
    json overloads = json::array();
    for (const auto& overload : function->overloads()) {
      json item = {{"params", plainWords(overload->mParameters)}};
      if (!overload->mOptionalParameters.empty()) item["optional"] = plainWords(overload->mOptionalParameters);
      if (overload->mVariadic) item["variadic"] = true;
      item["result"] = resultWords(*overload);
      if (overload->mDeterminism == Determinism::NonDeterministic) item["deterministic"] = false;
      overloads.push_back(item);
    }
    functions.push_back({{"name", toUtf8(name)}, {"kind", kindWord(function->kind())}, {"overloads", overloads}});
  }
  if (!functions.empty()) root["functions"] = functions;

  json operators = json::array();
  for (const auto& [code, info] : catalogue.m_operators) {
    // Overloads that differ only by a block of operands repeated once more each time (what
    // "repeat" and "times" made, or a variadic last operand) are written as one entry again.
    json overloads = json::array();
    const auto list = info->overloads();
    for (std::size_t i = 0; i < list.size();) {
      const OperatorOverloadInfo& first = *list[i];
      json item = json::object();
      item["params"] = plainWords(first.mParameters);
      item["result"] = resultWords(first);
      if (first.mQuantifier != ast::Quantifier::None) item["quantifiers"] = {quantifierWord(first.mQuantifier)};
      std::size_t next = i + 1;
      if (first.mVariadic && !first.mParameters.empty()) {
        item["repeat"] = plainWords({first.mParameters.back()});
        item["times"] = {0, 1024};
      } else if (next < list.size()) {
        const auto& a = first.mParameters;
        const auto& b = list[next]->mParameters;
        const auto sameKind = [&](const OperatorOverloadInfo& other) {
          return !other.mVariadic && other.mQuantifier == first.mQuantifier && resultWords(other) == item["result"];
        };
        if (b.size() > a.size() && std::equal(a.begin(), a.end(), b.begin()) && sameKind(*list[next])) {
          const std::vector<PlainType> block(b.begin() + static_cast<std::ptrdiff_t>(a.size()), b.end());
          std::vector<PlainType> expected = b;
          int times = 1;
          for (++next; next < list.size() && times < 1024; ++next, ++times) {
            expected.insert(expected.end(), block.begin(), block.end());
            if (list[next]->mParameters != expected || !sameKind(*list[next])) break;
          }
          item["repeat"] = plainWords(block);
          item["times"] = {0, times};
        }
      }
      overloads.push_back(item);
      i = next;
    }
    json entry = json::object();
    const char* name = static_cast<int>(code) <= 50 ? ast::enumName(code) : nullptr;
    if (name) {
      entry["operator"] = name;
    } else {
      entry["operator"] = static_cast<std::int64_t>(code);
      entry["text"] = toUtf8(catalogue.operatorToString(code));
      entry["level"] = catalogue.precedenceLevel(code);
    }
    entry["overloads"] = overloads;
    operators.push_back(entry);
  }
  if (!operators.empty()) root["operators"] = operators;

  std::map<PlainType, std::vector<PlainType>> targets;
  for (const auto& [from, to] : catalogue.m_conversions) targets[from].push_back(to);
  json conversions = json::array();
  for (const auto& [from, to] : targets) conversions.push_back({{"from", plainTypeName(from)}, {"to", plainWords(to)}});
  if (!conversions.empty()) root["conversions"] = conversions;

  std::map<int, std::vector<PlainType>> levels;
  for (const auto& [type, rank] : *catalogue.m_ranks) levels[rank].push_back(type);
  json ranking = json::array();
  for (const auto& [rank, members] : levels) ranking.push_back(plainWords(members));
  if (!ranking.empty()) root["ranking"] = ranking;

  if (catalogue.m_ownPrecedence) {
    // Levels are positions in the list: gaps (which setPrecedenceLevel can leave) close up.
    std::map<int, json> byLevel;
    for (const auto& [code, level] : catalogue.m_levels) {
      if (static_cast<int>(code) <= 50 && level > 0) byLevel[level].push_back(ast::enumName(code));
    }
    json precedence = json::array();
    for (auto& [level, names] : byLevel) precedence.push_back(names);
    root["precedence"] = precedence;
  }
  return root.dump(1) + "\n";
}

std::shared_ptr<const Catalogue> gisSampleCatalogue() {
  static const std::shared_ptr<const Catalogue> instance = parseCatalogue(gisSampleCatalogueText(), "(embedded default)");
  return instance;
}

} // namespace velmor::sql::host
