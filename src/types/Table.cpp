// Columns, the abstract table's default bodies and the library's concrete table.
#include "types/ColumnOrder.h"
#include "types/Folding.h"

#include <velmor/sql/types/Strings.h>

#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace velmor::sql {

namespace {

const std::shared_ptr<const ColumnInfo::Private>& nullColumnData() {
  static const std::shared_ptr<const ColumnInfo::Private> data =
      std::make_shared<const ColumnInfo::Private>();
  return data;
}

std::shared_ptr<const ColumnInfo::Private> makeData(std::vector<std::wstring> names,
                                                    std::shared_ptr<Type> type,
                                                    std::wstring originalName,
                                                    std::wstring originalTable) {
  return std::make_shared<const ColumnInfo::Private>(ColumnInfo::Private{
      std::move(names), std::move(type), std::move(originalName), std::move(originalTable)});
}

// A list of one name, the name moved in: a braced list would copy it.
std::vector<std::wstring> oneName(std::wstring name) {
  std::vector<std::wstring> names;
  names.reserve(1);
  names.push_back(std::move(name));
  return names;
}

} // namespace

ColumnInfo::ColumnInfo() : m_data(nullColumnData()) {}

ColumnInfo::ColumnInfo(const std::wstring& name, std::shared_ptr<Type> type, std::wstring table)
    : m_data(makeData(oneName(name), std::move(type), name, std::move(table))) {}

ColumnInfo::ColumnInfo(std::wstring name, std::shared_ptr<Type> type, std::wstring originalName,
                       std::wstring originalTable)
    : m_data(makeData(oneName(std::move(name)), std::move(type), std::move(originalName),
                      std::move(originalTable))) {}

ColumnInfo::ColumnInfo(std::vector<std::wstring> names, std::shared_ptr<Type> type, std::wstring table)
    : m_data(nullptr) {
  std::wstring originalName = names.at(0);
  m_data = makeData(std::move(names), std::move(type), std::move(originalName), std::move(table));
}

ColumnInfo::ColumnInfo(std::vector<std::wstring> names, std::shared_ptr<Type> type,
                       std::wstring originalName, std::wstring originalTable)
    : m_data(makeData(std::move(names), std::move(type), std::move(originalName),
                      std::move(originalTable))) {}

ColumnInfo ColumnInfo::calculatedColumn(std::wstring name, std::shared_ptr<Type> type) {
  return ColumnInfo(std::move(name), std::move(type), std::wstring(), std::wstring());
}

ColumnInfo ColumnInfo::rename(std::wstring name) const {
  return ColumnInfo(std::move(name), m_data->type, m_data->originalName, m_data->originalTable);
}

const std::vector<std::wstring>& ColumnInfo::names() const noexcept { return m_data->names; }

const std::wstring& ColumnInfo::canonicalName() const noexcept {
  // A null column has no canonical name; the empty string keeps careless callers safe.
  static const std::wstring none;
  return m_data->names.empty() ? none : m_data->names.front();
}

const std::wstring& ColumnInfo::originalName() const noexcept { return m_data->originalName; }
const std::wstring& ColumnInfo::originalTable() const noexcept { return m_data->originalTable; }
const std::shared_ptr<Type>& ColumnInfo::type() const noexcept { return m_data->type; }
bool ColumnInfo::isNull() const noexcept { return m_data->names.empty(); }

bool operator<(const ColumnInfo& left, const ColumnInfo& right) {
  if (left.originalTable() != right.originalTable()) return left.originalTable() < right.originalTable();
  return left.names() < right.names();
}

bool operator==(const ColumnInfo& left, const ColumnInfo& right) {
  if (left.originalTable() != right.originalTable()) return false;
  const std::set<std::wstring> names(left.names().begin(), left.names().end());
  for (const auto& name : right.names()) {
    if (names.count(name) != 0) return true;
  }
  return false;
}

TableInfo::~TableInfo() = default;

std::vector<std::wstring> TableInfo::columnsNames(const std::vector<std::size_t>& indices) const {
  std::vector<std::wstring> result;
  if (indices.empty()) {
    const std::size_t count = columnCount();
    result.reserve(count);
    for (std::size_t i = 0; i < count; ++i) result.push_back(columnByIndex(i).canonicalName());
    return result;
  }
  result.reserve(indices.size());
  for (const std::size_t index : indices) result.push_back(columnByIndex(index).canonicalName());
  return result;
}

std::vector<std::shared_ptr<Type>> TableInfo::columnsTypes() const {
  const std::size_t count = columnCount();
  std::vector<std::shared_ptr<Type>> result;
  result.reserve(count);
  for (std::size_t i = 0; i < count; ++i) result.push_back(columnByIndex(i).type());
  return result;
}

ColumnInfo TableInfo::columnByName(const std::wstring& name) const {
  const std::size_t index = indexByName(name);
  return index == npos ? ColumnInfo() : columnByIndex(index);
}

bool TableInfo::hasColumn(const std::wstring& name) const { return indexByName(name) < npos; }

GenericTableInfo::GenericTableInfo(std::initializer_list<ColumnInfo> columns) : m_columns(columns) {
  updateSearchIndex();
}

