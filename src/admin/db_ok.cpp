#include "admin/db_ok.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

DbOk::DbOk() : DatabasePage(u"\\admin\\db_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"delete", [this] { Delete(); });
  Block(u"alldelete", [this] { alldelete(); });
}

void DbOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    const std::u16string action = TextOf(CurrentRequest().QueryString(u"action"));
    if (action == u"del")
      Delete();
    else if (action == u"alldel")
      alldelete();
  });
}

void DbOk::Delete() {
  Guard(u"delete", [&] {
    DeleteRequestedRow(conn, u"db");
    CurrentResponse().Write(ReturnToListScript(u"删除成功！"));
  });
}

void DbOk::alldelete() {
  Guard(u"alldelete", [&] {
    DeleteTickedRows(conn, u"db");
    CurrentResponse().Write(ReturnToListScript(u"批量删除成功！"));
  });
}

}  // namespace ostrakan::admin
