// One gathered entry stored (the duplicate lookup by link, then an insert or a refresh, in one
// write transaction) into existing sites' databases, side by side: bench/pg_vs_sqlite.mjs runs
// it over its SQLite and PostgreSQL sites of the same records. BM_StoreEntryInSite stores one
// entry a transaction, as the gathering pages do; BM_StorePageInSite a page of 20 a
// transaction, as `ostrakan gather` stores a unit (StoreEntries), and its `entry` column is the
// time per entry. The database files (an SQLite file or a PostgreSQL address file) are named,
// comma-separated, by OSTRAKAN_BENCH_DATABASES; the entries stored are deleted again at the end.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "gathering/headless_run.h"
#include "gathering/record_store.h"
#include "platform/ado/connection.h"
#include "platform/ado/pg_backend.h"
#include "platform/ado/write_transaction.h"

namespace {

using namespace ostrakan;

std::vector<std::string> Databases() {
  std::vector<std::string> out;
  const char* list = std::getenv("OSTRAKAN_BENCH_DATABASES");
  std::string rest = list ? list : "";
  while (!rest.empty()) {
    const size_t comma = rest.find(',');
    out.push_back(rest.substr(0, comma));
    rest = comma == std::string::npos ? "" : rest.substr(comma + 1);
  }
  return out;
}

// The site's database named by the benchmark's argument, or null (and the benchmark skipped).
std::shared_ptr<ado::Connection> SiteDatabase(benchmark::State& state) {
  const std::vector<std::string> databases = Databases();
  if (static_cast<size_t>(state.range(0)) >= databases.size()) {
    state.SkipWithError("OSTRAKAN_BENCH_DATABASES names no database here");
    return nullptr;
  }
  const std::string& file = databases[state.range(0)];
  state.SetLabel(ado::ServerAddressIn(file) ? "postgresql" : "sqlite");
  auto conn = std::make_shared<ado::Connection>();
  conn->Open(u"DBQ=" + FromUtf8(file) + u";");
  return conn;
}

// The n-th entry: half new links, half links the table holds (refreshed), as a run over known
// pages meets. The sites' record i has the link video<i % 50>.test/play/<i>.html.
gathering::GatheredRecord Entry(long n) {
  const long known = n * 7 % 90000 + 1;
  return {u"title", u"content",
          (n % 2) ? u"bench.test/new/" + FromUtf8(std::to_string(n)) + u".html"
                  : u"video" + FromUtf8(std::to_string(known % 50)) + u".test/play/" +
                        FromUtf8(std::to_string(known)) + u".html",
          u""};
}

const gathering::SourceSite kSource{u"Bench", u"http://bench.test/"};

void BM_StoreEntryInSite(benchmark::State& state) {
  const std::shared_ptr<ado::Connection> conn = SiteDatabase(state);
  if (!conn) return;
  long n = 0;
  for (auto _ : state) gathering::StoreRecord(*conn, Entry(++n), kSource);
  conn->Execute(u"delete from db where source = ?", {Variant(u"Bench")});
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StoreEntryInSite)->DenseRange(0, 1)->Unit(benchmark::kMicrosecond)->UseRealTime();

void BM_StorePageInSite(benchmark::State& state) {
  constexpr int kPage = 20;
  const std::shared_ptr<ado::Connection> conn = SiteDatabase(state);
  if (!conn) return;
  gathering::RecordStore store(*conn, kSource);
  gathering::RunCounts counts;
  long n = 0;
  for (auto _ : state) {
    std::vector<gathering::GatheredRecord> page;
    for (int i = 0; i < kPage; ++i) page.push_back(Entry(++n));
    ado::WriteTransaction transaction(*conn);
    gathering::StoreEntries(store, page, counts, nullptr);
    transaction.Commit();
  }
  conn->Execute(u"delete from db where source = ?", {Variant(u"Bench")});
  state.SetItemsProcessed(state.iterations() * kPage);
  state.counters["entry"] = benchmark::Counter(
      kPage, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_StorePageInSite)->DenseRange(0, 1)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
