// Eight threads parse, format, type and validate at once, over shared trees, shared types and
// one shared host catalogue, and each gets what one thread alone gets; also with the kit's
// catalogue, whose revisions let each thread keep its overload choices from check to check.
// Built with ThreadSanitizer by scripts/test-tsan, which then also reports any data race.
#include "scope/Describe.h"
#include "support/SampleHost.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/validation/Validator.h>
#if __has_include(<velmor/sql/builder/SqlStringBuilder.h>)
#  include <velmor/sql/builder/SqlStringBuilder.h>
#  define VELMOR_TEST_HAS_BUILDER 1
#endif

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace velmor::sql::test {
namespace {

const char* const kStatements[] = {
    "SELECT id, name, population / 1000 AS k FROM cities WHERE population > 100000",
    "SELECT c.name, r.name, r.length * 2 FROM cities AS c JOIN roads AS r ON r.city_id = c.id",
    "SELECT upper(name) || 'x', area(obj) FROM countries WHERE obj INTERSECTS obj",
    "SELECT count(*), max(population) FROM cities GROUP BY name HAVING count(*) > 1",
    "SELECT d.n FROM (SELECT name AS n, lanes + 1 AS l FROM roads) AS d WHERE d.l BETWEEN 1 AND 4",
    "SELECT * FROM sensors WHERE active AND reading >= 1.5 ORDER BY taken DESC LIMIT 10",
    "SELECT nosuch FROM cities",
    "SELECT name FROM cities WHERE count(*) > 1",
    "SELECT a FROM nowhere",
    "UPDATE cities SET population = population + 1 WHERE id = 3",
    "UPDATE roads SET lanes = 'many'",
    "SELECT name FROM cities UNION SELECT name FROM countries",
    "DELETE FROM cities WHERE id = 1",
};

// Runs `check(k)` for every k below `count`, twenty rounds on each of eight threads, which start
// at different places so that they meet on every item; gives the sum of what the calls gave.
template <class Check>
int onEightThreads(std::size_t count, const Check& check) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 20;
  std::atomic<int> mismatches{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        for (std::size_t i = 0; i < count; ++i) mismatches += check((i + static_cast<std::size_t>(t)) % count);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  return mismatches.load();
}

// Everything the library says about one tree, as text: its canonical form, the types of its
// select list, its result table and its validation faults.
std::string describe(const ast::Node& tree, const sample::SampleHost& host) {
  std::string text;
#ifdef VELMOR_TEST_HAS_BUILDER
  SqlStringBuilder builder(nullptr);
  text.append(narrow(builder.buildString(tree))).append("\n");
#endif
  ast::visitSingle<ast::QuerySpecification>(tree, [&](const ast::QuerySpecification& query) {
    text.append(outcome([&] {
      const auto scope = buildScope(host, host, query, nullptr);
      if (!scope) return std::string("no scope");
      std::string types;
      for (const ast::Node& item : query.selectList) {
        TypeInferer inferer(host, *scope);
        types.append(typeText(inferer.inferNodeType(item))).append(" ");
      }
      return types;
    })).append("\n");
    text.append(outcome([&] {
      const auto table = buildTableInfo(host, host, query, nullptr);
      std::string columns;
      for (std::size_t i = 0; i < table->columnCount(); ++i)
        columns.append(narrow(table->columnByIndex(i).canonicalName()))
            .append(":")
            .append(typeText(table->columnByIndex(i).type()))
            .append(" ");
      return columns;
    })).append("\n");
    Validator validator(host, host);
    text += validator.validate(query) ? "valid" : "invalid";
    for (const auto& error : validator.errors()) text.append(" ").append(std::to_string(static_cast<int>(error->type())));
  }, 0);
  ast::visitSingle<ast::UpdateStatement>(tree, [&](const ast::UpdateStatement& update) {
    Validator validator(host, host);
    text += validator.validate(update) ? "valid" : "invalid";
    for (const auto& error : validator.errors()) text.append(" ").append(std::to_string(static_cast<int>(error->type())));
  }, 0);
  return text;
}

ast::Node parse(const std::string& text) {
  const ParseContext context;
  SqlParser parser(context);
  EXPECT_TRUE(parser.parse(text)) << text;
  return parser.result;
}

TEST(Concurrency, EightThreadsShareTreesTypesAndCatalogue) {
  const sample::SampleHost host;
  std::vector<ast::Node> trees;
  std::vector<std::string> expected;
  std::vector<std::shared_ptr<TableInfo>> tables;
  for (const char* statement : kStatements) {
    trees.push_back(parse(statement));
    expected.push_back(describe(trees.back(), host));
    // Result tables made once and read by every thread: shared columns and types.
    tables.push_back(ast::visitSingle<ast::QuerySpecification>(trees.back(), [&](const ast::QuerySpecification& q) {
      try {
        return buildTableInfo(host, host, q, nullptr);
      } catch (const SqlError&) {
        return std::shared_ptr<TableInfo>();
      }
    }, std::shared_ptr<TableInfo>()));
  }

  const int mismatches = onEightThreads(trees.size(), [&](std::size_t k) {
    int wrong = 0;
    if (describe(trees[k], host) != expected[k]) ++wrong;
    if (describe(parse(kStatements[k]), host) != expected[k]) ++wrong;
    if (tables[k]) {
      for (std::size_t c = 0; c < tables[k]->columnCount(); ++c)
        if (typeText(tables[k]->columnByIndex(c).type()).empty()) ++wrong;
    }
    // Copies of shared handles come and go: the counts are the only thing written.
    std::vector<ast::Node> copies = ast::children(trees[k]);
    copies.clear();
    return wrong;
  });
  EXPECT_EQ(mismatches, 0);
}

// The faults of a check in standard scoping against the kit's GIS sample, as text.
std::string standardCheck(const std::string& text, const host::Catalogue& catalogue) {
  SqlParser parser(catalogue);
  if (!parser.parse(text)) return "syntax";
  Validator validator(catalogue, catalogue);
  validator.setScoping(Scoping::Standard);
  std::string result = validator.validateStatement(parser.result) ? "valid" : "invalid";
  for (const auto& error : validator.errors()) result.append(" ").append(std::to_string(static_cast<int>(error->type())));
  return result;
}

TEST(Concurrency, EightThreadsCheckAgainstTheKitsCatalogue) {
  const auto catalogue = host::gisSampleCatalogue();
  const std::vector<std::string> statements = {
      "SELECT parcel_id, area_sqm * 2 + 1 FROM parcels WHERE zone_id IN (SELECT z.zone_id FROM zones z WHERE z.max_height > 20)",
      "SELECT p.parcel_id, (SELECT count(*) FROM buildings b WHERE b.parcel_id = p.parcel_id) AS n FROM parcels p",
      "SELECT parcel_id FROM parcels WHERE shape WITHIN (SELECT shape FROM zones WHERE zone_id = 3)",
      "SELECT upper(land_use) || 'x', abs(zone_id) FROM parcels WHERE land_use LIKE 'res%' AND zone_id BETWEEN 1 AND 4",
      "SELECT parcl_id FROM parcels",
      "SELECT land_use, count(*) FROM parcels GROUP BY land_use HAVING avg(area_sqm) > 80",
      "UPDATE parcels SET area_sqm = area_sqm + 1 WHERE zone_id = 2",
  };
  std::vector<std::string> expected;
  for (const std::string& statement : statements) expected.push_back(standardCheck(statement, *catalogue));

  const int mismatches = onEightThreads(statements.size(), [&](std::size_t k) {
    return standardCheck(statements[k], *catalogue) != expected[k] ? 1 : 0;
  });
  EXPECT_EQ(mismatches, 0);
}

} // namespace
} // namespace velmor::sql::test
