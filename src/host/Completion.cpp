// Completion at a cursor: the grammar says which tokens may come next, the tokens around the
// cursor say which names make sense where a name may come.
#include <velmor/sql/host/Completion.h>

#include <velmor/sql/builder/Keywords.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/parser/Completion.h>
#include <velmor/sql/types/Strings.h>

#include <algorithm>
#include <exception>
#include <map>
#include <new>
#include <optional>
#include <tuple>

namespace velmor::sql::host {

namespace {

constexpr std::size_t none = ~std::size_t{0};

bool isWordByte(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         c >= 0x80;
}

bool startsWord(unsigned char c) {
  return isWordByte(c) && !(c >= '0' && c <= '9') && c != '$';
}

// The text that stands for a token that is no name, number or string; nullptr for those.
const char* tokenText(std::uint32_t id, Candidate::Kind& kind) {
  kind = Candidate::Kind::Punctuation;
  switch (id) {
  case T_EQ: return "=";
  case T_NEQ: return "<>";
  case T_LT: return "<";
  case T_GT: return ">";
  case T_LT_EQ: return "<=";
  case T_GT_EQ: return ">=";
  case T_LSHIFT: return "<<";
  case T_RSHIFT: return ">>";
  case T_CONCAT: return "||";
  case T_MOD: return "%";
  case T_ASSIGN: return ":=";
  case T_PARAM_NAME: return ":";
  case '|': return "|";
  case '^': return "^";
  case '+': return "+";
  case '-': return "-";
  case '*': return "*";
  case '/': return "/";
  case '\\': return "\\";
  case '(': return "(";
  case ')': return ")";
  case ',': return ",";
  case '.': return ".";
  default: break;
  }
  kind = Candidate::Kind::Keyword;
  if (id == T_ISNOT) return "IS NOT";
  return nullptr;
}

// A name as it must be written to read back as itself.
std::string written(const std::wstring& name) { return toUtf8(Keywords::instance().escape(name)); }

std::string signatureText(const FunctionInfo& function) {
  const auto overloads = function.overloads();
  std::string text;
  constexpr std::size_t shown = 3;
  for (std::size_t i = 0; i < overloads.size() && i < shown; ++i) {
    const OverloadInfo& overload = *overloads[i];
    if (i > 0) text += "; ";
    text += '(';
    bool first = true;
    for (const auto parameter : overload.mParameters) {
      text += first ? "" : ", ";
      first = false;
      text += plainTypeName(parameter);
    }
    for (const auto parameter : overload.mOptionalParameters) {
      text += first ? "[" : " [, ";
      first = false;
      text += plainTypeName(parameter) + "]";
    }
    if (overload.mVariadic) text += "...";
    text += ") -> " + plainTypeName(overload.mReturnType);
  }
  if (overloads.size() > shown) text += "; +" + std::to_string(overloads.size() - shown) + " more";
  return text;
}

// Where a name may stand at the cursor, and which names.
enum class Role {
  Nothing,        // a name the statement makes up (an alias), or no name at all
  Tables,         // a table of the catalogue
  Qualified,      // a column of the table or alias before the '.'
  TableColumns,   // a column of one named table: INSERT's column list, UPDATE's SET
  ScopeColumns,   // bare columns of the query's tables: USING (...)
  Expression,     // tables and aliases of the query, their columns, functions
};

// A table or derived table of a FROM clause: the name that qualifies its columns.
struct Source {
  std::wstring qualifier;
  std::shared_ptr<TableInfo> table; // null for a derived table or an unknown one
  bool alias = false;
  std::wstring tableName;
};

class Statement {
public:
  Statement(const std::string& text, std::vector<TokenPlace> places, const Catalogue& catalogue)
      : mText(text), mTokens(std::move(places)), mCatalogue(catalogue) {
    // For each token the innermost '(' open before it, and each parenthesis's partner.
    mOpener.resize(mTokens.size() + 1, none);
    mMatch.resize(mTokens.size(), none);
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < mTokens.size(); ++i) {
      mOpener[i] = open.empty() ? none : open.back();
      if (mTokens[i].id == '(') {
        open.push_back(i);
      } else if (mTokens[i].id == ')' && !open.empty()) {
        mMatch[i] = open.back();
        mMatch[open.back()] = i;
        open.pop_back();
      }
    }
    mOpener[mTokens.size()] = open.empty() ? none : open.back();
  }

