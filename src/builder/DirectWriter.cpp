// The SQL writer's direct path: a tree's canonical text written front to back into one buffer,
// for the library's own builders, whose visits, hooks and text functions nobody overrides.
//
// Every text below is the one the fragment walk of the other files in this folder makes; the
// golden tests write each statement both ways. Where that walk would report a fault (a message
// on std::cerr, an assertion, an exception), or meet a node of EmptyNode where a record is
// due, this path gives up before anything is observable and the walk writes the tree instead.
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>

#include "builder/BuildHelpers.h"

#include <velmor/sql/builder/Keywords.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace velmor::sql {

namespace {

using builder::Kind;
using builder::kindOf;
using builder::recordOf;

// Thrown where the fragment walk would report something; caught in writeDirectly.
struct GiveUp {};

// Units of buffer a builder keeps between calls: a buffer grown for an unusually long text
// goes with it.
constexpr std::size_t kKeptUnits = std::size_t{1} << 16;

// A growing text over a buffer that the builder keeps: its size is the capacity in use, so
// that no unit is initialised twice; the text is copied out once at the end.
class Output {
public:
  explicit Output(std::wstring& storage) : mStorage(storage) {
    if (mStorage.size() < kInitialSize) mStorage.resize(kInitialSize);
    mBegin = mStorage.data();
    mEnd = mBegin + mStorage.size();
    mNext = mBegin;
  }

  void put(wchar_t unit) {
    if (mNext == mEnd) grow(1);
    *mNext++ = unit;
  }
  void put(const wchar_t* units, std::size_t count) {
    if (static_cast<std::size_t>(mEnd - mNext) < count) grow(count);
    copy(mNext, units, count);
    mNext += count;
  }
  void put(std::wstring_view text) { put(text.data(), text.size()); }
  void put(const std::wstring& text) { put(text.data(), text.size()); }
  template <std::size_t N>
  void put(const wchar_t (&literal)[N]) {
    put(literal, N - 1);
  }
  void repeat(wchar_t unit, std::size_t count) {
    if (static_cast<std::size_t>(mEnd - mNext) < count) grow(count);
    std::fill_n(mNext, count, unit);
    mNext += count;
  }

  std::size_t size() const { return static_cast<std::size_t>(mNext - mBegin); }
  std::wstring_view since(std::size_t start) const { return {mBegin + start, size() - start}; }
  void truncate(std::size_t size) { mNext = mBegin + size; }
  std::wstring text() const { return std::wstring(mBegin, mNext); }

private:
  static constexpr std::size_t kInitialSize = 1024;

  // Most texts are names and keywords of a few units: two overlapping fixed-size moves within
  // the source's bounds are cheaper than a call.
  static void copy(wchar_t* to, const wchar_t* from, std::size_t count) {
    char* target = reinterpret_cast<char*>(to);
    const char* source = reinterpret_cast<const char*>(from);
    const std::size_t bytes = count * sizeof(wchar_t);
    if (bytes >= 16 && bytes <= 128) {
      // Whole 16-byte moves, the last one ending where the text ends.
      for (std::size_t offset = 0; offset + 16 < bytes; offset += 16) std::memcpy(target + offset, source + offset, 16);
      std::memcpy(target + bytes - 16, source + bytes - 16, 16);
    } else if (bytes >= 8 && bytes < 16) {
      std::memcpy(target, source, 8);
      std::memcpy(target + bytes - 8, source + bytes - 8, 8);
    } else if (bytes == 4) {
      std::memcpy(target, source, 4);
    } else if (bytes != 0) {
      std::memcpy(target, source, bytes);
    }
  }

  [[gnu::noinline]] void grow(std::size_t count) {
    const std::size_t used = size();
    mStorage.resize(std::max(2 * mStorage.size(), used + count));
    mBegin = mStorage.data();
    mEnd = mBegin + mStorage.size();
    mNext = mBegin + used;
  }

