// Overloads already chosen during one check: a statement asks the same few questions of the
// catalogue many times (`a = b` over two integers, `AND` over truth values), and the choice
// depends only on the callee and the operands' plain types.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Type.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace velmor::sql::detail {

/// What typing on this thread met so far, for the walks that look for one kind of node: a walk
/// over clauses that typing went through whole is spared when its count did not move meanwhile.
struct TypingMarks {
  /// Places that may hold an aggregate call: a call of an aggregate function, a node kind that
  /// typing does not look into, a CAST's target (a type name, read as a call).
  std::uint64_t aggregates = 0;
  /// Places that may hold a CAST: a CAST, a node kind that typing does not look into.
  std::uint64_t casts = 0;
};
TypingMarks& typingMarks() noexcept;

class Resolutions {
public:
  /// The overload chosen before for this callee (an OperatorInfo or a FunctionInfo of
  /// `global`), quantifier and the plain types of `types` (empty entries skipped, as
  /// toPlainTypes skips them); null when none was. Makes no list: most questions were asked.
  std::shared_ptr<void> find(const GlobalTypeContext& global, const std::shared_ptr<void>& callee, int quantifier,
                             const std::vector<std::shared_ptr<Type>>& types) const {
    if (mCount == 0) return nullptr;
    std::size_t h = seed(&global, callee.get(), quantifier);
    for (const auto& type : types) {
      if (type) h = h * 31 + static_cast<std::size_t>(type->plainType());
    }
    // The slots lie side by side and keep each entry's hash: a question costs one look at a
    // slot or a few, and the lists are compared only when the hashes agree.
    for (std::size_t at = slotOf(h);; at = (at + 1) & mMask) {
      const Chosen& chosen = mSlots[at];
      if (!chosen.callee) return nullptr;
      if (chosen.hash == h && chosen.global == &global && chosen.callee == callee && chosen.quantifier == quantifier &&
          samePlain(chosen.plain, types)) {
        return chosen.overload;
      }
    }
  }

  void keep(const GlobalTypeContext& global, const std::shared_ptr<void>& callee, int quantifier,
            const std::vector<type::PlainType>& plain, std::shared_ptr<void> overload) {
    if (!callee) return; // a free slot is one without a callee
    if (2 * (mCount + 1) > mSlots.size()) grow();
    const std::size_t h = hashOf(&global, callee.get(), quantifier, plain);
    std::size_t at = slotOf(h);
    while (mSlots[at].callee) at = (at + 1) & mMask;
    // The callee is held, so that its address stands for it for as long as the entry lives.
    mSlots[at] = Chosen{h, &global, callee, quantifier, plain, std::move(overload)};
    ++mCount;
  }

private:
  static std::size_t seed(const void* global, const void* callee, int quantifier) noexcept {
    const std::size_t h = std::hash<const void*>()(callee) ^ (std::hash<const void*>()(global) << 1);
    return h * 31 + static_cast<std::size_t>(quantifier);
  }
  static std::size_t hashOf(const void* global, const void* callee, int quantifier,
                            const std::vector<type::PlainType>& plain) noexcept {
    std::size_t h = seed(global, callee, quantifier);
    for (const type::PlainType t : plain) h = h * 31 + static_cast<std::size_t>(t);
    return h;
  }
  // The hash's low bits come from aligned addresses and small numbers: a multiply spreads the
  // high ones down before a slot is chosen.
  std::size_t slotOf(std::size_t h) const noexcept {
    return static_cast<std::size_t>((static_cast<std::uint64_t>(h) * 0x9E3779B97F4A7C15ULL) >> 32) & mMask;
  }
  static bool samePlain(const std::vector<type::PlainType>& plain, const std::vector<std::shared_ptr<Type>>& types) {
    std::size_t i = 0;
    for (const auto& type : types) {
      if (!type) continue;
      if (i == plain.size() || plain[i] != type->plainType()) return false;
      ++i;
    }
    return i == plain.size();
  }
  struct Chosen {
    std::size_t hash = 0;
    const void* global = nullptr;
    std::shared_ptr<void> callee; // null for a free slot
    int quantifier = 0;
    std::vector<type::PlainType> plain;
    std::shared_ptr<void> overload;
  };
  void grow() {
    std::vector<Chosen> old = std::move(mSlots);
    mSlots.assign(old.empty() ? 64 : 2 * old.size(), Chosen{});
    mMask = mSlots.size() - 1;
    for (Chosen& chosen : old) {
      if (!chosen.callee) continue;
      std::size_t at = slotOf(chosen.hash);
      while (mSlots[at].callee) at = (at + 1) & mMask;
      mSlots[at] = std::move(chosen);
    }
  }
  std::vector<Chosen> mSlots; // a power of two, at most half taken; empty until the first entry
  std::size_t mMask = 0;
  std::size_t mCount = 0;

public:
  std::size_t size() const noexcept { return mCount; }
  void clear() noexcept {
    mSlots.clear();
    mMask = 0;
    mCount = 0;
  }
};

/// The memo of the check running on this thread, or null. Set for the length of a check by
/// ResolutionScope; an inferer made meanwhile on the thread takes it.
Resolutions* currentResolutions() noexcept;

/// Gives the thread a memo for as long as it lives, unless a check around it gave one already.
/// For a RevisedContext, the memo is the thread's lasting one, kept from check to check while
/// the context and its revision stay the same.
class ResolutionScope {
public:
  explicit ResolutionScope(const GlobalTypeContext& global) noexcept;
  ~ResolutionScope();
  ResolutionScope(const ResolutionScope&) = delete;
  ResolutionScope& operator=(const ResolutionScope&) = delete;

private:
  Resolutions* mPrevious;
  std::unique_ptr<Resolutions> mOwn;
};

} // namespace velmor::sql::detail
