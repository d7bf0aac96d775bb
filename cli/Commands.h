// The subcommands of the command-line tool, one function each.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace velmor::cli {

/// Exit statuses shared by every subcommand: 0 good, 1 faults found, 2 bad usage or catalogue.
inline constexpr int exitOk = 0;
inline constexpr int exitFailure = 1;
inline constexpr int exitUsage = 2;
/// A statement that does not parse (faults found are exitFailure).
inline constexpr int exitSyntax = 3;

// int runTokens(const std::vector<std::string>& args); and so on: `args` are the arguments
// after the subcommand's name; the result is the process's exit status.
#define VELMOR_CLI_COMMAND(name, function, arguments, summary) \
  int run##function(const std::vector<std::string>& args);
#include "Commands.def"
#undef VELMOR_CLI_COMMAND

/// Writes "usage: velmor-sql <name> <arguments>" and the summary of one subcommand.
void printCommandUsage(const char* name, std::ostream& out);

} // namespace velmor::cli
