// Type inference of expressions, rows and queries, and overload resolution for calls.
#include <velmor/sql/inference/TypeInferer.h>

#include <velmor/sql/Assert.h>
#include <velmor/sql/inference/StringTypeInferer.h>
#include <velmor/sql/errors/SemanticErrors.h>

#include "ast/RecordOf.h"
#include "common/DeepStack.h"
#include "inference/Resolutions.h"
#include "inference/StandardAnalysis.h"
#include "types/OverloadRules.h"

#include <cstddef>
#include <typeinfo>
#include <utility>

namespace velmor::sql {

using type::PlainType;

namespace {

bool isQuery(const ast::Node& node) {
  return ast::detail::holds<ast::QuerySpecification, ast::QueryOperation>(node);
}

// Where a query stands for its rows rather than for one value.
bool takesRows(const ast::Operation& operation, std::size_t position) {
  switch (operation.operation) {
  case OperationCode::In:
  case OperationCode::NotIn:
    return position > 0;
  case OperationCode::Exists:
  case OperationCode::Unique:
    return true;
  default:
    return operation.quantifier != ast::Quantifier::None && position > 0;
  }
}

// Whether every argument is the parameter's type or converts to it, asking the host in order.
// Contextual comes first so that the host is never asked about it.
bool convertsTo(const OverloadInfo& overload, const std::vector<PlainType>& plain, const GlobalTypeContext& global) {
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const PlainType expected = detail::parameterAt(overload, i);
    if (expected == plain[i] || plain[i] == PlainType::Contextual) continue;
    if (!global.canConvert(plain[i], expected)) return false;
  }
  return true;
}

enum class Fit { None, Exact, Converted };

// matches(plain) and, failing that, fitsWithConversion(plain), in one pass: the host is asked
// the same questions in the same order as the two would ask.
Fit fitOf(const OverloadInfo& overload, const std::vector<PlainType>& plain, const GlobalTypeContext& global) {
  if (!detail::takesCount(overload, plain.size())) return Fit::None;
  std::size_t i = 0;
  while (i < plain.size() && detail::parameterAt(overload, i) == plain[i]) ++i;
  if (i == plain.size()) return Fit::Exact;
  return convertsTo(overload, plain, global) ? Fit::Converted : Fit::None;
}

// Types are immutable, so the literals' usual types are made once and shared: a statement
// types dozens of literals. Never released, so that an inferer running while the process ends
// still finds them.
constexpr int kSharedDigits = 40;
constexpr int kSharedLength = 128;

const std::shared_ptr<Type>& sharedPlain(PlainType plain) {
  static const auto* const contextual = new std::shared_ptr<Type>(std::make_shared<Type>(PlainType::Contextual));
  static const auto* const boolean = new std::shared_ptr<Type>(std::make_shared<Type>(PlainType::Boolean));
  return plain == PlainType::Boolean ? *boolean : *contextual;
}

std::shared_ptr<Type> decimalLiteralType(int precision, int scale) {
  static const auto* const shared = [] {
    auto* table = new std::vector<std::shared_ptr<Type>>();
    table->reserve(kSharedDigits * kSharedDigits);
    for (int p = 0; p < kSharedDigits; ++p) {
      for (int s = 0; s < kSharedDigits; ++s) table->push_back(std::make_shared<PrecisionScaleType>(PlainType::Decimal, p, s));
    }
    return table;
  }();
  if (precision >= 0 && precision < kSharedDigits && scale >= 0 && scale < kSharedDigits) {
    return (*shared)[static_cast<std::size_t>(precision * kSharedDigits + scale)];
  }
  return std::make_shared<PrecisionScaleType>(PlainType::Decimal, precision, scale);
}

std::shared_ptr<Type> charLiteralType(std::size_t length) {
  static const auto* const shared = [] {
    auto* table = new std::vector<std::shared_ptr<Type>>();
    table->reserve(kSharedLength);
    for (int n = 0; n < kSharedLength; ++n) table->push_back(std::make_shared<LengthType>(PlainType::Char, n));
    return table;
  }();
  if (length < static_cast<std::size_t>(kSharedLength)) return (*shared)[length];
  return std::make_shared<LengthType>(PlainType::Char, static_cast<int>(length));
}

// The operand types of one call or operation live only while it is typed, and every statement
// types dozens: their lists come from a few kept on the thread instead of a fresh allocation
// each. Kept lists are small by nature (one entry an operand).
constexpr std::size_t kSpareLists = 16;
constexpr std::size_t kSpareListRoom = 64;
// The thread-locals here are read for every operation typed: initial-exec, like the walks'
// ones, so that a shared library reaches them without a call (the module's block is static
// already).
[[gnu::tls_model("initial-exec")]] thread_local bool tSpareListsGone = false;

struct SpareLists {
  std::vector<std::vector<std::shared_ptr<Type>>> lists;
  ~SpareLists() { tSpareListsGone = true; }
};

// Null once the thread's lists died (an inferer run while the thread's objects die).
SpareLists* spareLists() noexcept {
  if (tSpareListsGone) return nullptr;
  [[gnu::tls_model("initial-exec")]] thread_local SpareLists spare;
  return &spare;
}

// An empty list of types, handed back for reuse when it goes.
class TypeList {
public:
  TypeList() noexcept {
    SpareLists* spare = spareLists();
    if (spare && !spare->lists.empty()) {
      m_types = std::move(spare->lists.back());
      spare->lists.pop_back();
    }
  }
  ~TypeList() {
    m_types.clear();
    SpareLists* spare = spareLists();
    if (!spare || m_types.capacity() == 0 || m_types.capacity() > kSpareListRoom) return;
    if (spare->lists.size() >= kSpareLists) return;
    try {
      if (spare->lists.capacity() == 0) spare->lists.reserve(kSpareLists);
      spare->lists.push_back(std::move(m_types));
    } catch (...) {
      // Not kept: the next list is allocated afresh.
    }
  }
  TypeList(const TypeList&) = delete;
  TypeList& operator=(const TypeList&) = delete;

