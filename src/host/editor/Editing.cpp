// Editor services from the scopes of the statement at the cursor: the statement is read (mended
// where unfinished), the node under the cursor found by its range, and the standard analysis
// says what its names mean there.
#include <velmor/sql/host/editor/Editing.h>

#include "Names.h"
#include "Reading.h"

#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/sqllexer/Tokens.h>

#include <algorithm>
#include <new>

namespace velmor::sql::host {

namespace {

using editor::Reading;

// The statement at the cursor, read, and the cursor in the reading.
struct Site {
  std::size_t begin = 0; // the statement's first byte in the document
  std::string given;     // the statement's text as given (comments blanked)
  std::optional<Reading> reading;
  std::size_t at = 0; // the cursor in the reading's text

  TextRange toDocument(std::size_t from, std::size_t to) const {
    return {begin + reading->toGiven(from), begin + reading->toGiven(to)};
  }
};

std::optional<Site> siteAt(const std::string& document, std::size_t offset) {
  offset = std::min(offset, document.size());
  editor::Segment segment = editor::segmentAt(document, offset);
  if (segment.inComment) return std::nullopt;
  Site site;
  site.begin = segment.begin;
  site.given = std::move(segment.text);
  site.reading = Reading::read(site.given);
  if (!site.reading) return std::nullopt;
  site.at = site.reading->fromGiven(offset - site.begin);
  return site;
}

bool isName(std::uint32_t id) { return id == T_IDENTIFIER; }

// The token under the cursor: the one that holds it, else one that ends right at it (a name
// before punctuation wins over the punctuation).
std::optional<std::size_t> tokenUnder(const Reading& reading, std::size_t at) {
  const auto& tokens = reading.tokens();
  std::optional<std::size_t> found;
  const std::size_t next = reading.tokenAt(at + 1);
  for (std::size_t i = next >= 2 ? next - 2 : 0; i < tokens.size() && i <= next; ++i) {
    if (tokens[i].begin <= at && at < tokens[i].end) {
      if (!found || isName(tokens[i].id)) found = i;
    } else if (tokens[i].end == at && (!found || (isName(tokens[i].id) && !isName(tokens[*found].id)))) {
      found = i;
    }
  }
  return found;
}

std::wstring tokenName(const Reading& reading, const TokenPlace& token) {
  std::string bytes = reading.text().substr(token.begin, token.end - token.begin);
  if (bytes.size() >= 2 && (bytes.front() == '[' || bytes.front() == '"')) bytes = bytes.substr(1, bytes.size() - 2);
  return normalized(fromUtf8(bytes));
}

// The innermost node whose range holds the token [begin, end); null when not even the
// statement does.
ast::Node nodeAround(const Reading& reading, std::size_t begin, std::size_t end) {
  // Down through the nodes that hold the token; where that stops at the statement (a sort key
  // is no child of its query), every node is looked at.
  ast::Node best = reading.innermost(begin, end);
  if (best.mImpl != reading.tree().mImpl) return best;
  best = {};
  std::size_t bestSize = ~std::size_t{0};
  editor::forEachNode(reading.tree(), [&](const ast::Node& node) {
    const SourceRange* range = reading.range(node);
    if (!range || range->beginOffset > begin || range->endOffset < end) return;
    const std::size_t size = range->endOffset - range->beginOffset;
    if (size <= bestSize) {
      best = node;
      bestSize = size;
    }
  });
  return best;
}

// Tokens of a node's range, as indexes [first, last).
std::pair<std::size_t, std::size_t> tokensOf(const Reading& reading, const ast::Node& node) {
  const SourceRange* range = reading.range(node);
  if (!range) return {0, 0};
  return {reading.tokenAt(range->beginOffset), reading.tokenAt(range->endOffset)};
}

// The token of `node`'s range that spells `name`, the last such one.
std::optional<std::size_t> nameToken(const Reading& reading, const ast::Node& node, const std::wstring& name) {
  const auto [first, last] = tokensOf(reading, node);
  const std::wstring key = normalized(name);
  for (std::size_t i = last; i > first; --i) {
    const TokenPlace& token = reading.tokens()[i - 1];
    if (isName(token.id) && tokenName(reading, token) == key) return i - 1;
  }
  return std::nullopt;
}

std::optional<ScopeAt> scopeOf(const Catalogue& catalogue, const Reading& reading, const ast::Node& node) {
  auto scopes = scopesAt(catalogue, catalogue, reading.tree(), {node});
  return std::move(scopes.front());
}

std::shared_ptr<Type> typeIn(const Catalogue& catalogue, const ScopeAt& at, const ast::Node& node) {
  TypeInferer inferer(catalogue, *at.scope);
  inferer.setScoping(Scoping::Standard, &catalogue);
  try {
    return inferer.inferNodeType(node);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return nullptr;
  }
}

ColumnInfo resolve(const ScopeAt& at, const std::wstring& table, const std::wstring& column) {
  try {
    return at.scope->columnInfo(table, column);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return {};
  }
}

std::vector<std::string> columnLines(const Catalogue& catalogue, const DeclaredName& name) {
  std::vector<std::string> lines;
  if (!name.columns) return lines;
  for (const AsteriskColumn& pair : name.columns->columnsForAsterisk({})) {
    const ColumnInfo column = name.columns->columnInfo({}, pair.second);
    lines.push_back(editor::written(pair.second) + ": " + catalogue.typeName(column.type()));
  }
  return lines;
}

std::string declaredTitle(const DeclaredName& name) {
  if (ast::nodeIs<ast::TablePrimary>(name.declaration)) {
    const auto& primary = ast::getNodeValue<ast::TablePrimary>(name.declaration);
    std::string title = primary.alias.empty() ? "table " + editor::written(primary.table)
                                              : "alias " + editor::written(primary.alias) + ": table " +
                                                    editor::written(primary.table);
    if (!name.columns) title += " (not in the catalogue)";
    return title;
  }
  if (ast::nodeIs<ast::DerivedTable>(name.declaration)) return "derived table " + editor::written(name.name);
  return "table " + editor::written(name.name);
}

const DeclaredName* declarationIn(const ScopeAt& at, const ast::Node& node) {
  for (const ScopeLevel& level : at.levels) {
    for (const DeclaredName& name : level.names) {
      if (name.declaration.mImpl == node.mImpl) return &name;
    }
  }
  return nullptr;
}

// The declared name whose columns give `column` (qualified by `table` when given).
const DeclaredName* supplierOf(const ScopeAt& at, const std::wstring& table, const ColumnInfo& column) {
  for (const ScopeLevel& level : at.levels) {
    for (const DeclaredName& name : level.names) {
      if (!name.columns || (!table.empty() && normalized(table) != normalized(name.name))) continue;
      for (const std::wstring& bare : column.names()) {
        if (editor::sameColumn(name.columns->columnInfo({}, bare), column)) return &name;
      }
    }
  }
  return nullptr;
}

bool isOutput(const ScopeAt& at, const ColumnInfo& column) {
  if (at.levels.empty()) return false;
  const auto& output = at.levels.front().output;
  return std::any_of(output.begin(), output.end(), [&](const ColumnInfo& c) { return editor::sameColumn(c, column); });
}

// The innermost query specification whose range holds `node`'s.
ast::Node queryAround(const Reading& reading, const ast::Node& node) {
  const SourceRange* inner = reading.range(node);
  ast::Node best;
  std::size_t bestSize = ~std::size_t{0};
  if (!inner) return best;
  editor::forEachNode(reading.tree(), [&](const ast::Node& candidate) {
    if (!ast::nodeIs<ast::QuerySpecification>(candidate)) return;
    const SourceRange* range = reading.range(candidate);
    if (!range || range->beginOffset > inner->beginOffset || range->endOffset < inner->endOffset) return;
    if (range->endOffset - range->beginOffset <= bestSize) {
      best = candidate;
      bestSize = range->endOffset - range->beginOffset;
    }
  });
  return best;
}

// Where a query's output column `name` is declared: the alias of its select item, or the
// column that names it.
std::optional<std::size_t> outputToken(const Reading& reading, ast::Node query, const std::wstring& name) {
  while (ast::nodeIs<ast::QueryOperation>(query)) query = ast::getNodeValue<ast::QueryOperation>(query).left;
  if (ast::nodeIs<ast::DerivedTable>(query)) query = ast::getNodeValue<ast::DerivedTable>(query).query;
  if (!ast::nodeIs<ast::QuerySpecification>(query)) return std::nullopt;
  const std::wstring key = normalized(name);
  for (const ast::Node& item : ast::getNodeValue<ast::QuerySpecification>(query).selectList) {
    if (!ast::nodeIs<ast::DerivedColumn>(item)) continue;
    const auto& derived = ast::getNodeValue<ast::DerivedColumn>(item);
    if (!derived.alias.empty()) {
      if (normalized(derived.alias) == key) return nameToken(reading, item, derived.alias);
    } else if (ast::nodeIs<ast::ColumnReference>(derived.expression) &&
               normalized(ast::getNodeValue<ast::ColumnReference>(derived.expression).column) == key) {
      return nameToken(reading, derived.expression, name);
    }
  }
  return std::nullopt;
}

// What a name under the cursor is about.
struct Subject {
  enum class Kind { None, Qualifier, Column, Table, DerivedAlias, Function, OutputAlias, Expression };
  Kind kind = Kind::None;
  ast::Node node;
  std::size_t token = 0;
};

Subject subjectAt(const Site& site) {
  Subject subject;
  const Reading& reading = *site.reading;
  const auto token = tokenUnder(reading, site.at);
  if (!token) return subject;
  const TokenPlace& place = reading.tokens()[*token];
  subject.token = *token;
  const bool keyword = !carriesText(place.id) && place.id >= 256 && place.id != T_EQ && place.id != T_NEQ &&
                       place.id != T_LT && place.id != T_GT && place.id != T_LT_EQ && place.id != T_GT_EQ &&
                       place.id != T_CONCAT && place.id != T_LSHIFT && place.id != T_RSHIFT && place.id != T_MOD;
  if (keyword) return subject;
  const ast::Node node = nodeAround(reading, place.begin, place.end);
  if (node.isNull()) return subject;
  subject.node = node;
  const auto [first, last] = tokensOf(reading, node);
  if (ast::nodeIs<ast::ColumnReference>(node)) {
    const auto& reference = ast::getNodeValue<ast::ColumnReference>(node);
    subject.kind = !reference.table.empty() && *token == first ? Subject::Kind::Qualifier : Subject::Kind::Column;
  } else if (ast::nodeIs<ast::QualifiedAsterisk>(node)) {
    if (*token == first && isName(place.id)) subject.kind = Subject::Kind::Qualifier;
  } else if (ast::nodeIs<ast::TablePrimary>(node)) {
    if (isName(place.id)) subject.kind = Subject::Kind::Table;
  } else if (ast::nodeIs<ast::DerivedTable>(node)) {
    if (isName(place.id) && *token + 1 == last) subject.kind = Subject::Kind::DerivedAlias;
  } else if (ast::nodeIs<ast::Function>(node)) {
    subject.kind = *token == first ? Subject::Kind::Function : Subject::Kind::Expression;
  } else if (ast::nodeIs<ast::DerivedColumn>(node)) {
    if (isName(place.id) && !ast::getNodeValue<ast::DerivedColumn>(node).alias.empty() && *token + 1 == last) {
      subject.kind = Subject::Kind::OutputAlias;
    }
  } else if (!ast::nodeIs<ast::QuerySpecification>(node) && !ast::nodeIs<ast::QueryOperation>(node) &&
             !ast::nodeIs<ast::UpdateStatement>(node) && !ast::nodeIs<ast::InsertStatement>(node) &&
             !ast::nodeIs<ast::DeleteStatement>(node) && !ast::nodeIs<ast::JoinNode>(node) &&
             !ast::nodeIs<ast::JoinCondition>(node) && !ast::nodeIs<ast::NamedColumnsJoin>(node) &&
             !ast::nodeIs<ast::ExplicitTable>(node) && node.mImpl != reading.tree().mImpl) {
    subject.kind = Subject::Kind::Expression;
  }
  return subject;
}

TextRange tokenRange(const Site& site, std::size_t token) {
  const TokenPlace& place = site.reading->tokens()[token];
  return site.toDocument(place.begin, place.end);
}

TextRange nodeRange(const Site& site, const ast::Node& node) {
  const SourceRange* range = site.reading->range(node);
  return site.toDocument(range->beginOffset, range->endOffset);
}

// The declaration that an alias or table name under the cursor stands for.
const DeclaredName* declarationOf(const Catalogue& catalogue, const Site& site, const Subject& subject,
                                  std::optional<ScopeAt>& at) {
  at = scopeOf(catalogue, *site.reading, subject.node);
  if (!at) return nullptr;
  if (subject.kind == Subject::Kind::Qualifier) {
    const std::wstring qualifier = ast::nodeIs<ast::ColumnReference>(subject.node)
                                       ? ast::getNodeValue<ast::ColumnReference>(subject.node).table
                                       : ast::getNodeValue<ast::QualifiedAsterisk>(subject.node).table;
    return editor::declaredName(at->levels, qualifier);
  }
  return declarationIn(*at, subject.node);
}

std::optional<std::size_t> declarationToken(const Reading& reading, const DeclaredName& name) {
  return nameToken(reading, name.declaration, name.name);
}

} // namespace

std::optional<Hover> hover(const std::string& text, std::size_t offset, const Catalogue& catalogue) {
  const auto site = siteAt(text, offset);
  if (!site) return std::nullopt;
  const Subject subject = subjectAt(*site);
  const Reading& reading = *site->reading;
  Hover answer;
  switch (subject.kind) {
  case Subject::Kind::None:
    return std::nullopt;
  case Subject::Kind::Qualifier:
  case Subject::Kind::Table:
  case Subject::Kind::DerivedAlias: {
    std::optional<ScopeAt> at;
    const DeclaredName* name = declarationOf(catalogue, *site, subject, at);
    if (!name) return std::nullopt;
    answer.kind = Hover::Kind::Table;
    answer.range = tokenRange(*site, subject.token);
    answer.title = declaredTitle(*name);
    answer.details = columnLines(catalogue, *name);
    return answer;
  }
  case Subject::Kind::Column: {
    const auto at = scopeOf(catalogue, reading, subject.node);
    if (!at) return std::nullopt;
    const auto& reference = ast::getNodeValue<ast::ColumnReference>(subject.node);
    const ColumnInfo column = resolve(*at, reference.table, reference.column);
    if (column.isNull()) return std::nullopt;
    const std::string type = catalogue.typeName(column.type());
    answer.range = tokenRange(*site, subject.token);
    answer.type = type;
    if (reference.table.empty() && isOutput(*at, column) && !supplierOf(*at, {}, column)) {
      answer.kind = Hover::Kind::OutputName;
      answer.title = "output column " + editor::written(column.canonicalName()) + ": " + type;
      return answer;
    }
    answer.kind = Hover::Kind::Column;
    const DeclaredName* supplier = supplierOf(*at, reference.table, column);
    std::wstring table = supplier ? supplier->name : column.originalTable();
    if (supplier && ast::nodeIs<ast::TablePrimary>(supplier->declaration)) {
      table = ast::getNodeValue<ast::TablePrimary>(supplier->declaration).table;
    }
    answer.title = "column " + (table.empty() ? std::string() : editor::written(table) + ".") +
                   editor::written(column.canonicalName()) + ": " + type;
    return answer;
  }
  case Subject::Kind::Function: {
    const auto& call = ast::getNodeValue<ast::Function>(subject.node);
    const auto function = catalogue.function(call.name);
    if (!function) return std::nullopt;
    answer.kind = Hover::Kind::Function;
    answer.range = tokenRange(*site, subject.token);
    answer.title = "function " + editor::written(call.name);
    std::shared_ptr<OverloadInfo> chosen;
    if (const auto at = scopeOf(catalogue, reading, subject.node)) {
      TypeInferer inferer(catalogue, *at->scope);
      inferer.setScoping(Scoping::Standard, &catalogue);
      try {
        chosen = inferer.inferFunctionOverload(call);
        answer.type = catalogue.typeName(inferer.functionType(call));
      } catch (const std::bad_alloc&) {
        throw;
      } catch (...) {
        chosen = nullptr;
      }
    }
    const std::string name = editor::written(call.name);
    for (const auto& overload : function->overloads()) {
      std::string line = editor::overloadLabel(catalogue, name, *overload).text;
      if (overload == chosen) {
        answer.details.insert(answer.details.begin(), line + " (chosen)");
      } else {
        answer.details.push_back(std::move(line));
      }
    }
    return answer;
  }
  case Subject::Kind::OutputAlias: {
    const auto& derived = ast::getNodeValue<ast::DerivedColumn>(subject.node);
    const auto at = scopeOf(catalogue, reading, derived.expression);
    if (!at) return std::nullopt;
    answer.kind = Hover::Kind::OutputName;
    answer.range = tokenRange(*site, subject.token);
    answer.type = catalogue.typeName(typeIn(catalogue, *at, derived.expression));
    answer.title = "output column " + editor::written(derived.alias) + ": " + answer.type;
    return answer;
  }
  case Subject::Kind::Expression: {
    const auto at = scopeOf(catalogue, reading, subject.node);
    if (!at) return std::nullopt;
    const auto type = typeIn(catalogue, *at, subject.node);
    if (!type) return std::nullopt;
    answer.kind = Hover::Kind::Expression;
    answer.range = nodeRange(*site, subject.node);
    answer.type = catalogue.typeName(type);
    answer.title = answer.type;
    return answer;
  }
  }
  return std::nullopt;
}

std::optional<SignatureHelp> signatureHelp(const std::string& text, std::size_t offset, const Catalogue& catalogue) {
  offset = std::min(offset, text.size());
  editor::Segment segment = editor::segmentAt(text, offset);
  if (segment.inComment) return std::nullopt;
  const std::size_t cursor = offset - segment.begin;
  const auto scanned = tryTokenPlaces(segment.text);
  if (!scanned) return std::nullopt;
  const std::vector<TokenPlace>& tokens = *scanned;
  std::size_t k = 0; // tokens that end at or before the cursor
  while (k < tokens.size() && tokens[k].begin < cursor) ++k;
  // Outward from the cursor: the first unclosed '(' that follows a function's name.
  std::size_t depth = 0;
  std::size_t commas = 0;
  for (std::size_t i = k; i > 0; --i) {
    const std::uint32_t id = tokens[i - 1].id;
    if (id == ')') {
      ++depth;
    } else if (id == '(' && depth > 0) {
      --depth;
    } else if (id == ',' && depth == 0) {
      ++commas;
    } else if (id == '(') {
      if (tokens[i - 1].end > cursor) continue;
      const std::size_t open = i - 1;
      std::shared_ptr<FunctionInfo> function;
      std::wstring name;
      if (open > 0 && tokens[open - 1].id == T_IDENTIFIER) {
        name = fromUtf8(segment.text.substr(tokens[open - 1].begin, tokens[open - 1].end - tokens[open - 1].begin));
        function = catalogue.function(name);
      }
      if (!function) {
        commas = 0; // a parenthesis of its own: look further out
        continue;
      }
      SignatureHelp help;
      help.function = editor::written(name);
      help.activeParameter = commas;
      std::size_t close = segment.text.size();
      std::size_t level = 0;
      for (std::size_t j = open; j < tokens.size(); ++j) {
        if (tokens[j].id == '(') ++level;
        if (tokens[j].id == ')' && --level == 0) {
          close = tokens[j].end;
          break;
        }
      }
      help.call = {segment.begin + tokens[open - 1].begin, segment.begin + close};
      const auto overloads = function->overloads();
      for (const auto& overload : overloads) {
        const editor::Label label = editor::overloadLabel(catalogue, help.function, *overload);
        CallSignature signature{label.text, {}};
        for (const auto& [b, e] : label.parameters) signature.parameters.push_back({b, e});
        help.signatures.push_back(std::move(signature));
      }
      // The overload the call resolves to; else the first that takes the arguments written.
      bool resolved = false;
      if (const auto reading = Reading::read(segment.text)) {
        const std::size_t nameAt = reading->fromGiven(tokens[open - 1].begin);
        editor::forEachNode(reading->tree(), [&](const ast::Node& node) {
          if (resolved || !ast::nodeIs<ast::Function>(node)) return;
          const SourceRange* range = reading->range(node);
          if (!range || range->beginOffset != nameAt) return;
          const auto at = scopeOf(catalogue, *reading, node);
          if (!at) return;
          TypeInferer inferer(catalogue, *at->scope);
          inferer.setScoping(Scoping::Standard, &catalogue);
          try {
            const auto chosen = inferer.inferFunctionOverload(ast::getNodeValue<ast::Function>(node));
            for (std::size_t s = 0; s < overloads.size(); ++s) {
              if (overloads[s] == chosen) {
                help.activeSignature = s;
                resolved = true;
              }
            }
          } catch (const std::bad_alloc&) {
            throw;
          } catch (...) {
          }
        });
      }
      if (!resolved) {
        for (std::size_t s = 0; s < overloads.size(); ++s) {
          const auto& o = *overloads[s];
          if (o.mVariadic || o.mParameters.size() + o.mOptionalParameters.size() > commas) {
            help.activeSignature = s;
            break;
          }
        }
      }
      return help;
    }
  }
  return std::nullopt;
}

std::optional<Definition> definition(const std::string& text, std::size_t offset, const Catalogue& catalogue) {
  const auto site = siteAt(text, offset);
  if (!site) return std::nullopt;
  const Subject subject = subjectAt(*site);
  const Reading& reading = *site->reading;
  Definition answer;
  answer.origin = tokenRange(*site, subject.token);
  std::optional<std::size_t> target;
  if (subject.kind == Subject::Kind::Qualifier) {
    std::optional<ScopeAt> at;
    if (const DeclaredName* name = declarationOf(catalogue, *site, subject, at)) target = declarationToken(reading, *name);
  } else if (subject.kind == Subject::Kind::Column) {
    const auto at = scopeOf(catalogue, reading, subject.node);
    if (!at) return std::nullopt;
    const auto& reference = ast::getNodeValue<ast::ColumnReference>(subject.node);
    const ColumnInfo column = resolve(*at, reference.table, reference.column);
    if (column.isNull()) return std::nullopt;
    const DeclaredName* supplier = supplierOf(*at, reference.table, column);
    if (reference.table.empty() && isOutput(*at, column) && (!supplier || at->levels.front().outputFirst)) {
      target = outputToken(reading, queryAround(reading, subject.node), reference.column);
    } else if (supplier && ast::nodeIs<ast::DerivedTable>(supplier->declaration)) {
      target = outputToken(reading, supplier->declaration, column.canonicalName());
    }
  }
  if (!target) return std::nullopt;
  answer.target = tokenRange(*site, *target);
  return answer;
}

std::vector<TextRange> occurrences(const std::string& text, std::size_t offset, const Catalogue& catalogue) {
  std::vector<TextRange> found;
  const auto site = siteAt(text, offset);
  if (!site) return found;
  const Subject subject = subjectAt(*site);
  const Reading& reading = *site->reading;
  if (subject.kind == Subject::Kind::Qualifier || subject.kind == Subject::Kind::Table ||
      subject.kind == Subject::Kind::DerivedAlias) {
    std::optional<ScopeAt> at;
    const DeclaredName* name = declarationOf(catalogue, *site, subject, at);
    if (!name) return found;
    const ast::Node declaration = name->declaration;
    const std::wstring key = normalized(name->name);
    if (const auto token = declarationToken(reading, *name)) found.push_back(tokenRange(*site, *token));
    std::vector<ast::Node> uses;
    editor::forEachNode(reading.tree(), [&](const ast::Node& node) {
      if ((ast::nodeIs<ast::ColumnReference>(node) && normalized(ast::getNodeValue<ast::ColumnReference>(node).table) == key) ||
          (ast::nodeIs<ast::QualifiedAsterisk>(node) && normalized(ast::getNodeValue<ast::QualifiedAsterisk>(node).table) == key)) {
        uses.push_back(node);
      }
    });
    const auto scopes = scopesAt(catalogue, catalogue, reading.tree(), uses);
    for (std::size_t i = 0; i < uses.size(); ++i) {
      if (!scopes[i]) continue;
      const DeclaredName* meant = editor::declaredName(scopes[i]->levels, name->name);
      if (!meant || meant->declaration.mImpl != declaration.mImpl) continue;
      const auto [first, last] = tokensOf(reading, uses[i]);
      if (first < last) found.push_back(tokenRange(*site, first));
    }
  } else if (subject.kind == Subject::Kind::OutputAlias ||
             (subject.kind == Subject::Kind::Column &&
              ast::getNodeValue<ast::ColumnReference>(subject.node).table.empty())) {
    // An output name: its select item's alias and the uses that mean that item.
    const ast::Node query = queryAround(reading, subject.node);
    if (query.isNull()) return found;
    std::wstring alias;
    ast::Node item;
    const std::wstring key = subject.kind == Subject::Kind::OutputAlias
                                 ? normalized(ast::getNodeValue<ast::DerivedColumn>(subject.node).alias)
                                 : normalized(ast::getNodeValue<ast::ColumnReference>(subject.node).column);
    for (const ast::Node& candidate : ast::getNodeValue<ast::QuerySpecification>(query).selectList) {
      if (ast::nodeIs<ast::DerivedColumn>(candidate) &&
          normalized(ast::getNodeValue<ast::DerivedColumn>(candidate).alias) == key && !key.empty()) {
        item = candidate;
        alias = ast::getNodeValue<ast::DerivedColumn>(candidate).alias;
        break;
      }
    }
    if (item.isNull()) return found;
    std::vector<ast::Node> uses;
    editor::forEachNode(query, [&](const ast::Node& node) {
      if (ast::nodeIs<ast::ColumnReference>(node) && ast::getNodeValue<ast::ColumnReference>(node).table.empty() &&
          normalized(ast::getNodeValue<ast::ColumnReference>(node).column) == key) {
        uses.push_back(node);
      }
    });
    const auto scopes = scopesAt(catalogue, catalogue, reading.tree(), uses);
    bool subjectCounts = subject.kind == Subject::Kind::OutputAlias;
    for (std::size_t i = 0; i < uses.size(); ++i) {
      if (!scopes[i] || scopes[i]->levels.empty() || scopes[i]->levels.front().output.empty()) continue;
      const ColumnInfo column = resolve(*scopes[i], {}, alias);
      if (!isOutput(*scopes[i], column) || (supplierOf(*scopes[i], {}, column) && !scopes[i]->levels.front().outputFirst)) {
        continue;
      }
      if (queryAround(reading, uses[i]).mImpl != query.mImpl) continue;
      const auto [first, last] = tokensOf(reading, uses[i]);
      if (first < last) found.push_back(tokenRange(*site, first));
      if (uses[i].mImpl == subject.node.mImpl) subjectCounts = true;
    }
    if (!subjectCounts) return {};
    if (const auto token = nameToken(reading, item, alias)) found.push_back(tokenRange(*site, *token));
  }
  std::sort(found.begin(), found.end(), [](const TextRange& a, const TextRange& b) { return a.begin < b.begin; });
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

const char* hoverKindName(Hover::Kind kind) {
  switch (kind) {
  case Hover::Kind::Column: return "column";
  case Hover::Kind::Table: return "table";
  case Hover::Kind::Function: return "function";
  case Hover::Kind::Expression: return "expression";
  case Hover::Kind::OutputName: return "output name";
  }
  return "expression";
}

} // namespace velmor::sql::host
