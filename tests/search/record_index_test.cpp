// The record index against the plain LIKE scan, on each database: on generated records (a fixed
// seed) of Chinese, Latin of both cases, wildcards, escapes and characters outside the BMP, every
// word finds through the index the rows `LIKE '%word%'` finds, in its order, through edits,
// deletes, renumbering, additions, pending and taken-in changes and a rebuild; once taken in, the
// index holds exactly what db holds. And visitors' words counted in keyword.
#include <gtest/gtest.h>

#include <barrier>
#include <random>
#include <thread>

#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"
#include "search/record_index.h"
#include "search/record_match.h"
#include "search/search_words.h"
#include "support/page_harness.h"

namespace ostrakan::search {
namespace {

using testing::TestSite;

// Few characters, so that short words recur across records.
const std::u16string kPool[] = {u"功", u"夫", u"熊", u"猫",   u"电", u"影", u"的", u"一",
                                u"好", u"看", u"a",  u"A",    u"b",  u"B",  u"k",  u"K",
                                u"z",  u"é",  u"É",  u"1",    u"2",  u" ",  u"%",  u"_",
                                u"\"", u"'",  u"😀",  u"🙂", u"集", u"\\"};

class Records {
 public:
  explicit Records(const TestSite& site) : conn_(testing::Connect(site.database())) {}
  ado::Connection& conn() { return *conn_; }

  std::u16string RandomText(std::size_t longest) {
    std::u16string text;
    for (std::size_t n = random_() % (longest + 1); n > 0; --n)
      text += kPool[random_() % std::size(kPool)];
    return text;
  }
  void Add(int count) {
    for (int i = 0; i < count; ++i) {
      Variant content = random_() % 10 == 0 ? Variant::Null() : Variant(RandomText(40));
      conn_->Execute(u"insert into db (title, content) values (?, ?)",
                     {Variant(RandomText(16)), content});
    }
  }
  // Edits, deletes and renumbers some records, through plain statements on db.
  void Churn() {
    for (int i = 0; i < 150; ++i) {
      const Variant id(static_cast<int32_t>(random_() % 1500 + 1));
      const int change = random_() % 4;  // title, content, delete, renumber
      if (change < 2)
        conn_->Execute(change ? u"update db set content = ? where id = ?"
                              : u"update db set title = ? where id = ?",
                       {RandomText(change ? 40 : 16), id});
      else
        conn_->Execute(change == 2 ? u"delete from db where id = ?"
                                   : u"update db set id = id + 100000 where id = ?",
                       {id});
    }
  }
  // A word as a visitor might type it: a piece of a stored text, letters' case flipped at
  // random, sometimes a wildcard put in; or a text of the pool that may be stored nowhere.
  std::u16string RandomWord() {
    auto rs = conn_->Execute(
        u"select title || ' ' || coalesce(content, '') from db "
        u"order by id limit 1 offset ?",
        {Variant(static_cast<int32_t>(random_() % 1000))});
    std::u16string text = TextOf(rs->FieldAt(0));
    if (random_() % 5 == 0 || text.empty()) return RandomText(3) + u"x";
    std::size_t from = random_() % text.size(), length = random_() % 5 + 1;
    if (from > 0 && text[from] >= 0xDC00 && text[from] < 0xE000) --from;
    std::u16string word = text.substr(from, length);
    if (!word.empty() && word.back() >= 0xD800 && word.back() < 0xDC00) word.pop_back();
    for (char16_t& c : word) {
      if (random_() % 2 && c < 128 && std::isalpha(c)) c ^= 0x20;
    }
    // Sometimes a wildcard in place of a unit (which may leave half a surrogate pair alone).
    if (word.size() > 2 && random_() % 8 == 0) word[1] = random_() % 2 ? u'%' : u'_';
    return word;
  }

  std::vector<std::u16string> Ids(const std::u16string& where, const ado::Params& params) {
    std::vector<std::u16string> ids;
    for (auto rs = conn_->Execute(u"select id from db " + where + u" order by id desc", params);
         !rs->Eof(); rs->MoveNext())
      ids.push_back(TextOf(rs->FieldAt(0)));
    return ids;
  }
  // The number that a count statement gives.
  double Count(const std::u16string& sql, const ado::Params& params = {}) {
    return CDbl(conn_->Execute(sql, params)->FieldAt(0));
  }

