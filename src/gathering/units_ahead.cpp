#include "gathering/units_ahead.h"

namespace ostrakan::gathering {

UnitsAhead::UnitsAhead(const GatherUnit& gather, long first, long last)
    : gather_(gather), last_(last), next_(first) {
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
      changed_.wait(lock, [&] { return wanted_ || stopping_; });
      if (stopping_) return;
      wanted_ = false;
      unit = next_++;
    }
    std::optional<UnitResult> result;
    std::exception_ptr failed;
    try {
      result = gather_(unit);
    } catch (...) {
      failed = std::current_exception();
    }
    {
      std::lock_guard lock(mutex_);
      ready_ = std::move(result);
      failed_ = failed;
    }
    changed_.notify_all();
    if (failed || unit >= last_) return;
  }
}

bool UnitsAhead::ReadyWithin(std::chrono::microseconds wait) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, wait, [&] {
    return ready_.has_value() || failed_ || !worker_.joinable() || (wanted_ && next_ > last_);
  });
}

UnitResult UnitsAhead::Take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return ready_.has_value() || failed_; });
  if (failed_) std::rethrow_exception(failed_);
  UnitResult result = std::move(*ready_);
  ready_.reset();
  wanted_ = true;
  lock.unlock();
  changed_.notify_all();
  return result;
}

}  // namespace ostrakan::gathering
