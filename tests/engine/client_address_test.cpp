// Which address a request is taken to come from, with and without a proxy in front.
#include "engine/client_address.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

TEST(ClientAddress, TakesXRealIpOnlyFromALoopbackProxyAndOnlyWhenItIsAnAddress) {
  EXPECT_EQ(ClientAddress("127.0.0.1", "203.0.113.9", true), "203.0.113.9");
  EXPECT_EQ(ClientAddress("::1", " 2001:DB8::1 ", true), "2001:db8::1");
  // Not behind a proxy, or not from the proxy on this machine: the peer stands.
  EXPECT_EQ(ClientAddress("127.0.0.1", "203.0.113.9", false), "127.0.0.1");
  EXPECT_EQ(ClientAddress("198.51.100.4", "203.0.113.9", true), "198.51.100.4");
  // Whatever else the header holds is not an address to count sign-ins by or show a page.
  for (const char* bad : {"", "unknown", "203.0.113.9, 10.0.0.1", "203.0.113.9:80", "1.2.3",
                          "<script>", "::1%eth0", "203.0.113.256"})
    EXPECT_EQ(ClientAddress("127.0.0.1", bad, true), "127.0.0.1") << bad;
}

}  // namespace
}  // namespace ostrakan::engine
