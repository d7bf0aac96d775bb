// The automaton's tables run as a plain recognizer: state numbers only, no values, no actions.
// Completion asks it which terminals may follow a run of tokens, and how a run that fails or
// stops short can be mended into a whole statement.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace velmor::sql::recognizer {

/// A change to a run of tokens: `id` put before the token at `index` (or at the end), or the
/// token at `index` dropped.
struct Fix {
  std::size_t index = 0;
  bool drop = false;
  std::uint32_t id = 0;
};

/// `Tables` reads the generated automaton: static functions pact(s), defact(s), table(i),
/// check(i), r1(rule), r2(rule), gotoState(state, nonterminal), translate(tokenId),
/// pactIsDefault(v), tableIsError(v), last(), tokenCount(), tokenIdLimit() (one past the
/// highest token id), idOf(symbol) (a token id of a terminal, or ~0 for none), bridges() (the
/// ids repair tries to put before a failing token, best first) and closers() (the ids that
/// close a statement, best first). It is defined
/// in the generated automaton's own source file, the one place that may read its tables.
template <class Tables>
class Recognizer {
public:
  /// Runs `ids` from state 0. False when one of them is a syntax error; the end of the text
  /// (T_TERMINATION, id 0) is one too, since nothing may follow it.
  bool run(const std::vector<std::uint32_t>& ids) {
    mStack.assign(1, 0);
    Plain stack(mStack);
    for (const std::uint32_t id : ids) {
      if (id == 0 || !shifts(stack, Tables::translate(id))) return false;
    }
    return true;
  }

  /// Whether the terminal `symbol` would be shifted next. Probes above the real stack, since
  /// reductions that a wrong guess makes must not touch it, and copying it would cost its depth.
  bool accepts(int symbol) const {
    Overlay probe(mStack);
    return shifts(probe, symbol);
  }

  /// The token ids accepted after run(), in symbol order.
  std::vector<std::uint32_t> acceptedIds() const {
    std::vector<std::uint32_t> accepted;
    for (int symbol = 0; symbol < Tables::tokenCount(); ++symbol) {
      const std::uint32_t id = symbol == 0 ? 0 : Tables::idOf(symbol);
      if (id != noId && accepts(symbol)) accepted.push_back(id);
    }
    return accepted;
  }

  /// Fixes that make `ids` a whole statement: at each failing token, one token put before it
  /// (a name or a closing parenthesis) or the token dropped, whichever lets the next two tokens
  /// through; after `maxFixes` fixes, or where none helps, the rest is dropped. Then the tokens
  /// that close what is open. None when even closing fails (within a bound of steps that grows
  /// with the depth of the stack, so that a hostile text costs linear time).
  std::optional<std::vector<Fix>> repair(const std::vector<std::uint32_t>& ids, std::size_t maxFixes) {
    mStack.assign(1, 0);
    std::vector<Fix> fixes;
    std::size_t i = 0;
    while (i < ids.size()) {
      if (ids[i] != 0 && push(Tables::translate(ids[i]))) {
        ++i;
        continue;
      }
      bool mended = false;
      if (fixes.size() < maxFixes) {
        for (const std::uint32_t id : Tables::bridges()) {
          if (passes(id, ids, i)) {
            fixes.push_back({i, false, id});
            push(Tables::translate(id));
            mended = true;
            break;
          }
        }
        if (!mended && passes(noId, ids, i + 1)) {
          fixes.push_back({i, true, 0});
          ++i;
          mended = true;
        }
        if (!mended) mended = closeBefore(ids, i, fixes);
      }
      if (!mended) {
        for (; i < ids.size(); ++i) fixes.push_back({i, true, 0});
      }
    }
    // Close what is open, preferring the tokens that end things.
    const std::size_t bound = 2 * mStack.size() + 64;
    for (std::size_t step = 0; !accepts(0); ++step) {
      if (step == bound) return std::nullopt;
      const std::uint32_t chosen = closer();
      if (chosen == noId) return std::nullopt;
      push(Tables::translate(chosen));
      fixes.push_back({ids.size(), false, chosen});
    }
    return fixes;
  }

private:
  static constexpr std::uint32_t noId = ~std::uint32_t{0};

