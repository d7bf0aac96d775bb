// The Python module velmor_sql._core: parsing, canonical text, checking and typing against a host
// kit catalogue. The library works with the GIL released; Python objects are made after.
#include "JsonTree.h"

#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/host/editor/Editing.h>
#include <velmor/sql/host/Precedence.h>
#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/host/document/DocumentCheck.h>
#include <velmor/sql/host/document/Statements.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/errors/SemanticErrors.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/sqllexer/Tokens.h>
#include <velmor/sql/validation/Validator.h>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <tuple>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace py = pybind11;
namespace sql = velmor::sql;
namespace host = velmor::sql::host;

namespace {

// A catalogue as Python holds it: filled by one thread at a time, read by any number; the lock
// keeps a fill from running under a check on another thread.
struct PyCatalogue {
  std::shared_ptr<host::Catalogue> catalogue = std::make_shared<host::Catalogue>();
  std::shared_ptr<std::shared_mutex> lock = std::make_shared<std::shared_mutex>();
};

// Errors raised to Python; their classes are made in the package's __init__.
struct SyntaxFault {
  std::size_t line, column;
  std::string message;
};

py::object g_syntaxError;    // velmor_sql.SqlSyntaxError
py::object g_catalogueError; // velmor_sql.CatalogueError

[[noreturn]] void raiseSyntax(const SyntaxFault& fault) {
  py::object error = g_syntaxError(fault.message, fault.line, fault.column);
  PyErr_SetObject(g_syntaxError.ptr(), error.ptr());
  throw py::error_already_set();
}

// Parses with the GIL released; a syntax error is raised once the GIL is back.
sql::ast::Node parseOrRaise(const std::string& text, std::shared_ptr<const sql::SourceRanges>* ranges = nullptr) {
  sql::ast::Node tree;
  std::optional<SyntaxFault> fault;
  {
    py::gil_scoped_release free;
    const sql::ParseContext context;
    sql::SqlParser parser(context);
    parser.keepSourceRanges = ranges != nullptr;
    if (parser.parse(text)) {
      tree = parser.result;
      if (ranges) *ranges = parser.sourceRanges;
    } else {
      const auto* error = dynamic_cast<const sql::UnexpectedLexeme*>(parser.errors.front().get());
      fault = SyntaxFault{error ? error->line : 0, error ? error->column : 0, parser.errors.front()->what()};
    }
  }
  if (fault) raiseSyntax(*fault);
  return tree;
}

// JSON as Python data without recursion, so that a tree at the nesting limit converts too.
py::object toPython(const nlohmann::ordered_json& root) {
  using Json = nlohmann::ordered_json;
  const auto scalar = [](const Json& value) -> py::object {
    switch (value.type()) {
    case Json::value_t::null: return py::none();
    case Json::value_t::boolean: return py::bool_(value.get<bool>());
    case Json::value_t::string: return py::str(value.get_ref<const std::string&>());
    case Json::value_t::number_integer: return py::int_(value.get<std::int64_t>());
    case Json::value_t::number_unsigned: return py::int_(value.get<std::uint64_t>());
    case Json::value_t::number_float: return py::float_(value.get<double>());
    case Json::value_t::object:
    case Json::value_t::array:
    case Json::value_t::binary:
    case Json::value_t::discarded: break;
    }
    return py::none();
  };
  struct Open {
    const Json* json;
    Json::const_iterator next;
    py::object target;
  };
  const auto make = [](const Json& json) -> py::object {
    if (json.is_object()) return py::dict();
    return py::list();
  };
  if (!root.is_structured()) return scalar(root);
  py::object result = make(root);
  std::vector<Open> open{{&root, root.cbegin(), result}};
  while (!open.empty()) {
    Open& top = open.back();
    if (top.next == top.json->cend()) {
      open.pop_back();
      continue;
    }
    const Json& member = *top.next;
    py::object value = member.is_structured() ? make(member) : scalar(member);
    if (top.json->is_object()) {
      top.target[py::str(top.next.key())] = value;
    } else {
      top.target.cast<py::list>().append(value);
    }
    ++top.next;
    if (member.is_structured()) open.push_back({&member, member.cbegin(), value});  // `top` unused after
  }
  return result;
}

py::object parse(const std::string& text) {
  const sql::ast::Node tree = parseOrRaise(text);
  nlohmann::ordered_json json;
  {
    py::gil_scoped_release free;
    json = velmor::cli::treeToJson(tree);
  }
  return toPython(json);
}

std::vector<py::tuple> tokens(const std::string& text) {
  std::vector<sql::ScannedToken> scanned;
  {
    py::gil_scoped_release free;
    scanned = sql::tokenize(text);
  }
  std::vector<py::tuple> result;
  result.reserve(scanned.size());
  for (const auto& token : scanned) {
    result.push_back(py::make_tuple(token.line, token.column, sql::tokenName(token.id), host::toUtf8(token.text)));
  }
  return result;
}

// The precedence a text is written with: the grammar's, a catalogue's, or none.
struct Writing {
  std::shared_ptr<const sql::StringBuildContext> context;
  std::shared_ptr<host::Catalogue> keep;
  std::shared_ptr<std::shared_mutex> lock;
};

Writing writingOf(const py::object& context) {
  if (context.is_none()) return {};
  if (py::isinstance<PyCatalogue>(context)) {
    const auto& catalogue = context.cast<const PyCatalogue&>();
    return {catalogue.catalogue, catalogue.catalogue, catalogue.lock};
  }
  if (py::isinstance<py::str>(context) && context.cast<std::string>() == "standard") {
    return {std::make_shared<host::GrammarPrecedence>(), nullptr, nullptr};
  }
  throw py::type_error("context must be \"standard\", a Catalogue or None");
}

std::string writeWith(const std::string& text, const py::object& context, const std::wstring* oldName,
                      const std::wstring* newName) {
  const sql::ast::Node tree = parseOrRaise(text);
  const Writing writing = writingOf(context);
  py::gil_scoped_release free;
  std::shared_lock<std::shared_mutex> reading;
  if (writing.lock) reading = std::shared_lock<std::shared_mutex>(*writing.lock);
  try {
    if (oldName) return host::toUtf8(sql::RenameTableBuilder(writing.context.get(), *oldName, *newName).buildString(tree));
    return host::toUtf8(sql::SqlStringBuilder(writing.context.get()).buildString(tree));
  } catch (const std::out_of_range& error) {
    // A tree that has no canonical text (ROW() with no values): a fault of the text, not an index.
    throw py::value_error(error.what());
  }
}

// A fault as plain data: (number, class name, [(field, value)]), made into a Fault in Python.
py::tuple faultData(const sql::SqlError& error) {
  py::list fields;
  for (const host::FaultField& field : host::faultFields(error)) {
    py::object value;
    switch (field.kind) {
    case host::FaultField::Kind::Name:
    case host::FaultField::Kind::Description: value = py::str(field.text); break;
    case host::FaultField::Kind::Number: value = py::int_(field.number); break;
    case host::FaultField::Kind::Flag: value = py::bool_(field.number != 0); break;
    }
    fields.append(py::make_tuple(field.name, value));
  }
  return py::make_tuple(static_cast<int>(error.type()), host::faultClassName(error), fields, host::errorLine(error));
}

// Validates a query or an UPDATE: each fault as its data and its range (a tuple of begin line,
// begin column, end line, end column, begin byte, end byte) or None.
sql::Scoping scopingNamed(const std::string& scoping) {
  if (scoping == "standard") return sql::Scoping::Standard;
  if (scoping == "compatible") return sql::Scoping::Compatible;
  throw py::value_error("scoping must be \"standard\" or \"compatible\"");
}

py::object check(const std::string& text, const PyCatalogue& catalogue, const std::string& scopingName) {
  const sql::Scoping scoping = scopingNamed(scopingName);
  std::shared_ptr<const sql::SourceRanges> ranges;
  const sql::ast::Node tree = parseOrRaise(text, &ranges);
  if (!host::isCheckable(tree, scoping)) {
    const char* kind = sql::ast::recordName(tree);
    throw py::value_error(std::string("not checkable: ") + (kind ? kind : "nothing") +
                          (scoping == sql::Scoping::Compatible
                               ? " (with compatible scoping only a query specification or an UPDATE can be checked)"
                               : ""));
  }
  std::vector<host::PlacedFault> faults;
  {
    py::gil_scoped_release free;
    std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
    faults = host::checkStatement(tree, ranges.get(), *catalogue.catalogue, *catalogue.catalogue, scoping);
  }
  py::list result;
  for (const auto& fault : faults) {
    py::object range = py::none();
    if (fault.range) {
      const sql::SourceRange& r = *fault.range;
      range = py::make_tuple(r.beginLine, r.beginColumn, r.endLine, r.endColumn, r.beginOffset, r.endOffset);
    }
    result.append(py::make_tuple(faultData(*fault.fault), range, fault.message));
  }
  return result;
}

py::tuple placeTuple(const host::DocumentPlace& place) { return py::make_tuple(place.line, place.column, place.offset); }

// The statements of a document: (index, text as the parser reads it, text as written, begin
// place, end place), places as (line, column, byte offset).
py::list splitStatements(const std::string& text, bool comments, bool lines) {
  std::vector<host::DocumentStatement> statements;
  {
    py::gil_scoped_release free;
    statements = host::splitStatements(text, host::SplitOptions{comments, lines});
  }
  py::list result;
  for (const auto& statement : statements) {
    result.append(py::make_tuple(statement.index, statement.text, statement.source, placeTuple(statement.begin),
                                 placeTuple(statement.end)));
  }
  return result;
}

// Checks a batch of statements on `jobs` threads with the GIL released, a checker each, results in
// the batch's order: (outcome, faults as in check, syntax error message or None, its place or
// None, record name of a statement that is not checked). An item is (text, source, line, column,
// offset): its place in a document, (1, 1, 0) for a statement on its own.
py::list checkBatch(const std::vector<std::tuple<std::string, std::string, std::size_t, std::size_t, std::size_t>>& items,
                    const PyCatalogue& catalogue, unsigned jobs, const std::string& scopingName) {
  const sql::Scoping scoping = scopingNamed(scopingName);
  std::vector<host::DocumentStatement> statements(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    auto& [text, source, line, column, offset] = items[i];
    statements[i].index = i;
    statements[i].text = text;
    statements[i].source = source;
    statements[i].begin = {offset, line, column};
  }
  std::vector<host::StatementCheck> checks(items.size());
  {
    py::gil_scoped_release free;
    std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
    const unsigned threads = static_cast<unsigned>(std::max<std::size_t>(1, std::min<std::size_t>(jobs, items.size())));
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
      host::DocumentChecker checker(*catalogue.catalogue, *catalogue.catalogue, scoping);
      for (std::size_t i; (i = next.fetch_add(1)) < statements.size();) checks[i] = checker.check(statements[i]);
    };
    std::vector<std::thread> pool;
    for (unsigned t = 1; t < threads; ++t) pool.emplace_back(work);
    work();
    for (std::thread& thread : pool) thread.join();
  }
  static constexpr const char* outcomes[] = {"ok", "faults", "syntax error", "not checkable"};
  py::list result;
  for (const host::StatementCheck& check : checks) {
    py::list faults;
    for (const auto& fault : check.faults) {
      py::object range = py::none();
      if (fault.range) {
        const sql::SourceRange& r = *fault.range;
        range = py::make_tuple(r.beginLine, r.beginColumn, r.endLine, r.endColumn, r.beginOffset, r.endOffset);
      }
      faults.append(py::make_tuple(faultData(*fault.fault), range, fault.message));
    }
    const bool syntax = check.outcome == host::StatementCheck::Outcome::SyntaxError;
    result.append(py::make_tuple(outcomes[static_cast<int>(check.outcome)], faults,
                                 syntax ? py::object(py::str(check.syntaxError)) : py::none(),
                                 syntax ? py::object(placeTuple(check.syntaxPlace)) : py::none(),
                                 check.kind.empty() ? py::none() : py::object(py::str(check.kind))));
  }
  return result;
}

