// Hover, signature help, definitions and occurrences against the GIS sample catalogue (golden
// files host/hover.golden, host/signature.golden, host/definition.golden; "¦" marks the cursor),
// and their answers at every offset of awkward texts.
#include "support/Golden.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/editor/Editing.h>

#include <gtest/gtest.h>

#include <string>

namespace velmor::sql::test {
namespace {

const std::string cursor = "\xC2\xA6";

bool split(const std::string& input, std::string& text, std::size_t& at) {
  at = input.find(cursor);
  if (at == std::string::npos) return false;
  text = input.substr(0, at) + input.substr(at + cursor.size());
  return true;
}

std::string slice(const std::string& text, host::TextRange range) {
  std::string out(1, '"');
  out.append(text, range.begin, range.end - range.begin).push_back('"');
  return out;
}

std::string describeHover(const std::string& input) {
  std::string text;
  std::size_t at = 0;
  if (!split(input, text, at)) return "no cursor";
  const auto hover = host::hover(text, at, *host::gisSampleCatalogue());
  if (!hover) return "nothing";
  std::string out = host::hoverKindName(hover->kind);
  out.append(" ").append(slice(text, hover->range)).append(": ").append(hover->title);
  if (!hover->type.empty() && hover->title.find(hover->type) == std::string::npos) out.append(" -> ").append(hover->type);
  for (const auto& line : hover->details) out.append("\n  ").append(line);
  return out;
}

std::string describeSignature(const std::string& input) {
  std::string text;
  std::size_t at = 0;
  if (!split(input, text, at)) return "no cursor";
  const auto help = host::signatureHelp(text, at, *host::gisSampleCatalogue());
  if (!help) return "nothing";
  std::string out = help->function;
  out.append(" ").append(slice(text, help->call)).append(" argument ").append(std::to_string(help->activeParameter));
  for (std::size_t i = 0; i < help->signatures.size(); ++i) {
    const auto& signature = help->signatures[i];
    out.append(i == help->activeSignature ? "\n* " : "\n  ").append(signature.label).append(" [");
    for (const auto& parameter : signature.parameters) {
      out.append(" ").append(signature.label, parameter.begin, parameter.end - parameter.begin);
    }
    out.append(" ]");
  }
  return out;
}

std::string describeDefinition(const std::string& input) {
  std::string text;
  std::size_t at = 0;
  if (!split(input, text, at)) return "no cursor";
  const auto& catalogue = *host::gisSampleCatalogue();
  std::string out = "definition: ";
  if (const auto found = host::definition(text, at, catalogue)) {
    out.append(slice(text, found->origin)).append(" at ").append(std::to_string(found->origin.begin));
    out.append(" -> ").append(slice(text, found->target)).append(" at ").append(std::to_string(found->target.begin));
  } else {
    out.append("nothing");
  }
  out.append("\noccurrences:");
  for (const auto& range : host::occurrences(text, at, catalogue)) {
    out.append(" ").append(std::to_string(range.begin)).append("-").append(std::to_string(range.end));
  }
  return out;
}

const bool registered = (registerGolden("Hover", "host/hover.golden", describeHover),
                         registerGolden("Signature", "host/signature.golden", describeSignature),
                         registerGolden("Definition", "host/definition.golden", describeDefinition), true);

// Every offset of texts that end badly: no throw, and every range lies in the text.
TEST(HostEditing, AnyOffsetOfAnyText) {
  const std::string texts[] = {
      "", "SELECT", "SELECT 'open", "SELECT [open", "SELECT a\xC3",
      "SELECT d.x FROM (SELECT 1 AS x) d ORDER BY x", "SELECT buffer(shape, FROM parcels",
      "SELECT * FROM parcels p WHERE EXISTS (SELECT 1 FROM buildings b WHERE b.parcel_id = p.",
      "UPDATE parcels SET zone_id = (SELECT ( FROM", "SELECT 1; -- x;\nSELECT p.zone_id FROM parcels p;",
  };
  const auto& catalogue = *host::gisSampleCatalogue();
  auto inside = [](const std::string& text, host::TextRange range) {
    return range.begin <= range.end && range.end <= text.size();
  };
  for (const auto& text : texts) {
    for (std::size_t offset = 0; offset <= text.size() + 2; ++offset) {
      if (const auto hover = host::hover(text, offset, catalogue)) {
        EXPECT_TRUE(inside(text, hover->range)) << text;
      }
      if (const auto help = host::signatureHelp(text, offset, catalogue)) {
        EXPECT_TRUE(inside(text, help->call)) << text;
      }
      if (const auto found = host::definition(text, offset, catalogue)) {
        EXPECT_TRUE(inside(text, found->origin) && inside(text, found->target)) << text;
      }
      for (const auto& range : host::occurrences(text, offset, catalogue)) EXPECT_TRUE(inside(text, range)) << text;
    }
  }
}

} // namespace
} // namespace velmor::sql::test
