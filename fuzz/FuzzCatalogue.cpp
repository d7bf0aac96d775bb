// Catalogue files are user input: any bytes give a catalogue or one CatalogueError, never a crash,
// a hang or another exception, read alone and on top of the standard SQL set.
#include "FuzzSupport.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/TypeNames.h>

using namespace velmor::sql;

namespace {

// What a host does next with a catalogue: looks at every table and asks for what it names.
void use(const host::Catalogue& catalogue) {
  for (const auto& name : catalogue.tableNames()) {
    const auto table = catalogue.table(name);
    VELMOR_FUZZ_CHECK(table != nullptr, "a listed table is found");
    for (std::size_t i = 0; i < table->columnCount(); ++i) (void)host::typeText(table->columnByIndex(i).type());
  }
  for (int code = 0; code <= 52; ++code) {
    const auto op = static_cast<OperationCode>(code);
    (void)catalogue.comparePrecedence(op, OperationCode::Plus);
    (void)catalogue.operatorToString(op);
    if (const auto info = catalogue.operatorInfo(op)) {
      for (const auto& overload : info->overloads()) VELMOR_FUZZ_CHECK(overload != nullptr, "no empty overloads");
    }
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = fuzz::text(data, size);
  try {
    use(*host::parseCatalogue(text, "fuzz"));
  } catch (const host::CatalogueError& error) {
    VELMOR_FUZZ_CHECK(std::string(error.what()).rfind("catalogue fuzz: ", 0) == 0, "the message names the source");
  }
  try {
    host::Catalogue catalogue;
    catalogue.addStandardSql();
    host::readCatalogue(catalogue, text, "fuzz");
    use(catalogue);
  } catch (const host::CatalogueError&) {
  }
  return 0;
}
