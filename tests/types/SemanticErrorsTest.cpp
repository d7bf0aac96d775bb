// The error family: numbers, texts, clones and the catch hierarchy.
#include <velmor/sql/validation/SemanticErrors.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <typeinfo>

namespace {

using namespace velmor::sql;
using type::PlainType;

struct ErrorCase {
  const char* name;
  std::function<std::unique_ptr<SqlError>()> make;
  int number;
  std::string what;
  // Compares the carried data of the original and the clone; shared pointers compare by
  // identity, so a clone that copied a Type or an overload fails here.
  std::function<bool(const SqlError&, const SqlError&)> sameData;
};

template <class E, class Equal>
ErrorCase row(const char* name, E error, int number, std::string what, Equal equal) {
  return {name, [error] { return std::unique_ptr<SqlError>(std::make_unique<E>(error)); }, number,
          std::move(what),
          [equal](const SqlError& a, const SqlError& b) {
            return equal(dynamic_cast<const E&>(a), dynamic_cast<const E&>(b));
          }};
}

template <class E>
ErrorCase row(const char* name, E error, int number, std::string what = "Sql semantic error") {
  return row(name, std::move(error), number, std::move(what), [](const E&, const E&) { return true; });
}

const auto integer = std::make_shared<Type>(PlainType::Integer);
const auto text = std::make_shared<LengthType>(PlainType::VarChar, 5);
const std::vector<std::shared_ptr<Type>> types{integer, text};
const auto overload = std::make_shared<OverloadInfo>(PlainType::Integer, std::vector<PlainType>{PlainType::Integer}, nullptr);
const auto opOverload = std::make_shared<OperatorOverloadInfo>(
    PlainType::Integer, std::vector<PlainType>{PlainType::Integer, PlainType::Integer}, nullptr);

#define SAME(...) [](const auto& a, const auto& b) { return __VA_ARGS__; }

std::vector<ErrorCase> cases() {
  return {
      row("UnknownLexeme", UnknownLexeme(L"#"), 1, "Unknown lexeme: [#]", SAME(a.lexeme == b.lexeme)),
      row("UnexpectedLexeme", UnexpectedLexeme(2, 7, "oops"), 2, "oops at 2:7", SAME(a.line == b.line && a.text == b.text)),
      row("NonExistentTable", NonExistentTable(L"t"), 3, "Sql semantic error", SAME(a.tableName == b.tableName)),
      row("TableExists", TableExists(L"t"), 4, "Sql semantic error", SAME(a.tableName == b.tableName)),
      row("UnknownTableReference", UnknownTableReference(L"t"), 5, "Sql semantic error", SAME(a.tableName == b.tableName)),
      row("NonUniqueTableReference", NonUniqueTableReference(L"t"), 6, "Sql semantic error", SAME(a.tableName == b.tableName)),
      row("UnknownColumnReference", UnknownColumnReference(L"t", L"c"), 7, "Sql semantic error",
          SAME(a.tableName == b.tableName && a.columnName == b.columnName)),
      row("AmbiguousColumnReference", AmbiguousColumnReference(L"t", L"c"), 8, "Sql semantic error",
          SAME(a.tableName == b.tableName && a.columnName == b.columnName)),
      row("WrongExpressionType", WrongExpressionType(integer, numericTypes, L"x"), 9, "Sql semantic error",
          SAME(a.actualType == b.actualType && a.expectedTypes == b.expectedTypes && a.text == b.text)),
      row("CommonColumnTypeMismatch", CommonColumnTypeMismatch(L"c", types, {text}, L"l", L"r"), 10,
          "Sql semantic error", SAME(a.leftTypes == b.leftTypes && a.rightTypes == b.rightTypes && a.rightTableName == b.rightTableName)),
      row("NoCommonColumns", NoCommonColumns(L"l", L"r"), 11, "Sql semantic error",
          SAME(a.leftTableName == b.leftTableName && a.rightTableName == b.rightTableName)),
      row("SetClauseTypeMismatch", SetClauseTypeMismatch(types, {integer}, L"c"), 12, "Sql semantic error",
          SAME(a.targetTypes == b.targetTypes && a.sourceTypes == b.sourceTypes && a.columnName == b.columnName)),
      row("InsertSourceTypeMismatch", InsertSourceTypeMismatch(types, {text}, L"t", L"x"), 13, "Sql semantic error",
          SAME(a.targetTypes == b.targetTypes && a.sourceTypes == b.sourceTypes && a.tableName == b.tableName)),
      row("BinaryOperationTypeMismatch", BinaryOperationTypeMismatch(integer, text, L"1", L"'a'"), 14,
          "Sql semantic error", SAME(a.leftType == b.leftType && a.rightType == b.rightType && a.rightText == b.rightText)),
      row("UnknownFunction", UnknownFunction(L"f"), 15, "Sql semantic error", SAME(a.functionName == b.functionName)),
      row("NoGoodFunctionCandidate", NoGoodFunctionCandidate(L"f", types, {overload}), 16, "Sql semantic error",
          SAME(a.argumentTypes == b.argumentTypes && a.candidates == b.candidates)),
      row("AmbiguousFunctionCall", AmbiguousFunctionCall(L"f", types, {overload, overload}), 17, "Sql semantic error",
          SAME(a.argumentTypes == b.argumentTypes && a.candidates == b.candidates)),
      row("WrongParametersArity", WrongParametersArity(L"f", {1, 2, 5, true}), 18, "Sql semantic error",
          SAME(a.arity.required == b.arity.required && a.arity.actual == b.arity.actual && a.arity.variadic == b.arity.variadic)),
      row("IncompatibleParameterType", IncompatibleParameterType(L"f", 3, datetimeTypes, PlainType::Boolean, L"x"), 19,
          "Sql semantic error", SAME(a.position == b.position && a.expectedTypes == b.expectedTypes && a.actualType == b.actualType)),
      row("AsteriskIsProhibited", AsteriskIsProhibited(L"*"), 20, "Sql semantic error", SAME(a.text == b.text)),
      row("SetQuantifierIsProhibited", SetQuantifierIsProhibited(L"x"), 21, "Sql semantic error", SAME(a.text == b.text)),
      row("NoGoodOperatorOverload", NoGoodOperatorOverload(OperationCode::Plus, types, {opOverload}), 22,
          "Sql semantic error", SAME(a.operation == b.operation && a.argumentTypes == b.argumentTypes && a.candidates == b.candidates)),
      row("AmbiguousOperatorCall", AmbiguousOperatorCall(OperationCode::Less, types, {opOverload}), 23,
          "Sql semantic error", SAME(a.operation == b.operation && a.argumentTypes == b.argumentTypes && a.candidates == b.candidates)),
      row("OperatorNotSupported", OperatorNotSupported(OperationCode::Within), 24, "Sql semantic error",
          SAME(a.operation == b.operation)),
      row("AggregateInWhereClause", AggregateInWhereClause(), 25),
      row("ContextQuery", ContextQuery(), 26),
      row("InvalidContext", InvalidContext(), 28),
      row("UnexpectedParseResult", UnexpectedParseResult(L"x"), 29, "Sql semantic error", SAME(a.text == b.text)),
      row("SelectionTableIsAbsent", SelectionTableIsAbsent(), 30),
      row("GeneralSyntaxError", GeneralSyntaxError("bad"), 31, "bad", SAME(a.description == b.description)),
      row("AmbiguousTablesReference", AmbiguousTablesReference(L"t"), 32, "Sql semantic error", SAME(a.tableName == b.tableName)),
      row("NotEnoughMemory", NotEnoughMemory(), 33, "Not enough memory"),
      row("WhereClauseExpressionNotBool", WhereClauseExpressionNotBool(), 0),
      row("HavingClauseExpressionNotBool", HavingClauseExpressionNotBool(), 0),
  };
}

TEST(SemanticErrors, NumberWhatAndClone) {
  for (const auto& c : cases()) {
    SCOPED_TRACE(c.name);
    const long shared = integer.use_count();
    std::unique_ptr<SqlError> original = c.make();
    EXPECT_EQ(static_cast<int>(original->type()), c.number);
    EXPECT_EQ(std::string(original->what()), c.what);
    std::unique_ptr<SqlError> copy(original->clone());
    EXPECT_EQ(typeid(*copy), typeid(*original));
    EXPECT_EQ(static_cast<int>(copy->type()), c.number);
    EXPECT_TRUE(c.sameData(*original, *copy));
    original.reset();  // the clone outlives its source
    EXPECT_EQ(static_cast<int>(copy->type()), c.number);
    copy.reset();
    EXPECT_EQ(integer.use_count(), shared);
  }
}

TEST(SemanticErrors, CatchHierarchy) {
  auto catchesAsSemantic = [](const std::function<void()>& raise) {
    try {
      raise();
    } catch (const SqlSemanticError&) {
      return true;
    } catch (...) {
    }
    return false;
  };
  EXPECT_TRUE(catchesAsSemantic([] { throw ContextQuery(); }));
  EXPECT_FALSE(catchesAsSemantic([] { throw NotEnoughMemory(); }));
  EXPECT_THROW(throw NotEnoughMemory(), SqlError);

  bool asSqlError = false;
  try {
    throw AmbiguousOperatorOverloads();
  } catch (const SqlError&) {
    asSqlError = true;
  } catch (const TypeInferenceException& e) {
    EXPECT_STREQ(e.what(), "Ambiguous operator");
  }
  EXPECT_FALSE(asSqlError);
  EXPECT_STREQ(TypeInferenceException().what(), std::exception().what());
}

} // namespace
