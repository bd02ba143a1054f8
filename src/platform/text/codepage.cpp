#include "platform/text/codepage.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "core/script_error.h"
#include "core/variant.h"

namespace ostrakan::text {
namespace {

// How a converter repairs a byte sequence that it cannot decode.
enum Flags : unsigned {
  kUnicode = 1,          // UTF-8/UTF-16: encoding never needs "?"
  kAsciiCompatible = 2,  // an ASCII byte after a bad lead byte stands for itself
  kEuroAt80 = 4,         // a lone 0x80 is the euro sign, as browsers read it
  kGb18030Beyond = 8,    // what the encoder cannot hold is written as GB18030 bytes
};

// One encoding: the ICU converter that decodes it and the one that encodes it.
struct Encoding {
  const char* decoder;
  const char* encoder;
  unsigned flags;
};

constexpr Encoding kUtf8{"UTF-8", "UTF-8", kUnicode | kAsciiCompatible};
constexpr Encoding kUtf16Le{"UTF-16LE", "UTF-16LE", kUnicode};
constexpr Encoding kUtf16Be{"UTF-16BE", "UTF-16BE", kUnicode};
// GBK labels decode as GB18030 (a superset) but encode as windows-936, the host's ANSI page;
// a character outside it is written as its GB18030 sequence, which the decoder reads back.
constexpr Encoding kGbk{"gb18030", "windows-936-2000",
                        kAsciiCompatible | kEuroAt80 | kGb18030Beyond};
constexpr Encoding kGb18030{"gb18030", "gb18030", kAsciiCompatible | kEuroAt80};
constexpr Encoding kBig5{"ibm-1375_P100-2008", "ibm-1375_P100-2008", kAsciiCompatible};
constexpr Encoding kBig5Windows{"windows-950-2000", "windows-950-2000", kAsciiCompatible};
constexpr Encoding kShiftJis{"windows-31j", "windows-31j", kAsciiCompatible};
constexpr Encoding kEucJp{"EUC-JP", "EUC-JP", kAsciiCompatible};
constexpr Encoding kIso2022Jp{"ISO-2022-JP", "ISO-2022-JP", 0};
constexpr Encoding kEucKr{"windows-949-2000", "windows-949-2000", kAsciiCompatible};
constexpr Encoding kIbm866{"ibm-866_P100-1995", "ibm-866_P100-1995", kAsciiCompatible};
constexpr Encoding kKoi8R{"KOI8-R", "KOI8-R", kAsciiCompatible};
constexpr Encoding kKoi8U{"KOI8-U", "KOI8-U", kAsciiCompatible};
constexpr Encoding kMac{"macintosh", "macintosh", kAsciiCompatible};
constexpr Encoding kMacCyrillic{"x-mac-cyrillic", "x-mac-cyrillic", kAsciiCompatible};
constexpr Encoding kWin874{"windows-874-2000", "windows-874-2000", kAsciiCompatible};
constexpr Encoding kLatin1{"ISO-8859-1", "ISO-8859-1", kAsciiCompatible};
constexpr Encoding kAscii{"US-ASCII", "US-ASCII", kAsciiCompatible};
#define OSTRAKAN_SINGLE_BYTE(id, name) constexpr Encoding id{name, name, kAsciiCompatible};
OSTRAKAN_SINGLE_BYTE(kWin1250, "windows-1250")
OSTRAKAN_SINGLE_BYTE(kWin1251, "windows-1251")
OSTRAKAN_SINGLE_BYTE(kWin1252, "windows-1252")
OSTRAKAN_SINGLE_BYTE(kWin1253, "windows-1253")
OSTRAKAN_SINGLE_BYTE(kWin1254, "windows-1254")
OSTRAKAN_SINGLE_BYTE(kWin1255, "windows-1255")
OSTRAKAN_SINGLE_BYTE(kWin1256, "windows-1256")
OSTRAKAN_SINGLE_BYTE(kWin1257, "windows-1257")
OSTRAKAN_SINGLE_BYTE(kWin1258, "windows-1258")
OSTRAKAN_SINGLE_BYTE(kIso2, "ISO-8859-2")
OSTRAKAN_SINGLE_BYTE(kIso3, "ISO-8859-3")
OSTRAKAN_SINGLE_BYTE(kIso4, "ISO-8859-4")
OSTRAKAN_SINGLE_BYTE(kIso5, "ISO-8859-5")
OSTRAKAN_SINGLE_BYTE(kIso6, "ISO-8859-6")
OSTRAKAN_SINGLE_BYTE(kIso7, "ISO-8859-7")
OSTRAKAN_SINGLE_BYTE(kIso8, "ISO-8859-8")
OSTRAKAN_SINGLE_BYTE(kIso8I, "ISO-8859-8-I")
OSTRAKAN_SINGLE_BYTE(kIso10, "ISO-8859-10")
OSTRAKAN_SINGLE_BYTE(kIso13, "ISO-8859-13")
OSTRAKAN_SINGLE_BYTE(kIso14, "ISO-8859-14")
OSTRAKAN_SINGLE_BYTE(kIso15, "ISO-8859-15")
#undef OSTRAKAN_SINGLE_BYTE

// The labels of the WHATWG Encoding Standard (all but "replacement" and "x-user-defined"),
// trimmed and lower-case, separated by blanks.
struct LabelGroup {
  const Encoding* encoding;
  std::string_view labels;
};

constexpr LabelGroup kLabelGroups[] = {
    {&kUtf8, "unicode-1-1-utf-8 unicode11utf8 unicode20utf8 utf-8 utf8 x-unicode20utf8"},
    {&kIbm866, "866 cp866 csibm866 ibm866"},
    {&kIso2,
     "csisolatin2 iso-8859-2 iso-ir-101 iso8859-2 iso88592 iso_8859-2 iso_8859-2:1987 l2 latin2"},
    {&kIso3,
     "csisolatin3 iso-8859-3 iso-ir-109 iso8859-3 iso88593 iso_8859-3 iso_8859-3:1988 l3 latin3"},
    {&kIso4,
     "csisolatin4 iso-8859-4 iso-ir-110 iso8859-4 iso88594 iso_8859-4 iso_8859-4:1988 l4 latin4"},
    {&kIso5,
     "csisolatincyrillic cyrillic iso-8859-5 iso-ir-144 iso8859-5 iso88595 iso_8859-5 "
     "iso_8859-5:1988"},
    {&kIso6,
     "arabic asmo-708 csiso88596e csiso88596i csisolatinarabic ecma-114 iso-8859-6 iso-8859-6-e "
     "iso-8859-6-i iso-ir-127 iso8859-6 iso88596 iso_8859-6 iso_8859-6:1987"},
    {&kIso7,
     "csisolatingreek ecma-118 elot_928 greek greek8 iso-8859-7 iso-ir-126 iso8859-7 iso88597 "
     "iso_8859-7 iso_8859-7:1987 sun_eu_greek"},
    {&kIso8,
     "csiso88598e csisolatinhebrew hebrew iso-8859-8 iso-8859-8-e iso-ir-138 iso8859-8 iso88598 "
     "iso_8859-8 iso_8859-8:1988 visual"},
    {&kIso8I, "csiso88598i iso-8859-8-i logical"},
    {&kIso10, "csisolatin6 iso-8859-10 iso-ir-157 iso8859-10 iso885910 l6 latin6"},
    {&kIso13, "iso-8859-13 iso8859-13 iso885913"},
    {&kIso14, "iso-8859-14 iso8859-14 iso885914"},
    {&kIso15, "csisolatin9 iso-8859-15 iso8859-15 iso885915 iso_8859-15 l9"},
    {&kKoi8R, "cskoi8r koi koi8 koi8-r koi8_r"},
    {&kKoi8U, "koi8-ru koi8-u"},
    {&kMac, "csmacintosh mac macintosh x-mac-roman"},
    {&kMacCyrillic, "x-mac-cyrillic x-mac-ukrainian"},
    {&kWin874, "dos-874 iso-8859-11 iso8859-11 iso885911 tis-620 windows-874"},
    {&kWin1250, "cp1250 windows-1250 x-cp1250"},
    {&kWin1251, "cp1251 windows-1251 x-cp1251"},
    {&kWin1252,
     "ansi_x3.4-1968 ascii cp1252 cp819 csisolatin1 ibm819 iso-8859-1 iso-ir-100 iso8859-1 "
     "iso88591 iso_8859-1 iso_8859-1:1987 l1 latin1 us-ascii windows-1252 x-cp1252"},
    {&kWin1253, "cp1253 windows-1253 x-cp1253"},
    {&kWin1254,
     "cp1254 csisolatin5 iso-8859-9 iso-ir-148 iso8859-9 iso88599 iso_8859-9 iso_8859-9:1989 l5 "
     "latin5 windows-1254 x-cp1254"},
    {&kWin1255, "cp1255 windows-1255 x-cp1255"},
    {&kWin1256, "cp1256 windows-1256 x-cp1256"},
    {&kWin1257, "cp1257 windows-1257 x-cp1257"},
    {&kWin1258, "cp1258 windows-1258 x-cp1258"},
    {&kGbk, "chinese csgb2312 csiso58gb231280 gb2312 gb_2312 gb_2312-80 gbk iso-ir-58 x-gbk"},
    {&kGb18030, "gb18030"},
    {&kBig5, "big5 big5-hkscs cn-big5 csbig5 x-x-big5"},
    {&kEucJp, "cseucpkdfmtjapanese euc-jp x-euc-jp"},
    {&kIso2022Jp, "csiso2022jp iso-2022-jp"},
    {&kShiftJis, "csshiftjis ms932 ms_kanji shift-jis shift_jis sjis windows-31j x-sjis"},
    {&kEucKr,
     "cseuckr csksc56011987 euc-kr iso-ir-149 korean ks_c_5601-1987 ks_c_5601-1989 ksc5601 "
     "ksc_5601 windows-949"},
    {&kUtf16Be, "unicodefffe utf-16be"},
    {&kUtf16Le, "csunicode iso-10646-ucs-2 ucs-2 unicode unicodefeff utf-16 utf-16le"},
};

bool IsLabelSpace(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\n' || c == u'\f' || c == u'\r';
}

// A label trimmed of ASCII white space and lower-cased; "" when it holds anything but ASCII.
std::string NormalizeLabel(std::u16string_view label) {
  while (!label.empty() && IsLabelSpace(label.front())) label.remove_prefix(1);
  while (!label.empty() && IsLabelSpace(label.back())) label.remove_suffix(1);
  std::string out;
  out.reserve(label.size());
  for (char16_t c : label) {
    if (c >= 0x80) return {};
    out.push_back(static_cast<char>(c >= u'A' && c <= u'Z' ? c + 32 : c));
  }
  return out;
}

const Encoding* ForLabel(std::u16string_view label) {
  const std::string key = NormalizeLabel(label);
  if (key.empty()) return nullptr;
  for (const LabelGroup& group : kLabelGroups) {
    std::string_view rest = group.labels;
    while (!rest.empty()) {
      const size_t blank = rest.find(' ');
      if (rest.substr(0, blank) == key) return group.encoding;
      rest = blank == std::string_view::npos ? std::string_view() : rest.substr(blank + 1);
    }
  }
  return nullptr;
}

const Encoding& ForLabelOrThrow(std::u16string_view label) {
  if (const Encoding* e = ForLabel(label)) return *e;
  throw ScriptError(3001,
                    u"Arguments are of the wrong type, are out of acceptable range, or are in "
                    u"conflict with one another.");
}

const Encoding& ForCodePage(int codePage) {
  static constexpr Encoding kSjisCp{"windows-31j", "windows-31j", kAsciiCompatible};
  switch (codePage) {
    case kAnsiCodePage:
      return kGbk;
    case kUtf8CodePage:
      return kUtf8;
    case 1200:
      return kUtf16Le;
    case 1201:
      return kUtf16Be;
    case 54936:
      return kGb18030;
    case 950:
      return kBig5Windows;
    case 932:
      return kSjisCp;
    case 949:
      return kEucKr;
    case 874:
      return kWin874;
    case 1250:
      return kWin1250;
    case 1251:
      return kWin1251;
    case 1252:
      return kWin1252;
    case 1253:
      return kWin1253;
    case 1254:
      return kWin1254;
    case 1255:
      return kWin1255;
    case 1256:
      return kWin1256;
    case 1257:
      return kWin1257;
    case 1258:
      return kWin1258;
    case 866:
      return kIbm866;
    case 20866:
      return kKoi8R;
    case 21866:
      return kKoi8U;
    case 20932:
      return kEucJp;
    case 50220:
      return kIso2022Jp;
    case 28591:
      return kLatin1;
    case 20127:
      return kAscii;
    default:
      throw InvalidCall();
  }
}

// Decoding errors become U+FFFD, one per bad sequence. ICU already stops a bad sequence
// before a byte that can start a character, except after an unassigned double-byte pair
// whose second byte is ASCII: that byte is given back, as browsers do.
void RepairToUnicode(const void* context, UConverterToUnicodeArgs* args, const char* units,
                     int32_t length, UConverterCallbackReason reason, UErrorCode* err) {
  if (reason > UCNV_IRREGULAR) return;  // reset, close, clone: nothing to repair
  const auto flags = static_cast<unsigned>(reinterpret_cast<uintptr_t>(context));
  const auto first = static_cast<uint8_t>(units[0]);
  UChar out[2];
  int32_t n = 0;
  if ((flags & kEuroAt80) && length == 1 && first == 0x80) {
    out[n++] = 0x20AC;
  } else {
    out[n++] = 0xFFFD;
    if ((flags & kAsciiCompatible) && length == 2 && static_cast<uint8_t>(units[1]) < 0x80) {
      out[n++] = static_cast<UChar>(units[1]);
    }
  }
  *err = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(args, out, n, 0, err);
}

struct ConverterClose {
  void operator()(UConverter* c) const { ucnv_close(c); }
};

// Encoding errors of a windows-936 converter: a character that GBK has no bytes for is written
// as its GB18030 sequence (four bytes for most), so that a page or file labelled gb2312, which
// browsers and our decoder read as GB18030, keeps it. A lone surrogate becomes "?".
void WriteGb18030(const void*, UConverterFromUnicodeArgs* args, const UChar* units, int32_t length,
                  UChar32, UConverterCallbackReason reason, UErrorCode* err) {
  if (reason > UCNV_IRREGULAR) return;  // reset, close, clone: nothing to write
  thread_local std::unique_ptr<UConverter, ConverterClose> gb18030 = [] {
    UErrorCode e = U_ZERO_ERROR;
    return std::unique_ptr<UConverter, ConverterClose>(ucnv_open("gb18030", &e));
  }();
  char bytes[16];
  int32_t n = 0;
  if (reason == UCNV_UNASSIGNED && gb18030) {
    UErrorCode e = U_ZERO_ERROR;
    n = ucnv_fromUChars(gb18030.get(), bytes, sizeof bytes, units, length, &e);
    if (U_FAILURE(e)) n = 0;
  }
  if (n == 0) bytes[n++] = '?';
  *err = U_ZERO_ERROR;
  ucnv_cbFromUWriteBytes(args, bytes, n, 0, err);
}

// A converter of this thread, and whether it writes ASCII (U+0000..U+007F) as the same single
// bytes, so that an ASCII run of a text needs no conversion.
struct OpenConverter {
  std::unique_ptr<UConverter, ConverterClose> converter;
  bool asciiAsIs = false;
};

bool WritesAsciiAsIs(UConverter* cnv) {
  char16_t ascii[128];
  char bytes[512];
  for (int i = 0; i < 128; ++i) ascii[i] = static_cast<char16_t>(i);
  UErrorCode err = U_ZERO_ERROR;
  const int32_t n = ucnv_fromUChars(cnv, bytes, sizeof bytes, ascii, 128, &err);
  ucnv_reset(cnv);
  if (U_FAILURE(err) || n != 128) return false;
  for (int i = 0; i < 128; ++i)
    if (bytes[i] != static_cast<char>(i)) return false;
  return true;
}

// Opening a converter costs far more than a conversion; each thread keeps its own, by the
// address of its name (the names are the constants above).
OpenConverter& Converter(const char* name, unsigned flags) {
  thread_local std::unordered_map<const char*, OpenConverter> cache;
  OpenConverter& slot = cache[name];
  if (!slot.converter) {
    UErrorCode err = U_ZERO_ERROR;
    std::unique_ptr<UConverter, ConverterClose> cnv(ucnv_open(name, &err));
    if (U_FAILURE(err)) throw InvalidCall();
    ucnv_setToUCallBack(cnv.get(), RepairToUnicode,
                        reinterpret_cast<const void*>(static_cast<uintptr_t>(flags)), nullptr,
                        nullptr, &err);
    if (!(flags & kUnicode)) ucnv_setSubstChars(cnv.get(), "?", 1, &err);
    if (flags & kGb18030Beyond)
      ucnv_setFromUCallBack(cnv.get(), WriteGb18030, nullptr, nullptr, nullptr, &err);
    if (U_FAILURE(err)) throw InvalidCall();
    slot.asciiAsIs = (flags & kAsciiCompatible) && WritesAsciiAsIs(cnv.get());
    slot.converter = std::move(cnv);
  }
  ucnv_reset(slot.converter.get());
  return slot;
}

// Runs an ICU conversion from [src, srcEnd) into `out` after its first `written` elements,
// doubling `out` while ICU reports that it is too small; `out` ends at what was written.
template <class Out, class Src, class Step>
void ConvertInto(Out& out, size_t written, const Src* src, const Src* srcEnd, Step step) {
  for (;;) {
    auto* target = out.data() + written;
    UErrorCode err = U_ZERO_ERROR;
    step(&target, out.data() + out.size(), &src, srcEnd, &err);
    written = static_cast<size_t>(target - out.data());
    if (err == U_BUFFER_OVERFLOW_ERROR) {
      out.resize(out.size() * 2);
      continue;
    }
    if (U_FAILURE(err)) throw InvalidCall();
    out.resize(written);
    return;
  }
}

std::u16string ToUnicode(std::string_view bytes, const char* name, unsigned flags) {
  if (bytes.empty()) return {};
  if (std::strcmp(name, kUtf8.decoder) == 0) return FromUtf8(bytes);  // written once, in core
  UConverter* cnv = Converter(name, flags).converter.get();
  std::u16string out(bytes.size() + 8, u'\0');
  ConvertInto(
      out, 0, bytes.data(), bytes.data() + bytes.size(),
      [cnv](UChar** target, UChar* end, const char** src, const char* srcEnd, UErrorCode* err) {
        ucnv_toUnicode(cnv, target, end, src, srcEnd, nullptr, true, err);
      });
  return out;
}

// Appends the converted [src, srcEnd) to `out`.
void AppendConverted(std::string& out, UConverter* cnv, const UChar* src, const UChar* srcEnd) {
  const size_t written = out.size();
  out.resize(written + static_cast<size_t>(srcEnd - src) * ucnv_getMaxCharSize(cnv) + 8);
  ConvertInto(
      out, written, src, srcEnd,
      [cnv](char** target, char* end, const UChar** src, const UChar* srcEnd, UErrorCode* err) {
        ucnv_fromUnicode(cnv, target, end, src, srcEnd, nullptr, true, err);
      });
}

// windows-936's bytes for the characters of the BMP, each block of 256 made from the converter
// the first time a text holds one of its characters: lead * 256 + trail for a double-byte
// character, the byte for a single-byte one (the euro sign), 0 for what windows-936 lacks (a
// surrogate, what is written as GB18030), which goes through the converter.
class GbkCodes {
 public:
  uint16_t Of(char16_t c) {
    const Block* block = blocks_[c >> 8].load(std::memory_order_acquire);
    if (!block) block = Make(c >> 8);
    return (*block)[c & 0xFF];
  }

