#include <sqlite3.h>
#include <sys/random.h>

#include <fstream>
#include <ostream>

#include "access/md5.h"
#include "access/sign_in_text.h"
#include "core/variant.h"
#include "engine/commands.h"
#include "engine/file_cache.h"
#include "engine/site_setup.h"
#include "platform/ado/database_file.h"
#include "platform/ado/pg_backend.h"

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;

struct InitError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Database files, journals and logs of a site that has been run are not part of a new site.
bool IsRunArtifact(const fs::path& file) {
  static constexpr std::string_view kSuffixes[] = {".db",  ".sqlite", ".sqlite3", ".mdb", ".ldb",
                                                   "-wal", "-shm",    "-journal", ".log", ".Log"};
  std::string name = file.filename().string();
  for (std::string_view suffix : kSuffixes)
    if (name.ends_with(suffix)) return true;
  return false;
}

void CopySite(const fs::path& from, const fs::path& to) {
  fs::create_directories(to);
  for (auto it = fs::recursive_directory_iterator(from); it != fs::recursive_directory_iterator();
       ++it) {
    fs::path target = to / fs::relative(it->path(), from);
    if (it->is_directory()) {
      fs::create_directories(target);
    } else if (it->is_regular_file() && !IsRunArtifact(it->path())) {
      fs::copy_file(it->path(), target);
    }
  }
}

void CheckSignInText(const std::string& what, const std::string& value) {
  if (std::string problem = SignInTextProblem(what, value); !problem.empty())
    throw InitError(problem);
}

void Exec(sqlite3* db, const std::string& sql) {
  char* message = nullptr;
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
    std::string text = message ? message : "unknown error";
    sqlite3_free(message);
    throw InitError("the database schema failed: " + text);
  }
}

void CreateDatabase(const fs::path& file, const std::string& schema, const std::string& admin,
                    const std::string& password) {
  fs::create_directories(file.parent_path());
  ado::OpenedDatabase opened = ado::OpenDatabase(file, /*create=*/true);
  if (!opened.db)
    throw InitError("cannot create the database " + file.string() + ": " + opened.problem);
  sqlite3* db = opened.db.get();
  Exec(db, schema);
  sqlite3_stmt* insert = nullptr;
  if (sqlite3_prepare_v2(db, "insert into admin (username, password) values (?, ?)", -1, &insert,
                         nullptr) != SQLITE_OK)
    throw InitError(std::string("cannot add the administrator: ") + sqlite3_errmsg(db));
  std::string digest = ToUtf8(Md5(FromUtf8(password)));
  sqlite3_bind_text(insert, 1, admin.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_text(insert, 2, digest.c_str(), -1, SQLITE_TRANSIENT);
  const int rc = sqlite3_step(insert);
  sqlite3_finalize(insert);
  if (rc != SQLITE_DONE)
    throw InitError(std::string("cannot add the administrator: ") + sqlite3_errmsg(db));
}

// A site on PostgreSQL: the tables and the administrator in the database at `uri`, and in the
// file that DB names (never served) the address, without a password.
void CreateServerDatabase(const fs::path& file, const std::string& uri, const std::string& schema,
                          const std::string& admin, const std::string& password) {
  try {
    ado::CreateServerSite(uri, schema, admin, ToUtf8(Md5(FromUtf8(password))));
  } catch (const ScriptError& e) {
    throw InitError(ToUtf8(e.description));
  }
  fs::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << uri << "\n";
  if (!out.flush()) throw InitError("cannot write " + file.string());
}

void Init(const InitOptions& o, const std::string& password) {
  CheckSignInText("administrator name", o.admin);
  CheckSignInText("password", password);
  if (o.database && !ado::IsServerAddress(*o.database))
    throw InitError("--database takes a PostgreSQL address such as postgresql://USER@HOST/NAME");
  if (o.database && ado::AddressHoldsPassword(*o.database))
    throw InitError(
        "the database address may not hold a password; put it in ~/.pgpass of the user who "
        "runs ostrakan");
  if (!fs::is_regular_file(o.from / kSetupFileName))
    throw InitError("the site to copy, " + o.from.string() + ", has no Setup.asp");
  fs::path schemaFile = o.from / "data" / (o.database ? "schema.pg.sql" : "schema.sql");
  std::optional<std::string> schema = ReadWholeFile(schemaFile);
  if (!schema) throw InitError("cannot read " + schemaFile.string());
  CopySite(o.from, o.dir);
  SiteSetup setup = LoadSiteSetup(o.dir);
  if (TextOf(setup.Get(u"DB")).empty())
    throw InitError("Setup.asp does not name the database (DB)");
  if (o.database) {
    CreateServerDatabase(setup.DatabasePath(o.dir), *o.database, *schema, o.admin, password);
  } else {
    CreateDatabase(setup.DatabasePath(o.dir), *schema, o.admin, password);
  }
}

}  // namespace

// A name or password that the sign-in filter would change could never be typed to sign in.
std::string SignInTextProblem(const std::string& what, const std::string& value) {
  const SignInTextFault fault = SignInTextFaultOf(FromUtf8(value));
  if (fault == SignInTextFault::kEmpty) return "the " + what + " is empty";
  if (fault == SignInTextFault::kRemovedAtSignIn)
    return "the " + what +
           " may not contain blanks, control characters or any of # % ' \" ( ) * + ; < > [ ]: "
           "the sign-in page removes them";
  return "";
}

std::string GeneratePassword(size_t length) {
  // No look-alike characters (0/O, 1/l/I): the password is read off a terminal once.
  static constexpr std::string_view kAlphabet =
      "abcdefghijkmnpqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789";
  std::string out;
  while (out.size() < length) {
    unsigned char b;
    if (getrandom(&b, 1, 0) != 1) continue;
    // Rejection keeps every character equally likely.
    if (b >= 256 - 256 % kAlphabet.size()) continue;
    out += kAlphabet[b % kAlphabet.size()];
  }
  return out;
}

int RunInit(const InitOptions& o, std::ostream& out, std::ostream& err) {
  std::error_code ec;
  if (fs::exists(o.dir, ec) && !(fs::is_directory(o.dir, ec) && fs::is_empty(o.dir, ec))) {
    err << "ostrakan init: " << o.dir.string() << " already exists and is not empty\n";
    return 1;
  }
  bool existed = fs::exists(o.dir, ec);
  std::string password = o.password ? *o.password : GeneratePassword();
  try {
    Init(o, password);
  } catch (const std::exception& e) {
    err << "ostrakan init: " << e.what() << "\n";
    // Leave nothing half made behind.
    if (existed) {
      for (const auto& entry : fs::directory_iterator(o.dir, ec)) fs::remove_all(entry, ec);
    } else {
      fs::remove_all(o.dir, ec);
    }
    return 1;
  }
  out << "Created the site " << fs::absolute(o.dir).string() << "\n"
      << "Administrator: " << o.admin << "\n";
  if (!o.password)
    out << "Password: " << password << "  (shown only this once; change it after signing in)\n";
  out << "Serve it with: ostrakan serve --site " << o.dir.string() << "\n";
  return 0;
}

}  // namespace ostrakan::engine
