// The file mode: documents read in pieces and split into statements as they come; each statement
// checked, formatted or described on its own (in parallel with --jobs), the output in document
// order.
#include "Documents.h"

#include "Catalogue.h"
#include "Commands.h"
#include "Input.h"
#include "Sarif.h"

#include <velmor/sql/host/Messages.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/host/document/DocumentCheck.h>
#include <velmor/sql/host/document/Statements.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/RoundTrip.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/sqllexer/Tokens.h>

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <set>
#include <thread>

namespace velmor::cli {
namespace {

namespace fs = std::filesystem;
using sql::host::DocumentChecker;
using sql::host::DocumentPlace;
using sql::host::DocumentStatement;
using sql::host::StatementCheck;

enum class Output { Text, Json, Sarif };

struct Options {
  DocumentCommand command = DocumentCommand::Check;
  std::vector<std::string> paths;
  Output output = Output::Text;
  unsigned jobs = 1;
  bool strict = false;
  bool caret = false;
  bool inPlace = false;
  bool verify = false;
  sql::host::SplitOptions split;
  sql::Scoping scoping = sql::Scoping::Standard;
  std::shared_ptr<const Catalogue> catalogue;
  std::shared_ptr<const sql::StringBuildContext> context;
};

enum class Outcome { Ok, Faults, Syntax, Other };

// What one statement gave, rendered by a worker and written by the main thread in order.
struct Rendered {
  Outcome outcome = Outcome::Ok;
  std::string out;
  std::string err;
  std::vector<std::string> sarif;
  std::set<std::string> rules;
};

class NoParseContext : public sql::ParseContext {};

// What a thread keeps from one statement to the next: its parser and its checker.
struct Worker {
  explicit Worker(const Options& options) {
    if (options.catalogue)
      checker = std::make_unique<DocumentChecker>(*options.catalogue, *options.catalogue, options.scoping);
  }
  std::unique_ptr<DocumentChecker> checker;
  NoParseContext parseContext;
  sql::SqlParser parser{parseContext};
};

// "12,345": counts in the summary are read by people.
std::string grouped(std::size_t n) {
  const std::string digits = std::to_string(n);
  std::string text;
  text.reserve(digits.size() + digits.size() / 3);
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text.push_back(',');
    text.push_back(digits[i]);
  }
  return text;
}

std::string counted(std::size_t n, const char* one, const char* many) {
  return grouped(n) + ' ' + (n == 1 ? one : many);
}

std::string placeText(const std::string& file, std::size_t line, std::size_t column) {
  return file + ':' + std::to_string(line) + ':' + std::to_string(column) + ": ";
}

nlohmann::json placeJson(std::size_t line, std::size_t column, std::size_t offset) {
  return {{"line", line}, {"column", column}, {"offset", offset}};
}

nlohmann::json rangeJson(const sql::SourceRange& r) {
  return {{"begin", placeJson(r.beginLine, r.beginColumn, r.beginOffset)},
          {"end", placeJson(r.endLine, r.endColumn, r.endOffset)}};
}

sql::SourceRange pointRange(const DocumentPlace& place) {
  return {place.line, place.column, place.line, place.column, place.offset, place.offset};
}

sql::SourceRange statementRange(const DocumentStatement& statement) {
  return {statement.begin.line,   statement.begin.column, statement.end.line,
          statement.end.column,   statement.begin.offset, statement.end.offset};
}

// The line of the document that holds `range`'s begin, as far as the statement has it, with a
// caret under the range (to its end when that is on the same line). Tabs are spread to the grid
// so that the caret lines up.
std::string sourceLines(const DocumentStatement& statement, const sql::SourceRange& range) {
  std::size_t at = 0;
  for (std::size_t line = statement.begin.line; line < range.beginLine && at < statement.source.size(); ++at) {
    if (statement.source[at] == '\n') ++line;
  }
  std::size_t column = range.beginLine == statement.begin.line ? statement.begin.column : 1;
  std::string shown(column - 1, ' ');
  for (; at < statement.source.size() && statement.source[at] != '\n'; ++at) {
    const char byte = statement.source[at];
    if (byte == '\r') continue;
    const std::size_t before = column;
    std::size_t line = 0;
    sql::advancePlace(line, column, static_cast<unsigned char>(byte));
    shown += byte == '\t' ? std::string(column - before, ' ') : std::string(1, byte);
  }
  const std::size_t width = range.endLine == range.beginLine && range.endColumn > range.beginColumn
                                ? range.endColumn - range.beginColumn
                                : 1;
  return shown + '\n' + std::string(range.beginColumn - 1, ' ') + '^' + std::string(width - 1, '~') + '\n';
}

// A diagnostic of the statement in the chosen form; Text lines go to `text`.
void diagnose(const Options& options, const std::string& file, const DocumentStatement& statement,
              const sql::SourceRange& range, const char* level, const std::string& message, const std::string& rule,
              Rendered& rendered, std::string& text) {
  if (options.output == Output::Sarif) {
    rendered.sarif.push_back(sarifResult(file, rule, message, range));
    rendered.rules.insert(rule);
    return;
  }
  if (options.output == Output::Json) return;
  text += placeText(file, range.beginLine, range.beginColumn) + level + ": " + message + " [" + rule + "]\n";
  if (options.caret) text += sourceLines(statement, range);
}

// What the scanner would skip in the statement: warnings, or with --strict errors that stop it.
bool reportSkipped(const Options& options, const std::string& file, const DocumentStatement& statement,
                   Rendered& rendered, std::string& text) {
  bool clean = true;
  for (const sql::SkippedText& part : sql::skippedText(statement.text)) {
    clean = false;
    const DocumentPlace place = sql::host::documentPlace(statement, part.offset);
    const std::string message = part.kind == sql::SkippedText::Kind::Dropped
                                    ? std::string(1, '\'')
                                          .append(shownBytes(statement.text, part.offset, part.length))
                                          .append("' is not SQL and was skipped")
                                    : std::string("the statement ends at a NUL byte");
    diagnose(options, file, statement, pointRange(place), options.strict ? "error" : "warning", message,
             "SkippedText", rendered, text);
  }
  return clean || !options.strict;
}

// The fault in words; its fields where a check gave no words.
std::string faultMessage(const sql::host::PlacedFault& placed) {
  if (!placed.message.empty()) return placed.message;
  std::string message;
  for (const sql::host::FaultField& field : sql::host::faultFields(*placed.fault)) {
    if (!message.empty()) message += ' ';
    message += std::string(field.name) + '=';
    switch (field.kind) {
    case sql::host::FaultField::Kind::Name: message += '"' + field.text + '"'; break;
    case sql::host::FaultField::Kind::Description: message += field.text; break;
    case sql::host::FaultField::Kind::Number: message += std::to_string(field.number); break;
    case sql::host::FaultField::Kind::Flag: message += field.number != 0 ? "true" : "false"; break;
    }
  }
  return message.empty() ? std::string(sql::host::faultClassName(*placed.fault)) : message;
}

nlohmann::json faultJson(const sql::host::PlacedFault& placed) {
  nlohmann::json fields = nlohmann::json::object();
  for (const sql::host::FaultField& field : sql::host::faultFields(*placed.fault)) {
    switch (field.kind) {
    case sql::host::FaultField::Kind::Name:
    case sql::host::FaultField::Kind::Description: fields[field.name] = field.text; break;
    case sql::host::FaultField::Kind::Number: fields[field.name] = field.number; break;
    case sql::host::FaultField::Kind::Flag: fields[field.name] = field.number != 0; break;
    }
  }
  return {{"class", sql::host::faultClassName(*placed.fault)},
          {"type", static_cast<int>(placed.fault->type())},
          {"fields", fields},
          {"text", sql::host::errorLine(*placed.fault)},
          {"message", faultMessage(placed)},
          {"range", placed.range ? rangeJson(*placed.range) : nlohmann::json(nullptr)}};
}

// Every check of the file mode passes here: the one place that decides how a statement is checked.
StatementCheck checkOne(const DocumentStatement& statement, Worker& worker) { return worker.checker->check(statement); }

Rendered renderCheck(const Options& options, const std::string& file, const DocumentStatement& statement,
                     Worker& worker) {
  Rendered rendered;
  std::string& text = rendered.out;
  StatementCheck check;
  const bool stopped = !reportSkipped(options, file, statement, rendered, text);
  if (stopped) {
    check.outcome = StatementCheck::Outcome::SyntaxError;
    check.syntaxError = "text that is not SQL";
    check.syntaxPlace = statement.begin;
  } else {
    check = checkOne(statement, worker);
  }
  switch (check.outcome) {
  case StatementCheck::Outcome::Ok: rendered.outcome = Outcome::Ok; break;
  case StatementCheck::Outcome::Faults: rendered.outcome = Outcome::Faults; break;
  case StatementCheck::Outcome::SyntaxError: rendered.outcome = Outcome::Syntax; break;
  case StatementCheck::Outcome::NotCheckable: rendered.outcome = Outcome::Other; break;
  }
  // With --strict, the skipped text was the error and has been told.
  if (check.outcome == StatementCheck::Outcome::SyntaxError && !stopped) {
    diagnose(options, file, statement, pointRange(check.syntaxPlace), "error", check.syntaxError, "SyntaxError",
             rendered, text);
  }
  for (const sql::host::PlacedFault& fault : check.faults) {
    diagnose(options, file, statement, fault.range ? *fault.range : statementRange(statement), "error",
             faultMessage(fault), sql::host::faultClassName(*fault.fault), rendered, text);
  }
  if (options.output == Output::Json) {
    static constexpr const char* outcomes[] = {"ok", "faults", "syntax error", "not checkable"};
    nlohmann::json faults = nlohmann::json::array();
    for (const sql::host::PlacedFault& fault : check.faults) faults.push_back(faultJson(fault));
    nlohmann::json line = {{"file", file},
                           {"index", statement.index},
                           {"range", rangeJson(statementRange(statement))},
                           {"outcome", outcomes[static_cast<int>(check.outcome)]},
                           {"ok", check.outcome == StatementCheck::Outcome::Ok},
                           {"faults", faults},
                           {"syntaxError", nullptr}};
    if (check.outcome == StatementCheck::Outcome::SyntaxError) {
      line["syntaxError"] = {{"message", check.syntaxError},
                             {"begin", placeJson(check.syntaxPlace.line, check.syntaxPlace.column,
                                                 check.syntaxPlace.offset)}};
    }
    if (check.outcome == StatementCheck::Outcome::NotCheckable) line["kind"] = check.kind;
    text += line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
  }
  return rendered;
}

// Parses the statement with the worker's parser; a syntax error is reported at its place.
bool parseOrReport(const Options& options, const std::string& file, const DocumentStatement& statement, Worker& worker,
                   Rendered& rendered) {
  sql::SqlParser& parser = worker.parser;
  if (parser.parse(statement.text)) return true;
  const auto* error = dynamic_cast<const sql::UnexpectedLexeme*>(parser.errors.front().get());
  const DocumentPlace place =
      error ? sql::host::documentPlace(statement, sql::host::statementOffset(statement, error->line, error->column))
            : statement.begin;
  diagnose(options, file, statement, pointRange(place), "error", error ? error->text : parser.errors.front()->what(),
           "SyntaxError", rendered, rendered.err);
  return false;
}

Rendered renderFormat(const Options& options, const std::string& file, const DocumentStatement& statement,
                      Worker& worker) {
  Rendered rendered;
  if (!reportSkipped(options, file, statement, rendered, rendered.err)) {
    rendered.outcome = Outcome::Syntax;
    rendered.out = statement.source + ";\n";
    return rendered;
  }
  sql::SqlParser& parser = worker.parser;
  if (!parseOrReport(options, file, statement, worker, rendered)) {
    // The statement stays as it was, so that the output is still the whole document.
    rendered.outcome = Outcome::Syntax;
    rendered.out = statement.source + ";\n";
    return rendered;
  }
  try {
    rendered.out = sql::host::toUtf8(sql::SqlStringBuilder(options.context.get()).buildString(parser.result)) + ";\n";
    if (options.verify || options.inPlace) {
      const sql::RoundTripReport report = sql::checkRoundTrip(parser.result, options.context.get());
      std::string message;
      if (!report.syntaxError.empty()) {
        message = "the canonical text does not parse again: " + report.syntaxError;
      } else if (!report.same) {
        message = "the canonical text reads back as another tree: " + sql::host::toUtf8(report.readBack) +
                  ", where the statement has " + sql::host::toUtf8(report.written);
      }
      if (!message.empty()) {
        diagnose(options, file, statement, statementRange(statement), "error", message, "ChangedMeaning", rendered,
                 rendered.err);
        rendered.outcome = Outcome::Faults;
      }
    }
  } catch (const std::exception& error) {
    diagnose(options, file, statement, statementRange(statement), "error", error.what(), "NotWritten", rendered,
             rendered.err);
    rendered.outcome = Outcome::Faults;
    rendered.out = statement.source + ";\n";
  }
  return rendered;
}

std::string orDash(const std::wstring& text) { return text.empty() ? std::string("-") : sql::host::toUtf8(text); }

Rendered renderColumns(const Options& options, const std::string& file, const DocumentStatement& statement,
                       Worker& worker) {
  Rendered rendered;
  if (!reportSkipped(options, file, statement, rendered, rendered.err)) {
    rendered.outcome = Outcome::Syntax;
    return rendered;
  }
  sql::SqlParser& parser = worker.parser;
  if (!parseOrReport(options, file, statement, worker, rendered)) {
    rendered.outcome = Outcome::Syntax;
    return rendered;
  }
  const sql::ast::Node& tree = parser.result;
  const bool query = sql::ast::nodeIs<sql::ast::QuerySpecification>(tree) ||
                     (options.scoping == sql::Scoping::Standard &&
                      (sql::ast::nodeIs<sql::ast::QueryOperation>(tree) ||
                       sql::ast::nodeIs<sql::ast::RowValueExpressionList>(tree) ||
                       sql::ast::nodeIs<sql::ast::ExplicitTable>(tree)));
  if (!query) {
    rendered.outcome = Outcome::Other;
    return rendered;
  }
  std::shared_ptr<sql::TableInfo> table;
  try {
    table = sql::buildTableInfo(*options.catalogue, *options.catalogue, tree, options.scoping);
  } catch (const sql::SqlError& error) {
    diagnose(options, file, statement, statementRange(statement), "error",
             sql::host::faultMessage(error, options.catalogue.get()), sql::host::faultClassName(error), rendered,
             rendered.err);
    rendered.outcome = Outcome::Faults;
    return rendered;
  }
  std::vector<std::array<std::string, 4>> rows;
  for (std::size_t i = 0; i < table->columnCount(); ++i) {
    const sql::ColumnInfo column = table->columnByIndex(i);
    std::string names;
    for (const auto& name : column.names()) {
      if (!names.empty()) names += '|';
      sql::host::appendUtf8(name, names);
    }
    rows.push_back({names.empty() ? "-" : names, sql::host::typeText(column.type()), orDash(column.originalTable()),
                    orDash(column.originalName())});
  }
  std::array<std::size_t, 4> widths{};
  for (const auto& row : rows) {
    for (std::size_t k = 0; k < 4; ++k) widths[k] = std::max(widths[k], row[k].size());
  }
  rendered.out = placeText(file, statement.begin.line, statement.begin.column) + "query\n";
  for (const auto& row : rows) {
    for (std::size_t k = 0; k < 4; ++k) {
      rendered.out += row[k];
      if (k < 3) rendered.out += std::string(widths[k] - row[k].size() + 2, ' ');
    }
    rendered.out += '\n';
  }
  return rendered;
}

// The documents named by -f: a directory stands for its *.sql files in name order.
std::optional<std::vector<std::string>> expandPaths(const std::vector<std::string>& given, const char* command) {
  std::vector<std::string> paths;
  for (const std::string& path : given) {
    std::error_code error;
    if (path == "-") {
      paths.push_back(path);
    } else if (fs::is_directory(path, error)) {
      std::vector<std::string> found;
      for (const auto& entry : fs::directory_iterator(path, error)) {
        if (entry.path().extension() == ".sql" && !entry.is_directory()) found.push_back(entry.path().string());
      }
      std::sort(found.begin(), found.end());
      paths.insert(paths.end(), found.begin(), found.end());
    } else if (fs::exists(path, error)) {
      paths.push_back(path);
    } else {
      std::cerr << "velmor-sql " << command << ": cannot read '" << path << "': no such file or directory\n";
      return std::nullopt;
    }
  }
  return paths;
}

struct Totals {
  std::size_t statements = 0;
  std::array<std::size_t, 4> outcomes{};
};

// A line on a terminal's standard error while a long run goes on.
class Progress {
public:
  explicit Progress(std::uintmax_t totalBytes) : mTotal(totalBytes), mOn(isatty(STDERR_FILENO) != 0) {}
  void update(std::size_t statements, std::uintmax_t bytes) {
    if (!mOn) return;
    const auto now = std::chrono::steady_clock::now();
    // Short runs show nothing; long ones a line that changes a few times a second.
    if (now - mStart < std::chrono::seconds(1) || now - mLast < std::chrono::milliseconds(100)) return;
    mLast = now;
    mShown = true;
    std::cerr << "\r\033[Kvelmor-sql: " << grouped(statements) << " statements";
    if (mTotal > 0) std::cerr << ", " << std::min<std::uintmax_t>(100, bytes * 100 / mTotal) << '%';
    std::cerr.flush();
  }
  ~Progress() {
    if (mShown) std::cerr << "\r\033[K";
  }

private:
  std::uintmax_t mTotal;
  bool mOn;
  bool mShown = false;
  std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point mLast = mStart;
};

class Runner {
public:
  explicit Runner(const Options& options) : mOptions(options) {
    for (unsigned i = 0; i < options.jobs; ++i) mWorkers.push_back(std::make_unique<Worker>(options));
  }