 private:
  using Block = std::array<uint16_t, 256>;
  const Block* Make(unsigned high) {
    auto block = std::make_unique<Block>();
    UErrorCode err = U_ZERO_ERROR;
    std::unique_ptr<UConverter, ConverterClose> cnv(ucnv_open(kGbk.encoder, &err));
    ucnv_setFromUCallBack(cnv.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &err);
    for (unsigned low = 0; low < 256; ++low) {
      const auto c = static_cast<char16_t>(high << 8 | low);
      uint16_t code = 0;
      if (U_SUCCESS(err) && c >= 0x80 && (c < 0xD800 || c > 0xDFFF)) {
        uint8_t bytes[4];
        UErrorCode e = U_ZERO_ERROR;
        const int32_t n =
            ucnv_fromUChars(cnv.get(), reinterpret_cast<char*>(bytes), sizeof bytes, &c, 1, &e);
        if (U_SUCCESS(e) && n == 1) code = bytes[0];
        if (U_SUCCESS(e) && n == 2 && bytes[0] >= 0x81)
          code = static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
      }
      (*block)[low] = code;
    }
    const Block* made = nullptr;  // or the one another thread made first
    if (blocks_[high].compare_exchange_strong(made, block.get(), std::memory_order_acq_rel))
      return block.release();
    return made;
  }
  std::atomic<const Block*> blocks_[256] = {};
};

// Appends a run of non-ASCII text in windows-936: a table lookup for each character it holds,
// the converter (GB18030 sequences, "?") for runs of the others.
void AppendGbk(std::string& out, UConverter* cnv, const char16_t* p, const char16_t* end) {
  static GbkCodes* const codes = new GbkCodes;  // never destroyed: pages may run at exit
  while (p < end) {
    const uint16_t code = codes->Of(*p);
    if (code == 0) {
      const char16_t* rest = p;
      while (p < end && codes->Of(*p) == 0) ++p;
      AppendConverted(out, cnv, rest, p);
      continue;
    }
    if (code >= 0x100) out.push_back(static_cast<char>(code >> 8));
    out.push_back(static_cast<char>(code & 0xFF));
    ++p;
  }
}

void AppendFromUnicode(std::string& out, std::u16string_view text, const char* name,
                       unsigned flags) {
  if (text.empty()) return;
  if (std::strcmp(name, kUtf8.encoder) == 0) {
    out += ToUtf8(text);
    return;
  }
  OpenConverter& c = Converter(name, flags);
  if (!c.asciiAsIs)
    return AppendConverted(out, c.converter.get(), text.data(), text.data() + text.size());
  // Markup is mostly ASCII: its runs are copied as they are, and only the runs between them
  // go through the converter. Every other character is a whole run's worth (a surrogate pair
  // is never split, a lone surrogate meets the end of its run as it would meet an ASCII
  // character), so the bytes are the same as the whole text's conversion. The same holds for
  // the runs of windows-936 that AppendGbk splits off.
  const char16_t* p = text.data();
  const char16_t* const end = p + text.size();
  while (p < end) {
    const char16_t* ascii = p;
    while (p < end && *p < 0x80) ++p;
    if (p > ascii) {
      size_t at = out.size();
      out.resize(at + static_cast<size_t>(p - ascii));
      for (char* o = out.data() + at; ascii < p; ++ascii, ++o) *o = static_cast<char>(*ascii);
    }
    const char16_t* other = p;
    while (p < end && *p >= 0x80) ++p;
    if (p == other) continue;
    if (flags & kGb18030Beyond)
      AppendGbk(out, c.converter.get(), other, p);
    else
      AppendConverted(out, c.converter.get(), other, p);
  }
}

}  // namespace

std::string Encode(std::u16string_view text, int codePage) {
  std::string out;
  EncodeAppend(out, text, codePage);
  return out;
}

void EncodeAppend(std::string& out, std::u16string_view text, int codePage) {
  const Encoding& e = ForCodePage(codePage);
  const size_t before = out.size();
  try {
    AppendFromUnicode(out, text, e.encoder, e.flags);
  } catch (...) {
    out.resize(before);  // nothing of a text that failed
    throw;
  }
}

std::u16string Decode(std::string_view bytes, int codePage) {
  const Encoding& e = ForCodePage(codePage);
  return ToUnicode(bytes, e.decoder, e.flags);
}

std::optional<std::string> CharsetForLabel(std::string_view label) {
  std::u16string wide(label.begin(), label.end());
  for (char c : label) {
    if (static_cast<unsigned char>(c) >= 0x80) return std::nullopt;
  }
  if (const Encoding* e = ForLabel(wide)) return std::string(e->decoder);
  return std::nullopt;
}

std::u16string DecodeCharset(std::string_view bytes, std::u16string_view label) {
  const Encoding& e = ForLabelOrThrow(label);
  return ToUnicode(bytes, e.decoder, e.flags);
}

std::u16string CharsetNameOf(int codePage) {
  switch (codePage) {
    case kAnsiCodePage:
      return u"gb2312";
    case kUtf8CodePage:
      return u"utf-8";
    case 1200:
      return u"utf-16le";
    case 1201:
      return u"utf-16be";
    case 54936:
      return u"gb18030";
    case 950:
      return u"big5";
    case 932:
      return u"shift_jis";
    case 949:
      return u"ks_c_5601-1987";
    case 866:
      return u"ibm866";
    case 20866:
      return u"koi8-r";
    case 21866:
      return u"koi8-u";
    case 20932:
      return u"euc-jp";
    case 50220:
      return u"iso-2022-jp";
    case 28591:
      return u"iso-8859-1";
    case 20127:
      return u"us-ascii";
    default: {
      std::string name = "windows-" + std::to_string(codePage);
      return std::u16string(name.begin(), name.end());
    }
  }
}

int16_t AnsiCode(char16_t unit) {
  const std::string bytes = Encode(std::u16string_view(&unit, 1), kAnsiCodePage);
  if (bytes.size() == 1) return static_cast<uint8_t>(bytes[0]);
  if (bytes.size() == 2) {
    return static_cast<int16_t>((static_cast<uint8_t>(bytes[0]) << 8) |
                                static_cast<uint8_t>(bytes[1]));
  }
  return '?';
}

}  // namespace ostrakan::text
