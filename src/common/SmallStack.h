// A last-in-first-out list of trivially copyable entries whose first slots live inside it, for
// the short-lived walks that run for every clause: most of them never allocate.
#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

namespace velmor::sql::detail {

template <class T, std::size_t Inline>
class SmallStack {
  static_assert(std::is_trivially_copyable_v<T>, "entries are copied as they are");

public:
  SmallStack() = default;
  SmallStack(const SmallStack&) = delete;
  SmallStack& operator=(const SmallStack&) = delete;

  bool empty() const noexcept { return mCount == 0 && mSpill.empty(); }

  void push(T entry) {
    if (mSpill.empty() && mCount < Inline) {
      mInline[mCount++] = entry;
    } else {
      mSpill.push_back(entry);
    }
  }

  // Entries spilled went in after the inline ones, so they come out first.
  T pop() noexcept {
    if (!mSpill.empty()) {
      const T entry = mSpill.back();
      mSpill.pop_back();
      return entry;
    }
    return mInline[--mCount];
  }

private:
  T mInline[Inline];
  std::size_t mCount = 0;
  std::vector<T> mSpill;
};

} // namespace velmor::sql::detail
