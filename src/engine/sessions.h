// The store of Session objects by id.
//
// An id is 128 random bits from getrandom, as 32 hexadecimal characters, carried in an
// HttpOnly, SameSite=Strict, non-persistent cookie. The engine stores a session only once a
// page has put a value in it, so requests that never keep anything (the MD5 page, static
// files, crawlers) cost the store nothing. A session idle longer than its Timeout (minutes)
// is gone: Find no longer returns it, and a periodic sweep frees it.
//
// The store holds at most `capacity` sessions. To make room it drops expired sessions, then
// the anonymous ones idle the longest, those that drew a verify code within kFreshCode last
// (someone is about to sign in with it); a signed-in session is never dropped to make room for
// an anonymous one. When every stored session is signed in, a new anonymous session is not
// stored at all.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "frame/session.h"
#include "frame/thread_safety.h"

namespace ostrakan::engine {

inline constexpr char kSessionCookieName[] = "OSTRAKANSESSION";

// 32 hexadecimal characters of fresh randomness.
std::string NewSessionId();

// The Set-Cookie value that hands a session id to the browser.
std::string SessionCookie(const std::string& id);

class SessionStore {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;
  static constexpr size_t kDefaultCapacity = 50000;
  static constexpr auto kFreshCode = std::chrono::minutes(5);
  explicit SessionStore(Clock clock = std::chrono::steady_clock::now,
                        size_t capacity = kDefaultCapacity);

  // The live session with this id (its idle time restarts), or nullptr.
  std::shared_ptr<Session> Find(const std::string& id) EXCLUDES(mutex_);
  // Stores a session under a new id and returns the id; nullopt when there is no room for it.
  std::optional<std::string> Add(std::shared_ptr<Session> session, bool signedIn) EXCLUDES(mutex_);
  // Records whether the session is signed in (which protects it from eviction).
  void SetSignedIn(const std::string& id, bool signedIn) EXCLUDES(mutex_);
  // Moves the session under a new id (the old one stops working) and returns the new id;
  // nullopt when the old id is not live.
  std::optional<std::string> Rotate(const std::string& id) EXCLUDES(mutex_);
  // Records that the session has just drawn a verify code.
  void CodeDrawn(const std::string& id) EXCLUDES(mutex_);
  void Drop(const std::string& id) EXCLUDES(mutex_);
  size_t size() const EXCLUDES(mutex_);

 private:
  struct Entry {
    std::shared_ptr<Session> session;
    std::chrono::steady_clock::time_point lastUsed;
    bool signedIn = false;
    std::optional<std::chrono::steady_clock::time_point> codeDrawn;
  };
  using Time = std::chrono::steady_clock::time_point;
  static bool Expired(const Entry& e, Time now);
  void SweepIfDue(Time now) REQUIRES(mutex_);
  // Frees room for one more anonymous session; false when only signed-in sessions are left.
  bool MakeRoom(Time now) REQUIRES(mutex_);

  Clock clock_;
  size_t capacity_;
  mutable Mutex mutex_;
  std::map<std::string, Entry> sessions_ GUARDED_BY(mutex_);
  Time lastSweep_ GUARDED_BY(mutex_);
};

}  // namespace ostrakan::engine
