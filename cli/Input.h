// How every subcommand gets its SQL text and its few options.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <velmor/sql/scope/Scoping.h>

namespace velmor::cli {

/// The text of a subcommand's arguments: joined by single blanks; none, or a lone "-", reads
/// standard input as raw bytes. A first argument "--" is dropped, so that a text may begin
/// with two minus signs.
std::string readInput(const std::vector<std::string>& args);

/// Handles "--help"/"-h" and rejects other options in front of the text. Returns the exit
/// status when the subcommand should stop (usage printed or a usage error reported), or
/// nothing when it should go on. Arguments such as "-1" are text, not options.
std::optional<int> handleOptions(const char* command, const std::vector<std::string>& args);

/// Removes `flag` from the options in front of the text (the arguments up to the first that does
/// not start with "--"), wherever it stands among them; true when it was there.
bool takeFlag(std::vector<std::string>& args, const char* flag);

/// Bytes the scanner skipped, as the user typed them: well-formed UTF-8 as it is (a quote or
/// backslash behind a backslash), anything else as \xHH, and a long run cut short with "...".
std::string shownBytes(const std::string& text, std::size_t offset, std::size_t length);

/// Takes "--scoping standard|compatible" (or "--scoping=...") from the options in front of the
/// text into `scoping`, which keeps its value (the tool's default, standard) when the option is
/// absent. False, with the reason on stderr, for another value or a missing one.
bool takeScoping(const char* command, std::vector<std::string>& args, sql::Scoping& scoping);

/// Tells on stderr what a parse of `text` ignores: bytes the scanner skipped ("warning: 1:8: '$'
/// is not SQL and was skipped") and a NUL that ends the text early. With `strict` these are
/// errors: the lines say "error:" and the result is false, the subcommand's cue to stop.
bool reportSkippedText(const std::string& text, bool strict);

} // namespace velmor::cli
