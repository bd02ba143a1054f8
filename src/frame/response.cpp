#include "frame/response.h"

#include <cmath>
#include <ctime>

#include "platform/clock.h"
#include "platform/text/codepage.h"

namespace ostrakan {

std::string HttpDate(time_t t) {
  // Answers within one second carry the same date: the text is kept per thread.
  thread_local time_t last = -1;
  thread_local std::string text;
  if (t == last) return text;
  struct tm g;
  gmtime_r(&t, &g);
  char buf[64];
  strftime(buf, sizeof buf, "%a, %d %b %Y %H:%M:%S GMT", &g);
  text = buf;
  last = t;
  return text;
}

namespace {

// A local OLE date as seconds since the epoch.
time_t ConvertOleLocal(double ole) {
  double days = std::floor(ole);
  double secs = std::round((ole - days) * 86400.0);
  struct tm lt = {};
  lt.tm_year = 1899 - 1900;
  lt.tm_mon = 11;
  lt.tm_mday = 30 + static_cast<int>(days);
  lt.tm_sec = static_cast<int>(secs);
  lt.tm_isdst = -1;
  return mktime(&lt);
}

// The same, remembering the last two dates of the thread: the pages ask for the same few
// (now, and the day before) many times a second, and mktime's normalization of the day count
// is most of a page header's cost. The time zone is fixed while the server runs.
time_t FromOleLocal(double ole) {
  thread_local double dates[2] = {NAN, NAN};
  thread_local time_t times[2] = {0, 0};
  thread_local int next = 0;
  for (int i = 0; i < 2; ++i)
    if (dates[i] == ole) return times[i];
  const time_t t = ConvertOleLocal(ole);
  dates[next] = ole;
  times[next] = t;
  next ^= 1;
  return t;
}

}  // namespace

void Response::Write(const Markup& markup) {
  if (ended_) return;
  text::EncodeAppend(body_, markup.text(), codePage_);
}

void Response::BinaryWrite(const Bytes& bytes) {
  if (ended_) return;
  body_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void Response::BinaryWrite(std::string_view bytes) {
  if (ended_) return;
  body_.append(bytes);
}

void Response::AddHeader(std::u16string_view name, std::u16string_view value) {
  extra_.emplace_back(ToUtf8(name), ToUtf8(value));
}

void Response::Redirect(std::u16string_view url) {
  Status = u"302 Object moved";
  AddHeader(u"Location", url);
  End();
}

std::u16string Response::Text() const {
  return text::Decode(body_, codePage_);
}

void Response::SetExpires(int minutes) {
  Expires = minutes;
  expiresAt_ =
      static_cast<double>(FromOleLocal(CurrentClock().Now()) + static_cast<time_t>(minutes) * 60);
}

void Response::SetExpiresAbsolute(double oleDate) {
  expiresAt_ = static_cast<double>(FromOleLocal(oleDate));
}

int Response::StatusCode() const {
  int code = 0;
  for (char16_t c : Status) {
    if (c < u'0' || c > u'9') break;
    code = code * 10 + (c - u'0');
  }
  return code >= 100 && code <= 599 ? code : 200;
}

std::vector<std::pair<std::string, std::string>> Response::Headers() const {
  std::vector<std::pair<std::string, std::string>> out;
  std::string type = ToUtf8(ContentType);
  if (ContentType.starts_with(u"text/") && ContentType.find(u"charset") == std::u16string::npos)
    type += "; charset=" + ToUtf8(text::CharsetNameOf(codePage_));
  out.emplace_back("Content-Type", type);
  out.emplace_back("Cache-Control", CacheControl.empty() ? "private" : ToUtf8(CacheControl));
  if (expiresAt_) out.emplace_back("Expires", HttpDate(static_cast<time_t>(*expiresAt_)));
  out.insert(out.end(), extra_.begin(), extra_.end());
  return out;
}

}  // namespace ostrakan