  std::vector<std::shared_ptr<Type>>& operator*() noexcept { return m_types; }

private:
  std::vector<std::shared_ptr<Type>> m_types;
};

// Whether the operands already have the types that `overload` takes, so that they need no
// converted copy: what convertedType would convert them to is the same list.
bool convertsNothing(const std::vector<std::shared_ptr<Type>>& types, const OverloadInfo& overload) {
  for (std::size_t i = 0; i < types.size(); ++i) {
    if (types[i] && types[i]->plainType() != overload.parameterType(i)) return false;
  }
  return true;
}

} // namespace

QueryAnalysis::~QueryAnalysis() = default;

const char* FaultReported::what() const noexcept { return "fault reported"; }

TypeInferer::TypeInferer(const GlobalTypeContext& globalContext, const ScopeTypeContext& scopeContext)
    : mGlobalContext(globalContext), mScopeContext(scopeContext), mResolutions(detail::currentResolutions()) {}

void TypeInferer::setScoping(Scoping scoping, const TableInfoContext* tables) {
  mOwnAnalysis.reset();
  mAnalysis = nullptr;
  if (scoping != Scoping::Standard) return;
  VELMOR_SQL_ASSERT(tables != nullptr, "TypeInferer");
  if (tables == nullptr) return;
  mOwnAnalysis = std::make_shared<detail::StandardAnalysis>(mGlobalContext, *tables, nullptr);
  mAnalysis = mOwnAnalysis.get();
}

void TypeInferer::setQueryAnalysis(QueryAnalysis* analysis) noexcept {
  mOwnAnalysis.reset();
  mAnalysis = analysis;
}

TypeInferer TypeInferer::part() const { return TypeInferer(*this, PartOf{}); }

std::shared_ptr<Type> TypeInferer::typeOfPart(const ast::Node& node) const {
  if (mAnalysis && isQuery(node)) return scalarQueryType(node);
  TypeInferer inferer = part();
  inferer.doVisit(node);
  return std::move(inferer).result();
}

namespace detail {

namespace {
// A plain pointer, so that it needs no guard and stays usable while thread-locals die.
[[gnu::tls_model("initial-exec")]] thread_local Resolutions* tResolutions = nullptr;

// The memo that lasts from check to check on a thread, for one revision of one context. Past
// this many choices it starts again, so that a thread's memo stays small.
constexpr std::size_t kLastingChoices = 4096;
[[gnu::tls_model("initial-exec")]] thread_local bool tLastingGone = false;

struct Lasting {
  const GlobalTypeContext* global = nullptr;
  std::uint64_t revision = 0;
  Resolutions memo;
  ~Lasting() { tLastingGone = true; }
};

// Null once the thread's lasting memo died (a check run while the thread's objects die).
Resolutions* lastingFor(const GlobalTypeContext& global, std::uint64_t revision) noexcept {
  if (tLastingGone) return nullptr;
  [[gnu::tls_model("initial-exec")]] thread_local Lasting lasting;
  if (lasting.global != &global || lasting.revision != revision || lasting.memo.size() >= kLastingChoices) {
    lasting.memo.clear();
    lasting.global = &global;
    lasting.revision = revision;
  }
  return &lasting.memo;
}
} // namespace

Resolutions* currentResolutions() noexcept { return tResolutions; }

TypingMarks& typingMarks() noexcept {
  [[gnu::tls_model("initial-exec")]] thread_local TypingMarks marks;
  return marks;
}

ResolutionScope::ResolutionScope(const GlobalTypeContext& global) noexcept : mPrevious(tResolutions) {
  if (tResolutions) return;
  if (const auto* revised = dynamic_cast<const RevisedContext*>(&global)) {
    if (Resolutions* lasting = lastingFor(global, revised->revision())) {
      tResolutions = lasting;
      return;
    }
  }
  try {
    mOwn = std::make_unique<Resolutions>();
    tResolutions = mOwn.get();
  } catch (...) {
    // Without a memo every question goes to the catalogue again: slower, the same answers.
  }
}

ResolutionScope::~ResolutionScope() { tResolutions = mPrevious; }

} // namespace detail

