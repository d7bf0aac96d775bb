// Names and signatures as the editor services write them.
#pragma once

#include <velmor/sql/builder/Keywords.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/inference/ScopesAt.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Strings.h>
#include <velmor/sql/types/Table.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::sql::host::editor {

/// A name as it must be written to read back as itself.
inline std::string written(const std::wstring& name) { return toUtf8(Keywords::instance().escape(name)); }

/// A plain type in the catalogue's words ("Geometry", not "BinaryLargeObject").
inline std::string plainName(const Catalogue& catalogue, type::PlainType plain) {
  return catalogue.typeName(std::make_shared<Type>(plain));
}

/// Two answers of a scope for the same column: copies of one column keep its type object.
inline bool sameColumn(const ColumnInfo& a, const ColumnInfo& b) {
  return !a.isNull() && !b.isNull() && a.originalTable() == b.originalTable() && a.names() == b.names() &&
         a.originalName() == b.originalName() && a.type().get() == b.type().get();
}

/// "name(Geometry, Double [, Integer]...) -> Geometry", and where each parameter stands in it.
struct Label {
  std::string text;
  std::vector<std::pair<std::size_t, std::size_t>> parameters;
};

inline Label overloadLabel(const Catalogue& catalogue, const std::string& name, const OverloadInfo& overload) {
  Label label;
  label.text = name;
  label.text += '(';
  bool first = true;
  for (const auto parameter : overload.mParameters) {
    if (!first) label.text += ", ";
    first = false;
    const std::size_t begin = label.text.size();
    label.text += plainName(catalogue, parameter);
    label.parameters.emplace_back(begin, label.text.size());
  }
  for (const auto parameter : overload.mOptionalParameters) {
    label.text += first ? "[" : " [, ";
    first = false;
    const std::size_t begin = label.text.size();
    label.text += plainName(catalogue, parameter);
    label.parameters.emplace_back(begin, label.text.size());
    label.text += ']';
  }
  if (overload.mVariadic) label.text += "...";
  label.text += ") -> ";
  label.text += plainName(catalogue, overload.mReturnType);
  return label;
}

/// A name that repair put in, standing for nothing the user wrote.
inline bool isFill(const std::wstring& name) { return name == L"zq_velmor_fill"; }

/// The declared name of `levels` that `qualifier` means: the nearest level's.
inline const DeclaredName* declaredName(const std::vector<ScopeLevel>& levels, const std::wstring& qualifier) {
  const std::wstring key = normalized(qualifier);
  for (const ScopeLevel& level : levels) {
    for (const DeclaredName& name : level.names) {
      if (!name.name.empty() && normalized(name.name) == key) return &name;
    }
  }
  return nullptr;
}

} // namespace velmor::sql::host::editor
