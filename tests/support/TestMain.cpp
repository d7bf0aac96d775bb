// Test entry point shared by every test executable.
#include "support/Golden.h"

#include <gtest/gtest.h>

#include <clocale>

int main(int argc, char** argv) {
  // The library never sets a locale; tests of the narrow/wide helpers want a UTF-8 one.
  std::setlocale(LC_ALL, "C.UTF-8");
  testing::InitGoogleTest(&argc, argv);
  velmor::sql::test::registerAllGolden();
  return RUN_ALL_TESTS();
}
