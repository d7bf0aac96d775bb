// velmor-sql: command-line front end over the library.
#include <velmor/sql.h>

#include <iostream>
#include <string_view>

int main(int argc, char** argv) {
  if (argc < 2 || std::string_view(argv[1]) == "--help" || std::string_view(argv[1]) == "-h") {
    std::cout << "usage: velmor-sql <command> [args...]\n";
    return argc < 2 ? 2 : 0;
  }
  std::cerr << "velmor-sql: unknown command '" << argv[1] << "'\n";
  return 2;
}
