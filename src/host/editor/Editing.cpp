// Editor services from the scopes of the statement at the cursor.
#include <velmor/sql/host/editor/Editing.h>

namespace velmor::sql::host {

std::optional<Hover> hover(const std::string&, std::size_t, const Catalogue&) { return std::nullopt; }

std::optional<SignatureHelp> signatureHelp(const std::string&, std::size_t, const Catalogue&) { return std::nullopt; }

std::optional<Definition> definition(const std::string&, std::size_t, const Catalogue&) { return std::nullopt; }

std::vector<TextRange> occurrences(const std::string&, std::size_t, const Catalogue&) { return {}; }

const char* hoverKindName(Hover::Kind kind) {
  switch (kind) {
  case Hover::Kind::Column: return "column";
  case Hover::Kind::Table: return "table";
  case Hover::Kind::Function: return "function";
  case Hover::Kind::Expression: return "expression";
  case Hover::Kind::OutputName: return "output name";
  }
  return "expression";
}

} // namespace velmor::sql::host
