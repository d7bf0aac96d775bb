// Reading a type name (the target of a CAST) back from the expression the grammar made of it.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/types/Type.h>

#include <cstdint>
#include <memory>

namespace velmor::sql {

/// Turns `integer` (a ColumnReference) or `varchar(20)` (a Function of Number arguments) into
/// the type it names. Make a fresh object, doVisit the node, read result(): an empty pointer for
/// an unknown word, a Fault type for a node that can't be a type name (a qualified name, another
/// kind of node, more sizes than the name takes). Names fold case. Defaults: varchar and its
/// kin are VarChar(50), decimal and numeric Decimal(30, 10). Sizes: varchar(n) sets the length,
/// int(n) is a width in bits (SmallInt up to 16, BigInt from 33), float(n)/real(n) is Float up
/// to 32 and Double above, decimal(p[, s]) sets both; a size of 0 keeps the default except for
/// decimal. A size that is no Number throws ast::BadNodeTypeException. One thread per object.
class VELMOR_SQL_API StringTypeInferer : public ast::VisitorWithResult<ast::NodeVisitor, std::shared_ptr<Type>> {
public:
  using ast::NodeVisitor::visit;
  void visit(const ast::ColumnReference& record) override;
  void visit(const ast::Function& record) override;
  /// Stores a Fault type and sets the parameter count to -1.
  void faultAction() override;

  /// How many sizes the last name found in a Function takes; -1 after a fault.
  std::int32_t parameterCount() const noexcept { return mParameterCount; }

private:
  std::int32_t mParameterCount = 0;
};

} // namespace velmor::sql
