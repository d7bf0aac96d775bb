// The allocations a parse makes, a statement of a corpus on average, beside the fewest it can
// make with the public records: one block for each text longer than a std::wstring keeps in
// place (three units) and one for each list that is not empty; nodes come from the parser's
// pools. The second pass is counted, when the pools are warm.
//   build/bench/ParseAllocations ../shared/bench/corpus-sample.sql
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <string>
#include <vector>

namespace {

std::size_t gAllocations = 0;
bool gCounting = false;

} // namespace

void* operator new(std::size_t bytes) {
  if (gCounting) ++gAllocations;
  if (void* block = std::malloc(bytes != 0 ? bytes : 1)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

using namespace velmor::sql;

// The blocks that the texts and lists of one node's record need at the least.
class Needed final : public ast::NodeVisitor {
public:
  void visit(const ast::ColumnReference& r) override { text(r.table); text(r.column); }
  void visit(const ast::DeleteStatement& r) override { text(r.table); }
  void visit(const ast::DerivedColumn& r) override { text(r.alias); }
  void visit(const ast::DerivedTable& r) override { text(r.alias); }
  void visit(const ast::ExplicitTable& r) override { text(r.table); }
  void visit(const ast::FromSource& r) override { names(r.columns); }
  void visit(const ast::Function& r) override { text(r.name); list(r.arguments); }
  void visit(const ast::InsertStatement& r) override { text(r.table); names(r.source.columns); }
  void visit(const ast::IntoClause& r) override { text(r.table); }
  void visit(const ast::NamedColumnsJoin& r) override { names(r.columns); }
  void visit(const ast::Number& r) override { text(r.text); }
  void visit(const ast::Operation& r) override { list(r.operands); }
  void visit(const ast::QualifiedAsterisk& r) override { text(r.table); }
  void visit(const ast::QuerySpecification& r) override {
    list(r.selectList); list(r.from); list(r.groupBy); list(r.orderBy);
    text(r.limit.limit.text); text(r.limit.offset.text);
  }
  void visit(const ast::RowValueExpression& r) override { list(r.values); }
  void visit(const ast::RowValueExpressionList& r) override { list(r.rows); }
  void visit(const ast::String& r) override { text(r.value.toString()); }
  void visit(const ast::TablePrimary& r) override { text(r.table); text(r.alias); }
  void visit(const ast::UpdateStatement& r) override {
    text(r.table); list(r.clauses);
    for (const auto& clause : r.clauses) text(clause.column);
  }
  void faultAction() override {}

  std::size_t blocks = 0;

private:
  void text(const std::wstring& units) { blocks += units.size() > 3 ? 1 : 0; }
  template <class List>
  void list(const List& items) { blocks += items.empty() ? 0 : 1; }
  void names(const std::vector<std::wstring>& items) {
    list(items);
    for (const auto& item : items) text(item);
  }
};

void count(const ast::Node& node, Needed& needed, std::size_t& nodes) {
  if (node.isNull()) return;
  ++nodes;
  node.accept(needed);
  for (const ast::Node& child : ast::children(node)) count(child, needed, nodes);
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: ParseAllocations FILE\n");
    return 2;
  }
  std::ifstream in(argv[1]);
  std::vector<std::string> statements;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) statements.push_back(line);
  }
  if (statements.empty()) return 2;
  const ParseContext context;
  SqlParser parser(context);
  Needed needed;
  std::size_t nodes = 0;
  for (int pass = 0; pass < 2; ++pass) {
    gAllocations = 0;
    needed.blocks = 0;
    nodes = 0;
    for (const std::string& statement : statements) {
      gCounting = true;
      parser.parse(statement);
      gCounting = false;
      count(parser.result, needed, nodes);
    }
  }
  const double n = static_cast<double>(statements.size());
  std::printf("%zu statements: %.1f allocations a parse, %.1f at the least with the public records, %.1f nodes\n",
              statements.size(), static_cast<double>(gAllocations) / n, static_cast<double>(needed.blocks) / n,
              static_cast<double>(nodes) / n);
  return 0;
}
