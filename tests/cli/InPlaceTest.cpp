// format -i: a file is rewritten only when every statement keeps its meaning and nothing would
// be lost; otherwise it stays byte for byte, and the status says why.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

fs::path tool() {
  if (const char* named = std::getenv("VELMOR_SQL_TOOL")) return named;
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "cli" / "velmor-sql";
}

std::string slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

struct Case {
  const char* name;
  const char* before;
  int status;
  const char* after; // null: the file stays as it was
};

TEST(FormatInPlace, RewritesOnlyWhatKeepsItsMeaning) {
  if (!fs::exists(tool())) GTEST_SKIP() << "velmor-sql not built";
  const Case cases[] = {
      {"canonical", "select  a from t;\nSELECT b FROM u WHERE x OR (y OR z)", 0,
       "SELECT a FROM t;\nSELECT b FROM u WHERE x OR y OR z;\n"},
      {"crlf and empty statements", "SELECT a FROM t;;\r\n;SELECT b FROM u ;\r\n", 0, "SELECT a FROM t;\nSELECT b FROM u;\n"},
      {"no statement", "\n", 0, ""},
      {"syntax error", "SELECT a FROM t;\nSELECT FROM;\n", 3, nullptr},
      {"changed meaning", "SELECT a FROM t;\nSELECT a * (b / c) FROM t;\n", 1, nullptr},
      {"comment", "SELECT a FROM t; -- keep me\n", 1, nullptr},
      {"comment inside", "SELECT /* keep */ a FROM t;\n", 1, nullptr},
  };
  const fs::path dir = fs::temp_directory_path() / ("velmor-inplace-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  for (const Case& c : cases) {
    const fs::path file = dir / "doc.sql";
    std::ofstream(file, std::ios::binary) << c.before;
    std::string command(1, '\'');
    command.append(tool().string()).append("' format -i -f '").append(file.string()).append("' >/dev/null 2>&1");
    const int raw = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(raw), c.status) << c.name;
    EXPECT_EQ(slurp(file), c.after ? c.after : c.before) << c.name;
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1) << c.name << ": a file left behind";
  }
  fs::remove_all(dir);
}

} // namespace
