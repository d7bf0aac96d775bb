// Parsed statements against the host kit's GIS sample catalogue: validation, result tables, the type
// of every select item and of WHERE, fault places, and renaming. Faults are exceptions of documented kinds;
// nothing else may escape, crash or leak.
#include "FuzzSupport.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Check.h>

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/validation/Validator.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace velmor::sql;

namespace {

// Runs one stage; the documented ways out of a stage end it quietly.
template <class Stage>
void guarded(Stage&& stage) {
  try {
    stage();
  } catch (const SqlError&) {
  } catch (const ast::BadNodeTypeException&) {
    // A CAST size that is no number.
  } catch (const std::out_of_range&) {
    // A CAST size too large to read.
  } catch (const std::invalid_argument&) {
  }
}

void query(const host::Catalogue& catalogue, const ast::QuerySpecification& statement) {
  guarded([&] {
    Validator validator(catalogue, catalogue);
    const bool valid = validator.validate(statement);
    VELMOR_FUZZ_CHECK(valid == validator.errors().empty(), "validate answers by its list");
    for (const auto& error : validator.errors()) VELMOR_FUZZ_CHECK(error != nullptr, "no empty faults");
  });
  guarded([&] {
    const auto table = buildTableInfo(catalogue, catalogue, statement, nullptr);
    VELMOR_FUZZ_CHECK(table != nullptr, "a result table");
    for (std::size_t i = 0; i < table->columnCount(); ++i) (void)table->columnByIndex(i).canonicalName();
  });
  guarded([&] {
    const auto scope = buildScope(catalogue, catalogue, statement, nullptr);
    if (!scope) return;
    for (const ast::Node& item : statement.selectList) guarded([&] { TypeInferer(catalogue, *scope).inferNodeType(item); });
    if (!statement.where.isNull()) guarded([&] { TypeInferer(catalogue, *scope).inferType(statement.where); });
  });
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::setLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sample = host::gisSampleCatalogue();
  const ParseContext context;
  SqlParser parser(context);
  parser.keepSourceRanges = true;
  try {
    if (!parser.parse(fuzz::text(data, size))) return 0;
  } catch (const std::runtime_error&) {
    return 0; // a lexeme longer than the scanner's window
  }
  const ast::Node& tree = parser.result;
  ast::visitSingle<ast::QuerySpecification>(tree, [&](const ast::QuerySpecification& statement) { query(*sample, statement); }, 0);
  ast::visitSingle<ast::UpdateStatement>(tree, [&](const ast::UpdateStatement& update) {
    guarded([&] {
      Validator validator(*sample, *sample);
      (void)validator.validate(update);
    });
  }, 0);
  // Each fault's place lies in the text.
  if (host::isCheckable(tree)) {
    guarded([&] {
      for (const auto& placed : host::checkStatement(tree, parser.sourceRanges.get(), *sample, *sample))
        VELMOR_FUZZ_CHECK(!placed.range || (placed.range->beginOffset < placed.range->endOffset &&
                                            placed.range->endOffset <= size),
                          "a fault's place lies in the text");
    });
  }
  // Standard scoping checks every statement kind: it ends, places faults in the text, and its
  // result columns and subquery typing end too.
  if (host::isCheckable(tree, Scoping::Standard)) {
    guarded([&] {
      for (const auto& placed :
           host::checkStatement(tree, parser.sourceRanges.get(), *sample, *sample, Scoping::Standard)) {
        VELMOR_FUZZ_CHECK(!placed.range || (placed.range->beginOffset < placed.range->endOffset &&
                                            placed.range->endOffset <= size),
                          "a standard fault's place lies in the text");
        VELMOR_FUZZ_CHECK(!placed.message.empty(), "every fault has a message");
      }
    });
    guarded([&] { (void)buildTableInfo(*sample, *sample, tree, Scoping::Standard); });
  }
  if (tree.isExpression()) {
    const auto parcels = std::make_shared<TableInfoScope>(ast::TablePrimary{L"parcels", {}}, sample->table(L"parcels"));
    guarded([&] {
      TypeInferer inferer(*sample, *parcels);
      inferer.setScoping(Scoping::Standard, sample.get());
      (void)inferer.inferNodeType(tree);
    });
  }
  // Typing a whole expression without a scope: column references fail, the rest is typed.
  if (tree.isExpression()) {
    const ScopeTypeContext noColumns;
    guarded([&] { TypeInferer(*sample, noColumns).inferNodeType(tree); });
  }
  for (const auto& names : {std::pair{L"cities", L"towns"}, std::pair{L"", L"x"}}) {
    // Throws std::out_of_range, as documented, for ROW().
    guarded([&] { (void)RenameTableBuilder(nullptr, names.first, names.second).buildString(tree); });
  }
  return 0;
}
