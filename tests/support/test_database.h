// The database the tests run on, chosen by one parameter: OSTRAKAN_TEST_DATABASE=postgresql
// runs them on PostgreSQL, anything else (the default) on SQLite files.
//
// On PostgreSQL every TestDatabase is a fresh database of its own in a throwaway cluster: the
// one that OSTRAKAN_TEST_PG names (a socket folder; ctest starts one cluster for all test
// programs of a run), or else one this process starts itself and removes at exit. Where the
// SQLite file would be, the test finds the site's address file, as a site made by
// "ostrakan init --database" has.
#pragma once

#include <libpq-fe.h>
#include <sqlite3.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <stdexcept>
#include <string>

#include "platform/ado/pg_backend.h"

namespace ostrakan::testing {

inline std::filesystem::path SourceDir() {
  return OSTRAKAN_SOURCE_DIR;
}

inline std::string ReadFile(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

inline bool OnPostgres() {
  const char* choice = std::getenv("OSTRAKAN_TEST_DATABASE");
  return choice && std::string(choice) == "postgresql";
}

// Starts or stops a throwaway PostgreSQL cluster in `dir` (pg_cluster.sh's commands); 0 when it
// did.
inline int PgCluster(const std::string& command, const std::string& dir) {
  const std::string script = (SourceDir() / "tests/support/pg_cluster.sh").string();
  return std::system(("bash " + script + " " + command + " " + dir).c_str());
}

// The socket folder of the cluster the tests use (started on first use when none is given).
inline const std::string& ClusterSocketDir() {
  struct OwnCluster {
    std::string dir;
    bool started = false;
    OwnCluster() {
      if (const char* given = std::getenv("OSTRAKAN_TEST_PG"); given && *given) {
        dir = given;
        return;
      }
      dir = "/tmp/ostrakan-pg-" + std::to_string(getpid());
      if (PgCluster("start", dir) != 0)
        throw std::runtime_error("cannot start a PostgreSQL cluster in " + dir);
      started = true;
    }
    ~OwnCluster() {
      if (!started) return;
      ado::DropIdleServerSessions();
      PgCluster("stop", dir);
    }
  };
  static OwnCluster cluster;
  return cluster.dir;
}

inline std::string ServerUri(const std::string& database,
                             const std::string& socketDir = ClusterSocketDir()) {
  return "postgresql:///" + database + "?host=" + socketDir + "&user=ostrakan";
}

// Runs SQL on PostgreSQL (several statements may follow each other); the first column of the
// first row of the last statement, as text.
inline std::string ServerSql(const std::string& uri, const std::string& sql) {
  PGconn* conn = PQconnectdb(uri.c_str());
  PGresult* r = PQexec(conn, sql.c_str());
  const ExecStatusType status = PQresultStatus(r);
  std::string first, error = PQresultErrorMessage(r);
  if (status == PGRES_TUPLES_OK && PQntuples(r) > 0) first = PQgetvalue(r, 0, 0);
  PQclear(r);
  PQfinish(conn);
  if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK)
    throw std::runtime_error("SQL failed: " + error + " in " + sql);
  return first;
}

// SQLite's group_concat(x[, sep]) for PostgreSQL, so that the tests' checks are written once;
// made in a database the first time a statement there asks for it.
inline void EnsureGroupConcat(const std::string& uri, const std::string& sql) {
  static std::mutex mutex;
  static std::set<std::string> made;
  std::lock_guard lock(mutex);
  if (sql.find("group_concat(") == std::string::npos || !made.insert(uri).second) return;
  ServerSql(uri,
            "create or replace function group_concat_step(text, anyelement, text) returns text "
            "language sql as $$ select case when $2 is null then $1 when $1 is null then "
            "$2::text else $1 || $3 || $2::text end $$;"
            "create or replace function group_concat_step(text, anyelement) returns text "
            "language sql as $$ select group_concat_step($1, $2, ',') $$;"
            "create or replace aggregate group_concat(anyelement, text) "
            "(sfunc = group_concat_step, stype = text);"
            "create or replace aggregate group_concat(anyelement) "
            "(sfunc = group_concat_step, stype = text);");
}

// Runs SQL on a test database directly (set-up and checks), failing loudly; the first column
// of the first row it gives, as text ("" for none or NULL).
inline std::string Sql(const std::filesystem::path& db, const std::string& sql) {
  if (std::optional<std::string> uri = ado::ServerAddressIn(db)) {
    EnsureGroupConcat(*uri, sql);
    return ServerSql(*uri, sql);
  }
  std::optional<std::string> first;
  auto keepFirst = [](void* out, int, char** values, char**) {
    auto& first = *static_cast<std::optional<std::string>*>(out);
    if (!first) first = values[0] ? values[0] : "";
    return 0;
  };
  sqlite3* h = nullptr;
  sqlite3_open(db.c_str(), &h);
  sqlite3_busy_timeout(h, 5000);
  char* err = nullptr;
  const int rc = sqlite3_exec(h, sql.c_str(), keepFirst, &first, &err);
  const std::string message = err ? err : "";
  sqlite3_free(err);
  sqlite3_close(h);
  if (rc != SQLITE_OK) throw std::runtime_error("SQL failed: " + message + " in " + sql);
  return first.value_or("");
}
inline std::string SqlValue(const std::filesystem::path& db, const std::string& sql) {
  return Sql(db, sql);
}

// A database made from the site's schema at `file`: the SQLite file itself, or on PostgreSQL a
// new database that `file` addresses, dropped again at the end.
class TestDatabase {
 public:
  explicit TestDatabase(std::filesystem::path file) : file_(std::move(file)) {
    std::filesystem::create_directories(file_.parent_path());
    if (!OnPostgres()) {
      Sql(file_, ReadFile(SourceDir() / "site/data/schema.sql"));
      return;
    }
    CreateEmpty();
    ServerSql(ServerUri(name_), ReadFile(SourceDir() / "site/data/schema.pg.sql"));
    std::ofstream(file_) << ServerUri(name_) << "\n";
  }
  // On PostgreSQL, an empty database for "ostrakan init --database" to fill; nothing on SQLite.
  struct Empty {};
  explicit TestDatabase(Empty) {
    if (OnPostgres()) CreateEmpty();
  }
  // The address of the database on PostgreSQL; nullopt on SQLite.
  std::optional<std::string> address() const {
    if (name_.empty()) return std::nullopt;
    return ServerUri(name_);
  }
  ~TestDatabase() {
    if (name_.empty()) return;
    ado::DropIdleServerSessions();
    try {
      ServerSql(ServerUri("postgres"), "DROP DATABASE IF EXISTS " + name_ + " WITH (FORCE)");
    } catch (const std::exception&) {
    }
  }
  TestDatabase(const TestDatabase&) = delete;
  TestDatabase& operator=(const TestDatabase&) = delete;
  const std::filesystem::path& file() const { return file_; }

 private:
  void CreateEmpty() {
    static std::atomic<int> serial{0};
    name_ = "t" + std::to_string(getpid()) + "_" + std::to_string(serial++) + "_" +
            std::to_string(std::random_device()() % 100000);
    ServerSql(ServerUri("postgres"), "CREATE DATABASE " + name_);
  }

  std::filesystem::path file_;
  std::string name_;
};

}  // namespace ostrakan::testing
