// Request parsing and decoding: the bytes a client sends (request line, header fields, a body
// framed by Content-Length or chunks), then query strings, form bodies, cookies, header checks
// and the Request object built from them, in both code pages a session can have.
#include <variant>

#include "engine/chunked_body.h"
#include "engine/cross_site.h"
#include "engine/request_builder.h"
#include "engine/request_head.h"
#include "engine/url_decoding.h"
#include "fuzz/fuzz_text.h"

using namespace ostrakan;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view bytes = fuzz::Bytes(data, size);
  size_t headEnd = engine::FindHeadEnd(bytes);
  if (headEnd == std::string_view::npos) return 0;
  auto parsed = engine::ParseRequestHead(bytes.substr(0, headEnd));
  auto* head = std::get_if<engine::RequestHead>(&parsed);
  if (!head) return 0;
  engine::HttpRequest& r = head->request;
  std::string_view rest = bytes.substr(headEnd);
  if (head->framing == engine::BodyFraming::Chunked) {
    engine::ChunkedDecoder decoder(1 << 16);
    size_t used = 0;
    decoder.Feed(rest, used, r.body);
  } else {
    r.body = rest.substr(0, head->contentLength);
  }
  r.remoteAddr = "127.0.0.1";
  for (int codePage : {936, 65001}) {
    engine::PercentDecode(r.queryString, true);
    engine::DecodeRequestText(r.body, codePage);
    KeyedValues pairs;
    engine::AddUrlEncoded(r.body, codePage, pairs);
    engine::AddCookies(r.Header("Cookie"), codePage, pairs);
    engine::BuildRequest(r, "/admin/x.asp", codePage);
  }
  engine::IsActionPage(r.path, r.queryString);
  engine::NamesAnotherSite(r);
  return 0;
}
