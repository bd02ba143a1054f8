// Behind nginx every request comes from loopback; with --behind-proxy the engine takes the
// client's address from X-Real-IP, and only from a proxy on this machine.
#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class BehindProxy : public EngineTest {
 protected:
  static void SetUpTestSuite() {
    EngineTest::SetUpTestSuite();
    WriteAnsi(root_ / "addr.asp", u"<%= Request.ServerVariables(\"REMOTE_ADDR\") %>");
    engine::ServerOptions options;
    options.siteRoot = root_;
    options.listen = "127.0.0.1:0";
    options.threads = 2;
    options.behindProxy = true;
    proxied_ = new engine::HttpServer(options);
  }
  static void TearDownTestSuite() {
    delete proxied_;
    EngineTest::TearDownTestSuite();
  }
  static inline engine::HttpServer* proxied_ = nullptr;
};

TEST_F(BehindProxy, TheClientAddressComesFromTheProxyOnlyWhenAsked) {
  HttpClient viaProxy(proxied_->port());
  EXPECT_EQ(viaProxy.Get("/addr.asp", {"X-Real-IP: 203.0.113.7"}).body, "203.0.113.7");
  EXPECT_EQ(viaProxy.Get("/addr.asp").body, "127.0.0.1");
  // Without --behind-proxy the header is only a header.
  EXPECT_EQ(client().Get("/addr.asp", {"X-Real-IP: 203.0.113.7"}).body, "127.0.0.1");
}

}  // namespace
}  // namespace ostrakan::testing
