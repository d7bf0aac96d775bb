// The tool's catalogue options over the host kit's catalogue files.
#include "Catalogue.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Precedence.h>

#include <algorithm>
#include <iostream>
#include <optional>

namespace velmor::cli {

std::shared_ptr<const Catalogue> takeCatalogue(const char* command, std::vector<std::string>& args) {
  std::optional<std::string> path;
  for (std::size_t i = 0; i < args.size();) {
    const std::string& arg = args[i];
    if (arg == "--catalog" || arg.rfind("--catalog=", 0) == 0) {
      std::string value;
      if (arg == "--catalog") {
        if (i + 1 >= args.size()) {
          std::cerr << "velmor-sql " << command << ": --catalog needs a FILE\n";
          return nullptr;
        }
        value = args[i + 1];
        args.erase(args.begin() + static_cast<std::ptrdiff_t>(i), args.begin() + static_cast<std::ptrdiff_t>(i) + 2);
      } else {
        value = arg.substr(10);
        args.erase(args.begin() + static_cast<std::ptrdiff_t>(i));
      }
      if (path) {
        std::cerr << "velmor-sql " << command << ": --catalog given twice\n";
        return nullptr;
      }
      path = value;
      continue;
    }
    // Skip other leading options (and the value of --from) so that their order is free.
    if (arg == "--from") {
      i += 2;
      continue;
    }
    if (arg.size() > 2 && arg.compare(0, 2, "--") == 0) {
      ++i;
      continue;
    }
    break;
  }
  try {
    return path ? sql::host::loadCatalogue(*path) : sql::host::gisSampleCatalogue();
  } catch (const sql::host::CatalogueError& error) {
    std::cerr << "velmor-sql: " << error.what() << '\n';
  }
  return nullptr;
}

std::shared_ptr<const sql::StringBuildContext> takeStringBuildContext(const char* command,
                                                                      std::vector<std::string>& args) {
  const bool named = std::any_of(args.begin(), args.end(), [](const std::string& arg) {
    return arg == "--catalog" || arg.rfind("--catalog=", 0) == 0;
  });
  if (!named) return std::make_shared<sql::host::GrammarPrecedence>();
  return takeCatalogue(command, args);
}

} // namespace velmor::cli
