#include "search/record_match.h"

namespace ostrakan::search {

namespace {

// A phrase of FTS5: the text in double quotes, a quote inside doubled.
std::u16string Quoted(std::u16string_view piece) {
  std::u16string out = u"\"";
  for (char16_t c : piece) {
    if (c == u'"') out += u'"';
    out += c;
  }
  return out + u'"';
}

std::u16string LikeTest(std::u16string_view column) {
  return std::u16string(column) + u" like '%' || ? || '%'";
}

// Half of a surrogate pair alone: SQLite's conversion of such a text may take the unit after
// it along (a closing quote of the expression), so such a word is left to the scan.
bool HasLoneSurrogate(std::u16string_view word) {
  for (std::size_t i = 0; i < word.size(); ++i) {
    const bool high = word[i] >= 0xD800 && word[i] < 0xDC00;
    const bool low = word[i] >= 0xDC00 && word[i] < 0xE000;
    if (low) return true;
    if (high) {
      if (i + 1 >= word.size() || word[i + 1] < 0xDC00 || word[i + 1] >= 0xE000) return true;
      ++i;
    }
  }
  return false;
}

// The PostgreSQL condition: the records that PairCandidates offers. The count adds up its two
// parts apart, the indexed copies without reading db; a page gathers the ids into an array
// first, so that its rows are read newest first through db's key, only as many as it shows.
void ThroughPairs(Condition& c, const KeyTest& keys) {
  const Candidates from = PairCandidates(keys, c.where.substr(6), c.params);
  c.where = u"where id = any (array(select id " + from.indexed + u" union all select id " +
            from.waiting + u"))";
  c.count = u"select (select count(*) " + from.indexed + u") + (select count(*) " + from.waiting +
            u") as db_count";
  c.params = from.params;
  c.countParams = from.params;
}

}  // namespace

std::vector<std::u16string> LiteralPieces(std::u16string_view word) {
  std::vector<std::u16string> pieces(1);
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word[i] == u'\\') {
      // The closing '%' is taken literally after a backslash that ends the word.
      pieces.back() += i + 1 < word.size() ? word[++i] : u'%';
    } else if (word[i] == u'%' || word[i] == u'_') {
      if (!pieces.back().empty()) pieces.emplace_back();
    } else {
      pieces.back() += word[i];
    }
  }
  if (pieces.back().empty()) pieces.pop_back();
  return pieces;
}

std::optional<std::u16string> MatchExpression(std::u16string_view word, Fields fields) {
  // SQLite's LIKE reads its pattern up to a NUL: nothing after one is looked for.
  word = word.substr(0, word.find(u'\0'));
  if (HasLoneSurrogate(word)) return std::nullopt;
  std::u16string phrases;
  std::size_t start = 0;
  for (std::size_t at = 0; at <= word.size(); ++at) {
    if (at < word.size() && word[at] != u'%' && word[at] != u'_') continue;
    if (at > start)
      phrases += (phrases.empty() ? u"" : u" AND ") + Quoted(word.substr(start, at - start));
    start = at + 1;
  }
  if (phrases.empty()) return std::nullopt;
  switch (fields) {
    case Fields::Title:
      return u"{title} : (" + phrases + u")";
    case Fields::Content:
      return u"{content} : (" + phrases + u")";
    case Fields::TitleOrContent:
      break;
  }
  return phrases;
}

std::optional<KeyTest> PairKeyTest(std::u16string_view word, Fields fields) {
  const std::vector<std::u16string> pieces = LiteralPieces(word);
  if (pieces.empty()) return std::nullopt;
  std::u16string keys;
  ado::Params params;
  for (const std::u16string& piece : pieces) {
    keys += (keys.empty() ? u"" : u" || ") + std::u16string(u"db_gram_piece(?)");
    params.push_back(Variant(piece));
  }
  KeyTest test;
  auto add = [&](std::u16string_view column) {
    test.sql += (test.sql.empty() ? u"db_gram_text(" : u" or db_gram_text(") +
                std::u16string(column) + u") @> (" + keys + u")";
    test.params.insert(test.params.end(), params.begin(), params.end());
  };
  if (fields != Fields::Content) add(u"title");
  if (fields != Fields::Title) add(u"content");
  return test;
}

Candidates PairCandidates(const KeyTest& keys, std::u16string_view like,
                          const ado::Params& likeParams) {
  // A waiting record's copy may hold an old text, or none, or one of a record since removed:
  // it is left out, and the record is tested as db holds it (the waiting ids are few, and read
  // whole, once per statement).
  Candidates c;
  c.indexed = u"from db_gram where (" + keys.sql + u") and " + std::u16string(like) +
              u" and id not in (select id from db_gram_pending)";
  c.waiting =
      u"from db where id = any (array(select id from db_gram_pending)) and " + std::u16string(like);
  c.params = keys.params;
  c.params.insert(c.params.end(), likeParams.begin(), likeParams.end());
  c.params.insert(c.params.end(), likeParams.begin(), likeParams.end());
  return c;
}

Condition ContainsWord(std::u16string_view word, Fields fields, RecordIndex index) {
  const Variant w{std::u16string(word)};
  Condition c;
  switch (fields) {
    case Fields::Title:
      c.where = u"where " + LikeTest(u"title");
      c.params = {w};
      break;
    case Fields::Content:
      c.where = u"where " + LikeTest(u"content");
      c.params = {w};
      break;
    case Fields::TitleOrContent:
      c.where = u"where (" + LikeTest(u"title") + u" or " + LikeTest(u"content") + u")";
      c.params = {w, w};
      break;
  }
  const std::u16string like = c.where.substr(6);
  const ado::Params likeParams = c.params;
  c.count = u"select count(*) as db_count from db " + c.where;
  c.countParams = c.params;
  if (index == RecordIndex::kPairs) {
    if (const std::optional<KeyTest> keys = PairKeyTest(word, fields)) ThroughPairs(c, *keys);
    return c;
  }
  if (index != RecordIndex::kTokens) return c;
  std::optional<std::u16string> match = MatchExpression(word, fields);
  if (!match) return c;
  // The records the index offers, and those still waiting to be taken into it (one sorted
  // list, so the newest rows come first without sorting the candidates).
  const Variant m(*match);
  c.where =
      u"where id in (select rowid from db_index where db_index match ? "
      u"union select id from db_index_pending) and " +
      like;
  c.params.insert(c.params.begin(), m);
  c.count = u"select count(*) as db_count from db " + c.where;
  c.countParams = c.params;
  if (word.find_first_of(u"%_") == std::u16string_view::npos) {
    // Without wildcards the index holds exactly the matching records that do not wait: they
    // are counted there without reading them, the waiting ones by the LIKE test.
    c.count =
        u"select (select count(*) from db_index where db_index match ? and rowid not in "
        u"(select id from db_index_pending)) + (select count(*) from db where id in "
        u"(select id from db_index_pending) and " +
        like + u") as db_count";
    c.countParams = likeParams;
    c.countParams.insert(c.countParams.begin(), m);
  }
  return c;
}

}  // namespace ostrakan::search