  std::wstring& mStorage;
  wchar_t* mBegin;
  wchar_t* mEnd;
  wchar_t* mNext;
};

bool isPlusOrMinus(OperationCode code) { return code == OperationCode::Plus || code == OperationCode::Minus; }

// The unary operators that write their operand behind them.
bool writesPrefix(const ast::Operation& op) {
  const OperationCode code = op.operation;
  return op.operands.size() == 1 && (code == OperationCode::Not || code == OperationCode::Exists ||
                                     code == OperationCode::Unique || isPlusOrMinus(code));
}

// The binary operators written "left OP [quantifier] right".
bool writesInfix(const ast::Operation& op) {
  return op.operands.size() == 2 && op.operation != OperationCode::Case && op.operation != OperationCode::Cast;
}

// The trees of a corpus written one after another have left the caches. Asking for the
// records of all children of a node, and the texts of a record, before the first is needed
// lets their fetches overlap instead of following one another. A record mostly spans two
// lines of the cache; both are asked for.
void prefetch(const ast::Node& node) {
  const auto record = reinterpret_cast<std::uintptr_t>(node.mImpl.get());
  if (record == 0) return;
  __builtin_prefetch(reinterpret_cast<const void*>(record));
  __builtin_prefetch(reinterpret_cast<const void*>(record + 64));
}
template <class Nodes>
void prefetchAll(const Nodes& nodes) {
  for (const auto& node : nodes) prefetch(node);
}
void prefetch(const std::wstring& text) { __builtin_prefetch(text.data()); }

// The query that `query` selects from when its whole FROM is one derived table over a query.
const ast::QuerySpecification* innerQuery(const ast::QuerySpecification& query) {
  if (query.from.size() != 1 || kindOf(query.from[0]) != Kind::DerivedTable) return nullptr;
  const auto& derived = recordOf<ast::DerivedTable>(query.from[0]);
  if (kindOf(derived.query) != Kind::QuerySpecification) return nullptr;
  return &recordOf<ast::QuerySpecification>(derived.query);
}

class DirectWriter final : public ast::NodeVisitor {
public:
  DirectWriter(const StringBuildContext* context, std::wstring& buffer,
               std::vector<std::pair<const ast::Operation*, bool>>& links,
               std::vector<const ast::QuerySpecification*>& queries, const std::wstring* oldName,
               const std::wstring* newName)
      : mContext(context), mOut(buffer), mLinks(links), mQueries(queries),
        mOldName(oldName), mNewName(newName), mKeywords(Keywords::instance()) {}

  // False for a node of EmptyNode, which has no text.
  bool writeTop(const ast::Node& node) {
    mVisited = false;
    node.accept(*this);
    return mVisited;
  }
  std::wstring text() const { return mOut.text(); }