  // The real stack seen through a window: the bottom `kept` states of `base`, then `extra`.
  class Overlay {
  public:
    explicit Overlay(const std::vector<int>& base) : mBase(base), mKept(base.size()) {}
    /// Makes `stack` (the base) what the window shows.
    void commit(std::vector<int>& stack) const {
      stack.resize(mKept);
      stack.insert(stack.end(), mExtra.begin(), mExtra.end());
    }
    int back() const { return mExtra.empty() ? mBase[mKept - 1] : mExtra.back(); }
    std::size_t size() const { return mKept + mExtra.size(); }
    void pop(std::size_t count) {
      const std::size_t fromExtra = std::min(count, mExtra.size());
      mExtra.resize(mExtra.size() - fromExtra);
      mKept -= count - fromExtra;
    }
    void push(int state) { mExtra.push_back(state); }

  private:
    const std::vector<int>& mBase;
    std::size_t mKept;
    std::vector<int> mExtra;
  };

  class Plain {
  public:
    explicit Plain(std::vector<int>& stack) : mStack(stack) {}
    int back() const { return mStack.back(); }
    std::size_t size() const { return mStack.size(); }
    void pop(std::size_t count) { mStack.resize(mStack.size() - count); }
    void push(int state) { mStack.push_back(state); }

  private:
    std::vector<int>& mStack;
  };

  // Shifts `symbol` onto the real stack; a symbol that fails leaves it as it was (the default
  // reductions made before the failure showed are undone with it).
  bool push(int symbol) {
    Overlay probe(mStack);
    if (!shifts(probe, symbol)) return false;
    probe.commit(mStack);
    return true;
  }

  // A few closing tokens (as at the end) put before token i, when after them it and the next
  // one pass: an open CASE or parenthesis in front of the rest of the statement.
  bool closeBefore(const std::vector<std::uint32_t>& ids, std::size_t i, std::vector<Fix>& fixes) {
    constexpr std::size_t most = 6;
    const std::vector<int> saved = mStack;
    std::vector<std::uint32_t> put;
    while (put.size() < most) {
      const std::uint32_t id = closer();
      if (id == noId || id == 0) break;
      push(Tables::translate(id));
      put.push_back(id);
      if (passes(noId, ids, i)) {
        for (const std::uint32_t each : put) fixes.push_back({i, false, each});
        return true;
      }
    }
    mStack = saved;
    return false;
  }

  // The token that closing puts in next: the first of the closers that is accepted, else the
  // first accepted terminal; the end of the text (0) when it is accepted, none when nothing is.
  std::uint32_t closer() const {
    if (accepts(0)) return 0;
    for (const std::uint32_t id : Tables::closers()) {
      if (accepts(Tables::translate(id))) return id;
    }
    for (int symbol = 3; symbol < Tables::tokenCount(); ++symbol) {
      const std::uint32_t id = Tables::idOf(symbol);
      if (id != noId && accepts(symbol)) return id;
    }
    return noId;
  }

  // Whether `id` (none: nothing) and then the next two tokens from `from` would be shifted.
  bool passes(std::uint32_t id, const std::vector<std::uint32_t>& ids, std::size_t from) const {
    Overlay probe(mStack);
    if (id != noId && !shifts(probe, Tables::translate(id))) return false;
    for (std::size_t k = from; k < ids.size() && k < from + 2; ++k) {
      if (ids[k] == 0 || !shifts(probe, Tables::translate(ids[k]))) return false;
    }
    return true;
  }

  // Reduces as the automaton would until `symbol` is shifted (true) or is an error (false).
  // Default reductions are made as well: the error then shows in the state that lacks the
  // symbol, exactly as it does for the automaton.
  template <class Stack>
  static bool shifts(Stack& stack, int symbol) {
    for (;;) {
      const int state = stack.back();
      int rule = 0;
      const int base = Tables::pact(state);
      const int index = base + symbol;
      if (!Tables::pactIsDefault(base) && index >= 0 && index <= Tables::last() && Tables::check(index) == symbol) {
        const int action = Tables::table(index);
        if (action > 0) {
          stack.push(action);
          return true;
        }
        if (action == 0 || Tables::tableIsError(action)) return false;
        rule = -action;
      } else {
        rule = Tables::defact(state);
        if (rule == 0) return false;
      }
      stack.pop(static_cast<std::size_t>(Tables::r2(rule)));
      stack.push(Tables::gotoState(stack.back(), Tables::r1(rule)));
    }
  }

  std::vector<int> mStack;
};

} // namespace velmor::sql::recognizer
