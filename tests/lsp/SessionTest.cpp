// Every script of tests/data/lsp/*.session, replayed and compared with its transcript.
#include "Session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace velmor::lsp::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> sessions() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(VELMOR_LSP_SESSIONS)) {
    if (entry.path().extension() == ".session") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class SessionTest : public ::testing::TestWithParam<std::string> {};

TEST_P(SessionTest, TranscriptMatches) {
  const fs::path file = fs::path(VELMOR_LSP_SESSIONS) / (GetParam() + ".session");
  std::ifstream in(file, std::ios::binary);
  std::stringstream script;
  script << in.rdbuf();
  const std::string transcript = runSession(script.str(), VELMOR_LSP_SESSIONS);
  if (std::getenv("VELMOR_UPDATE_GOLDEN")) {
    std::ofstream(file, std::ios::binary) << transcript;
    return;
  }
  std::istringstream expected(script.str());
  std::istringstream actual(transcript);
  std::string want;
  std::string got;
  for (int line = 1;; ++line) {
    const bool moreWanted = static_cast<bool>(std::getline(expected, want));
    const bool moreGot = static_cast<bool>(std::getline(actual, got));
    if (!moreWanted && !moreGot) break;
    ASSERT_EQ(moreWanted ? want : "(end)", moreGot ? got : "(end)") << file.string() << ':' << line;
  }
}

INSTANTIATE_TEST_SUITE_P(Scripts, SessionTest, ::testing::ValuesIn(sessions()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           std::string name = info.param;
                           std::replace_if(name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
                           return name;
                         });

} // namespace
} // namespace velmor::lsp::test
