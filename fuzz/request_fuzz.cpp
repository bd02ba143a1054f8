// Request parsing and decoding: query strings, form bodies, cookies, header checks and the
// Request object built from them, in both code pages a session can have.
#include "engine/cross_site.h"
#include "engine/request_builder.h"
#include "engine/url_decoding.h"
#include "fuzz/fuzz_text.h"

using namespace ostrakan;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view rest = fuzz::Bytes(data, size);
  // Fields separated by newlines: method, path, query, then "Name: value" headers, then body.
  engine::HttpRequest r;
  r.method = fuzz::Take(rest, '\n');
  r.path = fuzz::Take(rest, '\n');
  r.queryString = fuzz::Take(rest, '\n');
  for (std::string_view line; !(line = fuzz::Take(rest, '\n')).empty();) {
    std::string_view value = line;
    std::string_view name = fuzz::Take(value, ':');
    r.headers.emplace_back(std::string(name), std::string(value));
  }
  r.body = rest;
  r.remoteAddr = "127.0.0.1";
  for (int codePage : {936, 65001}) {
    engine::PercentDecode(r.queryString, true);
    engine::DecodeRequestText(r.body, codePage);
    KeyedValues pairs;
    engine::AddUrlEncoded(r.body, codePage, pairs);
    engine::AddCookies(r.queryString, codePage, pairs);
    engine::BuildRequest(r, "/admin/x.asp", codePage);
  }
  engine::IsActionPage(r.path, r.queryString);
  engine::NamesAnotherSite(r);
  return 0;
}
