#include "gathering/units_ahead.h"

namespace ostrakan::gathering {

UnitsAhead::UnitsAhead(const GatherUnit& gather, long first, long last)
    : gather_(gather), last_(last), next_(first), taken_(first) {
  if (first <= last)
    worker_ = std::thread([this] { Work(); });
  else
    fetching_ = false;
}

UnitsAhead::~UnitsAhead() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  if (worker_.joinable()) worker_.join();
}

void UnitsAhead::CutNext(std::unique_lock<std::mutex>& lock) {
  // A slot keeps its place while it is cut: Take removes only slots already cut, and a deque's
  // elements stay put as others are added at the back or removed at the front.
  Slot& slot = slots_[cut_];
  if (!slot.failed) {
    cutting_ = true;
    lock.unlock();
    try {
      slot.result = gather_.CutStep(slot.fetched);
    } catch (...) {
      slot.failed = std::current_exception();
    }
    slot.fetched = FetchedUnit();
    lock.lock();
    cutting_ = false;
    // As in a plain loop, nothing is fetched or cut after a unit that threw.
    if (slot.failed) {
      fetching_ = false;
      broken_ = true;
    }
  }
  ++cut_;
  changed_.notify_all();
}

void UnitsAhead::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    const bool canFetch = fetching_ && slots_.size() < kUnitsAhead;
    if (stopping_ || (!fetching_ && !CanCut())) return;
    if (canFetch) {
      const long unit = next_++;
      lock.unlock();
      Slot slot;
      try {
        slot.fetched = gather_.FetchStep(unit);
      } catch (...) {
        slot.failed = std::current_exception();
      }
      lock.lock();
      if (slot.failed || unit >= last_) fetching_ = false;
      slots_.push_back(std::move(slot));
      changed_.notify_all();
    } else if (CanCut()) {
      CutNext(lock);
    } else {
      changed_.wait(lock);
    }
  }
}

bool UnitsAhead::ReadyWithin(std::chrono::microseconds wait) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, wait, [&] { return !slots_.empty() || taken_ > last_; });
}

UnitResult UnitsAhead::Take() {
  std::unique_lock lock(mutex_);
  for (;;) {
    if (cut_ > 0) break;
    if (CanCut())
      CutNext(lock);
    else
      changed_.wait(lock);
  }
  Slot slot = std::move(slots_.front());
  slots_.pop_front();
  --cut_;
  ++taken_;
  lock.unlock();
  changed_.notify_all();
  if (slot.failed) std::rethrow_exception(slot.failed);
  return std::move(*slot.result);
}

}  // namespace ostrakan::gathering
