// Requests whose framing is ambiguous get 400 and a closed connection, so that nothing after
// them is read as a request of its own; unusual but valid request lines get an answer.
#include "http/engine_fixture.h"
#include "http/raw_connection.h"

namespace ostrakan::testing {
namespace {

class MalformedRequests : public EngineTest {
 protected:
  // Sends `request` followed by a well-formed request that must not be answered.
  void ExpectRefusedAndClosed(const std::string& request, int status = 400) {
    RawConnection c(server_->port());
    ASSERT_TRUE(c.connected());
    c.Send(request + "GET /admin/css/a.css HTTP/1.1\r\nHost: a\r\n\r\n");
    auto [answer, closed] = c.ReadAll();
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 " + std::to_string(status) + " ")) << answer;
    EXPECT_TRUE(closed) << answer;
    EXPECT_EQ(answer.find("body{}"), std::string::npos) << "the smuggled request was answered";
  }
};

// A refusal in the head, in a chunked body or of a head too large to read closes the connection
// before the request smuggled after it is read (which bytes are refused: the request reader's).
TEST_F(MalformedRequests, RefusalsCloseTheConnection) {
  const std::string post = "POST /echo.asp HTTP/1.1\r\nHost: a\r\n";
  ExpectRefusedAndClosed(post + "Content-Length: 3\r\nContent-Length: 5\r\n\r\nf=abc");
  ExpectRefusedAndClosed(post + "Transfer-Encoding: chunked\r\n\r\n3\r\nf=a\r\n0\n\n");
  ExpectRefusedAndClosed(post + "Transfer-Encoding: gzip\r\n\r\nf=a", 501);
  ExpectRefusedAndClosed("GET / HTTP/1.1\r\nX: " + std::string(20000, 'a') + "\r\n\r\n", 431);
}

// Pipelined on one connection: an absolute-form request, "OPTIONS *", a chunked form and a
// request that closes the connection.
TEST_F(MalformedRequests, AbsoluteFormAsteriskAndChunkedRequestsAreAnswered) {
  RawConnection c(server_->port());
  c.Send(
      "GET http://elsewhere.example:81/echo.asp?q=1 HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n"
      "OPTIONS * HTTP/1.1\r\nHost: a\r\n\r\n"
      "POST /echo.asp HTTP/1.1\r\nHost: a\r\nContent-Type: application/x-www-form-urlencoded\r\n"
      "Transfer-Encoding: chunked\r\n\r\n3\r\nf=a\r\n2\r\nbc\r\n0\r\n\r\n"
      "GET HTTP://a/admin/css/a.css HTTP/1.1\r\nHost: b\r\nConnection: close\r\n\r\n");
  auto [answer, closed] = c.ReadAll();
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 ")) << answer;
  const size_t options = answer.find("HTTP/1.1 200 OK\r\nAllow: GET, HEAD, POST\r\n");
  EXPECT_LT(answer.find("q=[1] f=[] id=[] m=[GET] url=[/echo.asp]"), options) << answer;
  EXPECT_LT(options, answer.find("f=[abc]")) << answer;
  EXPECT_LT(answer.find("f=[abc]"), answer.find("body{}")) << answer;
  EXPECT_NE(answer.find("body{}"), std::string::npos) << answer;
  EXPECT_TRUE(closed);
}

// A client that sends part of a head and stops gets 408; one that says nothing is closed. The
// same after an answer that a page thread wrote (and that armed the next wait).
TEST_F(MalformedRequests, ClientsThatStallAreTimedOut) {
  RawConnection c(server_->port()), d(server_->port()), e(server_->port()), f(server_->port());
  c.Send("GET /echo.asp HTTP/1.1\r\nHo");
  e.Send("GET /echo.asp HTTP/1.1\r\nHost: a\r\n\r\nGET /echo.asp HTTP/1.1\r\nHo");
  f.Send("GET /echo.asp HTTP/1.1\r\nHost: a\r\n\r\n");
  const RawConnection::Received partial = c.ReadAll(std::chrono::seconds(10)),
                                silent = d.ReadAll(std::chrono::seconds(10)),
                                partialNext = e.ReadAll(std::chrono::seconds(10)),
                                silentNext = f.ReadAll(std::chrono::seconds(10));
  EXPECT_TRUE(partial.bytes.starts_with("HTTP/1.1 408 ") && partial.closed) << partial.bytes;
  EXPECT_TRUE(silent.bytes.empty() && silent.closed) << silent.bytes;
  EXPECT_TRUE(partialNext.bytes.starts_with("HTTP/1.1 200 ") && partialNext.closed);
  EXPECT_NE(partialNext.bytes.find("HTTP/1.1 408 "), std::string::npos) << partialNext.bytes;
  EXPECT_TRUE(silentNext.bytes.starts_with("HTTP/1.1 200 ") && silentNext.closed);
  EXPECT_EQ(silentNext.bytes.find("HTTP/1.1", 1), std::string::npos) << silentNext.bytes;
}

}  // namespace
}  // namespace ostrakan::testing
