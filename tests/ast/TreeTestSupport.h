// Hand-built trees and a labelling walker shared by the syntax-tree tests.
#pragma once

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/Traversal.h>

#include <string>
#include <vector>

namespace velmor::sql::ast::test {

inline std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

inline ExpressionNode col(const wchar_t* name) {
  return makeNode<ExpressionNode>(ColumnReference{L"", name});
}
inline QueryExpressionNode table(const wchar_t* name) {
  return makeNode<QueryExpressionNode>(TablePrimary{name, L""});
}
inline Node selected(ExpressionNode value) { return makeNode(DerivedColumn{std::move(value), L""}); }

// A node's label: the name for named leaves, the text of a number, the kind name otherwise.
template <class T>
std::string labelOf(const T&) { return recordName<T>(); }
inline std::string labelOf(const ColumnReference& r) { return narrow(r.column); }
inline std::string labelOf(const TablePrimary& r) { return narrow(r.table); }
inline std::string labelOf(const DerivedTable& r) { return narrow(r.alias); }
inline std::string labelOf(const Number& r) { return narrow(r.text); }
inline std::string labelOf(const QuerySpecification& r) {
  return r.distinct ? "QuerySpecification distinct" : "QuerySpecification";
}

// Labels the one node it visits; "null" for an EmptyNode, which reaches no slot.
class Labeler final : public NodeVisitor {
public:
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void visit(const Name& record) override { mLabel = labelOf(record); }
#include <velmor/sql/ast/Records.def>
  std::string mLabel = "null";
};

inline std::string label(const Node& node) {
  Labeler labeler;
  node.accept(labeler);
  return labeler.mLabel;
}

inline std::vector<std::string> labels(const std::vector<Node>& nodes) {
  std::vector<std::string> out;
  for (const auto& node : nodes) out.push_back(label(node));
  return out;
}

// Records the labels of a walk; skips or stops at the node with a given label.
class Recorder : public TraversalVisitor {
public:
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void visit(const Name& record) override { seen(labelOf(record)); }
#include <velmor/sql/ast/Records.def>
  void faultAction() override { ++mFaults; }

  virtual void seen(const std::string& label) {
    mSeen.push_back(label);
    if (label == mSkipAt) skipCurrentNodeChildren();
    if (label == mStopAt) stopTraversal();
  }

  std::vector<std::string> mSeen;
  std::string mSkipAt;
  std::string mStopAt;
  int mFaults = 0;
};

} // namespace velmor::sql::ast::test
