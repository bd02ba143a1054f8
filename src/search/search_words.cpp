#include "search/search_words.h"

#include "platform/ado/database_error.h"
#include "platform/ado/recordset.h"

namespace ostrakan::search {

namespace {

bool AddOne(ado::Connection& conn, const Variant& word) {
  conn.Execute(u"update keyword set hot = hot + 1 where keyword = ?", {word});
  return conn.recordsAffected() > 0;
}

}  // namespace

void CountSearch(ado::Connection& conn, std::u16string_view word) {
  const Variant w{std::u16string(word)};
  if (AddOne(conn, w)) return;
  try {
    conn.Execute(u"insert into keyword (keyword, hot) values (?, 1)", {w});
  } catch (const ado::DatabaseError&) {
    // Another search inserted the word between the two statements: count on its row. Any
    // other failure fails that update too, and is reported from there.
    if (!AddOne(conn, w)) throw;
  }
}

bool RepeatFilter::ShouldCount(std::u16string_view address, std::u16string_view word, double now) {
  std::u16string key(address);
  key += u'\n';
  key += word;
  std::lock_guard lock(mutex_);
  auto found = last_.find(key);
  if (found != last_.end() && now - found->second < window_) return false;
  if (found == last_.end() && last_.size() >= capacity_) {
    std::erase_if(last_, [&](const auto& entry) { return now - entry.second >= window_; });
    if (last_.size() >= capacity_) last_.clear();
  }
  last_[std::move(key)] = now;
  return true;
}

}  // namespace ostrakan::search