  using ast::NodeVisitor::visit;
  void visit(const ast::ColumnReference& record) override {
    mVisited = true;
    prefetch(record.table);
    prefetch(record.column);
    const std::wstring& table = renamed(record.table);
    if (!table.empty()) {
      name(table);
      mOut.put(L'.');
    }
    name(record.column);
  }
  void visit(const ast::ContextuallyTypedValueSpecification& record) override {
    mVisited = true;
    switch (record.value) {
    case ast::Value::Null: mOut.put(L"NULL"); return;
    case ast::Value::Array: mOut.put(L"ARRAY()"); return;
    case ast::Value::Multiset: mOut.put(L"MULTISET()"); return;
    case ast::Value::Default: mOut.put(L"DEFAULT"); return;
    }
    throw GiveUp{};
  }
  void visit(const ast::DeleteStatement& record) override {
    mVisited = true;
    mOut.put(L"DELETE FROM ");
    name(record.table);
    if (!record.where.isNull()) {
      mOut.put(L" WHERE ");
      write(record.where);
    }
  }
  void visit(const ast::DerivedColumn& record) override {
    mVisited = true;
    writeValue(record.expression);
    if (!record.alias.empty()) {
      mOut.put(L" AS ");
      name(record.alias);
    }
  }
  void visit(const ast::DerivedTable& record) override {
    mVisited = true;
    mOut.put(L'(');
    write(record.query);
    mOut.put(L") AS ");
    name(record.alias);
  }
  void visit(const ast::ExplicitTable& record) override {
    mVisited = true;
    mOut.put(L"TABLE ");
    name(record.table);
  }
  void visit(const ast::FromSource& record) override {
    mVisited = true;
    if (record.defaultValues()) {
      mOut.put(L"DEFAULT VALUES");
      return;
    }
    if (!record.columns.empty()) columns(record.columns);
    std::wstring_view overriding;
    switch (record.overriding) {
    case ast::Overriding::None: break;
    case ast::Overriding::User: overriding = L"OVERRIDING USER VALUE"; break;
    case ast::Overriding::System: overriding = L"OVERRIDING SYSTEM VALUE"; break;
    }
    if (!record.columns.empty() && !overriding.empty()) mOut.put(L' ');
    mOut.put(overriding);
    if (!record.columns.empty() || !overriding.empty()) mOut.put(L' ');
    // A query stays bare; a row list is what VALUES introduces.
    if (kindOf(record.source) == Kind::RowValueExpressionList) mOut.put(L"VALUES ");
    write(record.source);
  }
  void visit(const ast::Function& record) override {
    mVisited = true;
    prefetchAll(record.arguments);
    mOut.put(record.name);
    if (record.asterisk) {
      mOut.put(L"(*)");
      return;
    }
    if (record.arguments.empty()) {
      mOut.put(L"()");
      return;
    }
    mOut.put(L'(');
    if (record.setQuantifier == ast::SetQuantifier::Distinct) mOut.put(L"DISTINCT ");
    for (std::size_t i = 0; i < record.arguments.size(); ++i) {
      if (i != 0) mOut.put(L", ");
      writeValue(record.arguments[i]);
    }
    mOut.put(L')');
  }
  void visit(const ast::InsertStatement& record) override {
    mVisited = true;
    mOut.put(L"INSERT INTO ");
    name(record.table);
    mOut.put(L' ');
    visit(record.source);
  }
  void visit(const ast::IntoClause& record) override {
    mVisited = true;
    mOut.put(L"INTO ");
    name(record.table);
    if (record.noSelect) mOut.put(L" NOSELECT");
  }
  void visit(const ast::JoinCondition& record) override {
    mVisited = true;
    mOut.put(L"ON ");
    write(record.condition);
  }
  void visit(const ast::JoinNode& record) override {
    mVisited = true;
    // The words between the sides; the walk reports a join type out of range.
    std::wstring_view words;
    switch (record.type) {
    case ast::Join::Cross: words = L" CROSS JOIN "; break;
    case ast::Join::Inner: words = L" JOIN "; break;
    case ast::Join::LeftOuter: words = L" LEFT OUTER JOIN "; break;
    case ast::Join::RightOuter: words = L" RIGHT OUTER JOIN "; break;
    case ast::Join::FullOuter: words = L" FULL OUTER JOIN "; break;
    }
    if (words.empty()) throw GiveUp{};
    // A join on the left reads flat; anything but a plain table on the right is grouped.
    writeGrouped(record.left, SqlStringBuilder::needParantheses(record.left, false));
    if (record.type != ast::Join::Cross && record.specification.isNull()) mOut.put(L" NATURAL");
    mOut.put(words);
    writeGrouped(record.right, SqlStringBuilder::needParantheses(record.right, true));
    if (record.type != ast::Join::Cross && !record.specification.isNull()) {
      mOut.put(L' ');
      write(record.specification);
    }
  }
  void visit(const ast::NamedColumnsJoin& record) override {
    mVisited = true;
    mOut.put(L"USING ");
    columns(record.columns);
  }
  void visit(const ast::Number& record) override {
    mVisited = true;
    mOut.put(record.text);
  }
  void visit(const ast::Operation& record) override {
    mVisited = true;
    operation(record);
  }
  void visit(const ast::QualifiedAsterisk& record) override {
    mVisited = true;
    if (!record.table.empty()) {
      name(record.table);
      mOut.put(L'.');
    }
    mOut.put(L'*');
  }
  void visit(const ast::QueryOperation& record) override {
    mVisited = true;
    std::wstring_view words;
    switch (record.operation) {
    case ast::QueryOperationCode::Union: words = L" UNION "; break;
    case ast::QueryOperationCode::Except: words = L" EXCEPT "; break;
    case ast::QueryOperationCode::Intersect: words = L" INTERSECT "; break;
    }
    if (words.empty()) throw GiveUp{};
    writeGrouped(record.left, SqlStringBuilder::needParantheses(record, record.left));
    mOut.put(words);
    if (!record.distinct) mOut.put(L"ALL ");
    writeGrouped(record.right, SqlStringBuilder::needParantheses(record, record.right));
  }
  void visit(const ast::QuerySpecification& record) override;
  void visit(const ast::RowValueExpression& record) override {
    mVisited = true;
    if (record.values.empty()) throw GiveUp{};
    prefetchAll(record.values);
    mOut.put(L'(');
    writeList(record.values);
    mOut.put(L')');
  }
  void visit(const ast::RowValueExpressionList& record) override {
    mVisited = true;
    // Each row brings its own parentheses; the list itself has none.
    if (record.rows.empty()) throw GiveUp{};
    prefetchAll(record.rows);
    writeList(record.rows);
  }
  void visit(const ast::SetClause& clause) override {
    mVisited = true;
    if (clause.column.empty()) throw GiveUp{};
    mOut.put(clause.column);
    mOut.put(L" = ");
    writeValue(clause.value);
  }
  void visit(const ast::SortSpecification& record) override {
    mVisited = true;
    write(record.key);
    if (!record.ascending) mOut.put(L" DESC");
    switch (record.nulls) {
    case ast::NullOrdering::Unspecified: break;
    case ast::NullOrdering::First: mOut.put(L" NULLS FIRST"); break;
    case ast::NullOrdering::Last: mOut.put(L" NULLS LAST"); break;
    }
  }
  void visit(const ast::String& record) override {
    mVisited = true;
    string(record.value.value());
  }
  void visit(const ast::TablePrimary& record) override {
    mVisited = true;
    prefetch(record.alias);
    name(renamed(record.table));
    if (!record.alias.empty()) {
      mOut.put(L" AS ");
      name(record.alias);
    }
  }
  void visit(const ast::TernaryLogicNode& record) override {
    mVisited = true;
    // Any number that is neither true nor false reads as unknown.
    const TernaryLogic::Value value = record.value.value();
    if (value == TernaryLogic::True)
      mOut.put(L"TRUE");
    else if (value == TernaryLogic::False)
      mOut.put(L"FALSE");
    else
      mOut.put(L"UNKNOWN");
  }
  void visit(const ast::UpdateStatement& record) override {
    mVisited = true;
    if (record.clauses.empty()) throw GiveUp{};
    mOut.put(L"UPDATE ");
    name(record.table);
    mOut.put(L" SET ");
    for (std::size_t i = 0; i < record.clauses.size(); ++i) {
      if (i != 0) mOut.put(L", ");
      visit(record.clauses[i]);
    }
    if (!record.where.isNull()) {
      mOut.put(L" WHERE ");
      write(record.where);
    }
  }
  // The kinds the builder has no visit for (a node of LimitSpecification).
  void faultAction() override { throw GiveUp{}; }

private:
  // A node whose record has a text; one of EmptyNode here would leave the walk's stack short.
  void write(const ast::Node& node) {
    mVisited = false;
    // Node::accept looks at the stack on every level, to go on on a fresh segment when little
    // is left; a look every eighth level is as safe, since seven levels between two looks use
    // a small part of the room it keeps in reserve.
    if ((++mLevel & 7u) != 0 && node.mImpl)
      node.mImpl->accept(*this);
    else
      node.accept(*this);
    --mLevel;
    if (!mVisited) throw GiveUp{};
  }
  void writeGrouped(const ast::Node& node, bool grouped) {
    if (!grouped) {
      write(node);
      return;
    }
    mOut.put(L'(');
    write(node);
    mOut.put(L')');
  }

