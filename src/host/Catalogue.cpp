// The in-memory catalogue: type texts, signature expansion and the library's host interfaces.
#include <velmor/sql/host/Catalogue.h>

#include "CatalogueTable.h"
#include "Worded.h"

#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/types/Strings.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <functional>
#include <sstream>

namespace velmor::sql::host {

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

std::string key(std::string_view text) { return lowered(trimmed(text)); }

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
PrecisionScaleType digitsOf(const std::shared_ptr<Type>& type) {
  if (const auto* exact = dynamic_cast<const PrecisionScaleType*>(type.get())) return *exact;
  const PlainType plain = type ? type->plainType() : PlainType::Fault;
  if (plain == PlainType::SmallInt) return {PlainType::Decimal, 5, 0};
  if (plain == PlainType::Integer) return {PlainType::Decimal, 10, 0};
  if (plain == PlainType::BigInt) return {PlainType::Decimal, 19, 0};
  return {};
}

int lengthOf(const std::shared_ptr<Type>& type) {
  const auto* sized = dynamic_cast<const LengthType*>(type.get());
  return sized ? sized->length() : 0;
}

int rankIn(const std::map<PlainType, int>& ranks, PlainType type) {
  const auto found = ranks.find(type);
  return found != ranks.end() ? found->second : 1000000 + static_cast<int>(type);
}

std::shared_ptr<Type> widestOf(const std::map<PlainType, int>& ranks, const std::vector<std::shared_ptr<Type>>& types) {
  std::shared_ptr<Type> best;
  for (const auto& type : types) {
    if (!type) continue;
    if (!best) {
      best = type;
      continue;
    }
    const int a = rankIn(ranks, type->plainType());
    const int b = rankIn(ranks, best->plainType());
    const bool wider = a != b ? a > b
                              : lengthOf(type) > lengthOf(best) || digitsOf(type).precision() > digitsOf(best).precision();
    if (wider) best = type;
  }
  return best;
}

// Upper bound of the overloads one signature may expand to, so that a slip cannot make
// millions of them.
constexpr std::size_t maxExpansion = 20000;

// The result as a file writes it: a type text of its own, or the rule.
Result worded(const Result& result, PlainType declared, const FullTypeFunction& full) {
  if (result.rule != Result::Rule::Type) return result;
  const auto type = full ? full({}) : nullptr;
  return Result(type ? typeText(type) : plainTypeName(declared));
}

} // namespace

// ---- overload holders -------------------------------------------------------------------------

class Catalogue::Function final : public FunctionInfo {
public:
  Function(std::wstring name, FunctionKind kind) : m_name(std::move(name)), m_kind(kind) {}
  std::vector<std::shared_ptr<OverloadInfo>> overloads() const override { return m_overloads; }
  FunctionKind kind() const override { return m_kind; }

  std::wstring m_name; // as first given
  FunctionKind m_kind;
  std::vector<std::shared_ptr<OverloadInfo>> m_overloads;
};

class Catalogue::Operator final : public OperatorInfo {
public:
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads() const override { return m_overloads; }

  std::vector<std::shared_ptr<OperatorOverloadInfo>> m_overloads;
};

// The sets a signature is expanded over, in order of first use; each stands for one member at a
// time in every place that names it.
struct Catalogue::Expansion {
  std::vector<std::string> sets;
  int bind(const std::string& name) {
    const auto found = std::find(sets.begin(), sets.end(), name);
    if (found != sets.end()) return static_cast<int>(found - sets.begin());
    sets.push_back(name);
    return static_cast<int>(sets.size() - 1);
  }
  // Parameter texts resolved: a plain type, or -1 - (index of the bound set).
  std::vector<std::vector<int>> lists;
};

Result Result::argument(std::size_t position) {
  Result r;
  r.rule = Rule::Argument;
  r.first = position;
  return r;
}
Result Result::decimalSum(std::size_t a, std::size_t b) {
  Result r;
  r.rule = Rule::DecimalSum;
  r.first = a;
  r.second = b;
  return r;
}
Result Result::decimalProduct(std::size_t a, std::size_t b) {
  Result r = decimalSum(a, b);
  r.rule = Rule::DecimalProduct;
  return r;
}
Result Result::lengthSum(PlainType plain) {
  Result r;
  r.rule = Rule::LengthSum;
  r.plain = plain;
  return r;
}
Result Result::widest() {
  Result r;
  r.rule = Rule::Widest;
  return r;
}