  std::uint32_t id(std::size_t i) const { return i < mTokens.size() ? mTokens[i].id : T_TERMINATION; }

  std::wstring name(std::size_t i) const {
    const TokenPlace& token = mTokens[i];
    std::string bytes = mText.substr(token.begin, token.end - token.begin);
    if (!bytes.empty() && bytes.front() == '[') bytes = bytes.substr(1, bytes.size() - 2);
    return fromUtf8(bytes);
  }

  // The role of a name standing before token k (after the k tokens before it).
  Role roleAt(std::size_t k, std::wstring& qualifier) const {
    if (k == 0) return Role::Expression;
    switch (id(k - 1)) {
    case '.':
      if (k < 2 || id(k - 2) != T_IDENTIFIER) return Role::Nothing;
      qualifier = name(k - 2);
      return Role::Qualified;
    case T_FROM:
    case T_JOIN:
    case T_UPDATE:
    case T_INTO:
    case T_TABLE:
      return Role::Tables;
    case T_SET:
      return updateTable() != none ? Role::TableColumns : Role::Nothing;
    // After an operand a name can only be an alias.
    case T_IDENTIFIER:
    case T_APPROX_NUMBER:
    case T_EXACT_NUMBER:
    case T_INTEGER_NUMBER:
    case T_STRING:
    case ')':
    case T_TRUE:
    case T_FALSE:
    case T_NULL:
    case T_UNKNOWN:
    case T_AS:
      return Role::Nothing;
    case '(': {
      const std::size_t before = k >= 2 ? k - 2 : none;
      if (before == none) return Role::Expression;
      if (id(before) == T_USING) return Role::ScopeColumns;
      if (id(before) == T_IDENTIFIER && before >= 1 && id(before - 1) == T_INTO && id(0) == T_INSERT) {
        return Role::TableColumns;
      }
      std::wstring ignored;
      // A '(' where a table may stand opens a subquery or a parenthesised join.
      return roleAt(k - 1, ignored) == Role::Tables ? Role::Tables : Role::Expression;
    }
    case ',': {
      const std::size_t clause = clauseOf(k);
      if (clause == none) return Role::Expression;
      switch (id(clause)) {
      case T_FROM:
      case T_JOIN:
      case T_ON:
      case T_USING:
        return Role::Tables;
      case T_SET:
        return Role::TableColumns;
      case '(':
        return roleAt(clause + 1, qualifier);
      default:
        return Role::Expression;
      }
    }
    default:
      return Role::Expression;
    }
  }

  // The table that TableColumns means before token k: an INSERT's or UPDATE's.
  std::shared_ptr<TableInfo> targetTable() const {
    if (id(0) == T_INSERT && id(1) == T_INTO && id(2) == T_IDENTIFIER) return mCatalogue.table(name(2));
    const std::size_t update = updateTable();
    return update == none ? nullptr : mCatalogue.table(name(update));
  }

  // The tables of the query whose level holds the position before token k.
  std::vector<Source> scopeAt(std::size_t k) const {
    std::size_t group = mOpener[std::min(k, mTokens.size())];
    for (;;) {
      const std::size_t low = group == none ? 0 : group + 1;
      std::size_t select = none;
      for (std::size_t j = k; j > low; --j) {
        if (mOpener[j - 1] == group && id(j - 1) == T_SELECT) {
          select = j - 1;
          break;
        }
      }
      if (select != none) return fromClause(fromOf(select, group));
      if (group == none) break;
      group = mOpener[group];
    }
    // Outside any query: the table of an UPDATE or a DELETE.
    std::vector<Source> sources;
    const std::size_t update = updateTable();
    if (update != none) {
      sources.push_back({name(update), mCatalogue.table(name(update)), false, name(update)});
    } else if (id(0) == T_DELETE && id(1) == T_FROM) {
      return fromClause(1);
    }
    return sources;
  }

private:
  std::size_t updateTable() const { return id(0) == T_UPDATE && id(1) == T_IDENTIFIER ? 1 : none; }

