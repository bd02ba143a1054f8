// The run queue: one worker against two on a paced fixture of four remote hosts (the hosts run
// in parallel, each host stays at one fetch at a time: max_per_host), and the cost per page
// of a queued run worked by one worker against a plain headless run of the same pages.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <thread>

#include "engine/commands.h"
#include "engine/gather_command.h"
#include "engine/worker_command.h"
#include "support/list_rule_fixture.h"
#include "support/remote_site.h"

namespace {

using namespace ostrakan;
namespace fsys = std::filesystem;

constexpr int kHosts = 4, kPagesPerHost = 10, kPlainPages = 100;

// The libcurl fetcher, counting fetches under way per host and the most there ever were.
class CountingFetcher : public http::Fetcher {
 public:
  http::FetchResult Get(const std::string& address) override {
    const std::string host = address.substr(0, address.find('/', 8));
    {
      std::lock_guard lock(mutex_);
      max_ = std::max(max_, ++busy_[host]);
    }
    http::FetchResult r = real_->Get(address);
    std::lock_guard lock(mutex_);
    --busy_[host];
    return r;
  }
  int max() const { return max_; }

 private:
  std::shared_ptr<http::Fetcher> real_ = http::MakeCurlFetcher();
  std::mutex mutex_;
  std::map<std::string, int> busy_;
  int max_ = 0;
};

struct Site {
  testing::TempDir dir;
  fsys::path site = dir.path() / "site";
  Site() {
    std::ostringstream out, err;
    engine::RunInit(
        {site, fsys::path(OSTRAKAN_SOURCE_DIR) / "site", "admin", std::string("secret123")}, out,
        err);
  }
  fsys::path db() const { return site / "data/ostrakan.db"; }
  void Queue(const std::string& rule, int pages, int delayMs) {
    std::string problem;
    auto o = engine::ParseGatherArgs(
        {"--site", site.string(), "list", rule, "--pages", "1-" + std::to_string(pages),
         "--delay-ms", std::to_string(delayMs), "--queue"},
        problem);
    std::ostringstream out, err;
    engine::RunGather(*o, out, err);
  }
  void Work(std::shared_ptr<http::Fetcher> fetcher) {
    engine::WorkerOptions o;
    o.site = site;
    o.once = true;
    o.fetcher = std::move(fetcher);
    std::ostringstream out, err;
    engine::RunWorker(o, out, err);
  }
};

// Four hosts, ten pages each, each page answered after 20 ms, the runs pausing 50 ms between
// fetches of a host.
void BM_QueueWorkersOnFourPacedHosts(benchmark::State& state) {
  const int workers = static_cast<int>(state.range(0));
  std::vector<std::unique_ptr<testing::RemoteSite>> hosts;
  for (int h = 0; h < kHosts; ++h) {
    hosts.push_back(std::make_unique<testing::RemoteSite>());
    for (int n = 1; n <= kPagesPerHost; ++n)
      hosts.back()->Set("/r/" + std::to_string(n) + ".html",
                        testing::RemoteReply(200, testing::FixtureResultPage(n, 10)).Delay(20));
  }
  auto fetcher = std::make_shared<CountingFetcher>();
  for (auto _ : state) {
    state.PauseTiming();
    auto site = std::make_unique<Site>();
    for (auto& host : hosts)
      site->Queue(testing::InsertFixtureRule(site->db(), host->Url("/r/[page].html?q=[keyword]")),
                  kPagesPerHost, 50);
    state.ResumeTiming();
    std::vector<std::thread> threads;
    for (int w = 0; w < workers; ++w) threads.emplace_back([&] { site->Work(fetcher); });
    for (auto& t : threads) t.join();
    state.PauseTiming();
    site.reset();
    state.ResumeTiming();
  }
  state.counters["pages/s"] =
      benchmark::Counter(static_cast<double>(kHosts * kPagesPerHost * state.iterations()),
                         benchmark::Counter::kIsRate);
  state.counters["max_per_host"] = fetcher->max();
}
BENCHMARK(BM_QueueWorkersOnFourPacedHosts)
    ->Arg(1)
    ->Arg(2)
    ->Arg(4)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);

// One host, no pause: what the queue costs per page over a plain run.
void BM_PagePlainOrQueued(benchmark::State& state) {
  const bool queued = state.range(0) == 1;
  testing::RemoteSite remote;
  for (int n = 1; n <= kPlainPages; ++n)
    remote.Set("/r/" + std::to_string(n) + ".html", {200, testing::FixtureResultPage(n, 20)});
  auto fetcher = http::MakeCurlFetcher();
  for (auto _ : state) {
    state.PauseTiming();
    auto site = std::make_unique<Site>();
    const std::string rule =
        testing::InsertFixtureRule(site->db(), remote.Url("/r/[page].html?q=[keyword]"));
    state.ResumeTiming();
    if (queued) {
      site->Queue(rule, kPlainPages, 0);
      site->Work(fetcher);
    } else {
      engine::GatherOptions o;
      o.site = site->site;
      o.ruleId = std::stoll(rule);
      o.last = kPlainPages;
      o.delayMs = 0;
      o.fetcher = fetcher;
      std::ostringstream out, err;
      engine::RunGather(o, out, err);
    }
    state.PauseTiming();
    site.reset();
    state.ResumeTiming();
  }
  state.counters["s/page"] =
      benchmark::Counter(static_cast<double>(kPlainPages * state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_PagePlainOrQueued)
    ->ArgName("queued")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(5);

}  // namespace
