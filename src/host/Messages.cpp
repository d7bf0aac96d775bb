// Fault messages in words, and the suggestions behind "did you mean".
#include <velmor/sql/host/Messages.h>

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/errors/SemanticErrors.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/types/Strings.h>

#include <algorithm>
#include <cstddef>

namespace velmor::sql::host {

namespace {

const char* operatorText(OperationCode code) {
  switch (static_cast<int>(code)) {
#define VELMOR_SQL_OPERATION(Name, Number, Text)                                                   \
  case Number:                                                                                     \
    return Text;
#include <velmor/sql/ast/OperationCodes.def>
  }
  return "a custom operator";
}

bool isComparison(OperationCode code) {
  switch (code) {
  case OperationCode::Equal:
  case OperationCode::NotEqual:
  case OperationCode::Less:
  case OperationCode::Greater:
  case OperationCode::LessOrEqual:
  case OperationCode::GreaterOrEqual:
  case OperationCode::In:
  case OperationCode::NotIn:
  case OperationCode::Between:
  case OperationCode::NotBetween:
    return true;
  default:
    return false;
  }
}

std::string quote(const std::wstring& name) { return '"' + toUtf8(name) + '"'; }

std::string qualified(const std::wstring& table, const std::wstring& column) {
  return table.empty() ? quote(column) : quote(table + L"." + column);
}

std::string suggestion(const std::wstring& name, const std::vector<std::wstring>* candidates) {
  if (!candidates) return {};
  const std::optional<std::wstring> close = closestName(name, *candidates);
  return close ? " (did you mean " + quote(*close) + "?)" : std::string();
}

std::string typeList(const std::vector<std::shared_ptr<Type>>& types, const Catalogue* catalogue) {
  std::string text = "(";
  for (std::size_t i = 0; i < types.size(); ++i) {
    if (i > 0) text += ", ";
    text += typeWords(types[i], catalogue);
  }
  return text + ')';
}

std::string operatorMessage(OperationCode code, const std::vector<std::shared_ptr<Type>>& types,
                            const Catalogue* catalogue, bool ambiguous) {
  const std::string op = operatorText(code);
  if (ambiguous) return "ambiguous " + op + ": several overloads fit " + typeList(types, catalogue);
  if (types.size() >= 2 && isComparison(code)) {
    std::string text = "cannot compare " + typeWords(types[0], catalogue) + " with " + typeWords(types[1], catalogue);
    if (code != OperationCode::Equal) text += " in " + op;
    return text;
  }
  if (types.size() == 2) {
    return "cannot apply " + op + " to " + typeWords(types[0], catalogue) + " and " + typeWords(types[1], catalogue);
  }
  if (types.size() == 1) return "cannot apply " + op + " to " + typeWords(types[0], catalogue);
  return "no overload of " + op + " takes " + typeList(types, catalogue);
}

// Edits to turn one name into another (insertions, deletions, substitutions, and swaps of two
// neighbours), case ignored; stops counting past `limit`.
std::size_t distance(const std::wstring& a, const std::wstring& b, std::size_t limit) {
  const std::size_t n = a.size();
  const std::size_t m = b.size();
  if ((n > m ? n - m : m - n) > limit) return limit + 1;
  std::vector<std::size_t> before(m + 1), previous(m + 1), current(m + 1);
  for (std::size_t j = 0; j <= m; ++j) previous[j] = j;
  for (std::size_t i = 1; i <= n; ++i) {
    current[0] = i;
    std::size_t best = current[0];
    for (std::size_t j = 1; j <= m; ++j) {
      const std::size_t cost = a[i - 1] == b[j - 1] ? 0 : 1;
      current[j] = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + cost});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        current[j] = std::min(current[j], before[j - 2] + 1);
      }
      best = std::min(best, current[j]);
    }
    if (best > limit) return limit + 1;
    before.swap(previous);
    previous.swap(current);
  }
  return previous[m];
}

