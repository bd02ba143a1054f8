// What visitors search for, counted in table keyword: a new word is added with hot 1, a known
// word gets hot + 1. The count is atomic on any number of servers sharing the database: the
// word's row is changed in place, or inserted when there is none; an insert that loses a race
// to another (the unique index on keyword refuses it) changes the row the other one made.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/ado/connection.h"

namespace ostrakan::search {

// Adds one search of `word` to keyword.
void CountSearch(ado::Connection& conn, std::u16string_view word);

// Remembers which address searched which word when, so that one address counts a word at most
// once in a window (reloading a result page, paging through it). Holds at most `capacity`
// pairs; past that, the pairs older than the window are forgotten (and, should every pair be
// recent, all of them). Thread-safe.
class RepeatFilter {
 public:
  explicit RepeatFilter(double windowSeconds = 600, std::size_t capacity = 100000)
      : window_(windowSeconds), capacity_(capacity) {}
  // Whether `address` searching `word` at `now` (seconds) should count; notes it when it does.
  bool ShouldCount(std::u16string_view address, std::u16string_view word, double now);

 private:
  double window_;
  std::size_t capacity_;
  std::mutex mutex_;
  std::unordered_map<std::u16string, double> last_;
};

}  // namespace ostrakan::search
