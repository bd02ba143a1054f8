// The record index at scale (1,000,000 records unless OSTRAKAN_BENCH_RECORDS says otherwise),
// on SQLite (BM_Search..., BM_Store..., BM_IndexRebuild) and on PostgreSQL (BM_Pg...; a
// throwaway cluster that the bench starts and removes) with the same records:
// a search (count and first page of 20) by a two-character Chinese word, a three-character
// word and a rare Latin word through the index against the LIKE scan on the same data; storing
// one gathered entry with the index (taking it into the index included) against a copy of
// the database without it; the time of a
// rebuild and the index's size against the table's (counters of BM_IndexRebuild).
#include <benchmark/benchmark.h>
#include <libpq-fe.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include "gathering/record_store.h"
#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"
#include "search/record_index.h"
#include "search/record_match.h"
#include "support/page_harness.h"

namespace {

using namespace ostrakan;
namespace fsys = std::filesystem;

const std::u16string kWords[] = {u"功夫", u"熊猫侠", u"zebrafish"};

// Text with the skew of real titles: most characters from a few hundred common ones.
std::string RandomText(std::mt19937& random, int length) {
  std::u16string text;
  for (int i = 0; i < length; ++i) {
    if (random() % 12 == 0) {
      text += u' ';
      continue;
    }
    const int rank = random() % 10 < 7 ? random() % 300 : random() % 3500;
    text += static_cast<char16_t>(0x4E00 + rank * 5);
  }
  return ToUtf8(text);
}

long RecordCount() {
  const char* n = std::getenv("OSTRAKAN_BENCH_RECORDS");
  return n ? std::atol(n) : 1000000;
}

// The generated records, the same on both databases: Calls add(title, content, url) for each.
template <typename Add>
void GenerateRecords(long records, Add&& add) {
  std::mt19937 random(7);
  for (long i = 1; i <= records; ++i) {
    std::string title = RandomText(random, 8 + random() % 12);
    if (i % 100 == 0) title += ToUtf8(kWords[0]);         // 1 record in 100
    if (i % 1000 == 0) title += ToUtf8(kWords[1]);        // 1 in 1,000
    if (i % (records / 10) == 0) title += " Zebrafish ";  // 10 records
    const std::string content = RandomText(random, 30 + random() % 60);
    add(title, content, "v.test/play/" + std::to_string(i) + ".html");
  }
}

double PagesOf(sqlite3* db, const char* what) {
  sqlite3_stmt* s;
  sqlite3_prepare_v2(db, what, -1, &s, nullptr);
  sqlite3_step(s);
  const double n = sqlite3_column_double(s, 0);
  sqlite3_finalize(s);
  return n;
}

void Exec(sqlite3* db, const std::string& sql) {
  char* error = nullptr;
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK)
    throw std::runtime_error(std::string("bench SQL failed: ") + (error ? error : ""));
}

struct Data {
  testing::TestSite site;
  fsys::path plain;  // a copy without the index
  long records = 0;
  double tableMiB = 0, indexMiB = 0, rebuildSeconds = 0;
  std::shared_ptr<ado::Connection> indexed, unindexed;

  Data() {
    records = RecordCount();
    sqlite3* db;
    sqlite3_open(site.database().c_str(), &db);
    // The records go in without the index's triggers; the rebuild below indexes them all.
    Exec(db, "drop trigger db_index_insert; begin");
    sqlite3_stmt* insert;
    sqlite3_prepare_v2(db,
                       "insert into db (title, content, url, source, source_url) "
                       "values (?, ?, ?, 'src', 'src.test')",
                       -1, &insert, nullptr);
    GenerateRecords(
        records, [&](const std::string& title, const std::string& content, const std::string& url) {
          sqlite3_bind_text(insert, 1, title.c_str(), -1, SQLITE_TRANSIENT);
          sqlite3_bind_text(insert, 2, content.c_str(), -1, SQLITE_TRANSIENT);
          sqlite3_bind_text(insert, 3, url.c_str(), -1, SQLITE_TRANSIENT);
          sqlite3_step(insert);
          sqlite3_reset(insert);
        });
    sqlite3_finalize(insert);
    Exec(db, "commit; PRAGMA wal_checkpoint(TRUNCATE)");
    const double pageMiB = PagesOf(db, "PRAGMA page_size") / 1048576;
    const double before = PagesOf(db, "PRAGMA page_count");
    Exec(db, testing::ReadFile(testing::SourceDir() / "site/data/schema.sql")
                 .substr(testing::ReadFile(testing::SourceDir() / "site/data/schema.sql")
                             .find("CREATE TRIGGER IF NOT EXISTS db_index_insert")));
    sqlite3_close(db);

    indexed = Open(site.database());
    const auto start = std::chrono::steady_clock::now();
    search::RebuildRecordIndex(*indexed);
    rebuildSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    indexed->Execute(u"PRAGMA wal_checkpoint(TRUNCATE)");
    sqlite3_open(site.database().c_str(), &db);
    tableMiB = before * pageMiB;
    indexMiB = (PagesOf(db, "PRAGMA page_count") - before) * pageMiB;
    sqlite3_close(db);

    plain = site.root() / "data/plain.db";
    fsys::copy_file(site.database(), plain);
    sqlite3_open(plain.c_str(), &db);
    Exec(db,
         "drop trigger db_index_insert; drop trigger db_index_update; drop trigger "
         "db_index_delete; drop table db_index; drop table db_index_pending");
    sqlite3_close(db);
    unindexed = Open(plain);
  }
  static std::shared_ptr<ado::Connection> Open(const fsys::path& file) {
    auto c = std::make_shared<ado::Connection>();
    c->Open(u"DBQ=" + FromUtf8(file.string()) + u";");
    return c;
  }
};

