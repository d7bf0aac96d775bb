// velmor-sql format and rename: a statement written back as canonical SQL.

#include "Catalogue.h"
#include "Commands.h"
#include "Documents.h"
#include "Input.h"

#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/RoundTrip.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace velmor::cli {
namespace {

using sql::host::fromUtf8;
using sql::host::toUtf8;

class NoParseContext : public sql::ParseContext {};

// What --verify checks: the canonical text (with `context`) reads back as the same tree.
struct Verify {
  bool on = false;
  const sql::StringBuildContext* context = nullptr;
};

// Parses the text and writes it with `builder`; syntax errors go to stderr, one per line.
// A tree the writer cannot write (a row of no values) fails the same way, with its reason.
// With --verify the text is still written, and a failed round trip is told and fails.
int formatWith(sql::SqlStringBuilder& builder, const std::string& text, Verify verify = {}) {
  std::string out;
  int status = exitOk;
  try {
    NoParseContext parseContext;
    sql::SqlParser parser(parseContext);
    if (!parser.parse(text)) {
      for (const auto& error : parser.errors) std::cerr << error->what() << '\n';
      return exitSyntax;
    }
    out = toUtf8(builder.buildString(parser.result));
    if (verify.on) {
      const sql::RoundTripReport report = sql::checkRoundTrip(parser.result, verify.context);
      if (!report.syntaxError.empty()) {
        std::cerr << "velmor-sql format: the canonical text does not parse again: " << report.syntaxError << '\n';
        status = exitFailure;
      } else if (!report.same) {
        std::cerr << "velmor-sql format: the canonical text reads back as another tree: " << toUtf8(report.readBack)
                  << ", where the statement has " << toUtf8(report.written) << '\n';
        status = exitFailure;
      }
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return exitFailure;
  }
  out += '\n';
  std::cout.write(out.data(), static_cast<std::streamsize>(out.size()));
  std::cout.flush();
  return std::cout ? status : exitFailure;
}

} // namespace

int runFormat(const std::vector<std::string>& args) {
  if (auto status = runDocuments(DocumentCommand::Format, args)) return *status;
  std::vector<std::string> rest = args;
  const auto context = takeStringBuildContext("format", rest);
  if (!context) return exitUsage;
  const bool useContext = !takeFlag(rest, "--no-context");
  const bool verify = takeFlag(rest, "--verify");
  const bool strict = takeFlag(rest, "--strict");
  if (auto status = handleOptions("format", rest)) return *status;
  const std::string text = readInput(rest);
  if (!reportSkippedText(text, strict)) return exitFailure;
  sql::SqlStringBuilder builder(useContext ? context.get() : nullptr);
  return formatWith(builder, text, {verify, useContext ? context.get() : nullptr});
}

int runRename(const std::vector<std::string>& options) {
  std::vector<std::string> args = options;
  const auto context = takeStringBuildContext("rename", args);
  if (!context) return exitUsage;
  const bool strict = takeFlag(args, "--strict");
  if (auto status = handleOptions("rename", args)) return *status;
  if (args.size() < 2) {
    printCommandUsage("rename", std::cerr);
    return exitUsage;
  }
  const std::vector<std::string> rest(args.begin() + 2, args.end());
  const std::string text = readInput(rest);
  if (!reportSkippedText(text, strict)) return exitFailure;
  sql::RenameTableBuilder builder(context.get(), fromUtf8(args[0]), fromUtf8(args[1]));
  return formatWith(builder, text);
}

} // namespace velmor::cli
