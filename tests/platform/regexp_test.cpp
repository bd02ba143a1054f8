// The runtime's regular expressions. (That a changed pattern compiles afresh is met by their one
// user, the ID extraction's MarkerCut, serving marker after marker: extraction_test.)
#include "platform/regexp/regexp.h"

#include <gtest/gtest.h>

#include <chrono>

#include "core/variant.h"

namespace ostrakan::regexp {
namespace {

// The number of the error `pattern` raises on `text` (0 for none).
int ErrorOf(Limits limits, std::u16string pattern, std::u16string_view text) {
  RegExp re(limits);
  re.Global = true;
  re.Pattern = std::move(pattern);
  try {
    re.Execute(text);
  } catch (const ScriptError& e) {
    return e.number;
  }
  return 0;
}

std::vector<Match> Find(std::u16string pattern, std::u16string_view text, bool global = true,
                        bool ignoreCase = false) {
  RegExp re;
  re.Global = global;
  re.IgnoreCase = ignoreCase;
  re.Pattern = std::move(pattern);
  return re.Execute(text);
}

TEST(RegExp, MatchesCountUtf16UnitsAndStepOverWholeCharacters) {
  auto m = Find(u"b+", u"abbcb");
  ASSERT_EQ(m.size(), 2u);
  EXPECT_EQ(m[0].Value, u"bb");
  EXPECT_EQ(m[0].FirstIndex * 10 + m[0].Length, 12);
  EXPECT_EQ(m[1].FirstIndex, 4);
  EXPECT_EQ(Find(u"b", u"abcb", false).size(), 1u);  // not Global: the first match only
  // Positions count UTF-16 units, as the runtime's strings do: 😀 is two.
  m = Find(u"中.", u"😀a中文");
  ASSERT_EQ(m.size(), 1u);
  EXPECT_EQ(m[0].FirstIndex, 3);
  EXPECT_EQ(m[0].Value, u"中文");
  // Empty matches before "a", before the pair and at the end; never inside the pair.
  m = Find(u"x*", u"a😀");
  ASSERT_EQ(m.size(), 3u);
  EXPECT_EQ(m[1].FirstIndex + m[2].FirstIndex, 1 + 3);
  // An unpaired surrogate in the text is matched over, not refused.
  EXPECT_EQ(Find(u"b", std::u16string(u"a") + char16_t(0xD800) + u"b")[0].FirstIndex, 2);
}

TEST(RegExp, SpeaksTheRuntimesDialect) {
  EXPECT_EQ(Find(u"\\u4e2d", u"a中")[0].FirstIndex, 1);  // \uXXXX
  EXPECT_EQ(Find(u"(a)?\\1b", u"b")[0].Value, u"b");     // an unset group matches empty
  EXPECT_TRUE(Find(u"a[]", u"a[]").empty());             // [] matches nothing
  EXPECT_TRUE(Find(u"a$", u"a\n").empty());              // $ only at the very end
  EXPECT_EQ(Find(u"<H1>", u"<h1>", true, true).size(), 1u);
  EXPECT_TRUE(Find(u"<H1>", u"<h1>", true, false).empty());
  EXPECT_EQ(ErrorOf({}, u"<a(", u"<a("), 5017);  // syntax error in regular expression
}

// Runaway patterns end as error 28, by the match limit (backtracking) or the time budget (scans
// and back-references at every step); small limits keep this quick.
TEST(RegExp, RunawaySearchesEndAsErrors) {
  const std::u16string page(1 << 18, u'a');
  const Limits small{.matchLimit = 100'000, .timeBudget = std::chrono::milliseconds(50)};
  for (const char16_t* pattern : {u"(a+)+b", u"a*a*x", u"a*+a*x", u"([^<]*)x", u"(a*)\\1x"})
    EXPECT_EQ(ErrorOf(small, pattern, page), 28) << ToUtf8(pattern);
}

// The default limits leave room for an ordinary search of a large page.
TEST(RegExp, OrdinarySearchOfALargePageStaysWithinTheLimits) {
  std::u16string page;
  while (page.size() < (1u << 19)) page += u"<td class=\"x\">cell text</td>\r\n";
  page += u"<h1>The End</h1>";
  EXPECT_GT(Find(u"<td[^>]*>([^<]*)</td>", page).size(), 15000u);
  EXPECT_EQ(Find(u"<h1>([^<]*)</h1>", page).at(0).Value, u"<h1>The End</h1>");
}

}  // namespace
}  // namespace ostrakan::regexp