// (name, type, original table, original name) for each result column; a fault is raised as
// the data of one.
py::object columns(const std::string& text, const PyCatalogue& catalogue, const std::string& scopingName) {
  const sql::Scoping scoping = scopingNamed(scopingName);
  const sql::ast::Node tree = parseOrRaise(text);
  const bool query = sql::ast::nodeIs<sql::ast::QuerySpecification>(tree) ||
                     (scoping == sql::Scoping::Standard && (sql::ast::nodeIs<sql::ast::QueryOperation>(tree) ||
                                                            sql::ast::nodeIs<sql::ast::RowValueExpressionList>(tree) ||
                                                            sql::ast::nodeIs<sql::ast::ExplicitTable>(tree)));
  if (!query) {
    const char* kind = sql::ast::recordName(tree);
    throw py::value_error(std::string("no result columns for ") + (kind ? kind : "nothing") +
                          " (only a query specification has them)");
  }
  std::shared_ptr<sql::TableInfo> table;
  std::unique_ptr<sql::SqlError> fault;
  {
    py::gil_scoped_release free;
    std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
    try {
      table = sql::buildTableInfo(*catalogue.catalogue, *catalogue.catalogue, tree, scoping);
    } catch (const sql::SqlError& error) {
      fault.reset(error.clone());
    }
  }
  if (fault) return py::make_tuple(py::str("fault"), faultData(*fault));
  py::list result;
  for (std::size_t i = 0; i < table->columnCount(); ++i) {
    const sql::ColumnInfo column = table->columnByIndex(i);
    result.append(py::make_tuple(host::toUtf8(column.canonicalName()), catalogue.catalogue->typeName(column.type()),
                                 host::toUtf8(column.originalTable()), host::toUtf8(column.originalName())));
  }
  return result;
}

