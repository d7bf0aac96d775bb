// Unknown and doubled table qualifiers, gathered into a list or thrown.
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/validation/QualifierChecks.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

#include <functional>

namespace velmor::sql::validation_test {
namespace {

using Errors = std::vector<std::string>;

// The sample host, counting its table lookups.
class CountingHost : public sample::SampleHost {
public:
  std::shared_ptr<TableInfo> table(const std::wstring& name) const override {
    ++mLookups;
    return SampleHost::table(name);
  }
  mutable int mLookups = 0;
};

struct UnknownCase {
  const char* name;
  std::vector<Node> nodes;
  Errors errors;
};

const UnknownCase unknownCases[] = {
    {"a host table not in FROM", {item(col(L"roads", L"id")), star(L"COUNTRIES")}, {}},
    {"an alias known to the scope", {item(col(L"x", L"id")), star(L"X")}, {}},
    {"unknown to both", {item(col(L"nosuch", L"a")), star(L"NoSuch")}, {"UnknownTableReference(nosuch)", "UnknownTableReference(NoSuch)"}},
    {"every use is reported", {item(op(Op::Plus, {col(L"q", L"a"), col(L"q", L"b")}))}, {"UnknownTableReference(q)", "UnknownTableReference(q)"}},
    {"the name under an alias is not the table's",
     {item(col(L"cities", L"id")), item(col(L"city", L"id"))}, {"UnknownTableReference(city)"}},
    {"nested queries are searched",
     {item(Select({item(col(L"inner", L"a"))}).from({tbl(L"roads", L"inner")}).node())}, {"UnknownTableReference(inner)"}},
};

class UnknownQualifiers : public testing::TestWithParam<UnknownCase> {};

TEST_P(UnknownQualifiers, Gathered) {
  const sample::SampleHost host;
  const TableInfoScope scope(ast::TablePrimary{L"x", L""}, host.table(L"cities"));
  UnknownTableQualifiersVisitor visitor(host, &scope);
  std::vector<std::shared_ptr<SqlError>> errors;
  visitor.setTargetErrorList(&errors);
  for (const auto& node : GetParam().nodes) visitor.visitAllNodes(node);
  EXPECT_EQ(describe(errors), GetParam().errors) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(QualifierChecks, UnknownQualifiers, testing::ValuesIn(unknownCases),
                         [](const auto& info) { return "case" + std::to_string(info.index); });

TEST(QualifierChecks, UnknownQualifiersWithoutScopeOrList) {
  CountingHost host;
  UnknownTableQualifiersVisitor visitor(host, nullptr);
  visitor.visitAllNodes(item(op(Op::Plus, {col(L"a"), col(L"cities", L"id")})));
  EXPECT_EQ(host.mLookups, 1);  // the unqualified column costs no host call

  try {
    visitor.visitAllNodes(item(op(Op::Plus, {col(L"p", L"a"), col(L"q", L"b")})));
    FAIL() << "no throw";
  } catch (const UnknownTableReference& error) {
    EXPECT_EQ(error.tableName, L"q");  // the last operand is walked first
  }
  std::vector<std::shared_ptr<SqlError>> errors;
  visitor.setTargetErrorList(&errors);
  visitor.handleTableName(L"p");
  visitor.handleTableName(L"");
  visitor.setTargetErrorList(nullptr);
  EXPECT_THROW(visitor.handleTableName(L"p"), UnknownTableReference);
  EXPECT_EQ(describe(errors), Errors{"UnknownTableReference(p)"});
}

struct AmbiguousCase {
  const char* name;
  std::vector<QueryExpressionNode> from;
  Errors errors;
};

const AmbiguousCase ambiguousCases[] = {
    {"the same table twice", {tbl(L"t"), tbl(L"t")}, {"AmbiguousTablesReference(t)"}},
    {"case is ignored", {tbl(L"t"), tbl(L"T")}, {"AmbiguousTablesReference(T)"}},
    {"brackets are ignored", {tbl(L"[t]"), tbl(L"t")}, {"AmbiguousTablesReference(t)"}},
    {"the second word as written", {tbl(L"t"), tbl(L"[T]")}, {"AmbiguousTablesReference([T])"}},
    {"one table under two aliases", {tbl(L"t", L"a"), tbl(L"t", L"b")}, {}},
    {"two tables under one alias", {tbl(L"t", L"a"), tbl(L"u", L"a")}, {}},
    {"the same alias in two cases", {tbl(L"t", L"a"), tbl(L"t", L"A")}, {"AmbiguousTablesReference(t)"}},
    {"no alias is the table's own name", {tbl(L"t"), tbl(L"t", L"t")}, {"AmbiguousTablesReference(t)"}},
    {"each repetition", {tbl(L"t"), tbl(L"t"), tbl(L"t")}, {"AmbiguousTablesReference(t)", "AmbiguousTablesReference(t)"}},
    {"a derived table's FROM counts",
     {tbl(L"t"), Select({star()}).from({tbl(L"t")}).derived(L"d")}, {"AmbiguousTablesReference(t)"}},
    {"both sides of a join",
     {ast::makeNode<QueryExpressionNode>(ast::JoinNode{ast::Join::Inner, tbl(L"t", L"x"), tbl(L"t", L"x"), ast::makeEmptyNode()})},
     {"AmbiguousTablesReference(t)"}},
};

class AmbiguousQualifiers : public testing::TestWithParam<AmbiguousCase> {};

TEST_P(AmbiguousQualifiers, Gathered) {
  AmbiguousTableQualifiersVisitor visitor;
  std::vector<std::shared_ptr<SqlError>> errors;
  visitor.setTargetErrorList(&errors);
  for (const auto& reference : GetParam().from) visitor.visitAllNodes(reference);
  EXPECT_EQ(describe(errors), GetParam().errors) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(QualifierChecks, AmbiguousQualifiers, testing::ValuesIn(ambiguousCases),
                         [](const auto& info) { return "case" + std::to_string(info.index); });

TEST(QualifierChecks, AmbiguousWithoutListThrowsByValue) {
  AmbiguousTableQualifiersVisitor visitor;
  visitor.visitAllNodes(tbl(L"t", L"a"));
  EXPECT_THROW(visitor.visitAllNodes(tbl(L"[T]", L"[A]")), AmbiguousTablesReference);
  // The set is left as it was: the pair is still known.
  EXPECT_THROW(visitor.visitAllNodes(tbl(L"t", L"a")), AmbiguousTablesReference);
  EXPECT_NO_THROW(visitor.visitAllNodes(tbl(L"t", L"b")));
}

} // namespace
} // namespace velmor::sql::validation_test
