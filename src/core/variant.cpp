#include "core/variant.h"

#include <unicode/ustring.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace ostrakan {

namespace {

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t';
}

std::u16string Ascii(std::string_view s) {
  return std::u16string(s.begin(), s.end());
}

std::u16string FormatDouble(double d) {
  if (d == 0) return u"0";
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.15G", d);
  return Ascii(buf);
}

// Parses a numeric text as the runtime's conversions accept it: blanks around, an optional
// sign, digits with an optional decimal point, an optional exponent, or "&H"/"&O" forms.
std::optional<double> ParseNumber(std::u16string_view s) {
  size_t b = 0, e = s.size();
  while (b < e && IsBlank(s[b])) ++b;
  while (e > b && IsBlank(s[e - 1])) --e;
  if (b == e) return std::nullopt;
  std::string ascii;
  for (size_t i = b; i < e; ++i) {
    if (s[i] > 127) return std::nullopt;
    ascii += static_cast<char>(s[i]);
  }
  if (ascii.size() > 2 && ascii[0] == '&' && (ascii[1] == 'H' || ascii[1] == 'h')) {
    char* end = nullptr;
    unsigned long long v = std::strtoull(ascii.c_str() + 2, &end, 16);
    if (*end || ascii.size() > 10) return std::nullopt;
    return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(v)));
  }
  size_t i = 0;
  if (ascii[i] == '+' || ascii[i] == '-') ++i;
  size_t digits = 0;
  while (i < ascii.size() && std::isdigit(static_cast<unsigned char>(ascii[i]))) ++i, ++digits;
  if (i < ascii.size() && ascii[i] == '.') {
    ++i;
    while (i < ascii.size() && std::isdigit(static_cast<unsigned char>(ascii[i]))) ++i, ++digits;
  }
  if (digits == 0) return std::nullopt;
  if (i < ascii.size() && (ascii[i] == 'e' || ascii[i] == 'E')) {
    ++i;
    if (i < ascii.size() && (ascii[i] == '+' || ascii[i] == '-')) ++i;
    size_t expDigits = 0;
    while (i < ascii.size() && std::isdigit(static_cast<unsigned char>(ascii[i]))) ++i, ++expDigits;
    if (expDigits == 0) return std::nullopt;
  }
  if (i != ascii.size()) return std::nullopt;
  const double out = std::strtod(ascii.c_str(), nullptr);
  if (!std::isfinite(out)) return std::nullopt;
  return out;
}

// Round half to even, as the runtime's integer conversions do.
double BankersRound(double d) {
  double r = std::nearbyint(d);  // default rounding mode: to nearest, ties to even
  return r;
}

// Days from 1970-01-01 for a civil date (proleptic Gregorian).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t yy = static_cast<int64_t>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yy + (m <= 2));
}

constexpr int64_t kOleEpochFromUnixDays = -25569;  // 1899-12-30 relative to 1970-01-01

struct DateParts {
  int y, mo, d, h, mi, s;
};

DateParts Split(double ole) {
  int64_t days = static_cast<int64_t>(std::floor(ole));
  double frac = ole - static_cast<double>(days);
  int64_t secs = static_cast<int64_t>(std::llround(frac * 86400.0));
  if (secs >= 86400) {
    ++days;
    secs -= 86400;
  }
  DateParts p{};
  CivilFromDays(days + kOleEpochFromUnixDays, p.y, p.mo, p.d);
  p.h = static_cast<int>(secs / 3600);
  p.mi = static_cast<int>(secs / 60 % 60);
  p.s = static_cast<int>(secs % 60);
  return p;
}

double NumberOf(const Variant& v);

}  // namespace

// ---- Variant ----

Variant Variant::Null() {
  Variant v;
  v.value_ = NullTag{};
  return v;
}

Variant Variant::Integer(int16_t i) {
  Variant v;
  v.value_ = IntegerSlot{i};
  return v;
}

Variant Variant::Date(double d) {
  Variant v;
  v.value_ = DateSlot{d};
  return v;
}

VarType Variant::type() const {
  return static_cast<VarType>(value_.index());
}

bool Variant::IsNumber() const {
  switch (type()) {
    case VarType::Boolean:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Double:
    case VarType::Date:
      return true;
    default:
      return false;
  }
}

const std::u16string& Variant::str() const {
  if (auto p = std::get_if<std::u16string>(&value_)) return *p;
  throw TypeMismatch();
}

const ObjectRef& Variant::object() const {
  if (auto p = std::get_if<ObjectSlot>(&value_)) return p->ref;
  throw TypeMismatch();
}

const Bytes& Variant::bytes() const {
  if (auto p = std::get_if<Bytes>(&value_)) return *p;
  throw TypeMismatch();
}

