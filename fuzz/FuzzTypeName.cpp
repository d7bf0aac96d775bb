// Type names read from whatever the grammar makes: every node of a parsed text, and the target
// of a CAST, go through StringTypeInferer.
#include "FuzzSupport.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/inference/StringTypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace velmor::sql;

namespace {

void readTypeName(const ast::Node& node) {
  StringTypeInferer inferer;
  try {
    inferer.doVisit(node);
  } catch (const ast::BadNodeTypeException&) {
    return; // a size that is no number
  } catch (const std::out_of_range&) {
    return; // a size too large to read (ast::Number::unsignedInteger)
  } catch (const std::invalid_argument&) {
    return;
  }
  if (inferer.result() && inferer.result()->plainType() == type::PlainType::Fault)
    VELMOR_FUZZ_CHECK(inferer.parameterCount() == -1, "a fault sets the count to -1");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::setLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ParseContext context;
  SqlParser parser(context);
  const std::string input = fuzz::text(data, size);
  try {
    // The input as a whole expression, and as the target of a CAST.
    for (const std::string& text : {input, "CAST(x AS " + input + ")"}) {
      if (!parser.parse(text)) continue;
      readTypeName(parser.result);
      for (const ast::Node& child : ast::children(parser.result)) readTypeName(child);
    }
  } catch (const std::runtime_error&) {
    // A lexeme longer than the scanner's window.
  }
  return 0;
}
