// Fetching and decoding against the fixture remote site on loopback.
#include <gtest/gtest.h>

#include <netdb.h>

#include <algorithm>

#include "gathering/page_fetch.h"
#include "platform/http/fetcher.h"
#include "platform/text/bytes_to_bstr.h"
#include "platform/text/codepage.h"
#include "support/remote_site.h"

namespace ostrakan {
namespace {

using testing::RemoteReply;
using testing::RemoteSite;

class FetchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    http::SetDefaultFetcher(http::MakeCurlFetcher(
        {.lowSpeedSeconds = 1, .maxBodyBytes = 64 * 1024, .maxRedirects = 3, .isPrivate = {}}));
  }
  void TearDown() override { http::SetDefaultFetcher(nullptr); }

  std::u16string Page(const std::string& target) {
    return gathering::GetHttpPage(ObjectFactory::Default(), FromUtf8(site_.Url(target)), u"utf-8");
  }
  RemoteSite site_;
};

TEST_F(FetchTest, OnlyAFinalOkGivesABodyAndEveryFailureOrLimitGivesNothing) {
  site_.Set("/ok", {200, "<p>fine</p>"});
  site_.Set("/missing", {404, "<p>error page</p>"});
  site_.Set("/broken", {500, "<p>error page</p>"});
  site_.Set("/moved", {302, "", {"Location: /ok"}});
  site_.Set("/loop", {302, "", {"Location: /loop"}});
  site_.Set("/to-file", {302, "", {"Location: file:///etc/passwd"}});
  site_.Set("/slow", RemoteReply(200, "late but whole").Delay(300));
  site_.Set("/stalled", RemoteReply(200, "0123456789 and never more").Stall());
  site_.Set("/huge", RemoteReply(200, std::string(200 * 1024, 'x')).NoLength());
  site_.Set("/huge-declared", {200, std::string(200 * 1024, 'x')});
  // "gzip" of the text "packed", made once with Python's gzip module.
  const unsigned char gz[] = {0x1f, 0x8b, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02,
                              0x03, 0x2b, 0x48, 0x4c, 0xce, 0x4e, 0x4d, 0x01, 0x00,
                              0x10, 0xb4, 0xf6, 0x21, 0x06, 0x00, 0x00, 0x00};
  site_.Set("/gz", {200, std::string(std::begin(gz), std::end(gz)), {"Content-Encoding: gzip"}});

  EXPECT_EQ(Page("/ok"), u"<p>fine</p>");
  EXPECT_EQ(Page("/moved"), u"<p>fine</p>");
  EXPECT_EQ(Page("/slow"), u"late but whole");
  EXPECT_EQ(Page("/gz"), u"packed");
  for (const char* failing :
       {"/missing", "/broken", "/loop", "/to-file", "/stalled", "/huge", "/huge-declared"})
    EXPECT_EQ(Page(failing), u"") << failing;
  const auto asked = site_.Requests();
  EXPECT_EQ(std::count(asked.begin(), asked.end(), "/loop"), 4);  // and three redirects
  // Schemes other than http and https are refused before anything is sent.
  EXPECT_EQ(gathering::GetHttpPage(ObjectFactory::Default(), u"file:///etc/passwd", u"utf-8"), u"");
  EXPECT_EQ(gathering::GetHttpPage(ObjectFactory::Default(), u"", u"utf-8"), u"");
}

// A failed fetch says why, in words a log reader understands.
TEST_F(FetchTest, AFailedFetchSaysWhy) {
  auto fetcher =
      http::MakeCurlFetcher({.totalTimeoutMs = 300, .maxBodyBytes = 1024, .isPrivate = {}});
  site_.Set("/slow", RemoteReply(200, "late").Delay(3000));
  site_.Set("/huge", {200, std::string(4096, 'x')});
  EXPECT_EQ(fetcher->Get(site_.Url("/slow")).error, "time-out");
  EXPECT_EQ(fetcher->Get(site_.Url("/huge")).error, "the answer is larger than the size limit");
  EXPECT_EQ(fetcher->Get("http://127.0.0.1:1/").error, "connection refused");
}

// Which addresses a fetch that began at a public address may not go on to.
TEST(PrivateAddresses, LoopbackLocalNetworksAndLinkLocalArePrivate) {
  auto isPrivate = [](const char* text) {
    addrinfo numeric{}, *found = nullptr;
    numeric.ai_flags = AI_NUMERICHOST;
    EXPECT_EQ(getaddrinfo(text, nullptr, &numeric, &found), 0) << text;
    if (!found) return false;
    const bool answer = http::IsPrivateAddress(found->ai_addr);
    freeaddrinfo(found);
    return answer;
  };
  for (const char* p : {"127.0.0.1", "127.9.9.9", "10.1.2.3", "172.16.0.1", "172.31.255.255",
                        "192.168.1.1", "169.254.169.254", "0.0.0.0", "100.64.0.1", "::1",
                        "::", "fd00::1", "fe80::1", "::ffff:127.0.0.1", "::ffff:10.0.0.1"})
    EXPECT_TRUE(isPrivate(p)) << p;
  for (const char* p : {"8.8.8.8", "172.32.0.1", "172.15.255.255", "192.169.0.1", "100.128.0.1",
                        "2001:4860::8888", "::ffff:8.8.8.8"})
    EXPECT_FALSE(isPrivate(p)) << p;
}

TEST_F(FetchTest, NonAsciiInTheAddressGoesOutAsGbkBytes) {
  site_.Set("/search", {200, "found"});
  EXPECT_EQ(gathering::GetHttpPage(ObjectFactory::Default(),
                                   FromUtf8(site_.Url("/search?q=")) + u"电影 hd&p=1", u"utf-8"),
            u"found");
  EXPECT_EQ(site_.Requests().back(), "/search?q=%B5%E7%D3%B0%20hd&p=1");
}

// What it adds to the code pages' decoding (codepage_test): the BOM goes, an unknown name is "".
TEST(BytesToBstr, DropsAUtf8BomAndGivesNothingForAnUnknownCharset) {
  EXPECT_EQ(text::BytesToBstr("\xEF\xBB\xBF\xE7\x94\xB5 a", u"utf-8"), u"电 a");
  EXPECT_EQ(text::BytesToBstr("anything", u"klingon"), u"");
}

}  // namespace
}  // namespace ostrakan
