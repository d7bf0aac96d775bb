// Small helpers shared by the translation units of the SQL writer.
#pragma once

#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/builder/Keywords.h>
#include <velmor/sql/builder/SqlStringBuilder.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace velmor::sql::builder {

inline constexpr const char* kSource = "SqlStringBuilder";

inline constexpr std::int32_t kLastBuiltinOperation = 50;

/// Canonical texts of the built-in operators, indexed by their numbers.
inline constexpr std::array<std::wstring_view, kLastBuiltinOperation + 1> kOperationTexts = {
#define VELMOR_SQL_OPERATION(Name, Number, Text) std::wstring_view(L"" Text),
#include <velmor/sql/ast/OperationCodes.def>
};

/// The record kinds, in slot order, and None for a node of EmptyNode.
enum class Kind : unsigned char {
  None,
#define VELMOR_SQL_RECORD(Name, isExpr) Name,
#include <velmor/sql/ast/Records.def>
};

/// Learns the record kind of a node with one dispatch.
class KindVisitor final : public ast::NodeVisitor {
public:
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void visit(const ast::Name&) override { kind = Kind::Name; }
#include <velmor/sql/ast/Records.def>
  Kind kind = Kind::None;
};

/// The kind of `node`; an empty handle throws NullNodeException as any visit would. The node
/// is asked directly: one level that recurses no further needs none of Node::accept's care
/// for the stack.
inline Kind kindOf(const ast::Node& node) {
  if (!node.mImpl) throw ast::NullNodeException();
  KindVisitor visitor;
  node.mImpl->accept(visitor);
  return visitor.kind;
}

template <class T>
bool holds(const ast::Node& node) {
  switch (kindOf(node)) {
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  case Kind::Name: return std::is_same_v<T, ast::Name>;
#include <velmor/sql/ast/Records.def>
  case Kind::None: return false;
  }
  return false;
}

/// The record of a node already known to hold a T.
template <class T>
const T& recordOf(const ast::Node& node) {
  return static_cast<const ast::NodeImpl<T>&>(*node.mImpl).value();
}

/// Whether `op` writes its left or right operand in parentheses, given the operand's kind and,
/// for an operation, its record: the fixed rules first, then the context's precedence.
inline bool groupsOperand(const ast::Operation& op, bool right, Kind kind, const ast::Operation* operand,
                          const StringBuildContext* context) {
  if (right && op.quantifier != ast::Quantifier::None) return true;
  // The list or query behind IN always has its own parentheses; the value in front never.
  if (op.operation == OperationCode::In || op.operation == OperationCode::NotIn) return right;
  if (kind == Kind::QuerySpecification) return true;
  if (kind != Kind::Operation) return false;
  if (op.operands.size() == 1) {
    const OperationCode code = operand->operation;
    return code == OperationCode::Or || code == OperationCode::Xor || code == OperationCode::And ||
           code == OperationCode::Plus || code == OperationCode::Minus;
  }
  if (operand->operands.size() == 1) return !right && op.operation == OperationCode::Power;
  if (context == nullptr) return true;
  const int precedence = context->comparePrecedence(operand->operation, op.operation);
  if (precedence < 0) return true;
  if (precedence > 0) return false;
  // Equal precedence associates to the left; on the right only the operators that are not
  // associative keep the grouping.
  return right && (op.operation == OperationCode::Minus || op.operation == OperationCode::Divide ||
                   op.operation == OperationCode::IntegerDivide || op.operation == OperationCode::Modulo);
}

/// Appends Keywords::escape(word) without making the escaped copy.
inline void appendName(std::wstring& text, const std::wstring& word) {
  if (Keywords::instance().isOf(word)) {
    text += L'[';
    text += word;
    text += L']';
  } else {
    text += word;
  }
}

inline void parenthesize(std::wstring& text) {
  text.insert(text.begin(), L'(');
  text.push_back(L')');
}

/// The decimal digits of `value`, written at the end of `room`.
inline std::wstring_view decimalDigits(std::uint64_t value, std::array<wchar_t, 24>& room) {
  wchar_t* const end = room.data() + room.size();
  wchar_t* begin = end;
  do {
    *--begin = static_cast<wchar_t>(L'0' + value % 10);
    value /= 10;
  } while (value != 0);
  return {begin, static_cast<std::size_t>(end - begin)};
}

inline void appendUnsigned(std::wstring& text, std::uint64_t value) {
  std::array<wchar_t, 24> room;
  text.append(decimalDigits(value, room));
}

} // namespace velmor::sql::builder