// Internal access to the stored alternatives for the conversions below.
struct VariantAccess {
  static bool Boolean(const Variant& v) { return std::get<bool>(v.value_); }
  static int16_t Integer(const Variant& v) { return std::get<Variant::IntegerSlot>(v.value_).v; }
  static int32_t Long(const Variant& v) { return std::get<int32_t>(v.value_); }
  static double Double(const Variant& v) { return std::get<double>(v.value_); }
  static double Date(const Variant& v) { return std::get<Variant::DateSlot>(v.value_).v; }
};

namespace {

double NumberOf(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return 0;
    case VarType::Null:
      throw InvalidUseOfNull();
    case VarType::Boolean:
      return VariantAccess::Boolean(v) ? -1 : 0;
    case VarType::Integer:
      return VariantAccess::Integer(v);
    case VarType::Long:
      return VariantAccess::Long(v);
    case VarType::Double:
      return VariantAccess::Double(v);
    case VarType::Date:
      return VariantAccess::Date(v);
    case VarType::String: {
      if (std::optional<double> d = ParseNumber(v.str())) return *d;
      throw TypeMismatch();
    }
    default:
      throw TypeMismatch();
  }
}

}  // namespace

// ---- Conversions ----

std::u16string CStr(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return u"";
    case VarType::Null:
      throw InvalidUseOfNull();
    case VarType::Boolean:
      return VariantAccess::Boolean(v) ? u"True" : u"False";
    case VarType::Integer:
      return Ascii(std::to_string(VariantAccess::Integer(v)));
    case VarType::Long:
      return Ascii(std::to_string(VariantAccess::Long(v)));
    case VarType::Double:
      return FormatDouble(VariantAccess::Double(v));
    case VarType::Date:
      return GeneralDate(VariantAccess::Date(v));
    case VarType::String:
      return v.str();
    default:
      throw TypeMismatch();
  }
}

std::u16string TextOf(const Variant& v) {
  return v.IsNull() ? std::u16string() : CStr(v);
}

double CDbl(const Variant& v) {
  return NumberOf(v);
}

int32_t CLng(const Variant& v) {
  double d = BankersRound(NumberOf(v));
  if (!(d >= -2147483648.0 && d <= 2147483647.0)) throw Overflow();
  return static_cast<int32_t>(d);
}

int16_t CInt(const Variant& v) {
  double d = BankersRound(NumberOf(v));
  if (!(d >= -32768.0 && d <= 32767.0)) throw Overflow();
  return static_cast<int16_t>(d);
}

bool CBool(const Variant& v) {
  if (v.IsString()) {
    if (IEquals(v.str(), u"True")) return true;
    if (IEquals(v.str(), u"False")) return false;
  }
  return NumberOf(v) != 0;
}

double CDate(const Variant& v) {
  if (v.type() == VarType::Date) return VariantAccess::Date(v);
  if (v.IsString()) {
    if (auto date = ParseDate(v.str())) return *date;
    if (std::optional<double> d = ParseNumber(v.str())) return *d;
    throw TypeMismatch();
  }
  return NumberOf(v);
}

bool IsNumeric(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
    case VarType::Boolean:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Double:
      return true;
    case VarType::String:
      return ParseNumber(v.str()).has_value();
    default:
      return false;  // Null, Date, objects and byte arrays
  }
}

int Compare(const Variant& a, const Variant& b) {
  // Null compares as the empty text: a missing value never equals a real one.
  const Variant& x = a.IsNull() ? Variant(u"") : a;
  const Variant& y = b.IsNull() ? Variant(u"") : b;
  const bool xs = x.IsString(), ys = y.IsString();
  if (xs && ys) return x.str().compare(y.str()) < 0 ? -1 : (x.str() == y.str() ? 0 : 1);
  if (xs || ys) {
    // Empty against a text compares as the empty text; a number is below any text.
    const Variant& other = xs ? y : x;
    if (other.IsEmpty()) {
      const std::u16string& s = xs ? x.str() : y.str();
      int c = s.empty() ? 0 : 1;
      return xs ? c : -c;
    }
    if (!other.IsNumber()) throw TypeMismatch();
    return xs ? 1 : -1;
  }
  double dx = NumberOf(x), dy = NumberOf(y);
  return dx < dy ? -1 : (dx > dy ? 1 : 0);
}

// ---- Dates ----

double MakeDate(int y, int mo, int d, int h, int mi, int s) {
  double days =
      static_cast<double>(DaysFromCivil(y, static_cast<unsigned>(mo), static_cast<unsigned>(d)) -
                          kOleEpochFromUnixDays);
  return days + (h * 3600.0 + mi * 60.0 + s) / 86400.0;
}

