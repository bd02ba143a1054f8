#include "records/paged_list.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "frame/data_access.h"

namespace ostrakan::records {

namespace {
std::u16string Number(double n) {
  return CStr(Variant(n));
}
double PageCount(double total, double size) {
  return std::floor(total / size) + (std::fmod(total, size) == 0 ? 0 : 1);
}
}  // namespace

PagedList::PagedList(std::u16string context, PagerStyle style)
    : DatabasePage(std::move(context)), style_(std::move(style)) {
  Block(u"showContent", [this] { showContent(); });
  Method(
      u"showpage",
      [this](Args& a) {
        showpage(a.at(0), a.at(1));
        return Variant();
      },
      2);
  for (auto [name, member] : {std::pair{u"Time1", &Time1},
                              {u"Time2", &Time2},
                              {u"rs", &rs},
                              {u"db_count", &db_count},
                              {u"page", &page},
                              {u"pn", &pn},
                              {u"currentPage", &currentPage},
                              {u"sql", &sql},
                              {u"totalPut", &totalPut},
                              {u"TotalPages", &TotalPages}})
    Property(name, *member);
}

void PagedList::WriteList(const ListQueries& q, const std::function<std::u16string()>& returnUrl) {
  Time1 = Timer();
  db_count = CurrentRequest().QueryString(u"db_count");
  if (Equals(db_count, Variant(u""))) {
    auto count = Execute(conn, q.countSql);
    db_count = count->Eof() || count->Bof() ? Variant(0) : count->Field(u"db_count");
    count->Close();
  }
  page = CurrentRequest().QueryString(u"page");
  currentPage = Equals(page, Variant(u"")) ? Variant::Integer(1) : Variant::Integer(CInt(page));
  sql = CInt(currentPage) == 1 ? q.firstPageSql : q.laterPageSql;
  ado::Recordset& records = OpenRecordset(rs, sql.str(), conn, 1, 1);
  if (!(records.Eof() && records.Bof())) {
    totalPut = db_count;
    const double total = CDbl(totalPut), size = q.pageSize;
    if (CInt(currentPage) < 1) currentPage = Variant::Integer(1);
    // A page at or past the end of the count shows the last page (so page 3 of 40 records
    // shows records 21 to 40); with a count of 0 that is the first.
    if ((CInt(currentPage) - 1) * size >= total)
      currentPage = Variant::Integer(CInt(Variant(std::max(1.0, PageCount(total, size)))));
    if (CInt(currentPage) != 1) records.Move(static_cast<long>((CInt(currentPage) - 1) * size));
    showContent();
    showpage(totalPut, Variant(q.pageSize));
  }
  Session& session = CurrentSession();
  session.Set(u"url", Variant(u""));
  session.Set(u"url", Variant(returnUrl()));
  WriteElapsed(Time1, Time2);
}

void PagedList::showpage(const Variant& totalnumber, const Variant& maxperpage) {
  Guard(u"showpage", [&] {
    const double total = CDbl(totalnumber), size = CDbl(maxperpage);
    const double n = PageCount(total, size);
    const double current = CDbl(currentPage);
    const std::u16string link = u"<a href='?" + PagerKeys() + u"page=";
    const std::u16string count = u"&db_count=" + TextOf(db_count);
    std::u16string line;
    if (current < 2) {
      line += u"第一页 上一页 ";
    } else {
      line += link + u"1" + (style_.countOnFirstLink ? count : u"") + u"'>第一页</a> ";
      line += link + Number(current - 1) + count + u"'>上一页</a> ";
    }
    if (n - current < 1) {
      line += u"下一页 最后一页 ";
    } else {
      line += link + Number(current + 1) + count + u"'>下一页</a> ";
      line += link + Number(n) + count + u"'>最后一页</a> ";
    }
    line += u"共";
    line +=
        CStr(totalnumber) + style_.unit + u" 页次：" + Number(current) + u"/" + Number(n) + u"页";
    CurrentResponse().Write(line);
  });
}

void WriteElapsed(const Variant& start, Variant& end) {
  end = Timer();
  char text[32];
  std::snprintf(text, sizeof text, "%.6f", CDbl(end) - CDbl(start));
  // On a line of its own, under the pager.
  CurrentResponse().Write(u"<br>" + FromUtf8(text) + u" 秒");
}

}  // namespace ostrakan::records
