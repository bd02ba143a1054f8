// What a request says about where it comes from: the site that sent an action, and the client
// address behind a proxy.
#include "engine/cross_site.h"
#include "engine/client_address.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

TEST(ActionPages, AreTheOkPagesUpdatesAndDeletes) {
  for (const char* page :
       {"/admin/db_ok.asp", "/admin/gather_list_db_ok.asp", "/admin/create_sort_one_ok.asp",
        "/admin/gather_id_web_update.asp", "/admin/ADMIN_OK.ASP"})
    EXPECT_TRUE(IsActionPage(page, "")) << page;
  for (const char* query : {"action=del&id=3", "id=3&action=alldel", "ACTION=Del"})
    EXPECT_TRUE(IsActionPage("/admin/sort_list.asp", query)) << query;
  for (const char* page :
       {"/admin/db_list.asp", "/admin/create_sort.asp", "/admin/ok.asp", "/admin/login.asp"})
    EXPECT_FALSE(IsActionPage(page, "action=add&page=2&delete=1")) << page;
}

TEST(CrossSiteRequests, CompareHostAndPortOfOriginAndRefererWithTheHostHeader) {
  auto foreign = [](std::vector<std::pair<std::string, std::string>> headers) {
    HttpRequest r;
    r.headers = std::move(headers);
    return NamesAnotherSite(r);
  };
  EXPECT_FALSE(foreign({{"Host", "site.cn"}}));
  EXPECT_FALSE(foreign({{"Host", "Site.CN"}, {"Referer", "http://site.cn/a?b"}}));
  EXPECT_FALSE(foreign({{"Host", "site.cn"}, {"Origin", "http://site.cn:80"}}));
  EXPECT_FALSE(foreign({{"Host", "site.cn"}, {"Origin", "https://site.cn"}}));
  EXPECT_FALSE(foreign({{"Host", "[::1]:8080"}, {"Referer", "http://[::1]:8080/"}}));
  EXPECT_FALSE(
      foreign({{"Host", "site.cn"}, {"Referer", "http://u@site.cn/"}}));  // user@ is not the host
  EXPECT_TRUE(foreign({{"Host", "site.cn"}, {"Origin", "https://site.cn:8443"}}));
  EXPECT_TRUE(foreign({{"Host", "site.cn:8080"}, {"Referer", "http://site.cn/"}}));
  EXPECT_TRUE(foreign({{"Host", "site.cn"}, {"Referer", "http://site.cn.evil/"}}));
  EXPECT_TRUE(foreign({{"Host", "site.cn"}, {"Referer", "http://evil@x/"}}));
  // Both are checked: a matching Origin does not excuse a foreign Referer.
  EXPECT_TRUE(
      foreign({{"Host", "site.cn"}, {"Origin", "http://site.cn"}, {"Referer", "http://evil/"}}));
  for (const char* odd : {"null", "file:///c:/x.html", "about:blank"})
    EXPECT_TRUE(foreign({{"Host", "site.cn"}, {"Origin", odd}})) << odd;
}

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
