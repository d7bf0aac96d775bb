// The parse's value slabs: values survive growth, clearing destroys exactly what no rule took,
// and the room stays or goes as asked.
#include "parser/ValueSlabs.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace velmor::sql {
namespace {

struct SlabCase {
  const char* what;
  std::size_t stored;
  std::size_t taken;  // the first ones, in order
};

TEST(Slab, ClearLeavesNoValueAliveWhateverWasTaken) {
  // 64 is the first room; 65 needs it grown once, 129 twice.
  const SlabCase cases[] = {
      {"nothing stored", 0, 0},         {"one stored, none taken", 1, 0},  {"one stored and taken", 1, 1},
      {"room full, all taken", 64, 64}, {"grown, all taken", 65, 65},      {"grown, one left", 65, 64},
      {"grown twice, one taken", 129, 1}, {"grown twice, none taken", 129, 0},
  };
  for (const SlabCase& c : cases) {
    Slab<std::shared_ptr<int>> slab;
    auto counted = std::make_shared<int>(7);
    for (std::size_t i = 0; i < c.stored; ++i) slab.push_back(counted);
    ASSERT_EQ(slab.size(), c.stored) << c.what;
    std::vector<std::shared_ptr<int>> out;
    for (std::size_t i = 0; i < c.taken; ++i) out.push_back(slab.take(i));
    for (const auto& value : out) EXPECT_EQ(value.get(), counted.get()) << c.what;
    EXPECT_EQ(counted.use_count(), static_cast<long>(1 + c.stored)) << c.what;
    out.clear();
    const std::size_t room = slab.capacity();
    slab.clear();
    EXPECT_EQ(counted.use_count(), 1) << c.what;
    EXPECT_EQ(slab.size(), 0u) << c.what;
    EXPECT_EQ(slab.capacity(), room) << c.what;
    // A cleared slab is used again from its start, with its taken count reset.
    slab.push_back(counted);
    slab.clear();
    EXPECT_EQ(counted.use_count(), 1) << c.what;
  }
}

TEST(Slab, ValuesKeepTheirPlaceAcrossGrowthAndReleaseGivesTheRoomBack) {
  Slab<std::vector<int>> slab;
  for (int i = 0; i < 200; ++i) slab.push_back(std::vector<int>(3, i));
  for (int i = 0; i < 200; ++i) ASSERT_EQ(slab[static_cast<std::size_t>(i)], std::vector<int>(3, i)) << i;
  EXPECT_EQ(slab.take(199), std::vector<int>(3, 199));
  slab.release();
  EXPECT_EQ(slab.size(), 0u);
  EXPECT_EQ(slab.capacity(), 0u);
  slab.push_back(std::vector<int>{1});
  EXPECT_EQ(slab.take(0), std::vector<int>{1});
}

} // namespace
} // namespace velmor::sql
