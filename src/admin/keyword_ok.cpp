#include "admin/keyword_ok.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

KeywordOk::KeywordOk() : DatabasePage(u"\\admin\\keyword_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"delete", [this] { Delete(); });
  Block(u"alldelete", [this] { alldelete(); });
}

void KeywordOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    const Variant action = CurrentRequest().QueryString(u"action");
    if (Equals(action, Variant(u"del")))
      Delete();
    else if (Equals(action, Variant(u"alldel")))
      alldelete();
  });
}

void KeywordOk::Delete() {
  Guard(u"delete", [&] {
    DeleteRequestedRow(conn, u"keyword");
    CurrentResponse().Write(ReturnToListScript(u"删除成功！"));
  });
}

// The batch ends with the single delete's message.
void KeywordOk::alldelete() {
  Guard(u"alldelete", [&] {
    DeleteTickedRows(conn, u"keyword");
    CurrentResponse().Write(ReturnToListScript(u"删除成功！"));
  });
}

}  // namespace ostrakan::admin