// ---------------------------------------------------------------------------------------------
// Visits.

void TypeInferer::visit(const ast::ColumnReference& record) {
  mResult = mScopeContext.columnType(record.table, record.column);
  if (!mResult) throw UnknownColumnReference(record.table, record.column);
}

void TypeInferer::visit(const ast::ContextuallyTypedValueSpecification&) {
  mResult = sharedPlain(PlainType::Contextual);
}

void TypeInferer::visit(const ast::DerivedColumn& record) {
  if (mAnalysis) {
    mResult = typeOfPart(record.expression);
    return;
  }
  doVisit(record.expression);
}

void TypeInferer::visit(const ast::Function& record) { mResult = functionType(record); }

void TypeInferer::visit(const ast::Number& record) {
  // Every number literal is a Decimal, whatever its kind; the text is only measured, so the
  // letters and sign of an exponent count as digits.
  const std::wstring& text = record.text;
  const std::size_t point = text.find(L'.');
  const bool hasPoint = point != std::wstring::npos;
  const int precision = static_cast<int>(text.size()) - (hasPoint ? 1 : 0);
  const int scale = hasPoint ? precision - static_cast<int>(point) : 0;
  mResult = decimalLiteralType(precision, scale);
}

void TypeInferer::visit(const ast::Operation& record) { mResult = operatorType(record); }

void TypeInferer::visit(const ast::QualifiedAsterisk& record) {
  const AsteriskColumns pairs = mScopeContext.columnsForAsterisk(record.table);
  std::vector<std::shared_ptr<Type>> types;
  types.reserve(pairs.size());
  for (const AsteriskColumn& pair : pairs) types.push_back(mScopeContext.columnType(pair.first, pair.second));
  mResult = std::make_shared<TupleType>(std::move(types));
}

void TypeInferer::visit(const ast::QuerySpecification& record) {
  if (!mAnalysis) {
    mResult = querySpecificationType(record);
    return;
  }
  // Parts are typed through typeOfPart, which hands the tree's own node over; only a query
  // visited directly by a caller comes here, and goes in a node of its own.
  mResult = scalarQueryType(ast::makeNode(record));
}

void TypeInferer::visit(const ast::QueryOperation& record) {
  if (!mAnalysis) {
    faultAction();
    return;
  }
  mResult = scalarQueryType(ast::makeNode(record));
}

void TypeInferer::visit(const ast::RowValueExpression& record) { mResult = rowValueType(record); }

void TypeInferer::visit(const ast::RowValueExpressionList& record) { mResult = rowsValueType(record); }

void TypeInferer::visit(const ast::String& record) { mResult = stringType(record); }

void TypeInferer::visit(const ast::TernaryLogicNode&) { mResult = sharedPlain(PlainType::Boolean); }

void TypeInferer::faultAction() {
  // A kind typing does not look into.
  detail::TypingMarks& marks = detail::typingMarks();
  ++marks.aggregates;
  ++marks.casts;
  // Types are immutable, so one Fault object serves every inferer.
  static const std::shared_ptr<Type> fault = std::make_shared<Type>(PlainType::Fault);
  mFaultType = fault;
}

// ---------------------------------------------------------------------------------------------
// Entry points.

std::shared_ptr<Type> TypeInferer::inferType(const ast::ExpressionNode& node) { return inferNodeType(node); }

std::shared_ptr<Type> TypeInferer::inferNodeType(const ast::Node& node) {
  if (mAnalysis && isQuery(node)) {
    mResult = scalarQueryType(node);
    return mResult;
  }
  doVisit(node);
  return mResult;
}

std::vector<std::shared_ptr<Type>> TypeInferer::inferTypes(const std::vector<ast::ExpressionNode>& nodes) const {
  std::vector<std::shared_ptr<Type>> types;
  inferTypesInto(nodes, types);
  return types;
}

void TypeInferer::inferTypesInto(const std::vector<ast::ExpressionNode>& nodes,
                                 std::vector<std::shared_ptr<Type>>& types) const {
  types.reserve(nodes.size());
  if (!mAnalysis) {
    for (const ast::ExpressionNode& node : nodes) {
      TypeInferer inferer(mGlobalContext, mScopeContext);
      inferer.doVisit(node);
      types.push_back(std::move(inferer).result());
    }
    return;
  }
  if (!mAnalysis->gathersFaults()) {
    for (const ast::ExpressionNode& node : nodes) types.push_back(typeOfPart(node));
    return;
  }
  // Each part is typed even after one has failed, so that all of its faults are found; the
  // whole then has no type, and no fault of its own is looked for.
  bool failed = false;
  for (const ast::ExpressionNode& node : nodes) {
    try {
      types.push_back(typeOfPart(node));
    } catch (const FaultReported&) {
      failed = true;
    } catch (const SqlError& fault) {
      mAnalysis->reportFault(fault);
      failed = true;
    }
  }
  if (failed) throw FaultReported();
}

