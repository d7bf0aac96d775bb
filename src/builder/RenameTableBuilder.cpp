// Table renaming on the way out: two visits of the writer see a record with the new name.
#include <velmor/sql/builder/RenameTableBuilder.h>

#include <utility>

namespace velmor::sql {

RenameTableBuilder::RenameTableBuilder(const StringBuildContext* context, std::wstring oldName,
                                       std::wstring newName)
    : SqlStringBuilder(context), mOldName(std::move(oldName)), mNewName(std::move(newName)) {}

void RenameTableBuilder::visit(const ast::ColumnReference& record) {
  if (record.table != mOldName) {
    SqlStringBuilder::visit(record);
    return;
  }
  ast::ColumnReference renamed = record;
  renamed.table = mNewName;
  SqlStringBuilder::visit(renamed);
}

void RenameTableBuilder::visit(const ast::TablePrimary& record) {
  if (record.table != mOldName) {
    SqlStringBuilder::visit(record);
    return;
  }
  ast::TablePrimary renamed = record;
  renamed.table = mNewName;
  SqlStringBuilder::visit(renamed);
}

} // namespace velmor::sql
