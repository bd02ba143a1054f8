#include "engine/request_reader.h"

#include <boost/beast/http/error.hpp>

namespace ostrakan::engine {
namespace {

namespace http = boost::beast::http;

// Where the first line end in `s` that is a LF without its CR is, or npos.
size_t BareLineFeed(std::string_view s) {
  for (size_t at = s.find('\n'); at != std::string_view::npos; at = s.find('\n', at + 1))
    if (at == 0 || s[at - 1] != '\r') return at;
  return std::string_view::npos;
}

// Whether the version of the request line at the start of `in` has the form HTTP/d.d.
bool HasVersionForm(std::string_view in) {
  std::string_view line = in.substr(0, in.find("\r\n"));
  size_t space = line.rfind(' ');
  if (space == std::string_view::npos) return false;
  std::string_view v = line.substr(space + 1);
  return v.size() == 8 && v.starts_with("HTTP/") &&
         std::isdigit(static_cast<unsigned char>(v[5])) && v[6] == '.' &&
         std::isdigit(static_cast<unsigned char>(v[7]));
}

// Whether `in` starts with a chunk size that no body could have (more than 10 hexadecimal
// digits, a terabyte), which is malformed rather than merely too long.
bool ChunkSizeTooLarge(std::string_view in) {
  size_t digits = 0;
  while (digits < in.size() && std::isxdigit(static_cast<unsigned char>(in[digits]))) ++digits;
  return digits > 10;
}

}  // namespace

RequestReader::RequestReader(size_t maxBodyBytes) {
  parser_.header_limit(static_cast<std::uint32_t>(kMaxHeadBytes));
  parser_.body_limit(maxBodyBytes);
  parser_.eager(false);  // the head alone first: it is checked before any body is read
  onChunk_ = [this](std::uint64_t, boost::beast::string_view extensions,
                    boost::system::error_code& ec) {
    if (extensions.size() > kMaxLine) {
      chunkProblem_ = "a chunk extension longer than " + std::to_string(kMaxLine) + " bytes";
      ec = http::error::bad_chunk_extension;
    }
  };
  parser_.on_chunk_header(onChunk_);
}

RequestReader::State RequestReader::Refuse(int status, std::string why) {
  refusal_ = {status, std::move(why)};
  return state_ = State::Refused;
}

RequestReader::State RequestReader::Refuse(const boost::system::error_code& ec,
                                           std::string_view in) {
  if (ec == http::error::header_limit)
    return Refuse(431, "a head larger than " + std::to_string(kMaxHeadBytes) + " bytes");
  if (ec == http::error::body_limit && !ChunkSizeTooLarge(in))
    return Refuse(413, "a body larger than the limit");
  if (ec == http::error::body_limit) return Refuse(400, "a chunk size too large to be one");
  if (ec == http::error::bad_version && HasVersionForm(in))
    return Refuse(505, "an HTTP version other than 1.0 and 1.1");
  if (!chunkProblem_.empty()) return Refuse(400, chunkProblem_);
  if (state_ == State::HeadDone)
    return Refuse(400, "a body whose chunks are malformed (" + ec.message() + ")");
  return Refuse(400, "a malformed head (" + ec.message() + ")");
}

RequestReader::State RequestReader::Read(std::string& in) {
  if (state_ == State::Head) ReadHead(in);
  if (state_ == State::HeadDone) ReadBody(in);
  return state_;
}

RequestReader::State RequestReader::ReadHead(std::string& in) {
  // Empty lines before a request line are skipped (a client may send one after a body).
  size_t start = 0;
  while (in.compare(start, 2, "\r\n") == 0) start += 2;
  in.erase(0, start);
  if (in.empty() || in == "\r") return state_;
  started_ = true;
  // The head's line ends: up to its end, or all there is while it is incomplete.
  size_t end = in.find("\r\n\r\n");
  std::string_view head(in.data(), end == std::string::npos ? in.size() : end + 4);
  if (BareLineFeed(head) != std::string_view::npos)
    return Refuse(400, "a line that ends in LF without CR");
  for (size_t at = head.find("\r\n"); at != std::string_view::npos && at + 2 < head.size();
       at = head.find("\r\n", at + 2))
    if (head[at + 2] == ' ' || head[at + 2] == '\t') return Refuse(400, "a folded header line");
  if (end == std::string::npos) {
    if (in.size() > kMaxHeadBytes)
      return Refuse(431, "a head larger than " + std::to_string(kMaxHeadBytes) + " bytes");
    return state_;
  }
  boost::system::error_code ec;
  size_t used = parser_.put(boost::asio::buffer(in.data(), head.size()), ec);
  if (ec || !parser_.is_header_done()) {
    if (ec == http::error::need_more) ec = http::error::bad_value;  // a whole head was given
    return Refuse(ec, in);
  }
  const auto& message = parser_.get();
  ParsedHead parsed;
  parsed.method = std::string_view(message.method_string().data(), message.method_string().size());
  parsed.target = std::string_view(message.target().data(), message.target().size());
  parsed.version = static_cast<int>(message.version());
  for (const auto& field : message)
    parsed.fields.emplace_back(std::string(field.name_string()), std::string(field.value()));
  auto checked = CheckRequestHead(parsed);
  in.erase(0, used);
  if (auto* error = std::get_if<HeadError>(&checked)) return Refuse(error->status, error->why);
  head_ = std::move(std::get<RequestHead>(checked));
  parser_.eager(true);
  return state_ = parser_.is_done() ? State::Done : State::HeadDone;
}

RequestReader::State RequestReader::ReadBody(std::string& in) {
  while (!in.empty() && !parser_.is_done()) {
    boost::system::error_code ec;
    size_t used = parser_.put(boost::asio::buffer(in.data(), in.size()), ec);
    in.erase(0, used);
    if (ec == http::error::need_more) {
      if (used > 0) continue;
      // Waiting for the end of a line of the chunk framing (the data itself is taken as it
      // comes): a bare LF in it, or a line that goes on and on, ends the request.
      if (BareLineFeed(in) != std::string::npos)
        return Refuse(400, "a chunk line that ends in LF without CR");
      if (in.size() > kMaxLine)
        return Refuse(400, "a chunk line longer than " + std::to_string(kMaxLine) + " bytes");
      return state_;
    }
    if (ec) return Refuse(ec, in);
  }
  if (parser_.is_done()) state_ = State::Done;
  return state_;
}

RequestHead RequestReader::TakeRequest() {
  RequestHead head = std::move(*head_);
  head.request.body = std::move(parser_.get().body());
  return head;
}

}  // namespace ostrakan::engine
