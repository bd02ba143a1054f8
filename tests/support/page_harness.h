// Runs page components without a server: a temporary site with a fresh database, and an
// in-memory request context published as the thread's object context.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "frame/error_log.h"
#include "frame/request_context.h"
#include "frame/site_page.h"
#include "platform/ado/connection.h"
#include "platform/object_factory.h"
#include "platform/text/codepage.h"
#include "support/test_database.h"

namespace ostrakan::testing {

// A fresh, empty directory removed again at the end of the test.
class TempDir {
 public:
  TempDir() {
    const char* root = std::getenv("OSTRAKAN_TMP");
    std::filesystem::path base = root ? root : std::filesystem::temp_directory_path();
    std::filesystem::create_directories(base);
    path_ = base /
            ("ostrakan-" + std::to_string(getpid()) + "-" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(path_);  // as the umask has it: others may look in
  }
  ~TempDir() { std::filesystem::remove_all(path_, removeError_); }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  std::error_code removeError_;
};

// A site folder with a fresh database at data/test.db made from the site's schema (on the
// database that test_database.h chooses), whose error log is the process's.
class TestSite : public TempDir {
 public:
  TestSite() : database_(root() / "data/test.db") {
    SetErrorLogPath(root() / "data/PagebindLog.Log");
  }
  const std::filesystem::path& root() const { return path(); }
  std::filesystem::path database() const { return root() / "data/test.db"; }
  std::string log() const { return ReadFile(root() / "data/PagebindLog.Log"); }

 private:
  TestDatabase database_;
};

// A connection to the database at `file` (a SQLite file, or a site's address file).
inline std::shared_ptr<ado::Connection> Connect(const std::filesystem::path& file) {
  auto conn = std::make_shared<ado::Connection>();
  conn->Open(u"DBQ=" + FromUtf8(file.string()) + u";");
  return conn;
}

// Runs a command in this process as `ostrakan` would: 2 when `parse` refuses the arguments, else
// the status `run` returns; `said` gets the refusal, or standard error followed by the output.
template <class Parse, class Run>
int RunCommand(Parse parse, Run run, const std::vector<std::string>& args, std::string& said) {
  std::string problem;
  auto options = parse(args, problem);
  if (!options) return said = problem, 2;
  std::ostringstream out, err;
  const int status = run(*options, out, err);
  said = err.str() + out.str();
  return status;
}

// One request: the five objects, published as the thread's object context while it lives.
class TestRequest {
 public:
  explicit TestRequest(const TestSite& site, std::u16string pagePath = u"/admin/page.asp",
                       std::shared_ptr<Session> session = std::make_shared<Session>())
      : objects_{std::make_shared<Application>(),
                 std::make_shared<Server>(site.root(), std::move(pagePath),
                                          ObjectFactory::Default()),
                 std::move(session), std::make_shared<Request>(), std::make_shared<Response>()},
        scope_(objects_) {
    objects_.request->serverVariables.Add(u"REMOTE_ADDR", u"127.0.0.9");
  }
  Request& request() { return *objects_.request; }
  Response& response() { return *objects_.response; }
  std::u16string text() const { return objects_.response->Text(); }

 private:
  RequestContext objects_;
  ScopedObjectContext scope_;
};

// The 13 settings of the test site, as the engine passes them to InitFunction1.
inline Component::Args Settings() {
  Component::Args args(kSettingCount, Variant(u""));
  args[0] = u"测试站点";
  args[2] = u"data/test.db";
  args[7] = u"Ostrakan_Admin";
  return args;
}

// Calls the named blocks in order, as a page file does (InitFunction1 with the settings, then
// `more`); true when the page ran to its end, false when a block ended the response.
inline bool RunBlocks(Component& page, const std::vector<std::u16string_view>& blocks,
                      const std::vector<std::u16string>& more = {}) {
  try {
    for (auto name : blocks) {
      Component::Args args;
      if (name == u"InitFunction1" && page.Arity(name) >= kSettingCount) args = Settings();
      if (name == u"InitFunction1") args.insert(args.end(), more.begin(), more.end());
      page.Invoke(name, args);
    }
  } catch (const ResponseEnded&) {
    return false;
  }
  return true;
}

}  // namespace ostrakan::testing