void addUnique(std::vector<std::wstring>& list, const std::wstring& name) {
  if (name.empty()) return;
  if (std::find(list.begin(), list.end(), name) == list.end()) list.push_back(name);
}

} // namespace

std::optional<std::wstring> closestName(const std::wstring& name, const std::vector<std::wstring>& candidates) {
  const std::wstring key = normalized(name);
  // One edit turns any short name into another: no guess below three letters.
  if (key.size() < 3) return std::nullopt;
  const std::size_t limit = std::max<std::size_t>(1, key.size() / 3);
  std::optional<std::wstring> best;
  std::size_t bestDistance = limit + 1;
  for (const std::wstring& candidate : candidates) {
    const std::wstring other = normalized(candidate);
    if (other == key) return std::nullopt;
    const std::size_t d = distance(key, other, limit);
    if (d < bestDistance) {
      bestDistance = d;
      best = candidate;
    }
  }
  return best;
}

std::string typeWords(const std::shared_ptr<Type>& type, const Catalogue* catalogue) {
  if (!type) return "unknown";
  return catalogue ? catalogue->typeName(type) : typeText(type);
}

KnownNames knownNames(const ast::Node& statement, const Catalogue* catalogue) {
  KnownNames names;
  if (catalogue) {
    names.tables = catalogue->tableNames();
    names.functions = catalogue->functionNames();
  }
  std::vector<ast::Node> work{statement};
  while (!work.empty()) {
    const ast::Node node = std::move(work.back());
    work.pop_back();
    if (node.isNull()) continue;
    if (ast::nodeIs<ast::TablePrimary>(node)) {
      const auto& primary = ast::getNodeValue<ast::TablePrimary>(node);
      addUnique(names.tables, primary.alias);
      if (catalogue) {
        if (const auto table = catalogue->table(primary.table)) {
          for (std::size_t i = 0; i < table->columnCount(); ++i) {
            for (const std::wstring& column : table->columnByIndex(i).names()) addUnique(names.columns, column);
          }
        }
      }
    } else if (ast::nodeIs<ast::DerivedTable>(node)) {
      addUnique(names.tables, ast::getNodeValue<ast::DerivedTable>(node).alias);
    } else if (ast::nodeIs<ast::DerivedColumn>(node)) {
      addUnique(names.columns, ast::getNodeValue<ast::DerivedColumn>(node).alias);
    } else if (ast::nodeIs<ast::UpdateStatement>(node) || ast::nodeIs<ast::InsertStatement>(node) ||
               ast::nodeIs<ast::DeleteStatement>(node)) {
      std::wstring table;
      if (ast::nodeIs<ast::UpdateStatement>(node)) table = ast::getNodeValue<ast::UpdateStatement>(node).table;
      else if (ast::nodeIs<ast::InsertStatement>(node)) table = ast::getNodeValue<ast::InsertStatement>(node).table;
      else table = ast::getNodeValue<ast::DeleteStatement>(node).table;
      if (catalogue) {
        if (const auto info = catalogue->table(table)) {
          for (std::size_t i = 0; i < info->columnCount(); ++i) {
            for (const std::wstring& column : info->columnByIndex(i).names()) addUnique(names.columns, column);
          }
        }
      }
    }
    for (ast::Node& child : ast::children(node)) work.push_back(std::move(child));
  }
  return names;
}

