// The page engine: answers one HTTP request for a site. It resolves the path, serves static
// files, and runs page files with the five intrinsic objects of the request (Request,
// Response, Session, Application, Server) published for the thread.
//
// Sessions: a request without a live session cookie gets a new session and its cookie. When
// the Session item named by the setting Admin_Session goes from empty to non-empty during a
// page (an administrator signed in), the session moves to a new id and the new cookie is
// sent, so an id known before sign-in is worth nothing after it. Session.Abandon drops the
// session after the page.
#pragma once

#include <filesystem>
#include <memory>

#include "engine/assignment_file.h"
#include "engine/file_cache.h"
#include "engine/http_exchange.h"
#include "engine/page_file.h"
#include "engine/page_runner.h"
#include "engine/sessions.h"
#include "engine/site_setup.h"
#include "frame/session.h"

namespace ostrakan {
class ObjectFactory;
}

namespace ostrakan::engine {

class PageEngine {
 public:
  // `siteRoot` must exist. `factory` backs Server.CreateObject.
  PageEngine(const std::filesystem::path& siteRoot, ComponentCreator create,
             const ObjectFactory& factory);

  HttpResponse Handle(const HttpRequest& request);

 private:
  HttpResponse RunPageFile(const HttpRequest& request, const std::filesystem::path& file,
                           const std::string& virtualPath);
  std::vector<Variant> RuleFields(const PageFile& page, const std::filesystem::path& file,
                                  const Request& request);

  std::filesystem::path root_;
  ComponentCreator create_;
  const ObjectFactory& factory_;
  SessionStore sessions_;
  std::shared_ptr<Application> application_ = std::make_shared<Application>();
  FileCache<SiteSetup> setup_;
  FileCache<PageFile> pages_;
  FileCache<std::vector<CaseArm>> rules_;
};

}  // namespace ostrakan::engine