GenericTableInfo::GenericTableInfo(const std::vector<ColumnInfo>& columns) : m_columns(columns) {
  updateSearchIndex();
}

GenericTableInfo::GenericTableInfo(std::vector<ColumnInfo>&& columns) : m_columns(std::move(columns)) {
  updateSearchIndex();
}

std::shared_ptr<GenericTableInfo> GenericTableInfo::create(std::initializer_list<ColumnInfo> columns) {
  return std::make_shared<GenericTableInfo>(columns);
}

std::shared_ptr<GenericTableInfo> GenericTableInfo::null() {
  return std::make_shared<GenericTableInfo>(std::vector<ColumnInfo>());
}

std::vector<std::wstring> GenericTableInfo::convert(std::initializer_list<std::wstring> names) {
  return std::vector<std::wstring>(names);
}

std::vector<std::wstring> GenericTableInfo::convert(std::initializer_list<const wchar_t*> names) {
  return std::vector<std::wstring>(names.begin(), names.end());
}

void GenericTableInfo::clear() {
  // The index is left as it is on purpose: a caller that wants the names gone rebuilds it.
  m_columns.clear();
}

void GenericTableInfo::updateSearchIndex() {
  m_index.clear();
  for (std::size_t position = 0; position < m_columns.size(); ++position) {
    for (const auto& name : m_columns[position].names()) {
      // emplace keeps an existing key: the first column to claim a name owns it.
      m_index.emplace(normalized(name), position);
    }
  }
}

std::size_t GenericTableInfo::columnCount() const { return m_columns.size(); }
bool GenericTableInfo::isValid() const { return !m_columns.empty(); }
bool GenericTableInfo::isNull() const { return m_columns.empty(); }

ColumnInfo GenericTableInfo::columnByIndex(std::size_t index) const {
  return index < m_columns.size() ? m_columns[index] : ColumnInfo();
}

std::vector<std::wstring> GenericTableInfo::columnsNames(const std::vector<std::size_t>& indices) const {
  return TableInfo::columnsNames(indices);
}

std::vector<std::shared_ptr<Type>> GenericTableInfo::columnsTypes() const {
  std::vector<std::shared_ptr<Type>> result;
  result.reserve(m_columns.size());
  for (const auto& column : m_columns) result.push_back(column.type());
  return result;
}

std::vector<std::shared_ptr<Type>> GenericTableInfo::columnsTypes(const std::vector<std::size_t>& indices) const {
  if (indices.empty()) return columnsTypes();
  std::vector<std::shared_ptr<Type>> result;
  result.reserve(indices.size());
  for (const std::size_t index : indices) result.push_back(columnType(index));
  return result;
}

std::vector<std::shared_ptr<Type>> GenericTableInfo::columnsTypes(const std::vector<std::wstring>& names) const {
  if (names.empty()) return columnsTypes();
  std::vector<std::shared_ptr<Type>> result;
  result.reserve(names.size());
  for (const auto& name : names) result.push_back(columnType(indexByName(name)));
  return result;
}

std::shared_ptr<Type> GenericTableInfo::columnType(const std::wstring& name) const {
  return columnType(indexByName(name));
}

std::shared_ptr<Type> GenericTableInfo::columnType(std::size_t index) const {
  // npos and any other position past the end have no type. The index may be stale after
  // clear(), so the bounds check is needed for more than npos.
  return index < m_columns.size() ? m_columns[index].type() : std::shared_ptr<Type>();
}

std::size_t GenericTableInfo::indexByName(const std::wstring& name) const {
  // Most names come folded already and need no folded copy.
  const auto found = detail::foldsToItself(name) ? m_index.find(name) : m_index.find(normalized(name));
  return found == m_index.end() ? npos : found->second;
}

std::vector<std::size_t> GenericTableInfo::indicesByNames(const std::vector<std::wstring>& names) const {
  std::vector<std::size_t> result;
  result.reserve(names.size());
  for (const auto& name : names) result.push_back(indexByName(name));
  return result;
}

std::vector<std::size_t> GenericTableInfo::indicesExceptNames(const std::vector<std::wstring>& names) const {
  return complementIndices(indicesByNames(names));
}

std::vector<std::size_t> GenericTableInfo::complementIndices(const std::vector<std::size_t>& indices) const {
  std::vector<bool> listed(m_columns.size(), false);
  for (const std::size_t index : indices) {
    if (index < listed.size()) listed[index] = true;
  }
  std::vector<std::size_t> result;
  for (std::size_t i = 0; i < listed.size(); ++i) {
    if (!listed[i]) result.push_back(i);
  }
  return result;
}

std::vector<ColumnInfo> GenericTableInfo::subTable(const std::vector<std::size_t>& indices) const {
  if (indices.empty()) return m_columns;
  std::vector<ColumnInfo> result;
  result.reserve(indices.size());
  for (const std::size_t index : indices) {
    if (index < m_columns.size()) result.push_back(m_columns[index]);
  }
  return result;
}

std::vector<ColumnInfo> GenericTableInfo::complementTable(const std::vector<std::size_t>& indices) const {
  return subTable(complementIndices(indices));
}

TableInfoContext::~TableInfoContext() = default;

} // namespace velmor::sql