// ---- Catalogue --------------------------------------------------------------------------------

Catalogue::Catalogue() : m_ranks(std::make_shared<std::map<PlainType, int>>()) {
  for (int t = 0; t < denseTypes; ++t) m_denseRanks[static_cast<std::size_t>(t)] = rankIn(*m_ranks, static_cast<PlainType>(t));
  const auto set = [this](const char* name, const std::set<PlainType>& members) {
    m_typeSets[lowered(name)] = std::vector<PlainType>(members.begin(), members.end());
  };
  set("exactNumericTypes", exactNumericTypes);
  set("numericTypes", numericTypes);
  set("numericDateTypes", numericDateTypes);
  set("approximateNumericTypes", approximateNumericTypes);
  set("characterStringTypes", characterStringTypes);
  set("binaryStringTypes", binaryStringTypes);
  set("datetimeTypes", datetimeTypes);
}

Catalogue::~Catalogue() = default;

void Catalogue::addTypeName(const std::string& name, std::shared_ptr<Type> type) {
  changed();
  const std::string k = key(name);
  if (k.empty() || k == "any" || plainTypeFromName(k) || m_typeSets.count(k))
    throw CatalogueError("an alias must not be empty or the name of a plain type or a set");
  m_typeNames[k] = std::move(type);
  m_givenNames[k] = trimmed(name);
}

void Catalogue::addTypeSet(const std::string& name, const std::vector<std::string>& members) {
  changed();
  const std::string k = key(name);
  if (k.empty() || k == "any" || plainTypeFromName(k) || m_typeNames.count(k) || m_typeSets.count(k))
    throw CatalogueError("a set's name must not be empty, a type's name or the name of another set");
  if (members.empty()) throw CatalogueError("a set must not be empty");
  std::vector<PlainType> all;
  for (const auto& member : members) {
    for (const PlainType t : plainTypesOf(member)) {
      if (std::find(all.begin(), all.end(), t) == all.end()) all.push_back(t);
    }
  }
  m_typeSets[k] = std::move(all);
  m_givenNames[k] = trimmed(name);
}

bool Catalogue::isTypeSet(std::string_view text) const { return m_typeSets.count(key(text)) != 0; }
bool Catalogue::isTypeName(std::string_view text) const { return m_typeNames.count(key(text)) != 0; }

std::string Catalogue::typeName(const std::shared_ptr<Type>& type) const {
  if (!type) return typeText(type);
  if (const auto* tuple = dynamic_cast<const TupleType*>(type.get())) {
    std::string text = "Tuple(";
    const char* separator = "";
    for (const auto& field : tuple->types()) {
      text.append(separator).append(typeName(field));
      separator = ", ";
    }
    return text + ')';
  }
  if (const auto* array = dynamic_cast<const ArrayType*>(type.get())) return "Array(" + typeName(array->elementType()) + ')';
  const std::string written = typeText(type);
  for (const auto& [k, named] : m_typeNames) {
    const std::string text = typeText(named);
    const bool bare = text == plainTypeName(named->plainType());
    if (text == written || (bare && named->plainType() == type->plainType())) return m_givenNames.at(k);
  }
  return written;
}

std::shared_ptr<Type> Catalogue::typeOf(std::string_view written) const {
  const std::string text = trimmed(written);
  const std::string quotedText = "bad type \"" + std::string(written) + "\": ";
  std::string name = text;
  std::vector<int> numbers;
  if (const auto open = text.find('('); open != std::string::npos) {
    if (text.back() != ')') throw CatalogueError(quotedText + "expected a closing parenthesis");
    name = trimmed(text.substr(0, open));
    std::stringstream inside(text.substr(open + 1, text.size() - open - 2));
    std::string part;
    while (std::getline(inside, part, ',')) {
      part = trimmed(part);
      if (part.empty() || part.size() > 9 ||
          !std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; }))
        throw CatalogueError(quotedText + "a length, precision or scale is a number from 0");
      numbers.push_back(std::stoi(part));
    }
    if (numbers.empty() || numbers.size() > 2)
      throw CatalogueError(quotedText + "expected (length) or (precision,scale)");
  }
  if (const auto alias = m_typeNames.find(lowered(name)); alias != m_typeNames.end()) {
    if (!numbers.empty())
      throw CatalogueError(quotedText + "the alias \"" + name + "\" takes no parameters");
    return alias->second;
  }
  const std::optional<PlainType> plain = lowered(name) == "any" ? PlainType::Contextual : plainTypeFromName(name);
  if (!plain) {
    if (m_typeSets.count(lowered(name))) throw CatalogueError("\"" + name + "\" is a set of types, not a type");
    throw CatalogueError("unknown type \"" + name + "\"");
  }
  if (numbers.size() == 1) return std::make_shared<LengthType>(*plain, numbers[0]);
  if (numbers.size() == 2) return std::make_shared<PrecisionScaleType>(*plain, numbers[0], numbers[1]);
  return std::make_shared<Type>(*plain);
}

