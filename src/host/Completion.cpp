// Completion at a cursor: the grammar says which tokens may come next; where a name may come,
// the statement is read with a stand-in name at the cursor, and the scopes that standard scoping
// gives the stand-in say which names make sense there.
#include <velmor/sql/host/Completion.h>

#include "editor/Names.h"
#include "editor/Reading.h"

#include <velmor/sql/builder/Keywords.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/parser/Completion.h>
#include <velmor/sql/types/Strings.h>

#include <algorithm>
#include <exception>
#include <set>
#include <new>
#include <optional>
#include <tuple>

namespace velmor::sql::host {

namespace {

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
  if (const char* text = editor::operatorText(id)) return text;
  kind = Candidate::Kind::Keyword;
  if (id == T_ISNOT) return "IS NOT";
  return nullptr;
}

using editor::written;

std::string signatureText(const Catalogue& catalogue, const FunctionInfo& function) {
  const auto overloads = function.overloads();
  std::string text;
  constexpr std::size_t shown = 3;
  for (std::size_t i = 0; i < overloads.size() && i < shown; ++i) {
    if (i > 0) text += "; ";
    text += editor::overloadLabel(catalogue, {}, *overloads[i]).text;
  }
  if (overloads.size() > shown) text += "; +" + std::to_string(overloads.size() - shown) + " more";
  return text;
}

// Candidates in the order they are added, each (kind, text) once, filtered by the typed word.
class Collector {
public:
  explicit Collector(const std::string& word) : mWord(normalized(fromUtf8(word))) {}

  bool wanted(const std::string& text) const {
    return normalized(fromUtf8(text)).compare(0, mWord.size(), mWord) == 0;
  }

  void add(Candidate::Kind kind, const std::string& text, std::string detail = {}) {
    if (!wanted(text)) return;
    if (!mSeen.emplace(kind, text).second) return;
    mCandidates.push_back({text, kind, std::move(detail)});
  }

