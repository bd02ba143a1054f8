// The page engine: answers one HTTP request for a site. It resolves the path, serves static
// files, and runs page files with the five intrinsic objects of the request (Request,
// Response, Session, Application, Server) published for the thread.
//
// Sessions: a request without a live session cookie runs with a new, empty session, which is
// stored (and its cookie sent) only when the page put a value in it. When the Session item
// named by the setting Admin_Session goes from empty to non-empty during a page (an
// administrator signed in), the session moves to a new id and the new cookie is sent, so an id
// known before sign-in is worth nothing after it. Session.Abandon drops the session after the
// page. An Application lock that the page still holds when it ends is released.
//
// Action pages (see cross_site.h) refuse requests that another site sent. Posts to the
// sign-in page pass through a SignInThrottle (views of it do not): the server asks AdmitSignIn
// before it runs the page and serves the pause on a timer, and a post that does not sign in
// counts as a failure. A session that draws a verify code (admin/inc/code.asp) is kept from
// eviction while the code is fresh (SessionStore::CodeDrawn).
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>

#include "engine/assignment_file.h"
#include "engine/file_cache.h"
#include "engine/http_exchange.h"
#include "engine/page_file.h"
#include "engine/page_runner.h"
#include "engine/path_safety.h"
#include "engine/sessions.h"
#include "engine/shared_sessions.h"
#include "engine/sign_in_throttle.h"
#include "engine/site_setup.h"
#include "frame/session.h"

namespace ostrakan {
class ObjectFactory;
}

namespace ostrakan::engine {

class PageEngine {
 public:
  // How long a look at a page file, Setup.asp or a request path's file stands: one changed
  // from outside the server (an editor, a deployment) is seen this long after at most; what the
  // server writes itself (rule files, generated pages) is seen at once. Rule files are looked
  // at on every request: other processes write them too (ostrakan rules).
  static constexpr std::chrono::milliseconds kFileRecheck{100};

  // `siteRoot` must exist. `factory` backs Server.CreateObject.
  PageEngine(const std::filesystem::path& siteRoot, ComponentCreator create,
             const ObjectFactory& factory, size_t sessionCapacity = SessionStore::kDefaultCapacity);

  HttpResponse Handle(const HttpRequest& request);

  // The answer to everything but a page to run (static files, redirects, refusals), which
  // needs no large stack; nullopt for a page, with `page` set for ServePage.
  std::optional<HttpResponse> AnswerWithoutPage(const HttpRequest& request, ResolvedPath& page);
  // Runs the page that AnswerWithoutPage left; needs a thread with a full-size stack.
  HttpResponse ServePage(const HttpRequest& request, const ResolvedPath& page);

  // Whether `request` is a post to the sign-in page of a site whose servers count failures
  // together (on PostgreSQL): then ReadSharedSignIns must run first, on a page thread.
  bool SharesSignIns(const HttpRequest& request);
  // Reads the failures that every server of the site counted for the request's address into
  // the throttle. Queries the database: never on an I/O thread.
  void ReadSharedSignIns(const HttpRequest& request);
  // For a post to the sign-in page, the throttle's ticket for its address (an empty ticket
  // for any other request). Memory only.
  SignInThrottle::Ticket AdmitSignIn(const HttpRequest& request);

 private:
  // The site's shared sign-in state for a post to the sign-in page, or null.
  const SharedSessions* SharedSignIns(const HttpRequest& request);
  HttpResponse RunPageFile(const HttpRequest& request, const std::filesystem::path& file,
                           const std::string& virtualPath);
  std::vector<Variant> RuleFields(const PageFile& page, const std::filesystem::path& file,
                                  const Request& request);
  // The database's session store when the site is on PostgreSQL, else nullptr.
  const SharedSessions* SharedSessionsOf(const SiteSetup& setup);
  // Saves, moves (at sign-in) or drops the page's session in the database.
  static void KeepSharedSession(const SharedSessions& shared, const std::string& id,
                                const Session& session, bool signedInBefore, bool signedIn,
                                HttpResponse& out);

  std::filesystem::path root_;
  PathResolver paths_;
  ComponentCreator create_;
  const ObjectFactory& factory_;
  SessionStore sessions_;
  std::once_flag sharedChecked_;
  std::unique_ptr<SharedSessions> shared_;
  SignInThrottle signIns_;
  std::shared_ptr<Application> application_ = std::make_shared<Application>();
  FileCache<SiteSetup> setup_;
  FileCache<PageFile> pages_;
  FileCache<std::vector<CaseArm>> rules_;
};

}  // namespace ostrakan::engine