  static bool isClauseKeyword(std::uint32_t id) {
    switch (id) {
    case T_SELECT: case T_FROM: case T_WHERE: case T_GROUP: case T_GROUPBY: case T_HAVING: case T_ORDER:
    case T_ORDERBY: case T_LIMIT: case T_OFFSET: case T_SET: case T_VALUES: case T_ON: case T_USING:
    case T_JOIN: case T_INTO: case T_UPDATE: case T_DELETE: case T_INSERT:
      return true;
    default:
      return false;
    }
  }

  // The nearest clause keyword before token k on its level of parentheses, or the '(' that opens
  // the level; none at the top level without one.
  std::size_t clauseOf(std::size_t k) const {
    const std::size_t group = mOpener[std::min(k, mTokens.size())];
    for (std::size_t j = k; j > 0; --j) {
      const std::size_t i = j - 1;
      if (i == group) return i;
      if (mOpener[i] == group && isClauseKeyword(id(i))) return i;
    }
    return none;
  }

  // The FROM of the query that starts at `select` on the level of `group`; none without one.
  std::size_t fromOf(std::size_t select, std::size_t group) const {
    for (std::size_t i = select + 1; i < mTokens.size(); ++i) {
      if (mOpener[i] != group) {
        if (group != none && mMatch[group] != none && i > mMatch[group]) break;
        continue;
      }
      const std::uint32_t t = id(i);
      if (t == T_FROM) return i;
      if (t == T_SELECT || t == T_UNION || t == T_EXCEPT || t == T_INTERSECT || t == ')') break;
    }
    return none;
  }

  static bool endsFromClause(std::uint32_t id) {
    switch (id) {
    case T_WHERE: case T_GROUP: case T_GROUPBY: case T_HAVING: case T_ORDER: case T_ORDERBY: case T_LIMIT:
    case T_OFFSET: case T_INTO: case T_UNION: case T_EXCEPT: case T_INTERSECT: case T_SELECT: case ')':
      return true;
    default:
      return false;
    }
  }

  // An alias at token i (after AS or alone); empty without one. Moves i past it.
  std::wstring aliasAt(std::size_t& i) const {
    if (id(i) == T_AS) ++i;
    if (id(i) != T_IDENTIFIER) return {};
    return name(i++);
  }

  std::vector<Source> fromClause(std::size_t from) const {
    std::vector<Source> sources;
    if (from == none) return sources;
    int joinParentheses = 0;
    bool tableNext = true;
    std::size_t i = from + 1;
    while (i < mTokens.size()) {
      const std::uint32_t t = id(i);
      if (joinParentheses == 0 && endsFromClause(t)) break;
      if (t == '(') {
        const std::uint32_t next = id(i + 1);
        if (tableNext && next != T_SELECT && next != T_VALUES && next != T_TABLE) {
          ++joinParentheses;
          ++i;
          continue;
        }
        // A subquery, or parentheses of a condition: nothing in them names a table here.
        i = mMatch[i] == none ? mTokens.size() : mMatch[i] + 1;
        if (tableNext) {
          std::wstring alias = aliasAt(i);
          if (!alias.empty()) sources.push_back({alias, nullptr, true, {}});
          tableNext = false;
        }
        continue;
      }
      ++i;
      if (t == ')') {
        --joinParentheses;
        tableNext = false;
      } else if (t == ',' || t == T_JOIN) {
        tableNext = true;
      } else if (t == T_IDENTIFIER && tableNext) {
        const std::wstring table = name(i - 1);
        std::wstring alias = aliasAt(i);
        const bool hasAlias = !alias.empty();
        sources.push_back({hasAlias ? std::move(alias) : table, mCatalogue.table(table), hasAlias, table});
        tableNext = false;
      }
    }
    return sources;
  }

