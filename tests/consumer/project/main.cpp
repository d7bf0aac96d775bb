// A host that uses only the installed headers and library: it implements the catalogue
// interfaces and exercises a little of the public API through them.
#include <velmor/sql.h>

#include <iostream>
#include <memory>

namespace {

using namespace velmor::sql;
using type::PlainType;

class Abs : public FunctionInfo {
public:
  std::vector<std::shared_ptr<OverloadInfo>> overloads() const override {
    return {std::make_shared<OverloadInfo>(PlainType::Integer, std::vector<PlainType>{PlainType::Integer},
                                           [](const std::vector<std::shared_ptr<Type>>& types) { return types.at(0); })};
  }
  FunctionKind kind() const override { return FunctionKind::Ordinary; }
};

class Plus : public OperatorInfo {
public:
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads() const override {
    return {std::make_shared<OperatorOverloadInfo>(
        PlainType::Integer, std::vector<PlainType>{PlainType::Integer, PlainType::Integer},
        [](const std::vector<std::shared_ptr<Type>>&) { return std::make_shared<Type>(PlainType::Integer); })};
  }
};

class Host : public GlobalTypeContext, public TableInfoContext {
public:
  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override {
    return normalized(name) == L"abs" ? std::make_shared<Abs>() : nullptr;
  }
  std::shared_ptr<OperatorInfo> operatorInfo(OperationCode code) const override {
    return code == OperationCode::Plus ? std::make_shared<Plus>() : nullptr;
  }
  bool canConvert(PlainType from, PlainType to) const override {
    return from == PlainType::SmallInt && to == PlainType::Integer;
  }
  std::shared_ptr<Type> convert(const std::shared_ptr<Type>&, PlainType to) const override {
    return std::make_shared<Type>(to);
  }
  int compareTypes(PlainType a, PlainType b) const override {
    return static_cast<int>(a) - static_cast<int>(b);
  }
  std::shared_ptr<TableInfo> table(const std::wstring& name) const override {
    if (normalized(name) != L"cities") return nullptr;
    return GenericTableInfo::create({ColumnInfo(L"Name", std::make_shared<LengthType>(PlainType::VarChar, 40), L"cities")});
  }
};

} // namespace

int main() {
  velmor::sql::AssertionHandler previous = velmor::sql::setAssertionHandler(nullptr);
  (void)previous;

  const Host host;
  const GlobalTypeContext& routines = host;
  const TableInfoContext& tables = host;
  bool ok = routines.function(L"ABS")->overloads().at(0)->matches({PlainType::Integer}) &&
            routines.operatorInfo(OperationCode::Plus)->overloads().at(0)->matches(
                {PlainType::Integer, PlainType::Integer}, ast::Quantifier::None) &&
            tables.table(L"Cities")->hasColumn(L"NAME") && numericTypes.count(PlainType::Double) == 1;
  try {
    throw UnknownFunction(L"f");
  } catch (const SqlError& error) {
    std::unique_ptr<SqlError> copy(error.clone());
    ok = ok && copy->type() == SqlErrorType::UnknownFunction && dynamic_cast<UnknownFunction*>(copy.get());
  }
  if (!ok) {
    std::cout << "velmor-sql consumer failed\n";
    return 1;
  }
  std::cout << "velmor-sql consumer ok\n";
  return 0;
}
