// Small helpers shared by the translation units of the SQL writer.
#pragma once

#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/AST.h>

#include <cstdint>
#include <string>
#include <typeinfo>

namespace velmor::sql::builder {

inline constexpr const char* kSource = "SqlStringBuilder";

/// The record kind of a node, asked without a visitor: the node classes are final, so the
/// dynamic type identifies the kind. An empty handle throws as a visit would; a node of
/// EmptyNode holds no kind.
template <class T>
bool holds(const ast::Node& node) {
  if (!node.mImpl) throw ast::NullNodeException();
  const ast::NodeInterface& impl = *node.mImpl;
  return typeid(impl) == typeid(ast::NodeImpl<T>);
}

/// The record of a node already known to hold a T.
template <class T>
const T& recordOf(const ast::Node& node) {
  return static_cast<const ast::NodeImpl<T>&>(*node.mImpl).value();
}

inline void parenthesize(std::wstring& text) {
  text.insert(text.begin(), L'(');
  text.push_back(L')');
}

inline void appendUnsigned(std::wstring& text, std::uint64_t value) {
  wchar_t digits[24];
  wchar_t* end = digits + 24;
  wchar_t* begin = end;
  do {
    *--begin = static_cast<wchar_t>(L'0' + value % 10);
    value /= 10;
  } while (value != 0);
  text.append(begin, end);
}

} // namespace velmor::sql::builder
