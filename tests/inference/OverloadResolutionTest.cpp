// Choosing the overload of a function or operator call: exact, converted, ranked, ambiguous.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/Golden.h"
#include "support/SampleHost.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/scope/ScopeBuilder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace velmor::sql::test {
namespace {

using type::PlainType;
using Overloads = std::vector<std::shared_ptr<OverloadInfo>>;
using OperatorOverloads = std::vector<std::shared_ptr<OperatorOverloadInfo>>;

// The sample catalogue, where numbers may also be converted downward when asked, and where
// every question to canConvert is written down: hosts see these calls, so their order counts.
class ResolutionHost : public sample::SampleHost {
public:
  bool canConvert(PlainType from, PlainType to) const override {
    m_asked += " " + plainName(from) + ">" + plainName(to);
    const bool numeric = numericTypes.contains(from) && numericTypes.contains(to);
    return (m_anyNumeric && numeric) || SampleHost::canConvert(from, to);
  }
  bool m_anyNumeric = false;
  mutable std::string m_asked;
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

PlainType plainNamed(const std::string& name) {
  for (int number = 0; number < 64; ++number) {
    if (plainName(static_cast<PlainType>(number)) == name) return static_cast<PlainType>(number);
  }
  throw std::invalid_argument("no plain type " + name);
}

// data/inference/overloads.golden: "[numeric] f|* (P P [Q]) (P P ALL) ... -> ARG ... [ALL]": the
// overloads of f or of *, each in parentheses ([Q] optional, ALL quantified), and the call's
// arguments (columns of numbers(), default, null or untyped): the position of the overload
// chosen, or the fault, then the canConvert questions in the order asked. "numeric" lets the host
// convert any number to any other.
std::string chosen(const std::string& input) {
  std::istringstream in(input);
  ResolutionHost host;
  std::string word;
  in >> word;
  if (word == "numeric") {
    host.m_anyNumeric = true;
    in >> word;
  }
  const bool function = word == "f";
  Overloads functions;
  OperatorOverloads operators;
  std::vector<PlainType> parameters, optional;
  ast::Quantifier quantifier = ast::Quantifier::None;
  while (in >> word && word != "->") {
    if (word.front() == '(') parameters.clear(), optional.clear(), quantifier = ast::Quantifier::None, word.erase(0, 1);
    const bool close = !word.empty() && word.back() == ')';
    if (close) word.pop_back();
    if (word == "ALL") quantifier = ast::Quantifier::All;
    else if (!word.empty() && word.front() == '[') optional.push_back(plainNamed(word.substr(1, word.size() - 2)));
    else if (!word.empty()) parameters.push_back(plainNamed(word));
    if (close && function) {
      functions.push_back(std::make_shared<OverloadInfo>(PlainType::Integer, parameters, sample::sameAs(0),
                                                         Determinism::Deterministic, optional));
    }
    if (close && !function) operators.push_back(o(parameters, quantifier));
  }
  std::vector<E> arguments;
  ast::Quantifier call = ast::Quantifier::None;
  while (in >> word) {
    if (word == "ALL") call = ast::Quantifier::All;
    else if (word == "default" || word == "null") arguments.push_back(contextual(word == "null" ? ast::Value::Null : ast::Value::Default));
    else if (word == "untyped") arguments.push_back(ast::makeNode<E>(ast::QueryOperation{}));
    else arguments.push_back(col(std::wstring(word.begin(), word.end())));
  }
  if (function) host.addFunction(L"f", FunctionKind::Ordinary, functions);
  else host.addOperator(OperationCode::Multiply, operators);
  const auto scope = numbers();
  const std::string result = outcome([&] {
    TypeInferer inferer(host, *scope);
    const auto index = [](const auto& list, const auto& found) {
      return "#" + std::to_string(std::find(list.begin(), list.end(), found) - list.begin());
    };
    if (function) return index(functions, inferer.inferFunctionOverload(getNodeValue<ast::Function>(fn(L"f", arguments))));
    return index(operators, inferer.inferOperatorOverload(
                                getNodeValue<ast::Operation>(op(OperationCode::Multiply, arguments, call))));
  });
  return host.m_asked.empty() ? result : result + " asks" + host.m_asked;
}

const bool registered = (registerGolden("Overloads", "inference/overloads.golden", chosen), true);

TEST(OverloadResolutionTest, ContextualIsNeverAskedAbout) {
  ResolutionHost host;
  host.addFunction(L"f", FunctionKind::Ordinary, {f({PlainType::Date})});
  const auto scope = numbers();
  TypeInferer inferer(host, *scope);
  EXPECT_TRUE(inferer.matchesWithConversion(f({PlainType::Date, PlainType::Integer}),
                                            {PlainType::Contextual, PlainType::Integer}));
  EXPECT_EQ(host.m_asked, "");
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
