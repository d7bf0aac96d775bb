// The node pool's free lists: blocks of every size, released on another thread than the one
// that made them, beyond what a thread keeps, and kept by a thread when it ends. The sanitizer
// builds turn a misplaced block into a failure here.
#include "ast/NodePool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace velmor::sql::ast::detail {
namespace {

using Blocks = std::vector<std::pair<void*, std::size_t>>;

// Every size up to past the pooled ones, written through so that an overlap shows.
Blocks allocateAll(int rounds) {
  Blocks blocks;
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t size = 1; size <= poolBlockLimit + 40; size += 7) {
      void* block = poolAllocate(size);
      std::memset(block, static_cast<int>(size & 0xFF), size);
      blocks.emplace_back(block, size);
    }
  }
  return blocks;
}

void release(const Blocks& blocks) {
  for (const auto& [block, size] : blocks) {
    // Each block still holds what its owner wrote: no other block shared its bytes.
    EXPECT_EQ(static_cast<unsigned char*>(block)[size - 1], static_cast<unsigned char>(size & 0xFF));
    poolDeallocate(block, size);
  }
}

TEST(NodePool, BlocksMoveBetweenThreadsAndDieWithThem) {
  struct Case {
    const char* name;
    int rounds;  // 600 rounds pass the bytes a thread keeps
  };
  for (const Case& c : {Case{"few", 3}, Case{"beyond what a thread keeps", 600}}) {
    SCOPED_TRACE(c.name);
    Blocks made;
    std::thread maker([&] { made = allocateAll(c.rounds); });
    maker.join();
    // The releasing thread ends with blocks on its lists; reuse them before it does.
    std::thread releaser([&] {
      release(made);
      release(allocateAll(c.rounds));
    });
    releaser.join();
    release(allocateAll(c.rounds));
  }
}

TEST(NodePool, PooledNodesAreOrdinaryHandles) {
  ExpressionNode node = makePooledNode<ExpressionNode>(Number{NumberKind::Integer, L"12345678901234567890"});
  Node empty = makePooledEmptyNode();
  EXPECT_TRUE(empty.isNull());
  EXPECT_FALSE(node.isNull());
  std::thread([moved = std::move(node)]() mutable { moved = ExpressionNode(); }).join();
}

} // namespace
} // namespace velmor::sql::ast::detail