  int run() {
    std::uintmax_t totalBytes = 0;
    for (const std::string& path : mOptions.paths) {
      std::error_code error;
      if (path != "-" && fs::is_regular_file(path, error)) totalBytes += fs::file_size(path, error);
    }
    Progress progress(totalBytes);
    if (mOptions.output == Output::Sarif) write(sarifHead());
    bool readable = true;
    for (const std::string& path : mOptions.paths) readable = runFile(path, progress) && readable;
    if (mOptions.output == Output::Sarif) write(sarifTail(mRules));
    std::fflush(stdout);
    summarize();
    if (!readable) return exitUsage;
    if (mTotals.outcomes[static_cast<int>(Outcome::Syntax)] > 0) return exitSyntax;
    if (mTotals.outcomes[static_cast<int>(Outcome::Faults)] > 0 || mLeftAsItIs) return exitFailure;
    return exitOk;
  }

private:
  void write(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), mOut);
  }

  bool runFile(const std::string& path, Progress& progress) {
    const bool fromStdin = path == "-";
    const std::string shownName = fromStdin ? std::string("<stdin>") : path;
    FILE* in = fromStdin ? stdin : std::fopen(path.c_str(), "rb");
    if (!in) {
      std::cerr << "velmor-sql: cannot read '" << path << "'\n";
      return false;
    }
    // -i writes beside the file and replaces it only when every statement came through.
    const std::string temporary = path + ".velmor-sql-tmp";
    if (mOptions.inPlace) {
      mOut = std::fopen(temporary.c_str(), "wb");
      if (!mOut) {
        std::cerr << "velmor-sql: cannot write '" << temporary << "'\n";
        std::fclose(in);
        mOut = stdout;
        return false;
      }
    }
    const Totals before = mTotals;
    sql::host::StatementSplitter splitter(mOptions.split);
    std::vector<DocumentStatement> batch;
    std::vector<char> buffer(1 << 16);
    std::size_t n;
    std::size_t batchBytes = 0;
    const std::size_t batchSize = 256 * mOptions.jobs;
    while ((n = std::fread(buffer.data(), 1, buffer.size(), in)) > 0) {
      splitter.feed(std::string_view(buffer.data(), n), batch);
      mBytes += n;
      batchBytes += n;
      if (batch.size() >= batchSize || batchBytes > (8u << 20)) {
        runBatch(shownName, batch);
        batch.clear();
        batchBytes = 0;
        progress.update(mTotals.statements, mBytes);
      }
    }
    const bool failed = std::ferror(in) != 0;
    const std::size_t comments = splitter.comments();
    splitter.finish(batch);
    runBatch(shownName, batch);
    if (!fromStdin) std::fclose(in);
    if (failed) std::cerr << "velmor-sql: cannot read '" << path << "'\n";
    if (!mOptions.inPlace) return !failed;

    const bool wrote = std::fclose(mOut) == 0;
    mOut = stdout;
    std::string why;
    if (failed || !wrote) {
      why = "it could not be read or written";
    } else if (mTotals.outcomes[static_cast<int>(Outcome::Syntax)] != before.outcomes[static_cast<int>(Outcome::Syntax)] ||
               mTotals.outcomes[static_cast<int>(Outcome::Faults)] != before.outcomes[static_cast<int>(Outcome::Faults)]) {
      why = "a statement above would not keep its meaning";
    } else if (comments > 0) {
      why = "its comments would be lost";
    }
    std::error_code error;
    if (why.empty()) {
      fs::permissions(temporary, fs::status(path, error).permissions(), error);
      fs::rename(temporary, path, error);
      if (!error) return true;
      why = "it could not be replaced (" + error.message() + ")";
    }
    fs::remove(temporary, error);
    mLeftAsItIs = true;
    std::cerr << "velmor-sql format: " << path << " left as it is: " << why << '\n';
    if (failed || !wrote) return false;
    return true;
  }

  Rendered render(const std::string& file, const DocumentStatement& statement, Worker& worker) {
    switch (mOptions.command) {
    case DocumentCommand::Check: return renderCheck(mOptions, file, statement, worker);
    case DocumentCommand::Format: return renderFormat(mOptions, file, statement, worker);
    case DocumentCommand::Columns: return renderColumns(mOptions, file, statement, worker);
    }
    return {};
  }

  void runBatch(const std::string& file, const std::vector<DocumentStatement>& batch) {
    std::vector<Rendered> results(batch.size());
    const unsigned threads = std::min<std::size_t>(mOptions.jobs, batch.size());
    if (threads <= 1) {
      for (std::size_t i = 0; i < batch.size(); ++i) results[i] = render(file, batch[i], *mWorkers.front());
    } else {
      // Statements are taken one at a time, so that a slow one holds up no other thread.
      std::atomic<std::size_t> next{0};
      const auto work = [&](Worker& worker) {
        for (std::size_t i; (i = next.fetch_add(1)) < batch.size();) results[i] = render(file, batch[i], worker);
      };
      std::vector<std::thread> pool;
      for (unsigned t = 1; t < threads; ++t) pool.emplace_back(work, std::ref(*mWorkers[t]));
      work(*mWorkers.front());
      for (std::thread& thread : pool) thread.join();
    }
    for (Rendered& result : results) {
      ++mTotals.statements;
      ++mTotals.outcomes[static_cast<int>(result.outcome)];
      if (!result.out.empty()) write(result.out);
      if (!result.err.empty()) {
        std::fflush(mOut);
        std::cerr << result.err;
      }
      for (const std::string& entry : result.sarif) {
        write(mSarifResults++ > 0 ? "," + entry : entry);
      }
      mRules.insert(result.rules.begin(), result.rules.end());
    }
  }

  void summarize() {
    const auto count = [&](Outcome outcome) { return mTotals.outcomes[static_cast<int>(outcome)]; };
    std::string line = counted(mTotals.statements, "statement", "statements") + ": ";
    switch (mOptions.command) {
    case DocumentCommand::Check:
      line += grouped(count(Outcome::Ok)) + " ok, " + grouped(count(Outcome::Faults)) + " with faults, " +
              counted(count(Outcome::Syntax), "syntax error", "syntax errors");
      if (count(Outcome::Other) > 0) line += ", " + grouped(count(Outcome::Other)) + " not checkable";
      break;
    case DocumentCommand::Format:
      line += grouped(count(Outcome::Ok)) + " formatted, " + grouped(count(Outcome::Faults)) + " not kept, " +
              counted(count(Outcome::Syntax), "syntax error", "syntax errors");
      break;
    case DocumentCommand::Columns:
      line += counted(count(Outcome::Ok), "query", "queries") + ", " + grouped(count(Outcome::Faults)) +
              " with faults, " + counted(count(Outcome::Syntax), "syntax error", "syntax errors");
      if (count(Outcome::Other) > 0) line += ", " + grouped(count(Outcome::Other)) + " without columns";
      break;
    }
    std::cerr << line << '\n';
  }

  const Options& mOptions;
  std::vector<std::unique_ptr<Worker>> mWorkers;
  FILE* mOut = stdout;
  Totals mTotals;
  std::uintmax_t mBytes = 0;
  std::size_t mSarifResults = 0;
  bool mLeftAsItIs = false;
  std::set<std::string> mRules;
};