Data& Shared() {
  static Data data;
  return data;
}

// The same records on PostgreSQL, in a database of a throwaway cluster; `plain` is a copy
// without the index (its table and triggers dropped).
struct PgData {
  std::unique_ptr<testing::TestSite> site;
  fsys::path plain;
  long records = 0;
  double tableMiB = 0, indexMiB = 0, rebuildSeconds = 0;
  std::shared_ptr<ado::Connection> indexed, unindexed;

  static void Run(PGconn* pg, const std::string& sql) {
    PGresult* r = PQexec(pg, sql.c_str());
    const ExecStatusType status = PQresultStatus(r);
    const std::string error = PQresultErrorMessage(r);
    PQclear(r);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_COPY_IN)
      throw std::runtime_error("bench SQL failed: " + error);
  }
  static double MiB(PGconn* pg, const char* relation) {
    PGresult* r =
        PQexec(pg, ("select pg_total_relation_size('" + std::string(relation) + "')").c_str());
    const double bytes = std::atof(PQgetvalue(r, 0, 0));
    PQclear(r);
    return bytes / 1048576;
  }

  PgData() {
    records = RecordCount();
    setenv("OSTRAKAN_TEST_DATABASE", "postgresql", 1);
    site = std::make_unique<testing::TestSite>();
    unsetenv("OSTRAKAN_TEST_DATABASE");
    const std::string uri = *ado::ServerAddressIn(site->database());
    const std::size_t at = uri.find(":///") + 4;  // postgresql:///NAME?host=...
    const std::string name = uri.substr(at, uri.find('?') - at);
    PGconn* pg = PQconnectdb(uri.c_str());
    // The records go in without the index's trigger; the rebuild below indexes them all.
    Run(pg, "alter table db disable trigger db_gram_sync");
    Run(pg, "copy db (title, content, url, source, source_url) from stdin");
    std::string batch;
    GenerateRecords(
        records, [&](const std::string& title, const std::string& content, const std::string& url) {
          batch += title + '\t' + content + '\t' + url + "\tsrc\tsrc.test\n";
          if (batch.size() > (1 << 20)) {
            PQputCopyData(pg, batch.data(), static_cast<int>(batch.size()));
            batch.clear();
          }
        });
    PQputCopyData(pg, batch.data(), static_cast<int>(batch.size()));
    PQputCopyEnd(pg, nullptr);
    PQclear(PQgetResult(pg));
    Run(pg, "alter table db enable trigger db_gram_sync");
    Run(pg, "vacuum analyze db");
    tableMiB = MiB(pg, "db");

    indexed = Data::Open(site->database());
    const auto start = std::chrono::steady_clock::now();
    search::RebuildRecordIndex(*indexed);
    rebuildSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    indexMiB = MiB(pg, "db_gram");
    PQfinish(pg);

    // A copy without the index: every session of the original closed first.
    indexed.reset();
    ado::DropIdleServerSessions();
    const std::string copy = name + "_plain";
    testing::ServerSql(testing::ServerUri("postgres"),
                       "create database " + copy + " template " + name);
    testing::ServerSql(testing::ServerUri(copy),
                       "drop trigger db_gram_sync on db; drop trigger db_gram_clear on db; "
                       "drop table db_gram; drop function db_gram_take_in");
    plain = site->root() / "data/plain.addr";
    std::ofstream(plain) << testing::ServerUri(copy) << "\n";
    indexed = Data::Open(site->database());
    unindexed = Data::Open(plain);
  }
};

