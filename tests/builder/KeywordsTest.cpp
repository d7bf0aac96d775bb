// The writer's reserved-word table: membership in any case, and bracketing of one name.
#include <velmor/sql/builder/Keywords.h>

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <string>

namespace velmor::sql {
namespace {

struct QuotingCase {
  std::wstring word;
  bool reserved;
  std::wstring escaped;
};

const QuotingCase kQuotingCases[] = {
    {L"select", true, L"[select]"},
    {L"SELECT", true, L"[SELECT]"},
    {L"Select", true, L"[Select]"},
    {L"Order", true, L"[Order]"},
    {L"groupby", true, L"[groupby]"},
    {L"NoSelect", true, L"[NoSelect]"},
    {L"overriding", true, L"[overriding]"},
    {L"as", true, L"[as]"},
    {L"XOR", true, L"[XOR]"},
    {L"intersects", true, L"[intersects]"},
    {L"uSeR", true, L"[uSeR]"},
    {L"name", false, L"name"},
    {L"", false, L""},
    {L"date", false, L"date"},
    // Keywords of the scanner that the writer's table leaves out.
    {L"cast", false, L"cast"},
    {L"else", false, L"else"},
    {L"regexp", false, L"regexp"},
    {L"[select]", false, L"[select]"},
    {L"select ", false, L"select "},
    {L"a", false, L"a"},
    {L"selects", false, L"selects"},
    {L"overridings", false, L"overridings"},
    {L"s\u00e9lect", false, L"s\u00e9lect"},
    // The order stops at the first NUL unit, so what follows it is not looked at.
    {std::wstring(L"from\0x", 6), true, L"[" + std::wstring(L"from\0x", 6) + L"]"},
    {std::wstring(L"in\0", 3), true, L"[" + std::wstring(L"in\0", 3) + L"]"},
    {std::wstring(L"intersects\0x", 12), true, L"[" + std::wstring(L"intersects\0x", 12) + L"]"},
    {std::wstring(L"i\0n", 3), false, std::wstring(L"i\0n", 3)},
    {std::wstring(L"\0in", 3), false, std::wstring(L"\0in", 3)},
    {std::wstring(L"fro\0m", 5), false, std::wstring(L"fro\0m", 5)},
    // The shortest words, and names that share their first letters with words.
    {L"iN", true, L"[iN]"},
    {L"i", false, L"i"},
    {L"i_", false, L"i_"},
    {L"ow", false, L"ow"},
    {L"sensor", false, L"sensor"},
    {L"intersectz", false, L"intersectz"},
};

TEST(KeywordsTest, QuotesExactlyTheReservedWordsKeepingTheirCase) {
  const Keywords& keywords = Keywords::instance();
  for (const auto& c : kQuotingCases) {
    EXPECT_EQ(keywords.isOf(c.word), c.reserved) << std::string(c.word.begin(), c.word.end());
    EXPECT_EQ(keywords.escape(c.word), c.escaped);
  }
}

TEST(KeywordsTest, OrderIsCaseInsensitiveAndShorterFirst) {
  const Keywords::Less less;
  EXPECT_FALSE(less(L"SELECT", L"select"));
  EXPECT_FALSE(less(L"select", L"SELECT"));
  EXPECT_TRUE(less(L"in", L"INNER"));
  EXPECT_TRUE(less(L"A", L"b"));
  EXPECT_TRUE(less(L"a", L"B"));
}

TEST(KeywordsTest, FirstUseFromManyThreadsSeesOneInstance) {
  std::array<std::future<const Keywords*>, 8> results;
  for (auto& result : results)
    result = std::async(std::launch::async, [] {
      const Keywords& keywords = Keywords::instance();
      return keywords.isOf(L"where") ? &keywords : nullptr;
    });
  const Keywords* first = results[0].get();
  ASSERT_NE(first, nullptr);
  for (std::size_t i = 1; i < results.size(); ++i) EXPECT_EQ(results[i].get(), first);
}

} // namespace
} // namespace velmor::sql
