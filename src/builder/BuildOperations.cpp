// The SQL writer's expressions: operators with their parentheses, CASE, routines, rows.
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>

#include "builder/BuildHelpers.h"

#include <velmor/sql/Assert.h>

#include <array>
#include <iostream>
#include <stdexcept>
#include <typeinfo>
#include <vector>

namespace velmor::sql {

using builder::kSource;
using builder::parenthesize;
using builder::recordOf;

namespace {

using builder::kLastBuiltinOperation;
using builder::kOperationTexts;

constexpr bool operationTableInOrder() {
  std::int32_t expected = 0;
#define VELMOR_SQL_OPERATION(Name, Number, Text)                                                   \
  if (static_cast<std::int32_t>(OperationCode::Name) != expected++) return false;
#include <velmor/sql/ast/OperationCodes.def>
  return expected == kLastBuiltinOperation + 1;
}
static_assert(operationTableInOrder(), "operation numbers must run 0..50 without a gap");

std::wstring& identity(std::wstring& text) { return text; }

bool isOneOf(OperationCode code, std::initializer_list<OperationCode> codes) {
  for (OperationCode candidate : codes)
    if (code == candidate) return true;
  return false;
}

const SqlStringBuilder::Transform& identityTransform() {
  static const SqlStringBuilder::Transform kIdentity = identity;
  return kIdentity;
}

// The unary operators that write their operand behind them.
bool writesPrefix(const ast::Operation& op) {
  return op.unary() && isOneOf(op.operation, {OperationCode::Not, OperationCode::Exists, OperationCode::Unique,
                                              OperationCode::Plus, OperationCode::Minus});
}

// The binary operators written "left OP [quantifier] right".
bool writesInfix(const ast::Operation& op) {
  return op.operands.size() == 2 && op.operation != OperationCode::Case && op.operation != OperationCode::Cast;
}

// The operation below `node`, if it is one that `fits`.
template <class Fits>
const ast::Operation* chained(const ast::ExpressionNode& node, Fits fits) {
  if (builder::kindOf(node) != builder::Kind::Operation) return nullptr;
  const ast::Operation& op = recordOf<ast::Operation>(node);
  return fits(op) ? &op : nullptr;
}

} // namespace

void SqlStringBuilder::visit(const ast::Operation& record) { processOperation(record, identityTransform()); }

bool SqlStringBuilder::writesChainsWhole() const {
  // Only where no derived visit or hook could look at the fragments of the inner links: the
  // library's own builders.
  return typeid(*this) == typeid(SqlStringBuilder) || typeid(*this) == typeid(RenameTableBuilder);
}

void SqlStringBuilder::writeUnaryChain(std::vector<const ast::Operation*>& chain) {
  while (const ast::Operation* next = chained(chain.back()->operands.at(0), writesPrefix)) chain.push_back(next);
  doVisit(chain.back()->operands.at(0));
  std::wstring operand = std::move(mStack.top());
  mStack.pop();
  // Each link writes its sign and, if its operand needs them, an opening parenthesis in front
  // of all below it, and the closing one behind: the text is built once, front to back.
  std::wstring text;
  std::size_t closing = 0;
  for (const ast::Operation* link : chain) {
    text += operationToString(link->operation);
    if (!isOneOf(link->operation, {OperationCode::Plus, OperationCode::Minus})) text += L' ';
    if (needParantheses(*link, true)) {
      text += L'(';
      ++closing;
    }
  }
  text += operand;
  text.append(closing, L')');
  mStack.push(std::move(text));
}

void SqlStringBuilder::writeInfixChain(std::vector<const ast::Operation*>& chain) {
  while (const ast::Operation* next = chained(chain.back()->operands.at(0), writesInfix)) chain.push_back(next);
  // Right operands first, top down, as the nested visits would take them; then the leftmost.
  std::vector<std::wstring> operators, rights;
  operators.reserve(chain.size());
  rights.reserve(chain.size());
  for (const ast::Operation* link : chain) {
    std::wstring opText = operationToString(link->operation);
    if (link->quantifier != ast::Quantifier::None) opText += L' ' + quantifierToString(link->quantifier);
    operators.push_back(std::move(opText));
    doVisit(link->operands[1]);
    rights.push_back(std::move(mStack.top()));
    mStack.pop();
    if (needParantheses(*link, true)) parenthesize(rights.back());
  }
  doVisit(chain.back()->operands[0]);
  std::wstring left = std::move(mStack.top());
  mStack.pop();
  // A link whose left operand needs parentheses opens one at the very front and closes it
  // behind the text of the links below: the openings all stand together.
  std::size_t opening = 0;
  for (const ast::Operation* link : chain) opening += needParantheses(*link, false);
  std::wstring text(opening, L'(');
  text += left;
  for (std::size_t i = chain.size(); i-- > 0;) {
    if (needParantheses(*chain[i], false)) text += L')';
    text += L' ';
    text += operators[i];
    text += L' ';
    text += rights[i];
  }
  mStack.push(std::move(text));
}

std::wstring SqlStringBuilder::operationToString(OperationCode code) const {
  const auto number = static_cast<std::int32_t>(code);
  if (number > kLastBuiltinOperation) {
    if (mContext != nullptr) return mContext->operatorToString(code);
    std::cerr << "Unhandled custom binary operation: " << number << '\n';
    return L"UNKNOWN_OPERATOR";
  }
  if (number >= 1) return std::wstring(kOperationTexts[static_cast<std::size_t>(number)]);
  std::cerr << "Unhandled builtin operation: " << number << '\n';
  VELMOR_SQL_ASSERT(false, kSource);
  return {};
}

std::wstring SqlStringBuilder::quantifierToString(ast::Quantifier quantifier) {
  switch (quantifier) {
  case ast::Quantifier::All: return L"ALL";
  case ast::Quantifier::Any: return L"ANY";
  case ast::Quantifier::None: VELMOR_SQL_ASSERT(false, kSource); return {};
  }
  std::cerr << "Unhandled quantifier type: " << static_cast<std::int32_t>(quantifier) << '\n';
  VELMOR_SQL_ASSERT(false, kSource);
  return {};
}

void SqlStringBuilder::processOperation(const ast::Operation& op, const Transform& transform) {
  if (op.operation == OperationCode::Case) {
    visitCase(op.operands, transform);
    return;
  }
  // A chain of operators, one in the operand of the next (- - a, a OR b OR c), is written in
  // one pass: link by link, each would copy the text of all below it again.
  const bool whole = &transform == &identityTransform() && writesChainsWhole();
  if (whole && writesPrefix(op) && chained(op.operands[0], writesPrefix)) {
    std::vector<const ast::Operation*> chain{&op};
    writeUnaryChain(chain);
    return;
  }
  if (whole && writesInfix(op) && chained(op.operands[0], writesInfix)) {
    std::vector<const ast::Operation*> chain{&op};
    writeInfixChain(chain);
    return;
  }
  const std::wstring opText = operationToString(op.operation);

  // Operands go right, third, left: the left one's fragment stays on the stack and becomes
  // the operation's own.
  doVisit(op.unary() ? op.operands.at(0) : op.operands.at(1));
  std::wstring right = std::move(mStack.top());
  mStack.pop();
  if (needParantheses(op, true)) parenthesize(right);
  transform(right);

  if (op.unary()) {
    std::wstring text;
    if (isOneOf(op.operation, {OperationCode::Not, OperationCode::Exists, OperationCode::Unique})) {
      text.reserve(opText.size() + 1 + right.size());
      text += opText;
      text += L' ';
      text += right;
    } else if (isOneOf(op.operation, {OperationCode::Plus, OperationCode::Minus})) {
      text.reserve(opText.size() + right.size());
      text += opText;
      text += right;
    } else {
      std::cerr << "Unhandled unary operation: " << static_cast<std::int32_t>(op.operation) << '\n';
      VELMOR_SQL_ASSERT(false, kSource);
    }
    mStack.push(std::move(text));
    return;
  }

  const bool ternary = op.operands.size() >= 3;
  std::wstring third;
  if (ternary) {
    doVisit(op.operands[2]);
    third = std::move(mStack.top());
    mStack.pop();
    parenthesize(third);
    transform(third);
  }

  doVisit(op.operands[0]);
  std::wstring& top = mStack.top();
  if (needParantheses(op, false)) parenthesize(top);

  if (op.operation == OperationCode::Cast) {
    const std::wstring& left = transform(top);
    std::wstring text;
    text.reserve(opText.size() + left.size() + right.size() + 6);
    text += opText;
    text += L'(';
    text += left;
    text += L" AS ";
    text += right;
    text += L')';
    top = std::move(text);
    return;
  }

  std::wstring& left = transform(top);
  // The identity transform hands back the fragment itself, which is then extended in place.
  if (&left != &top) top = left;
  const std::wstring quantifier =
      op.quantifier == ast::Quantifier::None ? std::wstring() : quantifierToString(op.quantifier);
  top.reserve(top.size() + opText.size() + quantifier.size() + right.size() + third.size() + 8);
  top += L' ';
  top += opText;
  top += L' ';
  if (op.quantifier != ast::Quantifier::None) {
    top += quantifier;
    top += L' ';
  }
  top += right;
  if (ternary) {
    top += L" AND ";
    top += third;
  }
}

bool SqlStringBuilder::needParantheses(const ast::Operation& op, bool right) const {
  // What the operator alone decides, before its operand (which may be missing) is looked at.
  if (right && op.quantifier != ast::Quantifier::None) return true;
  if (op.operation == OperationCode::In || op.operation == OperationCode::NotIn) return right;
  // Operand 0 of a unary operator is its right side; the left side of a binary one is 0.
  const ast::ExpressionNode& operandNode =
      right ? op.operands.at(op.unary() ? 0 : 1) : op.operands.at(0);
  const builder::Kind kind = builder::kindOf(operandNode);
  const ast::Operation* operand = kind == builder::Kind::Operation ? &recordOf<ast::Operation>(operandNode) : nullptr;
  return builder::groupsOperand(op, right, kind, operand, mContext);
}

void SqlStringBuilder::visitCase(const std::vector<ast::ExpressionNode>& operands,
                                 const Transform& transform) {
  const std::size_t count = operands.size();
  if (count < 3) {
    std::cerr << "Unexpected parameters count in the case operator: " << count << '\n';
    VELMOR_SQL_ASSERT(false, kSource);
    mStack.emplace();
    return;
  }
  std::wstring text = operationToString(OperationCode::Case);
  text += L' ';

  // A subject written as the word for true is the stand-in of a CASE without subject.
  doVisit(operands[0]);
  if (mStack.top() != ternaryToString(TernaryLogic::True)) {
    text += transform(mStack.top());
    text += L' ';
  }
  mStack.pop();

  std::size_t i = 1;
  for (; i + 1 < count; i += 2) {
    text += L"WHEN ";
    doVisit(operands[i]);
    text += transform(mStack.top());
    mStack.pop();
    doVisit(operands[i + 1]);
    text += L" THEN ";
    text += transform(mStack.top());
    mStack.pop();
    text += L' ';
  }
  if (i < count) {
    text += L"ELSE ";
    doVisit(operands[i]);
    text += transform(mStack.top());
    mStack.pop();
    text += L' ';
  }
  text += L"END";
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::Function& record) {
  std::wstring text = record.name;
  if (record.asterisk) {
    text += L"(*)";
    mStack.push(std::move(text));
    return;
  }
  if (record.arguments.empty()) {
    text += L"()";
    mStack.push(std::move(text));
    return;
  }
  text += L'(';
  if (record.setQuantifier == ast::SetQuantifier::Distinct) text += L"DISTINCT ";
  for (std::size_t i = 0; i < record.arguments.size(); ++i) {
    doVisit(record.arguments[i]);
    std::wstring& argument = mStack.top();
    if (needParantheses(record.arguments[i])) parenthesize(argument);
    if (i != 0) text += L", ";
    text += argument;
    mStack.pop();
  }
  text += L')';
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::RowValueExpression& record) {
  // ROW() parses to a row without values, which has no text.
  if (record.values.empty()) throw std::out_of_range("a row without values cannot be written");
  doVisit(record.values[0]);
  std::wstring text = L"(";
  text += mStack.top();
  mStack.pop();
  for (std::size_t i = 1; i < record.values.size(); ++i) {
    doVisit(record.values[i]);
    text += L", ";
    text += mStack.top();
    mStack.pop();
  }
  text += L')';
  mStack.push(std::move(text));
}

void SqlStringBuilder::visit(const ast::RowValueExpressionList& record) {
  // Each row brings its own parentheses; the list itself has none.
  if (record.rows.empty()) throw std::out_of_range("a row list without rows cannot be written");
  doVisit(record.rows[0]);
  for (std::size_t i = 1; i < record.rows.size(); ++i) {
    doVisit(record.rows[i]);
    std::wstring row = std::move(mStack.top());
    mStack.pop();
    mStack.top() += L", ";
    mStack.top() += row;
  }
}

void SqlStringBuilder::visit(const ast::Range& record) {
  doVisit(record.lower);
  std::wstring lower = std::move(mStack.top());
  mStack.pop();
  doVisit(record.upper);
  std::wstring& top = mStack.top();
  lower += L" AND ";
  lower += top;
  top = std::move(lower);
}

} // namespace velmor::sql