 private:
  std::shared_ptr<ado::Connection> conn_;
  std::mt19937 random_{20261124};
};

// Looks `words` up through the index and by the scan, for every choice of fields. With
// `taken` (no record waits to be taken into the index) the index alone must hold exactly the
// matches: a record it missed, or old text of a changed one that it kept, shows there.
void ExpectSameAsScan(Records& records, const std::vector<std::u16string>& words, bool taken) {
  const std::u16string like = u" like '%' || ? || '%'";
  const RecordIndex index = RecordIndexOf(records.conn());
  ASSERT_NE(index, RecordIndex::kNone);
  if (index == RecordIndex::kPairs && taken) {
    // A record missing from db_gram, one left there after its deletion or renumbering, or keys
    // of an older text.
    EXPECT_EQ(records.Count(u"select count(*) from db full join db_gram using (id) "
                            u"where db.id is null or db_gram.id is null or "
                            u"db_gram.title is distinct from db.title or "
                            u"db_gram.content is distinct from db.content"),
              0);
  }
  int found = 0;
  for (const std::u16string& word : words) {
    SCOPED_TRACE(ToUtf8(word));
    const Variant w(word);
    const std::vector<std::u16string> scanned =
        records.Ids(u"where title" + like + u" or content" + like, {w, w});
    for (const auto& [fields, scan] :
         {std::pair{Fields::TitleOrContent, scanned},
          {Fields::Title, records.Ids(u"where title" + like, {w})},
          {Fields::Content, records.Ids(u"where content" + like, {w})}}) {
      const Condition found = ContainsWord(word, fields, index);
      ASSERT_EQ(records.Ids(found.where, found.params), scan);
      ASSERT_EQ(records.Count(found.count, found.countParams), static_cast<double>(scan.size()));
    }
    // Without wildcards the index alone finds exactly the matches.
    if (auto match = MatchExpression(word, Fields::TitleOrContent);
        taken && index == RecordIndex::kTokens && match &&
        word.find_first_of(u"%_") == std::u16string::npos) {
      ASSERT_EQ(records.Count(u"select count(*) from db_index where db_index match ?", {*match}),
                static_cast<double>(scanned.size()));
    }
    found += !scanned.empty();
  }
  EXPECT_GT(found, static_cast<int>(words.size()) / 2);  // the words mostly do occur
}

TEST(RecordIndex, FindsWhatTheLikeScanFindsThroughEditsAndRebuilds) {
  TestSite site;
  Records records(site);
  records.Add(3000);
  std::vector<std::u16string> words = {u"功", u"功夫", u"熊猫电", u"集功",  u"😀a",  u"a🙂", u"K",
                                       u"kA", u"É",    u"é",      u"😀",     u"a 1", u"\"",    u"'",
                                       u"%",  u"_",    u"%%",     u"功%猫", u"a_b", u"\"a",   u"无",
                                       u"\\", u"a\\%", u"\\_",    u"k\\"};
  for (int i = 0; i < 150; ++i) words.push_back(records.RandomWord());
  ExpectSameAsScan(records, words, false);            // every record still waits
  EXPECT_EQ(TakeInPending(records.conn(), 3001), 0);  // fewer wait
  EXPECT_EQ(TakeInPending(records.conn()), 3000);
  ExpectSameAsScan(records, words, true);

  records.Churn();
  records.Add(300);
  records.Churn();  // some records changed again while they wait
  ExpectSameAsScan(records, words, false);
  while (TakeInPending(records.conn(), 1, 200) > 0) continue;
  ExpectSameAsScan(records, words, true);

  // A rebuild reads db afresh and leaves the same answers.
  records.Churn();
  EXPECT_EQ(RebuildRecordIndex(records.conn()), records.Count(u"select count(*) from db"));
  ExpectSameAsScan(records, words, true);
}

// Writers and take-ins on several connections at once (as servers and workers of one site): a
// record changed while another connection takes records in is not lost nor taken in twice.
TEST(RecordIndex, TakeInsBesideWritersLoseNothing) {
  TestSite site;
  Records records(site);
  records.Add(300);
  std::vector<std::jthread> writers;
  for (int w = 0; w < 3; ++w)
    writers.emplace_back([&, w] {
      auto conn = testing::Connect(site.database());
      for (int i = 0; i < 150; ++i) {
        const Variant id(static_cast<int32_t>((i * 7 + w) % 300 + 1));
        conn->Execute(i % 5 == w ? u"delete from db where id = ?"
                                 : u"update db set title = title || 'x' where id = ?",
                      {id});
        if (i % 4 == 0) TakeInPending(*conn, 1, 20);
      }
    });
  writers.clear();
  while (TakeInPending(records.conn()) > 0) continue;
  ExpectSameAsScan(records, {u"x", u"xx", u"功"}, true);
}

TEST(SearchWords, SimultaneousSearchesOfNewWordsKeepOneRowEach) {
  TestSite site;
  constexpr int kWords = 40, kSearchers = 3;
  std::barrier start(kSearchers);
  std::vector<std::jthread> searchers;
  for (int s = 0; s < kSearchers; ++s)
    searchers.emplace_back([&] {
      auto conn = testing::Connect(site.database());
      for (int w = 0; w < kWords; ++w) {
        start.arrive_and_wait();  // all searchers look up the same new word at once
        CountSearch(*conn, u"词" + FromUtf8(std::to_string(w)));
      }
    });
  searchers.clear();
  EXPECT_EQ(testing::SqlValue(site.database(),
                              "select count(*) || ',' || min(hot) || ',' || max(hot) from keyword"),
            "40,3,3");
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
