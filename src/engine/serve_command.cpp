#include <pwd.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

#include <ostream>

#include "engine/commands.h"
#include "engine/http_server.h"
#include "engine/site_setup.h"
#include "frame/error_log.h"
#include "platform/ado/database_file.h"
#include "platform/ado/pg_backend.h"

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;

// "" when the file is an SQLite database with the admin table, else why not.
std::string CheckDatabase(const fs::path& file) {
  ado::OpenedDatabase opened = ado::OpenDatabase(file);
  if (!opened.db) return opened.problem;
  if (sqlite3_exec(opened.db.get(), "select count(*) from admin", nullptr, nullptr, nullptr) !=
      SQLITE_OK)
    return sqlite3_errmsg(opened.db.get());
  return "";
}

// "" when the PostgreSQL database at `uri` answers and holds the admin table, else why not.
std::string CheckServerDatabase(const std::string& uri) {
  try {
    std::shared_ptr<ado::Backend> db = ado::ConnectServer(uri);
    db->Prepare(u"select count(*) from admin", {})->Step();
  } catch (const ScriptError& e) {
    std::string why = ToUtf8(e.description);
    if (!why.empty()) why[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(why[0])));
    return "the database " + uri + " is not usable: " + why;
  }
  return "";
}

// The host part of the address as a browser would use it.
std::string BaseUrl(const std::string& listen, int port) {
  size_t colon = listen.rfind(':');
  std::string host = colon == std::string::npos ? "127.0.0.1" : listen.substr(0, colon);
  if (host.empty() || host == "0.0.0.0") host = "127.0.0.1";
  return "http://" + host + ":" + std::to_string(port) + "/";
}

// "" when the serving user may write the database, its folder (SQLite makes its journal files
// there) and the journal files that already exist; else what to fix, in words.
std::string CheckWritable(const fs::path& db) {
  auto cannotWrite = [](const fs::path& p) { return ::access(p.c_str(), W_OK) != 0; };
  std::string user = std::to_string(::geteuid());
  if (const passwd* pw = ::getpwuid(::geteuid())) user = pw->pw_name;
  const std::string fix = "; give the user " + user + " write permission (for example: chown -R " +
                          user + " " + db.parent_path().string() + ")";
  if (cannotWrite(db)) return "the database " + db.string() + " is not writable" + fix;
  if (cannotWrite(db.parent_path()))
    return "the database folder " + db.parent_path().string() +
           " is not writable, so SQLite cannot make its journal there" + fix;
  for (const char* suffix : {"-wal", "-shm", "-journal"}) {
    fs::path journal = db.string() + suffix;
    std::error_code ec;
    if (fs::exists(journal, ec) && cannotWrite(journal))
      return "the database journal " + journal.string() + " is not writable" + fix;
  }
  return "";
}

}  // namespace

std::string CheckSite(const fs::path& dir) {
  std::error_code ec;
  if (!fs::is_directory(dir, ec)) return "the site folder " + dir.string() + " does not exist";
  if (!fs::is_regular_file(dir / kSetupFileName, ec))
    return dir.string() +
           " has no Setup.asp, so it is not a site folder (make one with "
           "\"ostrakan init DIR\")";
  SiteSetup setup;
  try {
    setup = LoadSiteSetup(dir);
  } catch (const SiteSetupError& e) {
    return std::string("Setup.asp cannot be read: ") + e.what();
  }
  if (auto missing = setup.MissingSettings(); !missing.empty()) {
    std::string names;
    for (const auto& name : missing) names += (names.empty() ? "" : ", ") + ToUtf8(name);
    return "Setup.asp does not set " + names;
  }
  fs::path db = setup.DatabasePath(dir);
  if (!fs::is_regular_file(db, ec))
    return "the database " + db.string() + " (DB in Setup.asp) does not exist";
  if (std::optional<std::string> address = ado::ServerAddressIn(db))
    return CheckServerDatabase(*address);
  if (std::string problem = CheckWritable(fs::absolute(db)); !problem.empty()) return problem;
  if (std::string problem = CheckDatabase(db); !problem.empty())
    return "the database " + db.string() + " is not usable: " + problem;
  return "";
}

int RunServe(const ServeOptions& o, std::ostream& out, std::ostream& err) {
  if (std::string problem = CheckSite(o.site); !problem.empty()) {
    err << "ostrakan serve: " << problem << "\n";
    return 1;
  }
  std::error_code ec;
  fs::create_directories(o.site / "data", ec);
  SetErrorLogPath(o.site / "data" / "PagebindLog.Log");

  // The server's threads inherit the blocked signals, so only sigwait below receives them.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  signal(SIGPIPE, SIG_IGN);

  // Every open connection holds a descriptor: allow as many as the system lets this process.
  if (rlimit files; ::getrlimit(RLIMIT_NOFILE, &files) == 0 && files.rlim_cur < files.rlim_max) {
    files.rlim_cur = files.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &files);
  }

  ServerOptions options;
  options.siteRoot = o.site;
  options.listen = o.listen;
  options.threads = o.threads;
  options.behindProxy = o.behindProxy;
  std::unique_ptr<HttpServer> server;
  try {
    server = std::make_unique<HttpServer>(options);
  } catch (const std::exception& e) {
    err << "ostrakan serve: " << e.what() << "\n";
    return 1;
  }
  std::string url = BaseUrl(o.listen, server->port());
  out << "Serving " << fs::absolute(o.site).string() << " at " << url << " \xE2\x80\x94 sign in at "
      << url << "admin/index.asp" << std::endl;
  int received = 0;
  sigwait(&stopSignals, &received);
  out << "Stopping (" << (received == SIGINT ? "SIGINT" : "SIGTERM") << ")" << std::endl;
  server.reset();
  return 0;
}

}  // namespace ostrakan::engine
