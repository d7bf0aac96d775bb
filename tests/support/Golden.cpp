#include "support/Golden.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <memory>
#include <vector>

namespace velmor::sql::test {
namespace {

const std::string arrow = "=> ";

std::string unescape(const std::string& line) {
  std::string out;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] != '\\' || i + 1 == line.size()) {
      out += line[i];
      continue;
    }
    const char c = line[++i];
    switch (c) {
    case 'n': out += '\n'; break;
    case 't': out += '\t'; break;
    case 'r': out += '\r'; break;
    case '0': out += '\0'; break;
    case 'x': out += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16)); i += 2; break;
    case '\\': out += '\\'; break;
    case 'e': break;
    default: out.append(1, '\\').append(1, c);
    }
  }
  return out;
}

// Control characters as \xHH; each line of the text becomes one expectation line.
std::vector<std::string> expectationLines(const std::string& text) {
  std::vector<std::string> lines(1);
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    char escape[8];
    std::snprintf(escape, sizeof escape, byte < 0x20 || byte == 0x7F ? "\\x%02X" : "%c", byte);
    if (c == '\n') lines.emplace_back();
    else lines.back() += escape;
  }
  return lines;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string out;
  for (std::size_t i = 0; i < lines.size(); ++i) out.append(i ? "\n" : "").append(lines[i]);
  return out;
}

// An exception that escapes the code under test becomes the text, so that it shows in the diff.
std::string describeSafely(const Describe& describe, const std::string& input) {
  try {
    return describe(input);
  } catch (const std::exception& error) {
    return std::string("uncaught exception: ") + error.what();
  }
}

class GoldenCase : public testing::Test {
public:
  GoldenCase(Describe describe, std::string input, std::string expected)
      : mDescribe(std::move(describe)), mInput(std::move(input)), mExpected(std::move(expected)) {}
  void TestBody() override {
    // The failure names the case's file and line (the ones it was registered with).
    const testing::TestInfo& info = *testing::UnitTest::GetInstance()->current_test_info();
    const testing::ScopedTrace where(info.file(), info.line(), "golden case");
    EXPECT_EQ(joined(expectationLines(describeSafely(mDescribe, mInput))), mExpected)
        << "input: " << testing::PrintToString(mInput);
  }

private:
  Describe mDescribe;
  std::string mInput;
  std::string mExpected;
};

} // namespace

std::wstring wideOf(const std::string& text) {
  std::wstring out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "\\u") == 0 && i + 6 <= text.size()) {
      out += static_cast<wchar_t>(std::stoul(text.substr(i + 2, 4), nullptr, 16));
      i += 5;
    } else {
      out += static_cast<wchar_t>(static_cast<unsigned char>(text[i]));
    }
  }
  return out;
}

std::string shownOf(const std::wstring& text) {
  std::string out;
  for (wchar_t unit : text) {
    char escape[12];
    std::snprintf(escape, sizeof escape, unit >= 0x20 && unit < 0x7F ? "%c" : "\\u%04X", static_cast<unsigned>(unit));
    out += escape;
  }
  return out;
}

namespace {

struct Request {
  std::string suite, file;
  Describe describe;
};

std::vector<Request>& requests() {
  static std::vector<Request> instance;
  return instance;
}

void registerFile(const std::string& suite, const std::string& file, const Describe& describe) {
  const std::string path = std::string(VELMOR_TEST_DATA_DIR "/") + file;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    std::abort();
  }
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  const bool update = std::getenv("VELMOR_UPDATE_GOLDEN") != nullptr;
  std::vector<std::string> rewritten;
  for (std::size_t i = 0; i < lines.size();) {
    const std::string& line = lines[i++];
    if (line.empty() || line[0] == '#' || line.rfind(arrow, 0) == 0) {
      if (line.rfind(arrow, 0) != 0) rewritten.push_back(line);
      continue;
    }
    const int lineNumber = static_cast<int>(rewritten.size() + 1);
    rewritten.push_back(line);
    std::vector<std::string> expected;
    for (; i < lines.size() && lines[i].rfind(arrow, 0) == 0; ++i) expected.push_back(lines[i].substr(arrow.size()));
    const std::string input = unescape(line);
    if (update) expected = expectationLines(describeSafely(describe, input));
    for (const std::string& e : expected) rewritten.push_back(arrow + e);
    const std::string stem = file.substr(file.find_last_of('/') + 1, file.find_last_of('.') - file.find_last_of('/') - 1);
    const std::string name = stem + "_line" + std::to_string(lineNumber);
    testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, path.c_str(), lineNumber,
                          [describe, input, text = joined(expected)]() -> testing::Test* {
                            return new GoldenCase(describe, input, text);
                          });
  }
  if (update) {
    std::ofstream out(path, std::ios::binary);
    for (const std::string& line : rewritten) out << line << '\n';
  }
}

} // namespace

void registerGolden(const std::string& suite, const std::string& file, Describe describe) {
  requests().push_back({suite, file, std::move(describe)});
}

void registerAllGolden() {
  for (const Request& request : requests()) registerFile(request.suite, request.file, request.describe);
}

std::size_t codePointWidth(const std::string& text, std::size_t offset) {
  std::size_t columns = 0;
  for (std::size_t i = 0; i < offset && i < text.size(); ++i) columns += (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
  return columns;
}

} // namespace velmor::sql::test
