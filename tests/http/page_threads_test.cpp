// Pages run on a bounded pool of page threads: what happens when every one of them waits on a
// slow remote site (a gathering page), and when the server stops while one does.
#include <future>

#include "http/engine_fixture.h"
#include "http/raw_connection.h"
#include "support/remote_site.h"

namespace ostrakan::testing {
namespace {

class PageThreads : public EngineTest {};

// With every page thread waiting on the remote site, pages answer 503, the sign-in page and files
// still answer; stopping closes idle connections and cancels the fetch: the page says why.
TEST_F(PageThreads, BusyThreadsAnswer503AndStoppingCancelsTheFetchUnderWay) {
  // One page thread for every page and one for the quick ones; a page waits half a second, and
  // nothing below ends for a time-out.
  auto server = StartServer([](engine::ServerOptions& o) {
    o.threads = 1;
    o.quickThreads = 1;
    o.pageWaitMs = 500;
    o.requestTimeoutMs = o.keepAliveTimeoutMs = 60000;
  });
  RawConnection idle(server->port());
  ASSERT_TRUE(idle.connected());
  // A page that fetches from the remote site, which answers only when it closes.
  RemoteSite remote;
  remote.Set("/slow", RemoteReply(200, "late").Delay(120000));
  auto slow = std::async(std::launch::async, [&] {
    return HttpClient(server->port()).Get("/admin/fetch.asp?url=" + remote.Url("/slow"));
  });
  for (int i = 0; i < 1000 && remote.Requests().empty(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_FALSE(remote.Requests().empty()) << "the page did not start its fetch";

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
  const RawConnection::Received closing = idle.ReadAll();
  EXPECT_TRUE(closing.bytes.empty() && closing.closed) << closing.bytes;
}

}  // namespace
}  // namespace ostrakan::testing