std::vector<PlainType> Catalogue::plainTypesOf(std::string_view text) const {
  if (const auto set = m_typeSets.find(key(text)); set != m_typeSets.end()) return set->second;
  const auto type = typeOf(text);
  if ((dynamic_cast<const LengthType*>(type.get()) || dynamic_cast<const PrecisionScaleType*>(type.get())) &&
      m_typeNames.count(key(text)) == 0)
    throw CatalogueError("\"" + std::string(text) + "\": a plain type here, without length or digits");
  return {type->plainType()};
}

void Catalogue::addTable(const std::wstring& name, const std::vector<Column>& columns) {
  changed();
  if (columns.empty()) throw CatalogueError("a table needs at least one column");
  std::vector<ColumnInfo> list;
  std::set<std::wstring> seen;
  for (const Column& column : columns) {
    std::vector<std::wstring> names{column.name};
    names.insert(names.end(), column.otherNames.begin(), column.otherNames.end());
    for (const auto& columnName : names) {
      if (columnName.empty()) throw CatalogueError("a column name must not be empty");
      if (!seen.insert(normalized(columnName)).second)
        throw CatalogueError("the table has a column of this name already");
    }
    list.emplace_back(std::move(names), typeOf(column.type), column.name, name);
  }
  addTable(name, std::move(list));
}

void Catalogue::addTable(const std::wstring& name, std::vector<ColumnInfo> columns) {
  changed();
  addTable(name, std::make_shared<CatalogueTable>(std::move(columns)));
}

void Catalogue::addTable(const std::wstring& name, std::shared_ptr<TableInfo> table) {
  changed();
  if (!m_tables.emplace(normalized(name), std::make_pair(name, std::move(table))).second)
    throw CatalogueError("a second table called \"" + toUtf8(name) + "\"");
}

std::vector<std::wstring> Catalogue::tableNames() const {
  std::vector<std::wstring> names;
  for (const auto& [folded, entry] : m_tables) names.push_back(entry.first);
  return names;
}

std::vector<std::wstring> Catalogue::functionNames() const {
  std::vector<std::wstring> names;
  for (const auto& [folded, function] : m_functions) names.push_back(function->m_name);
  return names;
}

// ---- signatures -------------------------------------------------------------------------------

std::vector<PlainType> Catalogue::paramTypes(const std::vector<std::string>& texts, Expansion& expansion) const {
  std::vector<int> list;
  for (const auto& text : texts) {
    if (isTypeSet(text)) {
      list.push_back(-1 - expansion.bind(key(text)));
    } else {
      list.push_back(static_cast<int>(plainTypesOf(text).front()));
    }
  }
  expansion.lists.push_back(std::move(list));
  return {};
}

namespace {

std::vector<PlainType> substitute(const std::vector<int>& list, const std::vector<PlainType>& members) {
  std::vector<PlainType> result;
  result.reserve(list.size());
  for (const int entry : list)
    result.push_back(entry >= 0 ? static_cast<PlainType>(entry) : members[static_cast<std::size_t>(-1 - entry)]);
  return result;
}

} // namespace

