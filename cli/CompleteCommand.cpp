// velmor-sql complete: what may stand at a cursor, as a host's editor would offer it.
#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/parser/SourceRanges.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace velmor::cli {

namespace {

struct Place {
  std::size_t line = 0;
  std::size_t column = 0;
};

// "LINE:COL", both from 1.
std::optional<Place> placeOf(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) return std::nullopt;
  int line = 0, column = 0;
  try {
    std::size_t used = 0;
    line = std::stoi(text.substr(0, colon), &used);
    if (used != colon) return std::nullopt;
    column = std::stoi(text.substr(colon + 1), &used);
    if (used != text.size() - colon - 1) return std::nullopt;
  } catch (const std::exception&) {
    return std::nullopt;
  }
  if (line < 1 || column < 1) return std::nullopt;
  return Place{static_cast<std::size_t>(line), static_cast<std::size_t>(column)};
}

// Takes "--at LINE:COL" (or "--at=LINE:COL") out of the leading options, before or after
// "--catalog FILE".
std::optional<std::string> takeAt(std::vector<std::string>& args) {
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const auto at = args.begin() + static_cast<std::ptrdiff_t>(i);
    if (arg == "--at" && i + 1 < args.size()) {
      std::string value = args[i + 1];
      args.erase(at, at + 2);
      return value;
    }
    if (arg.rfind("--at=", 0) == 0) {
      std::string value = arg.substr(5);
      args.erase(at);
      return value;
    }
    if (arg.size() < 2 || arg.compare(0, 2, "--") != 0) break;
    if (arg == "--catalog") ++i; // its value
  }
  return std::nullopt;
}

// Counted as the scanner counts: a column per code point, tabs to the next stop of a grid of 4.
Place placeAtOffset(const std::string& text, std::size_t offset) {
  Place place{1, 1};
  for (std::size_t i = 0; i < offset && i < text.size(); ++i)
    sql::advancePlace(place.line, place.column, static_cast<unsigned char>(text[i]));
  return place;
}

// The byte offset of a place, or nothing when no code point (nor the end of the text) starts there.
std::optional<std::size_t> offsetOf(const std::string& text, Place wanted) {
  Place place{1, 1};
  for (std::size_t i = 0;; ++i) {
    const bool starts = i == text.size() || (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
    if (starts && place.line == wanted.line && place.column == wanted.column) return i;
    if (i == text.size() || place.line > wanted.line) return std::nullopt;
    sql::advancePlace(place.line, place.column, static_cast<unsigned char>(text[i]));
  }
}

} // namespace

int runComplete(const std::vector<std::string>& args) {
  std::vector<std::string> rest = args;
  const auto catalogue = takeCatalogue("complete", rest);
  if (!catalogue) return exitUsage;
  const auto at = takeAt(rest);
  if (auto status = handleOptions("complete", rest)) return *status;
  const auto place = at ? placeOf(*at) : std::nullopt;
  if (!place) {
    std::cerr << "velmor-sql complete: --at LINE:COL is needed, both numbers from 1\n";
    printCommandUsage("complete", std::cerr);
    return exitUsage;
  }
  const std::string text = readInput(rest);
  const auto offset = offsetOf(text, *place);
  if (!offset) {
    std::cerr << "velmor-sql complete: " << place->line << ':' << place->column << " is not a place in the text\n";
    return exitUsage;
  }

  const sql::host::Completion completion = sql::host::complete(text, *offset, *catalogue);
  const Place begin = placeAtOffset(text, completion.replaceBegin);
  const Place end = placeAtOffset(text, completion.replaceEnd);
  std::cout << "replace " << begin.line << ':' << begin.column << '-' << end.line << ':' << end.column << " \""
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