py::object typeOf(const std::string& text, const PyCatalogue& catalogue, const std::vector<std::string>& tables,
                  const std::string& scopingName) {
  const sql::Scoping scoping = scopingNamed(scopingName);
  const sql::ast::Node tree = parseOrRaise(text);
  if (!tree.isExpression()) {
    const char* kind = sql::ast::recordName(tree);
    throw py::value_error(std::string("not an expression: ") + (kind ? kind : "nothing"));
  }
  std::string type;
  std::unique_ptr<sql::SqlError> fault;
  {
    py::gil_scoped_release free;
    std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
    try {
      // The tables side by side, as in a FROM list without aliases.
      std::vector<std::shared_ptr<sql::ColumnInfoScope>> scopes;
      for (const auto& name : tables) {
        const std::wstring wide = host::fromUtf8(name);
        auto info = catalogue.catalogue->table(wide);
        if (!info) throw sql::NonExistentTable(wide);
        scopes.push_back(std::make_shared<sql::TableInfoScope>(sql::ast::TablePrimary{wide, L""}, std::move(info)));
      }
      const sql::JoinScope scope(std::move(scopes));
      sql::TypeInferer inferer(*catalogue.catalogue, scope);
      inferer.setScoping(scoping, catalogue.catalogue.get());
      type = catalogue.catalogue->typeName(inferer.inferType(tree.toExpression()));
    } catch (const sql::SqlError& error) {
      fault.reset(error.clone());
    }
  }
  if (fault) return py::make_tuple(py::str("fault"), faultData(*fault));
  return py::str(type);
}

