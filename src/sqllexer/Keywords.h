// The keywords of the SQL dialect and a collision-free hash table over them, for the scanner's
// ASCII names: one table look-up and one comparison of two words instead of a walk through
// letters, whose branches a processor cannot foresee.
#pragma once

#include <velmor/sql/sqllexer/Tokens.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace velmor::sql::keywords {

struct Keyword {
  std::string_view text;  // in lower case
  std::uint32_t id;
};

/// Every keyword with its token; "some" is another spelling of ANY.
inline constexpr Keyword kList[] = {
  {"all", T_ALL}, {"and", T_AND}, {"any", T_ANY}, {"some", T_ANY}, {"array", T_ARRAY},
  {"as", T_AS}, {"asc", T_ASC}, {"between", T_BETWEEN}, {"by", T_BY}, {"case", T_CASE},
  {"cast", T_CAST}, {"contains", T_CONTAINS}, {"cross", T_CROSS}, {"default", T_DEFAULT},
  {"delete", T_DELETE}, {"desc", T_DESC}, {"distinct", T_DISTINCT}, {"else", T_ELSE},
  {"end", T_END}, {"entire", T_ENTIRE}, {"entirely", T_ENTIRELY}, {"except", T_EXCEPT},
  {"exists", T_EXISTS}, {"false", T_FALSE}, {"first", T_FIRST}, {"from", T_FROM}, {"full", T_FULL},
  {"glob", T_GLOB}, {"group", T_GROUP}, {"groupby", T_GROUPBY}, {"having", T_HAVING}, {"in", T_IN},
  {"inner", T_INNER}, {"insert", T_INSERT}, {"intersect", T_INTERSECT},
  {"intersects", T_INTERSECTS}, {"into", T_INTO}, {"is", T_IS}, {"join", T_JOIN}, {"last", T_LAST},
  {"left", T_LEFT}, {"like", T_LIKE}, {"limit", T_LIMIT}, {"mod", T_MOD}, {"multiset", T_MULTISET},
  {"natural", T_NATURAL}, {"noselect", T_NOSELECT}, {"not", T_NOT}, {"null", T_NULL},
  {"nulls", T_NULLS}, {"offset", T_OFFSET}, {"on", T_ON}, {"or", T_OR}, {"order", T_ORDER},
  {"orderby", T_ORDERBY}, {"outer", T_OUTER}, {"overriding", T_OVERRIDING}, {"part", T_PART},
  {"partly", T_PARTLY}, {"regexp", T_REGEXP}, {"right", T_RIGHT}, {"row", T_ROW},
  {"select", T_SELECT}, {"set", T_SET}, {"system", T_SYSTEM}, {"table", T_TABLE}, {"then", T_THEN},
  {"true", T_TRUE}, {"union", T_UNION}, {"unique", T_UNIQUE}, {"unknown", T_UNKNOWN},
  {"update", T_UPDATE}, {"user", T_USER}, {"using", T_USING}, {"value", T_VALUE},
  {"values", T_VALUES}, {"when", T_WHEN}, {"where", T_WHERE}, {"within", T_WITHIN}, {"xor", T_XOR}
};
inline constexpr std::size_t kCount = sizeof(kList) / sizeof(kList[0]);

inline constexpr std::size_t kLongest = [] {
  std::size_t longest = 0;
  for (const Keyword& keyword : kList) longest = keyword.text.size() > longest ? keyword.text.size() : longest;
  return longest;
}();
// A name's key holds its first 16 bytes; a longer name never matches a keyword because a
// keyword's key ends in zero bytes where any name has letters.
static_assert(kLongest < 16);

/// A name's first 16 bytes with ASCII letters in lower case and zeros past its end, as two
/// words in the byte order of a little-endian load.
struct Key {
  std::uint64_t low;
  std::uint64_t high;
};

constexpr Key keyOf(std::string_view text) {
  Key key{0, 0};
  for (std::size_t i = 0; i < text.size() && i < 16; ++i) {
    const std::uint64_t byte = static_cast<unsigned char>(text[i]) | 0x20u;
    (i < 8 ? key.low : key.high) |= byte << (8 * (i % 8));
  }
  return key;
}

inline constexpr unsigned kSlotBits = 9;

constexpr unsigned slotOf(const Key& key, std::uint64_t lowFactor, std::uint64_t highFactor) {
  return static_cast<unsigned>(((key.low * lowFactor) ^ (key.high * highFactor)) >> (64 - kSlotBits));
}

