// The automaton's tables run as a plain recognizer: state numbers only, no values, no actions.
// Completion asks it which terminals may follow a run of tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace velmor::sql::recognizer {

/// `Tables` reads the generated automaton: static functions pact(s), defact(s), table(i),
/// check(i), r1(rule), r2(rule), gotoState(state, nonterminal), translate(tokenId),
/// pactIsDefault(v), tableIsError(v), last(), tokenCount() and tokenIdLimit() (one past the
/// highest token id). It is defined in the generated automaton's own source file, the one
/// place that may read its tables.
template <class Tables>
class Recognizer {
public:
  /// Runs `ids` from state 0. False when one of them is a syntax error.
  bool run(const std::vector<std::uint32_t>& ids) {
    mStack.assign(1, 0);
    for (const std::uint32_t id : ids) {
      if (!shifts(mStack, Tables::translate(id))) return false;
    }
    return true;
  }

  /// Whether the terminal `symbol` would be shifted next. Works on a copy of the stack, since
  /// reductions that a wrong guess makes must not touch the real one.
  bool accepts(int symbol) {
    mScratch = mStack;
    return shifts(mScratch, symbol);
  }

  /// The token ids accepted after run(), in symbol order.
  std::vector<std::uint32_t> acceptedIds() {
    std::vector<std::uint32_t> idOfSymbol(static_cast<std::size_t>(Tables::tokenCount()), noId);
    for (std::uint32_t id = 0; id < Tables::tokenIdLimit(); ++id) {
      const int symbol = Tables::translate(id);
      // Kinds 1 and 2 are bison's error token and the kind of undeclared ids.
      if (symbol > 2 && idOfSymbol[static_cast<std::size_t>(symbol)] == noId) {
        idOfSymbol[static_cast<std::size_t>(symbol)] = id;
      }
    }
    idOfSymbol[0] = 0; // the end of the text
    std::vector<std::uint32_t> accepted;
    for (int symbol = 0; symbol < Tables::tokenCount(); ++symbol) {
      const std::uint32_t id = idOfSymbol[static_cast<std::size_t>(symbol)];
      if (id != noId && accepts(symbol)) accepted.push_back(id);
    }
    return accepted;
  }

private:
  static constexpr std::uint32_t noId = ~std::uint32_t{0};

  // Reduces as the automaton would until `symbol` is shifted (true) or is an error (false).
  // Default reductions are made as well: the error then shows in the state that lacks the
  // symbol, exactly as it does for the automaton.
  static bool shifts(std::vector<int>& stack, int symbol) {
    for (;;) {
      const int state = stack.back();
      int rule = 0;
      const int base = Tables::pact(state);
      const int index = base + symbol;
      if (!Tables::pactIsDefault(base) && index >= 0 && index <= Tables::last() && Tables::check(index) == symbol) {
        const int action = Tables::table(index);
        if (action > 0) {
          stack.push_back(action);
          return true;
        }
        if (action == 0 || Tables::tableIsError(action)) return false;
        rule = -action;
      } else {
        rule = Tables::defact(state);
        if (rule == 0) return false;
      }
      const auto length = static_cast<std::size_t>(Tables::r2(rule));
      stack.resize(stack.size() - length);
      stack.push_back(Tables::gotoState(stack.back(), Tables::r1(rule)));
    }
  }

  std::vector<int> mStack;
  std::vector<int> mScratch;
};

} // namespace velmor::sql::recognizer
