// Canonical SQL from parsed statements: the golden files of tests/data/builder and the round
// trip (the canonical text parses again and writes itself) over them and the benchmark corpus.
//
// A golden file holds entries of one statement each:
//   > input statement
//   @ OLD NEW        optional: write through a RenameTableBuilder
//   = text with the tool's default context
//   - text without a context, when it differs from the "=" line
// Set VELMOR_REWRITE_GOLDEN=1 to rewrite the expectations from the current output.
#include <velmor/sql/host/Precedence.h>

#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace velmor::sql {
namespace {

// Where the required output cannot be read back to the same text.
struct RoundTripException {
  const char* input;
  const char* reason;
};
const RoundTripException kRoundTripExceptions[] = {
    {"SELECT [cast] FROM t", "cast is a keyword of the scanner but not of the writer's table"},
    {"SELECT [else] FROM t", "else is a keyword of the scanner but not of the writer's table"},
    {"SELECT [regexp] FROM t", "regexp is a keyword of the scanner but not of the writer's table"},
    {"SELECT [order](a) FROM t", "routine names are never bracketed"},
    {"SELECT a FROM a FULL JOIN b USING (c, [order])", "column lists are never bracketed"},
    {"INSERT INTO [select] ([order]) VALUES (1)", "column lists are never bracketed"},
    {"UPDATE [order] SET [order] = a + 1", "SET columns are never bracketed"},
    {"SELECT a FROM t WHERE EXISTS (SELECT a FROM t UNION SELECT b FROM u)",
     "a query under EXISTS is grouped only when it is a single SELECT"},
    {"SELECT a FROM t WHERE EXISTS (TABLE u) OR UNIQUE (VALUES (1))",
     "a query under EXISTS or UNIQUE is grouped only when it is a single SELECT"},
    {"VALUES (1, 2) UNION TABLE u", "VALUES is written only in front of an INSERT source"},
    {"SELECT * FROM (VALUES (1, 2), (3, 4)) AS v", "VALUES is written only in front of an INSERT source"},
    {"SELECT ROW(a) FROM t", "a row of one value is written (a), which reads as the value"},
    {"SELECT a FROM a JOIN (SELECT b FROM t) AS q ON x",
     "a derived table right of a join gets a second pair of parentheses, read as a join"},
    {"SELECT \"say \"\"hi\"\"\" FROM t", "a double quote in a string leaves as \\\"\", which ends the piece"},
    {"SELECT a FROM t WHERE (SELECT a FROM t) IN (1, 2)", "the value in front of IN never gets parentheses"},
    {"SELECT a FROM t ORDER BY a + 1, (SELECT b FROM u)", "a whole sort key gets no parentheses"},
    {"SELECT a FROM t WHERE (a = b) = c", "equal levels read left-associative, but = is not associative"},
};

bool isRoundTripException(const std::string& input) {
  for (const auto& exception : kRoundTripExceptions)
    if (input == exception.input) return true;
  return false;
}

using host::fromUtf8;
using host::toUtf8;

class NoParseContext : public ParseContext {};

// The tree of `text`, or the joined messages of its syntax errors.
std::optional<ast::Node> parse(const std::string& text, std::string* errors = nullptr) {
  NoParseContext context;
  SqlParser parser(context);
  if (parser.parse(text)) return parser.result;
  if (errors != nullptr)
    for (const auto& error : parser.errors) *errors += std::string(error->what()) + "; ";
  return std::nullopt;
}

struct Entry {
  std::string file;
  int line = 0;
  std::string input;
  bool rename = false;
  std::string oldName, newName;
  std::string withContext, withoutContext;
  bool hasWithout = false;
};

std::string format(const ast::Node& tree, const Entry& entry, bool useContext) {
  static const velmor::sql::host::GrammarPrecedence context;
  const StringBuildContext* ctx = useContext ? &context : nullptr;
  if (entry.rename) {
    RenameTableBuilder builder(ctx, fromUtf8(entry.oldName), fromUtf8(entry.newName));
    return toUtf8(builder.buildString(tree));
  }
  SqlStringBuilder builder(ctx);
  return toUtf8(builder.buildString(tree));
}

std::vector<Entry> readEntries(const std::filesystem::path& path) {
  std::vector<Entry> entries;
  std::ifstream in(path);
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (line.size() < 2 || line[1] != ' ') continue;
    const std::string rest = line.substr(2);
    switch (line[0]) {
    case '>':
      entries.emplace_back();
      entries.back().file = path.filename().string();
      entries.back().line = number;
      entries.back().input = rest;
      break;
    case '@':
      if (!entries.empty()) {
        std::istringstream names(rest);
        entries.back().rename = true;
        names >> entries.back().oldName >> entries.back().newName;
      }
      break;
    case '=':
      if (!entries.empty()) entries.back().withContext = rest;
      break;
    case '-':
      if (!entries.empty()) {
        entries.back().withoutContext = rest;
        entries.back().hasWithout = true;
      }
      break;
    default: break;
    }
  }
  return entries;
}

