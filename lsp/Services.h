// The kit's editor services (hover, signature help, definition, occurrences) in the server's own
// terms: spans of the text handed in.
#pragma once

#include "Text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql::host {
class Catalogue;
} // namespace velmor::sql::host

namespace velmor::lsp {

struct HoverAnswer {
  Span span;
  std::string title;
  std::vector<std::string> details;
};

struct SignatureAnswer {
  struct Overload {
    std::string label;
    /// Byte spans of the parameters inside `label`.
    std::vector<Span> parameters;
  };
  std::vector<Overload> overloads;
  std::size_t activeSignature = 0;
  std::size_t activeParameter = 0;
};

std::optional<HoverAnswer> hoverAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue);
std::optional<SignatureAnswer> signaturesAt(const std::string& text, std::size_t offset,
                                            const sql::host::Catalogue& catalogue);
/// The declaration of the name at `offset`.
std::optional<Span> definitionAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue);
std::vector<Span> occurrencesAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue);

} // namespace velmor::lsp
