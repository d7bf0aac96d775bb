// velmor-sql: command-line front end over the library, one subcommand per job.
#include "Commands.h"

#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace velmor::cli {
namespace {

struct Command {
  const char* name;
  const char* arguments;
  const char* summary;
  int (*run)(const std::vector<std::string>& args);
};

constexpr Command commands[] = {
#define VELMOR_CLI_COMMAND(name, function, arguments, summary) {#name, arguments, summary, run##function},
#include "Commands.def"
#undef VELMOR_CLI_COMMAND
};

void printHelp(std::ostream& out) {
  out << "usage: velmor-sql <command> [args...]\n"
         "       velmor-sql --help | --version\n\n"
         "SQL text is taken from the arguments, joined by single blanks, as one statement; with no\n"
         "argument or with '-' it is read from standard input. Output is UTF-8.\n\n"
         "Documents of many statements (SQL files, query logs) are named with -f FILE (--file,\n"
         "repeatable; a directory stands for its *.sql files, '-' for standard input) in check,\n"
         "format and columns. Statements end at ';' outside strings, bracketed names and comments\n"
         "('--' to the line's end, '/* */'; --no-comments reads these as text); with --lines a line's\n"
         "end ends a statement too (logs of one statement a line). Places are FILE:LINE:COL.\n"
         "--jobs N works on N statements at once; the output keeps the document's order.\n\n"
         "exit status: 0 all good, 1 faults found (or a statement that would change its meaning),\n"
         "2 bad usage, unreadable file or bad catalogue, 3 a statement that does not parse.\n\n"
         "commands:\n";
  for (const Command& command : commands) {
    out << "  " << command.name << ' ' << command.arguments << "\n      " << command.summary << '\n';
  }
}

} // namespace

void printCommandUsage(const char* name, std::ostream& out) {
  for (const Command& command : commands) {
    if (std::string_view(command.name) == name) {
      out << "usage: velmor-sql " << command.name << ' ' << command.arguments << '\n'
          << "  " << command.summary << '\n';
    }
  }
}

} // namespace velmor::cli

int main(int argc, char** argv) {
  using namespace velmor::cli;
  if (argc < 2) {
    printHelp(std::cerr);
    return exitUsage;
  }
  const std::string_view first = argv[1];
  if (first == "--version" || first == "-V") {
    std::cout << "velmor-sql " << VELMOR_SQL_VERSION << '\n';
    return exitOk;
  }
  if (first == "--help" || first == "-h" || first == "help") {
    printHelp(std::cout);
    return exitOk;
  }
  for (const Command& command : commands) {
    if (first == command.name) {
      return command.run(std::vector<std::string>(argv + 2, argv + argc));
    }
  }
  std::cerr << "velmor-sql: unknown command '" << first << "' (see velmor-sql --help)\n";
  return exitUsage;
}
