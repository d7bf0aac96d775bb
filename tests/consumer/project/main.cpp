// A host that uses only the installed headers and library.
#include <velmor/sql.h>

#include <iostream>

int main() {
  velmor::sql::AssertionHandler previous = velmor::sql::setAssertionHandler(nullptr);
  (void)previous;
  std::cout << "velmor-sql consumer ok\n";
  return 0;
}
