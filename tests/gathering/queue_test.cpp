// The run queue and `ostrakan worker` against the fixture remote site: runs shared by workers,
// leases that expire, retries and failed pages, runs stopped and queued again.
#include <gtest/gtest.h>

#include <mutex>
#include <set>
#include <sstream>
#include <thread>

#include "engine/gather_command.h"
#include "gathering/work_queue.h"
#include "support/gathering_site.h"
#include "support/holds.h"

namespace ostrakan {
namespace {

using testing::FixtureResultPage;
using testing::RemoteReply;

// Fails the first fetch of each address (as a refused connection), then asks the real site.
class FailsFirstFetch : public http::Fetcher {
 public:
  http::FetchResult Get(const std::string& address) override {
    {
      std::lock_guard lock(mutex_);
      if (seen_.insert(address).second) return {false, 0, "", "connection refused"};
    }
    return real_->Get(address);
  }

 private:
  std::shared_ptr<http::Fetcher> real_ = http::MakeCurlFetcher();
  std::mutex mutex_;
  std::set<std::string> seen_;
};

class Queue : public testing::GatheringSite {
 protected:
  // Queues a run of the list rule; the command's answer.
  std::string QueueRun(const std::string& pages, const std::string& delayMs = "0") {
    std::string problem;
    auto o = engine::ParseGatherArgs({"--site", site.string(), "list", listRule, "--pages", pages,
                                      "--delay-ms", delayMs, "--queue", "--json"},
                                     problem);
    EXPECT_TRUE(o) << problem;
    o->retryPauseMs = 10;
    std::ostringstream out, err;
    EXPECT_EQ(engine::RunGather(*o, out, err), 0) << err.str();
    return out.str();
  }
};

TEST_F(Queue, TwoWorkersShareARunFetchingAndStoringEachPageOnce) {
  // One host: the workers take turns at it, between the run's pauses.
  EXPECT_EQ(QueueRun("1-40", "5"), "{\"run\":1}\n");
  EXPECT_TRUE(remote.Requests().empty());
  EXPECT_EQ(Value("select state || count(*) from gather_unit group by state"), "queued40");
  std::string a, b;
  std::thread other([&] { b = Work(); });
  a = Work();
  other.join();
  // Each worker's summary counts only its own pages; together they make the run.
  auto number = [](const std::string& summary, const std::string& name) {
    return std::stol(summary.substr(summary.find("\"" + name + "\":") + name.size() + 3));
  };
  EXPECT_EQ(number(a, "pages") + number(b, "pages"), 40) << a << b;
  EXPECT_EQ(number(a, "inserted") + number(b, "inserted"), 160);
  for (int n = 1; n <= 40; ++n) EXPECT_EQ(Asked("/r/" + std::to_string(n) + ".html"), 1) << n;
  EXPECT_EQ(Value("select count(distinct url) || ',' || count(*) from db"), "160,160");
  EXPECT_EQ(Value("select state || pages || ',' || inserted || ',' || (finished is not null) "
                  "from gather_run"),
            "done40,160,1");
  EXPECT_EQ(Value("select count(*) from gather_host where lease_owner is not null"), "0");
}

TEST_F(Queue, AWorkerKilledMidRunLeavesItsPageToTheNextWorker) {
  QueueRun("1-5");
  remote.Set("/r/3.html", RemoteReply(200, FixtureResultPage(3, 4)).Delay(20000));
  KillWhenAsked({"worker", "--site", site, "--once", "--lease-seconds", "1"}, "/r/3.html");
  EXPECT_EQ(Value("select count(*) from db"), "8");
  EXPECT_EQ(Value("select lease_owner is not null from gather_unit where unit = 3"), "1");

  remote.Set("/r/3.html", {200, FixtureResultPage(3, 4)});
  EXPECT_EQ(Work(),
            "{\"runs\":1,\"pages\":3,\"inserted\":12,\"updated\":0,\"failed\":0,"
            "\"unmatched\":0}\n");
  EXPECT_EQ(Asked("/r/3.html"), 2);
  EXPECT_EQ(Asked("/r/2.html"), 1);
  EXPECT_EQ(Value("select count(distinct url) || ',' || count(*) from db"), "20,20");
  EXPECT_EQ(Value("select state || pages || inserted from gather_run"), "done520");
}

TEST_F(Queue, FailedFetchesAreRetriedThenKeptAndCanBeQueuedAgain) {
  remote.Set("/r/2.html", {503, "busy"});
  QueueRun("1-3");
  // Every address fails once (a retry then succeeds); page 2 fails on every attempt.
  EXPECT_EQ(Work(std::make_shared<FailsFirstFetch>()),
            "{\"runs\":1,\"pages\":3,\"inserted\":8,\"updated\":0,\"failed\":1,"
            "\"unmatched\":0}\n");
  EXPECT_EQ(Asked("/r/1.html"), 1);  // the first attempt never reached the site
  EXPECT_EQ(Asked("/r/2.html"), 2);  // two retries after the refused first attempt
  EXPECT_EQ(Value("select state || attempts || ' ' || why from gather_unit where unit = 2"),
            "failed3 " + remote.Url("/r/2.html?q=%E7%94%B5%E5%BD%B1") + ": status 503");
  EXPECT_EQ(Value("select state || pages || failed from gather_run"), "done31");

  auto conn = testing::Connect(db);
  remote.Set("/r/2.html", {200, FixtureResultPage(2, 4)});
  EXPECT_EQ(gathering::RequeueFailed(*conn, 1), 1);
  EXPECT_EQ(gathering::RequeueFailed(*conn, 1), 0);
  EXPECT_TRUE(testing::Holds(Work(), "\"pages\":1,\"inserted\":4"));
  EXPECT_EQ(Value("select state || pages || failed || inserted from gather_run"), "done3012");

  // A stopped run loses its queued pages (stopping through the runs page: tests/http).
  QueueRun("4-6");
  EXPECT_TRUE(gathering::StopRun(*conn, 2));
  EXPECT_TRUE(testing::Holds(Work(), "\"runs\":0,\"pages\":0"));
  EXPECT_EQ(Value("select state from gather_run where id = 2"), "stopped");
  EXPECT_EQ(Asked("/r/4.html"), 0);
}

}  // namespace
}  // namespace ostrakan
