// Writes a tree as SQL text with one table name replaced by another.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/builder/SqlStringBuilder.h>

#include <string>

namespace velmor::sql {

/// A SqlStringBuilder that writes `newName` wherever a table reference or a column qualifier
/// equals `oldName` exactly (case and all). Aliases, `old.*`, and the targets of INTO, TABLE,
/// INSERT, UPDATE and DELETE are written as they are. The tree is not changed.
class VELMOR_SQL_API RenameTableBuilder : public SqlStringBuilder {
public:
  /// `context` as for SqlStringBuilder. An empty `oldName` matches every unqualified column.
  RenameTableBuilder(const StringBuildContext* context, std::wstring oldName, std::wstring newName);

  using SqlStringBuilder::visit;
  void visit(const ast::ColumnReference& record) override;
  void visit(const ast::TablePrimary& record) override;

protected:
  std::wstring mOldName;
  std::wstring mNewName;

private:
  // The base's direct path renames as the two visits above do.
  friend class SqlStringBuilder;
};

} // namespace velmor::sql