  // A node's kind and, for an operation, its record: what the parentheses depend on.
  struct Probe {
    Kind kind = Kind::None;
    const ast::Operation* operation = nullptr;
  };
  // The texts of a leaf are asked for as soon as its kind is known, so that their fetches
  // overlap the work before the leaf is written.
  static Probe probe(const ast::Node& node) {
    const Kind kind = kindOf(node);
    if (kind == Kind::Operation) return {kind, &recordOf<ast::Operation>(node)};
    if (kind == Kind::ColumnReference) {
      const auto& column = recordOf<ast::ColumnReference>(node);
      prefetch(column.table);
      prefetch(column.column);
    } else if (kind == Kind::Number) {
      prefetch(recordOf<ast::Number>(node).text);
    } else if (kind == Kind::String) {
      prefetch(recordOf<ast::String>(node).value.value());
    }
    return {kind, nullptr};
  }
  // A node whose kind is known: a leaf is written at once, without a second dispatch; every
  // other record through the node, whose accept watches the stack of the recursion.
  void writeKnown(const ast::Node& node, Kind kind) {
    switch (kind) {
    case Kind::ColumnReference: visit(recordOf<ast::ColumnReference>(node)); return;
    case Kind::Number: visit(recordOf<ast::Number>(node)); return;
    case Kind::String: visit(recordOf<ast::String>(node)); return;
    case Kind::TernaryLogicNode: visit(recordOf<ast::TernaryLogicNode>(node)); return;
    case Kind::ContextuallyTypedValueSpecification:
      visit(recordOf<ast::ContextuallyTypedValueSpecification>(node));
      return;
    case Kind::QualifiedAsterisk: visit(recordOf<ast::QualifiedAsterisk>(node)); return;
    case Kind::TablePrimary: visit(recordOf<ast::TablePrimary>(node)); return;
    case Kind::None: throw GiveUp{};
    case Kind::DeleteStatement:
    case Kind::DerivedColumn:
    case Kind::DerivedTable:
    case Kind::ExplicitTable:
    case Kind::FromSource:
    case Kind::Function:
    case Kind::InsertStatement:
    case Kind::IntoClause:
    case Kind::JoinCondition:
    case Kind::JoinNode:
    case Kind::LimitSpecification:
    case Kind::NamedColumnsJoin:
    case Kind::Operation:
    case Kind::QueryOperation:
    case Kind::QuerySpecification:
    case Kind::Range:
    case Kind::RowValueExpression:
    case Kind::RowValueExpressionList:
    case Kind::SetClause:
    case Kind::SortSpecification:
    case Kind::UpdateStatement: break;
    }
    write(node);
  }
  // The items of a list of mostly leaves (values, rows, grouping keys), separated by commas:
  // their kinds are learned, and their texts asked for, a few items ahead of writing them, so
  // that the fetches overlap.
  template <class Nodes>
  void writeList(const Nodes& nodes) {
    constexpr std::size_t kAhead = 8;
    Kind kinds[kAhead];
    for (std::size_t start = 0; start < nodes.size(); start += kAhead) {
      const std::size_t end = std::min(nodes.size(), start + kAhead);
      for (std::size_t i = start; i < end; ++i) kinds[i - start] = probe(nodes[i]).kind;
      for (std::size_t i = start; i < end; ++i) {
        if (i != 0) mOut.put(L", ");
        writeKnown(nodes[i], kinds[i - start]);
      }
    }
  }
  void writeOperand(const ast::Operation& op, bool right, const ast::Node& node, Probe operand) {
    const bool grouped = builder::groupsOperand(op, right, operand.kind, operand.operation, mContext);
    if (grouped) mOut.put(L'(');
    writeKnown(node, operand.kind);
    if (grouped) mOut.put(L')');
  }
  // A select-list expression, routine argument or SET value: grouped when it is a query.
  void writeValue(const ast::Node& node) {
    const Kind kind = kindOf(node);
    if (kind == Kind::QuerySpecification) {
      mOut.put(L'(');
      write(node);
      mOut.put(L')');
      return;
    }
    writeKnown(node, kind);
  }

