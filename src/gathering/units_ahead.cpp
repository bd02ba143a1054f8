#include "gathering/units_ahead.h"

namespace ostrakan::gathering {

UnitsAhead::UnitsAhead(const GatherUnit& gather, long first, long last)
    : gather_(gather), last_(last), next_(first), taken_(first) {
  if (first <= last) worker_ = std::thread([this] { Work(); });
}

UnitsAhead::~UnitsAhead() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  if (worker_.joinable()) worker_.join();
}

void UnitsAhead::Work() {
  for (;;) {
    long unit;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return ready_.size() < kUnitsAhead || stopping_; });
      if (stopping_) return;
      unit = next_++;
    }
    Slot slot;
    try {
      slot.unit = gather_.FetchStep(unit);
    } catch (...) {
      slot.failed = std::current_exception();
    }
    const bool end = slot.failed || unit >= last_;
    {
      std::lock_guard lock(mutex_);
      ready_.push_back(std::move(slot));
    }
    changed_.notify_all();
    if (end) return;
  }
}

bool UnitsAhead::ReadyWithin(std::chrono::microseconds wait) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, wait, [&] { return !ready_.empty() || taken_ > last_; });
}

UnitResult UnitsAhead::Take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return !ready_.empty(); });
  Slot slot = std::move(ready_.front());
  ready_.pop_front();
  ++taken_;
  lock.unlock();
  changed_.notify_all();
  if (slot.failed) std::rethrow_exception(slot.failed);
  return gather_.CutStep(slot.unit);
}

}  // namespace ostrakan::gathering
