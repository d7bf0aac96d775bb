// Shared input handling of the subcommands.
#include "Input.h"

#include "Commands.h"

#include <velmor/sql/sqllexer/Tokens.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>

namespace velmor::cli {

std::string readInput(const std::vector<std::string>& args) {
  std::size_t first = !args.empty() && args.front() == "--" ? 1 : 0;
  if (args.size() == first || (args.size() == first + 1 && args[first] == "-")) {
    std::string text;
    char buffer[65536];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, stdin)) > 0) text.append(buffer, n);
    return text;
  }
  std::string text;
  for (std::size_t i = first; i < args.size(); ++i) {
    if (i > first) text += ' ';
    text += args[i];
  }
  return text;
}

std::optional<int> handleOptions(const char* command, const std::vector<std::string>& args) {
  if (args.empty()) return std::nullopt;
  const std::string& first = args.front();
  if (first == "--help" || first == "-h") {
    printCommandUsage(command, std::cout);
    return exitOk;
  }
  if (first.size() > 2 && first.compare(0, 2, "--") == 0) {
    std::cerr << "velmor-sql " << command << ": unknown option '" << first << "'\n";
    printCommandUsage(command, std::cerr);
    return exitUsage;
  }
  return std::nullopt;
}

bool takeFlag(std::vector<std::string>& args, const char* flag) {
  for (auto arg = args.begin(); arg != args.end() && arg->rfind("--", 0) == 0 && *arg != "--"; ++arg) {
    if (*arg == flag) {
      args.erase(arg);
      return true;
    }
  }
  return false;
}

bool takeScoping(const char* command, std::vector<std::string>& args, sql::Scoping& scoping) {
  for (auto arg = args.begin(); arg != args.end() && arg->rfind("--", 0) == 0 && *arg != "--"; ++arg) {
    std::string value;
    auto last = arg;
    if (*arg == "--scoping") {
      if (std::next(arg) == args.end()) {
        std::cerr << "velmor-sql " << command << ": --scoping needs a value: standard or compatible\n";
        return false;
      }
      last = std::next(arg);
      value = *last;
    } else if (arg->rfind("--scoping=", 0) == 0) {
      value = arg->substr(10);
    } else {
      continue;
    }
    if (value == "standard") {
      scoping = sql::Scoping::Standard;
    } else if (value == "compatible") {
      scoping = sql::Scoping::Compatible;
    } else {
      std::cerr << "velmor-sql " << command << ": unknown scoping '" << value << "' (standard or compatible)\n";
      return false;
    }
    args.erase(arg, std::next(last));
    return true;
  }
  return true;
}

std::string shownBytes(const std::string& text, std::size_t offset, std::size_t length) {
  constexpr std::size_t kMost = 24;
  const std::size_t end = offset + std::min(length, kMost);
  std::string out;
  for (std::size_t i = offset; i < end;) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t size = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC2 ? 2 : 1;
    bool wellFormed = size > 1 ? i + size <= end : (byte >= 0x20 && byte < 0x7F);
    for (std::size_t k = 1; wellFormed && k < size; ++k) wellFormed = (static_cast<unsigned char>(text[i + k]) & 0xC0) == 0x80;
    if (!wellFormed) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
      out += escaped;
      ++i;
      continue;
    }
    if (byte == '\'' || byte == '\\') out += '\\';
    out.append(text, i, size);
    i += size;
  }
  if (length > kMost) out += "...";
  return out;
}

bool reportSkippedText(const std::string& text, bool strict) {
  const char* level = strict ? "error: " : "warning: ";
  bool clean = true;
  for (const sql::SkippedText& part : sql::skippedText(text)) {
    clean = false;
    std::cerr << level << part.line << ':' << part.column << ": ";
    if (part.kind == sql::SkippedText::Kind::Dropped) {
      std::cerr << '\'' << shownBytes(text, part.offset, part.length) << "' is not SQL and was skipped\n";
    } else {
      const std::size_t after = part.length - 1;
      std::cerr << "the text ends at a NUL byte; " << after << (after == 1 ? " byte after it was" : " bytes after it were")
                << " ignored\n";
    }
  }
  return clean || !strict;
}

} // namespace velmor::cli
