#include "engine/page_engine.h"

#include <cstdio>

#include "engine/cross_site.h"
#include "engine/multipart_form.h"
#include "engine/path_safety.h"
#include "engine/request_builder.h"
#include "engine/static_files.h"
#include "engine/url_decoding.h"
#include "frame/error_log.h"
#include "frame/request_context.h"
#include "platform/ado/pg_backend.h"
#include "platform/object_factory.h"
#include "platform/text/codepage.h"

namespace ostrakan::engine {
namespace {

// The guard's test: a value that is neither empty, Null nor the empty text.
bool IsSet(const Variant& v) {
  if (v.IsEmpty() || v.IsNull()) return false;
  return !v.IsString() || !v.str().empty();
}

bool MethodIs(const HttpRequest& r, std::initializer_list<std::string_view> methods) {
  for (std::string_view m : methods)
    if (r.method == m) return true;
  return false;
}

HttpResponse MethodNotAllowed(const char* allowed) {
  HttpResponse r = HttpResponse::Plain(405, "405 Method Not Allowed");
  r.headers.emplace_back("Allow", allowed);
  return r;
}

template <typename Find>
std::string SessionIdOf(const HttpRequest& request, Find&& find,
                        std::shared_ptr<Session>& session) {
  for (const auto& [name, value] : request.headers) {
    if (name.size() != 6 || !IEquals(FromUtf8(name), u"cookie")) continue;
    KeyedValues cookies;
    AddCookies(value, text::kUtf8CodePage, cookies);
    for (const std::u16string& id : cookies.All(FromUtf8(kSessionCookieName))) {
      std::string candidate = ToUtf8(id);
      if ((session = find(candidate))) return candidate;
    }
  }
  return "";
}

bool IsSignInPage(std::string_view path) {
  std::string name(path.substr(path.rfind('/') + 1));
  for (char& c : name)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return name == "login.asp";
}

bool IsVerifyPicture(std::string_view path) {
  return path.size() >= 9 && IEquals(FromUtf8(path.substr(path.size() - 9)), u"/code.asp");
}

// A post of the sign-in form: only these count towards the throttle (a view of the page
// costs nothing, so reloads behind a shared address cannot lock anybody out).
bool IsSignInAttempt(const HttpRequest& request) {
  return request.method == "POST" && IsSignInPage(request.path);
}

// Reports a failed page in the error log and on the standard error stream.
void Report(const std::string& text) {
  LogComponentError(FromUtf8(text));
  std::fprintf(stderr, "ostrakan: %s\n", text.c_str());
}

}  // namespace

PageEngine::PageEngine(const std::filesystem::path& siteRoot, ComponentCreator create,
                       const ObjectFactory& factory, size_t sessionCapacity)
    : root_(std::filesystem::canonical(siteRoot)),
      paths_(root_, kFileRecheck),
      create_(std::move(create)),
      factory_(factory),
      sessions_(std::chrono::steady_clock::now, sessionCapacity),
      setup_([](const std::string& bytes) { return SiteSetup::FromBytes(bytes); }, kFileRecheck),
      pages_(
          [](const std::string& bytes) {
            return ParsePageFile(text::Decode(bytes, text::kAnsiCodePage));
          },
          kFileRecheck),
      rules_([](const std::string& bytes) {
        return ParseCaseArms(text::Decode(bytes, text::kAnsiCodePage));
      }) {}

HttpResponse PageEngine::Handle(const HttpRequest& request) {
  ResolvedPath page;
  if (auto answer = AnswerWithoutPage(request, page)) return std::move(*answer);
  return ServePage(request, page);
}

std::optional<HttpResponse> PageEngine::AnswerWithoutPage(const HttpRequest& request,
                                                          ResolvedPath& resolved) {
  resolved = paths_.Resolve(request.path);
  switch (resolved.kind) {
    case ResolvedPath::Kind::Forbidden:
      return HttpResponse::Plain(403, "403 Forbidden");
    case ResolvedPath::Kind::NotFound:
      return HttpResponse::Plain(404, "404 Not Found");
    case ResolvedPath::Kind::AddSlash: {
      HttpResponse r = HttpResponse::Plain(301, "301 Moved Permanently");
      std::string location = resolved.virtualPath;
      if (!request.queryString.empty()) location += "?" + request.queryString;
      r.headers.emplace_back("Location", location);
      return r;
    }
    case ResolvedPath::Kind::StaticFile:
      if (!MethodIs(request, {"GET", "HEAD"})) return MethodNotAllowed("GET, HEAD");
      return ServeStaticFile(resolved.file, request);
    case ResolvedPath::Kind::Page:
      if (!MethodIs(request, {"GET", "HEAD", "POST"})) return MethodNotAllowed("GET, HEAD, POST");
      if (IsActionPage(resolved.virtualPath, request.queryString) && NamesAnotherSite(request))
        return CrossSiteRefusal();
      return std::nullopt;
  }
  return HttpResponse::Plain(500, "500 Internal Server Error");
}

HttpResponse PageEngine::ServePage(const HttpRequest& request, const ResolvedPath& page) {
  return RunPageFile(request, page.file, page.virtualPath);
}

const SharedSessions* PageEngine::SharedSignIns(const HttpRequest& request) {
  if (!IsSignInAttempt(request)) return nullptr;
  if (auto setup = setup_.Get(root_ / kSetupFileName)) return SharedSessionsOf(**setup);
  return nullptr;
}

bool PageEngine::SharesSignIns(const HttpRequest& request) {
  return SharedSignIns(request) != nullptr;
}

void PageEngine::ReadSharedSignIns(const HttpRequest& request) {
  try {
    if (const SharedSessions* shared = SharedSignIns(request))
      signIns_.Observe(request.remoteAddr,
                       static_cast<size_t>(shared->FailedSignIns(
                           request.remoteAddr, static_cast<int>(SignInThrottle::kWindow.count()))));
  } catch (const std::exception& e) {
    Report("the sign-in failures could not be read: " + std::string(e.what()));
  }
}

SignInThrottle::Ticket PageEngine::AdmitSignIn(const HttpRequest& request) {
  if (!IsSignInAttempt(request)) return {};
  return signIns_.Admit(request.remoteAddr);
}

std::vector<Variant> PageEngine::RuleFields(const PageFile& page, const std::filesystem::path& file,
                                            const Request& request) {
  if (page.rule.empty()) return {};
  const std::optional<Cached<std::vector<CaseArm>>> arms =
      rules_.Get(file.parent_path() / std::filesystem::path(page.rule));
  if (!arms) return {};
  const CaseArm* arm = FindCaseArm(**arms, TextOf(request.Item(u"id")));
  std::vector<Variant> fields;
  if (arm)
    for (const Assignment& a : arm->values) fields.emplace_back(a.value);
  return fields;
}

HttpResponse PageEngine::RunPageFile(const HttpRequest& http, const std::filesystem::path& file,
                                     const std::string& virtualPath) {
  std::optional<Cached<SiteSetup>> setup;
  std::optional<Cached<PageFile>> page;
  try {
    setup = setup_.Get(root_ / kSetupFileName);
    if (!setup) return HttpResponse::Plain(500, "500 Internal Server Error\nSetup.asp is missing");
    page = pages_.Get(file);
    if (!page) return HttpResponse::Plain(404, "404 Not Found");
  } catch (const SiteSetupError& e) {
    return HttpResponse::Plain(500, std::string("500 Internal Server Error\n") + e.what());
  } catch (const PageSyntaxError& e) {
    std::string text = virtualPath + ", " + e.what();
    Report(text);
    return HttpResponse::Plain(500, "500 Internal Server Error\n" + text);
  }
  const SiteSetup& siteSetup = **setup;
  const PageFile& pageFile = **page;

  // A site on PostgreSQL keeps its sessions in the database, shared by all its servers.
  const SharedSessions* shared = SharedSessionsOf(siteSetup);
  std::shared_ptr<Session> session;
  std::string sessionId = SessionIdOf(
      http,
      [&](const std::string& id) -> std::shared_ptr<Session> {
        if (!shared) return sessions_.Find(id);
        try {
          return shared->Load(id);
        } catch (const std::exception& e) {
          Report("the session could not be read: " + std::string(e.what()));
          return nullptr;
        }
      },
      session);
  const bool stored = session != nullptr;
  if (!stored) session = std::make_shared<Session>();
  if (shared && stored && IsSignInAttempt(http)) {
    try {
      shared->Claim(sessionId, *session, u"verifyid");
    } catch (const std::exception& e) {
      session->Remove(u"verifyid");  // a code that cannot be claimed is not used
      Report("the session could not be read: " + std::string(e.what()));
    }
  }
  const int codePage = session->CodePage();

  RequestContext context;
  context.application = application_;
  context.session = session;
  try {
    context.request = BuildRequest(http, virtualPath, codePage);
  } catch (const MultipartError& e) {
    return HttpResponse::Plain(400, std::string("400 Bad Request\n") + e.what());
  }
  context.response = std::make_shared<Response>(codePage);
  context.server = std::make_shared<Server>(root_, FromUtf8(virtualPath), factory_);

  std::u16string adminItem = siteSetup.AdminSessionName();
  bool signedInBefore = !adminItem.empty() && IsSet(session->Get(adminItem));
  HttpResponse out;
  try {
    std::vector<Variant> ruleFields = RuleFields(pageFile, file, *context.request);
    ScopedObjectContext scope(context);
    RunPage({pageFile, siteSetup, ruleFields, context, create_});
    const Response& response = *context.response;
    out.status = response.StatusCode();
    out.headers = response.Headers();
    out.body = response.body();
  } catch (const AssignmentSyntaxError& e) {
    std::string text = virtualPath + ", rule file " + ToUtf8(pageFile.rule) + ", " + e.what();
    Report(text);
    out = HttpResponse::Plain(500, "500 Internal Server Error\n" + text);
  } catch (const PageRunError& e) {
    Report(virtualPath + ", line " + std::to_string(e.line) + ": " + e.what());
    out = HttpResponse::Plain(500, "500 Internal Server Error\nThe page " + virtualPath +
                                       " failed at line " + std::to_string(e.line) +
                                       "; the error log has the details.");
  }

  // A lock the page took and never gave back would stop every later page that locks.
  application_->ReleaseHeldByThisThread();

  // The session's fate, whether or not the page ran to its end.
  const bool signedIn = !adminItem.empty() && IsSet(session->Get(adminItem));
  if (IsSignInAttempt(http)) {
    signIns_.Record(http.remoteAddr, !signedIn);
    if (shared) {
      try {
        shared->RecordSignIn(http.remoteAddr, !signedIn);
      } catch (const std::exception& e) {
        Report("the sign-in could not be recorded: " + std::string(e.what()));
      }
    }
  }
  if (shared) {
    KeepSharedSession(*shared, sessionId, *session, signedInBefore, signedIn, out);
    return out;
  }
  std::string storedId = sessionId;
  if (session->abandoned()) {
    if (stored) sessions_.Drop(sessionId);
    storedId.clear();
  } else if (!stored) {
    if (!session->empty()) {
      if (std::optional<std::string> id = sessions_.Add(session, signedIn)) {
        out.headers.emplace_back("Set-Cookie", SessionCookie(*id));
        storedId = *id;
      }
    }
  } else if (!signedInBefore && signedIn) {
    if (std::optional<std::string> moved = sessions_.Rotate(sessionId)) {
      sessions_.SetSignedIn(*moved, true);
      out.headers.emplace_back("Set-Cookie", SessionCookie(*moved));
      storedId = *moved;
    }
  } else if (signedInBefore != signedIn) {
    sessions_.SetSignedIn(sessionId, signedIn);
  }
  if (!storedId.empty() && IsVerifyPicture(virtualPath) && IsSet(session->Get(u"verifyid")))
    sessions_.CodeDrawn(storedId);
  return out;
}

const SharedSessions* PageEngine::SharedSessionsOf(const SiteSetup& setup) {
  std::call_once(sharedChecked_, [&] {
    if (std::optional<std::string> uri = ado::ServerAddressIn(setup.DatabasePath(root_)))
      shared_ = std::make_unique<SharedSessions>(*uri);
  });
  return shared_.get();
}

void PageEngine::KeepSharedSession(const SharedSessions& shared, const std::string& id,
                                   const Session& session, bool signedInBefore, bool signedIn,
                                   HttpResponse& out) {
  try {
    if (session.abandoned()) {
      if (!id.empty()) shared.Drop(id);
      return;
    }
    if (id.empty()) {
      if (session.empty()) return;
      const std::string fresh = NewSessionId();
      shared.Save(fresh, session, signedIn);
      out.headers.emplace_back("Set-Cookie", SessionCookie(fresh));
      return;
    }
    std::string current = id;
    if (!signedInBefore && signedIn) {
      if (std::optional<std::string> moved = shared.Rotate(id)) {
        current = *moved;
        out.headers.emplace_back("Set-Cookie", SessionCookie(current));
      }
    }
    shared.Save(current, session, signedIn);
  } catch (const std::exception& e) {
    Report("the session could not be stored: " + std::string(e.what()));
  }
}

}  // namespace ostrakan::engine
