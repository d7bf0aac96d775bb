// velmor-sql catalogue: the embedded default catalogue, or a check of a catalogue file.
#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"

#include <velmor/sql/host/CatalogueFile.h>

#include <iostream>
#include <string>
#include <vector>

namespace velmor::cli {

int runCatalogue(const std::vector<std::string>& args) {
  std::vector<std::string> rest = args;
  const bool fileGiven = [&] {
    for (const auto& arg : rest) {
      if (arg == "--catalog" || arg.rfind("--catalog=", 0) == 0) return true;
    }
    return false;
  }();
  const auto catalogue = takeCatalogue("catalogue", rest);
  if (!catalogue) return exitUsage;
  if (auto status = handleOptions("catalogue", rest)) return *status;
  if (!rest.empty()) {
    printCommandUsage("catalogue", std::cerr);
    return exitUsage;
  }
  if (!fileGiven) {
    const std::string_view text = sql::host::gisSampleCatalogueText();
    std::cout.write(text.data(), static_cast<std::streamsize>(text.size()));
  } else {
    std::cout << "ok: " << catalogue->tableCount() << " tables, " << catalogue->functionCount()
              << " functions, " << catalogue->operatorCount() << " operators\n";
  }
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace velmor::cli
