// Hover for the WebAssembly bindings, apart from the rest: the editor services' header and the
// catalogue's both declare a host::Signature.
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

} // namespace velmor::web