std::u16string GeneralDate(double ole) {
  DateParts p = Split(ole);
  char buf[64];
  const bool hasTime = p.h || p.mi || p.s;
  const bool hasDate = std::floor(ole) != 0 || !hasTime;
  std::string out;
  if (hasDate) {
    std::snprintf(buf, sizeof buf, "%d-%d-%d", p.y, p.mo, p.d);
    out = buf;
  }
  if (hasTime) {
    std::snprintf(buf, sizeof buf, "%d:%02d:%02d", p.h, p.mi, p.s);
    if (!out.empty()) out += ' ';
    out += buf;
  }
  return Ascii(out);
}

std::u16string IsoDate(double ole) {
  DateParts p = Split(ole);
  char buf[64];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", p.y, p.mo, p.d, p.h, p.mi, p.s);
  return Ascii(buf);
}

std::optional<double> ParseDate(std::u16string_view text) {
  // Reads up to six numbers: y sep m sep d [blank h : mi [: s]], or a time h:mi[:s] alone.
  int n[6] = {0, 0, 0, 0, 0, 0};
  int count = 0;
  size_t i = 0;
  auto skipBlanks = [&] {
    while (i < text.size() && IsBlank(text[i])) ++i;
  };
  auto number = [&](int& v) {
    size_t start = i;
    long value = 0;
    while (i < text.size() && text[i] >= u'0' && text[i] <= u'9' && i - start < 6)
      value = value * 10 + (text[i++] - u'0');
    v = static_cast<int>(value);
    return i > start;
  };
  skipBlanks();
  bool timeOnly = false;
  {
    size_t save = i;
    int h;
    if (number(h) && i < text.size() && text[i] == u':') timeOnly = true;
    i = save;
  }
  if (!timeOnly) {
    for (count = 0; count < 3; ++count) {
      if (!number(n[count])) return std::nullopt;
      if (count < 2) {
        if (i >= text.size() || (text[i] != u'-' && text[i] != u'/')) return std::nullopt;
        ++i;
      }
    }
    skipBlanks();
    if (i < text.size() && (text[i] == u'T' || text[i] == u't')) ++i;
  }
  if (i < text.size()) {
    if (!number(n[3]) || i >= text.size() || text[i] != u':') return std::nullopt;
    ++i;
    if (!number(n[4])) return std::nullopt;
    if (i < text.size() && text[i] == u':') {
      ++i;
      if (!number(n[5])) return std::nullopt;
      if (i < text.size() && text[i] == u'.')  // fractions of a second are dropped
        for (++i; i < text.size() && text[i] >= u'0' && text[i] <= u'9';) ++i;
    }
    skipBlanks();
    if (i != text.size()) return std::nullopt;
  }
  if (n[3] > 23 || n[4] > 59 || n[5] > 59) return std::nullopt;
  if (timeOnly) {
    return (n[3] * 3600.0 + n[4] * 60.0 + n[5]) / 86400.0;
  }
  if (n[1] < 1 || n[1] > 12 || n[2] < 1 || n[2] > 31 || n[0] < 100 || n[0] > 9999)
    return std::nullopt;
  double d = MakeDate(n[0], n[1], n[2], n[3], n[4], n[5]);
  if (Split(d).d != n[2]) return std::nullopt;  // 2026-2-30 and the like
  return d;
}

// ---- Text helpers ----

// The one UTF-8 conversion of the system (the code-page module uses it for 65001 too). An
// ill-formed sequence becomes one U+FFFD per maximal subpart, as browsers decode, and never
// swallows the bytes after it; a lone surrogate is written as U+FFFD.
std::u16string FromUtf8(std::string_view s) {
  if (s.empty()) return {};
  std::u16string out(s.size(), u'\0');  // UTF-16 never needs more units than UTF-8 has bytes
  int32_t length = 0;
  UErrorCode err = U_ZERO_ERROR;
  u_strFromUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, s.data(),
                       static_cast<int32_t>(s.size()), 0xFFFD, nullptr, &err);
  if (U_FAILURE(err)) throw std::bad_alloc();
  out.resize(static_cast<size_t>(length));
  return out;
}

std::string ToUtf8(std::u16string_view s) {
  if (s.empty()) return {};
  std::string out(s.size() * 3, '\0');  // at most three bytes per UTF-16 unit
  int32_t length = 0;
  UErrorCode err = U_ZERO_ERROR;
  u_strToUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, s.data(),
                     static_cast<int32_t>(s.size()), 0xFFFD, nullptr, &err);
  if (U_FAILURE(err)) throw std::bad_alloc();
  out.resize(static_cast<size_t>(length));
  return out;
}

std::u16string AsciiLower(std::u16string_view s) {
  std::u16string out(s);
  for (auto& c : out)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
  return out;
}

bool IEquals(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char16_t x = a[i], y = b[i];
    if (x >= u'A' && x <= u'Z') x = static_cast<char16_t>(x + 32);
    if (y >= u'A' && y <= u'Z') y = static_cast<char16_t>(y + 32);
    if (x != y) return false;
  }
  return true;
}

}  // namespace ostrakan
