// The request reader on bytes alone: requests in any number of pieces, connection rules, targets,
// refusals of what two readers could read differently; and the decoding of escapes and cookies.
#include "engine/request_reader.h"
#include "engine/url_decoding.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

constexpr size_t kBodyLimit = 1000;

// Reads one request from `bytes` given at once; the bytes after it stay in `rest`.
RequestHead Read(std::string bytes, std::string* rest = nullptr) {
  RequestReader reader(kBodyLimit);
  RequestReader::State state = reader.Read(bytes);
  if (state == RequestReader::State::Refused)
    ADD_FAILURE() << bytes << ": " << reader.refusal().why;
  EXPECT_EQ(state, RequestReader::State::Done) << bytes;
  if (rest) *rest = bytes;
  return state == RequestReader::State::Done ? reader.TakeRequest() : RequestHead{};
}

// The status a request is refused with, or 0 when it is read (or still incomplete).
int Refusal(std::string bytes) {
  RequestReader reader(kBodyLimit);
  return reader.Read(bytes) == RequestReader::State::Refused ? reader.refusal().status : 0;
}

// Every way of splitting a request between two reads gives the same request, and the bytes of
// the next request stay where they are.
TEST(RequestReader, ReadsTheSameWhereverTheBytesAreSplit) {
  const std::string sent =
      "\r\nPOST /a.asp?x=1 HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n\r\n"
      "3;n=v;q=\"a b\"\r\nabc\r\n10\r\n0123456789abcdef\r\n0\r\nT: x\r\n\r\nNEXT";
  for (size_t split = 0; split <= sent.size(); ++split) {
    RequestReader reader(kBodyLimit);
    std::string in = sent.substr(0, split);
    RequestReader::State state = reader.Read(in);
    ASSERT_NE(state, RequestReader::State::Refused) << split << ": " << reader.refusal().why;
    in += sent.substr(split);
    if (state != RequestReader::State::Done) state = reader.Read(in);
    ASSERT_EQ(state, RequestReader::State::Done) << split;
    RequestHead head = reader.TakeRequest();
    EXPECT_EQ(head.request.body, "abc0123456789abcdef") << split;
    EXPECT_EQ(head.request.queryString, "x=1") << split;
    EXPECT_EQ(in, "NEXT") << split;
  }
}

TEST(RequestReader, ReadsConnectionRulesAndTargets) {
  std::string rest;
  RequestHead h = Read("GET /a%20b/c.asp?x=1?y HTTP/1.1\r\nHost: a\r\n\r\nGET", &rest);
  EXPECT_EQ(h.request.path, "/a b/c.asp");
  EXPECT_EQ(h.request.queryString, "x=1?y");
  EXPECT_TRUE(h.keepAlive);
  EXPECT_EQ(rest, "GET");

  EXPECT_FALSE(Read("GET / HTTP/1.1\r\nHost: a\r\nConnection: TE, Close\r\n\r\n").keepAlive);
  EXPECT_FALSE(Read("GET / HTTP/1.0\r\n\r\n").keepAlive);
  EXPECT_TRUE(Read("GET / HTTP/1.0\r\nConnection: Keep-Alive\r\n\r\n").keepAlive);
  // The same length twice says one thing.
  EXPECT_EQ(Read("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 3\r\nContent-Length: 3\r\n\r\nf=x")
                .request.body,
            "f=x");

  RequestReader reader(kBodyLimit);
  std::string in =
      "POST / HTTP/1.1\r\nHost: a\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r\n";
  ASSERT_EQ(reader.Read(in), RequestReader::State::HeadDone);
  EXPECT_TRUE(reader.head().expectContinue);
  in = "f=x";
  ASSERT_EQ(reader.Read(in), RequestReader::State::Done);
  EXPECT_EQ(reader.TakeRequest().request.body, "f=x");

  // The authority of an absolute-form target replaces the Host header.
  h = Read("GET https://Other:81?q HTTP/1.1\r\nHost: a\r\nX: 1\r\n\r\n");
  EXPECT_EQ(h.request.path, "/");
  EXPECT_EQ(h.request.queryString, "q");
  EXPECT_EQ(h.request.Header("Host"), "Other:81");
  EXPECT_EQ(h.request.headers.size(), 2u);
  EXPECT_TRUE(Read("OPTIONS * HTTP/1.1\r\nHost: a\r\n\r\n").asterisk);
}

