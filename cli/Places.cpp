// Places in a text for the editor commands.
#include "Places.h"

#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"

#include <velmor/sql/parser/SourceRanges.h>

#include <algorithm>
#include <exception>
#include <iostream>

namespace velmor::cli {

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

std::string rangeOf(const std::string& text, std::size_t begin, std::size_t end) {
  const Place from = placeAtOffset(text, begin);
  const Place to = placeAtOffset(text, end);
  return std::to_string(from.line) + ':' + std::to_string(from.column) + '-' + std::to_string(to.line) + ':' +
         std::to_string(to.column);
}

std::optional<int> readCursor(const char* command, std::vector<std::string> args,
                              const std::vector<std::string>& flags, Cursor& cursor) {
  cursor.catalogue = takeCatalogue(command, args);
  if (!cursor.catalogue) return exitUsage;
  const auto at = takeAt(args);
  for (const std::string& flag : flags) {
    if (takeFlag(args, flag.c_str())) cursor.options.push_back(flag);
  }
  if (auto status = handleOptions(command, args)) return status;
  const auto place = at ? placeOf(*at) : std::nullopt;
  if (!place) {
    std::cerr << "velmor-sql " << command << ": --at LINE:COL is needed, both numbers from 1\n";
    printCommandUsage(command, std::cerr);
    return exitUsage;
  }
  cursor.text = readInput(args);
  const auto offset = offsetOf(cursor.text, *place);
  if (!offset) {
    std::cerr << "velmor-sql " << command << ": " << place->line << ':' << place->column
              << " is not a place in the text\n";
    return exitUsage;
  }
  cursor.offset = *offset;
  return std::nullopt;
}

} // namespace velmor::cli
