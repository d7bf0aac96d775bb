// Places in a text for the editor commands: "--at LINE:COL" and ranges as LINE:COL-LINE:COL.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql::host {
class Catalogue;
}

namespace velmor::cli {

struct Place {
  std::size_t line = 0;
  std::size_t column = 0;
};

/// "LINE:COL", both from 1.
std::optional<Place> placeOf(const std::string& text);
/// Takes "--at LINE:COL" (or "--at=LINE:COL") out of the leading options.
std::optional<std::string> takeAt(std::vector<std::string>& args);
/// The place of a byte offset, counted as the scanner counts.
Place placeAtOffset(const std::string& text, std::size_t offset);
/// The byte offset of a place, or nothing when no code point (nor the end of the text) starts there.
std::optional<std::size_t> offsetOf(const std::string& text, Place wanted);
/// "LINE:COL-LINE:COL" of a byte range.
std::string rangeOf(const std::string& text, std::size_t begin, std::size_t end);

/// What an editor command works on: the catalogue, the text and the cursor's byte offset.
struct Cursor {
  std::shared_ptr<const sql::host::Catalogue> catalogue;
  std::string text;
  std::size_t offset = 0;
  /// The options left after --catalog and --at, for the command's own.
  std::vector<std::string> options;
};

/// Takes --catalog, --at and the text of an editor command from `args`, leaving the flags
/// named in `flags` in Cursor::options. An exit code (after a message on stderr) when they are
/// wrong or the command was asked for its help.
std::optional<int> readCursor(const char* command, std::vector<std::string> args,
                              const std::vector<std::string>& flags, Cursor& cursor);

} // namespace velmor::cli
