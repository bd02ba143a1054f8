#include "admin/record_list.h"

#include "records/record_rows.h"

namespace ostrakan::admin {

RecordList::RecordList() : PagedList(u"\\admin\\db_list", {u"条记录", false}) {
  Describe<RecordList>([](Describer<RecordList>& m) {
    m.EmptyBlock(u"InitFunction3");
    m.Block(u"InitFunction4", &RecordList::ListRecords);
  });
}

void RecordList::ListRecords() {
  WriteList({u"select count(*) as db_count from db",
             u"select top 20 id,title,url,source,source_url,time from db order by id desc",
             u"select id,title,url,source,source_url,time from db order by id desc",
             records::kRecordPageSize,
             {}},
            [&] { return u"db_list.asp?page=" + CStr(currentPage); });
}

void RecordList::WriteRows() {
  Guard(u"showContent", [&] { records::WriteRecordBody(CurrentResponse(), rs, conn); });
}

}  // namespace ostrakan::admin
