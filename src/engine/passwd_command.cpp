// ostrakan passwd: resets or adds an administrator from the shell.
#include <sqlite3.h>

#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "access/md5.h"
#include "core/variant.h"
#include "engine/commands.h"
#include "engine/site_setup.h"
#include "platform/ado/database_file.h"

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;

struct PasswdError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Database {
 public:
  explicit Database(const fs::path& file)
      : opened_(ado::OpenDatabase(file)), db_(opened_.db.get()) {
    if (!db_)
      throw PasswdError("cannot open the database " + file.string() + ": " + opened_.problem);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Exec(const char* sql) {
    if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) throw PasswdError(Error());
  }
  // Runs a statement with two text parameters; returns the number of rows it changed.
  int Run(const char* sql, const std::string& a, const std::string& b) {
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db_, sql, -1, &st, nullptr) != SQLITE_OK) throw PasswdError(Error());
    sqlite3_bind_text(st, 1, a.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(st, 2, b.c_str(), -1, SQLITE_TRANSIENT);
    int rc = sqlite3_step(st);
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE) throw PasswdError(Error());
    return sqlite3_changes(db_);
  }
  void Rollback() { sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr); }
  std::string Error() const { return db_ ? sqlite3_errmsg(db_) : "out of memory"; }
  sqlite3* handle() const { return db_; }

 private:
  ado::OpenedDatabase opened_;
  sqlite3* db_;
};

// The names of the site's administrators, in the order they were added.
std::vector<std::string> AdministratorNames(sqlite3* db) {
  std::vector<std::string> names;
  sqlite3_stmt* st = nullptr;
  if (sqlite3_prepare_v2(db, "select username from admin order by id", -1, &st, nullptr) !=
      SQLITE_OK)
    throw PasswdError(sqlite3_errmsg(db));
  while (sqlite3_step(st) == SQLITE_ROW) {
    const unsigned char* name = sqlite3_column_text(st, 0);
    names.emplace_back(name ? reinterpret_cast<const char*>(name) : "");
  }
  sqlite3_finalize(st);
  return names;
}

// "there is no administrator X; the administrators are "a", "b" ..." for a mistyped name.
std::string UnknownAdministrator(const std::string& admin, const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "\"" : ", \"") + name + "\"";
  return "there is no administrator \"" + admin + "\" (" +
         (names.empty() ? std::string("the site has none") : "the administrators are " + list) +
         "); to add one, run the command again with --add";
}

// Sets the digest for every account of that name; adds the account when there is none and
// `add` allows it, else refuses. True when added.
bool StorePassword(const fs::path& file, const std::string& admin, const std::string& digest,
                   bool add) {
  Database db(file);
  db.Exec("BEGIN IMMEDIATE");
  try {
    bool added = false;
    if (db.Run("update admin set password=?1 where username=?2", digest, admin) == 0) {
      if (!add) throw PasswdError(UnknownAdministrator(admin, AdministratorNames(db.handle())));
      db.Run("insert into admin (username, password) values (?2, ?1)", digest, admin);
      added = true;
    }
    db.Exec("COMMIT");
    return added;
  } catch (...) {
    db.Rollback();
    throw;
  }
}

std::string JsonString(const std::string& s) {
  std::string out = "\"";
  for (unsigned char c : s) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\u%04x", c);
      out += buf;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

}  // namespace

int RunPasswd(const PasswdOptions& o, std::ostream& out, std::ostream& err) {
  std::string password = o.password ? *o.password : GeneratePassword();
  for (auto [what, value] : {std::pair{"administrator name", &o.admin}, {"password", &password}}) {
    if (std::string problem = SignInTextProblem(what, *value); !problem.empty()) {
      err << "ostrakan passwd: " << problem << ".\n";
      return 1;
    }
  }
  bool added = false;
  try {
    if (!fs::is_regular_file(o.site / kSetupFileName))
      throw PasswdError(o.site.string() + " has no Setup.asp, so it is not a site folder");
    fs::path db = LoadSiteSetup(o.site).DatabasePath(o.site);
    if (!fs::is_regular_file(db))
      throw PasswdError("the database " + db.string() + " does not exist");
    added = StorePassword(db, o.admin, ToUtf8(Md5(FromUtf8(password))), o.add);
  } catch (const std::exception& e) {
    err << "ostrakan passwd: " << e.what() << "\n";
    return 1;
  }
  out << (added ? "Added the administrator " : "Set a new password for ") << o.admin << "\n";
  if (!o.password) out << "Password: " << password << "  (shown only this once)\n";
  if (o.json)
    out << "{\"admin\":" << JsonString(o.admin) << ",\"added\":" << (added ? "true" : "false")
        << (o.password ? "" : ",\"password\":" + JsonString(password)) << "}\n";
  return 0;
}

}  // namespace ostrakan::engine
