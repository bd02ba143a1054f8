// Reads one HTTP/1.1 request from the bytes a connection received, on Boost.Beast's parser,
// with the engine's own checks around it: every line end in the head and in the chunk framing
// must be CRLF (a bare LF is refused, so that a proxy that reads it differently cannot be
// told one request and this server another), no folded header lines, chunk extension and
// trailer lines no longer than kMaxLine, and the head checks of CheckRequestHead.
//
// Use: feed it the connection's unread bytes with Read() until it says Done or Refused;
// between HeadDone and Done the caller may send "100 Continue". Bytes after the request
// (the next pipelined request) stay in the buffer.
#pragma once

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <optional>
#include <string>

#include "engine/request_head.h"

namespace ostrakan::engine {

class RequestReader {
 public:
  static constexpr size_t kMaxHeadBytes = 16384;
  static constexpr size_t kMaxLine = 4096;  // a chunk size line or a trailer line

  enum class State {
    Head,      // the head is still arriving (started() tells whether its first byte did)
    HeadDone,  // the head is read and checked; the body is still arriving
    Done,      // the request is whole: take it with TakeRequest()
    Refused,   // answer refusal() and close the connection
  };

  explicit RequestReader(size_t maxBodyBytes);

  // Consumes from the front of `in` what belongs to this request and returns where it stands.
  State Read(std::string& in);

  State state() const { return state_; }
  // Whether the request's first byte (after the empty lines allowed before it) has arrived.
  bool started() const { return started_; }
  const RequestHead& head() const { return *head_; }
  RequestHead TakeRequest();
  const HeadError& refusal() const { return refusal_; }

 private:
  using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;
  State ReadHead(std::string& in);
  State ReadBody(std::string& in);
  State Refuse(int status, std::string why);
  State Refuse(const boost::system::error_code& ec, std::string_view in);

  Parser parser_;
  State state_ = State::Head;
  bool started_ = false;
  std::optional<RequestHead> head_;
  HeadError refusal_{0, ""};
  std::string chunkProblem_;  // set by the chunk header callback
  std::function<void(std::uint64_t, boost::beast::string_view, boost::system::error_code&)>
      onChunk_;
};

}  // namespace ostrakan::engine