std::string faultMessage(const SqlError& fault, const Catalogue* catalogue, const KnownNames* names) {
  const auto tables = names ? &names->tables : nullptr;
  const auto columns = names ? &names->columns : nullptr;
  const auto functions = names ? &names->functions : nullptr;
  if (const auto* e = dynamic_cast<const NonExistentTable*>(&fault)) {
    return "unknown table " + quote(e->tableName) + suggestion(e->tableName, tables);
  }
  if (const auto* e = dynamic_cast<const UnknownTableReference*>(&fault)) {
    return "unknown table or alias " + quote(e->tableName) + suggestion(e->tableName, tables);
  }
  if (const auto* e = dynamic_cast<const AmbiguousTablesReference*>(&fault)) {
    return "the name " + quote(e->tableName) + " stands for two tables of one FROM";
  }
  if (const auto* e = dynamic_cast<const UnknownColumnReference*>(&fault)) {
    return "unknown column " + qualified(e->tableName, e->columnName) + suggestion(e->columnName, columns);
  }
  if (const auto* e = dynamic_cast<const AmbiguousColumnReference*>(&fault)) {
    return "column " + qualified(e->tableName, e->columnName) + " is ambiguous: more than one table has it";
  }
  if (const auto* e = dynamic_cast<const UngroupedColumnReference*>(&fault)) {
    return "column " + qualified(e->tableName, e->columnName) +
           " must appear in GROUP BY or be used inside an aggregate function";
  }
  if (const auto* e = dynamic_cast<const UnknownFunction*>(&fault)) {
    return "unknown function " + quote(e->functionName) + suggestion(e->functionName, functions);
  }
  if (const auto* e = dynamic_cast<const NoGoodFunctionCandidate*>(&fault)) {
    return "no overload of " + toUtf8(e->functionName) + " takes " + typeList(e->argumentTypes, catalogue);
  }
  if (const auto* e = dynamic_cast<const AmbiguousFunctionCall*>(&fault)) {
    return "ambiguous call of " + toUtf8(e->functionName) + ": several overloads fit " +
           typeList(e->argumentTypes, catalogue);
  }
  if (const auto* e = dynamic_cast<const NoGoodOperatorOverload*>(&fault)) {
    return operatorMessage(e->operation, e->argumentTypes, catalogue, false);
  }
  if (const auto* e = dynamic_cast<const AmbiguousOperatorCall*>(&fault)) {
    return operatorMessage(e->operation, e->argumentTypes, catalogue, true);
  }
  if (const auto* e = dynamic_cast<const OperatorNotSupported*>(&fault)) {
    return std::string("the catalogue has no operator ") + operatorText(e->operation);
  }
  if (const auto* e = dynamic_cast<const SubqueryNotScalar*>(&fault)) {
    const std::string count = std::to_string(e->columnCount);
    return "a subquery of " + count + (e->columnCount == 1 ? " column" : " columns") +
           " stands where one value is needed";
  }
  if (const auto* e = dynamic_cast<const ColumnCountMismatch*>(&fault)) {
    return "the numbers of columns differ: " + std::to_string(e->expectedCount) + " and " +
           std::to_string(e->actualCount);
  }
  if (const auto* e = dynamic_cast<const SetClauseTypeMismatch*>(&fault)) {
    const std::shared_ptr<Type> target = e->targetTypes.empty() ? nullptr : e->targetTypes.front();
    const std::shared_ptr<Type> source = e->sourceTypes.empty() ? nullptr : e->sourceTypes.front();
    return "cannot assign " + typeWords(source, catalogue) + " to column " + quote(e->columnName) + " of type " +
           typeWords(target, catalogue);
  }
  if (const auto* e = dynamic_cast<const InsertSourceTypeMismatch*>(&fault)) {
    const std::shared_ptr<Type> target = e->targetTypes.empty() ? nullptr : e->targetTypes.front();
    const std::shared_ptr<Type> source = e->sourceTypes.empty() ? nullptr : e->sourceTypes.front();
    return "cannot insert " + typeWords(source, catalogue) + " into column " + quote(e->text) + " of type " +
           typeWords(target, catalogue);
  }
  switch (fault.type()) {
  case SqlErrorType::AggregateInWhereClause:
    return "an aggregate function cannot stand in WHERE";
  case SqlErrorType::ContextQuery:
    return "CAST to a type that cannot be named here";
  default:
    break;
  }
  return faultClassName(fault);
}

} // namespace velmor::sql::host