FullTypeFunction Catalogue::fullType(const Result& result, const std::vector<PlainType>& members,
                                     const Expansion& expansion, PlainType& declared,
                                     const std::vector<PlainType>& params) const {
  using Types = std::vector<std::shared_ptr<Type>>;
  switch (result.rule) {
  case Result::Rule::Type: {
    std::shared_ptr<Type> type;
    if (isTypeSet(result.type)) {
      const auto& sets = expansion.sets;
      const auto found = std::find(sets.begin(), sets.end(), key(result.type));
      type = std::make_shared<Type>(members[static_cast<std::size_t>(found - sets.begin())]);
    } else {
      type = typeOf(result.type);
    }
    declared = type->plainType();
    return [type](const Types&) { return type; };
  }
  case Result::Rule::Argument:
    declared = result.first < params.size() ? params[result.first] : (params.empty() ? PlainType::Fault : params.back());
    return [n = result.first](const Types& types) { return n < types.size() ? types[n] : nullptr; };
  case Result::Rule::DecimalSum:
    declared = PlainType::Decimal;
    return [a = result.first, b = result.second](const Types& types) -> std::shared_ptr<Type> {
      const auto at = [&](std::size_t i) { return i < types.size() ? digitsOf(types[i]) : PrecisionScaleType(); };
      return std::make_shared<PrecisionScaleType>(at(a) + at(b));
    };
  case Result::Rule::DecimalProduct:
    declared = PlainType::Decimal;
    return [a = result.first, b = result.second](const Types& types) -> std::shared_ptr<Type> {
      const auto at = [&](std::size_t i) { return i < types.size() ? digitsOf(types[i]) : PrecisionScaleType(); };
      const auto x = at(a);
      const auto y = at(b);
      return std::make_shared<PrecisionScaleType>(PlainType::Decimal, x.precision() + y.precision(), x.scale() + y.scale());
    };
  case Result::Rule::LengthSum:
    declared = result.plain;
    return [plain = result.plain](const Types& types) -> std::shared_ptr<Type> {
      int length = 0;
      for (const auto& type : types) length += lengthOf(type);
      return std::make_shared<LengthType>(plain, length);
    };
  case Result::Rule::Widest:
    declared = params.empty() ? PlainType::Contextual : params.front();
    return [ranks = m_ranks](const Types& types) { return widestOf(*ranks, types); };
  }
  return {};
}

namespace {

// Calls `make` once for each combination of members of the bound sets; `each` is how many
// overloads one combination makes (operator counts and quantifiers), part of the bound.
void expand(const std::vector<std::vector<PlainType>>& sets, const std::function<void(const std::vector<PlainType>&)>& make,
            std::size_t each = 1) {
  std::size_t count = each;
  if (count > maxExpansion) throw CatalogueError("expands to more than " + std::to_string(maxExpansion) + " overloads");
  for (const auto& set : sets) {
    count *= set.size();
    if (count > maxExpansion)
      throw CatalogueError("expands to more than " + std::to_string(maxExpansion) + " overloads");
  }
  std::vector<PlainType> members(sets.size());
  std::function<void(std::size_t)> walk = [&](std::size_t depth) {
    if (depth == sets.size()) {
      make(members);
      return;
    }
    for (const PlainType t : sets[depth]) {
      members[depth] = t;
      walk(depth + 1);
    }
  };
  walk(0);
}

} // namespace

void Catalogue::addFunction(const std::wstring& name, FunctionKind kind, const std::vector<Signature>& signatures) {
  changed();
  std::vector<std::shared_ptr<OverloadInfo>> overloads;
  for (const Signature& signature : signatures) {
    auto made = overloadsOf(signature);
    overloads.insert(overloads.end(), made.begin(), made.end());
  }
  addFunction(name, kind, std::move(overloads));
}

std::vector<std::shared_ptr<OverloadInfo>> Catalogue::overloadsOf(const Signature& signature) const {
  std::vector<std::shared_ptr<OverloadInfo>> overloads;
  {
    if (signature.variadic && signature.params.empty())
      throw CatalogueError("a variadic overload needs at least one parameter in \"params\"");
    Expansion expansion;
    paramTypes(signature.params, expansion);
    paramTypes(signature.optional, expansion);
    if (signature.result.rule == Result::Rule::Type && isTypeSet(signature.result.type)) expansion.bind(key(signature.result.type));
    std::vector<std::vector<PlainType>> sets;
    for (const auto& set : expansion.sets) sets.push_back(m_typeSets.at(set));
    expand(sets, [&](const std::vector<PlainType>& members) {
      auto required = substitute(expansion.lists[0], members);
      PlainType declared = PlainType::Fault;
      auto full = fullType(signature.result, members, expansion, declared, required);
      overloads.push_back(std::make_shared<WordedOverload>(
          worded(signature.result, declared, full), declared, std::move(required), std::move(full),
          signature.deterministic ? Determinism::Deterministic : Determinism::NonDeterministic,
          substitute(expansion.lists[1], members), signature.variadic));
    });
  }
  return overloads;
}

