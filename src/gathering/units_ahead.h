// The units of a run fetched a few ahead of the one being cut and stored, on one thread kept
// for the whole run (a thread per unit costs about as much as storing a small page).
//
// Units are fetched one after the other and in order, so pacing and retries are as in a plain
// loop; they are cut in order by the thread that takes them, so an extractor's carried state
// is too. The fetch thread stays at most kUnitsAhead units ahead of the taker: a run that
// stops leaves at most that many units fetched and not stored (a resumed run fetches them
// again).
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

#include "gathering/headless_run.h"

namespace ostrakan::gathering {

// Enough to keep fetching while a commit or a slow page holds the taker, few enough that the
// fetched pages (up to the fetcher's size limit each) stay a small part of a run's memory.
constexpr size_t kUnitsAhead = 4;

class UnitsAhead {
 public:
  // Starts fetching `first`; `gather` must outlive this object.
  UnitsAhead(const GatherUnit& gather, long first, long last);
  // Waits for the unit being fetched, if any, and fetches no more.
  ~UnitsAhead();
  UnitsAhead(const UnitsAhead&) = delete;
  UnitsAhead& operator=(const UnitsAhead&) = delete;

  // The next unit's result, in order (first, first + 1, ... last), cut on the calling thread;
  // what fetching or cutting it threw is thrown here. Not to be called more than
  // last - first + 1 times.
  UnitResult Take();
  // Whether the next unit is fetched (or failed), or there is none; waits up to `wait` for it
  // to become so.
  bool ReadyWithin(std::chrono::microseconds wait);

 private:
  void Work();
  // One fetched unit, or what fetching it threw.
  struct Slot {
    FetchedUnit unit;
    std::exception_ptr failed;
  };

  const GatherUnit& gather_;
  const long last_;
  long next_;   // the unit the worker fetches next
  long taken_;  // the unit Take gives next
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stopping_ = false;
  std::deque<Slot> ready_;
  std::thread worker_;
};

}  // namespace ostrakan::gathering
