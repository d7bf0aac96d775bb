#include "CatalogueTable.h"

#include <velmor/sql/types/Strings.h>

#include <cstdint>
#include <utility>

namespace velmor::sql::host {

namespace {

constexpr std::uint64_t kBasis = 14695981039346656037ULL;
constexpr std::uint64_t kPrime = 1099511628211ULL;

std::uint64_t mix(std::uint64_t hash, wchar_t unit) {
  return (hash ^ static_cast<std::uint64_t>(static_cast<std::uint32_t>(unit))) * kPrime;
}

// The low bits of an FNV hash depend only on the low bits of the units: similar names would
// crowd the same slots, so the high bits are folded in before a slot is chosen.
std::uint64_t spread(std::uint64_t hash) {
  hash ^= hash >> 33;
  hash *= 0xff51afd7ed558ccdULL;
  return hash ^ (hash >> 33);
}

std::uint64_t hashOf(const std::wstring& key) {
  std::uint64_t hash = kBasis;
  for (const wchar_t unit : key) hash = mix(hash, unit);
  return spread(hash);
}

// The hash of normalized(name), folding ASCII on the way; false when the name holds a unit
// that normalized() alone knows how to fold (beyond ASCII, or a NUL, after which it stops).
bool foldedHash(const std::wstring& name, std::uint64_t& hash) {
  hash = kBasis;
  for (const wchar_t unit : name) {
    auto u = static_cast<std::uint32_t>(unit);
    if (u - 1U >= 0x7FU) return false; // NUL, or beyond ASCII
    if (u - L'A' < 26U) u += L'a' - L'A';
    hash = (hash ^ u) * kPrime;
  }
  hash = spread(hash);
  return true;
}

// Whether the folded form of an ASCII name without NUL is `key`.
bool sameAsciiName(const std::wstring& name, const std::wstring& key) {
  if (name.size() != key.size()) return false;
  // Most names are written folded already.
  if (name == key) return true;
  for (std::size_t i = 0; i < name.size(); ++i) {
    wchar_t unit = name[i];
    if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit - L'A' + L'a');
    if (unit != key[i]) return false;
  }
  return true;
}

} // namespace

CatalogueTable::CatalogueTable(std::vector<ColumnInfo> columns) : GenericTableInfo(std::move(columns)) {
  std::size_t names = 0;
  for (const ColumnInfo& column : m_columns) names += column.names().size();
  std::size_t size = 8;
  while (size < 2 * names) size *= 2;
  m_slots.resize(size);
  const std::size_t mask = size - 1;
  for (std::size_t position = 0; position < m_columns.size(); ++position) {
    for (const std::wstring& name : m_columns[position].names()) {
      std::wstring key = normalized(name);
      // An empty name marks a free slot; the name index answers for it.
      if (key.empty()) continue;
      for (std::size_t slot = hashOf(key) & mask;; slot = (slot + 1) & mask) {
        if (m_slots[slot].key.empty()) {
          m_slots[slot] = {std::move(key), position};
          break;
        }
        if (m_slots[slot].key == key) break; // the first column to claim a name keeps it
      }
    }
  }
  m_indexed = m_columns.size();
}

std::size_t CatalogueTable::indexByName(const std::wstring& name) const {
  // After clear() the columns no longer match the slots: the name index answers as it would.
  if (m_columns.size() != m_indexed || name.empty()) return GenericTableInfo::indexByName(name);
  std::uint64_t hash = 0;
  const bool ascii = foldedHash(name, hash);
  std::wstring folded;
  if (!ascii) {
    folded = normalized(name);
    hash = hashOf(folded);
  }
  const std::size_t mask = m_slots.size() - 1;
  for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
    const Slot& entry = m_slots[slot];
    if (entry.key.empty()) return npos;
    if (ascii ? sameAsciiName(name, entry.key) : entry.key == folded) return entry.position;
  }
}

} // namespace velmor::sql::host
