// Pages run on a bounded pool of page threads: what happens when every one of them waits on a
// slow remote site (a gathering page), and when the server stops while one does.
#include <future>

#include "http/engine_fixture.h"
#include "http/raw_connection.h"
#include "support/remote_site.h"

namespace ostrakan::testing {
namespace {

class PageThreads : public EngineTest {
 protected:
  // One page thread for every page and one for the quick ones; a page waits half a second.
  std::unique_ptr<engine::HttpServer> StartServer() {
    return EngineTest::StartServer([](engine::ServerOptions& o) {
      o.threads = 1;
      o.quickThreads = 1;
      o.pageWaitMs = 500;
      o.requestTimeoutMs = 60000;  // nothing below ends for a time-out
      o.keepAliveTimeoutMs = 60000;
    });
  }

  // Starts a page that fetches from the remote site, which answers only when it closes, and
  // waits until the fetch has reached it.
  std::future<HttpReply> StartSlowPage(int port) {
    remote_.Set("/slow", RemoteReply(200, "late").Delay(120000));
    std::string path = "/admin/fetch.asp?url=" + remote_.Url("/slow");
    auto reply =
        std::async(std::launch::async, [port, path] { return HttpClient(port).Get(path); });
    for (int i = 0; i < 1000 && remote_.Requests().empty(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(remote_.Requests().empty()) << "the page did not start its fetch";
    return reply;
  }

  RemoteSite remote_;
};

// With every page thread waiting on the remote site, pages answer 503, the sign-in page and files
// still answer; stopping closes idle connections and cancels the fetch: the page says why.
TEST_F(PageThreads, BusyThreadsAnswer503AndStoppingCancelsTheFetchUnderWay) {
  auto server = StartServer();
  RawConnection idle(server->port());
  ASSERT_TRUE(idle.connected());
  auto slow = StartSlowPage(server->port());
  HttpClient c(server->port());
  HttpReply busy = c.Get("/admin/session.asp");
  EXPECT_EQ(busy.status, 503) << busy.body;
  EXPECT_FALSE(busy.Header("retry-after").empty());
  EXPECT_EQ(c.Get("/admin/login.asp").body, "sign in");
  EXPECT_EQ(c.Get("/admin/css/a.css").body, "body{}");

  server.reset();
  HttpReply r = slow.get();
  EXPECT_EQ(r.status, 200) << r.error;
  EXPECT_EQ(r.body, "not fetched: the server is stopping");
  bool closed = false;
  EXPECT_EQ(idle.ReadAll(closed), "");
  EXPECT_TRUE(closed);
}

}  // namespace
}  // namespace ostrakan::testing
