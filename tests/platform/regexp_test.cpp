#include "platform/regexp/regexp.h"

#include <gtest/gtest.h>

#include <chrono>

namespace ostrakan::regexp {
namespace {

std::vector<Match> Find(std::u16string pattern, std::u16string_view text, bool global = true,
                        bool ignoreCase = false) {
  RegExp re;
  re.Global = global;
  re.IgnoreCase = ignoreCase;
  re.Pattern = std::move(pattern);
  return re.Execute(text);
}

TEST(RegExp, MatchesCarryValuePositionAndLength) {
  auto m = Find(u"b+", u"abbcb");
  ASSERT_EQ(m.size(), 2u);
  EXPECT_EQ(m[0].Value, u"bb");
  EXPECT_EQ(m[0].FirstIndex, 1);
  EXPECT_EQ(m[0].Length, 2);
  EXPECT_EQ(m[1].FirstIndex, 4);
  // Positions count UTF-16 units, as the runtime's strings do: 😀 is two.
  m = Find(u"中.", u"😀a中文");
  ASSERT_EQ(m.size(), 1u);
  EXPECT_EQ(m[0].FirstIndex, 3);
  EXPECT_EQ(m[0].Value, u"中文");
  EXPECT_EQ(Find(u"b", u"abcb", false).size(), 1u);  // not Global: the first match only
}

TEST(RegExp, EmptyMatchesAdvanceByWholeCharacters) {
  auto m = Find(u"x*", u"a😀");
  // Empty matches before "a", before the pair and at the end; never inside the pair.
  ASSERT_EQ(m.size(), 3u);
  EXPECT_EQ(m[1].FirstIndex, 1);
  EXPECT_EQ(m[2].FirstIndex, 3);
}

TEST(RegExp, SpeaksTheRuntimesDialect) {
  EXPECT_EQ(Find(u"\\u4e2d", u"a中")[0].FirstIndex, 1);  // \uXXXX
  EXPECT_EQ(Find(u"(a)?\\1b", u"b")[0].Value, u"b");     // an unset group matches empty
  EXPECT_TRUE(Find(u"a[]", u"a[]").empty());             // [] matches nothing
  EXPECT_TRUE(Find(u"a$", u"a\n").empty());              // $ only at the very end
  EXPECT_EQ(Find(u"<H1>", u"<h1>", true, true).size(), 1u);
  EXPECT_TRUE(Find(u"<H1>", u"<h1>", true, false).empty());
}

TEST(RegExp, UnpairedSurrogatesInTheTextAreMatchedNotRefused) {
  std::u16string text = u"a";
  text += char16_t(0xD800);
  text += u"b";
  EXPECT_EQ(Find(u"b", text)[0].FirstIndex, 2);
}

TEST(RegExp, BadPatternRaisesSyntaxError) {
  try {
    Find(u"<a(", u"<a(");
    FAIL() << "no error";
  } catch (const ScriptError& e) {
    EXPECT_EQ(e.number, 5017);
  }
}

TEST(RegExp, ChangingThePatternOrCaseRecompiles) {
  RegExp re;
  re.Pattern = u"a";
  EXPECT_EQ(re.Execute(u"A a").size(), 1u);
  re.IgnoreCase = true;
  re.Global = true;
  EXPECT_EQ(re.Execute(u"A a").size(), 2u);
  re.Pattern = u"b";
  EXPECT_TRUE(re.Execute(u"A a").empty());
  EXPECT_TRUE(re.Test(u"xbx"));
}

// Runaway patterns on a 1 MB page end as error 28 within the time budget: exponential
// backtracking, a page-long scan per step, a possessive scan per step, a scan from each of a
// million starting positions, a back-reference compared at every step. (The bound checked here
// is loose; it only tells a budget that works from a hang.)
TEST(RegExp, RunawaySearchesOnALargePageEndAsErrors) {
  const std::u16string page(1 << 20, u'a');
  for (const char16_t* pattern : {u"(a+)+b", u"a*a*x", u"a*+a*x", u"([^<]*)x", u"(a*)\\1x"}) {
    SCOPED_TRACE(std::string(pattern, pattern + std::char_traits<char16_t>::length(pattern)));
    const auto started = std::chrono::steady_clock::now();
    try {
      Find(pattern, page);
      FAIL() << "no error";
    } catch (const ScriptError& e) {
      EXPECT_EQ(e.number, 28);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
  }
}

TEST(RegExp, OrdinarySearchOfALargePageStaysWithinTheLimits) {
  std::u16string page;
  while (page.size() < (2u << 20)) page += u"<td class=\"x\">cell text</td>\r\n";
  page += u"<h1>The End</h1>";
  auto m = Find(u"<td[^>]*>([^<]*)</td>", page);
  EXPECT_GT(m.size(), 60000u);
  EXPECT_EQ(Find(u"<h1>([^<]*)</h1>", page).at(0).Value, u"<h1>The End</h1>");
}

}  // namespace
}  // namespace ostrakan::regexp
