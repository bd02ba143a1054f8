// The units of a run fetched a few ahead of the one being stored, on one thread kept for the
// whole run (a thread per unit costs about as much as storing a small page).
//
// Units are fetched one after the other and in order, so pacing and retries are as in a plain
// loop. They are cut in order, one at a time, by whichever thread is free: the fetch thread
// once it is kUnitsAhead units ahead (storing is the slower part: large pages), otherwise the
// thread that takes them (fetching is the slower part: small pages), so that an extractor's
// carried state is as in a plain loop. A run that stops leaves at most kUnitsAhead units
// fetched and not stored (a resumed run fetches them again).
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
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
  // Waits for the unit being fetched or cut, if any, and does no more.
  ~UnitsAhead();
  UnitsAhead(const UnitsAhead&) = delete;
  UnitsAhead& operator=(const UnitsAhead&) = delete;

  // The next unit's result, in order (first, first + 1, ... last); what fetching or cutting it
  // threw is thrown here. Not to be called more than last - first + 1 times.
  UnitResult Take();
  // Whether the next unit is fetched (or failed), or there is none; waits up to `wait` for it
  // to become so.
  bool ReadyWithin(std::chrono::microseconds wait);

 private:
  // One fetched unit; once cut, its result or what fetching or cutting it threw.
  struct Slot {
    FetchedUnit fetched;
    std::optional<UnitResult> result;
    std::exception_ptr failed;
  };
  void Work();
  // Cuts slots_[cut_] with `lock` released meanwhile; `lock` is held on entry and on return.
  void CutNext(std::unique_lock<std::mutex>& lock);
  bool CanCut() const { return cut_ < slots_.size() && !cutting_ && !broken_; }

  const GatherUnit& gather_;
  const long last_;
  long next_;   // the unit the worker fetches next
  long taken_;  // the unit Take gives next
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stopping_ = false;
  bool fetching_ = true;    // the worker has units left to fetch
  std::deque<Slot> slots_;  // fetched and not taken, in order; the first cut_ of them are cut
  size_t cut_ = 0;
  bool cutting_ = false;  // slots_[cut_] is being cut
  bool broken_ = false;   // a cut threw: the units after it stay uncut
  std::thread worker_;
};

}  // namespace ostrakan::gathering
