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
  return std::string(kSessionCookieName) + "=" + id + "; Path=/; HttpOnly; SameSite=Lax";
}

SessionStore::SessionStore(Clock clock, size_t capacity)
    : clock_(std::move(clock)), capacity_(std::max<size_t>(capacity, 1)), lastSweep_(clock_()) {}

bool SessionStore::Expired(const Entry& e, std::chrono::steady_clock::time_point now) const {
  return now - e.lastUsed > std::chrono::minutes(e.session->Timeout);
}

void SessionStore::SweepIfDue(std::chrono::steady_clock::time_point now) {
  if (now - lastSweep_ < kSweepInterval) return;
  lastSweep_ = now;
  std::erase_if(sessions_, [&](const auto& kv) { return Expired(kv.second, now); });
}

void SessionStore::MakeRoom(std::chrono::steady_clock::time_point now) {
  if (sessions_.size() < capacity_) return;
  std::erase_if(sessions_, [&](const auto& kv) { return Expired(kv.second, now); });
  lastSweep_ = now;
  if (sessions_.size() < capacity_) return;
  // Drop the tenth that has been idle longest, so that this runs once per many new sessions.
  std::vector<std::pair<std::chrono::steady_clock::time_point, std::string>> byAge;
  byAge.reserve(sessions_.size());
  for (const auto& [id, entry] : sessions_) byAge.emplace_back(entry.lastUsed, id);
  size_t drop = std::max<size_t>(1, sessions_.size() - capacity_ + capacity_ / 10);
  drop = std::min(drop, byAge.size());
  std::nth_element(byAge.begin(), byAge.begin() + static_cast<ptrdiff_t>(drop - 1), byAge.end());
  for (size_t i = 0; i < drop; ++i) sessions_.erase(byAge[i].second);
}

std::shared_ptr<Session> SessionStore::Find(const std::string& id) {
  auto now = clock_();
  std::lock_guard lock(mutex_);
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

std::pair<std::string, std::shared_ptr<Session>> SessionStore::Create() {
  auto now = clock_();
  auto session = std::make_shared<Session>();
  std::string id = NewSessionId();
  std::lock_guard lock(mutex_);
  SweepIfDue(now);
  MakeRoom(now);
  sessions_[id] = Entry{session, now};
  return {id, session};
}

std::string SessionStore::Rotate(const std::string& id) {
  std::string fresh = NewSessionId();
  std::lock_guard lock(mutex_);
  auto it = sessions_.find(id);
  if (it == sessions_.end()) return "";
  Entry entry = std::move(it->second);
  sessions_.erase(it);
  entry.lastUsed = clock_();
  sessions_[fresh] = std::move(entry);
  return fresh;
}

void SessionStore::Drop(const std::string& id) {
  std::lock_guard lock(mutex_);
  sessions_.erase(id);
}

size_t SessionStore::size() const {
  std::lock_guard lock(mutex_);
  return sessions_.size();
}

}  // namespace ostrakan::engine
