// Enumerator and record-kind names.
#include <velmor/sql/ast/EnumNames.h>

namespace velmor::sql::ast {

const char* enumName(OperationCode value) noexcept {
  switch (value) {
#define VELMOR_SQL_OPERATION(Name, Number, Text)                                                   \
  case OperationCode::Name:                                                                        \
    return #Name;
#include <velmor/sql/ast/OperationCodes.def>
  }
  return nullptr; // a custom operator of the host, or no operator at all
}

// Lists every enumerator so that the compiler names this switch when one is added.
#define VELMOR_SQL_NAME(Enum, Name)                                                                \
  case Enum::Name:                                                                                 \
    return #Name;

const char* enumName(Quantifier value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(Quantifier, None)
    VELMOR_SQL_NAME(Quantifier, All)
    VELMOR_SQL_NAME(Quantifier, Any)
  }
  return nullptr;
}

const char* enumName(SetQuantifier value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(SetQuantifier, Unspecified)
    VELMOR_SQL_NAME(SetQuantifier, Distinct)
    VELMOR_SQL_NAME(SetQuantifier, All)
  }
  return nullptr;
}

const char* enumName(Join value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(Join, Cross)
    VELMOR_SQL_NAME(Join, Inner)
    VELMOR_SQL_NAME(Join, LeftOuter)
    VELMOR_SQL_NAME(Join, RightOuter)
    VELMOR_SQL_NAME(Join, FullOuter)
  }
  return nullptr;
}

const char* enumName(Value value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(Value, Null)
    VELMOR_SQL_NAME(Value, Array)
    VELMOR_SQL_NAME(Value, Multiset)
    VELMOR_SQL_NAME(Value, Default)
  }
  return nullptr;
}

const char* enumName(QueryOperationCode value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(QueryOperationCode, Union)
    VELMOR_SQL_NAME(QueryOperationCode, Except)
    VELMOR_SQL_NAME(QueryOperationCode, Intersect)
  }
  return nullptr;
}

const char* enumName(Overriding value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(Overriding, None)
    VELMOR_SQL_NAME(Overriding, User)
    VELMOR_SQL_NAME(Overriding, System)
  }
  return nullptr;
}

const char* enumName(NullOrdering value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(NullOrdering, Unspecified)
    VELMOR_SQL_NAME(NullOrdering, First)
    VELMOR_SQL_NAME(NullOrdering, Last)
  }
  return nullptr;
}

const char* enumName(NumberKind value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(NumberKind, Integer)
    VELMOR_SQL_NAME(NumberKind, Exact)
    VELMOR_SQL_NAME(NumberKind, Approximate)
  }
  return nullptr;
}

const char* enumName(TernaryLogic::Value value) noexcept {
  switch (value) {
    VELMOR_SQL_NAME(TernaryLogic, False)
    VELMOR_SQL_NAME(TernaryLogic, Unknown)
    VELMOR_SQL_NAME(TernaryLogic, True)
  }
  return nullptr;
}

#undef VELMOR_SQL_NAME

namespace {

class RecordNamer final : public NodeVisitor {
public:
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void visit(const Name&) override { mName = recordName<Name>(); }
#include <velmor/sql/ast/Records.def>
  void faultAction() override {}

  const char* mName = nullptr;
};

} // namespace

const char* recordName(const Node& node) noexcept {
  if (!node.mImpl) return nullptr;
  // EmptyNode visits nothing, so its name comes from the null answer of its node.
  if (node.mImpl->isNull()) return recordName<EmptyNode>();
  RecordNamer namer;
  node.mImpl->accept(namer);
  return namer.mName;
}

} // namespace velmor::sql::ast