/// The table: slot -> 1 + the keyword's index, 0 for none; entry 0 is a key no name has
/// (bytes of 0xFF), so a look-up needs no test for an empty slot.
struct Table {
  std::uint64_t lowFactor = 0;
  std::uint64_t highFactor = 0;
  std::uint8_t slots[1u << kSlotBits] = {};
  Key keys[kCount + 1] = {};
  std::uint32_t ids[kCount + 1] = {};
};

/// Factors are tried from a fixed sequence until no two keywords share a slot, at compile time
/// (a couple of hundred tries for the keywords above).
inline constexpr Table kTable = [] {
  static_assert(kCount < 255);
  Key keys[kCount] = {};
  for (std::size_t i = 0; i < kCount; ++i) keys[i] = keyOf(kList[i].text);
  std::uint64_t state = 0x9E3779B97F4A7C15u;
  const auto next = [&state] {
    // splitmix64
    std::uint64_t z = (state += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return (z ^ (z >> 31)) | 1u;
  };
  for (int attempt = 0; attempt < 10000; ++attempt) {
    const std::uint64_t lowFactor = next();
    const std::uint64_t highFactor = next();
    std::uint64_t taken[(1u << kSlotBits) / 64] = {};
    bool clash = false;
    for (std::size_t i = 0; i < kCount && !clash; ++i) {
      const unsigned slot = slotOf(keys[i], lowFactor, highFactor);
      clash = ((taken[slot / 64] >> (slot % 64)) & 1u) != 0;
      taken[slot / 64] |= std::uint64_t{1} << (slot % 64);
    }
    if (clash) continue;
    Table table;
    table.lowFactor = lowFactor;
    table.highFactor = highFactor;
    table.keys[0] = Key{~std::uint64_t{0}, ~std::uint64_t{0}};
    table.ids[0] = T_IDENTIFIER;
    for (std::size_t i = 0; i < kCount; ++i) {
      table.slots[slotOf(keys[i], lowFactor, highFactor)] = static_cast<std::uint8_t>(i + 1);
      table.keys[i + 1] = keys[i];
      table.ids[i + 1] = kList[i].id;
    }
    return table;
  }
  throw "no collision-free factors for the keyword table";
}();

/// Keeps the first `n` bytes of a key's words (n up to 16).
inline constexpr struct Masks {
  std::uint64_t low[17] = {};
  std::uint64_t high[17] = {};
  constexpr Masks() {
    for (unsigned n = 0; n <= 16; ++n) {
      low[n] = n >= 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * n)) - 1;
      high[n] = n <= 8 ? 0 : n == 16 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * (n - 8))) - 1;
    }
  }
} kMasks;

inline std::uint64_t loadWord(const unsigned char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    std::uint64_t swapped = 0;
    for (int i = 0; i < 8; ++i) swapped |= ((word >> (8 * i)) & 0xFFu) << (8 * (7 - i));
    word = swapped;
  }
  return word;
}

/// The keyword that the ASCII name [begin, end) spells, case aside, else T_IDENTIFIER. The
/// bytes up to `last` must be readable; 16 bytes are read from `begin` when that many are.
inline std::uint32_t keywordOf(const unsigned char* begin, const unsigned char* end, const unsigned char* last) {
  const auto length = static_cast<std::size_t>(end - begin);
  const unsigned kept = length < 16 ? static_cast<unsigned>(length) : 16u;
  std::uint64_t low;
  std::uint64_t high;
  if (last - begin >= 15) [[likely]] {
    low = loadWord(begin);
    high = loadWord(begin + 8);
  } else {
    unsigned char bytes[16] = {};
    std::memcpy(bytes, begin, kept);
    low = loadWord(bytes);
    high = loadWord(bytes + 8);
  }
  constexpr std::uint64_t lower = 0x2020202020202020u;
  const Key key{(low | lower) & kMasks.low[kept], (high | lower) & kMasks.high[kept]};
  const unsigned index = kTable.slots[slotOf(key, kTable.lowFactor, kTable.highFactor)];
  const Key& candidate = kTable.keys[index];
  return candidate.low == key.low && candidate.high == key.high ? kTable.ids[index] : T_IDENTIFIER;
}

} // namespace velmor::sql::keywords
