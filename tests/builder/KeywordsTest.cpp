// The writer's reserved-word table: membership in any case, and bracketing of one name.
#include <velmor/sql/builder/Keywords.h>

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <string>
#include <vector>

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
};

TEST(KeywordsTest, QuotesExactlyTheReservedWordsKeepingTheirCase) {
  const Keywords& keywords = Keywords::instance();
  for (const auto& c : kQuotingCases) {
    EXPECT_EQ(keywords.isOf(c.word), c.reserved) << std::string(c.word.begin(), c.word.end());
    EXPECT_EQ(keywords.escape(c.word), c.escaped);
  }
}

TEST(KeywordsTest, HoldsTheSeventySevenWordsInEveryCase) {
  const std::vector<std::wstring> words = {
      L"all", L"and", L"any", L"array", L"as", L"asc", L"between", L"by", L"case", L"contains",
      L"cross", L"default", L"delete", L"desc", L"distinct", L"end", L"entire", L"entirely",
      L"except", L"exists", L"false", L"first", L"from", L"full", L"glob", L"group", L"groupby",
      L"having", L"in", L"inner", L"insert", L"intersect", L"intersects", L"into", L"is",
      L"join", L"last", L"left", L"like", L"limit", L"mod", L"multiset", L"natural",
      L"noselect", L"not", L"null", L"nulls", L"on", L"offset", L"or", L"order", L"orderby",
      L"outer", L"overriding", L"part", L"partly", L"right", L"row", L"select", L"set", L"some",
      L"system", L"table", L"then", L"true", L"union", L"unique", L"unknown", L"update",
      L"user", L"using", L"value", L"values", L"when", L"where", L"within", L"xor"};
  ASSERT_EQ(words.size(), 77u);
  const Keywords& keywords = Keywords::instance();
  for (const auto& word : words) {
    std::wstring upper = word;
    for (auto& unit : upper) unit = static_cast<wchar_t>(unit - L'a' + L'A');
    EXPECT_TRUE(keywords.isOf(word));
    EXPECT_TRUE(keywords.isOf(upper));
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