std::shared_ptr<Type> TypeInferer::functionType(const ast::Function& function) {
  const std::shared_ptr<FunctionInfo> info = mGlobalContext.function(function.name);
  if (!info) throw UnknownFunction(function.name);
  if (info->kind() == FunctionKind::Aggregate) ++detail::typingMarks().aggregates;
  TypeList types;
  inferTypesInto(function.arguments, *types);
  const std::shared_ptr<OverloadInfo> overload = findOverload(function, info, *types);
  return convertedType(*types, *overload, function.arguments.size());
}

namespace {

// An operation typed from its two operands alone: what a chain is made of (a CAST's second
// operand is a type name, typed otherwise).
bool isLink(const ast::Operation& operation) {
  return operation.operands.size() == 2 && operation.operation != OperationCode::Cast;
}

const ast::Operation& operationIn(const ast::NodeInterface* impl) {
  return static_cast<const ast::NodeImpl<ast::Operation>*>(impl)->value();
}

// The library's own operation node below `operation` on the left that is a link too, or null.
const ast::NodeInterface* leftLink(const ast::Operation& operation) {
  const ast::NodeInterface* impl = operation.operands.front().mImpl.get();
  if (!impl || &typeid(*impl) != &typeid(ast::NodeImpl<ast::Operation>)) return nullptr;
  return isLink(operationIn(impl)) ? impl : nullptr;
}

// A link of a chain below its top is not visited, so it does for a fault watcher what its visit
// would (Node::accept): it is the innermost node while its own work runs, and the place of a
// fault that leaves it first. The top (null here) is visited, and watched so.
class LinkWatch {
public:
  explicit LinkWatch(const ast::NodeInterface* link) noexcept
      : mWatch(link ? detail::walkWatch() : nullptr), mLink(link) {
    if (mWatch) {
      mOuter = mWatch->current;
      mWatch->current = link;
    }
  }
  ~LinkWatch() {
    if (mWatch) mWatch->current = mOuter;
  }
  LinkWatch(const LinkWatch&) = delete;
  LinkWatch& operator=(const LinkWatch&) = delete;

  template <class Work>
  auto run(Work&& work) {
    if (!mWatch) return work();
    try {
      return work();
    } catch (...) {
      detail::noteLeft(*mWatch, mLink);
      throw;
    }
  }

private:
  detail::WalkWatch* mWatch;
  const ast::NodeInterface* mLink;
  const void* mOuter = nullptr;
};

} // namespace

std::shared_ptr<Type> TypeInferer::chainType(const ast::Operation& top) {
  // Down the left side: each link's operator is looked up before its left operand is typed,
  // as the recursion does. The top is this inferer's own; each link below is typed by an
  // inferer of its own, as the recursion's fresh ones (their memo is the thread's now).
  struct Link {
    const ast::NodeInterface* impl; // null for the top, which its own visit watches
    std::shared_ptr<OperatorInfo> info;
  };
  std::vector<Link> links;
  const ast::NodeInterface* impl = nullptr;
  const ast::Operation* link = &top;
  for (;;) {
    std::shared_ptr<OperatorInfo> info;
    {
      LinkWatch watch(impl);
      info = watch.run([&] {
        auto found = mGlobalContext.operatorInfo(link->operation);
        if (!found) throw OperatorNotSupported(link->operation);
        return found;
      });
    }
    links.push_back({impl, std::move(info)});
    impl = leftLink(*link);
    if (!impl) break;
    link = &operationIn(impl);
  }
  // Up again: the leftmost operand, then each link's right operand and overload.
  std::shared_ptr<Type> left;
  for (std::size_t i = links.size(); i-- > 0;) {
    const Link& at = links[i];
    const ast::Operation& operation = at.impl ? operationIn(at.impl) : top;
    LinkWatch watch(at.impl);
    left = watch.run([&] {
      TypeList types;
      if (i + 1 == links.size()) {
        TypeInferer leftmost(mGlobalContext, mScopeContext);
        leftmost.doVisit(operation.operands[0]);
        (*types).push_back(std::move(leftmost).result());
      } else {
        (*types).push_back(std::move(left));
      }
      TypeInferer right(mGlobalContext, mScopeContext);
      right.doVisit(operation.operands[1]);
      (*types).push_back(std::move(right).result());
      if (!at.impl) {
        const std::shared_ptr<OperatorOverloadInfo> overload = findOperatorOverload(operation, at.info, *types);
        return convertedType(*types, *overload, 2);
      }
      TypeInferer own(mGlobalContext, mScopeContext);
      const std::shared_ptr<OperatorOverloadInfo> overload = own.findOperatorOverload(operation, at.info, *types);
      return own.convertedType(*types, *overload, 2);
    });
  }
  return left;
}

