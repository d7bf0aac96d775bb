// Release of tree nodes without recursion: children wait on a per-thread list, not the stack.
#include <velmor/sql/ast/AST.h>

#include <cstddef>
#include <memory>
#include <new>
#include <vector>

namespace velmor::sql::ast::detail {
namespace {

// The nodes waiting for release, last in first out. The first few hundred stay in raw room on
// the stack, made and destroyed one by one: most trees never need more, and then a release
// allocates nothing and touches no more room than it uses.
class Pending {
public:
  Pending() = default;
  Pending(const Pending&) = delete;
  Pending& operator=(const Pending&) = delete;
  ~Pending() {
    while (mCount > 0) slot(--mCount)->~Handle();
  }

  bool empty() const noexcept { return mCount == 0 && mSpill.empty(); }
  // Throws std::bad_alloc only when the inline slots are full and the spill cannot grow.
  void push(std::shared_ptr<NodeInterface>&& node) {
    if (mCount < kInline) {
      new (slot(mCount)) Handle(std::move(node));
      ++mCount;
    } else {
      mSpill.push_back(std::move(node));
    }
  }
  // Spilled nodes came last (the inline slots were full), so they go first.
  std::shared_ptr<NodeInterface> pop() noexcept {
    if (mSpill.empty()) {
      Handle* last = slot(--mCount);
      std::shared_ptr<NodeInterface> node = std::move(*last);
      last->~Handle();
      return node;
    }
    std::shared_ptr<NodeInterface> node = std::move(mSpill.back());
    mSpill.pop_back();
    return node;
  }

private:
  using Handle = std::shared_ptr<NodeInterface>;
  static constexpr std::size_t kInline = 256;
  Handle* slot(std::size_t index) noexcept { return std::launder(reinterpret_cast<Handle*>(mInline) + index); }

  alignas(Handle) unsigned char mInline[kInline * sizeof(Handle)];
  std::size_t mCount = 0;
  std::vector<Handle> mSpill;
};

// The list of the release running on this thread, or null when none runs. A plain pointer: it
// needs no constructor or destructor, so it is safe to use while other thread-locals die.
// Initial-exec, as it is read for every node released.
[[gnu::tls_model("initial-exec")]] thread_local Pending* tPending = nullptr;

// Calls f on every handle field of a record (not the records held by value that own none).
// Leaves are listed one by one, so that a record kind added without a rule fails to compile.
#define VELMOR_SQL_LEAF(Name)                                                                      \
  template <class F>                                                                               \
  void forEachHandle(Name&, F&&) {}
VELMOR_SQL_LEAF(ColumnReference)
VELMOR_SQL_LEAF(ContextuallyTypedValueSpecification)
VELMOR_SQL_LEAF(ExplicitTable)
VELMOR_SQL_LEAF(IntoClause)
VELMOR_SQL_LEAF(LimitSpecification)
VELMOR_SQL_LEAF(NamedColumnsJoin)
VELMOR_SQL_LEAF(Number)
VELMOR_SQL_LEAF(QualifiedAsterisk)
VELMOR_SQL_LEAF(String)
VELMOR_SQL_LEAF(TablePrimary)
VELMOR_SQL_LEAF(TernaryLogicNode)
#undef VELMOR_SQL_LEAF

template <class H, class F>
void forAll(std::vector<H>& handles, F& f) {
  for (auto& handle : handles) f(handle);
}

template <class F>
void forEachHandle(DeleteStatement& r, F&& f) { f(r.where); }
template <class F>
void forEachHandle(DerivedColumn& r, F&& f) { f(r.expression); }
template <class F>
void forEachHandle(DerivedTable& r, F&& f) { f(r.query); }
template <class F>
void forEachHandle(FromSource& r, F&& f) { f(r.source); }
template <class F>
void forEachHandle(Function& r, F&& f) { forAll(r.arguments, f); }
template <class F>
void forEachHandle(InsertStatement& r, F&& f) { f(r.source.source); }
template <class F>
void forEachHandle(JoinCondition& r, F&& f) { f(r.condition); }
template <class F>
void forEachHandle(JoinNode& r, F&& f) {
  f(r.left);
  f(r.right);
  f(r.specification);
}
template <class F>
void forEachHandle(Operation& r, F&& f) { forAll(r.operands, f); }
template <class F>
void forEachHandle(QueryOperation& r, F&& f) {
  f(r.left);
  f(r.right);
}
template <class F>
void forEachHandle(QuerySpecification& r, F&& f) {
  forAll(r.selectList, f);
  f(r.into);
  forAll(r.from, f);
  f(r.where);
  forAll(r.groupBy, f);
  for (auto& item : r.orderBy) f(item.key);
  f(r.having);
}
template <class F>
void forEachHandle(Range& r, F&& f) {
  f(r.lower);
  f(r.upper);
}
template <class F>
void forEachHandle(RowValueExpression& r, F&& f) { forAll(r.values, f); }
template <class F>
void forEachHandle(RowValueExpressionList& r, F&& f) { forAll(r.rows, f); }
template <class F>
void forEachHandle(SetClause& r, F&& f) { f(r.value); }
template <class F>
void forEachHandle(SortSpecification& r, F&& f) { f(r.key); }
template <class F>
void forEachHandle(UpdateStatement& r, F&& f) {
  for (auto& clause : r.clauses) f(clause.value);
  f(r.where);
}

// Only a child whose last handle this is would die with the record; a shared one merely loses
// a count. Should another thread drop its handle meanwhile, that child dies in the record's
// member destructors and starts a release of its own, still without recursion.
bool dying(const Node& handle) noexcept { return handle.mImpl && handle.mImpl.use_count() == 1; }

// A failed allocation leaves the child where it is: it then dies recursively, as it would have
// without this list, rather than ending the process from a destructor.
void defer(Pending& pending, Node& handle) noexcept {
  if (!dying(handle)) return;
  try {
    pending.push(std::move(handle.mImpl));
  } catch (...) {
  }
}

// How deep the releases running on this thread are nested. Near the root of a tree (where
// nearly every tree ends) children die in place, each in its parent's release: cheaper than
// the list. Deeper, the list takes over, so that the stack never holds more than this many.
constexpr int kReleaseInPlace = 32;
[[gnu::tls_model("initial-exec")]] thread_local int tReleaseDepth = 0;

template <class T>
void release(T& record) noexcept {
  if (Pending* pending = tPending) {
    forEachHandle(record, [pending](Node& handle) { defer(*pending, handle); });
    return;
  }
  if (tReleaseDepth < kReleaseInPlace) {
    ++tReleaseDepth;
    forEachHandle(record, [](Node& handle) { handle.mImpl.reset(); });
    --tReleaseDepth;
    return;
  }
  bool any = false;
  forEachHandle(record, [&any](Node& handle) { any = any || dying(handle); });
  if (!any) return;

  // The outermost release: each node taken off the list adds its own dying children to it.
  Pending pending;
  tPending = &pending;
  forEachHandle(record, [&pending](Node& handle) { defer(pending, handle); });
  while (!pending.empty()) pending.pop();
  tPending = nullptr;
}

} // namespace

#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void releaseChildren(Name& record) noexcept { release(record); }
#include <velmor/sql/ast/Records.def>

} // namespace velmor::sql::ast::detail
