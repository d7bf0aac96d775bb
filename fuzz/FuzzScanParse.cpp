// Arbitrary bytes through the scanner and the parser: one tree or one syntax error, never more.
#include "FuzzSupport.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/sqllexer/Tokens.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace velmor::sql;

namespace {

// Visits every node, so that each record of the tree is read once.
class Walker final : public ast::TraversalVisitor {
public:
  void faultAction() override {}
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::setLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::text(data, size);
  try {
    const std::vector<ScannedToken> tokens = tokenize(input);
    VELMOR_FUZZ_CHECK(!tokens.empty() && tokens.back().id == T_TERMINATION, "tokens end the text");
    for (const ScannedToken& token : tokens) {
      VELMOR_FUZZ_CHECK(!tokenName(token.id).empty(), "every token has a name");
      VELMOR_FUZZ_CHECK(carriesText(token.id) || token.text.empty(), "only text tokens carry text");
    }
  } catch (const std::runtime_error&) {
    // A lexeme longer than the scanner's window: documented, and parse reports the same.
  }

  const ParseContext context;
  SqlParser parser(context);
  try {
    if (parser.parse(input)) {
      VELMOR_FUZZ_CHECK(parser.errors.empty() && !parser.result.isNull(), "a tree and no error");
      Walker walker;
      walker.doVisit(parser.result);
    } else {
      VELMOR_FUZZ_CHECK(parser.errors.size() == 1 && parser.result.isNull(), "one error, no tree");
      VELMOR_FUZZ_CHECK(parser.errors.front() != nullptr, "the error is there");
      (void)parser.errors.front()->what();
    }
  } catch (const std::runtime_error&) {
  }

  // Kept ranges change nothing the parse says, and each lies inside the text.
  SqlParser ranged(context);
  ranged.keepSourceRanges = true;
  try {
    const bool good = ranged.parse(input);
    VELMOR_FUZZ_CHECK(good == !parser.result.isNull(), "ranges change no verdict");
    if (!good) {
      VELMOR_FUZZ_CHECK(std::string(ranged.errors.front()->what()) == parser.errors.front()->what(), "same error");
    } else {
      VELMOR_FUZZ_CHECK(ranged.sourceRanges != nullptr, "a tree has ranges");
      const SourceRange* whole = ranged.sourceRanges->find(ranged.result);
      VELMOR_FUZZ_CHECK(whole == nullptr || (whole->beginOffset < whole->endOffset && whole->endOffset <= input.size()),
                        "the statement's range lies in the text");
    }
  } catch (const std::runtime_error&) {
  }
  return 0;
}