void Catalogue::addFunction(const std::wstring& name, FunctionKind kind, std::vector<std::shared_ptr<OverloadInfo>> overloads) {
  changed();
  auto& slot = m_functions[normalized(name)];
  if (!slot) slot = std::make_shared<Function>(name, kind);
  slot->m_kind = kind;
  for (auto& overload : overloads) slot->m_overloads.push_back(std::move(overload));
}

void Catalogue::addOperator(OperationCode code, const std::vector<OperatorSignature>& signatures) {
  changed();
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads;
  for (const OperatorSignature& signature : signatures) {
    auto made = overloadsOf(signature);
    overloads.insert(overloads.end(), made.begin(), made.end());
  }
  addOperator(code, std::move(overloads));
}

std::vector<std::shared_ptr<OperatorOverloadInfo>> Catalogue::overloadsOf(const OperatorSignature& signature) const {
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads;
  {
    // Plain names, not a structured binding: clang, which builds the fuzz targets, does not let a
    // lambda capture one.
    const int fewest = signature.times.first;
    const int most = signature.times.second;
    if (fewest < 0 || most < fewest || most > 1024) throw CatalogueError("expected 0 <= fewest <= most <= 1024");
    if (signature.params.empty() && signature.repeat.empty() && signature.tail.empty())
      throw CatalogueError("an operator overload needs parameters");
    Expansion expansion;
    paramTypes(signature.params, expansion);
    paramTypes(signature.repeat, expansion);
    paramTypes(signature.tail, expansion);
    if (signature.result.rule == Result::Rule::Type && isTypeSet(signature.result.type)) expansion.bind(key(signature.result.type));
    std::vector<std::vector<PlainType>> sets;
    for (const auto& set : expansion.sets) sets.push_back(m_typeSets.at(set));
    expand(sets, [&](const std::vector<PlainType>& members) {
      for (int times = fewest; times <= most; ++times) {
        std::vector<PlainType> all = substitute(expansion.lists[0], members);
        const auto repeated = substitute(expansion.lists[1], members);
        for (int n = 0; n < times; ++n) all.insert(all.end(), repeated.begin(), repeated.end());
        const auto last = substitute(expansion.lists[2], members);
        all.insert(all.end(), last.begin(), last.end());
        PlainType declared = PlainType::Fault;
        auto full = fullType(signature.result, members, expansion, declared, all);
        for (const auto quantifier : signature.quantifiers)
          overloads.push_back(std::make_shared<WordedOperatorOverload>(worded(signature.result, declared, full), declared,
                                                                       all, full, quantifier));
      }
    }, static_cast<std::size_t>(most - fewest + 1) * std::max<std::size_t>(signature.quantifiers.size(), 1));
  }
  return overloads;
}

void Catalogue::addOperator(OperationCode code, std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads) {
  changed();
  auto& slot = operatorSlot(code);
  auto* own = dynamic_cast<Operator*>(slot.get());
  if (!own) {
    auto fresh = std::make_shared<Operator>();
    own = fresh.get();
    slot = std::move(fresh);
  }
  for (auto& overload : overloads) own->m_overloads.push_back(std::move(overload));
}

void Catalogue::setOperator(OperationCode code, std::shared_ptr<OperatorInfo> info) {
  changed();
  operatorSlot(code) = std::move(info);
}

std::shared_ptr<OperatorInfo>& Catalogue::operatorSlot(OperationCode code) {
  std::shared_ptr<OperatorInfo>& slot = m_operators[code];
  const auto dense = static_cast<std::uint32_t>(code);
  if (dense < m_denseOperators.size()) m_denseOperators[dense] = &slot;
  return slot;
}

void Catalogue::addCustomOperator(OperationCode code, std::wstring text, int level) {
  changed();
  m_operatorTexts[code] = std::move(text);
  m_levels[code] = level;
}