std::shared_ptr<Type> TypeInferer::operatorType(const ast::Operation& operation) {
  if (!mAnalysis && isLink(operation) && leftLink(operation)) return chainType(operation);
  const std::shared_ptr<OperatorInfo> info = mGlobalContext.operatorInfo(operation.operation);
  if (!info) throw OperatorNotSupported(operation.operation);
  TypeList types;
  operationTypesInto(operation, *types);
  const std::shared_ptr<OperatorOverloadInfo> overload = findOperatorOverload(operation, info, *types);
  return convertedType(*types, *overload, operation.operands.size());
}

std::vector<std::shared_ptr<Type>> TypeInferer::operationTypes(const ast::Operation& operation) const {
  std::vector<std::shared_ptr<Type>> types;
  operationTypesInto(operation, types);
  return types;
}

void TypeInferer::operationTypesInto(const ast::Operation& operation, std::vector<std::shared_ptr<Type>>& types) const {
  if (mAnalysis) {
    standardOperationTypes(operation, types);
    return;
  }
  if (operation.operation != OperationCode::Cast || operation.operands.size() != 2) {
    inferTypesInto(operation.operands, types);
    return;
  }
  // The target of a CAST is a type name that the grammar read as an expression.
  types.reserve(2);
  TypeInferer value = part();
  value.doVisit(operation.operands.front());
  types.push_back(std::move(value).result());
  detail::TypingMarks& marks = detail::typingMarks();
  ++marks.casts;
  ++marks.aggregates; // the target is a type name, which typing does not look into
  StringTypeInferer target;
  target.doVisit(operation.operands.back());
  types.push_back(std::move(target).result());
}

std::shared_ptr<Type> TypeInferer::stringType(const ast::String& node) {
  return charLiteralType(node.value.toStringLength());
}

std::shared_ptr<OverloadInfo> TypeInferer::inferFunctionOverload(const ast::Function& function) {
  const std::shared_ptr<FunctionInfo> info = mGlobalContext.function(function.name);
  if (!info) throw UnknownFunction(function.name);
  return findOverload(function, info, inferTypes(function.arguments));
}

std::shared_ptr<OperatorOverloadInfo> TypeInferer::inferOperatorOverload(const ast::Operation& operation) {
  const std::shared_ptr<OperatorInfo> info = mGlobalContext.operatorInfo(operation.operation);
  if (!info) throw OperatorNotSupported(operation.operation);
  return findOperatorOverload(operation, info, operationTypes(operation));
}

// ---------------------------------------------------------------------------------------------
// Overload resolution.

bool TypeInferer::fitsWithConversion(const OverloadInfo& overload, const std::vector<PlainType>& plain) const {
  return detail::takesCount(overload, plain.size()) && convertsTo(overload, plain, mGlobalContext);
}

bool TypeInferer::matchesWithConversion(const std::shared_ptr<OverloadInfo>& overload,
                                        const std::vector<PlainType>& plain) const {
  return fitsWithConversion(*overload, plain);
}

bool TypeInferer::matchesWithConversion(const std::shared_ptr<OperatorOverloadInfo>& overload,
                                        const std::vector<PlainType>& plain, ast::Quantifier quantifier) const {
  return overload->mQuantifier == quantifier && fitsWithConversion(*overload, plain);
}

namespace {

// The candidates of one call, as positions in the host's list, which outlives them. Every
// overload is sorted into exact or converted before anything is decided, so the host's
// canConvert sees the same questions in the same order whatever the outcome.
template <class Overload>
using Candidates = std::vector<const std::shared_ptr<Overload>*>;

template <class Overload>
std::vector<std::shared_ptr<Overload>> shared(const Candidates<Overload>& candidates) {
  std::vector<std::shared_ptr<Overload>> result;
  result.reserve(candidates.size());
  for (const auto* candidate : candidates) result.push_back(*candidate);
  return result;
}

} // namespace

std::shared_ptr<OverloadInfo> TypeInferer::findOverload(const ast::Function& function,
                                                        const std::shared_ptr<FunctionInfo>& info,
                                                        const std::vector<std::shared_ptr<Type>>& types) {
  if (!mResolutions || !info) return resolveOverload(function, info, types, toPlainTypes(types));
  if (auto chosen = mResolutions->find(mGlobalContext, info, -1, types)) {
    return std::static_pointer_cast<OverloadInfo>(std::move(chosen));
  }
  const std::vector<PlainType> plain = toPlainTypes(types);
  std::shared_ptr<OverloadInfo> overload = resolveOverload(function, info, types, plain);
  mResolutions->keep(mGlobalContext, info, -1, plain, overload);
  return overload;
}

