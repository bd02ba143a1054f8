// The units of a run gathered one ahead of the one being stored, on one thread kept for the
// whole run (a thread per unit costs about as much as storing a small page).
//
// Units are still gathered one after the other and in order, and the next one is started only
// once the last has been taken, so pacing, retries and an extractor's carried state are as in
// a plain loop: at any moment at most one unit is fetched that has not been stored.
#pragma once

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "gathering/headless_run.h"

namespace ostrakan::gathering {

class UnitsAhead {
 public:
  // Starts gathering `first`; `gather` must outlive this object.
  UnitsAhead(const GatherUnit& gather, long first, long last);
  // Waits for the unit being gathered, if any, and gathers no more.
  ~UnitsAhead();
  UnitsAhead(const UnitsAhead&) = delete;
  UnitsAhead& operator=(const UnitsAhead&) = delete;

  // The next unit's result, in order (first, first + 1, ... last), and the unit after it
  // started; what gathering it threw is thrown here. Not to be called more than
  // last - first + 1 times.
  UnitResult Take();
  // Whether Take would answer at once: the next unit is gathered (or failed), or there is none;
  // waits up to `wait` for it to become so.
  bool ReadyWithin(std::chrono::microseconds wait);

 private:
  void Work();

  const GatherUnit& gather_;
  const long last_;
  long next_;  // the unit the worker gathers next
  std::mutex mutex_;
  std::condition_variable changed_;
  bool wanted_ = true;  // the worker may gather next_
  bool stopping_ = false;
  std::optional<UnitResult> ready_;
  std::exception_ptr failed_;
  std::thread worker_;
};

}  // namespace ostrakan::gathering
