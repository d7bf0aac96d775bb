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

/// What is under the cursor: the span it is about, a title line and further lines.
struct HoverAnswer {
  Span span;
  std::string title;
  std::vector<std::string> details;
};

/// The overloads of the call around the cursor, the one the arguments resolve to and the argument
/// the cursor is in.
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

/// The kit's answers for byte `offset` of `text` (one statement, or the start of one), with spans
/// in `text`; none or empty where the kit has nothing. Never throw but std::bad_alloc.
std::optional<HoverAnswer> hoverAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue);
std::optional<SignatureAnswer> signaturesAt(const std::string& text, std::size_t offset,
                                            const sql::host::Catalogue& catalogue);
std::optional<Span> definitionAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue);
std::vector<Span> occurrencesAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue);

} // namespace velmor::lsp
