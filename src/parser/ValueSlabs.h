// The values of one parse that the automaton's stack refers to by Slot.
#pragma once

#include <velmor/sql/ast/AST.h>

#include "SqlGrammar.tab.hpp"

#include <cstddef>
#include <new>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace velmor::sql {

/// A list of one kind of value: appended to, and each value later moved out by the rule that
/// takes it. Counts what was taken, so that clearing after a parse that took every value (each
/// successful one) only forgets the moved-from values, which own nothing, rather than running
/// their destructors one by one.
template <class T>
class Slab {
  static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__, "room comes from plain operator new");

public:
  Slab() = default;
  Slab(const Slab&) = delete;
  Slab& operator=(const Slab&) = delete;
  ~Slab() { release(); }

  std::size_t size() const noexcept { return mSize; }
  std::size_t capacity() const noexcept { return mCapacity; }
  T& operator[](std::size_t index) noexcept { return data()[index]; }

  /// Throws std::bad_alloc; the values already stored stay.
  template <class U>
  void push_back(U&& value) {
    if (mSize == mCapacity) grow();
    ::new (static_cast<void*>(data() + mSize)) T(std::forward<U>(value));
    ++mSize;
  }

  /// The value at `index`, moved out; the moved-from value stays in place until clear().
  T take(std::size_t index) noexcept(std::is_nothrow_move_constructible_v<T>) {
    ++mTaken;
    return std::move(data()[index]);
  }

  /// Empties the list and keeps its room. Every value taken: nothing is left to destroy, since
  /// a moved-from handle, list or text holds no memory.
  void clear() noexcept {
    if (mTaken != mSize) {
      for (std::size_t i = 0; i < mSize; ++i) data()[i].~T();
    }
    mSize = 0;
    mTaken = 0;
  }

  /// Empties the list and gives its room back.
  void release() noexcept {
    clear();
    ::operator delete(mRoom);
    mRoom = nullptr;
    mCapacity = 0;
  }

private:
  T* data() noexcept { return static_cast<T*>(mRoom); }

  void grow() {
    const std::size_t capacity = mCapacity == 0 ? 64 : 2 * mCapacity;
    void* room = ::operator new(capacity * sizeof(T));
    T* to = static_cast<T*>(room);
    for (std::size_t i = 0; i < mSize; ++i) {
      ::new (static_cast<void*>(to + i)) T(std::move(data()[i]));
      data()[i].~T();
    }
    ::operator delete(mRoom);
    mRoom = room;
    mCapacity = capacity;
  }

  void* mRoom = nullptr;
  std::size_t mSize = 0;
  std::size_t mCapacity = 0;
  std::size_t mTaken = 0;
};

/// One list per kind of value. A rule's value is appended and later moved out by the rule that
/// takes it, so the lists only grow during a parse; clear() after the parse destroys what a
/// failed parse left and keeps the room for the next one.
class ValueSlabs {
public:
  template <class T>
  Slab<T>& of() {
    return std::get<Slab<T>>(mValues);
  }

  /// Emptied lists whose room a new list may take; kept across parses.
  template <class E>
  std::vector<std::vector<E>>& sparesOf() {
    return std::get<std::vector<std::vector<E>>>(mSpares);
  }

  void clear() {
    std::apply([](auto&... values) { (values.clear(), ...); }, mValues);
  }

  /// Gives back the room of every list longer than `entries`, and spare lists beyond that many:
  /// what a parser keeps between parses stays bounded, whatever texts it read.
  void trim(std::size_t entries) {
    std::apply([entries](auto&... values) { ((values.capacity() > entries ? values.release() : void()), ...); }, mValues);
    std::apply([entries](auto&... spares) { (trimSpares(spares, entries), ...); }, mSpares);
  }

  /// Gives back the room of `list` when it holds more than `entries`.
  template <class T>
  static void trimRoom(std::vector<T>& list, std::size_t entries) {
    if (list.capacity() > entries) std::vector<T>().swap(list);
  }

private:
  // Spare lists are kept while their room, counted in bytes, stays within what `entries`
  // elements of the list's kind take: one list grown by a long text does not stay.
  template <class E>
  static void trimSpares(std::vector<std::vector<E>>& spares, std::size_t entries) {
    const std::size_t budget = entries * sizeof(E);
    std::size_t used = 0;
    std::size_t kept = 0;
    for (std::vector<E>& spare : spares) {
      const std::size_t bytes = spare.capacity() * sizeof(E);
      if (kept == entries || used + bytes > budget) continue;
      used += bytes;
      if (&spares[kept] != &spare) spares[kept] = std::move(spare);
      ++kept;
    }
    spares.resize(kept);
  }

  std::tuple<Slab<ast::Node>, Slab<ast::QueryExpressionNode>, Slab<ast::ExpressionNode>,
             Slab<ast::TypeNode<ast::IntoClause>>, Slab<ast::SortSpecification>, Slab<ast::SetClause>,
             Slab<ast::LimitSpecification>, Slab<ast::FromSource>, Slab<std::vector<ast::Node>>,
             Slab<std::vector<ast::QueryExpressionNode>>, Slab<std::vector<ast::ExpressionNode>>,
             Slab<std::vector<ast::SortSpecification>>, Slab<std::vector<ast::SetClause>>,
             Slab<std::vector<std::wstring>>>
      mValues;
  std::tuple<std::vector<std::vector<ast::Node>>, std::vector<std::vector<ast::QueryExpressionNode>>,
             std::vector<std::vector<ast::ExpressionNode>>, std::vector<std::vector<ast::SortSpecification>>,
             std::vector<std::vector<ast::SetClause>>, std::vector<std::vector<std::wstring>>>
      mSpares;
};

} // namespace velmor::sql
