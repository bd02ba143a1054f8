#include "platform/ado/database_copy.h"

#include <libpq-fe.h>
#include <sqlite3.h>

#include <cstdio>
#include <memory>

#include "platform/ado/database_error.h"
#include "platform/ado/database_file.h"
#include "platform/ado/pg_backend.h"

namespace ostrakan::ado {
namespace {

// The order in which a table's rows are read on both sides: by id when the table has one,
// else by its primary key columns (text in byte order, which is SQLite's BINARY order).
struct KeyOrder {
  std::string sqlite, postgres;
  bool byId = false;
};

KeyOrder KeyOrderOf(sqlite3* db, const std::string& table) {
  sqlite3_stmt* raw = nullptr;
  sqlite3_prepare_v2(db,
                     "SELECT name, type, pk FROM pragma_table_info(?) WHERE pk > 0 OR "
                     "name = 'id' ORDER BY pk",
                     -1, &raw, nullptr);
  std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> info(raw, sqlite3_finalize);
  sqlite3_bind_text(info.get(), 1, table.c_str(), -1, SQLITE_TRANSIENT);
  KeyOrder order;
  while (sqlite3_step(info.get()) == SQLITE_ROW) {
    const std::string name = reinterpret_cast<const char*>(sqlite3_column_text(info.get(), 0));
    const auto* typeText = sqlite3_column_text(info.get(), 1);
    const std::string type = typeText ? reinterpret_cast<const char*>(typeText) : "";
    if (name == "id") return {"id", "id", true};
    if (sqlite3_column_int(info.get(), 2) == 0) continue;
    const bool text =
        type.find("TEXT") != std::string::npos || type.find("text") != std::string::npos;
    order.sqlite += (order.sqlite.empty() ? "\"" : ", \"") + name + "\"";
    order.postgres +=
        (order.postgres.empty() ? "\"" : ", \"") + name + "\"" + (text ? " COLLATE \"C\"" : "");
  }
  if (order.sqlite.empty()) order.sqlite = order.postgres = "1";
  return order;
}

constexpr long long kBatch = 5000;

[[noreturn]] void Fail(const std::string& sentence) {
  throw ScriptError(kProviderError, FromUtf8(sentence));
}

std::string FirstLine(std::string text) {
  if (const size_t nl = text.find('\n'); nl != std::string::npos) text.resize(nl);
  return text;
}

// A digest that both sides compute over the values' text: FNV-1a, 64 bits.
struct Digest {
  unsigned long long h = 1469598103934665603ull;
  void Add(std::string_view bytes) {
    for (unsigned char c : bytes) h = (h ^ c) * 1099511628211ull;
  }
  void Value(const char* text, size_t n) {
    if (!text) {
      Add("\x01N");
    } else {
      Add(std::string_view(text, n));
    }
    Add("\x1f");
  }
  std::string Hex() const {
    char buf[17];
    std::snprintf(buf, sizeof buf, "%016llx", h);
    return buf;
  }
};

struct Pg {
  PGconn* conn;
  ~Pg() { PQfinish(conn); }
  PGresult* Exec(const std::string& sql, const std::string& what) {
    PGresult* r = PQexec(conn, sql.c_str());
    const ExecStatusType s = PQresultStatus(r);
    if (s != PGRES_COMMAND_OK && s != PGRES_TUPLES_OK) {
      const std::string why = FirstLine(PQresultErrorMessage(r));
      PQclear(r);
      Fail(what + ": " + why);
    }
    return r;
  }
};

// COPY's text form: backslash, tab and line ends escaped, NULL as \N.
void CopyField(std::string& line, const unsigned char* text, int n) {
  if (!text) {
    line += "\\N";
    return;
  }
  for (int i = 0; i < n; ++i) {
    const char c = static_cast<char>(text[i]);
    if (c == '\\')
      line += "\\\\";
    else if (c == '\t')
      line += "\\t";
    else if (c == '\n')
      line += "\\n";
    else if (c == '\r')
      line += "\\r";
    else
      line += c;
  }
}

}  // namespace

std::vector<CopiedTable> CopyToServer(const std::filesystem::path& sqliteFile,
                                      const std::string& uri, const std::string& schema,
                                      const CopyProgress& progress) {
  OpenedDatabase source = OpenDatabase(sqliteFile);
  if (!source.db) Fail("the site's database cannot be opened: " + source.problem);
  sqlite3* db = source.db.get();
  ConnectServer(uri);  // an unreachable server is one sentence
  Pg pg{PQconnectdb(uri.c_str())};
  PQsetClientEncoding(pg.conn, "UTF8");
  PQclear(pg.Exec("SET client_min_messages TO warning", "the database"));
  PGresult* count = pg.Exec(
      "SELECT count(*) FROM information_schema.tables WHERE table_schema NOT IN "
      "('pg_catalog', 'information_schema')",
      "the database cannot be read");
  const bool empty = std::string(PQgetvalue(count, 0, 0)) == "0";
  PQclear(count);
  if (!empty) Fail("the database holds tables already; the site moves into an empty database");
  PQclear(pg.Exec("BEGIN", "the database"));
  PQclear(pg.Exec(schema, "the database schema failed"));
  // The schema's own rows (the letters A-Z) come from the site, with their ids.
  PQclear(pg.Exec("DELETE FROM alphabetical", "the database"));

  std::vector<CopiedTable> copied;
  sqlite3_stmt* raw = nullptr;
  sqlite3_prepare_v2(db,
                     // The record index (db_index, its tables and its queue) is SQLite's own:
                     // a site on PostgreSQL searches without it.
                     "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE "
                     "'sqlite_%' AND name <> 'db_index' AND substr(name, 1, 9) <> 'db_index_' "
                     "ORDER BY name",
                     -1, &raw, nullptr);
  std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> tables(raw, sqlite3_finalize);
  while (sqlite3_step(tables.get()) == SQLITE_ROW) {
    CopiedTable table;
    table.name = reinterpret_cast<const char*>(sqlite3_column_text(tables.get(), 0));
    const std::string quoted = "\"" + table.name + "\"";
    // Both sides are read in one order for the digest: by id, or by the primary key of a
    // table without one (its text compared byte for byte on both).
    const KeyOrder order = KeyOrderOf(db, table.name);
    sqlite3_stmt* rowsRaw = nullptr;
    if (sqlite3_prepare_v2(db, ("SELECT * FROM " + quoted + " ORDER BY " + order.sqlite).c_str(),
                           -1, &rowsRaw, nullptr) != SQLITE_OK)
      Fail("the table " + table.name + " cannot be read: " + sqlite3_errmsg(db));
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> rows(rowsRaw, sqlite3_finalize);
    const int columns = sqlite3_column_count(rows.get());
    std::string names;
    for (int i = 0; i < columns; ++i)
      names += (i ? ", \"" : "\"") + std::string(sqlite3_column_name(rows.get(), i)) + "\"";
    long long total = 0;
    {
      sqlite3_stmt* c = nullptr;
      sqlite3_prepare_v2(db, ("SELECT count(*) FROM " + quoted).c_str(), -1, &c, nullptr);
      if (sqlite3_step(c) == SQLITE_ROW) total = sqlite3_column_int64(c, 0);
      sqlite3_finalize(c);
    }
    PGresult* started = PQexec(pg.conn, ("COPY " + quoted + " (" + names + ") FROM STDIN").c_str());
    const bool copying = PQresultStatus(started) == PGRES_COPY_IN;
    const std::string why = FirstLine(PQresultErrorMessage(started));
    PQclear(started);
    if (!copying) Fail("the table " + table.name + " has no place in the new database: " + why);
    Digest digest;
    std::string batch;
    int rc;
    while ((rc = sqlite3_step(rows.get())) == SQLITE_ROW) {
      for (int i = 0; i < columns; ++i) {
        const auto* text = sqlite3_column_text(rows.get(), i);
        const int n = sqlite3_column_bytes(rows.get(), i);
        if (i) batch += '\t';
        CopyField(batch, text, n);
        digest.Value(reinterpret_cast<const char*>(text), static_cast<size_t>(n));
      }
      batch += '\n';
      if (++table.rows % kBatch == 0) {
        PQputCopyData(pg.conn, batch.data(), static_cast<int>(batch.size()));
        batch.clear();
        if (progress) progress(table.name, table.rows, total);
      }
    }
    if (rc != SQLITE_DONE)
      Fail("the table " + table.name + " cannot be read: " + sqlite3_errmsg(db));
    if (!batch.empty()) PQputCopyData(pg.conn, batch.data(), static_cast<int>(batch.size()));
    PQputCopyEnd(pg.conn, nullptr);
    PGresult* done = PQgetResult(pg.conn);
    const bool ok = PQresultStatus(done) == PGRES_COMMAND_OK;
    const std::string refused = FirstLine(PQresultErrorMessage(done));
    PQclear(done);
    while (PGresult* rest = PQgetResult(pg.conn)) PQclear(rest);
    if (!ok) Fail("a row of the table " + table.name + " was refused: " + refused);
    if (progress) progress(table.name, table.rows, total);
    table.digest = digest.Hex();

    // The check: the same rows, value for value, read back from the server.
    PQclear(pg.Exec("DECLARE back NO SCROLL CURSOR FOR SELECT " + names + " FROM " + quoted +
                        " ORDER BY " + order.postgres,
                    "the copy of " + table.name + " cannot be read back"));
    Digest check;
    long long checked = 0;
    for (;;) {
      PGresult* part = pg.Exec("FETCH 5000 FROM back", "the copy of " + table.name);
      const int n = PQntuples(part);
      for (int r = 0; r < n; ++r)
        for (int i = 0; i < columns; ++i)
          check.Value(PQgetisnull(part, r, i) ? nullptr : PQgetvalue(part, r, i),
                      static_cast<size_t>(PQgetlength(part, r, i)));
      checked += n;
      PQclear(part);
      if (n == 0) break;
    }
    PQclear(pg.Exec("CLOSE back", "the database"));
    if (checked != table.rows || check.Hex() != table.digest)
      Fail("the copy of the table " + table.name + " differs from the original (" +
           std::to_string(checked) + " of " + std::to_string(table.rows) + " rows)");
    if (order.byId)
      PQclear(pg.Exec("SELECT setval(pg_get_serial_sequence('" + table.name +
                          "', 'id'), coalesce(max(id), 0) + 1, false) FROM " + quoted,
                      "the ids of " + table.name));
    copied.push_back(std::move(table));
  }
  PQclear(pg.Exec("COMMIT", "the database"));
  // Statistics for the planner and the visibility map for index-only scans (the list pages'
  // paging), as an operator would after a bulk load; the copy stands should this fail.
  PQclear(PQexec(pg.conn, "VACUUM (ANALYZE)"));
  return copied;
}

}  // namespace ostrakan::ado