PgData& PgShared() {
  static PgData data;
  return data;
}

void Search(benchmark::State& state, ado::Connection& conn, bool useIndex) {
  const std::u16string& word = kWords[state.range(0)];
  const Variant w(word);
  search::Condition c =
      search::ContainsWord(word, search::Fields::TitleOrContent, search::RecordIndexOf(conn));
  if (!useIndex) {
    c.where = u"where (title like '%' || ? || '%' or content like '%' || ? || '%')";
    c.params = {w, w};
    c.count = u"select count(*) from db " + c.where;
    c.countParams = c.params;
  }
  double found = 0;
  for (auto _ : state) {
    found = CDbl(conn.Execute(c.count, c.countParams)->FieldAt(0));
    auto rs = conn.Execute(
        u"select id,title,content,source,time from db " + c.where + u" order by id desc limit 20",
        c.params);
    for (; !rs->Eof(); rs->MoveNext()) benchmark::DoNotOptimize(rs->FieldAt(1));
  }
  state.counters["found"] = found;
  state.SetLabel(ToUtf8(word));
}

void BM_SearchIndexed(benchmark::State& state) {
  Search(state, *Shared().indexed, true);
}
void BM_SearchLike(benchmark::State& state) {
  Search(state, *Shared().indexed, false);
}
BENCHMARK(BM_SearchIndexed)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SearchLike)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
void BM_PgSearchIndexed(benchmark::State& state) {
  Search(state, *PgShared().indexed, true);
}
void BM_PgSearchLike(benchmark::State& state) {
  Search(state, *PgShared().indexed, false);
}
BENCHMARK(BM_PgSearchIndexed)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PgSearchLike)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

// One gathered entry (a new link, a title and a description of typical length) stored with
// the duplicate test and insert of a gathering run.
// With `catchUp`, each store is followed by what a search does first (taking the waiting
// records into the index, 1,000 at a time), so the index's share of the work is counted.
void Store(benchmark::State& state, ado::Connection& conn, bool catchUp = false) {
  std::mt19937 random(11);
  gathering::RecordStore store(conn, {u"bench", u"http://bench.test/"});
  long n = 0;
  for (auto _ : state) {
    const std::string title = RandomText(random, 16), content = RandomText(random, 60);
    store.Store({FromUtf8(title), FromUtf8(content),
                 u"http://bench.test/" + FromUtf8(std::to_string(++n)) + u".html", u""});
    if (catchUp) search::CatchUp(conn);
  }
}
void BM_StoreWithIndex(benchmark::State& state) {
  Store(state, *Shared().indexed);
}
void BM_StoreWithoutIndex(benchmark::State& state) {
  Store(state, *Shared().unindexed);
}
BENCHMARK(BM_StoreWithoutIndex)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StoreWithIndex)->Unit(benchmark::kMicrosecond);
void BM_PgStoreWithIndex(benchmark::State& state) {
  Store(state, *PgShared().indexed);
}
void BM_PgStoreWithoutIndex(benchmark::State& state) {
  Store(state, *PgShared().unindexed);
}
BENCHMARK(BM_PgStoreWithoutIndex)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PgStoreWithIndex)->Unit(benchmark::kMicrosecond);

void BM_IndexRebuild(benchmark::State& state) {
  Data& d = Shared();
  for (auto _ : state) benchmark::DoNotOptimize(d.records);
  state.counters["records"] = static_cast<double>(d.records);
  state.counters["rebuild_s"] = d.rebuildSeconds;
  state.counters["table_MiB"] = d.tableMiB;
  state.counters["index_MiB"] = d.indexMiB;
}
BENCHMARK(BM_IndexRebuild)->Iterations(1);

void BM_PgIndexRebuild(benchmark::State& state) {
  PgData& d = PgShared();
  for (auto _ : state) benchmark::DoNotOptimize(d.records);
  state.counters["records"] = static_cast<double>(d.records);
  state.counters["rebuild_s"] = d.rebuildSeconds;
  state.counters["table_MiB"] = d.tableMiB;
  state.counters["index_MiB"] = d.indexMiB;
}
BENCHMARK(BM_PgIndexRebuild)->Iterations(1);

}  // namespace
