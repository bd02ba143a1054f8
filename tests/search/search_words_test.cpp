// Counting visitors' words in keyword: simultaneous searches of new words from separate
// connections give one row per word with every search counted; one address counts a word once
// in the window.
#include <gtest/gtest.h>

#include <barrier>
#include <thread>

#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"
#include "search/search_words.h"
#include "support/page_harness.h"

namespace ostrakan::search {
namespace {

TEST(SearchWords, SimultaneousSearchesOfNewWordsKeepOneRowEach) {
  testing::TestSite site;
  const std::u16string connstr = u"DBQ=" + FromUtf8(site.database().string()) + u";";
  constexpr int kWords = 40, kSearchers = 3;
  std::barrier start(kSearchers);
  std::vector<std::jthread> searchers;
  for (int s = 0; s < kSearchers; ++s)
    searchers.emplace_back([&] {
      auto conn = std::make_shared<ado::Connection>();
      conn->Open(connstr);
      for (int w = 0; w < kWords; ++w) {
        start.arrive_and_wait();  // all searchers look up the same new word at once
        CountSearch(*conn, u"词" + FromUtf8(std::to_string(w)));
      }
    });
  searchers.clear();
  auto conn = std::make_shared<ado::Connection>();
  conn->Open(connstr);
  auto rs = conn->Execute(u"select count(*), min(hot), max(hot) from keyword");
  EXPECT_EQ(CDbl(rs->FieldAt(0)), kWords);
  EXPECT_EQ(CDbl(rs->FieldAt(1)), kSearchers);
  EXPECT_EQ(CDbl(rs->FieldAt(2)), kSearchers);
}

TEST(SearchWords, AnAddressCountsAWordOnceInTheWindow) {
  RepeatFilter filter(600, 3);
  EXPECT_TRUE(filter.ShouldCount(u"10.0.0.1", u"功夫", 1000));
  EXPECT_FALSE(filter.ShouldCount(u"10.0.0.1", u"功夫", 1599));
  EXPECT_TRUE(filter.ShouldCount(u"10.0.0.2", u"功夫", 1599));  // another address
  EXPECT_TRUE(filter.ShouldCount(u"10.0.0.1", u"熊猫", 1599));  // another word
  EXPECT_TRUE(filter.ShouldCount(u"10.0.0.1", u"功夫", 1600));  // the window has passed
  EXPECT_FALSE(filter.ShouldCount(u"10.0.0.1", u"功夫", 1700));
  // The pairs do not mix: an address ending where a word begins is another pair.
  EXPECT_TRUE(filter.ShouldCount(u"10.0.0.1\n功", u"夫", 1700));
}

}  // namespace
}  // namespace ostrakan::search