  const std::wstring& renamed(const std::wstring& table) const {
    return mOldName != nullptr && table == *mOldName ? *mNewName : table;
  }
  void name(const std::wstring& word) {
    if (mKeywords.isOf(word)) {
      mOut.put(L'[');
      mOut.put(word);
      mOut.put(L']');
    } else {
      mOut.put(word);
    }
  }
  // Column lists are written as they stand, without bracketing reserved words.
  void columns(const std::vector<std::wstring>& names) {
    mOut.put(L'(');
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (i != 0) mOut.put(L", ");
      mOut.put(names[i]);
    }
    mOut.put(L')');
  }
  void string(const std::wstring& value);
  void unsignedNumber(std::uint64_t value) {
    std::array<wchar_t, 24> room;
    const std::wstring_view digits = builder::decimalDigits(value, room);
    mOut.put(digits.data(), digits.size());
  }

  void operatorText(OperationCode code) {
    const auto number = static_cast<std::int32_t>(code);
    if (number > builder::kLastBuiltinOperation) {
      if (mContext == nullptr) throw GiveUp{};
      mOut.put(mContext->operatorToString(code));
      return;
    }
    if (number < 1) throw GiveUp{};
    mOut.put(builder::kOperationTexts[static_cast<std::size_t>(number)]);
  }
  void quantifierText(ast::Quantifier quantifier) {
    switch (quantifier) {
    case ast::Quantifier::None: return;
    case ast::Quantifier::All: mOut.put(L"ALL "); return;
    case ast::Quantifier::Any: mOut.put(L"ANY "); return;
    }
    throw GiveUp{};
  }
  void operation(const ast::Operation& op);
  void prefixChain(const ast::Operation& op);
  void infixChain(const ast::Operation& op);
  void caseOperation(const std::vector<ast::ExpressionNode>& operands);

