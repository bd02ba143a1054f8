// Request reading and decoding: the bytes a client sends (request line, header fields, a body
// framed by Content-Length or chunks) through the engine's reader on Beast's parser, arriving
// in two pieces as they would from a socket, then the requests it reads (pipelined ones too)
// through query strings, form bodies (multipart uploads too), cookies, header checks and the
// Request object, in both code pages a session can have.
#include "engine/cross_site.h"
#include "engine/multipart_form.h"
#include "engine/request_builder.h"
#include "engine/request_reader.h"
#include "engine/url_decoding.h"
#include "fuzz/fuzz_text.h"

using namespace ostrakan;

namespace {

void Decode(engine::HttpRequest& r) {
  r.remoteAddr = "127.0.0.1";
  for (int codePage : {936, 65001}) {
    engine::PercentDecode(r.queryString, true);
    engine::DecodeRequestText(r.body, codePage);
    KeyedValues pairs;
    engine::AddUrlEncoded(r.body, codePage, pairs);
    engine::AddCookies(r.Header("Cookie"), codePage, pairs);
    try {
      engine::BuildRequest(r, "/admin/x.asp", codePage);
    } catch (const engine::MultipartError&) {  // a refused upload body: answered with 400
    }
  }
  engine::IsActionPage(r.path, r.queryString);
  engine::NamesAnotherSite(r);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  // The first byte says where the bytes split between two reads.
  std::string_view bytes = fuzz::Bytes(data + 1, size - 1);
  size_t split = bytes.empty() ? 0 : data[0] % (bytes.size() + 1);
  std::string in(bytes.substr(0, split));
  std::string_view later = bytes.substr(split);
  for (int requests = 0; requests < 8; ++requests) {
    engine::RequestReader reader(1 << 16);
    engine::RequestReader::State state = reader.Read(in);
    if (state == engine::RequestReader::State::Head ||
        state == engine::RequestReader::State::HeadDone) {
      in.append(later);
      later = {};
      state = reader.Read(in);
    }
    if (state != engine::RequestReader::State::Done) return 0;
    engine::RequestHead head = reader.TakeRequest();
    Decode(head.request);
  }
  return 0;
}