std::shared_ptr<OverloadInfo> TypeInferer::resolveOverload(const ast::Function& function,
                                                           const std::shared_ptr<FunctionInfo>& info,
                                                           const std::vector<std::shared_ptr<Type>>& types,
                                                           const std::vector<PlainType>& plain) {
  std::vector<std::shared_ptr<OverloadInfo>> all = info->overloads();
  Candidates<OverloadInfo> exact;
  Candidates<OverloadInfo> converted;
  for (const auto& overload : all) {
    const Fit fit = fitOf(*overload, plain, mGlobalContext);
    if (fit == Fit::Exact) exact.push_back(&overload);
    else if (fit == Fit::Converted) converted.push_back(&overload);
  }
  // Functions have no ranking: two fits of equal standing are an error.
  if (exact.size() >= 2 || (exact.empty() && converted.size() >= 2)) {
    exact.insert(exact.end(), converted.begin(), converted.end());
    throw AmbiguousFunctionCall(function.name, types, shared(exact));
  }
  if (exact.size() == 1) return *exact.front();
  if (converted.size() == 1) return *converted.front();
  throw NoGoodFunctionCandidate(function.name, types, std::move(all));
}

std::shared_ptr<OperatorOverloadInfo> TypeInferer::findOperatorOverload(const ast::Operation& operation,
                                                                        const std::shared_ptr<OperatorInfo>& info,
                                                                        const std::vector<std::shared_ptr<Type>>& types) {
  if (!mResolutions || !info) return resolveOperatorOverload(operation, info, types, toPlainTypes(types));
  const int quantifier = static_cast<int>(operation.quantifier);
  if (auto chosen = mResolutions->find(mGlobalContext, info, quantifier, types)) {
    return std::static_pointer_cast<OperatorOverloadInfo>(std::move(chosen));
  }
  const std::vector<PlainType> plain = toPlainTypes(types);
  std::shared_ptr<OperatorOverloadInfo> overload = resolveOperatorOverload(operation, info, types, plain);
  mResolutions->keep(mGlobalContext, info, quantifier, plain, overload);
  return overload;
}

std::shared_ptr<OperatorOverloadInfo> TypeInferer::resolveOperatorOverload(const ast::Operation& operation,
                                                                           const std::shared_ptr<OperatorInfo>& info,
                                                                           const std::vector<std::shared_ptr<Type>>& types,
                                                                           const std::vector<PlainType>& plain) {
  std::vector<std::shared_ptr<OperatorOverloadInfo>> all = info->overloads();
  Candidates<OperatorOverloadInfo> exact;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> converted;
  for (const auto& overload : all) {
    if (overload->mQuantifier != operation.quantifier) continue;
    const Fit fit = fitOf(*overload, plain, mGlobalContext);
    if (fit == Fit::Exact) {
      exact.push_back(&overload);
    } else if (fit == Fit::Converted) {
      converted.push_back(overload);
    }
  }
  if (exact.size() == 1) return *exact.front();
  // Unlike functions, the converted candidates play no part once two fit exactly.
  if (exact.size() >= 2) throw AmbiguousOperatorCall(operation.operation, types, shared(exact));
  if (converted.empty()) throw NoGoodOperatorOverload(operation.operation, types, std::move(all));
  try {
    return findBestOperatorMatch(converted, plain);
  } catch (const AmbiguousOperatorOverloads&) {
    throw AmbiguousOperatorCall(operation.operation, types, std::move(converted));
  }
}

std::shared_ptr<OperatorOverloadInfo>
TypeInferer::findBestOperatorMatch(const std::vector<std::shared_ptr<OperatorOverloadInfo>>& candidates,
                                   const std::vector<PlainType>& plain) const {
  if (candidates.size() == 1) return candidates.front();

  // Does every parameter of the candidate stand at or above `argument(i)`?
  auto standsAbove = [&](const OperatorOverloadInfo& candidate, auto argument) {
    for (std::size_t i = 0; i < plain.size(); ++i) {
      if (mGlobalContext.compareTypes(candidate.parameterType(i), argument(i)) < 0) return false;
    }
    return true;
  };

  std::vector<const std::shared_ptr<OperatorOverloadInfo>*> widening;
  for (const auto& candidate : candidates) {
    if (standsAbove(*candidate, [&](std::size_t i) { return plain[i]; })) widening.push_back(&candidate);
  }
  if (!widening.empty()) {
    // The closest fit above the arguments: the lowest candidate.
    const std::shared_ptr<OperatorOverloadInfo>* best = widening.front();
    for (std::size_t i = 1; i < widening.size(); ++i) {
      if (overloadCompare(*widening[i], *best)) best = widening[i];
    }
    return *best;
  }

  // No candidate covers every argument: hold them all against the lowest argument instead. With
  // no candidates there is nothing to hold, and plain may then be empty as well.
  if (candidates.empty() || plain.empty()) throw AmbiguousOperatorOverloads();
  PlainType low = plain.front();
  for (std::size_t i = 1; i < plain.size(); ++i) {
    if (mGlobalContext.compareTypes(plain[i], low) < 0) low = plain[i];
  }
  std::vector<const std::shared_ptr<OperatorOverloadInfo>*> fallback;
  for (const auto& candidate : candidates) {
    if (standsAbove(*candidate, [low](std::size_t) { return low; })) fallback.push_back(&candidate);
  }
  if (fallback.empty()) throw AmbiguousOperatorOverloads();
  // The arguments of overloadCompare stand the other way round than above: this loop ends on
  // the highest candidate, the one above ends on the lowest. Ties keep the earlier one in both.
  const std::shared_ptr<OperatorOverloadInfo>* best = fallback.front();
  for (std::size_t i = 1; i < fallback.size(); ++i) {
    if (overloadCompare(*best, *fallback[i])) best = fallback[i];
  }
  return *best;
}