  void selectHead(const ast::QuerySpecification& query);
  void clausesAfterFrom(const ast::QuerySpecification& query);

  const StringBuildContext* mContext;
  Output mOut;
  std::vector<std::pair<const ast::Operation*, bool>>& mLinks;
  std::vector<const ast::QuerySpecification*>& mQueries;
  const std::wstring* mOldName;
  const std::wstring* mNewName;
  const Keywords& mKeywords;
  bool mVisited = false;
  unsigned mLevel = 0;
};

void DirectWriter::string(const std::wstring& value) {
  // The value's escapes (as ASTStringValue::toString writes them), inside double quotes, with
  // the quote of an escaped quote doubled as escape() doubles every quote: \"" for each ".
  mOut.put(L'"');
  const std::size_t length = value.size();
  std::size_t run = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const wchar_t unit = value[i];
    std::wstring_view escaped;
    switch (unit) {
    case 0: escaped = std::wstring_view(L"\\0", 2); break;
    case 8: escaped = L"\\b"; break;
    case 9: escaped = L"\\t"; break;
    case 10: escaped = L"\\n"; break;
    case 13: escaped = L"\\r"; break;
    case 22: escaped = L"\\Z"; break;
    case L'"': escaped = L"\\\"\""; break;
    case L'\\':
      // An escaped LIKE wildcard was kept as a pair and goes out unchanged.
      if (i + 1 < length && (value[i + 1] == L'%' || value[i + 1] == L'_')) {
        ++i;
        continue;
      }
      escaped = L"\\\\";
      break;
    default: continue;
    }
    mOut.put(value.data() + run, i - run);
    mOut.put(escaped);
    run = i + 1;
  }
  mOut.put(value.data() + run, length - run);
  mOut.put(L'"');
}

void DirectWriter::operation(const ast::Operation& op) {
  prefetchAll(op.operands);
  if (op.operation == OperationCode::Case) {
    caseOperation(op.operands);
    return;
  }
  if (writesPrefix(op)) {
    prefixChain(op);
    return;
  }
  if (writesInfix(op)) {
    infixChain(op);
    return;
  }
  // Left: unary operators the walk reports, CAST, and the ternary ones (BETWEEN). A CAST of
  // three operands visits a third that it does not write, which only the walk can mirror.
  if (op.operands.size() < 2 || (op.operation == OperationCode::Cast && op.operands.size() > 2)) throw GiveUp{};
  const Probe left = probe(op.operands[0]);
  const Probe right = probe(op.operands[1]);
  if (op.operation == OperationCode::Cast) {
    mOut.put(L"CAST(");
    writeOperand(op, false, op.operands[0], left);
    mOut.put(L" AS ");
    writeOperand(op, true, op.operands[1], right);
    mOut.put(L')');
    return;
  }
  writeOperand(op, false, op.operands[0], left);
  mOut.put(L' ');
  operatorText(op.operation);
  mOut.put(L' ');
  quantifierText(op.quantifier);
  writeOperand(op, true, op.operands[1], right);
  // The upper bound of BETWEEN is always grouped.
  mOut.put(L" AND (");
  write(op.operands[2]);
  mOut.put(L')');
}

