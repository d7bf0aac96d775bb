// Umbrella header: every public header of velmor-sql.
#pragma once

#include <velmor/sql/Assert.h>
#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/ASTStringValue.h>
#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/TernaryLogic.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/Keywords.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/inference/StringTypeInferer.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/sqllexer/Tokens.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Strings.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/types/Type.h>
#include <velmor/sql/validation/ContextChecks.h>
#include <velmor/sql/validation/QualifierChecks.h>
#include <velmor/sql/errors/SemanticErrors.h>
#include <velmor/sql/validation/Validator.h>
