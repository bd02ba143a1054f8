// Gathering: extraction of a large result page against one case-insensitive scan of it; a
// headless run over the loopback fixture against fetching the same pages alone; the cost of
// the same for an ID run (one record per page); the duplicate test and store per entry, with a
// small and a large video table.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/lcase.h"
#include "engine/commands.h"
#include "engine/gather_command.h"
#include "gathering/list_extraction.h"
#include "gathering/record_store.h"
#include "platform/text/bytes_to_bstr.h"
#include "support/id_rule_fixture.h"
#include "support/list_rule_fixture.h"
#include "support/remote_site.h"

namespace {

using namespace ostrakan;
namespace fsys = std::filesystem;

const fsys::path kSourceSite = fsys::path(OSTRAKAN_SOURCE_DIR) / "site";

gathering::ListRule FixtureRule() {
  gathering::ListRule r;
  r.web = u"Fixture";
  r.url = u"http://remote.test/";
  r.next_page = u"1";
  r.charset = u"utf-8";
  r.error_html = u"<div class=\"none\">";
  r.cyc_border = u"<li class=\"v\">";
  r.cyc_border_sn = u"1";
  r.image_start = u"<img src=\"http://";
  r.image_end = u"\" alt";
  r.url_start = u"<a href=\"";
  r.url_end = u"\" title";
  r.v_url = u"http://remote.test/";
  r.title_start = u"title=\"x\">";
  r.title_end = u"</a>";
  r.content_start = u"<p>";
  r.content_end = u"</p>";
  r.content_filtration = u" text";
  return r;
}

// A result page of about 1 MB with 1,000 entries (padding between them, as real pages have).
std::u16string LargePage() {
  std::u16string html = u"<html><body><ul>";
  const std::u16string padding(880, u'x');
  for (int n = 1; n <= 1000; ++n) {
    std::u16string id = FromUtf8(std::to_string(n));
    html += u"<li class=\"v\"><div class=\"Pad\">" + padding +
            u"</div><img src=\"http://img.test/" + id + u".jpg\" alt=\"\"><a href=\"v/" + id +
            u".html\" title=\"x\">Video 影片 " + id + u"</a><p>About " + id + u" Text</p></li>\n";
  }
  return html + u"</ul></body></html>";
}

void BM_ExtractLargePage(benchmark::State& state) {
  const std::u16string page = LargePage();
  size_t entries = 0;
  for (auto _ : state) {
    gathering::ListExtractor x(FixtureRule());
    entries = 0;
    x.Cut(page, [&](const gathering::ListEntry&) { ++entries; });
  }
  state.counters["entries"] = static_cast<double>(entries);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(page.size() * 2));
}
BENCHMARK(BM_ExtractLargePage)->Unit(benchmark::kMillisecond);

// The yardstick: lower-case the page once and search it through for a marker it lacks.
void BM_CaseInsensitiveScan(benchmark::State& state) {
  const std::u16string page = LargePage();
  for (auto _ : state) {
    std::u16string folded = LCase(page);
    benchmark::DoNotOptimize(folded.find(u"<div class=\"none\">"));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(page.size() * 2));
}
BENCHMARK(BM_CaseInsensitiveScan)->Unit(benchmark::kMillisecond);

constexpr int kRunPages = 200;

// The CPU time of the whole process (every thread, the fixture site's too), in microseconds:
// unlike wall time, it does not depend on what else the machine runs.
double ProcessCpuUs() {
  rusage u{};
  getrusage(RUSAGE_SELF, &u);
  return (u.ru_utime.tv_sec + u.ru_stime.tv_sec) * 1e6 + u.ru_utime.tv_usec + u.ru_stime.tv_usec;
}

// A new site with one list rule (or ID rule) at `address`, and the options of a headless run
// of it over pages (or IDs) 1 .. last without pauses.
engine::GatherOptions RunOn(const fsys::path& site, const std::string& address, long last,
                            bool idRule = false) {
  std::ostringstream out, err;
  engine::RunInit({site, kSourceSite, "admin", std::string("secret123")}, out, err);
  const fsys::path db = site / "data/ostrakan.db";
  const std::string rule =
      idRule ? testing::InsertFixtureIdRule(db, address) : testing::InsertFixtureRule(db, address);
  engine::GatherOptions o;
  o.site = site;
  if (idRule) o.kind = "id";
  o.ruleId = std::stoll(rule);
  o.first = 1;
  o.last = last;
  o.delayMs = 0;
  return o;
}

struct Fixture {
  Fixture() { Serve(0); }
  // Serves pages whose entries are numbered from `first` on (new links for a new number).
  void Serve(int first) {
    for (int p = 1; p <= kRunPages; ++p)
      remote.Set("/r/" + std::to_string(p) + ".html",
                 {200, testing::FixtureResultPage(first + p, 20)});
  }
  testing::RemoteSite remote;
};

