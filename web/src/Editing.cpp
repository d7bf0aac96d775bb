// The editor services for the WebAssembly bindings: hover and signature help, ranges in UTF-16.
#include "Bindings.h"

#include <velmor/sql/host/editor/Editing.h>

#include <optional>

namespace velmor::web {

std::string hover(const std::string& text, double offset, const sql::host::Catalogue& catalogue) {
  const Units units(text);
  const std::optional<sql::host::Hover> found = sql::host::hover(text, units.byteOf(offset), catalogue);
  if (!found) return answer(Json{{"hover", nullptr}});
  return answer(Json{{"hover",
                      {{"kind", sql::host::hoverKindName(found->kind)},
                       {"from", units.unitOf(found->range.begin)},
                       {"to", units.unitOf(found->range.end)},
                       {"title", found->title},
                       {"details", found->details},
                       {"type", found->type}}}});
}

std::string signatureHelp(const std::string& text, double offset, const sql::host::Catalogue& catalogue) {
  const Units units(text);
  const auto help = sql::host::signatureHelp(text, units.byteOf(offset), catalogue);
  if (!help) return answer(Json{{"signature", nullptr}});
  Json signatures = Json::array();
  for (const sql::host::CallSignature& signature : help->signatures) {
    // A parameter's place inside the label, in the label's own UTF-16 indexes.
    const Units label(signature.label);
    Json parameters = Json::array();
    for (const sql::host::TextRange& parameter : signature.parameters) {
      parameters.push_back({{"from", label.unitOf(parameter.begin)}, {"to", label.unitOf(parameter.end)}});
    }
    signatures.push_back({{"label", signature.label}, {"parameters", std::move(parameters)}});
  }
  return answer(Json{{"signature",
                      {{"function", help->function},
                       {"signatures", std::move(signatures)},
                       {"activeSignature", help->activeSignature},
                       {"activeParameter", help->activeParameter},
                       {"from", units.unitOf(help->call.begin)},
                       {"to", units.unitOf(help->call.end)}}}});
}

} // namespace velmor::web
