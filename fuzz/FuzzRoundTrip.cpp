// Parse, write canonical SQL, parse that again, and so on: the canonical text settles; and the
// library's own builder, which writes in one pass, writes what a derived builder's record-by-record
// walk writes. The
// writer has known shapes whose text reads back as another tree (a keyword it does not
// bracket, a query under EXISTS, VALUES outside INSERT, a row of one value, a unary minus over
// a comparison, which loses its parentheses, ...); each step may then drop one such grouping,
// so the text must reach a fixed point within a few steps rather than at once.
#include "FuzzSupport.h"

#include <velmor/sql/host/Precedence.h>

#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

using namespace velmor::sql;

namespace {

// UTF-16 units to UTF-8; a lone surrogate is written as its own three bytes.
std::string toUtf8(const std::wstring& units) {
  std::string out;
  for (std::size_t i = 0; i < units.size(); ++i) {
    std::uint32_t code = static_cast<std::uint32_t>(units[i]) & 0xFFFFu;
    if (code >= 0xD800 && code < 0xDC00 && i + 1 < units.size()) {
      const std::uint32_t low = static_cast<std::uint32_t>(units[i + 1]) & 0xFFFFu;
      if (low >= 0xDC00 && low < 0xE000) {
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      }
    }
    if (code < 0x80) {
      out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (code >> 6)));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (code >> 12)));
      out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (code >> 18)));
      out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
  }
  return out;
}

std::optional<std::string> canonical(const std::string& text, const StringBuildContext* context) {
  const ParseContext parseContext;
  SqlParser parser(parseContext);
  if (!parser.parse(text)) return std::nullopt;
  SqlStringBuilder builder(context);
  try {
    return toUtf8(builder.buildString(parser.result));
  } catch (const std::out_of_range&) {
    return std::nullopt; // documented: ROW(), whose row has no values, has no text
  }
}

// A builder of the host's own, which the library writes through the walk of visits.
class WalkingBuilder final : public SqlStringBuilder {
public:
  using SqlStringBuilder::SqlStringBuilder;
};

// The text of `tree` from a builder of kind B; nothing when the tree has no text (ROW()).
template <class B>
std::optional<std::wstring> written(const ast::Node& tree, const StringBuildContext* context) {
  B builder(context);
  try {
    return builder.buildString(tree);
  } catch (const std::out_of_range&) {
    return std::nullopt;
  }
}

// Known shapes that never settle, from the writer's own list of texts that do not read back.
// A string value with a double quote is written \" inside double quotes, which ends the piece
// when read, so each step changes the string again.
bool neverSettles(const std::string& canonicalText) {
  return canonicalText.find("\\\"") != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::setLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const velmor::sql::host::GrammarPrecedence defaultContext;
  try {
    for (const StringBuildContext* context : {static_cast<const StringBuildContext*>(&defaultContext),
                                              static_cast<const StringBuildContext*>(nullptr)}) {
      {
        const ParseContext parseContext;
        SqlParser parser(parseContext);
        if (parser.parse(fuzz::text(data, size))) {
          VELMOR_FUZZ_CHECK(written<SqlStringBuilder>(parser.result, context) ==
                                written<WalkingBuilder>(parser.result, context),
                            "one-pass and walked texts agree");
        }
      }
      std::optional<std::string> previous = canonical(fuzz::text(data, size), context);
      if (!previous || neverSettles(*previous)) continue;
      constexpr int kSteps = 16;
      int step = 0;
      for (; step < kSteps; ++step) {
        std::optional<std::string> next = canonical(*previous, context);
        if (!next || *next == *previous || neverSettles(*next)) break;
        previous = std::move(next);
      }
      if (step == kSteps) fprintf(stderr, "last text: %s\n", previous->c_str());
      VELMOR_FUZZ_CHECK(step < kSteps, "canonical text settles");
    }
  } catch (const std::runtime_error&) {
    // A lexeme longer than the scanner's window.
  }
  return 0;
}