// Runs a change of a catalogue under its lock; the kit's faults become CatalogueError.
template <class Change>
void change(PyCatalogue& catalogue, Change&& body) {
  try {
    std::unique_lock<std::shared_mutex> writing(*catalogue.lock);
    body(*catalogue.catalogue);
  } catch (const host::CatalogueError& error) {
    PyErr_SetString(g_catalogueError.ptr(), error.what());
    throw py::error_already_set();
  }
}

sql::FunctionKind kindNamed(const std::string& kind) {
  if (kind == "ordinary") return sql::FunctionKind::Ordinary;
  if (kind == "aggregate") return sql::FunctionKind::Aggregate;
  if (kind == "context-opaque") return sql::FunctionKind::ContextOpaque;
  throw py::value_error("kind must be \"ordinary\", \"aggregate\" or \"context-opaque\"");
}

} // namespace

// Code point indexes of a UTF-8 text and the byte offsets where they start.
class CodePoints {
public:
  explicit CodePoints(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) mStarts.push_back(i);
    }
    mStarts.push_back(text.size());
  }
  /// The byte offset of a code point index, clamped into the text.
  std::size_t byteOf(py::ssize_t point) const {
    return mStarts[static_cast<std::size_t>(std::clamp<py::ssize_t>(point, 0, static_cast<py::ssize_t>(mStarts.size() - 1)))];
  }
  py::ssize_t pointOf(std::size_t byte) const {
    return static_cast<py::ssize_t>(std::lower_bound(mStarts.begin(), mStarts.end(), byte) - mStarts.begin());
  }