// Runs over the same 200 pages: with `refresh`, every timed run meets links stored by an
// earlier run (a known record is refreshed), otherwise every run meets new links (each is
// inserted). The first run of a site is of the second kind.
void HeadlessRun(benchmark::State& state, bool refresh) {
  Fixture f;
  testing::TempDir dir;
  engine::GatherOptions o =
      RunOn(dir.path() / "site", f.remote.Url("/r/[page].html?q=[keyword]"), kRunPages);
  std::ostringstream o0, e0;
  if (refresh) engine::RunGather(o, o0, e0);
  double cpu = 0;
  int served = 0;
  for (auto _ : state) {
    if (!refresh) {
      state.PauseTiming();
      f.Serve(++served * kRunPages);
      state.ResumeTiming();
    }
    const double before = ProcessCpuUs();
    std::ostringstream o1, e1;
    if (engine::RunGather(o, o1, e1) != 0) state.SkipWithError("run failed");
    cpu += ProcessCpuUs() - before;
  }
  state.counters["pages/s"] = benchmark::Counter(
      static_cast<double>(kRunPages * state.iterations()), benchmark::Counter::kIsRate);
  state.counters["cpu_us/page"] = cpu / (kRunPages * state.iterations());
}
void BM_HeadlessRun(benchmark::State& state) {
  HeadlessRun(state, true);
}
BENCHMARK(BM_HeadlessRun)->Unit(benchmark::kMillisecond)->UseRealTime();
void BM_HeadlessRunNewEntries(benchmark::State& state) {
  HeadlessRun(state, false);
}
BENCHMARK(BM_HeadlessRunNewEntries)->Unit(benchmark::kMillisecond)->UseRealTime();

// The same run with the pages served from memory: what cutting and storing cost per page.
class MemoryFetcher : public http::Fetcher {
 public:
  http::FetchResult Get(const std::string& address) override {
    size_t slash = address.rfind('/');
    int page = std::atoi(address.c_str() + slash + 1);
    return {true, 200, testing::FixtureResultPage(page, 20), ""};
  }
};

