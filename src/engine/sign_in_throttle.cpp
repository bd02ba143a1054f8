#include "engine/sign_in_throttle.h"

#include <algorithm>
#include <utility>

namespace ostrakan::engine {

using std::chrono::milliseconds;

SignInThrottle::Ticket::Ticket(Ticket&& other) noexcept
    : owner_(std::exchange(other.owner_, nullptr)),
      address_(std::move(other.address_)),
      refused_(other.refused_),
      pause_(other.pause_) {}

SignInThrottle::Ticket::~Ticket() {
  if (owner_) owner_->Release(address_);
}

SignInThrottle::SignInThrottle(Clock clock) : clock_(std::move(clock)) {}

milliseconds SignInThrottle::PauseAfter(size_t failures) {
  if (failures < static_cast<size_t>(kFreeFailures)) return milliseconds(0);
  size_t doublings = std::min<size_t>(failures - kFreeFailures, 5);
  return std::min<milliseconds>(milliseconds(1000L << doublings), kMaxPause);
}

void SignInThrottle::Forget(Record_& r, Time now) {
  auto firstLive = std::find_if(r.failures.begin(), r.failures.end(),
                                [&](Time t) { return now - t <= kWindow; });
  r.failures.erase(r.failures.begin(), firstLive);
}

void SignInThrottle::Bound(Time now) {
  if (addresses_.size() < kMaxAddresses) return;
  for (auto& [address, r] : addresses_) Forget(r, now);
  std::erase_if(addresses_, [&](const auto& kv) {
    return kv.second.waiting == 0 && kv.second.failures.empty();
  });
  // Still full: many addresses failing at once. The ones not waiting lose their history.
  if (addresses_.size() >= kMaxAddresses)
    std::erase_if(addresses_, [](const auto& kv) { return kv.second.waiting == 0; });
}

SignInThrottle::Ticket SignInThrottle::Admit(const std::string& address) {
  Time now = clock_();
  Ticket ticket;
  MutexLock lock(mutex_);
  auto it = addresses_.find(address);
  if (it == addresses_.end()) return ticket;
  Record_& r = it->second;
  Forget(r, now);
  milliseconds pause = PauseAfter(r.failures.size());
  if (pause.count() == 0) return ticket;
  if (r.waiting >= kMaxWaitingPerAddress || waiting_ >= kMaxWaiting) {
    ticket.refused_ = true;
    return ticket;
  }
  Time start = std::max(now, r.nextStart);
  r.nextStart = start + pause;
  ++r.waiting;
  ++waiting_;
  ticket.owner_ = this;
  ticket.address_ = address;
  ticket.pause_ = std::chrono::duration_cast<milliseconds>(start - now);
  return ticket;
}

void SignInThrottle::Record(const std::string& address, bool failed) {
  Time now = clock_();
  MutexLock lock(mutex_);
  if (!failed) {
    auto it = addresses_.find(address);
    if (it != addresses_.end()) it->second.failures.clear();
    return;
  }
  Bound(now);
  Record_& r = addresses_[address];
  Forget(r, now);
  r.failures.push_back(now);
  r.nextStart = std::max(r.nextStart, now + PauseAfter(r.failures.size()));
}

void SignInThrottle::Observe(const std::string& address, size_t failures) {
  Time now = clock_();
  MutexLock lock(mutex_);
  Bound(now);
  Record_& r = addresses_[address];
  Forget(r, now);
  if (failures <= r.failures.size()) return;
  r.failures.insert(r.failures.begin(), failures - r.failures.size(), now);
  r.nextStart = std::max(r.nextStart, now + PauseAfter(r.failures.size()));
}

void SignInThrottle::Release(const std::string& address) {
  MutexLock lock(mutex_);
  --waiting_;
  if (auto it = addresses_.find(address); it != addresses_.end()) --it->second.waiting;
}

}  // namespace ostrakan::engine
