// velmor-sql tokens: the scanner's view of a text, one token per line.
#include "Commands.h"
#include "Input.h"
#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/sqllexer/Tokens.h>

#include <iostream>
#include <stdexcept>

namespace velmor::cli {

using namespace sql::host; // type names and UTF-8

int runTokens(const std::vector<std::string>& args) {
  if (auto status = handleOptions("tokens", args)) return *status;
  const std::string text = readInput(args);

  std::vector<sql::ScannedToken> tokens;
  try {
    tokens = sql::tokenize(text);
  } catch (const std::runtime_error& error) {
    std::cerr << "velmor-sql tokens: " << error.what() << '\n';
    return exitUsage;
  }

  std::string out;
  for (const sql::ScannedToken& token : tokens) {
    out += std::to_string(token.line);
    out += ':';
    out += std::to_string(token.column);
    out += ' ';
    out += sql::tokenName(token.id);
    if (sql::carriesText(token.id)) {
      out += ' ';
      appendUtf8(token.text, out);
    }
    out += '\n';
  }
  std::cout.write(out.data(), static_cast<std::streamsize>(out.size()));
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace velmor::cli
