#include "engine/sessions.h"

#include <sys/random.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <vector>

namespace ostrakan::engine {
namespace {

constexpr auto kSweepInterval = std::chrono::minutes(1);

}  // namespace

std::string NewSessionId() {
  unsigned char bytes[16];
  size_t got = 0;
  while (got < sizeof bytes) {
    ssize_t n = getrandom(bytes + got, sizeof bytes - got, 0);
    if (n < 0) {
      if (errno == EINTR) continue;
      throw std::runtime_error("getrandom failed");
    }
    got += static_cast<size_t>(n);
  }
  static constexpr char kHex[] = "0123456789abcdef";
  std::string id;
  for (unsigned char b : bytes) {
    id += kHex[b >> 4];
    id += kHex[b & 15];
  }
  return id;
}

std::string SessionCookie(const std::string& id) {
  return std::string(kSessionCookieName) + "=" + id + "; Path=/; HttpOnly; SameSite=Strict";
}

SessionStore::SessionStore(Clock clock, size_t capacity)
    : clock_(std::move(clock)), capacity_(std::max<size_t>(capacity, 1)), lastSweep_(clock_()) {}

bool SessionStore::Expired(const Entry& e, Time now) {
  return now - e.lastUsed > std::chrono::minutes(e.session->Timeout());
}

void SessionStore::SweepIfDue(Time now) {
  if (now - lastSweep_ < kSweepInterval) return;
  lastSweep_ = now;
  std::erase_if(sessions_, [&](const auto& kv) { return Expired(kv.second, now); });
}

bool SessionStore::MakeRoom(Time now) {
  if (sessions_.size() < capacity_) return true;
  std::erase_if(sessions_, [&](const auto& kv) { return Expired(kv.second, now); });
  lastSweep_ = now;
  if (sessions_.size() < capacity_) return true;
  // Drop a tenth of the capacity at once, the anonymous sessions idle longest (those with a
  // fresh verify code after all others), so that this scan runs once per many new sessions.
  std::vector<std::pair<std::pair<bool, Time>, std::string>> anonymous;
  for (const auto& [id, entry] : sessions_) {
    if (entry.signedIn) continue;
    bool freshCode = entry.codeDrawn && now - *entry.codeDrawn <= kFreshCode;
    anonymous.push_back({{freshCode, entry.lastUsed}, id});
  }
  if (anonymous.empty()) return false;
  size_t drop = std::min(anonymous.size(), std::max<size_t>(1, capacity_ / 10));
  std::nth_element(anonymous.begin(), anonymous.begin() + static_cast<ptrdiff_t>(drop - 1),
                   anonymous.end());
  for (size_t i = 0; i < drop; ++i) sessions_.erase(anonymous[i].second);
  return true;
}

std::shared_ptr<Session> SessionStore::Find(const std::string& id) {
  auto now = clock_();
  MutexLock lock(mutex_);
  SweepIfDue(now);
  auto it = sessions_.find(id);
  if (it == sessions_.end()) return nullptr;
  if (Expired(it->second, now)) {
    sessions_.erase(it);
    return nullptr;
  }
  it->second.lastUsed = now;
  return it->second.session;
}

std::optional<std::string> SessionStore::Add(std::shared_ptr<Session> session, bool signedIn) {
  auto now = clock_();
  std::string id = NewSessionId();
  MutexLock lock(mutex_);
  SweepIfDue(now);
  if (!MakeRoom(now) && !signedIn) return std::nullopt;
  sessions_[id] = Entry{std::move(session), now, signedIn, std::nullopt};
  return id;
}

void SessionStore::SetSignedIn(const std::string& id, bool signedIn) {
  MutexLock lock(mutex_);
  if (auto it = sessions_.find(id); it != sessions_.end()) it->second.signedIn = signedIn;
}

std::optional<std::string> SessionStore::Rotate(const std::string& id) {
  std::string fresh = NewSessionId();
  auto now = clock_();
  MutexLock lock(mutex_);
  auto it = sessions_.find(id);
  if (it == sessions_.end()) return std::nullopt;
  Entry entry = std::move(it->second);
  sessions_.erase(it);
  entry.lastUsed = now;
  sessions_[fresh] = std::move(entry);
  return fresh;
}

void SessionStore::CodeDrawn(const std::string& id) {
  auto now = clock_();
  MutexLock lock(mutex_);
  if (auto it = sessions_.find(id); it != sessions_.end()) it->second.codeDrawn = now;
}

void SessionStore::Drop(const std::string& id) {
  MutexLock lock(mutex_);
  sessions_.erase(id);
}

size_t SessionStore::size() const {
  MutexLock lock(mutex_);
  return sessions_.size();
}

}  // namespace ostrakan::engine
