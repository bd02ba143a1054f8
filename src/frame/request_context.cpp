#include "frame/request_context.h"

#include "core/script_error.h"

namespace ostrakan {

namespace {
thread_local const RequestContext* objectContext = nullptr;
thread_local RequestContext attached;

template <class T>
T& Require(const std::shared_ptr<T>& p) {
  if (!p) throw ObjectRequired();
  return *p;
}
}  // namespace

ScopedObjectContext::ScopedObjectContext(const RequestContext& objects) : previous_(objectContext) {
  objectContext = &objects;
}

ScopedObjectContext::~ScopedObjectContext() {
  objectContext = previous_;
}

void AttachRequestContext() {
  attached = objectContext ? *objectContext : RequestContext{};
}

void DetachRequestContext() {
  attached.application.reset();
  attached.server.reset();
  attached.session.reset();
  attached.request.reset();
  attached.response.reset();
}

const RequestContext& CurrentContext() {
  return attached;
}
Request& CurrentRequest() {
  return Require(attached.request);
}
Response& CurrentResponse() {
  return Require(attached.response);
}
Session& CurrentSession() {
  return Require(attached.session);
}
Server& CurrentServer() {
  return Require(attached.server);
}
Application& CurrentApplication() {
  return Require(attached.application);
}

void EndResponse() {
  CurrentResponse().End();
  throw ResponseEnded{};
}

}  // namespace ostrakan
