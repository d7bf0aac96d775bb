// The editor services' answers copied into the server's terms (spans of the text handed in).
#include "Services.h"

#include <velmor/sql/host/editor/Editing.h>

namespace velmor::lsp {

std::optional<HoverAnswer> hoverAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue) {
  auto answer = sql::host::hover(text, offset, catalogue);
  if (!answer) return std::nullopt;
  return HoverAnswer{{answer->range.begin, answer->range.end}, std::move(answer->title), std::move(answer->details)};
}

std::optional<SignatureAnswer> signaturesAt(const std::string& text, std::size_t offset,
                                            const sql::host::Catalogue& catalogue) {
  auto answer = sql::host::signatureHelp(text, offset, catalogue);
  if (!answer || answer->signatures.empty()) return std::nullopt;
  SignatureAnswer result;
  result.activeSignature = answer->activeSignature;
  result.activeParameter = answer->activeParameter;
  for (auto& signature : answer->signatures) {
    SignatureAnswer::Overload overload{std::move(signature.label), {}};
    for (const auto& parameter : signature.parameters) overload.parameters.push_back({parameter.begin, parameter.end});
    result.overloads.push_back(std::move(overload));
  }
  return result;
}

std::optional<Span> definitionAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue) {
  const auto answer = sql::host::definition(text, offset, catalogue);
  if (!answer) return std::nullopt;
  return Span{answer->target.begin, answer->target.end};
}

std::vector<Span> occurrencesAt(const std::string& text, std::size_t offset, const sql::host::Catalogue& catalogue) {
  std::vector<Span> spans;
  for (const auto& place : sql::host::occurrences(text, offset, catalogue)) spans.push_back({place.begin, place.end});
  return spans;
}

} // namespace velmor::lsp
