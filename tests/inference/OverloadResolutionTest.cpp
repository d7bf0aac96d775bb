// Choosing the overload of a function or operator call: exact, converted, ranked, ambiguous.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/SampleHost.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/scope/ScopeBuilder.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace velmor::sql::test {
namespace {

using type::PlainType;
using Overloads = std::vector<std::shared_ptr<OverloadInfo>>;
using OperatorOverloads = std::vector<std::shared_ptr<OperatorOverloadInfo>>;

// The sample catalogue, where numbers may also be converted downward when asked, and where
// every call of canConvert is counted.
class ResolutionHost : public sample::SampleHost {
public:
  bool canConvert(PlainType from, PlainType to) const override {
    ++m_canConvertCalls;
    const bool numeric = numericTypes.contains(from) && numericTypes.contains(to);
    return (m_anyNumeric && numeric) || SampleHost::canConvert(from, to);
  }
  bool m_anyNumeric = false;
  mutable int m_canConvertCalls = 0;
};

std::shared_ptr<OverloadInfo> f(std::vector<PlainType> parameters) {
  return std::make_shared<OverloadInfo>(PlainType::Integer, std::move(parameters), sample::sameAs(0));
}
std::shared_ptr<OperatorOverloadInfo> o(std::vector<PlainType> parameters,
                                        ast::Quantifier quantifier = ast::Quantifier::None) {
  return std::make_shared<OperatorOverloadInfo>(PlainType::Boolean, std::move(parameters),
                                                sample::returns(PlainType::Boolean), quantifier);
}

std::shared_ptr<OperatorOverloadInfo> oDate() { return o({PlainType::Date, PlainType::Date}); }

// Columns of every numeric width: s SmallInt, i Integer, b BigInt, d Double (the sensors'
// reading is Float), v VarChar.
std::shared_ptr<ColumnInfoScope> numbers() {
  return std::make_shared<TableInfoScope>(
      ast::TablePrimary{L"n", L""},
      GenericTableInfo::create({ColumnInfo(L"s", sample::plain(PlainType::SmallInt), L"n"),
                                ColumnInfo(L"i", sample::plain(PlainType::Integer), L"n"),
                                ColumnInfo(L"b", sample::plain(PlainType::BigInt), L"n"),
                                ColumnInfo(L"d", sample::plain(PlainType::Double), L"n"),
                                ColumnInfo(L"v", sample::varchar(10), L"n")}));
}

// The position of the chosen overload in the catalogue's list, or the fault.
std::string chosenFunction(const ResolutionHost& host, const Overloads& list, const E& call) {
  const auto scope = numbers();
  return outcome([&] {
    TypeInferer inferer(host, *scope);
    const auto chosen = inferer.inferFunctionOverload(getNodeValue<ast::Function>(call));
    for (std::size_t i = 0; i < list.size(); ++i) {
      if (list[i] == chosen) return "#" + std::to_string(i);
    }
    return std::string("?");
  });
}

std::string chosenOperator(const ResolutionHost& host, const OperatorOverloads& list, const E& call) {
  const auto scope = numbers();
  return outcome([&] {
    TypeInferer inferer(host, *scope);
    const auto chosen = inferer.inferOperatorOverload(getNodeValue<ast::Operation>(call));
    for (std::size_t i = 0; i < list.size(); ++i) {
      if (list[i] == chosen) return "#" + std::to_string(i);
    }
    return std::string("?");
  });
}

TEST(OverloadResolutionTest, Functions) {
  const E untyped = ast::makeNode<E>(ast::QueryOperation{});
  const struct {
    const char* what;
    Overloads list;
    std::vector<E> arguments;
    const char* expected;
  } cases[] = {
      {"exact beats converted", {f({PlainType::Double}), f({PlainType::Integer})}, {col(L"i")}, "#1"},
      {"one conversion", {f({PlainType::Double}), f({PlainType::VarChar})}, {col(L"s")}, "#0"},
      {"two conversions are ambiguous", {f({PlainType::Integer}), f({PlainType::Double})}, {col(L"s")},
       "AmbiguousFunctionCall f(SmallInt) 2"},
      {"two exact ones list the converted too", {f({PlainType::Integer}), f({PlainType::Double}), f({PlainType::Integer})},
       {col(L"i")}, "AmbiguousFunctionCall f(Integer) 3"},
      {"contextual fits anything", {f({PlainType::Integer}), f({PlainType::Date})}, {contextual(ast::Value::Default)},
       "AmbiguousFunctionCall f(Contextual) 2"},
      {"contextual with one overload", {f({PlainType::Date})}, {contextual(ast::Value::Null)}, "#0"},
      {"nothing fits", {f({PlainType::Integer}), f({PlainType::Double})}, {col(L"v")},
       "NoGoodFunctionCandidate f(VarChar(10)) 2"},
      {"wrong arity", {f({PlainType::Integer})}, {col(L"i"), col(L"i")},
       "NoGoodFunctionCandidate f(Integer Integer) 1"},
      {"no overloads", {}, {}, "NoGoodFunctionCandidate f() 0"},
      {"two without arguments", {f({}), f({})}, {}, "AmbiguousFunctionCall f() 2"},
      {"no arguments", {f({PlainType::Integer}), f({})}, {}, "#1"},
      {"optional parameter", {std::make_shared<OverloadInfo>(PlainType::Integer, std::vector{PlainType::Integer},
                                                             sample::sameAs(0), Determinism::Deterministic,
                                                             std::vector{PlainType::VarChar})},
       {col(L"s"), col(L"v")}, "#0"},
      {"an untyped argument drops out", {f({PlainType::Integer}), f({})}, {untyped}, "#1"},
  };
  for (const auto& c : cases) {
    ResolutionHost host;
    host.addFunction(L"f", FunctionKind::Ordinary, c.list);
    EXPECT_EQ(chosenFunction(host, c.list, fn(L"f", c.arguments)), c.expected) << c.what;
  }
}

TEST(OverloadResolutionTest, ContextualIsNeverAskedAbout) {
  ResolutionHost host;
  host.addFunction(L"f", FunctionKind::Ordinary, {f({PlainType::Date})});
  const auto scope = numbers();
  TypeInferer inferer(host, *scope);
  EXPECT_TRUE(inferer.matchesWithConversion(f({PlainType::Date, PlainType::Integer}),
                                            {PlainType::Contextual, PlainType::Integer}));
  EXPECT_EQ(host.m_canConvertCalls, 0);
}

TEST(OverloadResolutionTest, Operators) {
  using PT = PlainType;
  const ast::Quantifier all = ast::Quantifier::All;
  const struct {
    const char* what;
    bool anyNumeric;
    OperatorOverloads list;
    std::vector<E> operands;
    ast::Quantifier quantifier;
    const char* expected;
  } cases[] = {
      {"exact beats converted", false, {o({PT::Double, PT::Double}), o({PT::Integer, PT::Integer})},
       {col(L"i"), col(L"i")}, {}, "#1"},
      {"two exact ones, converted left out", false,
       {o({PT::Integer, PT::Integer}), o({PT::Double, PT::Double}), o({PT::Integer, PT::Integer})},
       {col(L"i"), col(L"i")}, {}, "AmbiguousOperatorCall Multiply(Integer Integer) 2"},
      {"nothing fits", false, {o({PT::Integer, PT::Integer}), o({PT::Date, PT::Date})}, {col(L"v"), col(L"i")}, {},
       "NoGoodOperatorOverload Multiply(VarChar(10) Integer) 2"},
      {"widening takes the lowest", false, {o({PT::Double, PT::Double}), o({PT::Integer, PT::Integer}),
                                            o({PT::BigInt, PT::BigInt})},
       {col(L"s"), col(L"s")}, {}, "#1"},
      {"widening ties go to the earlier", false, {o({PT::Integer, PT::Integer}), o({PT::Integer, PT::Integer})},
       {col(L"s"), col(L"s")}, {}, "#0"},
      {"widening over mixed arguments", false, {o({PT::Double, PT::Double}), o({PT::BigInt, PT::BigInt}),
                                                o({PT::Integer, PT::Integer})},
       {col(L"s"), col(L"b")}, {}, "#1"},
      {"parameters that disagree", false, {o({PT::Integer, PT::Double}), o({PT::Double, PT::Integer})},
       {col(L"s"), col(L"s")}, {}, "AmbiguousOperatorCall Multiply(SmallInt SmallInt) 2"},
      {"fallback takes the highest", true, {o({PT::SmallInt, PT::SmallInt}), o({PT::Integer, PT::Integer}),
                                            o({PT::BigInt, PT::BigInt})},
       {col(L"d"), col(L"i")}, {}, "#2"},
      {"fallback ties go to the earlier", true, {o({PT::BigInt, PT::BigInt}), o({PT::BigInt, PT::BigInt})},
       {col(L"d"), col(L"i")}, {}, "#0"},
      {"fallback holds all against the lowest", true, {o({PT::Integer, PT::SmallInt}), o({PT::SmallInt, PT::Integer})},
       {col(L"d"), col(L"i")}, {}, "AmbiguousOperatorCall Multiply(Double Integer) 2"},
      {"a single candidate is not ranked", true, {o({PT::SmallInt, PT::SmallInt})}, {col(L"d"), col(L"i")}, {}, "#0"},
      {"quantified overload", false, {o({PT::Integer, PT::Integer}), o({PT::Integer, PT::Integer}, all)},
       {col(L"i"), col(L"i")}, all, "#1"},
      {"quantified, converted", false, {o({PT::Double, PT::Double}), o({PT::Double, PT::Double}, all)},
       {col(L"i"), col(L"i")}, all, "#1"},
      {"other quantifier is no candidate", false, {o({PT::Integer, PT::Integer}), o({PT::Double, PT::Double})},
       {col(L"i"), col(L"i")}, all, "NoGoodOperatorOverload Multiply(Integer Integer) 2"},
  };
  for (const auto& c : cases) {
    ResolutionHost host;
    host.m_anyNumeric = c.anyNumeric;
    host.addOperator(OperationCode::Multiply, c.list);
    EXPECT_EQ(chosenOperator(host, c.list, op(OperationCode::Multiply, c.operands, c.quantifier)), c.expected)
        << c.what;
  }
}

// Which overloads each fault names, in which order.
TEST(OverloadResolutionTest, CandidatesOfEachFault) {
  using PT = PlainType;
  ResolutionHost host;
  const auto scope = numbers();
  TypeInferer inferer(host, *scope);
  const auto fInt = f({PT::Integer});
  const auto fDouble = f({PT::Double});
  const auto fInt2 = f({PT::Integer});
  const auto fDate = f({PT::Date});
  const auto call = [](std::vector<E> arguments) { return ast::Function{L"f", false, {}, std::move(arguments)}; };
  const auto functions = std::make_shared<sample::SampleFunction>(FunctionKind::Ordinary,
                                                                  Overloads{fDouble, fInt, fDate, fInt2});
  try {
    inferer.findOverload(call({col(L"i")}), functions, {sample::plain(PT::Integer)});
    ADD_FAILURE();
  } catch (const AmbiguousFunctionCall& e) {
    EXPECT_EQ(e.candidates, (Overloads{fInt, fInt2, fDouble}));  // exact ones first
    EXPECT_EQ(typesText(e.argumentTypes), "Integer");
  }
  try {
    inferer.findOverload(call({col(L"v")}), functions, {sample::varchar(4)});
    ADD_FAILURE();
  } catch (const NoGoodFunctionCandidate& e) {
    EXPECT_EQ(e.candidates, (Overloads{fDouble, fInt, fDate, fInt2}));
    EXPECT_EQ(e.functionName, L"f");
  }

  const auto oInt = o({PT::Integer, PT::Integer});
  const auto oDouble = o({PT::Double, PT::Double});
  const auto oInt2 = o({PT::Integer, PT::Integer});
  const auto oMixed = o({PT::Integer, PT::Double});
  const auto oCrossed = o({PT::Double, PT::Integer});
  const auto operators = [](OperatorOverloads list) { return std::make_shared<sample::SampleOperator>(std::move(list)); };
  const ast::Operation times(OperationCode::Multiply, col(L"i"), col(L"i"));
  const std::vector<std::shared_ptr<Type>> ints{sample::plain(PT::Integer), sample::plain(PT::Integer)};
  const std::vector<std::shared_ptr<Type>> smalls{sample::plain(PT::SmallInt), sample::plain(PT::SmallInt)};
  try {
    inferer.findOperatorOverload(times, operators({oDouble, oInt, oInt2}), ints);
    ADD_FAILURE();
  } catch (const AmbiguousOperatorCall& e) {
    EXPECT_EQ(e.candidates, (OperatorOverloads{oInt, oInt2}));
    EXPECT_EQ(e.operation, OperationCode::Multiply);
  }
  try {
    inferer.findOperatorOverload(times, operators({oDate(), oMixed, oCrossed}), smalls);
    ADD_FAILURE();
  } catch (const AmbiguousOperatorCall& e) {
    EXPECT_EQ(e.candidates, (OperatorOverloads{oMixed, oCrossed}));  // the converted ones
  }
  try {
    inferer.findOperatorOverload(times, operators({oInt, oDouble}), {sample::varchar(1), nullptr});
    ADD_FAILURE();
  } catch (const NoGoodOperatorOverload& e) {
    EXPECT_EQ(e.candidates, (OperatorOverloads{oInt, oDouble}));
    EXPECT_EQ(typesText(e.argumentTypes), "VarChar(1) -");
  }
}

TEST(OverloadResolutionTest, RankingHelpers) {
  using PT = PlainType;
  ResolutionHost host;
  const auto scope = numbers();
  const TypeInferer inferer(host, *scope);
  const auto low = o({PT::Integer, PT::Integer});
  const auto high = o({PT::Double, PT::Double});
  const auto mixed = o({PT::Integer, PT::Double});
  const auto crossed = o({PT::Double, PT::Integer});
  EXPECT_TRUE(inferer.overloadCompare(low, high));
  EXPECT_FALSE(inferer.overloadCompare(high, low));
  EXPECT_FALSE(inferer.overloadCompare(low, low));
  EXPECT_TRUE(inferer.overloadCompare(low, mixed));  // equal, then below
  EXPECT_THROW(inferer.overloadCompare(mixed, crossed), AmbiguousOperatorOverloads);
  EXPECT_THROW(inferer.overloadCompare(crossed, mixed), AmbiguousOperatorOverloads);
  EXPECT_FALSE(inferer.overloadCompare(o({}), low));
  EXPECT_THROW(inferer.overloadCompare(low, o({PT::Double})), std::out_of_range);

  EXPECT_THROW(inferer.findBestOperatorMatch({}, {PT::Integer}), AmbiguousOperatorOverloads);
  EXPECT_THROW(inferer.findBestOperatorMatch({}, {}), AmbiguousOperatorOverloads);
  EXPECT_EQ(inferer.findBestOperatorMatch({high, low}, {}), low);  // nothing to hold against
  EXPECT_EQ(inferer.findBestOperatorMatch({mixed}, {PT::Date}), mixed);

  EXPECT_TRUE(inferer.matchesWithConversion(low, {PT::SmallInt, PT::Integer}, ast::Quantifier::None));
  EXPECT_FALSE(inferer.matchesWithConversion(low, {PT::SmallInt, PT::Integer}, ast::Quantifier::Any));
  EXPECT_FALSE(inferer.matchesWithConversion(low, {PT::SmallInt}, ast::Quantifier::None));
}

TEST(OverloadResolutionTest, ConvertTypesKeepsOrConverts) {
  ResolutionHost host;
  const auto scope = numbers();
  const TypeInferer inferer(host, *scope);
  const auto name = sample::varchar(20);
  const auto id = sample::plain(PlainType::Integer);
  const auto converted = inferer.convertTypes({name, id, nullptr}, {PlainType::VarChar, PlainType::Decimal, PlainType::Integer});
  ASSERT_EQ(converted.size(), 3u);
  EXPECT_EQ(converted[0], name);  // the same object, length and all
  EXPECT_EQ(typeText(converted[1]), "Decimal(10,0)");
  EXPECT_EQ(converted[2], nullptr);  // an argument without a type stays unknown

  static std::string asserted;
  const auto previous = setAssertionHandler([](const char* expression, const char* source) {
    asserted = std::string(expression) + " @" + source;
  });
  const auto longer = inferer.convertTypes({name, id}, {PlainType::Char});
  setAssertionHandler(previous);
  EXPECT_EQ(asserted, "n == to.size() @TypeInferer");
  ASSERT_EQ(longer.size(), 2u);
  EXPECT_EQ(typeText(longer[0]), "Char(20)");
  EXPECT_EQ(longer[1], id);
}

} // namespace
} // namespace velmor::sql::test