void DirectWriter::prefixChain(const ast::Operation& op) {
  // Signs and their openings down the chain of prefix operators, the innermost operand, then
  // all the closings: no recursion however long the chain.
  std::size_t closing = 0;
  const ast::Operation* link = &op;
  for (;;) {
    operatorText(link->operation);
    if (!isPlusOrMinus(link->operation)) mOut.put(L' ');
    const ast::ExpressionNode& operand = link->operands[0];
    const Probe inner = probe(operand);
    if (builder::groupsOperand(*link, true, inner.kind, inner.operation, mContext)) {
      mOut.put(L'(');
      ++closing;
    }
    if (inner.operation == nullptr || !writesPrefix(*inner.operation)) {
      writeKnown(operand, inner.kind);
      break;
    }
    link = inner.operation;
  }
  mOut.repeat(L')', closing);
}

void DirectWriter::infixChain(const ast::Operation& op) {
  // The chain of binary operators each in the left operand of the one above (a OR b OR c):
  // the openings of every grouped left side stand together in front, then the leftmost
  // operand, then each link's closing, operator and right operand from the bottom up. The
  // links wait on the shared work list; nested chains stack above them.
  const std::size_t base = mLinks.size();
  std::size_t opening = 0;
  const ast::Operation* link = &op;
  Probe left;
  for (;;) {
    prefetch(link->operands[1]);
    left = probe(link->operands[0]);
    const bool grouped = builder::groupsOperand(*link, false, left.kind, left.operation, mContext);
    mLinks.emplace_back(link, grouped);
    opening += grouped;
    if (left.operation == nullptr || !writesInfix(*left.operation)) break;
    link = left.operation;
  }
  mOut.repeat(L'(', opening);
  writeKnown(link->operands[0], left.kind);
  for (std::size_t i = mLinks.size(); i-- > base;) {
    const auto [upper, grouped] = mLinks[i];
    if (grouped) mOut.put(L')');
    mOut.put(L' ');
    operatorText(upper->operation);
    mOut.put(L' ');
    quantifierText(upper->quantifier);
    const ast::ExpressionNode& right = upper->operands[1];
    writeOperand(*upper, true, right, probe(right));
  }
  mLinks.resize(base);
}

void DirectWriter::caseOperation(const std::vector<ast::ExpressionNode>& operands) {
  const std::size_t count = operands.size();
  if (count < 3) throw GiveUp{};
  mOut.put(L"CASE ");
  // A subject written as the word for true is the stand-in of a CASE without subject.
  const std::size_t subject = mOut.size();
  write(operands[0]);
  if (mOut.since(subject) == L"TRUE")
    mOut.truncate(subject);
  else
    mOut.put(L' ');
  std::size_t i = 1;
  for (; i + 1 < count; i += 2) {
    mOut.put(L"WHEN ");
    write(operands[i]);
    mOut.put(L" THEN ");
    write(operands[i + 1]);
    mOut.put(L' ');
  }
  if (i < count) {
    mOut.put(L"ELSE ");
    write(operands[i]);
    mOut.put(L' ');
  }
  mOut.put(L"END");
}

void DirectWriter::selectHead(const ast::QuerySpecification& query) {
  prefetchAll(query.selectList);
  prefetchAll(query.from);
  prefetch(query.where);
  prefetchAll(query.groupBy);
  prefetch(query.having);
  mOut.put(query.distinct ? std::wstring_view(L"SELECT DISTINCT ") : std::wstring_view(L"SELECT "));
  if (query.selectList.empty()) {
    mOut.put(L'*');
  } else {
    for (std::size_t i = 0; i < query.selectList.size(); ++i) {
      if (i != 0) mOut.put(L", ");
      write(query.selectList[i]);
    }
  }
  mOut.put(L" FROM ");
}

