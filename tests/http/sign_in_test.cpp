// The sign-in throttle over HTTP: views of the sign-in page never count (behind a proxy
// without --behind-proxy every visitor shares one address), failed posts do; and the address
// the throttle counts by, taken from X-Real-IP only behind a proxy and only when it is one.
#include <future>

#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class SignIn : public EngineTest {
 protected:
  std::unique_ptr<engine::HttpServer> StartServer(bool behindProxy = false) {
    engine::ServerOptions options;
    options.siteRoot = root_;
    options.listen = "127.0.0.1:0";
    options.threads = 16;
    options.behindProxy = behindProxy;
    options.createComponent = [](std::u16string_view) { return std::make_shared<TestPage>(); };
    return std::make_unique<engine::HttpServer>(options);
  }

  // The statuses of `n` requests sent at once.
  static std::vector<int> AtOnce(int port, int n, const std::string& method) {
    std::vector<std::future<long>> replies;
    for (int i = 0; i < n; ++i)
      replies.push_back(std::async(std::launch::async, [port, method] {
        return HttpClient(port)
            .Send(method, "/admin/login.asp", method == "POST" ? "u=x" : "")
            .status;
      }));
    std::vector<int> statuses;
    for (auto& r : replies) statuses.push_back(static_cast<int>(r.get()));
    return statuses;
  }
};

TEST_F(SignIn, ViewsNeverCountButFailedPostsDo) {
  auto server = StartServer();
  HttpClient c(server->port());
  for (int i = 0; i < 8; ++i) EXPECT_EQ(c.Get("/admin/login.asp").status, 200) << i;
  // The free failures.
  for (int i = 0; i < engine::SignInThrottle::kFreeFailures; ++i)
    EXPECT_EQ(c.Post("/admin/login.asp", "u=x").status, 200) << i;
  // Views at once after them are neither paused nor refused: more than the throttle lets
  // wait would get 429.
  for (int status : AtOnce(server->port(), 8, "GET")) EXPECT_EQ(status, 200);
  std::vector<int> posts = AtOnce(server->port(), 6, "POST");
  EXPECT_NE(std::find(posts.begin(), posts.end(), 429), posts.end());
}

TEST_F(SignIn, XRealIpCountsOnlyBehindAProxyAndOnlyWhenItIsAnAddress) {
  auto proxied = StartServer(true);
  HttpClient c(proxied->port());
  EXPECT_NE(c.Get("/echo.asp", {"X-Real-IP: 203.0.113.9"}).body.find("ip=[203.0.113.9]"),
            std::string::npos);
  EXPECT_NE(c.Get("/echo.asp", {"X-Real-IP: <b>me</b>"}).body.find("ip=[127.0.0.1]"),
            std::string::npos);
  // Failures counted for one proxied client leave another alone.
  for (int i = 0; i < engine::SignInThrottle::kFreeFailures; ++i)
    c.Post("/admin/login.asp", "u=x", {"X-Real-IP: 203.0.113.9"});
  std::vector<std::future<long>> others;
  for (int i = 0; i < 6; ++i)
    others.push_back(std::async(std::launch::async, [&c] {
      return c.Post("/admin/login.asp", "u=x", {"X-Real-IP: 203.0.113.10"}).status;
    }));
  for (auto& r : others) EXPECT_EQ(r.get(), 200);

  auto direct = StartServer(false);
  EXPECT_NE(HttpClient(direct->port())
                .Get("/echo.asp", {"X-Real-IP: 203.0.113.9"})
                .body.find("ip=[127.0.0.1]"),
            std::string::npos);
}

}  // namespace
}  // namespace ostrakan::testing
