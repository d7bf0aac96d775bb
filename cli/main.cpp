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
         "       velmor-sql --help\n\n"
         "SQL text is taken from the arguments, joined by single blanks; with no argument or\n"
         "with '-' it is read from standard input. Output is UTF-8.\n\n"
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
