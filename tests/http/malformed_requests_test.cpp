// Requests whose framing is ambiguous get 400 and a closed connection, so that nothing after
// them is read as a request of its own; unusual but valid request lines get an answer.
#include "http/engine_fixture.h"
#include "http/raw_connection.h"

namespace ostrakan::testing {
namespace {

class MalformedRequests : public EngineTest {
 protected:
  // Sends `request` followed by a well-formed request that must not be answered.
  void ExpectRefusedAndClosed(const std::string& request) {
    RawConnection c(server_->port());
    ASSERT_TRUE(c.connected());
    c.Send(request + "GET /admin/css/a.css HTTP/1.1\r\nHost: a\r\n\r\n");
    bool closed = false;
    std::string answer = c.ReadAll(closed);
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 400 ")) << answer;
    EXPECT_TRUE(closed) << answer;
    EXPECT_EQ(answer.find("body{}"), std::string::npos) << "the smuggled request was answered";
  }
};

TEST_F(MalformedRequests, AmbiguousLengthsAndBrokenChunksAreRefused) {
  const std::string post = "POST /echo.asp HTTP/1.1\r\nHost: a\r\n";
  ExpectRefusedAndClosed(post + "Content-Length: 3\r\nContent-Length: 5\r\n\r\nf=abc");
  ExpectRefusedAndClosed(post +
                         "Content-Length: 3\r\nTransfer-Encoding: chunked\r\n\r\n"
                         "3\r\nf=a\r\n0\r\n\r\n");
  ExpectRefusedAndClosed(post + "Transfer-Encoding: chunked\r\n\r\nzz\r\nf=a\r\n0\r\n\r\n");
  ExpectRefusedAndClosed(post +
                         "Transfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\nf=a\r\n0\r\n\r\n");
  ExpectRefusedAndClosed("GET /echo.asp HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n");
}

TEST_F(MalformedRequests, SameLengthTwiceAndGoodChunksStillWork) {
  RawConnection c(server_->port());
  c.Send(
      "POST /echo.asp HTTP/1.1\r\nHost: a\r\nContent-Type: application/x-www-form-urlencoded\r\n"
      "Transfer-Encoding: chunked\r\nConnection: close\r\n\r\n3\r\nf=a\r\n2\r\nbc\r\n0\r\n\r\n");
  bool closed = false;
  std::string answer = c.ReadAll(closed);
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 ")) << answer;
  EXPECT_NE(answer.find("f=[abc]"), std::string::npos) << answer;

  RawConnection d(server_->port());
  d.Send(
      "POST /echo.asp HTTP/1.1\r\nHost: a\r\nContent-Type: application/x-www-form-urlencoded\r\n"
      "Content-Length: 3\r\nContent-Length: 3\r\nConnection: close\r\n\r\nf=x");
  answer = d.ReadAll(closed);
  EXPECT_NE(answer.find("f=[x]"), std::string::npos) << answer;
}

TEST_F(MalformedRequests, AnAbsoluteFormRequestLineIsAnsweredLikeItsPath) {
  RawConnection c(server_->port());
  std::string host = "127.0.0.1:" + std::to_string(server_->port());
  c.Send("GET http://" + host + "/admin/css/a.css HTTP/1.1\r\nHost: " + host +
         "\r\nConnection: close\r\n\r\n");
  bool closed = false;
  std::string answer = c.ReadAll(closed);
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 ")) << answer;
  EXPECT_NE(answer.find("body{}"), std::string::npos);
}

}  // namespace
}  // namespace ostrakan::testing
