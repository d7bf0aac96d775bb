// velmor-sql hover: what the thing at a cursor is, as an editor's tooltip would say.
#include "Catalogue.h"
#include "Commands.h"
#include "Places.h"
#include <velmor/sql/host/editor/Editing.h>

#include <iostream>

namespace velmor::cli {

int runHover(const std::vector<std::string>& args) {
  Cursor cursor;
  if (auto status = readCursor("hover", args, {}, cursor)) return *status;
  const auto hover = sql::host::hover(cursor.text, cursor.offset, *cursor.catalogue);
  if (!hover) {
    std::cout << "nothing\n";
  } else {
    std::cout << rangeOf(cursor.text, hover->range.begin, hover->range.end) << ' '
              << sql::host::hoverKindName(hover->kind) << '\n'
              << hover->title << '\n';
    for (const std::string& line : hover->details) std::cout << "  " << line << '\n';
  }
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

int runSignature(const std::vector<std::string>& args) {
  Cursor cursor;
  if (auto status = readCursor("signature", args, {}, cursor)) return *status;
  const auto help = sql::host::signatureHelp(cursor.text, cursor.offset, *cursor.catalogue);
  if (!help) {
    std::cout << "nothing\n";
  } else {
    std::cout << "call " << rangeOf(cursor.text, help->call.begin, help->call.end) << " argument "
              << help->activeParameter + 1 << '\n';
    for (std::size_t i = 0; i < help->signatures.size(); ++i) {
      const auto& signature = help->signatures[i];
      std::string line;
      // The active parameter of the active overload in angle brackets.
      if (i == help->activeSignature && help->activeParameter < signature.parameters.size()) {
        const auto& parameter = signature.parameters[help->activeParameter];
        line.append(signature.label, 0, parameter.begin).push_back('<');
        line.append(signature.label, parameter.begin, parameter.end - parameter.begin).push_back('>');
        line.append(signature.label, parameter.end, std::string::npos);
      } else {
        line = signature.label;
      }
      std::cout << (i == help->activeSignature ? "* " : "  ") << line << '\n';
    }
  }
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

int runDefinition(const std::vector<std::string>& args) {
  Cursor cursor;
  if (auto status = readCursor("definition", args, {"--all"}, cursor)) return *status;
  if (!cursor.options.empty()) {
    const auto ranges = sql::host::occurrences(cursor.text, cursor.offset, *cursor.catalogue);
    if (ranges.empty()) std::cout << "nothing\n";
    for (const auto& range : ranges) {
      std::cout << rangeOf(cursor.text, range.begin, range.end) << " \""
                << cursor.text.substr(range.begin, range.end - range.begin) << "\"\n";
    }
  } else if (const auto found = sql::host::definition(cursor.text, cursor.offset, *cursor.catalogue)) {
    std::cout << rangeOf(cursor.text, found->origin.begin, found->origin.end) << " -> "
              << rangeOf(cursor.text, found->target.begin, found->target.end) << " \""
              << cursor.text.substr(found->target.begin, found->target.end - found->target.begin) << "\"\n";
  } else {
    std::cout << "nothing\n";
  }
  std::cout.flush();
  return std::cout ? exitOk : exitFailure;
}

} // namespace velmor::cli
