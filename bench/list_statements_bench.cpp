// The statements of db_list.asp page 1 and of db_search.asp by title, run bare in SQLite
// (prepared, bound, stepped, every column read): the yardstick of those pages on a large
// table. The database is the one bench/run_all.mjs fills; its path comes in
// $OSTRAKAN_LIST_DB, and without it these benchmarks are skipped.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <string>

namespace {

// Runs each statement once, binding `word` to its mark if it has one.
void RunBare(benchmark::State& state, std::initializer_list<const char*> statements,
             const char* word) {
  const char* path = std::getenv("OSTRAKAN_LIST_DB");
  if (!path) {
    state.SkipWithError("OSTRAKAN_LIST_DB is not set");
    return;
  }
  sqlite3* db = nullptr;
  sqlite3_open_v2(path, &db, SQLITE_OPEN_READONLY, nullptr);
  for (auto _ : state) {
    for (const char* sql : statements) {
      sqlite3_stmt* s = nullptr;
      if (sqlite3_prepare_v2(db, sql, -1, &s, nullptr) != SQLITE_OK) {
        state.SkipWithError(sqlite3_errmsg(db));
        break;
      }
      if (sqlite3_bind_parameter_count(s) > 0) sqlite3_bind_text(s, 1, word, -1, SQLITE_STATIC);
      while (sqlite3_step(s) == SQLITE_ROW)
        for (int i = 0; i < sqlite3_column_count(s); ++i)
          benchmark::DoNotOptimize(sqlite3_column_text(s, i));
      sqlite3_finalize(s);
    }
  }
  sqlite3_close(db);
}

void BM_RecordListStatements(benchmark::State& state) {
  RunBare(state,
          {"select count(*) as db_count from db",
           "select id,title,url,source,source_url,time from db order by id desc limit 20"},
          nullptr);
}
BENCHMARK(BM_RecordListStatements)->Unit(benchmark::kMillisecond);

void BM_RecordSearchStatements(benchmark::State& state) {
  RunBare(state,
          {"select count(*) as db_count from db where title like '%' || ? || '%'",
           "select id,title,content,url,source,source_url,time from db where title like '%' || ? "
           "|| '%' order by id desc limit 20"},
          "功夫");
}
BENCHMARK(BM_RecordSearchStatements)->Unit(benchmark::kMillisecond);

}  // namespace
