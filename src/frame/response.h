// The Response object: a buffered answer. Markup written with Write (the page's own texts and
// escaped values, never a raw string or Variant) is encoded at once with the response's code
// page; BinaryWrite appends bytes as they are. After End nothing more is written. The page engine
// turns the headers and the buffer into the HTTP answer.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/variant.h"
#include "frame/markup.h"

namespace ostrakan {

class Response : public Object {
 public:
  explicit Response(int codePage = 936) : codePage_(codePage) {}

  void Write(const Markup& markup);
  void BinaryWrite(const Bytes& bytes);
  void BinaryWrite(std::string_view bytes);
  void AddHeader(std::u16string_view name, std::u16string_view value);
  void Clear() { body_.clear(); }
  void End() { ended_ = true; }
  void Redirect(std::u16string_view url);  // 302 with Location

  bool ended() const { return ended_; }
  const std::string& body() const { return body_; }
  std::u16string Text() const;  // the body decoded with the code page (for tests and logs)

  // Settable properties of the page engine's object.
  int Expires = 0;  // minutes; only sent when set (see expiresSet)
  void SetExpires(int minutes);
  void SetExpiresAbsolute(double oleDate);
  std::u16string CacheControl;  // "private" unless set
  std::u16string ContentType = u"text/html";
  std::u16string Status = u"200 OK";
  bool Buffer = true;
  int CodePage() const { return codePage_; }
  void SetCodePage(int cp) { codePage_ = cp; }

  // The HTTP status code and the header lines as they go out (Content-Type names the charset
  // of the code page for text types; Expires and Cache-Control follow the properties).
  int StatusCode() const;
  std::vector<std::pair<std::string, std::string>> Headers() const;

 private:
  int codePage_;
  bool ended_ = false;
  std::string body_;
  std::vector<std::pair<std::string, std::string>> extra_;
  std::optional<double> expiresAt_;  // OLE date, local time
};

// A moment as HTTP writes it: "Sun, 22 Nov 2026 01:02:03 GMT".
std::string HttpDate(time_t t);

}  // namespace ostrakan
