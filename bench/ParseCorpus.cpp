// A plain program for profilers (callgrind, perf): parses every line of a corpus file N times,
// one tree at a time, and prints what it did.
//   build/bench/ParseCorpus ../shared/bench/corpus-sample.sql 1
#include <velmor/sql/parser/SqlParser.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: ParseCorpus FILE [PASSES]\n");
    return 2;
  }
  std::ifstream in(argv[1]);
  std::vector<std::string> statements;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) statements.push_back(line);
  }
  const int passes = argc > 2 ? std::atoi(argv[2]) : 1;
  const velmor::sql::ParseContext context;
  velmor::sql::SqlParser parser(context);
  std::size_t failures = 0;
  for (int pass = 0; pass < passes; ++pass) {
    for (const std::string& statement : statements) failures += !parser.parse(statement);
  }
  std::printf("%zu statements x %d passes, %zu failed\n", statements.size(), passes, failures);
  return failures == 0 ? 0 : 1;
}
