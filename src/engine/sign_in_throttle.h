// Slows down repeated failed sign-ins from one address.
//
// After kFreeFailures failures within kWindow, every further attempt from that address starts
// only a pause after the previous one: 1 s, then twice as long for each further failure, at
// most kMaxPause. The pause is served by the caller before the page runs (so the password is
// not even checked early), on a timer, never on a page thread. At most
// kMaxWaitingPerAddress attempts of one address, and kMaxWaiting in all, may be waiting; any
// more are refused at once, so pauses cannot tie up the server's threads. A successful
// sign-in forgets the address's failures.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "frame/thread_safety.h"

namespace ostrakan::engine {

class SignInThrottle {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;
  using Time = std::chrono::steady_clock::time_point;
  static constexpr int kFreeFailures = 5;
  static constexpr auto kWindow = std::chrono::minutes(15);
  static constexpr auto kMaxPause = std::chrono::seconds(30);
  static constexpr int kMaxWaitingPerAddress = 4;
  static constexpr int kMaxWaiting = 64;
  static constexpr size_t kMaxAddresses = 10000;

  // An admitted attempt: wait `pause`, then run the page. Destroying it ends the wait.
  class Ticket {
   public:
    Ticket() = default;
    Ticket(Ticket&& other) noexcept;
    Ticket& operator=(Ticket&&) = delete;
    ~Ticket();
    bool refused() const { return refused_; }
    std::chrono::milliseconds pause() const { return pause_; }

   private:
    friend class SignInThrottle;
    SignInThrottle* owner_ = nullptr;  // set while the ticket counts as waiting
    std::string address_;
    bool refused_ = false;
    std::chrono::milliseconds pause_{0};
  };

  explicit SignInThrottle(Clock clock = std::chrono::steady_clock::now);

  Ticket Admit(const std::string& address) EXCLUDES(mutex_);
  // The outcome of an attempt: `failed` false when it signed in.
  void Record(const std::string& address, bool failed) EXCLUDES(mutex_);
  // What the other servers of the site saw: `failures` within kWindow in all. When that is
  // more than this server counted, the address's next attempt pauses as if it had seen them.
  void Observe(const std::string& address, size_t failures) EXCLUDES(mutex_);

 private:
  struct Record_ {
    std::vector<Time> failures;  // within kWindow, oldest first
    Time nextStart{};
    int waiting = 0;
  };
  static std::chrono::milliseconds PauseAfter(size_t failures);
  void Forget(Record_& r, Time now) REQUIRES(mutex_);
  void Release(const std::string& address) EXCLUDES(mutex_);
  void Bound(Time now) REQUIRES(mutex_);

  Clock clock_;
  Mutex mutex_;
  std::map<std::string, Record_> addresses_ GUARDED_BY(mutex_);
  int waiting_ GUARDED_BY(mutex_) = 0;
};

}  // namespace ostrakan::engine
