// The clock, reached through one seam so that tests can fix the time (in the manner of
// LevelDB's Env). Every date the system reads comes from it: the page timer, the "now" of
// statements, the cache headers, the error log's lines, and the times it stores (a record's
// time, a sign-in's, a gathering run's start and end).
//
// Times are local OLE dates (days since 1899-12-30, the fraction being the time of day), as
// every date of the system is; Timer is seconds since local midnight, with fractions.
#pragma once

namespace ostrakan {

class Clock {
 public:
  virtual ~Clock() = default;
  virtual double Now() const = 0;
  virtual double Timer() const = 0;
};

// The system's clock.
class SystemClock final : public Clock {
 public:
  double Now() const override;
  double Timer() const override;
};

// A clock that stands still at the time it is set to, and moves only when told.
class TestClock final : public Clock {
 public:
  explicit TestClock(double oleDate) : now_(oleDate) {}
  void Set(double oleDate) { now_ = oleDate; }
  void Advance(double seconds) { now_ += seconds / 86400.0; }
  double Now() const override { return now_; }
  double Timer() const override;

 private:
  double now_;
};

// The process's clock: the system clock unless a ScopedClock installed another.
const Clock& CurrentClock();

// Installs `clock` as the process's clock for the scope (tests; not while pages run).
class ScopedClock {
 public:
  explicit ScopedClock(const Clock& clock);
  ScopedClock(const ScopedClock&) = delete;
  ScopedClock& operator=(const ScopedClock&) = delete;
  ~ScopedClock();

 private:
  const Clock* previous_;
};

}  // namespace ostrakan
