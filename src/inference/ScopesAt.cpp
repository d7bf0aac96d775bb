// The scopes of chosen nodes, as a gathering standard analysis meets them.
#include <velmor/sql/inference/ScopesAt.h>

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/inference/TypeInferer.h>

#include "inference/StandardAnalysis.h"

#include <cstddef>
#include <unordered_map>
#include <utility>

namespace velmor::sql {

namespace {

using detail::LevelScope;

// A level and those around it, copied so that they outlive the walk that made them.
struct Chain {
  std::vector<std::unique_ptr<LevelScope>> levels;
};

class Collector final : public detail::AnalysisObserver, public detail::FaultSink {
public:
  Collector(const ast::Node& statement, const std::vector<ast::Node>& targets) : mAnswers(targets.size()) {
    mBest.assign(targets.size(), 0);
    std::unordered_map<const ast::NodeInterface*, std::vector<std::size_t>> wanted;
    for (std::size_t t = 0; t < targets.size(); ++t) {
      if (!targets[t].isNull()) wanted[targets[t].mImpl.get()].push_back(t);
    }
    if (wanted.empty() || statement.isNull()) return;
    // Depth first with the way down on a stack of its own: where a target is met, the way to
    // it is the stack.
    struct Frame {
      ast::Node node;
      std::vector<ast::Node> below;
      std::size_t next = 0;
    };
    std::vector<Frame> way;
    way.push_back({statement, ast::children(statement)});
    std::size_t found = 0;
    auto meetTarget = [&](const ast::Node& node) {
      const auto hit = wanted.find(node.mImpl.get());
      if (hit == wanted.end()) return;
      for (const std::size_t t : hit->second) {
        for (std::size_t i = 0; i < way.size(); ++i) mOnWay[way[i].node.mImpl.get()].push_back({t, i + 1});
        ++found;
      }
    };
    meetTarget(statement);
    while (!way.empty() && found < targets.size()) {
      Frame& top = way.back();
      if (top.next == top.below.size()) {
        way.pop_back();
        continue;
      }
      ast::Node child = std::move(top.below[top.next++]);
      if (child.isNull()) continue;
      std::vector<ast::Node> below = ast::children(child);
      way.push_back({std::move(child), std::move(below)});
      meetTarget(way.back().node);
    }
  }

  bool wants(const ast::Node& clause) const override { return mOnWay.count(clause.mImpl.get()) != 0; }
  void typing(const ast::Node& expression, const LevelScope& level) override { meet(expression, level); }
  void declared(const ast::Node& item, const LevelScope& level) override { meet(item, level); }
  void caught(const SqlError&) override {}
  void found(const SqlError&, const ast::Node*) override {}

  std::vector<std::optional<ScopeAt>> take() { return std::move(mAnswers); }

private:
  struct Step {
    std::size_t target;
    std::size_t depth; // from the statement, which is 1
  };

  void meet(const ast::Node& node, const LevelScope& level) {
    const auto found = mOnWay.find(node.mImpl.get());
    if (found == mOnWay.end()) return;
    for (const Step& step : found->second) {
      // The deepest expression around the target is typed in the target's own level.
      if (step.depth < mBest[step.target]) continue;
      mBest[step.target] = step.depth;
      mAnswers[step.target] = snapshot(level);
    }
  }

  static ScopeAt snapshot(const LevelScope& level) {
    ScopeAt at;
    auto chain = std::make_shared<Chain>();
    for (const LevelScope* l = &level; l != nullptr; l = l->m_parent) {
      ScopeLevel copy;
      for (const LevelScope::Declared& name : l->m_names) copy.names.push_back({name.written, name.node, name.scope});
      if (l == &level && l->m_outputUse != LevelScope::Output::None && l->m_output.columns()) {
        copy.output = *l->m_output.columns();
        copy.outputFirst = l->m_outputUse == LevelScope::Output::First;
      }
      at.levels.push_back(std::move(copy));
      chain->levels.push_back(std::make_unique<LevelScope>(*l));
    }
    for (std::size_t i = 0; i < chain->levels.size(); ++i) {
      chain->levels[i]->m_parent = i + 1 < chain->levels.size() ? chain->levels[i + 1].get() : nullptr;
    }
    const LevelScope* nearest = chain->levels.front().get();
    at.scope = std::shared_ptr<const ColumnInfoScope>(std::move(chain), nearest);
    return at;
  }

  std::unordered_map<const ast::NodeInterface*, std::vector<Step>> mOnWay;
  std::vector<std::size_t> mBest;
  std::vector<std::optional<ScopeAt>> mAnswers;
};

} // namespace

std::vector<std::optional<ScopeAt>> scopesAt(const GlobalTypeContext& global, const TableInfoContext& tables,
                                             const ast::Node& statement, const std::vector<ast::Node>& targets) {
  Collector collector(statement, targets);
  if (statement.isNull()) return collector.take();
  detail::StandardAnalysis analysis(global, tables, &collector);
  analysis.setObserver(&collector);
  try {
    analysis.checkStatement(statement, nullptr);
  } catch (const SqlError&) {
    // A fault outside every part: what was met so far stands.
  } catch (const FaultReported&) {
  }
  return collector.take();
}

} // namespace velmor::sql
