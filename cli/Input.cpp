// Shared input handling of the subcommands.
#include "Input.h"

#include "Commands.h"

#include <cstdio>
#include <iostream>

namespace velmor::cli {

std::string readInput(const std::vector<std::string>& args) {
  std::size_t first = !args.empty() && args.front() == "--" ? 1 : 0;
  if (args.size() == first || (args.size() == first + 1 && args[first] == "-")) {
    std::string text;
    char buffer[65536];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, stdin)) > 0) text.append(buffer, n);
    return text;
  }
  std::string text;
  for (std::size_t i = first; i < args.size(); ++i) {
    if (i > first) text += ' ';
    text += args[i];
  }
  return text;
}

std::optional<int> handleOptions(const char* command, const std::vector<std::string>& args) {
  if (args.empty()) return std::nullopt;
  const std::string& first = args.front();
  if (first == "--help" || first == "-h") {
    printCommandUsage(command, std::cout);
    return exitOk;
  }
  if (first.size() > 2 && first.compare(0, 2, "--") == 0) {
    std::cerr << "velmor-sql " << command << ": unknown option '" << first << "'\n";
    printCommandUsage(command, std::cerr);
    return exitUsage;
  }
  return std::nullopt;
}

} // namespace velmor::cli