private:
  std::vector<std::size_t> mStarts;
};

PYBIND11_MODULE(_core, m) {
  m.doc() = "velmor-sql's library: parse, write, check and type SQL of a GIS host.";
  m.def("_set_errors", [](py::object syntax, py::object catalogue) {
    g_syntaxError = std::move(syntax);
    g_catalogueError = std::move(catalogue);
  });
  m.def("parse", &parse, py::arg("sql"));
  m.def("tokens", &tokens, py::arg("sql"));
  m.def("format", [](const std::string& text, const py::object& context) { return writeWith(text, context, nullptr, nullptr); },
        py::arg("sql"), py::arg("context"));
  m.def("rename",
        [](const std::string& text, const std::string& oldName, const std::string& newName, const py::object& context) {
          const std::wstring from = host::fromUtf8(oldName), to = host::fromUtf8(newName);
          return writeWith(text, context, &from, &to);
        },
        py::arg("sql"), py::arg("old"), py::arg("new"), py::arg("context"));
  m.def("check", &check, py::arg("sql"), py::arg("catalogue"), py::arg("scoping") = "standard");
  m.def("columns", &columns, py::arg("sql"), py::arg("catalogue"), py::arg("scoping") = "standard");
  m.def("type_of", &typeOf, py::arg("expression"), py::arg("catalogue"), py::arg("tables"),
        py::arg("scoping") = "standard");
  m.def("split_statements", &splitStatements, py::arg("text"), py::arg("comments"), py::arg("lines"));
  m.def("check_batch", &checkBatch, py::arg("items"), py::arg("catalogue"), py::arg("jobs"),
        py::arg("scoping") = "standard");

  py::class_<PyCatalogue>(m, "Catalogue")
      .def(py::init<>())
      .def("add_standard_sql", [](PyCatalogue& self) { change(self, [](host::Catalogue& c) { c.addStandardSql(); }); })
      .def("load_json_text",
           [](PyCatalogue& self, const std::string& text, const std::string& source) {
             change(self, [&](host::Catalogue& c) { host::readCatalogue(c, text, source); });
           },
           py::arg("text"), py::arg("source"))
      .def_static("gis_sample_text", [] { return std::string(host::gisSampleCatalogueText()); })
      .def("to_json_text",
           [](PyCatalogue& self) {
             std::shared_lock<std::shared_mutex> reading(*self.lock);
             try {
               return host::writeCatalogue(*self.catalogue);
             } catch (const host::CatalogueError& error) {
               PyErr_SetString(g_catalogueError.ptr(), error.what());
               throw py::error_already_set();
             }
           })
      .def("add_table",
           [](PyCatalogue& self, const std::string& name, const std::vector<std::pair<std::string, std::string>>& columns) {
             std::vector<host::Column> list;
             for (const auto& [column, type] : columns) list.push_back({host::fromUtf8(column), type});
             change(self, [&](host::Catalogue& c) { c.addTable(host::fromUtf8(name), list); });
           },
           py::arg("name"), py::arg("columns"))
      .def("add_function",
           [](PyCatalogue& self, const std::string& name, const std::vector<std::string>& params, const std::string& result,
              const std::vector<std::string>& optional, bool variadic, const std::string& kind) {
             const sql::FunctionKind functionKind = kindNamed(kind);
             host::Signature signature{params, host::Result(result), optional, variadic};
             change(self, [&](host::Catalogue& c) { c.addFunction(host::fromUtf8(name), functionKind, {signature}); });
           },
           py::arg("name"), py::arg("params"), py::arg("result"), py::arg("optional"), py::arg("variadic"),
           py::arg("kind"))
      .def("add_conversions",
           [](PyCatalogue& self, const std::vector<std::string>& from, const std::vector<std::string>& to) {
             change(self, [&](host::Catalogue& c) { c.addConversions(from, to); });
           },
           py::arg("from_types"), py::arg("to_types"))
      .def("table_names",
           [](const PyCatalogue& self) {
             std::shared_lock<std::shared_mutex> reading(*self.lock);
             std::vector<std::string> names;
             for (const auto& name : self.catalogue->tableNames()) names.push_back(host::toUtf8(name));
             return names;
           })
      .def("function_names", [](const PyCatalogue& self) {
        std::shared_lock<std::shared_mutex> reading(*self.lock);
        std::vector<std::string> names;
        for (const auto& name : self.catalogue->functionNames()) names.push_back(host::toUtf8(name));
        return names;
      });
  // The editor services at a cursor. Python counts code points, the kit bytes: both ways are
  // converted here, and the answers are plain tuples that __init__.py dresses.
  m.def(
      "complete",
      [](const std::string& text, py::ssize_t offset, const PyCatalogue& catalogue) {
        const CodePoints points(text);
        host::Completion completion;
        {
          py::gil_scoped_release free;
          std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
          completion = host::complete(text, points.byteOf(offset), *catalogue.catalogue);
        }
        py::list candidates;
        for (const auto& candidate : completion.candidates) {
          candidates.append(py::make_tuple(candidate.text, host::candidateKindName(candidate.kind), candidate.detail));
        }
        return py::make_tuple(points.pointOf(completion.replaceBegin), points.pointOf(completion.replaceEnd), candidates);
      },
      py::arg("text"), py::arg("offset"), py::arg("catalogue"));
  m.def(
      "hover",
      [](const std::string& text, py::ssize_t offset, const PyCatalogue& catalogue) -> py::object {
        const CodePoints points(text);
        std::optional<host::Hover> hover;
        {
          py::gil_scoped_release free;
          std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
          hover = host::hover(text, points.byteOf(offset), *catalogue.catalogue);
        }
        if (!hover) return py::none();
        return py::make_tuple(host::hoverKindName(hover->kind), points.pointOf(hover->range.begin),
                              points.pointOf(hover->range.end), hover->title, hover->details, hover->type);
      },
      py::arg("text"), py::arg("offset"), py::arg("catalogue"));
  m.def(
      "signature_help",
      [](const std::string& text, py::ssize_t offset, const PyCatalogue& catalogue) -> py::object {
        const CodePoints points(text);
        std::optional<host::SignatureHelp> help;
        {
          py::gil_scoped_release free;
          std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
          help = host::signatureHelp(text, points.byteOf(offset), *catalogue.catalogue);
        }
        if (!help) return py::none();
        py::list signatures;
        for (const auto& signature : help->signatures) {
          // Parameter places count code points of the label too.
          const CodePoints label(signature.label);
          py::list parameters;
          for (const auto& parameter : signature.parameters) {
            parameters.append(py::make_tuple(label.pointOf(parameter.begin), label.pointOf(parameter.end)));
          }
          signatures.append(py::make_tuple(signature.label, parameters));
        }
        return py::make_tuple(help->function, points.pointOf(help->call.begin), points.pointOf(help->call.end),
                              signatures, help->activeSignature, help->activeParameter);
      },
      py::arg("text"), py::arg("offset"), py::arg("catalogue"));
  m.def(
      "definition",
      [](const std::string& text, py::ssize_t offset, const PyCatalogue& catalogue) -> py::object {
        const CodePoints points(text);
        std::optional<host::Definition> found;
        {
          py::gil_scoped_release free;
          std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
          found = host::definition(text, points.byteOf(offset), *catalogue.catalogue);
        }
        if (!found) return py::none();
        return py::make_tuple(points.pointOf(found->origin.begin), points.pointOf(found->origin.end),
                              points.pointOf(found->target.begin), points.pointOf(found->target.end));
      },
      py::arg("text"), py::arg("offset"), py::arg("catalogue"));
  m.def(
      "occurrences",
      [](const std::string& text, py::ssize_t offset, const PyCatalogue& catalogue) {
        const CodePoints points(text);
        std::vector<host::TextRange> ranges;
        {
          py::gil_scoped_release free;
          std::shared_lock<std::shared_mutex> reading(*catalogue.lock);
          ranges = host::occurrences(text, points.byteOf(offset), *catalogue.catalogue);
        }
        py::list out;
        for (const auto& range : ranges) out.append(py::make_tuple(points.pointOf(range.begin), points.pointOf(range.end)));
        return out;
      },
      py::arg("text"), py::arg("offset"), py::arg("catalogue"));
}
