// The request head parser and the chunked decoder on their own: what a well-behaved client
// sends in pieces, the connection rules of the two HTTP versions, and targets in every form.
#include <gtest/gtest.h>

#include <variant>

#include "engine/chunked_body.h"
#include "engine/request_head.h"

namespace ostrakan::engine {
namespace {

RequestHead Parse(std::string_view head) {
  auto parsed = ParseRequestHead(head);
  if (auto* e = std::get_if<HeadError>(&parsed)) ADD_FAILURE() << head << ": " << e->why;
  return std::get_if<RequestHead>(&parsed) ? std::get<RequestHead>(parsed) : RequestHead{};
}

TEST(RequestHead, FindsTheEndAfterLeadingEmptyLinesWithEitherLineEnd) {
  EXPECT_EQ(FindHeadEnd("\r\n\r\nGET / HTTP/1.1\r\nHost: a\r\n\r\nrest"), 31u);
  EXPECT_EQ(FindHeadEnd("GET / HTTP/1.0\n\nrest"), 16u);
  EXPECT_EQ(FindHeadEnd("\r\n\r\n"), std::string_view::npos);
  EXPECT_EQ(FindHeadEnd("GET / HTTP/1.1\r\nHost: a\r\n"), std::string_view::npos);
}

TEST(RequestHead, ReadsConnectionRulesAndTargets) {
  RequestHead h = Parse("GET /a%20b/c.asp?x=1?y HTTP/1.1\r\nHost: a\r\n\r\n");
  EXPECT_EQ(h.request.path, "/a b/c.asp");
  EXPECT_EQ(h.request.queryString, "x=1?y");
  EXPECT_TRUE(h.keepAlive);
  EXPECT_EQ(h.framing, BodyFraming::None);

  EXPECT_FALSE(Parse("GET / HTTP/1.1\r\nConnection: TE, Close\r\n\r\n").keepAlive);
  EXPECT_FALSE(Parse("GET / HTTP/1.0\r\n\r\n").keepAlive);
  EXPECT_TRUE(Parse("GET / HTTP/1.0\r\nConnection: Keep-Alive\r\n\r\n").keepAlive);

  h = Parse("POST / HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 12\r\n\r\n");
  EXPECT_TRUE(h.expectContinue);
  EXPECT_EQ(h.framing, BodyFraming::Length);
  EXPECT_EQ(h.contentLength, 12u);
  EXPECT_FALSE(Parse("POST / HTTP/1.0\r\nExpect: 100-continue\r\n\r\n").expectContinue);

  // The authority of an absolute-form target replaces the Host header.
  h = Parse("GET https://Other:81?q HTTP/1.1\r\nHost: a\r\nX: 1\r\n\r\n");
  EXPECT_EQ(h.request.path, "/");
  EXPECT_EQ(h.request.queryString, "q");
  EXPECT_EQ(h.request.Header("Host"), "Other:81");
  EXPECT_EQ(h.request.headers.size(), 2u);
  EXPECT_TRUE(Parse("OPTIONS * HTTP/1.1\r\n\r\n").asterisk);

  for (const char* bad : {"GET http://user@a/ HTTP/1.1\r\n\r\n", "GET http:/// HTTP/1.1\r\n\r\n",
                          "GET / HTTP/1.1\r\nContent-Length: 99999999999999999999\r\n\r\n",
                          "GET / HTTP/1.1\r\nX: a\x01 b\r\n\r\n", "G(T / HTTP/1.1\r\n\r\n",
                          "GET  / HTTP/1.1\r\n\r\n", "GET / HTTP/1.1 \r\n\r\n"})
    EXPECT_TRUE(std::holds_alternative<HeadError>(ParseRequestHead(bad))) << bad;
}

// Every way of splitting a chunked body between reads gives the same body, and the bytes of
// the next request stay where they are.
TEST(ChunkedDecoder, DecodesTheSameWhereverTheBytesAreSplit) {
  const std::string sent = "3;n=v\r\nabc\r\n10\r\n0123456789abcdef\r\n0\r\nT: x\r\n\r\nNEXT";
  for (size_t split = 0; split <= sent.size(); ++split) {
    ChunkedDecoder decoder(1000);
    std::string in = sent.substr(0, split), body;
    size_t pos = 0;
    ChunkedDecoder::State state = decoder.Feed(in, pos, body);
    in = in.substr(pos) + sent.substr(split);
    pos = 0;
    if (state == ChunkedDecoder::State::More) state = decoder.Feed(in, pos, body);
    ASSERT_EQ(state, ChunkedDecoder::State::Done) << split;
    EXPECT_EQ(body, "abc0123456789abcdef") << split;
    EXPECT_EQ(in.substr(pos), "NEXT") << split;
  }
}

TEST(ChunkedDecoder, RefusesBadSizesMissingLineEndsAndBodiesOverTheLimit) {
  auto feed = [](std::string_view in, size_t limit = 1000) {
    ChunkedDecoder decoder(limit);
    std::string body;
    size_t pos = 0;
    return decoder.Feed(in, pos, body);
  };
  using S = ChunkedDecoder::State;
  EXPECT_EQ(feed("zz\r\nab\r\n0\r\n\r\n"), S::Malformed);
  EXPECT_EQ(feed("FFFFFFFFFFFFFFFF\r\n"), S::Malformed);
  EXPECT_EQ(feed("-1\r\n"), S::Malformed);
  EXPECT_EQ(feed("2\r\nabX\r\n"), S::Malformed);
  EXPECT_EQ(feed(std::string(5000, '0')), S::Malformed);
  EXPECT_EQ(feed("5\r\nabcde\r\n5\r\nfghij\r\n", 8), S::TooLong);
  EXPECT_EQ(feed("8\r\nabcdefgh\r\n0\r\n\r\n", 8), S::Done);
}

}  // namespace
}  // namespace ostrakan::engine
