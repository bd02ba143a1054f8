#include "records/pager.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "frame/escape.h"

namespace ostrakan::records {

namespace {
Markup Number(double n) {
  return HtmlText(CStr(Variant(n)));
}
}  // namespace

double PageCount(double total, double size) {
  return std::floor(total / size) + (std::fmod(total, size) == 0 ? 0 : 1);
}

int16_t ShownPage(int16_t requested, double total, double size) {
  if (requested < 1) requested = 1;
  if ((requested - 1) * size >= total)
    requested = CInt(Variant(std::max(1.0, PageCount(total, size))));
  return requested;
}

Markup PagerLine(const PagerStyle& style, const Markup& keys, const Variant& total, double size,
                 double current, const Variant& dbCount) {
  const double n = PageCount(CDbl(total), size);
  const Markup link = u"<a href='?" + keys + u"page=";
  const Markup count = u"&db_count=" + UrlQuery(TextOf(dbCount));
  Markup line;
  if (current < 2) {
    line += u"第一页 上一页 ";
  } else {
    line += link + u"1" + (style.countOnFirstLink ? count : Markup()) + u"'>第一页</a> ";
    line += link + Number(current - 1) + count + u"'>上一页</a> ";
  }
  if (n - current < 1) {
    line += u"下一页 最后一页 ";
  } else {
    line += link + Number(current + 1) + count + u"'>下一页</a> ";
    line += link + Number(n) + count + u"'>最后一页</a> ";
  }
  return line + u"共" + HtmlText(CStr(total)) + style.unit + u" 页次：" + Number(current) + u"/" +
         Number(n) + u"页";
}

Markup ElapsedLine(double start, double end) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6f", end - start);
  // On a line of its own, under the pager.
  return u"<br>" + HtmlText(FromUtf8(text)) + u" 秒";
}

}  // namespace ostrakan::records
