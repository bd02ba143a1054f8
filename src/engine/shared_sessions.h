// Sessions kept in a PostgreSQL site's database (table web_session), so that several servers
// of one site share them: signed in through one server, the administrator is signed in on
// all; a verify code drawn from one is checked by another; signing out anywhere signs out
// everywhere; sessions outlive a restart of any server.
//
// A page loads its session by id at the start and saves it at the end. Items that are text,
// numbers, dates, booleans, Empty or Null are kept; objects are not (no page keeps one in a
// session). A database that cannot be reached costs the request its session, never the page.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "frame/session.h"

namespace ostrakan::engine {

class SharedSessions {
 public:
  explicit SharedSessions(std::string uri) : uri_(std::move(uri)) {}
  // The live session with this id, or nullptr.
  std::shared_ptr<Session> Load(const std::string& id) const;
  // Stores the session under `id` (a new row or the row of that id) with its idle time
  // starting now.
  void Save(const std::string& id, const Session& session, bool signedIn) const;
  void Drop(const std::string& id) const;
  // Moves the row to a new id (the old one stops working); nullopt when `id` is not stored.
  std::optional<std::string> Rotate(const std::string& id) const;

  // A one-time item (the verify code) for this request only: the stored row loses it at once,
  // unless another request took it since the session was loaded, in which case the session
  // loses it here too. Several servers answering posts of one code let one of them use it.
  void Claim(const std::string& id, Session& session, std::u16string_view item) const;

  // Failed sign-ins from `address` within the last `minutes`, counted by every server.
  long FailedSignIns(const std::string& address, int minutes) const;
  // Records a failed sign-in, or forgets the address's failures after a success.
  void RecordSignIn(const std::string& address, bool failed) const;

  // The session's items as text, and back (unknown lines are skipped).
  static std::string Encode(const Session& session);
  static void Decode(const std::string& text, Session& session);

 private:
  std::string uri_;
};

}  // namespace ostrakan::engine
