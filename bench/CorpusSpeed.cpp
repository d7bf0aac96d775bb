// Statements a second of parsing, and of parsing and checking, a corpus of one statement a line
// against the GIS sample: the same program built natively and for WebAssembly (scripts/web bench)
// compares the two builds on one machine.
//   CorpusSpeed FILE [PASSES]
#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/parser/SqlParser.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace sql = velmor::sql;

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: CorpusSpeed FILE [PASSES]\n");
    return 2;
  }
  std::ifstream in(argv[1]);
  std::vector<std::string> statements;
  std::size_t bytes = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty()) continue;
    bytes += line.size();
    statements.push_back(std::move(line));
  }
  if (statements.empty()) {
    std::fprintf(stderr, "CorpusSpeed: no statements in %s\n", argv[1]);
    return 2;
  }
  const int passes = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
  const auto catalogue = sql::host::gisSampleCatalogue();
  const sql::ParseContext context;

  // The best of the passes: the first warms caches (and, in WebAssembly, the engine's tiers).
  const auto best = [&](auto&& body) {
    double fastest = 1e300;
    for (int pass = 0; pass < passes; ++pass) {
      const auto start = std::chrono::steady_clock::now();
      body();
      fastest = std::min(fastest, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return fastest;
  };
  std::size_t failed = 0, faults = 0;
  const double parse = best([&] {
    sql::SqlParser parser(context);
    failed = 0;
    for (const std::string& statement : statements) failed += !parser.parse(statement);
  });
  const double check = best([&] {
    sql::SqlParser parser(context);
    parser.keepSourceRanges = true;
    faults = 0;
    for (const std::string& statement : statements) {
      if (!parser.parse(statement) || !sql::host::isCheckable(parser.result, sql::Scoping::Standard)) continue;
      faults += sql::host::checkStatement(parser.result, parser.sourceRanges.get(), *catalogue, *catalogue,
                                          sql::Scoping::Standard)
                    .size();
    }
  });
  const auto report = [&](const char* what, double seconds) {
    std::printf("%-12s %zu statements in %.1f ms: %.0f statements/s, %.2f MB/s\n", what, statements.size(),
                seconds * 1e3, static_cast<double>(statements.size()) / seconds, static_cast<double>(bytes) / seconds / 1e6);
  };
  report("parse", parse);
  report("parse+check", check);
  std::printf("%zu did not parse, %zu faults (best of %d passes)\n", failed, faults, passes);
  return 0;
}
