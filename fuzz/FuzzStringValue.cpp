// The raw text of string literals read into values and written back: a value survives its own
// written form, and malformed raw text, past the assertion, reads nothing out of bounds.
#include "FuzzSupport.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/ASTStringValue.h>

#include <cstdio>
#include <cstdlib>

using namespace velmor::sql;

namespace {

bool gAsserted = false;
void noteAssertion(const char*, const char*) { gAsserted = true; }

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::setLocale();
  setAssertionHandler(noteAssertion);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The first byte picks the form: raw UTF-16 units, or one byte per unit as the scanner mostly
  // hands over.
  if (size == 0) return 0;
  std::wstring raw;
  if (data[0] & 1)
    raw = fuzz::units(data + 1, size - 1);
  else
    raw.assign(data + 1, data + size);

  gAsserted = false;
  const ASTStringValue value(raw);
  const std::wstring written = value.toString();
  if (gAsserted) return 0;

  // A well-formed literal: its value, written back between double quotes, reads the same.
  const ASTStringValue again(L"\"" + written + L"\"");
  VELMOR_FUZZ_CHECK(!gAsserted, "the written form is a well-formed literal");
  VELMOR_FUZZ_CHECK(again.value() == value.value(), "the written form reads back the value");
  VELMOR_FUZZ_CHECK(again.toString() == written, "writing is a fixed point");
  return 0;
}