bool TypeInferer::overloadCompare(const std::shared_ptr<OperatorOverloadInfo>& a,
                                  const std::shared_ptr<OperatorOverloadInfo>& b) const {
  int sign = 0;
  const std::size_t count = a->mParameters.size();
  for (std::size_t i = 0; i < count; ++i) {
    const int r = mGlobalContext.compareTypes(a->mParameters[i], b->mParameters.at(i));
    if (r == 0) continue;
    if (sign == 0) {
      sign = r;
    } else if ((r < 0) != (sign < 0)) {
      // One parameter speaks for `a` and another for `b`.
      throw AmbiguousOperatorOverloads();
    }
  }
  return sign < 0;
}

std::vector<std::shared_ptr<Type>> TypeInferer::convertTypes(const std::vector<std::shared_ptr<Type>>& types,
                                                             const std::vector<PlainType>& to) const {
  const std::size_t n = types.size();
  VELMOR_SQL_ASSERT(n == to.size(), "TypeInferer");
  std::vector<std::shared_ptr<Type>> result;
  result.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const std::shared_ptr<Type>& type = types[i];
    // An argument without a type was left out of the overload search; it stays unknown here
    // rather than be converted, and the overload's full-type callback sees the empty pointer.
    if (!type || i >= to.size() || type->plainType() == to[i]) {
      result.push_back(type);
    } else {
      result.push_back(mGlobalContext.convert(type, to[i]));
    }
  }
  return result;
}

std::shared_ptr<Type> TypeInferer::convertedType(std::vector<std::shared_ptr<Type>>& types,
                                                const OverloadInfo& overload, std::size_t count) const {
  if (types.size() == count && convertsNothing(types, overload)) return overload.calcFullType(types);
  // convertTypes(types, overload.parameterTypes(count)), in place.
  const std::size_t n = types.size();
  VELMOR_SQL_ASSERT(n == count, "TypeInferer");
  for (std::size_t i = 0; i < n && i < count; ++i) {
    const PlainType to = overload.parameterType(i);
    if (types[i] && types[i]->plainType() != to) types[i] = mGlobalContext.convert(types[i], to);
  }
  return overload.calcFullType(types);
}

// ---------------------------------------------------------------------------------------------
// Queries and rows.

void TypeInferer::appendSelectItemTypes(const ast::Node& item, std::vector<std::shared_ptr<Type>>& out) const {
  TypeInferer inferer = part();
  inferer.doVisit(item);
  std::shared_ptr<Type> type = std::move(inferer).result();
  // An asterisk or a row opens into its fields. An item without a type (a set operation as a
  // value) stays one unknown entry, as inferTypes keeps one.
  if (type && type->plainType() == PlainType::Tuple) {
    const auto& fields = static_cast<const TupleType&>(*type).types();
    out.insert(out.end(), fields.begin(), fields.end());
  } else {
    out.push_back(std::move(type));
  }
}

std::vector<std::shared_ptr<Type>> TypeInferer::selectItemTypes(const ast::Node& item) const {
  std::vector<std::shared_ptr<Type>> types;
  appendSelectItemTypes(item, types);
  return types;
}

std::vector<std::shared_ptr<Type>> TypeInferer::selectTypes(const std::vector<ast::Node>& list) const {
  std::vector<std::shared_ptr<Type>> types;
  types.reserve(list.size());
  for (const ast::Node& item : list) appendSelectItemTypes(item, types);
  return types;
}

std::shared_ptr<Type> TypeInferer::querySpecificationType(const ast::QuerySpecification& query) const {
  std::vector<std::shared_ptr<Type>> types = selectTypes(query.selectList);
  std::shared_ptr<Type> row =
      types.size() == 1 ? std::move(types.front()) : std::make_shared<TupleType>(std::move(types));
  return std::make_shared<ArrayType>(row);
}