  std::vector<Candidate> take() { return std::move(mCandidates); }

private:
  std::wstring mWord;
  std::set<std::pair<Candidate::Kind, std::string>> mSeen;
  std::vector<Candidate> mCandidates;
};

// Where the stand-in name stands, and so which names may replace it.
enum class Role {
  Nothing,      // a name the statement makes up (an alias), or the stand-in was mended away
  Tables,       // a table of the catalogue
  Functions,    // a function's name before its '('
  Value,        // an expression: columns of every level, aliases, functions
  Qualified,    // a column of the qualifier before the '.'
  Qualifier,    // a table or alias before a '.'
  TableColumns, // a column of one named table: INSERT's column list, UPDATE's SET
  Using,        // a column that both sides of a join have
};

struct Place {
  Role role = Role::Nothing;
  ast::Node node;
  std::wstring name; // the qualifier, or the table of TableColumns
};

Place findPlace(const ast::Node& tree, const std::wstring& standIn, const ast::Node& likely) {
  // The stand-in is ASCII in lower case: a name is it when it has its length and letters.
  auto is = [&](const std::wstring& name) {
    if (name.size() != standIn.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
      const wchar_t c = name[i] >= L'A' && name[i] <= L'Z' ? static_cast<wchar_t>(name[i] - L'A' + L'a') : name[i];
      if (c != standIn[i]) return false;
    }
    return true;
  };
  Place place;
  bool found = false;
  auto look = [&](const ast::Node& node) {
    if (found) return;
    Place here{Role::Nothing, node, {}};
    if (ast::nodeIs<ast::ColumnReference>(node)) {
      const auto& reference = ast::getNodeValue<ast::ColumnReference>(node);
      if (is(reference.column)) {
        here.role = reference.table.empty() ? Role::Value : Role::Qualified;
        here.name = reference.table;
      } else if (is(reference.table)) {
        here.role = Role::Qualifier;
      } else {
        return;
      }
    } else if (ast::nodeIs<ast::QualifiedAsterisk>(node)) {
      if (!is(ast::getNodeValue<ast::QualifiedAsterisk>(node).table)) return;
      here.role = Role::Qualifier;
    } else if (ast::nodeIs<ast::Function>(node)) {
      if (!is(ast::getNodeValue<ast::Function>(node).name)) return;
      here.role = Role::Functions;
    } else if (ast::nodeIs<ast::TablePrimary>(node)) {
      const auto& primary = ast::getNodeValue<ast::TablePrimary>(node);
      if (is(primary.table)) here.role = Role::Tables;
      else if (!is(primary.alias)) return;
    } else if (ast::nodeIs<ast::ExplicitTable>(node)) {
      if (!is(ast::getNodeValue<ast::ExplicitTable>(node).table)) return;
      here.role = Role::Tables;
    } else if (ast::nodeIs<ast::DerivedTable>(node)) {
      if (!is(ast::getNodeValue<ast::DerivedTable>(node).alias)) return;
    } else if (ast::nodeIs<ast::DerivedColumn>(node)) {
      if (!is(ast::getNodeValue<ast::DerivedColumn>(node).alias)) return;
    } else if (ast::nodeIs<ast::UpdateStatement>(node)) {
      const auto& update = ast::getNodeValue<ast::UpdateStatement>(node);
      if (is(update.table)) {
        here.role = Role::Tables;
      } else {
        bool set = false;
        for (const ast::SetClause& clause : update.clauses) set = set || is(clause.column);
        if (!set) return;
        here.role = Role::TableColumns;
        here.name = update.table;
      }
    } else if (ast::nodeIs<ast::InsertStatement>(node)) {
      const auto& insert = ast::getNodeValue<ast::InsertStatement>(node);
      if (is(insert.table)) {
        here.role = Role::Tables;
      } else {
        bool listed = false;
        for (const std::wstring& column : insert.source.columns) listed = listed || is(column);
        if (!listed) return;
        here.role = Role::TableColumns;
        here.name = insert.table;
      }
    } else if (ast::nodeIs<ast::DeleteStatement>(node)) {
      if (!is(ast::getNodeValue<ast::DeleteStatement>(node).table)) return;
      here.role = Role::Tables;
    } else if (ast::nodeIs<ast::JoinNode>(node)) {
      const ast::Node& specification = ast::getNodeValue<ast::JoinNode>(node).specification;
      if (!ast::nodeIs<ast::NamedColumnsJoin>(specification)) return;
      bool listed = false;
      for (const std::wstring& column : ast::getNodeValue<ast::NamedColumnsJoin>(specification).columns) {
        listed = listed || is(column);
      }
      if (!listed) return;
      here.role = Role::Using;
    } else {
      return;
    }
    place = std::move(here);
    found = true;
  };
  // The node around the stand-in's place holds it but for a few kinds of names; only then is
  // the whole tree searched.
  look(likely);
  if (!found) editor::forEachNode(tree, look);
  return place;
}

void addFunctions(Collector& out, const Catalogue& catalogue) {
  for (const auto& name : catalogue.functionNames()) {
    const std::string text = written(name);
    if (!out.wanted(text)) continue;
    const auto function = catalogue.function(name);
    out.add(Candidate::Kind::Function, text, function ? signatureText(catalogue, *function) : std::string());
  }
}

// A column offered bare where the bare name means it at the cursor, else qualified where that
// does; never where neither does.
void addColumn(Collector& out, const Catalogue& catalogue, const ScopeAt& at, const ColumnInfo& column,
               const std::wstring& qualifier) {
  auto means = [&](const std::wstring& table, const std::wstring& name) {
    try {
      return editor::sameColumn(at.scope->columnInfo(table, name), column);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (...) {
      return false; // ambiguous, or a qualifier the cursor cannot see
    }
  };
  const std::string detail = catalogue.typeName(column.type());
  for (const std::wstring& name : column.names()) {
    if (means({}, name)) {
      out.add(Candidate::Kind::Column, written(name), detail);
    } else if (!qualifier.empty() && means(qualifier, name)) {
      out.add(Candidate::Kind::Column, written(qualifier) + "." + written(name), detail);
    }
  }
}

std::vector<ColumnInfo> columnsOf(const DeclaredName& name) {
  std::vector<ColumnInfo> columns;
  if (!name.columns) return columns;
  for (const AsteriskColumn& pair : name.columns->columnsForAsterisk({})) {
    ColumnInfo column = name.columns->columnInfo({}, pair.second);
    if (!column.isNull()) columns.push_back(std::move(column));
  }
  return columns;
}

void addQualifiers(Collector& out, const Catalogue& catalogue, const ScopeAt& at) {
  for (const ScopeLevel& level : at.levels) {
    for (const DeclaredName& name : level.names) {
      // A name hidden by a nearer level's is not offered.
      if (name.name.empty() || editor::isFill(name.name) || editor::declaredName(at.levels, name.name) != &name) continue;
      if (ast::nodeIs<ast::TablePrimary>(name.declaration)) {
        const auto& primary = ast::getNodeValue<ast::TablePrimary>(name.declaration);
        if (primary.alias.empty()) out.add(Candidate::Kind::Table, written(name.name));
        else out.add(Candidate::Kind::Alias, written(name.name), toUtf8(primary.table));
      } else if (ast::nodeIs<ast::DerivedTable>(name.declaration)) {
        out.add(Candidate::Kind::Alias, written(name.name), "derived table");
      } else {
        out.add(Candidate::Kind::Table, written(name.name));
      }
    }
  }
  (void)catalogue;
}

// The catalogue tables that a side of a join names.
std::vector<std::shared_ptr<TableInfo>> tablesOf(const ast::Node& side, const Catalogue& catalogue) {
  std::vector<std::shared_ptr<TableInfo>> tables;
  editor::forEachNode(side, [&](const ast::Node& node) {
    if (!ast::nodeIs<ast::TablePrimary>(node)) return;
    if (auto table = catalogue.table(ast::getNodeValue<ast::TablePrimary>(node).table)) tables.push_back(std::move(table));
  });
  return tables;
}

void addUsingColumns(Collector& out, const Catalogue& catalogue, const ast::JoinNode& join) {
  const auto left = tablesOf(join.left, catalogue);
  const auto right = tablesOf(join.right, catalogue);
  for (const auto& table : left) {
    for (std::size_t i = 0; i < table->columnCount(); ++i) {
      const ColumnInfo column = table->columnByIndex(i);
      const std::wstring& name = column.canonicalName();
      const bool shared = std::any_of(right.begin(), right.end(), [&](const auto& other) { return other->hasColumn(name); });
      if (shared) out.add(Candidate::Kind::Column, written(name), catalogue.typeName(column.type()));
    }
  }
}

void addNames(Collector& out, const std::string& text, const std::vector<TokenPlace>& tokens, std::size_t wordBegin,
              std::size_t wordEnd, const Catalogue& catalogue) {
  // A stand-in that the statement does not hold already.
  std::string standIn = "zq_velmor_cursor";
  std::string folded = text; // ASCII letters folded: the stand-in is lower-case ASCII
  for (char& c : folded) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  while (folded.find(standIn) != std::string::npos) standIn += '_';
  const auto reading = editor::Reading::read(text, wordBegin, wordEnd, standIn, &tokens);
  if (!reading) return;
  const std::size_t standInAt = reading->fromGiven(wordBegin);
  const Place place = findPlace(reading->tree(), fromUtf8(standIn), reading->innermost(standInAt, standInAt + standIn.size()));
  switch (place.role) {
  case Role::Nothing:
    return;
  case Role::Tables:
    for (const auto& table : catalogue.tableNames()) out.add(Candidate::Kind::Table, written(table));
    return;
  case Role::Functions:
    addFunctions(out, catalogue);
    return;
  case Role::TableColumns:
    if (const auto table = catalogue.table(place.name)) {
      for (std::size_t i = 0; i < table->columnCount(); ++i) {
        const ColumnInfo column = table->columnByIndex(i);
        for (const auto& name : column.names()) {
          out.add(Candidate::Kind::Column, written(name), catalogue.typeName(column.type()));
        }
      }
    }
    return;
  case Role::Using:
    addUsingColumns(out, catalogue, ast::getNodeValue<ast::JoinNode>(place.node));
    return;
  case Role::Value:
  case Role::Qualified:
  case Role::Qualifier:
    break;
  }
  const auto scopes = scopesAt(catalogue, catalogue, reading->tree(), {place.node});
  if (!scopes.front()) {
    if (place.role == Role::Value) addFunctions(out, catalogue);
    return;
  }
  const ScopeAt& at = *scopes.front();
  if (place.role == Role::Qualifier) {
    addQualifiers(out, catalogue, at);
    return;
  }
  if (place.role == Role::Qualified) {
    const DeclaredName* name = editor::declaredName(at.levels, place.name);
    if (!name) return;
    for (const ColumnInfo& column : columnsOf(*name)) {
      for (const std::wstring& bare : column.names()) {
        bool means = false;
        try {
          means = editor::sameColumn(at.scope->columnInfo(place.name, bare), column);
        } catch (const std::bad_alloc&) {
          throw;
        } catch (...) {
        }
        if (means) out.add(Candidate::Kind::Column, written(bare), catalogue.typeName(column.type()));
      }
    }
    return;
  }
  // A value: the output names where they come first, then each level's columns and names from
  // the nearest outward, then the functions.
  if (!at.levels.empty() && at.levels.front().outputFirst) {
    for (const ColumnInfo& column : at.levels.front().output) addColumn(out, catalogue, at, column, {});
  }
  for (const ScopeLevel& level : at.levels) {
    for (const DeclaredName& name : level.names) {
      for (const ColumnInfo& column : columnsOf(name)) addColumn(out, catalogue, at, column, name.name);
    }
    for (const DeclaredName& name : level.names) {
      if (name.name.empty() || editor::isFill(name.name) || editor::declaredName(at.levels, name.name) != &name) continue;
      if (ast::nodeIs<ast::TablePrimary>(name.declaration) &&
          !ast::getNodeValue<ast::TablePrimary>(name.declaration).alias.empty()) {
        out.add(Candidate::Kind::Alias, written(name.name),
                toUtf8(ast::getNodeValue<ast::TablePrimary>(name.declaration).table));
      } else if (ast::nodeIs<ast::DerivedTable>(name.declaration)) {
        out.add(Candidate::Kind::Alias, written(name.name), "derived table");
      } else {
        out.add(Candidate::Kind::Table, written(name.name));
      }
    }
  }
  addFunctions(out, catalogue);
}

Completion completeOrThrow(const std::string& document, std::size_t offset, const Catalogue& catalogue) {
  Completion answer;
  offset = std::min(offset, document.size());
  while (offset > 0 && offset < document.size() && (static_cast<unsigned char>(document[offset]) & 0xC0) == 0x80) {
    --offset;
  }
  answer.replaceBegin = answer.replaceEnd = offset;
  const editor::Segment segment = editor::segmentAt(document, offset);
  if (segment.inComment) return answer;
  const std::string& text = segment.text;
  const std::size_t cursor = offset - segment.begin;

  // Where the scanner passes over bytes without a token, the cursor may stand in a string or a
  // name that never closes; nothing is offered there or right behind such bytes.
  std::vector<SkippedText> skippedBytes;
  const auto scanned = tryTokenPlaces(text, &skippedBytes);
  if (!scanned) return answer; // a lexeme longer than the scanner's window
  const std::vector<TokenPlace>& places = *scanned;
  std::size_t k = 0;
  while (k < places.size() && places[k].end <= cursor) ++k;
  auto wordLike = [&](const TokenPlace& token) {
    if (!startsWord(static_cast<unsigned char>(text[token.begin]))) return false;
    for (std::size_t i = token.begin; i < token.end; ++i) {
      if (!isWordByte(static_cast<unsigned char>(text[i]))) return false;
    }
    return true;
  };
  std::size_t wordBegin = cursor;
  std::size_t wordEnd = cursor;
  if (k < places.size() && places[k].begin < cursor) {
    // Inside a token: only a word may be completed from its middle.
    if (!wordLike(places[k])) return answer;
    wordBegin = places[k].begin;
    wordEnd = places[k].end;
  } else if (k > 0 && places[k - 1].end == cursor && wordLike(places[k - 1])) {
    --k;
    wordBegin = places[k].begin;
    wordEnd = places[k].end;
  } else if (k < places.size() && places[k].begin == cursor && wordLike(places[k])) {
    // At a word's first byte: the whole word is replaced.
    wordEnd = places[k].end;
  }
  for (const SkippedText& skipped : skippedBytes) {
    if (skipped.offset >= cursor) break;
    if (skipped.kind == SkippedText::Kind::AfterNul) return answer;
    const char first = text[skipped.offset];
    const std::size_t end = skipped.offset + skipped.length;
    if (first == '\'' || first == '"' || end > cursor || end == wordBegin) return answer;
  }
  answer.replaceBegin = segment.begin + wordBegin;
  answer.replaceEnd = segment.begin + wordEnd;

  std::vector<std::uint32_t> ids;
  ids.reserve(k);
  for (std::size_t i = 0; i < k; ++i) ids.push_back(places[i].id);
  const auto accepted = tokensAcceptedAfter(ids);
  if (!accepted) return answer;

  Collector out(text.substr(wordBegin, cursor - wordBegin));
  const bool word = wordBegin != cursor;
  if (std::find(accepted->begin(), accepted->end(), std::uint32_t{T_IDENTIFIER}) != accepted->end()) {
    addNames(out, text, places, wordBegin, wordEnd, catalogue);
  }
  std::vector<std::string> keywords;
  std::vector<std::string> punctuation;
  for (const std::uint32_t id : *accepted) {
    if (id == T_TERMINATION || carriesText(id)) continue;
    Candidate::Kind kind = Candidate::Kind::Keyword;
    const char* shown = tokenText(id, kind);
    if (kind == Candidate::Kind::Punctuation) {
      if (!word) punctuation.emplace_back(shown);
    } else {
      keywords.push_back(shown ? std::string(shown) : tokenName(id));
    }
  }
  std::sort(keywords.begin(), keywords.end());
  for (const std::string& keyword : keywords) out.add(Candidate::Kind::Keyword, keyword);
  for (const std::string& mark : punctuation) out.add(Candidate::Kind::Punctuation, mark);
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
