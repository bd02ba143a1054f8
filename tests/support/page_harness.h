// Runs page components without a server: a temporary site (copied pages' data files and a
// fresh SQLite database from the schema), and an in-memory request context published as the
// thread's object context.
#pragma once

#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "frame/error_log.h"
#include "frame/request_context.h"
#include "frame/site_page.h"
#include "platform/object_factory.h"
#include "platform/text/codepage.h"

namespace ostrakan::testing {

inline std::filesystem::path SourceDir() {
  return OSTRAKAN_SOURCE_DIR;
}

inline std::string ReadFile(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// A fresh, empty directory removed again at the end of the test.
class TempDir {
 public:
  TempDir() {
    const char* root = std::getenv("OSTRAKAN_TMP");
    std::filesystem::path base = root ? root : std::filesystem::temp_directory_path();
    std::filesystem::create_directories(base);
    std::random_device rd;
    path_ = base / ("ostrakan-" + std::to_string(getpid()) + "-" + std::to_string(rd()));
    std::filesystem::create_directories(path_);
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// Runs SQL on a database file directly (test set-up and checks), failing loudly.
inline void Sql(const std::filesystem::path& db, const std::string& sql) {
  sqlite3* h = nullptr;
  if (sqlite3_open_v2(db.c_str(), &h, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
      SQLITE_OK)
    throw std::runtime_error("cannot open " + db.string());
  sqlite3_busy_timeout(h, 5000);
  char* err = nullptr;
  int rc = sqlite3_exec(h, sql.c_str(), nullptr, nullptr, &err);
  std::string message = err ? err : "";
  sqlite3_free(err);
  sqlite3_close(h);
  if (rc != SQLITE_OK) throw std::runtime_error("SQL failed: " + message + " in " + sql);
}

// The first column of the first row of a query, as text ("" for none or NULL).
inline std::string SqlValue(const std::filesystem::path& db, const std::string& sql) {
  sqlite3* h = nullptr;
  sqlite3_open_v2(db.c_str(), &h, SQLITE_OPEN_READONLY, nullptr);
  sqlite3_stmt* st = nullptr;
  std::string out;
  if (sqlite3_prepare_v2(h, sql.c_str(), -1, &st, nullptr) == SQLITE_OK &&
      sqlite3_step(st) == SQLITE_ROW && sqlite3_column_text(st, 0))
    out = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
  sqlite3_finalize(st);
  sqlite3_close(h);
  return out;
}

// A site folder with the prepared files of the real site and a fresh database at data/test.db.
class TestSite {
 public:
  TestSite() {
    auto admin = root() / "admin";
    std::filesystem::create_directories(admin / "inc");
    std::filesystem::create_directories(root() / "data");
    for (const char* f : {"head.fix", "body.Fix"})
      std::filesystem::copy_file(SourceDir() / "site/admin/inc" / f, admin / "inc" / f);
    Sql(database(), ReadFile(SourceDir() / "site/data/schema.sql"));
    SetErrorLogPath(root() / "data/PagebindLog.Log");
  }
  const std::filesystem::path& root() const { return dir_.path(); }
  std::filesystem::path database() const { return root() / "data/test.db"; }
  std::string log() const { return ReadFile(root() / "data/PagebindLog.Log"); }

 private:
  TempDir dir_;
};

// One request: the five objects, published as the thread's object context while it lives.
class TestRequest {
 public:
  explicit TestRequest(const TestSite& site, std::u16string pagePath = u"/admin/page.asp",
                       std::shared_ptr<Session> session = std::make_shared<Session>())
      : objects_{std::make_shared<Application>(),
                 std::make_shared<Server>(site.root(), std::move(pagePath),
                                          ObjectFactory::Default()),
                 std::move(session),
                 std::make_shared<Request>(),
                 std::make_shared<Response>(),
                 nullptr},
        scope_(objects_) {
    objects_.request->serverVariables.Add(u"REMOTE_ADDR", u"127.0.0.9");
  }
  Request& request() { return *objects_.request; }
  Response& response() { return *objects_.response; }
  Session& session() { return *objects_.session; }
  std::shared_ptr<Session> sharedSession() { return objects_.session; }
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

// Calls the named blocks in order, as a page file does; true when the page ran to its end,
// false when a block ended the response.
inline bool RunBlocks(Component& page, std::initializer_list<std::u16string_view> blocks) {
  try {
    for (auto name : blocks) {
      Component::Args args;
      if (name == u"InitFunction1" && page.Arity(name) >= kSettingCount) args = Settings();
      page.Invoke(name, args);
    }
  } catch (const ResponseEnded&) {
    return false;
  }
  return true;
}

}  // namespace ostrakan::testing