const char* commandName(DocumentCommand command) {
  switch (command) {
  case DocumentCommand::Check: return "check";
  case DocumentCommand::Format: return "format";
  case DocumentCommand::Columns: return "columns";
  }
  return "";
}

bool isFileOption(const std::string& arg) { return arg == "-f" || arg == "--file" || arg.rfind("--file=", 0) == 0; }

} // namespace

std::optional<int> runDocuments(DocumentCommand command, const std::vector<std::string>& args) {
  const char* name = commandName(command);
  // Documents are named among the leading options only: after them comes SQL text, which may
  // hold "-f" as it likes.
  bool named = false;
  for (std::size_t i = 0; i < args.size() && !named; ++i) {
    const std::string& arg = args[i];
    if (arg.empty() || arg[0] != '-' || arg == "--" || arg == "-") break;
    named = isFileOption(arg);
    if (arg == "--catalog" || arg == "--jobs" || arg == "-j" || arg == "--from" || arg == "--scoping") ++i;
  }
  if (!named) return std::nullopt;

  Options options;
  options.command = command;
  options.caret = isatty(STDOUT_FILENO) != 0;
  std::vector<std::string> rest;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool takesValue = arg == "-f" || arg == "--file" || arg == "--jobs" || arg == "-j";
    if (takesValue && i + 1 >= args.size()) {
      std::cerr << "velmor-sql " << name << ": " << arg << " needs a value\n";
      return exitUsage;
    }
    if (arg == "-f" || arg == "--file") {
      options.paths.push_back(args[++i]);
    } else if (arg.rfind("--file=", 0) == 0) {
      options.paths.push_back(arg.substr(7));
    } else if (takesValue || arg.rfind("--jobs=", 0) == 0) {
      const std::string value = takesValue ? args[++i] : arg.substr(7);
      const bool digits = !value.empty() && value.size() < 5 &&
                          std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; });
      options.jobs = digits ? static_cast<unsigned>(std::stoul(value)) : 0;
      if (options.jobs < 1 || options.jobs > 256) {
        std::cerr << "velmor-sql " << name << ": --jobs needs a number from 1 to 256\n";
        return exitUsage;
      }
    } else if (arg == "-i" || arg == "--in-place") {
      options.inPlace = true;
    } else {
      rest.push_back(arg);
    }
  }
  if (command == DocumentCommand::Format) {
    const bool useContext = !takeFlag(rest, "--no-context");
    options.context = takeStringBuildContext(name, rest);
    if (!options.context) return exitUsage;
    if (!useContext) options.context = nullptr;
    options.verify = takeFlag(rest, "--verify");
  } else {
    options.catalogue = takeCatalogue(name, rest);
    if (!options.catalogue) return exitUsage;
  }
  if (command == DocumentCommand::Check) {
    if (takeFlag(rest, "--json")) options.output = Output::Json;
    if (takeFlag(rest, "--sarif")) {
      if (options.output == Output::Json) {
        std::cerr << "velmor-sql check: --json and --sarif exclude each other\n";
        return exitUsage;
      }
      options.output = Output::Sarif;
    }
  }
  if (command != DocumentCommand::Format && !takeScoping(name, rest, options.scoping)) return exitUsage;
  options.strict = takeFlag(rest, "--strict");
  if (takeFlag(rest, "--caret")) options.caret = true;
  if (takeFlag(rest, "--no-comments")) options.split.comments = false;
  if (takeFlag(rest, "--lines")) options.split.lineEnds = true;
  if (!rest.empty()) {
    if (rest.front() == "--help" || rest.front() == "-h") {
      printCommandUsage(name, std::cout);
      return exitOk;
    }
    std::cerr << "velmor-sql " << name << ": '" << rest.front()
              << "' is neither an option of the file mode nor a file (SQL text goes without -f)\n";
    printCommandUsage(name, std::cerr);
    return exitUsage;
  }
  if (options.inPlace && command != DocumentCommand::Format) {
    std::cerr << "velmor-sql " << name << ": -i is an option of format\n";
    return exitUsage;
  }
  if (options.inPlace && std::find(options.paths.begin(), options.paths.end(), "-") != options.paths.end()) {
    std::cerr << "velmor-sql format: -i needs files, not standard input\n";
    return exitUsage;
  }
  auto paths = expandPaths(options.paths, name);
  if (!paths) return exitUsage;
  options.paths = std::move(*paths);
  return Runner(options).run();
}

} // namespace velmor::cli