TEST(RequestReader, RefusesWhatTwoReadersCouldReadDifferently) {
  const std::string post = "POST / HTTP/1.1\r\nHost: a\r\n";
  const std::string chunked = post + "Transfer-Encoding: chunked\r\n\r\n";
  struct Case {
    std::string bytes;
    int status;
  } cases[] = {
      // Line ends other than CRLF, in the head and in the chunk framing.
      {"GET / HTTP/1.1\nHost: a\n\n", 400},
      {"GET / HTTP/1.1\r\nHost: a\nX: b\r\n\r\n", 400},
      {"\nGET / HTTP/1.1\r\nHost: a\r\n\r\n", 400},
      {chunked + "3\nabc\r\n0\r\n\r\n", 400},
      {chunked + "3\r\nabc\r\n0\n\n", 400},
      {chunked + "3\r\nabc\r\n0\r\nT: x\n\r\n", 400},
      {chunked + "3;a\rb\r\nabc\r\n0\r\n\r\n", 400},
      // Chunk extensions and trailers: unterminated, too long, not a field.
      {chunked + "3;a=\"b\r\nabc\r\n0\r\n\r\n" + std::string(5000, 'x'), 400},
      {chunked + "3;a=" + std::string(5000, 'b') + "\r\nabc\r\n0\r\n\r\n", 400},
      {chunked + "3\r\nabc\r\n0\r\nGET / HTTP/1.1\r\n\r\n", 400},
      {chunked + "zz\r\nabc\r\n0\r\n\r\n", 400},
      {chunked + "FFFFFFFFFFFFFFFF\r\nabc\r\n0\r\n\r\n", 400},
      {chunked + "3E9\r\n", 413},
      // Framing and Host.
      {"GET / HTTP/1.1\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n", 400},
      {post + "Content-Length: 3\r\nContent-Length: 5\r\n\r\nabcde", 400},
      {post + "Content-Length: 3\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", 400},
      {post + "Transfer-Encoding: gzip\r\n\r\nabc", 501},
      {post + "Transfer-Encoding: gzip, chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", 501},
      {"POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", 400},
      {post + "Content-Length: 1001\r\n\r\n", 413},
      {"GET / HTTP/1.1\r\nHost: a\r\n folded: x\r\n\r\n", 400},
      // Request lines and sizes.
      {"GET /" + std::string(9000, 'a') + " HTTP/1.1\r\nHost: a\r\n\r\n", 414},
      {"GET / HTTP/1.1\r\nHost: a\r\nX: " + std::string(20000, 'a') + "\r\n\r\n", 431},
      {"GET / HTTP/1.1\r\nHost: a\r\nX: " + std::string(20000, 'a'), 431},
      {"GET / HTTP/2.0\r\nHost: a\r\n\r\n", 505},
      {"GET * HTTP/1.1\r\nHost: a\r\n\r\n", 400},
      {"GET http://user@a/ HTTP/1.1\r\nHost: a\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nHost: a\r\nX: a\x01 b\r\n\r\n", 400},
      {"G(T / HTTP/1.1\r\nHost: a\r\n\r\n", 400},
      {"GET  / HTTP/1.1\r\nHost: a\r\n\r\n", 400},
      {"GET /a\r\nHost: a\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nHost a\r\n\r\n", 400},
      {"GET ftp://a/ HTTP/1.1\r\nHost: a\r\n\r\n", 400}};
  for (const Case& c : cases) EXPECT_EQ(Refusal(c.bytes), c.status) << c.bytes.substr(0, 120);
}

TEST(PercentDecode, ResolvesEscapesAndKeepsMalformedOnesLiterally) {
  EXPECT_EQ(PercentDecode("a%20b%2Fc%2fd", false), "a b/c/d");
  EXPECT_EQ(PercentDecode("100%", false), "100%");
  EXPECT_EQ(PercentDecode("%zz%4g%4", false), "%zz%4g%4");
  EXPECT_EQ(PercentDecode("%%41", false), "%A");
  EXPECT_EQ(PercentDecode("a+b", false), "a+b");
  EXPECT_EQ(PercentDecode("a+b%2B", true), "a b+");  // an escaped plus stays a plus
  EXPECT_EQ(PercentDecode("%00x", false), std::string("\0x", 2));
}

TEST(UrlEncoded, DecodesTheBytesInTheCodePageWithoutEatingNeighbours) {
  KeyedValues v;
  // "你好" in GBK is C4 E3 BA C3; in UTF-8 it is E4 BD A0 E5 A5 BD.
  AddUrlEncoded("q=%C4%E3%BA%C3&%D6%D0=1&a=x%FFy&b=%C4&c==d", 936, v);
  EXPECT_EQ(v.Get(u"q").str(), u"你好");
  EXPECT_EQ(v.Get(u"中").str(), u"1");
  EXPECT_EQ(v.Get(u"a").str(), u"x\uFFFDy");
  EXPECT_EQ(v.Get(u"b").str(), u"\uFFFD");  // a lead byte cut off at the end
  EXPECT_EQ(v.Get(u"c").str(), u"=d");
  KeyedValues utf8;
  AddUrlEncoded("q=%E4%BD%A0%E5%A5%BD&flag", 65001, utf8);
  EXPECT_EQ(utf8.Get(u"q").str(), u"你好");
  EXPECT_TRUE(utf8.Has(u"flag"));
  EXPECT_EQ(utf8.All(u"Q"), std::vector<std::u16string>{u"你好"});
}

TEST(Cookies, SplitOnSemicolonsAndDecodeValues) {
  KeyedValues c;
  AddCookies("a=1;  b=x%20y ; c=%C4%E3; broken; =skipped", 936, c);
  EXPECT_EQ(c.Get(u"a").str(), u"1");
  EXPECT_EQ(c.Get(u"B").str(), u"x y");
  EXPECT_EQ(c.Get(u"c").str(), u"你");
  EXPECT_TRUE(c.Has(u"broken"));
  EXPECT_FALSE(c.Has(u""));
}

}  // namespace
}  // namespace ostrakan::engine