void rewrite(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  in.close();
  std::ostringstream out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    if (line.rfind("= ", 0) == 0 || line.rfind("- ", 0) == 0) continue;
    out << line << '\n';
    if (line.rfind("> ", 0) != 0) continue;
    Entry entry;
    entry.input = line.substr(2);
    if (i + 1 < lines.size() && lines[i + 1].rfind("@ ", 0) == 0) {
      std::istringstream names(lines[i + 1].substr(2));
      entry.rename = true;
      names >> entry.oldName >> entry.newName;
      out << lines[++i] << '\n';
    }
    std::string errors;
    const auto tree = parse(entry.input, &errors);
    if (!tree) {
      out << "= !" << errors << '\n';
      continue;
    }
    const std::string with = format(*tree, entry, true);
    const std::string without = format(*tree, entry, false);
    out << "= " << with << '\n';
    if (without != with) out << "- " << without << '\n';
  }
  std::ofstream(path) << out.str();
}

void expectRoundTrip(const std::string& canonical, const Entry& entry, bool useContext) {
  std::string errors;
  const auto again = parse(canonical, &errors);
  ASSERT_TRUE(again.has_value()) << canonical << "\n  " << errors;
  EXPECT_EQ(format(*again, entry, useContext), canonical);
}

// Derived builders, which the writer cannot know have no overrides: they write fragment by
// fragment and chains link by link, where the library's own builders write in one pass.
class LinkByLink : public SqlStringBuilder {
public:
  using SqlStringBuilder::SqlStringBuilder;
};
class RenameLinkByLink : public RenameTableBuilder {
public:
  using RenameTableBuilder::RenameTableBuilder;
};

class GoldenCase : public testing::Test {
public:
  explicit GoldenCase(Entry entry) : mEntry(std::move(entry)) {}
  void TestBody() override {
    std::string errors;
    const auto tree = parse(mEntry.input, &errors);
    ASSERT_TRUE(tree.has_value()) << mEntry.input << "\n  " << errors;
    const std::string with = format(*tree, mEntry, true);
    const std::string without = format(*tree, mEntry, false);
    EXPECT_EQ(with, mEntry.withContext) << mEntry.input;
    EXPECT_EQ(without, mEntry.hasWithout ? mEntry.withoutContext : mEntry.withContext) << mEntry.input;
    static const velmor::sql::host::GrammarPrecedence context;
    if (mEntry.rename) {
      const std::wstring oldName = fromUtf8(mEntry.oldName), newName = fromUtf8(mEntry.newName);
      EXPECT_EQ(toUtf8(RenameLinkByLink(&context, oldName, newName).buildString(*tree)), with) << "link by link";
      EXPECT_EQ(toUtf8(RenameLinkByLink(nullptr, oldName, newName).buildString(*tree)), without) << "link by link";
      return;
    }
    EXPECT_EQ(toUtf8(LinkByLink(&context).buildString(*tree)), with) << "link by link";
    EXPECT_EQ(toUtf8(LinkByLink(nullptr).buildString(*tree)), without) << "link by link";
    Entry plain = mEntry;
    if (isRoundTripException(mEntry.input)) {
      // Keeps the list honest: an entry that does read back belongs in the plain cases.
      const auto again = parse(with);
      EXPECT_FALSE(again && format(*again, plain, true) == with) << "listed, yet reads back: " << with;
      return;
    }
    expectRoundTrip(with, plain, true);
    expectRoundTrip(without, plain, false);
  }

private:
  Entry mEntry;
};

const bool kRegistered = [] {
  const std::filesystem::path dir = std::filesystem::path(VELMOR_TEST_DATA_DIR) / "builder";
  std::vector<std::filesystem::path> files;
  for (const auto& item : std::filesystem::directory_iterator(dir))
    if (item.path().extension() == ".txt") files.push_back(item.path());
  std::sort(files.begin(), files.end());
  const char* rewriteFlag = std::getenv("VELMOR_REWRITE_GOLDEN");
  for (const auto& file : files) {
    if (rewriteFlag != nullptr && *rewriteFlag == '1') rewrite(file);
    for (Entry& entry : readEntries(file)) {
      const std::string name = entry.file + ":" + std::to_string(entry.line);
      const std::string path = file.string();
      const int line = entry.line;
      testing::RegisterTest("Golden", name.c_str(), nullptr, entry.input.c_str(), path.c_str(), line,
                            [entry]() -> testing::Test* { return new GoldenCase(entry); });
    }
  }
  return true;
}();

TEST(RoundTrip, BenchmarkCorpusIsAFixedPointAfterOneStep) {
  const char* overridePath = std::getenv("VELMOR_BENCH_CORPUS");
  const std::string path = overridePath != nullptr ? overridePath : VELMOR_BENCH_CORPUS;
  std::ifstream in(path);
  ASSERT_TRUE(in) << "no corpus at " << path;
  int statements = 0, failures = 0;
  const Entry plain;
  for (std::string line; std::getline(in, line);) {
    if (line.empty()) continue;
    const auto tree = parse(line);
    if (!tree) continue;  // the parser's own tests judge what it rejects
    ++statements;
    for (const bool useContext : {true, false}) {
      const std::string canonical = format(*tree, plain, useContext);
      static const velmor::sql::host::GrammarPrecedence context;
      if (toUtf8(LinkByLink(useContext ? &context : nullptr).buildString(*tree)) != canonical && ++failures <= 10)
        ADD_FAILURE() << "chains written in one pass differ from link by link:\n  " << line;
      const auto again = parse(canonical);
      const bool same = again && format(*again, plain, useContext) == canonical;
      if (!same && ++failures <= 10)
        ADD_FAILURE() << "no fixed point" << (useContext ? "" : " without context") << ":\n  "
                      << line << "\n  " << canonical;
    }
  }
  EXPECT_EQ(failures, 0);
  EXPECT_GT(statements, 0);
}

} // namespace
} // namespace velmor::sql