void Catalogue::addConversion(PlainType from, PlainType to) {
  changed();
  if (from != to) m_conversions.emplace(from, to);
  const auto a = static_cast<std::uint32_t>(from);
  const auto b = static_cast<std::uint32_t>(to);
  if (a < denseTypes && b < denseTypes) m_convertible[a] |= std::uint32_t{1} << b;
}

void Catalogue::addConversions(const std::vector<std::string>& from, const std::vector<std::string>& to) {
  changed();
  std::vector<PlainType> a, b;
  for (const auto& text : from) {
    const auto members = plainTypesOf(text);
    a.insert(a.end(), members.begin(), members.end());
  }
  for (const auto& text : to) {
    const auto members = plainTypesOf(text);
    b.insert(b.end(), members.begin(), members.end());
  }
  for (const PlainType x : a) {
    for (const PlainType y : b) addConversion(x, y);
  }
}

void Catalogue::setRanking(const std::vector<std::vector<PlainType>>& levels) {
  changed();
  // The map is shared with the result rules made so far, which rank by it. The dense ranks
  // follow it whatever happens, a level refused halfway included.
  struct Follow {
    Catalogue& catalogue;
    ~Follow() {
      for (int t = 0; t < denseTypes; ++t) {
        catalogue.m_denseRanks[static_cast<std::size_t>(t)] = rankIn(*catalogue.m_ranks, static_cast<PlainType>(t));
      }
    }
  } follow{*this};
  m_ranks->clear();
  for (std::size_t level = 0; level < levels.size(); ++level) {
    for (const PlainType t : levels[level]) {
      if (!m_ranks->emplace(t, static_cast<int>(level)).second)
        throw CatalogueError("\"" + plainTypeName(t) + "\" is ranked twice");
    }
  }
}

void Catalogue::setPrecedence(const std::vector<std::vector<OperationCode>>& levels) {
  changed();
  m_ownPrecedence = true;
  std::erase_if(m_levels, [](const auto& entry) { return static_cast<int>(entry.first) <= 50; });
  for (std::size_t level = 0; level < levels.size(); ++level) {
    for (const OperationCode code : levels[level]) {
      if (!m_levels.emplace(code, static_cast<int>(level) + 1).second)
        throw CatalogueError("an operator has a level already");
    }
  }
}

void Catalogue::setPrecedenceLevel(OperationCode code, int level) {
  changed();
  m_levels[code] = level;
}

// ---- what the library asks --------------------------------------------------------------------

namespace {

// Names usually come folded already (lower-case ASCII): those are looked up without a folded
// copy. Folding ends at a NUL unit, so what follows one does not count.
template <class Map>
auto findName(const Map& map, const std::wstring& name) {
  for (const wchar_t unit : name) {
    if (unit == 0) break;
    if (unit >= 0x80 || (unit >= L'A' && unit <= L'Z')) return map.find(normalized(name));
  }
  return map.find(name);
}

} // namespace

std::shared_ptr<FunctionInfo> Catalogue::function(const std::wstring& name) const {
  const auto found = findName(m_functions, name);
  return found == m_functions.end() ? nullptr : found->second;
}

std::shared_ptr<OperatorInfo> Catalogue::operatorInfo(OperationCode code) const {
  const auto dense = static_cast<std::uint32_t>(code);
  if (dense < m_denseOperators.size()) return m_denseOperators[dense] ? *m_denseOperators[dense] : nullptr;
  const auto found = m_operators.find(code);
  return found == m_operators.end() ? nullptr : found->second;
}

bool Catalogue::canConvert(PlainType from, PlainType to) const {
  if (from == to || from == PlainType::Contextual || to == PlainType::Contextual) return true;
  const auto a = static_cast<std::uint32_t>(from);
  const auto b = static_cast<std::uint32_t>(to);
  if (a < denseTypes && b < denseTypes) return (m_convertible[a] >> b & 1U) != 0;
  return m_conversions.count({from, to}) != 0;
}

