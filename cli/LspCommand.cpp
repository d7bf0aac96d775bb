// velmor-sql lsp: the language server on standard input and output.
#include "Commands.h"

#include <Server.h>

#include <iostream>
#include <string>
#include <vector>

namespace velmor::cli {

int runLsp(const std::vector<std::string>& args) {
  std::string logFile;
  lsp::LogLevel level = lsp::LogLevel::Info;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    // Clients that start servers generically add --stdio; it is the only transport anyway.
    if (arg == "--stdio") continue;
    if ((arg == "--log" || arg == "--log-level") && i + 1 >= args.size()) {
      std::cerr << "velmor-sql lsp: " << arg << " needs a value\n";
      return exitUsage;
    }
    if (arg == "--log") {
      logFile = args[++i];
    } else if (arg == "--log-level") {
      const auto named = lsp::logLevelNamed(args[++i]);
      if (!named) {
        std::cerr << "velmor-sql lsp: --log-level is error, warning, info or debug\n";
        return exitUsage;
      }
      level = *named;
    } else {
      printCommandUsage("lsp", std::cerr);
      return exitUsage;
    }
  }
  return lsp::serveStdio(logFile, level, VELMOR_SQL_VERSION);
}

} // namespace velmor::cli
