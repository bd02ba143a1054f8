// One gathered entry stored (the duplicate lookup by link, then an insert or a refresh, in one
// write transaction) into existing sites' databases, side by side: bench/pg_vs_sqlite.mjs runs
// it over its SQLite and PostgreSQL sites of the same records. The database files (an SQLite
// file or a PostgreSQL address file) are named, comma-separated, by OSTRAKAN_BENCH_DATABASES;
// the entries stored are deleted again at the end.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "gathering/record_store.h"
#include "platform/ado/connection.h"
#include "platform/ado/pg_backend.h"

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

void BM_StoreEntryInSite(benchmark::State& state) {
  const std::vector<std::string> databases = Databases();
  if (static_cast<size_t>(state.range(0)) >= databases.size()) {
    state.SkipWithError("OSTRAKAN_BENCH_DATABASES names no database here");
    return;
  }
  const std::string& file = databases[state.range(0)];
  state.SetLabel(ado::ServerAddressIn(file) ? "postgresql" : "sqlite");
  auto conn = std::make_shared<ado::Connection>();
  conn->Open(u"DBQ=" + FromUtf8(file) + u";");
  const gathering::SourceSite source{u"Bench", u"http://bench.test/"};
  long n = 0;
  for (auto _ : state) {
    // Half new links, half links the table holds (refreshed), as a run over known pages meets.
    // The sites' record i has the link video<i % 50>.test/play/<i>.html.
    ++n;
    const long known = n * 7 % 90000 + 1;
    const std::u16string link =
        (n % 2) ? u"bench.test/new/" + FromUtf8(std::to_string(n)) + u".html"
                : u"video" + FromUtf8(std::to_string(known % 50)) + u".test/play/" +
                      FromUtf8(std::to_string(known)) + u".html";
    gathering::StoreRecord(*conn, {u"title", u"content", link, u""}, source);
  }
  conn->Execute(u"delete from db where source = ?", {Variant(u"Bench")});
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StoreEntryInSite)->DenseRange(0, 1)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
