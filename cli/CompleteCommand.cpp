// velmor-sql complete: what may stand at a cursor, as a host's editor would offer it.
#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"
#include "Places.h"
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/parser/SourceRanges.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace velmor::cli {

int runComplete(const std::vector<std::string>& args) {
  Cursor cursor;
  if (auto status = readCursor("complete", args, {}, cursor)) return *status;
  const std::string& text = cursor.text;
  const auto* catalogue = cursor.catalogue.get();
  const auto offset = &cursor.offset;

  const sql::host::Completion completion = sql::host::complete(text, *offset, *catalogue);
  std::cout << "replace " << rangeOf(text, completion.replaceBegin, completion.replaceEnd) << " \""
            << text.substr(completion.replaceBegin, completion.replaceEnd - completion.replaceBegin) << "\"\n";
  std::size_t width = 0;
  for (const auto& candidate : completion.candidates) width = std::max(width, candidate.text.size());
  for (const auto& candidate : completion.candidates) {
    std::string line = sql::host::candidateKindName(candidate.kind);
    line.resize(13, ' ');
    line += candidate.text;
    if (!candidate.detail.empty()) line += std::string(width - candidate.text.size() + 2, ' ') + candidate.detail;
    std::cout << line << '\n';
  }
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace velmor::cli
