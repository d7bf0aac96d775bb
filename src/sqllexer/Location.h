// Where a token or a grammar symbol stands in the text, in the shape the parser expects.
#pragma once

#include <ostream>

namespace velmor::sql {

/// A point in the text. Lines and columns start at 1. There is no file name: every parse reads
/// one text, and locations are copied on every shift and reduction, so they stay small.
struct Position {
  Position() = default;
  Position(int line, int column) : line(line), column(column) {}

  int line = 1;
  int column = 1;
};

/// The span of a token: begin is its first character, end as the scanner reports it.
struct Location {
  Location() = default;
  Location(Position begin, Position end) : begin(begin), end(end) {}

  Position begin;
  Position end;
};

inline bool operator==(const Position& a, const Position& b) {
  return a.line == b.line && a.column == b.column;
}

inline bool operator==(const Location& a, const Location& b) {
  return a.begin == b.begin && a.end == b.end;
}

/// "LINE.COLUMN".
inline std::ostream& operator<<(std::ostream& out, const Position& position) {
  return out << position.line << '.' << position.column;
}

/// "L.C-C" on one line, "L.C-L.C" across lines.
inline std::ostream& operator<<(std::ostream& out, const Location& location) {
  out << location.begin;
  if (location.end.line != location.begin.line) {
    out << '-' << location.end.line << '.' << location.end.column;
  } else if (location.end.column != location.begin.column) {
    out << '-' << location.end.column;
  }
  return out;
}

} // namespace velmor::sql