namespace {

// Types are immutable, and a check converts the same few types over and over: each converted
// type is made once, on first use, and shared from then on. Never released, so that a check
// running while the process ends still finds them.
template <std::size_t Size>
class SharedTypes {
public:
  template <class Make>
  std::shared_ptr<Type> get(std::size_t slot, Make&& make) {
    const std::shared_ptr<Type>* kept = m_slots[slot].load(std::memory_order_acquire);
    if (kept) return *kept;
    auto* fresh = new std::shared_ptr<Type>(make());
    if (m_slots[slot].compare_exchange_strong(kept, fresh, std::memory_order_acq_rel)) return *fresh;
    delete fresh; // another thread was first
    return *kept;
  }

private:
  std::array<std::atomic<const std::shared_ptr<Type>*>, Size> m_slots{};
};

constexpr int kSharedLength = 256;
constexpr int kSharedDigits = 40;

int lengthKind(PlainType type) {
  switch (type) {
  case PlainType::Binary: return 0;
  case PlainType::VarBinary: return 1;
  case PlainType::BinaryLargeObject: return 2;
  case PlainType::Char: return 3;
  case PlainType::VarChar: return 4;
  default: return 5; // CharLargeObject
  }
}

std::shared_ptr<Type> lengthType(PlainType to, int length) {
  static auto* const shared = new SharedTypes<6 * kSharedLength>();
  if (length < 0 || length >= kSharedLength) return std::make_shared<LengthType>(to, length);
  const auto slot = static_cast<std::size_t>(lengthKind(to) * kSharedLength + length);
  return shared->get(slot, [&] { return std::make_shared<LengthType>(to, length); });
}

std::shared_ptr<Type> digitsType(PlainType to, int precision, int scale) {
  static auto* const shared = new SharedTypes<2 * kSharedDigits * kSharedDigits>();
  if (precision < 0 || precision >= kSharedDigits || scale < 0 || scale >= kSharedDigits) {
    return std::make_shared<PrecisionScaleType>(to, precision, scale);
  }
  const auto slot = static_cast<std::size_t>(((to == PlainType::Numeric ? 1 : 0) * kSharedDigits + precision) * kSharedDigits + scale);
  return shared->get(slot, [&] { return std::make_shared<PrecisionScaleType>(to, precision, scale); });
}

} // namespace

std::shared_ptr<Type> Catalogue::convert(const std::shared_ptr<Type>& value, PlainType to) const {
  if (to == PlainType::Contextual) return value;
  if (carriesLength(to)) {
    if (const auto* sized = dynamic_cast<const LengthType*>(value.get())) return lengthType(to, sized->length());
  }
  if (value && (to == PlainType::Decimal || to == PlainType::Numeric)) {
    const PlainType from = value->plainType();
    if (dynamic_cast<const PrecisionScaleType*>(value.get()) || from == PlainType::SmallInt ||
        from == PlainType::Integer || from == PlainType::BigInt) {
      const auto digits = digitsOf(value);
      return digitsType(to, digits.precision(), digits.scale());
    }
  }
  // A plain type has nothing but its number: one object per number serves every conversion.
  static const auto* const plain = [] {
    auto* table = new std::array<std::shared_ptr<Type>, denseTypes>();
    for (int t = 0; t < denseTypes; ++t) (*table)[static_cast<std::size_t>(t)] = std::make_shared<Type>(static_cast<PlainType>(t));
    return table;
  }();
  const auto t = static_cast<std::uint32_t>(to);
  return t < denseTypes ? (*plain)[t] : std::make_shared<Type>(to);
}

int Catalogue::rankOf(PlainType type) const {
  const auto t = static_cast<std::uint32_t>(type);
  return t < denseTypes ? m_denseRanks[t] : rankIn(*m_ranks, type);
}

int Catalogue::compareTypes(PlainType a, PlainType b) const {
  const int x = rankOf(a);
  const int y = rankOf(b);
  return x < y ? -1 : (x > y ? 1 : 0);
}

std::shared_ptr<TableInfo> Catalogue::table(const std::wstring& name) const {
  const auto found = findName(m_tables, name);
  return found == m_tables.end() ? nullptr : found->second.second;
}

int Catalogue::precedenceLevel(OperationCode code) const {
  const auto found = m_levels.find(code);
  if (found != m_levels.end()) return found->second;
  return m_ownPrecedence ? 0 : grammarPrecedenceLevel(code);
}

int Catalogue::comparePrecedence(OperationCode inner, OperationCode outer) const {
  return precedenceLevel(inner) - precedenceLevel(outer);
}

std::wstring Catalogue::operatorToString(OperationCode code) const {
  const auto found = m_operatorTexts.find(code);
  return found == m_operatorTexts.end() ? std::wstring(L"UNKNOWN_OPERATOR") : found->second;
}

} // namespace velmor::sql::host
