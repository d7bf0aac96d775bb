// Golden cases of the velmor-sql tool: arguments, standard input, and the expected output,
// error output and exit status, read from tests/data/cli/*.txt.
//
// A case in a file:
//   ## name
//   $ ARGS...            (split at blanks; {data} stands for tests/data/cli)
//   < a line of standard input   (any number; {nul} stands for a NUL byte)
//   ? STATUS
//   > a line of standard output  (any number; ">" alone is an empty line)
//   ! a line of error output     (any number)
// With VELMOR_UPDATE_GOLDEN set, the files are rewritten with what the tool printed.
#include <gtest/gtest.h>

#include <unistd.h>

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Case {
  std::string file;
  int line = 0;
  std::string name;
  std::string args;
  std::vector<std::string> input;
  int status = 0;
  std::vector<std::string> out;
  std::vector<std::string> err;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.file << ':' << c.line << ' ' << c.name; }

const fs::path dataDir = fs::path(VELMOR_TEST_DATA_DIR) / "cli";

std::vector<Case> readCases() {
  std::vector<Case> cases;
  if (!fs::is_directory(dataDir)) return cases;
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(dataDir)) {
    if (entry.path().extension() == ".txt") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto& file : files) {
    std::ifstream in(file);
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
      ++number;
      auto rest = [&](std::size_t skip) { return line.size() > skip ? line.substr(skip) : std::string(); };
      if (line.rfind("## ", 0) == 0) {
        cases.push_back({file.filename().string(), number, rest(3), {}, {}, 0, {}, {}});
      } else if (cases.empty() || cases.back().file != file.filename().string() || line.empty() ||
                 line[0] == '#') {
        continue;
      } else if (line[0] == '$') {
        cases.back().args = rest(2);
      } else if (line[0] == '<') {
        cases.back().input.push_back(rest(2));
      } else if (line[0] == '?') {
        cases.back().status = std::atoi(rest(2).c_str());
      } else if (line[0] == '>') {
        cases.back().out.push_back(rest(2));
      } else if (line[0] == '!') {
        cases.back().err.push_back(rest(2));
      }
    }
  }
  return cases;
}

// The tool sits beside the test programs in the build tree, unless VELMOR_SQL_TOOL names it.
fs::path toolPath() {
  if (const char* named = std::getenv("VELMOR_SQL_TOOL")) return named;
  std::error_code error;
  const fs::path self = fs::read_symlink("/proc/self/exe", error);
  return error ? fs::path() : self.parent_path().parent_path() / "cli" / "velmor-sql";
}

std::string shellQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

// The lines of an output, with the data folder written as {data} again.
std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    for (std::size_t at; (at = line.find(dataDir.string())) != std::string::npos;)
      line.replace(at, dataDir.string().size(), "{data}");
    result.push_back(line);
  }
  return result;
}

std::string slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

struct Outcome {
  int status = -1;
  std::vector<std::string> out;
  std::vector<std::string> err;
};

Outcome run(const Case& c) {
  const fs::path scratch = fs::temp_directory_path() / ("velmor-cli-" + std::to_string(::getpid()));
  fs::create_directories(scratch);
  {
    std::ofstream input(scratch / "in");
    for (std::string line : c.input) {
      for (std::size_t at; (at = line.find("{nul}")) != std::string::npos;) line.replace(at, 5, 1, '\0');
      input << line << '\n';
    }
  }
  std::string command = shellQuoted(toolPath().string());
  std::istringstream words(c.args);
  std::string word;
  while (words >> word) {
    for (std::size_t at; (at = word.find("{data}")) != std::string::npos;) word.replace(at, 6, dataDir.string());
    command += ' ' + shellQuoted(word);
  }
  command += " <" + shellQuoted((scratch / "in").string()) + " >" + shellQuoted((scratch / "out").string()) +
             " 2>" + shellQuoted((scratch / "err").string());
  const int raw = std::system(command.c_str());
  Outcome outcome;
  outcome.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  outcome.out = lines(slurp(scratch / "out"));
  outcome.err = lines(slurp(scratch / "err"));
  fs::remove_all(scratch);
  return outcome;
}

// Rewriting the files in update mode: the outcome of each case by file and line.
std::map<std::string, std::map<int, Outcome>>& updates() {
  static std::map<std::string, std::map<int, Outcome>> all;
  return all;
}

class Rewriter : public testing::Environment {
public:
  void TearDown() override {
    for (const auto& [file, outcomes] : updates()) {
      std::ifstream in(dataDir / file);
      std::string line, text;
      int number = 0;
      const Outcome* current = nullptr;
      while (std::getline(in, line)) {
        ++number;
        if (line.rfind("## ", 0) == 0) {
          const auto found = outcomes.find(number);
          current = found == outcomes.end() ? nullptr : &found->second;
        }
        const bool expectation = !line.empty() && (line[0] == '?' || line[0] == '>' || line[0] == '!');
        if (current && expectation) continue;
        if (current && line.empty()) {
          text += "? " + std::to_string(current->status) + '\n';
          for (const auto& o : current->out) text += (o.empty() ? std::string(">") : "> " + o) + '\n';
          for (const auto& e : current->err) text += "! " + e + '\n';
          current = nullptr;
        }
        text += line + '\n';
      }
      if (current) {
        text += "? " + std::to_string(current->status) + '\n';
        for (const auto& o : current->out) text += (o.empty() ? std::string(">") : "> " + o) + '\n';
        for (const auto& e : current->err) text += "! " + e + '\n';
      }
      std::ofstream(dataDir / file) << text;
    }
  }
};

const testing::Environment* const rewriter =
    std::getenv("VELMOR_UPDATE_GOLDEN") ? testing::AddGlobalTestEnvironment(new Rewriter) : nullptr;

class CliGolden : public testing::TestWithParam<Case> {};

TEST_P(CliGolden, Runs) {
  const Case& c = GetParam();
  if (!fs::exists(toolPath())) GTEST_SKIP() << "velmor-sql not built at " << toolPath();
  SCOPED_TRACE(c.file + ":" + std::to_string(c.line) + ": " + c.name);
  const Outcome outcome = run(c);
  if (rewriter) updates()[c.file][c.line] = outcome;
  EXPECT_EQ(outcome.status, c.status);
  EXPECT_EQ(outcome.out, c.out);
  EXPECT_EQ(outcome.err, c.err);
}

std::string caseName(const testing::TestParamInfo<Case>& info) {
  std::string name = info.param.file.substr(0, info.param.file.find('.')) + "_" + std::to_string(info.param.line);
  for (char& c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Files, CliGolden, testing::ValuesIn(readCases()), caseName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CliGolden);

} // namespace
