// A plain program for profilers (callgrind, perf): parses every line of a corpus file N times,
// one tree at a time, and prints what it did; with "format", also writes each tree back as
// canonical SQL once, so that the writer can be counted alone.
//   build/bench/ParseCorpus ../shared/bench/corpus-sample.sql 1 [format]
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: ParseCorpus FILE [PASSES] [format]\n");
    return 2;
  }
  std::ifstream in(argv[1]);
  std::vector<std::string> statements;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) statements.push_back(line);
  }
  const int passes = argc > 2 ? std::atoi(argv[2]) : 1;
  const bool format = argc > 3 && std::string(argv[3]) == "format";
  velmor::sql::SqlStringBuilder builder(nullptr);
  std::size_t written = 0;
  const velmor::sql::ParseContext context;
  velmor::sql::SqlParser parser(context);
  std::size_t failures = 0;
  for (int pass = 0; pass < passes; ++pass) {
    for (const std::string& statement : statements) {
      if (!parser.parse(statement)) {
        ++failures;
      } else if (format) {
        written += builder.buildString(parser.result).size();
      }
    }
  }
  std::printf("%zu statements x %d passes, %zu failed", statements.size(), passes, failures);
  if (format) std::printf(", %zu units written", written);
  std::printf("\n");
  return failures == 0 ? 0 : 1;
}
