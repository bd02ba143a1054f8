#include "platform/clock.h"

#include <atomic>
#include <cmath>
#include <ctime>

#include "core/variant.h"

namespace ostrakan {

namespace {
const SystemClock kSystem;
std::atomic<const Clock*> installed{&kSystem};
}  // namespace

double SystemClock::Now() const {
  time_t t = time(nullptr);
  struct tm lt;
  localtime_r(&t, &lt);
  return MakeDate(lt.tm_year + 1900, lt.tm_mon + 1, lt.tm_mday, lt.tm_hour, lt.tm_min, lt.tm_sec);
}

double SystemClock::Timer() const {
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  struct tm lt;
  localtime_r(&ts.tv_sec, &lt);
  return lt.tm_hour * 3600.0 + lt.tm_min * 60.0 + lt.tm_sec + ts.tv_nsec / 1e9;
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
