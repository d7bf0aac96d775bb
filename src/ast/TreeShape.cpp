// Deep comparison of trees: each node's own values as a short text, its children compared in
// place, with a work list instead of recursion.
#include <velmor/sql/ast/TreeShape.h>
#include <velmor/sql/ast/Traversal.h>

#include <string>
#include <vector>

namespace velmor::sql::ast {
namespace {

// A node's record kind and the values it holds besides child nodes, as one text. Optional and
// listed children are counted here, so that children in other fields cannot pass for them.
class OwnValues final : public NodeVisitor {
public:
  std::wstring text;

  void visit(const ColumnReference& r) override { put(L"ColumnReference", {r.table, r.column}); }
  void visit(const ContextuallyTypedValueSpecification& r) override {
    put(L"ContextuallyTypedValueSpecification", {number(static_cast<int>(r.value))});
  }
  void visit(const DeleteStatement& r) override { put(L"DeleteStatement", {r.table, present(r.where)}); }
  void visit(const DerivedColumn& r) override { put(L"DerivedColumn", {r.alias}); }
  void visit(const DerivedTable& r) override { put(L"DerivedTable", {r.alias}); }
  void visit(const ExplicitTable& r) override { put(L"ExplicitTable", {r.table}); }
  void visit(const FromSource& r) override {
    put(L"FromSource", {joined(r.columns), number(static_cast<int>(r.overriding)), present(r.source)});
  }
  void visit(const Function& r) override {
    put(L"Function", {r.name, number(r.asterisk), number(static_cast<int>(r.setQuantifier)), number(r.arguments.size())});
  }
  void visit(const InsertStatement& r) override { put(L"InsertStatement", {r.table}); }
  void visit(const IntoClause& r) override { put(L"IntoClause", {r.table, number(r.noSelect)}); }
  void visit(const JoinCondition&) override { put(L"JoinCondition", {}); }
  void visit(const JoinNode& r) override { put(L"JoinNode", {number(static_cast<int>(r.type)), present(r.specification)}); }
  void visit(const LimitSpecification& r) override {
    put(L"LimitSpecification", {r.limit.text, number(static_cast<int>(r.limit.kind)), r.offset.text,
                                number(static_cast<int>(r.offset.kind))});
  }
  void visit(const NamedColumnsJoin& r) override { put(L"NamedColumnsJoin", {joined(r.columns)}); }
  void visit(const Number& r) override { put(L"Number", {r.text, number(static_cast<int>(r.kind))}); }
  void visit(const Operation& r) override {
    put(L"Operation", {number(static_cast<int>(r.operation)), number(static_cast<int>(r.quantifier)),
                       number(r.operands.size())});
  }
  void visit(const QualifiedAsterisk& r) override { put(L"QualifiedAsterisk", {r.table}); }
  void visit(const QueryOperation& r) override {
    put(L"QueryOperation", {number(static_cast<int>(r.operation)), number(r.distinct)});
  }
  void visit(const QuerySpecification& r) override {
    put(L"QuerySpecification",
        {number(r.distinct), number(r.selectList.size()), present(r.into), number(r.from.size()), present(r.where),
         number(r.groupBy.size()), number(r.orderBy.size()), present(r.having), r.limit.limit.text, r.limit.offset.text});
  }
  void visit(const Range&) override { put(L"Range", {}); }
  void visit(const RowValueExpression& r) override { put(L"RowValueExpression", {number(r.values.size())}); }
  void visit(const RowValueExpressionList& r) override { put(L"RowValueExpressionList", {number(r.rows.size())}); }
  void visit(const SetClause& r) override { put(L"SetClause", {r.column}); }
  void visit(const SortSpecification& r) override {
    put(L"SortSpecification", {number(r.ascending), number(static_cast<int>(r.nulls))});
  }
  void visit(const String& r) override { put(L"String", {r.value.value()}); }
  void visit(const TablePrimary& r) override { put(L"TablePrimary", {r.table, r.alias}); }
  void visit(const TernaryLogicNode& r) override { put(L"TernaryLogicNode", {number(static_cast<int>(r.value.value()))}); }
  void visit(const UpdateStatement& r) override {
    put(L"UpdateStatement", {r.table, number(r.clauses.size()), present(r.where)});
  }
  void faultAction() override {}

private:
  // Each value goes behind a separator with its length, so that neighbours cannot run together.
  void put(const wchar_t* kind, std::initializer_list<std::wstring> values) {
    text = kind;
    for (const std::wstring& value : values) {
      text += L'\x1F';
      text += std::to_wstring(value.size());
      text += L':';
      text += value;
    }
  }
  static std::wstring number(std::size_t n) { return std::to_wstring(n); }
  static std::wstring number(int n) { return std::to_wstring(n); }
  static std::wstring number(bool flag) { return flag ? L"1" : L"0"; }
  static std::wstring present(const Node& node) { return node.isNull() ? L"-" : L"+"; }
  static std::wstring joined(const std::vector<std::wstring>& names) {
    std::wstring all;
    for (const std::wstring& name : names) all += std::to_wstring(name.size()) + L':' + name;
    return all;
  }
};

std::wstring ownValues(const Node& node) {
  if (node.isNull()) return L"null";
  OwnValues values;
  node.accept(values);
  return std::move(values.text);
}

// An AND or OR without quantifier over two operands: a link of a chain that may be regrouped.
bool isChainLink(const Node& node, OperationCode code) {
  if (node.isNull() || !nodeIs<Operation>(node)) return false;
  const Operation& operation = getNodeValue<Operation>(node);
  return operation.operation == code && operation.quantifier == Quantifier::None && operation.operands.size() == 2;
}

std::optional<OperationCode> chainCode(const Node& node) {
  for (const OperationCode code : {OperationCode::And, OperationCode::Or}) {
    if (isChainLink(node, code)) return code;
  }
  return std::nullopt;
}

// The operands of a chain in text order, with the links of the same operator opened up.
std::vector<Node> chainOperands(const Node& head, OperationCode code) {
  std::vector<Node> operands;
  std::vector<Node> pending{head};
  while (!pending.empty()) {
    Node node = std::move(pending.back());
    pending.pop_back();
    if (!isChainLink(node, code)) {
      operands.push_back(std::move(node));
      continue;
    }
    const auto& links = getNodeValue<Operation>(node).operands;
    for (std::size_t i = links.size(); i-- > 0;) pending.push_back(links[i]);
  }
  return operands;
}

} // namespace

std::optional<std::pair<Node, Node>> firstDifference(const Node& left, const Node& right, Grouping grouping) {
  const bool associative = grouping == Grouping::Associative;
  // A chain's own values name its operator and its operand count once flattened.
  const auto own = [associative](const Node& node) {
    if (associative) {
      if (const auto code = chainCode(node))
        return L"Chain\x1F" + std::to_wstring(static_cast<int>(*code)) + L'\x1F' +
               std::to_wstring(chainOperands(node, *code).size());
    }
    return ownValues(node);
  };
  const auto children = [associative](const Node& node) {
    if (associative) {
      if (const auto code = chainCode(node)) return chainOperands(node, *code);
    }
    return ast::children(node);
  };
  const auto alike = [&own](const Node& a, const Node& b) {
    return a.mImpl == b.mImpl || (a.isNull() && b.isNull()) || (a.isNull() == b.isNull() && own(a) == own(b));
  };
  if (!alike(left, right)) return std::pair{left, right};
  std::vector<std::pair<Node, Node>> pending{{left, right}};
  while (!pending.empty()) {
    auto [a, b] = std::move(pending.back());
    pending.pop_back();
    if (a.mImpl == b.mImpl || a.isNull()) continue;
    std::vector<Node> childrenOfA = children(a), childrenOfB = children(b);
    // Lists of children of different lengths are told apart by the own values already.
    if (childrenOfA.size() != childrenOfB.size()) return std::pair{a, b};
    for (std::size_t i = 0; i < childrenOfA.size(); ++i) {
      if (!alike(childrenOfA[i], childrenOfB[i])) return std::pair{a, b};
    }
    // Pushed last to first, so that the first child comes off first.
    for (std::size_t i = childrenOfA.size(); i-- > 0;) pending.emplace_back(std::move(childrenOfA[i]), std::move(childrenOfB[i]));
  }
  return std::nullopt;
}

bool sameTree(const Node& left, const Node& right) { return !firstDifference(left, right).has_value(); }

} // namespace velmor::sql::ast
