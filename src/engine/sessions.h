// The store of Session objects by id.
//
// An id is 128 random bits from getrandom, as 32 hexadecimal characters, carried in a
// non-persistent cookie. A session that has been idle longer than its Timeout (minutes) is
// gone: Find no longer returns it, and a periodic sweep frees it. The store holds at most
// `capacity` sessions: clients that never send the cookie back (crawlers, load tests) would
// otherwise fill memory for the 20 minutes of the time-out; beyond it the sessions idle the
// longest are dropped first.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "frame/session.h"

namespace ostrakan::engine {

inline constexpr char kSessionCookieName[] = "OSTRAKANSESSION";

// 32 hexadecimal characters of fresh randomness.
std::string NewSessionId();

// The Set-Cookie value that hands a session id to the browser.
std::string SessionCookie(const std::string& id);

class SessionStore {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;
  explicit SessionStore(Clock clock = std::chrono::steady_clock::now, size_t capacity = 100000);

  // The live session with this id (its idle time restarts), or nullptr.
  std::shared_ptr<Session> Find(const std::string& id);
  // A new, empty session and its id.
  std::pair<std::string, std::shared_ptr<Session>> Create();
  // Moves the session under a new id (the old one stops working) and returns the new id;
  // "" when the old id is not live.
  std::string Rotate(const std::string& id);
  void Drop(const std::string& id);
  size_t size() const;

 private:
  struct Entry {
    std::shared_ptr<Session> session;
    std::chrono::steady_clock::time_point lastUsed;
  };
  bool Expired(const Entry& e, std::chrono::steady_clock::time_point now) const;
  void SweepIfDue(std::chrono::steady_clock::time_point now);  // caller holds mutex_
  void MakeRoom(std::chrono::steady_clock::time_point now);    // caller holds mutex_

  Clock clock_;
  size_t capacity_;
  mutable std::mutex mutex_;
  std::map<std::string, Entry> sessions_;
  std::chrono::steady_clock::time_point lastSweep_;
};

}  // namespace ostrakan::engine
