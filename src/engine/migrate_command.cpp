#include "engine/migrate_command.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "core/script_error.h"
#include "engine/commands.h"
#include "engine/file_cache.h"
#include "engine/site_setup.h"
#include "platform/ado/database_copy.h"
#include "platform/ado/database_file.h"
#include "platform/ado/pg_backend.h"
#include "search/record_index.h"

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;

struct MigrateError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Folds the WAL into the database file, so that the file alone is the whole database.
void Checkpoint(const fs::path& db) {
  ado::OpenedDatabase opened = ado::OpenDatabase(db);
  if (!opened.db) throw MigrateError("the site's database cannot be opened: " + opened.problem);
  if (sqlite3_exec(opened.db.get(), "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr) !=
      SQLITE_OK)
    throw MigrateError(std::string("the site's database is busy: ") +
                       sqlite3_errmsg(opened.db.get()));
}

// The site now reads its database at `uri`; the SQLite file stays as <db>.sqlite. The file DB
// names is replaced in one rename, so the site is on one database or the other at any moment.
fs::path Switch(const fs::path& db, const std::string& uri) {
  const fs::path kept = db.string() + ".sqlite";
  const fs::path next = db.string() + ".address";
  {
    std::ofstream out(next, std::ios::binary | std::ios::trunc);
    out << uri << "\n";
    if (!out.flush()) throw MigrateError("cannot write " + next.string());
  }
  std::error_code ec;
  fs::remove(kept, ec);
  if (::link(db.c_str(), kept.c_str()) != 0)
    throw MigrateError("cannot keep the SQLite database as " + kept.string());
  fs::rename(next, db);
  for (const char* suffix : {"-wal", "-shm"}) fs::remove(db.string() + suffix, ec);
  return kept;
}

std::string JsonText(const std::string& s) {
  std::string out = "\"";
  for (char c : s) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

}  // namespace

int RunMigrate(const MigrateOptions& o, std::ostream& out, std::ostream& err) {
  try {
    if (!ado::IsServerAddress(o.to))
      throw MigrateError("--to takes a PostgreSQL address such as postgresql://USER@HOST/NAME");
    if (ado::AddressHoldsPassword(o.to))
      throw MigrateError(
          "the database address may not hold a password; put it in ~/.pgpass of the user who "
          "runs ostrakan");
    if (std::string problem = CheckSite(o.site); !problem.empty()) throw MigrateError(problem);
    const fs::path db = LoadSiteSetup(o.site).DatabasePath(o.site);
    if (ado::ServerAddressIn(db)) throw MigrateError("the site is on PostgreSQL already");
    const fs::path schemaFile = o.site / "data" / "schema.pg.sql";
    std::optional<std::string> schema = ReadWholeFile(schemaFile);
    if (!schema) throw MigrateError("cannot read " + schemaFile.string());
    Checkpoint(db);
    const bool terminal = ::isatty(STDERR_FILENO);
    std::vector<ado::CopiedTable> tables;
    try {
      tables = ado::CopyToServer(
          db, o.to, *schema, [&](const std::string& table, long long done, long long total) {
            if (terminal) err << "\r" << table << ": " << done << " of " << total << " rows\x1b[K";
          });
    } catch (const ScriptError& e) {
      if (terminal) err << "\r\x1b[K";
      throw MigrateError(ToUtf8(e.description));
    }
    if (terminal) err << "\r\x1b[K";
    const fs::path kept = Switch(db, o.to);
    // The copied records wait to be taken into the record index: built at once, it is ready
    // sooner than taken in by searches a batch at a time. Should that fail, searches still find
    // every record (reading the waiting ones from db) and `reindex` builds it later.
    try {
      if (terminal) err << "record index\r";
      auto conn = std::make_shared<ado::Connection>();
      conn->Open(u"DBQ=" + FromUtf8(db.string()) + u";");
      search::RebuildRecordIndex(*conn);
      if (terminal) err << "\x1b[K";
    } catch (const ScriptError& e) {
      err << "ostrakan migrate: the record index was not built (" << ToUtf8(e.description)
          << "); run ostrakan reindex --site " << o.site.string() << "\n";
    }
    long long rows = 0;
    for (const auto& t : tables) {
      out << t.name << ": " << t.rows << " rows, digest " << t.digest << "\n";
      rows += t.rows;
    }
    out << "The site " << o.site.string() << " now uses " << o.to
        << "; its SQLite database is kept as " << kept.string() << "\n";
    if (o.json) {
      out << "{\"tables\":[";
      for (size_t i = 0; i < tables.size(); ++i)
        out << (i ? "," : "") << "{\"name\":" << JsonText(tables[i].name)
            << ",\"rows\":" << tables[i].rows << ",\"digest\":" << JsonText(tables[i].digest)
            << "}";
      out << "],\"rows\":" << rows << ",\"kept\":" << JsonText(kept.string()) << "}\n";
    }
    return 0;
  } catch (const std::exception& e) {
    err << "ostrakan migrate: " << e.what() << "\n";
    return 1;
  }
}

}  // namespace ostrakan::engine
