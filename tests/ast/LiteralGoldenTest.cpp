// data/ast/literals.golden: "value RAW" gives the value of a string literal (with the assertions
// a malformed one raises), "text VALUE" the escaped text of a value and whether it reads back,
// "count KIND TEXT" a number read as a count. Units outside printable ASCII are \uXXXX both ways.
#include "support/Golden.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/AST.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmor::sql {
namespace {

std::vector<std::string> seenAssertions;

std::wstring wide(const std::string& text) {
  std::wstring out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "\\u") == 0 && i + 6 <= text.size()) {
      out += static_cast<wchar_t>(std::stoul(text.substr(i + 2, 4), nullptr, 16));
      i += 5;
    } else {
      out += static_cast<wchar_t>(static_cast<unsigned char>(text[i]));
    }
  }
  return out;
}

std::string shown(const std::wstring& text) {
  std::string out;
  for (wchar_t unit : text) {
    char escape[12];
    std::snprintf(escape, sizeof escape, unit >= 0x20 && unit < 0x7F ? "%c" : "\\u%04X", static_cast<unsigned>(unit));
    out += escape;
  }
  return out;
}

std::string literal(const std::string& input) {
  const std::string mode = input.substr(0, input.find(' '));
  const std::string rest = input.substr(mode.size() + 1);
  if (mode == "count") {
    const std::string kind = rest.substr(0, rest.find(' '));
    const auto number = ast::Number{kind == "Integer" ? ast::NumberKind::Integer
                                    : kind == "Exact" ? ast::NumberKind::Exact
                                                      : ast::NumberKind::Approximate,
                                    wide(rest.substr(kind.size() + 1))};
    try {
      return std::to_string(number.unsignedInteger());
    } catch (const std::invalid_argument& e) {
      return std::string("invalid_argument ") + e.what();
    } catch (const std::out_of_range& e) {
      return std::string("out_of_range ") + e.what();
    }
  }
  if (mode == "text") {
    ASTStringValue value;
    value.m_value = wide(rest);
    const std::wstring text = value.toString();
    return shown(text) + (ASTStringValue(L"'" + text + L"'").m_value == value.m_value ? " (reads back)" : "");
  }
  seenAssertions.clear();
  const AssertionHandler previous =
      setAssertionHandler([](const char* expression, const char*) { seenAssertions.push_back(expression); });
  ASTStringValue value;
  value.parse(wide(rest));
  setAssertionHandler(previous);
  std::string out = shown(value.m_value);
  for (const std::string& assertion : seenAssertions) out += "\nassertion: " + assertion;
  return out;
}

const bool registered = (test::registerGolden("Literals", "ast/literals.golden", literal), true);

} // namespace
} // namespace velmor::sql