std::shared_ptr<Type> TypeInferer::rowValueType(const ast::RowValueExpression& row) const {
  return std::make_shared<TupleType>(inferTypes(row.values));
}

std::shared_ptr<Type> TypeInferer::rowsValueType(const ast::RowValueExpressionList& list) const {
  std::vector<std::shared_ptr<Type>> rows = inferTypes(list.rows);
  if (rows.empty()) return std::make_shared<TupleType>(std::move(rows));
  if (rows.size() == 1) return std::make_shared<ArrayType>(rows.front());
  // A row without a type can't be said to fit, so it makes the list a tuple of differing
  // things, as any other mismatch does.
  bool fit = static_cast<bool>(rows.front());
  if (fit) {
    const PlainType first = rows.front()->plainType();
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const std::shared_ptr<Type>& row = rows[i];
      if (!row || (row->plainType() != first && !mGlobalContext.canConvert(row->plainType(), first))) {
        fit = false;
        break;
      }
    }
  }
  if (fit) return std::make_shared<ArrayType>(rows.front());
  return std::make_shared<TupleType>(std::move(rows));
}

// ---------------------------------------------------------------------------------------------
// Standard scoping.


std::shared_ptr<Type> TypeInferer::queryRowType(const ast::Node& query) const {
  std::optional<std::vector<std::shared_ptr<Type>>> columns = mAnalysis->queryColumns(query, mScopeContext);
  if (!columns) throw FaultReported();
  if (columns->size() == 1) return std::move(columns->front());
  return std::make_shared<TupleType>(std::move(*columns));
}

std::shared_ptr<Type> TypeInferer::scalarQueryType(const ast::Node& query) const {
  std::shared_ptr<Type> row = queryRowType(query);
  if (row && row->plainType() == PlainType::Tuple) {
    SubqueryNotScalar fault(static_cast<const TupleType&>(*row).types().size());
    if (!mAnalysis->gathersFaults()) throw fault;
    mAnalysis->reportFaultAt(fault, query);
    throw FaultReported();
  }
  return row;
}

void TypeInferer::standardOperationTypes(const ast::Operation& operation, std::vector<std::shared_ptr<Type>>& types) const {
  const bool cast = operation.operation == OperationCode::Cast && operation.operands.size() == 2;
  const std::size_t count = operation.operands.size();
  types.reserve(count);
  const bool gather = mAnalysis->gathersFaults();
  bool failed = false;
  // The operands' records are asked for together, so that their reads overlap rather than wait
  // one for another (each is read first as its kind is asked).
  for (const ast::ExpressionNode& operand : operation.operands) __builtin_prefetch(operand.mImpl.get());
  for (std::size_t i = 0; i < count; ++i) {
    const ast::ExpressionNode& operand = operation.operands[i];
    try {
      if (cast && i == 1) {
        // The target of a CAST is a type name that the grammar read as an expression.
        detail::TypingMarks& marks = detail::typingMarks();
        ++marks.casts;
        ++marks.aggregates; // the target is a type name, which typing does not look into
        StringTypeInferer target;
        target.doVisit(operand);
        types.push_back(std::move(target).result());
      } else if (isQuery(operand) && takesRows(operation, i)) {
        types.push_back(std::make_shared<ArrayType>(queryRowType(operand)));
      } else {
        types.push_back(typeOfPart(operand));
      }
    } catch (const FaultReported&) {
      if (!gather) throw;
      failed = true;
    } catch (const SqlError& fault) {
      if (!gather) throw;
      mAnalysis->reportFault(fault);
      failed = true;
    }
  }
  if (failed) throw FaultReported();

  // A value compared with the rows of a query must be comparable with the query's column: the
  // host's IN takes any array, so equality decides, and the fault names IN with both types.
  const bool in = operation.operation == OperationCode::In || operation.operation == OperationCode::NotIn;
  if (in && count == 2 && isQuery(operation.operands[1]) && types[0] && types[1]) {
    const std::shared_ptr<Type>& element = static_cast<const ArrayType&>(*types[1]).elementType();
    const std::shared_ptr<OperatorInfo> equal = mGlobalContext.operatorInfo(OperationCode::Equal);
    if (equal && element && element->plainType() != PlainType::Tuple) {
      ast::Operation comparison(OperationCode::Equal, std::vector<ast::ExpressionNode>{});
      TypeInferer probe = part();
      try {
        probe.findOperatorOverload(comparison, equal, {types[0], element});
      } catch (const SqlSemanticError&) {
        std::vector<std::shared_ptr<OperatorOverloadInfo>> candidates;
        if (const auto info = mGlobalContext.operatorInfo(operation.operation)) candidates = info->overloads();
        throw NoGoodOperatorOverload(operation.operation, {types[0], element}, std::move(candidates));
      }
    }
  }
}

} // namespace velmor::sql
