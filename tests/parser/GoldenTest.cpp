// Golden files under data/parser: each SQL line is followed by "=> " and either the tree as
// compact JSON or "error: " and the syntax error's text. VELMOR_UPDATE_GOLDEN=1 rewrites the
// expectations from what the parser gives now.
#include "JsonTree.h"

#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace velmor::sql {
namespace {

const std::string expectationPrefix = "=> ";

std::string describeParse(const std::string& text) {
  const ParseContext context;
  SqlParser parser(context);
  if (!parser.parse(text)) {
    std::string out = "error:";
    for (const auto& error : parser.errors) out.append(" ").append(error->what());
    return out;
  }
  return cli::treeToJson(parser.result).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

class GoldenCase : public ::testing::Test {
public:
  GoldenCase(std::string sql, std::string expected) : mSql(std::move(sql)), mExpected(std::move(expected)) {}
  void TestBody() override { EXPECT_EQ(describeParse(mSql), mExpected) << "SQL: " << mSql; }

private:
  std::string mSql;
  std::string mExpected;
};

std::vector<std::string> readLines(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

bool isSql(const std::string& line) {
  return !line.empty() && line[0] != '#' && line.rfind(expectationPrefix, 0) != 0;
}

// Registers one test per SQL line, named after the file and the line, so a failure says where.
bool registerGoldenCases() {
  const bool update = std::getenv("VELMOR_UPDATE_GOLDEN") != nullptr;
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(VELMOR_TEST_DATA_DIR "/parser")) {
    if (entry.path().extension() == ".golden") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto& path : files) {
    std::vector<std::string> lines = readLines(path);
    std::vector<std::string> rewritten;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (!isSql(lines[i])) {
        rewritten.push_back(lines[i]);
        continue;
      }
      const std::string sql = lines[i];
      const bool hasExpectation = i + 1 < lines.size() && lines[i + 1].rfind(expectationPrefix, 0) == 0;
      std::string expected = hasExpectation ? lines[i + 1].substr(expectationPrefix.size()) : "";
      if (update) expected = describeParse(sql);
      rewritten.push_back(sql);
      rewritten.push_back(expectationPrefix + expected);
      if (hasExpectation) ++i;
      const std::string name = path.stem().string() + "_line" + std::to_string(rewritten.size() - 1);
      ::testing::RegisterTest("ParserGolden", name.c_str(), nullptr, nullptr, path.string().c_str(),
                              static_cast<int>(rewritten.size() - 1),
                              [sql, expected]() -> ::testing::Test* { return new GoldenCase(sql, expected); });
    }
    if (update) {
      std::ofstream out(path, std::ios::binary | std::ios::trunc);
      for (const std::string& line : rewritten) out << line << '\n';
    }
  }
  return true;
}

const bool registered = registerGoldenCases();

} // namespace
} // namespace velmor::sql
