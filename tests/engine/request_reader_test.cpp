// What a client sends, on bytes alone: the request reader (requests in any number of pieces,
// connection rules, targets, refusals of what two readers could read differently), the decoding
// of escapes and cookies, and the strict multipart/form-data reader (what browsers send is read
// exactly, anything else is refused with a sentence).
#include "engine/request_reader.h"
#include "engine/multipart_form.h"
#include "engine/url_decoding.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

constexpr size_t kBodyLimit = 1000;

// Reads one request from `bytes` given at once, shown as "<path>?<query> <keep|close> Host:
// <host> <body>", with " *" for an asterisk target.
std::string Read(std::string bytes) {
  RequestReader reader(kBodyLimit);
  if (reader.Read(bytes) != RequestReader::State::Done) return "not read: " + reader.refusal().why;
  const RequestHead h = reader.TakeRequest();
  return h.request.path + "?" + h.request.queryString + (h.keepAlive ? " keep" : " close") +
         " Host: " + h.request.Header("Host") + " " + h.request.body + (h.asterisk ? " *" : "");
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
  const std::pair<std::string, std::string> cases[] = {
      {"GET /a%20b/c.asp?x=1?y HTTP/1.1\r\nHost: a\r\n\r\n", "/a b/c.asp?x=1?y keep Host: a "},
      {"GET / HTTP/1.1\r\nHost: a\r\nConnection: TE, Close\r\n\r\n", "/? close Host: a "},
      {"GET / HTTP/1.0\r\n\r\n", "/? close Host:  "},
      {"GET / HTTP/1.0\r\nConnection: Keep-Alive\r\n\r\n", "/? keep Host:  "},
      // The same length twice says one thing.
      {"POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 3\r\nContent-Length: 3\r\n\r\nf=x",
       "/? keep Host: a f=x"},
      // The authority of an absolute-form target replaces the Host header.
      {"GET https://Other:81?q HTTP/1.1\r\nHost: a\r\n\r\n", "/?q keep Host: Other:81 "},
      {"OPTIONS * HTTP/1.1\r\nHost: a\r\n\r\n", "*? keep Host: a  *"}};
  for (const auto& [bytes, read] : cases) EXPECT_EQ(Read(bytes), read) << bytes;

  RequestReader reader(kBodyLimit);
  std::string in =
      "POST / HTTP/1.1\r\nHost: a\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r\n";
  ASSERT_EQ(reader.Read(in), RequestReader::State::HeadDone);
  EXPECT_TRUE(reader.head().expectContinue);
  in = "f=x";
  ASSERT_EQ(reader.Read(in), RequestReader::State::Done);
  EXPECT_EQ(reader.TakeRequest().request.body, "f=x");
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

// The pairs read, as "name=value|...".
std::u16string Pairs(const KeyedValues& values) {
  std::u16string shown;
  for (const auto& [name, value] : values.items()) shown += name + u"=" + value + u"|";
  return shown;
}

TEST(UrlEncoded, FormsAndCookiesDecodeInTheCodePageWithoutEatingNeighbours) {
  KeyedValues gbk, utf8, cookies;
  // "你好" in GBK is C4 E3 BA C3; in UTF-8 it is E4 BD A0 E5 A5 BD. A lead byte cut off at the
  // end is one replacement character.
  AddUrlEncoded("q=%C4%E3%BA%C3&%D6%D0=1&a=x%FFy&b=%C4&c==d", 936, gbk);
  EXPECT_EQ(Pairs(gbk), u"q=你好|中=1|a=x\uFFFDy|b=\uFFFD|c==d|");
  AddUrlEncoded("q=%E4%BD%A0%E5%A5%BD&flag", 65001, utf8);
  EXPECT_EQ(Pairs(utf8), u"q=你好|flag=|");
  // Cookies split on semicolons; a pair without a name is skipped.
  AddCookies("a=1;  b=x%20y ; c=%C4%E3; broken; =skipped", 936, cookies);
  EXPECT_EQ(Pairs(cookies), u"a=1|b=x y|c=你|broken=|");
}

TEST(MultipartForm, ReadsTheFieldsAndFilesABrowserSends) {
  EXPECT_EQ(MultipartBoundary("multipart/form-data; boundary=----WebKitFormBoundaryA1b2"),
            "----WebKitFormBoundaryA1b2");
  EXPECT_EQ(MultipartBoundary("Multipart/Form-Data;boundary=\"a b:c\""), "a b:c");
  // A file whose bytes hold CRLFs, a near-boundary and NUL; a text field in GBK; a file field
  // left empty; an escaped quote in a file name.
  const std::string file("{\r\n--Xy\r\n-XyZ\0}", 15);
  const std::string body =
      "--XyZ\r\nContent-Disposition: form-data; name=\"kind\"\r\n\r\n\xB5\xE7\xD3\xB0\r\n"
      "--XyZ\r\ncontent-disposition: form-data; name=\"file\"; filename=\"a\\\"b.json\"\r\n"
      "Content-Type: application/json\r\n\r\n" +
      file +
      "\r\n--XyZ\r\nContent-Disposition: form-data; name=\"other\"; filename=\"\"\r\n"
      "Content-Type: application/octet-stream\r\n\r\n\r\n--XyZ--\r\n";
  const auto parts = ReadMultipart(body, "XyZ");
  std::string read;
  for (const auto& part : parts)
    read += part.name + "|" + part.fileName.value_or("(none)") + "|" + part.contentType + "|" +
            part.data + "\n";
  EXPECT_EQ(read, "kind|(none)||\xB5\xE7\xD3\xB0\nfile|a\"b.json|application/json|" + file +
                      "\nother||application/octet-stream|\n");
  EXPECT_TRUE(ReadMultipart("--XyZ--", "XyZ").empty());
}

TEST(MultipartForm, RefusesEverythingElseAndWhatIsTooLarge) {
  for (const char* type :
       {"multipart/form-data", "multipart/form-data; boundary=", "multipart/mixed; boundary=a",
        "multipart/form-data; boundary=\"a", "multipart/form-data; boundary=a; boundary=b",
        "multipart/form-data; boundary=a{b}"})
    EXPECT_THROW(MultipartBoundary(type), MultipartError) << type;
  EXPECT_THROW(MultipartBoundary("multipart/form-data; boundary=" + std::string(71, 'a')),
               MultipartError);

  const std::string head = "Content-Disposition: form-data; name=\"f\"\r\n\r\n";
  for (const std::string& body : std::vector<std::string>{
           "preamble\r\n--B\r\n" + head + "x\r\n--B--",          // text before the first boundary
           "--B\n" + head + "x\r\n--B--",                        // a bare LF
           "--B\r\n" + head + "x\r\n--B",                        // no closing boundary
           "--B\r\n" + head + "x",                               // cut short
           "--B\r\n" + head + "x\r\n--B--\r\nmore",              // data after the end
           "--B\r\nContent-Type: text/plain\r\n\r\nx\r\n--B--",  // no disposition
           "--B\r\nContent-Disposition: form-data\r\n\r\nx\r\n--B--",               // no name
           "--B\r\nContent-Disposition: attachment; name=\"f\"\r\n\r\nx\r\n--B--",  // not a form
           "--B\r\n" + head.substr(0, head.size() - 2) + " folded\r\n\r\nx\r\n--B--",
           "--B\r\n\r\nContent-Disposition: form-data; name=\"f\"\r\n\r\nx\r\n--B--",
           "--B\r\nContent-Transfer-Encoding: base64\r\n" + head + "eA==\r\n--B--",
           "--B\r\nX: " + std::string(5000, 'a') + "\r\n" + head + "x\r\n--B--"})
    EXPECT_THROW(ReadMultipart(body, "B"), MultipartError) << body.substr(0, 80);

  MultipartLimits small;
  small.maxParts = 2;
  small.maxFileBytes = 10;
  const std::string field = "--B\r\n" + head + "x\r\n";
  EXPECT_EQ(ReadMultipart(field + field + "--B--", "B", small).size(), 2u);
  EXPECT_THROW(ReadMultipart(field + field + field + "--B--", "B", small), MultipartError);
  const std::string file =
      "--B\r\nContent-Disposition: form-data; name=\"f\"; filename=\"a\"\r\n\r\n";
  EXPECT_EQ(ReadMultipart(file + std::string(10, 'a') + "\r\n--B--", "B", small).size(), 1u);
  // Two files over the limit together.
  EXPECT_THROW(
      ReadMultipart(file + std::string(6, 'a') + "\r\n" + file + "aaaaa\r\n--B--", "B", small),
      MultipartError);
}

}  // namespace
}  // namespace ostrakan::engine