  const std::string& mText;
  std::vector<TokenPlace> mTokens;
  const Catalogue& mCatalogue;
  std::vector<std::size_t> mOpener;
  std::vector<std::size_t> mMatch;
};

class Collector {
public:
  explicit Collector(const std::string& word) : mWord(normalized(fromUtf8(word))) {}

  void add(Candidate::Kind kind, const std::string& text, std::string detail = {}) {
    const std::wstring key = normalized(fromUtf8(text));
    if (key.compare(0, mWord.size(), mWord) != 0) return;
    mCandidates.emplace(std::make_tuple(kind, key, text), std::move(detail));
  }

  std::vector<Candidate> take() {
    std::vector<Candidate> out;
    out.reserve(mCandidates.size());
    for (auto& [key, detail] : mCandidates) out.push_back({std::get<2>(key), std::get<0>(key), std::move(detail)});
    return out;
  }

private:
  std::wstring mWord;
  std::map<std::tuple<Candidate::Kind, std::wstring, std::string>, std::string> mCandidates;
};

void addColumns(Collector& out, const TableInfo& table, const std::wstring& qualifier) {
  for (std::size_t i = 0; i < table.columnCount(); ++i) {
    const ColumnInfo column = table.columnByIndex(i);
    for (const auto& name : column.names()) {
      const std::string text = qualifier.empty() ? written(name) : written(qualifier) + "." + written(name);
      out.add(Candidate::Kind::Column, text, typeText(column.type()));
    }
  }
}

void addNames(Collector& out, Role role, const std::wstring& qualifier, const Statement& statement,
              std::size_t k, const Catalogue& catalogue) {
  switch (role) {
  case Role::Nothing:
    return;
  case Role::Tables:
    for (const auto& table : catalogue.tableNames()) out.add(Candidate::Kind::Table, written(table));
    return;
  case Role::Qualified: {
    std::shared_ptr<TableInfo> table;
    bool known = false;
    for (const auto& source : statement.scopeAt(k)) {
      if (normalized(source.qualifier) == normalized(qualifier)) {
        table = source.table;
        known = true;
        break;
      }
    }
    if (!known) table = catalogue.table(qualifier);
    if (table) addColumns(out, *table, {});
    return;
  }
  case Role::TableColumns:
    if (const auto table = statement.targetTable()) addColumns(out, *table, {});
    return;
  case Role::ScopeColumns:
  case Role::Expression:
    break;
  }

  const std::vector<Source> sources = statement.scopeAt(k);
  // A column name that two tables share is offered qualified only.
  std::map<std::wstring, int> uses;
  for (const auto& source : sources) {
    if (!source.table) continue;
    for (std::size_t i = 0; i < source.table->columnCount(); ++i) {
      for (const auto& name : source.table->columnByIndex(i).names()) ++uses[normalized(name)];
    }
  }
  for (const auto& source : sources) {
    if (role == Role::Expression) {
      out.add(source.alias ? Candidate::Kind::Alias : Candidate::Kind::Table, written(source.qualifier),
              source.alias ? toUtf8(source.tableName) : std::string());
    }
    if (!source.table) continue;
    for (std::size_t i = 0; i < source.table->columnCount(); ++i) {
      const ColumnInfo column = source.table->columnByIndex(i);
      for (const auto& name : column.names()) {
        const bool shared = uses[normalized(name)] > 1;
        if (shared && role == Role::ScopeColumns) {
          out.add(Candidate::Kind::Column, written(name), typeText(column.type()));
        } else {
          out.add(Candidate::Kind::Column, shared ? written(source.qualifier) + "." + written(name) : written(name),
                  typeText(column.type()));
        }
      }
    }
  }
  if (role == Role::Expression) {
    for (const auto& name : catalogue.functionNames()) {
      const auto function = catalogue.function(name);
      out.add(Candidate::Kind::Function, written(name), function ? signatureText(*function) : std::string());
    }
  }
}

Completion completeOrThrow(const std::string& text, std::size_t offset, const Catalogue& catalogue) {
  Completion answer;
  offset = std::min(offset, text.size());
  while (offset > 0 && offset < text.size() && (static_cast<unsigned char>(text[offset]) & 0xC0) == 0x80) --offset;
  answer.replaceBegin = answer.replaceEnd = offset;

  // Where the scanner passes over bytes without a token, the cursor may stand in a string or a
  // name that never closes; nothing is offered there or right behind such bytes.
  std::vector<TokenPlace> places = tokenPlaces(text);
  std::size_t k = 0;
  while (k < places.size() && places[k].end <= offset) ++k;
  std::size_t wordBegin = offset;
  auto wordLike = [&](const TokenPlace& token) {
    if (!startsWord(static_cast<unsigned char>(text[token.begin]))) return false;
    for (std::size_t i = token.begin; i < offset; ++i) {
      if (!isWordByte(static_cast<unsigned char>(text[i]))) return false;
    }
    return true;
  };
  if (k < places.size() && places[k].begin < offset) {
    // Inside a token: only a word may be completed from its middle.
    if (!wordLike(places[k])) return answer;
    wordBegin = places[k].begin;
  } else if (k > 0 && places[k - 1].end == offset && wordLike(places[k - 1])) {
    --k;
    wordBegin = places[k].begin;
  }
  for (const SkippedText& skipped : skippedText(text)) {
    if (skipped.offset >= offset) break;
    if (skipped.kind == SkippedText::Kind::AfterNul) {
      if (skipped.offset < offset) return answer;
      continue;
    }
    const char first = text[skipped.offset];
    const std::size_t end = skipped.offset + skipped.length;
    if (first == '\'' || first == '"' || (skipped.offset < offset && end > offset) || end == wordBegin) return answer;
  }
  answer.replaceBegin = wordBegin;

  std::vector<std::uint32_t> ids;
  ids.reserve(k);
  for (std::size_t i = 0; i < k; ++i) ids.push_back(places[i].id);
  const auto accepted = tokensAcceptedAfter(ids);
  if (!accepted) return answer;

  Collector out(text.substr(wordBegin, offset - wordBegin));
  const bool word = wordBegin != offset;
  bool nameAccepted = false;
  for (const std::uint32_t id : *accepted) {
    if (id == T_IDENTIFIER) nameAccepted = true;
    if (id == T_TERMINATION || carriesText(id)) continue;
    Candidate::Kind kind = Candidate::Kind::Keyword;
    const char* shown = tokenText(id, kind);
    if (kind == Candidate::Kind::Punctuation) {
      if (!word) out.add(kind, shown);
    } else {
      out.add(kind, shown ? std::string(shown) : tokenName(id));
    }
  }
  if (nameAccepted) {
    const Statement statement(text, std::move(places), catalogue);
    std::wstring qualifier;
    const Role role = statement.roleAt(k, qualifier);
    addNames(out, role, qualifier, statement, k, catalogue);
  }
  answer.candidates = out.take();
  return answer;
}

} // namespace

Completion complete(const std::string& text, std::size_t offset, const Catalogue& catalogue) {
  try {
    return completeOrThrow(text, offset, catalogue);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    // A lexeme longer than the scanner's window: nothing sensible stands at any cursor there.
    Completion answer;
    answer.replaceBegin = answer.replaceEnd = std::min(offset, text.size());
    return answer;
  }
}

const char* candidateKindName(Candidate::Kind kind) {
  switch (kind) {
  case Candidate::Kind::Keyword: return "keyword";
  case Candidate::Kind::Punctuation: return "punctuation";
  case Candidate::Kind::Table: return "table";
  case Candidate::Kind::Alias: return "alias";
  case Candidate::Kind::Column: return "column";
  case Candidate::Kind::Function: return "function";
  }
  return "unknown";
}

} // namespace velmor::sql::host
