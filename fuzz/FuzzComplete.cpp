// Completion at cursors of any text against the GIS sample catalogue: never a fault, and the
// replaced range (the whole word under the cursor) starts at or before the cursor and lies inside
// the text.
#include "FuzzSupport.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Completion.h>

#include <algorithm>

using namespace velmor::sql;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::setLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sample = host::gisSampleCatalogue();
  const std::string text = fuzz::text(data, size);
  // Every offset of a short text; eight spread over a long one, and one past its end.
  const std::size_t step = size <= 64 ? 1 : size / 8;
  for (std::size_t offset = 0; offset <= size + 1; offset += step) {
    const host::Completion answer = host::complete(text, offset, *sample);
    VELMOR_FUZZ_CHECK(answer.replaceBegin <= answer.replaceEnd, "a range in order");
    VELMOR_FUZZ_CHECK(answer.replaceBegin <= std::min(offset, size), "the replaced word starts at the cursor or before");
    VELMOR_FUZZ_CHECK(answer.replaceEnd <= size, "the replaced word lies inside the text");
  }
  return 0;
}
