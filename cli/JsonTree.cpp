// The JSON form of a tree, one visitor slot per record kind of Records.def.
#include "JsonTree.h"

#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/ast/EnumNames.h>

#include <string>
#include <vector>

namespace velmor::cli {

using namespace sql::host; // type names and UTF-8
namespace {

using Json = nlohmann::ordered_json;
namespace ast = sql::ast;

Json toJson(const ast::Node& node);

Json toJson(const std::wstring& text) { return toUtf8(text); }
Json toJson(bool flag) { return flag; }
Json toJson(const sql::ASTStringValue& value) { return toUtf8(value.value()); }
template <class E>
  requires std::is_enum_v<E>
Json toJson(E value) {
  return ast::enumName(value);
}
Json toJson(sql::TernaryLogic value) { return ast::enumName(value.value()); }

// Each record's fields in their order; a record held by value is printed where it stands.
// The members are reserved first: the object's vector of (const key, value) pairs would copy,
// not move, on growing, and so copy each nested subtree once per field, recursively.
#define VELMOR_FIELD(field) object[#field] = toJson(record.field);
#define VELMOR_RECORD_FIELDS(Name, FIELDS)                   \
  Json toJson(const ast::Name& record) {                     \
    Json object = Json::object({{"node", #Name}});           \
    object.get_ref<Json::object_t&>().reserve(kMostFields);  \
    FIELDS                                                   \
    return object;                                           \
  }

// "node" and the nine fields of QuerySpecification, the widest record.
constexpr std::size_t kMostFields = 10;

template <class T>
Json toJson(const std::vector<T>& list);

VELMOR_RECORD_FIELDS(ColumnReference, VELMOR_FIELD(table) VELMOR_FIELD(column))
VELMOR_RECORD_FIELDS(ContextuallyTypedValueSpecification, VELMOR_FIELD(value))
VELMOR_RECORD_FIELDS(DeleteStatement, VELMOR_FIELD(table) VELMOR_FIELD(where))
VELMOR_RECORD_FIELDS(DerivedColumn, VELMOR_FIELD(expression) VELMOR_FIELD(alias))
VELMOR_RECORD_FIELDS(DerivedTable, VELMOR_FIELD(query) VELMOR_FIELD(alias))
VELMOR_RECORD_FIELDS(ExplicitTable, VELMOR_FIELD(table))
VELMOR_RECORD_FIELDS(FromSource, VELMOR_FIELD(columns) VELMOR_FIELD(overriding) VELMOR_FIELD(source))
VELMOR_RECORD_FIELDS(Function,
                     VELMOR_FIELD(name) VELMOR_FIELD(asterisk) VELMOR_FIELD(setQuantifier) VELMOR_FIELD(arguments))
VELMOR_RECORD_FIELDS(InsertStatement, VELMOR_FIELD(table) VELMOR_FIELD(source))
VELMOR_RECORD_FIELDS(IntoClause, VELMOR_FIELD(table) VELMOR_FIELD(noSelect))
VELMOR_RECORD_FIELDS(JoinCondition, VELMOR_FIELD(condition))
VELMOR_RECORD_FIELDS(JoinNode, VELMOR_FIELD(type) VELMOR_FIELD(left) VELMOR_FIELD(right) VELMOR_FIELD(specification))
VELMOR_RECORD_FIELDS(Number, VELMOR_FIELD(kind) VELMOR_FIELD(text))
VELMOR_RECORD_FIELDS(LimitSpecification, VELMOR_FIELD(limit) VELMOR_FIELD(offset))
VELMOR_RECORD_FIELDS(NamedColumnsJoin, VELMOR_FIELD(columns))
VELMOR_RECORD_FIELDS(Operation, VELMOR_FIELD(operation) VELMOR_FIELD(quantifier) VELMOR_FIELD(operands))
VELMOR_RECORD_FIELDS(QualifiedAsterisk, VELMOR_FIELD(table))
VELMOR_RECORD_FIELDS(QueryOperation, VELMOR_FIELD(operation) VELMOR_FIELD(distinct) VELMOR_FIELD(left) VELMOR_FIELD(right))
VELMOR_RECORD_FIELDS(SortSpecification, VELMOR_FIELD(key) VELMOR_FIELD(ascending) VELMOR_FIELD(nulls))
VELMOR_RECORD_FIELDS(QuerySpecification,
                     VELMOR_FIELD(distinct) VELMOR_FIELD(selectList) VELMOR_FIELD(into) VELMOR_FIELD(from)
                         VELMOR_FIELD(where) VELMOR_FIELD(groupBy) VELMOR_FIELD(orderBy) VELMOR_FIELD(having)
                             VELMOR_FIELD(limit))
VELMOR_RECORD_FIELDS(Range, VELMOR_FIELD(lower) VELMOR_FIELD(upper))
VELMOR_RECORD_FIELDS(RowValueExpression, VELMOR_FIELD(values))
VELMOR_RECORD_FIELDS(RowValueExpressionList, VELMOR_FIELD(rows))
VELMOR_RECORD_FIELDS(SetClause, VELMOR_FIELD(column) VELMOR_FIELD(value))
VELMOR_RECORD_FIELDS(String, VELMOR_FIELD(value))
VELMOR_RECORD_FIELDS(TablePrimary, VELMOR_FIELD(table) VELMOR_FIELD(alias))
VELMOR_RECORD_FIELDS(TernaryLogicNode, VELMOR_FIELD(value))
VELMOR_RECORD_FIELDS(UpdateStatement, VELMOR_FIELD(table) VELMOR_FIELD(clauses) VELMOR_FIELD(where))
#undef VELMOR_RECORD_FIELDS
#undef VELMOR_FIELD

template <class T>
Json toJson(const std::vector<T>& list) {
  Json array = Json::array();
  for (const T& element : list) array.push_back(toJson(element));
  return array;
}

// Every record kind of the list gets its slot; the slot prints the record's fields.
class JsonVisitor final : public ast::NodeVisitor {
public:
#define VELMOR_SQL_RECORD(Name, isExpr) \
  void visit(const ast::Name& record) override { mResult = toJson(record); }
#include <velmor/sql/ast/Records.def>

  Json mResult;
};

Json toJson(const ast::Node& node) {
  if (node.isNull()) return nullptr;
  JsonVisitor visitor;
  node.accept(visitor);
  return std::move(visitor.mResult);
}

} // namespace

nlohmann::ordered_json treeToJson(const sql::ast::Node& node) { return toJson(node); }

void writeIndented(std::ostream& out, const nlohmann::ordered_json& json) {
  using Json = nlohmann::ordered_json;
  const auto scalar = [](const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); };
  // The containers being written, each with the next member to write.
  struct Open {
    const Json* value;
    Json::const_iterator next;
  };
  std::vector<Open> open;
  const auto write = [&](const Json& value) {
    if (value.is_structured() && !value.empty()) {
      out << (value.is_object() ? "{\n" : "[\n");
      open.push_back({&value, value.cbegin()});
    } else {
      out << scalar(value);
    }
  };
  write(json);
  while (!open.empty()) {
    Open& top = open.back();
    const std::size_t depth = open.size();
    if (top.next == top.value->cend()) {
      out << '\n' << std::string(2 * (depth - 1), ' ') << (top.value->is_object() ? '}' : ']');
      open.pop_back();
      continue;
    }
    if (top.next != top.value->cbegin()) out << ",\n";
    out << std::string(2 * depth, ' ');
    if (top.value->is_object()) out << scalar(Json(top.next.key())) << ": ";
    const Json& member = *top.next;
    ++top.next;
    write(member);  // may grow `open`: `top` is not used after this
  }
}

} // namespace velmor::cli
