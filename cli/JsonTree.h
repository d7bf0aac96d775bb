// A syntax tree as JSON: each record an object whose "node" is the record kind's name,
// followed by its fields under their own names in their order.
#pragma once

#include <velmor/sql/ast/AST.h>

#include <nlohmann/json.hpp>

#include <ostream>

namespace velmor::cli {

/// Both forms of a null node give null. Enumerations appear by enumerator name, wide text as
/// UTF-8, a String by its resolved text, records held by value as nested objects.
nlohmann::ordered_json treeToJson(const sql::ast::Node& node);

/// Writes `json` as dump(2) would, invalid UTF-8 replaced, without recursion: a tree as deep
/// as the nesting limit prints on any thread stack.
void writeIndented(std::ostream& out, const nlohmann::ordered_json& json);

} // namespace velmor::cli
