// The request context of a thread: the five intrinsic objects of the request being served.
//
// The page engine (or a test) publishes the current request's objects as the thread's object
// context for the duration of the request (ScopedObjectContext). A page component, when
// constructed, attaches: it copies the object context into the thread's request context;
// when destroyed it detaches, clearing the request context for every component on the thread.
// Without an object context, attaching leaves the request context empty.
#pragma once

#include <memory>

#include "frame/request.h"
#include "frame/response.h"
#include "frame/server.h"
#include "frame/session.h"

namespace ostrakan {

struct RequestContext {
  std::shared_ptr<Application> application;
  std::shared_ptr<Server> server;
  std::shared_ptr<Session> session;
  std::shared_ptr<Request> request;
  std::shared_ptr<Response> response;
};

// Publishes `objects` as the thread's object context until destroyed.
class ScopedObjectContext {
 public:
  explicit ScopedObjectContext(const RequestContext& objects);
  ~ScopedObjectContext();
  ScopedObjectContext(const ScopedObjectContext&) = delete;
  ScopedObjectContext& operator=(const ScopedObjectContext&) = delete;

 private:
  const RequestContext* previous_;
};

void AttachRequestContext();
void DetachRequestContext();
// The attached context of this thread (all members null when none is attached).
const RequestContext& CurrentContext();

// The intrinsic objects of the attached context; each raises "Object required" when absent.
Request& CurrentRequest();
Response& CurrentResponse();
Session& CurrentSession();
Server& CurrentServer();
Application& CurrentApplication();

// Ends the page: Response.End, then ResponseEnded, which every block passes on.
[[noreturn]] void EndResponse();

}  // namespace ostrakan
