#include "platform/clock.h"

#include <atomic>
#include <cmath>

#include "core/variant.h"

namespace ostrakan {

namespace {
const SystemClock kSystem;
std::atomic<const Clock*> installed{&kSystem};
}  // namespace

double SystemClock::Now() const {
  return ostrakan::Now();
}

double SystemClock::Timer() const {
  return ostrakan::Timer();
}

double TestClock::Timer() const {
  return (now_ - std::floor(now_)) * 86400.0;
}

const Clock& CurrentClock() {
  return *installed.load();
}

ScopedClock::ScopedClock(const Clock& clock) : previous_(installed.exchange(&clock)) {}

ScopedClock::~ScopedClock() {
  installed.store(previous_);
}

}  // namespace ostrakan
