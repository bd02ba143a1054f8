#include "admin/paged_list.h"

#include "frame/data_access.h"
#include "platform/clock.h"

namespace ostrakan::admin {

PagedList::PagedList(std::u16string context, records::PagerStyle style)
    : DatabasePage(std::move(context)), style_(std::move(style)) {
  Describe<PagedList>([](Describer<PagedList>& m) {
    m.Block(u"showContent", &PagedList::WriteRows);
    m.Method(
        u"showpage",
        [](PagedList& page, Args& a) {
          page.WritePager(a.at(0), a.at(1));
          return Variant();
        },
        2);
    for (auto [name, member] : {
             std::pair{u"Time1", &PagedList::Time1},
             {u"Time2", &PagedList::Time2},
             {u"rs", &PagedList::rs},
             {u"db_count", &PagedList::db_count},
             {u"page", &PagedList::page},
             {u"currentPage", &PagedList::currentPage},
             {u"sql", &PagedList::sql},
             {u"totalPut", &PagedList::totalPut},
         })
      m.Property(name, member);
  });
}

void PagedList::WriteList(const ListQueries& q, const std::function<std::u16string()>& returnUrl) {
  Time1 = CurrentClock().Timer();
  const Request& request = CurrentRequest();
  db_count = request.QueryString(u"db_count");
  if (Equals(db_count, Variant(u""))) {
    auto count = Execute(conn, q.countSql, q.params);
    db_count = count->Eof() || count->Bof() ? Variant(0) : count->Field(u"db_count");
    count->Close();
  }
  page = request.QueryString(u"page");
  currentPage = Equals(page, Variant(u"")) ? Variant::Integer(1) : Variant::Integer(CInt(page));
  sql = CInt(currentPage) == 1 ? q.firstPageSql : q.laterPageSql;
  ado::Recordset& records = OpenRecordset(rs, sql.str(), conn, 1, 1, q.params);
  if (!(records.Eof() && records.Bof())) {
    totalPut = db_count;
    currentPage =
        Variant::Integer(records::ShownPage(CInt(currentPage), CDbl(totalPut), q.pageSize));
    if (CInt(currentPage) != 1)
      records.Move(static_cast<long>((CInt(currentPage) - 1) * q.pageSize));
    WriteRows();
    WritePager(totalPut, Variant(q.pageSize));
  }
  Session& session = CurrentSession();
  session.Set(u"url", Variant(u""));
  session.Set(u"url", Variant(returnUrl()));
  Time2 = CurrentClock().Timer();
  CurrentResponse().Write(records::ElapsedLine(CDbl(Time1), CDbl(Time2)));
}

void PagedList::WritePager(const Variant& totalnumber, const Variant& maxperpage) {
  Guard(u"showpage", [&] {
    CurrentResponse().Write(records::PagerLine(style_, PagerKeys(), totalnumber, CDbl(maxperpage),
                                               CDbl(currentPage), db_count));
  });
}

}  // namespace ostrakan::admin