void DirectWriter::clausesAfterFrom(const ast::QuerySpecification& query) {
  if (!query.where.isNull()) {
    mOut.put(L" WHERE ");
    write(query.where);
  }
  if (!query.into.isNull()) {
    mOut.put(L' ');
    write(query.into);
  }
  if (!query.groupBy.empty()) {
    mOut.put(L" GROUP BY ");
    writeList(query.groupBy);
  }
  if (!query.having.isNull()) {
    mOut.put(L" HAVING ");
    write(query.having);
  }
  for (std::size_t i = 0; i < query.orderBy.size(); ++i) {
    mOut.put(i == 0 ? std::wstring_view(L" ORDER BY ") : std::wstring_view(L", "));
    visit(query.orderBy[i]);
  }
  // Values, not literal texts: LIMIT -5 is LIMIT 5, and a 0 drops the clause.
  if (const auto count = query.limit.limit.unsignedInteger(); count != 0) {
    mOut.put(L" LIMIT ");
    unsignedNumber(count);
  }
  if (const auto offset = query.limit.offset.unsignedInteger(); offset != 0) {
    mOut.put(L" OFFSET ");
    unsignedNumber(offset);
  }
}

void DirectWriter::visit(const ast::QuerySpecification& record) {
  mVisited = true;
  // Queries each selecting from a derived table over the next: the heads on the way down, the
  // innermost whole, the tails on the way up, so that the depth of the chain costs no stack.
  const std::size_t base = mQueries.size();
  const ast::QuerySpecification* query = &record;
  while (const ast::QuerySpecification* inner = innerQuery(*query)) {
    selectHead(*query);
    mOut.put(L'(');
    mQueries.push_back(query);
    query = inner;
  }
  selectHead(*query);
  for (std::size_t i = 0; i < query->from.size(); ++i) {
    if (i != 0) mOut.put(L", ");
    writeGrouped(query->from[i], SqlStringBuilder::needParantheses(query->from[i]));
  }
  clausesAfterFrom(*query);
  for (std::size_t i = mQueries.size(); i-- > base;) {
    const ast::QuerySpecification& link = *mQueries[i];
    mOut.put(L") AS ");
    name(recordOf<ast::DerivedTable>(link.from[0]).alias);
    clausesAfterFrom(link);
  }
  mQueries.resize(base);
}

} // namespace

void SqlStringBuilder::giveUp(std::wstring& buffer, std::size_t links, std::size_t queries) {
  if (buffer.size() <= kKeptUnits) mDirectBuffer = std::move(buffer);
  mDirectLinks.resize(links);
  mDirectQueries.resize(queries);
}

bool SqlStringBuilder::writeDirectly(const ast::Node& node, std::wstring& text) {
  const std::wstring* oldName = nullptr;
  const std::wstring* newName = nullptr;
  if (typeid(*this) == typeid(RenameTableBuilder)) {
    const auto& rename = static_cast<const RenameTableBuilder&>(*this);
    oldName = &rename.mOldName;
    newName = &rename.mNewName;
  }
  // The buffer is taken for the walk and given back after it, so that a call made from inside
  // (through the context) finds none and makes its own.
  std::wstring buffer = std::move(mDirectBuffer);
  const std::size_t links = mDirectLinks.size();
  const std::size_t queries = mDirectQueries.size();
  try {
    DirectWriter writer(mContext, buffer, mDirectLinks, mDirectQueries, oldName, newName);
    if (writer.writeTop(node)) text = writer.text();
  } catch (const GiveUp&) {
    giveUp(buffer, links, queries);
    return false;
  } catch (const std::exception&) {
    // Whatever the walk lets through (a handle without a node, a LIMIT beyond 64 bits) it
    // throws again, in its own order.
    giveUp(buffer, links, queries);
    return false;
  }
  if (buffer.size() <= kKeptUnits) mDirectBuffer = std::move(buffer);
  return true;
}

} // namespace velmor::sql