void BM_HeadlessRunFromMemory(benchmark::State& state) {
  testing::TempDir dir;
  engine::GatherOptions o = RunOn(dir.path() / "site", "http://memory/r/[page].html", kRunPages);
  o.fetcher = std::make_shared<MemoryFetcher>();
  for (auto _ : state) {
    std::ostringstream o1, e1;
    if (engine::RunGather(o, o1, e1) != 0) state.SkipWithError("run failed");
  }
  state.counters["pages/s"] = benchmark::Counter(
      static_cast<double>(kRunPages * state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_HeadlessRunFromMemory)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_FetchOnly(benchmark::State& state) {
  Fixture f;
  auto fetcher = http::MakeCurlFetcher();
  const double cpu = ProcessCpuUs();
  for (auto _ : state) {
    for (int p = 1; p <= kRunPages; ++p)
      benchmark::DoNotOptimize(
          fetcher->Get(f.remote.Url("/r/" + std::to_string(p) + ".html?q=%E7%94%B5")));
  }
  state.counters["pages/s"] = benchmark::Counter(
      static_cast<double>(kRunPages * state.iterations()), benchmark::Counter::kIsRate);
  state.counters["cpu_us/page"] = (ProcessCpuUs() - cpu) / (kRunPages * state.iterations());
}
BENCHMARK(BM_FetchOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

// Result pages of about 1 MiB with 2,000 entries each (some 400 bytes of markup between
// entries, as real pages have).
constexpr int kLargePages = 20, kLargeEntries = 2000;

std::string LargeResultPage(int page) {
  std::string html = testing::FixtureResultPage(page, kLargeEntries);
  const std::string padding = "<div class=\"Pad\">" + std::string(380, 'x') + "</div>";
  for (size_t at = html.find("<li class=\"v\">"); at != std::string::npos;
       at = html.find("<li class=\"v\">", at + padding.size() + 1))
    html.insert(at + 14, padding);
  return html;
}

struct LargeFixture {
  LargeFixture() {
    for (int p = 1; p <= kLargePages; ++p)
      remote.Set("/big/" + std::to_string(p) + ".html", {200, LargeResultPage(p)});
  }
  testing::RemoteSite remote;
};

void BM_HeadlessRunLargePages(benchmark::State& state) {
  LargeFixture f;
  testing::TempDir dir;
  engine::GatherOptions o =
      RunOn(dir.path() / "site", f.remote.Url("/big/[page].html?q=[keyword]"), kLargePages);
  for (auto _ : state) {
    std::ostringstream o1, e1;
    if (engine::RunGather(o, o1, e1) != 0) state.SkipWithError("run failed");
  }
  state.counters["pages/s"] = benchmark::Counter(
      static_cast<double>(kLargePages * state.iterations()), benchmark::Counter::kIsRate);
  state.counters["entries/s"] =
      benchmark::Counter(static_cast<double>(kLargePages * kLargeEntries * state.iterations()),
                         benchmark::Counter::kIsRate);
}
BENCHMARK(BM_HeadlessRunLargePages)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_FetchOnlyLargePages(benchmark::State& state) {
  LargeFixture f;
  auto fetcher = http::MakeCurlFetcher();
  for (auto _ : state)
    for (int p = 1; p <= kLargePages; ++p)
      benchmark::DoNotOptimize(
          fetcher->Get(f.remote.Url("/big/" + std::to_string(p) + ".html?q=%E7%94%B5")));
  state.counters["pages/s"] = benchmark::Counter(
      static_cast<double>(kLargePages * state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FetchOnlyLargePages)->Unit(benchmark::kMillisecond)->UseRealTime();

// The ID run: one page and one record per ID, so fetching weighs more than for a list run.
constexpr int kRunIds = 500;

struct IdFixture {
  IdFixture() {
    for (int id = 1; id <= kRunIds; ++id)
      remote.Set("/id/" + std::to_string(id) + ".html", {200, testing::FixtureIdPage(id)});
  }
  testing::RemoteSite remote;
};

void BM_HeadlessIdRun(benchmark::State& state) {
  IdFixture f;
  testing::TempDir dir;
  engine::GatherOptions o =
      RunOn(dir.path() / "site", f.remote.Url("/id/[id].html"), kRunIds, true);
  for (auto _ : state) {
    std::ostringstream o1, e1;
    if (engine::RunGather(o, o1, e1) != 0) state.SkipWithError("run failed");
  }
  state.counters["ids/s"] = benchmark::Counter(static_cast<double>(kRunIds * state.iterations()),
                                               benchmark::Counter::kIsRate);
}
BENCHMARK(BM_HeadlessIdRun)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_IdFetchOnly(benchmark::State& state) {
  IdFixture f;
  auto fetcher = http::MakeCurlFetcher();
  for (auto _ : state) {
    for (int id = 1; id <= kRunIds; ++id)
      benchmark::DoNotOptimize(fetcher->Get(f.remote.Url("/id/" + std::to_string(id) + ".html")));
  }
  state.counters["ids/s"] = benchmark::Counter(static_cast<double>(kRunIds * state.iterations()),
                                               benchmark::Counter::kIsRate);
}
BENCHMARK(BM_IdFetchOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

// Memory over a long run: 10,000 pages of 20 entries (delay 0), the resident size sampled
// every 1,000 pages. The pages come from memory: the loopback fixture keeps a finished thread
// per connection until it closes, which would be measured instead of the run. Counters: the
// resident size after page 1,000 and its growth from there to the last page (flat: near 0).
constexpr int kLongRunPages = 10000;

long ResidentKiB() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
  return 0;
}

// Result pages made on demand, noting the resident size every 1,000 pages.
class SampledFetcher : public MemoryFetcher {
 public:
  http::FetchResult Get(const std::string& address) override {
    if (++pages_ % 1000 == 0) samples.push_back(ResidentKiB());
    return MemoryFetcher::Get(address);
  }
  std::vector<long> samples;

 private:
  long pages_ = 0;
};

void BM_HeadlessRunMemory(benchmark::State& state) {
  testing::TempDir dir;
  engine::GatherOptions o =
      RunOn(dir.path() / "site", "http://memory/r/[page].html", kLongRunPages);
  auto fetcher = std::make_shared<SampledFetcher>();
  o.fetcher = fetcher;
  for (auto _ : state) {
    std::ostringstream o1, e1;
    if (engine::RunGather(o, o1, e1) != 0) state.SkipWithError("run failed");
  }
  const std::vector<long>& s = fetcher->samples;
  if (s.size() < 2) return;
  state.counters["rss_kib_at_1000"] = static_cast<double>(s.front());
  state.counters["rss_growth_kib"] = static_cast<double>(s.back() - s.front());
  state.counters["pages/s"] = benchmark::Counter(
      static_cast<double>(kLongRunPages * state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_HeadlessRunMemory)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

// A site whose video table holds `rows` records.
struct StoreSite {
  explicit StoreSite(long rows) {
    std::ostringstream out, err;
    engine::RunInit({dir.path() / "site", kSourceSite, "admin", std::string("secret123")}, out,
                    err);
    db = dir.path() / "site/data/ostrakan.db";
    testing::Sql(db, "with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
                         std::to_string(rows) +
                         ") insert into db (title, content, url, source, source_url) "
                         "select 'title ' || i, 'content ' || i, 'old.test/v/' || i || '.html', "
                         "'Old', 'old.test' from n");
    conn = std::make_shared<ado::Connection>();
    conn->Open(u"DBQ=" + FromUtf8(db.string()) + u";");
  }
  testing::TempDir dir;
  fsys::path db;
  std::shared_ptr<ado::Connection> conn;
};

void BM_StoreEntry(benchmark::State& state) {
  StoreSite s(state.range(0));
  const gathering::SourceSite source{u"Fixture", u"http://remote.test/"};
  long n = 0;
  for (auto _ : state) {
    // Half new links, half known ones (refreshed).
    ++n;
    std::u16string link =
        (n % 2) ? u"remote.test/v/" + FromUtf8(std::to_string(n)) + u".html"
                : u"old.test/v/" + FromUtf8(std::to_string(n * 7 % state.range(0) + 1)) + u".html";
    gathering::StoreRecord(*s.conn, {u"title", u"content", link, u""}, source);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StoreEntry)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace
